// Whether key columns are free of Nulls and unique: the verdicts, and what the
// server is asked for them.
#include "data/sql_names.h"
#include "datacompare/frmCompareDataValidation.h"
#include "datacompare/table_reading.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;

class KeyValidation : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(
            QStringLiteral("Db"),
            QStringLiteral(
                "CREATE TABLE dbo.T (Id int IDENTITY(1,1) NOT NULL, A int NOT NULL, B varchar(9) "
                "NOT NULL, N int NULL, Q varchar(9) NOT NULL)\nGO\n"
                "INSERT INTO T (A, B, N, Q) VALUES (1, 'x', 1, 'a')\n"
                "INSERT INTO T (A, B, N, Q) VALUES (1, 'y', NULL, 'O''Brien')\n"
                "INSERT INTO T (A, B, N, Q) VALUES (2, 'y', 3, 'c')\nGO\n"
                "CREATE SCHEMA sales\nGO\n"
                "CREATE TABLE sales.S (K int NULL)\nGO\n"
                "INSERT INTO sales.S VALUES (1)\nINSERT INTO sales.S VALUES (2)\nGO\n"));
        for (ServerInfo& server : globals().gtCurrentServers) server = served.server();
        request.Db = QStringLiteral("Db");
        request.Table = QStringLiteral("T");
        request.QualifiedTable = QStringLiteral("[T]");
        request.RecordsCount = 3;
        shell.takeLines();
        if (GetParam() == Road::Odbc) served.takeStatements();
    }
    /// The boxes of a run on these keys, each with its definition behind a colon.
    std::string verdict(const QStringList& keys) {
        for (int i = 0; i < 3; ++i) {
            request.Keys[i] = keys.value(i).section(u':', 0, 0);
            request.KeyDefs[i] = keys.value(i).section(u':', 1);
        }
        shell.onScreen = [](Screen& screen) {
            if (auto* form = dynamic_cast<frmCompareDataValidation*>(&screen)) {
                form->Form_Activate();
                EXPECT_TRUE(form->isClosed());
            }
        };
        frmCompareDataValidation().ShowUp(request);
        EXPECT_EQ(shell.waitDepth, 0);
        QStringList lines = shell.takeLines();
        lines.removeAll(QStringLiteral("screen frmCompareDataValidation"));
        return lines.join(u'\n').toStdString();
    }
    /// The statements on rows; over the wire only.
    QStringList asked() {
        QStringList asked;
        if (GetParam() == Road::Odbc)
            for (const QString& text : served.takeStatements())
                if (text.contains(QStringLiteral("FROM ["))) asked += text;
        return asked;
    }

    int rowsOf(const QString& table) {
        QString name = quoteName(table);
        return GetNumberOfRecordsInTable(served.server(), name, QStringLiteral("Db"));
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
    frmCompareDataValidation::Request request;
};
INSTANTIATE_TEST_SUITE_P(Roads, KeyValidation, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

const char* const Valid =
    "information: Fields selection is valid - data stored in selected fields "
    "is unique and doesn't contain nulls.";
std::string withAdvice(const QString& text) {
    return (text + QStringLiteral("\\n\\nPlease select different fields if possible, or change "
                                  "comparison method to 'Record by "
                                  "record' (although the 'Primary Key/Index' comparison method is "
                                  "preferred because it is "
                                  "usually faster)."))
        .toStdString();
}

TEST_P(KeyValidation, FindsNullsAndRepetitions) {
    EXPECT_EQ(verdict({QStringLiteral("N:[int] NULL")}),
              withAdvice(QStringLiteral(
                  "exclamation: Field N contains Nulls and shouldn't be used for Primary "
                  "Key/Index comparison method.")));
    if (GetParam() == Road::Odbc) {
        EXPECT_EQ(asked(), QStringList{QStringLiteral(
                               "IF EXISTS (SELECT TOP (1) [N] FROM [T] WHERE [N]  IS NULL) SELECT "
                               "1 ELSE SELECT 0")});
    }
    EXPECT_EQ(verdict({QStringLiteral("B:[varchar] (9) NOT NULL")}),
              withAdvice(QStringLiteral(
                  "exclamation: Selected fields (B) contain duplicate values (y) and "
                  "shouldn't be used for Primary Key/Index comparison method.")));
    // No Null is asked for; a count for each row up to the first that comes twice.
    if (GetParam() == Road::Odbc) {
        EXPECT_EQ(asked(),
                  QStringList({QStringLiteral("SELECT [B] FROM [T]"),
                               QStringLiteral("SELECT COUNT(*) AS RecsCount FROM [T] WHERE [B] = "
                                              "'x'"),
                               QStringLiteral("SELECT COUNT(*) AS RecsCount FROM [T] WHERE [B] = "
                                              "'y'")}));
    }
    // Neither column alone, but both together.
    EXPECT_EQ(verdict({QStringLiteral("A:[int] NOT NULL"), QStringLiteral("B:[varchar] NOT NULL")}),
              Valid);
    if (GetParam() == Road::Odbc) {
        EXPECT_EQ(asked().value(1),
                  QStringLiteral("SELECT COUNT(*) AS RecsCount FROM [T] WHERE [A] = '1' AND [B] = "
                                 "'x'"));
    }
    EXPECT_EQ(verdict({QStringLiteral("A:[int] NOT NULL"), QStringLiteral("A:[int] NOT NULL")}),
              withAdvice(QStringLiteral(
                  "exclamation: Selected fields (A, A) contain duplicate values (1,1) and "
                  "shouldn't be used for Primary Key/Index comparison method.")));
}

TEST_P(KeyValidation, AsksNothingThatIsKnown) {
    EXPECT_EQ(verdict({QStringLiteral("Id:[int] IDENTITY(1,1) NOT NULL")}), Valid);
    request.RecordsCount = 1;
    EXPECT_EQ(verdict({QStringLiteral("B:[varchar] (9) NOT NULL")}), Valid);
    EXPECT_EQ(asked(), QStringList());
}

TEST_P(KeyValidation, FindsTablesOfOtherSchemas) {
    request.Table = QStringLiteral("S");
    request.Schema = QStringLiteral("sales");
    request.QualifiedTable = QStringLiteral("[sales].[S]");
    request.RecordsCount = 2;
    EXPECT_EQ(verdict({QStringLiteral("K:[int] NULL")}), Valid);
    // Where two schemas have the name, the list shows it with its schema.
    request.Table = QStringLiteral("dbo.T");
    request.BareName = QStringLiteral("T");
    request.Schema = QStringLiteral("dbo");
    request.QualifiedTable = QStringLiteral("[dbo].[T]");
    request.RecordsCount = 3;
    EXPECT_TRUE(verdict({QStringLiteral("N:[int] NULL")})
                    .starts_with("exclamation: Field N contains Nulls"));
}

// What no statement finds by its text is told apart by the rows themselves.
TEST_P(KeyValidation, FindsRepetitionsOfAnyType) {
    served.load(
        QStringLiteral("Db"),
        QStringLiteral(
            "CREATE TABLE dbo.Types (B varbinary(8) NOT NULL, V sql_variant NOT NULL, "
            "N nvarchar(9) NOT NULL, F float NOT NULL, Q varchar(40) NOT NULL, U int NOT "
            "NULL)\nGO\n"
            "INSERT INTO Types VALUES (0x01AB, 5, N'\u65E5', 0.1, 'O''Brien', 1)\n"
            "INSERT INTO Types VALUES (0x02, 6, N'\u672C', 0.2, 'x''; DELETE FROM T --', 2)\n"
            "INSERT INTO Types VALUES (0x01AB, 5, N'\u65E5', 0.1, 'O''Brien', 3)\nGO\n"));
    request.Table = QStringLiteral("Types");
    request.QualifiedTable = QStringLiteral("[Types]");
    const struct {
        const char* key;
        const char* repeated;
    } table[] = {{"B", "0x01AB"}, {"V", "5"}, {"N", "\u65E5"}, {"F", "0.1"}, {"Q", "O'Brien"}};
    for (const auto& row : table) {
        const std::string said =
            verdict({QString::fromUtf8(row.key) + QStringLiteral(":[t] NOT NULL")});
        EXPECT_NE(said.find("contain duplicate values (" + std::string(row.repeated) + ")"),
                  std::string::npos)
            << row.key << ": " << said;
        // Beside a column that tells them apart all are valid.
        EXPECT_EQ(verdict({QString::fromUtf8(row.key) + QStringLiteral(":[t] NOT NULL"),
                           QStringLiteral("U:[int] NOT NULL")}),
                  Valid)
            << row.key;
    }
    EXPECT_EQ(rowsOf(QStringLiteral("T")), 3) << "a value ran as a statement";
}

// A name out of a catalogue is a name, whatever stands in it.
TEST_P(KeyValidation, NamesNeverRunAsStatements) {
    const QString name = QStringLiteral("T]; DELETE FROM [T");
    served.load(QStringLiteral("Db"),
                QStringLiteral("CREATE TABLE dbo.[T]]; DELETE FROM [T] "
                               "([K]] = 1; DELETE FROM [T] int NULL)\nGO\n"
                               "INSERT INTO [T]]; DELETE FROM [T] VALUES (1)\n"
                               "INSERT INTO [T]]; DELETE FROM [T] VALUES (2)\nGO\n"));
    request.Table = name;
    request.QualifiedTable = quoteName(name);
    request.RecordsCount = 2;
    EXPECT_EQ(verdict({QStringLiteral("K] = 1; DELETE FROM [T:[int] NULL")}), Valid);
    EXPECT_EQ(rowsOf(QStringLiteral("T")), 3);
}

TEST_P(KeyValidation, SaysWhenItCannotTell) {
    if (GetParam() == Road::Odbc) {
        TdsFaults faults;
        faults.onlyStatementsWith = QStringLiteral("RecsCount FROM [T]");
        faults.failStatement = 2;
        served.endpoint().setFaults(faults);
        const std::string said = verdict({QStringLiteral("Q:[varchar] (9) NOT NULL")});
        EXPECT_TRUE(
            said.ends_with("exclamation: Database connection problem; cannot determine if "
                           "the fields are unique."))
            << said;
        served.endpoint().setFaults({});
    }
    request.Table = QStringLiteral("Dropped");
    request.QualifiedTable = QStringLiteral("[Dropped]");
    const std::string nulls = verdict({QStringLiteral("N:[int] NULL")});
    EXPECT_TRUE(
        nulls.ends_with("exclamation: Cannot check for nulls - aborting validating fields."))
        << nulls;
    request.ServerIndex = 2;
    EXPECT_EQ(verdict({QStringLiteral("N:[int] NULL")}),
              "exclamation: Wrong source-target parameter passed: 2");
}

TEST_P(KeyValidation, EndsWithCancelAndLeavesNoStopBehind) {
    frmCompareDataValidation* form = nullptr;
    request.Keys[0] = QStringLiteral("Q");
    request.KeyDefs[0] = QStringLiteral("[varchar] (9) NOT NULL");
    shell.onScreen = [&](Screen& screen) {
        form = &dynamic_cast<frmCompareDataValidation&>(screen);
        EXPECT_EQ(form->lblRecsCount1, u"3");
        form->Form_Activate();
        EXPECT_TRUE(form->isClosed());
    };
    shell.onPump = [&] {
        if (form && form->lblCurRec == u"1") form->cmdCancel_Click();
    };
    frmCompareDataValidation().ShowUp(request);
    EXPECT_EQ(shell.takeLines(), QStringList{QStringLiteral("screen frmCompareDataValidation")});
    EXPECT_FALSE(globals().gblnStop);
}

TEST(KeyDefinitions, AreReadByTheirEndAndTheirIdentity) {
    EXPECT_FALSE(ColumnCanContainNulls(QStringLiteral("[int] not null")));
    EXPECT_TRUE(ColumnCanContainNulls(QStringLiteral("[int] NULL")));
    EXPECT_TRUE(ColumnCanContainNulls(QStringLiteral("NOT NULL")));
    EXPECT_TRUE(ColumnIsIdentity(QStringLiteral("[int] identity(5,2) NOT NULL")));
    EXPECT_FALSE(ColumnIsIdentity(QStringLiteral("[int] IDENTITY NOT NULL")));
}

}  // namespace
}  // namespace zov
