// The pages of the options screen with their captions and help texts.
#include "core/globals.h"
#include "options/frmOptions.h"
#include "util/text.h"

#include <QHash>

namespace zov {
namespace {

QString paragraphs(const QStringList& texts) {
    return texts.join(CRLF + CRLF);
}

const QString general = QStringLiteral("General");
const QString schema = QStringLiteral("Schema Comparisons");
const QString data = QStringLiteral("Data Comparisons");

const QString caseSensitivity = QStringLiteral(
    "Term 'case sensitivity' describes a program's ability to distinguish between uppercase "
    "(capital) "
    "and lowercase (small) letters.");

}  // namespace

const std::vector<OptionsPage>& frmOptions::pages() {
    static const std::vector<OptionsPage> all = {
        {general,
         {},
         {},
         {{QStringLiteral("chkAutoConnect"),
           QStringLiteral("Automatically connect to SQL Server(s) at startup")},
          {QStringLiteral("chkPreserveDbSel"),
           QStringLiteral(
               "Preserve database selection (i.e. 'remember' the last accessed database)")},
          {QStringLiteral("chkAutoSelTargetObj"),
           QStringLiteral("Select the matching Target object when the Source object is selected")},
          {QStringLiteral("chkShowOwners"),
           QStringLiteral(
               "Show the box of object owners in the panels, to list one owner's objects alone")}}},
        {QStringLiteral("Filter Offline Databases"),
         general,
         paragraphs(
             {QStringLiteral(
                  "Program can filter offline databases before displaying list of server's "
                  "databases.\r\n(For each database in the list, program checks if connection is "
                  "possible before adding database to the list.)"),
              QStringLiteral(
                  "When this option is OFF, program displays all databases, regardless if they are "
                  "offline or not.")}),
         {{QStringLiteral("chkFilterOfflineDbs"), {}}}},
        {QStringLiteral("Timeout"),
         general,
         paragraphs(
             {QStringLiteral("Timeout indicates, in seconds, how long to wait while executing a "
                             "command before "
                             "terminating the attempt. Default is 30."),
              QStringLiteral(
                  "Sometimes due to delays from network traffic or heavy server use, server is not "
                  "as responsive as usual and increasing timeout can prevent application from "
                  "cancelling the attempt."),
              QStringLiteral("If you set the timeout to zero, ZOV will wait indefinitely until the "
                             "execution is "
                             "complete.")}),
         {{QStringLiteral("txtTimeout"), QStringLiteral("Set Timeout (in seconds)")}}},

        {schema, {}, {}, {}},
        {QStringLiteral("Columns Order"),
         schema,
         paragraphs(
             {QStringLiteral("When this option is set on, the program considers two tables with "
                             "the same columns "
                             "but ordered differently as having the same structure."),
              QStringLiteral(
                  "Note: Please note that this option applies not only to tables but also to other "
                  "objects (like views, relationships etc).")}),
         {{QStringLiteral("chkIgnoreColSeq"),
           QStringLiteral("Ignore order of columns when comparing structure of objects")}}},
        {QStringLiteral("Analyze Constraints"),
         schema,
         paragraphs(
             {QStringLiteral(
                  "Program can treat Constraints as a separate object type (along with Tables, "
                  "Procedures, etc).  When this option is set on, program can perform comparisons "
                  "just on Constraints."),
              QStringLiteral(
                  "Constraints are dealt with when comparing structures of tables, but in some "
                  "cases "
                  "it may be convenient to have differences in Constraints listed in separate "
                  "report.")}),
         {{QStringLiteral("chkAnalyzeConstraints"),
           QStringLiteral("Treat Constraints as a separate object type (Along with Tables, "
                          "Procedures, etc.)")}}},
        {QStringLiteral("Auto Save"),
         schema,
         QStringLiteral("When this option is set on, every time the user clicks button 'Compare "
                        "Sel. Proc.' the program "
                        "will automatically save the schemas displayed in schema text boxes into "
                        "external files."),
         {{QStringLiteral("chkAutoSaveSchemas"),
           QStringLiteral(
               "Automatically save schemas (with color coded differences) to external files")}}},
        {QStringLiteral("Ignore System objects"),
         schema,
         paragraphs(
             {QStringLiteral("When this option is turned on, all system objects are ignored during "
                             "comparisons."),
              QStringLiteral(
                  "System stored procedures and UDFs can be found in the master database (for "
                  "pre-SQL "
                  "Server 2005) or in hidden resource database (for SQL Server 2005 or newer).  "
                  "These "
                  "objects can be executed from any database and will run from the context of that "
                  "database."),
              QStringLiteral(
                  "Since by definition system objects are the same for all databases within given "
                  "server, comparing system objects makes sense only when comparing databases from "
                  "different servers.")}),
         {{QStringLiteral("chkIgnoreSysObjects"),
           QStringLiteral("Ignore all system objects during comarisons")}}},
        {QStringLiteral("Read at Once"),
         schema,
         paragraphs({QStringLiteral(
                         "When this option is turned on, comparisons of many objects read the "
                         "catalog of each database at once, in a few large queries, and both "
                         "databases at the same time.  Over a network this takes a fraction of "
                         "the time that asking for each object takes.  The report is the same."),
                     QStringLiteral(
                         "Databases that can't be read in this way (those of servers older than "
                         "SQL Server 2005, for example) are asked object by object.")}),
         {{QStringLiteral("chkUseCatalogImage"),
           QStringLiteral("Read the whole catalog at once when comparing many objects")}}},
        {QStringLiteral("Ignore Indexes"),
         schema,
         QStringLiteral("When this option is turned on, all indexes (primary keys, clustered and "
                        "non-clustered indexes) "
                        "are ignored during comparisons of tables."),
         {{QStringLiteral("chkIgnoreIndexes"),
           QStringLiteral("Ignore all indexes during comarisons of tables")}}},
        {QStringLiteral("Ignore Comments"),
         schema,
         paragraphs(
             {QStringLiteral(
                  "When this option is turned on, all comments in stored procedures, triggers, "
                  "functions and views are ignored during comparisons."),
              QStringLiteral("(SQL Server supports two types of commenting characters:\r\n     -- "
                             "double hyphens, "
                             "and\r\n     /* ... */ forward slash-asterisk character pairs.)")}),
         {{QStringLiteral("chkIgnoreComments"),
           QStringLiteral("Ignore all comments during comarisons")}}},
        {QStringLiteral("Whitespace"),
         schema,
         QStringLiteral("When this option is turned on, all whitespace characters are ignored "
                        "during comparisons."),
         {{QStringLiteral("chkIgnoreWhitespaces"),
           QStringLiteral("Ignore all whitespace characters (spaces, tabs and line breaks)")}}},
        {QStringLiteral("Case Sensitivity"),
         schema,
         paragraphs(
             {caseSensitivity,
              QStringLiteral(
                  "A default SQL Server installation is case insensitive, which means that SQL "
                  "Server "
                  "will not differentiate between upper and lower case characters/letters.\r\nThat "
                  "is, 'Select' is the same as 'SELECT' or 'select'.")}),
         {{QStringLiteral("chkCaseSensitive"),
           QStringLiteral("Make structure comparisons case sensitivite")}}},

        {data, {}, {}, {}},
        {QStringLiteral("Comparison Options"),
         data,
         paragraphs(
             {QStringLiteral(
                  "When this option is set on, the program displays 'Data Comparison Options' "
                  "screen "
                  "before comparing data to allow for customizations of comparison process."),
              QStringLiteral(
                  "When this option is set off, you can still trigger displaying the options "
                  "dialog by "
                  "pressing SHIFT key while clicking 'Compare Data' button on the main screen.")}),
         {{QStringLiteral("chkDataComp"),
           QStringLiteral(
               "Show up Data Comparison Options screen when comparing individual tables")}}},
        {QStringLiteral("Rows to Display"),
         data,
         paragraphs(
             {QStringLiteral(
                  "When comparing data in selected tables, differences are displayed in a table."),
              QStringLiteral("If the number of rows with different data reaches couple of "
                             "thousands, it is not "
                             "practical to display all of them on the screen."),
              QStringLiteral(
                  "You can specify maximum number of rows to be displayed in differences table.")}),
         {{QStringLiteral("txtMaxRows"),
           QStringLiteral("Maximum number of rows to be displayed in differences table")}}},
        {QStringLiteral("Cache Size"),
         data,
         QStringLiteral("This property is used to fine-tune server-side cursors.\r\nBecause the "
                        "recordset data resides "
                        "remotely on SQL Server, each time ZOV accesses a record it must make a "
                        "round trip to the "
                        "server.\r\nTuning the Cache Size stores more records locally and makes "
                        "data access performance "
                        "much faster.\r\nFor example, if Cache Size is set to one, only one record "
                        "at a time is "
                        "retrieved into local memory."),
         {{QStringLiteral("txtCacheSize"),
           QStringLiteral("Specify the number of records the data provider keeps in the buffer")}}},
        {QStringLiteral("Cursor Location"),
         data,
         QStringLiteral("Cursor location tells the program where to create a recordset returned "
                        "from calling the "
                        "Execute method."),
         {{QStringLiteral("optCurLoc"),
           QStringLiteral("Set the location of the cursor for the current recordset")}}},
        {QStringLiteral("Case Sensitivity"),
         data,
         caseSensitivity,
         {{QStringLiteral("chkDataCaseSensitive"), {}}}},
    };
    return all;
}

QString frmOptions::captionOf(const QString& control) {
    static const QHash<QString, QString> captions = {
        {QStringLiteral("chkAutoConnect"), QStringLiteral("Connect to SQL Server(s) at startup")},
        {QStringLiteral("chkPreserveDbSel"), QStringLiteral("Preserve database selection")},
        {QStringLiteral("chkAutoSelTargetObj"),
         QStringLiteral("Automatically select Target object")},
        {QStringLiteral("chkShowOwners"), QStringLiteral("Show owners")},
        {QStringLiteral("chkFilterOfflineDbs"), QStringLiteral("Filter offline databases")},
        {QStringLiteral("chkIgnoreColSeq"), QStringLiteral("Ignore order of columns")},
        {QStringLiteral("chkAnalyzeConstraints"),
         QStringLiteral("Treat Constraints as a separate object type")},
        {QStringLiteral("chkAutoSaveSchemas"), QStringLiteral("Save schemas to extrernal files")},
        {QStringLiteral("chkIgnoreSysObjects"), QStringLiteral("Ignore system objects")},
        {QStringLiteral("chkUseCatalogImage"), QStringLiteral("Read the catalog at once")},
        {QStringLiteral("chkIgnoreIndexes"), QStringLiteral("Ignore indexes")},
        {QStringLiteral("chkIgnoreComments"), QStringLiteral("Ignore comments")},
        {QStringLiteral("chkIgnoreWhitespaces"), QStringLiteral("Ignore whitespace characters")},
        {QStringLiteral("chkCaseSensitive"), QStringLiteral("Case sensitivity")},
        {QStringLiteral("chkDataComp"), QStringLiteral("Show Data Comparison Options")},
        {QStringLiteral("chkDataCaseSensitive"), QStringLiteral("Case sensitivity")},
        {QStringLiteral("optCurLoc_0"), QStringLiteral("Client-side")},
        {QStringLiteral("optCurLoc_1"), QStringLiteral("Server-side")},
    };
    return captions.value(control);
}

bool frmOptions::Values::*frmOptions::checkBox(const QString& control) {
    static const QHash<QString, bool Values::*> boxes = {
        {QStringLiteral("chkAutoConnect"), &Values::chkAutoConnect},
        {QStringLiteral("chkPreserveDbSel"), &Values::chkPreserveDbSel},
        {QStringLiteral("chkAutoSelTargetObj"), &Values::chkAutoSelTargetObj},
        {QStringLiteral("chkShowOwners"), &Values::chkShowOwners},
        {QStringLiteral("chkFilterOfflineDbs"), &Values::chkFilterOfflineDbs},
        {QStringLiteral("chkIgnoreColSeq"), &Values::chkIgnoreColSeq},
        {QStringLiteral("chkAnalyzeConstraints"), &Values::chkAnalyzeConstraints},
        {QStringLiteral("chkAutoSaveSchemas"), &Values::chkAutoSaveSchemas},
        {QStringLiteral("chkIgnoreSysObjects"), &Values::chkIgnoreSysObjects},
        {QStringLiteral("chkUseCatalogImage"), &Values::chkUseCatalogImage},
        {QStringLiteral("chkIgnoreIndexes"), &Values::chkIgnoreIndexes},
        {QStringLiteral("chkIgnoreComments"), &Values::chkIgnoreComments},
        {QStringLiteral("chkIgnoreWhitespaces"), &Values::chkIgnoreWhitespaces},
        {QStringLiteral("chkCaseSensitive"), &Values::chkCaseSensitive},
        {QStringLiteral("chkDataComp"), &Values::chkDataComp},
        {QStringLiteral("chkDataCaseSensitive"), &Values::chkDataCaseSensitive},
    };
    return boxes.value(control, nullptr);
}

}  // namespace zov
