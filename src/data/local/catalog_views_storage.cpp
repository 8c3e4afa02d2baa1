// Views of version 9 and later on what lies beside tables: statistics, files, partitions, full
// text, XML collections, assemblies, keys. Of most kinds nothing can be made here, and their views
// say so.
#include "data/local/catalog_views.h"

namespace zov::local::detail {

std::vector<CatalogViewText> storageViews() {
    return {
        {"sys", "stats", 9, R"(
object_id int | s.id
name sysname | s.name
stats_id int | s.stats_id
auto_created bit | 0
user_created bit | s.user_created
no_recompute bit | s.no_recompute
has_filter bit | s.filter IS NOT NULL
filter_definition nvarchar(max) | s.filter
is_temporary bit | 0
is_incremental bit | s.incremental
FROM (SELECT id, indid AS stats_id, name, 0 AS user_created, 0 AS no_recompute, 0 AS incremental, filter FROM "zov$indexes" WHERE indid > 0 UNION ALL SELECT id, stats_id, name, 1, no_recompute, incremental, filter FROM "zov$statistics") s)"},
        {"sys", "stats_columns", 9, R"(
object_id int | s.id
stats_id int | s.stats_id
stats_column_id int | s.keyno
column_id int | s.colid
FROM (SELECT id, indid AS stats_id, keyno, colid FROM "zov$indexkeys" WHERE NOT is_included UNION ALL SELECT id, stats_id, keyno, colid FROM "zov$statcolumns") s)"},
        {"sys", "table_types", 10, R"(
name sysname | t.name
system_type_id tinyint | t.xtype
user_type_id int | t.xusertype
schema_id int | t.schema_id
principal_id int | NULL
max_length smallint | t.length
precision tinyint | 0
scale tinyint | 0
collation_name sysname | NULL
is_nullable bit | 0
is_user_defined bit | 1
is_assembly_type bit | 0
default_object_id int | 0
rule_object_id int | 0
is_table_type bit | 1
type_table_object_id int | (SELECT o.id FROM "zov$objects" o WHERE o.xtype = 'TT' AND o.info = CAST(t.xusertype AS TEXT))
is_memory_optimized bit | 0
FROM "zov$types" t WHERE t.xtype = 243)"},
        {"sys", "data_spaces", 9, R"(
name sysname | 'PRIMARY'
data_space_id int | 1
type char(2) | 'FG'
type_desc nvarchar(60) | 'ROWS_FILEGROUP'
is_default bit | 1
is_system bit | 0
FROM (SELECT 1))"},
        {"sys", "filegroups", 9, R"(
name sysname | 'PRIMARY'
data_space_id int | 1
type char(2) | 'FG'
type_desc nvarchar(60) | 'ROWS_FILEGROUP'
is_default bit | 1
is_system bit | 0
filegroup_guid uniqueidentifier | NULL
log_filegroup_id int | NULL
is_read_only bit | 0
FROM (SELECT 1))"},
        {"sys", "database_files", 9, R"(
file_id int | 1
file_guid uniqueidentifier | NULL
type tinyint | 0
type_desc nvarchar(60) | 'ROWS'
data_space_id int | 1
name sysname | db_name()
physical_name nvarchar(260) | (SELECT json_extract(j.value, '$.file') FROM json_each(zov_databases()) j WHERE json_extract(j.value, '$.name') = db_name())
state tinyint | 0
state_desc nvarchar(60) | 'ONLINE'
size int | 0
max_size int | -1
growth int | 0
is_media_read_only bit | 0
is_read_only bit | 0
is_sparse bit | 0
is_percent_growth bit | 0
FROM (SELECT 1))"},
        {"sys", "master_files", 9, R"(
database_id int | json_extract(j.value, '$.dbid')
file_id int | 1
type tinyint | 0
type_desc nvarchar(60) | 'ROWS'
data_space_id int | 1
name sysname | json_extract(j.value, '$.name')
physical_name nvarchar(260) | json_extract(j.value, '$.file')
state tinyint | 0
state_desc nvarchar(60) | 'ONLINE'
size int | 0
max_size int | -1
growth int | 0
is_read_only bit | 0
is_percent_growth bit | 0
FROM json_each(zov_databases()) j)"},
        {"sys", "partition_functions", 9, R"(
name sysname | NULL
function_id int | 0
type char(2) | 'R'
type_desc nvarchar(60) | 'RANGE'
fanout int | 0
boundary_value_on_right bit | 0
is_system bit | 0
create_date datetime | NULL
modify_date datetime | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "partition_schemes", 9, R"(
name sysname | NULL
data_space_id int | 0
type char(2) | 'PS'
type_desc nvarchar(60) | 'PARTITION_SCHEME'
is_default bit | 0
is_system bit | 0
function_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "partition_parameters", 9, R"(
function_id int | 0
parameter_id int | 0
system_type_id tinyint | 0
max_length smallint | 0
precision tinyint | 0
scale tinyint | 0
collation_name sysname | NULL
user_type_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "partition_range_values", 9, R"(
function_id int | 0
boundary_id int | 0
parameter_id int | 0
value sql_variant | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "destination_data_spaces", 9, R"(
partition_scheme_id int | 0
destination_id int | 0
data_space_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "fulltext_catalogs", 9, R"(
fulltext_catalog_id int | 0
name sysname | NULL
path nvarchar(260) | NULL
is_default bit | 0
is_accent_sensitivity_on bit | 0
data_space_id int | 0
file_id int | 0
principal_id int | 0
is_importing bit | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "fulltext_indexes", 9, R"(
object_id int | 0
unique_index_id int | 0
fulltext_catalog_id int | 0
is_enabled bit | 0
change_tracking_state char(1) | NULL
change_tracking_state_desc nvarchar(60) | NULL
has_crawl_completed bit | 0
stoplist_id int | 0
data_space_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "fulltext_index_columns", 9, R"(
object_id int | 0
column_id int | 0
type_column_id int | 0
language_id int | 0
statistical_semantics int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "fulltext_stoplists", 10, R"(
stoplist_id int | 0
name sysname | NULL
create_date datetime | NULL
modify_date datetime | NULL
principal_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "fulltext_stopwords", 10, R"(
stoplist_id int | 0
stopword nvarchar(64) | NULL
language nvarchar(128) | NULL
language_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "xml_schema_collections", 9, R"(
xml_collection_id int | 1
schema_id int | 4
principal_id int | NULL
name sysname | 'sys'
create_date datetime | '2003-04-08 09:13:36.390'
modify_date datetime | '2003-04-08 09:13:36.390'
FROM (SELECT 1))"},
        {"sys", "xml_schema_namespaces", 9, R"(
xml_collection_id int | 0
name nvarchar(4000) | NULL
xml_namespace_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "xml_indexes", 9, R"(
object_id int | 0
name sysname | NULL
index_id int | 0
type tinyint | 3
type_desc nvarchar(60) | 'XML'
using_xml_index_id int | 0
secondary_type char(1) | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "spatial_indexes", 10, R"(
object_id int | 0
name sysname | NULL
index_id int | 0
spatial_index_type tinyint | 0
tessellation_scheme sysname | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "assemblies", 9, R"(
name sysname | 'Microsoft.SqlServer.Types'
principal_id int | 4
assembly_id int | 1
clr_name nvarchar(4000) | 'microsoft.sqlserver.types, culture=neutral, publickeytoken=89845dcd8080cc91, processorarchitecture=msil'
permission_set tinyint | 3
permission_set_desc nvarchar(60) | 'UNSAFE_ACCESS'
is_visible bit | 1
create_date datetime | '2003-04-08 09:13:36.390'
modify_date datetime | '2003-04-08 09:13:36.390'
is_user_defined bit | 0
FROM (SELECT 1))"},
        {"sys", "assembly_files", 9, R"(
assembly_id int | 0
name nvarchar(260) | NULL
file_id int | 0
content varbinary(max) | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "assembly_modules", 9, R"(
object_id int | 0
assembly_id int | 0
assembly_class sysname | NULL
assembly_method sysname | NULL
null_on_null_input bit | 0
execute_as_principal_id int | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "assembly_references", 9, R"(
assembly_id int | 0
referenced_assembly_id int | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "assembly_types", 9, R"(
name sysname | t.name
system_type_id tinyint | t.xtype
user_type_id int | t.xusertype
schema_id int | t.schema_id
principal_id int | NULL
max_length smallint | t.length
is_nullable bit | t.allownulls
is_user_defined bit | 0
is_assembly_type bit | 1
assembly_id int | 1
assembly_class sysname | NULL
FROM "zov$types" t WHERE t.xtype = 240)"},
        {"sys", "symmetric_keys", 9, R"(
name sysname | NULL
principal_id int | 0
symmetric_key_id int | 0
key_length int | 0
algorithm_desc nvarchar(60) | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "asymmetric_keys", 9, R"(
name sysname | NULL
principal_id int | 0
asymmetric_key_id int | 0
algorithm_desc nvarchar(60) | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "certificates", 9, R"(
name sysname | NULL
certificate_id int | 0
principal_id int | 0
subject nvarchar(4000) | NULL
FROM "zov$facts" WHERE 0)"},
        {"sys", "security_policies", 13, R"(
name sysname | NULL
object_id int | 0
schema_id int | 0
is_enabled bit | 0
FROM "zov$facts" WHERE 0)"},
        {"sys", "trigger_events", 9, R"(
object_id int | o.id
type int | e.type
type_desc nvarchar(60) | e.name
is_first bit | 0
is_last bit | 0
FROM "zov$objects" o JOIN (SELECT 1 AS type, 'INSERT' AS name UNION ALL SELECT 2, 'UPDATE' UNION ALL SELECT 3, 'DELETE') e ON instr(' ' || o.info || ' ', ' ' || e.name || ' ') > 0 WHERE o.xtype = 'TR')"},
    };
}

}  // namespace zov::local::detail
