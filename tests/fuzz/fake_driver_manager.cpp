#include "fake_driver_manager.h"

#include "data/odbc/odbc_handles.h"

#include <QDate>

#include <algorithm>
#include <cstring>

namespace zov::fuzz {
namespace {

FakeServer* server = nullptr;

// As SQL Server's drivers describe its types.
const FakeColumn KnownColumns[] = {
    {SQL_BIT, "bit", 1, 0},
    {SQL_TINYINT, "tinyint", 3, 0},
    {SQL_SMALLINT, "smallint", 5, 0},
    {SQL_INTEGER, "int", 10, 0},
    {SQL_BIGINT, "bigint", 19, 0},
    {SQL_REAL, "real", 24, 0},
    {SQL_FLOAT, "float", 53, 0},
    {SQL_DECIMAL, "decimal", 18, 4},
    {SQL_DECIMAL, "decimal", 18, 0},
    {SQL_NUMERIC, "numeric", 38, 10},
    {SQL_DECIMAL, "money", 19, 4},
    {SQL_DECIMAL, "money", 10, 4},
    {SQL_TYPE_DATE, "date", 10, 0},
    {odbc::TypeTime2, "time", 16, 7},
    {SQL_TYPE_TIMESTAMP, "datetime", 23, 3},
    {SQL_TYPE_TIMESTAMP, "datetime2", 27, 7},
    {SQL_TYPE_TIMESTAMP, "smalldatetime", 16, 0},
    {odbc::TypeTimestampOffset, "datetimeoffset", 34, 7},
    {SQL_CHAR, "char", 10, 0},
    {SQL_VARCHAR, "varchar", 40, 0},
    {SQL_WVARCHAR, "nvarchar", 4000, 0},
    {SQL_LONGVARCHAR, "text", 0, 0},
    {SQL_WVARCHAR, "nvarchar", 0, 0},
    {odbc::TypeXml, "xml", 0, 0},
    {odbc::TypeVariant, "sql_variant", 8000, 0},
    {SQL_BINARY, "timestamp", 8, 0},
    {SQL_VARBINARY, "varbinary", 16, 0},
    {SQL_LONGVARBINARY, "image", 0, 0},
    {odbc::TypeUdt, "geography", 0, 0},
    {SQL_GUID, "uniqueidentifier", 36, 0},
};
constexpr SQLULEN OddSizes[] = {0, 1, 16, 17, 38, 39, 7999, 8000, 8001, 0x7FFFFFFF, ~SQLULEN(0)};
constexpr SQLLEN OddLengths[] = {SQL_NULL_DATA, SQL_NO_TOTAL, -2,       0, 1, 3, 47,
                                 0xFFFF,        0x7FFFFFFFF,  INT64_MIN};
const char* const States[] = {"01000", "01004", "HY000", "HYT00", "HY008", "08S01",
                              "08001", "42000", "42S02", "23000", "28000", "40001"};
constexpr SQLINTEGER Natives[] = {0,    208,  229,   701,   911,   1205,
                                  4060, 8180, 18456, 20004, 20009, 50000};

// Enough for a second block of any width.
constexpr int MostRows = 40;
constexpr int MostPieces = 6;

}  // namespace

const QString FakeServer::Refused = QStringLiteral("\x01 no cell has this text \x01");

FakeServer::FakeServer(const uint8_t* data, size_t size)
    : bytes(data, size), honest(bytes.ConsumeBool()) {
    server = this;
}

FakeServer::~FakeServer() {
    server = nullptr;
}

FakeServer& FakeServer::current() {
    return *server;
}

void FakeServer::fail() {
    records.clear();
    const int count = bytes.ConsumeIntegralInRange(0, 3);
    for (int i = 0; i < count; ++i) {
        FakeRecord& record = records.emplace_back();
        const char* state = bytes.PickValueInArray(States);
        std::copy_n(state, 5, record.state);
        if (bytes.ConsumeBool()) record.state[0] = bytes.ConsumeIntegral<char16_t>();
        record.native = bytes.ConsumeBool() ? bytes.PickValueInArray(Natives)
                                            : bytes.ConsumeIntegral<SQLINTEGER>();
        const std::string prefix = bytes.ConsumeBool() ? "[FreeTDS][SQL Server]" : "";
        std::string text = prefix + bytes.ConsumeRandomLengthString(64);
        if (bytes.ConsumeIntegral<uint8_t>() == 0) text.append(20'000, 'x');
        record.text.assign(text.begin(), text.end());
        record.line = bytes.ConsumeIntegral<SQLINTEGER>();
        record.severity = bytes.ConsumeIntegralInRange<SQLINTEGER>(-1, 25);
    }
}

SQLRETURN FakeServer::outcome() {
    records.clear();
    if (honest || bytes.ConsumeIntegral<uint8_t>() < 230) return SQL_SUCCESS;
    constexpr SQLRETURN results[] = {SQL_ERROR, SQL_SUCCESS_WITH_INFO, SQL_NO_DATA,
                                     SQL_STILL_EXECUTING, SQL_INVALID_HANDLE};
    fail();
    return bytes.PickValueInArray(results);
}

void FakeServer::describe() {
    columns.clear();
    bindings.clear();
    expected_.clear();
    longColumn_ = 0;
    const int count = bytes.ConsumeIntegralInRange(0, 6);
    for (int i = 0; i < count; ++i) {
        FakeColumn column = bytes.PickValueInArray(KnownColumns);
        if (!honest) {
            if (bytes.ConsumeBool()) column.type = bytes.ConsumeIntegral<SQLSMALLINT>();
            if (bytes.ConsumeBool()) column.size = bytes.PickValueInArray(OddSizes);
            if (bytes.ConsumeBool()) column.digits = bytes.ConsumeIntegral<SQLSMALLINT>();
        }
        columns.push_back(column);
    }
    rowsLeft_ = bytes.ConsumeIntegralInRange(0, MostRows);
}

SQLSMALLINT FakeServer::columnCount() {
    if (!honest && bytes.ConsumeIntegral<uint8_t>() == 0)
        return bytes.ConsumeIntegral<SQLSMALLINT>();
    return SQLSMALLINT(columns.size());
}

SQLRETURN FakeServer::execute() {
    resultsLeft_ = bytes.ConsumeIntegralInRange(0, 3);
    describe();
    return outcome();
}

SQLRETURN FakeServer::moreResults() {
    if (resultsLeft_-- <= 0) {
        records.clear();
        return SQL_NO_DATA;
    }
    describe();
    return outcome();
}

SQLLEN FakeServer::writeDecimal(char* to, SQLLEN room, QString& expected) {
    std::string text = bytes.ConsumeBool() ? "-" : "";
    const auto digits = [&](int count) {
        for (int i = 0; i < count; ++i) text += char('0' + bytes.ConsumeIntegralInRange(0, 9));
    };
    digits(bytes.ConsumeIntegralInRange(1, 24));
    if (bytes.ConsumeBool()) {
        text += '.';
        digits(bytes.ConsumeIntegralInRange(0, 16));
    }
    if (!honest && bytes.ConsumeIntegral<uint8_t>() < 8) text += bytes.ConsumeIntegral<char>();
    const SQLLEN length = std::min<SQLLEN>(SQLLEN(text.size()), room - 1);
    std::memcpy(to, text.data(), size_t(length));
    to[length] = 0;

    // The same number without what it doesn't need.
    QString whole = QString::fromLatin1(text.data(), length).section(u'.', 0, 0);
    QString fraction = QString::fromLatin1(text.data(), length).section(u'.', 1);
    const bool negative = whole.startsWith(u'-');
    if (negative) whole.remove(0, 1);
    while (whole.size() > 1 && whole.startsWith(u'0')) whole.remove(0, 1);
    while (fraction.endsWith(u'0')) fraction.chop(1);
    expected = whole + (fraction.isEmpty() ? QString() : u'.' + fraction);
    if (negative && expected != u"0") expected.prepend(u'-');
    return length;
}

SQLLEN FakeServer::writeStamp(const FakeColumn& column, char* to, QString& expected) {
    SQL_TIMESTAMP_STRUCT value{};
    const bool odd = !honest && bytes.ConsumeBool();
    value.year = odd ? bytes.ConsumeIntegral<SQLSMALLINT>()
                     : bytes.ConsumeIntegralInRange<SQLSMALLINT>(1, 9999);
    value.month = SQLUSMALLINT(bytes.ConsumeIntegralInRange(odd ? 0 : 1, odd ? 13 : 12));
    value.day = SQLUSMALLINT(bytes.ConsumeIntegralInRange(odd ? 0 : 1, odd ? 32 : 28));
    value.hour = SQLUSMALLINT(bytes.ConsumeIntegralInRange(0, odd ? 24 : 23));
    value.minute = SQLUSMALLINT(bytes.ConsumeIntegralInRange(0, odd ? 60 : 59));
    value.second = SQLUSMALLINT(bytes.ConsumeIntegralInRange(0, odd ? 61 : 59));
    std::memcpy(to, &value, sizeof value);
    const bool isTime = column.type == odbc::TypeTime2 || column.type == SQL_TYPE_TIME;
    const QTime time(value.hour, value.minute, value.second);
    const QDate date(value.year, value.month, value.day);
    if (!time.isValid() || (!isTime && !date.isValid())) {
        expected = Refused;
    } else {
        const QString day = QString::asprintf("%04d-%02d-%02d", value.year, value.month, value.day);
        const QString hour = time.toString(QStringLiteral("HH:mm:ss"));
        const bool isDate = column.type == SQL_TYPE_DATE || column.type == SQL_DATE;
        expected = isTime ? hour : isDate ? day : day + u' ' + hour;
    }
    return SQLLEN(sizeof value);
}

SQLLEN FakeServer::writeOffset(char* to, QString& expected) {
    const QByteArray text =
        QByteArray::number(bytes.ConsumeIntegralInRange(2000, 9999)) +
        "-12-31 23:59:" + QByteArray::number(bytes.ConsumeIntegralInRange(10, 59)) +
        (bytes.ConsumeBool() ? " +" : " -") +
        QByteArray::number(bytes.ConsumeIntegralInRange(10, 13)) + ":30";
    std::memcpy(to, text.constData(), size_t(text.size()) + 1);
    expected = QString::fromLatin1(text);
    return SQLLEN(text.size());
}

SQLLEN FakeServer::writeCell(const FakeColumn& column, SQLSMALLINT cType, char* to, SQLLEN room,
                             QString& expected) {
    if (bytes.ConsumeIntegralInRange(0, 7) == 0) {
        expected = QStringLiteral("Null");
        return SQL_NULL_DATA;
    }
    const auto fixed = [&](auto value) {
        std::memcpy(to, &value, sizeof value);
        expected = QString::number(value);
        return SQLLEN(sizeof value);
    };
    switch (cType) {
        case SQL_C_BIT:
            *to = char(bytes.ConsumeBool());
            expected = *to ? QStringLiteral("True") : QStringLiteral("False");
            return 1;
        case SQL_C_UTINYINT:
            return fixed(bytes.ConsumeIntegral<quint8>());
        case SQL_C_SSHORT:
            return fixed(bytes.ConsumeIntegral<qint16>());
        case SQL_C_SLONG:
            return fixed(bytes.ConsumeIntegral<qint32>());
        case SQL_C_SBIGINT:
            return fixed(bytes.ConsumeIntegral<qint64>());
        case SQL_C_CHAR:
            if (column.type != odbc::TypeTimestampOffset) return writeDecimal(to, room, expected);
            if (honest || bytes.ConsumeBool()) return writeOffset(to, expected);
            break;
        case SQL_C_TYPE_TIMESTAMP:
            return writeStamp(column, to, expected);
        default:
            break;
    }
    // Texts, binaries and what is a bit pattern only.
    const SQLLEN endMark = cType == SQL_C_WCHAR ? 2 : cType == SQL_C_CHAR ? 1 : 0;
    std::string value = bytes.ConsumeRandomLengthString(size_t(std::clamp<SQLLEN>(room, 0, 300)));
    if (cType == SQL_C_FLOAT || cType == SQL_C_DOUBLE || cType == SQL_C_GUID)
        value.resize(size_t(room));
    SQLLEN length = std::min<SQLLEN>(SQLLEN(value.size()), room - endMark);
    if (cType == SQL_C_WCHAR) length &= ~SQLLEN(1);
    std::memcpy(to, value.data(), size_t(length));
    std::memset(to + length, 0, size_t(endMark));
    if (cType == SQL_C_WCHAR) {
        expected = QString(length / 2, Qt::Uninitialized);
        std::memcpy(expected.data(), to, size_t(length));
    } else if (cType == SQL_C_BINARY) {
        expected =
            QStringLiteral("0x") + QString::fromLatin1(QByteArray(to, length).toHex().toUpper());
    }
    return length;
}

SQLRETURN FakeServer::fetch() {
    longColumn_ = 0;
    const SQLULEN rows = std::min<SQLULEN>(arraySize, SQLULEN(std::max(rowsLeft_, 0)));
    rowsLeft_ -= int(rows);
    if (rows == 0) {
        records.clear();
        return SQL_NO_DATA;
    }
    for (auto& [number, binding] : bindings) {
        const FakeColumn& column = columns[size_t(number) - 1];
        for (SQLULEN row = 0; row < rows; ++row) {
            QString expected;
            SQLLEN length =
                writeCell(column, binding.cType, binding.cells + SQLLEN(row) * binding.room,
                          binding.room, expected);
            if (!honest && bytes.ConsumeIntegral<uint8_t>() < 4) {
                length = bytes.PickValueInArray(OddLengths);
                expected = QString();
            }
            binding.lengths[row] = length;
            expected_[number - 1].append(expected);
        }
    }
    *fetched = rows;
    const SQLRETURN result = outcome();
    if (!honest && bytes.ConsumeIntegral<uint8_t>() < 4)
        *fetched = bytes.ConsumeIntegral<SQLULEN>();
    return result;
}

void FakeServer::startLongCell(SQLSMALLINT cType, const FakeColumn& column) {
    const bool isLongType = cType == SQL_C_WCHAR || cType == SQL_C_BINARY;
    QString expected;
    long_.assign(512, 0);
    const SQLLEN length = writeCell(column, cType, long_.data(), isLongType ? 512 : 48, expected);
    longAt_ = 0;
    pieces_ = 0;
    if (length < 0) {
        long_.clear();
        longAt_ = 1;  // null
    } else {
        long_.resize(size_t(length));
        // Longer than one piece, now and then, without so many bytes of input.
        if (isLongType && length > 0 && column.type != odbc::TypeVariant &&
            bytes.ConsumeIntegralInRange(0, 15) == 0) {
            const size_t times = bytes.ConsumeIntegralInRange<size_t>(1, 1000);
            const std::vector<char> once = long_;
            for (size_t i = 1; i < times; ++i) long_.insert(long_.end(), once.begin(), once.end());
            expected = cType == SQL_C_WCHAR
                           ? expected.repeated(qsizetype(times))
                           : QStringLiteral("0x") + expected.mid(2).repeated(qsizetype(times));
        }
    }
    expected_[longColumn_ - 1].append(expected);
}

SQLRETURN FakeServer::getData(SQLUSMALLINT number, SQLSMALLINT cType, char* to, SQLLEN room,
                              SQLLEN* left) {
    if (longColumn_ != number) {
        longColumn_ = number;
        startLongCell(cType, columns[size_t(number) - 1]);
    }
    if (!honest && (++pieces_ > MostPieces || bytes.ConsumeIntegral<uint8_t>() < 8)) {
        // What comes of this cell is anybody's guess.
        expected_[number - 1].last() = QString();
        *left = bytes.PickValueInArray(OddLengths);
        if (pieces_ > MostPieces) return SQL_NO_DATA;
        constexpr SQLRETURN results[] = {SQL_SUCCESS, SQL_SUCCESS_WITH_INFO, SQL_NO_DATA,
                                         SQL_ERROR};
        fail();
        return bytes.PickValueInArray(results);
    }
    if (longAt_ > long_.size()) {
        *left = SQL_NULL_DATA;
        return SQL_SUCCESS;
    }
    const size_t rest = long_.size() - longAt_;
    if (longAt_ > 0 && rest == 0) return SQL_NO_DATA;
    const size_t endMark = cType == SQL_C_WCHAR ? 2 : cType == SQL_C_CHAR ? 1 : 0;
    const size_t taken = std::min(rest, size_t(room) - endMark);
    std::memcpy(to, long_.data() + longAt_, taken);
    std::memset(to + taken, 0, endMark);
    longAt_ += taken;
    *left = SQLLEN(rest);
    return taken == rest ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

QString FakeServer::takeExpected(int column) {
    QStringList& all = expected_[column];
    return all.isEmpty() ? QString() : all.takeFirst();
}

}  // namespace zov::fuzz

using zov::fuzz::FakeServer;

namespace {

SQLHANDLE anyHandle() {
    static int thing = 0;
    return &thing;
}

/// Copies what fits with its end mark; gives the whole length, in letters.
SQLSMALLINT putText(const std::u16string& text, SQLWCHAR* to, SQLSMALLINT room) {
    if (to && room > 0) {
        const size_t taken = std::min(text.size(), size_t(room) - 1);
        std::copy_n(text.data(), taken, reinterpret_cast<char16_t*>(to));
        to[taken] = 0;
    }
    return SQLSMALLINT(text.size());
}

}  // namespace

extern "C" {

SQLRETURN SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE* handle) {
    *handle = anyHandle();
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE) {
    return SQL_SUCCESS;
}
SQLRETURN SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
    return SQL_SUCCESS;
}
SQLRETURN SQLSetConnectAttrW(SQLHDBC, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
    return SQL_SUCCESS;
}
SQLRETURN SQLDisconnect(SQLHDBC) {
    return SQL_SUCCESS;
}
SQLRETURN SQLDriversW(SQLHENV, SQLUSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*, SQLWCHAR*,
                      SQLSMALLINT, SQLSMALLINT*) {
    return SQL_NO_DATA;
}
SQLRETURN SQLDriverConnectW(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                            SQLSMALLINT*, SQLUSMALLINT) {
    return FakeServer::current().outcome();
}
SQLRETURN SQLGetInfoW(SQLHDBC, SQLUSMALLINT, SQLPOINTER value, SQLSMALLINT, SQLSMALLINT*) {
    *static_cast<SQLUINTEGER*>(value) =
        FakeServer::current().bytes.ConsumeBool() ? SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER : 0;
    return SQL_SUCCESS;
}
SQLRETURN SQLGetConnectAttrW(SQLHDBC, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER,
                             SQLINTEGER*) {
    if (attribute != SQL_ATTR_CONNECTION_DEAD) return SQL_ERROR;
    *static_cast<SQLUINTEGER*>(value) = FakeServer::current().bytes.ConsumeBool();
    return SQL_SUCCESS;
}
SQLRETURN SQLSetStmtAttrW(SQLHSTMT, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    if (attribute == SQL_ATTR_ROW_ARRAY_SIZE)
        FakeServer::current().arraySize = reinterpret_cast<SQLULEN>(value);
    if (attribute == SQL_ATTR_ROWS_FETCHED_PTR)
        FakeServer::current().fetched = static_cast<SQLULEN*>(value);
    return SQL_SUCCESS;
}
SQLRETURN SQLExecDirectW(SQLHSTMT, SQLWCHAR*, SQLINTEGER) {
    return FakeServer::current().execute();
}
SQLRETURN SQLNumResultCols(SQLHSTMT, SQLSMALLINT* count) {
    *count = FakeServer::current().columnCount();
    return FakeServer::current().outcome();
}
SQLRETURN SQLRowCount(SQLHSTMT, SQLLEN* rows) {
    *rows = FakeServer::current().bytes.ConsumeIntegral<SQLLEN>();
    return FakeServer::current().outcome();
}
SQLRETURN SQLDescribeColW(SQLHSTMT, SQLUSMALLINT number, SQLWCHAR* name, SQLSMALLINT room,
                          SQLSMALLINT* length, SQLSMALLINT* type, SQLULEN* size,
                          SQLSMALLINT* digits, SQLSMALLINT* nullable) {
    FakeServer& server = FakeServer::current();
    while (server.columns.size() < number) server.columns.emplace_back();
    const zov::fuzz::FakeColumn& column = server.columns[size_t(number) - 1];
    *length = putText(u"Column", name, room);
    if (!server.honest && server.bytes.ConsumeIntegral<uint8_t>() < 16)
        *length = server.bytes.ConsumeIntegral<SQLSMALLINT>();
    *type = column.type;
    *size = column.size;
    *digits = column.digits;
    *nullable = SQL_NULLABLE;
    return server.outcome();
}
SQLRETURN SQLColAttributeW(SQLHSTMT, SQLUSMALLINT number, SQLUSMALLINT, SQLPOINTER text,
                           SQLSMALLINT room, SQLSMALLINT*, SQLLEN*) {
    const char* name = FakeServer::current().columns[size_t(number) - 1].typeName;
    putText(std::u16string(name, name + std::strlen(name)), static_cast<SQLWCHAR*>(text),
            SQLSMALLINT(room / 2));
    return SQL_SUCCESS;
}
SQLRETURN SQLBindCol(SQLHSTMT, SQLUSMALLINT number, SQLSMALLINT cType, SQLPOINTER cells,
                     SQLLEN room, SQLLEN* lengths) {
    FakeServer::current().bindings[number] = {cType, static_cast<char*>(cells), room, lengths};
    return FakeServer::current().outcome();
}
SQLRETURN SQLBindParameter(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT, SQLSMALLINT, SQLSMALLINT, SQLULEN,
                           SQLSMALLINT, SQLPOINTER, SQLLEN, SQLLEN* length) {
    if (!FakeServer::current().honest)
        *length = FakeServer::current().bytes.ConsumeIntegral<SQLLEN>();
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeStmt(SQLHSTMT, SQLUSMALLINT option) {
    if (option == SQL_UNBIND) FakeServer::current().bindings.clear();
    return SQL_SUCCESS;
}
SQLRETURN SQLCancel(SQLHSTMT) {
    return SQL_SUCCESS;
}
SQLRETURN SQLFetch(SQLHSTMT) {
    return FakeServer::current().fetch();
}
SQLRETURN SQLGetData(SQLHSTMT, SQLUSMALLINT number, SQLSMALLINT cType, SQLPOINTER to, SQLLEN room,
                     SQLLEN* left) {
    return FakeServer::current().getData(number, cType, static_cast<char*>(to), room, left);
}
SQLRETURN SQLMoreResults(SQLHSTMT) {
    return FakeServer::current().moreResults();
}
SQLRETURN SQLGetDiagRecW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT number, SQLWCHAR* state,
                         SQLINTEGER* native, SQLWCHAR* text, SQLSMALLINT room,
                         SQLSMALLINT* length) {
    const std::vector<zov::fuzz::FakeRecord>& records = FakeServer::current().records;
    if (number < 1 || size_t(number) > records.size()) return SQL_NO_DATA;
    const zov::fuzz::FakeRecord& record = records[size_t(number) - 1];
    std::copy_n(record.state, 6, reinterpret_cast<char16_t*>(state));
    *native = record.native;
    *length = putText(record.text, text, room);
    return *length >= room ? SQL_SUCCESS_WITH_INFO : SQL_SUCCESS;
}
SQLRETURN SQLGetDiagFieldW(SQLSMALLINT, SQLHANDLE, SQLSMALLINT number, SQLSMALLINT field,
                           SQLPOINTER value, SQLSMALLINT, SQLSMALLINT*) {
    const std::vector<zov::fuzz::FakeRecord>& records = FakeServer::current().records;
    if (number < 1 || size_t(number) > records.size()) return SQL_NO_DATA;
    const zov::fuzz::FakeRecord& record = records[size_t(number) - 1];
    constexpr SQLSMALLINT line = -1154;  // the others tell of the severity
    *static_cast<SQLINTEGER*>(value) = field == line ? record.line : record.severity;
    return SQL_SUCCESS;
}

}  // extern "C"
