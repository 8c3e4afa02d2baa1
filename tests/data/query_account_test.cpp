// What fails on the only road to a server goes into the account of the run, shown to the user or
// not.
#include "core/globals.h"
#include "core/run_account.h"
#include "data/mdlData.h"
#include "support/recording_shell.h"
#include "support/tds_endpoint/scripted_provider.h"
#include "support/tds_endpoint/tds_endpoint.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class QueryAccount : public ::testing::Test {
 protected:
    void SetUp() override {
        provider.otherwise = [](const CommandSpec& command) {
            ScriptedAnswer answer;
            if (command.text.contains(QStringLiteral("Forbidden"))) {
                ScriptedResult result;
                result.error =
                    DbError(ado_error::PermissionDenied, QStringLiteral("Not for you."), {}, 229);
                answer.results.push_back(result);
            }
            return answer;
        };
        TdsEndpointOptions options;
        options.provider = &provider;
        options.password = QStringLiteral("secret");
        endpoint.start(options);
        server.Name = endpoint.dataSource();
        server.SQLAuth = true;
        server.LoginName = options.user;
        server.Password = options.password;
    }
    /// What `work` left in the account, one line an entry.
    template <typename Work>
    std::string account(Work work) {
        RunAccount account;
        {
            const KeepAccount keep(account);
            work();
        }
        QStringList lines;
        for (const AccountEntry& entry : account.entries())
            lines += entry.place.section(u'.', -1) + QStringLiteral(": ") + entry.doing +
                     (entry.refused ? QStringLiteral(" refused") : QString()) +
                     (entry.told ? QStringLiteral(" told") : QString());
        return lines.join(u'\n').toStdString();
    }

    const QString db = QStringLiteral("Db");
    test::TempHome home;
    test::RecordingShell shell;
    ScriptedProvider provider;
    TdsEndpoint endpoint;
    ServerInfo server;
};

TEST_F(QueryAccount, HoldsSilentFailuresToo) {
    std::unique_ptr<Recordset> rs;
    const QString text = QStringLiteral("SELECT Forbidden");
    const auto ask = [&] { EXPECT_EQ(GetAdoRS(server, adCmdText, text, rs, db), -1); };
    EXPECT_EQ(account(ask), "Db: SELECT Forbidden refused told");
    EXPECT_EQ(shell.takeLines().join(u'|').toStdString(), "screen frmErrorReport");
    {
        const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
        EXPECT_EQ(account(ask), "Db: SELECT Forbidden refused");
        EXPECT_EQ(account([&] {
                      const ExpectFailure probing;
                      ask();
                  }),
                  "");
        EXPECT_TRUE(shell.takeLines().isEmpty());
    }

    std::shared_ptr<Connection> connection;
    ASSERT_TRUE(ADO_Connection_Open(connection, server, db));
    const auto askThere = [&] {
        EXPECT_EQ(GetAdoRS_OnConnection(connection, adCmdText, text, rs), -1);
    };
    EXPECT_EQ(account(askThere), "Db: SELECT Forbidden refused told");
    EXPECT_EQ(account([&] {
                  EXPECT_EQ(ExecAdoCmd(server, adCmdText, QStringLiteral("EXEC Forbidden"), db),
                            -1);
              }),
              "Db: EXEC Forbidden refused told");

    ServerInfo stranger = server;
    stranger.Password = QStringLiteral("wrong");
    EXPECT_EQ(account([&] { EXPECT_FALSE(ADO_Connection_Open(connection, stranger, db)); }),
              "Db: connecting told");
}

TEST_F(QueryAccount, AQueryAnsweredWithoutAColumnHasFailed) {
    const struct {
        const char* text;
        bool fails;
    } rows[] = {
        {"SELECT a FROM t", true},
        {"  select 'a INTO b'", true},
        {"SELECT [x INTO y] FROM t", true},
        {"SELECT \"x INTO y\" FROM t", true},
        {"SELECT a INTO b FROM t", false},
        {"PRINT 'a'", false},
        {"SELECTED", false},
    };
    for (const auto& row : rows) {
        for (const int location : {adUseServer, adUseClient}) {
            globals().glngCursorLocation = location;
            std::unique_ptr<Recordset> rs;
            const std::string entries = account([&] {
                EXPECT_EQ(GetAdoRS(server, adCmdText, QLatin1String(row.text), rs, db),
                          row.fails ? -1 : 0)
                    << row.text;
            });
            EXPECT_EQ(entries, row.fails ? std::string("Db: ") + row.text + " told" : "");
        }
    }
}

// What ends a value in a connection string may stand in a password.
TEST_F(QueryAccount, PasswordsReachTheServerToTheLetter) {
    for (const char* password : {"a;b", "a\"b", "'a'", "a;\"b'c", "p=w;UID=other", " a ", "{a;}b",
                                 "a}", "\"", ";", "a;Data Source=elsewhere", "Ж中"}) {
        TdsEndpoint guarded;
        TdsEndpointOptions options;
        options.provider = &provider;
        options.password = QString::fromUtf8(password);
        guarded.start(options);
        server.Name = guarded.dataSource();
        server.Password = options.password;
        std::unique_ptr<Recordset> rs;
        EXPECT_EQ(account([&] {
                      EXPECT_EQ(GetAdoRS(server, adCmdText, QStringLiteral("PRINT 'a'"), rs, db),
                                0);
                  }),
                  "")
            << password;
        EXPECT_EQ(guarded.counters().logins, 1) << password;
        EXPECT_EQ(guarded.counters().refusedLogins, 0) << password;
    }
}

}  // namespace
}  // namespace zov
