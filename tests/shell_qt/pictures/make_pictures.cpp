// Makes the pictures of the help and the README: every screen on the samples, in
// both palettes, without a display.
#include "shell/qt/appearance.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/object_list_view.h"
#include "shell_qt/screen_tour.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTest>

#include <cstdio>

namespace {

using namespace zov;

QString sample(const char* name) {
    QFile file(QStringLiteral(ZOV_SOURCE_ROOT "/samples/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// A flat window has few colours: those in a table make a picture of a third of the size. One with
/// more than a table holds stays as it is.
QImage compact(const QImage& picture) {
    QSet<QRgb> seen;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) seen.insert(picture.pixel(x, y) | 0xFF000000);
    if (seen.size() > 256) return picture;
    return picture.convertToFormat(QImage::Format_Indexed8, QList<QRgb>(seen.begin(), seen.end()));
}

bool save(QWidget& widget, const QString& path) {
    QApplication::processEvents();
    const QImage picture = compact(widget.grab().toImage().convertToFormat(QImage::Format_RGB32));
    if (picture.save(path, "PNG", 0)) return true;
    std::fprintf(stderr, "Can't write %s\n", qPrintable(path));
    return false;
}

bool makePictures(const QString& folder, qt::Appearance appearance) {
    qt::applyAppearance(appearance);
    const QString suffix = u'-' + qt::appearanceText(appearance) + QStringLiteral(".png");
    test::Desktop desktop({QStringLiteral("local:samples"), QStringLiteral("shop_before"),
                           sample("shop_before.sql"), QStringLiteral("shop_after"),
                           sample("shop_after.sql")});
    qt::MainWindow& window = desktop.show();
    window.resize(1200, 800);
    desktop.select(QStringLiteral("Customer"), QStringLiteral("Customer"));
    desktop.compare();
    window.goToDifference(true);
    QTest::qWait(50);
    bool saved = save(window, folder + QStringLiteral("/main") + suffix);
    test::makeTour(desktop, [&](const QString& name, QWidget& screen) {
        saved = save(screen, folder + u'/' + name.toLower() + suffix) && saved;
    });
    return saved;
}

}  // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qt::initDesktopResources();
    if (argc != 2) {
        std::fputs("Usage: zovrand_pictures FOLDER\n", stderr);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(folder);
    const bool light = makePictures(folder, qt::Appearance::Light);
    const bool dark = makePictures(folder, qt::Appearance::Dark);
    return light && dark ? 0 : 1;
}
