// Ways to a server: addresses, drivers, connection strings, refusals, and the pool of sessions.
#include "data_odbc/odbc_fixture.h"

#include "data/odbc/odbc_columns.h"
#include "data/odbc/odbc_errors.h"
#include "data/odbc/odbc_session.h"

#include <thread>

namespace zov {
namespace {

using odbc::Driver;
using odbc::DriverFamily;
using odbc::ServerAddress;

const QString ask = QStringLiteral("SELECT 1");

/// An environment variable for the length of a scope.
class WithVariable {
 public:
    WithVariable(const char* name, const QString& value)
        : name_(name), had_(qEnvironmentVariableIsSet(name)), before_(qgetenv(name)) {
        qputenv(name, value.toLocal8Bit());
    }
    ~WithVariable() {
        if (had_)
            qputenv(name_, before_);
        else
            qunsetenv(name_);
    }

 private:
    const char* name_;
    bool had_;
    QByteArray before_;
};

TEST(OdbcServerAddress, IsReadInEveryFormThatPeopleType) {
    const std::pair<const char*, const char*> cases[] = {
        {"host", "host, port 1433"},
        {" host ", "host, port 1433"},
        {"host,1500", "host, port 1500"},
        {"host , 1500", "host, port 1500"},
        {"tcp:host,1500", "host, port 1500"},
        {"TCP:host", "host, port 1433"},
        {"host\\EXPRESS", "host, instance EXPRESS"},
        {"host\\MSSQLServer", "host, port 1433"},
        {"host\\EXPRESS,1500", "host, port 1500"},
        {".", "localhost, port 1433"},
        {"", "localhost, port 1433"},
        {"(local)", "localhost, port 1433"},
        {"(LOCAL)\\X", "localhost, instance X"},
        {".\\X", "localhost, instance X"},
        {"[::1]", "::1, port 1433"},
        {"[fe80::1%eth0],1500", "fe80::1%eth0, port 1500"},
        {"::1", "::1, port 1433"},
        {"10.0.0.7,1500", "10.0.0.7, port 1500"},
    };
    for (const auto& [typed, shown] : cases)
        EXPECT_EQ(ServerAddress::parse(QString::fromLatin1(typed)).shown(), QLatin1String(shown))
            << typed;
}

TEST(OdbcServerAddress, SaysWhatItCannotRead) {
    const std::pair<const char*, const char*> cases[] = {
        {"host,", "the port is a number from 1 to 65535."},
        {"host,0", "the port is a number from 1 to 65535."},
        {"host,65536", "the port is a number from 1 to 65535."},
        {"host,abc", "the port is a number from 1 to 65535."},
        {"[::1", "the bracket is not closed."},
        {"[::1]x", "\"x\" is not understood."},
        {"np:\\\\host\\pipe", "only servers that listen on TCP/IP can be reached."},
        {"(localdb)\\v11", "only servers that listen on TCP/IP can be reached."},
        {"host;UID=sa", "it has a character that no server's name has."},
        {"ho\nst", "it has a character that no server's name has."},
    };
    for (const auto& [typed, why] : cases) {
        try {
            ServerAddress::parse(QString::fromLatin1(typed));
            ADD_FAILURE() << typed << " was taken";
        } catch (const DbError& error) {
            EXPECT_EQ(error.description,
                      QStringLiteral("\"%1\" is not a server's name: %2 Servers are named host, "
                                     "host,port, host\\instance or tcp:host,port.")
                          .arg(QLatin1String(typed), QLatin1String(why)));
        }
    }
}

QString stringFor(DriverFamily family, const ConnectionSpec& spec, const QString& server) {
    const Driver driver{family == DriverFamily::FreeTds
                            ? QStringLiteral("FreeTDS")
                            : QStringLiteral("ODBC Driver 18 for SQL Server"),
                        family};
    return odbc::odbcConnectionString(driver, ServerAddress::parse(server), spec, {});
}

TEST(OdbcConnectionString, IsInTheDialectOfItsDriver) {
    ConnectionSpec spec;
    spec.database = QStringLiteral("my db");
    spec.user = QStringLiteral("u;1");
    spec.password = QStringLiteral("p}w=");
    EXPECT_EQ(
        stringFor(DriverFamily::FreeTds, spec, QStringLiteral("h,1500")),
        QStringLiteral("DRIVER={FreeTDS};Server=h;Port=1500;Encryption=request;TDS_Version=7.4;"
                       "ClientCharset=UTF-8;Database=my db;UID={u;1};PWD=p}w=;APP=Zovrand;"));
    EXPECT_EQ(stringFor(DriverFamily::Microsoft, spec, QStringLiteral("h\\i")),
              QStringLiteral("DRIVER={ODBC Driver 18 for SQL Server};SERVER={h\\i};Encrypt=yes;"
                             "TrustServerCertificate=yes;Database={my db};UID={u;1};PWD={p}}w=};"
                             "APP=Zovrand;"));
    spec.integratedSecurity = true;
    spec.database.clear();
    EXPECT_EQ(stringFor(DriverFamily::FreeTds, spec, QStringLiteral("h\\i")),
              QStringLiteral("DRIVER={FreeTDS};Server=h\\i;Encryption=request;TDS_Version=7.4;"
                             "ClientCharset=UTF-8;Trusted_Connection=Yes;APP=Zovrand;"));
    EXPECT_EQ(
        stringFor(DriverFamily::Microsoft, spec, QStringLiteral("h")),
        QStringLiteral("DRIVER={ODBC Driver 18 for SQL Server};SERVER={tcp:h,1433};Encrypt=yes;"
                       "TrustServerCertificate=yes;Trusted_Connection=Yes;APP=Zovrand;"));
}

TEST(OdbcConnectionString, RefusesAValueThatItsDriverCannotBeTold) {
    ConnectionSpec spec;
    spec.password = QStringLiteral("a};UID=x");
    try {
        stringFor(DriverFamily::FreeTds, spec, QStringLiteral("h"));
        ADD_FAILURE() << "was taken";
    } catch (const DbError& error) {
        EXPECT_EQ(
            error.description,
            QStringLiteral("The password contains \"};\", which can't be handed to the FreeTDS "
                           "driver. Choose another one, or install Microsoft's ODBC driver."));
    }
    EXPECT_TRUE(stringFor(DriverFamily::Microsoft, spec, QStringLiteral("h"))
                    .contains(QStringLiteral("PWD={a}};UID=x};")));
}

TEST(OdbcErrors, DriversBracketsGoAndServersStay) {
    const std::pair<const char*, const char*> cases[] = {
        {"[FreeTDS][SQL Server]Text", "Text"},
        {"[unixODBC][FreeTDS][SQL Server]Text", "Text"},
        {"[unixODBC][Driver Manager]Text", "Text"},
        {"[Microsoft][ODBC Driver 18 for SQL Server][SQL Server]Text", "Text"},
        {"[Microsoft][ODBC Driver 18 for SQL Server]Login timeout", "Login timeout"},
        {"[FreeTDS][SQL Server][SQL Server] is a table", "[SQL Server] is a table"},
        {"[SQL Server] is a table", "[SQL Server] is a table"},
        {"[dbo].[x]", "[dbo].[x]"},
        {"", ""},
    };
    for (const auto& [whole, bare] : cases)
        EXPECT_EQ(odbc::withoutDriverPrefix(QString::fromLatin1(whole)), QLatin1String(bare));
}

TEST(OdbcDecimals, AreExactOrRefused) {
    struct Case {
        const char* text;
        int scale;
        std::optional<qint64> scaled;
        const char* canonical;  // null: no decimal
    };
    const Case cases[] = {
        {"0", 0, 0, "0"},
        {"-0.00", 2, 0, "0"},
        {".5", 2, 50, "0.5"},
        {"-.5", 1, -5, "-0.5"},
        {"007.10", 2, 710, "7.1"},
        {"12", 4, 120000, "12"},
        {"1.23456", 4, std::nullopt, "1.23456"},
        {"1.23400", 3, 1234, "1.234"},
        {"922337203685477.5807", 4, LLONG_MAX, "922337203685477.5807"},
        {"-922337203685477.5808", 4, LLONG_MIN, "-922337203685477.5808"},
        {"922337203685477.5808", 4, std::nullopt, "922337203685477.5808"},
        {"99999999999999999999999999999999999999", 0, std::nullopt,
         "99999999999999999999999999999999999999"},
        {"20000000000000000000", 0, std::nullopt, "20000000000000000000"},
        {"2000000000000000000.0", 1, std::nullopt, "2000000000000000000"},
        {"1e5", 0, std::nullopt, nullptr},
        {"1.2.3", 2, std::nullopt, nullptr},
        {"", 0, std::nullopt, nullptr},
        {"-", 0, std::nullopt, nullptr},
        {".", 0, std::nullopt, nullptr},
    };
    for (const Case& test : cases) {
        qint64 value = 0;
        const bool isScaled = odbc::parseScaled(test.text, qstrlen(test.text), test.scale, value);
        EXPECT_EQ(isScaled, test.scaled.has_value()) << test.text;
        if (isScaled && test.scaled) {
            EXPECT_EQ(value, *test.scaled) << test.text;
        }
        QString canonical;
        const bool isDecimal = odbc::canonicalDecimal(test.text, qstrlen(test.text), canonical);
        EXPECT_EQ(isDecimal, test.canonical != nullptr) << test.text;
        if (isDecimal && test.canonical) {
            EXPECT_EQ(canonical, QLatin1String(test.canonical));
        }
    }
}

TEST(OdbcValues, CellsThatCannotBeAreRefused) {
    odbc::ResultColumn stamp;
    stamp.info = {QStringLiteral("When"), SqlType::DateTime, 0, 0, 3, true};
    stamp.form = odbc::CellForm::Stamp;
    stamp.cellBytes = sizeof(SQL_TIMESTAMP_STRUCT);
    struct Case {
        SQL_TIMESTAMP_STRUCT value;
        qsizetype bytes;
        const char* text;  // null: refused
    };
    const Case cases[] = {
        {{2024, 2, 29, 23, 59, 59, 0}, 16, "2024-02-29 23:59:59"},
        {{2023, 2, 29, 0, 0, 0, 0}, 16, nullptr},
        {{2024, 4, 31, 0, 0, 0, 0}, 16, nullptr},
        {{0, 1, 1, 0, 0, 0, 0}, 16, nullptr},
        {{2024, 1, 1, 24, 0, 0, 0}, 16, nullptr},
        {{2024, 1, 1, 0, 0, 0, 0}, 15, nullptr},
        {{2024, 1, 1, 0, 0, 0, 0}, 0, nullptr},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(&test - cases);
        ColumnCells cells(stamp.info);
        try {
            odbc::appendCell(stamp, reinterpret_cast<const char*>(&test.value), test.bytes, false,
                             cells);
            ASSERT_TRUE(test.text) << "taken for a time";
            EXPECT_EQ(cellText(cells.cell(0)), QLatin1String(test.text));
        } catch (const DbError& error) {
            EXPECT_FALSE(test.text) << error.what();
            EXPECT_TRUE(error.description.contains(u"\"When\" (datetime)")) << error.what();
        }
    }
}

TEST(OdbcErrors, AnErrorWithoutWordsSaysSo) {
    odbc::Diagnostic silent;
    silent.sqlState = QStringLiteral("HY000");
    for (const auto phase : {odbc::Phase::Connecting, odbc::Phase::Executing})
        EXPECT_EQ(odbc::errorFrom({silent}, phase).description,
                  QStringLiteral("The ODBC driver failed without saying why."));
}

TEST(OdbcSession, OnlyReadingLeavesASessionAsItWas) {
    for (const char* text :
         {"SELECT a FROM b", "  select 1", "IF EXISTS (SELECT 1) SELECT 1 ELSE SELECT 0",
          "WITH x AS (SELECT 1 AS a) SELECT a FROM x"})
        EXPECT_TRUE(odbc::leavesSessionAsItWas(QString::fromLatin1(text))) << text;
    for (const char* text :
         {"USE other", "SET NOCOUNT ON", "SELECT 1 SET ROWCOUNT 5", "SELECT a INTO #t FROM b",
          "BEGIN TRAN", "EXEC sp_who", "sp_who", "", "IF 1=1 USE other", "/* x */ SELECT 1"})
        EXPECT_FALSE(odbc::leavesSessionAsItWas(QString::fromLatin1(text))) << text;
}

using OdbcConnectTest = OdbcTest;

TEST_F(OdbcConnectTest, CredentialsOfAnyLettersReachTheServer) {
    for (const char* password :
         {"p;w", "p}w", "{pw", "{p}w;x", "p=w'\"", " pw ", "pé中\U0001F600", "}}", ";"}) {
        TdsEndpoint other;
        options.password = QString::fromUtf8(password);
        options.user = QString::fromUtf8(password) + u'u';
        other.start(options);
        ConnectionSpec wanted = spec();
        wanted.dataSource = other.dataSource();
        try {
            odbc::odbcProvider().open(wanted, false);
        } catch (const DbError& error) {
            ADD_FAILURE() << password << ": " << error.what();
        }
    }
}

TEST_F(OdbcConnectTest, ARefusedLoginIsToldInTheServersWords) {
    ConnectionSpec wrong = spec();
    wrong.password = QStringLiteral("wrong");
    const DbError error = errorOf([&] { odbc::odbcProvider().open(wrong, false); });
    EXPECT_EQ(error.number, ado_error::LoginFailed);
    EXPECT_EQ(error.native, 18456);
    EXPECT_EQ(error.description, QStringLiteral("Login failed for user 'sa'."));
}

TEST_F(OdbcConnectTest, AnUnknownDatabaseIsNoRefusedLogin) {
    TdsFaults faults;
    faults.missingDatabases = {QStringLiteral("shop")};
    endpoint.setFaults(faults);
    const DbError error = errorOf([&] { open(); });
    EXPECT_EQ(error.number, ado_error::Unspecified);
    EXPECT_EQ(error.native, 4060);
    EXPECT_EQ(
        error.description,
        QStringLiteral("Cannot open database \"shop\" requested by the login. The login failed."));
}

TEST_F(OdbcConnectTest, AMissingDatabaseIsMadeWhenAsked) {
    TdsFaults faults;
    faults.missingDatabases = {QStringLiteral("a]b")};
    endpoint.setFaults(faults);
    script.otherwise = [&](const CommandSpec&) {
        endpoint.setFaults({});
        return std::optional(ScriptedAnswer());
    };
    ConnectionSpec wanted = spec();
    wanted.database = QStringLiteral("a]b");
    EXPECT_NO_THROW(odbc::odbcProvider().open(wanted, true));
    EXPECT_TRUE(endpoint.statements().contains(QStringLiteral("CREATE DATABASE [a]]b]")));
    endpoint.resetCounters();
    EXPECT_NO_THROW(odbc::odbcProvider().open(wanted, true));
    EXPECT_EQ(endpoint.statements().filter(QStringLiteral("CREATE")), QStringList());
}

TEST_F(OdbcConnectTest, AnUnreachableServerIsNamedWithTheNextStep) {
    const quint16 port = endpoint.port();
    endpoint.stop();
    const QString source = QStringLiteral("127.0.0.1,%1").arg(port);
    ConnectionSpec wanted = spec();
    wanted.dataSource = source;
    const DbError error = errorOf([&] { odbc::odbcProvider().open(wanted, false); });
    EXPECT_EQ(error.number, ado_error::Unspecified);
    EXPECT_TRUE(error.connectionLost);
    EXPECT_EQ(
        error.description,
        QStringLiteral("The server \"%1\" can't be reached (tried 127.0.0.1, port %2): Unable to "
                       "connect: Adaptive Server is unavailable or does not exist. Check that the "
                       "name is right, that SQL Server runs there and accepts TCP/IP connections, "
                       "and that no firewall is in between.")
            .arg(source)
            .arg(port));
}

TEST_F(OdbcConnectTest, AServerThatNeverAnswersIsGivenUp) {
    TdsFaults faults;
    faults.loginDelayMilliseconds = 15'000;
    endpoint.setFaults(faults);
    ConnectionSpec wanted = spec();
    wanted.connectTimeout = 1;
    const auto start = std::chrono::steady_clock::now();
    const DbError error = errorOf([&] { odbc::odbcProvider().open(wanted, false); });
    EXPECT_LT(secondsSince(start), 8);
    EXPECT_EQ(error.number, ado_error::Unspecified);
    EXPECT_TRUE(error.description.startsWith(QStringLiteral("The server \"127.0.0.1,")))
        << error.what();
}

TEST_F(OdbcConnectTest, AnUnknownDriverIsNamedWithThoseInstalled) {
    const WithVariable driver("ZOVRAND_ODBC_DRIVER", QStringLiteral("nonsense"));
    const DbError error = errorOf([&] { open(); });
    EXPECT_TRUE(error.description.startsWith(
        QStringLiteral("ZOVRAND_ODBC_DRIVER names the ODBC driver \"nonsense\", which is neither "
                       "installed nor a file. ")))
        << error.what();
    EXPECT_TRUE(error.description.contains(QStringLiteral("sudo apt install tdsodbc")));
}

TEST_F(OdbcConnectTest, AFileThatIsNoDriverIsToldApart) {
    const WithVariable driver("ZOVRAND_ODBC_DRIVER",
                              QStringLiteral(ZOV_TEST_DATA "/data_odbc/odbc_fixture.h"));
    const DbError error = errorOf([&] { open(); });
    EXPECT_TRUE(error.description.startsWith(QStringLiteral("The ODBC driver can't be loaded: ")))
        << error.what();
}

TEST_F(OdbcConnectTest, WithACaFileAServerWithoutEncryptionIsRefused) {
    const WithVariable file("ZOVRAND_CA_FILE",
                            QStringLiteral(ZOV_TEST_DATA "/data_odbc/odbc_fixture.h"));
    const DbError error = errorOf([&] { open(); });
    EXPECT_TRUE(error.description.contains(
        QStringLiteral("ZOVRAND_CA_FILE is set, so the server must offer encryption")))
        << error.what();
    EXPECT_EQ(endpoint.counters().logins, 0);
}

TEST_F(OdbcConnectTest, ACaFileThatIsMissingStopsTheConnection) {
    const WithVariable file("ZOVRAND_CA_FILE", QStringLiteral("/nonsense/ca.pem"));
    EXPECT_EQ(errorOf([&] { open(); }).description,
              QStringLiteral("ZOVRAND_CA_FILE names \"/nonsense/ca.pem\", which can't be read."));
    EXPECT_EQ(endpoint.counters().logins, 0);
}

class OdbcPoolTest : public OdbcTest {
 protected:
    int loginsOf(const std::function<void(ProviderConnection&)>& first,
                 const std::optional<ConnectionSpec>& second = std::nullopt) {
        script.answer(ask, numbers(3));
        odbc::dropIdleSessions();
        endpoint.resetCounters();
        first(*open());
        const auto again = odbc::odbcProvider().open(second.value_or(spec()), false);
        EXPECT_EQ(readRows(*run(*again, ask)).size(), 3);
        return endpoint.counters().logins;
    }
};

TEST_F(OdbcPoolTest, ASessionThatOnlyReadIsUsedAgainInItsDatabase) {
    EXPECT_EQ(loginsOf([&](ProviderConnection& c) { readRows(*run(c, ask)); }), 1);
    EXPECT_EQ(endpoint.statements(), QStringList({ask, ask}));
    // After a pause it is set up anew, which also tells whether the server is still there.
    EXPECT_EQ(loginsOf([&](ProviderConnection& c) {
                  readRows(*run(c, ask));
                  c.close();
                  std::this_thread::sleep_for(std::chrono::milliseconds(600));
              }),
              1);
    EXPECT_EQ(endpoint.statements(), QStringList({ask, QStringLiteral("USE [shop]"), ask}));
    // One that was only opened, too.
    EXPECT_EQ(loginsOf([](ProviderConnection&) {}), 1);
}

TEST_F(OdbcPoolTest, ASessionIsNotSharedByTwoAtOnce) {
    script.answer(ask, numbers(3));
    const auto one = open();
    const auto two = open();
    const auto stream = run(*one, ask);
    EXPECT_EQ(readRows(*run(*two, ask)).size(), 3);
    EXPECT_EQ(endpoint.counters().logins, 2);
}

TEST_F(OdbcPoolTest, AnotherConnectionStringGetsItsOwnSession) {
    ConnectionSpec other = spec();
    other.database = QStringLiteral("other");
    EXPECT_EQ(loginsOf([](ProviderConnection&) {}, other), 2);
    ConnectionSpec wrong = spec();
    wrong.password = QStringLiteral("wrong");
    EXPECT_EQ(errorOf([&] { odbc::odbcProvider().open(wrong, false); }).number,
              ado_error::LoginFailed);
}

TEST_F(OdbcPoolTest, ASessionIsDroppedAfterWhatMayHaveChangedIt) {
    EXPECT_EQ(loginsOf([&](ProviderConnection& c) {
                  script.answer(QStringLiteral("SET ROWCOUNT 1"), {});
                  run(c, QStringLiteral("SET ROWCOUNT 1"));
              }),
              2);
    EXPECT_EQ(loginsOf([&](ProviderConnection& c) {
                  script.answer(QStringLiteral("SELECT bad"), failing(208, QStringLiteral("No.")));
                  errorOf([&] { run(c, QStringLiteral("SELECT bad")); });
              }),
              2);
}

TEST_F(OdbcPoolTest, AnUnfinishedStreamDoesNotLeakIntoTheNextUse) {
    script.answer(QStringLiteral("SELECT many"), numbers(100'000));
    loginsOf([&](ProviderConnection& c) {
        const auto stream = run(c, QStringLiteral("SELECT many"));
        RowStore rows(stream->columns());
        stream->fetch(rows, 10);
    });
}

TEST_F(OdbcPoolTest, ADeadSessionIsReplacedBeforeAnythingRuns) {
    const QString change = QStringLiteral("UPDATE T SET n = 1");
    script.answer(ask, numbers(3));
    script.answer(change, {});
    // At once after its last use, and after a pause; a read, and what must not run twice.
    for (const int pause : {0, 600}) {
        for (const QString& statement : {ask, change}) {
            readRows(*run(*open(), ask));
            const quint16 port = endpoint.port();
            endpoint.stop();
            options.port = port;
            endpoint.start(options);
            endpoint.resetCounters();
            std::this_thread::sleep_for(std::chrono::milliseconds(pause));
            run(*open(), statement);
            EXPECT_EQ(endpoint.statements(), QStringList(statement)) << pause;
        }
    }
}

}  // namespace
}  // namespace zov
