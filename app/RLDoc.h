// CRLDoc: the document behind every open roaming list, binary or text. It owns the list and the
// manager of its version, the two record grids the views edit, and the header fields.
#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "app/Document.h"
#include "app/RLCoreOps.h"
#include "grid/qt/GridModel.h"

namespace Tarn {

class CRLManager;

class CRLDoc : public CDocument {
    Q_OBJECT
public:
    enum class Table { Acq, Sys };
    enum class HeaderField { DefaultRoamInd, PrefListId };

    // `textView`: made by the text template, so its window shows the text form.
    CRLDoc(CDocTemplate& tmpl, bool textView);
    ~CRLDoc() override;

    bool OnNewDocument() override;
    bool OnOpenDocument(const QString& path) override;
    bool OnSaveDocument(const QString& path) override;
    void OnViewsReady() override;
    std::unique_ptr<QWidget> CreateMainView() override;
    bool GetPrintText(QString& text) override;
    FileDialogSpec SaveAsSpec() const override;
    bool WriteRecoveryCopy(const QString& path, QString& error) override;
    // A roaming list's copy is a binary list, whichever view the document has.
    QString RecoveryExtension() const override { return QStringLiteral("prl"); }

    int Version() const { return version_; }
    const CRLManager& Manager() const { return *manager_; }
    GridModel& Grid(Table table) { return table == Table::Acq ? acqGrid_ : sysGrid_; }
    bool IsTextView() const { return textView_; }

    const HeaderTexts& Header() const { return header_; }
    // A header change from the property view (undoable; nothing happens when nothing changed).
    void SetHeader(const HeaderTexts& header);

    bool IsReadOnly() const override { return readOnly_; }
    void SetReadOnly(bool readOnly) { readOnly_ = readOnly; }

    // Takes every value back from the views and checks it; shows the first problem (moving the
    // cursor to it) and returns nothing when there is one.
    std::unique_ptr<CRLData> TakeValues();

    // "RL Type Conversion": asks for the target version, then ConvertTo.
    void OnTypeConversion();
    // Converts the open list; false when refused, cancelled or failed (the list is unchanged).
    bool ConvertTo(int version);

    // The text form of the list as the views hold it (message 162 when it cannot be made).
    bool RenderText(QString& text);
    // The same without a word to the user: false when the list cannot be rendered as it stands
    // (an open text view keeps what it showed last).
    bool RenderTextQuietly(QString& text);

    // The list as the views hold it now, taken without a word to the user, for the windows that
    // analyse it while it is edited. Nothing when a row does not read yet or the list fails its
    // checks; `problem` then says why.
    std::unique_ptr<CRLData> SnapshotList(ListProblem* problem = nullptr) const;

    // Puts `after` in place of the list as one undoable edit named `label`; undo brings back
    // `before` (the list as the views held it). The version and header stay.
    void ReplaceList(std::unique_ptr<CRLData> before, std::unique_ptr<CRLData> after, const QString& label);

    // Re-titles the grid's columns for the record of `row`.
    void RefreshHeadings(Table table, int row);

    // The unattended conversions of the command line; each returns the exit status.
    static int ConvertBinaryToText(const QString& binaryPath, const QString& textPath);
    static int ConvertTextToBinary(const QString& textPath, const QString& binaryPath);

signals:
    // Views push what is still being typed into the document.
    void commitViews();
    void headerChanged();
    void versionChanged();
    void focusHeaderField(HeaderField field);
    void focusCell(Table table, int column, int row);
    // After every edit, undo, redo and version conversion: windows that follow the list refresh.
    void listEdited();

private:
    friend class HeaderCommand;
    friend class ReplaceListCommand;
    void LoadList(const CRLData& data);
    void ApplyHeader(const HeaderTexts& header);
    void AttachManager(std::unique_ptr<CRLManager> manager);
    void LoadViewsFromList();
    void InitTypeCell(Table table, int row);
    void ChangeRowType(Table table, int row, const std::string& typeName);
    void ShowProblem(const ListProblem& problem);

    std::vector<unsigned> pendingNotices_;
    bool textView_;
    int version_ = 5;
    bool readOnly_ = false;
    std::unique_ptr<CRLManager> manager_;
    HeaderTexts header_;
    GridModel acqGrid_;
    GridModel sysGrid_;
};

// The version a new roaming list takes: the current one chosen by a New command, or IS-683E
// when none was chosen yet.
int VersionForNewList();

}  // namespace Tarn
