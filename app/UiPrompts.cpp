#include "app/UiPrompts.h"

#include <QDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QRegularExpression>
#include <cstdio>

namespace Tarn {
namespace {

UiPrompts* g_installed = nullptr;

QtPrompts& DefaultPrompts() {
    static QtPrompts prompts;
    return prompts;
}

QMessageBox::Icon ToQt(MsgIcon icon) {
    switch (icon) {
        case MsgIcon::Information:
            return QMessageBox::Information;
        case MsgIcon::Warning:
            return QMessageBox::Warning;
        case MsgIcon::Error:
            return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

void PrepareFileDialog(QFileDialog& dialog, const FileDialogSpec& request) {
    dialog.setWindowTitle(request.title);
    dialog.setNameFilters(QtFilterFromDocFilter(request.filter).split(";;", Qt::SkipEmptyParts));
    dialog.setDefaultSuffix(request.defaultSuffix);
    dialog.setOption(QFileDialog::ReadOnly, false);
    if (!request.initialPath.isEmpty()) {
        const QFileInfo info(request.initialPath);
        if (info.isDir()) {
            dialog.setDirectory(request.initialPath);
        } else {
            if (info.dir().exists()) dialog.setDirectory(info.dir());
            dialog.selectFile(info.fileName());
        }
    }
}

}  // namespace

UiPrompts& Prompts() {
    return g_installed ? *g_installed : DefaultPrompts();
}

UiPrompts* SetPrompts(UiPrompts* prompts) {
    UiPrompts* previous = g_installed;
    g_installed = prompts;
    return previous;
}

QString MessageTitle() {
    return QStringLiteral("Tarn");
}

QString QtFilterFromDocFilter(const QString& filter) {
    QStringList parts = filter.split('|');
    QStringList out;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString name = parts[i].trimmed();
        if (name.isEmpty()) break;  // the "||" that ends the list
        QStringList patterns;
        for (QString p : parts[i + 1].split(QRegularExpression("[;,\\s]+"), Qt::SkipEmptyParts))
            patterns << (p == "*.*" ? QStringLiteral("*") : p);
        // Qt reads the patterns from the last parentheses of a filter, separated by blanks.
        const qsizetype open = name.lastIndexOf('(');
        if (open > 0 && name.endsWith(')')) name = name.left(open).trimmed();
        out << QStringLiteral("%1 (%2)").arg(name, patterns.join(' '));
    }
    return out.join(";;");
}

// ---- On screen ----------------------------------------------------------------------------------

void QtPrompts::Message(QWidget* parent, const QString& text, MsgIcon icon) {
    QMessageBox box(ToQt(icon), MessageTitle(), text, QMessageBox::Ok, parent);
    box.exec();
}

bool QtPrompts::Question(QWidget* parent, const QString& text, MsgIcon icon) {
    QMessageBox box(ToQt(icon), MessageTitle(), text, QMessageBox::Ok | QMessageBox::Cancel,
                    parent);
    return box.exec() == QMessageBox::Ok;
}

Answer QtPrompts::AskYesNoCancel(QWidget* parent, const QString& text) {
    QMessageBox box(QMessageBox::Warning, MessageTitle(), text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, parent);
    switch (box.exec()) {
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        default:
            return Answer::Cancel;
    }
}

QString QtPrompts::GetOpenFileName(QWidget* parent, const FileDialogSpec& request) {
    QFileDialog dialog(parent);
    PrepareFileDialog(dialog, request);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(request.fileMustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().front();
}

QString QtPrompts::GetSaveFileName(QWidget* parent, const FileDialogSpec& request) {
    QFileDialog dialog(parent);
    PrepareFileDialog(dialog, request);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.overwritePrompt);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().front();
}

int QtPrompts::ChooseItem(QWidget* parent, const QString& title, const QString& label,
                          const QStringList& items, int current) {
    bool ok = false;
    const QString chosen = QInputDialog::getItem(parent, title, label, items, current, false, &ok);
    return ok ? static_cast<int>(items.indexOf(chosen)) : -1;
}

int QtPrompts::ExecDialog(QDialog& dialog) {
    return dialog.exec();
}

// ---- Command line -------------------------------------------------------------------------------

void StderrPrompts::Message(QWidget*, const QString& text, MsgIcon) {
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

bool StderrPrompts::Question(QWidget*, const QString& text, MsgIcon) {
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    return false;
}

Answer StderrPrompts::AskYesNoCancel(QWidget*, const QString&) {
    return Answer::No;
}
QString StderrPrompts::GetOpenFileName(QWidget*, const FileDialogSpec&) {
    return {};
}
QString StderrPrompts::GetSaveFileName(QWidget*, const FileDialogSpec&) {
    return {};
}
int StderrPrompts::ChooseItem(QWidget*, const QString&, const QString&, const QStringList&, int) {
    return -1;
}
int StderrPrompts::ExecDialog(QDialog&) {
    return QDialog::Rejected;
}

}  // namespace Tarn
