#include "app/RLDoc.h"

#include <QFileInfo>
#include <QUndoCommand>
#include <algorithm>

#include "app/RLViews.h"
#include "app/TessaryApp.h"
#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "roaming_list/AcqItem.h"
#include "roaming_list/NameTables.h"
#include "roaming_list/RLManager.h"
#include "roaming_list/SysItem.h"

namespace Tarn {
namespace {

QString FromStd(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}
QString Text(unsigned id) {
    return FromStd(MessageText(id));
}

// GWL rows reach column 299; nothing a record writes lies beyond.
constexpr int kGridColumns = 300;
constexpr int kReportLinesShown = 25;

const char* kConcatOffer =
    "This file is a Concatenated PRL file and cannot be opened directly; it must be split first. "
    "\nDo you want to use the Concatenated PRL Split Wizard to split the file?";
const char* kDataLossQuestion =
    "Some data loss may occur when changing to an older Roaming List format. Continue?";

bool HasReadOnlyAttribute(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && (!info.isWritable() || !(info.permissions() & QFileDevice::WriteOwner));
}

}  // namespace

int VersionForNewList() {
    const int v = GetCurrentVersion();
    return v >= kMinVersion && v <= kMaxVersion ? v : kMaxVersion;
}

class HeaderCommand : public QUndoCommand {
public:
    HeaderCommand(CRLDoc& doc, HeaderTexts before, HeaderTexts after)
        : QUndoCommand(QObject::tr("Edit Header")),
          doc_(doc),
          before_(std::move(before)),
          after_(std::move(after)) {}
    void undo() override { doc_.ApplyHeader(before_); }
    void redo() override { doc_.ApplyHeader(after_); }

private:
    CRLDoc& doc_;
    HeaderTexts before_;
    HeaderTexts after_;
};

class ReplaceListCommand : public QUndoCommand {
public:
    ReplaceListCommand(CRLDoc& doc, std::unique_ptr<CRLData> before, std::unique_ptr<CRLData> after,
                       const QString& label)
        : QUndoCommand(label), doc_(doc), before_(std::move(before)), after_(std::move(after)) {}
    void undo() override { doc_.LoadList(*before_); }
    void redo() override { doc_.LoadList(*after_); }

private:
    CRLDoc& doc_;
    std::unique_ptr<CRLData> before_;
    std::unique_ptr<CRLData> after_;
};

CRLDoc::CRLDoc(CDocTemplate& tmpl, bool textView)
    : CDocument(tmpl),
      textView_(textView),
      acqGrid_("Acquisition Table", kGridColumns, 12),
      sysGrid_("System Table", kGridColumns, 16) {
    acqGrid_.SetUndoStack(&UndoStack());
    sysGrid_.SetUndoStack(&UndoStack());
    connect(&UndoStack(), &QUndoStack::indexChanged, this, &CRLDoc::listEdited);
    connect(this, &CRLDoc::versionChanged, this, &CRLDoc::listEdited);
    for (Table t : {Table::Acq, Table::Sys}) {
        Grid(t).SetTypeHandler([this, t](GridModel&, int row, const std::string& name) {
            ChangeRowType(t, row, name);
        });
        Grid(t).SetRowInitializer([this, t](GridModel&, int row) { InitTypeCell(t, row); });
    }
    // A count or a system mode of a GWL or 3GPP row places the cells after it.
    acqGrid_.SetCellHandler([this](GridModel& grid, int row, int column, const std::string& old) {
        int code = 0;
        if (!CRLNameTables::Instance().AcqTypes(version_).FindValue(grid.GetCellText(0, row), code))
            return;
        auto item = CreateAcqItem(code, version_);
        if (item && item->OnCellEdited(grid, row, column, old)) RefreshHeadings(Table::Acq, row);
    });
}

CRLDoc::~CRLDoc() = default;

void CRLDoc::AttachManager(std::unique_ptr<CRLManager> manager) {
    manager_ = std::move(manager);
    version_ = manager_->GetVersion();
}

bool CRLDoc::OnNewDocument() {
    if (auto* app = CTessaryApp::Instance(); app && app->IsCommandLineMode()) {
        // The unattended conversions of the command line run as the new document's only work.
        const QString& option = app->Option();
        int status = 0;
        if (option == "f")
            status = ConvertBinaryToText(app->FirstArgument(), app->SecondArgument());
        else if (option == "u")
            status = ConvertTextToBinary(app->FirstArgument(), app->SecondArgument());
        app->SetExitCode(status);
        return status == 0;
    }
    // The cached factory of the current version; with no version chosen yet it makes IS-683E.
    AttachManager(CurrentVersionFactory().CreateManager());
    header_ = HeaderTexts{"0", "0", false};
    LoadViewsFromList();
    // An empty row in each table to start from: pick its type in the first column.
    acqGrid_.SetRowCount(1);
    InitTypeCell(Table::Acq, 0);
    sysGrid_.SetRowCount(1);
    InitTypeCell(Table::Sys, 0);
    UndoStack().clear();
    return true;
}

bool CRLDoc::OnOpenDocument(const QString& path) {
    QWidget* parent = DialogParent();
    const std::string p = path.toStdString();
    if (IsConcatenatedListFile(p)) {
        if (Prompts().Question(parent, QString::fromUtf8(kConcatOffer), MsgIcon::Warning)) {
            if (auto* app = CTessaryApp::Instance()) app->OnSplitWizard(path);
        }
        return false;
    }
    ListReadResult read = ReadListFile(p);
    if (!read.manager) {
        Prompts().Message(parent, QString::fromStdString(read.error), MsgIcon::Error);
        return false;
    }
    AttachManager(std::move(read.manager));
    const CRLData& data = manager_->GetData();
    header_ =
        HeaderTexts{std::to_string(data.GetProperties().defRoamInd),
                    std::to_string(data.GetProperties().prefListId), data.GetProperties().prefOnly};
    LoadViewsFromList();
    UndoStack().clear();
    readOnly_ = HasReadOnlyAttribute(path);
    pendingNotices_.clear();
    if (data.GetAcqTable().GetSize() == 0) pendingNotices_.push_back(Msg::NoAcqRecordsInFile);
    if (data.GetSysTable().GetSize() == 0) pendingNotices_.push_back(Msg::NoSysRecordsInFile);
    return true;
}

void CRLDoc::OnViewsReady() {
    const std::vector<unsigned> notices = std::move(pendingNotices_);
    pendingNotices_.clear();
    for (unsigned id : notices) Prompts().Message(DialogParent(), Text(id), MsgIcon::Error);
}

void CRLDoc::InitTypeCell(Table table, int row) {
    const auto& names = CRLNameTables::Instance();
    const CNameList& types =
        table == Table::Acq ? names.AcqTypes(version_) : names.SysTypes(version_);
    Grid(table).SetCellDropDown(0, row, types.Choices());
}

void CRLDoc::ReplaceList(std::unique_ptr<CRLData> before, std::unique_ptr<CRLData> after,
                         const QString& label) {
    UndoStack().push(new ReplaceListCommand(*this, std::move(before), std::move(after), label));
}

void CRLDoc::LoadList(const CRLData& data) {
    std::unique_ptr<CRLManager> manager = CreateClassFactory(version_)->CreateManager();
    auto copy = std::make_unique<CRLData>(data);
    manager->AttachData(copy);
    AttachManager(std::move(manager));
    LoadViewsFromList();
}

void CRLDoc::LoadViewsFromList() {
    const auto& names = CRLNameTables::Instance();
    const CRLData& data = manager_->GetData();
    struct Source {
        GridModel& grid;
        const CRLItemList& items;
        const CNameList& types;
        bool acq;
    };
    for (const Source& s :
         {Source{acqGrid_, data.GetAcqTable().Items(), names.AcqTypes(version_), true},
          Source{sysGrid_, data.GetSysTable().Items(), names.SysTypes(version_), false}}) {
        s.grid.BeginBatch();
        s.grid.SetRowCount(0);
        s.grid.ClearHeadings();
        s.grid.SetRowCount(static_cast<int>(s.items.GetSize()));
        int row = 0;
        for (const auto& item : s.items) {
            const int code = s.acq ? static_cast<const CAcqItem&>(*item).GetAcqType()
                                   : static_cast<const CSysItem&>(*item).GetSysType();
            s.grid.SetCellDropDown(0, row, s.types.Choices());
            s.grid.SetCellText(0, row, s.types.GetName(code));
            item->WriteToGrid(s.grid, row);
            ++row;
        }
        s.grid.EndBatch();
    }
    emit headerChanged();
    emit versionChanged();
}

void CRLDoc::ChangeRowType(Table table, int row, const std::string& typeName) {
    const auto& names = CRLNameTables::Instance();
    const CNameList& types =
        table == Table::Acq ? names.AcqTypes(version_) : names.SysTypes(version_);
    GridModel& grid = Grid(table);
    int code = 0;
    if (!types.FindValue(typeName, code)) {
        grid.SetCellText(0, row, typeName);
        return;
    }
    // A new type starts from a default record of that type.
    std::unique_ptr<CRLItem> item;
    if (table == Table::Acq)
        item = CreateAcqItem(code, version_);
    else
        item = CreateSysItem(code, version_);
    grid.ClearRow(row);
    InitTypeCell(table, row);
    grid.SetCellText(0, row, typeName);
    if (item) item->WriteToGrid(grid, row);
}

void CRLDoc::RefreshHeadings(Table table, int row) {
    GridModel& grid = Grid(table);
    grid.ClearHeadings();
    grid.SetColumnHeading(0, table == Table::Acq ? "Acq Type" : "Sys Type");
    if (row < 0 || row >= grid.GetRowCount()) return;
    const auto& names = CRLNameTables::Instance();
    const CNameList& types =
        table == Table::Acq ? names.AcqTypes(version_) : names.SysTypes(version_);
    int code = 0;
    if (!types.FindValue(grid.GetCellText(0, row), code)) return;
    std::unique_ptr<CRLItem> item;
    if (table == Table::Acq)
        item = CreateAcqItem(code, version_);
    else
        item = CreateSysItem(code, version_);
    if (!item) return;
    // The headings follow what the row holds (a PLMN type or a count decides the columns); a
    // row that does not read completely still titles what it could read.
    try {
        item->ReadFromGrid(grid, row,
                           GridContext{version_, &manager_->GetData().GetAcqTable().Items()});
    } catch (...) {
        if (auto* acq = dynamic_cast<CAcqItem*>(item.get())) acq->AdoptRowLayout(grid, row);
    }
    item->OnGridHeading(grid, kGridHeadingEvent);
}

void CRLDoc::SetHeader(const HeaderTexts& header) {
    if (header.defRoamInd == header_.defRoamInd && header.prefListId == header_.prefListId &&
        header.prefOnly == header_.prefOnly)
        return;
    UndoStack().push(std::make_unique<HeaderCommand>(*this, header_, header).release());
}

void CRLDoc::ApplyHeader(const HeaderTexts& header) {
    header_ = header;
    emit headerChanged();
}

void CRLDoc::ShowProblem(const ListProblem& problem) {
    Prompts().Message(DialogParent(), QString::fromStdString(problem.text),
                      problem.warning ? MsgIcon::Warning : MsgIcon::Error);
    switch (problem.place) {
        case ListProblem::Place::DefaultRoamInd:
            emit focusHeaderField(HeaderField::DefaultRoamInd);
            break;
        case ListProblem::Place::PrefListId:
            emit focusHeaderField(HeaderField::PrefListId);
            break;
        case ListProblem::Place::AcqTable:
            emit focusCell(Table::Acq, problem.column, problem.row);
            break;
        case ListProblem::Place::SysTable:
            emit focusCell(Table::Sys, problem.column, problem.row);
            break;
        case ListProblem::Place::None:
            break;
    }
}

std::unique_ptr<CRLData> CRLDoc::TakeValues() {
    emit commitViews();
    ListProblem problem;
    auto data =
        TakeListFromViews(version_, manager_->GetData(), header_, acqGrid_, sysGrid_, problem);
    if (!data) ShowProblem(problem);
    return data;
}

bool CRLDoc::OnSaveDocument(const QString& path) {
    std::unique_ptr<CRLData> data = TakeValues();
    if (!data) return false;
    std::unique_ptr<CRLManager> manager = CreateClassFactory(version_)->CreateManager();
    manager->AttachData(data);
    std::string error;
    if (!WriteListFile(*manager, path.toStdString(), error)) {
        QString text = Text(Msg::ErrorWritingFile);
        if (!error.empty()) text += "\n" + QString::fromStdString(error);
        Prompts().Message(DialogParent(), text, MsgIcon::Error);
        return false;
    }
    manager_ = std::move(manager);
    readOnly_ = false;
    return true;
}

bool CRLDoc::WriteRecoveryCopy(const QString& path, QString& error) {
    ListProblem problem;
    std::unique_ptr<CRLData> data = SnapshotList(&problem);
    if (!data) {
        error = QString::fromStdString(problem.text);
        return false;
    }
    std::unique_ptr<CRLManager> manager = CreateClassFactory(version_)->CreateManager();
    manager->AttachData(data);
    std::string why;
    if (!WriteBinaryListFile(*manager, path.toStdString(), why)) {
        error = QString::fromStdString(why);
        return false;
    }
    return true;
}

FileDialogSpec CRLDoc::SaveAsSpec() const {
    FileDialogSpec request = CDocument::SaveAsSpec();
    request.filter = CTessaryApp::RoamingListFilter();
    request.defaultSuffix = textView_ ? QStringLiteral("txt") : QStringLiteral("prl");
    return request;
}

void CRLDoc::OnTypeConversion() {
    if (readOnly_) {
        Prompts().Message(DialogParent(), Text(Msg::ReadOnlyNoConvert), MsgIcon::Error);
        return;
    }
    QStringList versions;
    for (int v = kMinVersion; v <= kMaxVersion; ++v)
        versions << QString::fromStdString(VersionName(v));
    const int chosen =
        Prompts().ChooseItem(DialogParent(), tr("RL Type Conversion"),
                             tr("Convert this roaming list to:"), versions, version_ - kMinVersion);
    if (chosen >= 0) ConvertTo(chosen + kMinVersion);
}

bool CRLDoc::ConvertTo(int version) {
    QWidget* parent = DialogParent();
    if (readOnly_) {
        Prompts().Message(parent, Text(Msg::ReadOnlyNoConvert), MsgIcon::Error);
        return false;
    }
    if (version == version_ || version < kMinVersion || version > kMaxVersion) return false;
    // The question comes first: a user who declines is not shown problems of the list.
    if (version < version_ &&
        !Prompts().Question(parent, QString::fromUtf8(kDataLossQuestion), MsgIcon::Warning))
        return false;
    std::unique_ptr<CRLData> data = TakeValues();
    if (!data) return false;
    ConversionOutcome outcome;
    try {
        outcome = ConvertListVersion(*data, version_, version);
    } catch (const std::exception& e) {
        QString text = Text(Msg::ErrorConverting);
        if (*e.what() && Text(Msg::ErrorConverting) != e.what())
            text += "\n" + QString::fromUtf8(e.what());
        Prompts().Message(parent, text, MsgIcon::Error);
        return false;
    }
    if (!outcome.data) {
        Prompts().Message(parent, Text(Msg::ErrorConverting), MsgIcon::Error);
        return false;
    }
    const int from = version_;
    std::unique_ptr<CRLManager> manager = CreateClassFactory(version)->CreateManager();
    manager->AttachData(outcome.data);
    AttachManager(std::move(manager));
    LoadViewsFromList();
    // Earlier edits name rows and types of the old version: they cannot be undone any more.
    UndoStack().clear();
    SetModifiedFlag(true);
    if (!outcome.report.empty()) {
        QString text =
            tr("The list was converted from %1 to %2. What %2 cannot carry was dropped:\n")
                .arg(QString::fromStdString(VersionName(from)),
                     QString::fromStdString(VersionName(version)));
        const int shown = std::min<int>(kReportLinesShown, static_cast<int>(outcome.report.size()));
        for (int i = 0; i < shown; ++i)
            text += "\n" + QString::fromStdString(outcome.report[static_cast<size_t>(i)]);
        if (static_cast<int>(outcome.report.size()) > shown)
            text += tr("\n... and %1 more.").arg(static_cast<int>(outcome.report.size()) - shown);
        Prompts().Message(parent, text, MsgIcon::Information);
    }
    return true;
}

bool CRLDoc::RenderTextQuietly(QString& text) {
    try {
        std::unique_ptr<CRLData> data;
        if (!textView_) {
            ListProblem problem;
            data = TakeListFromViews(version_, manager_->GetData(), header_, acqGrid_, sysGrid_,
                                     problem);
            if (!data) return false;
        }
        std::unique_ptr<CRLManager> manager = CreateClassFactory(version_)->CreateManager();
        if (data) manager->AttachData(data);
        else {
            auto copy = std::make_unique<CRLData>(manager_->GetData());
            manager->AttachData(copy);
        }
        text = QString::fromStdString(RenderListText(*manager));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

std::unique_ptr<CRLData> CRLDoc::SnapshotList(ListProblem* problem) const {
    ListProblem local;
    ListProblem& out = problem ? *problem : local;
    try {
        if (textView_ || !manager_) return manager_ ? std::make_unique<CRLData>(manager_->GetData()) : nullptr;
        return TakeListFromViews(version_, manager_->GetData(), header_, acqGrid_, sysGrid_, out);
    } catch (const std::exception& e) {
        out = {};
        out.text = e.what();
        return nullptr;
    }
}

bool CRLDoc::RenderText(QString& text) {
    ListProblem problem;
    try {
        if (textView_) {
            // A text document is not edited in grids: its list is what was read.
            text = QString::fromStdString(RenderListText(*manager_));
            return true;
        }
        emit commitViews();
        auto data =
            TakeListFromViews(version_, manager_->GetData(), header_, acqGrid_, sysGrid_, problem);
        if (data) {
            std::unique_ptr<CRLManager> manager = CreateClassFactory(version_)->CreateManager();
            manager->AttachData(data);
            text = QString::fromStdString(RenderListText(*manager));
            return true;
        }
    } catch (const std::exception& e) {
        problem = {};
        problem.text = e.what();
    }
    // The refusal says why, and the cursor goes where the problem is.
    ListProblem shown = problem;
    shown.warning = false;
    shown.text = std::string(MessageText(Msg::CannotRenderText));
    if (!problem.text.empty() && problem.text != shown.text) shown.text += "\n\n" + problem.text;
    ShowProblem(shown);
    return false;
}

bool CRLDoc::GetPrintText(QString& text) {
    return RenderText(text);
}

std::unique_ptr<QWidget> CRLDoc::CreateMainView() {
    if (textView_) {
        auto view = std::make_unique<CRLViewText>(*this);
        view->Refresh();
        return view;
    }
    return std::make_unique<CRLView>(*this);
}

int CRLDoc::ConvertBinaryToText(const QString& binaryPath, const QString& textPath) {
    ListReadResult read = ReadBinaryListFile(binaryPath.toStdString());
    if (!read.manager) {
        Prompts().Message(nullptr, Text(Msg::NotRecognizedFormat), MsgIcon::Error);
        return 1;
    }
    std::string error;
    if (!WriteTextListFile(*read.manager, textPath.toStdString(), error)) {
        Prompts().Message(nullptr,
                          Text(Msg::ErrorWritingFile) + "\n" + QString::fromStdString(error),
                          MsgIcon::Error);
        return 1;
    }
    return 0;
}

int CRLDoc::ConvertTextToBinary(const QString& textPath, const QString& binaryPath) {
    ListReadResult read = ReadTextListFile(textPath.toStdString());
    if (!read.manager) {
        QString text = Text(Msg::NotRecognizedFormat);
        if (!read.error.empty() && read.error != MessageText(Msg::NotRecognizedFormat))
            text += "\n" + QString::fromStdString(read.error);
        Prompts().Message(nullptr, text, MsgIcon::Error);
        return 1;
    }
    std::string error;
    if (!WriteBinaryListFile(*read.manager, binaryPath.toStdString(), error)) {
        Prompts().Message(nullptr,
                          Text(Msg::ErrorWritingFile) + "\n" + QString::fromStdString(error),
                          MsgIcon::Error);
        return 1;
    }
    return 0;
}

}  // namespace Tarn
