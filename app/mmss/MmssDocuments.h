// The editor's documents for the six MMSS file kinds. One class carries them all: a header form,
// tabs (one per MSPL identifier, MLPL record or BST entry; a single untabbed grid for the list
// kinds), each tab's own fields and record grid, and the save, text and print flows over the
// headless documents of mmss/, which say what fields, tabs and grid their kind has.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "app/Document.h"
#include "formats/FileKinds.h"
#include "grid/qt/GridModel.h"
#include "mmss/MmssDocument.h"

namespace Tarn {

class CRLItem;
class CRLItemList;
class GridError;


namespace App {

// One form field: the key it is stored under, its label, the longest text it accepts, and the
// words by which a check message names it.
using FieldSpec = Mmss::FormField;

// One tab: its fields as typed, and its record grid.
struct MmssTab {
    std::vector<std::string> fields;  // in the order of TabFields()
    std::unique_ptr<GridModel> grid;
};

// A document of one MMSS kind. What the kind is made of (its fields, tabs and grid) comes from an
// empty headless document of that kind, kept as its pattern.
class MmssDocument : public CDocument {
    Q_OBJECT
public:
    MmssDocument(CDocTemplate& tmpl, FileKind kind);
    ~MmssDocument() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const QString& path) override;
    bool OnSaveDocument(const QString& path) override;
    bool WriteRecoveryCopy(const QString& path, QString& error) override;
    void OnViewsReady() override;
    std::unique_ptr<QWidget> CreateMainView() override;
    bool GetPrintText(QString& text) override;

    // ---- What a kind is made of.
    QString KindTitle() const;  // "MSPL", "OPLMN", ...
    std::vector<FieldSpec> HeaderFields() const { return pattern_->HeaderForm(); }
    std::vector<FieldSpec> TabFields() const { return pattern_->TabForm(); }
    // False for the kinds edited in one grid (no tab bar, no tab commands).
    bool Tabbed() const { return !TabFields().empty(); }
    QString TabLabel(int index) const;
    QString GridTitle() const;
    int GridColumns() const { return pattern_->GridColumns(); }
    // A record as a new grid row starts.
    std::unique_ptr<CRLItem> NewRecord() const { return pattern_->NewRecord(); }
    // Why the text typed into a cell is refused at once; an empty text accepts it.
    QString RefuseEntry(int column, const QString& text) const;

    // ---- State the views edit.
    const std::vector<std::string>& HeaderValues() const { return header_; }
    const std::string& HeaderValue(const std::string& key) const;
    int TabCount() const { return static_cast<int>(tabs_.size()); }
    MmssTab& Tab(int index) { return *tabs_.at(static_cast<size_t>(index)); }
    const std::string& TabValue(int tab, const std::string& key) const;

    // Undoable edits.
    void SetHeaderValue(const std::string& key, const std::string& value);
    void SetTabValue(int tab, const std::string& key, const std::string& value);
    void AddTab();
    void RemoveTab(int index);

    // The headless document of what the views hold. With `checked`, header and tab fields are
    // checked first, then the grids, then the whole file; the first problem is shown (with the
    // cursor moved to it) and nothing is returned. `quiet` shows nothing and leaves the views
    // alone (a refresh of the text view while the user types).
    std::unique_ptr<Mmss::Document> TakeValues(bool checked, bool quiet = false);
    // The text view's text; false (with the reason shown unless `quiet`) when the grids cannot
    // be read.
    bool RenderText(QString& text, bool quiet = false);
    // Titles the columns of a tab's grid for the record in `row`.
    void RefreshHeadings(int tab, int row);

    // The state behind a tab pointer, for the undo commands.
    void InsertTabObject(int index, std::shared_ptr<MmssTab> tab);
    std::shared_ptr<MmssTab> TakeTabObject(int index);
    void ApplyHeaderValue(size_t field, const std::string& value);
    void ApplyTabValue(MmssTab& tab, size_t field, const std::string& value);

signals:
    void commitViews();
    void tabsChanged();
    void valuesChanged();
    void focusHeaderField(int field);
    void focusTabField(int tab, int field);
    void focusCell(int tab, int column, int row);

protected:
    // The pattern, for a kind whose shape changes with what it holds (a PLMN list's kind).
    Mmss::Document& Pattern() { return *pattern_; }
    const Mmss::Document& Pattern() const { return *pattern_; }

private:
    // A fresh headless document of the kind, shaped as the pattern is.
    std::unique_ptr<Mmss::Document> MakeDocument() const;
    void InitNew();
    std::vector<std::string> NewTabFields() const;
    // The tab (from 0) a tab check message is about.
    int TabOfProblem(const Mmss::Document& doc, const std::string& message) const;
    MmssTab& AppendTab(std::vector<std::string> fields);
    void FillGrid(MmssTab& tab, const CRLItemList& records);
    int HeaderIndex(const std::string& key) const;
    int TabFieldIndex(const std::string& key) const;
    std::unique_ptr<GridModel> MakeGrid();
    // Which field a check message is about: the header field or tab field it names.
    void FocusProblem(const Mmss::Document& doc, const std::string& message);
    void ShowGridError(const GridError& error, int tab);

    std::unique_ptr<Mmss::Document> pattern_;
    std::vector<std::string> header_;
    std::vector<std::shared_ptr<MmssTab>> tabs_;
    QString pendingNotice_;
};

// A PLMN list: its kind (1 EHPLMN, 2 OPLMN, 3 UPLMN) comes from the file name when one is
// opened, and from the New command (the application's PLMN kind) otherwise.
class PlmnDocument : public MmssDocument {
    Q_OBJECT
public:
    explicit PlmnDocument(CDocTemplate& tmpl);
    uint8_t ListKind() const;
    bool OnOpenDocument(const QString& path) override;
    FileDialogSpec SaveAsSpec() const override;

private:
    void SetListKind(int kind);
};

// The factories the application registers, one per template.
std::unique_ptr<CDocument> CreateMsplDocument(CDocTemplate& tmpl);
std::unique_ptr<CDocument> CreateBst3GppDocument(CDocTemplate& tmpl);
std::unique_ptr<CDocument> CreateMlplDocument(CDocTemplate& tmpl);
std::unique_ptr<CDocument> CreatePlmnDocument(CDocTemplate& tmpl);
std::unique_ptr<CDocument> CreateTechOrderDocument(CDocTemplate& tmpl);
std::unique_ptr<CDocument> CreateLafDocument(CDocTemplate& tmpl);

// The unattended command line for an MMSS file (`kind` as chosen from the two names):
//   "f": the text form of the first file is written to the second;
//   "c": the first file is checked and, when it passes, written in canonical form to the second;
//   "u": the JSON form in the first file is written as the binary file named by the second.
// Problems go through the prompts (stderr in that mode); returns the exit status.
int RunMmssCommandLine(FileKind kind, const QString& option, const QString& first,
                       const QString& second);

}  // namespace App
}  // namespace Tarn
