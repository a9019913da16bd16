#include "app/Document.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QMdiArea>
#include <algorithm>

#include "foundation/MessageTable.h"

namespace Tarn {
namespace {
QPointer<QWidget> g_defaultParent;
}

void CDocument::SetDefaultDialogParent(QWidget* parent) {
    g_defaultParent = parent;
}

// ---- CDocument ----------------------------------------------------------------------------------

CDocument::CDocument(CDocTemplate& tmpl) : template_(&tmpl) {
    connect(&undo_, &QUndoStack::cleanChanged, this, [this] { emit modifiedChanged(); });
}

CDocument::~CDocument() {
    // The undo stack is a member and outlives the derived document's part: the signals it sends
    // while it empties itself must reach no slot of a document that is already gone.
    undo_.blockSignals(true);
}

FileDialogSpec CDocument::SaveAsSpec() const {
    FileDialogSpec request;
    request.title = tr("Save As");
    QString patterns;
    for (const QString& ext :
         template_->GetDocString(DocString::FilterExt).split(';', Qt::SkipEmptyParts))
        patterns += (patterns.isEmpty() ? "*" : ";*") + ext;
    request.filter =
        template_->GetDocString(DocString::FilterName) + "|" + patterns + "|All Files (*.*)|*.*||";
    request.defaultSuffix = template_->GetDocString(DocString::FilterExt).section(';', 0, 0).mid(1);
    request.initialPath = path_.isEmpty() ? title_ : path_;
    request.fileMustExist = false;
    return request;
}

QString CDocument::RecoveryExtension() const {
    return template_->GetDocString(DocString::FilterExt).section(';', 0, 0).mid(1);
}

void CDocument::SetPathName(const QString& path) {
    path_ = path;
    SetTitle(QFileInfo(path).fileName());
}

void CDocument::SetTitle(const QString& title) {
    title_ = title;
    emit titleChanged();
}

void CDocument::SetModifiedFlag(bool modified) {
    dirty_ = modified;
    if (!modified) undo_.setClean();
    emit modifiedChanged();
}

bool CDocument::DoFileSave() {
    if (path_.isEmpty()) return DoSave({});
    if (IsReadOnly()) return DoSave({});
    return DoSave(path_);
}

bool CDocument::DoSave(QString path) {
    if (path.isEmpty()) {
        path = Prompts().GetSaveFileName(DialogParent(), SaveAsSpec());
        if (path.isEmpty()) return false;
    }
    if (!OnSaveDocument(path)) return false;
    SetPathName(path);
    SetModifiedFlag(false);
    emit saved();
    return true;
}

bool CDocument::SaveModified() {
    if (!IsModified()) return true;
    switch (Prompts().AskYesNoCancel(DialogParent(), tr("Save changes to %1?").arg(title_))) {
        case Answer::Yes:
            return DoFileSave();
        case Answer::No:
            return true;
        case Answer::Cancel:
            break;
    }
    return false;
}

void CDocument::RemoveWindow(QMdiSubWindow* window) {
    windows_.erase(
        std::remove_if(windows_.begin(), windows_.end(),
                       [&](const QPointer<QMdiSubWindow>& w) { return !w || w == window; }),
        windows_.end());
}

std::vector<QMdiSubWindow*> CDocument::Windows() const {
    std::vector<QMdiSubWindow*> out;
    for (const auto& w : windows_)
        if (w) out.push_back(w);
    return out;
}

QWidget* CDocument::DialogParent() const {
    for (const auto& w : windows_)
        if (w) return w->mdiArea() ? w->mdiArea()->window() : w.data();
    return g_defaultParent.data();
}

// ---- CDocTemplate -------------------------------------------------------------------------------

CDocTemplate::CDocTemplate(unsigned resourceId, Factory factory)
    : resourceId_(resourceId),
      string_(QString::fromUtf8(MessageText(resourceId).data(),
                                static_cast<qsizetype>(MessageText(resourceId).size()))),
      factory_(std::move(factory)) {}

QString CDocTemplate::GetDocString(DocString field) const {
    const QStringList parts = string_.split('\n');
    const auto i = static_cast<qsizetype>(field);
    return i < parts.size() ? parts[i] : QString();
}

QString CDocTemplate::NextUntitledTitle() {
    return GetDocString(DocString::DocName) + QString::number(++untitled_);
}

// ---- CMDIChildBase ------------------------------------------------------------------------------

CMDIChildBase::CMDIChildBase(CDocument& doc, std::unique_ptr<QWidget> view, QWidget* parent)
    : QMdiSubWindow(parent), doc_(&doc) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWidget(view.release());  // the window owns its view from here on
    doc.AddWindow(this);
    connect(&doc, &CDocument::titleChanged, this, &CMDIChildBase::UpdateTitle);
    connect(&doc, &CDocument::modifiedChanged, this, &CMDIChildBase::UpdateTitle);
    UpdateTitle();
}

void CMDIChildBase::UpdateTitle() {
    if (!doc_) return;
    QString title = doc_->Title();
    if (secondary_) title += tr(" - Text View");
    if (doc_->IsModified() && !secondary_) title += " *";
    setWindowTitle(title);
    if (mdiArea() && mdiArea()->window()) {
        // The frame shows the active child's title; let it know this one changed.
        if (auto* frame = mdiArea()->window(); mdiArea()->activeSubWindow() == this)
            QMetaObject::invokeMethod(frame, "UpdateCommands", Qt::DirectConnection);
    }
}

void CMDIChildBase::closeEvent(QCloseEvent* event) {
    if (!doc_) return QMdiSubWindow::closeEvent(event);
    // The document goes with its main window (its other windows close with it), or with its last.
    const bool closesDocument = !secondary_ || doc_->Windows().size() <= 1;
    if (closesDocument && !doc_->SaveModified()) {
        event->ignore();
        return;
    }
    if (closesDocument) {
        CDocument* doc = doc_;
        doc->RemoveWindow(this);
        for (QMdiSubWindow* w : doc->Windows()) {
            doc->RemoveWindow(w);
            if (auto* child = qobject_cast<CMDIChildBase*>(w)) child->Detach();
            w->close();
        }
        QMdiSubWindow::closeEvent(event);
        emit documentClosing(doc);
        return;
    }
    doc_->RemoveWindow(this);
    QMdiSubWindow::closeEvent(event);
}

}  // namespace Tarn
