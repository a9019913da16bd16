// CMainFrame: the main window with its MDI area, menus, accelerators, status prompts, window
// placement, drag and drop, and printing of the active document.
#pragma once

#include <QDateTime>
#include <QMainWindow>
#include <QRect>
#include <QSize>
#include <map>
#include <memory>
#include <optional>

class QAction;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QPrinter;

namespace Tarn {

class CDocument;
class CRLDoc;
class CTessaryApp;
class GridView;

// The stored window placement; -1 marks a value never written.
struct WindowPlacement {
    int flags = -1;
    int showCmd = -1;
    int x1 = -1;
    int y1 = -1;
    int x2 = -1;
    int y2 = -1;
};

// The normal-position rectangle to restore, or nothing when any corner was never stored. The
// left edge is held back to the screen width less an icon width and the top edge to the screen
// height less an icon height, so a window stored off-screen can still be grabbed; the right and
// bottom edges stay as stored.
std::optional<QRect> RestoredRect(const WindowPlacement& placement, QSize screen, QSize icon);

WindowPlacement LoadWindowPlacement();
void SaveWindowPlacement(const WindowPlacement& placement);

// "%02d/%02d/%04d %02d:%02d": month, day, year, hours, minutes.
QString PrintDateText(const QDateTime& when);

// Lays `text` out on the printer's pages under a header of `title` and the date and time.
void PrintTextPages(QPrinter& printer, const QString& title, const QString& text,
                    const QDateTime& when);

class CMainFrame : public QMainWindow {
    Q_OBJECT
public:
    explicit CMainFrame(CTessaryApp& app);
    ~CMainFrame() override;

    QMdiArea* MdiArea() const { return mdi_; }
    QAction* Action(int commandId) const;

    // Opens a window on a document (its main view, or for a roaming list the text view).
    QMdiSubWindow* AddDocumentWindow(CDocument& doc);
    void AddTextViewWindow(CRLDoc& doc);
    CDocument* ActiveDocument() const;
    // The grid that has the keyboard focus (or the last one that had it).
    GridView* ActiveGrid() const;

    // Restores the stored placement (when one was stored) and shows the frame.
    void RestoreAndShow();
    WindowPlacement CurrentPlacement() const;

    Q_INVOKABLE void UpdateCommands();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QAction* MakeAction(int id, const QString& text, const QList<QKeySequence>& keys = {});
    void BuildMenus();
    void RebuildRecentFiles();
    void OnPrint(bool preview);
    void OnPrintSetup();

    CTessaryApp& app_;
    QMdiArea* mdi_;
    std::map<int, QAction*> actions_;
    QMenu* fileMenu_ = nullptr;
    QMenu* editMenu_ = nullptr;
    QMenu* listMenu_ = nullptr;
    QMenu* windowMenu_ = nullptr;
    QAction* recentSeparator_ = nullptr;
    QList<QAction*> recentActions_;
    std::unique_ptr<QPrinter> printer_;
    bool shownOnce_ = false;
    bool destroying_ = false;
};

}  // namespace Tarn
