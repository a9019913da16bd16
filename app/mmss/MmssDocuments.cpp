#include "app/mmss/MmssDocuments.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QUndoCommand>
#include <algorithm>
#include <utility>

#include "app/TessaryApp.h"
#include "app/mmss/MmssViews.h"
#include "foundation/AtomicFile.h"
#include "foundation/MessageTable.h"
#include "grid/GridError.h"
#include "mmss/Bst3Gpp/Bst3GppDocument.h"
#include "mmss/Bst3Gpp/Bst3GppRecord.h"
#include "mmss/LAF/LafDocument.h"
#include "mmss/LAF/LafRecord.h"
#include "mmss/MmssFrame.h"
#include "mmss/Mlpl/MlplDocument.h"
#include "mmss/Mlpl/MlplRecord.h"
#include "mmss/Mspl/MsplDocument.h"
#include "mmss/Mspl/MsplRecord.h"
#include "mmss/Plmn/PlmnDocument.h"
#include "mmss/Plmn/PlmnRecord.h"
#include "mmss/TechOrder/TechOrderDocument.h"
#include "mmss/TechOrder/TechOrderRecord.h"

namespace Tarn::App {
namespace {

QString FromStd(const std::string& s) {
    return QString::fromStdString(s);
}

// Wide enough for a BST record with a handful of bands and their channels; the row of a record
// that needs more is cut at the grid's edge, which its save check then reports.
constexpr int kBstColumns = 300;

std::string Lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

bool Contains(const std::string& text, const std::vector<std::string>& cues) {
    const std::string lower = Lower(text);
    for (const auto& cue : cues)
        if (lower.find(cue) != std::string::npos) return true;
    return false;
}

template <typename T>
std::unique_ptr<Mmss::Document> Guard(T&& read, std::string& error) {
    try {
        return read();
    } catch (const std::exception& e) {
        error = Mmss::DescribeFailure(e);
    }
    return nullptr;
}

// ---- Undo commands ------------------------------------------------------------------------------

class HeaderValueCommand : public QUndoCommand {
public:
    HeaderValueCommand(MmssDocument& doc, size_t field, std::string before, std::string after)
        : QUndoCommand(QObject::tr("Edit Field")),
          doc_(doc),
          field_(field),
          before_(std::move(before)),
          after_(std::move(after)) {}
    void undo() override { doc_.ApplyHeaderValue(field_, before_); }
    void redo() override { doc_.ApplyHeaderValue(field_, after_); }

private:
    MmssDocument& doc_;
    size_t field_;
    std::string before_, after_;
};

class TabValueCommand : public QUndoCommand {
public:
    TabValueCommand(MmssDocument& doc, std::shared_ptr<MmssTab> tab, size_t field,
                    std::string before, std::string after)
        : QUndoCommand(QObject::tr("Edit Field")),
          doc_(doc),
          tab_(std::move(tab)),
          field_(field),
          before_(std::move(before)),
          after_(std::move(after)) {}
    void undo() override { doc_.ApplyTabValue(*tab_, field_, before_); }
    void redo() override { doc_.ApplyTabValue(*tab_, field_, after_); }

private:
    MmssDocument& doc_;
    std::shared_ptr<MmssTab> tab_;
    size_t field_;
    std::string before_, after_;
};

// Adding and removing a tab keep the tab itself (its grid and that grid's own undo history)
// alive in the command, so undoing brings back exactly what was there.
class TabCommand : public QUndoCommand {
public:
    TabCommand(MmssDocument& doc, int index, std::shared_ptr<MmssTab> tab, bool add)
        : QUndoCommand(add ? QObject::tr("Add Tab") : QObject::tr("Remove Tab")),
          doc_(doc),
          index_(index),
          tab_(std::move(tab)),
          add_(add) {}
    void undo() override { add_ ? Remove() : Insert(); }
    void redo() override { add_ ? Insert() : Remove(); }

private:
    void Insert() { doc_.InsertTabObject(index_, tab_); }
    void Remove() { tab_ = doc_.TakeTabObject(index_); }

    MmssDocument& doc_;
    int index_;
    std::shared_ptr<MmssTab> tab_;
    bool add_;
};

}  // namespace

// ---- MmssDocument -------------------------------------------------------------------------------

MmssDocument::MmssDocument(CDocTemplate& tmpl) : CDocument(tmpl) {}

MmssDocument::~MmssDocument() {
    // Commands refer to the tabs and grids; they go first.
    UndoStack().clear();
}

QString MmssDocument::TabLabel(int index) const {
    return tr("Tab %1").arg(index + 1);
}

QString MmssDocument::RefuseEntry(int, const QString&) const {
    return {};
}

void MmssDocument::InitNew() {
    std::vector<std::string> header;
    for (const auto& f : HeaderFields()) {
        (void)f;
        header.emplace_back("0");
    }
    SetHeader(std::move(header));
    ClearTabs();
    MmssTab& tab = AppendTab(NewTabFields());
    CRLItemList records;
    records.Add(NewRecord());
    FillGrid(tab, records);
}

std::vector<std::string> MmssDocument::NewTabFields() const {
    return std::vector<std::string>(TabFields().size());
}

int MmssDocument::TabOfProblem(const Mmss::Document&, const std::string& message) const {
    static const QRegularExpression tabNumber(QStringLiteral("Tab[- ](\\d+)"));
    const auto match = tabNumber.match(FromStd(message));
    return match.hasMatch() ? match.captured(1).toInt() - 1 : 0;
}

bool MmssDocument::OnNewDocument() {
    InitNew();
    UndoStack().clear();
    emit tabsChanged();
    return true;
}

bool MmssDocument::OnOpenDocument(const QString& path) {
    QWidget* parent = DialogParent();
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadWholeFile(path.toStdString(), bytes, error)) {
        Prompts().Message(parent, FromStd(error), MsgIcon::Error);
        return false;
    }
    std::unique_ptr<Mmss::Document> doc = Parse(bytes, path.toStdString(), error);
    if (!doc) {
        Prompts().Message(parent, FromStd(error), MsgIcon::Error);
        return false;
    }
    ClearTabs();
    Load(*doc);
    UndoStack().clear();
    pendingNotice_ = FromStd(doc->LoadNotice());
    emit tabsChanged();
    return true;
}

void MmssDocument::OnViewsReady() {
    const QString notice = std::exchange(pendingNotice_, QString());
    if (!notice.isEmpty()) Prompts().Message(DialogParent(), notice, MsgIcon::Information);
}

bool MmssDocument::OnSaveDocument(const QString& path) {
    std::unique_ptr<Mmss::Document> doc = TakeValues(true);
    if (!doc) return false;
    std::vector<uint8_t> bytes;
    std::string error;
    if (!doc->Write(bytes, error)) {
        Prompts().Message(DialogParent(), FromStd(error), MsgIcon::Error);
        FocusProblem(*doc, error);
        return false;
    }
    if (!WriteFileAtomically(path.toStdString(), bytes, error)) {
        Prompts().Message(
            DialogParent(),
            FromStd(FormatMessage(SaveFailedMessageOf(*doc))) + "\n" + FromStd(error),
            MsgIcon::Error);
        return false;
    }
    return true;
}

bool MmssDocument::WriteRecoveryCopy(const QString& path, QString& error) {
    std::unique_ptr<Mmss::Document> doc = TakeValues(false, true);
    if (!doc) {
        error = tr("a cell does not read yet");
        return false;
    }
    std::vector<uint8_t> bytes;
    std::string why;
    if (!doc->Write(bytes, why) || !WriteFileAtomically(path.toStdString(), bytes, why)) {
        error = FromStd(why);
        return false;
    }
    return true;
}

std::unique_ptr<QWidget> MmssDocument::CreateMainView() {
    return std::make_unique<MmssView>(*this);
}

bool MmssDocument::GetPrintText(QString& text) {
    return RenderText(text);
}

const std::string& MmssDocument::HeaderValue(const std::string& key) const {
    static const std::string empty;
    const int i = HeaderIndex(key);
    return i < 0 ? empty : header_[static_cast<size_t>(i)];
}

const std::string& MmssDocument::TabValue(int tab, const std::string& key) const {
    static const std::string empty;
    const int i = TabFieldIndex(key);
    if (i < 0 || tab < 0 || tab >= TabCount()) return empty;
    return tabs_[static_cast<size_t>(tab)]->fields.at(static_cast<size_t>(i));
}

int MmssDocument::HeaderIndex(const std::string& key) const {
    const auto fields = HeaderFields();
    for (size_t i = 0; i < fields.size(); ++i)
        if (fields[i].key == key) return static_cast<int>(i);
    return -1;
}

int MmssDocument::TabFieldIndex(const std::string& key) const {
    const auto fields = TabFields();
    for (size_t i = 0; i < fields.size(); ++i)
        if (fields[i].key == key) return static_cast<int>(i);
    return -1;
}

void MmssDocument::SetHeaderValue(const std::string& key, const std::string& value) {
    const int i = HeaderIndex(key);
    if (i < 0 || header_[static_cast<size_t>(i)] == value) return;
    UndoStack().push(
        new HeaderValueCommand(*this, static_cast<size_t>(i), header_[static_cast<size_t>(i)], value));
}

void MmssDocument::SetTabValue(int tab, const std::string& key, const std::string& value) {
    const int i = TabFieldIndex(key);
    if (i < 0 || tab < 0 || tab >= TabCount()) return;
    const auto& t = tabs_[static_cast<size_t>(tab)];
    const std::string& before = t->fields.at(static_cast<size_t>(i));
    if (before == value) return;
    UndoStack().push(new TabValueCommand(*this, t, static_cast<size_t>(i), before, value));
}

void MmssDocument::ApplyHeaderValue(size_t field, const std::string& value) {
    if (field < header_.size()) header_[field] = value;
    emit valuesChanged();
}

void MmssDocument::ApplyTabValue(MmssTab& tab, size_t field, const std::string& value) {
    if (field < tab.fields.size()) tab.fields[field] = value;
    emit valuesChanged();
}

void MmssDocument::AddTab() {
    auto tab = std::make_shared<MmssTab>();
    tab->fields = NewTabFields();
    tab->grid = MakeGrid();
    CRLItemList records;
    records.Add(NewRecord());
    FillGrid(*tab, records);
    UndoStack().push(new TabCommand(*this, TabCount(), std::move(tab), true));
}

void MmssDocument::RemoveTab(int index) {
    if (index < 0 || index >= TabCount()) return;
    UndoStack().push(new TabCommand(*this, index, nullptr, false));
}

void MmssDocument::InsertTabObject(int index, std::shared_ptr<MmssTab> tab) {
    index = std::clamp(index, 0, TabCount());
    tabs_.insert(tabs_.begin() + index, std::move(tab));
    emit tabsChanged();
}

std::shared_ptr<MmssTab> MmssDocument::TakeTabObject(int index) {
    if (index < 0 || index >= TabCount()) return nullptr;
    std::shared_ptr<MmssTab> tab = tabs_[static_cast<size_t>(index)];
    tabs_.erase(tabs_.begin() + index);
    emit tabsChanged();
    return tab;
}

std::unique_ptr<GridModel> MmssDocument::MakeGrid() {
    auto grid = std::make_unique<GridModel>(TableName(), GridColumns(),
                                            std::min(GridColumns(), 12));
    grid->SetUndoStack(&UndoStack());
    grid->SetRowInitializer([this](GridModel& g, int row) {
        NewRecord()->WriteToGrid(g, row);
    });
    std::unique_ptr<CRLItem> heading = NewRecord();
    heading->OnGridHeading(*grid, kGridHeadingEvent);
    return grid;
}

MmssTab& MmssDocument::AppendTab(std::vector<std::string> fields) {
    auto tab = std::make_shared<MmssTab>();
    tab->fields = std::move(fields);
    tab->fields.resize(TabFields().size());
    tab->grid = MakeGrid();
    tabs_.push_back(tab);
    return *tab;
}

void MmssDocument::FillGrid(MmssTab& tab, const CRLItemList& records) {
    GridModel& grid = *tab.grid;
    grid.BeginBatch();
    grid.SetRowCount(0);
    grid.SetRowCount(static_cast<int>(records.GetSize()));
    int row = 0;
    for (const auto& record : records) record->WriteToGrid(grid, row++);
    if (!records.IsEmpty()) records.GetAt(0)->OnGridHeading(grid, kGridHeadingEvent);
    grid.EndBatch();
}

void MmssDocument::RefreshHeadings(int tab, int row) {
    if (tab < 0 || tab >= TabCount()) return;
    GridModel& grid = *tabs_[static_cast<size_t>(tab)]->grid;
    std::unique_ptr<CRLItem> record = NewRecord();
    if (row >= 0 && row < grid.GetRowCount()) {
        try {
            record->ReadFromGrid(grid, row, GridContext{});
        } catch (const std::exception&) {
            record = NewRecord();  // a half-typed row: the default titles will do
        }
    }
    record->OnGridHeading(grid, kGridHeadingEvent);
}

std::unique_ptr<Mmss::Document> MmssDocument::TakeValues(bool checked, bool quiet) {
    if (!quiet) emit commitViews();
    std::unique_ptr<Mmss::Document> doc = MakeDocument();
    if (checked) {
        // Header and tab fields first, as the form shows them; "needs a record" waits for the
        // grids to be read.
        const std::string needOne = FormatMessage(NeedOneRecordMessage());
        for (const auto& problem : doc->Check()) {
            if (problem.message == needOne) continue;
            Prompts().Message(DialogParent(), FromStd(problem.message), MsgIcon::Error);
            FocusProblem(*doc, problem.message);
            return nullptr;
        }
    }
    for (int t = 0; t < TabCount(); ++t) {
        GridModel& grid = *tabs_[static_cast<size_t>(t)]->grid;
        CRLItemList records;
        for (int row = 0; row < grid.GetRowCount(); ++row) {
            std::unique_ptr<CRLItem> record = NewRecord();
            try {
                record->ReadFromGrid(grid, row, GridContext{});
            } catch (const GridError& e) {
                if (!quiet) ShowGridError(e, t);
                return nullptr;
            } catch (const std::exception& e) {
                if (!quiet) {
                    Prompts().Message(DialogParent(), FromStd(e.what()), MsgIcon::Error);
                    emit focusCell(t, 0, row);
                }
                return nullptr;
            }
            records.Add(std::move(record));
        }
        AddRecords(*doc, t, std::move(records));
    }
    if (checked) {
        const auto problems = doc->Check();
        if (!problems.empty()) {
            Prompts().Message(DialogParent(), FromStd(problems.front().message), MsgIcon::Error);
            FocusProblem(*doc, problems.front().message);
            return nullptr;
        }
    }
    return doc;
}

void MmssDocument::ShowGridError(const GridError& error, int tab) {
    Prompts().Message(DialogParent(), FromStd(error.Text()), MsgIcon::Error);
    emit focusCell(tab, error.Column(), error.Row());
}

void MmssDocument::FocusProblem(const Mmss::Document& doc, const std::string& message) {
    const std::string lower = Lower(message);
    if (lower.find("tab") == std::string::npos) {
        const auto header = HeaderFields();
        for (size_t i = 0; i < header.size(); ++i) {
            if (Contains(message, header[i].cues)) {
                emit focusHeaderField(static_cast<int>(i));
                return;
            }
        }
    }
    const auto fields = TabFields();
    for (size_t i = 0; i < fields.size(); ++i) {
        if (Contains(message, fields[i].cues)) {
            emit focusTabField(TabOfProblem(doc, message), static_cast<int>(i));
            return;
        }
    }
}

bool MmssDocument::RenderText(QString& text, bool quiet) {
    std::unique_ptr<Mmss::Document> doc = TakeValues(false, quiet);
    if (!doc) return false;
    text = FromStd(doc->RenderText());
    return true;
}

unsigned SaveFailedMessageOf(const Mmss::Document& doc) {
    switch (doc.Kind()) {
        case FileKind::Mspl:
            return Msg::ErrorSavingMspl;
        case FileKind::Mlpl:
            return Msg::ErrorSavingMlpl;
        case FileKind::Plmn:
            return Msg::ErrorSavingPlmn;
        case FileKind::Bst3Gpp:
            return Msg::ErrorSavingBst;
        case FileKind::TechOrder:
            return Msg::ErrorSavingTot;
        default:
            return Msg::ErrorWritingFile;
    }
}

// ---- MSPL ---------------------------------------------------------------------------------------

namespace Mspl {

std::vector<FieldSpec> Document::HeaderFields() const {
    return {{"revision", tr("RLType (Mmss Revision) :"), 3, {"revision"}},
            {"version", tr("Mspl Version :"), 5, {"version"}}};
}

std::vector<FieldSpec> Document::TabFields() const {
    return {{"id", tr("Mspl Id :"), 3, {"mspl id"}}};
}

std::string Document::TableName() const {
    return Tarn::Mspl::Record::kTableName;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Tarn::Mspl::Record>();
}

// The next identifier after the highest one in use, so a new tab does not repeat one.
std::vector<std::string> Document::NewTabFields() const {
    long long next = 0;
    for (int t = 0; t < TabCount(); ++t)
        next = std::max(next, Tarn::Mmss::ParseDecimal(TabValue(t, "id")) + 1);
    return {std::to_string(std::min(next, 255LL))};
}

std::unique_ptr<Mmss::Document> Document::Parse(const std::vector<uint8_t>& bytes,
                                                 const std::string&, std::string& error) const {
    return Guard([&] { return Tarn::Mspl::Document::FromBytes(bytes); }, error);
}

void Document::Load(const Mmss::Document& base) {
    const auto& doc = static_cast<const Tarn::Mspl::Document&>(base);
    SetHeader({doc.header.revision, doc.header.version});
    for (size_t i = 0; i < doc.data.lists.size(); ++i) {
        MmssTab& tab = AppendTab({i < doc.data.ids.size() ? doc.data.ids[i] : std::string()});
        FillGrid(tab, doc.data.lists[i]);
    }
}

std::unique_ptr<Mmss::Document> Document::MakeDocument() const {
    auto doc = std::make_unique<Tarn::Mspl::Document>();
    doc->header.revision = HeaderValue("revision");
    doc->header.version = HeaderValue("version");
    for (int t = 0; t < TabCount(); ++t) doc->data.AddId(TabValue(t, "id"));
    return doc;
}

void Document::AddRecords(Mmss::Document& base, int tab, CRLItemList records) const {
    auto& doc = static_cast<Tarn::Mspl::Document&>(base);
    doc.data.lists.at(static_cast<size_t>(tab)) = std::move(records);
}

unsigned Document::NeedOneRecordMessage() const {
    return Msg::NeedOneMsplRecord;
}

}  // namespace Mspl

// ---- MLPL ---------------------------------------------------------------------------------------

namespace Mlpl {

std::vector<FieldSpec> Document::HeaderFields() const {
    return {{"revision", tr("RLType (Mmss Revision) :"), 3, {"revision"}},
            {"version", tr("Mlpl Version :"), 5, {"version"}},
            {"id", tr("Mlpl Id :"), 3, {"mlpl id"}}};
}

std::vector<FieldSpec> Document::TabFields() const {
    return {{"mcc", tr("Mcc :"), 3, {"mcc"}},
            {"mnc", tr("Mnc :"), 3, {"mnc"}},
            {"msplIndex", tr("Mspl Index :"), 3, {"msplindex"}}};
}

std::string Document::TableName() const {
    return Tarn::Mlpl::Record::kTableName;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Tarn::Mlpl::Record>();
}

std::vector<std::string> Document::NewTabFields() const {
    return {"", "", "0"};
}

std::unique_ptr<Mmss::Document> Document::Parse(const std::vector<uint8_t>& bytes,
                                                 const std::string&, std::string& error) const {
    return Guard([&] { return Tarn::Mlpl::Document::FromBytes(bytes); }, error);
}

void Document::Load(const Mmss::Document& base) {
    const auto& doc = static_cast<const Tarn::Mlpl::Document&>(base);
    SetHeader({doc.header.revision, doc.header.version, doc.header.id});
    for (const auto& location : doc.data.records) {
        MmssTab& tab = AppendTab({location.mcc, location.mnc, location.msplIndex});
        FillGrid(tab, location.tags);
    }
}

std::unique_ptr<Mmss::Document> Document::MakeDocument() const {
    auto doc = std::make_unique<Tarn::Mlpl::Document>();
    doc->header.revision = HeaderValue("revision");
    doc->header.version = HeaderValue("version");
    doc->header.id = HeaderValue("id");
    for (int t = 0; t < TabCount(); ++t) {
        Tarn::Mlpl::Location location;
        location.mcc = TabValue(t, "mcc");
        location.mnc = TabValue(t, "mnc");
        location.msplIndex = TabValue(t, "msplIndex");
        doc->data.records.push_back(std::move(location));
    }
    return doc;
}

void Document::AddRecords(Mmss::Document& base, int tab, CRLItemList records) const {
    auto& doc = static_cast<Tarn::Mlpl::Document&>(base);
    doc.data.records.at(static_cast<size_t>(tab)).tags = std::move(records);
}

unsigned Document::NeedOneRecordMessage() const {
    return Msg::NeedOneMlplRecord;
}

}  // namespace Mlpl

// ---- PLMN lists ---------------------------------------------------------------------------------

namespace Plmn {

Document::Document(CDocTemplate& tmpl) : MmssDocument(tmpl), kind_(Tarn::Plmn::kEhplmn) {
    if (auto* app = CTessaryApp::Instance()) {
        const uint8_t k = app->PlmnKind();
        if (k >= Tarn::Plmn::kEhplmn && k <= Tarn::Plmn::kUplmn) kind_ = k;
    }
}

QString Document::KindTitle() const {
    Tarn::Plmn::Data data;
    data.listKind = kind_;
    return FromStd(data.KindName());
}

QString Document::GridTitle() const {
    Tarn::Plmn::Data data;
    data.listKind = kind_;
    return FromStd(data.GridTitle());
}

std::string Document::TableName() const {
    return Tarn::Plmn::Record::kTableName;
}

int Document::GridColumns() const {
    return Tarn::Plmn::HasAccessBytes(kind_) ? 5 : 2;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Tarn::Plmn::Record>(kind_);
}

bool Document::OnOpenDocument(const QString& path) {
    const int kind = Mmss::PlmnListKindFromPath(path.toStdString());
    if (kind >= Tarn::Plmn::kEhplmn && kind <= Tarn::Plmn::kUplmn)
        kind_ = static_cast<uint8_t>(kind);
    return MmssDocument::OnOpenDocument(path);
}

FileDialogSpec Document::SaveAsSpec() const {
    FileDialogSpec request = MmssDocument::SaveAsSpec();
    const QString ext = KindTitle().toLower();
    request.filter = tr("%1 Files (*.%2)|*.%2|All Files (*.*)|*.*||").arg(KindTitle(), ext);
    request.defaultSuffix = ext;
    return request;
}

std::unique_ptr<Mmss::Document> Document::Parse(const std::vector<uint8_t>& bytes,
                                                 const std::string& path,
                                                 std::string& error) const {
    return Guard([&] { return Tarn::Plmn::Document::FromBytes(bytes, path); }, error);
}

void Document::Load(const Mmss::Document& base) {
    const auto& doc = static_cast<const Tarn::Plmn::Document&>(base);
    kind_ = doc.data.listKind;
    FillGrid(AppendTab({}), doc.data.records);
}

std::unique_ptr<Mmss::Document> Document::MakeDocument() const {
    auto doc = std::make_unique<Tarn::Plmn::Document>();
    doc->data.listKind = kind_;
    return doc;
}

void Document::AddRecords(Mmss::Document& base, int, CRLItemList records) const {
    static_cast<Tarn::Plmn::Document&>(base).data.records = std::move(records);
}

unsigned Document::NeedOneRecordMessage() const {
    return Msg::NeedOnePlmnRecord;
}

}  // namespace Plmn

// ---- 3GPP BST -----------------------------------------------------------------------------------

namespace Bst3Gpp {

std::vector<FieldSpec> Document::HeaderFields() const {
    return {{"version", tr("Version :"), 5, {"version"}}};
}

std::vector<FieldSpec> Document::TabFields() const {
    return {{"type", tr("Type :"), 3, {"bst type"}},
            {"extension", tr("Extension :"), 3, {"extension"}},
            {"mcc", tr("Mcc :"), 3, {"mcc"}}};
}

std::string Document::TableName() const {
    return Tarn::Bst3Gpp::Record::kTableName;
}

int Document::GridColumns() const {
    return kBstColumns;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    auto record = std::make_unique<Tarn::Bst3Gpp::Record>();
    record->bands.push_back(Tarn::Bst3Gpp::Band{});
    return record;
}

std::vector<std::string> Document::NewTabFields() const {
    return {"1", "0", ""};
}

int Document::TabOfProblem(const Mmss::Document& base, const std::string& message) const {
    const auto& doc = static_cast<const Tarn::Bst3Gpp::Document&>(base);
    for (size_t i = 0; i < doc.data.entries.size(); ++i)
        if (doc.data.entries[i].Check(static_cast<int>(i) + 1) == message)
            return static_cast<int>(i);
    return MmssDocument::TabOfProblem(base, message);
}

std::unique_ptr<Mmss::Document> Document::Parse(const std::vector<uint8_t>& bytes,
                                                 const std::string&, std::string& error) const {
    return Guard([&] { return Tarn::Bst3Gpp::Document::FromBytes(bytes); }, error);
}

void Document::Load(const Mmss::Document& base) {
    const auto& doc = static_cast<const Tarn::Bst3Gpp::Document&>(base);
    SetHeader({doc.header.version});
    for (const auto& entry : doc.data.entries) {
        MmssTab& tab = AppendTab({entry.type, entry.extension, entry.mcc});
        FillGrid(tab, entry.records);
    }
}

std::unique_ptr<Mmss::Document> Document::MakeDocument() const {
    auto doc = std::make_unique<Tarn::Bst3Gpp::Document>();
    doc->header.version = HeaderValue("version");
    for (int t = 0; t < TabCount(); ++t) {
        Tarn::Bst3Gpp::Entry entry;
        entry.type = TabValue(t, "type");
        entry.extension = TabValue(t, "extension");
        entry.mcc = TabValue(t, "mcc");
        doc->data.entries.push_back(std::move(entry));
    }
    return doc;
}

void Document::AddRecords(Mmss::Document& base, int tab, CRLItemList records) const {
    auto& doc = static_cast<Tarn::Bst3Gpp::Document&>(base);
    doc.data.entries.at(static_cast<size_t>(tab)).records = std::move(records);
}

unsigned Document::NeedOneRecordMessage() const {
    return Msg::NeedOneBstRecord;
}

}  // namespace Bst3Gpp

// ---- Technology order table ---------------------------------------------------------------------

namespace TechOrder {

std::vector<FieldSpec> Document::HeaderFields() const {
    return {{"version", tr("Version :"), 5, {"version"}}};
}

std::string Document::TableName() const {
    return Tarn::TechOrder::Record::kTableName;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Tarn::TechOrder::Record>();
}

std::unique_ptr<Mmss::Document> Document::Parse(const std::vector<uint8_t>& bytes,
                                                 const std::string&, std::string& error) const {
    return Guard([&] { return Tarn::TechOrder::Document::FromBytes(bytes); }, error);
}

void Document::Load(const Mmss::Document& base) {
    const auto& doc = static_cast<const Tarn::TechOrder::Document&>(base);
    SetHeader({doc.header.version});
    FillGrid(AppendTab({}), doc.data.records);
}

std::unique_ptr<Mmss::Document> Document::MakeDocument() const {
    auto doc = std::make_unique<Tarn::TechOrder::Document>();
    doc->header.version = HeaderValue("version");
    return doc;
}

void Document::AddRecords(Mmss::Document& base, int, CRLItemList records) const {
    static_cast<Tarn::TechOrder::Document&>(base).data.records = std::move(records);
}

unsigned Document::NeedOneRecordMessage() const {
    return Msg::NeedOneTotRecord;
}

}  // namespace TechOrder

// ---- LTE available file -------------------------------------------------------------------------

namespace LAF {

std::string Document::TableName() const {
    return Tarn::LAF::LafRecord::kTableName;
}

std::unique_ptr<CRLItem> Document::NewRecord() const {
    return std::make_unique<Tarn::LAF::LafRecord>();
}

QString Document::RefuseEntry(int column, const QString& text) const {
    unsigned message = 0, hint = 0;
    if (Tarn::LAF::LafRecord::CheckEntry(column, text.trimmed().toStdString(), message, hint))
        return {};
    return FromStd(FormatMessage(message)) + "\n" + FromStd(FormatMessage(hint));
}

std::unique_ptr<Mmss::Document> Document::Parse(const std::vector<uint8_t>& bytes,
                                                 const std::string&, std::string& error) const {
    return Guard([&] { return Tarn::LAF::LafDocument::FromBytes(bytes); }, error);
}

void Document::Load(const Mmss::Document& base) {
    const auto& doc = static_cast<const Tarn::LAF::LafDocument&>(base);
    FillGrid(AppendTab({}), doc.data.records);
}

std::unique_ptr<Mmss::Document> Document::MakeDocument() const {
    return std::make_unique<Tarn::LAF::LafDocument>();
}

void Document::AddRecords(Mmss::Document& base, int, CRLItemList records) const {
    static_cast<Tarn::LAF::LafDocument&>(base).data.records = std::move(records);
}

unsigned Document::NeedOneRecordMessage() const {
    return Msg::NeedOneLafRecord;
}

}  // namespace LAF

// ---- Factories ----------------------------------------------------------------------------------

std::unique_ptr<CDocument> CreateMsplDocument(CDocTemplate& tmpl) {
    return std::make_unique<Mspl::Document>(tmpl);
}
std::unique_ptr<CDocument> CreateBst3GppDocument(CDocTemplate& tmpl) {
    return std::make_unique<Bst3Gpp::Document>(tmpl);
}
std::unique_ptr<CDocument> CreateMlplDocument(CDocTemplate& tmpl) {
    return std::make_unique<Mlpl::Document>(tmpl);
}
std::unique_ptr<CDocument> CreatePlmnDocument(CDocTemplate& tmpl) {
    return std::make_unique<Plmn::Document>(tmpl);
}
std::unique_ptr<CDocument> CreateTechOrderDocument(CDocTemplate& tmpl) {
    return std::make_unique<TechOrder::Document>(tmpl);
}
std::unique_ptr<CDocument> CreateLafDocument(CDocTemplate& tmpl) {
    return std::make_unique<LAF::Document>(tmpl);
}

}  // namespace Tarn::App
