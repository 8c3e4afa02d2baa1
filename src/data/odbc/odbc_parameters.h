// A command's parameters, bound: in ADO's terms towards the caller, in ODBC's
// towards the driver.
#pragma once

#include "data/base/provider.h"
#include "data/odbc/odbc_handles.h"

#include <deque>

namespace zov::odbc {

class BoundParameters {
 public:
    /// Binds them to the statement, behind the return value when `withReturn`. They must stay in
    /// place as long as the statement runs. Throws DbError for a type without a binding.
    void bind(SQLHSTMT statement, const std::vector<CommandParameter>& parameters, bool withReturn);

    qint32 returnValue() const { return returnValue_; }
    /// Of an input-and-output parameter; invalid for an input one, null for a null.
    QVariant value(int index) const;

 private:
    struct Bound {
        int type = 0;
        bool isOutput = false;
        SQLLEN length = 0;
        union {
            SQLINTEGER integer;
            double real;
            unsigned char bit;
            SQL_TIMESTAMP_STRUCT stamp;
        };
        std::vector<char16_t> text;
        Bound() : stamp{} {}
    };
    std::deque<Bound> bound_;  // addresses stay
    SQLINTEGER returnValue_ = 0;
    SQLLEN returnLength_ = 0;
};

/// "{? = call name(?,?)}".
QString procedureCall(const QString& name, size_t parameters);

}  // namespace zov::odbc
