#include "app/wizards/ConcatPrlWizards.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/RLCoreOps.h"
#include "app/UiPrompts.h"

namespace Tarn {
namespace {

const char* kTwoDifferent =
    "Two different files must be specified. Please change one of the paths.";

QLabel* Text(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

// One labelled path with its browse button; the button asks `browse` for a new path.
QLineEdit* AddPathRow(QGridLayout* grid, int row, const QString& label, QWidget* page,
                      const std::function<QString(const QString&)>& browse) {
    auto* caption = new QLabel(label, page);
    auto* edit = new QLineEdit(page);
    caption->setBuddy(edit);
    auto* button = new QPushButton(QObject::tr("Browse..."), page);
    QObject::connect(button, &QPushButton::clicked, page, [edit, browse] {
        const QString chosen = browse(edit->text());
        if (!chosen.isEmpty()) edit->setText(QDir::toNativeSeparators(chosen));
    });
    grid->addWidget(caption, row, 0);
    grid->addWidget(edit, row, 1);
    grid->addWidget(button, row, 2);
    return edit;
}

std::function<QString(const QString&)> OpenBrowser(QWidget* page, const QString& title,
                                                   const QString& filter, bool fileMustExist) {
    return [=](const QString& current) {
        FileDialogSpec request;
        request.title = title;
        request.filter = filter;
        request.defaultSuffix = QStringLiteral("prl");
        request.initialPath = current;
        request.fileMustExist = fileMustExist;
        return Prompts().GetOpenFileName(page, request);
    };
}

std::function<QString(const QString&)> SaveBrowser(QWidget* page, const QString& title,
                                                   const QString& filter) {
    return [=](const QString& current) {
        FileDialogSpec request;
        request.title = title;
        request.filter = filter;
        request.defaultSuffix = QStringLiteral("prl");
        request.initialPath = current;
        request.fileMustExist = false;
        request.overwritePrompt = true;
        return Prompts().GetSaveFileName(page, request);
    };
}

bool Refuse(QWidget* page, const QString& message) {
    if (message.isEmpty()) return true;
    Prompts().Message(page, message, MsgIcon::Warning);
    return false;
}

// The results page shows its work before it starts it: no way back, "Working...", then the
// outcome, after which only Finish is left.
void BeginWork(QWizard* wizard, QLabel* result) {
    for (auto b :
         {QWizard::BackButton, QWizard::NextButton, QWizard::CancelButton, QWizard::FinishButton})
        if (QAbstractButton* button = wizard->button(b)) button->setEnabled(false);
    result->setText(QObject::tr("Working..."));
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void EndWork(QWizard* wizard) {
    if (QAbstractButton* button = wizard->button(QWizard::FinishButton)) button->setEnabled(true);
    if (QAbstractButton* button = wizard->button(QWizard::BackButton)) button->setEnabled(false);
    if (QAbstractButton* button = wizard->button(QWizard::CancelButton)) button->setEnabled(false);
}

}  // namespace

bool SamePath(const QString& a, const QString& b) {
    if (a == b) return true;
    const QString ca = QDir::cleanPath(QFileInfo(QDir::fromNativeSeparators(a)).absoluteFilePath());
    const QString cb = QDir::cleanPath(QFileInfo(QDir::fromNativeSeparators(b)).absoluteFilePath());
    return ca == cb;
}

QString WizardRoamingListFilter() {
    return QStringLiteral(
        "Roaming Lists (*.prl,*.rl*,*.bin,*.hin,*.hrl)|*.prl;*.rl*;*.bin;*.hin;*.hrl|All Files "
        "(*.*)|*.*||");
}

QString ConcatenatedListFilter() {
    return QStringLiteral("Concatenated Roaming Lists (*.prl)|*.prl|All Files (*.*)|*.*||");
}

QString CheckJoinInputPaths(const QString& first, const QString& second) {
    if (first.isEmpty()) return QStringLiteral("Please enter a first path.");
    if (second.isEmpty()) return QStringLiteral("Please enter a second path.");
    if (SamePath(first, second)) return QString::fromUtf8(kTwoDifferent);
    return {};
}

QString CheckJoinOutputPath(const QString& output, const QString& first, const QString& second) {
    if (output.isEmpty()) return QStringLiteral("Please enter a path.");
    if (SamePath(output, first) || SamePath(output, second))
        return QStringLiteral(
            "The output path must not be the same as either input path. Please enter a different "
            "path.");
    return {};
}

QString CheckSplitInputPath(const QString& input) {
    return input.isEmpty() ? QStringLiteral("Please enter a path.") : QString();
}

QString CheckSplitOutputPaths(const QString& input, const QString& first, const QString& second) {
    if (first.isEmpty()) return QStringLiteral("Please enter a first path.");
    if (SamePath(first, input))
        return QStringLiteral(
            "The output paths must not be the same as the input path. Please enter a different "
            "first path.");
    if (second.isEmpty()) return QStringLiteral("Please enter a second path.");
    if (SamePath(second, input))
        return QStringLiteral(
            "The output paths must not be the same as the input path. Please enter a different "
            "second path.");
    if (SamePath(first, second)) return QString::fromUtf8(kTwoDifferent);
    return {};
}

// ---- Join ---------------------------------------------------------------------------------------

JoinInputPage::JoinInputPage(ConcatPrlJoinWizard& wizard) : wizard_(wizard) {
    setTitle(QStringLiteral("Concatenated PRL Join Wizard - Input File Paths"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        Text(QStringLiteral("The Concatenated PRL Join Wizard will guide you through the steps of "
                            "joining two separate PRL files to form one Concatenated PRL file."),
             this));
    layout->addSpacing(8);
    layout->addWidget(
        Text(QStringLiteral("First, specify the paths to the PRL files to join."), this));
    auto* grid = new QGridLayout;
    first_ = AddPathRow(grid, 0, QStringLiteral("&First path:"), this,
                        OpenBrowser(this, QStringLiteral("Select First Input File"),
                                    WizardRoamingListFilter(), true));
    second_ = AddPathRow(grid, 1, QStringLiteral("&Second path:"), this,
                         OpenBrowser(this, QStringLiteral("Select Second Input File"),
                                     WizardRoamingListFilter(), true));
    layout->addLayout(grid);
    layout->addSpacing(8);
    layout->addWidget(Text(QStringLiteral("Next, specify where to save the joined file."), this));
    layout->addStretch(1);
    connect(first_, &QLineEdit::textChanged, this,
            [this](const QString& t) { wizard_.firstPath = t; });
    connect(second_, &QLineEdit::textChanged, this,
            [this](const QString& t) { wizard_.secondPath = t; });
}

bool JoinInputPage::validatePage() {
    return Refuse(this, CheckJoinInputPaths(wizard_.firstPath, wizard_.secondPath));
}

JoinOutputPage::JoinOutputPage(ConcatPrlJoinWizard& wizard) : wizard_(wizard) {
    setTitle(QStringLiteral("Concatenated PRL Join Wizard - Output File Path"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        Text(QStringLiteral("Specify the path for the output Concatenated PRL file."), this));
    auto* grid = new QGridLayout;
    output_ = AddPathRow(grid, 0, QStringLiteral("&Path:"), this,
                         SaveBrowser(this, QStringLiteral("Specify Path for Output File"),
                                     ConcatenatedListFilter()));
    layout->addLayout(grid);
    layout->addSpacing(8);
    layout->addWidget(Text(
        QStringLiteral("Clicking \"Next\" will perform the join and display the results."), this));
    layout->addStretch(1);
    connect(output_, &QLineEdit::textChanged, this,
            [this](const QString& t) { wizard_.outputPath = t; });
    // Once the join has run there is nothing to go back to.
    setCommitPage(true);
    setButtonText(QWizard::CommitButton, QStringLiteral("&Next >"));
}

bool JoinOutputPage::validatePage() {
    return Refuse(this,
                  CheckJoinOutputPath(wizard_.outputPath, wizard_.firstPath, wizard_.secondPath));
}

JoinResultsPage::JoinResultsPage(ConcatPrlJoinWizard& wizard) : wizard_(wizard) {
    setTitle(QStringLiteral("Concatenated PRL Join Wizard - Results"));
    result_ = Text({}, this);
    result_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(result_);
    layout->addStretch(1);
    setFinalPage(true);
}

QString JoinResultsPage::ResultText() const {
    return result_->text();
}

void JoinResultsPage::initializePage() {
    BeginWork(&wizard_, result_);
    try {
        JoinListFiles(wizard_.firstPath.toStdString(), wizard_.secondPath.toStdString(),
                      wizard_.outputPath.toStdString());
        result_->setText(QStringLiteral("Join was completed successfully."));
    } catch (const std::exception& e) {
        result_->setText(QString::fromUtf8(e.what()));
    }
    EndWork(&wizard_);
}

ConcatPrlJoinWizard::ConcatPrlJoinWizard(QWidget* parent) : QWizard(parent) {
    setObjectName(QStringLiteral("ConcatPrlJoinWizard"));
    setWindowTitle(QStringLiteral("Concatenated PRL Join Wizard"));
    setWizardStyle(QWizard::ClassicStyle);
    setOption(QWizard::NoBackButtonOnLastPage, true);
    setOption(QWizard::NoCancelButtonOnLastPage, true);
    input_ = new JoinInputPage(*this);
    output_ = new JoinOutputPage(*this);
    results_ = new JoinResultsPage(*this);
    setPage(InputPageId, input_);
    setPage(OutputPageId, output_);
    setPage(ResultsPageId, results_);
    setMinimumSize(560, 360);
}

// ---- Split --------------------------------------------------------------------------------------

SplitInputPage::SplitInputPage(ConcatPrlSplitWizard& wizard) : wizard_(wizard) {
    setTitle(QStringLiteral("Concatenated PRL Split Wizard - Input File Path"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        Text(QStringLiteral("The Concatenated PRL Split Wizard will guide you through the steps of "
                            "splitting a Concatenated PRL file into two separate PRL files."),
             this));
    layout->addSpacing(8);
    layout->addWidget(Text(
        QStringLiteral("First, specify the path to the Concatenated PRL file to split."), this));
    auto* grid = new QGridLayout;
    input_ = AddPathRow(
        grid, 0, QStringLiteral("&Path:"), this,
        OpenBrowser(this, QStringLiteral("Select Input File"), ConcatenatedListFilter(), false));
    layout->addLayout(grid);
    layout->addStretch(1);
    connect(input_, &QLineEdit::textChanged, this,
            [this](const QString& t) { wizard_.inputPath = t; });
}

void SplitInputPage::initializePage() {
    if (input_->text() != wizard_.inputPath) input_->setText(wizard_.inputPath);
}

bool SplitInputPage::validatePage() {
    return Refuse(this, CheckSplitInputPath(wizard_.inputPath));
}

SplitOutputPage::SplitOutputPage(ConcatPrlSplitWizard& wizard) : wizard_(wizard) {
    setTitle(QStringLiteral("Concatenated PRL Split Wizard - Output File Paths"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        Text(QStringLiteral("Specify the paths for each of the two output PRL files."), this));
    auto* grid = new QGridLayout;
    first_ = AddPathRow(
        grid, 0, QStringLiteral("&First path:"), this,
        SaveBrowser(this, QStringLiteral("Specify First Output File"), WizardRoamingListFilter()));
    openFirst_ = new QCheckBox(QStringLiteral("Open this file after splitting"), this);
    openFirst_->setChecked(wizard_.openFirst);
    grid->addWidget(openFirst_, 1, 1);
    second_ = AddPathRow(
        grid, 2, QStringLiteral("&Second path:"), this,
        SaveBrowser(this, QStringLiteral("Specify Second Output File"), WizardRoamingListFilter()));
    openSecond_ = new QCheckBox(QStringLiteral("Open this file after splitting"), this);
    openSecond_->setChecked(wizard_.openSecond);
    grid->addWidget(openSecond_, 3, 1);
    layout->addLayout(grid);
    layout->addSpacing(8);
    layout->addWidget(Text(
        QStringLiteral("Clicking \"Next\" will perform the split and display the results."), this));
    layout->addStretch(1);
    connect(first_, &QLineEdit::textChanged, this,
            [this](const QString& t) { wizard_.firstOutputPath = t; });
    connect(second_, &QLineEdit::textChanged, this,
            [this](const QString& t) { wizard_.secondOutputPath = t; });
    connect(openFirst_, &QCheckBox::toggled, this, [this](bool on) { wizard_.openFirst = on; });
    connect(openSecond_, &QCheckBox::toggled, this, [this](bool on) { wizard_.openSecond = on; });
    setCommitPage(true);
    setButtonText(QWizard::CommitButton, QStringLiteral("&Next >"));
}

bool SplitOutputPage::validatePage() {
    return Refuse(this, CheckSplitOutputPaths(wizard_.inputPath, wizard_.firstOutputPath,
                                              wizard_.secondOutputPath));
}

SplitResultsPage::SplitResultsPage(ConcatPrlSplitWizard& wizard) : wizard_(wizard) {
    setTitle(QStringLiteral("Concatenated PRL Split Wizard - Results"));
    result_ = Text({}, this);
    result_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(result_);
    layout->addStretch(1);
    setFinalPage(true);
}

QString SplitResultsPage::ResultText() const {
    return result_->text();
}

void SplitResultsPage::initializePage() {
    BeginWork(&wizard_, result_);
    try {
        SplitListFile(wizard_.inputPath.toStdString(), wizard_.firstOutputPath.toStdString(),
                      wizard_.secondOutputPath.toStdString());
        int opened = 0;
        const auto& open = wizard_.OpenDocument();
        if (open && wizard_.openFirst && open(wizard_.firstOutputPath)) ++opened;
        if (open && wizard_.openSecond && open(wizard_.secondOutputPath)) ++opened;
        result_->setText(
            opened > 0
                ? QStringLiteral(
                      "Split was completed successfully. Split file(s) are open for editing.")
                : QStringLiteral("Split was completed successfully."));
    } catch (const std::exception& e) {
        result_->setText(QString::fromUtf8(e.what()));
    }
    EndWork(&wizard_);
}

ConcatPrlSplitWizard::ConcatPrlSplitWizard(QWidget* parent, Opener openDocument)
    : QWizard(parent), opener_(std::move(openDocument)) {
    setObjectName(QStringLiteral("ConcatPrlSplitWizard"));
    setWindowTitle(QStringLiteral("Concatenated PRL Split Wizard"));
    setWizardStyle(QWizard::ClassicStyle);
    setOption(QWizard::NoBackButtonOnLastPage, true);
    setOption(QWizard::NoCancelButtonOnLastPage, true);
    input_ = new SplitInputPage(*this);
    output_ = new SplitOutputPage(*this);
    results_ = new SplitResultsPage(*this);
    setPage(InputPageId, input_);
    setPage(OutputPageId, output_);
    setPage(ResultsPageId, results_);
    setMinimumSize(560, 380);
}

void ConcatPrlSplitWizard::SetInputPath(const QString& path) {
    inputPath = path;
    input_->InputEdit()->setText(path);
}

}  // namespace Tarn
