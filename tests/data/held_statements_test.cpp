// Which statements a catalogue that was read whole answers: what it can't know must go to the
// server.
#include "data/image/held_statements.h"

#include <gtest/gtest.h>

namespace zov::image {
namespace {

struct Row {
    const char* statement;
    bool held;   ///< with a server behind it
    bool alone;  ///< with nobody behind it
};
const Row rows[] = {
    {"SELECT so.[name], so.id FROM sysobjects so WHERE so.name = 'O''Brien FROM x' ORDER BY "
     "so.name",
     true, true},
    {"select NAME from SysObjects", true, true},
    {"SELECT name FROM dbo.sysobjects", true, true},
    {"SELECT o.name FROM sys.objects AS o INNER JOIN sys.schemas s ON s.schema_id = o.schema_id",
     true, true},
    {"SELECT [ctext] FROM syscomments WHERE id IN (SELECT cdefault FROM syscolumns WHERE id = 5)",
     true, true},
    {"SELECT SCHEMA_NAME(so.uid) AS s FROM sysobjects so", true, true},
    {"SELECT OBJECTPROPERTY(id, N'IsView') AS v FROM sysobjects", true, true},
    {"SELECT name, isID=case when status&128=0 then '' else 'Y' end FROM syscolumns", true, true},
    // Tables of the user, also behind a comma, in other schemas and databases.
    {"SELECT name FROM Orders", false, false},
    {"SELECT COUNT(*) AS RecsCount FROM [dbo].[sysobjects]", false, false},
    {"SELECT name FROM sysobjects, Orders", false, false},
    {"SELECT name FROM sysobjects, syscolumns", false, false},
    {"SELECT name FROM sysobjects WHERE id IN (SELECT id FROM Orders)", false, false},
    {"SELECT name FROM hr.sysobjects", false, false},
    {"SELECT name FROM master..sysobjects", false, false},
    {"SELECT name FROM master.dbo.sysobjects", false, false},
    // Views, columns and functions that aren't copied.
    {"SELECT rows FROM sysindexes", false, false},
    {"SELECT * FROM sysobjects", false, false},
    {"SELECT so.* FROM sysobjects so", false, false},
    {"SELECT definition FROM sys.sql_modules", false, false},
    {"SELECT name FROM sys.sysobjects WHERE name = USER_NAME()", false, false},
    {"SELECT SCHEMA_NAME() AS s, name FROM sysobjects", false, false},
    {"SELECT name FROM sysobjects WHERE name = @@SERVERNAME", false, false},
    {"SELECT TOP 1 name FROM sysobjects", false, false},
    // Anything but one select.
    {"DELETE FROM sysobjects", false, false},
    {"SELECT name INTO copy FROM sysobjects", false, false},
    {"SELECT name FROM sysobjects; DROP TABLE Orders", false, false},
    {"SELECT name FROM sysobjects DROP TABLE Orders", false, false},
    {"SELECT name FROM sysobjects WHERE name = 'open", false, false},
    {"", false, false},
    // The server's own answers.
    {"SELECT serverproperty('ProductVersion') AS ServerVer", false, true},
    {"SELECT HAS_PERMS_BY_NAME(DB_NAME(), 'DATABASE', 'VIEW DEFINITION')", false, true},
    {"SELECT name FROM sysdatabases ORDER BY name", false, true},
    {"SELECT d.collation_name FROM sys.databases d WHERE d.name = DB_NAME()", false, true},
};

TEST(HeldStatements, AreSelectsOverWhatWasCopied) {
    HeldStatements held, alone(HeldStatements::Behind::Nobody);
    // Once more, from what was remembered.
    for (int round = 0; round < 2; ++round) {
        for (const Row& row : rows) {
            const QString statement = QString::fromLatin1(row.statement);
            EXPECT_EQ(held.contain(statement), row.held) << row.statement;
            EXPECT_EQ(alone.contain(statement), row.alone) << row.statement;
        }
    }
}

TEST(HeldStatements, AreToldApartFromQuestionsForRows) {
    const struct {
        const char* statement;
        bool catalogue;
    } questions[] = {
        {"SELECT rows FROM sysindexes", true},
        {"SELECT m.definition FROM sys.sql_modules m JOIN sys.objects o ON o.object_id = "
         "m.object_id",
         true},
        {"SELECT a FROM T", false},
        {"SELECT a FROM T JOIN sysobjects ON 1 = 1", false},
        {"SELECT 1", false},
        {"DROP TABLE T", false},
    };
    for (const auto& one : questions)
        EXPECT_EQ(HeldStatements::readCatalogue(QString::fromLatin1(one.statement)), one.catalogue)
            << one.statement;
}

}  // namespace
}  // namespace zov::image
