#include "scripting/database_facts.h"

#include "data/sql_names.h"

namespace zov {

QString TableFacts::quoted() const {
    return quotedName(schema, name);
}

const ColumnFacts* TableFacts::column(const QString& wanted) const {
    for (const ColumnFacts& one : columns)
        if (one.name == wanted) return &one;
    return nullptr;
}

QString ModuleFacts::quoted() const {
    return quotedName(schema, name);
}

}  // namespace zov
