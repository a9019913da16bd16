// Recovery copies: while a document has unsaved edits the editor keeps a copy of it, written as
// Save would write the file, beside a small sidecar naming the original; after a session that did
// not end cleanly the next start offers the copies back.
#pragma once

#include <QDateTime>
#include <QDialog>
#include <QHash>
#include <QLockFile>
#include <QObject>
#include <QPointer>
#include <QString>
#include <memory>
#include <vector>

class QTableWidget;
class QTimer;

namespace Tarn {

class CDocument;
class CTessaryApp;

// A copy found in the recovery folder.
struct RecoveryCopy {
    QString copyPath;
    QString sidecarPath;
    QString original;  // the file it belongs to; empty for an untitled document
    QString title;     // the document's title when the copy was written
    QString kind;      // "Roaming List", "MSPL", ...
    QDateTime time;
    QString problem;  // why the copy does not read; empty when it does
};

// Offers the copies left by earlier sessions: which to restore, or to keep them for later, or to
// discard the chosen ones. Copies that do not read are listed with the reason and cannot be chosen.
class RecoveryDialog : public QDialog {
    Q_OBJECT
public:
    static constexpr int kDiscard = 2;  // the result of "Discard"

    RecoveryDialog(const std::vector<RecoveryCopy>& copies, QWidget* parent = nullptr);
    QTableWidget* Copies() const { return table_; }
    // The rows the user ticked (the readable ones only).
    std::vector<int> Chosen() const;

private:
    QTableWidget* table_ = nullptr;
};

class RecoveryManager : public QObject {
    Q_OBJECT
public:
    // The folder copies live in: $XDG_STATE_HOME/tarn/recovery, or ~/.local/state/tarn/recovery.
    static QString Folder();
    // Seconds between copies from the settings (Recovery/IntervalSeconds, default 30); 0 is off.
    static int IntervalSeconds();

    explicit RecoveryManager(CTessaryApp& app);
    // A clean end: this session's copies go with it.
    ~RecoveryManager() override;

    // Keeps a copy of `doc` while it has unsaved edits; drops it when the document is saved.
    void Track(CDocument& doc);
    // The document is closing without its edits being kept: its copy goes.
    void Forget(CDocument* doc);
    // Writes the copy now (when the document has unsaved edits); false when it could not.
    bool WriteNow(CDocument& doc);
    QString CopyPath(const CDocument& doc) const;

    // Copies left by sessions that are no longer running, oldest first; copies of a running
    // editor are never listed. Copies that do not read are moved aside and listed with why.
    std::vector<RecoveryCopy> LeftOver() const;
    // Shows the dialog over `parent` when there is anything to offer; restores, keeps or
    // discards as the user says. Returns the documents restored.
    std::vector<CDocument*> OfferRestore(QWidget* parent);
    CDocument* Restore(const RecoveryCopy& copy);
    static void Discard(const RecoveryCopy& copy);

private:
    struct Tracked {
        QPointer<CDocument> doc;
        QString copyPath;
        QTimer* timer = nullptr;
        QDateTime lastWrite;
    };
    void Schedule(Tracked& t);
    void Remove(Tracked& t);

    CTessaryApp& app_;
    QString session_;
    std::unique_ptr<QLockFile> lock_;
    QHash<CDocument*, std::shared_ptr<Tracked>> tracked_;
    int next_ = 0;
};

}  // namespace Tarn
