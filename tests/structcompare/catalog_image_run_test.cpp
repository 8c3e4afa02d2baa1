// Bulk runs that are answered from a whole reading of each catalogue: their reports are those of
// runs that ask object by object, and the number of their statements doesn't grow with the
// databases.
#include "compare_all_fixture.h"
#include "generated_databases.h"
#include "support/limited_login.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include "data/local/local_provider.h"

#include <gtest/gtest.h>

#include <atomic>

namespace zov {
namespace {

using test::Road;

/// What a run showed and said.
struct Outcome {
    StructureRun run;
    QString report;

    std::string told() const {
        QStringList lines{report};
        lines += QStringLiteral("finished %1, differs %2, reliable %3, whole %4, objects %5")
                     .arg(run.finished)
                     .arg(run.somethingDiffers)
                     .arg(run.isReliable())
                     .arg(run.isWhole())
                     .arg(run.objectCount);
        for (const UnreadableObject& one : run.unreadable)
            lines += one.object.fullName() + QStringLiteral(" | ") + one.reason.sentence();
        lines += run.blindness;
        for (const AccountEntry& entry : run.account.entries()) lines += entry.sentence();
        return lines.join(u'\n').toStdString();
    }
};

StructureRunRequest wholeRequest(bool details) {
    StructureRunRequest request;
    request.sourceDb = QStringLiteral("Src");
    request.targetDb = QStringLiteral("Tgt");
    request.kinds = {true, true, true, true, true, true, true};
    request.details = details;
    return request;
}

Outcome compare(const ServerInfo& server, const StructureRunRequest& request, bool image) {
    for (ServerInfo& one : globals().gtCurrentServers) one = server;
    const ScopedValue<bool> use(globals().gblnUseCatalogImage, image);
    test::RecordingForm form;
    test::ScratchPanels scratch;
    Outcome outcome;
    outcome.run = CompareAll_Structure(form, request, scratch.panels);
    outcome.report = test::shownReport(globals().gstrReport, server.Name);
    return outcome;
}

/// The settings that a run goes by, as one of a table of sets.
struct OptionSet {
    const char* name;
    bool exact;
    bool indexesIgnored;
    const char* filter;  ///< of both sides, by schema
};
const OptionSet optionSets[] = {
    {"as usual", false, false, ""},
    {"exact", true, false, ""},
    {"without indexes", true, true, ""},
    {"one schema", true, false, "hr"},
};

void use(const OptionSet& options) {
    Globals& settings = globals();
    settings.gblnCaseSensitive = true;
    settings.gblnIgnoreWhitespace = settings.gblnIgnoreComments = settings.gblnIgnoreColSeq =
        !options.exact;
    settings.gblnIgnoreIndexes = options.indexesIgnored;
    settings.gblnAnalyzeConstraints = true;
    for (int side : {SourcePanel, TargetPanel}) {
        settings.gstrFilterList[side] = QString::fromLatin1(options.filter);
        settings.gblnFilterActive[side] = !settings.gstrFilterList[side].isEmpty();
    }
}

class CatalogImageRun : public ::testing::TestWithParam<Road> {
 protected:
    /// Runs both ways under every set of options.
    static void expectSameReports(const ServerInfo& server) {
        for (const OptionSet& options : optionSets) {
            use(options);
            for (const bool details : {false, true}) {
                SCOPED_TRACE(std::string(options.name) + (details ? ", details" : ""));
                const StructureRunRequest request = wholeRequest(details);
                const Outcome direct = compare(server, request, false);
                const Outcome image = compare(server, request, true);
                EXPECT_EQ(image.told(), direct.told());
                EXPECT_EQ(image.run.notes.join(u'\n').toStdString(), "");
            }
        }
        use(optionSets[0]);
    }

    test::TempHome home_;
    test::RecordingShell shell_;
};
INSTANTIATE_TEST_SUITE_P(Roads, CatalogImageRun, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

QString sampleScript(const char* name) {
    QFile file(QStringLiteral(ZOV_SOURCE_ROOT "/samples/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QString::fromUtf8(file.readAll());
}

TEST_P(CatalogImageRun, TheSamplesGiveTheSameReportEitherWay) {
    test::ServedDatabases served(GetParam());
    served.load(QStringLiteral("Src"), sampleScript("shop_before.sql"));
    served.load(QStringLiteral("Tgt"), sampleScript("shop_after.sql"));
    expectSameReports(served.server());
}

TEST_P(CatalogImageRun, GeneratedDatabasesGiveTheSameReportEitherWay) {
    const int pairs = GetParam() == Road::Embedded ? 12 : 4;
    for (int seed = 100; seed < 100 + pairs && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        test::ServedDatabases served(GetParam());
        const test::GeneratedPair pair = test::generatePair(quint32(seed));
        const auto load = [&](const char* database, const QString& script) {
            const QString name = QString::fromLatin1(database);
            const QString cased =
                QStringLiteral("ALTER DATABASE %1 COLLATE Latin1_General_CS_AS\nGO\n").arg(name);
            served.load(name, pair.cased ? cased + script : script);
        };
        load("Src", pair.source);
        load("Tgt", pair.target);
        expectSameReports(served.server());
    }
}

const char* const everyType = R"(
CREATE SCHEMA hr
GO
CREATE TYPE hr.code FROM nvarchar(12) NOT NULL
GO
CREATE DEFAULT dbo.Zero AS 0
GO
CREATE TABLE dbo.Every (a bigint IDENTITY(-5, 3) NOT NULL, b binary(4), c bit NOT NULL, d char(3),
 e datetime DEFAULT (getdate()), f datetime2(3), g datetimeoffset(5), h decimal(18, 4), i float,
 j image, k int CONSTRAINT DF_k DEFAULT ((7)), l money, m nchar(5), n ntext, o numeric(9), p nvarchar(max),
 q real, r smalldatetime, s smallint, t smallmoney, u text, v time(2), w tinyint, x uniqueidentifier,
 y varbinary(max), z varchar(8000), aa xml, ab sql_variant, ac timestamp, ad date, ae hr.code,
 af AS (k * 2), ag AS (k + 1) PERSISTED NOT NULL, ah nvarchar(20) COLLATE Latin1_General_BIN,
 CONSTRAINT PK_Every PRIMARY KEY CLUSTERED (a, c), CONSTRAINT UQ_Every UNIQUE (k, x),
 CONSTRAINT CK_Every CHECK (k > 0))
GO
CREATE INDEX IX_Every ON dbo.Every (s DESC, w) INCLUDE (d, m)
GO
EXEC sp_bindefault 'dbo.Zero', 'dbo.Every.w'
GO
CREATE TABLE hr.Every (id int NOT NULL, up int NULL CONSTRAINT FK_up REFERENCES dbo.Other (id))
GO
CREATE SYNONYM hr.Alias FOR dbo.Every
GO
CREATE SEQUENCE hr.Numbers AS bigint START WITH 5
GO
CREATE VIEW hr.Seen WITH ENCRYPTION AS SELECT 1 AS one
GO
CREATE FUNCTION hr.Rows () RETURNS @t TABLE (k int) AS BEGIN RETURN END
GO
CREATE FUNCTION dbo.Inline () RETURNS TABLE AS RETURN SELECT 1 AS k
GO
CREATE PROCEDURE hr.Long AS
)";

TEST_P(CatalogImageRun, EveryTypeAndKindGivesTheSameReportEitherWay) {
    const QString other = QStringLiteral(
        "CREATE TABLE dbo.Other (id int NOT NULL CONSTRAINT PK_Other PRIMARY KEY)\nGO\n");
    // Longer than one row of the server's texts, and a sign of two units where it is cut.
    QString body = QStringLiteral("SELECT '") + QString(9000, u'x') + QStringLiteral("'\n");
    body += QStringLiteral("-- ") + QString::fromUcs4(U"\U0001F600\U0001F601").repeated(3000);
    const QString script = other + QString::fromLatin1(everyType) + body;
    QString changed = script;
    changed.replace(QStringLiteral("IDENTITY(-5, 3)"), QStringLiteral("IDENTITY(-5, 4)"))
        .replace(QStringLiteral("DEFAULT ((7))"), QStringLiteral("DEFAULT ((8))"))
        .replace(QStringLiteral("s DESC, w"), QStringLiteral("w, s DESC"));
    test::ServedDatabases served(GetParam());
    served.load(QStringLiteral("Src"), script);
    served.load(QStringLiteral("Tgt"), changed);
    expectSameReports(served.server());
}

TEST_P(CatalogImageRun, ASelectiveRunGivesTheSameReportEitherWay) {
    test::ServedDatabases served(GetParam());
    served.load(QStringLiteral("Src"), sampleScript("shop_before.sql"));
    served.load(QStringLiteral("Tgt"), sampleScript("shop_after.sql"));
    use(optionSets[0]);
    StructureRunRequest request = wholeRequest(true);
    request.selective = true;
    request.kinds = test::boxesOf({QStringLiteral("tables")});
    request.sourceObjects =
        request.targetObjects = {QStringLiteral("Customer"), QStringLiteral("SalesOrder")};
    EXPECT_EQ(compare(served.server(), request, true).told(),
              compare(served.server(), request, false).told());
}

QString databaseOf(int count) {
    QString script;
    for (int i = 0; i < count; ++i)
        script +=
            QStringLiteral(
                "CREATE TABLE T%1 (id int IDENTITY(1,1) NOT NULL CONSTRAINT PK_T%1 PRIMARY KEY, "
                "a int NOT NULL CONSTRAINT DF_T%1 DEFAULT (1), b int NULL)\nGO\n"
                "CREATE INDEX IX_T%1 ON T%1 (a, b)\nGO\n"
                "CREATE PROCEDURE P%1 AS SELECT %1\nGO\n"
                "CREATE VIEW V%1 AS SELECT %1 AS a\nGO\n")
                .arg(i);
    return script;
}

/// How many statements came, those that only choose a database included.
qsizetype statementsOfRun(int objects) {
    test::ServedDatabases served(Road::Odbc);
    served.load(QStringLiteral("Src"), databaseOf(objects));
    // Every name differs in its letter case, so that each pair has to be looked at.
    served.load(QStringLiteral("Tgt"),
                databaseOf(objects).replace(QStringLiteral("CREATE VIEW V"),
                                            QStringLiteral("CREATE VIEW v")));
    const ServerInfo server = served.server();
    served.takeStatements();
    const Outcome outcome = compare(server, wholeRequest(true), true);
    EXPECT_TRUE(outcome.run.isReliable());
    EXPECT_EQ(outcome.run.notes.join(u'\n').toStdString(), "");
    return served.takeStatements().size();
}

TEST(CatalogImageStatements, TheirNumberDoesNotGrowWithTheDatabases) {
    const test::TempHome home;
    const test::RecordingShell shell;
    use(optionSets[0]);
    const qsizetype few = statementsOfRun(2);
    EXPECT_EQ(statementsOfRun(40), few);
    EXPECT_LE(few, 2 * 60);
    RecordProperty("statements", int(few));
}

/// Does something to the databases in front of a certain statement, or answers another one.
class Meddler : public Provider {
 public:
    std::function<void()> meddle;
    QString before;
    QString asked, answered;  ///< a piece of a statement, and what stands there instead

    std::unique_ptr<ProviderConnection> open(const ConnectionSpec& spec, bool create) override {
        return std::make_unique<Session>(local::localProvider().open(spec, create), *this);
    }

 private:
    class Session : public ProviderConnection {
     public:
        Session(std::unique_ptr<ProviderConnection> inner, Meddler& owner)
            : inner_(std::move(inner)), owner_(owner) {}
        std::unique_ptr<ResultStream> execute(const CommandSpec& command) override {
            if (!owner_.before.isEmpty() && command.text.contains(owner_.before)) owner_.meddle();
            CommandSpec other = command;
            if (!owner_.asked.isEmpty()) other.text.replace(owner_.asked, owner_.answered);
            return inner_->execute(other);
        }
        void cancel() override { inner_->cancel(); }
        std::vector<ServerMessage> takeMessages() override { return inner_->takeMessages(); }
        void close() override { inner_->close(); }

     private:
        std::unique_ptr<ProviderConnection> inner_;
        Meddler& owner_;
    };
};

/// A server whose sessions somebody stands behind.
class MeddledServer {
 public:
    explicit MeddledServer(Provider& provider) {
        server_.load(QStringLiteral("Src"), databaseOf(3));
        server_.load(QStringLiteral("Tgt"), databaseOf(3));
        TdsEndpointOptions options;
        options.provider = &provider;
        options.dataSource = server_.server().Name;
        options.password = QStringLiteral("secret");
        endpoint_.start(options);
        info_ = server_.server();
        info_.Name = endpoint_.dataSource();
        info_.SQLAuth = true;
        info_.LoginName = options.user;
        info_.Password = options.password;
    }
    void run(const QString& database, const QString& statement) {
        ConnectionSpec spec;
        spec.dataSource = server_.server().Name;
        spec.database = database;
        CommandSpec command;
        command.text = statement;
        local::localProvider().open(spec, false)->execute(command);
    }
    const ServerInfo& info() const { return info_; }
    TdsEndpoint& endpoint() { return endpoint_; }

 private:
    test::ServedDatabases server_;
    TdsEndpoint endpoint_;
    ServerInfo info_;
};

TEST(CatalogImageTrouble, WhatIsAlteredWhileItIsReadIsReadAgain) {
    const test::TempHome home;
    const test::RecordingShell shell;
    use(optionSets[0]);
    std::atomic<int> alterations = 0;
    Meddler meddler;
    MeddledServer server(meddler);
    // The columns have been read by then.
    meddler.before = QStringLiteral("FROM sysindexkeys");
    meddler.meddle = [&] {
        if (alterations.fetch_add(1) == 0)
            server.run(QStringLiteral("Tgt"), QStringLiteral("ALTER TABLE T1 ADD late int NULL"));
    };
    const Outcome image = compare(server.info(), wholeRequest(true), true);
    meddler.before.clear();
    EXPECT_GE(alterations, 3);
    EXPECT_EQ(image.run.notes.join(u'\n').toStdString(), "");
    EXPECT_EQ(image.told(), compare(server.info(), wholeRequest(true), false).told());
    EXPECT_TRUE(image.run.somethingDiffers);
}

TEST(CatalogImageTrouble, WhatIsAlteredAgainAndAgainIsAskedDirectlyAndTold) {
    const test::TempHome home;
    const test::RecordingShell shell;
    use(optionSets[0]);
    std::atomic<int> alterations = 0;
    Meddler meddler;
    MeddledServer server(meddler);
    meddler.before = QStringLiteral("SELECT id, indid, keyno, colid FROM sysindexkeys");
    meddler.meddle = [&] {
        server.run(QStringLiteral("Tgt"),
                   QStringLiteral("ALTER TABLE T1 ADD late%1 int NULL").arg(++alterations));
    };
    const Outcome image = compare(server.info(), wholeRequest(true), true);
    meddler.before.clear();
    ASSERT_EQ(image.run.notes.size(), 1);
    EXPECT_EQ(image.run.notes[0].toStdString(),
              server.info().Name.toStdString() +
                  ".Tgt is asked object by object: it was altered each of the 3 times that it was "
                  "read.");
    EXPECT_EQ(image.told(), compare(server.info(), wholeRequest(true), false).told());
}

TEST(CatalogImageTrouble, AServerThatAnswersOtherwiseThanItsImageIsAskedDirectly) {
    const test::TempHome home;
    const test::RecordingShell shell;
    use(optionSets[0]);
    const std::string sorted =
        "the server sorts its names otherwise than collation SQL_Latin1_General_CP1_CI_AS is "
        "understood here.";
    const std::string derived = "the server says of its objects what can't be worked out here.";
    const struct {
        const char* asked;
        const char* answered;
        std::string why;
    } answers[] = {
        {"DISTINCT name FROM sysobjects ORDER BY name",
         "DISTINCT name FROM sysobjects ORDER BY name DESC", sorted},
        {"DISTINCT name FROM sysindexes WHERE",
         "DISTINCT name FROM sysindexes WHERE id > 0 AND indid > 1 AND", sorted},
        {"DISTINCT sc.name FROM", "DISTINCT UPPER(sc.name) + 'x' AS name FROM", sorted},
        {"OBJECTPROPERTY(id, N'IsView') AS v", "OBJECTPROPERTY(id, N'IsTrigger') AS v", derived},
        {"SELECT id, uid FROM sysobjects", "SELECT id, uid + 1 AS uid FROM sysobjects", derived},
        {"'Collation'))", "'Collation')) + '_XX'",
         "its collation SQL_Latin1_General_CP1_CI_AS_XX isn't known."},
        {"WHEN sc.status & 128 = 0 THEN 0 ELSE", "WHEN sc.status < 0 THEN 0 ELSE",
         "the seed of an identity column can't be read."},
    };
    for (const auto& one : answers) {
        Meddler meddler;
        MeddledServer server(meddler);
        const Outcome direct = compare(server.info(), wholeRequest(true), false);
        meddler.asked = QString::fromLatin1(one.asked);
        meddler.answered = QString::fromLatin1(one.answered);
        const Outcome image = compare(server.info(), wholeRequest(true), true);
        EXPECT_EQ(image.told(), direct.told()) << one.asked;
        ASSERT_EQ(image.run.notes.size(), 2) << one.asked;
        EXPECT_EQ(image.run.notes[0].toStdString(),
                  server.info().Name.toStdString() + ".Src is asked object by object: " + one.why)
            << one.asked;
    }
}

TEST(CatalogImageTrouble, ALoginThatSeesLessIsNeverToldIdentical) {
    const test::TempHome home;
    const test::RecordingShell shell;
    use(optionSets[0]);
    test::LimitedLogin limited(local::localProvider());
    MeddledServer server(limited);
    const Outcome image = compare(server.info(), wholeRequest(false), true);
    EXPECT_EQ(image.told(), compare(server.info(), wholeRequest(false), false).told());
    EXPECT_FALSE(image.run.isWhole());
    EXPECT_EQ(image.run.blindness.size(), 2);
}

struct WireTrouble {
    const char* name;
    const char* statement;
    bool drop;
};

TEST(CatalogImageTrouble, AReadingThatBreaksOffLeavesTheRunToAskDirectly) {
    const test::TempHome home;
    const test::RecordingShell shell;
    use(optionSets[0]);
    for (const WireTrouble& one :
         {WireTrouble{"an error", "FROM syscomments sc INNER", false},
          WireTrouble{"a lost connection", "FROM systypes st", true},
          WireTrouble{"an error of a probe", "SELECT DISTINCT name", false}}) {
        SCOPED_TRACE(one.name);
        Meddler nobody;
        MeddledServer server(nobody);
        const Outcome direct = compare(server.info(), wholeRequest(true), false);
        TdsFaults faults;
        faults.onlyStatementsWith = QString::fromLatin1(one.statement);
        faults.failStatement = 1;
        faults.dropInstead = one.drop;
        server.endpoint().setFaults(faults);
        const Outcome image = compare(server.info(), wholeRequest(true), true);
        EXPECT_EQ(image.told(), direct.told());
        ASSERT_EQ(image.run.notes.size(), 1);
        EXPECT_TRUE(image.run.notes[0].contains(QStringLiteral("is asked object by object: ")))
            << image.run.notes[0].toStdString();
    }
}

TEST(CatalogImageTrouble, AnOldServerIsAskedDirectlyAndTheRunSaysSo) {
    const test::TempHome home;
    const test::RecordingShell shell;
    use(optionSets[0]);
    test::ServedDatabases served(Road::Embedded, QStringLiteral("8.00.2039"));
    served.load(QStringLiteral("Src"), databaseOf(2));
    served.load(QStringLiteral("Tgt"), databaseOf(3));
    const Outcome image = compare(served.server(), wholeRequest(true), true);
    EXPECT_EQ(image.told(), compare(served.server(), wholeRequest(true), false).told());
    EXPECT_EQ(image.run.notes.size(), 2);
}

}  // namespace
}  // namespace zov
