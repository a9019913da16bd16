// SingleInstance: one editor per user session; a later start hands its files to the running one.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

class QLocalServer;

namespace Tarn {

class CTessaryApp;

// The socket a session's editors meet at. It lives in the user's runtime folder, which only the
// user can enter; without one, in the temporary folder with the user id in its name. The display
// is part of the name so that two desktop sessions of one user keep an editor each.
QString SessionSocketPath(const QString& runtimeDir, const QString& display, unsigned userId);
// The path for this process: XDG_RUNTIME_DIR, WAYLAND_DISPLAY (else DISPLAY) and the real user id.
QString DefaultSessionSocketPath();

// The files of an interactive start, in the order given: every parameter that is not a flag.
// Empty for an unattended conversion or a command line start-up refuses.
QStringList FilesToOpen(const QStringList& arguments);
// Whether this start should look for a running editor: an interactive start only (conversions
// and refused command lines never talk to another process), and neither the flag
// "--new-instance" nor a TARN_NEW_INSTANCE other than "" or "0".
bool WantsRunningEditor(const QStringList& arguments);

class SingleInstance : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(QString socketPath, QObject* parent = nullptr);
    ~SingleInstance() override;

    const QString& SocketPath() const { return path_; }

    // Sends `files` (made absolute against this process's folder) to the editor listening at the
    // socket and waits for it to acknowledge them. False when no editor is there or none answers
    // within `timeoutMs`; the caller then opens the files itself. An empty list asks the running
    // editor only to come to the front.
    bool HandOff(const QStringList& files, int timeoutMs = 5000) const;

    // Starts answering later starts. A socket left behind by an editor that ended without
    // removing it is replaced; a live one, or one another user owns, is left alone (false).
    bool Listen();
    bool IsListening() const;

    // The largest request accepted; anything longer is dropped unread.
    static constexpr qint64 kMaxRequestBytes = 1 << 20;

signals:
    // A later start's files, absolute, in its order; emitted from the event loop after the
    // request was acknowledged, so a slot may open dialogs.
    void filesReceived(const QStringList& files);

private:
    void Accept();

    QString path_;
    std::unique_ptr<QLocalServer> server_;
};

// Opens handed-over files in `app` the way the desktop's open does (by the document kind their
// names give), then brings the main window to the front.
void OpenHandedFiles(CTessaryApp& app, const QStringList& files);

}  // namespace Tarn
