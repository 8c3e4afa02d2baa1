// The bulk comparison from the menu to the report screen, and its form.
#include "compare_all_fixture.h"
#include "structcompare/compare_all_menu.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

struct RecordingReport : ReportScreen {
    std::vector<ComparisonReport> shown;
    QString text;
    void ShowUp(const ComparisonReport& report) override {
        shown.push_back(report);
        text = globals().gstrReport;
    }
};

struct ScriptedChooser : ObjectChooser {
    bool confirmed = true;
    QStringList source, target;
    int asked = 0;
    bool ShowUp(const QString&, const QString&, ObjectType, QStringList& SourceNames,
                QStringList& TargetNames) override {
        ++asked;
        SourceNames = source;
        TargetNames = target;
        return confirmed;
    }
};

class CompareAllScreen : public ::testing::Test {
 protected:
    void SetUp() override {
        const QString script = QStringLiteral("CREATE TABLE A (x int)\nGO\n");
        databases_.load(QStringLiteral("Src"), script);
        databases_.load(QStringLiteral("Tgt"), script);
        globals().gtCurrentServers[SourcePanel] = databases_.server();
        globals().gtCurrentServers[TargetPanel] = databases_.server();
        for (auto* list : {&databaseLists_[0], &databaseLists_[1]}) {
            list->addItem(list == &databaseLists_[0] ? QStringLiteral("Src")
                                                     : QStringLiteral("Tgt"));
            list->selectIndex(0);
        }
        shell_.onScreen = [this](Screen& screen) {
            auto& form = dynamic_cast<frmCompareAllTables&>(screen);
            captions_ += form.caption();
            form.Form_Activate();
            if (!form.isClosed()) form.cmdCompare_Click();
        };
    }

    test::TempHome home_;
    test::RecordingShell shell_;
    test::ServedDatabases databases_;
    MemoryChoiceList databaseLists_[2];
    test::ScratchPanels scratch_;
    ScriptedChooser chooser_;
    RecordingReport report_;
    QStringList captions_;
    CompareAllWindow window_{databaseLists_[0], databaseLists_[1], scratch_.panels, chooser_,
                             report_};
};

TEST_F(CompareAllScreen, TheMenusOpenTheReportWithItsCodes) {
    struct Row {
        int index;
        bool selective, details;
        const char* codes;
        const char* caption;
    };
    const Row rows[] = {
        {0, false, false, "1 20 10 1,0,0,0,0,0,0,0", "Compare All"},
        {0, false, true, "1 20 20 1,0,0,0,0,0,0,0", "Compare All"},
        {0, true, false, "1 30 30 1,0,0,0,0,0,0,0", "Compare Selected Objects"},
        {5, true, true, "1 30 40 0,0,0,0,0,1,0,0", "Compare Selected Objects"},
    };
    chooser_.source = chooser_.target = QStringList{QStringLiteral("A")};
    for (const Row& row : rows) {
        captions_.clear();
        report_.shown.clear();
        CompStruct_BulkSel_SimpleDet_All(window_, row.index, row.selective, row.details);
        ASSERT_EQ(report_.shown.size(), 1u) << row.codes;
        const ComparisonReport& report = report_.shown.front();
        EXPECT_EQ(QStringLiteral("%1 %2 %3 %4")
                      .arg(report.CompType)
                      .arg(report.CompSubType)
                      .arg(report.CompSubSubType)
                      .arg(report.EncObjTypes)
                      .toStdString(),
                  row.codes);
        EXPECT_EQ(report.Caption.toStdString(), "Comparison Report");
        EXPECT_EQ(report.DbName2.toStdString(), "Tgt");
        EXPECT_EQ(captions_.join(u' ').toStdString(), row.caption);
        EXPECT_TRUE(report_.text.startsWith(QStringLiteral("Comparison of databases\r\n")));
        EXPECT_TRUE(globals().gstrReport.isEmpty());
    }
    EXPECT_EQ(chooser_.asked, 2);
    EXPECT_EQ(shell_.waitDepth, 0);
}

TEST_F(CompareAllScreen, TheWindowIsToldWhyAServerIsAskedObjectByObject) {
    QStringList notes;
    window_.note = [&](const QString& sentence) { notes += sentence; };
    const ScopedValue<bool> atOnce(globals().gblnUseCatalogImage, true);
    CompareAllObjects(window_);
    EXPECT_EQ(notes, QStringList());
    test::ServedDatabases old(test::Road::Embedded, QStringLiteral("8.00.2039"));
    old.load(QStringLiteral("Src"), QStringLiteral("CREATE TABLE A (x int)\nGO\n"));
    globals().gtCurrentServers[SourcePanel] = old.server();
    CompareAllObjects(window_);
    ASSERT_EQ(notes.size(), 1);
    EXPECT_EQ(notes[0].toStdString(),
              old.server().Name.toStdString() +
                  ".Src is asked object by object: servers below version 9 don't have the views "
                  "that it is read from.");
}

TEST_F(CompareAllScreen, AllObjectsAreEveryKindThatIsCompared) {
    for (const bool constraints : {false, true}) {
        globals().gblnAnalyzeConstraints = constraints;
        report_.shown.clear();
        CompareAllObjects(window_);
        ASSERT_EQ(report_.shown.size(), 1u);
        const ComparisonReport& report = report_.shown.front();
        EXPECT_EQ(report.CompSubType, 10);
        EXPECT_EQ(report.CompSubSubType, 0);
        EXPECT_EQ(report.EncObjTypes.toStdString(),
                  constraints ? "1,1,1,1,1,1,1,0" : "1,1,1,1,1,1,0,0");
        EXPECT_TRUE(report_.text.contains(QStringLiteral("Comparison of relationships")));
    }
    databaseLists_[1].selectIndex(-1);
    shell_.takeLines();
    CompareAllObjects(window_);
    EXPECT_EQ(shell_.takeLines().join(u'\n').toStdString(),
              "information [Cannot Compare]: Cannot compare - the list of databases is empty.");
}

TEST_F(CompareAllScreen, ASavedProcessAsksNobody) {
    shell_.onScreen = [](Screen& screen) {
        dynamic_cast<frmCompareAllTables&>(screen).Form_Activate();
    };
    const SavedRun saved{
        {QStringLiteral("A")}, {QStringLiteral("A")}, QStringLiteral("x.txt"), true};
    MenuCompareAll_Click(window_, 0, QStringLiteral("Src"), QStringLiteral("Tgt"), true, false,
                         &saved);
    EXPECT_EQ(chooser_.asked, 0);
    ASSERT_EQ(report_.shown.size(), 1u);
    EXPECT_TRUE(report_.shown[0].Replay);
    EXPECT_TRUE(report_.shown[0].Print);
    EXPECT_EQ(report_.shown[0].ExportPath.toStdString(), "x.txt");
    EXPECT_EQ(report_.shown[0].SourceNames.join(u',').toStdString(), "A");
    EXPECT_TRUE(report_.text.contains(QStringLiteral("Selective comparison of tables")));
}

TEST_F(CompareAllScreen, WhatCannotBeComparedIsSaid) {
    MenuCompareAll_Click(window_, 0, {}, QStringLiteral("Tgt"), false, false);
    MenuCompareAll_Click(window_, 0, QStringLiteral("Src"), {}, false, false);
    MenuCompareAll_Click(window_, 7, QStringLiteral("Src"), QStringLiteral("Tgt"), false, false);
    chooser_.confirmed = false;
    MenuCompareAll_Click(window_, 0, QStringLiteral("Src"), QStringLiteral("Tgt"), true, false);
    EXPECT_EQ(shell_.takeLines().join(u'\n').toStdString(),
              "information [Cannot Compare]: Cannot compare - the list of databases is empty.\n"
              "information [Cannot Compare]: Cannot compare - the list of databases is empty.\n"
              "information: Wrong index value in Sub mnuComparisonAllObjects_Click, Index = 7");
    EXPECT_TRUE(report_.shown.empty());
}

TEST_F(CompareAllScreen, CancelStopsARunAndClosesOtherwise) {
    shell_.onScreen = [&](Screen& screen) {
        auto& form = dynamic_cast<frmCompareAllTables&>(screen);
        shell_.onPump = [&] { form.cmdCancel_Click(); };
        form.cmdCompare_Click();
        EXPECT_TRUE(form.isClosed());
        EXPECT_FALSE(form.tmrStatusEnabled);
    };
    CompStruct_BulkSel_SimpleDet_All(window_, 0, false, false);
    EXPECT_TRUE(globals().gblnStop);
    EXPECT_TRUE(report_.shown.empty());
    shell_.onPump = nullptr;
    globals().gblnStop = false;
    shell_.onScreen = [](Screen& screen) {
        dynamic_cast<frmCompareAllTables&>(screen).cmdCancel_Click();
        EXPECT_TRUE(screen.isClosed());
    };
    CompStruct_BulkSel_SimpleDet_All(window_, 0, false, false);
    EXPECT_FALSE(globals().gblnStop);
    EXPECT_TRUE(report_.shown.empty());
}

TEST_F(CompareAllScreen, TheFormShowsTheRun) {
    frmCompareAllTables form;
    frmCompareAllTables::Request request;
    request.EncObjTypes = QStringLiteral("0,0,0,0,0,0,1,1");
    int runs = 0;
    request.run = [&](frmCompareAllTables& shown) {
        ++runs;
        shown.cmdCompare_Click();  // a second click while it runs
        EXPECT_FALSE(shown.cmdCompareEnabled);
        shown.showRunning();
        EXPECT_FALSE(shown.lblInfoVisible);
        EXPECT_TRUE(shown.fraContainerVisible);
        shown.setComparing(1, QStringLiteral("Comparing procedures..."));
        QStringList dots;
        for (int tick = 0; tick < 4; ++tick) {
            shown.tmrStatus_Timer();
            dots += shown.lblComparing[1].mid(20);
        }
        EXPECT_EQ(dots.join(u' ').toStdString(), ". .. ... .");
        shown.setComparing(1, QStringLiteral("Comparing procedures... Finished"));
        shown.tmrStatus_Timer();
        EXPECT_EQ(shown.lblComparing[1].toStdString(), "Comparing procedures... Finished");
        return true;
    };
    shell_.onScreen = [&](Screen&) {
        EXPECT_EQ(form.visibleBoxes, 6);
        form.cmdCompare_Click();
        EXPECT_EQ(shell_.takeLines().last().toStdString(),
                  "information: Please select at least one object type to be compared.");
        form.chkObjType[2] = true;
        form.cmdCompare_Click();
    };
    EXPECT_TRUE(form.ShowUp(request));
    EXPECT_EQ(runs, 1);
}

}  // namespace
}  // namespace zov
