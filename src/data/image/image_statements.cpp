#include "data/image/image_statements.h"

#include <iterator>

namespace zov::image {
namespace {

// The names that the comparison's statements use are those of the views that version 8 had as
// tables; what these show isn't derived from the later views but asked for.
const FillStatement fills[] = {
    {"schemas", "SELECT schema_id, name, principal_id FROM sys.schemas",
     R"(INSERT INTO "zov$schemas"(schema_id, name, principal_id) VALUES(?1, ?2, ?3))"},
    {"users and roles",
     "SELECT principal_id, name, type, is_fixed_role, default_schema_name "
     "FROM sys.database_principals",
     R"(INSERT INTO "zov$users"(uid, name, type, isfixed, default_schema)
        VALUES(?1, ?2, rtrim(?3), ?4, ?5))"},
    {"members of roles",
     "SELECT role_principal_id, member_principal_id FROM sys.database_role_members",
     R"(INSERT INTO "zov$role_members"(role_uid, member_uid) VALUES(?1, ?2))"},
    {"types",
     "SELECT st.xusertype, st.xtype, st.name, st.length, st.prec, st.scale, st.allownulls, st.uid "
     "FROM systypes st",
     R"(INSERT INTO "zov$types"(xusertype, xtype, name, length, prec, scale, allownulls, schema_id,
        isuser) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?1 > 256))"},
    {"columns",
     "SELECT sc.id, sc.colid, sc.name, sc.colorder, sc.xtype, sc.xusertype, sc.length, sc.prec, "
     "sc.scale, sc.isnullable, sc.cdefault, sc.domain, sc.collation, "
     "CASE WHEN sc.status & 128 = 0 THEN 0 ELSE 1 END AS is_identity "
     "FROM syscolumns sc INNER JOIN sysobjects so ON so.id = sc.id "
     "WHERE so.xtype IN ('U', 'V', 'S', 'TT')",
     R"(INSERT INTO "zov$columns"(id, colid, name, colorder, xtype, xusertype, length, prec, scale,
        isnullable, cdefault, crule, collation, identity_seed) VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7,
        ?8, ?9, ?10, coalesce(?11, 0), coalesce(?12, 0), ?13, CASE ?14 WHEN 1 THEN '?' END))"},
    {"identities",
     "SELECT object_id, column_id, CONVERT(nvarchar(60), seed_value) AS seed, "
     "CONVERT(nvarchar(60), increment_value) AS increment, "
     "CONVERT(nvarchar(60), last_value) AS last FROM sys.identity_columns",
     R"(UPDATE "zov$columns" SET identity_seed = ?3, identity_incr = ?4, identity_last = ?5
        WHERE id = ?1 AND colid = ?2)"},
    {"computed columns",
     "SELECT object_id, column_id, definition, is_persisted FROM sys.computed_columns",
     R"(UPDATE "zov$columns" SET computed = coalesce(?3, ''), is_persisted = ?4
        WHERE id = ?1 AND colid = ?2)"},
    {"indexes",
     "SELECT si.id, si.indid, si.name, INDEXPROPERTY(si.id, si.name, 'IsStatistics') AS statistic, "
     "INDEXPROPERTY(si.id, si.name, 'IsHypothetical') AS hypothetical, i.is_unique "
     "FROM sysindexes si LEFT JOIN sys.indexes i ON i.object_id = si.id AND i.index_id = si.indid",
     R"(INSERT INTO "zov$indexes"(id, indid, name, is_unique) SELECT ?1, ?2, ?3, coalesce(?6, 0)
        WHERE coalesce(?4, 0) = 0 AND coalesce(?5, 0) = 0)"},
    {"keys", "SELECT object_id, parent_object_id, unique_index_id FROM sys.key_constraints",
     R"(UPDATE "zov$indexes" SET constraint_id = ?1 WHERE id = ?2 AND indid = ?3)"},
    {"index columns", "SELECT id, indid, keyno, colid FROM sysindexkeys",
     R"(INSERT INTO "zov$indexkeys"(id, indid, keyno, colid) VALUES(?1, ?2, ?3, ?4))"},
    {"foreign keys", "SELECT constid, keyno, fkeyid, rkeyid, fkey, rkey FROM sysforeignkeys",
     R"(INSERT INTO "zov$references"(constid, keyno, fkeyid, rkeyid, fkey, rkey)
        VALUES(?1, ?2, ?3, ?4, ?5, ?6))"},
    // Expressions of computed columns stand here under their table's id.
    {"texts",
     "SELECT sc.id, sc.colid, sc.text, sc.encrypted FROM syscomments sc INNER JOIN sysobjects so "
     "ON "
     "so.id = sc.id WHERE so.xtype <> 'U'",
     R"(INSERT INTO "zov$comments"(id, colid, text, encrypted) VALUES(?1, ?2, ?3, ?4))"},
};

const ProbeStatement probes[] = {
    {"kinds",
     "SELECT id, OBJECTPROPERTY(id, N'IsProcedure') AS p, "
     "CASE WHEN OBJECTPROPERTY(id, N'IsInlineFunction') = 1 OR OBJECTPROPERTY(id, "
     "N'IsScalarFunction') = 1 OR OBJECTPROPERTY(id, N'IsTableFunction') = 1 THEN 1 ELSE 0 END AS "
     "f, OBJECTPROPERTY(id, N'IsView') AS v, OBJECTPROPERTY(id, N'IsTrigger') AS t, "
     "OBJECTPROPERTY(id, N'IsUserTable') AS u FROM sysobjects ORDER BY id",
     false},
    {"owners", "SELECT id, uid FROM sysobjects ORDER BY id", false},
    {"indexes",
     "SELECT si.id, si.indid, si.name FROM sysindexes si WHERE INDEXPROPERTY(si.id, si.name, "
     "'IsStatistics') = 0 AND INDEXPROPERTY(si.id, si.name, 'IsHypothetical') = 0 ORDER BY si.id, "
     "si.indid",
     false},
    {"order of names", "SELECT DISTINCT name FROM sysobjects ORDER BY name", true},
    {"order of names", "SELECT DISTINCT name FROM sysindexes WHERE name IS NOT NULL ORDER BY name",
     true},
    {"order of names",
     "SELECT DISTINCT sc.name FROM syscolumns sc INNER JOIN sysobjects so ON so.id = sc.id "
     "WHERE so.xtype IN ('U', 'V', 'S', 'TT') ORDER BY sc.name",
     true},
};

}  // namespace

QString oldVersionReason() {
    return QStringLiteral("servers below version %1 don't have the views that it is read from")
        .arg(FirstVersion);
}

std::span<const FillStatement> fillStatements() {
    return fills;
}

std::span<const ProbeStatement> probeStatements() {
    return probes;
}

const char* const databaseStatement =
    "SELECT DB_NAME() AS name, "
    "CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), 'Collation')) AS collation, "
    "SCHEMA_NAME() AS default_schema, "
    "CONVERT(nvarchar(128), SERVERPROPERTY('ProductVersion')) AS version, "
    "CONVERT(nvarchar(128), SERVERPROPERTY('ServerName')) AS server";

const char* const rightsStatement =
    "SELECT HAS_PERMS_BY_NAME(DB_NAME(), 'DATABASE', 'VIEW DEFINITION')";

const char* const countsStatement =
    "SELECT (SELECT COUNT(*) FROM sysobjects) AS objects, (SELECT COUNT(*) FROM syscolumns) AS "
    "columns, (SELECT COUNT(*) FROM sysindexes) AS indexes, (SELECT COUNT(*) FROM syscomments) AS "
    "texts, (SELECT COUNT(*) FROM sys.database_permissions) AS permissions, (SELECT COUNT(*) FROM "
    "sys.extended_properties) AS properties, (SELECT COUNT(*) FROM sys.schemas) AS schemas, "
    "(SELECT COUNT(*) FROM systypes) AS types";

const char* const objectsStatement =
    "SELECT o.object_id, o.name, o.schema_id, so.xtype, o.parent_object_id, "
    "CONVERT(varchar(23), so.crdate, 121) AS created, "
    "CONVERT(varchar(23), so.refdate, 121) AS referred, "
    "CONVERT(varchar(23), o.modify_date, 121) AS altered, o.is_ms_shipped "
    "FROM sys.objects o LEFT JOIN sysobjects so ON so.id = o.object_id ORDER BY o.object_id";

// The order of the columns of an index isn't its key here: what is included may come without one.
const char* const emptyCatalogueSql = R"sql(
DELETE FROM "zov$schemas";
DELETE FROM "zov$users";
DELETE FROM "zov$types";
DROP TABLE "zov$indexkeys";
CREATE TABLE "zov$indexkeys"(id INTEGER NOT NULL, indid INTEGER NOT NULL, keyno INTEGER NOT NULL,
  colid INTEGER NOT NULL, is_desc INTEGER NOT NULL DEFAULT 0, is_included INTEGER NOT NULL DEFAULT 0,
  PRIMARY KEY(id, indid, keyno, colid)) WITHOUT ROWID;
)sql";

}  // namespace zov::image
