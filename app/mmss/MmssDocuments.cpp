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
#include "mmss/MmssFrame.h"
#include "mmss/Plmn/PlmnDocument.h"

namespace Tarn::App {
namespace {

QString FromStd(const std::string& s) {
    return QString::fromStdString(s);
}

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

MmssDocument::MmssDocument(CDocTemplate& tmpl, FileKind kind)
    : CDocument(tmpl), pattern_(Mmss::TraitsOf(kind).make()) {}

MmssDocument::~MmssDocument() {
    // Commands refer to the tabs and grids; they go first.
    UndoStack().clear();
}

QString MmssDocument::TabLabel(int index) const {
    return tr("Tab %1").arg(index + 1);
}

QString MmssDocument::KindTitle() const {
    return FromStd(pattern_->Title());
}

QString MmssDocument::GridTitle() const {
    return FromStd(pattern_->GridTitle());
}

QString MmssDocument::RefuseEntry(int column, const QString& text) const {
    return FromStd(pattern_->RefuseEntry(column, text.trimmed().toStdString()));
}

std::unique_ptr<Mmss::Document> MmssDocument::MakeDocument() const {
    std::unique_ptr<Mmss::Document> doc = pattern_->Empty();
    doc->SetHeaderValues(header_);
    for (const auto& tab : tabs_) doc->AddTab(tab->fields);
    return doc;
}

void MmssDocument::InitNew() {
    header_ = std::vector<std::string>(HeaderFields().size(), "0");
    tabs_.clear();
    MmssTab& tab = AppendTab(NewTabFields());
    CRLItemList records;
    records.Add(NewRecord());
    FillGrid(tab, records);
}

std::vector<std::string> MmssDocument::NewTabFields() const {
    std::vector<std::vector<std::string>> tabs;
    for (const auto& tab : tabs_) tabs.push_back(tab->fields);
    return pattern_->NewTabValues(tabs);
}

int MmssDocument::TabOfProblem(const Mmss::Document& doc, const std::string& message) const {
    for (size_t t = 0; t < doc.TabCount(); ++t)
        if (doc.TabProblem(t) == message) return static_cast<int>(t);
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
    std::unique_ptr<Mmss::Document> doc = Mmss::Guarded(
        [&] {
            std::unique_ptr<Mmss::Document> read = pattern_->Empty();
            read->ReadBytes(bytes, path.toStdString());
            return read;
        },
        error);
    if (!doc) {
        Prompts().Message(parent, FromStd(error), MsgIcon::Error);
        return false;
    }
    header_ = doc->HeaderValues();
    tabs_.clear();
    for (size_t t = 0; t < doc->TabCount(); ++t)
        FillGrid(AppendTab(doc->TabValues(t)), doc->TabRecords(t));
    pattern_ = doc->Empty();  // a PLMN list's kind is the one read
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
            FromStd(FormatMessage(doc->Traits().saveFailed)) + "\n" + FromStd(error),
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
    auto grid = std::make_unique<GridModel>(pattern_->Traits().tableName, GridColumns(),
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
        const std::string needOne = FormatMessage(pattern_->Traits().needOneRecord);
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
        doc->TabRecords(static_cast<size_t>(t)) = std::move(records);
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

// ---- PLMN lists ---------------------------------------------------------------------------------

PlmnDocument::PlmnDocument(CDocTemplate& tmpl) : MmssDocument(tmpl, FileKind::Plmn) {
    SetListKind(Tarn::Plmn::kEhplmn);
    if (const auto* app = CTessaryApp::Instance()) SetListKind(app->PlmnKind());
}

uint8_t PlmnDocument::ListKind() const {
    return static_cast<const Tarn::Plmn::Document&>(Pattern()).data.listKind;
}

void PlmnDocument::SetListKind(int kind) {
    if (kind >= Tarn::Plmn::kEhplmn && kind <= Tarn::Plmn::kUplmn)
        static_cast<Tarn::Plmn::Document&>(Pattern()).data.listKind = static_cast<uint8_t>(kind);
}

bool PlmnDocument::OnOpenDocument(const QString& path) {
    SetListKind(Mmss::PlmnListKindFromPath(path.toStdString()));
    return MmssDocument::OnOpenDocument(path);
}

FileDialogSpec PlmnDocument::SaveAsSpec() const {
    FileDialogSpec request = MmssDocument::SaveAsSpec();
    const QString ext = KindTitle().toLower();
    request.filter = tr("%1 Files (*.%2)|*.%2|All Files (*.*)|*.*||").arg(KindTitle(), ext);
    request.defaultSuffix = ext;
    return request;
}

// ---- Factories ----------------------------------------------------------------------------------

std::unique_ptr<CDocument> CreateMsplDocument(CDocTemplate& tmpl) {
    return std::make_unique<MmssDocument>(tmpl, FileKind::Mspl);
}
std::unique_ptr<CDocument> CreateBst3GppDocument(CDocTemplate& tmpl) {
    return std::make_unique<MmssDocument>(tmpl, FileKind::Bst3Gpp);
}
std::unique_ptr<CDocument> CreateMlplDocument(CDocTemplate& tmpl) {
    return std::make_unique<MmssDocument>(tmpl, FileKind::Mlpl);
}
std::unique_ptr<CDocument> CreatePlmnDocument(CDocTemplate& tmpl) {
    return std::make_unique<PlmnDocument>(tmpl);
}
std::unique_ptr<CDocument> CreateTechOrderDocument(CDocTemplate& tmpl) {
    return std::make_unique<MmssDocument>(tmpl, FileKind::TechOrder);
}
std::unique_ptr<CDocument> CreateLafDocument(CDocTemplate& tmpl) {
    return std::make_unique<MmssDocument>(tmpl, FileKind::Laf);
}

}  // namespace Tarn::App
