#include "app/TessaryApp.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QSettings>
#include <QUrl>
#include <QVBoxLayout>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "app/MainFrame.h"
#include "app/Recovery.h"
#include "app/RLDoc.h"
#include "app/mmss/MmssDocuments.h"
#include "app/wizards/ConcatPrlWizards.h"
#include "foundation/MessageTable.h"
#include "roaming_list/RLManager.h"

namespace Tarn {
namespace {

CTessaryApp* g_app = nullptr;
std::unique_ptr<CRLClassFactory> g_versionFactory;

QString FromStd(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

// Prompts of the framework's own commands, which the message table does not carry.
QString StandardPrompt(int id) {
    switch (id) {
        case Cmd::FileNew:
            return QObject::tr("Create a new roaming list\nNew");
        case Cmd::FileOpen:
            return QObject::tr("Open an existing document\nOpen");
        case Cmd::FileClose:
            return QObject::tr("Close the active document\nClose");
        case Cmd::FileSave:
            return QObject::tr("Save the active document\nSave");
        case Cmd::FileSaveAs:
            return QObject::tr("Save the active document with a new name\nSave As");
        case Cmd::FilePrintSetup:
            return QObject::tr("Change the printer and printing options\nPage Setup");
        case Cmd::FilePrint:
            return QObject::tr("Print the active document\nPrint");
        case Cmd::FilePrintPreview:
            return QObject::tr("Display full pages\nPrint Preview");
        case Cmd::AppExit:
            return QObject::tr("Quit the application; prompts to save documents\nExit");
        case Cmd::AppAbout:
            return QObject::tr("Display program information, version number and copyright\nAbout");
        case Cmd::HelpTopics:
            return QObject::tr("Tell where the user guide can be found\nHelp Topics");
        case Cmd::VersionHistory:
            return QObject::tr("Open the version history\nVersion History");
        case Cmd::EditCopy:
            return QObject::tr("Copy the selection and put it on the Clipboard\nCopy");
        case Cmd::EditCut:
            return QObject::tr("Cut the selection and put it on the Clipboard\nCut");
        case Cmd::EditPaste:
            return QObject::tr("Insert Clipboard contents\nPaste");
        case Cmd::EditUndo:
            return QObject::tr("Undo the last action\nUndo");
        case Cmd::EditRedo:
            return QObject::tr("Redo the previously undone action\nRedo");
        case Cmd::WindowCascade:
            return QObject::tr("Arrange windows so they overlap\nCascade Windows");
        case Cmd::WindowTile:
            return QObject::tr("Arrange windows as non-overlapping tiles\nTile Windows");
        case Cmd::WindowArrange:
            return QObject::tr("Arrange icons at the bottom of the window\nArrange Icons");
        case Cmd::TypeConversion:
            return QObject::tr("Convert this roaming list to another version\nRL Type Conversion");
        case Cmd::InsertRows:
            return QObject::tr("Insert empty rows above the selected ones\nInsert Rows");
        case Cmd::AppendRow:
            return QObject::tr("Add an empty row at the end of the table\nAdd Row");
        case Cmd::DeleteRows:
            return QObject::tr("Delete the selected rows\nDelete Rows");
        default:
            return {};
    }
}

// What the MMSS templates say until their documents exist.
QString KindName(int templateNumber) {
    switch (templateNumber) {
        case 3:
            return QStringLiteral("MSPL");
        case 4:
            return QStringLiteral("3GPP BST");
        case 5:
            return QStringLiteral("MLPL");
        case 6:
            return QStringLiteral("PLMN list");
        case 7:
            return QStringLiteral("Technology Order");
        case 8:
            return QStringLiteral("LTE Available");
        default:
            return QStringLiteral("Roaming List");
    }
}

int TemplateNumberOfKind(FileKind kind) {
    return kind == FileKind::None ? 0 : static_cast<int>(kind);
}

const char* kHelpAddress = "https://halvane.example.com/tarn/user-guide";

}  // namespace

QString CommandPrompt(int id) {
    if (HasMessage(static_cast<unsigned>(id)))
        return FromStd(MessageText(static_cast<unsigned>(id)));
    return StandardPrompt(id);
}

void ChooseHeadlessPlatform(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::string_view(argv[i]) == "-platform" || std::string_view(argv[i]) == "--platform")
            return;
    auto set = [](const char* name) {
        const char* v = std::getenv(name);
        return v && *v;
    };
    if (set("DISPLAY") || set("WAYLAND_DISPLAY") || set("QT_QPA_PLATFORM")) return;
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

// ---- Current version --------------------------------------------------------------------------

void ChangeCurrentVersion(int version) {
    if (version != GetCurrentVersion()) g_versionFactory.reset();
    SetCurrentVersion(version);
}

const CRLClassFactory& CurrentVersionFactory() {
    // A version set past ChangeCurrentVersion must not find the old version's object either.
    const int v = GetCurrentVersion();
    const int wanted = v >= kMinVersion && v < kMaxVersion ? v : kMaxVersion;
    if (g_versionFactory && g_versionFactory->GetVersion() != wanted) g_versionFactory.reset();
    if (!g_versionFactory) g_versionFactory = CreateClassFactory(v);
    return *g_versionFactory;
}

const CRLClassFactory* CachedVersionFactory() {
    return g_versionFactory.get();
}

// ---- Application ------------------------------------------------------------------------------

CTessaryApp::CTessaryApp(QObject* parent) : QObject(parent) {
    g_app = this;
    QCoreApplication::setOrganizationName(QStringLiteral("Halvane"));
    QCoreApplication::setApplicationName(QStringLiteral("Tarn"));
    launcher_ = [](const QString& path) {
        return QFileInfo::exists(path) && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    };
    RegisterTemplates();
}

CTessaryApp::~CTessaryApp() {
    // Windows go before the documents they show.
    if (frame_) {
        for (QMdiSubWindow* w : frame_->MdiArea()->subWindowList()) {
            if (auto* child = qobject_cast<CMDIChildBase*>(w)) child->Detach();
        }
        frame_.reset();
    }
    documents_.clear();
    if (g_app == this) g_app = nullptr;
}

CTessaryApp* CTessaryApp::Instance() {
    return g_app;
}

void CTessaryApp::RegisterTemplates() {
    auto rl = [](bool text) {
        return [text](CDocTemplate& t) -> std::unique_ptr<CDocument> {
            return std::make_unique<CRLDoc>(t, text);
        };
    };
    templates_.push_back(std::make_unique<CDocTemplate>(Msg::TemplateRoamingList, rl(false)));
    templates_.push_back(std::make_unique<CDocTemplate>(Msg::TemplateText, rl(true)));
    templates_.push_back(std::make_unique<CDocTemplate>(Msg::TemplateMspl, App::CreateMsplDocument));
    templates_.push_back(
        std::make_unique<CDocTemplate>(Msg::TemplateBst3Gpp, App::CreateBst3GppDocument));
    templates_.push_back(std::make_unique<CDocTemplate>(Msg::TemplateMlpl, App::CreateMlplDocument));
    templates_.push_back(std::make_unique<CDocTemplate>(Msg::TemplatePlmn, App::CreatePlmnDocument));
    templates_.push_back(
        std::make_unique<CDocTemplate>(Msg::TemplateTot, App::CreateTechOrderDocument));
    templates_.push_back(std::make_unique<CDocTemplate>(Msg::TemplateLaf, App::CreateLafDocument));
}

CDocTemplate* CTessaryApp::Template(int number) const {
    if (number < 1 || number > static_cast<int>(templates_.size())) return nullptr;
    return templates_[static_cast<size_t>(number - 1)].get();
}

int CTessaryApp::TemplateNumber(const CDocTemplate* tmpl) const {
    for (size_t i = 0; i < templates_.size(); ++i)
        if (templates_[i].get() == tmpl) return static_cast<int>(i) + 1;
    return 0;
}

CDocTemplate* CTessaryApp::TemplateByExtension(const QString& path) const {
    return Template(TemplateNumberOfKind(KindByExtension(path.toStdString())));
}

CDocTemplate* CTessaryApp::TemplateForOpen(const QString& path) const {
    return Template(TemplateNumberOfKind(KindForOpen(path.toStdString())));
}

bool CTessaryApp::InitInstance(const QStringList& arguments, bool showWindow) {
    std::vector<std::string> params;
    for (const QString& a : arguments) params.push_back(a.toStdString());
    cmdInfo_.Parse(params);
    const StartupRequest req = DecideStartup(cmdInfo_);
    if (req.mode == StartupRequest::Mode::Fail) {
        std::fprintf(stderr, "tarn: %s\n", req.error.c_str());
        exitCode_ = 2;
        return false;
    }
    first_ = QString::fromStdString(req.first);
    second_ = QString::fromStdString(req.second);
    if (req.mode == StartupRequest::Mode::CommandLine) {
        commandLineMode_ = true;
        option_ = QString::fromStdString(req.option);
    }

    frame_ = std::make_unique<CMainFrame>(*this);
    CDocument::SetDefaultDialogParent(frame_.get());

    if (commandLineMode_) {
        // The frame is never shown: the action runs once the event loop starts, then the program
        // ends by itself.
        QMetaObject::invokeMethod(
            this,
            [this] {
                static StderrPrompts stderrPrompts;
                UiPrompts* previous = SetPrompts(&stderrPrompts);
                if (previous) SetPrompts(previous);  // a test's prompts stay in force
                exitCode_ = RunCommandLine();
                QCoreApplication::exit(exitCode_);
            },
            Qt::QueuedConnection);
        return true;
    }

    if (showWindow) frame_->RestoreAndShow();
    // Unsaved work is kept in recovery copies, and what a session that did not end cleanly left
    // is offered back before anything else.
    recovery_ = new RecoveryManager(*this);
    const bool restored = !recovery_->OfferRestore(frame_.get()).empty();
    if (req.first.empty()) {
        if (restored) return true;
        OpenWithTemplate(Template(1), {});
    } else if (CDocTemplate* tmpl = TemplateByExtension(first_)) {
        OpenWithTemplate(tmpl, first_);
    } else {
        Prompts().Message(frame_.get(), FromStd(MessageText(Msg::NotRecognizedFormat)),
                          MsgIcon::Error);
    }
    return true;
}

int CTessaryApp::RunCommandLine() {
    const FileKind kind = CommandLineKind(first_.toStdString(), second_.toStdString());
    if (kind != FileKind::RoamingList) return App::RunMmssCommandLine(kind, option_, first_, second_);
    exitCode_ = 0;
    std::unique_ptr<CDocument> doc = Template(1)->CreateDocument();
    if (!doc || !doc->OnNewDocument()) return exitCode_ ? exitCode_ : 1;
    return exitCode_;
}

CDocument* CTessaryApp::OpenDocumentFile(const QString& path) {
    CDocTemplate* tmpl = TemplateForOpen(path);
    if (!tmpl) {
        Prompts().Message(frame_.get(), FromStd(MessageText(Msg::NotRecognizedFormat)),
                          MsgIcon::Error);
        return nullptr;
    }
    return OpenWithTemplate(tmpl, path);
}

CDocument* CTessaryApp::OpenWithTemplate(CDocTemplate* tmpl, const QString& path) {
    if (!tmpl) return nullptr;
    if (!path.isEmpty()) {
        const QString wanted = QFileInfo(path).absoluteFilePath();
        for (const auto& doc : documents_) {
            if (!doc->PathName().isEmpty() &&
                QFileInfo(doc->PathName()).absoluteFilePath() == wanted &&
                &doc->Template() == tmpl) {
                const auto windows = doc->Windows();
                if (frame_ && !windows.empty())
                    frame_->MdiArea()->setActiveSubWindow(windows.front());
                return doc.get();
            }
        }
    }
    std::unique_ptr<CDocument> doc = tmpl->CreateDocument();
    if (!doc) {
        Prompts().Message(
            frame_.get(),
            tr("%1 documents are not available yet.").arg(KindName(TemplateNumber(tmpl))),
            MsgIcon::Information);
        return nullptr;
    }
    if (path.isEmpty()) {
        doc->SetTitle(tmpl->NextUntitledTitle());
        if (!doc->OnNewDocument()) return nullptr;
    } else {
        if (!doc->OnOpenDocument(path)) return nullptr;
        doc->SetPathName(path);
        doc->SetModifiedFlag(false);
        AddToRecentFiles(QFileInfo(path).absoluteFilePath());
    }
    return AddDocument(std::move(doc));
}

CDocument* CTessaryApp::AddDocument(std::unique_ptr<CDocument> doc) {
    CDocument* raw = doc.get();
    documents_.push_back(std::move(doc));
    if (frame_) frame_->AddDocumentWindow(*raw);
    raw->OnViewsReady();
    if (recovery_) recovery_->Track(*raw);
    emit documentsChanged();
    return raw;
}

std::vector<CDocument*> CTessaryApp::Documents() const {
    std::vector<CDocument*> out;
    for (const auto& d : documents_) out.push_back(d.get());
    return out;
}

void CTessaryApp::CloseDocument(CDocument* doc) {
    for (auto it = documents_.begin(); it != documents_.end(); ++it) {
        if (it->get() == doc) {
            if (recovery_) recovery_->Forget(doc);
            // Deleted once the window that is closing it has finished.
            it->release()->deleteLater();
            documents_.erase(it);
            emit documentsChanged();
            return;
        }
    }
}

bool CTessaryApp::SaveAllModified() {
    for (const auto& d : documents_)
        if (!d->SaveModified()) return false;
    return true;
}

// ---- Commands ---------------------------------------------------------------------------------

void CTessaryApp::OnFileNew() {
    if (textMode_) {
        OpenWithTemplate(Template(2), {});
        return;
    }
    OnNewRoamingList(5);
}

void CTessaryApp::OnNewRoamingList(int version) {
    ChangeCurrentVersion(version);
    OpenWithTemplate(Template(1), {});
}

void CTessaryApp::OnNewPlmn(uint8_t kind) {
    plmnKind_ = kind;
    OpenWithTemplate(Template(6), {});
}

void CTessaryApp::OnNewOfTemplate(int number) {
    OpenWithTemplate(Template(number), {});
}

const QString& CTessaryApp::OpenFilter() {
    static const QString filter = QStringLiteral(
        "Roaming Lists (*.prl,*.rl*,*.bin,*.hin,*.hrl)|*.prl;*.rl*;*.bin;*.hin;*.hrl|Mspl Files "
        "(*.mspl)|*.mspl|Mlpl Files (*.mlpl)|*.mlpl|Plmn Files (*.ehplmn, *.oplmn, "
        "*.uplmn)|*.ehplmn; *.oplmn; *.uplmn|3GppBst Files (*.Bst3Gpp)|*.Bst3Gpp|Technology Order "
        "(*.tot)|*.tot|LTE Available (*.laf)|*.laf|Text Files (*.txt)|*.txt|All Files "
        "(*.*)|*.*||");
    return filter;
}

QString CTessaryApp::RoamingListFilter() {
    return QStringLiteral(
        "Roaming Lists (*.prl,*.rl*,*.bin,*.hin,*.hrl)|*.prl;*.rl*;*.bin;*.hin;*.hrl|Text Files "
        "(*.txt)|*.txt|All Files (*.*)|*.*||");
}

void CTessaryApp::OnFileOpen() {
    FileDialogSpec request;
    request.title = tr("Open");
    request.filter = OpenFilter();
    request.defaultSuffix = QStringLiteral("prl");
    request.fileMustExist = true;
    const QString path = Prompts().GetOpenFileName(frame_.get(), request);
    if (!path.isEmpty()) OpenDocumentFile(path);
}

QString CTessaryApp::HelpTopicsText() {
    return QStringLiteral("Tarn User Guide can be downloaded at ") + kHelpAddress + " \n";
}

void CTessaryApp::OnHelpTopics() {
    Prompts().Message(frame_.get(), HelpTopicsText(), MsgIcon::Information);
}

QString CTessaryApp::ReadmePath(const QString& programPath) {
    QString path = QDir::fromNativeSeparators(programPath);
    for (int i = 0; i < 2; ++i) {
        const qsizetype slash = path.lastIndexOf('/');
        path = slash < 0 ? QString() : path.left(slash);
    }
    return path + QStringLiteral("/Documents/readme.txt");
}

void CTessaryApp::OnVersionHistory() {
    const QString path = ReadmePath(QCoreApplication::applicationFilePath());
    if (launcher_ && launcher_(path)) return;
    Prompts().Message(frame_.get(),
                      QStringLiteral("Help File Launch Failed. ") + QDir::toNativeSeparators(path) +
                          QStringLiteral(" could not be launched."),
                      MsgIcon::Error);
}

void CTessaryApp::OnAppAbout() {
    QDialog about(frame_.get());
    about.setObjectName(QStringLiteral("CAboutDlg"));
    about.setWindowTitle(tr("About Tarn"));
    auto* layout = new QVBoxLayout(&about);
    auto* version = new QLabel(QStringLiteral("Tarn 2.7 Build 474"), &about);
    QFont bold = version->font();
    bold.setBold(true);
    version->setFont(bold);
    layout->addWidget(version);
    layout->addWidget(
        new QLabel(tr("Editor for roaming lists and multi-mode system selection files"), &about));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, &about);
    connect(buttons, &QDialogButtonBox::accepted, &about, &QDialog::accept);
    layout->addWidget(buttons);
    Prompts().ExecDialog(about);
}

void CTessaryApp::OnJoinWizard() {
    ConcatPrlJoinWizard wizard(frame_.get());
    Prompts().ExecDialog(wizard);
}

void CTessaryApp::OnSplitWizard(const QString& input) {
    ConcatPrlSplitWizard wizard(
        frame_.get(), [this](const QString& path) { return OpenDocumentFile(path) != nullptr; });
    if (!input.isEmpty()) wizard.SetInputPath(input);
    Prompts().ExecDialog(wizard);
}

// ---- Recent files -----------------------------------------------------------------------------

QStringList CTessaryApp::RecentFiles() const {
    QSettings settings;
    settings.beginGroup(QStringLiteral("Recent File List"));
    QStringList files;
    for (int i = 1; i <= 4; ++i) {
        const QString f = settings.value(QStringLiteral("File%1").arg(i)).toString();
        if (!f.isEmpty()) files << f;
    }
    return files;
}

void CTessaryApp::AddToRecentFiles(const QString& path) {
    QStringList files = RecentFiles();
    files.removeAll(path);
    files.prepend(path);
    while (files.size() > 4) files.removeLast();
    QSettings settings;
    settings.beginGroup(QStringLiteral("Recent File List"));
    for (int i = 1; i <= 4; ++i) {
        const QString key = QStringLiteral("File%1").arg(i);
        if (i <= files.size())
            settings.setValue(key, files[i - 1]);
        else
            settings.remove(key);
    }
    emit recentFilesChanged();
}

}  // namespace Tarn
