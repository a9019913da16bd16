// The views of a roaming list document: the header fields (CPropView), the acquisition and
// system grids (CAcqView, CSysView), the frame that holds them (CRLView) and the text form
// (CRLViewText).
#pragma once

#include <QGroupBox>
#include <QPlainTextEdit>
#include <QWidget>

#include "app/RLDoc.h"

class QCheckBox;
class QLabel;
class QLineEdit;

namespace Tarn {

class GridView;

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

private:
    void UpdateTitle();
    CRLDoc& doc_;
    CRLDoc::Table table_;
    QString title_;
    QLabel* label_;
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
    explicit CSysView(CRLDoc& doc, QWidget* parent = nullptr);
};

class CRLView : public QWidget {
    Q_OBJECT
public:
    explicit CRLView(CRLDoc& doc, QWidget* parent = nullptr);
    CPropView* PropView() const { return prop_; }
    CAcqView* AcqView() const { return acq_; }
    CSysView* SysView() const { return sys_; }

private:
    CPropView* prop_;
    CAcqView* acq_;
    CSysView* sys_;
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
