// Every message box, question, file dialog and modal dialog of the editor goes through one small
// interface, so that tests can answer them and the command-line mode can print them instead.
#pragma once

#include <QString>
#include <QStringList>

class QDialog;
class QWidget;

namespace Tarn {

enum class MsgIcon { Information, Warning, Error };
enum class Answer { Yes, No, Cancel };

struct FileDialogSpec {
    QString title;
    // Filters are written as the editor's documents spell them: "Name (*.a)|*.a|...||".
    QString filter;
    QString defaultSuffix;
    QString initialPath;
    bool fileMustExist = true;    // open dialogs
    bool overwritePrompt = true;  // save dialogs
};

class UiPrompts {
public:
    virtual ~UiPrompts() = default;
    virtual void Message(QWidget* parent, const QString& text, MsgIcon icon) = 0;
    // OK and Cancel; true for OK.
    virtual bool Question(QWidget* parent, const QString& text, MsgIcon icon) = 0;
    virtual Answer AskYesNoCancel(QWidget* parent, const QString& text) = 0;
    // An empty text when the user cancels.
    virtual QString GetOpenFileName(QWidget* parent, const FileDialogSpec& request) = 0;
    virtual QString GetSaveFileName(QWidget* parent, const FileDialogSpec& request) = 0;
    // One entry of a list; -1 when cancelled.
    virtual int ChooseItem(QWidget* parent, const QString& title, const QString& label,
                           const QStringList& items, int current) = 0;
    // Runs a modal dialog (wizards, about box, print dialogs) and returns its result.
    virtual int ExecDialog(QDialog& dialog) = 0;
};

// The prompts in force: the Qt ones unless another set was installed.
UiPrompts& Prompts();
// Installs `prompts` (not owned; nullptr restores the Qt ones) and returns the previous set.
UiPrompts* SetPrompts(UiPrompts* prompts);

// Message boxes and file dialogs on screen.
class QtPrompts : public UiPrompts {
public:
    void Message(QWidget* parent, const QString& text, MsgIcon icon) override;
    bool Question(QWidget* parent, const QString& text, MsgIcon icon) override;
    Answer AskYesNoCancel(QWidget* parent, const QString& text) override;
    QString GetOpenFileName(QWidget* parent, const FileDialogSpec& request) override;
    QString GetSaveFileName(QWidget* parent, const FileDialogSpec& request) override;
    int ChooseItem(QWidget* parent, const QString& title, const QString& label,
                   const QStringList& items, int current) override;
    int ExecDialog(QDialog& dialog) override;
};

// The unattended command-line mode: texts go to stderr, questions are declined and no dialog is
// ever shown, so nothing can wait for a user who is not there.
class StderrPrompts : public UiPrompts {
public:
    void Message(QWidget* parent, const QString& text, MsgIcon icon) override;
    bool Question(QWidget* parent, const QString& text, MsgIcon icon) override;
    Answer AskYesNoCancel(QWidget* parent, const QString& text) override;
    QString GetOpenFileName(QWidget* parent, const FileDialogSpec& request) override;
    QString GetSaveFileName(QWidget* parent, const FileDialogSpec& request) override;
    int ChooseItem(QWidget* parent, const QString& title, const QString& label,
                   const QStringList& items, int current) override;
    int ExecDialog(QDialog& dialog) override;
};

// "Name (*.a,*.b)|*.a;*.b|All Files (*.*)|*.*||" -> the Qt form
// "Name (*.a,*.b) (*.a *.b);;All Files (*.*) (*)". "*.*" becomes "*" so that names without a dot
// are listed too.
QString QtFilterFromDocFilter(const QString& filter);

// The title of every message box.
QString MessageTitle();

}  // namespace Tarn
