// A driver manager whose server says whatever the fuzzer likes: it stands in front of the real one
// (its SQL... functions are found first) and keeps to the buffers that it is given, but not to
// sense.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <QString>
#include <QStringList>

#ifdef Q_OS_WIN
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <map>
#include <vector>

namespace zov::fuzz {

struct FakeColumn {
    SQLSMALLINT type = SQL_INTEGER;
    const char* typeName = "";
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
};

/// A bound column's memory.
struct FakeBinding {
    SQLSMALLINT cType = 0;
    char* cells = nullptr;
    SQLLEN room = 0;
    SQLLEN* lengths = nullptr;
};

struct FakeRecord {
    char16_t state[6] = {};
    SQLINTEGER native = 0;
    std::u16string text;
    SQLINTEGER line = 0;
    SQLINTEGER severity = 0;
};

class FakeServer {
 public:
    FakeServer(const uint8_t* data, size_t size);
    ~FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;
    static FakeServer& current();

    // The calls, without their handles.
    SQLRETURN outcome();
    SQLRETURN execute();
    SQLRETURN moreResults();
    SQLRETURN fetch();
    SQLRETURN getData(SQLUSMALLINT number, SQLSMALLINT cType, char* to, SQLLEN room, SQLLEN* left);
    SQLSMALLINT columnCount();

    /// What the client must have stored for the cell, taken out in the order of its column; null
    /// when anything will do. `Refused` is no cell's text: the client must not have taken it.
    QString takeExpected(int column);
    static const QString Refused;

    FuzzedDataProvider bytes;
    /// Lengths and counts are what they should be, and nothing fails.
    const bool honest;
    std::vector<FakeColumn> columns;
    std::map<SQLUSMALLINT, FakeBinding> bindings;
    std::vector<FakeRecord> records;
    SQLULEN arraySize = 1;
    SQLULEN* fetched = nullptr;

 private:
    void describe();
    void fail();
    SQLLEN writeCell(const FakeColumn& column, SQLSMALLINT cType, char* to, SQLLEN room,
                     QString& expected);
    SQLLEN writeDecimal(char* to, SQLLEN room, QString& expected);
    SQLLEN writeStamp(const FakeColumn& column, char* to, QString& expected);
    SQLLEN writeOffset(char* to, QString& expected);
    void startLongCell(SQLSMALLINT cType, const FakeColumn& column);

    int resultsLeft_ = 0;
    int rowsLeft_ = 0;
    std::map<int, QStringList> expected_;
    // The cell that is read in pieces.
    SQLUSMALLINT longColumn_ = 0;
    std::vector<char> long_;
    size_t longAt_ = 0;
    int pieces_ = 0;
};

}  // namespace zov::fuzz
