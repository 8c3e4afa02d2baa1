// The wire endpoint as a real driver sees it: FreeTDS through unixODBC on one side, scripted
// answers on the other. What holds here holds for every test that goes through the endpoint.
#include "support/tds_endpoint/tds_endpoint.h"
#include "data/base/field_text.h"
#include "support/tds_endpoint/scripted_provider.h"
#include "support/tds_endpoint/tds_rpc.h"

#include <QFile>

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include <chrono>
#include <thread>

namespace zov {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

const char* const driverFiles[] = {"/usr/lib/x86_64-linux-gnu/odbc/libtdsodbc.so",
                                   "/usr/lib/aarch64-linux-gnu/odbc/libtdsodbc.so",
                                   "/usr/lib/odbc/libtdsodbc.so", "/usr/lib64/libtdsodbc.so.0"};

QString freeTdsDriver() {
    for (const char* file : driverFiles)
        if (QFile::exists(QLatin1String(file))) return QLatin1String(file);
    return {};
}

QString fromWide(const SQLWCHAR* text, qsizetype length) {
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), length);
}

struct Diagnosis {
    std::string state;
    int native = 0;
    std::string text;
};

std::vector<Diagnosis> diagnosesOf(SQLSMALLINT kind, SQLHANDLE handle) {
    std::vector<Diagnosis> all;
    SQLWCHAR state[6], text[4000];
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    for (SQLSMALLINT i = 1;
         SQL_SUCCEEDED(SQLGetDiagRecW(kind, handle, i, state, &native, text, 4000, &length)); ++i)
        all.push_back(
            {fromWide(state, 5).toStdString(), int(native), fromWide(text, length).toStdString()});
    return all;
}

/// A connection and a statement of the ODBC interface.
class Odbc {
 public:
    ~Odbc() {
        if (statement) SQLFreeHandle(SQL_HANDLE_STMT, statement);
        if (connection) {
            SQLDisconnect(connection);
            SQLFreeHandle(SQL_HANDLE_DBC, connection);
        }
        if (environment) SQLFreeHandle(SQL_HANDLE_ENV, environment);
    }

    bool connect(quint16 port, const QString& more = {}) {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
        SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, SQLPOINTER(SQL_OV_ODBC3), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
        SQLSetConnectAttr(connection, SQL_ATTR_LOGIN_TIMEOUT, SQLPOINTER(10), 0);
        QString text = QStringLiteral(
                           "Driver=%1;Server=127.0.0.1;Port=%2;TDS_Version=7.4;"
                           "ClientCharset=UTF-8;")
                           .arg(freeTdsDriver())
                           .arg(port);
        if (!more.contains(QLatin1String("UID="))) text += QStringLiteral("UID=sa;PWD=secret;");
        text += more;
        const SQLRETURN result =
            SQLDriverConnectW(connection, nullptr, reinterpret_cast<SQLWCHAR*>(text.data()),
                              SQLSMALLINT(text.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
        if (!SQL_SUCCEEDED(result)) {
            loginFaults = diagnosesOf(SQL_HANDLE_DBC, connection);
            return false;
        }
        SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
        return true;
    }

    SQLRETURN execute(QString text) {
        return SQLExecDirectW(statement, reinterpret_cast<SQLWCHAR*>(text.data()),
                              SQLINTEGER(text.size()));
    }
    SQLRETURN prepare(QString text) {
        return SQLPrepareW(statement, reinterpret_cast<SQLWCHAR*>(text.data()),
                           SQLINTEGER(text.size()));
    }
    /// The cell of the current row as text, "NULL" for a null.
    std::string cell(int column) {
        QString whole;
        std::vector<SQLWCHAR> part(1 << 20);
        // Bounded: of a sql_variant the driver reports more data for ever.
        for (int i = 0; i < 200; ++i) {
            SQLLEN length = 0;
            const SQLRETURN result =
                SQLGetData(statement, SQLUSMALLINT(column), SQL_C_WCHAR, part.data(),
                           SQLLEN(part.size() * sizeof(SQLWCHAR)), &length);
            if (!SQL_SUCCEEDED(result)) break;
            if (length == SQL_NULL_DATA) return "NULL";
            const qsizetype room = qsizetype(part.size()) - 1;
            whole += fromWide(
                part.data(), length == SQL_NO_TOTAL ? room : std::min<qsizetype>(room, length / 2));
            if (result == SQL_SUCCESS || (length != SQL_NO_TOTAL && length / 2 <= room)) break;
        }
        return whole.toStdString();
    }
    QByteArray bytes(int column) {
        QByteArray whole;
        std::vector<char> part(1 << 20);
        for (int i = 0; i < 200; ++i) {
            SQLLEN length = 0;
            const SQLRETURN result = SQLGetData(statement, SQLUSMALLINT(column), SQL_C_BINARY,
                                                part.data(), SQLLEN(part.size()), &length);
            if (!SQL_SUCCEEDED(result) || length == SQL_NULL_DATA) break;
            const auto room = qsizetype(part.size());
            whole.append(part.data(),
                         length == SQL_NO_TOTAL ? room : std::min<qsizetype>(room, length));
            if (result == SQL_SUCCESS) break;
        }
        return whole;
    }
    std::vector<Diagnosis> faults() { return diagnosesOf(SQL_HANDLE_STMT, statement); }
    Diagnosis fault() {
        const std::vector<Diagnosis> all = faults();
        return all.empty() ? Diagnosis() : all.front();
    }
    int columnCount() {
        SQLSMALLINT count = 0;
        SQLNumResultCols(statement, &count);
        return count;
    }
    qint64 rowCount() {
        SQLLEN count = 0;
        SQLRowCount(statement, &count);
        return count;
    }
    std::string database() {
        SQLWCHAR name[200];
        SQLINTEGER length = 0;
        SQLGetConnectAttrW(connection, SQL_ATTR_CURRENT_CATALOG, name, sizeof name, &length);
        return fromWide(name, length / 2).toStdString();
    }

    SQLHENV environment = nullptr;
    SQLHDBC connection = nullptr;
    SQLHSTMT statement = nullptr;
    std::vector<Diagnosis> loginFaults;
};

ColumnInfo column(SqlType type, int size = 0, int precision = 0, int scale = 0) {
    return {QStringLiteral("value"), type, size, precision, scale, true};
}

qint64 ticks(const char* iso) {
    qint64 value = 0;
    qint16 offset = 0;
    EXPECT_TRUE(parseIsoTicks(iso, qsizetype(std::strlen(iso)), value, offset)) << iso;
    return value;
}

ScriptedAnswer oneResult(std::vector<ColumnInfo> columns, qint64 rowCount,
                         std::function<void(RowStore&, qint64)> fill) {
    ScriptedAnswer answer;
    answer.results.push_back({std::move(columns), rowCount, std::move(fill), -1, {}, {}});
    return answer;
}

ScriptedAnswer numbers(qint64 rowCount) {
    return oneResult({{QStringLiteral("n"), SqlType::Int, 0, 0, 0, false}}, rowCount,
                     [](RowStore& rows, qint64 row) { rows.column(0).appendInteger(row); });
}

class TdsEndpointTest : public ::testing::Test {
 protected:
    void SetUp() override {
        if (freeTdsDriver().isEmpty()) GTEST_SKIP() << "FreeTDS' ODBC driver isn't installed";
        options.provider = &provider;
        options.password = QStringLiteral("secret");
        endpoint.start(options);
    }
    void connect(const QString& more = {}) {
        ASSERT_TRUE(odbc.connect(endpoint.port(), more))
            << (odbc.loginFaults.empty() ? std::string() : odbc.loginFaults[0].text);
    }

    ScriptedProvider provider;
    TdsEndpointOptions options;
    TdsEndpoint endpoint;
    Odbc odbc;
};

struct TypeCase {
    const char* name;
    ColumnInfo column;
    std::function<void(ColumnCells&)> fill;
    int sqlType;
    const char* text;  ///< as the driver writes it, its own habits included
};

void PrintTo(const TypeCase& type, std::ostream* out) {
    *out << type.name;
}

std::function<void(ColumnCells&)> integer(qint64 value) {
    return [value](ColumnCells& cells) { cells.appendInteger(value); };
}
std::function<void(ColumnCells&)> real(double value) {
    return [value](ColumnCells& cells) { cells.appendReal(value); };
}
std::function<void(ColumnCells&)> text(const char16_t* value) {
    return [value](ColumnCells& cells) { cells.appendText(value); };
}
std::function<void(ColumnCells&)> raw(const char* hex) {
    return [hex](ColumnCells& cells) {
        const QByteArray bytes = QByteArray::fromHex(hex);
        cells.appendBytes(bytes.constData(), bytes.size());
    };
}
std::function<void(ColumnCells&)> moment(const char* iso) {
    return [iso](ColumnCells& cells) { cells.appendInteger(ticks(iso)); };
}
std::function<void(ColumnCells&)> offsetMoment(const char* iso, qint16 minutes) {
    return [iso, minutes](ColumnCells& cells) { cells.appendTicksOffset(ticks(iso), minutes); };
}

constexpr int UnexpectedEnd = 20017;  // the driver's own number for a connection that went
constexpr int TypeTime = -154, TypeOffset = -155, TypeXml = -152, TypeVariant = -150;

const TypeCase typeCases[] = {
    {"BitTrue", column(SqlType::Bit), integer(1), SQL_BIT, "1"},
    {"BitFalse", column(SqlType::Bit), integer(0), SQL_BIT, "0"},
    {"TinyInt", column(SqlType::TinyInt), integer(255), SQL_TINYINT, "255"},
    {"SmallInt", column(SqlType::SmallInt), integer(-32768), SQL_SMALLINT, "-32768"},
    {"Int", column(SqlType::Int), integer(-2147483647 - 1), SQL_INTEGER, "-2147483648"},
    {"BigInt", column(SqlType::BigInt), integer(9223372036854775807), SQL_BIGINT,
     "9223372036854775807"},
    {"Decimal5", column(SqlType::Decimal, 0, 5, 2), integer(-12345), SQL_NUMERIC, "-123.45"},
    {"Numeric18", column(SqlType::Numeric, 0, 18, 0), integer(999999999999999999), SQL_NUMERIC,
     "999999999999999999"},
    {"DecimalUnderOne", column(SqlType::Decimal, 0, 10, 4), integer(-5), SQL_NUMERIC, "-0.0005"},
    {"Numeric38", column(SqlType::Numeric, 0, 38, 0),
     text(u"99999999999999999999999999999999999999"), SQL_NUMERIC,
     "99999999999999999999999999999999999999"},
    {"Decimal38OfTen", column(SqlType::Decimal, 0, 38, 10), text(u"-1234567890123456789.5"),
     SQL_NUMERIC, "-1234567890123456789.5000000000"},
    {"Decimal28AllFraction", column(SqlType::Decimal, 0, 28, 28),
     text(u"0.0000000000000000000000000001"), SQL_NUMERIC, "0.0000000000000000000000000001"},
    {"IdentSeed", column(SqlType::Numeric, 0, 38, 0), text(u"1"), SQL_NUMERIC, "1"},
    {"Money", column(SqlType::Money, 0, 19, 4), integer(-9223372036854775807 - 1), SQL_DECIMAL,
     "-922337203685477.5808"},
    {"SmallMoney", column(SqlType::SmallMoney, 0, 10, 4), integer(2147483647), SQL_DECIMAL,
     "214748.3647"},
    {"Real", column(SqlType::Real), real(1.5), SQL_REAL, "1.5"},
    {"Float", column(SqlType::Float), real(-2.25e300), SQL_DOUBLE, "-2.25e+300"},
    {"DateFirst", column(SqlType::Date), moment("0001-01-01"), SQL_TYPE_DATE, "1-01-01"},
    {"DateLast", column(SqlType::Date), moment("9999-12-31"), SQL_TYPE_DATE, "9999-12-31"},
    {"Time0", column(SqlType::Time, 0, 0, 0), moment("23:59:59"), TypeTime, "23:59:59"},
    {"Time3", column(SqlType::Time, 0, 0, 3), moment("01:02:03.004"), TypeTime, "01:02:03.004"},
    {"Time7", column(SqlType::Time, 0, 0, 7), moment("23:59:59.9999999"), TypeTime,
     "23:59:59.9999999"},
    {"SmallDateTime", column(SqlType::SmallDateTime), moment("2079-06-06 23:59:00"),
     SQL_TYPE_TIMESTAMP, "2079-06-06 23:59:00"},
    {"DateTimeOld", column(SqlType::DateTime), moment("1753-01-01 00:00:00"), SQL_TYPE_TIMESTAMP,
     "1753-01-01 00:00:00.000"},
    {"DateTimeThirds", column(SqlType::DateTime), moment("2024-02-29 12:34:56.997"),
     SQL_TYPE_TIMESTAMP, "2024-02-29 12:34:56.997"},
    {"DateTimeRoundsUp", column(SqlType::DateTime), moment("1999-12-31 23:59:59.999"),
     SQL_TYPE_TIMESTAMP, "2000-01-01 00:00:00.000"},
    {"DateTime2Of7", column(SqlType::DateTime2, 0, 0, 7), moment("0001-01-01 00:00:00.0000001"),
     SQL_TYPE_TIMESTAMP, "1-01-01 00:00:00.0000001"},
    {"DateTime2Of0", column(SqlType::DateTime2, 0, 0, 0), moment("2024-02-29 23:59:59"),
     SQL_TYPE_TIMESTAMP, "2024-02-29 23:59:59"},
    {"DateTimeOffset", column(SqlType::DateTimeOffset, 0, 0, 3),
     offsetMoment("2024-01-01 00:30:00.125", 120), TypeOffset, "2024-01-01 00:30:00.125 +02:00"},
    {"DateTimeOffsetWest", column(SqlType::DateTimeOffset, 0, 0, 0),
     offsetMoment("2024-01-01 20:00:00", -570), TypeOffset, "2024-01-01 20:00:00 -09:30"},
    {"Char", column(SqlType::Char, 5), text(u"ab"), SQL_CHAR, "ab   "},
    {"VarChar", column(SqlType::VarChar, 30), text(u"caf\u00e9 \u20ac \u0160"), SQL_VARCHAR,
     "caf\u00e9 \u20ac \u0160"},
    {"VarCharOtherScripts", column(SqlType::VarChar, 30), text(u"\u0416 \u4e2d \U0001F600."),
     SQL_VARCHAR, "? ? ?."},
    {"VarCharEmpty", column(SqlType::VarChar, 30), text(u""), SQL_VARCHAR, ""},
    {"VarChar8000", column(SqlType::VarChar, 8000), text(u"x"), SQL_VARCHAR, "x"},
    {"VarCharMax", column(SqlType::VarChar, -1), text(u"\u00fcber"), SQL_VARCHAR, "\u00fcber"},
    {"Text", column(SqlType::Text), text(u"old \u2014 text"), SQL_LONGVARCHAR, "old \u2014 text"},
    {"NChar", column(SqlType::NChar, 4), text(u"\u0416\u0437"), SQL_WCHAR, "\u0416\u0437  "},
    {"NVarChar", column(SqlType::NVarChar, 40), text(u"\u0416 \u4e2d \U0001F600 '\r\n"),
     SQL_WVARCHAR, "\u0416 \u4e2d \U0001F600 '\r\n"},
    {"NVarChar4000", column(SqlType::NVarChar, 4000), text(u"y"), SQL_WVARCHAR, "y"},
    {"NVarCharMax", column(SqlType::NVarChar, -1), text(u"\U0001F600"), SQL_WVARCHAR, "\U0001F600"},
    {"NVarCharMaxEmpty", column(SqlType::NVarChar, -1), text(u""), SQL_WVARCHAR, ""},
    {"NVarCharOfUnknownSize", column(SqlType::NVarChar, 0), text(u"any"), SQL_WVARCHAR, "any"},
    {"NText", column(SqlType::NText), text(u"\u4e2d"), SQL_WLONGVARCHAR, "\u4e2d"},
    {"Xml", column(SqlType::Xml), text(u"<a b=\"\u0416\"/>"), TypeXml, "<a b=\"\u0416\"/>"},
    {"Binary", column(SqlType::Binary, 4), raw("01FF"), SQL_BINARY, "01ff0000"},
    {"VarBinary", column(SqlType::VarBinary, 10), raw("00DEADBEEF"), SQL_VARBINARY, "00deadbeef"},
    {"VarBinaryMax", column(SqlType::VarBinary, -1), raw("CAFE"), SQL_VARBINARY, "cafe"},
    {"Image", column(SqlType::Image), raw("00"), SQL_LONGVARBINARY, "00"},
    {"RowVersion", column(SqlType::RowVersion), raw("00000000000007D1"), SQL_BINARY,
     "00000000000007d1"},
    {"UniqueIdentifier", column(SqlType::UniqueIdentifier), raw("00112233445566778899AABBCCDDEEFF"),
     SQL_GUID, "00112233-4455-6677-8899-AABBCCDDEEFF"},
    {"VariantText", column(SqlType::Variant), text(u"16.0.4085.2"), TypeVariant, "16.0.4085.2"},
    {"VariantInt", column(SqlType::Variant), text(u"-3"), TypeVariant, "-3"},
};

class TdsEndpointTypeTest : public TdsEndpointTest,
                            public ::testing::WithParamInterface<TypeCase> {};

TEST_P(TdsEndpointTypeTest, ArrivesAsItIsAndAsNull) {
    const TypeCase& type = GetParam();
    ColumnInfo notNull = type.column;
    notNull.nullable = false;
    notNull.name = QStringLiteral("gr\u00f6\u00dfe \u4e2d");
    provider.answer(QStringLiteral("q"),
                    oneResult({type.column, notNull}, 2, [&type](RowStore& rows, qint64 row) {
                        if (row == 0)
                            rows.column(0).appendNull();
                        else
                            type.fill(rows.column(0));
                        type.fill(rows.column(1));
                    }));
    connect();
    ASSERT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS) << odbc.fault().text;
    SQLWCHAR name[100];
    SQLSMALLINT nameLength = 0, sqlType = 0, digits = 0, nullable = 0;
    SQLULEN size = 0;
    SQLDescribeColW(odbc.statement, 2, name, 100, &nameLength, &sqlType, &size, &digits, &nullable);
    EXPECT_EQ(sqlType, type.sqlType);
    EXPECT_EQ(fromWide(name, nameLength), notNull.name);
    if (type.column.size > 0) {
        EXPECT_EQ(int(size), type.column.size);
    }
    if (type.sqlType == SQL_DECIMAL || type.sqlType == SQL_NUMERIC) {
        EXPECT_EQ(int(size), type.column.precision);
        EXPECT_EQ(digits, type.column.scale);
    }
    // The null first: what a null's length field does to the columns behind it would show.
    ASSERT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(odbc.cell(1), "NULL");
    EXPECT_EQ(odbc.cell(2), type.text);
    ASSERT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(odbc.cell(1), type.text);
    EXPECT_EQ(odbc.cell(2), type.text);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_NO_DATA);
}

INSTANTIATE_TEST_SUITE_P(EveryType, TdsEndpointTypeTest, ::testing::ValuesIn(typeCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TdsEndpointTest, LongTextsAndBinariesArriveWhole) {
    constexpr qsizetype Length = 3'000'001;
    QString wide(Length, u'x');
    for (qsizetype i = 0; i < Length; i += 7) wide[i] = QChar(char16_t(0x400 + i % 200));
    QString narrow(Length, u'a');
    for (qsizetype i = 0; i < Length; i += 5) narrow[i] = QChar(char16_t(0xE0 + i % 20));
    QByteArray raw(Length, '\0');
    for (qsizetype i = 0; i < Length; ++i) raw[i] = char(i * 31 >> 3);
    provider.answer(
        QStringLiteral("q"),
        oneResult({column(SqlType::NVarChar, -1), column(SqlType::VarChar, -1),
                   column(SqlType::NText), column(SqlType::Text), column(SqlType::VarBinary, -1),
                   column(SqlType::Image), column(SqlType::Xml), column(SqlType::Int)},
                  2, [&](RowStore& rows, qint64 row) {
                      for (int i : {0, 2, 6}) rows.column(i).appendText(wide);
                      for (int i : {1, 3}) rows.column(i).appendText(narrow);
                      for (int i : {4, 5}) rows.column(i).appendBytes(raw.constData(), raw.size());
                      rows.column(7).appendInteger(row);
                  }));
    connect();
    ASSERT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS);
    for (const char* number : {"0", "1"}) {
        ASSERT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
        // Not EXPECT_EQ: a failure would print megabytes.
        for (int i : {1, 3, 7}) EXPECT_TRUE(odbc.cell(i) == wide.toStdString()) << "column " << i;
        for (int i : {2, 4}) EXPECT_TRUE(odbc.cell(i) == narrow.toStdString()) << "column " << i;
        for (int i : {5, 6}) EXPECT_TRUE(odbc.bytes(i) == raw) << "column " << i;
        EXPECT_EQ(odbc.cell(8), number);
    }
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_NO_DATA);
}

// Row lengths of all kinds against packet ends of all kinds.
TEST_F(TdsEndpointTest, ManyRowsCrossPacketsOfAnySize) {
    constexpr qint64 Count = 20'000;
    const QString filler(4000, u'z');
    provider.answer(QStringLiteral("q"),
                    oneResult({column(SqlType::Int), column(SqlType::NVarChar, 4000),
                               column(SqlType::Decimal, 0, 18, 2)},
                              Count, [&](RowStore& rows, qint64 row) {
                                  rows.column(0).appendInteger(row);
                                  rows.column(1).appendText(QStringView(filler).left(row % 211));
                                  rows.column(2).appendInteger(row * 3);
                              }));
    for (const int packetSize : {512, 1000, 4096, 32'767}) {
        Odbc client;
        ASSERT_TRUE(
            client.connect(endpoint.port(), QStringLiteral("PacketSize=%1;").arg(packetSize)));
        ASSERT_EQ(client.execute(QStringLiteral("q")), SQL_SUCCESS);
        SQLINTEGER number = 0;
        std::vector<SQLWCHAR> text(4001);
        SQLLEN numberLength = 0, textLength = 0;
        SQLBindCol(client.statement, 1, SQL_C_LONG, &number, 0, &numberLength);
        SQLBindCol(client.statement, 2, SQL_C_WCHAR, text.data(), SQLLEN(text.size() * 2),
                   &textLength);
        qint64 row = 0;
        for (; SQLFetch(client.statement) == SQL_SUCCESS; ++row) {
            ASSERT_EQ(number, row);
            ASSERT_EQ(textLength, row % 211 * 2);
        }
        EXPECT_EQ(row, Count) << "packets of " << packetSize;
    }
}

TEST_F(TdsEndpointTest, ResultsOfABatchComeInTheirOrder) {
    ScriptedAnswer answer = numbers(2);
    ScriptedResult inserted;
    inserted.affectedRows = 5;
    ScriptedResult silent;
    answer.results.push_back(inserted);
    answer.results.push_back(silent);
    answer.results.push_back(numbers(0).results[0]);
    answer.results.push_back(numbers(1).results[0]);
    provider.answer(QStringLiteral("q"), answer);
    connect();
    ASSERT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS);
    ASSERT_EQ(odbc.columnCount(), 1);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_NO_DATA);
    ASSERT_EQ(SQLMoreResults(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(odbc.columnCount(), 0);
    EXPECT_EQ(odbc.rowCount(), 5);
    // The driver may pass over a statement that reports nothing.
    SQLRETURN more = SQLMoreResults(odbc.statement);
    if (odbc.columnCount() == 0) more = SQLMoreResults(odbc.statement);
    ASSERT_EQ(more, SQL_SUCCESS);
    EXPECT_EQ(odbc.columnCount(), 1);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_NO_DATA);
    ASSERT_EQ(SQLMoreResults(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(odbc.cell(1), "0");
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_NO_DATA);
    EXPECT_EQ(SQLMoreResults(odbc.statement), SQL_NO_DATA);
    EXPECT_EQ(endpoint.counters().batches, 1);
}

TEST_F(TdsEndpointTest, PrintedMessagesReachTheClient) {
    ScriptedAnswer answer = numbers(1);
    answer.results[0].messages = {{0, 0, 1, QStringLiteral("before \u0416")},
                                  {10, 50'001, 7, QStringLiteral("a warning")}};
    provider.answer(QStringLiteral("q"), answer);
    ScriptedAnswer last;
    last.lastMessages = {{0, 0, 1, QStringLiteral("only printed")}};
    provider.answer(QStringLiteral("print"), last);
    connect();
    ASSERT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS_WITH_INFO);
    // The driver manager puts the higher number first.
    const std::vector<Diagnosis> said = odbc.faults();
    ASSERT_EQ(said.size(), 2u);
    EXPECT_TRUE(said[0].text.ends_with("a warning")) << said[0].text;
    EXPECT_EQ(said[0].native, 50'001);
    EXPECT_TRUE(said[1].text.ends_with("before \u0416")) << said[1].text;
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    SQLCloseCursor(odbc.statement);
    odbc.execute(QStringLiteral("print"));
    EXPECT_TRUE(odbc.fault().text.ends_with("only printed"));
}

TEST_F(TdsEndpointTest, ErrorsKeepNumberStateAndWholeText) {
    const QString longText(1500, u'\u0416');
    struct Case {
        DbError error;
        const char* state;
        int native;
    };
    const Case cases[] = {
        {DbError(ado_error::NoSuchTable, QStringLiteral("Invalid object name 'x'."), {}, 208),
         "42S02", 208},
        {DbError(ado_error::NoSuchTable, QStringLiteral("no number of its own")), "42S02", 208},
        {DbError(ado_error::SyntaxError, QStringLiteral("Incorrect syntax near ')'."), {}, 102),
         "42000", 102},
        {DbError(ado_error::Unspecified, longText, {}, 50'000), "42000", 50'000},
        {DbError(ado_error::IntegrityViolation, QStringLiteral("Violation of PRIMARY KEY"), {},
                 2627),
         "23000", 2627},
    };
    connect();
    for (const Case& expected : cases) {
        ScriptedAnswer answer;
        answer.results.push_back({});
        answer.results[0].error = expected.error;
        provider.answer(QStringLiteral("q"), answer);
        EXPECT_EQ(odbc.execute(QStringLiteral("q")), SQL_ERROR);
        const Diagnosis fault = odbc.fault();
        EXPECT_EQ(fault.state, expected.state);
        EXPECT_EQ(fault.native, expected.native);
        EXPECT_TRUE(fault.text.ends_with(expected.error.description.toStdString())) << fault.text;
    }
    provider.answer(QStringLiteral("good"), numbers(1));
    EXPECT_EQ(odbc.execute(QStringLiteral("good")), SQL_SUCCESS) << "the session goes on";
}

TEST_F(TdsEndpointTest, AnErrorInALaterStatementLeavesTheFirstResult) {
    ScriptedAnswer answer = numbers(3);
    answer.results.push_back({});
    answer.results[1].error = DbError(ado_error::NoSuchTable, QStringLiteral("gone"), {}, 208);
    provider.answer(QStringLiteral("q"), answer);
    connect();
    ASSERT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_NO_DATA);
    EXPECT_EQ(SQLMoreResults(odbc.statement), SQL_ERROR);
    EXPECT_EQ(odbc.fault().native, 208);
}

TEST_F(TdsEndpointTest, AnErrorAfterRowsEndsTheResult) {
    TdsFaults faults;
    faults.errorAfterRows = 10;
    faults.onlyStatementsWith = QStringLiteral("bad");
    endpoint.setFaults(faults);
    provider.answer(QStringLiteral("bad"), numbers(1000));
    provider.answer(QStringLiteral("good"), numbers(1000));
    connect();
    for (const auto& [statement, expected] : {std::pair("bad", 10), std::pair("good", 1000)}) {
        ASSERT_TRUE(SQL_SUCCEEDED(odbc.execute(QLatin1String(statement))));
        int rows = 0;
        SQLRETURN result;
        while ((result = SQLFetch(odbc.statement)) == SQL_SUCCESS) ++rows;
        EXPECT_EQ(rows, expected) << statement;
        EXPECT_EQ(result, rows == 10 ? SQL_ERROR : SQL_NO_DATA);
        if (result == SQL_ERROR) {
            EXPECT_EQ(odbc.fault().native, faults.errorNumber);
        }
        SQLCloseCursor(odbc.statement);
    }
}

TEST_F(TdsEndpointTest, ACellThatDoesNotFitItsColumnIsAnError) {
    provider.answer(QStringLiteral("long"),
                    oneResult({column(SqlType::NVarChar, 3)}, 2, [](RowStore& rows, qint64 row) {
                        rows.column(0).appendText(row ? u"four" : u"two");
                    }));
    ColumnInfo never = column(SqlType::Int);
    never.nullable = false;
    provider.answer(QStringLiteral("null"), oneResult({never}, 1, [](RowStore& rows, qint64) {
                        rows.column(0).appendNull();
                    }));
    connect();
    ASSERT_TRUE(SQL_SUCCEEDED(odbc.execute(QStringLiteral("long"))));
    ASSERT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
    EXPECT_EQ(odbc.cell(1), "two");
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_ERROR);
    EXPECT_NE(odbc.fault().text.find("holds 4 characters, more than its size 3"),
              std::string::npos);
    SQLCloseCursor(odbc.statement);
    if (SQL_SUCCEEDED(odbc.execute(QStringLiteral("null")))) {
        EXPECT_EQ(SQLFetch(odbc.statement), SQL_ERROR);
    }
    EXPECT_NE(odbc.fault().text.find("holds a null"), std::string::npos);
}

TEST_F(TdsEndpointTest, LoginsAreChecked) {
    struct Case {
        const char* name;
        const char* connection;
        bool refuse;
        int native;  ///< 0: let in
    };
    const Case cases[] = {
        {"good", "UID=sa;PWD=secret", false, 0},
        {"user in another case", "UID=SA;PWD=secret", false, 0},
        {"wrong password", "UID=sa;PWD=Secret", false, 18456},
        {"empty password", "UID=sa;PWD=", false, 18456},
        {"unknown user", "UID=somebody;PWD=secret", false, 18456},
        {"refused on purpose", "UID=sa;PWD=secret", true, 18456},
        {"unknown database", "UID=sa;PWD=secret;Database=Nowhere", false, 4060},
    };
    for (const Case& login : cases) {
        SCOPED_TRACE(login.name);
        TdsFaults faults;
        faults.refuseLogin = login.refuse;
        faults.missingDatabases = {QStringLiteral("nowhere")};
        endpoint.setFaults(faults);
        Odbc client;
        EXPECT_EQ(client.connect(endpoint.port(), QLatin1String(login.connection)),
                  login.native == 0);
        bool told = login.native == 0;
        for (const Diagnosis& fault : client.loginFaults)
            told = told || fault.native == login.native;
        EXPECT_TRUE(told);
    }
    EXPECT_EQ(endpoint.counters().logins, 2);
    EXPECT_EQ(endpoint.counters().refusedLogins, 5);
}

TEST_F(TdsEndpointTest, PasswordsOfAnyLettersAreRead) {
    TdsEndpoint other;
    options.password = QStringLiteral("p\u00e4ss \u0416\u4e2d'\"!");
    other.start(options);
    Odbc client;
    EXPECT_TRUE(client.connect(other.port(), QStringLiteral("UID=sa;PWD=") + options.password));
}

TEST_F(TdsEndpointTest, TheDatabaseFollowsLoginAndUse) {
    TdsFaults faults;
    faults.missingDatabases = {QStringLiteral("nowhere")};
    endpoint.setFaults(faults);
    for (const char* use :
         {"USE [Sales]", "use \"Two words\"", "-- first\r\nUSE [od]]d]; SELECT 1"})
        provider.answer(QLatin1String(use), {});
    connect(QStringLiteral("Database=Shop;"));
    EXPECT_EQ(provider.lastDatabase(), QStringLiteral("Shop"));
    EXPECT_EQ(odbc.database(), "Shop");
    odbc.execute(QStringLiteral("USE [Sales]"));
    EXPECT_EQ(odbc.database(), "Sales");
    odbc.execute(QStringLiteral("use \"Two words\""));
    EXPECT_EQ(odbc.database(), "Two words");
    odbc.execute(QStringLiteral("-- first\r\nUSE [od]]d]; SELECT 1"));
    EXPECT_EQ(odbc.database(), "od]d");
    EXPECT_EQ(odbc.execute(QStringLiteral("USE Nowhere")), SQL_ERROR);
    EXPECT_EQ(odbc.fault().native, 911);
    EXPECT_EQ(odbc.database(), "od]d");
}

TEST_F(TdsEndpointTest, ADroppedConnectionIsNoticedAfterItsRows) {
    TdsFaults faults;
    faults.dropAfterRows = 1500;
    endpoint.setFaults(faults);
    provider.answer(QStringLiteral("q"), numbers(100'000));
    connect();
    ASSERT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS);
    int rows = 0;
    SQLRETURN result;
    while ((result = SQLFetch(odbc.statement)) == SQL_SUCCESS) ++rows;
    EXPECT_EQ(rows, 1500);
    EXPECT_EQ(result, SQL_ERROR);
    EXPECT_EQ(odbc.fault().native, UnexpectedEnd) << odbc.fault().text;
    endpoint.setFaults({});
    Odbc again;
    EXPECT_TRUE(again.connect(endpoint.port()));
}

TEST_F(TdsEndpointTest, ATimeOutIsAnAttentionAndTheSessionGoesOn) {
    TdsFaults faults;
    faults.delayMilliseconds = 30'000;
    faults.onlyStatementsWith = QStringLiteral("slow");
    endpoint.setFaults(faults);
    provider.answer(QStringLiteral("slow"), numbers(1));
    provider.answer(QStringLiteral("quick"), numbers(1));
    connect();
    const auto begin = Clock::now();
    SQLSetStmtAttr(odbc.statement, SQL_ATTR_QUERY_TIMEOUT, SQLPOINTER(1), 0);
    EXPECT_EQ(odbc.execute(QStringLiteral("slow")), SQL_ERROR);
    EXPECT_EQ(odbc.fault().state, "HYT00");
    EXPECT_LT(Clock::now() - begin, 10s);
    EXPECT_EQ(endpoint.counters().attentions, 1);
    ASSERT_EQ(odbc.execute(QStringLiteral("quick")), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
}

TEST_F(TdsEndpointTest, ACancelFromAnotherThreadReachesTheProvider) {
    ScriptedAnswer endless;
    endless.untilCancelled = true;
    provider.answer(QStringLiteral("endless"), endless);
    provider.answer(QStringLiteral("quick"), numbers(1));
    connect();
    std::thread canceller([this] {
        for (int i = 0; i < 500 && provider.commands().empty(); ++i)
            std::this_thread::sleep_for(10ms);
        std::this_thread::sleep_for(100ms);
        SQLCancel(odbc.statement);
    });
    EXPECT_EQ(odbc.execute(QStringLiteral("endless")), SQL_ERROR);
    canceller.join();
    EXPECT_EQ(odbc.fault().state, "HY008");
    EXPECT_GE(provider.cancels(), 1);
    EXPECT_EQ(odbc.execute(QStringLiteral("quick")), SQL_SUCCESS);
}

TEST_F(TdsEndpointTest, AResultGivenUpHalfwayLeavesAUsableSession) {
    provider.answer(QStringLiteral("many"), numbers(3'000'000));
    provider.answer(QStringLiteral("quick"), numbers(1));
    connect();
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(odbc.execute(QStringLiteral("many")), SQL_SUCCESS);
        for (int row = 0; row < i * 100; ++row) ASSERT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
        SQLCloseCursor(odbc.statement);
        ASSERT_EQ(odbc.execute(QStringLiteral("quick")), SQL_SUCCESS) << odbc.fault().text;
        ASSERT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
        EXPECT_EQ(odbc.cell(1), "0");
        EXPECT_EQ(SQLFetch(odbc.statement), SQL_NO_DATA);
        SQLCloseCursor(odbc.statement);
    }
    EXPECT_GE(endpoint.counters().attentions, 1);
}

TEST_F(TdsEndpointTest, ParametersArriveAsLiterals) {
    provider.otherwise = [](const CommandSpec&) { return numbers(1); };
    connect();
    std::u16string name = u"O'Hara \u0416";
    SQLLEN nameLength = SQLLEN(name.size() * 2), nullLength = SQL_NULL_DATA;
    SQLINTEGER number = -7;
    double weight = 0.5;
    SQLCHAR binary[] = {0x01, 0xFF};
    SQLLEN binaryLength = 2;
    SQL_TIMESTAMP_STRUCT time{2024, 2, 29, 12, 34, 56, 0};
    const auto bind = [&](int place, int cType, int sqlType, int size, void* value,
                          SQLLEN* length) {
        SQLBindParameter(odbc.statement, SQLUSMALLINT(place), SQL_PARAM_INPUT, SQLSMALLINT(cType),
                         SQLSMALLINT(sqlType), SQLULEN(size), 0, value, 0, length);
    };
    bind(1, SQL_C_WCHAR, SQL_WVARCHAR, 40, name.data(), &nameLength);
    bind(2, SQL_C_LONG, SQL_INTEGER, 0, &number, nullptr);
    bind(3, SQL_C_DOUBLE, SQL_DOUBLE, 0, &weight, nullptr);
    bind(4, SQL_C_LONG, SQL_INTEGER, 0, &number, &nullLength);
    bind(5, SQL_C_BINARY, SQL_VARBINARY, 10, binary, &binaryLength);
    bind(6, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 23, &time, nullptr);
    const QString statement = QStringLiteral(
        "SELECT '?', [?] FROM t WHERE a = ? AND b = ? AND c < ? AND d = ? AND e = ? AND f > ?");
    const QString expected = QStringLiteral(
        "SELECT '?', [?] FROM t WHERE a = N'O''Hara \u0416' AND b = -7 AND c < "
        "5.0000000000000000e-01 "
        "AND d = NULL AND e = 0x01FF AND f > N'2024-02-29 12:34:56.000'");
    EXPECT_EQ(odbc.execute(statement), SQL_SUCCESS) << odbc.fault().text;
    EXPECT_EQ(provider.commands().back().text.toStdString(), expected.toStdString());
    SQLCloseCursor(odbc.statement);

    // Prepared once, run twice; the second time with another value.
    ASSERT_EQ(odbc.prepare(statement), SQL_SUCCESS);
    EXPECT_EQ(odbc.columnCount(), 1);
    for (const int value : {1, 2}) {
        number = value;
        ASSERT_EQ(SQLExecute(odbc.statement), SQL_SUCCESS) << odbc.fault().text;
        EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
        EXPECT_TRUE(
            provider.commands().back().text.contains(QStringLiteral("b = %1 AND").arg(value)));
        SQLCloseCursor(odbc.statement);
    }
    EXPECT_GE(endpoint.counters().rpcs, 3);
}

TEST_F(TdsEndpointTest, APreparedStatementThatFailsLeavesAUsableSession) {
    provider.otherwise = [](const CommandSpec& command) {
        if (command.text.contains(QStringLiteral("bad")))
            throw DbError(ado_error::NoSuchTable, QStringLiteral("Invalid object name 'bad'."), {},
                          208);
        return numbers(1);
    };
    connect();
    SQLINTEGER number = 1;
    SQLBindParameter(odbc.statement, 1, SQL_PARAM_INPUT, SQL_C_LONG, SQL_INTEGER, 0, 0, &number, 0,
                     nullptr);
    for (int run = 0; run < 2; ++run) {
        odbc.prepare(QStringLiteral("SELECT * FROM bad WHERE a = ?"));
        EXPECT_EQ(SQLExecute(odbc.statement), SQL_ERROR);
        EXPECT_EQ(odbc.fault().native, 208) << odbc.fault().text;
        odbc.prepare(QStringLiteral("SELECT * FROM good WHERE a = ?"));
        ASSERT_EQ(SQLExecute(odbc.statement), SQL_SUCCESS) << odbc.fault().text;
        EXPECT_EQ(SQLFetch(odbc.statement), SQL_SUCCESS);
        SQLCloseCursor(odbc.statement);
    }
}

TEST_F(TdsEndpointTest, ServerCursorsAreRefusedClearly) {
    provider.otherwise = [](const CommandSpec&) { return numbers(1); };
    connect();
    SQLSetStmtAttr(odbc.statement, SQL_ATTR_CURSOR_TYPE, SQLPOINTER(SQL_CURSOR_DYNAMIC), 0);
    EXPECT_EQ(odbc.execute(QStringLiteral("SELECT 1")), SQL_ERROR);
    bool told = false;
    for (const Diagnosis& fault : odbc.faults())
        told = told || fault.text.ends_with("The endpoint has no server cursors (sp_cursoropen).");
    EXPECT_TRUE(told);
}

TEST_F(TdsEndpointTest, AProcedureGivesItsReturnValueAndOutputs) {
    ScriptedAnswer answer;
    answer.results.push_back({});
    answer.results[0].affectedRows = 2;
    answer.returnValue = -4;
    answer.outputs = {QVariant(), 77, QStringLiteral("out \u0416")};
    provider.answer(QStringLiteral("sp_attach_db"), answer);
    connect();
    SQLINTEGER status = 0, number = 5;
    SQLLEN statusLength = 0, numberLength = 0;
    std::u16string name = u"Shop";
    SQLLEN nameLength = SQLLEN(name.size() * 2);
    SQLWCHAR text[50] = {};
    SQLLEN textLength = SQL_NULL_DATA;
    SQLBindParameter(odbc.statement, 1, SQL_PARAM_OUTPUT, SQL_C_LONG, SQL_INTEGER, 0, 0, &status, 0,
                     &statusLength);
    SQLBindParameter(odbc.statement, 2, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR, 128, 0,
                     name.data(), 0, &nameLength);
    SQLBindParameter(odbc.statement, 3, SQL_PARAM_INPUT_OUTPUT, SQL_C_LONG, SQL_INTEGER, 0, 0,
                     &number, 0, &numberLength);
    SQLBindParameter(odbc.statement, 4, SQL_PARAM_OUTPUT, SQL_C_WCHAR, SQL_WVARCHAR, 40, 0, text,
                     sizeof text, &textLength);
    ASSERT_TRUE(SQL_SUCCEEDED(odbc.execute(QStringLiteral("{?=call sp_attach_db(?,?,?)}"))))
        << odbc.fault().text;
    while (SQLMoreResults(odbc.statement) == SQL_SUCCESS) {
    }
    EXPECT_EQ(status, -4);
    EXPECT_EQ(number, 77);
    EXPECT_EQ(fromWide(text, textLength / 2).toStdString(), "out \u0416");
    const CommandSpec seen = provider.commands().back();
    EXPECT_TRUE(seen.storedProcedure);
    ASSERT_EQ(seen.parameters.size(), 3u);
    EXPECT_EQ(seen.parameters[0].value, QVariant(QStringLiteral("Shop")));
    EXPECT_EQ(seen.parameters[1].value, QVariant(5));
    EXPECT_EQ(seen.parameters[1].direction, 3);
}

TEST_F(TdsEndpointTest, OptionsThatADriverSetsAlwaysSucceed) {
    connect();
    for (const char* batch :
         {"SET NOCOUNT ON", "set textsize 64512\nset ansi_nulls on; SET ARITHABORT OFF",
          "SET TRANSACTION ISOLATION LEVEL READ COMMITTED", "SET DATEFORMAT 'mdy'"})
        EXPECT_NE(odbc.execute(QLatin1String(batch)), SQL_ERROR) << batch;
    for (const char* batch :
         {"SET NOCOUNT ON; DROP TABLE x", "SET @x = 1", "SET IDENTITY_INSERT t ON"})
        EXPECT_EQ(odbc.execute(QLatin1String(batch)), SQL_ERROR) << batch;
}

TEST_F(TdsEndpointTest, TransactionsBecomeStatements) {
    for (const char* batch : {"BEGIN TRANSACTION", "COMMIT TRANSACTION", "ROLLBACK TRANSACTION"})
        provider.answer(QLatin1String(batch), {});
    provider.answer(QStringLiteral("q"), numbers(1));
    connect();
    SQLSetConnectAttr(odbc.connection, SQL_ATTR_AUTOCOMMIT, SQLPOINTER(SQL_AUTOCOMMIT_OFF), 0);
    EXPECT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS);
    SQLCloseCursor(odbc.statement);
    EXPECT_EQ(SQLEndTran(SQL_HANDLE_DBC, odbc.connection, SQL_COMMIT), SQL_SUCCESS);
    EXPECT_EQ(odbc.execute(QStringLiteral("q")), SQL_SUCCESS);
    SQLCloseCursor(odbc.statement);
    EXPECT_EQ(SQLEndTran(SQL_HANDLE_DBC, odbc.connection, SQL_ROLLBACK), SQL_SUCCESS);
    EXPECT_TRUE(endpoint.statements().contains(QStringLiteral("BEGIN TRANSACTION")));
    EXPECT_TRUE(endpoint.statements().contains(QStringLiteral("COMMIT TRANSACTION")));
    EXPECT_TRUE(endpoint.statements().contains(QStringLiteral("ROLLBACK TRANSACTION")));
}

TEST_F(TdsEndpointTest, ManyClientsOfManyEndpointsAreServedAtOnce) {
    provider.answer(QStringLiteral("q"), numbers(20'000));
    std::vector<std::unique_ptr<TdsEndpoint>> endpoints;
    for (int i = 0; i < 3; ++i) {
        endpoints.push_back(std::make_unique<TdsEndpoint>());
        endpoints.back()->start(options);
    }
    std::atomic<int> complete = 0;
    std::vector<std::thread> clients;
    for (int i = 0; i < 12; ++i)
        clients.emplace_back([&, i] {
            Odbc client;
            if (!client.connect(endpoints[size_t(i % 3)]->port())) return;
            for (int run = 0; run < 3; ++run) {
                if (client.execute(QStringLiteral("q")) != SQL_SUCCESS) return;
                int rows = 0;
                while (SQLFetch(client.statement) == SQL_SUCCESS) ++rows;
                if (rows == 20'000) ++complete;
                SQLCloseCursor(client.statement);
            }
        });
    for (std::thread& client : clients) client.join();
    EXPECT_EQ(complete, 36);
    for (const auto& each : endpoints) EXPECT_EQ(each->counters().logins, 4);
}

TEST_F(TdsEndpointTest, StoppingEndsRunningCommands) {
    ScriptedAnswer endless;
    endless.untilCancelled = true;
    provider.answer(QStringLiteral("endless"), endless);
    connect();
    std::thread stopper([this] {
        for (int i = 0; i < 500 && provider.commands().empty(); ++i)
            std::this_thread::sleep_for(10ms);
        endpoint.stop();
    });
    EXPECT_EQ(odbc.execute(QStringLiteral("endless")), SQL_ERROR);
    stopper.join();
    EXPECT_EQ(odbc.fault().native, UnexpectedEnd) << odbc.fault().text;
}

TEST(TdsParameters, LiteralsStandOnlyWhereTheVariableDoes) {
    tds::RpcParameter one, two;
    one.value = qlonglong(1);
    two.value = QStringLiteral("b'@P1");
    const std::vector<tds::RpcParameter> values = {one, two};
    const QStringList names = tds::declaredNames(QStringLiteral("@P1 int,@P2 nvarchar(10)"));
    ASSERT_EQ(names, QStringList({QStringLiteral("@P1"), QStringLiteral("@P2")}));
    struct Case {
        const char* statement;
        const char* expected;
    };
    const Case cases[] = {
        {"a=@P1", "a=1"},
        {"a=@p1+@P2", "a=1+N'b''@P1'"},
        {"@P1,@P10,@P,@P1x,x@P1,@@P1", "1,@P10,@P,@P1x,x@P1,@@P1"},
        {"'@P1' + \"@P1\" + [@P1] + @P1", "'@P1' + \"@P1\" + [@P1] + 1"},
        {"'it''s @P1' @P1", "'it''s @P1' 1"},
        {"-- @P1\n@P1 /* @P1 */ @P1", "-- @P1\n1 /* @P1 */ 1"},
        {"'open @P1", "'open @P1"},
        {"/* open @P1", "/* open @P1"},
        {"", ""},
    };
    for (const Case& each : cases)
        EXPECT_EQ(tds::withLiterals(QLatin1String(each.statement), names, values).toStdString(),
                  each.expected);
}

}  // namespace
}  // namespace zov
