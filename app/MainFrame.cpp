#include "app/MainFrame.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QFontDatabase>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPageSetupDialog>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QScreen>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>

#include "app/ExchangeActions.h"
#include "app/ProblemsPanel.h"
#include "app/FindBar.h"
#include "app/RLDoc.h"
#include "app/RLViews.h"
#include "app/CompareWindow.h"
#include "app/OptimizeDialog.h"
#include "app/SelectionWindow.h"
#include "app/TessaryApp.h"
#include "foundation/MessageTable.h"
#include "grid/qt/GridView.h"

namespace Tarn {
namespace {

// The show states and flags the placement is stored with.
constexpr int kShowNormal = 1;
constexpr int kShowMinimized = 2;
constexpr int kShowMaximized = 3;
constexpr int kRestoreToMaximized = 2;

const char* kPlacementSection = "Window Placement";

QString ExpandTabs(const QString& line) {
    QString out;
    for (QChar c : line) {
        if (c == '\t') {
            do out += ' ';
            while (out.size() % 8 != 0);
        } else {
            out += c;
        }
    }
    return out;
}

}  // namespace

// ---- Placement ----------------------------------------------------------------------------------

std::optional<QRect> RestoredRect(const WindowPlacement& p, QSize screen, QSize icon) {
    if (p.x1 == -1 || p.y1 == -1 || p.x2 == -1 || p.y2 == -1) return std::nullopt;
    const int x1 = std::min(p.x1, screen.width() - icon.width());
    const int y1 = std::min(p.y1, screen.height() - icon.height());
    return QRect(QPoint(x1, y1), QPoint(p.x2 - 1, p.y2 - 1));
}

WindowPlacement LoadWindowPlacement() {
    QSettings settings;
    settings.beginGroup(kPlacementSection);
    WindowPlacement p;
    p.flags = settings.value("flags", -1).toInt();
    p.showCmd = settings.value("showCmd", -1).toInt();
    p.x1 = settings.value("x1", -1).toInt();
    p.y1 = settings.value("y1", -1).toInt();
    p.x2 = settings.value("x2", -1).toInt();
    p.y2 = settings.value("y2", -1).toInt();
    return p;
}

void SaveWindowPlacement(const WindowPlacement& p) {
    QSettings settings;
    settings.beginGroup(kPlacementSection);
    settings.setValue("flags", p.flags);
    settings.setValue("showCmd", p.showCmd);
    settings.setValue("x1", p.x1);
    settings.setValue("y1", p.y1);
    settings.setValue("x2", p.x2);
    settings.setValue("y2", p.y2);
}

// ---- Printing -----------------------------------------------------------------------------------

QString PrintDateText(const QDateTime& when) {
    const QDate d = when.date();
    const QTime t = when.time();
    return QString::asprintf("%02d/%02d/%04d %02d:%02d", d.month(), d.day(), d.year(), t.hour(),
                             t.minute());
}

void PrintTextPages(QPrinter& printer, const QString& title, const QString& text,
                    const QDateTime& when) {
    QPainter painter;
    if (!painter.begin(&printer)) return;
    QStringList lines = QString(text).replace("\r\n", "\n").split('\n');
    for (QString& line : lines) line = ExpandTabs(line);
    const QRect page = painter.viewport();
    QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    mono.setPointSizeF(8.5);
    // The system table's lines are long: the font shrinks until the longest one fits the page.
    qsizetype longest = 1;
    for (const QString& line : lines) longest = std::max(longest, line.size());
    const qreal wide = QFontMetricsF(mono, &printer).horizontalAdvance(QString(longest, 'M'));
    if (wide > page.width()) mono.setPointSizeF(std::max(5.0, 8.5 * page.width() / wide));
    painter.setFont(mono);
    const QFontMetrics fm(mono, &printer);
    const int lineHeight = fm.lineSpacing();
    const int top = lineHeight * 3;
    const int linesPerPage = std::max(1, (page.height() - top - lineHeight * 2) / lineHeight);

    const int pages =
        std::max<int>(1, static_cast<int>((lines.size() + linesPerPage - 1) / linesPerPage));
    const QString date = PrintDateText(when);
    for (int p = 0; p < pages; ++p) {
        if (p > 0) printer.newPage();
        painter.drawText(QRect(0, 0, page.width(), lineHeight), Qt::AlignLeft, title);
        painter.drawText(QRect(0, 0, page.width(), lineHeight), Qt::AlignRight, date);
        painter.drawLine(0, lineHeight + lineHeight / 2, page.width(), lineHeight + lineHeight / 2);
        int y = top;
        for (int i = p * linesPerPage;
             i < std::min<int>(static_cast<int>(lines.size()), (p + 1) * linesPerPage); ++i) {
            painter.drawText(0, y + fm.ascent(), lines[i]);
            y += lineHeight;
        }
        painter.drawText(QRect(0, page.height() - lineHeight, page.width(), lineHeight),
                         Qt::AlignHCenter, QObject::tr("Page %1 of %2").arg(p + 1).arg(pages));
    }
    painter.end();
}

// ---- Frame --------------------------------------------------------------------------------------

CMainFrame::CMainFrame(CTessaryApp& app) : app_(app), mdi_(new QMdiArea(this)) {
    setWindowTitle(QString::fromUtf8(MessageText(Msg::MainFrameTitle).data()));
    setObjectName(QStringLiteral("CMainFrame"));
    mdi_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdi_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    mdi_->setViewMode(QMdiArea::SubWindowView);
    mdi_->setDocumentMode(true);
    setCentralWidget(mdi_);
    setAcceptDrops(true);
    resize(1100, 760);
    // The Problems panel follows whichever document is active; it stays hidden until asked for.
    auto* problems = new ProblemsPanel(this);
    addDockWidget(Qt::BottomDockWidgetArea, problems);
    problems->hide();
    BuildMenus();
    statusBar()->showMessage(tr("Ready"));
    // The figures of the active roaming list: counts, size against the limit, CRC.
    auto* listStatus = new QLabel(this);
    listStatus->setObjectName(QStringLiteral("listStatus"));
    statusBar()->addPermanentWidget(listStatus);
    connect(mdi_, &QMdiArea::subWindowActivated, this, &CMainFrame::UpdateCommands);
    connect(mdi_, &QMdiArea::subWindowActivated, this, [this, problems] {
        if (!destroying_) problems->SetDocument(ActiveDocument());
    });
    connect(&app_, &CTessaryApp::recentFilesChanged, this, &CMainFrame::RebuildRecentFiles);
    // Focus also moves while a widget is being destroyed (a grid's cell editor closing clears its
    // focus from its destructor): the commands are brought up to date once that is over, never
    // from inside it, where walking the window's children would meet half-destroyed ones.
    connect(qApp, &QApplication::focusChanged, this, [this] {
        QMetaObject::invokeMethod(this, &CMainFrame::UpdateCommands, Qt::QueuedConnection);
    });
    RebuildRecentFiles();
    UpdateCommands();
}

CMainFrame::~CMainFrame() {
    // Children die after this body; the focus and activation changes they cause must not reach
    // a frame that is half gone.
    destroying_ = true;
    qApp->disconnect(this);
    mdi_->disconnect(this);
    // A header field that loses its focus as the window goes still commits its edit, which
    // moves the document's undo stack.
    for (CDocument* doc : app_.Documents()) doc->UndoStack().disconnect(this);
}

QAction* CMainFrame::Action(int id) const {
    auto it = actions_.find(id);
    return it == actions_.end() ? nullptr : it->second;
}

QAction* CMainFrame::MakeAction(int id, const QString& text, const QList<QKeySequence>& keys) {
    auto* action = new QAction(text, this);
    action->setData(id);
    if (!keys.isEmpty()) action->setShortcuts(keys);
    const QString prompt = CommandPrompt(id);
    action->setStatusTip(prompt.section('\n', 0, 0));
    if (prompt.contains('\n')) action->setToolTip(prompt.section('\n', 1));
    actions_[id] = action;
    return action;
}

void CMainFrame::BuildMenus() {
    auto connectTo = [this](QAction* a, auto fn) { connect(a, &QAction::triggered, this, fn); };
    using K = QKeySequence;
    auto Add = [](QMenu* menu, QAction* action) {
        menu->addAction(action);
        return action;
    };

    // File
    fileMenu_ = menuBar()->addMenu(tr("&File"));
    QMenu* newMenu = fileMenu_->addMenu(tr("&New"));
    connectTo(
        Add(newMenu, MakeAction(Cmd::FileNew, tr("&Roaming List"), {K(Qt::CTRL | Qt::Key_N)})),
        [this] { app_.OnFileNew(); });
    newMenu->addSeparator();
    const struct {
        int id;
        const char* text;
        QKeyCombination key;
        int version;
    } versions[] = {{Cmd::NewIS683E, "IS-683&E", Qt::CTRL | Qt::Key_1, 5},
                    {Cmd::NewIS683D, "IS-683&D", Qt::CTRL | Qt::Key_2, 4},
                    {Cmd::NewIS683C, "IS-683&C", Qt::CTRL | Qt::Key_3, 3},
                    {Cmd::NewIS683B, "IS-683&B", Qt::CTRL | Qt::Key_4, 2},
                    {Cmd::NewIS683A, "IS-683&A", Qt::CTRL | Qt::Key_5, 1}};
    for (const auto& v : versions) {
        const int version = v.version;
        connectTo(Add(newMenu, MakeAction(v.id, tr(v.text), {K(v.key)})),
                  [this, version] { app_.OnNewRoamingList(version); });
    }
    newMenu->addSeparator();
    const struct {
        int id;
        const char* text;
        QKeyCombination key;
        int templateNumber;
        int plmnKind;
    } mmss[] = {{Cmd::NewMspl, "&MSPL", Qt::ALT | Qt::Key_S, 3, 0},
                {Cmd::NewMlpl, "M&LPL", Qt::ALT | Qt::Key_L, 5, 0},
                {Cmd::NewEhplmn, "E&HPLMN", Qt::ALT | Qt::Key_E, 6, 1},
                {Cmd::NewOplmn, "&OPLMN", Qt::ALT | Qt::Key_O, 6, 2},
                {Cmd::NewUplmn, "&UPLMN", Qt::ALT | Qt::Key_U, 6, 3},
                {Cmd::New3GppBst, "3&GPP BST", Qt::ALT | Qt::Key_G, 4, 0},
                {Cmd::NewTechOrder, "&Technology Order", Qt::ALT | Qt::Key_T, 7, 0},
                {Cmd::NewLteAvailable, "LTE &Available", Qt::ALT | Qt::Key_A, 8, 0}};
    for (const auto& m : mmss) {
        const int number = m.templateNumber;
        const int kind = m.plmnKind;
        connectTo(Add(newMenu, MakeAction(m.id, tr(m.text), {K(m.key)})), [this, number, kind] {
            if (kind)
                app_.OnNewPlmn(static_cast<uint8_t>(kind));
            else
                app_.OnNewOfTemplate(number);
        });
    }
    connectTo(Add(fileMenu_, MakeAction(Cmd::FileOpen, tr("&Open..."), {K(Qt::CTRL | Qt::Key_O)})),
              [this] { app_.OnFileOpen(); });
    connectTo(Add(fileMenu_, MakeAction(Cmd::FileClose, tr("&Close"), {K(Qt::CTRL | Qt::Key_W)})),
              [this] {
                  if (QMdiSubWindow* w = mdi_->activeSubWindow()) w->close();
              });
    connectTo(Add(fileMenu_, MakeAction(Cmd::FileSave, tr("&Save"), {K(Qt::CTRL | Qt::Key_S)})),
              [this] {
                  if (CDocument* d = ActiveDocument()) d->DoFileSave();
              });
    connectTo(Add(fileMenu_, MakeAction(Cmd::FileSaveAs, tr("Save &As..."))), [this] {
        if (CDocument* d = ActiveDocument()) d->DoSave({});
    });
    fileMenu_->addSeparator();
    QMenu* concat = fileMenu_->addMenu(tr("Concatenated PR&L"));
    connectTo(Add(concat, MakeAction(Cmd::JoinConcatPrl, tr("&Join..."))),
              [this] { app_.OnJoinWizard(); });
    connectTo(Add(concat, MakeAction(Cmd::SplitConcatPrl, tr("&Split..."))),
              [this] { app_.OnSplitWizard(); });
    QMenu* exportMenu = fileMenu_->addMenu(tr("Ex&port"));
    connectTo(Add(exportMenu, MakeAction(Cmd::ExportCsv, tr("&CSV..."))), [this] {
        if (auto* d = qobject_cast<CRLDoc*>(ActiveDocument())) ExportListCsv(*d);
    });
    connectTo(Add(exportMenu, MakeAction(Cmd::ExportXlsx, tr("&XLSX..."))), [this] {
        if (auto* d = qobject_cast<CRLDoc*>(ActiveDocument())) ExportListXlsx(*d);
    });
    connectTo(Add(fileMenu_, MakeAction(Cmd::ImportCsv, tr("&Import CSV..."))),
              [this] { ImportListCsv(app_, this); });
    connectTo(Add(fileMenu_, MakeAction(Cmd::ProviderDatabase, tr("Provider &Database..."))),
              [this] { ChooseProviderDatabase(this); });
    fileMenu_->addSeparator();
    connectTo(
        Add(fileMenu_, MakeAction(Cmd::TextView, tr("&Text View"), {K(Qt::CTRL | Qt::Key_T)})),
        [this] {
            if (auto* d = qobject_cast<CRLDoc*>(ActiveDocument())) AddTextViewWindow(*d);
        });
    fileMenu_->addAction(tr("Chec&k..."), this, [this] {
        auto* d = qobject_cast<CRLDoc*>(ActiveDocument());
        auto* problems = findChild<ProblemsPanel*>();
        if (!d || !problems) return;
        FileDialogSpec dialog;
        dialog.title = tr("Check with a Policy");
        dialog.filter = tr("Policy Files (*.json)|*.json|All Files (*.*)|*.*||");
        const QString path = Prompts().GetOpenFileName(this, dialog);
        if (path.isEmpty()) return;
        QString error;
        if (!problems->UsePolicy(path, error)) {
            Prompts().Message(this, error, MsgIcon::Error);
            return;
        }
        problems->SetDocument(d);
        problems->show();
        problems->raise();
        problems->Refresh();
    });
    connectTo(
        Add(fileMenu_, MakeAction(Cmd::FilePrint, tr("&Print..."), {K(Qt::CTRL | Qt::Key_P)})),
        [this] { OnPrint(false); });
    connectTo(Add(fileMenu_, MakeAction(Cmd::FilePrintPreview, tr("Print Pre&view"))),
              [this] { OnPrint(true); });
    connectTo(Add(fileMenu_, MakeAction(Cmd::FilePrintSetup, tr("P&rint Setup..."))),
              [this] { OnPrintSetup(); });
    recentSeparator_ = fileMenu_->addSeparator();
    fileMenu_->addSeparator();
    connectTo(Add(fileMenu_, MakeAction(Cmd::AppExit, tr("E&xit"), {K(Qt::CTRL | Qt::Key_Q)})),
              [this] { close(); });

    // Edit
    editMenu_ = menuBar()->addMenu(tr("E&dit"));
    connectTo(Add(editMenu_, MakeAction(Cmd::EditUndo, tr("&Undo"),
                                        {K(Qt::CTRL | Qt::Key_Z), K(Qt::ALT | Qt::Key_Backspace)})),
              [this] {
                  if (CDocument* d = ActiveDocument()) d->UndoStack().undo();
              });
    connectTo(
        Add(editMenu_, MakeAction(Cmd::EditRedo, tr("&Redo"),
                                  {K(Qt::CTRL | Qt::Key_Y), K(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)})),
        [this] {
            if (CDocument* d = ActiveDocument()) d->UndoStack().redo();
        });
    editMenu_->addSeparator();
    auto onGrid = [this](void (GridView::*fn)()) {
        return [this, fn] {
            if (GridView* g = ActiveGrid()) (g->*fn)();
        };
    };
    connectTo(Add(editMenu_, MakeAction(Cmd::EditCut, tr("Cu&t"),
                                        {K(Qt::CTRL | Qt::Key_X), K(Qt::SHIFT | Qt::Key_Delete)})),
              onGrid(&GridView::Cut));
    connectTo(Add(editMenu_, MakeAction(Cmd::EditCopy, tr("&Copy"),
                                        {K(Qt::CTRL | Qt::Key_C), K(Qt::CTRL | Qt::Key_Insert)})),
              onGrid(&GridView::Copy));
    connectTo(Add(editMenu_, MakeAction(Cmd::EditPaste, tr("&Paste"),
                                        {K(Qt::CTRL | Qt::Key_V), K(Qt::SHIFT | Qt::Key_Insert)})),
              onGrid(&GridView::Paste));
    editMenu_->addSeparator();
    connectTo(
        Add(editMenu_, MakeAction(Cmd::InsertRows, tr("&Insert Rows"), {K(Qt::CTRL | Qt::Key_I)})),
        onGrid(&GridView::InsertRowsAtSelection));
    connectTo(Add(editMenu_, MakeAction(Cmd::AppendRow, tr("A&dd Row"), {K(Qt::CTRL | Qt::Key_R)})),
              onGrid(&GridView::AppendRow));
    connectTo(Add(editMenu_,
                  MakeAction(Cmd::DeleteRows, tr("De&lete Rows"), {K(Qt::CTRL | Qt::Key_Delete)})),
              onGrid(&GridView::DeleteSelectedRows));
    // Finding records in a roaming list window.
    editMenu_->addSeparator();
    auto onListView = [this](auto fn) {
        return [this, fn] {
            if (auto* child = qobject_cast<CMDIChildBase*>(mdi_->activeSubWindow()))
                if (auto* view = qobject_cast<CRLView*>(child->widget())) fn(*view);
        };
    };
    const struct {
        int id;
        const char* text;
        QKeySequence key;
        const char* prompt;
        void (*run)(CRLView&);
    } finding[] = {
        {Cmd::EditFind, QT_TR_NOOP("&Find..."), K(Qt::CTRL | Qt::Key_F),
         QT_TR_NOOP("Find records by SID, NID, MCC-MNC, subnet, channel or operator\nFind"),
         [](CRLView& v) { v.ShowFind(); }},
        {Cmd::EditFindNext, QT_TR_NOOP("Find &Next"), K(Qt::Key_F3),
         QT_TR_NOOP("Go to the next record found\nFind Next"), [](CRLView& v) { v.FindNext(false); }},
        {Cmd::EditFindPrevious, QT_TR_NOOP("Find Pre&vious"), K(Qt::SHIFT | Qt::Key_F3),
         QT_TR_NOOP("Go to the previous record found\nFind Previous"),
         [](CRLView& v) { v.FindNext(true); }},
        {Cmd::EditGoTo, QT_TR_NOOP("&Go to Record..."), K(Qt::CTRL | Qt::Key_G),
         QT_TR_NOOP("Go to a system or acquisition record by number, or to a GEO\nGo to Record"),
         [](CRLView& v) { v.ShowGoTo(); }},
    };
    for (const auto& f : finding) {
        QAction* a = Add(editMenu_, MakeAction(f.id, tr(f.text), {f.key}));
        const QString prompt = tr(f.prompt);
        a->setStatusTip(prompt.section('\n', 0, 0));
        a->setToolTip(prompt.section('\n', 1));
        connectTo(a, onListView(f.run));
    }

    // Roaming list
    listMenu_ = menuBar()->addMenu(tr("&Roaming List"));
    connectTo(Add(listMenu_, MakeAction(Cmd::TypeConversion, tr("RL Type &Conversion..."))),
              [this] {
                  if (auto* d = qobject_cast<CRLDoc*>(ActiveDocument())) d->OnTypeConversion();
              });
    listMenu_->addAction(tr("Simulate &Selection..."), this, [this] {
        auto* d = qobject_cast<CRLDoc*>(ActiveDocument());
        if (!d) return;
        // One window per list: asking again brings it back.
        for (auto* w : findChildren<SelectionWindow*>())
            if (w->Document() == d) {
                w->show();
                w->raise();
                w->activateWindow();
                return;
            }
        auto* w = new SelectionWindow(*d, this);
        w->show();
    });
    listMenu_->addAction(tr("Co&mpare With..."), this, [this] {
        if (auto* d = qobject_cast<CRLDoc*>(ActiveDocument())) CompareWindow::Ask(*d, app_, this);
    });
    listMenu_->addAction(tr("&Optimize..."), this, [this] {
        if (auto* d = qobject_cast<CRLDoc*>(ActiveDocument())) OptimizeDocument(*d, this);
    });

    // View
    QMenu* view = menuBar()->addMenu(tr("&View"));
    QAction* statusBarAction = view->addAction(tr("&Status Bar"));
    statusBarAction->setCheckable(true);
    statusBarAction->setChecked(true);
    connect(statusBarAction, &QAction::toggled, statusBar(), &QStatusBar::setVisible);
    if (auto* problems = findChild<ProblemsPanel*>()) view->addAction(problems->toggleViewAction());

    // Window
    windowMenu_ = menuBar()->addMenu(tr("&Window"));
    connectTo(Add(windowMenu_, MakeAction(Cmd::WindowCascade, tr("&Cascade"))),
              [this] { mdi_->cascadeSubWindows(); });
    connectTo(Add(windowMenu_, MakeAction(Cmd::WindowTile, tr("&Tile"))),
              [this] { mdi_->tileSubWindows(); });
    connectTo(Add(windowMenu_, MakeAction(Cmd::WindowArrange, tr("&Arrange Icons"))), [this] {
        for (QMdiSubWindow* w : mdi_->subWindowList())
            if (w->isMinimized()) w->showMinimized();
    });
    connectTo(Add(windowMenu_, MakeAction(Cmd::NextPane, tr("Ne&xt Window"), {K(Qt::Key_F6)})),
              [this] { mdi_->activateNextSubWindow(); });
    connectTo(Add(windowMenu_,
                  MakeAction(Cmd::PrevPane, tr("Pre&vious Window"), {K(Qt::SHIFT | Qt::Key_F6)})),
              [this] { mdi_->activatePreviousSubWindow(); });

    // Help
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    connectTo(Add(help, MakeAction(Cmd::HelpTopics, tr("&Help Topics"), {K(Qt::Key_F1)})),
              [this] { app_.OnHelpTopics(); });
    connectTo(Add(help, MakeAction(Cmd::VersionHistory, tr("Version History(readme.txt)"))),
              [this] { app_.OnVersionHistory(); });
    help->addSeparator();
    connectTo(Add(help, MakeAction(Cmd::AppAbout, tr("&About Tessary..."))),
              [this] { app_.OnAppAbout(); });
}

void CMainFrame::RebuildRecentFiles() {
    for (QAction* a : recentActions_) {
        fileMenu_->removeAction(a);
        a->deleteLater();
    }
    recentActions_.clear();
    const QStringList files = app_.RecentFiles();
    QAction* before = nullptr;
    const auto actions = fileMenu_->actions();
    const qsizetype at = actions.indexOf(recentSeparator_);
    if (at >= 0 && at + 1 < actions.size()) before = actions[at + 1];
    for (qsizetype i = 0; i < files.size(); ++i) {
        auto* a = new QAction(
            QStringLiteral("&%1 %2").arg(i + 1).arg(QFileInfo(files[i]).fileName()), this);
        a->setStatusTip(files[i]);
        const QString path = files[i];
        connect(a, &QAction::triggered, this, [this, path] { app_.OpenDocumentFile(path); });
        fileMenu_->insertAction(before, a);
        recentActions_ << a;
    }
    recentSeparator_->setVisible(!files.isEmpty());
}

QMdiSubWindow* CMainFrame::AddDocumentWindow(CDocument& doc) {
    auto* child = new CMDIChildBase(doc, doc.CreateMainView());
    mdi_->addSubWindow(child);
    connect(child, &CMDIChildBase::documentClosing, &app_, &CTessaryApp::CloseDocument);
    child->resize(mdi_->size() * 0.9);
    // Children open maximised, as the first one does when the frame is shown.
    child->showMaximized();
    mdi_->setActiveSubWindow(child);
    if (child->widget()) child->widget()->setFocus();
    if (auto* view = qobject_cast<CRLView*>(child->widget()))
        connect(view, &CRLView::statusTextChanged, this, [this, child](const QString& text) {
            if (mdi_->activeSubWindow() == child)
                if (auto* label = findChild<QLabel*>(QStringLiteral("listStatus"))) label->setText(text);
        });
    UpdateCommands();
    return child;
}

void CMainFrame::AddTextViewWindow(CRLDoc& doc) {
    auto view = std::make_unique<CRLViewText>(doc);
    if (!view->Refresh()) return;
    auto* child = new CMDIChildBase(doc, std::move(view));
    child->SetSecondary(true);
    child->UpdateTitle();
    mdi_->addSubWindow(child);
    child->showMaximized();
    mdi_->setActiveSubWindow(child);
}

CDocument* CMainFrame::ActiveDocument() const {
    QMdiSubWindow* w = mdi_->activeSubWindow();
    if (!w && !mdi_->subWindowList().isEmpty()) w = mdi_->currentSubWindow();
    auto* child = qobject_cast<CMDIChildBase*>(w);
    return child ? child->Document() : nullptr;
}

GridView* CMainFrame::ActiveGrid() const {
    for (QWidget* w = QApplication::focusWidget(); w; w = w->parentWidget())
        if (auto* g = qobject_cast<GridView*>(w)) return g;
    // Without focus in a grid, the acquisition grid of the active roaming list.
    if (auto* child = qobject_cast<CMDIChildBase*>(mdi_->activeSubWindow()))
        if (auto* view = qobject_cast<CRLView*>(child->widget())) return view->AcqView()->Grid();
    return nullptr;
}

void CMainFrame::UpdateCommands() {
    if (destroying_) return;
    CDocument* doc = ActiveDocument();
    // A maximised child shows no title of its own: the frame carries it.
    const QString base = QString::fromUtf8(MessageText(Msg::MainFrameTitle).data());
    QMdiSubWindow* active = mdi_->activeSubWindow();
    setWindowTitle(active ? base + " - " + active->windowTitle() : base);
    auto* rl = qobject_cast<CRLDoc*>(doc);
    const bool any = doc != nullptr;
    const bool grids = rl && !rl->IsTextView();
    for (int id :
         {Cmd::FileClose, Cmd::FileSave, Cmd::FileSaveAs, Cmd::FilePrint, Cmd::FilePrintPreview})
        if (QAction* a = Action(id)) a->setVisible(any);
    if (QAction* a = Action(Cmd::TextView)) {
        a->setVisible(any);
        a->setEnabled(rl != nullptr);
    }
    if (QAction* a = Action(Cmd::VersionHistory)) a->setVisible(!any);
    for (int id : {Cmd::ExportCsv, Cmd::ExportXlsx})
        if (QAction* a = Action(id)) a->setEnabled(grids);
    if (QAction* a = Action(Cmd::FileNew)) a->setEnabled(!app_.IsCommandLineMode());
    windowMenu_->menuAction()->setVisible(any);
    listMenu_->menuAction()->setVisible(grids);
    // Every document with grids edits through the same menu; only a text view has nothing to edit.
    editMenu_->menuAction()->setVisible(any && !(rl && rl->IsTextView()));
    {
        auto* child = qobject_cast<CMDIChildBase*>(active);
        auto* view = child ? qobject_cast<CRLView*>(child->widget()) : nullptr;
        for (int id : {Cmd::EditFind, Cmd::EditFindNext, Cmd::EditFindPrevious, Cmd::EditGoTo})
            if (QAction* a = Action(id)) a->setVisible(view != nullptr);
        if (auto* label = findChild<QLabel*>(QStringLiteral("listStatus")))
            label->setText(view ? view->Facts().StatusText() : QString());
    }
    if (QAction* a = Action(Cmd::EditUndo)) a->setEnabled(doc && doc->UndoStack().canUndo());
    if (QAction* a = Action(Cmd::EditRedo)) a->setEnabled(doc && doc->UndoStack().canRedo());
    if (doc && !doc->property("tarnWatched").toBool()) {
        doc->setProperty("tarnWatched", true);
        connect(&doc->UndoStack(), &QUndoStack::indexChanged, this, &CMainFrame::UpdateCommands);
    }
}

void CMainFrame::OnPrint(bool preview) {
    CDocument* doc = ActiveDocument();
    if (!doc) return;
    QString text;
    if (!doc->GetPrintText(text)) return;
    if (!printer_) printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    const QString title = doc->Title();
    const QDateTime now = QDateTime::currentDateTime();
    if (preview) {
        QPrintPreviewDialog dialog(printer_.get(), this);
        dialog.setWindowTitle(tr("Print Preview - %1").arg(title));
        connect(&dialog, &QPrintPreviewDialog::paintRequested, this,
                [&](QPrinter* printer) { PrintTextPages(*printer, title, text, now); });
        Prompts().ExecDialog(dialog);
        return;
    }
    QPrintDialog dialog(printer_.get(), this);
    if (Prompts().ExecDialog(dialog) == QDialog::Accepted)
        PrintTextPages(*printer_, title, text, now);
}

void CMainFrame::OnPrintSetup() {
    if (!printer_) printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    QPageSetupDialog dialog(printer_.get(), this);
    Prompts().ExecDialog(dialog);
}

WindowPlacement CMainFrame::CurrentPlacement() const {
    WindowPlacement p;
    const QRect r = normalGeometry().isValid() ? normalGeometry() : geometry();
    p.x1 = r.left();
    p.y1 = r.top();
    p.x2 = r.right() + 1;
    p.y2 = r.bottom() + 1;
    p.flags = 0;
    if (isMaximized()) {
        p.showCmd = kShowMaximized;
    } else if (isMinimized()) {
        p.showCmd = kShowMinimized;
        if (windowState() & Qt::WindowMaximized) p.flags = kRestoreToMaximized;
    } else {
        p.showCmd = kShowNormal;
    }
    return p;
}

void CMainFrame::RestoreAndShow() {
    const WindowPlacement p = LoadWindowPlacement();
    QScreen* screen = QGuiApplication::primaryScreen();
    const QSize screenSize = screen ? screen->size() : QSize(1024, 768);
    const int icon = style()->pixelMetric(QStyle::PM_LargeIconSize);
    if (auto rect = RestoredRect(p, screenSize, QSize(icon, icon))) setGeometry(*rect);
    if (p.showCmd == kShowMaximized ||
        (p.showCmd == kShowMinimized && (p.flags & kRestoreToMaximized)))
        showMaximized();
    else
        show();
}

void CMainFrame::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (shownOnce_) return;
    shownOnce_ = true;
    if (QMdiSubWindow* w = mdi_->activeSubWindow(); w && !w->isMaximized()) w->showMaximized();
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    if (!app_.SaveAllModified()) {
        event->ignore();
        return;
    }
    if (isVisible()) SaveWindowPlacement(CurrentPlacement());
    // Documents were asked about already: their windows now close without asking again.
    for (QMdiSubWindow* w : mdi_->subWindowList()) {
        if (auto* child = qobject_cast<CMDIChildBase*>(w)) {
            CDocument* doc = child->Document();
            child->Detach();
            if (doc) app_.CloseDocument(doc);
        }
        w->close();
    }
    QMainWindow::closeEvent(event);
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void CMainFrame::dropEvent(QDropEvent* event) {
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) app_.OpenDocumentFile(url.toLocalFile());
    event->acceptProposedAction();
}

}  // namespace Tarn
