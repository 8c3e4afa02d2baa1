// The driver manager's handles, owned. The process has one environment, made at
// the first use, in which the manager's own pooling is off.
#pragma once

#include "data/odbc/odbc_api.h"

#include <utility>

namespace zov::odbc {

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
