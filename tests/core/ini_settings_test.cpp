// The simple INI helpers and the ignored columns kept in INI files.
#include "core/modIgnoreColumns.h"
#include "core/modIniFile.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class IniSettings : public ::testing::Test {
 protected:
    test::TempHome home;
    test::RecordingShell recorder;
    QString ini = home.path(QStringLiteral("t.ini"));
};

TEST_F(IniSettings, IntegersAreLeadingDigitsOfSixteenBits) {
    struct Row {
        const char* value;
        qint16 number;
        const char* box;
    };
    const Row rows[] = {{"12", 12, ""},
                        {"12abc", 12, ""},
                        {"-7", -7, ""},
                        {"abc", 0, ""},
                        {"", 0, ""},
                        {"2.9", 2, ""},
                        {"1e3", 1, ""},
                        {"32767", 32767, ""},
                        {"32768", 0, "exclamation [INIGetSettingInteger]: Error: 6. Overflow"}};
    for (const Row& row : rows) {
        INIWriteSetting(QStringLiteral("s"), QStringLiteral("k"), QString::fromLatin1(row.value),
                        ini);
        EXPECT_EQ(INIGetSettingInteger(QStringLiteral("s"), QStringLiteral("k"), ini), row.number)
            << row.value;
        EXPECT_EQ(recorder.takeLines().join(u'|'), QString::fromLatin1(row.box)) << row.value;
    }
    EXPECT_EQ(INIGetSettingInteger(QStringLiteral("s"), QStringLiteral("none"), ini), 0);
}

TEST_F(IniSettings, TextsAreCutAt256) {
    EXPECT_TRUE(INIWriteSetting(QStringLiteral("s"), QStringLiteral("k"), QString(300, u'x'), ini));
    EXPECT_EQ(INIGetSettingString(QStringLiteral("S"), QStringLiteral("K"), ini),
              QString(256, u'x'));
    EXPECT_EQ(INIGetSettingString(QStringLiteral("s"), QStringLiteral("none"), ini), QString());
    EXPECT_EQ(INIGetSettingString(QStringLiteral("s"), QStringLiteral("k"), ini + u'x'), QString());
}

TEST_F(IniSettings, FailuresAreBoxesTitledWithTheRoutine) {
    EXPECT_EQ(INIGetSettingString(QStringLiteral("s"), QStringLiteral("k"), home.path()),
              QString());
    EXPECT_EQ(INIGetSettingInteger(QStringLiteral("s"), QStringLiteral("k"), home.path()), 0);
    EXPECT_FALSE(INIWriteSetting(QStringLiteral("s"), QStringLiteral("k"), QStringLiteral("v"),
                                 home.path()));
    const QString where = QStringLiteral("Cannot read %1: it is a folder.").arg(home.path());
    EXPECT_EQ(
        recorder.lines,
        (QStringList{QStringLiteral("exclamation [INIGetSettingString]: Error: 75. ") + where,
                     QStringLiteral("exclamation [INIGetSettingInteger]: Error: 75. ") + where,
                     QStringLiteral("exclamation [INIWriteSetting]: Error: 75. ") + where}));
}

TEST(ObjectNames, AreFormedAndSplitAtDots) {
    EXPECT_EQ(GetObjectKeyName(QStringLiteral("S"), QStringLiteral("D"), QStringLiteral("T")),
              u"S.D.T");
    EXPECT_EQ(GetObjectKeyName(QStringLiteral("S"), QStringLiteral("D"), {}), u"S.D");
    EXPECT_EQ(GetObjectDisplayName(QStringLiteral("S"), QStringLiteral("D"), QStringLiteral("T")),
              u"T (Database: D, Server: S)");
    struct Row {
        const char* key;
        const char* parts;
    };
    const Row rows[] = {{"S.D.T", "S|D|T"},
                        {"S.D", "S|D|"},
                        {"S", "S||"},
                        {"S.D.a.b", "S|D|a.b"},
                        {"10.0.0.1.D.T", "10|0|0.1.D.T"},
                        {"[10.0.0.1].[a]]b].T", "10.0.0.1|a]b|T"},
                        {"S.[a.b].[hr.T]", "S|a.b|[hr.T]"},
                        {"S.[a]r]nb].x.[y]", "S|a\r\nb|x.[y]"},
                        {"[S.D", "S.D||"},
                        {"", "||"}};
    for (const Row& row : rows) {
        QString server, db, table;
        GetObjectKeyParts(QString::fromLatin1(row.key), server, db, table);
        EXPECT_EQ(server + u'|' + db + u'|' + table, QString::fromLatin1(row.parts)) << row.key;
    }
}

// One section for two tables would hide differences in the one for a mark in the other.
TEST(ObjectNames, NoTwoTablesHaveOneKey) {
    struct Table {
        const char* server;
        const char* db;
        const char* schema;  ///< where the lists show it
        const char* table;
        const char* key;
    };
    const Table tables[] = {
        {"S", "D", nullptr, "T", "S.D.T"},
        {"S", "D", nullptr, "T x'y", "S.D.T x'y"},
        {"S", "D", "hr", "T", "S.D.hr.T"},
        {"S", "D", nullptr, "hr.T", "S.D.[hr.T]"},
        {"S", "D", nullptr, "[hr.T]", "S.D.[[hr.T]]]"},
        {"S", "D", nullptr, "[hr].T", "S.D.[[hr]].T]"},
        {"S", "D", "a.b", "T", "S.D.[a.b].T"},
        {"S", "D", "a", "b.T", "S.D.a.[b.T]"},
        {"S", "D", nullptr, "a.b.T", "S.D.[a.b.T]"},
        {"S", "D.hr", nullptr, "T", "S.[D.hr].T"},
        {"S", "D", nullptr, "a\nb", "S.D.[a]nb]"},
        {"S", "D", nullptr, "a b", "S.D.a b"},
        {"S", "D", nullptr, "a]nb", "S.D.[a]]nb]"},
    };
    QSet<QString> keys;
    for (const Table& row : tables) {
        const auto text = [](const char* name) { return QString::fromLatin1(name); };
        const QString table = KeyPart(text(row.table));
        const QString key =
            GetObjectKeyName(text(row.server), text(row.db),
                             row.schema ? KeyPart(text(row.schema)) + u'.' + table : table);
        EXPECT_EQ(key.toStdString(), row.key);
        EXPECT_FALSE(keys.contains(key)) << row.key;
        keys.insert(key);
        QString server, db, rest;
        GetObjectKeyParts(key, server, db, rest);
        EXPECT_EQ((server + u'|' + db).toStdString(), std::string(row.server) + '|' + row.db);
    }
}

TEST_F(IniSettings, ATablesMarksAreFoundInItsOwnLettersAlone) {
    home.write(QStringLiteral("documents/zov_ignored_cols_data.ini"),
               "[Srv.Sales.Orders]\n0=a\n[10.0.0.1,1433.Sales.T]\n0=b\n[a.b.[c.T]]\n0=c\n");
    const struct {
        const char *server, *db, *table;
        const char* column;
    } rows[] = {{"SRV", "sales", "Orders", "a"},      {"Srv", "Sales", "ORDERS", ""},
                {"10.0.0.1,1433", "Sales", "T", "b"}, {"10.0.0.1,1433", "SALES", "T", "b"},
                {"10.0.0.1,1433", "Sales", "t", ""},  {"a", "b", "[c.T]", "c"},
                {"10.0.0.1,1433", "Sales", "[T]", ""}};
    for (const auto& row : rows) {
        QStringList columns;
        GetIgnoredColumnsList(
            IgnoreMode::DataComparison,
            GetObjectKeyName(QString::fromLatin1(row.server), QString::fromLatin1(row.db),
                             QString::fromLatin1(row.table)),
            columns);
        EXPECT_EQ(columns.join(u'|').toStdString(), row.column) << row.server << row.table;
    }
    // What is stored anew takes the place of what was found.
    SaveIgnoredColumnsList(
        IgnoreMode::DataComparison,
        GetObjectKeyName(QStringLiteral("SRV"), QStringLiteral("Sales"), QStringLiteral("Orders")),
        {});
    EXPECT_FALSE(
        home.read(QStringLiteral("documents/zov_ignored_cols_data.ini")).contains("Orders"));
}

TEST_F(IniSettings, IgnoredColumnsAreKeptPerPurposeServerAndDatabase) {
    const QString key = GetObjectKeyName(QStringLiteral("SERVER1"), QStringLiteral("Sales"),
                                         QStringLiteral("Orders"));
    SaveIgnoredColumnsList(IgnoreMode::StructureComparison, key,
                           {QStringLiteral("Modified"), QStringLiteral(" Row]Guid= ")});
    EXPECT_EQ(home.read(QStringLiteral("documents/zov_ignored_cols_struct.ini")),
              "[SERVER1.Sales.Orders]\r\n0=Modified\r\n1=\" Row]Guid= \"\r\n");
    QStringList columns{QStringLiteral("left over")};
    EXPECT_EQ(GetIgnoredColumnsList(IgnoreMode::StructureComparison, key, columns), 2);
    EXPECT_EQ(columns.join(u'|'), u"Modified| Row]Guid= ");
    EXPECT_TRUE(IsColumnInList(columns, QStringLiteral("Modified")));
    EXPECT_FALSE(IsColumnInList(columns, QStringLiteral("modified")));

    EXPECT_EQ(GetIgnoredColumnsList(IgnoreMode::DataComparison, key, columns), 0);
    EXPECT_TRUE(columns.isEmpty());
    EXPECT_EQ(GetIgnoredColumnsList(IgnoreMode::StructureComparison,
                                    QStringLiteral("SERVER2.Sales.Orders"), columns),
              0);
    EXPECT_EQ(GetIgnoredColumnsList(99, key, columns), 0);

    SaveIgnoredColumnsList(IgnoreMode::StructureComparison, key, {QStringLiteral("One")});
    EXPECT_EQ(GetIgnoredColumnsList(IgnoreMode::StructureComparison, key, columns), 1);
    SaveIgnoredColumnsList(IgnoreMode::StructureComparison, key, {});
    EXPECT_EQ(home.read(QStringLiteral("documents/zov_ignored_cols_struct.ini")), "");
}

TEST_F(IniSettings, AllMarksAreListed) {
    SaveIgnoredColumnsList(IgnoreMode::DataComparison, QStringLiteral("S.D.T"),
                           {QStringLiteral("a"), QStringLiteral("b")});
    SaveIgnoredColumnsList(IgnoreMode::DataComparison, QStringLiteral("S2.D.T.x"),
                           {QStringLiteral("c")});
    std::vector<IgnoredColumnRow> rows;
    EXPECT_EQ(GetAllIgnoredColumns(IgnoreMode::DataComparison, rows), 3);
    QStringList lines;
    for (const IgnoredColumnRow& row : rows) {
        lines += row.Server + u',' + row.Db + u',' + row.Table + u',' + row.Column;
    }
    EXPECT_EQ(lines.join(u'|'), u"S,D,T,a|S,D,T,b|S2,D,T.x,c");
    EXPECT_EQ(GetAllIgnoredColumns(IgnoreMode::DataAnalysis, rows), 0);
    EXPECT_TRUE(rows.empty());
}

TEST_F(IniSettings, AListThatCannotBeSavedIsTold) {
    home.write(QStringLiteral("documents"), "a file in the folder's place");
    SaveIgnoredColumnsList(IgnoreMode::DataComparison, QStringLiteral("S.D.T"),
                           {QStringLiteral("a")});
    ASSERT_EQ(recorder.lines.size(), 2);
    EXPECT_EQ(recorder.lines[0],
              u"information: Saving list of ignored columns - delete section failed.");
    EXPECT_TRUE(recorder.lines[1].startsWith(
        QStringLiteral("exclamation: The list of ignored columns can't be stored. ")))
        << recorder.lines[1].toStdString();
}

}  // namespace
}  // namespace zov
