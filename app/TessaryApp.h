// CTessaryApp: start-up, the eight document templates, the choice of template for a path, the
// New and Open commands, help texts, recent files and the unattended command-line mode.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "app/CommandLineInfoEx.h"
#include "app/Document.h"

namespace Tarn {

class CMainFrame;
class RecoveryManager;
class CRLClassFactory;

// Command ids: the numbers are the ones the message table keys its status prompts by.
namespace Cmd {
inline constexpr int NewIS683E = 32817;
inline constexpr int NewIS683D = 32786;
inline constexpr int NewIS683C = 32787;
inline constexpr int NewIS683B = 32788;
inline constexpr int NewIS683A = 32789;
inline constexpr int NewMspl = 32812;
inline constexpr int NewMlpl = 32818;
inline constexpr int NewEhplmn = 32830;
inline constexpr int NewOplmn = 32822;
inline constexpr int NewUplmn = 32823;
inline constexpr int New3GppBst = 32850;
inline constexpr int NewTechOrder = 32853;
inline constexpr int NewLteAvailable = 32855;
inline constexpr int FileNew = 57600;
inline constexpr int FileOpen = 57601;
inline constexpr int FileClose = 57602;
inline constexpr int FileSave = 57603;
inline constexpr int FileSaveAs = 57604;
inline constexpr int FilePrintSetup = 57606;
inline constexpr int FilePrint = 57607;
inline constexpr int FilePrintPreview = 57609;
inline constexpr int TextView = 32778;
inline constexpr int SplitConcatPrl = 32796;
inline constexpr int JoinConcatPrl = 32797;
inline constexpr int HelpTopics = 32783;
inline constexpr int HelpIndex = 57670;
inline constexpr int HelpFinder = 57669;
inline constexpr int HelpUsing = 57671;
inline constexpr int VersionHistory = 32857;
inline constexpr int AppAbout = 57664;
inline constexpr int AppExit = 57665;
inline constexpr int EditCopy = 57634;
inline constexpr int EditCut = 57635;
inline constexpr int EditPaste = 57637;
inline constexpr int EditUndo = 57643;
inline constexpr int EditRedo = 57644;
inline constexpr int NextPane = 57680;
inline constexpr int PrevPane = 57681;
inline constexpr int WindowCascade = 57650;
inline constexpr int WindowTile = 57651;
inline constexpr int WindowArrange = 57649;
inline constexpr int TypeConversion = 32790;
inline constexpr int InsertRows = 32900;
inline constexpr int AppendRow = 32901;
inline constexpr int DeleteRows = 32902;
}  // namespace Cmd

// The status prompt of a command ("text\ntooltip" in the message table, or the editor's own).
QString CommandPrompt(int id);

// Sets the process-wide current roaming list version for the next new list. A change of version
// drops the cached factory of the old one.
void ChangeCurrentVersion(int version);
// The factory of the current version, made on first use after a change.
const CRLClassFactory& CurrentVersionFactory();
// The cached factory, or nothing when it was dropped and not made again.
const CRLClassFactory* CachedVersionFactory();

// With no display to talk to (no DISPLAY, no WAYLAND_DISPLAY, no "-platform" argument and no
// platform chosen), picks the offscreen platform so the command-line mode runs anywhere. Call
// before the QApplication is made.
void ChooseHeadlessPlatform(int argc, char** argv);

class CTessaryApp : public QObject {
    Q_OBJECT
public:
    explicit CTessaryApp(QObject* parent = nullptr);
    ~CTessaryApp() override;
    static CTessaryApp* Instance();

    // The start-up steps; false when start-up fails (ExitCode then says how). `arguments` are
    // the parameters after the program name. Without `showWindow` the frame stays hidden.
    bool InitInstance(const QStringList& arguments, bool showWindow = true);
    int ExitCode() const { return exitCode_; }
    void SetExitCode(int code) { exitCode_ = code; }

    // Templates 1..8, in registration order.
    CDocTemplate* Template(int number) const;
    int TemplateNumber(const CDocTemplate* tmpl) const;
    CDocTemplate* TemplateByExtension(const QString& path) const;  // rule A
    CDocTemplate* TemplateForOpen(const QString& path) const;      // rule B

    // Rule B, then the chosen template opens the file and shows it; an open document of the
    // same path is brought forward instead.
    CDocument* OpenDocumentFile(const QString& path);
    // A new document (empty path) or an opened one, through a given template.
    CDocument* OpenWithTemplate(CDocTemplate* tmpl, const QString& path);
    // Takes a document made and read elsewhere (a recovered one): shows it like an opened one.
    CDocument* AddDocument(std::unique_ptr<CDocument> doc);
    std::vector<CDocument*> Documents() const;
    // The recovery copies of this session; none in the unattended command-line mode.
    RecoveryManager* Recovery() const { return recovery_; }
    void CloseDocument(CDocument* doc);
    // Asks to save each modified document; false when the user cancels.
    bool SaveAllModified();

    // Commands.
    void OnFileNew();
    void OnNewRoamingList(int version);
    void OnNewPlmn(uint8_t kind);
    void OnNewOfTemplate(int number);
    void OnFileOpen();
    void OnHelpTopics();
    void OnVersionHistory();
    void OnAppAbout();
    void OnJoinWizard();
    // `input` fills the wizard's input path (a concatenated file the user tried to open).
    void OnSplitWizard(const QString& input = {});

    // The unattended action of the command-line mode; returns the exit status.
    int RunCommandLine();

    QStringList RecentFiles() const;
    void AddToRecentFiles(const QString& path);

    // What documents read from the application object.
    bool IsCommandLineMode() const { return commandLineMode_; }
    const QString& Option() const { return option_; }
    const QString& FirstArgument() const { return first_; }
    const QString& SecondArgument() const { return second_; }
    uint8_t PlmnKind() const { return plmnKind_; }
    void SetPlmnKind(uint8_t kind) { plmnKind_ = kind; }
    // Makes New create a roaming list shown as text.
    bool TextMode() const { return textMode_; }
    void SetTextMode(bool on) { textMode_ = on; }

    CMainFrame* MainFrame() const { return frame_.get(); }

    // The File Open filter.
    static const QString& OpenFilter();
    // The roaming list filter the wizards and Save As use.
    static QString RoamingListFilter();
    static QString HelpTopicsText();
    // "Documents/readme.txt" two folders above the program file.
    static QString ReadmePath(const QString& programPath);
    // Opens a file with the desktop's default application (replaced by tests).
    using FileLauncher = std::function<bool(const QString& path)>;
    void SetFileLauncher(FileLauncher launcher) { launcher_ = std::move(launcher); }

signals:
    void recentFilesChanged();
    void documentsChanged();

private:
    void RegisterTemplates();

    std::vector<std::unique_ptr<CDocTemplate>> templates_;
    std::vector<std::unique_ptr<CDocument>> documents_;
    std::unique_ptr<CMainFrame> frame_;
    CCommandLineInfoEx cmdInfo_;
    bool commandLineMode_ = false;
    QString option_;
    QString first_;
    QString second_;
    uint8_t plmnKind_ = 0;
    bool textMode_ = false;
    int exitCode_ = 0;
    FileLauncher launcher_;
    RecoveryManager* recovery_ = nullptr;  // a child of this object
};

}  // namespace Tarn
