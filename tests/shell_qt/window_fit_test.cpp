// Screens that fit their display, names that fit their screens, and names that look
// like markup.
#include "shell/qt/window_fit.h"

#include "data/frmAddServer.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/text_pane_widget.h"
#include "shell_qt/data_stops.h"
#include "shell_qt/screen_tour.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

namespace zov {
namespace {

namespace cmd = command;
using test::Desktop;

TEST(WindowFit, ANameIsCutInItsMiddleAndItsLabelKeepsIt) {
    const QString name = QStringLiteral("a-very-long-server-name.of.some.company.example,14330");
    qt::ElidedLabel label(name);
    label.resize(120, 20);
    EXPECT_EQ(label.text(), name);
    EXPECT_TRUE(label.shownText().contains(u'\u2026'));
    EXPECT_TRUE(label.shownText().endsWith(QStringLiteral("0")));
    EXPECT_LT(label.minimumSizeHint().width(), 100);
    label.resize(2000, 20);
    EXPECT_EQ(label.shownText(), name);
    label.setText(QString(4000, u'x'));
    EXPECT_LT(label.sizeHint().width(), 1000);
}

TEST(WindowFit, MarkupInAToolTipIsText) {
    EXPECT_EQ(qt::plainToolTip(QStringLiteral("a < b & c")), QStringLiteral("a < b & c"));
    const QString shown = qt::plainToolTip(QStringLiteral("<b>x</b> & y"));
    EXPECT_TRUE(Qt::mightBeRichText(shown));
    EXPECT_TRUE(shown.contains(QStringLiteral("&lt;b&gt;x&lt;/b&gt; &amp; y")));
}

TEST(WindowFit, ABoxIsNeverLargerThanTheScreen) {
    Desktop desktop;
    desktop.show(false);
    for (const QString& text :
         {QString(3000, u'x'), QStringLiteral("line\r\n").repeated(400),
          QStringLiteral("many words ").repeated(900), QStringLiteral("short")}) {
        QMessageBox box(QMessageBox::Information, QStringLiteral("T"), text, QMessageBox::Ok);
        box.setTextFormat(Qt::PlainText);
        qt::fitBox(box);
        box.show();
        QApplication::processEvents();
        const QSize room = box.screen()->availableSize();
        EXPECT_LE(box.frameGeometry().width(), room.width()) << text.left(10).toStdString();
        EXPECT_LE(box.frameGeometry().height(), room.height()) << text.left(10).toStdString();
        EXPECT_EQ(box.text(), text);
        const auto* field = box.findChild<QPlainTextEdit*>(QStringLiteral("longText"));
        EXPECT_EQ(field != nullptr, text.size() > 10);
        if (!field) continue;
        EXPECT_EQ(field->toPlainText().size(), QString(text).remove(u'\r').size());
    }
}

/// Opens every screen, with a server's name of 150 letters, and looks at its size and place.
void expectScreensToFit() {
    Desktop desktop({QStringLiteral("local:") + QString(150, u's'), QStringLiteral("before"),
                     test::smallShop().sourceScript, QStringLiteral("after"),
                     test::smallShop().targetScript});
    qt::MainWindow& window = desktop.show();
    const QRect room = window.screen()->availableGeometry();
    EXPECT_TRUE(room.contains(window.frameGeometry()))
        << window.width() << "x" << window.height() << " on " << room.width() << "x"
        << room.height();
    test::makeTour(desktop, [&](const QString& name, QWidget& screen) {
        const QRect frame = screen.frameGeometry();
        EXPECT_TRUE(room.contains(frame))
            << name.toStdString() << " " << frame.x() << "," << frame.y() << " " << frame.width()
            << "x" << frame.height() << " on " << room.width() << "x" << room.height();
        // What ends the screen is in sight.
        for (const QPushButton* button : screen.findChildren<QPushButton*>()) {
            if (!button->isVisible() || !button->isDefault()) continue;
            const QRect at(button->mapTo(&screen, QPoint()), button->size());
            EXPECT_TRUE(screen.rect().contains(at))
                << name.toStdString() << ": " << button->text().toStdString();
        }
    });
}

TEST(WindowFit, EveryScreenFitsItsDisplay) {
    expectScreensToFit();
}

// Other displays need another process: see the next test.
TEST(WindowFit, DISABLED_EveryScreenFitsTheDisplayOfThisProcess) {
    expectScreensToFit();
}

TEST(WindowFit, EveryScreenFitsSmallDisplays) {
    const struct {
        int width, height;
        const char* scale;
    } displays[] = {{1366, 768, "1"}, {1366, 768, "2"}, {640, 480, "1"}};
    QTemporaryDir folder;
    for (const auto& display : displays) {
        QFile file(folder.filePath(QStringLiteral("display.json")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(
            QStringLiteral("{\"screens\":[{\"name\":\"s\",\"x\":0,\"y\":0,\"width\":%1,"
                           "\"height\":%2,\"logicalDpi\":96,\"logicalBaseDpi\":96,\"dpr\":1}]}")
                .arg(display.width)
                .arg(display.height)
                .toUtf8());
        file.close();
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"),
                           QStringLiteral("offscreen:configfile=") + file.fileName());
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QLatin1String(display.scale));
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QApplication::applicationFilePath(),
                      {QStringLiteral("--gtest_also_run_disabled_tests"),
                       QStringLiteral("--gtest_filter=WindowFit.DISABLED_*")});
        ASSERT_TRUE(process.waitForFinished(120'000));
        EXPECT_EQ(process.exitCode(), 0)
            << display.width << "x" << display.height << " scale " << display.scale << "\n"
            << process.readAll().toStdString();
    }
}

TEST(WindowFit, ScreensAndBoxesComeUpOverTheirParent) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    window.setGeometry(60, 40, 600, 500);
    QApplication::processEvents();
    // Its centre over the parent's, as far as the display has room for that.
    const auto isOver = [](const QWidget& child, const QWidget& parent) {
        const QRect room = parent.screen()->availableGeometry();
        QRect place(QPoint(), child.frameGeometry().size());
        place.moveCenter(parent.frameGeometry().center());
        place.moveLeft(std::max(room.left(), std::min(place.left(), room.right() - place.width())));
        place.moveTop(std::max(room.top(), std::min(place.top(), room.bottom() - place.height())));
        return (child.frameGeometry().center() - place.center()).manhattanLength() < 60;
    };
    desktop.user.plan([&](QWidget* screen) {
        EXPECT_TRUE(isOver(*screen, window)) << screen->objectName().toStdString();
        EXPECT_EQ(screen->parentWidget(), &window);
        // What a report opens comes up over the report.
        desktop.user.plan([&](QWidget* preview) {
            EXPECT_EQ(preview->objectName(), QStringLiteral("printPreview"));
            EXPECT_EQ(preview->parentWidget(), screen);
            static_cast<QDialog*>(preview)->reject();
        });
        screen->findChild<QPushButton*>(QStringLiteral("cmdPrint"))->click();
        static_cast<QDialog*>(screen)->reject();
    });
    window.runCommand(cmd::CompareSelected);
    EXPECT_TRUE(desktop.user.isDone());
    EXPECT_EQ(desktop.user.takeSeen(), QStringList());
}

TEST(WindowFit, SaveDialogsBeginInTheDocumentsFolder) {
    Desktop desktop;
    desktop.show();
    QDir(globals().gstrUserDataFolder).removeRecursively();
    QString folder, name;
    for (const QString& given :
         {globals().gstrUserDataFolder + QStringLiteral("Report.txt"), QStringLiteral("Report.txt"),
          QStringLiteral("/no/such/folder/Report.txt")}) {
        desktop.user.plan([&](QWidget* dialog) {
            auto* files = qobject_cast<QFileDialog*>(dialog);
            ASSERT_NE(files, nullptr);
            folder = files->directory().absolutePath() + u'/';
            name = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text();
            files->reject();
        });
        EXPECT_EQ(desktop.shell.askSavePath(QStringLiteral("Save"), QStringLiteral("*.*"), given),
                  QString());
        EXPECT_EQ(folder, globals().gstrUserDataFolder) << given.toStdString();
        EXPECT_EQ(name, QStringLiteral("Report.txt")) << given.toStdString();
    }
}

TEST(WindowFit, NamesThatLookLikeMarkupAreShownAsTheyAre) {
    Desktop desktop({QStringLiteral("local:shop"), QStringLiteral("before"),
                     QStringLiteral("CREATE TABLE dbo.[<b>T</b>] (A int)\nGO\n"),
                     QStringLiteral("after"),
                     QStringLiteral("CREATE TABLE dbo.[<b>T</b>] (B int)\nGO\n")});
    qt::MainWindow& window = desktop.show();
    const auto expectPlain = [](const QString& where, const QWidget& parent) {
        for (const QLabel* label : parent.findChildren<QLabel*>()) {
            if (!label->text().contains(QStringLiteral("<b>"))) continue;
            EXPECT_EQ(label->textFormat(), Qt::PlainText)
                << where.toStdString() << ": " << label->text().toStdString();
        }
    };
    expectPlain(QStringLiteral("frmMain"), window);
    test::makeTour(desktop, [&](const QString& name, QWidget& screen) {
        if (name != u"frmAbout") expectPlain(name, screen);
    });
    const QAbstractItemModel* model = window.list(0)->model();
    EXPECT_TRUE(
        model->index(0, 0).data(Qt::ToolTipRole).toString().contains(QStringLiteral("&lt;b&gt;T")));
}

TEST(WindowFit, EnterInTheReportsFindFieldFinds) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    desktop.user.plan([&](QWidget* screen) {
        auto* field = screen->findChild<QLineEdit*>(QStringLiteral("findText"));
        auto* note = screen->findChild<QLabel*>(QStringLiteral("findNote"));
        auto* text = screen->findChild<QPlainTextEdit*>(QStringLiteral("txtReport"));
        ASSERT_TRUE(field && note && text);
        QTest::keyClick(screen, Qt::Key_F, Qt::ControlModifier);
        EXPECT_EQ(QApplication::focusWidget(), field);
        QTest::keyClicks(field, QStringLiteral("customer"));
        EXPECT_EQ(note->text(), QStringLiteral("1 of 2"));
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_TRUE(screen->isVisible()) << "Enter closed the report";
        EXPECT_EQ(note->text(), QStringLiteral("2 of 2"));
        EXPECT_EQ(text->textCursor().selectedText(), QStringLiteral("Customer"));
        QTest::keyClick(field, Qt::Key_Enter);
        EXPECT_EQ(note->text(), QStringLiteral("1 of 2"));
        QTest::keyClick(field, Qt::Key_Return, Qt::ShiftModifier);
        EXPECT_EQ(note->text(), QStringLiteral("2 of 2"));
        QTest::keyClicks(field, QStringLiteral("s?"));
        EXPECT_EQ(note->text(), QStringLiteral("not found"));
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_TRUE(screen->isVisible());
        // From the text Enter is the button's as before.
        text->setFocus();
        QTest::keyClick(text, Qt::Key_Return);
        EXPECT_FALSE(screen->isVisible());
    });
    window.runCommand(cmd::CompareSelected);
    EXPECT_TRUE(desktop.user.isDone());
}

}  // namespace
}  // namespace zov
