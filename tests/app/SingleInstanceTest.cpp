// One editor per session: where editors meet, which starts look for a running one, and a real
// second start handing its file to an editor that is already running.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QtEndian>
#include <cstdlib>
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

class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        hadOld_ = std::getenv(name) != nullptr;
        if (value) setenv(name, value, 1);
        else unsetenv(name);
    }
    ~ScopedEnv() {
        if (hadOld_) setenv(name_, old_.c_str(), 1);
        else unsetenv(name_);
    }

private:
    const char* name_;
    std::string old_;
    bool hadOld_ = false;
};

TEST(SingleInstance, SocketPathKeepsUsersAndSessionsApart) {
    QTemporaryDir runtime;
    const QString inRuntime = SessionSocketPath(runtime.path(), QStringLiteral(":0"), 1000);
    EXPECT_EQ(QFileInfo(inRuntime).absolutePath(), QFileInfo(runtime.path()).absoluteFilePath());
    EXPECT_EQ(QFileInfo(inRuntime).fileName(), QStringLiteral("tarn-_0.socket"));
    // Two sessions of one user, and the same session name for two users, never share a socket.
    EXPECT_NE(inRuntime, SessionSocketPath(runtime.path(), QStringLiteral(":1"), 1000));
    EXPECT_NE(SessionSocketPath({}, QStringLiteral(":0"), 1000),
              SessionSocketPath({}, QStringLiteral(":0"), 1001));
    // A runtime folder that is not there falls back to the temporary folder, with the user id.
    const QString fallback = SessionSocketPath(runtime.filePath("gone"), {}, 1000);
    EXPECT_EQ(QFileInfo(fallback).absolutePath(), QFileInfo(QDir::tempPath()).absoluteFilePath());
    EXPECT_EQ(QFileInfo(fallback).fileName(), QStringLiteral("tarn-1000-nodisplay.socket"));
    // A display name never leaves the folder.
    EXPECT_EQ(QFileInfo(SessionSocketPath(runtime.path(), QStringLiteral("../x/y"), 1))
                  .absolutePath(),
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
        {{"a.prl"}, "0", {"a.prl"}, true},
        {{"a.prl"}, "1", {"a.prl"}, false},
        {{"--new-instance", "a.prl"}, nullptr, {"a.prl"}, false},
        // Conversions and refused command lines never reach another process.
        {{"-f", "a.prl", "a.txt"}, nullptr, {}, false},
        {{"/u", "a.txt", "a.prl"}, nullptr, {}, false},
        {{"-c", "a.mspl"}, nullptr, {}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString() + " env=" + (c.env ? c.env : "unset"));
        ScopedEnv env("TARN_NEW_INSTANCE", c.env);
        EXPECT_EQ(FilesToOpen(c.args), c.files);
        EXPECT_EQ(WantsRunningEditor(c.args), c.wants);
    }
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
        ASSERT_TRUE(QFileInfo::exists(path));
    }
    SingleInstance first(path);
    EXPECT_TRUE(first.Listen());
    SingleInstance second(path);
    EXPECT_FALSE(second.Listen());
    EXPECT_TRUE(first.IsListening());
}

TEST(SingleInstance, MalformedRequestsAreDroppedUnanswered) {
    QTemporaryDir dir;
    SingleInstance server(dir.filePath("tarn-test.socket"));
    ASSERT_TRUE(server.Listen());
    int received = 0;
    QObject::connect(&server, &SingleInstance::filesReceived, [&] { ++received; });

    auto header = [](quint32 length) {
        QByteArray b("TRN1");
        char raw[4];
        qToBigEndian(length, raw);
        return b + QByteArray(raw, 4);
    };
    const QByteArray requests[] = {
        QByteArray("GET / HTTP/1.0\r\n\r\n"),
        header(0xFFFFFFFFu),  // a length past the limit
        header(3) + QByteArray("abc"),            // a path without its NUL
        header(2) + QByteArray("a\0b\0", 4),  // more than it announced
    };
    for (const QByteArray& request : requests) {
        SCOPED_TRACE(request.left(8).toHex().toStdString());
        QLocalSocket client;
        client.connectToServer(server.SocketPath());
        ASSERT_TRUE(client.waitForConnected(10000));
        client.write(request);
        client.flush();
        ASSERT_TRUE(SpinUntil([&] { return client.state() == QLocalSocket::UnconnectedState; }));
        EXPECT_EQ(client.bytesAvailable(), 0) << "a malformed request was acknowledged";
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(received, 0);
}

// ---- The real program as the second start -----------------------------------------------------

struct SecondStart {
    QTemporaryDir runtime;  // the child's XDG_RUNTIME_DIR: where it looks for an editor
    QStringList received;
    SingleInstance server{SessionSocketPath(runtime.path(), {}, static_cast<unsigned>(::getuid()))};

    bool Listen(CTessaryApp& app) {
        QObject::connect(&server, &SingleInstance::filesReceived, [this, &app](const QStringList& f) {
            received << f;
            OpenHandedFiles(app, f);
        });
        return server.Listen();
    }

    // Runs tarn in `workDir` with no display; its exit code, or -1 when it did not end.
    int Run(const QStringList& args, const QString& workDir) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "TARN_NEW_INSTANCE"}) env.remove(name);
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("XDG_RUNTIME_DIR", runtime.path());
        env.insert("LC_ALL", "C");
        p.setProcessEnvironment(env);
        p.setWorkingDirectory(workDir);
        p.start(TARN_APP_PATH, args);
        // The child waits for this process's answer, so the event loop must run meanwhile.
        if (!SpinUntil([&] { return p.state() == QProcess::NotRunning; })) {
            p.kill();
            p.waitForFinished();
            return -1;
        }
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    }
};

TEST(SingleInstance, SecondStartHandsItsFileToTheRunningEditor) {
    AppFixture f;
    SecondStart second;
    ASSERT_TRUE(second.Listen(*f.app));
    AppTest::WriteBytes(f.Path("handed.prl"), AppTest::EmptyListBytes(3, 4242));
    const size_t before = f.app->Documents().size();

    // A name relative to the second start's folder reaches the editor as an absolute path.
    ASSERT_EQ(second.Run({"handed.prl"}, f.dir.path()), 0);
    ASSERT_TRUE(SpinUntil([&] { return !second.received.isEmpty(); }));
    const QString expected = QFileInfo(f.Path("handed.prl")).absoluteFilePath();
    EXPECT_EQ(second.received, QStringList{expected});
    ASSERT_EQ(f.app->Documents().size(), before + 1);
    EXPECT_EQ(QFileInfo(f.app->Documents().back()->PathName()).absoluteFilePath(), expected);
}

TEST(SingleInstance, ConversionsNeverReachTheRunningEditor) {
    AppFixture f;
    SecondStart second;
    ASSERT_TRUE(second.Listen(*f.app));
    AppTest::WriteBytes(f.Path("in.prl"), AppTest::EmptyListBytes(5));

    ASSERT_EQ(second.Run({"-f", "in.prl", "out.txt"}, f.dir.path()), 0);
    EXPECT_TRUE(QFileInfo::exists(f.Path("out.txt")));
    QCoreApplication::processEvents();
    EXPECT_TRUE(second.received.isEmpty());
}

}  // namespace
}  // namespace Tarn
