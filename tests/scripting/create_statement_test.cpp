// Statements that can be run, made from texts.
#include "catalog/modSchema.h"
#include "core/run_account.h"
#include "scripting/modSql.h"
#include "shell/memory_controls.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <QRegularExpression>

namespace zov {
namespace {

QString lines(QString text) {
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("$\n"));
}

class CreateStatements : public ::testing::TestWithParam<test::Road> {
 protected:
    void SetUp() override {
        served.load(db, QStringLiteral(R"(
CREATE SCHEMA sales
GO
CREATE TABLE dbo.T (ID int NOT NULL CONSTRAINT PK_T PRIMARY KEY, Name varchar(5) NULL)
CREATE INDEX IX_T ON dbo.T (Name)
CREATE TABLE sales.Bare (ID int NOT NULL, B int NULL)
GO
CREATE PROCEDURE sales.p AS SELECT * FROM sales.Bare
)"));
        server = served.server();
    }
    QString statement(ObjectType type, const char* name, CreateStatementRequest request = {}) {
        MemoryObjectList list;
        MemoryTextPane pane;
        LoadObjects(server, list, pane, type, db, false, {}, SourcePanel, nullptr);
        for (int row = 0; row < list.rowCount(); ++row)
            if (list.row(row).name == QLatin1String(name)) {
                request.objectId = list.row(row).id;
                request.object = objectOf(list.row(row), type);
            }
        request.dbName = db;
        request.objectName = QLatin1String(name);
        request.objectType = type;
        return lines(BuildObjectCreateStatement(server, request, ok))
            .replace(
                QRegularExpression(QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d")),
                QStringLiteral("NOW"));
    }

    test::TempHome home;
    test::RecordingShell shell;
    const QString db = QStringLiteral("CreateDb");
    test::ServedDatabases served{GetParam()};
    ServerInfo server;
    bool ok = false;
};
INSTANTIATE_TEST_SUITE_P(Roads, CreateStatements,
                         ::testing::Values(test::Road::Embedded, test::Road::Odbc), test::roadName);

TEST_P(CreateStatements, ATableComesWithItsHeaderAndItsClusteredKey) {
    CreateStatementRequest request;
    request.lineSuffix = QStringLiteral(",");
    EXPECT_EQ(statement(ObjectType::Table, "T", request).toStdString(),
              "USE [CreateDb]$\nGO$\n"
              "/****** Object: Table [dbo].[T]      ---- Script Date: NOW ******/$\n"
              "SET ANSI_NULLS ON$\nGO$\nSET QUOTED_IDENTIFIER ON$\nGO$\n"
              "IF EXISTS (SELECT * FROM dbo.sysobjects$\n"
              "WHERE id = object_id('[dbo].[T]') AND OBJECTPROPERTY(id, 'IsTable') = 1)$\n"
              "DROP Table [dbo].[T]$\nGO$\n$\n"
              "CREATE TABLE [dbo].[T] ($\n"
              "[ID] [int] NOT NULL,$\n[Name] [varchar] (5) NULL,$\n$\n"
              "CONSTRAINT [PK_T] PRIMARY KEY CLUSTERED ([ID])$\n $\n)");
    EXPECT_TRUE(ok);
}

TEST_P(CreateStatements, TheLastCommaGoesWhereNoIndexFollows) {
    CreateStatementRequest request;
    request.lineSuffix = QStringLiteral(",");
    request.bodyOnly = true;
    EXPECT_EQ(statement(ObjectType::Table, "Bare", request).toStdString(),
              "CREATE TABLE [sales].[Bare] ($\n[ID] [int] NOT NULL,$\n[B] [int] NULL $\n)");
}

TEST_P(CreateStatements, AnotherOwnerReplacesTheOldOneInNamesAndSources) {
    CreateStatementRequest request;
    request.bodyOnly = true;
    request.ownerFrom = QStringLiteral("sales");
    request.ownerTo = QStringLiteral("hr");
    EXPECT_EQ(statement(ObjectType::Procedure, "p", request),
              QStringLiteral("$\nCREATE PROCEDURE hr.p AS SELECT * FROM hr.Bare $\n"));
    request.bodyOnly = false;
    EXPECT_TRUE(statement(ObjectType::Procedure, "p", request)
                    .contains(QStringLiteral("DROP Procedure [hr].[p]$\nGO$\n$\n")));
}

TEST_P(CreateStatements, IncompleteRequestsAreRefused) {
    EXPECT_EQ(statement(ObjectType::Table, "missing"), QString());
    EXPECT_FALSE(ok);
    EXPECT_EQ(shell.lines.join(u'\n'),
              QStringLiteral("exclamation [Error]: Cannot build SQL CREATE statement - wrong "
                             "parameters passed"));
}

TEST_P(CreateStatements, AnObjectWithoutATextHasNoStatementThatWouldDropIt) {
    served.load(db, QStringLiteral("CREATE PROCEDURE dbo.Secret WITH ENCRYPTION AS SELECT 1\nGO\n"
                                   "CREATE TABLE dbo.Gone (A int)"));
    RunAccount account;
    const KeepAccount keep(account);
    EXPECT_EQ(statement(ObjectType::Procedure, "Secret"), QString());
    EXPECT_FALSE(ok);
    EXPECT_FALSE(account.isWhole());
    CreateStatementRequest request;
    request.objectId = 4711;
    EXPECT_EQ(statement(ObjectType::Table, "Nowhere", request), QString());
    EXPECT_FALSE(ok);
}

TEST_P(CreateStatements, NamesAreQuotedWhereTheyStand) {
    served.load(db, QStringLiteral("CREATE TABLE dbo.[O'Brien.[x]]] (A int NOT NULL)"));
    const QString text = statement(ObjectType::Table, "O'Brien.[x]");
    EXPECT_TRUE(text.contains(QStringLiteral("object_id('[dbo].[O''Brien.[x]]]')")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("CREATE TABLE [dbo].[O'Brien.[x]]] (")));
}

TEST_P(CreateStatements, AStatementIsWrappedForAnotherDatabase) {
    EXPECT_EQ(WrapStatementForDatabase(QStringLiteral("-- x\r\nCreate proc p as print 'a'"), db),
              QStringLiteral("EXEC ('USE CreateDb EXEC (''Create proc p as print ''''a'''''')')"));
    EXPECT_EQ(WrapStatementForDatabase(QStringLiteral("create x"), QStringLiteral("Bob's [1]")),
              QStringLiteral("EXEC ('USE [Bob''s [1]]] EXEC (''create x'')')"));
    EXPECT_EQ(lines(WrapStatementForDatabase(QStringLiteral("SELECT 1"), {})),
              QStringLiteral("EXEC ('USE ' + @Database + ' EXEC (''SELECT 1'')')$\n"
                             "IF @@ERROR <> 0 SET @ErrorVal = @@ERROR$\n$\n"));
}

TEST_P(CreateStatements, AScriptRunsInItsDatabase) {
    EXPECT_TRUE(SQL_Execute(server,
                            QStringLiteral("CREATE TABLE dbo.Fresh (A varchar(5) NOT NULL "
                                           "CONSTRAINT DF_F DEFAULT ('x'))"),
                            db));
    EXPECT_EQ(GetColumnsCount(server, db, QStringLiteral("Fresh"), 2, 0), 1);
    shell.takeLines();
    EXPECT_FALSE(SQL_Execute(server, QStringLiteral("CREATE NONSENSE"), db));
    EXPECT_EQ(shell.lines.last(), QStringLiteral("exclamation: Error occured - aborting."));
}

TEST_P(CreateStatements, IndexesAreDroppedAndMadeByTheirTexts) {
    ColumnRecord index;
    index.strName = QStringLiteral("PK_T");
    index.strIndexText = QStringLiteral("CONSTRAINT [PK_T] PRIMARY KEY CLUSTERED ([ID])");
    EXPECT_EQ(BuildIndexDropStatement(index, QStringLiteral("T")),
              QStringLiteral("ALTER TABLE [T] DROP CONSTRAINT [PK_T]"));
    EXPECT_EQ(BuildIndexCreateStatement(index, QStringLiteral("T")),
              QStringLiteral("ALTER TABLE [T] ADD CONSTRAINT [PK_T] PRIMARY KEY CLUSTERED ([ID])"));
    EXPECT_EQ(BuildIndexDropStatement(index, {}), QString());
    EXPECT_EQ(BuildIndexCreateStatement({}, QStringLiteral("T")), QString());
}

}  // namespace
}  // namespace zov
