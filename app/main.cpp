#include <QApplication>

#include "app/TessaryApp.h"

int main(int argc, char** argv) {
    Tarn::ChooseHeadlessPlatform(argc, argv);
    QApplication qapp(argc, argv);
    Tarn::CTessaryApp app;
    QStringList args = QApplication::arguments();
    args.removeFirst();
    if (!app.InitInstance(args)) return app.ExitCode();
    return QApplication::exec();
}
