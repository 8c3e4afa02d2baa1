// The options: pages, checks, saving, and what another instance stored meanwhile.
#include "core/mdlMain.h"
#include "core/registry.h"
#include "core/settings.h"
#include "options/frmOptions.h"
#include "options/frmOptionsDebug.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class Options : public ::testing::Test {
 protected:
    bool open(const std::function<void(frmOptions&)>& user) {
        shell.onScreen = [&](Screen& screen) { user(dynamic_cast<frmOptions&>(screen)); };
        const bool saved = frmOptions().ShowUp();
        shell.lines.removeFirst();
        return saved;
    }
    std::string told() { return shell.takeLines().join(u'\n').toStdString(); }

    test::TempHome home;
    test::RecordingShell shell;
};

TEST(OptionsPages, StandInTheirTree) {
    QStringList lines;
    for (const OptionsPage& page : frmOptions::pages()) {
        QStringList controls;
        for (const OptionsControl& control : page.controls) {
            controls += control.name;
            // Each control is a box with a caption, a number or the choice of two.
            EXPECT_EQ(frmOptions::checkBox(control.name) != nullptr,
                      control.name.startsWith(QStringLiteral("chk")))
                << control.name.toStdString();
            EXPECT_EQ(frmOptions::captionOf(control.name).isEmpty(),
                      !frmOptions::checkBox(control.name))
                << control.name.toStdString();
        }
        lines += (page.parent.isEmpty() ? page.node : u' ' + page.node) +
                 (controls.isEmpty() ? QString() : QStringLiteral(": ") + controls.join(u' '));
        EXPECT_EQ(page.lblInfo.isEmpty(), page.parent.isEmpty()) << page.node.toStdString();
        EXPECT_FALSE(page.lblInfo.contains(QStringLiteral("  \r\n")));
    }
    EXPECT_EQ(lines.join(u'\n').toStdString(),
              "General: chkAutoConnect chkPreserveDbSel chkAutoSelTargetObj chkShowOwners\n"
              " Filter Offline Databases: chkFilterOfflineDbs\n"
              " Timeout: txtTimeout\n"
              "Schema Comparisons\n"
              " Columns Order: chkIgnoreColSeq\n"
              " Analyze Constraints: chkAnalyzeConstraints\n"
              " Auto Save: chkAutoSaveSchemas\n"
              " Ignore System objects: chkIgnoreSysObjects\n"
              " Read at Once: chkUseCatalogImage\n"
              " Ignore Indexes: chkIgnoreIndexes\n"
              " Ignore Comments: chkIgnoreComments\n"
              " Whitespace: chkIgnoreWhitespaces\n"
              " Case Sensitivity: chkCaseSensitive\n"
              "Data Comparisons\n"
              " Comparison Options: chkDataComp\n"
              " Rows to Display: txtMaxRows\n"
              " Cache Size: txtCacheSize\n"
              " Cursor Location: optCurLoc\n"
              " Case Sensitivity: chkDataCaseSensitive");
}

TEST_F(Options, NumbersThatAreTooSmallAreResetAndSaved) {
    const struct {
        qint32 rows, cache;
        const char* told;
        qint32 savedRows, savedCache;
    } table[] = {
        {10, 1, "", 10, 1},
        {9, 1,
         "exclamation: Maximum number of rows displayed in differences table cannot be smaller "
         "than 10.\\n\\nProgram will reset this value to 10.",
         10, 1},
        {0, 0,
         "exclamation: Maximum number of rows displayed in differences table cannot be smaller "
         "than 10.\\n\\nProgram will reset this value to 10.\n"
         "exclamation: Cache Size cannot be smaller than 1.\\n\\nProgram will reset this value to "
         "1.",
         10, 1},
        {700, -5,
         "exclamation: Cache Size cannot be smaller than 1.\\n\\nProgram will reset this value to "
         "1.",
         700, 1},
    };
    for (const auto& row : table) {
        EXPECT_TRUE(open([&](frmOptions& form) {
            form.values.txtMaxRows = row.rows;
            form.values.txtCacheSize = row.cache;
            form.values.txtTimeout = 0;  // for ever
            form.cmdSave();
            EXPECT_TRUE(form.isClosed());
        }));
        EXPECT_EQ(told(), row.told);
        EXPECT_EQ(globals().glngMaxRowsInDiffTable, row.savedRows);
        EXPECT_EQ(readSetting(QStringLiteral("MaxRowsInDiffTable")), row.savedRows);
        EXPECT_EQ(readSetting(QStringLiteral("CacheSize")), row.savedCache);
        EXPECT_EQ(globals().glngTimeout, 0);
    }
}

TEST_F(Options, EveryBoxReachesItsSettingAndComesBack) {
    const struct {
        const char* control;
        const char* setting;
    } boxes[] = {
        {"chkAutoConnect", "AutoConnect"},
        {"chkPreserveDbSel", "PreserveDbSel"},
        {"chkAutoSelTargetObj", "AutoSelTargetObj"},
        {"chkShowOwners", "ShowOwners"},
        {"chkFilterOfflineDbs", "FilterOfflineDbs"},
        {"chkIgnoreColSeq", "IgnoreColSeq"},
        {"chkAnalyzeConstraints", "AnalyzeConstraints"},
        {"chkAutoSaveSchemas", "AutoSaveSchemas"},
        {"chkIgnoreSysObjects", "IgnoreSysObjects"},
        {"chkUseCatalogImage", "UseCatalogImage"},
        {"chkIgnoreIndexes", "IgnoreIndexes"},
        {"chkIgnoreComments", "IgnoreComments"},
        {"chkIgnoreWhitespaces", "IgnoreWhitespace"},
        {"chkCaseSensitive", "CaseSensitive"},
        {"chkDataComp", "ShowDataCompOpt"},
        {"chkDataCaseSensitive", "DataCaseSensitive"},
    };
    for (const auto& box : boxes) {
        bool frmOptions::Values::*const member =
            frmOptions::checkBox(QString::fromLatin1(box.control));
        ASSERT_TRUE(member) << box.control;
        const bool before = readBooleanSetting(QString::fromLatin1(box.setting));
        open([&](frmOptions& form) {
            EXPECT_EQ(form.values.*member, before) << box.control;
            form.values.*member = !before;
            form.cmdSave();
        });
        EXPECT_EQ(readBooleanSetting(QString::fromLatin1(box.setting)), !before) << box.control;
        // As a newly started program reads it.
        home.resetState();
        LoadSettings([] {});
        open([&](frmOptions& form) { EXPECT_EQ(form.values.*member, !before) << box.control; });
    }
    open([](frmOptions& form) {
        EXPECT_TRUE(form.values.serverSide);
        form.values.serverSide = false;
        form.cmdSave();
    });
    EXPECT_EQ(globals().glngCursorLocation, adUseClient);
    EXPECT_EQ(readSetting(QStringLiteral("CursorConnectionUseServer")), 0);
    EXPECT_EQ(told(), "");
}

TEST_F(Options, LeavingWithChangesAsks) {
    const std::string question = "yes/no/cancel: Do you wish to save your changes? -> ";
    const struct {
        BoxAnswer answer;
        const char* shown;
        bool closed, saved;
    } rows[] = {
        {BoxAnswer::Cancel, "cancel", false, false},
        {BoxAnswer::No, "no", true, false},
        {BoxAnswer::Yes, "yes", true, true},
    };
    for (const auto& row : rows) {
        shell.yesNoCancelAnswers = {row.answer};
        EXPECT_EQ(open([&](frmOptions& form) {
                      form.values.txtTimeout = 77;
                      form.cmdCancel();
                      EXPECT_EQ(form.isClosed(), row.closed);
                  }),
                  row.saved);
        EXPECT_EQ(told(), question + row.shown);
        EXPECT_EQ(readSetting(QStringLiteral("Timeout")), row.saved ? 77 : 30);
    }
    open([](frmOptions& form) {
        form.cmdCancel();
        EXPECT_TRUE(form.isClosed());
    });
    EXPECT_EQ(told(), "");
}

TEST_F(Options, OfTheDebugMenuKeepPagesWideEnough) {
    writeSetting(QStringLiteral("PageWidth"), 5);
    shell.onScreen = [](Screen& screen) {
        auto& debug = dynamic_cast<frmOptionsDebug&>(screen);
        EXPECT_EQ(debug.txtPageWidth, 20000);
        EXPECT_EQ(debug.txtPageHeight, 15840);
        debug.chkFilterOfflineDbs = true;
        debug.txtPageWidth = 30000;
        debug.txtPageHeight = 1;
        debug.cmdSave();
    };
    EXPECT_TRUE(frmOptionsDebug().ShowUp());
    EXPECT_TRUE(globals().gblnFilterOfflineDbs);
    EXPECT_TRUE(readBooleanSetting(QStringLiteral("FilterOfflineDbs")));
    EXPECT_EQ(readSetting(QStringLiteral("PageWidth")), 30000);
    EXPECT_EQ(readSetting(QStringLiteral("PageHeight")), 15840);
}

TEST_F(Options, WhatAnotherInstanceChangedStays) {
    open([](frmOptions& form) { form.cmdSave(); });
    EXPECT_TRUE(home.read(QStringLiteral("registry.reg")).contains("\"IgnoreComments\""));
    EXPECT_TRUE(open([](frmOptions& form) {
        writeBooleanSetting(QStringLiteral("IgnoreComments"), false);
        writeSetting(QStringLiteral("Timeout"), 99);
        form.values.txtTimeout = 45;
        form.cmdSave();
    }));
    EXPECT_FALSE(readBooleanSetting(QStringLiteral("IgnoreComments")));
    EXPECT_EQ(readSetting(QStringLiteral("Timeout")), 45);
    EXPECT_TRUE(globals().gblnIgnoreComments);
}

}  // namespace
}  // namespace zov
