// A type as it stands in a statement, with its size.
#pragma once

#include <QString>

namespace zov {

/// A row of the catalogue on a column or a type.
struct TypeInStatement {
    QString schema, name;
    bool isUserDefined = false;
    qint32 maxLength = 0;  ///< bytes; -1 for max
    int precision = 0, scale = 0;
};

/// "varchar(50)", "nvarchar(max)", "decimal(18,2)", "[sales].[Phone]".
QString typeInStatement(const TypeInStatement& type);
bool isRowVersionType(const TypeInStatement& type);

}  // namespace zov
