// Whole databases table by table: the report, stored settings, Stop, and what goes
// wrong with one table.
#include "comparison_fixture.h"

#include "datacompare/compare_all_data.h"
#include "datacompare/data_comp_settings.h"
#include "shell/memory_controls.h"

namespace zov {
namespace {

using test::Road;

class CompareAllDataTest : public test::DataComparison, public CompareAllForm {
 protected:
    static QString table(const QString& name, const QStringList& rows) {
        QString sql = QStringLiteral("CREATE TABLE %1 (Id int, V nvarchar(20))\nGO\n").arg(name);
        for (const QString& row : rows)
            sql += QStringLiteral("INSERT INTO %1 VALUES (%2)\n").arg(name, row);
        return sql + QStringLiteral("GO\n");
    }
    QString report(const DataRunRequest& request) {
        MemoryObjectList lists[2];
        MemoryTextPane panes[2];
        ComparePanels panels{{lists[0], panes[0]}, {lists[1], panes[1]}};
        names.clear();
        data = CompareAll_Data(*this, request, panels, this);
        QString text = globals().gstrReport;
        text.replace(served.server().Name + u'.', QStringLiteral("SERVER."));
        return text.replace(CRLF, QStringLiteral("\n"));
    }
    std::string all() {
        return report({QStringLiteral("Src"), QStringLiteral("Tgt"), false, {}, {}}).toStdString();
    }

    void showRunning() override {}
    void setComparing(int, const QString& text) override { comparing = text; }
    void setCurrentName(const QString& name) override {
        names += name;
        if (name == stopAt) globals().gblnStop = true;
    }
    void setTime(const QString&) override {}
    void runStatusTimer(bool on) override { timer = on; }

    DataRun data;
    QString comparing;
    QStringList names;
    QString stopAt = QStringLiteral("none");
    bool timer = false;
    static inline const QString CRLF = QStringLiteral("\r\n");
};
INSTANTIATE_TEST_SUITE_P(Roads, CompareAllDataTest, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

const QString A1 = QStringLiteral("1, N'a'"), B1 = QStringLiteral("1, N'b'"),
              A2 = QStringLiteral("2, N'a'");

TEST_P(CompareAllDataTest, TheReportListsEveryTable) {
    load(table(QStringLiteral("Alike"), {A1}) + table(QStringLiteral("Blank"), {}) +
             table(QStringLiteral("Changed"), {A1, A2}) + table(QStringLiteral("Fewer"), {A1, A2}) +
             table(QStringLiteral("Gone"), {A1}),
         table(QStringLiteral("Alike"), {A1}) + table(QStringLiteral("Blank"), {}) +
             table(QStringLiteral("Changed"), {B1, A2}) + table(QStringLiteral("Fewer"), {}) +
             table(QStringLiteral("Fresh"), {A1}));
    EXPECT_EQ(all(),
              "Comparison of databases\n\n"
              "Source database SERVER.Src\nTarget database SERVER.Tgt\n"
              "Comparison of data in tables\n"
              "There are 5 tables in Source database.\nThere are 5 tables in Target database.\n"
              "List of tables which differ:\n"
              "\tChanged - 1 different record(s)\n\tFewer - 2 different record(s)\n\t(2 tables)\n\n"
              "List of tables which exist in Source database but not in Target database:\n"
              "\tGone\n\t(1 table)\n\n"
              "List of tables which exist in Target database but not in Source database:\n"
              "\tFresh\n\t(1 table)\n\n"
              "All 2 remaining tables have identical data:\n\tAlike\n\tBlank");
    EXPECT_TRUE(data.finished && data.somethingDiffers && data.isWhole());
    EXPECT_EQ(comparing.toStdString(), "Comparing data in tables... Finished");
    EXPECT_EQ(names.join(u' ').toStdString(), "Alike Blank Changed Fewer Gone ");
    EXPECT_FALSE(timer);
    EXPECT_EQ(told(), "");

    EXPECT_EQ(report({QStringLiteral("Src"),
                      QStringLiteral("Tgt"),
                      true,
                      {QStringLiteral("Alike"), QStringLiteral("Changed")},
                      {QStringLiteral("Alike")}})
                  .toStdString(),
              "Comparison of databases\n\n"
              "Source database SERVER.Src\nTarget database SERVER.Tgt\n"
              "Selective comparison of tables\n\n"
              "2 objects selected in Source database\n1 objects selected in Target database\n\n"
              "List of tables which differ:\n\tChanged - 1 different record(s)\n\t(1 table)\n\n"
              "One table [Alike] has identical data in both databases.");
}

TEST_P(CompareAllDataTest, EachTableIsComparedByItsStoredSettings) {
    load(table(QStringLiteral("Keyed"), {A1, A2}) + table(QStringLiteral("Partly"), {A1}),
         table(QStringLiteral("Keyed"), {A2, A1}) + table(QStringLiteral("Partly"), {B1}));
    EXPECT_NE(all().find("Keyed - 2 different record(s)\n\tPartly - 1 different"),
              std::string::npos);
    TableCompSettings settings;
    settings.CompKey = QStringLiteral("Id");
    settings.Method = CompMethod::PrimaryKey;
    for (const bool source : {true, false})
        EXPECT_EQ(
            SaveTableCompSettings(source, source ? QStringLiteral("Src") : QStringLiteral("Tgt"),
                                  QStringLiteral("Keyed"), settings),
            QString());
    useTable(QStringLiteral("Partly"));
    ignore(0, {QStringLiteral("V")});
    ignore(1, {QStringLiteral("V")});
    EXPECT_NE(all().find("\nData in all tables in both databases is identical."),
              std::string::npos);
    EXPECT_FALSE(data.somethingDiffers);
    EXPECT_EQ(data.notes.join(u'\n').toStdString(),
              "Table Partly: columns ignored during comparison: Source - V Target - V.");

    // By key a stored start leaves nothing out, also where the sides' starts differ.
    settings.Offset = 2;
    SaveTableCompSettings(true, QStringLiteral("Src"), QStringLiteral("Keyed"), settings);
    EXPECT_NE(all().find("\nData in all tables in both databases is identical."),
              std::string::npos);
    EXPECT_EQ(data.notes.size(), 1);
}

TEST_P(CompareAllDataTest, AnIdenticalReportComesWithWhatItLeavesOut) {
    load(table(QStringLiteral("Cut"), {A1, A2}) + table(QStringLiteral("Whole"), {A1}),
         table(QStringLiteral("Cut"), {B1, A2}) + table(QStringLiteral("Whole"), {A1}));
    TableCompSettings settings;
    settings.PrimarySortKey = QStringLiteral("Id");
    settings.Offset = 2;
    for (const bool source : {true, false})
        SaveTableCompSettings(source, source ? QStringLiteral("Src") : QStringLiteral("Tgt"),
                              QStringLiteral("Cut"), settings);
    EXPECT_NE(all().find("\nData in all tables in both databases is identical."),
              std::string::npos);
    EXPECT_EQ(data.notes.join(u'\n').toStdString(),
              "Table Cut: compared from record 2 in Source and record 2 in Target on.");

    served.load(QStringLiteral("None"), QStringLiteral("SELECT 1"));
    report({QStringLiteral("None"), QStringLiteral("None"), false, {}, {}});
    EXPECT_EQ(data.notes.join(u'\n').toStdString(),
              "There is nothing to compare: neither None nor None holds a table.");
}

// dbo.[hr.T] and hr.T look alike in the keys of settings that join names with a dot.
TEST_P(CompareAllDataTest, SettingsOfATableHoldForNoOtherThatIsShownAlike) {
    const auto script = [](const char* inHr, const char* dotted) {
        return QStringLiteral(
                   "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.T (Id int)\n"
                   "CREATE TABLE hr.T (Id int, V int)\n"
                   "CREATE TABLE dbo.[hr.T] (Id int, V int)\nGO\n"
                   "INSERT INTO hr.T VALUES (1, %1)\n"
                   "INSERT INTO dbo.[hr.T] VALUES (1, %2)\nGO\n")
            .arg(QLatin1String(inHr), QLatin1String(dotted));
    };
    const auto ignoreIn = [&](const QString& key, const QStringList& columns) {
        for (const char* db : {"Src", "Tgt"})
            SaveIgnoredColumnsList(IgnoreMode::DataComparison,
                                   GetObjectKeyName(served.server().Name, QLatin1String(db), key),
                                   columns);
    };
    const QString inHr = QStringLiteral("hr.T"), dotted = QStringLiteral("[hr.T]");
    load(script("1", "1"), script("1", "2"));
    ignoreIn(inHr, {QStringLiteral("V")});
    EXPECT_NE(all().find("List of tables which differ:\n\thr.T - 1 different"), std::string::npos);
    ignoreIn(inHr, {});
    ignoreIn(dotted, {QStringLiteral("V")});
    EXPECT_NE(all().find("\nData in all tables in both databases is identical."),
              std::string::npos);
    EXPECT_EQ(data.notes.size(), 1);
}

// Schema and name stay apart: what looks like another table's full name isn't taken for it.
TEST_P(CompareAllDataTest, NamesWithDotsAndNamesakesFindTheirOwn) {
    const QString schemas = QStringLiteral("CREATE SCHEMA hr\nGO\nCREATE SCHEMA p\nGO\n");
    load(schemas + table(QStringLiteral("hr.T"), {A1}) + table(QStringLiteral("dbo.T"), {A2}) +
             table(QStringLiteral("dbo.[p.q]"), {A1}) + table(QStringLiteral("p.q"), {A1}) +
             table(QStringLiteral("dbo.[it's]"), {A1}) + table(QStringLiteral("dbo.[v.]"), {A1}) +
             table(QStringLiteral("dbo.[x]] y]"), {A1}),
         schemas + table(QStringLiteral("hr.T"), {A1}) + table(QStringLiteral("dbo.T"), {B1}) +
             table(QStringLiteral("dbo.[p.q]"), {A1}) + table(QStringLiteral("p.[q.]"), {A1}) +
             table(QStringLiteral("dbo.[it's]"), {A1}) + table(QStringLiteral("dbo.[v.]"), {B1}) +
             table(QStringLiteral("dbo.[x]] y]"), {A1}));
    const std::string report = all();
    EXPECT_NE(
        report.find("List of tables which differ:\n\tdbo.T - 1 different record(s)\n"
                    "\tv. - 1 different record(s)\n\t(2 tables)\n\n"
                    "List of tables which exist in Source database but not in Target database:\n"
                    "\tq\n\t(1 table)\n\n"
                    "List of tables which exist in Target database but not in Source database:\n"
                    "\tq.\n\t(1 table)\n\n"
                    "All 4 remaining tables have identical data:\n"),
        std::string::npos)
        << report;
    for (const char* name : {"\thr.T", "\tp.q", "\tit's", "\tx] y"})
        EXPECT_NE(report.find(name), std::string::npos) << name << '\n' << report;
    EXPECT_EQ(told(), "");
}

// Version 8 knows no schemas, "9.00.5000" all that later ones do; on one side or on both.
TEST_P(CompareAllDataTest, ServersOfDifferentVersionsAreCompared) {
    const QString source = table(QStringLiteral("Alike"), {A1}) +
                           table(QStringLiteral("Changed"), {A1}) +
                           table(QStringLiteral("MixedCase"), {A1, A2});
    const QString target = table(QStringLiteral("Alike"), {A1}) +
                           table(QStringLiteral("Changed"), {B1}) +
                           table(QStringLiteral("mixedCASE"), {A1, A2});
    served.load(QStringLiteral("Src"), QStringLiteral("SELECT 1"));
    const QString current;
    const QString old = QStringLiteral("8.00.2039"), second = QStringLiteral("9.00.5000");
    for (const auto& [version1, version2] :
         {std::pair(old, current), {current, old}, {old, old}, {old, second}, {second, second}}) {
        SCOPED_TRACE((version1 + u'/' + version2).toStdString());
        test::ServedDatabases first(GetParam(), version1), other(GetParam(), version2);
        first.load(QStringLiteral("Src"), source);
        other.load(QStringLiteral("Tgt"), target);
        globals().gtCurrentServers[SourcePanel] = first.server();
        globals().gtCurrentServers[TargetPanel] = other.server();
        const std::string text = all();
        EXPECT_NE(text.find("List of tables which differ:\n\tChanged - 1 different record(s)\n"
                            "\t(1 table)\n\n"
                            "All 2 remaining tables have identical data:\n\tAlike\n\tMixedCase"),
                  std::string::npos)
            << text;
        EXPECT_TRUE(data.isWhole());
        EXPECT_EQ(told(), "");
        // What differs in a table whose name is written otherwise counts as well.
        other.load(QStringLiteral("Tgt"),
                   QStringLiteral("UPDATE mixedCASE SET V = N'z' WHERE Id = 2\nGO\n"));
        EXPECT_NE(all().find("\tMixedCase - 1 different record(s)"), std::string::npos);
    }
}

TEST_P(CompareAllDataTest, EmptyDatabasesAndStopAndTrouble) {
    load(QStringLiteral("CREATE VIEW dbo.V AS SELECT 1 AS A\nGO\n"),
         QStringLiteral("CREATE VIEW dbo.V AS SELECT 1 AS A\nGO\n"));
    EXPECT_NE(all().find("There are no tables in Source database.\n"
                         "There are no tables in Target database.\ntables"),
              std::string::npos);
    EXPECT_TRUE(data.finished && !data.somethingDiffers);

    load(table(QStringLiteral("A"), {A1}) + table(QStringLiteral("B"), {A1}),
         table(QStringLiteral("A"), {A1}) + table(QStringLiteral("B"), {A1}));
    stopAt = QStringLiteral("B");
    EXPECT_EQ(all(), "");
    EXPECT_FALSE(data.finished);
    stopAt = QStringLiteral("none");
    // Stop on the progress of one table stops the run, too.
    onStatus = [](frmCompareStatus& screen) { screen.cmdStop_Click(); };
    EXPECT_EQ(all(), "");
    EXPECT_FALSE(data.finished || globals().gblnStop);

    // A table that can't be read any more is told, listed as what it is, and the others go on.
    onStatus = [&](frmCompareStatus& screen) {
        if (screen.lblTable1 == u"A")
            served.load(QStringLiteral("Tgt"), QStringLiteral("DROP TABLE dbo.A\nGO\n"));
    };
    told();
    EXPECT_NE(all().find("One table [B] has identical data in both databases.\n"
                         "List of tables which can't be read:\n\tA\n\t(1 table)"),
              std::string::npos);
    EXPECT_TRUE(data.isReliable() && !data.isWhole());
    EXPECT_EQ(data.unreadable.join(u' ').toStdString(), "A");
    EXPECT_NE(told().find("Error while attempting to count records in table: "), std::string::npos);
}

}  // namespace
}  // namespace zov
