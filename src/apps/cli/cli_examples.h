// What --help says behind a command's options: examples, and what the options alone don't tell.
#pragma once

namespace zov::cli::help {

inline constexpr const char* Examples = R"(Examples:
  zovrand-cli load -S local:shop -d Shop shop.sql
      makes the database Shop on the embedded server "shop" from a script
  zovrand-cli list -S local:shop -d Shop -t tables
  zovrand-cli text -S local:shop -d Shop -t procedure GetOrders
  zovrand-cli server add db1,1433 --sql-login sa
      stores a SQL Server with its login; the password is asked for
  zovrand-cli compare --source local:shop --source-db Shop --target db1,1433 --target-db Shop --details

SERVER is a stored server's name, local:NAME or local:/a/folder for the embedded
server, or any server together with --login USER; the password then comes from
ZOVRAND_PASSWORD or from --password-stdin. Everything is kept below ZOVRAND_HOME
when that is set.

Exit status: 0 identical or done, 1 differences found, 2 trouble.)";

inline constexpr const char* ServerAddExamples = R"(Examples:
  zovrand-cli server add local:shop
  zovrand-cli server add db1\\sales                      Windows authentication
  zovrand-cli server add db1,1433 --sql-login sa         asks for the password
  zovrand-cli server add db1 --sql-login sa --password-stdin < password.txt

The password is kept as plain text in a file that only you can read.)";

inline constexpr const char* LoadExamples = R"(Example:
  zovrand-cli load -S local:shop -d Shop tables.sql data.sql
  zovrand-cli load -S local:shop -v DatabaseName=Shop -v Folder=/data install.sql
)";

inline constexpr const char* QueryExamples =
    R"(Tabs, line breaks and backslashes in a value are written \t, \n, \r and \\; a null is Null.

Examples:
  zovrand-cli query -S local:shop -d Shop "SELECT TOP 5 * FROM Orders"
  zovrand-cli query -S local:shop -d master "SELECT name FROM sysdatabases")";

inline constexpr const char* ListExamples = R"(Example:
  zovrand-cli list -S local:shop -d Shop -t views
)";

inline constexpr const char* TextExamples = R"(Examples:
  zovrand-cli text -S local:shop -d Shop -t table "Order Details"
  zovrand-cli text -S local:shop -d Shop -t procedure sales.GetOrders)";

inline constexpr const char* ReferencesExamples =
    R"(One line each, with the line in the object's text:
  procedure dbo.GetOrders:12: table or view dbo.OldOrders can't be found
What can't be known counts as there: other databases, statements in texts, columns of temporary
tables and of what the object makes itself.

Examples:
  zovrand-cli references -S local:shop -d Shop
  zovrand-cli references -S local:shop -d Shop -t procedures
  zovrand-cli references -S local:shop -d Shop -t view sales.Totals dbo.Stock
  zovrand-cli references -S local:shop -d Shop -t procedure GetOrders --words

Exit status: 0 every name was found, 1 some can't be found, 2 trouble or a text that can't be
read; with --words 0.)";

inline constexpr const char* CreateExamples = R"(Examples:
  zovrand-cli create -S db1 -d Shop -o shop.sql
      the whole database, without its rows; zovrand-cli load runs it in an empty one
  zovrand-cli create -S local:shop -d Shop -t tables -o tables/
      a file an object, in an order that runs
  zovrand-cli create -S local:shop -d Shop Orders GetOrders --drop-header
  zovrand-cli create -S local:shop -d Shop -t table Orders --as-shown

The script holds schemas, types, sequences, synonyms, tables with their keys, indexes, foreign
keys and checks, and modules from their stored texts. Rows, users, permissions, file groups and
extended properties are not in it.

Exit status: 0 done, 2 trouble, or an object that can't be scripted: it is named.)";

inline constexpr const char* UpdateScriptExamples = R"(Examples:
  zovrand-cli update-script --source A --source-db Shop --target B --target-db Shop --table Orders
  zovrand-cli update-script --source A --source-db Shop --target B --target-db Shop
                            --table Orders --runnable -o update.sql

The script gives the target's table the source's structure. Nothing is run. Without --runnable it
lists the changes; with it, a server runs it as it stands. Read it first: where rows can be lost a
comment says so.

Exit status: 0 nothing is to be changed, 1 there is a script, 2 trouble.)";

inline constexpr const char* CompareExamples = R"(Examples:
  zovrand-cli compare --source local:shop --source-db Shop --target local:shop --target-db ShopNew
  zovrand-cli compare --source local:shop --source-db Shop --target db1 --target-db Shop
                      -t tables,views --details -o report.txt
  zovrand-cli compare --source A --source-db Shop --target B --target-db Shop
                      --select Orders,Customers --set IgnoreComments=0

The settings that decide what counts as a difference: CaseSensitive, IgnoreWhitespace,
IgnoreComments, IgnoreIndexes, IgnoreColSeq, IgnoreSysObjects, AnalyzeConstraints (1 or 0).
Each catalog is read at once, in a few statements; UseCatalogImage=0 asks object by object.

Exit status: 0 identical, 1 differences found, 2 trouble or something that can't be read; 2
goes before 1.)";

inline constexpr const char* DataExamples = R"(Examples:
  zovrand-cli data --source local:shop --source-db Shop --target db1 --target-db Shop
      compares the rows of all tables, each by its stored settings
  zovrand-cli data --source A --source-db Shop --target B --target-db Shop
                   --table Orders --key OrderID --export orders.htm
  zovrand-cli data --source A --source-db Shop --target B --target-db Shop
                   --table "Order Details" --key OrderID,ProductID --ignore Changed
  zovrand-cli data --source A --source-db Shop --target B --target-db Shop
                   --table Log --method record --sort At,Id --offset 100 --target-offset 100

By record, the first row of one table is compared with the first of the other, and so on;
by key, each row with the one that has its key. The source's columns are asked of both
tables; a target that hasn't got them all is read with its own, paired by their places.
The settings that count: DataCaseSensitive (1 or 0), MaxRowsInDiffTable, and
CursorConnectionUseServer (1: rows are streamed and not kept, by record).

Exit status: 0 identical, 1 differences found, 2 trouble.)";

inline constexpr const char* AnalyzeExamples = R"(Examples:
  zovrand-cli analyze -S local:shop -d Shop --table Orders
      how many distinct values each column holds, and the ten most frequent ones
  zovrand-cli analyze -S local:shop -d Shop --table Orders --least --ignore Notes
                      --export orders.htm)";

inline constexpr const char* InfoExamples = R"(Examples:
  zovrand-cli info -S local:shop -d Shop
  zovrand-cli info --source A --source-db Shop --target B --target-db Shop -o shop.txt

Exit status: 0 done, 2 when something could not be read or counted.)";

inline constexpr const char* AttachExamples = R"(Examples:
  zovrand-cli attach -S db1 -d Shop /var/opt/mssql/data/Shop.mdf /var/opt/mssql/data/Shop_log.ldf
  zovrand-cli attach -S db1 -d Shop --file-on-server 'D:\data\Shop.mdf'
  zovrand-cli attach -S local:shop -d Old old-shop.db
      a database file of another embedded server; the file stays where it is, a copy is taken)";

inline constexpr const char* SnapshotExamples = R"(Examples:
  zovrand-cli snapshot -S db1 -d Shop monday.zovsnap
  zovrand-cli compare --source snapshot:monday.zovsnap --source-db Shop --target db1 --target-db Shop
      what was changed since then; snapshot:FILE can stand wherever a server does

The file holds no rows: what needs them is refused.

Exit status: 0 written, 2 trouble.)";

inline constexpr const char* RunExamples = R"(Examples:
  zovrand-cli compare --source db1 --source-db Shop --target db2 --target-db Shop
                      -o /reports/shop.txt --save Nightly
  zovrand-cli run Nightly
      compares as before, prints the report and writes /reports/shop.txt anew
  zovrand-cli run --all

A saved process finds its servers in the stored list; options are those in force when it runs.

Exit status: 0 identical, 1 differences found, 2 trouble.)";

}  // namespace zov::cli::help
