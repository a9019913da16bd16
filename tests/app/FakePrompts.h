// A recording stand-in for message boxes and dialogs: tests script the answers and read back
// what the editor showed, and nothing ever waits for a user.
#pragma once

#include <QDialog>
#include <QString>
#include <deque>
#include <functional>
#include <vector>

#include "app/UiPrompts.h"

namespace Tarn::AppTest {

class FakePrompts : public UiPrompts {
public:
    struct Shown {
        QString text;
        MsgIcon icon;
    };

    FakePrompts() { previous_ = SetPrompts(this); }
    ~FakePrompts() override { SetPrompts(previous_); }

    void Message(QWidget*, const QString& text, MsgIcon icon) override {
        messages.push_back({text, icon});
    }
    bool Question(QWidget*, const QString& text, MsgIcon icon) override {
        questions.push_back({text, icon});
        if (answers.empty()) return defaultAnswer;
        const bool a = answers.front();
        answers.pop_front();
        return a;
    }
    Answer AskYesNoCancel(QWidget*, const QString& text) override {
        questions.push_back({text, MsgIcon::Warning});
        return saveAnswer;
    }
    QString GetOpenFileName(QWidget*, const FileDialogSpec& request) override {
        openDialogs.push_back(request);
        return Next(fileAnswers);
    }
    QString GetSaveFileName(QWidget*, const FileDialogSpec& request) override {
        saveDialogs.push_back(request);
        return Next(fileAnswers);
    }
    int ChooseItem(QWidget*, const QString&, const QString&, const QStringList& items,
                   int) override {
        choices.push_back(items);
        return chooseAnswer;
    }
    int ExecDialog(QDialog& dialog) override {
        dialogs.push_back(dialog.objectName().isEmpty() ? dialog.windowTitle()
                                                        : dialog.objectName());
        return onDialog ? onDialog(dialog) : QDialog::Rejected;
    }

    QStringList MessageTexts() const {
        QStringList out;
        for (const auto& m : messages) out << m.text;
        return out;
    }
    void Clear() {
        messages.clear(), questions.clear(), openDialogs.clear(), saveDialogs.clear(), dialogs.clear(), choices.clear();
    }

    std::vector<Shown> messages;
    std::vector<Shown> questions;
    std::deque<bool> answers;
    bool defaultAnswer = false;
    Answer saveAnswer = Answer::No;
    std::deque<QString> fileAnswers;
    std::vector<FileDialogSpec> openDialogs;
    std::vector<FileDialogSpec> saveDialogs;
    std::vector<QStringList> choices;
    int chooseAnswer = -1;
    QStringList dialogs;
    std::function<int(QDialog&)> onDialog;

private:
    static QString Next(std::deque<QString>& q) {
        if (q.empty()) return {};
        QString s = q.front();
        q.pop_front();
        return s;
    }
    UiPrompts* previous_ = nullptr;
};

}  // namespace Tarn::AppTest
