// Helpers shared by the editor tests: temporary folders, list files made by the managers, and
// an application object with a hidden main frame.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/TessaryApp.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "tests/app/FakePrompts.h"

namespace Tarn::AppTest {

inline std::vector<uint8_t> ReadBytes(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    const QByteArray b = f.readAll();
    return {b.begin(), b.end()};
}

inline void WriteBytes(const QString& path, const std::vector<uint8_t>& bytes) {
    QFile f(path);
    f.open(QIODevice::WriteOnly | QIODevice::Truncate);
    f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
}

// The bytes a manager of `version` writes for `data`.
inline std::vector<uint8_t> ListBytes(int version, const CRLData& data) {
    auto manager = CreateClassFactory(version)->CreateManager();
    auto copy = std::make_unique<CRLData>(data);
    manager->AttachData(copy);
    CRLFile file;
    if (!manager->WriteList(file)) return {};
    return file.Bytes();
}

// A list with no records: enough for everything that does not look at records.
inline std::vector<uint8_t> EmptyListBytes(int version, uint16_t prefListId = 7,
                                           uint8_t defRoamInd = 1) {
    CRLData data;
    data.GetProperties().prefListId = prefListId;
    data.GetProperties().defRoamInd = defRoamInd;
    return ListBytes(version, data);
}

// An application started without a window on screen; its main frame exists but stays hidden.
struct AppFixture {
    FakePrompts prompts;
    std::unique_ptr<CTessaryApp> app;
    QTemporaryDir dir;

    // `prepare` scripts the prompts before start-up asks anything.
    explicit AppFixture(const QStringList& args = {}, const std::function<void(FakePrompts&)>& prepare = {}) {
        if (prepare) prepare(prompts);
        ChangeCurrentVersion(0);
        app = std::make_unique<CTessaryApp>();
        app->SetFileLauncher([](const QString&) { return false; });
        app->InitInstance(args, false);
    }
    QString Path(const QString& name) const { return dir.filePath(name); }
};

}  // namespace Tarn::AppTest
