#include "app/ExchangeActions.h"

#include <QFileInfo>
#include <QSettings>
#include <set>

#include "analysis/CsvExchange.h"
#include "analysis/XlsxExport.h"
#include "app/RLDoc.h"
#include "app/TessaryApp.h"
#include "app/UiPrompts.h"
#include "foundation/AtomicFile.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"

namespace Tarn {
namespace {

// Enough lines to tell what went wrong without a box taller than the screen.
constexpr int kShownFaults = 12;

QString StartFolder(const CDocument& doc) {
    return doc.PathName().isEmpty() ? QString() : QFileInfo(doc.PathName()).absolutePath();
}

// The list the views hold, or nothing after telling the user why it cannot be taken.
std::unique_ptr<CRLData> TakeForExport(CRLDoc& doc) {
    ListProblem problem;
    auto data = doc.SnapshotList(&problem);
    if (!data)
        Prompts().Message(doc.DialogParent(),
                          QObject::tr("The list cannot be exported as it stands:\n%1")
                              .arg(QString::fromStdString(problem.text)),
                          MsgIcon::Error);
    return data;
}

}  // namespace

const Analysis::ProviderDirectory& EditorProviders(QWidget* parent) {
    const QString path = QSettings().value(kProviderDatabaseKey).toString();
    const auto& directory = Analysis::ProviderDirectory::Shared(path.toStdString());
    static std::set<const Analysis::ProviderDirectory*> shown;
    if (shown.insert(&directory).second && !directory.Warnings().empty()) {
        QStringList lines;
        for (const auto& w : directory.Warnings()) lines << QString::fromStdString(w);
        Prompts().Message(parent, lines.join('\n'), MsgIcon::Warning);
    }
    return directory;
}

void ChooseProviderDatabase(QWidget* parent) {
    QSettings settings;
    FileDialogSpec spec;
    spec.title = QObject::tr("Provider Database");
    spec.filter = QObject::tr("Provider Database (*.xml)|*.xml|All Files (*.*)|*.*||");
    spec.initialPath = settings.value(kProviderDatabaseKey, Analysis::kDefaultProvidersXml).toString();
    const QString path = Prompts().GetOpenFileName(parent, spec);
    if (path.isEmpty()) return;
    settings.setValue(kProviderDatabaseKey, path);
    EditorProviders(parent);
}

bool ExportListCsv(CRLDoc& doc) {
    auto data = TakeForExport(doc);
    if (!data) return false;
    FileDialogSpec spec;
    spec.title = QObject::tr("Export as CSV: the folder to hold header.csv, acquisition.csv and system.csv");
    spec.filter = QObject::tr("CSV Files (*.csv)|*.csv||");
    spec.defaultSuffix = "csv";
    const QString start = StartFolder(doc);
    spec.initialPath = (start.isEmpty() ? QString() : start + "/") + Analysis::kHeaderCsv;
    spec.overwritePrompt = false;
    const QString chosen = Prompts().GetSaveFileName(doc.DialogParent(), spec);
    if (chosen.isEmpty()) return false;
    const auto tables =
        Analysis::ListToTables(*data, doc.Version(), {}, EditorProviders(doc.DialogParent()));
    std::string error;
    if (!Analysis::WriteListCsv(tables, QFileInfo(chosen).absolutePath().toStdString(), error)) {
        Prompts().Message(doc.DialogParent(), QString::fromStdString(error), MsgIcon::Error);
        return false;
    }
    return true;
}

bool ExportListXlsx(CRLDoc& doc) {
    auto data = TakeForExport(doc);
    if (!data) return false;
    FileDialogSpec spec;
    spec.title = QObject::tr("Export as XLSX");
    spec.filter = QObject::tr("Excel Workbook (*.xlsx)|*.xlsx||");
    spec.defaultSuffix = "xlsx";
    const QString base = doc.PathName().isEmpty() ? QStringLiteral("list")
                                                  : QFileInfo(doc.PathName()).completeBaseName();
    const QString start = StartFolder(doc);
    spec.initialPath = (start.isEmpty() ? QString() : start + "/") + base + ".xlsx";
    const QString chosen = Prompts().GetSaveFileName(doc.DialogParent(), spec);
    if (chosen.isEmpty()) return false;
    const auto tables =
        Analysis::ListToTables(*data, doc.Version(), {}, EditorProviders(doc.DialogParent()));
    std::string error;
    if (!Analysis::WriteListXlsx(tables, chosen.toStdString(), error)) {
        Prompts().Message(doc.DialogParent(), QString::fromStdString(error), MsgIcon::Error);
        return false;
    }
    return true;
}

bool ImportListCsv(CTessaryApp& app, QWidget* parent) {
    FileDialogSpec open;
    open.title = QObject::tr("Import CSV: any of header.csv, acquisition.csv and system.csv");
    open.filter = QObject::tr("CSV Files (*.csv)|*.csv||");
    const QString picked = Prompts().GetOpenFileName(parent, open);
    if (picked.isEmpty()) return false;
    const QString folder = QFileInfo(picked).absolutePath();
    Analysis::ImportedList list = Analysis::ReadListCsv(folder.toStdString(), true);
    if (!list.data) {
        QStringList lines;
        for (const auto& e : list.errors) {
            if (lines.size() == kShownFaults) {
                lines << QObject::tr("... and %1 more").arg(list.errors.size() - kShownFaults);
                break;
            }
            lines << QString::fromStdString(e);
        }
        Prompts().Message(parent, lines.join('\n'), MsgIcon::Error);
        return false;
    }
    FileDialogSpec save;
    save.title = QObject::tr("Save the imported roaming list as");
    save.filter = QObject::tr("Roaming List (*.prl)|*.prl|All Files (*.*)|*.*||");
    save.defaultSuffix = "prl";
    save.initialPath = folder + "/" + QFileInfo(folder).fileName() + ".prl";
    const QString target = Prompts().GetSaveFileName(parent, save);
    if (target.isEmpty()) return false;

    auto manager = CreateClassFactory(list.version)->CreateManager();
    manager->AttachData(list.data);
    CRLFile file;
    std::string error;
    bool written = false;
    try {
        written = manager->WriteList(file);
        if (!written) error = manager->GetLastError();
    } catch (const std::exception& e) {
        error = e.what();
    }
    if (written)
        written = WriteFileAtomically(target.toStdString(),
                                      Analysis::WithPrefix(list.prefix, file.Bytes()), error);
    if (!written) {
        Prompts().Message(parent, QString::fromStdString(error), MsgIcon::Error);
        return false;
    }
    return app.OpenDocumentFile(target) != nullptr;
}

}  // namespace Tarn
