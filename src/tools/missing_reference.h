// A name in a module's text that its database doesn't have.
#pragma once

#include <QString>

namespace zov {

enum class MissingKind { TableOrView, Procedure, Function, Column, Type, Sequence };

struct MissingReference {
    int line = 0;  ///< within the module's text, from 1
    QString name;  ///< as written
    MissingKind kind = MissingKind::TableOrView;
    QString owner;  ///< of a column: the table that should have it; empty when several might

    /// "table or view dbo.Gone can't be found", in one line whatever the name holds.
    QString sentence() const;
};

}  // namespace zov
