// One editor per session: where editors meet, which starts look for a running one, what a
// request may hold, and a real second start handing its file to an editor that is already running.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QtEndian>
#include <cstring>
#include <functional>

#include "app/SingleInstance.h"
#include "tests/app/TestSupport.h"

namespace Tarn {
namespace {

using AppTest::AppFixture;

// Runs the event loop until `done` holds; false when it still does not after a minute (a hang
// would otherwise stop the whole suite).
bool SpinUntil(const std::function<bool()>& done) {
    QDeadlineTimer deadline(60000);
    while (!done()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    return true;
}

TEST(SingleInstance, SocketPathKeepsUsersAndSessionsApart) {
    QTemporaryDir runtime;
    const QString inRuntime = SessionSocketPath(runtime.path(), QStringLiteral(":0"), 1000);
    EXPECT_EQ(inRuntime, QDir(runtime.path()).absoluteFilePath("tarn-_0.socket"));
    // Two sessions of one user, and the same session name for two users, never share a socket.
    EXPECT_NE(inRuntime, SessionSocketPath(runtime.path(), QStringLiteral(":1"), 1000));
    EXPECT_NE(SessionSocketPath({}, QStringLiteral(":0"), 1000),
              SessionSocketPath({}, QStringLiteral(":0"), 1001));
    // A runtime folder that is not there falls back to the temporary folder, with the user id.
    EXPECT_EQ(QFileInfo(SessionSocketPath(runtime.filePath("gone"), {}, 1000)).absoluteFilePath(),
              QDir(QDir::tempPath()).absoluteFilePath("tarn-1000-nodisplay.socket"));
    // A display name never leaves the folder.
    EXPECT_EQ(QFileInfo(SessionSocketPath(runtime.path(), QStringLiteral("../x/y"), 1)).absolutePath(),
              QFileInfo(runtime.path()).absoluteFilePath());
}

TEST(SingleInstance, OnlyInteractiveStartsLookForARunningEditor) {
    struct Case {
        QStringList args;
        const char* env;  // TARN_NEW_INSTANCE, or nullptr for unset
        QStringList files;
        bool wants;
    };
    const Case cases[] = {
        {{}, nullptr, {}, true},
        {{"a.prl", "/tmp/b.mspl"}, nullptr, {"a.prl", "/tmp/b.mspl"}, true},
        {{"a.prl"}, "1", {"a.prl"}, false},
        {{"--new-instance", "a.prl"}, nullptr, {"a.prl"}, false},
        // Conversions and refused command lines never reach another process.
        {{"-f", "a.prl", "a.txt"}, nullptr, {}, false},
        {{"-c", "a.mspl"}, nullptr, {}, false},
    };
    const QByteArray saved = qgetenv("TARN_NEW_INSTANCE");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString() + " env=" + (c.env ? c.env : "unset"));
        c.env ? qputenv("TARN_NEW_INSTANCE", c.env) : qunsetenv("TARN_NEW_INSTANCE");
        EXPECT_EQ(FilesToOpen(c.args), c.files);
        EXPECT_EQ(WantsRunningEditor(c.args), c.wants);
    }
    saved.isNull() ? qunsetenv("TARN_NEW_INSTANCE") : qputenv("TARN_NEW_INSTANCE", saved);
}

TEST(SingleInstance, ListenReplacesAStaleSocketButNotALiveOne) {
    QTemporaryDir dir;
    const QString path = dir.filePath("tarn-test.socket");
    {
        // What an editor that crashed leaves behind: a socket file nobody listens on.
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_GE(fd, 0);
        sockaddr_un addr{};
        addr.sun_family = AF_UNIX;
        const QByteArray native = QFile::encodeName(path);
        ASSERT_LT(static_cast<size_t>(native.size()), sizeof(addr.sun_path));
        std::memcpy(addr.sun_path, native.constData(), static_cast<size_t>(native.size()));
        ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)), 0);
        ::close(fd);
    }
    SingleInstance first(path);
    EXPECT_TRUE(first.Listen());
    SingleInstance second(path);
    EXPECT_FALSE(second.Listen());
    EXPECT_TRUE(first.IsListening());
}

// A request is the magic, a big-endian length and NUL-ended paths. The largest payload is taken
// and answered; anything malformed or one byte larger is dropped unanswered.
TEST(SingleInstance, RequestsUpToTheLimitAreAnsweredAndTheRestDropped) {
    QTemporaryDir dir;
    SingleInstance server(dir.filePath("tarn-test.socket"));
    ASSERT_TRUE(server.Listen());
    QStringList received;
    QObject::connect(&server, &SingleInstance::filesReceived, [&](const QStringList& f) { received << f; });
    auto header = [](qint64 length) {
        char raw[4];
        qToBigEndian(static_cast<quint32>(length), raw);
        return QByteArray("TRN1") + QByteArray(raw, 4);
    };
    const qint64 kMax = SingleInstance::kMaxRequestBytes;
    const QByteArray longest = "/" + QByteArray(static_cast<qsizetype>(kMax - 2), 'a') + QByteArray(1, '\0');
    const struct {
        QByteArray request;
        qsizetype files;  // the paths handed on; -1: dropped unanswered
    } cases[] = {
        {header(kMax) + longest, 1},
        {header(6) + QByteArray("/a\0/b\0", 6), 2},
        {header(kMax) + longest + "b", -1},  // more than it announced, and past the limit
        {header(kMax + 1) + longest + "b", -1},
        {QByteArray("GET / HTTP/1.0\r\n\r\n"), -1},
        {header(0xFFFFFFFFu), -1},
        {header(3) + QByteArray("abc"), -1},  // a path without its NUL
        {header(2) + QByteArray("a\0b\0", 4), -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.request.left(8).toHex().toStdString() + " of " + std::to_string(c.request.size()));
        received.clear();
        QLocalSocket client;
        client.connectToServer(server.SocketPath());
        ASSERT_TRUE(client.waitForConnected(10000));
        client.write(c.request);
        ASSERT_TRUE(SpinUntil([&] { return client.state() == QLocalSocket::UnconnectedState; }));
        EXPECT_EQ(client.bytesAvailable(), c.files < 0 ? 0 : 1);
        QCoreApplication::processEvents();
        EXPECT_EQ(received.size(), std::max<qsizetype>(c.files, 0));
    }
}

// ---- The real program as the second start -----------------------------------------------------

TEST(SingleInstance, SecondStartHandsItsFileToTheRunningEditorButConversionsNever) {
    AppFixture f;
    QTemporaryDir runtime;  // the child's XDG_RUNTIME_DIR: where it looks for an editor
    QStringList received;
    SingleInstance server{SessionSocketPath(runtime.path(), {}, static_cast<unsigned>(::getuid()))};
    QObject::connect(&server, &SingleInstance::filesReceived, [&](const QStringList& files) {
        received << files;
        OpenHandedFiles(*f.app, files);
    });
    ASSERT_TRUE(server.Listen());
    // Runs tarn in the test's folder with no display; its exit code, or -1 when it did not end.
    auto run = [&](const QStringList& args) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "TARN_NEW_INSTANCE"}) env.remove(name);
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("XDG_RUNTIME_DIR", runtime.path());
        env.insert("LC_ALL", "C");
        p.setProcessEnvironment(env);
        p.setWorkingDirectory(f.dir.path());
        p.start(TARN_APP_PATH, args);
        // The child waits for this process's answer, so the event loop must run meanwhile.
        if (!SpinUntil([&] { return p.state() == QProcess::NotRunning; })) {
            p.kill();
            p.waitForFinished();
            return -1;
        }
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    };
    AppTest::WriteBytes(f.Path("handed.prl"), AppTest::EmptyListBytes(3, 4242));
    const size_t before = f.app->Documents().size();

    ASSERT_EQ(run({"-f", "handed.prl", "out.txt"}), 0);
    EXPECT_TRUE(QFileInfo::exists(f.Path("out.txt")));
    QCoreApplication::processEvents();
    EXPECT_TRUE(received.isEmpty());

    // A name relative to the second start's folder reaches the editor as an absolute path.
    ASSERT_EQ(run({"handed.prl"}), 0);
    ASSERT_TRUE(SpinUntil([&] { return !received.isEmpty(); }));
    const QString expected = QFileInfo(f.Path("handed.prl")).absoluteFilePath();
    EXPECT_EQ(received, QStringList{expected});
    ASSERT_EQ(f.app->Documents().size(), before + 1);
    EXPECT_EQ(QFileInfo(f.app->Documents().back()->PathName()).absoluteFilePath(), expected);
}

}  // namespace
}  // namespace Tarn
