// Makes the pictures of the help and the README: the screens on the samples, in both
// palettes, without a display.
#include "shell/qt/appearance.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/object_list_view.h"
#include "shell_qt/screen_tour.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QPushButton>
#include <QTemporaryFile>
#include <QTest>

#include <cstdio>

namespace {

using namespace zov;

QString sample(const char* name) {
    QFile file(QStringLiteral(ZOV_SOURCE_ROOT "/samples/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

int distance(QRgb a, QRgb b) {
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

/// A window has few colours: in a table they make a picture of a third of the size. Where they are
/// more than a table holds, near ones share an entry, that of the more frequent one.
QImage compact(const QImage& picture) {
    QHash<QRgb, int> seen;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) ++seen[picture.pixel(x, y) | 0xFF000000];
    QList<QRgb> colors = seen.keys();
    std::sort(colors.begin(), colors.end(),
              [&](QRgb a, QRgb b) { return seen[a] != seen[b] ? seen[a] > seen[b] : a < b; });
    QList<QRgb> table;
    for (int tolerance = 0; table.isEmpty(); tolerance += 2) {
        for (const QRgb color : colors)
            if (std::none_of(table.begin(), table.end(),
                             [&](QRgb chosen) { return distance(color, chosen) <= tolerance; }))
                table += color;
        if (table.size() > 256) table.clear();
    }
    return picture.convertToFormat(QImage::Format_Indexed8, table,
                                   Qt::ThresholdDither | Qt::AvoidDither);
}

/// The pages that show pictures, as one text.
QString allPages() {
    QString pages;
    QDir help(QStringLiteral(ZOV_SOURCE_ROOT "/docs/help"));
    QStringList paths = {QStringLiteral(ZOV_SOURCE_ROOT "/README.md")};
    for (const QString& name : help.entryList({QStringLiteral("*.html")}))
        paths += help.filePath(name);
    for (const QString& path : paths) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly)) pages += QString::fromUtf8(file.readAll());
    }
    return pages;
}

class Album {
 public:
    Album(const QString& folder, bool everything)
        : folder_(folder), pages_(everything ? QString() : allPages()), everything_(everything) {}

    void add(QWidget& widget, const QString& name) {
        const QString file = name + u'-' + palette + QStringLiteral(".png");
        if (!everything_ && !pages_.contains(QStringLiteral("images/") + file)) return;
        QApplication::processEvents();
        const QImage picture = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
        if (compact(picture).save(folder_ + u'/' + file, "PNG", 0)) return;
        std::fprintf(stderr, "Can't write %s\n", qPrintable(folder_ + u'/' + file));
        isWhole = false;
    }

    QString palette;
    bool isWhole = true;

 private:
    QString folder_;
    QString pages_;
    bool everything_;
};

void makePictures(Album& album, qt::Appearance appearance) {
    qt::applyAppearance(appearance);
    album.palette = qt::appearanceText(appearance);
    test::Desktop desktop({QStringLiteral("local:samples"), QStringLiteral("shop_before"),
                           sample("shop_before.sql"), QStringLiteral("shop_after"),
                           sample("shop_after.sql")});
    qt::MainWindow& window = desktop.show();
    window.resize(1200, 800);
    desktop.select(QStringLiteral("Customer"), QStringLiteral("Customer"));
    desktop.compare();
    window.goToDifference(true);
    QTest::qWait(50);
    album.add(window, QStringLiteral("main"));
    test::makeTour(desktop, [&](const QString& name, QWidget& screen) {
        if (auto* start = screen.findChild<QPushButton*>(QStringLiteral("cmdStart")))
            start->click();
        album.add(screen, name.toLower());
    });
}

}  // namespace

int main(int argc, char** argv) {
    // The display that is made up by default is smaller than some screens want to be.
    QTemporaryFile display;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && display.open()) {
        display.write(
            "{\"screens\":[{\"name\":\"s\",\"x\":0,\"y\":0,\"width\":1920,\"height\":1200,"
            "\"logicalDpi\":96,\"logicalBaseDpi\":96,\"dpr\":1}]}");
        display.flush();
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + display.fileName().toUtf8());
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qt::initDesktopResources();
    const bool everything = argc == 3 && qstrcmp(argv[1], "--all") == 0;
    if (argc != (everything ? 3 : 2)) {
        std::fputs(
            "Usage: zovrand_pictures [--all] FOLDER\n"
            "Makes the pictures that README.md and docs/help show; --all: of all screens.\n",
            stderr);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[argc - 1]);
    QDir().mkpath(folder);
    Album album(folder, everything);
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark})
        makePictures(album, appearance);
    return album.isWhole ? 0 : 1;
}
