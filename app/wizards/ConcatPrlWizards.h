// The join and split wizards of concatenated roaming lists: three pages each (paths in, paths
// out, results), validated page by page, running the operation on the results page.
#pragma once

#include <QString>
#include <QWizard>
#include <QWizardPage>
#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace Tarn {

// Page checks; each returns the message to show, or an empty text when the page may be left.
QString CheckJoinInputPaths(const QString& first, const QString& second);
QString CheckJoinOutputPath(const QString& output, const QString& first, const QString& second);
QString CheckSplitInputPath(const QString& input);
QString CheckSplitOutputPaths(const QString& input, const QString& first, const QString& second);
// Two spellings of one path are the same path ("a/../b.prl" and "b.prl" from the same folder);
// letters are compared exactly, as the file system does.
bool SamePath(const QString& a, const QString& b);

QString WizardRoamingListFilter();
QString ConcatenatedListFilter();

class ConcatPrlJoinWizard;
class ConcatPrlSplitWizard;

class JoinInputPage : public QWizardPage {
    Q_OBJECT
public:
    explicit JoinInputPage(ConcatPrlJoinWizard& wizard);
    bool validatePage() override;
    QLineEdit* FirstEdit() const { return first_; }
    QLineEdit* SecondEdit() const { return second_; }

private:
    ConcatPrlJoinWizard& wizard_;
    QLineEdit* first_;
    QLineEdit* second_;
};

class JoinOutputPage : public QWizardPage {
    Q_OBJECT
public:
    explicit JoinOutputPage(ConcatPrlJoinWizard& wizard);
    bool validatePage() override;
    QLineEdit* OutputEdit() const { return output_; }

private:
    ConcatPrlJoinWizard& wizard_;
    QLineEdit* output_;
};

class JoinResultsPage : public QWizardPage {
    Q_OBJECT
public:
    explicit JoinResultsPage(ConcatPrlJoinWizard& wizard);
    void initializePage() override;
    QString ResultText() const;

private:
    ConcatPrlJoinWizard& wizard_;
    QLabel* result_;
};

class ConcatPrlJoinWizard : public QWizard {
    Q_OBJECT
public:
    enum { InputPageId, OutputPageId, ResultsPageId };
    explicit ConcatPrlJoinWizard(QWidget* parent = nullptr);

    QString firstPath;
    QString secondPath;
    QString outputPath;

    JoinInputPage* InputPage() const { return input_; }
    JoinOutputPage* OutputPage() const { return output_; }
    JoinResultsPage* ResultsPage() const { return results_; }

private:
    JoinInputPage* input_;
    JoinOutputPage* output_;
    JoinResultsPage* results_;
};

class SplitInputPage : public QWizardPage {
    Q_OBJECT
public:
    explicit SplitInputPage(ConcatPrlSplitWizard& wizard);
    bool validatePage() override;
    void initializePage() override;
    QLineEdit* InputEdit() const { return input_; }

private:
    ConcatPrlSplitWizard& wizard_;
    QLineEdit* input_;
};

class SplitOutputPage : public QWizardPage {
    Q_OBJECT
public:
    explicit SplitOutputPage(ConcatPrlSplitWizard& wizard);
    bool validatePage() override;
    QLineEdit* FirstEdit() const { return first_; }
    QLineEdit* SecondEdit() const { return second_; }
    QCheckBox* OpenFirstBox() const { return openFirst_; }
    QCheckBox* OpenSecondBox() const { return openSecond_; }

private:
    ConcatPrlSplitWizard& wizard_;
    QLineEdit* first_;
    QLineEdit* second_;
    QCheckBox* openFirst_;
    QCheckBox* openSecond_;
};

class SplitResultsPage : public QWizardPage {
    Q_OBJECT
public:
    explicit SplitResultsPage(ConcatPrlSplitWizard& wizard);
    void initializePage() override;
    QString ResultText() const;

private:
    ConcatPrlSplitWizard& wizard_;
    QLabel* result_;
};

class ConcatPrlSplitWizard : public QWizard {
    Q_OBJECT
public:
    enum { InputPageId, OutputPageId, ResultsPageId };
    // `openDocument` opens a split output as a document; true when it opened.
    using Opener = std::function<bool(const QString& path)>;
    explicit ConcatPrlSplitWizard(QWidget* parent = nullptr, Opener openDocument = {});

    void SetInputPath(const QString& path);

    QString inputPath;
    QString firstOutputPath;
    QString secondOutputPath;
    bool openFirst = true;
    bool openSecond = true;

    SplitInputPage* InputPage() const { return input_; }
    SplitOutputPage* OutputPage() const { return output_; }
    SplitResultsPage* ResultsPage() const { return results_; }
    const Opener& OpenDocument() const { return opener_; }

private:
    Opener opener_;
    SplitInputPage* input_;
    SplitOutputPage* output_;
    SplitResultsPage* results_;
};

}  // namespace Tarn
