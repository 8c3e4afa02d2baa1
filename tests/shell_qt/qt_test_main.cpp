// The entry of the widgets' tests: an application object with windows, shown nowhere.
#include <gtest/gtest.h>

#include "shell/qt/appearance.h"
#include "shell/qt/qt_shell.h"

#include <QApplication>

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    zov::qt::initDesktopResources();
    zov::qt::applyAppearance(zov::qt::Appearance::Light);
    return RUN_ALL_TESTS();
}
