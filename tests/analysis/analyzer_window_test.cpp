// The data analyzer on a table, over both roads.
#include "analysis/frmDataAnalyze.h"
#include "core/frmErrorReport.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "reports/frmExport.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <QFile>

#include <stdexcept>

namespace zov {
namespace {

using test::Road;

class Analyzer : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(QStringLiteral("Db"),
                    QStringLiteral(
                        "CREATE TABLE dbo.T (Id int NOT NULL, Name nvarchar(20) NULL, [odd]]name] "
                        "decimal(9,2) NULL, Raw varbinary(8) NULL)\nGO\n"
                        "CREATE TABLE dbo.Empty (Id int)\nGO\n"
                        "INSERT INTO T VALUES (1, 'a', 1.50, 0x01), (2, 'A', 1.5, 0x01), "
                        "(3, NULL, NULL, NULL), (4, 'Null', 2, 0x02), (5, 'a ', 2, NULL), "
                        "(6, 'a', 2, 0x01)\nGO\n"));
        for (ServerInfo& server : globals().gtCurrentServers) server = served.server();
        shell.takeLines();
    }
    void show(const char* table, const std::function<void(frmDataAnalyze&)>& user) {
        shell.onScreen = [=, this](Screen& screen) {
            if (auto* form = dynamic_cast<frmDataAnalyze*>(&screen)) user(*form);
            if (auto* report = dynamic_cast<frmErrorReport*>(&screen))
                shell.lines += report->ProcName + QStringLiteral(": ") + report->ErrDesc;
        };
        const QString name = QString::fromLatin1(table);
        frmDataAnalyze().ShowUp(u'[' + name + u']', name, QStringLiteral("Db"), SourcePanel, 0);
    }
    /// Boxes and reports; what the screen did with its focus isn't looked at here.
    std::string told() {
        QStringList told;
        for (const QString& line : shell.takeLines())
            if (!line.startsWith(u"focus ") && line != u"screen frmDataAnalyze") told += line;
        return told.join(u'\n').toStdString();
    }
    static std::string row(const GridReport& report, size_t row) {
        QStringList cells;
        for (const GridReportItem& item : report.records.at(row)) cells += item.text();
        while (!cells.isEmpty() && cells.back().isEmpty()) cells.removeLast();
        return cells.join(u'|').toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Roads, Analyzer, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(Analyzer, TellsEachColumnsValuesWithTheirCounts) {
    show("T", [&](frmDataAnalyze& form) {
        EXPECT_EQ(form.lblGen_3, u"6");
        EXPECT_EQ(form.fedRecsToAnalyze, u"6");
        EXPECT_EQ(form.lblColumns, u"4");
        EXPECT_EQ(form.lblIgnoredColumns, u"0");
        EXPECT_FALSE(form.cmdStopEnabled);
        form.cmdStart_Click();
        ASSERT_EQ(form.rpcReport.records.size(), 4u);
        EXPECT_EQ(row(form.rpcReport, 0), "Id|int|6|1|1|2|1|3|1|4|1|5|1|6|1");
        EXPECT_EQ(row(form.rpcReport, 1), "Name|nvarchar|4|a|2|Null|2|A|1|a |1");
        EXPECT_EQ(row(form.rpcReport, 2), "odd]name|decimal|3|2|3|1.5|2|Null|1");
        EXPECT_EQ(row(form.rpcReport, 3), "Raw|varbinary|3|0x01|3|Null|2|0x02|1");
        const std::vector<GridReportItem>& name = form.rpcReport.records[1];
        EXPECT_EQ(name[3].backColor, 0xC0FFFFu);
        EXPECT_EQ(name[4].backColor, 0xC0FFFFu);
        EXPECT_EQ(name[5].backColor, 0xFFFFC0u);
        EXPECT_EQ(form.lblCurRec, u"6");
        EXPECT_TRUE(form.cmdStartEnabled);
        form.rdbFrequency = 1;
        form.chkAnySize = true;
        form.cmdStart_Click();
        EXPECT_EQ(row(form.rpcReport, 1), "Name|nvarchar|4|A|1|a |1|a|2|Null|2");
    });
    EXPECT_EQ(told(), "");
}

TEST_P(Analyzer, TakesTheRecordsThatItIsToldTo) {
    show("T", [&](frmDataAnalyze& form) {
        struct Case {
            const char* wanted;
            const char* box;
            const char* idColumn;
        };
        for (const Case& c :
             {Case{"2", "2", "Id|int|2|1|1|2|1"}, Case{" 5 ", "5", "Id|int|5|1|1|2|1|3|1|4|1|5|1"},
              Case{"", "6", "Id|int|6|1|1|2|1|3|1|4|1|5|1|6|1"},
              Case{"abc", "6", "Id|int|6|1|1|2|1|3|1|4|1|5|1|6|1"},
              Case{"0", "6", "Id|int|6|1|1|2|1|3|1|4|1|5|1|6|1"},
              Case{"6", "6", "Id|int|6|1|1|2|1|3|1|4|1|5|1|6|1"},
              Case{"inf", "6", "Id|int|6|1|1|2|1|3|1|4|1|5|1|6|1"},
              Case{"7,000,000,000", "6", "Id|int|6|1|1|2|1|3|1|4|1|5|1|6|1"}}) {
            form.fedRecsToAnalyze = QString::fromLatin1(c.wanted);
            form.cmdStart_Click();
            EXPECT_EQ(form.fedRecsToAnalyze, QString::fromLatin1(c.box)) << c.wanted;
            EXPECT_EQ(row(form.rpcReport, 0), c.idColumn) << c.wanted;
        }
    });
}

TEST_P(Analyzer, LeavesIgnoredColumnsOut) {
    const QString key =
        GetObjectKeyName(served.server().Name, QStringLiteral("Db"), QStringLiteral("T"));
    SaveIgnoredColumnsList(IgnoreMode::DataAnalysis, key,
                           {QStringLiteral("Id"), QStringLiteral("Raw")});
    show("T", [&](frmDataAnalyze& form) {
        EXPECT_EQ(form.lblIgnoredColumns, u"2");
        form.cmdStart_Click();
        ASSERT_EQ(form.rpcReport.records.size(), 2u);
        EXPECT_EQ(row(form.rpcReport, 0), "Name|nvarchar|4|a|2|Null|2|A|1|a |1");
    });
}

TEST_P(Analyzer, StopKeepsTheColumnsSoFar) {
    show("T", [&](frmDataAnalyze& form) {
        shell.onPump = [&] {
            if (form.lblCurCol == u"Name") form.cmdStop_Click();
        };
        form.cmdStart_Click();
        shell.onPump = nullptr;
        EXPECT_EQ(form.rpcReport.records.size(), 1u);
        EXPECT_TRUE(form.cmdStartEnabled);
        EXPECT_FALSE(form.isClosed());
    });
    show("T", [&](frmDataAnalyze& form) {
        shell.onPump = [&] { form.cmdExit_Click(); };
        form.cmdStart_Click();
        shell.onPump = nullptr;
        EXPECT_TRUE(form.isClosed());
    });
    EXPECT_EQ(told(), "");
}

TEST_P(Analyzer, SaysWhatKeepsItFromItsWork) {
    show("Empty", [&](frmDataAnalyze&) { FAIL() << "the window is open"; });
    EXPECT_EQ(told(), "information [View Data]: Table Empty doesn't contain any data.");
    show("T", [&](frmDataAnalyze& form) {
        form.cmdExport_Click();
        EXPECT_FALSE(form.cmdPrint_Click());
        served.load(QStringLiteral("Db"), QStringLiteral("DROP TABLE T"));
        form.cmdStart_Click();
        EXPECT_TRUE(form.rpcReport.records.empty());
        EXPECT_TRUE(form.cmdStartEnabled);
    });
    const std::string boxes = told();
    EXPECT_NE(boxes.find("There is no data to be exported.\\n\\nClick button 'Start' (or press "
                         "F5) to analyze data."),
              std::string::npos)
        << boxes;
    EXPECT_NE(boxes.find("There is no data to be printed."), std::string::npos) << boxes;
    EXPECT_NE(boxes.find("The columns of table T couldn't be read."), std::string::npos) << boxes;
    EXPECT_THROW(frmDataAnalyze().ShowUp(QStringLiteral("T"), QStringLiteral("T"),
                                         QStringLiteral("Db"), 2, 0),
                 std::out_of_range);
}

TEST_P(Analyzer, MoreThan32767ValuesNeedTheBoxForAnySize) {
    served.load(QStringLiteral("Db"), QStringLiteral("CREATE TABLE Many (N int, C int)"));
    QString insert;
    for (int i = 0; i < 32768; ++i) {
        insert +=
            (insert.isEmpty() ? QStringLiteral("INSERT INTO Many VALUES ") : QStringLiteral(",")) +
            QStringLiteral("(%1,%2)").arg(i).arg(i % 3);
        if (i % 1000 == 999 || i == 32767) {
            served.load(QStringLiteral("Db"), insert);
            insert.clear();
        }
    }
    show("Many", [&](frmDataAnalyze& form) {
        form.cmdStart_Click();
        // The column is shown with its values as they came, and the run goes on.
        ASSERT_EQ(form.rpcReport.records.size(), 2u);
        EXPECT_EQ(row(form.rpcReport, 0).substr(0, 22), "N|int|32,768|0|1|1|1|2");
        EXPECT_EQ(row(form.rpcReport, 1), "C|int|3|0|10923|1|10923|2|10922");
        EXPECT_EQ(told(), "screen frmErrorReport\nShellSortArray_TwoStr_ByLongEl: Overflow");
        form.chkAnySize = true;
        form.cmdStart_Click();
        EXPECT_EQ(row(form.rpcReport, 0).substr(0, 22), "N|int|32,768|0|1|1|1|2");
        EXPECT_EQ(told(), "");
    });
}

}  // namespace
}  // namespace zov
