// References of modules that their database doesn't have: which names are told, and which pass.
#include "tools/missing_references.h"
#include "support/served_database.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

namespace zov {
namespace {

/// dbo.T (Id, Name, Doc), dbo.U (Id, TId, Gone2), sales.O (Id, [Odd ]]name]), a view, a procedure,
/// a function of each kind, a synonym, a type and a sequence.
DatabaseNames shop(const char* collation = "Latin1_General_CI_AS") {
    DatabaseNames names(QStringLiteral("Shop"), QString::fromLatin1(collation));
    const auto add = [&](const char* schema, const char* name, const char* type,
                         std::initializer_list<const char*> columns) {
        NamedObject& object = names.addObject(QString::fromLatin1(schema), QString::fromUtf8(name),
                                              QString::fromLatin1(type));
        for (const char* column : columns) names.addColumn(object, QString::fromUtf8(column));
    };
    add("dbo", "T", "U", {"Id", "Name", "Doc"});
    add("dbo", "U", "U", {"Id", "TId", "Extra"});
    add("sales", "O", "U", {"Id", "Odd ]name", "Größe"});
    add("dbo", "V", "V", {"Id", "Total"});
    add("dbo", "P", "P", {});
    add("dbo", "F", "FN", {});
    add("dbo", "Rows", "TF", {"Id", "Value"});
    add("dbo", "Syn", "SN", {});
    add("dbo", "Seq", "SO", {});
    names.addType(QStringLiteral("dbo"), QStringLiteral("Phone"));
    names.addSchema(QStringLiteral("dbo"));
    return names;
}

std::string told(const ModuleReferences& references) {
    QStringList all;
    for (const MissingReference& reference : references.missing) {
        QString sentence = reference.sentence();
        sentence.chop(QStringLiteral(" can't be found").size());
        all += QString::number(reference.line) + u' ' + sentence;
    }
    if (!references.trouble.isEmpty()) all += u'!' + references.trouble;
    return all.join(QStringLiteral("; ")).toStdString();
}

std::string missing(const QString& text, const DatabaseNames& names = shop(),
                    bool quotedNames = true) {
    ModuleText module;
    module.object.schema = QStringLiteral("dbo");
    module.text = text;
    module.quotedNames = quotedNames;
    return told(FindMissingReferences(module, names));
}
/// The same for a procedure's body, on line 2.
std::string inBody(const char* body) {
    return missing(QStringLiteral("CREATE PROCEDURE dbo.P @a int = 1 AS\n") +
                   QString::fromUtf8(body));
}

struct Case {
    const char* body;
    const char* missing;
};

TEST(MissingReferences, TellWhatIsGone) {
    const std::vector<Case> cases = {
        {"SELECT * FROM dbo.Gone", "2 table or view dbo.Gone"},
        {"\n\nSELECT 1 FROM Gone g JOIN T ON T.Id = g.Id", "4 table or view Gone"},
        {"SELECT 1 FROM T, [Gone one] WHERE 1 = 1", "2 table or view [Gone one]"},
        {"SELECT 1 FROM (T CROSS JOIN Gone)", "2 table or view Gone"},
        {"SELECT 1 FROM T LEFT HASH JOIN Gone AS x ON x.a = T.Id", "2 table or view Gone"},
        {"SELECT 1 FROM T WHERE EXISTS (SELECT * FROM Gone)", "2 table or view Gone"},
        {"SELECT 1 FROM (SELECT 2 AS a FROM Gone) d", "2 table or view Gone"},
        {"SELECT 1 FROM Shop.dbo.Gone", "2 table or view Shop.dbo.Gone"},
        {"SELECT 1 FROM Shop..Gone", "2 table or view Shop..Gone"},
        {"SELECT 1 FROM old.T", "2 table or view old.T"},
        {"SELECT 1 FROM Gone (NOLOCK)", "2 table or view Gone"},
        {"SELECT 1 UNION ALL SELECT 2 FROM Gone ORDER BY 1", "2 table or view Gone"},
        {"IF EXISTS (SELECT 1 FROM Gone) PRINT 'x' ELSE DELETE Gone2",
         "2 table or view Gone; 2 table or view Gone2"},
        {"WHILE 1 = 0 BEGIN INSERT Gone VALUES (1) END", "2 table or view Gone"},
        {"INSERT INTO Gone (a, b) SELECT Id, Name FROM T", "2 table or view Gone"},
        {"UPDATE Gone SET a = 1", "2 table or view Gone"},
        {"DELETE FROM Gone WHERE a = 1", "2 table or view Gone"},
        {"TRUNCATE TABLE Gone", "2 table or view Gone"},
        {"MERGE INTO Gone AS t USING T s ON t.Id = s.Id WHEN MATCHED THEN DELETE;",
         "2 table or view Gone"},
        {"MERGE T USING Gone s ON T.Id = s.Id WHEN MATCHED THEN DELETE;", "2 table or view Gone"},
        {"SET IDENTITY_INSERT Gone ON", "2 table or view Gone"},
        {"DECLARE c CURSOR LOCAL FOR SELECT Id FROM Gone FOR UPDATE OF Id", "2 table or view Gone"},
        {"ALTER TABLE Gone ADD x int", "2 table or view Gone"},
        {"CREATE INDEX i ON Gone (a)", "2 table or view Gone"},
        {"INSERT T (Id) OUTPUT inserted.Id INTO Gone (a) VALUES (1)", "2 table or view Gone"},
        {"SELECT 1 FROM CONTAINSTABLE(Gone, *, 'x') k", "2 table or view Gone"},
        {"WITH c AS (SELECT 1 AS a FROM Gone) SELECT a FROM c", "2 table or view Gone"},
        {"SELECT 1 FROM T; SELECT 1 FROM c", "2 table or view c"},
        {"WITH c AS (SELECT 1 AS a) SELECT a FROM c SELECT a FROM c", "2 table or view c"},
        {"EXEC Gone 1, 'x'", "2 procedure Gone"},
        {"EXECUTE @a = sales.Gone @x = 1 OUTPUT", "2 procedure sales.Gone"},
        {"INSERT T EXEC dbo.Gone", "2 procedure dbo.Gone"},
        {"SELECT dbo.Gone(Id) FROM T", "2 function dbo.Gone"},
        {"SELECT 1 FROM dbo.Gone(1) g", "2 function dbo.Gone"},
        {"SELECT 1 FROM T CROSS APPLY dbo.Gone(T.Id) g", "2 function dbo.Gone"},
        {"RETURN Shop.dbo.Gone(1)", "2 function Shop.dbo.Gone"},
        {"DECLARE @t TABLE (a int CHECK (dbo.Gone(a) = 1))", "2 function dbo.Gone"},
        {"DECLARE @x int, @y dbo.GoneType", "2 type dbo.GoneType"},
        {"SELECT CAST(Id AS GoneType), CONVERT(dbo.GoneType2, Id) FROM T",
         "2 type GoneType; 2 type dbo.GoneType2"},
        {"CREATE TABLE #x (a GoneType, b int REFERENCES Gone (Id))",
         "2 type GoneType; 2 table or view Gone"},
        {"SELECT NEXT VALUE FOR dbo.GoneSeq", "2 sequence dbo.GoneSeq"},
        {"SELECT t.Gone FROM dbo.T t", "2 column t.Gone of dbo.T"},
        {"SELECT Gone FROM T", "2 column Gone of dbo.T"},
        {"SELECT T.Gone, dbo.T.Gone2 FROM dbo.T",
         "2 column T.Gone of dbo.T; 2 column dbo.T.Gone2 of dbo.T"},
        {"SELECT 1 FROM T JOIN U ON T.Id = U.Gone WHERE Gone3 = 1",
         "2 column U.Gone of dbo.U; 2 column Gone3"},
        {"SELECT 1 FROM T WHERE Id IN (SELECT Gone FROM U)", "2 column Gone"},
        {"SELECT 1 FROM T t WHERE EXISTS (SELECT 1 FROM U WHERE TId = t.Gone)",
         "2 column t.Gone of dbo.T"},
        {"SELECT Name AS Shown FROM T WHERE Shown = 1", "2 column Shown of dbo.T"},
        {"SELECT Name n FROM T GROUP BY Gone ORDER BY n, Gone2",
         "2 column Gone of dbo.T; 2 column Gone2 of dbo.T"},
        {"INSERT T (Id, Gone) VALUES (1, 2)", "2 column Gone of dbo.T"},
        {"UPDATE T SET Gone = 1, Name = Gone2 WHERE Id = 1",
         "2 column Gone of dbo.T; 2 column Gone2 of dbo.T"},
        {"UPDATE t SET Extra = 1 FROM T t JOIN U ON t.Id = U.TId", "2 column Extra of dbo.T"},
        {"UPDATE t SET t.Gone = 1 FROM dbo.T AS t", "2 column t.Gone of dbo.T"},
        {"DELETE t FROM T t WHERE t.Gone = 1", "2 column t.Gone of dbo.T"},
        {"UPDATE T SET Id = 1 OUTPUT deleted.Gone", "2 column deleted.Gone of dbo.T"},
        {"MERGE T USING U ON T.Id = U.TId WHEN MATCHED AND U.Gone = 1 THEN UPDATE SET Gone2 = 1 "
         "WHEN NOT MATCHED BY SOURCE THEN DELETE WHEN NOT MATCHED THEN INSERT (Id, Gone3) VALUES "
         "(1, 2);",
         "2 column U.Gone of dbo.U; 2 column Gone2 of dbo.T; 2 column Gone3 of dbo.T"},
        {"SELECT r.Gone FROM dbo.Rows(1) r", "2 column r.Gone of dbo.Rows"},
        {"SELECT ROW_NUMBER() OVER (PARTITION BY Gone ORDER BY Id) FROM T",
         "2 column Gone of dbo.T"},
        {"SELECT CASE WHEN Id = 1 THEN Gone ELSE Name END x, Id y FROM T",
         "2 column Gone of dbo.T"},
        {"SELECT Doc.value('(/a)[1]', 'int'), DATEADD(day, Gone, Id) FROM T",
         "2 column Gone of dbo.T"},
        {"SELECT 1 FROM sales.O o WHERE o.[odd ]]NAME] = 1 AND o.[Gone ]]\n.x] = 1",
         "2 column o.[Gone ]]␊.x] of sales.O"},
    };
    for (const Case& c : cases) EXPECT_EQ(inBody(c.body), c.missing) << c.body;
}

/// Nothing is missing in these.
const char* const Sound[] = {
    "SELECT t.Id, NAME, dbo.t.doc FROM DBO.T AS t",
    "SELECT \"Id\" AS 'a', [Id] \"b\", Id c, d = Id, @x = Id FROM \"dbo\".[T] ORDER BY a, b, "
    "c, d",
    "SELECT x.a, T.b FROM Other.dbo.Gone x, Server.Other.dbo.Gone2 T, Other..Gone3",
    "SELECT a FROM #x JOIN @t t ON t.b = c; INSERT #x (a) VALUES (1); UPDATE @t SET b = 1",
    "SELECT Id INTO Made FROM T; SELECT Anything FROM Made; DROP TABLE Made",
    "CREATE TABLE dbo.Made (a int); INSERT Made (a) SELECT b FROM Made",
    "ALTER TABLE T ADD New int; SELECT New FROM T",
    "WITH c (a, b) AS (SELECT 1, 2), d AS (SELECT a FROM c) UPDATE d SET a = x FROM d, c",
    "WITH c AS (SELECT Id FROM T UNION ALL SELECT c.Id FROM c) INSERT U (Id) SELECT y FROM c",
    "SELECT q, d.r FROM (SELECT Id q, Name AS r FROM T) d WHERE z = 1",
    "SELECT v.a FROM (VALUES (1), (2)) v (a)",
    "SELECT Id FROM T WHERE EXISTS (SELECT Name, Extra FROM U) UNION SELECT Extra FROM U",
    "SELECT o.Name FROM Syn o; EXEC Syn; SELECT Any1 FROM Syn",
    "SELECT name FROM sys.objects; SELECT x FROM INFORMATION_SCHEMA.TABLES; SELECT id FROM "
    "sysobjects, dbo.sysindexes; EXEC sp_who; EXEC master..xp_cmdshell 'x'; EXEC dbo.sp_x",
    "SELECT value, [key] FROM OPENJSON(@a) WITH (x int '$.x', y nvarchar(max) AS JSON) j",
    "SELECT value FROM T CROSS APPLY STRING_SPLIT(Name, ',') s WHERE s.value = Gone",
    "SELECT n.c.value('.', 'int') FROM @a.nodes('/x') n(c); SELECT x.c.query('.') FROM T CROSS "
    "APPLY Doc.nodes('/x') x(c); SELECT x.c.query('.') FROM T CROSS APPLY T.Doc.nodes('/x') AS "
    "x(c)",
    "SELECT KEY_TBL.RANK FROM T JOIN CONTAINSTABLE(T, Name, 'x') AS KEY_TBL ON T.Id = "
    "KEY_TBL.[KEY]",
    "SELECT * FROM OPENROWSET(BULK 'f', SINGLE_CLOB) AS b; SELECT a FROM OPENQUERY(Srv, 'x') "
    "q; "
    "SELECT a FROM OPENDATASOURCE('p', 's').Db.dbo.Gone; INSERT OPENQUERY(S, 'x') VALUES (1)",
    "SELECT geography::Point(1, 2, 4326), hierarchyid::GetRoot(), ::fn_helpcollations()",
    "SELECT DATEDIFF(day, Id, Id), DATENAME(weekday, Id), DATEPART(yyyy, Id) FROM T",
    "SELECT CAST(Id AS dbo.Phone), CONVERT(varchar(10), Id, 120), TRY_CAST(Id AS decimal(9, "
    "2)), "
    "CAST(Id AS double precision), CAST(Id AS national char varying(10)) FROM T",
    "SELECT SUM(Id) OVER (ORDER BY Name ROWS BETWEEN UNBOUNDED PRECEDING AND CURRENT ROW) FROM "
    "T",
    "SELECT STRING_AGG(Name, ',') WITHIN GROUP (ORDER BY Id DESC) s FROM T GROUP BY Id WITH "
    "ROLLUP",
    "SELECT Id FROM T GROUP BY GROUPING SETS ((Id), ()) HAVING COUNT(DISTINCT Name) > 1 OPTION "
    "(RECOMPILE, MAXDOP 1)",
    "SELECT Id FROM T ORDER BY Id OFFSET 5 ROWS FETCH NEXT @a ROWS ONLY; FETCH NEXT FROM cur "
    "INTO @a",
    "SELECT Id FROM T WITH (NOLOCK, INDEX(ix)) WHERE Name LIKE 'x' ESCAPE '!' COLLATE "
    "Latin1_General_BIN",
    "SELECT Id FROM T AS OF1 FOR XML PATH('x'), ROOT('y'), TYPE",
    "SELECT Id FROM T FOR SYSTEM_TIME AS OF @a x WHERE x.Id = 1",
    "SELECT Id FROM T (INDEX = ix), U u (INDEX(1)), V WITH (INDEX(ix)); SELECT T.IDENTITYCOL FROM "
    "T",
    "SELECT STUFF((SELECT ',' + Name FROM T FOR XML PATH(''), TYPE).value('.', 'varchar(9)'), 1, "
    "1, "
    "''), (SELECT Doc FROM T).Lat, @a.Long, @a.STAsText() FROM U",
    "SELECT Id AT TIME ZONE 'UTC' FROM T WHERE Id IS NOT DISTINCT FROM Name",
    "SELECT p.[1], q FROM (SELECT Id, Name FROM T) s PIVOT (SUM(Id) FOR Name IN ([1], [2])) p",
    "SELECT Attribute FROM T UNPIVOT (x FOR Attribute IN (Id, Name)) u",
    "SELECT TRIM(LEADING 'x' FROM Name), LEFT(Name, 1), RIGHT(Name, 1), %%physloc%% FROM T",
    "SELECT {fn NOW()}, {d '2020-01-01'}, $identity, CURRENT_TIMESTAMP, USER FROM T",
    "SELECT T.Id FROM {oj T LEFT OUTER JOIN U ON T.Id = U.TId}",
    "INSERT T (Id) OUTPUT inserted.Id, 1 INTO @t (x) SELECT Id FROM U WHERE Extra = 1",
    "INSERT T DEFAULT VALUES; INSERT TOP (1) INTO T SELECT * FROM U; INSERT T EXEC ('SELECT * "
    "FROM Gone')",
    "UPDATE t SET Name = u.Extra, Doc.modify('x') OUTPUT deleted.Name, inserted.Id FROM T t "
    "INNER JOIN dbo.U AS u ON u.TId = t.Id WHERE Extra = 1",
    "UPDATE T SET @a = Id = Id + 1, Name += 'x', Doc.WRITE('x', 0, 1) WHERE CURRENT OF cur",
    "MERGE T AS t USING (SELECT 1 AS q) AS s ON t.Id = s.q WHEN NOT MATCHED BY TARGET AND s.q "
    "= 2 "
    "THEN INSERT (Id) VALUES (s.q) OUTPUT $action, inserted.Id, s.q INTO @log (a, b);",
    "EXEC ('SELECT * FROM Gone'); EXEC @a; EXEC sp_executesql N'SELECT * FROM Gone'; EXEC('x') "
    "AT Srv",
    "EXEC P 1, word, @x = other OUTPUT WITH RESULT SETS ((a int)); EXECUTE AS USER = 'x'; "
    "REVERT",
    "GOTO done; done: SELECT 1 again: SELECT Id FROM T retry: PRINT 1",
    "BEGIN TRY BEGIN TRAN x; COMMIT TRAN x END TRY BEGIN CATCH ROLLBACK; THROW; END CATCH",
    "GRANT SELECT, DELETE ON Gone TO someone; DENY UPDATE (a) ON Gone TO x; SET NOCOUNT ON "
    "DELETE T",
    "SET TRANSACTION ISOLATION LEVEL READ COMMITTED SET ROWCOUNT @a SET @a = (SELECT MAX(Id) "
    "FROM T)",
    "DECLARE @t TABLE (a int PRIMARY KEY, b dbo.Phone NULL, c AS a + 1, UNIQUE (b)), @c "
    "CURSOR, "
    "@x AS sysname = N'y', @z xml(dbo.Schemas), @w sys.sysname, @v varchar(max) = x",
    "DECLARE c CURSOR FOR SELECT Id FROM T FOR UPDATE OF Name OPEN c FETCH c INTO @a CLOSE c",
    "ALTER TABLE T ADD CONSTRAINT f FOREIGN KEY (Id) REFERENCES U (Id) ON DELETE NO ACTION ON "
    "UPDATE "
    "SET NULL ALTER TABLE T DROP COLUMN x ALTER TABLE T ALTER COLUMN y int SELECT y FROM T",
    "SELECT NEXT VALUE FOR dbo.Seq OVER (ORDER BY Id) FROM T; DROP TABLE IF EXISTS Gone",
    "SELECT 'it''s Gone', N'[x', -- FROM Gone\n1 /* FROM /* nested */ Gone */ FROM T",
    "RAISERROR ('x', 16, 1) WITH NOWAIT, LOG; DBCC CHECKIDENT ('Gone', RESEED); WAITFOR DELAY "
    "'0'",
    "SELECT TOP 5 PERCENT WITH TIES Id FROM T ORDER BY Id; SELECT TOP (@a) Id FROM T "
    "TABLESAMPLE (1)",
    "((SELECT Id FROM T) UNION (SELECT Id FROM U)) EXCEPT SELECT 1",
    "SELECT * FROM ((SELECT Id AS z FROM T) UNION ALL SELECT Id FROM U) AS d WHERE d.z = 1",
    "SELECT a.Id FROM ((T a JOIN U b ON a.Id = b.Id) LEFT JOIN V ON V.Id = a.Id), U",
    "BULK INSERT T FROM 'f' WITH (FIRSTROW = 2); READTEXT T.Doc @a 0 1; UPDATE STATISTICS T",
    "SELECT Doc.Lat, T.Doc.Long, T.Doc.STAsText() FROM T",
    "SELECT w.x FROM (DELETE FROM T OUTPUT deleted.Id AS x) w",
    "SELECT SUM(Id) OVER w FROM T WHERE Id = 1 WINDOW w AS (PARTITION BY Name)",
    "SELECT JSON_OBJECT('a': Id, 'b': Name ABSENT ON NULL) FROM T",
};

TEST(MissingReferences, PassWhatIsThereOrCannotBeKnown) {
    for (const char* body : Sound) EXPECT_EQ(inBody(body), "") << body;
}

// However a text breaks off, the walk comes to its end and names what stands there.
TEST(MissingReferences, TextsThatBreakOffAreWalkedToTheirEnd) {
    const DatabaseNames names = shop();
    for (const char* body : Sound) {
        const QString whole = QStringLiteral("CREATE VIEW X AS ") + QString::fromUtf8(body);
        for (qsizetype length = 0; length < whole.size(); ++length) {
            ModuleText module;
            module.text = whole.left(length);
            for (const MissingReference& one : FindMissingReferences(module, names).missing)
                ASSERT_TRUE(module.text.contains(one.name)) << module.text.toStdString();
        }
    }
}

TEST(MissingReferences, HeadersAreReadToo) {
    const struct {
        const char* text;
        const char* missing;
    } cases[] = {
        {"CREATE VIEW dbo.X (a, b) WITH SCHEMABINDING AS\nSELECT Id, Gone FROM dbo.T WITH CHECK "
         "OPTION",
         "2 column Gone of dbo.T"},
        {"CREATE OR ALTER VIEW X AS WITH c AS (SELECT 1 a) SELECT a FROM c, Gone",
         "1 table or view Gone"},
        {"/* x */ create proc dbo.X;2 (@a dbo.Phone, @b dbo.GoneType READONLY, @c varchar(5) = "
         "word)\n"
         "WITH EXECUTE AS OWNER, RECOMPILE AS SELECT 1 FROM Gone",
         "1 type dbo.GoneType; 2 table or view Gone"},
        {"CREATE FUNCTION X (@a AS int) RETURNS GoneType WITH EXECUTE AS CALLER AS BEGIN RETURN "
         "(SELECT Gone FROM T) END",
         "1 type GoneType; 1 column Gone of dbo.T"},
        {"CREATE FUNCTION X () RETURNS @r TABLE (a int, b GoneType) BEGIN INSERT @r SELECT 1, 2 "
         "RETURN END",
         "1 type GoneType"},
        {"CREATE FUNCTION X () RETURNS TABLE RETURN (WITH c AS (SELECT 1 a) SELECT a, x FROM c, "
         "Gone)",
         "1 table or view Gone"},
        {"CREATE TRIGGER X ON T AFTER INSERT, UPDATE NOT FOR REPLICATION AS IF UPDATE(Name) SELECT "
         "i.Id, "
         "d.Gone FROM inserted i JOIN deleted d ON i.Id = d.Id",
         "1 column d.Gone of dbo.T"},
        {"CREATE TRIGGER X ON dbo.Gone FOR DELETE AS DELETE FROM U WHERE Id IN (SELECT Any1 FROM "
         "deleted)",
         "1 table or view dbo.Gone"},
        {"CREATE TRIGGER X ON DATABASE FOR DROP_TABLE AS ROLLBACK", ""},
        {"", ""},
        {"SELECT 1 FROM Gone", "1 table or view Gone"},
    };
    for (const auto& c : cases) EXPECT_EQ(missing(QString::fromUtf8(c.text)), c.missing) << c.text;
}

TEST(MissingReferences, TextsThatDoNotEndAreTold) {
    EXPECT_EQ(inBody("SELECT 1 FROM Gone\nPRINT 'x\n SELECT 1 FROM Gone2"),
              "2 table or view Gone; !its text ends inside a quotation that begins in line 3");
    EXPECT_EQ(inBody("SELECT 1 FROM [T"),
              "!its text ends inside a quotation that begins in line 2");
    EXPECT_EQ(inBody("SELECT 1 /* /* */ FROM Gone"),
              "!its text ends inside a comment that begins in line 2");
    // No server has such a text, and no stack may end under it.
    const QString deep = QStringLiteral("CREATE VIEW X AS SELECT ") + QString(200000, u'(') + u'1';
    EXPECT_EQ(missing(deep), "!its text is nested too deeply to be read to the end");
    EXPECT_EQ(missing(QStringLiteral("CREATE VIEW X AS SELECT 1 FROM ") + QString(200000, u'(')),
              "!its text is nested too deeply to be read to the end");
    ModuleText encrypted;
    encrypted.isReadable = false;
    EXPECT_EQ(told(FindMissingReferences(encrypted, shop())), "!its text can't be read");
}

TEST(MissingReferences, NamesAreComparedAsTheDatabaseDoes) {
    const QString text =
        QStringLiteral("CREATE VIEW X AS SELECT ID FROM t, SALES.o WHERE größe = 1");
    EXPECT_EQ(missing(text), "");
    EXPECT_EQ(missing(text, shop("Latin1_General_CS_AS")),
              "1 table or view t; 1 table or view SALES.o");
    EXPECT_EQ(missing(text, shop("Latin1_General_BIN2")),
              "1 table or view t; 1 table or view SALES.o");
    const QString accents = QStringLiteral("CREATE VIEW X AS SELECT Grosse FROM sales.O");
    EXPECT_EQ(missing(accents), "1 column Grosse of sales.O");
    const QString dotless = QStringLiteral("CREATE VIEW X AS SELECT \u0130d, \u0131d FROM T");
    EXPECT_EQ(missing(dotless, shop("Turkish_CI_AS")), "");
    const QString plain = QStringLiteral("CREATE VIEW X AS SELECT Große, GROSSE FROM sales.O");
    EXPECT_EQ(missing(plain, shop("Latin1_General_CI_AI")), "");
    // "x" is a text where the module was made so.
    const QString quoted = QStringLiteral("CREATE VIEW X AS SELECT \"Gone\" a FROM T");
    EXPECT_EQ(missing(quoted), "1 column \"Gone\" of dbo.T");
    EXPECT_EQ(missing(quoted, shop(), false), "");
}

TEST(MissingReferences, TakeTimeInLineWithTheText) {
    const auto milliseconds = [](int statements) {
        QString text = QStringLiteral("CREATE PROCEDURE X AS\n");
        const QString statement = QStringLiteral(
            "UPDATE t SET Name = (SELECT MAX(Extra) FROM U WHERE U.TId = t.Id) FROM T t WHERE t.Id "
            "= 1\n"
            "SELECT a.Id INTO #x FROM T a JOIN U b ON a.Id = b.TId WHERE a.Name LIKE 'x%' ORDER BY "
            "a.Id\n");
        text.reserve(statements * statement.size());
        for (int i = 0; i < statements; ++i) text += statement;
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(missing(text), "");
        return timer.elapsed();
    };
    const qint64 small = milliseconds(2000);
    const qint64 large = milliseconds(20000);
    EXPECT_LT(large, 40 * small + 500);
}

class DatabaseNamesOnBothRoads : public ::testing::TestWithParam<std::tuple<test::Road, bool>> {};

TEST_P(DatabaseNamesOnBothRoads, AreReadWhole) {
    const auto [road, isOld] = GetParam();
    test::ServedDatabases served(road, isOld ? QStringLiteral("8.00.2039") : QString());
    served.load(
        QStringLiteral("Db"),
        QStringLiteral("CREATE TABLE T (Id int, [A ]] b] int)\nGO\n"
                       "CREATE TABLE Gone (Id int)\nGO\n"
                       "CREATE VIEW V AS SELECT Id AS VId FROM T\nGO\n"
                       "EXEC sp_addtype Phone, 'varchar(20)'\nGO\n"
                       "CREATE PROCEDURE P @a Phone AS\nSELECT [a ]] B], Lost FROM T\n"
                       "SELECT VId, Lost FROM V\nEXEC Lost\nSELECT x FROM Gone\nGO\n"
                       "CREATE PROCEDURE Q WITH ENCRYPTION AS SELECT 1 FROM Gone\nGO\n"
                       "CREATE TRIGGER Tr ON T FOR INSERT AS\nSELECT Id, Lost FROM inserted\nGO\n"
                       "DROP TABLE Gone\n"));
    bool namesRead = false, modulesRead = false;
    const DatabaseNames names =
        DatabaseNames::read(served.server(), QStringLiteral("Db"), namesRead);
    QString all;
    for (const ModuleText& module :
         readModuleTexts(served.server(), QStringLiteral("Db"), modulesRead))
        all += module.object.fullName() + QStringLiteral(": ") +
               QString::fromStdString(told(FindMissingReferences(module, names))) + u'\n';
    EXPECT_TRUE(namesRead && modulesRead);
    EXPECT_EQ(
        all.toStdString(),
        "dbo.P: 2 column Lost of dbo.T; 3 column Lost of dbo.V; 4 procedure Lost; 5 table or "
        "view Gone\ndbo.Q: !its text can't be read\ndbo.V: \ndbo.Tr: 2 column Lost of dbo.T\n");
    DatabaseNames::read(served.server(), QStringLiteral("NoSuchDb"), namesRead);
    readModuleTexts(served.server(), QStringLiteral("NoSuchDb"), modulesRead);
    EXPECT_FALSE(namesRead || modulesRead);
}

INSTANTIATE_TEST_SUITE_P(Roads, DatabaseNamesOnBothRoads,
                         ::testing::Combine(::testing::Values(test::Road::Embedded,
                                                              test::Road::Odbc),
                                            ::testing::Bool()));

}  // namespace
}  // namespace zov
