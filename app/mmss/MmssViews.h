// The views of an MMSS document: the header form, a tab per entry (or one page for the list
// kinds) with the entry's fields and record grid, a small command bar, and the text view.
#pragma once

#include <QPlainTextEdit>
#include <QWidget>
#include <vector>

#include "app/mmss/MmssDocuments.h"
#include "grid/qt/GridView.h"

class QLabel;
class QLineEdit;
class QTabWidget;

namespace Tarn::App {

// A record grid whose corner names the row index column.
class IndexedGridView : public GridView {
    Q_OBJECT
public:
    explicit IndexedGridView(QWidget* parent = nullptr);

protected:
    void updateGeometries() override;

private:
    QLabel* corner_;
};

// One tab: the entry's fields, the grid's title with its record count, and the grid.
class MmssTabPage : public QWidget {
    Q_OBJECT
public:
    MmssTabPage(MmssDocument& doc, int tab, QWidget* parent = nullptr);
    GridView* Grid() const { return grid_; }
    QLineEdit* Field(int index) const;
    void Commit();
    void Load();

private:
    void UpdateTitle();

    MmssDocument& doc_;
    int tab_;
    std::vector<QLineEdit*> fields_;
    QLabel* title_;
    QLabel* empty_ = nullptr;
    GridView* grid_;
};

class MmssView : public QWidget {
    Q_OBJECT
public:
    explicit MmssView(MmssDocument& doc, QWidget* parent = nullptr);

    QLineEdit* HeaderField(int index) const;
    QTabWidget* Tabs() const { return tabs_; }
    MmssTabPage* Page(int index) const;
    MmssTabPage* CurrentPage() const;
    // Opens a window with the text form of the document.
    void ShowTextView();

private:
    void RebuildPages();
    void CommitAll();
    void LoadHeader();

    MmssDocument& doc_;
    std::vector<QLineEdit*> header_;
    QTabWidget* tabs_ = nullptr;
    QWidget* body_ = nullptr;
    MmssTabPage* single_ = nullptr;
};

class MmssTextView : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit MmssTextView(MmssDocument& doc, QWidget* parent = nullptr);
    // Renders again; keeps the old text while the grids hold something that cannot be read.
    bool Refresh(bool quiet);

private:
    MmssDocument& doc_;
};

}  // namespace Tarn::App
