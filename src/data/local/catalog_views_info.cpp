// INFORMATION_SCHEMA.
#include "data/local/catalog_views.h"

namespace zov::local::detail {

std::vector<CatalogViewText> informationSchemaViews() {
    return {
        {"INFORMATION_SCHEMA", "SCHEMATA", 0, R"(
CATALOG_NAME sysname | db_name()
SCHEMA_NAME sysname | s.name
SCHEMA_OWNER sysname | (SELECT u.name FROM "zov$users" u WHERE u.uid = s.principal_id)
DEFAULT_CHARACTER_SET_CATALOG varchar(6) | NULL
DEFAULT_CHARACTER_SET_SCHEMA varchar(3) | NULL
DEFAULT_CHARACTER_SET_NAME sysname | 'iso_1'
FROM "zov$schemas" s)"},
        {"INFORMATION_SCHEMA", "TABLES", 0, R"(
TABLE_CATALOG nvarchar(128) | db_name()
TABLE_SCHEMA sysname | s.name
TABLE_NAME sysname | o.name
TABLE_TYPE varchar(10) | CASE o.xtype WHEN 'U' THEN 'BASE TABLE' ELSE 'VIEW' END
FROM "zov$objects" o JOIN "zov$schemas" s ON s.schema_id = o.schema_id WHERE o.xtype IN ('U', 'V'))"},
        {"INFORMATION_SCHEMA", "VIEWS", 0, R"(
TABLE_CATALOG nvarchar(128) | db_name()
TABLE_SCHEMA sysname | s.name
TABLE_NAME sysname | o.name
VIEW_DEFINITION nvarchar(4000) | (SELECT substr(group_concat(m.text, ''), 1, 4000) FROM (SELECT text FROM "zov$comments" WHERE id = o.id AND NOT encrypted ORDER BY colid) m)
CHECK_OPTION varchar(7) | 'NONE'
IS_UPDATABLE varchar(2) | 'NO'
FROM "zov$objects" o JOIN "zov$schemas" s ON s.schema_id = o.schema_id WHERE o.xtype = 'V')"},
        {"INFORMATION_SCHEMA", "ROUTINES", 0, R"(
SPECIFIC_CATALOG nvarchar(128) | db_name()
SPECIFIC_SCHEMA sysname | s.name
SPECIFIC_NAME sysname | o.name
ROUTINE_CATALOG nvarchar(128) | db_name()
ROUTINE_SCHEMA sysname | s.name
ROUTINE_NAME sysname | o.name
ROUTINE_TYPE nvarchar(20) | CASE o.xtype WHEN 'P' THEN 'PROCEDURE' ELSE 'FUNCTION' END
MODULE_CATALOG sysname | NULL
DATA_TYPE nvarchar(128) | CASE WHEN o.xtype IN ('IF', 'TF') THEN 'TABLE' END
ROUTINE_BODY varchar(30) | 'SQL'
ROUTINE_DEFINITION nvarchar(4000) | (SELECT substr(group_concat(m.text, ''), 1, 4000) FROM (SELECT text FROM "zov$comments" WHERE id = o.id AND NOT encrypted ORDER BY colid) m)
IS_DETERMINISTIC varchar(10) | 'NO'
SQL_DATA_ACCESS varchar(30) | CASE o.xtype WHEN 'P' THEN 'MODIFIES' ELSE 'READS' END
SCHEMA_LEVEL_ROUTINE varchar(10) | 'YES'
CREATED datetime | o.crdate
LAST_ALTERED datetime | o.modify_date
FROM "zov$objects" o JOIN "zov$schemas" s ON s.schema_id = o.schema_id WHERE o.xtype IN ('P', 'FN', 'IF', 'TF'))"},
        {"INFORMATION_SCHEMA", "COLUMNS", 0, R"(
TABLE_CATALOG nvarchar(128) | db_name()
TABLE_SCHEMA sysname | s.name
TABLE_NAME sysname | o.name
COLUMN_NAME sysname | c.name
ORDINAL_POSITION int | c.colorder
COLUMN_DEFAULT nvarchar(4000) | (SELECT m.text FROM "zov$comments" m WHERE m.id = c.cdefault AND m.colid = 1)
IS_NULLABLE varchar(3) | CASE WHEN c.isnullable THEN 'YES' ELSE 'NO' END
DATA_TYPE nvarchar(128) | (SELECT t.name FROM "zov$types" t WHERE t.xusertype = CASE c.xtype WHEN 240 THEN c.xusertype ELSE c.xtype END)
CHARACTER_MAXIMUM_LENGTH int | CASE WHEN c.xtype = 35 OR c.xtype = 34 THEN 2147483647 WHEN c.xtype = 99 THEN 1073741823 WHEN c.xtype IN (167, 175, 165, 173) THEN c.length WHEN c.xtype IN (231, 239) THEN CASE WHEN c.length < 0 THEN -1 ELSE c.length / 2 END WHEN c.xtype = 241 THEN -1 END
CHARACTER_OCTET_LENGTH int | CASE WHEN c.xtype IN (34, 35) THEN 2147483647 WHEN c.xtype = 99 THEN 2147483646 WHEN c.xtype IN (167, 175, 165, 173, 231, 239) THEN c.length WHEN c.xtype = 241 THEN -1 END
NUMERIC_PRECISION tinyint | CASE WHEN c.xtype IN (48, 52, 56, 127, 106, 108, 60, 122, 59, 62) THEN c.prec END
NUMERIC_PRECISION_RADIX smallint | CASE WHEN c.xtype IN (48, 52, 56, 127, 106, 108, 60, 122) THEN 10 WHEN c.xtype IN (59, 62) THEN 2 END
NUMERIC_SCALE int | CASE WHEN c.xtype IN (48, 52, 56, 127) THEN 0 WHEN c.xtype IN (106, 108, 60, 122) THEN c.scale END
DATETIME_PRECISION smallint | CASE c.xtype WHEN 61 THEN 3 WHEN 58 THEN 0 WHEN 40 THEN 0 WHEN 41 THEN c.scale WHEN 42 THEN c.scale WHEN 43 THEN c.scale END
CHARACTER_SET_CATALOG sysname | NULL
CHARACTER_SET_SCHEMA sysname | NULL
CHARACTER_SET_NAME sysname | CASE WHEN c.xtype IN (35, 167, 175) THEN 'iso_1' WHEN c.xtype IN (99, 231, 239) THEN 'UNICODE' END
COLLATION_CATALOG sysname | NULL
COLLATION_SCHEMA sysname | NULL
COLLATION_NAME sysname | c.collation
DOMAIN_CATALOG sysname | CASE WHEN c.xusertype > 256 THEN db_name() END
DOMAIN_SCHEMA sysname | CASE WHEN c.xusertype > 256 THEN (SELECT ts.name FROM "zov$types" t JOIN "zov$schemas" ts ON ts.schema_id = t.schema_id WHERE t.xusertype = c.xusertype) END
DOMAIN_NAME sysname | CASE WHEN c.xusertype > 256 THEN (SELECT t.name FROM "zov$types" t WHERE t.xusertype = c.xusertype) END
FROM "zov$columns" c JOIN "zov$objects" o ON o.id = c.id JOIN "zov$schemas" s ON s.schema_id = o.schema_id WHERE o.xtype IN ('U', 'V'))"},
        {"INFORMATION_SCHEMA", "PARAMETERS", 0, R"(
SPECIFIC_CATALOG nvarchar(128) | NULL
SPECIFIC_SCHEMA nvarchar(128) | NULL
SPECIFIC_NAME sysname | NULL
ORDINAL_POSITION int | NULL
PARAMETER_MODE nvarchar(10) | NULL
PARAMETER_NAME sysname | NULL
DATA_TYPE nvarchar(128) | NULL
FROM "zov$facts" WHERE 0)"},
        {"INFORMATION_SCHEMA", "TABLE_CONSTRAINTS", 0, R"(
CONSTRAINT_CATALOG nvarchar(128) | db_name()
CONSTRAINT_SCHEMA nvarchar(128) | s.name
CONSTRAINT_NAME sysname | o.name
TABLE_CATALOG nvarchar(128) | db_name()
TABLE_SCHEMA nvarchar(128) | s.name
TABLE_NAME sysname | p.name
CONSTRAINT_TYPE varchar(11) | CASE o.xtype WHEN 'PK' THEN 'PRIMARY KEY' WHEN 'UQ' THEN 'UNIQUE' WHEN 'F' THEN 'FOREIGN KEY' ELSE 'CHECK' END
IS_DEFERRABLE varchar(2) | 'NO'
INITIALLY_DEFERRED varchar(2) | 'NO'
FROM "zov$objects" o JOIN "zov$objects" p ON p.id = o.parent_obj JOIN "zov$schemas" s ON s.schema_id = p.schema_id WHERE o.xtype IN ('PK', 'UQ', 'F', 'C'))"},
        {"INFORMATION_SCHEMA", "KEY_COLUMN_USAGE", 0, R"(
CONSTRAINT_CATALOG nvarchar(128) | db_name()
CONSTRAINT_SCHEMA nvarchar(128) | s.name
CONSTRAINT_NAME sysname | o.name
TABLE_CATALOG nvarchar(128) | db_name()
TABLE_SCHEMA nvarchar(128) | s.name
TABLE_NAME sysname | p.name
COLUMN_NAME nvarchar(128) | c.name
ORDINAL_POSITION int | k.keyno
FROM (SELECT i.constraint_id AS cid, x.id, x.colid, x.keyno FROM "zov$indexes" i JOIN "zov$indexkeys" x ON x.id = i.id AND x.indid = i.indid WHERE i.constraint_id > 0 AND NOT x.is_included UNION ALL SELECT r.constid, r.fkeyid, r.fkey, r.keyno FROM "zov$references" r) k JOIN "zov$objects" o ON o.id = k.cid JOIN "zov$objects" p ON p.id = k.id JOIN "zov$schemas" s ON s.schema_id = p.schema_id JOIN "zov$columns" c ON c.id = k.id AND c.colid = k.colid)"},
        {"INFORMATION_SCHEMA", "REFERENTIAL_CONSTRAINTS", 0, R"(
CONSTRAINT_CATALOG nvarchar(128) | db_name()
CONSTRAINT_SCHEMA nvarchar(128) | s.name
CONSTRAINT_NAME sysname | o.name
UNIQUE_CONSTRAINT_CATALOG nvarchar(128) | db_name()
UNIQUE_CONSTRAINT_SCHEMA nvarchar(128) | (SELECT rs.name FROM "zov$objects" ro JOIN "zov$schemas" rs ON rs.schema_id = ro.schema_id WHERE ro.id = r.rkeyid)
UNIQUE_CONSTRAINT_NAME sysname | (SELECT i.name FROM "zov$indexes" i WHERE i.id = r.rkeyid AND i.is_unique AND (SELECT k.colid FROM "zov$indexkeys" k WHERE k.id = i.id AND k.indid = i.indid AND k.keyno = 1) = r.rkey ORDER BY i.indid LIMIT 1)
MATCH_OPTION varchar(7) | 'SIMPLE'
UPDATE_RULE varchar(11) | replace(r.update_action, '_', ' ')
DELETE_RULE varchar(11) | replace(r.delete_action, '_', ' ')
FROM "zov$references" r JOIN "zov$objects" o ON o.id = r.constid JOIN "zov$schemas" s ON s.schema_id = o.schema_id WHERE r.keyno = 1)"},
        {"INFORMATION_SCHEMA", "CHECK_CONSTRAINTS", 0, R"(
CONSTRAINT_CATALOG nvarchar(128) | db_name()
CONSTRAINT_SCHEMA nvarchar(128) | s.name
CONSTRAINT_NAME sysname | o.name
CHECK_CLAUSE nvarchar(4000) | (SELECT group_concat(m.text, '') FROM (SELECT text FROM "zov$comments" WHERE id = o.id ORDER BY colid) m)
FROM "zov$objects" o JOIN "zov$schemas" s ON s.schema_id = o.schema_id WHERE o.xtype = 'C')"},
        {"INFORMATION_SCHEMA", "CONSTRAINT_COLUMN_USAGE", 0, R"(
TABLE_CATALOG nvarchar(128) | db_name()
TABLE_SCHEMA nvarchar(128) | s.name
TABLE_NAME sysname | p.name
COLUMN_NAME nvarchar(128) | c.name
CONSTRAINT_CATALOG nvarchar(128) | db_name()
CONSTRAINT_SCHEMA nvarchar(128) | s.name
CONSTRAINT_NAME sysname | o.name
FROM (SELECT i.constraint_id AS cid, x.id, x.colid FROM "zov$indexes" i JOIN "zov$indexkeys" x ON x.id = i.id AND x.indid = i.indid WHERE i.constraint_id > 0 AND NOT x.is_included UNION ALL SELECT r.constid, r.fkeyid, r.fkey FROM "zov$references" r) k JOIN "zov$objects" o ON o.id = k.cid JOIN "zov$objects" p ON p.id = k.id JOIN "zov$schemas" s ON s.schema_id = p.schema_id JOIN "zov$columns" c ON c.id = k.id AND c.colid = k.colid)"},
        {"INFORMATION_SCHEMA", "DOMAINS", 0, R"(
DOMAIN_CATALOG nvarchar(128) | db_name()
DOMAIN_SCHEMA sysname | s.name
DOMAIN_NAME sysname | t.name
DATA_TYPE sysname | (SELECT b.name FROM "zov$types" b WHERE b.xusertype = t.xtype)
FROM "zov$types" t JOIN "zov$schemas" s ON s.schema_id = t.schema_id WHERE t.isuser)"},
    };
}

}  // namespace zov::local::detail
