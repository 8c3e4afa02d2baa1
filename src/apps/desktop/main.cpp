// The desktop program.
#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/product.h"
#include "data/server_list.h"
#include "shell/qt/desktop_screens.h"
#include "shell/qt/main_window.h"
#include "shell/qt/qt_shell.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(zov::product::Name);
    QApplication::setDesktopFileName(QStringLiteral("zovrand"));
    Q_INIT_RESOURCE(icons);

    zov::qt::QtShell shell;
    zov::installShell(&shell);
    zov::RunStartUp(QApplication::arguments().mid(1).join(u' '),
                    [] { zov::LoadServersFromRegistry(); });

    zov::qt::DesktopScreens screens;
    zov::qt::MainWindow window(screens);
    screens.setWindow(&window);
    zov::installReportPrinter(&screens);
    shell.setMainWindow(&window);
    window.controller().Form_Load();
    window.show();
    const int status = QApplication::exec();
    zov::installShell(nullptr);
    return status;
}
