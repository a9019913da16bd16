#include <QApplication>
#include <memory>

#include "app/SingleInstance.h"
#include "app/TessaryApp.h"

int main(int argc, char** argv) {
    Tarn::ChooseHeadlessPlatform(argc, argv);
    QApplication qapp(argc, argv);
    // Ties the windows to the installed desktop entry (its icon, and the window-to-launcher
    // match of Wayland compositors).
    QGuiApplication::setDesktopFileName(QStringLiteral("com.example.halvane.Tarn"));
    QStringList args = QApplication::arguments();
    args.removeFirst();

    const QStringList files = Tarn::FilesToOpen(args);
    std::unique_ptr<Tarn::SingleInstance> instance;
    if (Tarn::WantsRunningEditor(args)) {
        instance = std::make_unique<Tarn::SingleInstance>(Tarn::DefaultSessionSocketPath());
        if (instance->HandOff(files)) return 0;
        // When the socket cannot be made this editor simply runs on its own.
        instance->Listen();
    }

    // Start-up opens the first file as it opens any file named on its command line; the others
    // open as the desktop's open does.
    QStringList startArgs;
    bool firstFileKept = false;
    for (const QString& a : args) {
        const bool isFile = !files.isEmpty() && files.contains(a);
        if (!isFile || !firstFileKept) startArgs << a;
        if (isFile) firstFileKept = true;
    }
    Tarn::CTessaryApp app;
    if (!app.InitInstance(files.size() > 1 ? startArgs : args)) return app.ExitCode();
    for (qsizetype i = 1; i < files.size(); ++i) app.OpenDocumentFile(files[i]);
    if (instance && instance->IsListening()) {
        QObject::connect(instance.get(), &Tarn::SingleInstance::filesReceived, &app,
                         [&app](const QStringList& handed) { Tarn::OpenHandedFiles(app, handed); });
    }
    return QApplication::exec();
}
