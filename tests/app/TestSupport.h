// Helpers shared by the editor tests: temporary folders, list files made by the managers, an
// application object with a hidden main frame, menu commands by their text, and runs of the real
// program with no display.
#pragma once

#include <QAction>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/MainFrame.h"
#include "app/TessaryApp.h"
#include "foundation/MessageTable.h"
#include "tests/app/FakePrompts.h"
#include "tests/roaming_list/ListSamples.h"
#include "tests/support/Files.h"

namespace Tarn::AppTest {

inline QString Text(unsigned id, std::initializer_list<MessageArg> args = {}) {
    return QString::fromStdString(FormatMessage(id, args));
}

inline std::vector<uint8_t> ReadBytes(const QString& path) {
    return Test::SlurpBytes(path.toStdString());
}

inline void WriteBytes(const QString& path, const std::vector<uint8_t>& bytes) {
    Test::WriteBytes(path.toStdString(), bytes);
}

using ListSamples::Binary;

// A list with no records: enough for everything that does not look at records.
inline std::vector<uint8_t> EmptyListBytes(int version, uint16_t prefListId = 7,
                                           uint8_t defRoamInd = 1) {
    CRLData data;
    data.GetProperties().prefListId = prefListId;
    data.GetProperties().defRoamInd = defRoamInd;
    return Binary(data, version);
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
    // A menu command chosen by its text, as the user would.
    void Trigger(const QString& text) const {
        for (QAction* a : app->MainFrame()->findChildren<QAction*>())
            if (a->text() == text) a->trigger();
    }
    // A copy of an example list in the test's folder.
    QString Example(const QString& name) const {
        QFile::copy(TARN_EXAMPLES_DIR "/" + name, Path(name));
        QFile(Path(name)).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        return Path(name);
    }
};

struct ProgramRun {
    bool finished = false;
    int exitCode = -1;
    QString err;
};

// The real program with no display, so it either does its work unattended or fails.
inline ProgramRun RunTarn(const QStringList& args) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) env.remove(name);
    env.insert("LC_ALL", "C");
    p.setProcessEnvironment(env);
    p.start(TARN_APP_PATH, args);
    ProgramRun r;
    r.finished = p.waitForFinished(60000);
    if (!r.finished) p.kill();
    r.exitCode = p.exitCode();
    r.err = QString::fromLocal8Bit(p.readAllStandardError());
    return r;
}

}  // namespace Tarn::AppTest
