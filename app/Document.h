// Documents, the templates that make them, and the child windows that show them.
#pragma once

#include <QMdiSubWindow>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUndoStack>
#include <functional>
#include <memory>
#include <vector>

#include "app/UiPrompts.h"

namespace Tarn {

class CDocTemplate;

class CDocument : public QObject {
    Q_OBJECT
public:
    explicit CDocument(CDocTemplate& tmpl);
    ~CDocument() override;

    CDocTemplate& Template() const { return *template_; }

    virtual bool OnNewDocument() { return true; }
    virtual bool OnOpenDocument(const QString& path) = 0;
    virtual bool OnSaveDocument(const QString& path) = 0;
    // Called once the document's first window is up (or at once without a frame): notices about
    // what was opened are shown over the document rather than over an empty frame.
    virtual void OnViewsReady() {}
    // The widget of the document's first window.
    virtual std::unique_ptr<QWidget> CreateMainView() = 0;
    // The text that Print and Print Preview put on paper; false when there is none.
    virtual bool GetPrintText(QString& text) {
        (void)text;
        return false;
    }
    // The dialog that Save As shows.
    virtual FileDialogSpec SaveAsSpec() const;
    // Writes the bytes Save would write to `path` (atomically), without a word to the user and
    // without changing the document; false with a reason when the document cannot be written as
    // it stands (a cell that does not read yet).
    virtual bool WriteRecoveryCopy(const QString& path, QString& error) {
        (void)path;
        error = tr("this kind of document keeps no recovery copy");
        return false;
    }
    // The extension a recovery copy takes, so that it opens as this kind of document.
    virtual QString RecoveryExtension() const;

    const QString& PathName() const { return path_; }
    void SetPathName(const QString& path);
    const QString& Title() const { return title_; }
    void SetTitle(const QString& title);

    bool IsModified() const { return dirty_ || !undo_.isClean(); }
    // Marks a change that is not on the undo stack (a version conversion), or clears every mark.
    void SetModifiedFlag(bool modified);

    QUndoStack& UndoStack() { return undo_; }

    // Save: to the current path, or through Save As when there is none or it cannot be written.
    bool DoFileSave();
    // Save As (empty path: ask for one).
    bool DoSave(QString path);
    // Asks whether to save a modified document; false when the user cancels.
    bool SaveModified();

    // The windows that show this document.
    void AddWindow(QMdiSubWindow* window) { windows_.push_back(window); }
    void RemoveWindow(QMdiSubWindow* window);
    std::vector<QMdiSubWindow*> Windows() const;
    QWidget* DialogParent() const;
    // The parent of boxes shown before a document has a window (the main frame).
    static void SetDefaultDialogParent(QWidget* parent);
    virtual bool IsReadOnly() const { return false; }

signals:
    void titleChanged();
    void modifiedChanged();
    // After the document was written to its file by Save or Save As.
    void saved();

private:
    CDocTemplate* template_;
    QString path_;
    QString title_;
    bool dirty_ = false;
    QUndoStack undo_;
    std::vector<QPointer<QMdiSubWindow>> windows_;
};

// The seven fields of a template string, in order.
enum class DocString {
    WindowTitle,
    DocName,
    FileNewName,
    FilterName,
    FilterExt,
    RegFileTypeId,
    RegFileTypeName
};

class CDocTemplate {
public:
    using Factory = std::function<std::unique_ptr<CDocument>(CDocTemplate&)>;
    // `resourceId` names the template string in the message table.
    CDocTemplate(unsigned resourceId, Factory factory);

    unsigned ResourceId() const { return resourceId_; }
    const QString& TemplateString() const { return string_; }
    QString GetDocString(DocString field) const;

    // A new document of this kind (nothing when the kind cannot make one).
    std::unique_ptr<CDocument> CreateDocument() { return factory_ ? factory_(*this) : nullptr; }
    // The next "Untitled" name of this kind: the document name and a running number.
    QString NextUntitledTitle();

private:
    unsigned resourceId_;
    QString string_;
    Factory factory_;
    int untitled_ = 0;
};

// The child window of a document. Closing the last window of a document closes the document,
// after asking to save it.
class CMDIChildBase : public QMdiSubWindow {
    Q_OBJECT
public:
    CMDIChildBase(CDocument& doc, std::unique_ptr<QWidget> view, QWidget* parent = nullptr);
    CDocument* Document() const { return doc_; }
    // Set for a window that shows a second view of the document (the text view).
    void SetSecondary(bool secondary) { secondary_ = secondary; }
    void UpdateTitle();
    // Lets the window close without a word: its document is already closing.
    void Detach() { doc_ = nullptr; }

signals:
    void documentClosing(CDocument* doc);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QPointer<CDocument> doc_;
    bool secondary_ = false;
};

}  // namespace Tarn
