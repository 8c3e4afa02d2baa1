// The update script as it is listed: verdicts on columns and indexes, and its texts.
#include "structcompare/modScript.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

namespace status = update_status;

std::vector<ColumnRecord> columnsOf(std::initializer_list<const char*> lines) {
    std::vector<ColumnRecord> columns;
    for (const char* line : lines) {
        ColumnRecord& column = columns.emplace_back();
        column.strLine = QLatin1StringView(line);
        column.strName = column.strLine.section(u']', 0, 0).mid(1);
    }
    return columns;
}
std::string statuses(const std::vector<ColumnRecord>& records) {
    std::string text;
    for (const ColumnRecord& record : records) text += std::to_string(record.lngStatus);
    return text;
}

TEST(UpdateScriptOfColumns, GivesEachItsVerdictAndItsLine) {
    test::RecordingShell shell;
    const struct {
        std::initializer_list<const char*> source, target;
        const char* sourceStatus;
        const char* targetStatus;
        const char* script;
    } rows[] = {
        {{"[a] [int] NULL"}, {"[a] [int] NULL"}, "4", "4", ""},
        {{"[A] [int] NULL"},
         {"[a] [int] NULL"},
         "3",
         "3",
         "ALTER TABLE T ALTER COLUMN [A] [int] NULL|"},
        {{"[b] [int] NULL", "[a] [int] NULL"},
         {"[a] [int] NULL"},
         "24",
         "4",
         "ALTER TABLE T ADD [b] [int] NULL|"},
        {{"[a] [int] NULL"},
         {"[a] [int] NULL", "[c] [varchar] (5) NOT NULL"},
         "4",
         "41",
         "ALTER TABLE T  DROP COLUMN [c] [varchar] (5) NOT NULL|"},
        {{"[a] [int] NOT NULL", "[n] [bit] NULL"},
         {"[x] [int] NULL", "[a] [int] NULL"},
         "32",
         "13",
         "ALTER TABLE T ALTER COLUMN [a] [int] NOT NULL|ADD [n] [bit] NULL| DROP COLUMN [x] [int] "
         "NULL|"},
        {{}, {}, "", "", ""},
    };
    for (const auto& row : rows) {
        std::vector<ColumnRecord> source = columnsOf(row.source), target = columnsOf(row.target);
        ColumnChanges changes;
        EXPECT_TRUE(UpdateScript_Tables(QStringLiteral("T"), source, target, changes));
        EXPECT_EQ(changes.script.replace(QStringLiteral("\r\n"), QStringLiteral("|")).toStdString(),
                  row.script);
        EXPECT_EQ(statuses(source), row.sourceStatus) << row.script;
        EXPECT_EQ(statuses(target), row.targetStatus) << row.script;
    }
}

TEST(UpdateScriptOfIndexes, GivesEachItsVerdict) {
    test::RecordingShell shell;
    const auto indexes = [](const char* names) {
        std::vector<ColumnRecord> records;
        for (const QString& name : QString::fromLatin1(names).split(u' ', Qt::SkipEmptyParts)) {
            ColumnRecord& record = records.emplace_back();
            record.strName = name.section(u'=', 0, 0);
            record.strIndexText = QStringLiteral("INDEX ") + name;
        }
        return records;
    };
    const struct {
        const char* source;
        const char* target;
        bool columnsSame;
        const char* sourceStatus;
        const char* targetStatus;
        qint32 onlyTarget, onlySource, changed, same;
    } rows[] = {
        {"", "", false, "", "", 0, 0, 0, 0},
        {"a b", "", false, "22", "", 0, 2, 0, 0},
        {"", "a", false, "", "1", 1, 0, 0, 0},
        {"a b=1 c", "b=2 c d", false, "234", "341", 1, 1, 1, 1},
        {"a", "A", false, "2", "1", 1, 1, 0, 0},
        // Where the columns are the same so are the indexes, whatever they are.
        {"a b", "c", true, "44", "4", 0, 0, 0, 2},
    };
    for (const auto& row : rows) {
        std::vector<ColumnRecord> source = indexes(row.source), target = indexes(row.target);
        IndexChanges changes;
        EXPECT_TRUE(CompareIndexes(source, target, row.columnsSame, changes));
        EXPECT_EQ(statuses(source), row.sourceStatus) << row.source;
        EXPECT_EQ(statuses(target), row.targetStatus) << row.source;
        EXPECT_EQ(changes.onlyTarget, row.onlyTarget) << row.source;
        EXPECT_EQ(changes.onlySource, row.onlySource) << row.source;
        EXPECT_EQ(changes.changed, row.changed) << row.source;
        EXPECT_EQ(changes.same, row.same) << row.source;
    }
}

class ListedUpdate : public ::testing::TestWithParam<test::Road> {
 protected:
    std::string script(const char* source, const char* target) {
        test::ServedDatabases served(GetParam());
        served.load(QStringLiteral("Src"), QLatin1StringView(source));
        served.load(QStringLiteral("Tgt"), QLatin1StringView(target));
        const auto side = [&](const char* database) {
            UpdateSide one{served.server(), QLatin1StringView(database),
                           objectNamed(QStringLiteral("T"), ObjectType::Table)};
            std::unique_ptr<Recordset> rows;
            GetAdoRS(one.server, adCmdText, QStringLiteral("SELECT OBJECT_ID('T')"), rows,
                     one.database);
            one.table.id = qint32(rows->field(0).toInt64());
            return one;
        };
        QString text;
        if (!GenerateUpdateScript(side("Src"), side("Tgt"), text)) return "failed";
        return text.replace(QStringLiteral("\r\n"), QStringLiteral("|")).toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
};
INSTANTIATE_TEST_SUITE_P(Roads, ListedUpdate,
                         ::testing::Values(test::Road::Embedded, test::Road::Odbc), test::roadName);

TEST_P(ListedUpdate, DropsIndexesFirstAndMakesThemLast) {
    EXPECT_EQ(script("CREATE TABLE T (a int NOT NULL CONSTRAINT PK_T PRIMARY KEY, b int, c int)\n"
                     "CREATE INDEX I1 ON T (a, b)\nCREATE INDEX I2 ON T (c)",
                     "CREATE TABLE T (a int NOT NULL CONSTRAINT PK_T PRIMARY KEY, b bigint)\n"
                     "CREATE INDEX I1 ON T (a, b)\nCREATE INDEX I3 ON T (a)"),
              "ALTER TABLE [T] DROP INDEX [I3]|ALTER TABLE [T] DROP INDEX [I1]|"
              "ALTER TABLE T ALTER COLUMN [b] [int] NULL|ADD [c] [int] NULL|"
              "ALTER TABLE [T] ADD INDEX [I1] ([a], [b])|ALTER TABLE [T] ADD INDEX [I2] ([c])|");
    EXPECT_EQ(script("CREATE TABLE T (a int)", "CREATE TABLE T (a int)"), "");
    // The table is gone meanwhile: nothing is dropped or added for that.
    EXPECT_EQ(script("CREATE TABLE T (a int)", "CREATE TABLE U (a int)"), "failed");
}

}  // namespace
}  // namespace zov
