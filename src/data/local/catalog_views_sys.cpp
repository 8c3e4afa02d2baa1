// The catalogue views of version 9 and later.
#include "data/local/catalog_views.h"

namespace zov::local::detail {

// What sys.objects shares with sys.tables, sys.views, sys.procedures and the constraints.
const char* const objectColumns = R"(name sysname | o.name
object_id int | o.id
principal_id int | NULL
schema_id int | o.schema_id
parent_object_id int | o.parent_obj
type char(2) | substr(o.xtype || ' ', 1, 2)
type_desc nvarchar(60) | zov_type_desc(o.xtype)
create_date datetime | o.crdate
modify_date datetime | o.modify_date
is_ms_shipped bit | o.is_ms_shipped
is_published bit | 0
is_schema_published bit | 0
)";

// What sys.columns shares with sys.computed_columns and sys.identity_columns.
const char* const columnColumns = R"(object_id int | c.id
name sysname | c.name
column_id int | c.colid
system_type_id tinyint | c.xtype
user_type_id int | c.xusertype
max_length smallint | c.length
precision tinyint | CASE WHEN c.xtype IN (34, 35, 36, 98, 99, 165, 167, 173, 175, 189, 231, 239, 240, 241) THEN 0 ELSE coalesce(c.prec, 0) END
scale tinyint | coalesce(c.scale, 0)
collation_name sysname | c.collation
is_nullable bit | c.isnullable
is_ansi_padded bit | CASE WHEN c.xtype IN (165, 167, 173, 175, 231, 239) THEN 1 ELSE 0 END
is_rowguidcol bit | c.is_rowguid
is_identity bit | c.identity_seed IS NOT NULL
is_computed bit | c.computed IS NOT NULL
is_filestream bit | $DETAIL(c.id,c.colid,filestream)
is_replicated bit | 0
is_non_sql_subscribed bit | 0
is_merge_published bit | 0
is_dts_replicated bit | 0
is_xml_document bit | 0
xml_collection_id int | 0
default_object_id int | c.cdefault
rule_object_id int | c.crule
is_sparse bit | $DETAIL(c.id,c.colid,sparse)
is_column_set bit | $DETAIL(c.id,c.colid,column_set)
generated_always_type tinyint | 0
generated_always_type_desc nvarchar(60) | 'NOT_APPLICABLE'
is_hidden bit | $DETAIL(c.id,c.colid,hidden)
is_masked bit | $DETAIL(c.id,c.colid,mask)
)";

// The whole text of an object, from the rows that it was cut into.
const char* const sourceText =
    R"((SELECT group_concat(m.text, '') FROM (SELECT text FROM "zov$comments" WHERE id = o.id AND NOT encrypted ORDER BY colid) m))";

std::vector<CatalogViewText> systemViews() {
    return {
        {"sys", "objects", 9, R"(
$OBJECT_COLUMNS
FROM "zov$objects" o)"},
        {"sys", "all_objects", 9, R"(
$OBJECT_COLUMNS
FROM "zov$objects" o)"},
        {"sys", "tables", 9, R"(
$OBJECT_COLUMNS
lob_data_space_id int | 0
filestream_data_space_id int | NULL
max_column_id_used int | (SELECT max(c.colid) FROM "zov$columns" c WHERE c.id = o.id)
lock_on_bulk_load bit | 0
uses_ansi_nulls bit | 1
is_replicated bit | 0
has_replication_filter bit | 0
is_tracked_by_cdc bit | 0
lock_escalation tinyint | 0
lock_escalation_desc nvarchar(60) | 'TABLE'
is_filetable bit | 0
is_memory_optimized bit | 0
durability tinyint | 0
temporal_type tinyint | 0
temporal_type_desc nvarchar(60) | 'NON_TEMPORAL_TABLE'
FROM "zov$objects" o WHERE o.xtype = 'U')"},
        {"sys", "views", 9, R"(
$OBJECT_COLUMNS
is_replicated bit | 0
has_replication_filter bit | 0
has_opaque_metadata bit | 0
has_unchecked_assembly_data bit | 0
with_check_option bit | 0
is_date_correlation_view bit | 0
FROM "zov$objects" o WHERE o.xtype = 'V')"},
        {"sys", "procedures", 9, R"(
$OBJECT_COLUMNS
is_auto_executed bit | 0
is_execution_replicated bit | 0
is_repl_serializable_only bit | 0
skips_repl_constraints bit | 0
FROM "zov$objects" o WHERE o.xtype = 'P')"},
        {"sys", "synonyms", 9, R"(
$OBJECT_COLUMNS
base_object_name nvarchar(1035) | o.info
FROM "zov$objects" o WHERE o.xtype = 'SN')"},
        {"sys", "sequences", 9, R"(
$OBJECT_COLUMNS
start_value sql_variant | CAST(zov_fact(o.info, 'start') AS INTEGER)
increment sql_variant | CAST(zov_fact(o.info, 'increment') AS INTEGER)
minimum_value sql_variant | CAST(zov_fact(o.info, 'min') AS INTEGER)
maximum_value sql_variant | CAST(zov_fact(o.info, 'max') AS INTEGER)
is_cycling bit | zov_fact(o.info, 'cycle') = '1'
is_cached bit | zov_fact(o.info, 'cache') = '1'
cache_size int | CAST(zov_fact(o.info, 'size') AS INTEGER)
system_type_id tinyint | CAST(zov_fact(o.info, 'type') AS INTEGER)
user_type_id int | CAST(zov_fact(o.info, 'type') AS INTEGER)
precision tinyint | CAST(zov_fact(o.info, 'prec') AS INTEGER)
scale tinyint | 0
current_value sql_variant | CAST(zov_fact(o.info, 'current') AS INTEGER)
is_exhausted bit | 0
last_used_value sql_variant | CASE WHEN zov_fact(o.info, 'used') IS NOT NULL THEN CAST(zov_fact(o.info, 'current') AS INTEGER) END
FROM "zov$objects" o WHERE o.xtype = 'SO')"},
        {"sys", "triggers", 9, R"(
name sysname | o.name
object_id int | o.id
parent_class tinyint | CASE WHEN o.parent_obj > 0 THEN 1 ELSE 0 END
parent_class_desc nvarchar(60) | CASE WHEN o.parent_obj > 0 THEN 'OBJECT_OR_COLUMN' ELSE 'DATABASE' END
parent_id int | o.parent_obj
type char(2) | 'TR'
type_desc nvarchar(60) | 'SQL_TRIGGER'
create_date datetime | o.crdate
modify_date datetime | o.modify_date
is_ms_shipped bit | o.is_ms_shipped
is_disabled bit | o.is_disabled
is_not_for_replication bit | $DETAIL(o.id,0,not_for_replication)
is_instead_of_trigger bit | objectproperty(o.id, 'ExecIsInsteadOfTrigger')
FROM "zov$objects" o WHERE o.xtype = 'TR')"},
        {"sys", "columns", 9, R"(
$COLUMN_COLUMNS
FROM "zov$columns" c)"},
        {"sys", "all_columns", 9, R"(
$COLUMN_COLUMNS
FROM "zov$columns" c)"},
        {"sys", "computed_columns", 9, R"(
$COLUMN_COLUMNS
definition nvarchar(max) | c.computed
uses_database_collation bit | 1
is_persisted bit | c.is_persisted
FROM "zov$columns" c WHERE c.computed IS NOT NULL)"},
        {"sys", "identity_columns", 9, R"(
$COLUMN_COLUMNS
seed_value sql_variant | c.identity_seed
increment_value sql_variant | c.identity_incr
last_value sql_variant | c.identity_last
is_not_for_replication bit | $DETAIL(c.id,c.colid,not_for_replication)
FROM "zov$columns" c WHERE c.identity_seed IS NOT NULL)"},
        {"sys", "masked_columns", 13, R"(
$COLUMN_COLUMNS
masking_function nvarchar(4000) | (SELECT d.value FROM "zov$details" d WHERE d.class = 1 AND d.major_id = c.id AND d.minor_id = c.colid AND d.name = 'mask')
FROM "zov$columns" c WHERE $DETAIL(c.id,c.colid,mask))"},
        {"sys", "parameters", 9, R"(
object_id int | 0
name sysname | NULL
parameter_id int | 0
system_type_id tinyint | 0
user_type_id int | 0
max_length smallint | 0
precision tinyint | 0
scale tinyint | 0
is_output bit | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "schemas", 9, R"(
name sysname | s.name
schema_id int | s.schema_id
principal_id int | s.principal_id
FROM "zov$schemas" s)"},
        {"sys", "database_principals", 9, R"(
name sysname | u.name
principal_id int | u.uid
type char(1) | u.type
type_desc nvarchar(60) | CASE u.type WHEN 'R' THEN 'DATABASE_ROLE' ELSE 'SQL_USER' END
default_schema_name sysname | u.default_schema
create_date datetime | (SELECT f.value FROM "zov$facts" f WHERE f.name = 'created')
modify_date datetime | (SELECT f.value FROM "zov$facts" f WHERE f.name = 'created')
owning_principal_id int | CASE WHEN u.type = 'R' THEN 1 END
sid varbinary(85) | CASE u.uid WHEN 1 THEN x'01' WHEN 2 THEN x'00' END
is_fixed_role bit | u.isfixed
authentication_type int | CASE u.uid WHEN 1 THEN 1 ELSE 0 END
authentication_type_desc nvarchar(60) | CASE u.uid WHEN 1 THEN 'INSTANCE' ELSE 'NONE' END
FROM "zov$users" u)"},
        {"sys", "database_role_members", 9, R"(
role_principal_id int | r.role_uid
member_principal_id int | r.member_uid
FROM "zov$role_members" r)"},
        {"sys", "database_permissions", 9, R"(
class tinyint | p.class
class_desc nvarchar(60) | CASE p.class WHEN 0 THEN 'DATABASE' WHEN 1 THEN 'OBJECT_OR_COLUMN' WHEN 3 THEN 'SCHEMA' WHEN 4 THEN 'DATABASE_PRINCIPAL' WHEN 6 THEN 'TYPE' END
major_id int | p.major_id
minor_id int | p.minor_id
grantee_principal_id int | p.grantee
grantor_principal_id int | p.grantor
type char(4) | substr(p.type || '    ', 1, 4)
permission_name nvarchar(128) | p.permission_name
state char(1) | p.state
state_desc nvarchar(60) | CASE p.state WHEN 'G' THEN 'GRANT' WHEN 'D' THEN 'DENY' WHEN 'W' THEN 'GRANT_WITH_GRANT_OPTION' ELSE 'REVOKE' END
FROM "zov$permissions" p WHERE p.class <> 100)"},
        {"sys", "types", 9, R"(
name sysname | t.name
system_type_id tinyint | t.xtype
user_type_id int | t.xusertype
schema_id int | t.schema_id
principal_id int | NULL
max_length smallint | t.length
precision tinyint | CASE WHEN t.xtype IN (34, 35, 36, 98, 99, 165, 167, 173, 175, 189, 231, 239, 240, 241) THEN 0 ELSE coalesce(t.prec, 0) END
scale tinyint | coalesce(t.scale, 0)
collation_name sysname | CASE WHEN t.xtype IN (35, 99, 167, 175, 231, 239) THEN (SELECT value FROM "zov$facts" WHERE name = 'collation') END
is_nullable bit | t.allownulls
is_user_defined bit | t.isuser
is_assembly_type bit | t.xtype = 240
default_object_id int | coalesce((SELECT CAST(d.value AS INTEGER) FROM "zov$details" d WHERE d.class = 6 AND d.major_id = t.xusertype AND d.name = 'default'), 0)
rule_object_id int | coalesce((SELECT CAST(d.value AS INTEGER) FROM "zov$details" d WHERE d.class = 6 AND d.major_id = t.xusertype AND d.name = 'rule'), 0)
is_table_type bit | t.xtype = 243
FROM "zov$types" t)"},
        {"sys", "indexes", 9, R"(
object_id int | i.id
name sysname | i.name
index_id int | i.indid
type tinyint | CASE WHEN i.indid = 0 THEN 0 WHEN i.indid = 1 THEN 1 ELSE 2 END
type_desc nvarchar(60) | CASE WHEN i.indid = 0 THEN 'HEAP' WHEN i.indid = 1 THEN 'CLUSTERED' ELSE 'NONCLUSTERED' END
is_unique bit | i.is_unique
data_space_id int | 1
ignore_dup_key bit | 0
is_primary_key bit | coalesce((SELECT o.xtype = 'PK' FROM "zov$objects" o WHERE o.id = i.constraint_id), 0)
is_unique_constraint bit | coalesce((SELECT o.xtype = 'UQ' FROM "zov$objects" o WHERE o.id = i.constraint_id), 0)
fill_factor tinyint | 0
is_padded bit | 0
is_disabled bit | i.is_disabled
is_hypothetical bit | 0
allow_row_locks bit | 1
allow_page_locks bit | 1
has_filter bit | i.filter IS NOT NULL
filter_definition nvarchar(max) | i.filter
FROM "zov$indexes" i)"},
        {"sys", "index_columns", 9, R"(
object_id int | k.id
index_id int | k.indid
index_column_id int | k.keyno
column_id int | k.colid
key_ordinal tinyint | CASE WHEN k.is_included THEN 0 ELSE k.keyno END
partition_ordinal tinyint | 0
is_descending_key bit | k.is_desc
is_included_column bit | k.is_included
FROM "zov$indexkeys" k)"},
        {"sys", "foreign_keys", 9, R"(
$OBJECT_COLUMNS
referenced_object_id int | r.rkeyid
key_index_id int | 1
is_disabled bit | o.is_disabled
is_not_for_replication bit | $DETAIL(o.id,0,not_for_replication)
is_not_trusted bit | o.is_not_trusted
delete_referential_action tinyint | CASE r.delete_action WHEN 'CASCADE' THEN 1 WHEN 'SET_NULL' THEN 2 WHEN 'SET_DEFAULT' THEN 3 ELSE 0 END
delete_referential_action_desc nvarchar(60) | r.delete_action
update_referential_action tinyint | CASE r.update_action WHEN 'CASCADE' THEN 1 WHEN 'SET_NULL' THEN 2 WHEN 'SET_DEFAULT' THEN 3 ELSE 0 END
update_referential_action_desc nvarchar(60) | r.update_action
is_system_named bit | o.is_system_named
FROM "zov$objects" o JOIN "zov$references" r ON r.constid = o.id AND r.keyno = 1)"},
        {"sys", "foreign_key_columns", 9, R"(
constraint_object_id int | r.constid
constraint_column_id int | r.keyno
parent_object_id int | r.fkeyid
parent_column_id int | r.fkey
referenced_object_id int | r.rkeyid
referenced_column_id int | r.rkey
FROM "zov$references" r)"},
        {"sys", "default_constraints", 9, R"(
$OBJECT_COLUMNS
parent_column_id int | (SELECT c.colid FROM "zov$columns" c WHERE c.id = o.parent_obj AND c.cdefault = o.id)
definition nvarchar(max) | $SOURCE
is_system_named bit | o.is_system_named
FROM "zov$objects" o WHERE o.xtype = 'D' AND o.parent_obj > 0)"},
        {"sys", "check_constraints", 9, R"(
$OBJECT_COLUMNS
is_disabled bit | o.is_disabled
is_not_for_replication bit | $DETAIL(o.id,0,not_for_replication)
is_not_trusted bit | o.is_not_trusted
parent_column_id int | 0
definition nvarchar(max) | $SOURCE
uses_database_collation bit | 1
is_system_named bit | o.is_system_named
FROM "zov$objects" o WHERE o.xtype = 'C')"},
        {"sys", "key_constraints", 9, R"(
$OBJECT_COLUMNS
unique_index_id int | (SELECT i.indid FROM "zov$indexes" i WHERE i.id = o.parent_obj AND i.constraint_id = o.id)
is_system_named bit | o.is_system_named
is_enforced bit | 1
FROM "zov$objects" o WHERE o.xtype IN ('PK', 'UQ'))"},
        {"sys", "sql_modules", 9, R"(
object_id int | o.id
definition nvarchar(max) | $SOURCE
uses_ansi_nulls bit | coalesce(instr(o.info, 'ANSI_NULLS') > 0, 1)
uses_quoted_identifier bit | coalesce(instr(o.info, 'QUOTED_IDENTIFIER') > 0, 1)
is_schema_bound bit | coalesce(instr(o.info, 'SCHEMABINDING') > 0, 0)
uses_database_collation bit | 0
is_recompiled bit | 0
null_on_null_input bit | 0
execute_as_principal_id int | NULL
FROM "zov$objects" o WHERE o.xtype IN ('P', 'V', 'TR', 'FN', 'IF', 'TF', 'R') OR (o.xtype = 'D' AND o.parent_obj = 0))"},
        {"sys", "extended_properties", 9, R"(
class tinyint | p.class
class_desc nvarchar(60) | CASE p.class WHEN 0 THEN 'DATABASE' WHEN 1 THEN 'OBJECT_OR_COLUMN' WHEN 3 THEN 'SCHEMA' WHEN 6 THEN 'TYPE' WHEN 7 THEN 'INDEX' END
major_id int | p.major_id
minor_id int | p.minor_id
name sysname | p.name
value sql_variant | p.value
FROM "zov$properties" p)"},
        {"sys", "partitions", 9, R"(
partition_id bigint | i.id * 256 + i.indid
object_id int | i.id
index_id int | i.indid
partition_number int | 1
hobt_id bigint | i.id * 256 + i.indid
rows bigint | zov_rowcount(i.id)
FROM "zov$indexes" i)"},
        {"sys", "databases", 9, R"(
name sysname | json_extract(j.value, '$.name')
database_id int | json_extract(j.value, '$.dbid')
source_database_id int | NULL
owner_sid varbinary(85) | x'01'
create_date datetime | json_extract(j.value, '$.created')
compatibility_level tinyint | json_extract(j.value, '$.compatibility')
collation_name sysname | json_extract(j.value, '$.collation')
user_access tinyint | 0
user_access_desc nvarchar(60) | 'MULTI_USER'
is_read_only bit | 0
is_auto_close_on bit | 0
is_auto_shrink_on bit | 0
state tinyint | 0
state_desc nvarchar(60) | 'ONLINE'
is_in_standby bit | 0
recovery_model tinyint | 1
recovery_model_desc nvarchar(60) | 'FULL'
is_ansi_nulls_on bit | 0
is_quoted_identifier_on bit | 0
FROM json_each(zov_databases()) j)"},
        {"sys", "server_principals", 9, R"(
name sysname | json_extract(j.value, '$.name')
principal_id int | json_extract(j.value, '$.id')
sid varbinary(85) | CASE json_extract(j.value, '$.id') WHEN 1 THEN x'01' END
type char(1) | json_extract(j.value, '$.type')
type_desc nvarchar(60) | CASE json_extract(j.value, '$.type') WHEN 'R' THEN 'SERVER_ROLE' WHEN 'U' THEN 'WINDOWS_LOGIN' ELSE 'SQL_LOGIN' END
is_disabled bit | json_extract(j.value, '$.disabled')
create_date datetime | json_extract(j.value, '$.created')
modify_date datetime | json_extract(j.value, '$.created')
default_database_name sysname | json_extract(j.value, '$.database')
default_language_name sysname | 'us_english'
is_fixed_role bit | 0
FROM json_each(zov_logins()) j)"},
        {"sys", "sql_logins", 9, R"(
name sysname | json_extract(j.value, '$.name')
principal_id int | json_extract(j.value, '$.id')
type char(1) | 'S'
type_desc nvarchar(60) | 'SQL_LOGIN'
is_disabled bit | json_extract(j.value, '$.disabled')
create_date datetime | json_extract(j.value, '$.created')
modify_date datetime | json_extract(j.value, '$.created')
default_database_name sysname | json_extract(j.value, '$.database')
FROM json_each(zov_logins()) j WHERE json_extract(j.value, '$.type') = 'S')"},
        {"sys", "server_permissions", 9, R"(
class tinyint | 100
class_desc nvarchar(60) | 'SERVER'
major_id int | 0
minor_id int | 0
grantee_principal_id int | CAST(json_extract(j.value, '$.grantee') AS INTEGER)
grantor_principal_id int | 1
type char(4) | json_extract(j.value, '$.type')
permission_name nvarchar(128) | json_extract(j.value, '$.permission')
state char(1) | json_extract(j.value, '$.state')
state_desc nvarchar(60) | CASE json_extract(j.value, '$.state') WHEN 'G' THEN 'GRANT' WHEN 'D' THEN 'DENY' WHEN 'W' THEN 'GRANT_WITH_GRANT_OPTION' END
FROM json_each(zov_server_permissions()) j)"},
    };
}

}  // namespace zov::local::detail
