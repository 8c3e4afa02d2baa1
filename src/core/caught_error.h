// The exception that is being handled, as reports and accounts of runs show it.
#pragma once

#include <QString>

namespace zov {

/// A failure as reports show it: a number and a description. From inside a catch block.
struct CaughtError {
    qint32 number = 0;
    QString description;
};
CaughtError caughtError();

}  // namespace zov
