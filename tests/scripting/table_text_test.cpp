// The text of tables: a line a column, a line an index, to the byte.
#include "core/modIgnoreColumns.h"
#include "scripting/modNew.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;
using test::ServedDatabases;

// Visible ends of lines: blanks count.
QString lines(QString text) {
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("$\n"));
}

const QString tablesScript = QStringLiteral(R"(
CREATE SCHEMA sales
GO
CREATE TYPE dbo.Phone FROM varchar(24) NULL
GO
CREATE TABLE dbo.Kinds (
  ID int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Kinds PRIMARY KEY,
  Name nvarchar(50) NULL CONSTRAINT DF_T_Name DEFAULT (N'x'),
  Code char(3) NOT NULL, NCode nchar(4) NULL, Short varchar(10) NULL,
  Body varchar(max) NULL, NBody nvarchar(max) NULL, Notes ntext NULL, Memo text NULL,
  Amount decimal(18,2) NOT NULL CONSTRAINT DF_Amount DEFAULT 0,
  Rate numeric(5,0) NULL, Price money NULL,
  Raw binary(8) NULL, Blob varbinary(16) NULL, Pic image NULL,
  Born datetime NULL CONSTRAINT DF_Born DEFAULT getdate(), Day date NULL, Exact datetime2(3) NULL,
  Flag bit NOT NULL, Big bigint NULL, Small smallint NULL, Tiny tinyint NULL,
  F float NULL, R real NULL, G uniqueidentifier NULL,
  Tel dbo.Phone, Total AS (Name + N'x'))
GO
CREATE TABLE dbo.T (ID int NOT NULL, B int NULL)
CREATE TABLE sales.T (Code varchar(5) NOT NULL CONSTRAINT DF_Code DEFAULT 'it''s')
CREATE TABLE dbo.[O'Brien.[x]]] (ID int IDENTITY(5,-1) NOT NULL CONSTRAINT [PK O'Brien] PRIMARY KEY)
GO
)");

class TableText : public ::testing::TestWithParam<Road> {
 protected:
    // No report and no box unless a test has taken it.
    void TearDown() override { EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), ""); }

    void load(const QString& script) {
        served.load(db, script);
        if (!HasFailure()) server = served.server();
    }
    qint32 idOf(const QString& condition) {
        std::unique_ptr<Recordset> rs;
        GetAdoRS(server, adCmdText, QStringLiteral("SELECT id FROM sysobjects WHERE ") + condition,
                 rs, db);
        return rs && rs->isOpen() && !rs->isEof() ? qint32(rs->field(0).toInt64()) : 0;
    }
    TableStructure structure(const QString& table, qint32 id = 0, const QString& suffix = {},
                             bool useIgnored = false) {
        TableStructure result;
        EXPECT_TRUE(GetTableStructure(server, db, table, result, useIgnored,
                                      IgnoreMode::StructureComparison, id, suffix));
        return result;
    }

    const QString db = QStringLiteral("Texts");
    test::TempHome home;
    test::RecordingShell shell;
    ServedDatabases served{GetParam()};
    ServerInfo server;
};
INSTANTIATE_TEST_SUITE_P(Roads, TableText, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(TableText, ShowsEveryKindOfColumn) {
    load(tablesScript);
    const QString expected = QStringLiteral(
        "[ID] [int] IDENTITY(1,1) NOT NULL$\n"
        "[Name] [nvarchar] (50) NULL CONSTRAINT [DF_T_Name] DEFAULT (N'x')$\n"
        "[Code] [char] (3) NOT NULL$\n"
        "[NCode] [nchar] (4) NULL$\n"
        "[Short] [varchar] (10) NULL$\n"
        "[Body] [varchar] (-1) NULL$\n"
        "[NBody] [nvarchar] (-1) NULL$\n"
        "[Notes] [ntext] NULL$\n"
        "[Memo] [text] NULL$\n"
        "[Amount] [decimal](18,2) NOT NULL CONSTRAINT [DF_Amount] DEFAULT ((0))$\n"
        "[Rate] [numeric](5,0) NULL$\n"
        "[Price] [money] NULL$\n"
        "[Raw] [binary] (8) NULL$\n"
        "[Blob] [varbinary] (16) NULL$\n"
        "[Pic] [image] NULL$\n"
        "[Born] [datetime] NULL CONSTRAINT [DF_Born] DEFAULT (getdate())$\n"
        "[Day] [date] NULL$\n"
        "[Exact] [datetime2] NULL$\n"
        "[Flag] [bit] NOT NULL$\n"
        "[Big] [bigint] NULL$\n"
        "[Small] [smallint] NULL$\n"
        "[Tiny] [tinyint] NULL$\n"
        "[F] [float] NULL$\n"
        "[R] [real] NULL$\n"
        "[G] [uniqueidentifier] NULL$\n"
        "[Tel] [Phone] NULL$\n"
        "[Total] [nvarchar] (51) NULL");
    for (int cursor : {adUseServer, adUseClient}) {
        globals().glngCursorLocation = cursor;
        const TableStructure kinds = structure(QStringLiteral("Kinds"));
        EXPECT_EQ(lines(kinds.structureText).toStdString(), expected.toStdString());
        ASSERT_EQ(kinds.lastColumnIndex, 26);
        EXPECT_EQ(kinds.columns[1].strName, QStringLiteral("Name"));
        EXPECT_EQ(kinds.columns[1].strDataType, QStringLiteral("nvarchar"));
        EXPECT_EQ(kinds.columns[1].strPrecision, QStringLiteral("50"));
        // The two forms of a type's size differ in their blanks.
        EXPECT_EQ(kinds.columns[1].strTypeSpec, QStringLiteral("nvarchar (50)"));
        EXPECT_EQ(kinds.columns[9].strTypeSpec, QStringLiteral("decimal (18,2) "));
        EXPECT_EQ(kinds.columns[0].strPrecision, QString());
        EXPECT_EQ(kinds.columns[0].strTypeSpec, QStringLiteral("int"));
        EXPECT_EQ(GetColumnsCount(server, db, QStringLiteral("Kinds"), 2, 0), 27);
    }
}

TEST_P(TableText, ASuffixStandsBehindEveryLine) {
    load(tablesScript);
    const TableStructure result = structure(
        QStringLiteral("T"), idOf(QStringLiteral("name = 'T' AND uid = 1")), QStringLiteral(","));
    EXPECT_EQ(lines(result.structureText),
              QStringLiteral("[ID] [int] NOT NULL,$\n[B] [int] NULL,"));
    EXPECT_EQ(result.columns[1].strLine, QStringLiteral("[B] [int] NULL"));
}

TEST_P(TableText, OnlyTheIdTellsTablesOfOneNameApart) {
    load(tablesScript);
    const qint32 ofDbo = idOf(QStringLiteral("name = 'T' AND uid = 1"));
    const qint32 ofSales = idOf(QStringLiteral("name = 'T' AND uid <> 1"));
    EXPECT_EQ(structure(QStringLiteral("T"), ofDbo).lastColumnIndex, 1);
    EXPECT_EQ(
        structure(QStringLiteral("T"), ofSales).structureText,
        QStringLiteral("[Code] [varchar] (5) NOT NULL CONSTRAINT [DF_Code] DEFAULT ('it''s')"));
    // By name the columns of both come in the order of their positions.
    const TableStructure mixed = structure(QStringLiteral("T"));
    ASSERT_EQ(mixed.lastColumnIndex, 2);
    EXPECT_EQ(mixed.columns[2].strName, QStringLiteral("B"));
}

TEST_P(TableText, WhatIsntThereIsEmptyAndSilent) {
    load(tablesScript);
    const TableStructure missing = structure(QStringLiteral("missing"));
    EXPECT_EQ(missing.structureText, QString());
    EXPECT_EQ(missing.lastColumnIndex, -1);
    EXPECT_EQ(GetColumnsCount(server, db, QStringLiteral("missing"), 2, 0), 0);
    EXPECT_EQ(GetIndexes(server, QStringLiteral("missing"), db, false, {}), QString());
    TableStructure result;
    EXPECT_TRUE(GetTableStructure(server, QStringLiteral("NoSuchDb"), QStringLiteral("T"), result,
                                  false, 2, 0, {}));
    EXPECT_EQ(result.lastColumnIndex, -1);
    EXPECT_FALSE(globals().gblnSuppressConnErrors);
}

TEST_P(TableText, ARowStreamThatBreaksOffIsReported) {
    if (GetParam() == Road::Embedded) GTEST_SKIP() << "nothing breaks off without a wire";
    // The columns of both tables are more than one block of rows, so that the break comes behind
    // the first of them.
    QStringList columns;
    for (int i = 0; i < 900; ++i) columns << QStringLiteral("c%1 int NULL").arg(i);
    const QString body = QStringLiteral(".Wide (") + columns.join(QStringLiteral(", ")) + u')';
    load(QStringLiteral("CREATE SCHEMA sales\nGO\nCREATE TABLE dbo") + body +
         QStringLiteral("\nCREATE TABLE sales") + body);
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("ident_seed");
    faults.errorAfterRows = 1500;
    served.endpoint().setFaults(faults);
    TableStructure result;
    const auto read = [&] {
        return GetTableStructure(server, db, QStringLiteral("Wide"), result, false,
                                 IgnoreMode::StructureComparison, 0, {});
    };
    // Fetched as a whole the statement fails within the query, which is silent.
    globals().glngCursorLocation = adUseClient;
    EXPECT_TRUE(read());
    EXPECT_EQ(result.structureText, QString());

    globals().glngCursorLocation = adUseServer;
    QString report;
    shell.onScreen = [&](Screen& screen) { report = screen.plainText(); };
    EXPECT_FALSE(read());
    EXPECT_EQ(shell.takeLines().join(u'|'), QStringLiteral("screen frmErrorReport"));
    EXPECT_TRUE(report.contains(QStringLiteral("mdlQueryCode:GetTableStructure")))
        << report.toStdString();
    EXPECT_TRUE(report.contains(
        QStringLiteral(
            "Error occured while attempting to get the structure of table\r\n\r\n'Wide'\r\n\r\nin "
            "SQL Server database\r\n\r\n'%1.Texts'\r\n\r\nError ")
            .arg(server.Name)))
        << report.toStdString();
}

TEST_P(TableText, AnyNameCanBeATable) {
    load(tablesScript);
    EXPECT_EQ(lines(GetTableStructureWithIndexes(server, QStringLiteral("O'Brien.[x]"), db, true,
                                                 nullptr, idOf(QStringLiteral("name like 'O%'")))),
              QStringLiteral("[ID] [int] IDENTITY(5,-1) NOT NULL$\n$\n"
                             "CONSTRAINT [PK O'Brien] PRIMARY KEY CLUSTERED ([ID])$\n"));
}

TEST_P(TableText, IgnoredColumnsAreLeftOutInAnyCase) {
    load(tablesScript);
    SaveIgnoredColumnsList(IgnoreMode::StructureComparison,
                           GetObjectKeyName(server.Name, db, QStringLiteral("Kinds")),
                           {QStringLiteral("NAME"), QStringLiteral("gone")});
    const TableStructure result = structure(QStringLiteral("Kinds"), 0, {}, true);
    EXPECT_EQ(result.ignoredColumnCount, 2);  // the list's length, found or not
    EXPECT_EQ(result.lastColumnIndex, 25);
    EXPECT_EQ(result.columns[1].strName, QStringLiteral("Code"));
    EXPECT_FALSE(result.structureText.contains(QStringLiteral("[Name]")));
    EXPECT_EQ(structure(QStringLiteral("Kinds")).ignoredColumnCount, 0);
}

TEST_P(TableText, ShowsIndexesOfTablesWithAChildObject) {
    load(QStringLiteral(R"(
CREATE TABLE Orders (OrderID int NOT NULL CONSTRAINT PK_Orders PRIMARY KEY, CustomerID int NULL, OrderDate datetime NULL)
CREATE INDEX IX_Orders_Cust ON Orders (CustomerID, OrderDate DESC)
CREATE UNIQUE INDEX pk_later ON Orders (OrderDate)
CREATE TABLE Heap (A int NULL CONSTRAINT DF_A DEFAULT 1, B int NULL)
CREATE INDEX IX_Heap ON Heap (B)
CREATE TABLE Childless (A int NOT NULL, B int NULL)
CREATE CLUSTERED INDEX IX_Childless ON Childless (A)
CREATE TABLE Keyish (A int NOT NULL, B int NULL CONSTRAINT CK_B CHECK (B > 0))
CREATE UNIQUE CLUSTERED INDEX PKey_x ON Keyish (B, A)
CREATE TABLE Plain (A int NOT NULL CONSTRAINT DF_P DEFAULT 1)
CREATE CLUSTERED INDEX CL_Plain ON Plain (A)
CREATE TABLE NonClustered (A int NOT NULL CONSTRAINT PK_Non PRIMARY KEY NONCLUSTERED, B int NOT NULL CONSTRAINT UQ_B UNIQUE)
)"));
    const auto indexes = [&](const char* table, bool clusteredOnly = false) {
        return lines(GetIndexes(server, QLatin1String(table), db, clusteredOnly, {})).toStdString();
    };
    EXPECT_EQ(indexes("Orders"),
              "CONSTRAINT [PK_Orders] PRIMARY KEY CLUSTERED ([OrderID])$\n"
              "INDEX [IX_Orders_Cust] ([CustomerID], [OrderDate])$\n"
              "INDEX [pk_later] ([OrderDate])$\n");
    EXPECT_EQ(indexes("Orders", true),
              "CONSTRAINT [PK_Orders] PRIMARY KEY CLUSTERED ([OrderID])$\n");
    EXPECT_EQ(indexes("Heap"), "INDEX [IX_Heap] ([B])$\n");
    EXPECT_EQ(indexes("Heap", true), "");
    EXPECT_EQ(indexes("Childless"), "");
    EXPECT_EQ(indexes("Keyish"), "CONSTRAINT [PKey_x] PRIMARY KEY CLUSTERED ([B], [A])$\n");
    EXPECT_EQ(indexes("Plain"), "CLUSTERED INDEX [CL_Plain] ([A])$\n");
    EXPECT_EQ(indexes("NonClustered"), "INDEX [PK_Non] ([A])$\nINDEX [UQ_B] ([B])$\n");

    std::vector<ColumnRecord> records;
    GetIndexes(server, QStringLiteral("Orders"), db, false, QStringLiteral("_new"), &records);
    QStringList collected;
    for (const ColumnRecord& record : records)
        collected << record.strName + u'/' + record.strLine + u'/' + record.strIndexText;
    EXPECT_EQ(collected.join(u'\n').toStdString(),
              "PK_Orders/OrderID/CONSTRAINT [PK_Orders_new] PRIMARY KEY CLUSTERED ([OrderID])\n"
              "IX_Orders_Cust/OrderDate/INDEX [IX_Orders_Cust] ([CustomerID], [OrderDate])\n"
              "pk_later/OrderDate/INDEX [pk_later] ([OrderDate])");

    const auto text = [&](bool clusteredOnly) {
        return lines(GetTableStructureWithIndexes(server, QStringLiteral("Orders"), db, false,
                                                  nullptr, 0, {}, clusteredOnly));
    };
    const QString columns = QStringLiteral(
        "[OrderID] [int] NOT NULL$\n[CustomerID] [int] NULL$\n[OrderDate] [datetime] NULL");
    const QString key =
        QStringLiteral("$\n$\nCONSTRAINT [PK_Orders] PRIMARY KEY CLUSTERED ([OrderID])$\n");
    EXPECT_TRUE(text(false).startsWith(columns + key + QStringLiteral("INDEX ")));
    EXPECT_EQ(text(true), columns + key);
    globals().gblnIgnoreIndexes = true;
    EXPECT_EQ(text(false), columns);
    EXPECT_EQ(text(true), columns + key);
}

TEST_P(TableText, DefaultsAsAScriptQuoteForTwoLevels) {
    load(QStringLiteral(R"(
CREATE TABLE D (A varchar(5) CONSTRAINT DF_A DEFAULT '', B varchar(5) CONSTRAINT DF_B DEFAULT '0',
                C varchar(5) CONSTRAINT DF_C DEFAULT 'x', E int CONSTRAINT DF_E DEFAULT 0)
)"));
    const QString text = lines(GetTableConstraints(server, QStringLiteral("D"), db));
    EXPECT_TRUE(text.startsWith(
        QStringLiteral("EXEC('ALTER TABLE ' + @Database + '.[dbo].[D] WITH NOCHECK ADD$\n")))
        << text.toStdString();
    for (const char* line :
         {"CONSTRAINT [DF_A] DEFAULT ('''') FOR [A]", "CONSTRAINT [DF_B] DEFAULT (''0'') FOR [B]",
          "CONSTRAINT [DF_C] DEFAULT (''''x'''') FOR [C]",
          "CONSTRAINT [DF_E] DEFAULT ((0)) FOR [E]"})
        EXPECT_TRUE(text.contains(QLatin1String(line))) << line << " in\n" << text.toStdString();
    EXPECT_TRUE(
        text.endsWith(QStringLiteral("]')$\nIF @@ERROR <> 0 SET @ErrorVal = @@ERROR$\n$\n")));
    EXPECT_EQ(GetTableConstraints(server, QStringLiteral("missing"), db), QString());
}

TEST_P(TableText, DefaultsKeepLettersBeyondLatin) {
    load(
        QStringLiteral("CREATE TABLE D (A nvarchar(9) NULL CONSTRAINT DF_A DEFAULT N'\u0416\u4E2D'"
                       ", B nvarchar(9) NULL CONSTRAINT [DF_\u03A9] DEFAULT N'a\U0001F600')"));
    EXPECT_EQ(lines(structure(QStringLiteral("D")).structureText).toStdString(),
              "[A] [nvarchar] (9) NULL CONSTRAINT [DF_A] DEFAULT (N'\u0416\u4E2D')$\n"
              "[B] [nvarchar] (9) NULL CONSTRAINT [DF_\u03A9] DEFAULT (N'a\U0001F600')");
    const QString text = GetTableConstraints(server, QStringLiteral("D"), db);
    EXPECT_TRUE(text.contains(QStringLiteral("\u0416\u4E2D"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("[DF_\u03A9]"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("a\U0001F600"))) << text.toStdString();
}

TEST_P(TableText, IndexesOfAViewAsAScript) {
    load(QStringLiteral(R"(
CREATE TABLE T (A int NOT NULL, B int NOT NULL)
GO
CREATE VIEW dbo.V WITH SCHEMABINDING AS SELECT A, B FROM dbo.T
GO
CREATE UNIQUE CLUSTERED INDEX IXV ON dbo.V (A)
CREATE INDEX IXV2 ON dbo.V (B)
)"));
    EXPECT_EQ(lines(GetExtras(server, QStringLiteral("V"), db, ObjectType::View)).toStdString(),
              "EXEC('CREATE UNIQUE CLUSTERED INDEX [IXV] ON ' + @Database + '.[dbo].[V]$\n"
              "([A]) ON [PRIMARY] ')$\nIF @@ERROR <> 0 SET @ErrorVal = @@ERROR$\n$\n"
              "EXEC('CREATE INDEX [IXV2] ON ' + @Database + '.[dbo].[V]$\n"
              "([B]) ON [PRIMARY] ')$\nIF @@ERROR <> 0 SET @ErrorVal = @@ERROR$\n$\n");
    EXPECT_EQ(GetExtras(server, QStringLiteral("V"), db, ObjectType::Table), QString());
}

TEST_P(TableText, AnOldServersTextShowsNoDefaults) {
    ServedDatabases old(GetParam(), QStringLiteral("8.00.2039"));
    old.load(db, QStringLiteral("CREATE TABLE T (A int IDENTITY(1,1) NOT NULL, B varchar(5) NULL "
                                "CONSTRAINT DF_B DEFAULT ('x'))"));
    TableStructure result;
    ASSERT_TRUE(GetTableStructure(old.server(), db, QStringLiteral("T"), result, false, 2, 0, {}));
    EXPECT_EQ(lines(result.structureText),
              QStringLiteral("[A] [int] IDENTITY(1,1) NOT NULL$\n[B] [varchar] (5) NULL"));
}

}  // namespace
}  // namespace zov
