// The driver manager's handles, owned. The process has one environment, made at
// the first use, in which the manager's own pooling is off.
#pragma once

#include <QString>

#ifdef Q_OS_WIN
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <utility>

namespace zov::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));

/// Type codes that only SQL Server's drivers use.
inline constexpr SQLSMALLINT TypeVariant = -150;
inline constexpr SQLSMALLINT TypeUdt = -151;
inline constexpr SQLSMALLINT TypeXml = -152;
inline constexpr SQLSMALLINT TypeTime2 = -154;
inline constexpr SQLSMALLINT TypeTimestampOffset = -155;

/// A number where the interface wants a pointer.
inline SQLPOINTER pointerOf(SQLULEN value) {
    return reinterpret_cast<SQLPOINTER>(value);
}

/// For arguments that are only read, though the interface doesn't say const.
inline SQLWCHAR* wide(const QString& text) {
    return reinterpret_cast<SQLWCHAR*>(const_cast<ushort*>(text.utf16()));
}

class Handle {
 public:
    Handle() = default;
    /// Throws DbError when the manager or the driver has none to give.
    Handle(SQLSMALLINT type, SQLHANDLE parent);
    Handle(Handle&& other) noexcept
        : type_(other.type_), handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(type_, other.type_);
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle() { reset(); }

    void reset();
    SQLHANDLE get() const { return handle_; }
    SQLSMALLINT type() const { return type_; }
    explicit operator bool() const { return handle_ != nullptr; }

 private:
    SQLSMALLINT type_ = 0;
    SQLHANDLE handle_ = nullptr;
};

SQLHENV environment();

}  // namespace zov::odbc
