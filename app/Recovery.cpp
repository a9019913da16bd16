#include "app/Recovery.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QSettings>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "app/Document.h"
#include "app/TessaryApp.h"
#include "app/UiPrompts.h"
#include "app/mmss/MmssDocuments.h"
#include "formats/FileKinds.h"

namespace Tarn {
namespace {

// How long the user must have stopped typing before a copy is written.
constexpr int kPauseMs = 2000;

QString LockPath(const QString& session) {
    return RecoveryManager::Folder() + "/" + session + ".lock";
}

// True while the editor that wrote under `session` still runs: it holds its lock file.
bool SessionRunning(const QString& session) {
    QLockFile lock(LockPath(session));
    lock.setStaleLockTime(0);  // a running editor's lock never goes stale by age
    if (lock.tryLock(0)) {
        lock.unlock();
        return false;
    }
    return lock.error() == QLockFile::LockFailedError;
}

// "Roaming List", "MSPL", "OPLMN", ...: what the user calls the document.
QString KindOf(const CDocument& doc) {
    if (auto* mmss = qobject_cast<const App::MmssDocument*>(&doc)) return mmss->KindTitle();
    return QObject::tr("Roaming List");
}

bool WriteSidecar(const QString& path, const QJsonObject& note) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    file.write(QJsonDocument(note).toJson());
    return file.commit();
}

}  // namespace

QString RecoveryManager::Folder() {
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (state.isEmpty() || !QDir::isAbsolutePath(state)) state = QDir::homePath() + "/.local/state";
    return state + "/tarn/recovery";
}

int RecoveryManager::IntervalSeconds() {
    return std::max(0, QSettings().value(QStringLiteral("Recovery/IntervalSeconds"), 30).toInt());
}

RecoveryManager::RecoveryManager(CTessaryApp& app)
    : QObject(&app),
      app_(app),
      session_(QStringLiteral("%1-%2")
                   .arg(QCoreApplication::applicationPid())
                   .arg(QDateTime::currentMSecsSinceEpoch())) {
    QDir().mkpath(Folder());
    lock_ = std::make_unique<QLockFile>(LockPath(session_));
    lock_->setStaleLockTime(0);
    lock_->tryLock(0);
}

RecoveryManager::~RecoveryManager() {
    for (auto& t : tracked_) Remove(*t);
    lock_->unlock();
}

QString RecoveryManager::CopyPath(const CDocument& doc) const {
    auto it = tracked_.find(const_cast<CDocument*>(&doc));
    return it == tracked_.end() ? QString() : (*it)->copyPath;
}

void RecoveryManager::Track(CDocument& doc) {
    if (IntervalSeconds() == 0 || tracked_.contains(&doc)) return;
    auto t = std::make_shared<Tracked>();
    t->doc = &doc;
    // One name per document, whatever its file is called, so two files of one name never share.
    t->copyPath = QStringLiteral("%1/%2-%3.%4")
                      .arg(Folder(), session_)
                      .arg(++next_)
                      .arg(doc.RecoveryExtension());
    t->timer = new QTimer(this);
    t->timer->setSingleShot(true);
    connect(t->timer, &QTimer::timeout, this, [this, d = &doc] { WriteNow(*d); });
    Tracked* raw = t.get();
    connect(&doc.UndoStack(), &QUndoStack::indexChanged, this, [this, raw] { Schedule(*raw); });
    connect(&doc, &CDocument::modifiedChanged, this, [this, raw] { Schedule(*raw); });
    connect(&doc, &CDocument::saved, this, [this, raw] { Remove(*raw); });
    connect(&doc, &QObject::destroyed, this, [this, d = &doc] { Forget(d); });
    tracked_.insert(&doc, std::move(t));
}

void RecoveryManager::Schedule(Tracked& t) {
    if (!t.doc) return;
    if (!t.doc->IsModified()) {
        Remove(t);
        return;
    }
    // A copy waits for a pause in the typing, and for the interval since the last one.
    const qint64 interval = qint64(IntervalSeconds()) * 1000;
    const qint64 pause = std::min<qint64>(kPauseMs, interval);
    qint64 delay = pause;
    if (t.lastWrite.isValid())
        delay = std::max(pause, interval - t.lastWrite.msecsTo(QDateTime::currentDateTimeUtc()));
    t.timer->start(static_cast<int>(delay));
}

bool RecoveryManager::WriteNow(CDocument& doc) {
    auto it = tracked_.find(&doc);
    if (it == tracked_.end() || !doc.IsModified()) return false;
    Tracked& t = **it;
    QString error;
    // A list whose grids do not read as they stand is copied after the next edit.
    if (!doc.WriteRecoveryCopy(t.copyPath, error)) return false;
    QJsonObject note{
        {"original",
         doc.PathName().isEmpty() ? QString() : QFileInfo(doc.PathName()).absoluteFilePath()},
        {"title", doc.Title()},
        {"kind", KindOf(doc)},
        {"time", QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
        {"session", session_},
        {"copy", QFileInfo(t.copyPath).fileName()}};
    if (!WriteSidecar(t.copyPath + ".json", note)) return false;
    t.lastWrite = QDateTime::currentDateTimeUtc();
    return true;
}

void RecoveryManager::Remove(Tracked& t) {
    if (t.timer) t.timer->stop();
    QFile::remove(t.copyPath);
    QFile::remove(t.copyPath + ".json");
    t.lastWrite = {};
}

void RecoveryManager::Forget(CDocument* doc) {
    auto it = tracked_.find(doc);
    if (it == tracked_.end()) return;
    Remove(**it);
    if ((*it)->timer) (*it)->timer->deleteLater();
    tracked_.erase(it);
}

std::vector<RecoveryCopy> RecoveryManager::LeftOver() const {
    std::vector<RecoveryCopy> out;
    const QDir folder(Folder());
    // The lock of a session that ended without leaving a copy is all that is left of it; asking
    // whether that session still runs takes a stale lock away.
    for (const QFileInfo& info : folder.entryInfoList({QStringLiteral("*.lock")}, QDir::Files))
        if (info.completeBaseName() != session_) SessionRunning(info.completeBaseName());
    for (const QFileInfo& info : folder.entryInfoList({QStringLiteral("*.json")}, QDir::Files)) {
        RecoveryCopy copy;
        copy.sidecarPath = info.absoluteFilePath();
        QFile file(copy.sidecarPath);
        QJsonObject note;
        if (file.open(QIODevice::ReadOnly) && file.size() < 65536)
            note = QJsonDocument::fromJson(file.readAll()).object();
        const QString session = note.value("session").toString();
        if (session == session_ || (!session.isEmpty() && SessionRunning(session))) continue;
        copy.copyPath =
            info.absolutePath() + "/" + QFileInfo(note.value("copy").toString()).fileName();
        copy.original = note.value("original").toString();
        copy.title = note.value("title").toString();
        copy.kind = note.value("kind").toString();
        copy.time = QDateTime::fromString(note.value("time").toString(), Qt::ISODate);
        std::string error;
        if (note.isEmpty() || note.value("copy").toString().isEmpty()) {
            copy.problem = tr("the note beside the copy does not read");
            copy.copyPath = copy.sidecarPath.chopped(5);
        } else if (!QFileInfo::exists(copy.copyPath)) {
            copy.problem = tr("the copy is missing");
        } else if (!ReadFileDocument(copy.copyPath.toStdString(), error)) {
            copy.problem = QString::fromStdString(error);
        }
        if (copy.title.isEmpty())
            copy.title =
                QFileInfo(copy.original.isEmpty() ? copy.copyPath : copy.original).fileName();
        if (!copy.problem.isEmpty()) {
            // Kept aside, never opened, never offered again.
            const QString aside = Folder() + "/unreadable";
            QDir().mkpath(aside);
            for (QString* path : {&copy.copyPath, &copy.sidecarPath}) {
                const QString moved = aside + "/" + QFileInfo(*path).fileName();
                QFile::remove(moved);
                if (QFile::rename(*path, moved)) *path = moved;
            }
        }
        out.push_back(std::move(copy));
    }
    std::sort(out.begin(), out.end(),
              [](const RecoveryCopy& a, const RecoveryCopy& b) { return a.time < b.time; });
    return out;
}

CDocument* RecoveryManager::Restore(const RecoveryCopy& copy) {
    CDocTemplate* tmpl = app_.TemplateForOpen(copy.copyPath);
    if (!tmpl) return nullptr;
    std::unique_ptr<CDocument> doc = tmpl->CreateDocument();
    if (!doc || !doc->OnOpenDocument(copy.copyPath)) return nullptr;
    // The recovered content belongs to the original: titled after it, saved to it, and modified
    // until then. An untitled document stays untitled and asks where to go when saved.
    if (!copy.original.isEmpty())
        doc->SetPathName(copy.original);
    else
        doc->SetTitle(copy.title);
    doc->SetModifiedFlag(true);
    CDocument* raw = app_.AddDocument(std::move(doc));
    WriteNow(*raw);
    Discard(copy);
    return raw;
}

void RecoveryManager::Discard(const RecoveryCopy& copy) {
    QFile::remove(copy.copyPath);
    QFile::remove(copy.sidecarPath);
}

std::vector<CDocument*> RecoveryManager::OfferRestore(QWidget* parent) {
    std::vector<CDocument*> restored;
    const std::vector<RecoveryCopy> copies = LeftOver();
    if (copies.empty()) return restored;
    RecoveryDialog dialog(copies, parent);
    const int answer = Prompts().ExecDialog(dialog);
    for (int row : dialog.Chosen()) {
        const RecoveryCopy& copy = copies[static_cast<size_t>(row)];
        if (answer == QDialog::Accepted) {
            if (CDocument* doc = Restore(copy)) restored.push_back(doc);
        } else if (answer == RecoveryDialog::kDiscard) {
            Discard(copy);
        }
    }
    return restored;
}

// ---- the dialog ----

RecoveryDialog::RecoveryDialog(const std::vector<RecoveryCopy>& copies, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("RecoveryDialog"));
    setWindowTitle(tr("Recover Unsaved Work"));
    auto* intro =
        new QLabel(tr("Tarn did not close properly last time. It kept copies of the documents that "
                      "had unsaved changes. Choose the ones to open again; the files on disk have "
                      "not been changed."),
                   this);
    intro->setWordWrap(true);

    table_ = new QTableWidget(static_cast<int>(copies.size()), 4, this);
    table_->setHorizontalHeaderLabels(
        {tr("Document"), tr("Kind"), tr("Last copy"), tr("Where it belongs")});
    table_->verticalHeader()->hide();
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    int row = 0;
    for (const RecoveryCopy& c : copies) {
        auto* name = new QTableWidgetItem(c.title);
        if (c.problem.isEmpty()) {
            name->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
            name->setCheckState(Qt::Checked);
        } else {
            name->setFlags(Qt::ItemIsEnabled);
        }
        table_->setItem(row, 0, name);
        table_->setItem(row, 1, new QTableWidgetItem(c.kind));
        table_->setItem(row, 2,
                        new QTableWidgetItem(
                            c.time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"))));
        auto* where = new QTableWidgetItem(c.original.isEmpty() ? tr("untitled") : c.original);
        if (!c.problem.isEmpty()) {
            // The reason can be long: the cell says what happened, its tooltip says why.
            where->setText(tr("cannot be recovered: the copy does not read (set aside)"));
            where->setToolTip(
                tr("%1\nKept in %2").arg(c.problem, QFileInfo(c.copyPath).absolutePath()));
        }
        table_->setItem(row, 3, where);
        ++row;
    }
    table_->resizeColumnsToContents();
    table_->horizontalHeader()->setStretchLastSection(true);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* restore = buttons->addButton(tr("&Restore Checked"), QDialogButtonBox::AcceptRole);
    buttons->addButton(tr("&Keep for Later"), QDialogButtonBox::RejectRole);
    QPushButton* discard =
        buttons->addButton(tr("&Discard Checked"), QDialogButtonBox::DestructiveRole);
    restore->setDefault(true);
    connect(restore, &QPushButton::clicked, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(discard, &QPushButton::clicked, this, [this] { done(kDiscard); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addWidget(table_, 1);
    layout->addWidget(buttons);
    resize(900, 320);
}

std::vector<int> RecoveryDialog::Chosen() const {
    std::vector<int> rows;
    for (int row = 0; row < table_->rowCount(); ++row)
        if (QTableWidgetItem* item = table_->item(row, 0);
            item && (item->flags() & Qt::ItemIsUserCheckable) && item->checkState() == Qt::Checked)
            rows.push_back(row);
    return rows;
}

}  // namespace Tarn
