// The catalogue statements to the letter, and the small helpers around them.
#include "catalog/mdlObjects.h"
#include "catalog/modSchema.h"
#include "core/globals.h"
#include "shell/memory_controls.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class Statements : public ::testing::Test {
 protected:
    void SetUp() override { resetGlobals(); }
    void TearDown() override { resetGlobals(); }
};

struct StatementCase {
    const char* name;
    ObjectType type;
    bool ignoreSystem;
    const char* objectName;
    const char* condition;
    const char* filter;  // names of the filter, null when none is active
    const char* expected;
};

constexpr StatementCase statementCases[] = {
    {"tables", ObjectType::Table, true, "", "", nullptr,
     "select name, refdate, id from sysobjects where OBJECTPROPERTY(id, N'IsUserTable') = 1 and "
     "xtype <> 'S'  order by name"},
    {"tables with the system's", ObjectType::Table, false, "", "", nullptr,
     "select name, refdate, id from sysobjects where OBJECTPROPERTY(id, N'IsUserTable') = 1 order "
     "by "
     "name"},
    {"functions: the conditions bind to the last kind", ObjectType::Function, true, "", "", nullptr,
     "select name, refdate, id from sysobjects where OBJECTPROPERTY(id, N'IsInlineFunction') = 1 "
     "or "
     "OBJECTPROPERTY(id, N'IsScalarFunction') = 1  or OBJECTPROPERTY(id, N'IsTableFunction') = 1 "
     "and "
     "xtype <> 'S'  order by name"},
    {"one view by name, its quote as it came", ObjectType::View, true, "O'Brien", "", nullptr,
     "select name, refdate, id from sysobjects where OBJECTPROPERTY(id, N'IsView') = 1 and xtype "
     "<> "
     "'S'  and name = 'O'Brien'  order by name"},
    {"triggers by a pattern", ObjectType::Trigger, false, "", "LIKE 'tr%'", nullptr,
     "select name, refdate, id from sysobjects where OBJECTPROPERTY(id, N'IsTrigger') = 1 and "
     "[name] "
     "LIKE 'tr%' order by name"},
    {"name and pattern", ObjectType::Procedure, true, "p", "LIKE 'a%'", nullptr,
     "select name, refdate, id from sysobjects where OBJECTPROPERTY(id, N'IsProcedure') = 1 and "
     "xtype "
     "<> 'S'  and name = 'p'  and [name] LIKE 'a%' order by name"},
    {"tables of two schemas", ObjectType::Table, true, "", "", "sales,dbo",
     "select name, refdate, id from sysobjects LEFT JOIN INFORMATION_SCHEMA.TABLES ON "
     "INFORMATION_SCHEMA.TABLES.TABLE_NAME = [name] where OBJECTPROPERTY(id, N'IsUserTable') = 1 "
     "and "
     "xtype <> 'S' AND INFORMATION_SCHEMA.TABLES.TABLE_SCHEMA IN ('sales','dbo') order by name"},
    {"views of a schema, no blank before AND", ObjectType::View, false, "", "", "sales",
     "select name, refdate, id from sysobjects LEFT JOIN INFORMATION_SCHEMA.VIEWS ON "
     "INFORMATION_SCHEMA.VIEWS.TABLE_NAME = [name] where OBJECTPROPERTY(id, N'IsView') = 1AND "
     "INFORMATION_SCHEMA.VIEWS.TABLE_SCHEMA IN ('sales') order by name"},
    {"procedures of a schema", ObjectType::Procedure, true, "", "", "sales",
     "select name, refdate, id from sysobjects LEFT JOIN INFORMATION_SCHEMA.ROUTINES ON "
     "INFORMATION_SCHEMA.ROUTINES.ROUTINE_NAME = [name] where OBJECTPROPERTY(id, N'IsProcedure') = "
     "1 "
     "and xtype <> 'S' AND INFORMATION_SCHEMA.ROUTINES.ROUTINE_SCHEMA IN ('sales') order by name"},
    {"triggers know no filter", ObjectType::Trigger, false, "", "", "sales",
     "select name, refdate, id from sysobjects where OBJECTPROPERTY(id, N'IsTrigger') = 1 order by "
     "name"},
    {"relationships: one text for all", ObjectType::Relationship, true, "x", "LIKE 'y'", "sales",
     "SELECT so.name AS name, so.refdate AS refdate, so.id AS id FROM sysreferences sr INNER JOIN "
     "sysobjects so ON sr.constid = so.id INNER JOIN sysobjects sof ON sof.id = sr.fkeyid INNER "
     "JOIN "
     "sysobjects sor ON sor.id = sr.rkeyid INNER JOIN syscolumns scf ON scf.id = sof.id AND "
     "scf.colid "
     "= sr.fkey1 INNER JOIN syscolumns scr ON scr.id = sor.id AND scr.colid = sr.rkey1 ORDER BY "
     "so.name"},
    {"constraints", ObjectType::Constraint, true, "", "", nullptr,
     "SELECT DISTINCT si.name as [name], so2.refdate AS refdate, so2.id AS id  FROM sysobjects so "
     "INNER JOIN sysindexkeys sk ON so.parent_obj = sk.id INNER JOIN sysindexes si ON sk.id = "
     "si.id "
     "AND sk.indid = si.indid INNER JOIN syscolumns sc ON sk.id = sc.id AND sk.colid = sc.colid "
     "INNER "
     "JOIN sysobjects so2 ON so.parent_obj = so2.id WHERE si.indid = 1 AND  si.name LIKE 'pk%' AND "
     "INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 AND INDEXPROPERTY(si.id, si.name, "
     "'IsHypothetical') = 0 ORDER BY si.name"},
};

TEST_F(Statements, ListEachTypeToTheLetter) {
    for (const StatementCase& row : statementCases) {
        SCOPED_TRACE(row.name);
        globals().gblnFilterActive[TargetPanel] = row.filter != nullptr;
        globals().gstrFilterList[TargetPanel] = QLatin1String(row.filter);
        EXPECT_EQ(BuildObjSQLString(row.type, row.ignoreSystem, QLatin1String(row.objectName),
                                    QLatin1String(row.condition), TargetPanel)
                      .toStdString(),
                  row.expected);
    }
}

TEST_F(Statements, AFilterOfOnePanelLeavesTheOtherAlone) {
    globals().gblnFilterActive[SourcePanel] = true;
    globals().gstrFilterList[SourcePanel] = QStringLiteral("sales");
    const QString target = BuildObjSQLString(ObjectType::Table, true, {}, {}, TargetPanel);
    EXPECT_FALSE(target.contains(QStringLiteral("INFORMATION_SCHEMA")));
    EXPECT_NE(BuildObjSQLString(ObjectType::Table, true, {}, {}, SourcePanel), target);

    EXPECT_EQ(BuildSchemaFilteringString(),
              QStringLiteral("Source - applied filtering by Schema: sales"));
    globals().gblnFilterActive[TargetPanel] = true;
    globals().gstrFilterList[TargetPanel] = QStringLiteral("a,b");
    EXPECT_EQ(BuildSchemaFilteringString(),
              QStringLiteral("Source - applied filtering by Schema: sales\r\n"
                             "Target - applied filtering by Schema: a,b"));
    ResetFilter(SourcePanel);
    EXPECT_EQ(BuildSchemaFilteringString(),
              QStringLiteral("Target - applied filtering by Schema: a,b"));
    ResetFilter(TargetPanel);
    EXPECT_EQ(BuildSchemaFilteringString(), QString());
}

TEST_F(Statements, RightsAreListedWithoutTheServersOwnAsTheSettingSays) {
    globals().gblnIgnoreSysObjects = true;
    const QString all = BuildObjSQLString(ObjectType::Permission, false, {}, {}, SourcePanel);
    EXPECT_TRUE(all.startsWith(QStringLiteral("SELECT b.object_id, b.[type_desc], c.[name] AS")));
    EXPECT_TRUE(all.endsWith(QStringLiteral(
        "b.schema_id = c.schema_id WHERE major_id > 0  ORDER BY b.[type_desc], schema_name, "
        "b.[name] ")));
    globals().gblnIgnoreSysObjects = false;
    EXPECT_TRUE(BuildObjSQLString(ObjectType::Permission, true, {}, {}, SourcePanel)
                    .endsWith(QStringLiteral("c.schema_id  ORDER BY b.[type_desc], schema_name, "
                                             "b.[name] ")));
}

TEST_F(Statements, TypesHaveNamesAndTheComboOffersThemAsSet) {
    EXPECT_EQ(GetObjectTypeName(ObjectType::Relationship, false), QStringLiteral("Relationship"));
    EXPECT_EQ(GetObjectTypeName(ObjectType::Relationship, true), QStringLiteral("relationships"));
    EXPECT_EQ(GetObjectTypeName(ObjectType(70), false), QStringLiteral("Object"));
    EXPECT_EQ(GetObjectTypeName(ObjectType(70), true), QStringLiteral("objects"));
    EXPECT_EQ(ObjectTypeFromPosition(0), ObjectType::Table);
    EXPECT_EQ(ObjectTypeFromPosition(5), ObjectType::Relationship);
    EXPECT_EQ(ObjectTypeFromPosition(6), ObjectType(0));

    const auto offered = [] {
        MemoryChoiceList combo;
        LoadObjectTypesCombo(combo);
        EXPECT_EQ(combo.selectedIndex(), 0);
        EXPECT_EQ(combo.Tag, QString());
        QStringList entries;
        for (int i = 0; i < combo.count(); ++i)
            entries << QStringLiteral("%1=%2").arg(combo.itemText(i)).arg(combo.itemData(i));
        return entries.join(u' ');
    };
    const QString always = QStringLiteral(
        "Tables=50 Procedures=10 Functions=20 Views=30 Triggers=40 Relationships=60");
    EXPECT_EQ(offered(), always);
    globals().gblnAnalyzeConstraints = true;
    EXPECT_EQ(offered(), always + QStringLiteral(" Constraints=80"));
    globals().gblnPermissionsEnabled = true;
    EXPECT_EQ(offered(), always + QStringLiteral(" Constraints=80 Permissions=90"));
}

struct TextCase {
    const char* in;
    const char* out;
};

TEST_F(Statements, QuotingHelpersKeepToTheirRules) {
    for (const TextCase& row :
         {TextCase{"O'Brien", "O''Brien"}, {"''", "''''"}, {"", ""}, {" ", " "}})
        EXPECT_EQ(DoubleSingleQuotes(QLatin1String(row.in)).toStdString(), row.out);
    for (const TextCase& row : {TextCase{"a,b", "'a','b'"}, {"a", "'a'"}, {"x y", "'x y'"}})
        EXPECT_EQ(WrapStringIntoQuotes(QLatin1String(row.in)).toStdString(), row.out);
    for (const TextCase& row : {TextCase{"a", "[a]"},
                                {"[a", "[a]"},
                                {"a]", "[a]"},
                                {"[a]", "[a]"},
                                {"Order Details", "[Order Details]"}})
        EXPECT_EQ(AddSquareBrackets(QLatin1String(row.in)).toStdString(), row.out);
}

TEST_F(Statements, NeighboursOfOneNameAreFoundToTheLetter) {
    const auto list = [](std::initializer_list<const char*> names) {
        std::vector<ObjectListEntry> entries;
        for (const char* name : names) entries.push_back({QLatin1String(name), {}, 1, 0, {}});
        return entries;
    };
    EXPECT_FALSE(ListHasAdjacentDuplicates(list({})));
    EXPECT_FALSE(ListHasAdjacentDuplicates(list({"a"})));
    EXPECT_FALSE(ListHasAdjacentDuplicates(list({"a", "b", "a"})));
    EXPECT_FALSE(ListHasAdjacentDuplicates(list({"a", "A"})));
    EXPECT_TRUE(ListHasAdjacentDuplicates(list({"a", "b", "b"})));
}

TEST_F(Statements, AWordIsAnObjectWhenItsLowerCaseFormIsStored) {
    const std::vector<ObjectListEntry> objects = {{QStringLiteral("orders"), {}, 1, 0, {}},
                                                  {QStringLiteral("Customers"), {}, 2, 0, {}}};
    EXPECT_TRUE(IsItDbObject(QStringLiteral(" ORDERS "), objects));
    EXPECT_FALSE(IsItDbObject(QStringLiteral("Customers"), objects));  // stored with a capital
    EXPECT_FALSE(IsItDbObject(QStringLiteral(" "), objects));
    EXPECT_FALSE(IsItDbObject(QStringLiteral("orders"), {}));
}

TEST_F(Statements, AToolTipShowsIdNameAndDate) {
    EXPECT_EQ(GetObjectToolTip(
                  {QStringLiteral("Orders"), QStringLiteral("2020-01-02 03:04:05"), 1234567}),
              QStringLiteral("Id: 1,234,567, Name: Orders, Ref. Date: 2020-01-02 03:04:05"));
}

struct VersionCase {
    const char* text;
    int major;
    bool expected;
};

TEST_F(Statements, TheSchemaFunctionIsExpectedOfKnownBuildsOnly) {
    for (const VersionCase& row : {VersionCase{"9.00.3042", -1, true},
                                   {"9.00.4035", -1, true},
                                   {"9.00.5000", -1, true},
                                   {"9.00.3042.00", -1, false},
                                   {"9.00.1399.06", -1, false},
                                   {"9.00.2047", -1, false},
                                   {"8.00.2039", -1, false},
                                   {"10.0.1600.22", -1, true},
                                   {"16.0.4085.2", -1, true},
                                   {"16.0.40", -1, false},
                                   {"", -1, false},
                                   {"16.0.4085.2", 8, false},
                                   {"8.00.2039", 10, true}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Is_OBJECT_SCHEMA_NAME_Implemented(QLatin1String(row.text), row.major),
                  row.expected);
    }
}

}  // namespace
}  // namespace zov
