// Whole reports: each folder below golden/ holds two scripts, what is set for the
// run and the report that it must give. Each runs on both roads to a server and
// with both kinds of cursor, and must give the same report on all.
//
// A folder's `options`, one a line: scripts=FOLDER (whose source.sql and
// target.sql are taken), targetScript=source, kinds=tables,..., details=1,
// sourceObjects=A,B and targetObjects=A,B (a selective run), version=8.00.2039,
// ignore=Src.Table.Column, sourceFilter=SCHEMA, targetFilter=SCHEMA, differs=0,
// and the settings' own names.
#include "compare_all_fixture.h"
#include "core/modIgnoreColumns.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

#include <QDirIterator>

namespace zov {
namespace {

using test::Road;

QString goldenFolder() {
    return QStringLiteral(ZOV_TEST_DATA "/structcompare/golden/");
}

QString readText(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) ADD_FAILURE() << "no file " << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

struct Case {
    QString folder;
    QHash<QString, QString> options;
    QStringList ignored;

    explicit Case(const QString& name) : folder(goldenFolder() + name + u'/') {
        if (!QFile::exists(folder + QStringLiteral("options"))) return;
        const QString text = readText(folder + QStringLiteral("options"));
        for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts)) {
            const QString key = line.section(u'=', 0, 0);
            const QString value = line.section(u'=', 1);
            if (key == u"ignore")
                ignored += value;
            else
                options.insert(key, value);
        }
    }
    bool flag(const char* name, bool otherwise) const {
        const QString key = QString::fromLatin1(name);
        return options.contains(key) ? options.value(key) == u"1" : otherwise;
    }
    QStringList list(const char* name) const {
        return options.value(QString::fromLatin1(name)).split(u',', Qt::SkipEmptyParts);
    }
    /// Scripts come from a platform where lines end in CR LF.
    QString script(const QString& side) const {
        const QString from = options.value(QStringLiteral("scripts"));
        QString text = readText((from.isEmpty() ? folder : goldenFolder() + from + u'/') + side +
                                QStringLiteral(".sql"));
        return text.replace(u'\n', QStringLiteral("\r\n"));
    }
    QString expected() const { return readText(folder + QStringLiteral("expected.txt")); }
};

struct Way {
    Road road;
    int cursor;
    bool image;
};

class GoldenReports : public ::testing::TestWithParam<std::tuple<std::string, int>> {
 protected:
    Way way() const {
        const int number = std::get<1>(GetParam());
        return {number % 4 < 2 ? Road::Embedded : Road::Odbc,
                number % 2 == 0 ? adUseClient : adUseServer, number >= 4};
    }
};

void applySettings(const Case& wanted) {
    Globals& settings = globals();
    settings.gblnCaseSensitive = wanted.flag("CaseSensitive", true);
    settings.gblnIgnoreWhitespace = wanted.flag("IgnoreWhitespace", true);
    settings.gblnIgnoreComments = wanted.flag("IgnoreComments", true);
    settings.gblnIgnoreIndexes = wanted.flag("IgnoreIndexes", false);
    settings.gblnIgnoreColSeq = wanted.flag("IgnoreColSeq", true);
    settings.gblnAnalyzeConstraints = wanted.flag("AnalyzeConstraints", false);
    const char* filters[2] = {"sourceFilter", "targetFilter"};
    for (int side = 0; side < 2; ++side) {
        settings.gstrFilterList[side] = wanted.list(filters[side]).join(u',');
        settings.gblnFilterActive[side] = !settings.gstrFilterList[side].isEmpty();
    }
}

void ignoreColumns(const QStringList& columns, const QString& server) {
    QHash<QString, QStringList> byTable;
    for (const QString& column : columns)
        byTable[column.section(u'.', 0, 1)] += column.section(u'.', 2);
    for (auto it = byTable.cbegin(); it != byTable.cend(); ++it)
        SaveIgnoredColumnsList(
            IgnoreMode::StructureComparison,
            GetObjectKeyName(server, it.key().section(u'.', 0, 0), it.key().section(u'.', 1)),
            it.value());
}

/// The first line that isn't as expected, and both texts in full.
std::string difference(const QString& expected, const QString& found) {
    const QStringList wanted = expected.split(u'\n');
    const QStringList lines = found.split(u'\n');
    qsizetype at = 0;
    while (at < wanted.size() && at < lines.size() && wanted[at] == lines[at]) ++at;
    return QStringLiteral(
               "first difference in line %1\n  expected: %2\n  found:    %3\n"
               "----- expected\n%4\n----- found\n%5\n-----")
        .arg(at + 1)
        .arg(wanted.value(at), lines.value(at), expected, found)
        .toStdString();
}

TEST_P(GoldenReports, ARunGivesItsReport) {
    test::TempHome home;
    test::RecordingShell shell;
    const Case wanted(QString::fromStdString(std::get<0>(GetParam())));
    applySettings(wanted);
    globals().glngCursorLocation = way().cursor;
    globals().gblnUseCatalogImage = way().image;

    test::ServedDatabases databases(way().road, wanted.options.value(QStringLiteral("version")));
    databases.load(QStringLiteral("Src"), wanted.script(QStringLiteral("source")));
    databases.load(QStringLiteral("Tgt"),
                   wanted.script(wanted.options.value(QStringLiteral("targetScript"),
                                                      QStringLiteral("target"))));
    const ServerInfo server = databases.server();
    globals().gtCurrentServers[SourcePanel] = globals().gtCurrentServers[TargetPanel] = server;
    ignoreColumns(wanted.ignored, server.Name);

    StructureRunRequest request;
    request.sourceDb = QStringLiteral("Src");
    request.targetDb = QStringLiteral("Tgt");
    request.kinds = test::boxesOf(wanted.list("kinds"));
    if (wanted.list("kinds").isEmpty()) request.kinds = {true, true, true, true, true, true};
    request.details = wanted.flag("details", false);
    request.sourceObjects = wanted.list("sourceObjects");
    request.targetObjects = wanted.list("targetObjects");
    request.selective = wanted.options.contains(QStringLiteral("sourceObjects"));

    test::RecordingForm form;
    test::ScratchPanels scratch;
    const StructureRun run = CompareAll_Structure(form, request, scratch.panels);

    EXPECT_TRUE(run.finished);
    EXPECT_EQ(run.somethingDiffers, wanted.flag("differs", true));
    EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), "");
    const QString expected = wanted.expected().chopped(1);
    const QString found = test::shownReport(globals().gstrReport, server.Name);
    EXPECT_TRUE(found == expected) << difference(expected, found);
}

std::vector<std::string> goldenCases() {
    std::vector<std::string> names;
    for (const QString& name :
         QDir(goldenFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        names.push_back(name.toStdString());
    return names;
}

std::string caseName(const ::testing::TestParamInfo<std::tuple<std::string, int>>& info) {
    const char* const ways[] = {
        "Embedded_Client",       "Embedded_Server",       "Odbc_Client",       "Odbc_Server",
        "Embedded_Client_Image", "Embedded_Server_Image", "Odbc_Client_Image", "Odbc_Server_Image"};
    return std::get<0>(info.param) + "_" + ways[std::get<1>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenReports,
                         ::testing::Combine(::testing::ValuesIn(goldenCases()),
                                            ::testing::Range(0, 8)),
                         caseName);

}  // namespace
}  // namespace zov
