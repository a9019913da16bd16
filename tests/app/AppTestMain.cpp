// Runs the editor tests inside one QApplication on the offscreen platform, with settings and
// recovery copies kept in private folders so no test reads or writes the user's own.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <cstdlib>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QTemporaryDir config;
    setenv("XDG_CONFIG_HOME", config.path().toLocal8Bit().constData(), 1);
    QTemporaryDir state;
    setenv("XDG_STATE_HOME", state.path().toLocal8Bit().constData(), 1);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
