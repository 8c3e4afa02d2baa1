// The main window over two small databases: what its menus offer, its keys, the
// road through the differences, what it keeps for the next start.
#include "core/settings.h"
#include "data/server_list.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/find_bar.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/text_pane_widget.h"
#include "shell_qt/desktop.h"
#include "structcompare/modMarkDifferences.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSplitter>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QToolBar>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace zov {
namespace {

namespace cmd = command;
using test::Desktop;

void chooseType(Desktop& desktop, ObjectType type) {
    auto* box = desktop.find<qt::ChoiceCombo>("cmbType");
    for (int i = 0; i < box->QComboBox::count(); ++i)
        if (box->QComboBox::itemData(i).toInt() == int(type)) box->setCurrentIndex(i);
    emit box->activated(box->currentIndex());
}

QString rowsOf(const qt::ObjectListView& list) {
    QStringList names;
    for (int row = 0; row < list.rowCount(); ++row) names += list.row(row).name;
    return names.join(u' ');
}

TEST(MainWindow, EveryCommandOfTheTableIsInAMenuUnderItsCaptionAndKey) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show(false);
    desktop.user.takeSeen();
    for (const CommandEntry& entry : commandTable()) {
        const QAction* action = window.action(entry.id);
        if (entry.menu == CommandMenu::PanePopUp || entry.menu == CommandMenu::Debug) {
            EXPECT_EQ(action, nullptr) << entry.id;
            continue;
        }
        ASSERT_NE(action, nullptr) << entry.id;
        EXPECT_EQ(action->text(), QLatin1String(entry.caption));
        EXPECT_EQ(action->isEnabled(), entry.isBuilt) << entry.caption;
        EXPECT_EQ(action->shortcut(), QKeySequence(QLatin1String(entry.key))) << entry.caption;
    }
}

TEST(MainWindow, NoTwoEntriesOfAMenuShareALetter) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show(false);
    const std::function<void(const QList<QAction*>&, const QString&)> check =
        [&](const QList<QAction*>& actions, const QString& where) {
            QStringList letters;
            for (const QAction* action : actions) {
                const qsizetype at = action->text().indexOf(u'&');
                if (at >= 0) letters += action->text().mid(at + 1, 1).toLower();
                if (action->menu()) check(action->menu()->actions(), action->text());
            }
            letters.sort();
            // "Compare &Selected Objects" and "&Selective Comparisons" are as its users know them.
            const int shared = where == u"&Comparisons" ? 1 : 0;
            EXPECT_EQ(letters.removeDuplicates(), shared) << where.toStdString();
        };
    check(window.menuBar()->actions(), QStringLiteral("the menu bar"));
    // The letters of the window's labels are free of those of the menu bar.
    QStringList all;
    for (const QAction* action : window.menuBar()->actions())
        all += action->text().mid(action->text().indexOf(u'&') + 1, 1).toLower();
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        const qsizetype at = label->buddy() ? label->text().indexOf(u'&') : -1;
        if (at >= 0) all += label->text().mid(at + 1, 1).toLower();
    }
    EXPECT_EQ(all.removeDuplicates(), 0) << all.join(u' ').toStdString();
}

TEST(MainWindow, WithoutAServerItAsksForOneAtItsFirstActivation) {
    Desktop desktop;
    RemoveServer(QStringLiteral("local:shop"));
    LoadServersFromRegistry();
    desktop.user.plan([](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), QStringLiteral("frmAddServer"));
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    desktop.show(false);
    EXPECT_TRUE(test::waitUntil([&] { return desktop.user.isDone(); }));
    EXPECT_EQ(
        desktop.user.takeSeen(),
        QStringList(QStringLiteral(
            "There is no SQL server to connect to.||Please add server by filling in following "
            "form or by clicking menu item 'Tools' -> 'Add Server' and specifying info for the "
            "server.")));
    EXPECT_TRUE(desktop.window().isVisible());
}

TEST(MainWindow, AnEmptyListSaysWhatToDoNext) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show(false);
    EXPECT_EQ(window.list(0)->emptyText(),
              QStringLiteral("Press Connect to read the databases of the server."));
    window.runCommand(cmd::Connect);
    ASSERT_GT(window.list(0)->rowCount(), 0);
    chooseType(desktop, ObjectType::Trigger);
    // Whether there are none or a filter hides them isn't said: the window doesn't know.
    EXPECT_EQ(window.list(0)->emptyText(),
              QStringLiteral("No triggers are listed. F5 reads the list anew."));
    EXPECT_EQ(window.list(1)->emptyText(),
              QStringLiteral("No triggers are listed. Shift+F5 reads the list anew."));
}

TEST(MainWindow, BothPanelsOpenWithWhatTheCommandLineNames) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    EXPECT_EQ(desktop.user.takeSeen(), QStringList());
    EXPECT_EQ(desktop.controller().database(SourcePanel), QStringLiteral("before"));
    EXPECT_EQ(desktop.controller().database(TargetPanel), QStringLiteral("after"));
    EXPECT_EQ(rowsOf(*window.list(0)), QStringLiteral("Customer Fax Invoice"));
    EXPECT_EQ(rowsOf(*window.list(1)), QStringLiteral("Customer Invoice"));
    EXPECT_TRUE(window.pane(0)->text().contains(QStringLiteral("[Phone]")));
    EXPECT_TRUE(window.pane(1)->text().contains(QStringLiteral("[Email]")));
}

TEST(MainWindow, F7ComparesAndF8WalksThroughTheDifferences) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    chooseType(desktop, ObjectType::Procedure);
    desktop.select(QStringLiteral("Report"), QStringLiteral("Report"));
    QTest::keyClick(&window, Qt::Key_F8);
    EXPECT_EQ(window.statusText(), QStringLiteral("Compare two objects first (F7)."));

    QString report;
    desktop.user.plan([&](QWidget* screen) {
        report = screen->findChild<QPlainTextEdit*>(QStringLiteral("txtReport"))->toPlainText();
        QTest::keyClick(screen, Qt::Key_Escape);
    });
    QTest::keyClick(&window, Qt::Key_F7);
    EXPECT_TRUE(desktop.user.isDone()) << "Esc closes the report";
    EXPECT_TRUE(test::activate(window));
    EXPECT_TRUE(report.contains(QStringLiteral("different."))) << report.toStdString();
    EXPECT_TRUE(window.statusText().startsWith(QStringLiteral("3 differences")))
        << window.statusText().toStdString();

    const auto line = [&](int Index) { return window.pane(Index)->textCursor().blockNumber(); };
    const auto lineText = [&](int Index) {
        return window.pane(Index)->textCursor().block().text().trimmed();
    };
    QTest::keyClick(&window, Qt::Key_F8);
    EXPECT_EQ(lineText(1), QStringLiteral("SELECT 'new'"));
    QTest::keyClick(&window, Qt::Key_F8);
    EXPECT_EQ(lineText(0), QStringLiteral("SELECT 4"));
    QTest::keyClick(&window, Qt::Key_F8);
    EXPECT_EQ(lineText(0), QStringLiteral("SELECT 6"));
    EXPECT_EQ(lineText(1), QStringLiteral("SELECT 60"));
    EXPECT_EQ(line(0), line(1)) << "one line in, one line out";
    QTest::keyClick(&window, Qt::Key_F8);
    EXPECT_EQ(window.statusText(),
              QStringLiteral("There is no further difference in this direction."));
    QTest::keyClick(&window, Qt::Key_F8, Qt::ShiftModifier);
    EXPECT_EQ(window.statusText(), QStringLiteral("Difference 2 of 3"));
}

TEST(MainWindow, ComparedTextsScrollTogetherAndOthersDoNot) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    window.resize(900, 420);
    chooseType(desktop, ObjectType::Procedure);
    desktop.select(QStringLiteral("Report"), QStringLiteral("Report"));
    for (int Index : {0, 1}) window.pane(Index)->setMaximumHeight(60);
    QApplication::processEvents();
    QScrollBar* source = window.pane(0)->verticalScrollBar();
    QScrollBar* target = window.pane(1)->verticalScrollBar();
    ASSERT_GT(source->maximum(), 4);
    source->setValue(4);
    EXPECT_EQ(target->value(), 0) << "nothing compared yet";
    desktop.compare();
    source->setValue(0);
    source->setValue(4);
    EXPECT_EQ(window.pane(1)->document()->findBlockByNumber(target->value()).text(),
              window.pane(0)->document()->findBlockByNumber(4).text());
    target->setValue(0);
    EXPECT_EQ(source->value(), 0) << "and back";
    desktop.select(QStringLiteral("Same"), QStringLiteral("Report"));
    target->setValue(5);
    EXPECT_EQ(source->value(), 0) << "another text is shown";
}

TEST(MainWindow, AComparisonOfEqualTextsHasNoMarksAndSaysSo) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    chooseType(desktop, ObjectType::Procedure);
    desktop.select(QStringLiteral("Same"), QStringLiteral("Same"));
    EXPECT_TRUE(desktop.compare().contains(QStringLiteral("identical.")));
    EXPECT_FALSE(window.pane(0)->hasMarks());
    EXPECT_EQ(window.statusText(), QStringLiteral("The texts are identical."));
    window.goToDifference(true);
    EXPECT_EQ(window.statusText(), QStringLiteral("There is no difference between the texts."));
    desktop.select(QStringLiteral("Report"), QStringLiteral("Same"));
    EXPECT_EQ(window.statusText(), QString()) << "it is no longer about these texts";
}

TEST(MainWindow, WhatTheOptionsLeaveOutIsSaidWhereTextsLookDifferent) {
    Desktop desktop({QStringLiteral("local:shop"), QStringLiteral("before"),
                     QStringLiteral("CREATE TABLE dbo.T (A int)\nGO\n"
                                    "CREATE PROCEDURE dbo.P AS\nSELECT  1\nGO\n"),
                     QStringLiteral("after"),
                     QStringLiteral("CREATE TABLE dbo.T (A int)\nGO\n"
                                    "CREATE PROCEDURE dbo.P AS\n\nSELECT 1\nGO\n")});
    qt::MainWindow& window = desktop.show();
    chooseType(desktop, ObjectType::Procedure);
    EXPECT_TRUE(desktop.compare().contains(QStringLiteral("identical.")));
    window.goToDifference(true);
    EXPECT_EQ(window.statusText(),
              QStringLiteral("No difference that counts. Identical, leaving out white space."));
    // The same texts with white space that counts: the verdict, the marks and the bar go along.
    globals().gblnIgnoreWhitespace = false;
    globals().gblnIgnoreColSeq = false;
    EXPECT_TRUE(desktop.compare().contains(QStringLiteral("different.")));
    window.goToDifference(true);
    EXPECT_TRUE(window.statusText().startsWith(QStringLiteral("Difference 1 of ")))
        << window.statusText().toStdString();
    // And back: the colours stay, the bar follows the verdict.
    globals().gblnIgnoreWhitespace = true;
    EXPECT_TRUE(desktop.compare().contains(QStringLiteral("identical.")));
    EXPECT_TRUE(window.pane(0)->hasMarks());
    EXPECT_EQ(window.statusText(), QStringLiteral("Identical, leaving out white space."));
}

TEST(MainWindow, EmptyLinesOfATableAreNoStop) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    desktop.select(QStringLiteral("Customer"), QStringLiteral("Customer"));
    desktop.compare();
    const QString status = window.statusText();
    ASSERT_TRUE(status.contains(QStringLiteral("difference"))) << status.toStdString();
    for (int i = 0; i < status.section(u' ', 0, 0).toInt(); ++i) {
        window.goToDifference(true);
        const QString source = window.pane(0)->textCursor().block().text().trimmed();
        const QString target = window.pane(1)->textCursor().block().text().trimmed();
        EXPECT_FALSE(source.isEmpty() && target.isEmpty()) << window.statusText().toStdString();
    }
    EXPECT_TRUE(window.pane(1)->plainText().contains(QStringLiteral("\n\n")))
        << "the text has no empty line to pass by";
}

TEST(MainWindow, DebugModeHasItsMenuAndItsPrefix) {
    Desktop desktop;
    globals().gblnDebugMode = true;
    qt::MainWindow& window = desktop.show();
    EXPECT_NE(window.action(cmd::DebugServerVersion), nullptr);
    window.setStatusText(QStringLiteral("Ready"));
    EXPECT_EQ(desktop.find<QLabel>("status")->text(), QStringLiteral("Debug: Ready"));
}

TEST(MainWindow, CtrlAndTheWheelZoomBothTextsAndThatIsKept) {
    Desktop desktop;
    qt::MainWindow* window = &desktop.show();
    const double usual = window->pane(0)->font().pointSizeF();
    const auto turn = [&](int Index, int delta) {
        QWidget* viewport = window->pane(Index)->viewport();
        const QPointF at(10, 10);
        QWheelEvent wheel(at, viewport->mapToGlobal(at), {}, {0, delta}, Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &wheel);
    };
    turn(1, 120);
    turn(0, 120);
    turn(0, 60);
    for (int Index : {0, 1}) EXPECT_EQ(window->pane(Index)->font().pointSizeF(), usual + 2);
    turn(0, 60);
    EXPECT_EQ(window->textZoom(), 3) << "two halves of a step are one";
    turn(1, -120);
    window = &desktop.restart();
    for (int Index : {0, 1}) EXPECT_EQ(window->pane(Index)->font().pointSizeF(), usual + 2);
    EXPECT_TRUE(test::activate(*window));
    QTest::keyClick(window, Qt::Key_0, Qt::ControlModifier);
    for (int Index : {0, 1}) EXPECT_EQ(window->pane(Index)->font().pointSizeF(), usual);
    QTest::keyClick(window, Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(window->textZoom(), -1);
    for (int i = 0; i < 60; ++i) turn(0, -120);
    EXPECT_GE(window->pane(0)->font().pointSizeF(), 4);
}

TEST(MainWindow, HelpGoesWithTheWindow) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    window.runCommand(cmd::HelpIndex);
    const auto helpIsOpen = [] {
        for (const QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == u"helpWindow" && widget->isVisible()) return true;
        return false;
    };
    EXPECT_TRUE(helpIsOpen());
    window.close();
    EXPECT_FALSE(helpIsOpen());
}

TEST(MainWindow, PanesGetTheirPageFromTheSettings) {
    Desktop desktop;
    writeSetting(QStringLiteral("PageWidth"), 30000);
    writeSetting(QStringLiteral("PageHeight"), 1);
    qt::MainWindow& window = desktop.show(false);
    for (int Index : {0, 1}) {
        EXPECT_EQ(window.pane(Index)->pageSize(), QSize(30000, 15840));
        // Whatever the page, a line of the text is a line of the pane.
        window.pane(Index)->setText(QString(5000, u'x'));
        EXPECT_EQ(window.pane(Index)->lineWrapMode(), QPlainTextEdit::NoWrap);
        EXPECT_EQ(window.pane(Index)->document()->firstBlock().layout()->lineCount(), 1);
    }
}

TEST(MainWindow, KeysReachTheirControls) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    QTest::keyClick(&window, Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), desktop.find<QWidget>("cmbType"));
    // Tab goes through Source, then Target, then the texts.
    const char* const order[] = {"cmbServer_0", "pvlDb_0",     "pvlSqlObj_0", "cmbServer_1",
                                 "pvlDb_1",     "pvlSqlObj_1", "txtTXProc_0", "txtTXProc_1"};
    for (const char* name : order) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), QLatin1String(name));
    }
    // Ctrl+F searches in the text that has the focus.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F, Qt::ControlModifier);
    auto* bar = desktop.find<qt::FindBar>("findBar_1");
    EXPECT_TRUE(bar->isVisible());
    EXPECT_FALSE(desktop.find<qt::FindBar>("findBar_0")->isVisible());
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("findText"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), window.pane(1));
}

TEST(MainWindow, ARunFromTheWindowGivesItsListsBack) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    desktop.select(QStringLiteral("Invoice"), QStringLiteral("Customer"));
    QString report;
    desktop.user.plan([&](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), QStringLiteral("frmCompareAllTables"));
        // The report comes up over this screen's end.
        desktop.user.plan([&](QWidget* second) {
            report = second->findChild<QPlainTextEdit*>(QStringLiteral("txtReport"))->toPlainText();
            static_cast<QDialog*>(second)->reject();
        });
        QTest::keyClick(screen, Qt::Key_Return);
    });
    window.runCommand(cmd::CompareAll);
    EXPECT_TRUE(report.contains(QStringLiteral("Fax"))) << report.toStdString();
    EXPECT_EQ(rowsOf(*window.list(0)), QStringLiteral("Customer Fax Invoice"));
    EXPECT_EQ(window.list(0)->row(window.list(0)->selectedIndex()).name, QStringLiteral("Invoice"));
    EXPECT_EQ(window.list(1)->row(window.list(1)->selectedIndex()).name,
              QStringLiteral("Customer"));
}

TEST(MainWindow, SizesAndSplittersAreThereAtTheNextStart) {
    Desktop desktop;
    qt::MainWindow& first = desktop.show();
    first.resize(760, 700);
    QApplication::processEvents();
    auto* splitter = qobject_cast<QSplitter*>(first.centralWidget());
    splitter->setSizes({300, 250});
    const QList<int> sizes = splitter->sizes();
    qt::MainWindow& second = desktop.restart();
    EXPECT_EQ(second.size(), QSize(760, 700));
    QApplication::processEvents();
    const QList<int> again = qobject_cast<QSplitter*>(second.centralWidget())->sizes();
    EXPECT_NEAR(again[0], sizes[0], 3);
}

TEST(MainWindow, ADatabaseDroppedUnderAPanelIsToldAndTheWindowGoesOn) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    QDir servers(desktop.home.path(QStringLiteral("servers")));
    QDir(servers.filePath(QStringLiteral("shop"))).removeRecursively();
    desktop.user.plan([](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), QStringLiteral("frmErrorReport"));
        static_cast<QDialog*>(screen)->reject();
    });
    window.runCommand(cmd::RefreshSource);
    EXPECT_FALSE(desktop.controller().Busy());
    EXPECT_TRUE(window.isVisible());
}

TEST(MainWindow, ShiftAsksForTheDataOptionsThisOnce) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    writeBooleanSetting(QStringLiteral("ShowDataCompOpt"), false);
    desktop.select(QStringLiteral("Customer"), QStringLiteral("Customer"));
    desktop.user.answer(QMessageBox::Yes);  // the structures differ
    desktop.user.plan([&](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), QStringLiteral("frmCompareDataOptions"));
        static_cast<QDialog*>(screen)->reject();
    });
    auto* bar = desktop.find<QToolBar>("commandBar");
    QWidget* button = bar->widgetForAction(window.action(cmd::DataPair));
    QTest::mouseClick(button, Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_TRUE(desktop.user.isDone());
    desktop.user.takeSeen();
    // Without Shift the setting decides: the comparison runs at once.
    desktop.user.answer(QMessageBox::Yes);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(
        desktop.user.takeSeen().contains(QStringLiteral("unexpected frmCompareDataOptions")));
}

TEST(MainWindow, TheOwnerBoxesFollowTheSetting) {
    Desktop desktop;
    qt::MainWindow& window = desktop.show();
    auto* owners = desktop.find<QWidget>("cmbOwners_0");
    EXPECT_FALSE(owners->isVisible());
    window.setOwnerControlsVisible(true);
    EXPECT_TRUE(owners->isVisible());
}

}  // namespace
}  // namespace zov
