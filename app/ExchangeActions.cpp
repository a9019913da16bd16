#include "app/ExchangeActions.h"

#include <QFileInfo>
#include <QHash>
#include <QSettings>
#include <set>

#include "analysis/CsvExchange.h"
#include "analysis/XlsxExport.h"
#include "app/RLDoc.h"
#include "app/TessaryApp.h"
#include "app/UiPrompts.h"
#include "foundation/AtomicFile.h"
#include "grid/qt/GridModel.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLFile.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"

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

void ShowOperatorColumns(CRLDoc& doc, GridModel& grid, QWidget* parent) {
    // Any fault in the database is told now, once, rather than from inside a repaint.
    EditorProviders(parent);
    struct Named {
        std::string key;
        const Analysis::ProviderDirectory* directory = nullptr;
        std::vector<Analysis::Operator> operators;
    };
    // The view asks for the same rows on every repaint; a row is read again only when its
    // cells, the list's version or the database changed.
    auto cache = std::make_shared<QHash<int, Named>>();
    auto lookup = [&doc, &grid, cache](int row) -> const std::vector<Analysis::Operator>& {
        const auto& directory = Analysis::ProviderDirectory::Shared(
            QSettings().value(kProviderDatabaseKey).toString().toStdString());
        std::string key = std::to_string(doc.Version());
        for (int c = 0; c < grid.UsedColumns(); ++c) key += '\t' + grid.GetCellText(c, row);
        Named& named = (*cache)[row];
        if (named.key == key && named.directory == &directory) return named.operators;
        named = {key, &directory, {}};
        int type = 0;
        if (!CRLNameTables::Instance().SysTypes(doc.Version()).FindValue(grid.GetCellText(0, row), type))
            return named.operators;
        std::unique_ptr<CSysItem> item = CreateSysItem(type, doc.Version());
        if (!item) return named.operators;
        try {
            item->ReadFromGrid(grid, row, GridContext{doc.Version(), nullptr});
            named.operators = Analysis::OperatorsForRecord(directory, *item);
        } catch (const std::exception&) {
            // Not a whole record yet: nothing to name.
        }
        return named.operators;
    };
    grid.SetAnnotations(
        {QObject::tr("Operator"), QObject::tr("Country")},
        [lookup](int row, int column) {
            const auto& operators = lookup(row);
            return QString::fromStdString(column == 0 ? Analysis::OperatorNames(operators)
                                                      : Analysis::CountryLabel(operators));
        },
        [lookup](int row) { return QString::fromStdString(Analysis::OperatorLabel(lookup(row))); });
    QObject::connect(&grid, &GridModel::rowsEdited, &grid,
                     [&grid](int first, int last) { grid.RefreshAnnotations(first, last); });
}

void ChooseProviderDatabase(QWidget* parent) {
    QSettings settings;
    FileDialogSpec dialog;
    dialog.title = QObject::tr("Provider Database");
    dialog.filter = QObject::tr("Provider Database (*.xml)|*.xml|All Files (*.*)|*.*||");
    dialog.initialPath = settings.value(kProviderDatabaseKey, Analysis::kDefaultProvidersXml).toString();
    const QString path = Prompts().GetOpenFileName(parent, dialog);
    if (path.isEmpty()) return;
    settings.setValue(kProviderDatabaseKey, path);
    EditorProviders(parent);
}

bool ExportListCsv(CRLDoc& doc) {
    auto data = TakeForExport(doc);
    if (!data) return false;
    FileDialogSpec dialog;
    dialog.title = QObject::tr("Export as CSV: the folder to hold header.csv, acquisition.csv and system.csv");
    dialog.filter = QObject::tr("CSV Files (*.csv)|*.csv||");
    dialog.defaultSuffix = "csv";
    const QString start = StartFolder(doc);
    dialog.initialPath = (start.isEmpty() ? QString() : start + "/") + Analysis::kHeaderCsv;
    dialog.overwritePrompt = false;
    const QString chosen = Prompts().GetSaveFileName(doc.DialogParent(), dialog);
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
    FileDialogSpec dialog;
    dialog.title = QObject::tr("Export as XLSX");
    dialog.filter = QObject::tr("Excel Workbook (*.xlsx)|*.xlsx||");
    dialog.defaultSuffix = "xlsx";
    const QString base = doc.PathName().isEmpty() ? QStringLiteral("list")
                                                  : QFileInfo(doc.PathName()).completeBaseName();
    const QString start = StartFolder(doc);
    dialog.initialPath = (start.isEmpty() ? QString() : start + "/") + base + ".xlsx";
    const QString chosen = Prompts().GetSaveFileName(doc.DialogParent(), dialog);
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
