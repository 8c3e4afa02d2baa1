// How an object's schema is asked on servers with and without OBJECT_SCHEMA_NAME:
// against a server that answers as written here.
#include "catalog/modSchema.h"
#include "support/recording_shell.h"
#include "support/tds_endpoint/scripted_provider.h"
#include "support/tds_endpoint/tds_endpoint.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

const QString newWay =
    QStringLiteral("SELECT OBJECT_SCHEMA_NAME([object_id]) FROM sys.objects WHERE [object_id] = 5");
const QString oldWay = QStringLiteral("SELECT USER_NAME(uid) FROM sysobjects WHERE [id] = 5");

class SchemaLookup : public ::testing::Test {
 protected:
    void SetUp() override {
        ForgetSchemaFunctionFindings();
        TdsEndpointOptions options;
        options.provider = &provider;
        options.password = QStringLiteral("secret");
        endpoint.start(options);
        server.Name = endpoint.dataSource();
        server.SQLAuth = true;
        server.LoginName = options.user;
        server.Password = options.password;
        provider.otherwise = [](const CommandSpec&) { return ScriptedAnswer(); };
    }
    void answers(const QString& statement, const QString& schema, int rows = 1) {
        ScriptedResult result;
        result.columns.resize(1);
        result.columns[0].size = 128;
        result.rowCount = rows;
        result.fill = [schema](RowStore& rows, qint64) { rows.column(0).appendText(schema); };
        ScriptedAnswer answer;
        answer.results.push_back(result);
        provider.answer(statement, answer);
    }
    void fails(const QString& statement) {
        ScriptedResult result;
        result.error = DbError(ado_error::SyntaxError,
                               QStringLiteral("'OBJECT_SCHEMA_NAME' is not a recognized built-in "
                                              "function name."),
                               {}, 195);
        ScriptedAnswer answer;
        answer.results.push_back(result);
        provider.answer(statement, answer);
    }
    // The lookup's result, and which statements it sent: "new", "old" or both.
    std::string lookUp(const char* version) {
        server.Version = QLatin1String(version);
        const size_t before = provider.commands().size();
        QString schema = QStringLiteral("left over");
        const bool answered =
            Db_GetObjSchemaById(server, ObjectType::Table, QStringLiteral("Db"), 5, schema);
        QString sent;
        const std::vector<CommandSpec> commands = provider.commands();
        for (size_t i = before; i < commands.size(); ++i) {
            if (commands[i].text == newWay) sent += QStringLiteral(" new");
            if (commands[i].text == oldWay) sent += QStringLiteral(" old");
        }
        return ((answered ? QStringLiteral("'%1'").arg(schema) : QStringLiteral("failed")) + sent)
            .toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
    ScriptedProvider provider;
    TdsEndpoint endpoint;
    ServerInfo server;
};

TEST_F(SchemaLookup, AsksAnOldServerForTheUser) {
    answers(oldWay, QStringLiteral("ann"));
    EXPECT_EQ(lookUp("8.00.2039"), "'ann' old");
    EXPECT_EQ(lookUp(""), "'ann' old");
}

TEST_F(SchemaLookup, AsksANewServerForTheSchema) {
    answers(newWay, QStringLiteral("sales"));
    EXPECT_EQ(lookUp("16.0.4085.2"), "'sales' new");
    EXPECT_EQ(lookUp("9.00.5000"), "'sales' new");
    EXPECT_EQ(shell.lines.join(u'\n'), QString());
}

TEST_F(SchemaLookup, ABuildThatIsntKnownToHaveTheFunctionIsAskedInTheOldWayFromThenOn) {
    answers(newWay, QStringLiteral("sales"));
    answers(oldWay, QStringLiteral("ann"));
    EXPECT_EQ(lookUp("9.00.3042.00"), "'ann' old");
    EXPECT_EQ(lookUp("16.0.4085.2"), "'ann' old");
    ForgetSchemaFunctionFindings();
    EXPECT_EQ(lookUp("16.0.4085.2"), "'sales' new");
}

TEST_F(SchemaLookup, AFailureIsFollowedByTheOldWayOnce) {
    fails(newWay);
    answers(oldWay, QStringLiteral("ann"));
    EXPECT_EQ(lookUp("10.50.1600.1"), "'ann' new old");
    EXPECT_EQ(lookUp("10.50.1600.1"), "'ann' old");
    fails(oldWay);
    EXPECT_EQ(lookUp("10.50.1600.1"), "failed old");
}

TEST_F(SchemaLookup, AMissingObjectHasNoSchema) {
    answers(newWay, {}, 0);
    EXPECT_EQ(lookUp("16.0.4085.2"), "'' new");
}

}  // namespace
}  // namespace zov
