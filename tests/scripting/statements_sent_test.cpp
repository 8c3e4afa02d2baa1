// What is sent to a server for each text, to the letter.
#include "core/modIgnoreColumns.h"
#include "scripting/modNew.h"
#include "support/tds_endpoint/scripted_provider.h"
#include "support/tds_endpoint/tds_endpoint.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class StatementsSent : public ::testing::Test {
 protected:
    void SetUp() override {
        provider.otherwise = [](const CommandSpec&) { return ScriptedAnswer(); };
        TdsEndpointOptions options;
        options.provider = &provider;
        options.password = QStringLiteral("secret");
        endpoint.start(options);
        server.Name = endpoint.dataSource();
        server.SQLAuth = true;
        server.LoginName = options.user;
        server.Password = options.password;
        server.Version = QStringLiteral("16.0.4085.2");
    }
    // The one query that `call` sent; what a session needs besides (its database) isn't told.
    template <typename Call>
    std::string sent(Call call) {
        const size_t before = provider.commands().size();
        call();
        const std::vector<CommandSpec> commands = provider.commands();
        QStringList queries;
        for (size_t i = before; i < commands.size(); ++i)
            if (commands[i].text.startsWith(QStringLiteral("SELECT "))) queries << commands[i].text;
        EXPECT_EQ(queries.size(), 1) << queries.join(u'\n').toStdString();
        return queries.join(u'\n').toStdString();
    }

    test::TempHome home;
    ScriptedProvider provider;
    TdsEndpoint endpoint;
    ServerInfo server;
    const QString db = QStringLiteral("Db");
};

TEST_F(StatementsSent, ForATable) {
    TableStructure structure;
    const std::string head =
        "SELECT sco.[name] AS [column], sco.autoval, sco.isnullable, sco.length, sco.prec, "
        "sco.scale, "
        "sty.[name] AS datatype, ident_seed('T') AS identityseed, ident_incr('T') AS "
        "identityincrement, isID=case when sco.status&128=0 then '' else 'Y' end , sco.cdefault, "
        "sob.[id] AS [table_id], sco.[colid] AS [col_id] FROM sysobjects sob INNER JOIN syscolumns "
        "sco ON sob.id = sco.id INNER JOIN systypes sty ON sco.xtype = sty.xtype AND sco.xusertype "
        "= "
        "sty.xusertype ";
    const auto structureOf = [&](qint32 id) {
        return sent([&] {
            GetTableStructure(server, db, QStringLiteral("T"), structure, false,
                              IgnoreMode::StructureComparison, id, {});
        });
    };
    EXPECT_EQ(structureOf(0), head + "WHERE sob.name = 'T' ORDER BY sco.colorder");
    EXPECT_EQ(structureOf(-3), head + "WHERE sob.name = 'T' ORDER BY sco.colorder");
    EXPECT_EQ(structureOf(1234567), head + "WHERE sco.id = 1234567 ORDER BY sco.colorder");

    EXPECT_EQ(
        sent([&] { GetDefaultValue(server, db, 11, 2); }),
        "SELECT [ctext] FROM syscomments WHERE id IN (SELECT cdefault FROM syscolumns WHERE id = "
        "11 AND colid = 2 AND cdefault > 0)");
    EXPECT_EQ(sent([&] { GetDefaultConstraintName(server, db, 11, 22); }),
              "SELECT [name] FROM sys.objects WHERE parent_object_id = 11 AND object_id = 22 AND "
              "type_desc LIKE 'DEFAULT_CONSTRAINT'");

    const std::string indexes =
        "SELECT DISTINCT sc.name AS [column], si.name as [index], sk.indid, sk.keyno FROM "
        "sysobjects "
        "so INNER JOIN sysindexkeys sk ON so.parent_obj = sk.id INNER JOIN sysindexes si ON sk.id "
        "= "
        "si.id AND sk.indid = si.indid INNER JOIN syscolumns sc ON sk.id = sc.id AND sk.colid = "
        "sc.colid INNER JOIN sysobjects so2 ON so.parent_obj = so2.id WHERE so2.name = 'O''T' AND ";
    const std::string tail =
        "INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 AND INDEXPROPERTY(si.id, si.name, "
        "'IsHypothetical') = 0 ORDER BY sk.indid, sk.keyno";
    EXPECT_EQ(sent([&] { GetIndexes(server, QStringLiteral("O'T"), db, true, {}); }),
              indexes + "si.indid = 1 AND " + tail);
    EXPECT_EQ(sent([&] { GetIndexes(server, QStringLiteral("O'T"), db, false, {}); }),
              indexes + "si.indid BETWEEN 1 AND 254 AND " + tail);
    EXPECT_EQ(
        sent([&] { GetTableConstraints(server, QStringLiteral("T"), db); }),
        "SELECT so.name AS [constraint], sc.text AS [default], sl.name as [column] FROM "
        "sysobjects so INNER JOIN syscomments sc ON so.id = sc.id INNER JOIN syscolumns sl ON "
        "so.parent_obj = sl.id AND so.id = sl.cdefault WHERE so.parent_obj IN (SELECT id FROM "
        "sysobjects WHERE name = 'T') ORDER BY info");
}

TEST_F(StatementsSent, ForOtherObjects) {
    EXPECT_EQ(
        sent([&] { GetObjectText(server, QStringLiteral("o'p"), db, ObjectType::View); }),
        "SELECT text FROM syscomments sc INNER JOIN sysobjects so ON sc.id = so.id WHERE so.name "
        "= 'o''p' ORDER BY sc.colid");
    EXPECT_EQ(
        sent([&] { GetRelationshipText(server, QStringLiteral("r"), db); }),
        "SELECT so.name AS foreignkey, scf.name AS foreigncolumn, sor.name AS referencedtable, "
        "scr.name AS referencedcolumn, sof.name AS tablename, CASE WHEN sor.uid = sof.uid THEN '' "
        "ELSE SCHEMA_NAME(sor.uid) END AS referencedschema FROM sysreferences sr INNER JOIN "
        "sysobjects so ON sr.constid = so.id INNER JOIN sysobjects sof ON sof.id = sr.fkeyid "
        "INNER JOIN sysobjects sor ON sor.id = sr.rkeyid INNER JOIN syscolumns scf ON scf.id = "
        "sof.id AND scf.colid = sr.fkey1 INNER JOIN syscolumns scr ON scr.id = sor.id AND "
        "scr.colid = sr.rkey1 WHERE so.name = 'r' ORDER BY scf.name");
    EXPECT_EQ(
        sent([&] { GetConstraintText(server, QStringLiteral("c"), db); }),
        "SELECT si.name as [name], so2.refdate AS refdate, so2.id AS id, sc.name AS [column], "
        "sk.indid, so2.name as [tablename] FROM sysobjects so INNER JOIN sysindexkeys sk ON "
        "so.parent_obj = sk.id INNER JOIN sysindexes si ON sk.id = si.id AND sk.indid = "
        "si.indid INNER JOIN syscolumns sc ON sk.id = sc.id AND sk.colid = sc.colid INNER JOIN "
        "sysobjects so2 ON so.parent_obj = so2.id WHERE si.indid = 1 AND  si.name = 'c' AND "
        "INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 AND INDEXPROPERTY(si.id, si.name, "
        "'IsHypothetical') = 0 ");
    EXPECT_EQ(
        sent([&] { GetExtras(server, QStringLiteral("v"), db, ObjectType::View); }),
        "SELECT si.name AS [index], sk.indid, sc.[name] AS [column] FROM sysindexkeys sk INNER "
        "JOIN sysindexes si ON sk.id = si.id AND sk.indid = si.indid INNER JOIN syscolumns sc ON "
        "sk.id = sc.id AND sk.colid = sc.colid INNER JOIN sysobjects so ON so.id = sk.id WHERE "
        "so.[name] = 'v' ORDER BY sk.indid");
}

// A name that stands for several objects of the database comes with the id of the one that is
// meant.
TEST_F(StatementsSent, ForNamesakesHoldTheId) {
    const auto namesake = [](ObjectType kind) {
        return ObjectRef{QStringLiteral("h'r"),    QStringLiteral("o'p"), kind, 55, true,
                         QStringLiteral("h'r.o'p")};
    };
    const auto ends = [](const std::string& statement, const std::string& tail) {
        return statement.size() >= tail.size() &&
               statement.compare(statement.size() - tail.size(), tail.size(), tail) == 0;
    };
    EXPECT_EQ(
        sent([&] { GetObjectText(server, namesake(ObjectType::View), db); }),
        "SELECT text FROM syscomments sc INNER JOIN sysobjects so ON sc.id = so.id WHERE so.name "
        "= 'o''p' AND so.id = 55 ORDER BY sc.colid");
    std::string statement =
        sent([&] { GetRelationshipText(server, namesake(ObjectType::Relationship), db); });
    EXPECT_TRUE(ends(statement, "WHERE so.name = 'o''p' AND so.id = 55 ORDER BY scf.name"))
        << statement;
    statement = sent([&] { GetConstraintText(server, namesake(ObjectType::Constraint), db); });
    EXPECT_TRUE(statement.find("si.indid = 1 AND  si.name = 'o''p' AND so2.id = 55 AND "
                               "INDEXPROPERTY(") != std::string::npos)
        << statement;
    statement = sent([&] { GetIndexes(server, namesake(ObjectType::Table), db, true, {}); });
    EXPECT_TRUE(statement.find("WHERE so2.name = 'o''p' AND so2.id = 55 AND si.indid = 1 AND "
                               "INDEXPROPERTY(") != std::string::npos)
        << statement;
}

// ident_seed reads its argument as a statement would: a plain name of dbo stands as it is.
TEST_F(StatementsSent, AnIdentityIsAskedOfTheTableThatIsMeant) {
    const struct {
        const char* schema;
        const char* name;
        bool namesakes;
        const char* literal;
    } rows[] = {
        {"", "T", false, "T"},
        {"dbo", "T", false, "T"},
        {"dbo", "Order Details", false, "Order Details"},
        {"dbo", "O'Brien", false, "O''Brien"},
        {"dbo", "T", true, "[dbo].[T]"},
        {"hr", "T", false, "[hr].[T]"},
        {"dbo", "p.q", false, "[dbo].[p.q]"},
        {"dbo", " led", false, "[dbo].[ led]"},
        {"", "p.q", false, "[p.q]"},
        {"dbo", "a]b", false, "[dbo].[a]]b]"},
        {"d'o", "x\"", false, "[d''o].[x\"]"},
    };
    for (const auto& row : rows) {
        TableStructure structure;
        const ObjectRef table{QLatin1String(row.schema),
                              QLatin1String(row.name),
                              ObjectType::Table,
                              7,
                              row.namesakes,
                              {}};
        const std::string statement = sent([&] {
            GetTableStructure(server, db, table, structure, false, IgnoreMode::StructureComparison,
                              {});
        });
        const std::string wanted = std::string("ident_seed('") + row.literal +
                                   "') AS identityseed, ident_incr('" + row.literal + "')";
        EXPECT_NE(statement.find(wanted), std::string::npos) << row.name << ": " << statement;
        EXPECT_NE(statement.find("WHERE sco.id = 7 "), std::string::npos) << statement;
    }
}

}  // namespace
}  // namespace zov
