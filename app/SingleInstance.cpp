#include "app/SingleInstance.h"

#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QTimer>
#include <QtEndian>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/CommandLineInfoEx.h"
#include "app/MainFrame.h"
#include "app/TessaryApp.h"

namespace Tarn {
namespace {

// A request: the magic, the payload length (big-endian), then each absolute path in UTF-8
// followed by a NUL (the one byte no path holds). The answer is one byte.
constexpr char kMagic[4] = {'T', 'R', 'N', '1'};
constexpr qint64 kHeaderBytes = 8;
constexpr char kAcknowledge = 'K';
// A start that connects and then sends nothing must not hold a connection for ever.
constexpr int kRequestTimeoutMs = 10000;

std::vector<std::string> ToStd(const QStringList& arguments) {
    std::vector<std::string> params;
    params.reserve(static_cast<size_t>(arguments.size()));
    for (const QString& a : arguments) params.push_back(a.toStdString());
    return params;
}

bool IsInteractive(const CCommandLineInfoEx& info) {
    return DecideStartup(info).mode == StartupRequest::Mode::Interactive;
}

// A socket file someone else made must not receive our paths (a squatter in a shared temporary
// folder would learn them) nor be replaced.
bool OwnedByOtherUser(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && info.ownerId() != static_cast<uint>(::getuid());
}

// The paths of a complete request, or nothing when it is malformed.
std::optional<QStringList> ParseRequest(const QByteArray& request) {
    if (request.size() < kHeaderBytes || !request.startsWith(QByteArray(kMagic, 4))) return {};
    const quint32 length = qFromBigEndian<quint32>(request.constData() + 4);
    if (request.size() != kHeaderBytes + length) return {};
    QStringList files;
    const QByteArray payload = request.mid(kHeaderBytes);
    qsizetype start = 0;
    while (start < payload.size()) {
        const qsizetype end = payload.indexOf('\0', start);
        if (end < 0) return {};  // the last path must end with its NUL too
        if (end > start) files << QString::fromUtf8(payload.constData() + start, end - start);
        start = end + 1;
    }
    return files;
}

}  // namespace

QString SessionSocketPath(const QString& runtimeDir, const QString& display, unsigned userId) {
    QString session = display;
    session.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9._-]")), QStringLiteral("_"));
    if (session.isEmpty()) session = QStringLiteral("nodisplay");
    if (!runtimeDir.isEmpty() && QFileInfo(runtimeDir).isDir())
        return QDir(runtimeDir).filePath(QStringLiteral("tarn-%1.socket").arg(session));
    return QDir(QDir::tempPath())
        .filePath(QStringLiteral("tarn-%1-%2.socket").arg(userId).arg(session));
}

QString DefaultSessionSocketPath() {
    QString display = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (display.isEmpty()) display = qEnvironmentVariable("DISPLAY");
    return SessionSocketPath(qEnvironmentVariable("XDG_RUNTIME_DIR"), display,
                             static_cast<unsigned>(::getuid()));
}

QStringList FilesToOpen(const QStringList& arguments) {
    CCommandLineInfoEx info;
    info.Parse(ToStd(arguments));
    if (!IsInteractive(info)) return {};
    QStringList files;
    for (const QString& a : arguments) {
        std::string name;
        if (!CCommandLineInfoEx::IsFlag(a.toStdString(), name)) files << a;
    }
    return files;
}

bool WantsRunningEditor(const QStringList& arguments) {
    CCommandLineInfoEx info;
    info.Parse(ToStd(arguments));
    if (!IsInteractive(info)) return false;
    // "--new-instance" reaches the parser as the flag "-new-instance".
    if (info.HasOption("-new-instance") || info.HasOption("new-instance")) return false;
    const QString env = qEnvironmentVariable("TARN_NEW_INSTANCE");
    return env.isEmpty() || env == QStringLiteral("0");
}

// ---- SingleInstance ---------------------------------------------------------------------------

SingleInstance::SingleInstance(QString socketPath, QObject* parent)
    : QObject(parent), path_(std::move(socketPath)) {}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::HandOff(const QStringList& files, int timeoutMs) const {
    if (OwnedByOtherUser(path_)) return false;
    QByteArray payload;
    for (const QString& f : files) {
        payload += QFileInfo(f).absoluteFilePath().toUtf8();
        payload += '\0';
    }
    if (payload.size() > kMaxRequestBytes) return false;
    QByteArray request(kMagic, 4);
    char length[4];
    qToBigEndian(static_cast<quint32>(payload.size()), length);
    request.append(length, 4);
    request += payload;

    QLocalSocket socket;
    socket.connectToServer(path_);
    if (!socket.waitForConnected(timeoutMs)) return false;
    socket.write(request);
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(timeoutMs)) return false;
    while (socket.bytesAvailable() < 1)
        if (!socket.waitForReadyRead(timeoutMs)) return false;
    char answer = 0;
    return socket.read(&answer, 1) == 1 && answer == kAcknowledge;
}

bool SingleInstance::Listen() {
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server_.get(), &QLocalServer::newConnection, this, &SingleInstance::Accept);
    if (server_->listen(path_)) return true;
    if (server_->serverError() != QAbstractSocket::AddressInUseError || OwnedByOtherUser(path_))
        return false;
    {
        // An editor that started since our hand-off failed owns it now; leave it be.
        QLocalSocket probe;
        probe.connectToServer(path_);
        if (probe.waitForConnected(1000)) return false;
    }
    QLocalServer::removeServer(path_);
    return server_->listen(path_);
}

bool SingleInstance::IsListening() const {
    return server_ && server_->isListening();
}

void SingleInstance::Accept() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QTimer::singleShot(kRequestTimeoutMs, socket, [socket] { socket->abort(); });
        auto request = std::make_shared<QByteArray>();
        connect(socket, &QLocalSocket::readyRead, this, [this, socket, request] {
            if (request->size() + socket->bytesAvailable() > kHeaderBytes + kMaxRequestBytes) {
                socket->abort();
                return;
            }
            request->append(socket->readAll());
            if (request->size() < kHeaderBytes) return;
            if (!request->startsWith(QByteArray(kMagic, 4))) {
                socket->abort();
                return;
            }
            const quint32 length = qFromBigEndian<quint32>(request->constData() + 4);
            if (length > kMaxRequestBytes) {
                socket->abort();
                return;
            }
            if (request->size() < kHeaderBytes + length) return;
            const std::optional<QStringList> files = ParseRequest(*request);
            if (!files) {
                socket->abort();
                return;
            }
            socket->write(&kAcknowledge, 1);
            socket->flush();
            socket->disconnectFromServer();
            // Queued: opening a file may show a dialog, which must not run inside this handler.
            QMetaObject::invokeMethod(
                this, [this, list = *files] { emit filesReceived(list); }, Qt::QueuedConnection);
        });
    }
}

void OpenHandedFiles(CTessaryApp& app, const QStringList& files) {
    for (const QString& f : files) app.OpenDocumentFile(f);
    if (CMainFrame* frame = app.MainFrame(); frame && frame->isVisible()) {
        if (frame->isMinimized()) frame->showNormal();
        frame->raise();
        frame->activateWindow();
    }
}

}  // namespace Tarn
