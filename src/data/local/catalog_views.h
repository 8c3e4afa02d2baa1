// SQL Server's catalogue as selects over the zov$ tables. A translated statement
// holds the select of each view that it reads, with the columns that it uses and
// no more, so that SQLite can fold it into the rest and use the tables' indexes.
#pragma once

#include "data/base/sql_type.h"

#include <QString>

#include <vector>

namespace zov::local {

struct CatalogColumn {
    ColumnInfo info;  ///< with its name
    QString expression;
    bool collated = false;  ///< compares as text by itself
};

struct CatalogView {
    QString schema;  ///< "dbo" (compatibility views), "sys" or "INFORMATION_SCHEMA"
    QString name;
    std::vector<CatalogColumn> columns;
    QString from;  ///< FROM ... [WHERE ...]

    /// The index of a column, in any case; -1 when there is none.
    int columnIndex(const QString& column) const;
};

/// The view of that name on a server of this major version, null when there is none. `schema` empty
/// or "dbo" finds the compatibility views only; so does "sys", which holds them too.
const CatalogView* findCatalogView(const QString& schema, const QString& name, int majorVersion);

namespace detail {
/// One view as text: per line "column type | expression", then a line that begins with FROM.
struct CatalogViewText {
    const char* schema;
    const char* name;
    int minVersion;
    const char* text;
};
/// What stands for $OBJECT_COLUMNS, $COLUMN_COLUMNS and $SOURCE in those texts.
extern const char* const objectColumns;
extern const char* const columnColumns;
extern const char* const sourceText;
std::vector<CatalogViewText> compatibilityViews();
std::vector<CatalogViewText> systemViews();
std::vector<CatalogViewText> storageViews();
std::vector<CatalogViewText> informationSchemaViews();
}  // namespace detail

}  // namespace zov::local
