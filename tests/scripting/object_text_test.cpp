// The texts of programmable objects, relationships, constraints and rights, and
// what a pane shows of a list's selection.
#include "core/run_account.h"
#include "scripting/modNew.h"
#include "scripting/modPermissions.h"
#include "shell/memory_controls.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;
using test::ServedDatabases;

const QString objectsScript = QStringLiteral(R"(
CREATE SCHEMA sales
GO
CREATE TABLE dbo.Parent (A int NOT NULL, B int NOT NULL, CONSTRAINT PK_Parent PRIMARY KEY (A, B))
CREATE TABLE dbo.Child (X int NOT NULL, Y int NOT NULL, CONSTRAINT [FK Child's] FOREIGN KEY (Y, X) REFERENCES dbo.Parent (A, B))
GO


-- a comment in front
CREATE PROCEDURE dbo.p_One
AS
SELECT 'it''s', N'日本'

GO
CREATE VIEW dbo.[v O'Brien] AS SELECT A FROM dbo.Parent
GO
CREATE FUNCTION dbo.f (@a int) RETURNS int AS BEGIN RETURN @a END
GO
CREATE TRIGGER dbo.t ON dbo.Parent FOR INSERT AS RETURN
)");

class ObjectTextTest : public ::testing::TestWithParam<Road> {
 protected:
    // No report and no box unless a test has taken it.
    void TearDown() override { EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), ""); }
    void load(const QString& script) {
        served.load(db, script);
        if (!HasFailure()) server = served.server();
    }

    const QString db = QStringLiteral("Objects");
    test::TempHome home;
    test::RecordingShell shell;
    ServedDatabases served{GetParam()};
    ServerInfo server;
};
INSTANTIATE_TEST_SUITE_P(Roads, ObjectTextTest, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(ObjectTextTest, SourcesComeTrimmedAndOtherwiseAsStored) {
    load(objectsScript);
    const QString procedure = QStringLiteral(
        "-- a comment in front\nCREATE PROCEDURE dbo.p_One\nAS\n"
        "SELECT 'it''s', N'日本'");
    EXPECT_EQ(GetObjectText(server, QStringLiteral("p_One"), db, ObjectType::Procedure), procedure);
    EXPECT_EQ(GetObjectText(server, QStringLiteral("v O'Brien"), db, ObjectType::View),
              QStringLiteral("CREATE VIEW dbo.[v O'Brien] AS SELECT A FROM dbo.Parent"));
    EXPECT_EQ(GetObjectText(server, QStringLiteral("missing"), db, ObjectType::View), QString());

    std::shared_ptr<Connection> connection;
    ASSERT_TRUE(ADO_Connection_Open(connection, server, db));
    const auto named = [](const char* name) {
        return objectNamed(QLatin1String(name), ObjectType::Procedure);
    };
    EXPECT_EQ(GetObjectTextOnConnection(connection, server, named("p_One"), db), procedure);
    EXPECT_EQ(GetObjectTextOnConnection(connection, server, named("t"), db),
              QStringLiteral("CREATE TRIGGER dbo.t ON dbo.Parent FOR INSERT AS RETURN"));
}

TEST_P(ObjectTextTest, ALongSourceIsJoinedFromItsRows) {
    QString body = QStringLiteral("CREATE PROCEDURE dbo.p_Long AS\n");
    for (int i = 0; i < 700; ++i) body += QStringLiteral("SELECT %1 -- äöü\n").arg(i);
    body += QStringLiteral("RETURN");
    load(body);
    for (int cursor : {adUseServer, adUseClient}) {
        globals().glngCursorLocation = cursor;
        EXPECT_EQ(GetObjectText(server, QStringLiteral("p_Long"), db, ObjectType::Procedure), body);
    }
}

TEST_P(ObjectTextTest, ARelationshipShowsItsFirstPairOfColumns) {
    load(objectsScript);
    EXPECT_EQ(GetRelationshipText(server, QStringLiteral("FK Child's"), db),
              QStringLiteral("TABLE Child\r\nCONSTRAINT [FK Child's]\r\nFOREIGN KEY [Y]\r\n"
                             "REFERENCES [Parent] [A]"));
    EXPECT_EQ(GetRelationshipText(server, QStringLiteral("missing"), db), QString());
}

TEST_P(ObjectTextTest, AConstraintIsAClusteredIndexWithOneColumn) {
    load(objectsScript);
    const QString text = GetConstraintText(server, QStringLiteral("PK_Parent"), db);
    EXPECT_TRUE(text == QStringLiteral("CONSTRAINT [PK_Parent] \r\nPRIMARY KEY CLUSTERED \r\n"
                                       "ON COLUMN [A]\r\nON TABLE [Parent]") ||
                text == QStringLiteral("CONSTRAINT [PK_Parent] \r\nPRIMARY KEY CLUSTERED \r\n"
                                       "ON COLUMN [B]\r\nON TABLE [Parent]"))
        << text.toStdString();
    EXPECT_EQ(GetConstraintText(server, QStringLiteral("missing"), db), QString());
}

TEST_P(ObjectTextTest, APaneShowsTheSelectedObject) {
    load(objectsScript);
    MemoryObjectList list;
    MemoryTextPane pane;
    LoadObjects(server, list, pane, ObjectType::Table, db, true, {}, SourcePanel, &objectTexts());
    EXPECT_EQ(list.selectedIndex(), 0);
    EXPECT_EQ(pane.text(), QStringLiteral("[X] [int] NOT NULL\r\n[Y] [int] NOT NULL"));

    const auto show = [&](ObjectType type, const QString& name = {}, qint32 id = 0) {
        UpdateProcedureTextBox(server, pane, list, type, db, name, id, SourcePanel);
        return pane.text();
    };
    list.Tag = QStringLiteral("OFF");
    list.selectRow(1);
    EXPECT_TRUE(show(ObjectType::Table).startsWith(QStringLiteral("[A] [int] NOT NULL")));
    EXPECT_EQ(list.Tag, QString());

    // Several rows: nothing, unless an id says which.
    list.addToSelection(0);
    EXPECT_EQ(show(ObjectType::Table), QStringLiteral("<<Nothing to show>>"));
    EXPECT_TRUE(show(ObjectType::Table, QStringLiteral("Parent"), list.row(1).id)
                    .startsWith(QStringLiteral("[A] [int] NOT NULL")));
    const QString before = pane.text();
    EXPECT_EQ(show(ObjectType(70), QStringLiteral("p_One"), 1), before);
    EXPECT_EQ(shell.takeLines().join(u'|'), QStringLiteral("box: SHOULDN't HAPPEN"));

    list.selectRow(-1);
    EXPECT_TRUE(show(ObjectType::Relationship, QStringLiteral("FK Child's"))
                    .startsWith(QStringLiteral("TABLE Child")));
    EXPECT_EQ(list.selectedIndex(), 0);  // a list without a selection shows its first object
    list.setRows({});
    EXPECT_EQ(show(ObjectType::Table), QStringLiteral("<<Nothing to show>>"));
}

// What stood in the pane before must not pass for the text of an object that can't be read.
TEST_P(ObjectTextTest, ATextThatCantBeReadEmptiesThePaneAndSaysSo) {
    load(objectsScript +
         QStringLiteral("GO\nCREATE PROCEDURE dbo.p_Secret WITH ENCRYPTION AS SELECT 1\n"));
    MemoryObjectList list;
    MemoryTextPane pane;
    const auto load = [&](ObjectType type) {
        LoadObjects(server, list, pane, type, db, true, {}, SourcePanel, &objectTexts());
    };
    load(ObjectType::Procedure);
    EXPECT_TRUE(pane.text().contains(QStringLiteral("p_One")));
    EXPECT_TRUE(pane.Trouble.isEmpty());
    list.selectRow(1);
    RunAccount account;
    {
        const KeepAccount keep(account);
        UpdateProcedureTextBox(server, pane, list, ObjectType::Procedure, db, {}, 0, SourcePanel);
    }
    const QString sentence = server.Name + QStringLiteral(
                                               ".Objects: The text of p_Secret can't be read: it "
                                               "is encrypted, hidden from this login, or "
                                               "the object is gone.");
    EXPECT_EQ(pane.text(), QString());
    EXPECT_EQ(pane.Trouble, sentence);
    EXPECT_EQ(shell.takeLines().join(u'|'),
              QStringLiteral("exclamation [Cannot Show Text]: ") + sentence);
    ASSERT_EQ(account.entries().size(), 1u);
    EXPECT_TRUE(account.entries()[0].refused);

    // The next selection is a text again.
    list.selectRow(0);
    UpdateProcedureTextBox(server, pane, list, ObjectType::Procedure, db, {}, 0, SourcePanel);
    EXPECT_TRUE(pane.text().contains(QStringLiteral("p_One")));
    EXPECT_TRUE(pane.Trouble.isEmpty());

    // An id that no longer stands for anything, of each kind.
    for (const ObjectType type :
         {ObjectType::View, ObjectType::Table, ObjectType::Relationship, ObjectType::Constraint}) {
        pane.setText(QStringLiteral("left over"));
        UpdateProcedureTextBox(server, pane, list, type, db, QStringLiteral("missing"), 1,
                               SourcePanel);
        EXPECT_EQ(pane.text(), QString()) << qint32(type);
        EXPECT_FALSE(pane.Trouble.isEmpty()) << qint32(type);
        EXPECT_EQ(shell.takeLines().size(), 1) << qint32(type);
    }
}

TEST_P(ObjectTextTest, AListingCountsTheRecordsOfTables) {
    load(objectsScript + QStringLiteral("GO\nINSERT INTO dbo.Parent VALUES (1, 1)\n"
                                        "INSERT INTO dbo.Child VALUES (1, 1)\n"
                                        "INSERT INTO dbo.Child VALUES (2, 2)\n"));
    std::unique_ptr<Recordset> rs;
    const auto list = [&](ObjectType type, const ListingProgress& progress, bool numbered) {
        GetAdoRS(server, adCmdText, BuildObjSQLString(type, true, {}, {}, SourcePanel), rs, db);
        return RecordsetToString(progress, rs.get(), type, server, db, numbered);
    };
    QStringList shown;
    EXPECT_EQ(list(ObjectType::Table, {[&](const QString& name) { shown << name; }, {}}, true),
              QStringLiteral("   1  [dbo].[Child] (2 records)\r\n"
                             "   2  [dbo].[Parent] (1 record)\r\n"));
    EXPECT_EQ(shown.join(u'|'), QStringLiteral("Child|Parent"));
    EXPECT_EQ(list(ObjectType::View, {}, false), QStringLiteral("v O'Brien\r\n"));
    EXPECT_EQ(list(ObjectType::Table, {{}, [] { return true; }}, false), QString());
    EXPECT_EQ(RecordsetToString({}, nullptr, ObjectType::Table, server, db, false), QString());
}

TEST_P(ObjectTextTest, RightsAreListedAndTold) {
    load(objectsScript + QStringLiteral(R"(
GO
CREATE USER ann WITHOUT LOGIN
GO
GRANT SELECT ON dbo.Parent TO ann
DENY UPDATE ON dbo.Parent (B) TO ann
GRANT EXECUTE ON dbo.p_One TO ann
GRANT SELECT ON dbo.[v O'Brien] TO ann
)"));
    MemoryObjectList list;
    MemoryTextPane pane;
    LoadObjects(server, list, pane, ObjectType::Permission, db, false, {}, TargetPanel,
                &objectTexts());
    QStringList told;
    for (int row = 0; row < list.rowCount(); ++row)
        told << list.row(row).name + u'/' + list.row(row).refDate + u'/' +
                    GetPermissionText(TargetPanel, list.row(row).id)
                        .replace(QStringLiteral("\r\n"), QStringLiteral("$"));
    told.sort();
    EXPECT_EQ(
        told.join(u'\n').toStdString(),
        "EXECUTE SQL_STORED_PROCEDURE p_One/GRANT/EXECUTE$SQL_STORED_PROCEDURE dbo.p_One$GRANT\n"
        "SELECT TABLE Parent/GRANT/SELECT$USER_TABLE dbo.Parent$GRANT\n"
        "SELECT VIEW v O'Brien/GRANT/SELECT$VIEW dbo.v O'Brien$GRANT\n"
        "UPDATE TABLE COLUMN Parent/DENY/UPDATE$USER_TABLE dbo.Parent.B$DENY");
    EXPECT_EQ(GetPermissionText(TargetPanel, 0), QString());
    EXPECT_EQ(GetPermissionText(TargetPanel, 99), QString());
}

struct TrimCase {
    const char* in;
    const char* out;
};

TEST(TrimmedTexts, LoseBlanksAndBreaksAtBothEnds) {
    for (const TrimCase& row : {TrimCase{"", ""},
                                {" ", " "},
                                {"\n", "\n"},
                                {" \t\r\n", ""},
                                {"\r\n a b\t\n", "a b"},
                                {"a", "a"},
                                {"ab", "ab"},
                                {" a", "a"}})
        EXPECT_EQ(TrimBlanksAndLineBreaks(QLatin1String(row.in)).toStdString(), row.out);
}

TEST(PermissionNames, FollowTheObjectsKind) {
    const auto shortName = [](const char* type, qint32 minorId) {
        PermissionRecord permission;
        permission.strObjectType = QLatin1String(type);
        permission.strTypeDesc = QStringLiteral("SYNONYM");
        permission.lngMinorId = minorId;
        return GetObjectShortName(permission).toStdString();
    };
    EXPECT_EQ(shortName("IF", 0), "FUNCTION");
    EXPECT_EQ(shortName("U", 0), "TABLE");
    EXPECT_EQ(shortName("U", 2), "TABLE COLUMN");
    EXPECT_EQ(shortName("V", 2), "VIEW");
    EXPECT_EQ(shortName("SN", 0), "SYNONYM");

    std::vector<PermissionRecord>& source = permissionsOfSide(SourcePanel);
    source.assign(1, {});
    source[0].strPermissionName = QStringLiteral("CONTROL");
    source[0].strTypeDesc = QStringLiteral("USER_TABLE");
    source[0].strObjectName = QStringLiteral("T");
    source[0].strState = QStringLiteral("GRANT");
    EXPECT_EQ(GetPermissionText(SourcePanel, 1),
              QStringLiteral("CONTROL\r\nUSER_TABLE T\r\nGRANT"));
    source.clear();
}

}  // namespace
}  // namespace zov
