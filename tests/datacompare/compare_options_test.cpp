// The screen that says how two tables' data is compared, and what is stored of it.
#include "core/mdlMain.h"
#include "core/modIgnoreColumns.h"
#include "core/settings.h"
#include "datacompare/frmCompareDataOptions.h"
#include "support/full_disk.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;

const QString Script = QStringLiteral(
    "CREATE TABLE dbo.T (Id int IDENTITY(1,1) NOT NULL, Code varchar(10) NOT NULL "
    "CONSTRAINT DF_Code DEFAULT 'x', Name nvarchar(20) NULL, Note text NULL)\nGO\n");

class CompareOptions : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(QStringLiteral("Src"), Script);
        served.load(QStringLiteral("Tgt"),
                    Script + QStringLiteral("CREATE TABLE dbo.Empty (Id int)\nGO\n"));
        for (ServerInfo& server : globals().gtCurrentServers) server = served.server();
        const QString table = QStringLiteral("T");
        pair = {CompareDataTable{served.server(), QStringLiteral("Src"), table, 0},
                CompareDataTable{served.server(), QStringLiteral("Tgt"), table, 0}};
        shell.takeLines();
    }
    bool show(const std::function<void(frmCompareDataOptions&)>& user) {
        shell.onScreen = [&](Screen& screen) {
            if (auto* form = dynamic_cast<frmCompareDataOptions*>(&screen)) user(*form);
        };
        return frmCompareDataOptions().ShowUp(pair, settings);
    }
    std::string told() {
        QStringList lines = shell.takeLines();
        lines.removeAll(QStringLiteral("screen frmCompareDataOptions"));
        return lines.join(u'\n').toStdString();
    }
    std::string stored() {
        return QString::fromUtf8(home.read(QStringLiteral("documents/zov_tables_comps.ini")))
            .replace(served.server().Name, QStringLiteral("SRV"))
            .toStdString();
    }
    QString key(int side) {
        const CompareDataTable& table = pair[size_t(side)];
        return table.key();
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
    CompareDataPair pair;
    DataCompSettings settings;
};
INSTANTIATE_TEST_SUITE_P(Roads, CompareOptions, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(CompareOptions, OfATableNeverComparedAreRecordByRecordInNaturalOrder) {
    EXPECT_TRUE(show([&](frmCompareDataOptions& form) {
        EXPECT_EQ(form.cmbPKItems(0).join(u'|'), u"No Field|Id|Code|Name|Note");
        EXPECT_EQ(form.cmbGenItems(1).join(u'|'), u"Default Order|Id|Code|Name|Note");
        EXPECT_EQ(form.pvlSqlObj[0][1].type, u"varchar (10)");
        EXPECT_EQ(form.GetColumnString(QStringLiteral("id"), 0), u"[int] IDENTITY(1,1) NOT NULL");
        EXPECT_EQ(form.GetColumnString(QStringLiteral("Code"), 1), u"[varchar] (10) NOT NULL");
        EXPECT_EQ(form.GetColumnString(NoField, 1), QString());
        EXPECT_FALSE(form.keyControlsEnabled());
        EXPECT_EQ(form.txtOffset[0], QString());
        form.cmdOK_Click();
        EXPECT_TRUE(form.isClosed());
    }));
    EXPECT_EQ(told(), "");
    EXPECT_TRUE(settings.DefaultOrder);
    EXPECT_EQ(settings.Method, CompMethod::RecordByRecord);
    EXPECT_EQ(settings.CompKey1, NoField);
    EXPECT_EQ(stored(),
              "[SRV.Src.T]\r\nPrimarySortKey=\r\nSecondarySortKey=\r\nTertiarySortKey=\r\n"
              "OffsetStartRec=0\r\nDbType=SQL Server\r\nCompMethod=0\r\nCompKey=No Field\r\n"
              "SecondaryCompKey=No Field\r\nTertiaryCompKey=No Field\r\nIgnoreColumn=\r\n"
              "[SRV.Tgt.T]\r\nPrimarySortKey=\r\nSecondarySortKey=\r\nTertiarySortKey=\r\n"
              "OffsetStartRec=0\r\nDbType=SQL Server\r\nCompMethod=0\r\nCompKey=No Field\r\n"
              "SecondaryCompKey=No Field\r\nTertiaryCompKey=No Field\r\n");
}

TEST_P(CompareOptions, AreStoredPerTableAndShownAgain) {
    EXPECT_TRUE(show([&](frmCompareDataOptions& form) {
        form.optGen_Click(1);
        form.cmbPK_Click(0, 1);
        form.cmbPK_Click(1, 2);
        form.cmbPK_Click(2, 2);
        form.cmbGen_Click(3, 3);
        form.cmbGen_Click(4, 1);
        form.txtOffset_Change(0, QStringLiteral("1x2"));
        EXPECT_EQ(form.txtOffset[0], u"12");
        form.txtOffset_Change(1, QStringLiteral("1"));
        form.cmdOK_Click();
    }));
    EXPECT_FALSE(settings.DefaultOrder);
    EXPECT_EQ(settings.PrimarySortKey1, QString());
    EXPECT_EQ(settings.PrimarySortKey2, u"Name");
    EXPECT_EQ(settings.SecondarySortKey2, u"Id");
    EXPECT_EQ(settings.Offset1, 12);
    EXPECT_EQ(settings.Offset2, 1);
    EXPECT_EQ(settings.CompKey1, u"Id");
    EXPECT_EQ(settings.CompKey2, u"Code");
    EXPECT_EQ(settings.SecondaryCompKey1, u"Code");
    EXPECT_EQ(settings.TertiaryCompKey2, NoField);

    const DataCompSettings read = ReadDataCompSettings(QStringLiteral("Src"), QStringLiteral("Tgt"),
                                                       QStringLiteral("T"), QStringLiteral("T"));
    EXPECT_EQ(read.Method, CompMethod::PrimaryKey);
    EXPECT_EQ(read.SecondarySortKey2, u"Id");
    EXPECT_EQ(read.Offset1, 12);
    EXPECT_EQ(read.CompKey1, u"Id");
    EXPECT_FALSE(read.DefaultOrder);
    // Another server's table of that name has settings of its own.
    globals().gtCurrentServers[TargetPanel].Name = QStringLiteral("elsewhere");
    EXPECT_EQ(ReadTableCompSettings(false, QStringLiteral("Tgt"), QStringLiteral("T")).Method, 0);
    globals().gtCurrentServers[TargetPanel] = served.server();

    // A column that is gone leaves its box empty, and its name stored until OK.
    TableCompSettings gone =
        ReadTableCompSettings(true, QStringLiteral("Src"), QStringLiteral("T"));
    gone.CompKey = QStringLiteral("Dropped");
    gone.Method = CompMethod::RecordByRecord;
    EXPECT_EQ(SaveTableCompSettings(true, QStringLiteral("Src"), QStringLiteral("T"), gone), "");
    EXPECT_FALSE(show([&](frmCompareDataOptions& form) {
        EXPECT_EQ(form.optGen, 1) << "the Target's method";
        EXPECT_EQ(form.cmbPKText(0), NoField);
        EXPECT_EQ(form.cmbPKText(2), u"Code");
        EXPECT_EQ(form.cmbGenText(3), u"Name");
        EXPECT_EQ(form.txtOffset[0], u"12");
        EXPECT_EQ(form.txtOffset[1], QString());
        form.cmdCancel_Click();
    }));
    EXPECT_NE(stored().find("CompKey=Dropped"), std::string::npos);
    EXPECT_EQ(told(), "");
}

TEST_P(CompareOptions, RefuseKeysThatCannotWork) {
    show([&](frmCompareDataOptions& form) {
        form.optGen_Click(1);
        form.cmbPK_Click(0, 4);
        EXPECT_EQ(form.cmbPKText(0), NoField);
        form.cmbGen_Click(3, 4);
        EXPECT_EQ(form.cmbGenText(3), u"Default Order");
        EXPECT_EQ(told(),
                  "exclamation: The text, ntext, and image data types cannot be compared or "
                  "sorted.\nexclamation: The text, ntext, and image data types cannot be "
                  "compared or sorted.");
        form.cmbPK_Click(3, 1);
        form.cmbGen_Click(2, 1);
        EXPECT_EQ(form.cmbPK[3] + form.cmbGen[2], 0);
        EXPECT_EQ(told(),
                  "information: Please specify Primary Field before specifying Secondary "
                  "Field.\ninformation: Please specify Secondary Sort Key before "
                  "specifying Tertiary Sort Key.");
        // Taking a sort key back takes those behind it back.
        form.cmbGen_Click(0, 1);
        form.cmbGen_Click(1, 2);
        form.cmbGen_Click(2, 3);
        form.cmbGen_Click(3, 3);
        form.cmbGen_Click(0, 0);
        EXPECT_EQ(form.cmbGen, (std::array<int, 6>{0, 0, 0, 3, 0, 0}));

        form.cmbPK_Click(1, 2);
        form.cmbPK_Click(3, 2);
        form.cmdOK_Click();
        EXPECT_EQ(told(),
                  "information: Field Code in target table is selected more than once - "
                  "please make sure that the selected fields are unique.");
        form.cmdValidate_Click(1);
        EXPECT_EQ(told(),
                  "information: Field Code is selected more than once - please make sure "
                  "that the selected fields are unique.");
        form.cmbPK_Click(3, 0);
        form.cmbGen_Click(0, 1);
        form.cmbGen_Click(1, 1);
        form.cmdOK_Click();
        EXPECT_EQ(told(),
                  "information: Field Id in source table is selected more than once - "
                  "please make sure that the selected fields are unique.");
        EXPECT_FALSE(form.isClosed());
        EXPECT_EQ(form.GetColumnString(QStringLiteral("Id"), 2), QString());
        EXPECT_EQ(told(), "information: Wrong value of server index passed: 2");
    });
}

TEST_P(CompareOptions, KeepIgnoredColumnsAndKeysApart) {
    show([&](frmCompareDataOptions& form) {
        const auto refused = [&] {
            form.cmdOK_Click();
            EXPECT_FALSE(form.isClosed());
            return told();
        };
        form.cmdDeselectAll_Click(0);
        EXPECT_EQ(refused(),
                  "information: All columns cannot be ignored.\\n\\nPlease select at "
                  "least one column to be processed during the comparison.");
        form.cmdSelectAll_Click(0);
        form.pvlSqlObj_Click(0, 0, false);
        form.pvlSqlObj_Click(0, 2, false);
        EXPECT_EQ(refused(),
                  "information: Currently there are 2 columns selected for comparison in Source "
                  "and 4 in Target.\\n\\nPlease make sure that the same number of columns to "
                  "compare is selected for Source and Target table.");
        form.pvlSqlObj_Click(1, 1, false);
        form.pvlSqlObj_Click(1, 3, false);
        form.cmbGen_Click(0, 2);
        form.cmbGen_Click(1, 1);
        EXPECT_EQ(refused(),
                  "information: Column 'Id' is marked as the column to be ignored during "
                  "comparison.\\nThis column is also marked as Secondary Sort Key column (Source) "
                  "for comparison.\\n\\nPlease remove this column from the list of ignored "
                  "columns.");
        form.optGen_Click(1);
        form.cmbPK_Click(1, 2);
        EXPECT_EQ(refused(),
                  "information: Column 'Code' is marked as the column to be ignored during "
                  "comparison.\\nThis column is also marked as Primary column (Target) for "
                  "comparison.\\n\\nPlease remove this column from the list of ignored columns.");
        QStringList columns;
        EXPECT_EQ(GetIgnoredColumnsList(IgnoreMode::DataComparison, key(0), columns), 0);
        form.cmbPK_Click(1, 1);
        form.cmdOK_Click();
        EXPECT_TRUE(form.isClosed());
    });
    QStringList source, target;
    GetIgnoredColumnsList(IgnoreMode::DataComparison, key(0), source);
    GetIgnoredColumnsList(IgnoreMode::DataComparison, key(1), target);
    EXPECT_EQ(source.join(u','), u"Id,Name");
    EXPECT_EQ(target.join(u','), u"Code,Note");
    show([&](frmCompareDataOptions& form) {
        EXPECT_FALSE(form.pvlSqlObj[0][0].checked);
        EXPECT_TRUE(form.pvlSqlObj[0][1].checked);
        for (const int row : {1, 3}) form.pvlSqlObj_Click(0, row, false);
        EXPECT_EQ(told(), "information: Please select at least one column.");
        form.cmdCancel_Click();
    });
    GetIgnoredColumnsList(IgnoreMode::DataComparison, key(0), source);
    EXPECT_EQ(source.join(u','), u"Id,Name") << "Cancel stores nothing";
}

TEST_P(CompareOptions, AreNotShownAnyMoreWhenTheirUserSaysSo) {
    show([&](frmCompareDataOptions& form) {
        EXPECT_FALSE(form.chkDoNotShowDialog);
        form.chkDoNotShowDialog_Click(true);
        EXPECT_FALSE(GetShowDataCompOpt());
        EXPECT_EQ(told(),
                  "information: This dialog screen will not be shown anymore.\\n\\nTo enable "
                  "showing 'Data Comparison Options' screen please open the Options screen (by "
                  "clicking menu item Tools -> Options...), select tab 'Data Comparison' and click "
                  "on appropriate check box.");
        form.chkDoNotShowDialog_Click(false);
        EXPECT_TRUE(GetShowDataCompOpt());
        EXPECT_EQ(told(), "");
    });
}

TEST_P(CompareOptions, ThatCannotBeStoredHoldForThisRun) {
    EXPECT_TRUE(show([&](frmCompareDataOptions& form) {
        form.optGen_Click(1);
        const test::FullDisk full(0);
        form.cmdOK_Click();
    }));
    EXPECT_EQ(settings.Method, CompMethod::PrimaryKey);
    const std::string said = told();
    EXPECT_TRUE(
        said.starts_with("exclamation: The settings of this comparison can't be stored. "
                         "Cannot write "))
        << said;
}

TEST_P(CompareOptions, OfAMissingTableSaySo) {
    pair[0].Table = QStringLiteral("Dropped");
    EXPECT_FALSE(show([](frmCompareDataOptions& form) { form.cmdCancel_Click(); }));
    EXPECT_EQ(told(), "exclamation: Error occured while attempting to load structure of table.");
}

TEST_P(CompareOptions, AskForAKeyAndRowsBeforeTheyValidate) {
    pair[1].Table = QStringLiteral("Empty");
    show([&](frmCompareDataOptions& form) {
        form.cmdValidate_Click(0);
        EXPECT_EQ(told(),
                  "information: You can validlate fields selection only when Primary "
                  "Key/Index comparison method is used.");
        form.optGen_Click(1);
        form.cmdValidate_Click(1);
        EXPECT_EQ(told(),
                  "information: Please select Primary Field to be used by Primary "
                  "Key/Index comparison method.");
        form.cmbPK_Click(1, 1);
        form.cmdValidate_Click(1);
        EXPECT_EQ(told(),
                  "information [Validate Fields Selection]: Table Empty doesn't contain "
                  "any data.");
    });
}

}  // namespace
}  // namespace zov
