// Object lists, names, owners and schemas, read from real catalogues over both
// roads.
#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "catalog/panel_loading.h"
#include "shell/memory_controls.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;
using test::ServedDatabases;

const QString shopScript = QStringLiteral(R"(
CREATE SCHEMA sales
GO
CREATE TABLE dbo.Customers (ID int NOT NULL CONSTRAINT PK_Customers PRIMARY KEY, Name varchar(20) NULL)
CREATE TABLE sales.Customers (Code char(3) NOT NULL CONSTRAINT CustomersKey PRIMARY KEY)
CREATE TABLE dbo.[Order Details] (ID int NOT NULL, CustomerID int NOT NULL CONSTRAINT FK_Details_Customers REFERENCES dbo.Customers (ID))
CREATE TABLE dbo.[O'Brien] (ID int NOT NULL)
CREATE TABLE sales.Regions (ID int NOT NULL CONSTRAINT pk_regions PRIMARY KEY)
GO
CREATE VIEW dbo.v_All AS SELECT ID FROM dbo.Customers
GO
CREATE VIEW sales.v_All AS SELECT Code FROM sales.Customers
GO
CREATE VIEW sales.v_Regions AS SELECT ID FROM sales.Regions
GO
CREATE PROCEDURE dbo.p_One AS SELECT 1
GO
CREATE PROCEDURE sales.p_Two AS SELECT 2
GO
CREATE FUNCTION dbo.f_Scalar (@a int) RETURNS int AS BEGIN RETURN @a END
GO
CREATE FUNCTION sales.f_Inline () RETURNS TABLE AS RETURN SELECT 1 AS one
GO
CREATE TRIGGER sales.[tr_Regions] ON sales.Regions FOR INSERT AS RETURN
GO
CREATE TRIGGER [sales].[tr_Other] ON sales.Regions FOR DELETE AS RETURN
)");

class ObjectLists : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        ForgetSchemaFunctionFindings();
        served.load(db, shopScript);
        if (!HasFailure()) server = served.server();
    }
    // No report and no box unless a test has taken it.
    void TearDown() override { EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), ""); }

    QString names(ObjectType type, const QString& condition = {}) {
        MemoryObjectList list;
        MemoryTextPane pane;
        LoadObjects(server, list, pane, type, db, false, condition, SourcePanel, nullptr);
        QStringList names;
        for (int row = 0; row < list.rowCount(); ++row) names << list.row(row).name;
        return names.join(u'|');
    }
    qint32 idOf(ObjectType type, const QString& name) {
        MemoryObjectList list;
        MemoryTextPane pane;
        LoadObjects(server, list, pane, type, db, false, {}, SourcePanel, nullptr);
        for (int row = 0; row < list.rowCount(); ++row)
            if (list.row(row).name == name) return list.row(row).id;
        ADD_FAILURE() << "not listed: " << name.toStdString();
        return 0;
    }

    const QString db = QStringLiteral("Shop");
    test::TempHome home;
    test::RecordingShell shell;
    ServedDatabases served{GetParam()};
    ServerInfo server;
};
INSTANTIATE_TEST_SUITE_P(Roads, ObjectLists, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(ObjectLists, ShowEachTypeByNameWithSchemasWhereANameStandsTwice) {
    for (int cursor : {adUseServer, adUseClient}) {
        globals().glngCursorLocation = cursor;
        EXPECT_EQ(names(ObjectType::Table),
                  QStringLiteral("dbo.Customers|sales.Customers|O'Brien|Order Details|Regions"));
        EXPECT_EQ(names(ObjectType::View), QStringLiteral("dbo.v_All|sales.v_All|v_Regions"));
        EXPECT_EQ(names(ObjectType::Procedure), QStringLiteral("p_One|p_Two"));
        EXPECT_EQ(names(ObjectType::Function), QStringLiteral("f_Inline|f_Scalar"));
        EXPECT_EQ(names(ObjectType::Trigger), QStringLiteral("tr_Other|tr_Regions"));
        EXPECT_EQ(names(ObjectType::Relationship), QStringLiteral("FK_Details_Customers"));
        EXPECT_EQ(names(ObjectType::Table, QStringLiteral("LIKE 'O%'")),
                  QStringLiteral("O'Brien|Order Details"));
        EXPECT_EQ(names(ObjectType::Table, QStringLiteral("LIKE 'zz%'")), QString());
    }
}

TEST_P(ObjectLists, ConstraintsAreClusteredKeysNamedPkOfTablesWithAChild) {
    // CustomersKey isn't named so.
    EXPECT_EQ(names(ObjectType::Constraint), QStringLiteral("PK_Customers|pk_regions"));
    EXPECT_EQ(idOf(ObjectType::Constraint, QStringLiteral("pk_regions")),
              idOf(ObjectType::Table, QStringLiteral("Regions")));
}

TEST_P(ObjectLists, AFilterKeepsTheObjectsOfItsSchemas) {
    globals().gblnFilterActive[SourcePanel] = true;
    globals().gstrFilterList[SourcePanel] = QStringLiteral("sales");
    // The join is by name: both Customers and both v_All have a match in the schema.
    EXPECT_EQ(names(ObjectType::Table), QStringLiteral("dbo.Customers|sales.Customers|Regions"));
    EXPECT_EQ(names(ObjectType::View), QStringLiteral("dbo.v_All|sales.v_All|v_Regions"));
    EXPECT_EQ(names(ObjectType::Procedure), QStringLiteral("p_Two"));
    EXPECT_EQ(names(ObjectType::Trigger), QStringLiteral("tr_Other|tr_Regions"));
}

TEST_P(ObjectLists, AFilterOnFunctionsBindsToTheLastKindAlone) {
    globals().gblnFilterActive[SourcePanel] = true;
    globals().gstrFilterList[SourcePanel] = QStringLiteral("nobody");
    // Inline and scalar functions pass: the filter's condition belongs to table functions.
    EXPECT_EQ(names(ObjectType::Function), QStringLiteral("f_Inline|f_Scalar"));
}

TEST_P(ObjectLists, AnUnknownDatabaseGivesAnEmptyList) {
    const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
    MemoryObjectList list;
    list.setRows({{QStringLiteral("old"), {}, 1}});
    MemoryTextPane pane;
    bool busy = false;
    LoadObjects(server, list, pane, ObjectType::Table, QStringLiteral("NoSuchDb"), false, {},
                SourcePanel, nullptr, &busy);
    EXPECT_EQ(list.rowCount(), 0);
    EXPECT_FALSE(busy);
    EXPECT_FALSE(CanConnectToDb(server, QStringLiteral("NoSuchDb"), SourcePanel));
    EXPECT_TRUE(CanConnectToDb(server, db, SourcePanel));
}

TEST_P(ObjectLists, AListAsRecordsetComesOnTheCallersConnection) {
    std::shared_ptr<Connection> connection;
    ASSERT_TRUE(ADO_Connection_Open(connection, server, db));
    std::unique_ptr<Recordset> rs;
    LoadObjects_ToRecordset(connection, rs, ObjectType::Procedure, SourcePanel);
    ASSERT_TRUE(rs);
    std::vector<ObjectListEntry> list;
    ASSERT_TRUE(RecordsetToObjectList(*rs, list, 7));
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[1].Name, QStringLiteral("p_Two"));
    EXPECT_EQ(list[1].Mode, 7);
    EXPECT_GT(list[1].Id, 0);
    EXPECT_FALSE(list[1].RefDate.isEmpty());
}

TEST_P(ObjectLists, OwnersAndSchemasOfADatabase) {
    QStringList schemas;
    EXPECT_EQ(GetAllSchemas(server, db, schemas), 2);
    EXPECT_EQ(schemas.join(u','), QStringLiteral("dbo,sales"));

    // Ids, where two schemas hold a name.
    QString schema;
    EXPECT_TRUE(Db_GetObjSchemaById(server, ObjectType::Table, db,
                                    idOf(ObjectType::Table, QStringLiteral("sales.Customers")),
                                    schema));
    EXPECT_EQ(schema, QStringLiteral("sales"));
    EXPECT_TRUE(Db_GetObjSchemaById(server, ObjectType::Table, db, 1, schema));
    EXPECT_EQ(schema, QString());

    const auto schemaOf = [&](ObjectType type, const char* name) {
        return GetSchemaForObject(server, db, QLatin1String(name), type);
    };
    EXPECT_EQ(schemaOf(ObjectType::Table, "Regions"), QStringLiteral("sales"));
    EXPECT_EQ(schemaOf(ObjectType::Table, "O'Brien"), QStringLiteral("dbo"));
    EXPECT_EQ(schemaOf(ObjectType::View, "v_Regions"), QStringLiteral("sales"));
    EXPECT_EQ(schemaOf(ObjectType::Procedure, "p_Two"), QStringLiteral("sales"));
    EXPECT_EQ(schemaOf(ObjectType::Function, "f_Inline"), QStringLiteral("sales"));
    EXPECT_EQ(schemaOf(ObjectType::Trigger, "tr_Other"), QStringLiteral("sales"));
    // The first brackets of the text are taken for the schema.
    EXPECT_EQ(schemaOf(ObjectType::Trigger, "tr_Regions"), QStringLiteral("tr_Regions"));
    EXPECT_EQ(schemaOf(ObjectType::Relationship, "FK_Details_Customers"), QString());
    EXPECT_EQ(schemaOf(ObjectType::Table, "missing"), QString());
}

TEST_P(ObjectLists, ExtendedNamesAreQualifiedAndBracketed) {
    const auto extended = [&](const char* name, qint32 id) {
        return GetExtendedObjectName(server, db, QLatin1String(name), ObjectType::Table, id);
    };
    EXPECT_EQ(extended("Regions", 0), QStringLiteral("[sales].[Regions]"));
    EXPECT_EQ(extended("Regions", idOf(ObjectType::Table, QStringLiteral("Regions"))),
              QStringLiteral("[sales].[Regions]"));
    // By id there is no exception for dbo; by name there is.
    EXPECT_EQ(extended("Order Details", idOf(ObjectType::Table, QStringLiteral("Order Details"))),
              QStringLiteral("[dbo].[Order Details]"));
    EXPECT_EQ(extended("Order Details", 0), QStringLiteral("[Order Details]"));
    globals().gblnExtendedNames = false;
    EXPECT_EQ(extended("Regions", 0), QStringLiteral("Regions"));
}

TEST_P(ObjectLists, ColumnsAndObjectsOfEverything) {
    EXPECT_EQ(GetListOfAllColumns(server, db, QStringLiteral("Order Details")).join(u','),
              QStringLiteral("CustomerID,ID"));
    EXPECT_EQ(GetListOfAllColumns(server, db, QStringLiteral("O'Brien")).join(u','),
              QStringLiteral("ID"));
    EXPECT_EQ(GetListOfAllColumns(server, QStringLiteral("NoSuchDb"), {}).size(), 0);
    EXPECT_FALSE(globals().gblnSuppressConnErrors);

    std::vector<ObjectListEntry> objects;
    ASSERT_TRUE(GetListOfAllObjects(server, db, objects, SourcePanel));
    QStringList names;
    for (const ObjectListEntry& object : objects) names << object.Name;
    EXPECT_TRUE(names.join(u'|').startsWith(
        QStringLiteral("p_One|p_Two|f_Inline|f_Scalar|v_All|v_All|v_Regions|tr_Other|tr_Regions|"
                       "Customers|Customers|O'Brien|Order Details|Regions|FK_Details_Customers|"
                       "PK_Customers|pk_regions")))
        << names.join(u'|').toStdString();
}

TEST_P(ObjectLists, AFailedNameIsTriedWithItsSchemaOnce) {
    QString name = QStringLiteral("Regions");
    EXPECT_FALSE(RetryWithSchema(server, db, name, ObjectType::Table, ado_error::SyntaxError));
    EXPECT_FALSE(server.SchemaCheckPerformed);
    EXPECT_TRUE(RetryWithSchema(server, db, name, ObjectType::Table, ado_error::NoSuchTable));
    EXPECT_EQ(name, QStringLiteral("[sales].[Regions]"));
    EXPECT_TRUE(server.SchemaCheckPerformed);
    EXPECT_TRUE(server.AddSchema);

    ServerInfo other = served.server();
    name = QStringLiteral("missing");
    EXPECT_FALSE(RetryWithSchema(other, db, name, ObjectType::Table, ado_error::NoSuchTable));
    EXPECT_EQ(name, QStringLiteral("missing"));
    EXPECT_TRUE(other.SchemaCheckPerformed);
    // It didn't help before: not asked again.
    name = QStringLiteral("Regions");
    EXPECT_FALSE(RetryWithSchema(other, db, name, ObjectType::Table, ado_error::NoSuchTable));
}

class OldServer : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        ForgetSchemaFunctionFindings();
        served.load(db, QStringLiteral(R"(
sp_addlogin 'ann'
GO
sp_adduser 'ann', 'ann'
GO
CREATE SCHEMA ann AUTHORIZATION ann
GO
CREATE TABLE dbo.T (ID int NOT NULL)
CREATE TABLE ann.T (ID int NOT NULL)
CREATE TABLE ann.U (ID int NOT NULL)
)"));
        if (!HasFailure()) server = served.server();
    }
    // No report and no box unless a test has taken it.
    void TearDown() override { EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), ""); }

    const QString db = QStringLiteral("Old");
    test::TempHome home;
    test::RecordingShell shell;
    ServedDatabases served{GetParam(), QStringLiteral("8.00.2039")};
    ServerInfo server;
};
INSTANTIATE_TEST_SUITE_P(Roads, OldServer, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(OldServer, ListsANameOfTwoOwnersTwiceAsItIs) {
    EXPECT_EQ(server.Version, QStringLiteral("8.00.2039"));
    MemoryObjectList list;
    MemoryTextPane pane;
    LoadObjects(server, list, pane, ObjectType::Table, db, false, {}, SourcePanel, nullptr);
    ASSERT_EQ(list.rowCount(), 3);
    EXPECT_EQ(list.row(0).name, QStringLiteral("T"));
    EXPECT_EQ(list.row(1).name, QStringLiteral("T"));
    EXPECT_NE(list.row(0).id, list.row(1).id);

    QString owners;
    EXPECT_GE(GetAllOwners(server, db, owners), 2);
    EXPECT_TRUE(owners.split(u',').contains(QStringLiteral("ann")));
    QStringList ordered;
    GetAllOwnersIntoArray(server, db, ordered);
    EXPECT_TRUE(std::is_sorted(ordered.begin(), ordered.end()));

    EXPECT_EQ(GetOwner(server, db, QStringLiteral("U"), ObjectType::Table), QStringLiteral("ann"));
    EXPECT_EQ(GetOwner(server, db, QStringLiteral("U"), ObjectType::View), QString());
    QString schema;
    EXPECT_TRUE(Db_GetObjSchemaById(server, ObjectType::Table, db, list.row(2).id, schema));
    EXPECT_EQ(schema, QStringLiteral("ann"));

    const auto extended = [&](const char* name) {
        return GetExtendedObjectName(server, db, QLatin1String(name), ObjectType::Table, 0);
    };
    EXPECT_EQ(extended("U"), QStringLiteral("[ann].[U]"));
    EXPECT_EQ(extended("dbo.U"), QStringLiteral("[ann].[U]"));  // the owner's answer counts
    EXPECT_EQ(extended("missing"), QStringLiteral("[missing]"));
}

TEST_P(OldServer, RightsAreAnEmptyListWithoutAQuery) {
    MemoryObjectList list;
    MemoryTextPane pane;
    LoadObjects(server, list, pane, ObjectType::Permission, db, false, {}, SourcePanel, nullptr);
    EXPECT_EQ(list.rowCount(), 0);
    std::vector<ObjectListEntry> objects;
    EXPECT_TRUE(GetAllObjectsOfType(server, db, ObjectType::Permission, objects, SourcePanel));
}

}  // namespace
}  // namespace zov
