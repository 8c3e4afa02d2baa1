// The views that SQL Server 2000 had as tables, and that all later versions keep.
#include "data/local/catalog_views.h"

namespace zov::local::detail {

std::vector<CatalogViewText> compatibilityViews() {
    return {
        {"dbo", "sysobjects", 0, R"(
name sysname | o.name
id int | o.id
xtype char(2) | substr(o.xtype || ' ', 1, 2)
uid smallint | $UID
info smallint | CASE o.xtype WHEN 'D' THEN coalesce((SELECT c.colid FROM "zov$columns" c WHERE c.id = o.parent_obj AND c.cdefault = o.id), 0) WHEN 'U' THEN (SELECT count(*) FROM "zov$columns" c WHERE c.id = o.id) ELSE 0 END
status int | 0
base_schema_ver int | 0
replinfo int | 0
parent_obj int | o.parent_obj
crdate datetime | o.crdate
ftcatid smallint | 0
schema_ver int | 0
stats_schema_ver int | 0
type char(2) | CASE o.xtype WHEN 'PK' THEN 'K ' WHEN 'UQ' THEN 'K ' WHEN 'IF' THEN 'IF' WHEN 'TF' THEN 'TF' WHEN 'FN' THEN 'FN' ELSE substr(o.xtype || ' ', 1, 2) END
userstat smallint | CASE o.xtype WHEN 'U' THEN 1 ELSE 0 END
sysstat smallint | CASE o.xtype WHEN 'U' THEN 3 WHEN 'S' THEN 1 WHEN 'V' THEN 2 WHEN 'P' THEN 4 WHEN 'D' THEN 6 WHEN 'R' THEN 7 WHEN 'C' THEN 7 WHEN 'TR' THEN 8 WHEN 'PK' THEN 9 WHEN 'UQ' THEN 9 WHEN 'F' THEN 11 ELSE 0 END
indexdel smallint | 0
refdate datetime | o.refdate
version int | 0
deltrig int | 0
instrig int | 0
updtrig int | 0
seltrig int | 0
category int | CASE WHEN o.is_ms_shipped THEN 2 ELSE 0 END
cache smallint | 0
FROM "zov$objects" o)"},
        {"dbo", "syscolumns", 0, R"(
name sysname | c.name
id int | c.id
xtype tinyint | c.xtype
typestat tinyint | CASE WHEN c.isnullable THEN 0 ELSE 1 END
xusertype smallint | c.xusertype
length smallint | c.length
xprec tinyint | CASE WHEN c.xtype IN (106, 108) THEN c.prec ELSE 0 END
xscale tinyint | CASE WHEN c.xtype IN (106, 108, 41, 42, 43) THEN c.scale ELSE 0 END
colid smallint | c.colid
xoffset smallint | 0
bitpos tinyint | 0
reserved tinyint | 0
colstat smallint | (CASE WHEN c.identity_seed IS NOT NULL THEN 1 ELSE 0 END) + (CASE WHEN c.is_rowguid THEN 2 ELSE 0 END) + (CASE WHEN c.computed IS NOT NULL THEN 4 ELSE 0 END)
cdefault int | c.cdefault
domain int | c.crule
number smallint | 0
colorder smallint | c.colorder
autoval varbinary(8000) | NULL
offset smallint | 0
collationid int | CASE WHEN c.xtype IN (35, 99, 167, 175, 231, 239) THEN 53256 ELSE NULL END
language int | CASE WHEN c.xtype IN (35, 99, 167, 175, 231, 239) THEN 1033 ELSE 0 END
status tinyint | (CASE WHEN c.isnullable THEN 8 ELSE 0 END) + (CASE WHEN c.xtype IN (165, 167, 173, 175) THEN 16 ELSE 0 END) + (CASE WHEN c.identity_seed IS NOT NULL THEN 128 ELSE 0 END)
type tinyint | CASE c.xtype WHEN 36 THEN 37 WHEN 98 THEN 39 WHEN 99 THEN 35 WHEN 104 THEN 50 WHEN 106 THEN 55 WHEN 108 THEN 63 WHEN 127 THEN 63 WHEN 165 THEN 37 WHEN 167 THEN 39 WHEN 173 THEN 45 WHEN 175 THEN 47 WHEN 189 THEN 45 WHEN 231 THEN 39 WHEN 239 THEN 47 ELSE c.xtype END
usertype smallint | c.xusertype
printfmt varchar(255) | NULL
prec smallint | c.prec
scale int | c.scale
iscomputed int | CASE WHEN c.computed IS NOT NULL THEN 1 ELSE 0 END
isoutparam int | 0
isnullable int | c.isnullable
collation sysname | c.collation
tdscollation binary(5) | NULL
FROM "zov$columns" c)"},
        {"dbo", "syscomments", 0, R"(
id int | m.id
number smallint | CASE (SELECT o.xtype FROM "zov$objects" o WHERE o.id = m.id) WHEN 'P' THEN 1 ELSE 0 END
colid smallint | m.colid
status smallint | CASE WHEN m.encrypted THEN 1 ELSE 0 END
ctext varbinary(8000) | CASE WHEN m.encrypted THEN NULL ELSE zov_utf16(m.text) END
texttype smallint | CASE WHEN m.encrypted THEN 6 ELSE 2 END
language smallint | 0
encrypted bit | m.encrypted
compressed bit | 0
text nvarchar(4000) | CASE WHEN m.encrypted THEN NULL ELSE m.text END
FROM "zov$comments" m)"},
        {"dbo", "systypes", 0, R"(
name sysname | t.name
xtype tinyint | t.xtype
status tinyint | CASE WHEN t.allownulls THEN 0 ELSE 1 END
xusertype smallint | t.xusertype
length smallint | t.length
xprec tinyint | CASE WHEN t.xtype IN (106, 108) THEN t.prec ELSE 0 END
xscale tinyint | CASE WHEN t.xtype IN (106, 108) THEN t.scale ELSE 0 END
tdefault int | coalesce((SELECT CAST(d.value AS INTEGER) FROM "zov$details" d WHERE d.class = 6 AND d.major_id = t.xusertype AND d.name = 'default'), 0)
domain int | coalesce((SELECT CAST(d.value AS INTEGER) FROM "zov$details" d WHERE d.class = 6 AND d.major_id = t.xusertype AND d.name = 'rule'), 0)
uid smallint | t.schema_id
reserved smallint | 0
collationid int | CASE WHEN t.xtype IN (35, 99, 167, 175, 231, 239) THEN 53256 ELSE NULL END
usertype smallint | t.xusertype
variable bit | CASE WHEN t.xtype IN (165, 167, 231, 98) THEN 1 ELSE 0 END
allownulls bit | t.allownulls
type tinyint | CASE t.xtype WHEN 36 THEN 37 WHEN 98 THEN 39 WHEN 99 THEN 35 WHEN 104 THEN 50 WHEN 106 THEN 55 WHEN 108 THEN 63 WHEN 127 THEN 63 WHEN 165 THEN 37 WHEN 167 THEN 39 WHEN 173 THEN 45 WHEN 175 THEN 47 WHEN 189 THEN 45 WHEN 231 THEN 39 WHEN 239 THEN 47 ELSE t.xtype END
printfmt varchar(255) | NULL
prec smallint | t.prec
scale tinyint | t.scale
collation sysname | CASE WHEN t.xtype IN (35, 99, 167, 175, 231, 239) THEN (SELECT value FROM "zov$facts" WHERE name = 'collation') END
FROM "zov$types" t)"},
        {"dbo", "sysindexes", 0, R"(
id int | i.id
status int | (CASE WHEN i.is_unique THEN 2 ELSE 0 END) + (CASE WHEN i.indid = 1 THEN 16 ELSE 0 END) + coalesce((SELECT CASE o.xtype WHEN 'PK' THEN 2048 WHEN 'UQ' THEN 4096 ELSE 0 END FROM "zov$objects" o WHERE o.id = i.constraint_id), 0)
first binary(6) | NULL
indid smallint | i.indid
root binary(6) | NULL
minlen smallint | 0
keycnt smallint | (SELECT count(*) FROM "zov$indexkeys" k WHERE k.id = i.id AND k.indid = i.indid AND NOT k.is_included)
groupid smallint | 1
dpages int | 0
reserved int | 0
used int | 0
rowcnt bigint | CASE WHEN i.indid < 2 THEN zov_rowcount(i.id) ELSE 0 END
rowmodctr int | 0
reserved3 tinyint | 0
reserved4 tinyint | 0
xmaxlen smallint | 0
maxirow smallint | 0
OrigFillFactor tinyint | 0
StatVersion tinyint | 0
reserved2 int | 0
FirstIAM binary(6) | NULL
impid smallint | 0
lockflags smallint | 0
pgmodctr int | 0
keys varbinary(1088) | NULL
name sysname | i.name
statblob image | NULL
maxlen int | 8000
rows int | CASE WHEN i.indid < 2 THEN zov_rowcount(i.id) ELSE 0 END
FROM "zov$indexes" i)"},
        {"dbo", "sysindexkeys", 0, R"(
id int | k.id
indid smallint | k.indid
colid smallint | k.colid
keyno smallint | k.keyno
FROM "zov$indexkeys" k WHERE NOT k.is_included)"},
        {"dbo", "sysreferences", 0, R"(
constid int | r.constid
fkeyid int | r.fkeyid
rkeyid int | r.rkeyid
rkeyindid smallint | 1
keycnt smallint | (SELECT count(*) FROM "zov$references" x WHERE x.constid = r.constid)
forkeys varbinary(32) | NULL
refkeys varbinary(32) | NULL
fkeydbid smallint | 0
rkeydbid smallint | 0
fkey1 smallint | r.fkey
fkey2 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 2), 0)
fkey3 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 3), 0)
fkey4 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 4), 0)
fkey5 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 5), 0)
fkey6 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 6), 0)
fkey7 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 7), 0)
fkey8 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 8), 0)
fkey9 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 9), 0)
fkey10 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 10), 0)
fkey11 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 11), 0)
fkey12 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 12), 0)
fkey13 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 13), 0)
fkey14 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 14), 0)
fkey15 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 15), 0)
fkey16 smallint | coalesce((SELECT x.fkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 16), 0)
rkey1 smallint | r.rkey
rkey2 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 2), 0)
rkey3 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 3), 0)
rkey4 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 4), 0)
rkey5 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 5), 0)
rkey6 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 6), 0)
rkey7 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 7), 0)
rkey8 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 8), 0)
rkey9 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 9), 0)
rkey10 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 10), 0)
rkey11 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 11), 0)
rkey12 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 12), 0)
rkey13 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 13), 0)
rkey14 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 14), 0)
rkey15 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 15), 0)
rkey16 smallint | coalesce((SELECT x.rkey FROM "zov$references" x WHERE x.constid = r.constid AND x.keyno = 16), 0)
FROM "zov$references" r WHERE r.keyno = 1)"},
        {"dbo", "sysforeignkeys", 0, R"(
constid int | r.constid
fkeyid int | r.fkeyid
rkeyid int | r.rkeyid
fkey smallint | r.fkey
rkey smallint | r.rkey
keyno smallint | r.keyno
FROM "zov$references" r)"},
        {"dbo", "sysconstraints", 0, R"(
constid int | o.id
id int | o.parent_obj
colid smallint | CASE o.xtype WHEN 'D' THEN coalesce((SELECT c.colid FROM "zov$columns" c WHERE c.id = o.parent_obj AND c.cdefault = o.id), 0) ELSE 0 END
spare1 tinyint | 0
status int | CASE o.xtype WHEN 'PK' THEN 1 WHEN 'UQ' THEN 2 WHEN 'F' THEN 3 WHEN 'C' THEN 4 WHEN 'D' THEN 5 END
actions int | 4096
error int | 0
FROM "zov$objects" o WHERE o.xtype IN ('PK', 'UQ', 'F', 'C', 'D'))"},
        {"dbo", "sysdepends", 0, R"(
id int | 0
depid int | 0
number smallint | 0
depnumber smallint | 0
status smallint | 0
deptype tinyint | 0
selall bit | 0
resultobj bit | 0
readobj bit | 0
FROM "zov$facts" WHERE 0)"},
        {"dbo", "sysusers", 0, R"(
uid smallint | u.uid
status smallint | CASE u.type WHEN 'S' THEN 2 ELSE 0 END
name sysname | u.name
sid varbinary(85) | CASE u.uid WHEN 1 THEN x'01' WHEN 2 THEN x'00' END
roles varbinary(2048) | NULL
createdate datetime | (SELECT f.value FROM "zov$facts" f WHERE f.name = 'created')
updatedate datetime | (SELECT f.value FROM "zov$facts" f WHERE f.name = 'created')
altuid smallint | CASE WHEN u.type = 'R' THEN 1 END
password varbinary(256) | NULL
gid smallint | CASE WHEN u.type = 'R' THEN u.uid ELSE 0 END
environ varchar(255) | NULL
hasdbaccess int | CASE WHEN u.type = 'S' AND u.uid NOT IN (2, 3, 4) THEN 1 ELSE 0 END
islogin int | CASE WHEN u.type = 'S' THEN 1 ELSE 0 END
isntname int | 0
isntgroup int | 0
isntuser int | 0
issqluser int | CASE WHEN u.type = 'S' THEN 1 ELSE 0 END
isaliased int | 0
issqlrole int | CASE WHEN u.type = 'R' THEN 1 ELSE 0 END
isapprole int | 0
FROM "zov$users" u)"},
        {"dbo", "sysmembers", 0, R"(
memberuid smallint | r.member_uid
groupuid smallint | r.role_uid
FROM "zov$role_members" r)"},
        {"dbo", "sysfilegroups", 0, R"(
groupid smallint | 1
allocpolicy smallint | 0
status int | 16
groupname sysname | 'PRIMARY'
FROM (SELECT 1))"},
        {"dbo", "sysfiles", 0, R"(
fileid smallint | 1
groupid smallint | 1
size int | 0
maxsize int | -1
growth int | 0
status int | 2
perf int | 0
name sysname | db_name()
filename nvarchar(260) | (SELECT json_extract(j.value, '$.file') FROM json_each(zov_databases()) j WHERE json_extract(j.value, '$.name') = db_name())
FROM (SELECT 1))"},
        {"dbo", "sysproperties", 0, R"(
id int | p.major_id
smallid smallint | p.minor_id
type tinyint | CASE WHEN p.class = 0 THEN 0 WHEN p.minor_id > 0 THEN 4 ELSE 3 END
name sysname | p.name
value sql_variant | p.value
FROM "zov$properties" p)"},
        {"dbo", "sysdatabases", 0, R"(
name sysname | json_extract(j.value, '$.name')
dbid smallint | json_extract(j.value, '$.dbid')
sid varbinary(85) | x'01'
mode smallint | 0
status int | 65536
status2 int | 1090519040
crdate datetime | json_extract(j.value, '$.created')
reserved datetime | '1900-01-01 00:00:00.000'
category int | 0
cmptlevel tinyint | json_extract(j.value, '$.compatibility')
filename nvarchar(260) | json_extract(j.value, '$.file')
version smallint | CASE WHEN json_extract(j.value, '$.compatibility') < 90 THEN 539 ELSE 957 END
FROM json_each(zov_databases()) j)"},
        {"dbo", "syslogins", 0, R"(
sid varbinary(85) | CASE json_extract(j.value, '$.id') WHEN 1 THEN x'01' END
status smallint | 9
createdate datetime | json_extract(j.value, '$.created')
updatedate datetime | json_extract(j.value, '$.created')
name sysname | json_extract(j.value, '$.name')
dbname sysname | json_extract(j.value, '$.database')
language sysname | 'us_english'
denylogin int | 0
hasaccess int | 1
isntname int | json_extract(j.value, '$.type') = 'U'
isntgroup int | 0
isntuser int | json_extract(j.value, '$.type') = 'U'
sysadmin int | json_extract(j.value, '$.id') = 1
loginname sysname | json_extract(j.value, '$.name')
FROM json_each(zov_logins()) j WHERE json_extract(j.value, '$.type') <> 'R')"},
    };
}

}  // namespace zov::local::detail
