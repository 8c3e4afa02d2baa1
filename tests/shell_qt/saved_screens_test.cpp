// The dialogs of saved processes, the Save buttons of the result screens, and a
// replay in the window and in the program without one.
#include "reports/frmReport.h"
#include "saved/frmSaveCompRun.h"
#include "saved/frmSaveComparison.h"
#include "saved/modSavedProcess.h"
#include "shell_qt/desktop.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

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

void saveNamed(const QStringList& names) {
    for (const QString& name : names) {
        SavedProcess process;
        process.Name = name;
        EXPECT_TRUE(SaveComparisonProcess(process));
    }
}

QStringList shownNames(const QTreeWidget* list) {
    QStringList names;
    for (int row = 0; row < list->topLevelItemCount(); ++row)
        if (!list->topLevelItem(row)->isHidden()) names += list->topLevelItem(row)->text(0);
    return names;
}

TEST(SavedScreens, AResultIsSavedWithTheKeyboardAlone) {
    Desktop desktop;
    desktop.show();
    desktop.select(QStringLiteral("Customer"), QStringLiteral("Customer"));
    const QString file = desktop.home.path(QStringLiteral("r.txt"));
    desktop.user.plan([&](QWidget* report) {
        EXPECT_EQ(report->objectName(), u"frmReport");
        auto* save = child<QPushButton>(report, "cmdSave");
        EXPECT_TRUE(save->isEnabled());
        save->click();
        report->close();
    });
    desktop.user.plan([&](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), u"frmSaveComparison");
        auto* name = child<QLineEdit>(screen, "txtProcessName");
        EXPECT_TRUE(test::waitUntil([&] { return !name->selectedText().isEmpty(); }));
        EXPECT_EQ(name->selectedText(), name->text()) << "selected whole, to be typed over";
        EXPECT_TRUE(name->text().endsWith(QStringLiteral(" - Customer")));
        QTest::keyClicks(name, QStringLiteral("Night run"));
        child<QCheckBox>(screen, "chkAutoClose")->click();
        QTest::keyClick(name, Qt::Key_Return);
    });
    desktop.window().runCommand(cmd::CompareSelected);
    const QStringList seen = desktop.user.takeSeen();
    ASSERT_EQ(seen.size(), 1) << seen.join(u'#').toStdString();
    EXPECT_TRUE(seen[0].startsWith(QStringLiteral("Comparison process saved successfully.")));
    SavedProcess saved;
    EXPECT_TRUE(GetSavedProcessDetails(QStringLiteral("Night run"), saved));
    EXPECT_EQ(saved.CompSubType, comparison_code::Individual);
    EXPECT_TRUE(saved.AutoClose);
    EXPECT_FALSE(saved.Print);
}

TEST(SavedScreens, TheListIsSortedSearchedAndThinnedOut) {
    Desktop desktop;
    desktop.show(false);
    saveNamed({QStringLiteral("beta"), QStringLiteral("Alpha"), QStringLiteral("gamma"),
               QStringLiteral("alphabet <b>")});
    desktop.user.plan([&](QWidget* screen) {
        auto* list = child<QTreeWidget>(screen, "lstComps");
        auto* search = child<QLineEdit>(screen, "search");
        EXPECT_EQ(shownNames(list).join(u'|'), u"beta|Alpha|gamma|alphabet <b>");
        list->sortByColumn(0, Qt::AscendingOrder);
        EXPECT_EQ(shownNames(list).join(u'|'), u"Alpha|alphabet <b>|beta|gamma");
        list->sortByColumn(1, Qt::DescendingOrder);
        EXPECT_EQ(shownNames(list).join(u'|'), u"alphabet <b>|gamma|Alpha|beta");

        QTest::keyClick(list, 'b');
        EXPECT_EQ(search->text(), u"b") << "typed over the list, searched for";
        QTest::keyClicks(search, QStringLiteral("et"));
        EXPECT_EQ(shownNames(list).join(u'|'), u"alphabet <b>|beta");
        // Properties of the first that is found.
        QTest::keyClick(search, Qt::Key_Return, Qt::AltModifier);
        search->clear();
        EXPECT_EQ(shownNames(list).size(), 4);

        list->clearSelection();
        child<QPushButton>(screen, "cmdDelete")->click();
        list->topLevelItem(0)->setSelected(true);
        list->topLevelItem(1)->setSelected(true);
        const QRect first = list->visualItemRect(list->topLevelItem(0));
        QTest::mouseClick(list->viewport(), Qt::RightButton, {}, first.center());
        list->topLevelItem(0)->setSelected(true);
        list->topLevelItem(1)->setSelected(true);
        desktop.user.answer(QMessageBox::Yes);
        QTest::keyClick(list, Qt::Key_Delete);
        EXPECT_EQ(shownNames(list).join(u'|'), u"Alpha|beta");
        static_cast<QDialog*>(screen)->reject();
    });
    desktop.window().runCommand(cmd::RunSaved);
    const QStringList seen = desktop.user.takeSeen();
    ASSERT_EQ(seen.size(), 4) << seen.join(u'#').toStdString();
    EXPECT_TRUE(seen[0].startsWith(
        QStringLiteral("Comparison Process Name: alphabet <b>|Comparison Process Id: 4|")));
    EXPECT_EQ(seen[1], u"Please select the comparison process to be deleted");
    EXPECT_TRUE(seen[2].startsWith(QStringLiteral("Comparison Process Name: alphabet <b>|")));
    EXPECT_TRUE(seen[3].startsWith(
        QStringLiteral("Are you sure you want to remove these 2 comparison processes?")));
    EXPECT_EQ(FillProcessList().join(u'|'), u"beta|Alpha");
}

/// Saves a comparison of the shop's procedures.
SavedProcess shopProcess(Desktop& desktop) {
    SavedProcess process;
    process.Name = QStringLiteral("Procedures");
    process.CompType = comparison_code::MetaData;
    process.CompSubType = comparison_code::Bulk;
    process.CompSubSubType = comparison_code::BulkDetails;
    process.EncObjTypes = QStringLiteral("0,1,0,0,0,0,0,0");
    process.ServerName1 = process.ServerName2 = QStringLiteral("local:shop");
    process.DbName1 = QStringLiteral("before");
    process.DbName2 = QStringLiteral("after");
    process.ExportFilePath = desktop.home.path(QStringLiteral("shop.txt"));
    EXPECT_TRUE(SaveComparisonProcess(process));
    return process;
}

TEST(SavedScreens, AProcessRunsFromTheMenuInTheWindow) {
    Desktop desktop;
    desktop.show();
    shopProcess(desktop);
    QString report;
    desktop.user.plan([&](QWidget* screen) {
        auto* list = child<QTreeWidget>(screen, "lstComps");
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {},
                           list->visualItemRect(list->topLevelItem(0)).center());
        if (screen->isVisible()) child<QPushButton>(screen, "cmdOK")->click();
    });
    desktop.user.plan([&](QWidget* screen) {
        // The status screen of the run may still be in front.
        EXPECT_TRUE(screen->objectName() == u"frmCompareAllTables" ||
                    screen->objectName() == u"frmReport");
        if (screen->objectName() == u"frmCompareAllTables") {
            desktop.user.plan([&](QWidget* shown) {
                report = child<QPlainTextEdit>(shown, "txtReport")->toPlainText();
                static_cast<QDialog*>(shown)->reject();
            });
            return;
        }
        report = child<QPlainTextEdit>(screen, "txtReport")->toPlainText();
        static_cast<QDialog*>(screen)->reject();
    });
    desktop.window().runCommand(cmd::RunSaved);
    EXPECT_EQ(desktop.user.takeSeen(), QStringList());
    EXPECT_TRUE(report.contains(QStringLiteral("List of procedures which differ:\n\tReport\n")))
        << report.toStdString();
    EXPECT_EQ(QString::fromUtf8(desktop.home.read(QStringLiteral("shop.txt"))).remove(u'\r'),
              report);
    EXPECT_EQ(desktop.controller().lastReplay().verdict, RunVerdict::Different);
}

TEST(SavedScreens, ARunFromTheCommandLineClosesTheProgramBehindItself) {
    Desktop desktop;
    SavedProcess process = shopProcess(desktop);
    process.AutoClose = true;
    ASSERT_TRUE(SaveComparisonProcess(process));
    globals().glngSavedProcessId = GetSavedProcessId(process.Name);
    // The screen of the run goes by itself; nobody has to do anything.
    desktop.user.plan(
        [](QWidget* screen) { EXPECT_EQ(screen->objectName(), u"frmCompareAllTables"); });
    desktop.show(false);
    EXPECT_TRUE(test::waitUntil([&] { return !desktop.window().isVisible(); }));
    EXPECT_EQ(desktop.user.takeSeen(), QStringList());
    EXPECT_FALSE(desktop.home.read(QStringLiteral("shop.txt")).isEmpty());
}

#ifdef ZOV_DESKTOP_PROGRAM
// The real program, without a display.
TEST(SavedScreens, TheProgramRunsAProcessUnattended) {
    Desktop desktop;
    const SavedProcess process = shopProcess(desktop);
    SavedProcess gone = process;
    gone.Name = QStringLiteral("gone");
    gone.DbName2 = QStringLiteral("nowhere");
    gone.AutoClose = true;
    ASSERT_TRUE(SaveComparisonProcess(gone));
    const auto run = [&](const QStringList& arguments, QString& told) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        environment.remove(QStringLiteral("DISPLAY"));
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(ZOV_DESKTOP_PROGRAM), arguments);
        EXPECT_TRUE(program.waitForFinished(60000));
        told = QString::fromUtf8(program.readAllStandardError());
        return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
    };
    const struct {
        QStringList arguments;
        int status;
        const char* told;
    } rows[] = {
        {{"--unattended", "/RunSavedComp", "1"}, 1, ""},
        {{"--unattended", "/RunSavedComp", "2"},
         2,
         "zovrand: Cannot run saved process - SQL Server database nowhere not found.\n"},
        {{"--unattended", "/RunSavedComp", "9"},
         2,
         "zovrand: No comparison was run: process number 9.\n"},
        {{"--unattended"}, 2, "zovrand: No saved process is named.\n"},
    };
    for (const auto& row : rows) {
        QFile::remove(process.ExportFilePath);
        QString told;
        EXPECT_EQ(run(row.arguments, told), row.status) << told.toStdString();
        EXPECT_TRUE(told.toStdString().starts_with(row.told)) << told.toStdString();
        EXPECT_TRUE(row.status != 1 || told.isEmpty()) << told.toStdString();
        EXPECT_EQ(QFile::exists(process.ExportFilePath), row.status == 1);
    }
    DeleteSavedProcesses({process.Name, gone.Name});
    QString told;
    EXPECT_EQ(run({"--unattended", "/RunSavedComp", "1"}, told), 2);
    EXPECT_EQ(told.section(u'\n', 0, 0), u"zovrand: There are no saved processes to run.");
}
#endif

}  // namespace
}  // namespace zov
