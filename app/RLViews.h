// The views of a roaming list document: the header fields (CPropView), the acquisition and
// system grids (CAcqView, CSysView), the frame that holds them (CRLView) and the text form
// (CRLViewText).
#pragma once

#include <QGroupBox>
#include <QPlainTextEdit>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "app/RLDoc.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QVBoxLayout;

namespace Tarn {

namespace Analysis {
class ListFacts;
class RecordSearch;
}  // namespace Analysis

class FilterBar;
class FindBar;
class GridView;

// The list as the grids hold it, read again a moment after each edit (so typing never waits on a
// long list): the GEO and priority level of every system row, shown beside it in alternating
// bands, the search the find and filter bars ask, and the figures of the status bar.
class CListFacts : public QObject {
    Q_OBJECT
public:
    explicit CListFacts(CRLDoc& doc, QObject* parent = nullptr);
    ~CListFacts() override;

    // Reads the list now instead of after the pause.
    void Refresh();
    bool Pending() const { return timer_.isActive(); }

    // The search over the list as last read; nothing until the list has read once.
    const Analysis::RecordSearch* Search() const { return search_.get(); }
    // Why the list as it stands does not read (empty when it does).
    const QString& Problem() const { return problem_; }
    // Record counts, "List size: N / 65,535 bytes" and the CRC of the bytes a save would write,
    // or why the list does not write as it stands.
    const QString& StatusText() const { return status_; }

signals:
    void refreshed();

private:
    CRLDoc& doc_;
    QTimer timer_;
    std::unique_ptr<CRLData> data_;
    std::unique_ptr<Analysis::ListFacts> facts_;
    std::unique_ptr<Analysis::RecordSearch> search_;
    QString problem_;
    QString status_;
};

class CPropView : public QGroupBox {
    Q_OBJECT
public:
    explicit CPropView(CRLDoc& doc, QWidget* parent = nullptr);
    // Pushes the fields into the document.
    void Commit();
    QLineEdit* DefaultRoamIndEdit() const { return defRoamInd_; }
    QLineEdit* PrefListIdEdit() const { return prefListId_; }
    QCheckBox* PrefOnlyBox() const { return prefOnly_; }

private:
    void Load();
    void Focus(CRLDoc::HeaderField field);

    CRLDoc& doc_;
    QLineEdit* type_;
    QCheckBox* prefOnly_;
    QLineEdit* defRoamInd_;
    QLineEdit* prefListId_;
    bool loading_ = false;
};

// One record table: its title with the record count, and the grid.
class CRecordTableView : public QWidget {
    Q_OBJECT
public:
    CRecordTableView(CRLDoc& doc, CRLDoc::Table table, const QString& title,
                     QWidget* parent = nullptr);
    GridView* Grid() const { return grid_; }
    // A line beside the title (rich text; its links come back through noteLinkActivated).
    void SetNote(const QString& html);
    QString Note() const;

signals:
    void noteLinkActivated(const QString& link);

protected:
    QVBoxLayout* Layout() const { return layout_; }

private:
    void UpdateTitle();
    CRLDoc& doc_;
    CRLDoc::Table table_;
    QString title_;
    QLabel* label_;
    QLabel* note_;
    QVBoxLayout* layout_;
    GridView* grid_;
};

class CAcqView : public CRecordTableView {
    Q_OBJECT
public:
    explicit CAcqView(CRLDoc& doc, QWidget* parent = nullptr);
};

class CSysView : public CRecordTableView {
    Q_OBJECT
public:
    CSysView(CRLDoc& doc, CListFacts& facts, QWidget* parent = nullptr);
    FilterBar* Filter() const { return filter_; }

private:
    FilterBar* filter_;
};

class CRLView : public QWidget {
    Q_OBJECT
public:
    explicit CRLView(CRLDoc& doc, QWidget* parent = nullptr);
    CPropView* PropView() const { return prop_; }
    CAcqView* AcqView() const { return acq_; }
    CSysView* SysView() const { return sys_; }
    CListFacts& Facts() const { return *facts_; }
    FindBar* Find() const { return find_; }

    // Edit menu: Find (Ctrl+F), Find Next / Previous (F3 / Shift+F3), Go to Record (Ctrl+G).
    void ShowFind();
    void FindNext(bool backwards);
    void ShowGoTo();
    // Moves the cursor to a system or acquisition record, or the first system record of a GEO.
    void GoTo(int target, int number);

signals:
    void statusTextChanged(const QString& text);

private:
    // The acquisition record of the system under the cursor, and how many systems use the
    // acquisition record under the cursor.
    void FollowSystemRow(int row);
    void FollowAcqRow(int row);

    CRLDoc& doc_;
    CListFacts* facts_;
    CPropView* prop_;
    CAcqView* acq_;
    CSysView* sys_;
    FindBar* find_;
};

class CRLViewText : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit CRLViewText(CRLDoc& doc, QWidget* parent = nullptr);
    // Renders the document again; false (with message 162 shown) when it cannot be rendered.
    bool Refresh();

private:
    // Follows every edit of the document while the view is open; a list that cannot be rendered
    // as it stands (a row still being typed) leaves the last good text in place.
    void Follow();
    void Show(QString text);

    CRLDoc& doc_;
};

}  // namespace Tarn
