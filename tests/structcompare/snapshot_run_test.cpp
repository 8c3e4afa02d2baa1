// Databases kept in files: what a comparison with the file finds, and which files are refused.
#include "compare_all_fixture.h"
#include "data/snapshots.h"
#include "support/limited_login.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include "data/local/local_provider.h"
#include "data/mdlData.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

using test::Road;

QString sampleScript(const char* name) {
    QFile file(QStringLiteral(ZOV_SOURCE_ROOT "/samples/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QString::fromUtf8(file.readAll());
}

ServerInfo snapshotServer(const QString& file) {
    ServerInfo server;
    server.Name = QStringLiteral("snapshot:") + file;
    return server;
}

class SnapshotCase : public ::testing::Test {
 protected:
    SnapshotCase() { globals().gblnAnalyzeConstraints = true; }

    QString save(const ServerInfo& server, const char* database) {
        const QString file = home_.path(QString::fromLatin1(database) + QStringLiteral(".zovsnap"));
        const SnapshotMade made = SaveSnapshot(server, QString::fromLatin1(database), file, {});
        EXPECT_EQ(made.trouble.toStdString(), "");
        EXPECT_EQ(made.note.toStdString(), "");
        return file;
    }
    /// The report without its heading, which names the servers.
    static std::string compare(const ServerInfo& source, const ServerInfo& target,
                               StructureRun* run) {
        globals().gtCurrentServers[SourcePanel] = source;
        globals().gtCurrentServers[TargetPanel] = target;
        StructureRunRequest request;
        request.sourceDb = QStringLiteral("Src");
        request.targetDb = QStringLiteral("Tgt");
        request.kinds = {true, true, true, true, true, true, true};
        request.details = true;
        test::RecordingForm form;
        test::ScratchPanels scratch;
        *run = CompareAll_Structure(form, request, scratch.panels);
        const QString report = test::shownReport(globals().gstrReport, QStringLiteral("nobody"));
        return report.mid(report.indexOf(QStringLiteral("\nComparison of tables"))).toStdString();
    }
    /// What connecting says.
    static std::string refusal(const QString& file) {
        const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
        AdoFailure failure;
        std::unique_ptr<Recordset> rs;
        GetAdoRS(snapshotServer(file), adCmdText, QStringLiteral("SELECT name FROM sysobjects"), rs,
                 QStringLiteral("Src"), &failure);
        return failure.ErrDescription.toStdString();
    }

    test::TempHome home_;
    test::RecordingShell shell_;
};
class Snapshots : public SnapshotCase, public ::testing::WithParamInterface<Road> {};
class SnapshotFiles : public SnapshotCase {};
INSTANTIATE_TEST_SUITE_P(Roads, Snapshots, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(Snapshots, StandForTheDatabaseThatTheyWereMadeOf) {
    test::ServedDatabases served(GetParam());
    served.load(QStringLiteral("Src"), sampleScript("shop_before.sql"));
    served.load(QStringLiteral("Tgt"), sampleScript("shop_after.sql"));
    const ServerInfo server = served.server();
    StructureRun live, half, whole;
    const std::string expected = compare(server, server, &live);
    const ServerInfo source = snapshotServer(save(server, "Src"));
    const ServerInfo target = snapshotServer(save(server, "Tgt"));
    EXPECT_EQ(compare(source, server, &half), expected);
    EXPECT_EQ(compare(source, target, &whole), expected);
    EXPECT_TRUE(live.isWhole() && half.isWhole() && whole.isWhole());
    EXPECT_TRUE(globals().gstrReport.contains(source.Name + QStringLiteral(" is ") + server.Name +
                                              QStringLiteral(".Src as it was read at 2")))
        << globals().gstrReport.left(600).toStdString();
}

TEST_P(Snapshots, ShowWhatWasChangedSince) {
    test::ServedDatabases served(GetParam());
    const QString table = QStringLiteral("CREATE TABLE T (a int NOT NULL)\nGO\n");
    served.load(QStringLiteral("Src"), table);
    const ServerInfo before = snapshotServer(save(served.server(), "Src"));
    served.load(QStringLiteral("Tgt"), table);
    StructureRun run;
    compare(before, served.server(), &run);
    EXPECT_TRUE(run.isWhole());
    EXPECT_FALSE(run.somethingDiffers);
    served.load(QStringLiteral("Tgt"), QStringLiteral("ALTER TABLE T ADD b int NULL\nGO\n"));
    compare(before, served.server(), &run);
    EXPECT_TRUE(run.isWhole());
    EXPECT_TRUE(run.somethingDiffers);
}

TEST_P(Snapshots, RefuseWhatTheyDoNotHold) {
    test::ServedDatabases served(GetParam());
    served.load(QStringLiteral("Src"), QStringLiteral("CREATE TABLE T (a int NOT NULL)\nGO\n"
                                                      "INSERT INTO T VALUES (1)\nGO\n"));
    const QString file = save(served.server(), "Src");
    const ServerInfo server = snapshotServer(file);
    const struct {
        const char* database;
        const char* statement;
        const char* told;  ///< behind the file's name; empty: it is answered
    } rows[] = {
        {"Src", "SELECT a FROM T", " holds no rows; name its server instead."},
        {"Src", "SELECT COUNT(*) AS RecsCount FROM [dbo].[T]",
         " holds no rows; name its server instead."},
        {"Src", "DELETE FROM T", " holds no rows; name its server instead."},
        {"Src", "SELECT rows FROM sysindexes",
         " holds the structure that comparisons need, and not this part of the catalog."},
        {"Src", "SELECT name FROM sysobjects", ""},
        {"Master", "SELECT serverproperty('ProductVersion') AS ServerVer", ""},
        {"master", "SELECT name FROM sysdatabases ORDER BY name", ""},
    };
    const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
    for (const auto& row : rows) {
        AdoFailure failure;
        std::unique_ptr<Recordset> rs;
        GetAdoRS(server, adCmdText, QString::fromLatin1(row.statement), rs,
                 QString::fromLatin1(row.database), &failure);
        const std::string told = *row.told ? file.toStdString() + row.told : "";
        EXPECT_EQ(failure.ErrDescription.toStdString(), told) << row.statement;
        if (QByteArrayView(row.statement).contains("sysdatabases")) {
            ASSERT_EQ(rs->RecordCount(), 1);
            EXPECT_EQ(rs->field(0).text(), u"Src");
        }
    }
}

TEST_F(SnapshotFiles, OfALoginThatSeesLessAreNeverIdentical) {
    test::ServedDatabases served(Road::Embedded);
    served.load(QStringLiteral("Src"), QStringLiteral("CREATE TABLE T (a int)\nGO\n"));
    served.load(QStringLiteral("Tgt"), QStringLiteral("CREATE TABLE T (a int)\nGO\n"));
    test::LimitedLogin limited(local::localProvider());
    TdsEndpoint endpoint;
    TdsEndpointOptions options;
    options.provider = &limited;
    options.dataSource = served.server().Name;
    options.password = QStringLiteral("secret");
    endpoint.start(options);
    ServerInfo server = served.server();
    server.Name = endpoint.dataSource();
    server.SQLAuth = true;
    server.LoginName = options.user;
    server.Password = options.password;
    const QString file = home_.path(QStringLiteral("less.zovsnap"));
    const SnapshotMade made = SaveSnapshot(server, QStringLiteral("Src"), file, {});
    EXPECT_EQ(made.trouble.toStdString(), "");
    EXPECT_NE(made.note.toStdString(), "");
    StructureRun run;
    compare(snapshotServer(file), served.server(), &run);
    EXPECT_FALSE(run.somethingDiffers);
    EXPECT_FALSE(run.isWhole());
    EXPECT_EQ(run.blindness.size(), 1);
}

TEST_F(SnapshotFiles, ThatAreNotWholeAreRefused) {
    test::ServedDatabases served(Road::Embedded);
    served.load(QStringLiteral("Src"), QStringLiteral("CREATE TABLE T (a int)\nGO\n"));
    const QString file = save(served.server(), "Src");
    QFile original(file);
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    const QByteArray bytes = original.readAll();
    const auto told = [&](const char* name, const QByteArray& content) {
        return refusal(home_.write(QString::fromLatin1(name), content));
    };
    EXPECT_EQ(refusal(file), "");
    const std::string damaged = " is damaged or was cut off. Take it from a copy, or make it anew.";
    for (const qsizetype length :
         {qsizetype(9), qsizetype(10), bytes.size() / 2, bytes.size() - 1}) {
        const std::string name = home_.path(QStringLiteral("cut")).toStdString();
        EXPECT_EQ(told("cut", bytes.first(length)), name + damaged) << length;
    }
    for (qsizetype at = 8; at < bytes.size(); at += 1 + bytes.size() / 40) {
        QByteArray flipped = bytes;
        flipped[at] = char(flipped[at] ^ 4);
        EXPECT_NE(told("flipped", flipped), "") << at;
    }
    EXPECT_EQ(told("newer", QByteArray(bytes).replace(0, 9, "ZOVSNAP 2")),
              home_.path(QStringLiteral("newer")).toStdString() +
                  " was made by a newer version of the program. Read it with that one, or make it "
                  "anew with this one.");
    EXPECT_EQ(told("other", "SQLite format 3"),
              home_.path(QStringLiteral("other")).toStdString() +
                  " is no snapshot; zovrand-cli snapshot makes one.");
    EXPECT_EQ(refusal(home_.path(QStringLiteral("none"))),
              "There is no file " + home_.path(QStringLiteral("none")).toStdString() + ".");
}

}  // namespace
}  // namespace zov
