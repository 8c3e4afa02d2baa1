// The dialogs: what they take from their fields, their keys, their help; and a
// round through all of them in both palettes.
#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "data/script_loading.h"
#include "options/frmOptions.h"
#include "reports/frmReport.h"
#include "shell/qt/appearance.h"
#include "shell/qt/help_window.h"
#include "shell/qt/mark_colors.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/screen_dialog.h"
#include "shell/qt/text_pane_widget.h"
#include "shell_qt/screen_tour.h"
#include "structcompare/frmCompareText.h"
#include "structcompare/modMarkDifferences.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace zov {
namespace {

namespace cmd = command;
using test::Desktop;

template <typename Widget>
Widget* child(QWidget* screen, const char* name) {
    auto* widget = screen->findChild<Widget*>(QLatin1String(name));
    if (!widget) ADD_FAILURE() << "no " << name << " in " << screen->objectName().toStdString();
    return widget;
}

TEST(Screens, EveryScreenOpensAndHasItsHelpPage) {
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        Desktop desktop;
        desktop.show();
        QStringList seen;
        test::makeTour(desktop, [&](const QString& name, QWidget& screen) {
            seen += name;
            const QImage picture = screen.grab().toImage();
            std::set<QRgb> colors;
            for (int x = 0; x < picture.width(); x += 3)
                for (int y = 0; y < picture.height(); y += 3) colors.insert(picture.pixel(x, y));
            EXPECT_GT(colors.size(), 5U) << name.toStdString() << " is empty";
            if (name == u"frmIgnoreColumnsAdd") {
                EXPECT_NE(screen.findChild<QPushButton*>(QStringLiteral("cmdHelp")), nullptr);
            }
            const QString page = name == u"printPreview" ? QStringLiteral("printing")
                                 : name == u"helpWindow" ? QStringLiteral("index")
                                                         : name.toLower();
            EXPECT_TRUE(QFile::exists(qt::helpFolder() + page + QStringLiteral(".html")))
                << page.toStdString();
        });
        EXPECT_EQ(seen.size(), screenTour(desktop).size() + 1);
        EXPECT_EQ(desktop.user.takeSeen(), QStringList());
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(Screens, EveryButtonHasALetterOfItsOwn) {
    Desktop desktop;
    desktop.show();
    test::makeTour(desktop, [&](const QString& name, QWidget& screen) {
        if (name == u"printPreview" || name == u"helpWindow") return;
        QStringList letters;
        const auto take = [&](const QWidget* widget, const QString& text) {
            if (!widget->isVisible()) return;
            const qsizetype at = text.indexOf(u'&');
            if (at >= 0) letters += text.mid(at + 1, 1).toLower();
        };
        for (const QPushButton* button : screen.findChildren<QPushButton*>()) {
            // What stands beside a field has the field's letter.
            if (button->text() == u"...") continue;
            EXPECT_TRUE(button->text().contains(u'&'))
                << name.toStdString() << ": " << button->text().toStdString();
            take(button, button->text());
        }
        for (const QLabel* label : screen.findChildren<QLabel*>())
            if (label->buddy()) take(label, label->text());
        for (const QCheckBox* box : screen.findChildren<QCheckBox*>()) take(box, box->text());
        const QString all = letters.join(u' ');
        letters.sort();
        EXPECT_EQ(letters.removeDuplicates(), 0) << name.toStdString() << ": " << all.toStdString();
    });
}

TEST(Screens, AServerIsAddedWithTheKeyboardAlone) {
    Desktop desktop;
    ServerInfo other;
    other.Name = QStringLiteral("local:other");
    LoadScripts(other, QStringLiteral("some"),
                {desktop.home.write(QStringLiteral("some.sql"), "CREATE TABLE T (A int)")});
    desktop.show(false);
    desktop.user.plan([&](QWidget* screen) {
        auto* server = child<QLineEdit>(screen, "txtServer");
        EXPECT_EQ(QApplication::focusWidget(), server);
        QTest::keyClick(server, Qt::Key_Return);
        EXPECT_TRUE(test::activate(*screen));
        // Refused: the focus is where the mistake is.
        EXPECT_EQ(QApplication::focusWidget(), server);
        QTest::keyClicks(server, QStringLiteral("local:other"));
        EXPECT_FALSE(child<QWidget>(screen, "fraLogin")->isEnabled());
        QTest::keyClick(server, Qt::Key_Return);
    });
    // The box is answered by a timer, behind the screen's back.
    desktop.window().runCommand(cmd::AddServer);
    QStringList names;
    for (const ServerInfo& server : globals().gtServers) names += server.Name;
    EXPECT_EQ(names, QStringList({QStringLiteral("local:shop"), QStringLiteral("local:other")}));
    EXPECT_EQ(desktop.user.takeSeen().join(u'/').toStdString(), "Please enter server name.");
}

TEST(Screens, TheLoginFieldsFollowTheKindOfLogin) {
    Desktop desktop;
    frmAddServer form;
    desktop.user.plan([&](QWidget* screen) {
        auto* login = child<QLineEdit>(screen, "txtLogin");
        EXPECT_FALSE(login->isEnabled());
        child<QRadioButton>(screen, "optGen_1")->click();
        EXPECT_TRUE(login->isEnabled());
        login->setText(QStringLiteral("reader"));
        child<QLineEdit>(screen, "txtServer")->setText(QStringLiteral("kept"));
        child<QRadioButton>(screen, "optGen_0")->click();
        EXPECT_EQ(login->text(), QString());
        EXPECT_EQ(child<QLineEdit>(screen, "txtServer")->text(), QStringLiteral("kept"));
        EXPECT_EQ(child<QLineEdit>(screen, "txtPassword")->echoMode(), QLineEdit::Password);
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    EXPECT_FALSE(form.ShowUp());
    EXPECT_TRUE(desktop.user.isDone());
}

TEST(Screens, AReportWithTwoFormsShowsTheOneThatIsTicked) {
    Desktop desktop;
    const auto report = [&](const ReportAlternative& alternative,
                            const std::function<void(QPlainTextEdit*, QCheckBox*)>& look) {
        globals().gstrReport = QStringLiteral("first");
        desktop.user.plan([&](QWidget* screen) {
            look(child<QPlainTextEdit>(screen, "txtReport"),
                 child<QCheckBox>(screen, "chkAlternative"));
            QTest::keyClick(screen, Qt::Key_Escape);
        });
        frmReport().ShowUp_Generic(QStringLiteral("Two"), alternative);
        EXPECT_TRUE(desktop.user.isDone());
    };
    report({QStringLiteral("&Other"), QStringLiteral("second")},
           [](QPlainTextEdit* text, QCheckBox* box) {
               EXPECT_EQ(text->toPlainText(), u"first");
               box->click();
               EXPECT_EQ(text->toPlainText(), u"second");
               EXPECT_TRUE(box->isChecked());
               box->click();
               EXPECT_EQ(text->toPlainText(), u"first");
           });
    report({}, [](QPlainTextEdit* text, QCheckBox* box) {
        EXPECT_FALSE(box->isVisible());
        EXPECT_EQ(text->toPlainText(), u"first");
    });
}

TEST(Screens, TheWindowKnowsEveryRowThatIsSelected) {
    Desktop desktop;
    desktop.show();
    qt::ObjectListView* list = desktop.window().list(SourcePanel);
    list->selectAll();
    const std::vector<int> rows = desktop.window().selectedRows(SourcePanel);
    ASSERT_GT(list->rowCount(), 1);
    EXPECT_EQ(int(rows.size()), list->rowCount());
    EXPECT_EQ(rows.front(), 0);
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end()));
}

TEST(Screens, StoredNumbersThatABoxCantShowAreNoChange) {
    Desktop desktop;
    desktop.show();
    globals().glngTimeout = -5;
    globals().glngMaxRowsInDiffTable = -1;
    globals().glngCacheSize = 2'000'000'000;
    desktop.user.plan([&](QWidget* screen) { QTest::keyClick(screen, Qt::Key_Escape); });
    desktop.window().runCommand(cmd::Options);
    EXPECT_EQ(desktop.user.takeSeen(), QStringList()) << "asked whether to save";
    EXPECT_EQ(globals().glngTimeout, -5);
    desktop.user.plan([&](QWidget* screen) {
        child<QSpinBox>(screen, "txtTimeout")->setValue(3);
        child<QSpinBox>(screen, "txtMaxRows")->setValue(20);
        QTest::keyClick(screen, Qt::Key_Return);
    });
    desktop.window().runCommand(cmd::Options);
    EXPECT_EQ(globals().glngTimeout, 3);
    EXPECT_EQ(globals().glngCacheSize, 2'000'000'000);
}

TEST(Screens, OptionsAreSavedFromTheirPagesAndEscAsksFirst) {
    Desktop desktop;
    desktop.show();
    desktop.user.plan([&](QWidget* screen) {
        child<QCheckBox>(screen, "chkIgnoreComments")->setChecked(false);
        child<QSpinBox>(screen, "txtTimeout")->setValue(77);
        QTest::keyClick(screen, Qt::Key_Return);
    });
    desktop.window().runCommand(cmd::Options);
    EXPECT_FALSE(globals().gblnIgnoreComments);
    EXPECT_EQ(globals().glngTimeout, 77);

    desktop.user.answer(QMessageBox::No);
    desktop.user.plan([&](QWidget* screen) {
        child<QCheckBox>(screen, "chkIgnoreComments")->setChecked(true);
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    desktop.window().runCommand(cmd::Options);
    EXPECT_EQ(desktop.user.takeSeen().size(), 1) << "asked about the change";
    EXPECT_FALSE(globals().gblnIgnoreComments);
}

TEST(Screens, AFilterNarrowsThePanelAndItsSignTakesItOff) {
    Desktop desktop;
    desktop.show();
    desktop.user.plan([&](QWidget* screen) {
        auto* list = child<QListWidget>(screen, "rpcReport");
        list->item(0)->setCheckState(Qt::Unchecked);
        for (int row = 1; row < list->count(); ++row) {
            EXPECT_EQ(list->item(row)->checkState(), Qt::Unchecked);
            if (list->item(row)->text() == u"sales") list->item(row)->setCheckState(Qt::Checked);
        }
        QTest::keyClick(screen, Qt::Key_Return);
    });
    desktop.find<QAbstractButton>("cmdFilterBySchema_0")->click();
    EXPECT_EQ(desktop.controller().objects(SourcePanel).rowCount(), 1);
    auto* sign = desktop.find<QAbstractButton>("srtFiltering_0");
    EXPECT_TRUE(sign->isVisible());
    sign->click();
    EXPECT_FALSE(sign->isVisible());
    EXPECT_EQ(desktop.controller().objects(SourcePanel).rowCount(), 3);
}

TEST(Screens, TheColorScreenShowsTheShadesInUse) {
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        Desktop desktop;
        desktop.show();
        desktop.user.plan([&](QWidget* screen) {
            const auto swatches = frmColorSchema::swatches();
            for (size_t i = 0; i < swatches.size(); ++i) {
                const auto* label = child<QLabel>(
                    screen, QStringLiteral("lblCol_%1").arg(i).toLatin1().constData());
                EXPECT_EQ(
                    label->palette().color(QPalette::Window),
                    qt::shownMarkColor(swatches[i].color, desktop.window().pane(0)->palette()));
            }
            QTest::keyClick(screen, Qt::Key_Return);
        });
        desktop.window().runCommand(cmd::ColorSchema);
        EXPECT_TRUE(desktop.user.isDone());
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(Screens, AChoiceInTheFindScreenSelectsTheObject) {
    Desktop desktop;
    desktop.show();
    desktop.user.plan([&](QWidget* screen) {
        auto* text = child<QLineEdit>(screen, "txtFind");
        QTest::keyClicks(text, QStringLiteral("inv"));
        QTest::keyClick(text, Qt::Key_Return);
        auto* found = child<QListWidget>(screen, "lstFound");
        ASSERT_EQ(found->count(), 1);
        found->setCurrentRow(0);
        child<QPushButton>(screen, "cmdOK")->click();
    });
    desktop.window().runCommand(cmd::FindInSource);
    const ObjectList& list = desktop.controller().objects(SourcePanel);
    EXPECT_EQ(list.row(list.selectedIndex()).name, QStringLiteral("Invoice"));
}

TEST(HelpPages, EveryLinkLeadsToAPageOrAPictureThatIsThere) {
    QDir folder(qt::helpFolder());
    ASSERT_TRUE(folder.exists());
    static const QRegularExpression link(QStringLiteral("(?:href|src)=\"([^\"#]+)"));
    int links = 0;
    for (const QString& name : folder.entryList({QStringLiteral("*.html")})) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        for (auto it = link.globalMatch(text); it.hasNext(); ++links) {
            const QString target = it.next().captured(1);
            if (target.contains(u':')) continue;
            EXPECT_TRUE(folder.exists(target))
                << name.toStdString() << ": " << target.toStdString();
        }
    }
    EXPECT_GT(links, 40);
}

}  // namespace
}  // namespace zov
