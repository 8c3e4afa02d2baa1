#include "data/odbc/odbc_errors.h"

#include <QStringList>

#include <algorithm>

namespace zov::odbc {
namespace {

// Fields of a record that SQL Server's drivers add to the standard's.
constexpr SQLSMALLINT DiagMessageState = -1150;
constexpr SQLSMALLINT DiagSeverity = -1151;
constexpr SQLSMALLINT DiagLine = -1154;

// Message numbers of FreeTDS's own, below those of any server's users (50000 on).
constexpr qint32 FirstDriverNumber = 20000;
constexpr qint32 LastDriverNumber = 20999;
constexpr qint32 DriverReadFailed = 20004;
constexpr qint32 DriverWriteFailed = 20006;
constexpr qint32 DriverConnectFailed = 20009;
constexpr qint32 DriverUnknownHost = 20013;
constexpr qint32 DriverUnexpectedEof = 20017;
constexpr qint32 DriverDead = 20047;

// A message is at most 2,047 characters, but a driver may put its own words in front.
constexpr int LongestMessage = 16 * 1024;
constexpr int MostRecords = 1000;

const QString Unexplained = QStringLiteral("The ODBC driver failed without saying why.");

bool isLoginNumber(qint32 native) {
    switch (native) {
        case 18450:
        case 18451:
        case 18452:
        case 18456:
        case 18458:
        case 18459:
        case 18461:
        case 18463:
        case 18464:
        case 18465:
        case 18466:
        case 18467:
        case 18468:
        case 18470:
        case 18486:
        case 18487:
        case 18488:
            return true;
        default:
            return false;
    }
}

bool isDatabaseNumber(qint32 native) {
    return native == 4060 || native == 911 || native == 4064;
}

bool fromDriver(const Diagnostic& record) {
    return record.native == 0 ||
           (record.native >= FirstDriverNumber && record.native <= LastDriverNumber);
}

bool meansLost(const Diagnostic& record) {
    if (record.native == DriverReadFailed || record.native == DriverWriteFailed ||
        record.native == DriverUnexpectedEof || record.native == DriverDead)
        return true;
    // 08004 is a server that refuses, and stays.
    return record.sqlState.startsWith(u"08") && record.sqlState != u"08004";
}

bool isInformation(const Diagnostic& record) {
    return record.sqlState.startsWith(u"01") && !fromDriver(record) && record.severity < 11;
}

// What a record is worth as the explanation of a failure; the highest speaks for all.
int weight(const Diagnostic& record, Phase phase) {
    if (isInformation(record)) return 0;
    if (fromDriver(record)) {
        // "Unable to connect to data source" only says that the call failed.
        if (record.native == 0 && record.sqlState == u"08001") return 1;
        // FreeTDS stops what timed out, and then tells of both.
        if (record.sqlState.startsWith(u"HYT")) return 7;
        if (record.sqlState == u"HY008") return 6;
        return record.native == DriverConnectFailed || record.native == DriverUnknownHost ? 3 : 2;
    }
    if (phase == Phase::Connecting && isDatabaseNumber(record.native)) return 5;
    // "Statement(s) could not be prepared" and "Could not use view" follow their reason.
    return record.native == 8180 ? 3 : 4;
}

qint32 numberFor(const Diagnostic& record, Phase phase) {
    const QString& state = record.sqlState;
    const qint32 native = record.native;
    if (phase == Phase::Connecting) {
        if (isDatabaseNumber(native)) return ado_error::Unspecified;
        if (state == u"28000" || isLoginNumber(native)) return ado_error::LoginFailed;
        return ado_error::Unspecified;
    }
    if (state == u"HYT00" || state == u"HYT01") return ado_error::Timeout;
    if (state == u"HY008") return ado_error::Cancelled;
    if (meansLost(record) || state == u"40001" || native == 1205) return ado_error::Unspecified;
    if (state == u"42S02" || native == 208 || native == 3701) return ado_error::NoSuchTable;
    if (native == 229 || native == 230 || native == 262) return ado_error::PermissionDenied;
    if (state.startsWith(u"23")) return ado_error::IntegrityViolation;
    // SQL Server's provider gives this number for nearly everything that a server refuses.
    if (!fromDriver(record) || state.startsWith(u"42")) return ado_error::SyntaxError;
    return ado_error::Unspecified;
}

int numberField(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT record, SQLSMALLINT field) {
    // FreeTDS writes only the lower half of the number.
    SQLINTEGER value = 0;
    if (!SQL_SUCCEEDED(
            SQLGetDiagFieldW(type, handle, record, field, &value, sizeof value, nullptr)))
        return -1;
    return value;
}

Diagnostic driverSaid(QString text) {
    Diagnostic record;
    record.text = std::move(text);
    return record;
}

}  // namespace

QString withoutDriverPrefix(const QString& text) {
    static const QString names[] = {
        QStringLiteral("[unixODBC]"),
        QStringLiteral("[Driver Manager]"),
        QStringLiteral("[FreeTDS]"),
        QStringLiteral("[Microsoft]"),
    };
    qsizetype at = 0;
    for (bool found = true; found;) {
        found = false;
        for (const QString& name : names) {
            if (!QStringView(text).mid(at).startsWith(name)) continue;
            at += name.size();
            found = true;
        }
        if (at > 0 && QStringView(text).mid(at).startsWith(u"[ODBC Driver ")) {
            const qsizetype end = text.indexOf(u']', at);
            if (end < 0) break;
            at = end + 1;
            found = true;
        }
    }
    // Once, and only behind a driver's name: a server's text may begin with a bracket too.
    if (at > 0 && QStringView(text).mid(at).startsWith(u"[SQL Server]")) at += 12;
    return text.mid(at);
}

std::vector<Diagnostic> readDiagnostics(SQLSMALLINT handleType, SQLHANDLE handle) {
    std::vector<Diagnostic> records;
    std::vector<char16_t> text(1024);
    for (SQLSMALLINT i = 1; i <= MostRecords; ++i) {
        SQLWCHAR state[6] = {};
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        const auto read = [&] {
            return SQLGetDiagRecW(handleType, handle, i, state, &native,
                                  reinterpret_cast<SQLWCHAR*>(text.data()),
                                  SQLSMALLINT(text.size()), &length);
        };
        SQLRETURN result = read();
        if (result == SQL_SUCCESS_WITH_INFO && length >= SQLSMALLINT(text.size()) &&
            text.size() < LongestMessage) {
            text.resize(LongestMessage);
            result = read();
        }
        if (!SQL_SUCCEEDED(result)) break;
        const qsizetype shown = std::clamp<qsizetype>(length, 0, qsizetype(text.size()) - 1);
        const QString whole(reinterpret_cast<const QChar*>(text.data()), shown);

        Diagnostic record;
        record.sqlState = QString(reinterpret_cast<const QChar*>(state), 5);
        record.native = native;
        record.text = withoutDriverPrefix(whole);
        // FreeTDS's own messages stand in line -1, of which it writes the lower half.
        const int line = numberField(handleType, handle, i, DiagLine);
        record.line = line > 0 && line < 0xFFFF ? line : 0;
        record.severity = numberField(handleType, handle, i, DiagSeverity);
        // FreeTDS has no field for the severity, and gives it as the message's state.
        if (record.severity < 0 && whole.startsWith(u"[FreeTDS]"))
            record.severity = numberField(handleType, handle, i, DiagMessageState);
        record.severity = std::max(0, record.severity);
        records.push_back(std::move(record));
    }
    return records;
}

DbError errorFrom(const std::vector<Diagnostic>& records, Phase phase) {
    std::vector<Diagnostic> told;
    for (const Diagnostic& record : records)
        if (weight(record, phase) > 0) told.push_back(record);
    if (told.empty()) told.push_back(driverSaid(Unexplained));
    std::stable_sort(told.begin(), told.end(), [phase](const Diagnostic& a, const Diagnostic& b) {
        return weight(a, phase) > weight(b, phase);
    });
    const Diagnostic& first = told.front();

    QStringList texts;
    for (const Diagnostic& record : told) {
        // A driver's general remark adds nothing to what the server itself said.
        if (fromDriver(record) && weight(record, phase) < weight(first, phase)) continue;
        // Nor does "Login failed" to "Cannot open database ... The login failed."
        if (isDatabaseNumber(first.native) && isLoginNumber(record.native)) continue;
        if (!record.text.isEmpty() && !texts.contains(record.text)) texts.append(record.text);
    }
    if (texts.isEmpty()) texts.append(Unexplained);
    DbError error(numberFor(first, phase), texts.join(QStringLiteral("\r\n")), first.sqlState,
                  first.native);
    error.line = first.line;
    error.connectionLost = std::any_of(told.begin(), told.end(), meansLost);
    return error;
}

bool isError(const Diagnostic& record) {
    return !record.sqlState.startsWith(u"01") && !record.sqlState.startsWith(u"00");
}

void appendMessages(const std::vector<Diagnostic>& records, std::vector<ServerMessage>& to) {
    for (const Diagnostic& record : records) {
        // Other 01-states are the driver's remarks on how it filled a buffer.
        if (record.sqlState != u"01000" ||
            (record.native >= FirstDriverNumber && record.native <= LastDriverNumber))
            continue;
        to.push_back({record.severity, record.native, record.line, record.text});
    }
}

bool isLoginRefusal(const DbError& error) {
    return error.number == ado_error::LoginFailed;
}

bool isUnknownDatabase(const DbError& error) {
    return isDatabaseNumber(error.native);
}

}  // namespace zov::odbc
