// The editor's documents for the six MMSS file kinds. One base class carries what they share: a
// header form, tabs (one per MSPL identifier, MLPL record or BST entry; a single untabbed grid for
// the list kinds), each tab's own fields and record grid, and the save, text and print flows over
// the headless documents of mmss/. The kind classes only say which fields and grids they have and
// how those map onto their file's data.
//
// The classes live in Tarn::App::<Kind> so they do not clash with the headless Tarn::<Kind>
// documents they wrap.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "app/Document.h"
#include "formats/FileKinds.h"
#include "grid/qt/GridModel.h"

namespace Tarn {

class CRLItem;
class CRLItemList;
class GridError;

namespace Mmss {
class Document;
}

namespace App {

// One form field: the key it is stored under, its label, and the longest text it accepts.
struct FieldSpec {
    std::string key;
    QString label;
    int maxLength = 5;
    // Lower-case words by which a check message names this field.
    std::vector<std::string> cues;
};

// One tab: its fields as typed, and its record grid.
struct MmssTab {
    std::vector<std::string> fields;  // in the order of TabFields()
    std::unique_ptr<GridModel> grid;
};

class MmssDocument : public CDocument {
    Q_OBJECT
public:
    explicit MmssDocument(CDocTemplate& tmpl);
    ~MmssDocument() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const QString& path) override;
    bool OnSaveDocument(const QString& path) override;
    bool WriteRecoveryCopy(const QString& path, QString& error) override;
    void OnViewsReady() override;
    std::unique_ptr<QWidget> CreateMainView() override;
    bool GetPrintText(QString& text) override;

    // ---- What a kind is made of.
    virtual QString KindTitle() const = 0;  // "MSPL", "OPLMN", ...
    virtual std::vector<FieldSpec> HeaderFields() const { return {}; }
    virtual std::vector<FieldSpec> TabFields() const { return {}; }
    // False for the kinds edited in one grid (no tab bar, no tab commands).
    virtual bool Tabbed() const { return false; }
    virtual QString TabLabel(int index) const;
    virtual QString GridTitle() const = 0;
    virtual std::string TableName() const = 0;
    virtual int GridColumns() const = 0;
    // A record as a new grid row starts.
    virtual std::unique_ptr<CRLItem> NewRecord() const = 0;
    // Check-box or text entries a cell refuses as it is typed; an empty text accepts it.
    virtual QString RefuseEntry(int column, const QString& text) const;

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
    // Reads a file's bytes into a headless document (nothing, with `error`, when it is not one).
    virtual std::unique_ptr<Mmss::Document> Parse(const std::vector<uint8_t>& bytes,
                                                  const std::string& path,
                                                  std::string& error) const = 0;
    // Fills header fields and tabs from a headless document.
    virtual void Load(const Mmss::Document& doc) = 0;
    // A headless document with the header and tab fields; records are added by AddRecords.
    virtual std::unique_ptr<Mmss::Document> MakeDocument() const = 0;
    // Hands the records read from tab `tab` to the headless document.
    virtual void AddRecords(Mmss::Document& doc, int tab, CRLItemList records) const = 0;
    // The message that says a save needs at least one record (so the field checks can leave it
    // for later, once the grids were read).
    virtual unsigned NeedOneRecordMessage() const = 0;
    // The start of a new document: header values and tabs.
    virtual void InitNew();
    // The fields of a tab as Add Tab makes it (and the first tab of a new document).
    virtual std::vector<std::string> NewTabFields() const;
    // The tab (from 0) a tab check message is about when it does not name one.
    virtual int TabOfProblem(const Mmss::Document& doc, const std::string& message) const;

    // Helpers for the kinds.
    void SetHeader(std::vector<std::string> values) { header_ = std::move(values); }
    MmssTab& AppendTab(std::vector<std::string> fields);
    void FillGrid(MmssTab& tab, const CRLItemList& records);
    void ClearTabs() { tabs_.clear(); }
    int HeaderIndex(const std::string& key) const;
    int TabFieldIndex(const std::string& key) const;

private:
    std::unique_ptr<GridModel> MakeGrid();
    // Which field a check message is about: the header field or tab field it names.
    void FocusProblem(const Mmss::Document& doc, const std::string& message);
    void ShowGridError(const GridError& error, int tab);

    std::vector<std::string> header_;
    std::vector<std::shared_ptr<MmssTab>> tabs_;
    QString pendingNotice_;
};

namespace Mspl {
class Document : public MmssDocument {
    Q_OBJECT
public:
    using MmssDocument::MmssDocument;
    QString KindTitle() const override { return "MSPL"; }
    std::vector<FieldSpec> HeaderFields() const override;
    std::vector<FieldSpec> TabFields() const override;
    bool Tabbed() const override { return true; }
    QString GridTitle() const override { return "Mspl Records"; }
    std::string TableName() const override;
    int GridColumns() const override { return 5; }
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::unique_ptr<Mmss::Document> Parse(const std::vector<uint8_t>& bytes,
                                          const std::string& path,
                                          std::string& error) const override;
    void Load(const Mmss::Document& doc) override;
    std::unique_ptr<Mmss::Document> MakeDocument() const override;
    void AddRecords(Mmss::Document& doc, int tab, CRLItemList records) const override;
    unsigned NeedOneRecordMessage() const override;
    std::vector<std::string> NewTabFields() const override;
};
}  // namespace Mspl

namespace Mlpl {
class Document : public MmssDocument {
    Q_OBJECT
public:
    using MmssDocument::MmssDocument;
    QString KindTitle() const override { return "MLPL"; }
    std::vector<FieldSpec> HeaderFields() const override;
    std::vector<FieldSpec> TabFields() const override;
    bool Tabbed() const override { return true; }
    QString GridTitle() const override { return "Mlpl Records"; }
    std::string TableName() const override;
    int GridColumns() const override { return 8; }
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::unique_ptr<Mmss::Document> Parse(const std::vector<uint8_t>& bytes,
                                          const std::string& path,
                                          std::string& error) const override;
    void Load(const Mmss::Document& doc) override;
    std::unique_ptr<Mmss::Document> MakeDocument() const override;
    void AddRecords(Mmss::Document& doc, int tab, CRLItemList records) const override;
    unsigned NeedOneRecordMessage() const override;
    std::vector<std::string> NewTabFields() const override;
};
}  // namespace Mlpl

namespace Plmn {
// The list kind (1 EHPLMN, 2 OPLMN, 3 UPLMN) comes from the file name when one is opened, and
// from the New command (the application's PLMN kind) otherwise.
class Document : public MmssDocument {
    Q_OBJECT
public:
    explicit Document(CDocTemplate& tmpl);
    QString KindTitle() const override;
    QString GridTitle() const override;
    std::string TableName() const override;
    int GridColumns() const override;
    std::unique_ptr<CRLItem> NewRecord() const override;
    uint8_t ListKind() const { return kind_; }
    bool OnOpenDocument(const QString& path) override;
    FileDialogSpec SaveAsSpec() const override;

protected:
    std::unique_ptr<Mmss::Document> Parse(const std::vector<uint8_t>& bytes,
                                          const std::string& path,
                                          std::string& error) const override;
    void Load(const Mmss::Document& doc) override;
    std::unique_ptr<Mmss::Document> MakeDocument() const override;
    void AddRecords(Mmss::Document& doc, int tab, CRLItemList records) const override;
    unsigned NeedOneRecordMessage() const override;

private:
    uint8_t kind_;
};
}  // namespace Plmn

namespace Bst3Gpp {
class Document : public MmssDocument {
    Q_OBJECT
public:
    using MmssDocument::MmssDocument;
    QString KindTitle() const override { return "3GPP BST"; }
    std::vector<FieldSpec> HeaderFields() const override;
    std::vector<FieldSpec> TabFields() const override;
    bool Tabbed() const override { return true; }
    QString GridTitle() const override { return "Bst3Gpp Records"; }
    std::string TableName() const override;
    int GridColumns() const override;
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::unique_ptr<Mmss::Document> Parse(const std::vector<uint8_t>& bytes,
                                          const std::string& path,
                                          std::string& error) const override;
    void Load(const Mmss::Document& doc) override;
    std::unique_ptr<Mmss::Document> MakeDocument() const override;
    void AddRecords(Mmss::Document& doc, int tab, CRLItemList records) const override;
    unsigned NeedOneRecordMessage() const override;
    std::vector<std::string> NewTabFields() const override;
    int TabOfProblem(const Mmss::Document& doc, const std::string& message) const override;
};
}  // namespace Bst3Gpp

namespace TechOrder {
class Document : public MmssDocument {
    Q_OBJECT
public:
    using MmssDocument::MmssDocument;
    QString KindTitle() const override { return "Technology Order"; }
    std::vector<FieldSpec> HeaderFields() const override;
    QString GridTitle() const override { return "Technology Order Table"; }
    std::string TableName() const override;
    int GridColumns() const override { return 1; }
    std::unique_ptr<CRLItem> NewRecord() const override;

protected:
    std::unique_ptr<Mmss::Document> Parse(const std::vector<uint8_t>& bytes,
                                          const std::string& path,
                                          std::string& error) const override;
    void Load(const Mmss::Document& doc) override;
    std::unique_ptr<Mmss::Document> MakeDocument() const override;
    void AddRecords(Mmss::Document& doc, int tab, CRLItemList records) const override;
    unsigned NeedOneRecordMessage() const override;
};
}  // namespace TechOrder

namespace LAF {
class Document : public MmssDocument {
    Q_OBJECT
public:
    using MmssDocument::MmssDocument;
    QString KindTitle() const override { return "LTE Available"; }
    QString GridTitle() const override { return "LTE Available Records"; }
    std::string TableName() const override;
    int GridColumns() const override { return 4; }
    std::unique_ptr<CRLItem> NewRecord() const override;
    // SID, NID, BID: 0-65535; CNT: 0-255. The refusal names the field, then the hint.
    QString RefuseEntry(int column, const QString& text) const override;

protected:
    std::unique_ptr<Mmss::Document> Parse(const std::vector<uint8_t>& bytes,
                                          const std::string& path,
                                          std::string& error) const override;
    void Load(const Mmss::Document& doc) override;
    std::unique_ptr<Mmss::Document> MakeDocument() const override;
    void AddRecords(Mmss::Document& doc, int tab, CRLItemList records) const override;
    unsigned NeedOneRecordMessage() const override;
};
}  // namespace LAF

// "An error occurred while saving ..." of a kind.
unsigned SaveFailedMessageOf(const Mmss::Document& doc);

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
