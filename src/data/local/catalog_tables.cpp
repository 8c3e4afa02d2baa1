#include "data/local/catalog_tables.h"

namespace zov::local {

const char* catalogTablesSql() {
    return R"sql(
-- name/value facts of the database: 'name', 'version' (product version text), 'compatibility',
-- 'collation', 'created', 'next_object_id', 'dbid'
CREATE TABLE "zov$facts"(name TEXT PRIMARY KEY, value) WITHOUT ROWID;

-- uid of sysusers and schema_id of sys.schemas are separate numbers; a schema belongs to a principal
CREATE TABLE "zov$users"(uid INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE COLLATE NOCASE,
  type TEXT NOT NULL,            -- S user, R role
  isfixed INTEGER NOT NULL DEFAULT 0, default_schema TEXT);
CREATE TABLE "zov$schemas"(schema_id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE COLLATE NOCASE,
  principal_id INTEGER NOT NULL);
CREATE TABLE "zov$role_members"(role_uid INTEGER NOT NULL, member_uid INTEGER NOT NULL,
  PRIMARY KEY(role_uid, member_uid)) WITHOUT ROWID;

-- xtype/xusertype as in systypes; a user type has xusertype above 256 and the xtype of its base
CREATE TABLE "zov$types"(xusertype INTEGER PRIMARY KEY, xtype INTEGER NOT NULL, name TEXT NOT NULL COLLATE NOCASE,
  length INTEGER NOT NULL, prec INTEGER, scale INTEGER, allownulls INTEGER NOT NULL DEFAULT 1,
  schema_id INTEGER NOT NULL, isuser INTEGER NOT NULL DEFAULT 0);

-- Every object: tables, views, modules, constraints, defaults, rules, synonyms, sequences.
-- xtype as in sysobjects, blanks cut: U V P FN IF TF TR PK UQ F C D SN SO TT
CREATE TABLE "zov$objects"(id INTEGER PRIMARY KEY, name TEXT NOT NULL COLLATE NOCASE,
  schema_id INTEGER NOT NULL, xtype TEXT NOT NULL, parent_obj INTEGER NOT NULL DEFAULT 0,
  crdate TEXT NOT NULL, refdate TEXT NOT NULL, modify_date TEXT NOT NULL,
  is_ms_shipped INTEGER NOT NULL DEFAULT 0, is_disabled INTEGER NOT NULL DEFAULT 0,
  is_not_trusted INTEGER NOT NULL DEFAULT 0, is_system_named INTEGER NOT NULL DEFAULT 0,
  info TEXT);                    -- what a kind needs beside: a trigger's events, a synonym's base, ...
CREATE UNIQUE INDEX "zov$objects_name" ON "zov$objects"(schema_id, name);
CREATE INDEX "zov$objects_byname" ON "zov$objects"(name);
CREATE INDEX "zov$objects_parent" ON "zov$objects"(parent_obj);

-- Columns of tables and views, parameters of modules are not kept. colid is never reused, colorder is
-- the order of definition; cdefault is the id of the default constraint or 0, crule of a bound rule.
CREATE TABLE "zov$columns"(id INTEGER NOT NULL, colid INTEGER NOT NULL, name TEXT NOT NULL COLLATE NOCASE,
  colorder INTEGER NOT NULL, xtype INTEGER NOT NULL, xusertype INTEGER NOT NULL,
  length INTEGER NOT NULL, prec INTEGER, scale INTEGER, isnullable INTEGER NOT NULL,
  cdefault INTEGER NOT NULL DEFAULT 0, identity_seed TEXT, identity_incr TEXT, identity_last TEXT,
  computed TEXT, is_persisted INTEGER NOT NULL DEFAULT 0, is_rowguid INTEGER NOT NULL DEFAULT 0,
  collation TEXT, crule INTEGER NOT NULL DEFAULT 0, PRIMARY KEY(id, colid)) WITHOUT ROWID;

-- indid 0 heap, 1 clustered, 2 and more the others (250 lets room for statistics, which are not kept)
CREATE TABLE "zov$indexes"(id INTEGER NOT NULL, indid INTEGER NOT NULL, name TEXT COLLATE NOCASE,
  is_unique INTEGER NOT NULL DEFAULT 0, constraint_id INTEGER NOT NULL DEFAULT 0,
  is_disabled INTEGER NOT NULL DEFAULT 0, filter TEXT, options TEXT,
  PRIMARY KEY(id, indid)) WITHOUT ROWID;
CREATE TABLE "zov$indexkeys"(id INTEGER NOT NULL, indid INTEGER NOT NULL, keyno INTEGER NOT NULL,
  colid INTEGER NOT NULL, is_desc INTEGER NOT NULL DEFAULT 0, is_included INTEGER NOT NULL DEFAULT 0,
  PRIMARY KEY(id, indid, keyno)) WITHOUT ROWID;

-- Foreign keys, one row a column pair.
CREATE TABLE "zov$references"(constid INTEGER NOT NULL, keyno INTEGER NOT NULL, fkeyid INTEGER NOT NULL,
  rkeyid INTEGER NOT NULL, fkey INTEGER NOT NULL, rkey INTEGER NOT NULL,
  delete_action TEXT NOT NULL DEFAULT 'NO_ACTION', update_action TEXT NOT NULL DEFAULT 'NO_ACTION',
  PRIMARY KEY(constid, keyno)) WITHOUT ROWID;

-- Source texts, in rows of at most 4,000 characters as the server cuts them.
CREATE TABLE "zov$comments"(id INTEGER NOT NULL, colid INTEGER NOT NULL, text TEXT,
  encrypted INTEGER NOT NULL DEFAULT 0, PRIMARY KEY(id, colid)) WITHOUT ROWID;

-- class 0 database, 1 object or column, 3 schema, 6 type
CREATE TABLE "zov$permissions"(class INTEGER NOT NULL, major_id INTEGER NOT NULL, minor_id INTEGER NOT NULL,
  grantee INTEGER NOT NULL, grantor INTEGER NOT NULL, type TEXT NOT NULL, permission_name TEXT NOT NULL,
  state TEXT NOT NULL,           -- G grant, D deny, W grant with grant option
  PRIMARY KEY(class, major_id, minor_id, grantee, permission_name)) WITHOUT ROWID;

CREATE TABLE "zov$properties"(class INTEGER NOT NULL, major_id INTEGER NOT NULL, minor_id INTEGER NOT NULL,
  name TEXT NOT NULL COLLATE NOCASE, value, PRIMARY KEY(class, major_id, minor_id, name)) WITHOUT ROWID;

INSERT INTO "zov$users"(uid, name, type, isfixed, default_schema) VALUES
 (0,'public','R',0,NULL),(1,'dbo','S',0,'dbo'),(2,'guest','S',0,'guest'),
 (3,'INFORMATION_SCHEMA','S',0,NULL),(4,'sys','S',0,NULL),
 (16384,'db_owner','R',1,NULL),(16385,'db_accessadmin','R',1,NULL),(16386,'db_securityadmin','R',1,NULL),
 (16387,'db_ddladmin','R',1,NULL),(16389,'db_backupoperator','R',1,NULL),(16390,'db_datareader','R',1,NULL),
 (16391,'db_datawriter','R',1,NULL),(16392,'db_denydatareader','R',1,NULL),(16393,'db_denydatawriter','R',1,NULL);
INSERT INTO "zov$schemas"(schema_id, name, principal_id) VALUES
 (1,'dbo',1),(2,'guest',2),(3,'INFORMATION_SCHEMA',3),(4,'sys',4),
 (16384,'db_owner',16384),(16385,'db_accessadmin',16385),(16386,'db_securityadmin',16386),
 (16387,'db_ddladmin',16387),(16389,'db_backupoperator',16389),(16390,'db_datareader',16390),
 (16391,'db_datawriter',16391),(16392,'db_denydatareader',16392),(16393,'db_denydatawriter',16393);
INSERT INTO "zov$types"(xusertype, xtype, name, length, prec, scale, schema_id) VALUES
 (34,34,'image',16,NULL,NULL,4),(35,35,'text',16,NULL,NULL,4),
 (36,36,'uniqueidentifier',16,NULL,NULL,4),(40,40,'date',3,10,0,4),(41,41,'time',5,16,7,4),
 (42,42,'datetime2',8,27,7,4),(43,43,'datetimeoffset',10,34,7,4),(48,48,'tinyint',1,3,0,4),
 (52,52,'smallint',2,5,0,4),(56,56,'int',4,10,0,4),(58,58,'smalldatetime',4,16,0,4),
 (59,59,'real',4,24,NULL,4),(60,60,'money',8,19,4,4),(61,61,'datetime',8,23,3,4),
 (62,62,'float',8,53,NULL,4),(98,98,'sql_variant',8016,0,NULL,4),(99,99,'ntext',16,NULL,NULL,4),
 (104,104,'bit',1,1,NULL,4),(106,106,'decimal',17,38,38,4),(108,108,'numeric',17,38,38,4),
 (122,122,'smallmoney',4,10,4,4),(127,127,'bigint',8,19,0,4),(128,240,'hierarchyid',892,NULL,NULL,4),
 (129,240,'geometry',-1,NULL,NULL,4),(130,240,'geography',-1,NULL,NULL,4),
 (165,165,'varbinary',8000,8000,NULL,4),(167,167,'varchar',8000,8000,NULL,4),
 (173,173,'binary',8000,8000,NULL,4),(175,175,'char',8000,8000,NULL,4),(189,189,'timestamp',8,8,NULL,4),
 (231,231,'nvarchar',8000,4000,NULL,4),(239,239,'nchar',8000,4000,NULL,4),(241,241,'xml',-1,NULL,NULL,4),
 (256,231,'sysname',256,128,NULL,4);
UPDATE "zov$types" SET allownulls = 0 WHERE name IN ('sysname', 'timestamp');
)sql";
}

const char* laterCatalogTablesSql() {
    return R"sql(
-- Facts that few objects have, by name. class as in zov$permissions, 7 index; minor_id a column's colid or 0:
-- sparse, hidden, column_set, mask, not_for_replication, default (a type's bound default), rule
CREATE TABLE IF NOT EXISTS "zov$details"(class INTEGER NOT NULL, major_id INTEGER NOT NULL,
  minor_id INTEGER NOT NULL, name TEXT NOT NULL, value, PRIMARY KEY(class, major_id, minor_id, name)) WITHOUT ROWID;

-- Statistics that were asked for by name; those of indexes are the indexes themselves.
CREATE TABLE IF NOT EXISTS "zov$statistics"(id INTEGER NOT NULL, stats_id INTEGER NOT NULL,
  name TEXT NOT NULL COLLATE NOCASE, no_recompute INTEGER NOT NULL DEFAULT 0, incremental INTEGER NOT NULL DEFAULT 0,
  filter TEXT, PRIMARY KEY(id, stats_id)) WITHOUT ROWID;
CREATE TABLE IF NOT EXISTS "zov$statcolumns"(id INTEGER NOT NULL, stats_id INTEGER NOT NULL,
  keyno INTEGER NOT NULL, colid INTEGER NOT NULL, PRIMARY KEY(id, stats_id, keyno)) WITHOUT ROWID;

-- Logins of the server; rows in master only. type S by password, U of the operating system
CREATE TABLE IF NOT EXISTS "zov$logins"(principal_id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE COLLATE NOCASE,
  type TEXT NOT NULL, is_disabled INTEGER NOT NULL DEFAULT 0, default_database TEXT, created TEXT NOT NULL);
)sql";
}

}  // namespace zov::local
