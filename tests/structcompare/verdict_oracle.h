// What a comparison should find, worked out by other means: the texts of every object from the
// server's catalogue views, by ids, and held against each other by schema, name and kind.
#pragma once

#include "catalog/object_ref.h"
#include "core/server_info.h"

#include <QMap>
#include <QStringList>

#include <optional>

namespace zov::test {

/// The text without comments, runs of white space as one blank. "--" and "/*" begin a comment
/// everywhere but in names in brackets or double quotes.
QString withoutOverlooked(const QString& text);

/// By kind, then by schema and name (and table, of a constraint) joined by NUL.
struct CatalogueTexts {
    struct Entry {
        QString shown;                ///< as the list of its kind shows it
        std::optional<QString> text;  ///< none when it can't be read
    };
    QMap<ObjectType, QMap<QString, Entry>> objects;
};

CatalogueTexts readCatalogue(const ServerInfo& server, const QString& database);

/// Names as the report's lists show them, sorted; kinds that one side lacks have no lists.
struct ExpectedVerdict {
    QMap<ObjectType, QStringList> differing, onlyInSource, onlyInTarget, unreadable;
    /// Those of `differing` that differ in more than white space, comments and the order of lines.
    QMap<ObjectType, QStringList> differingAnyway;
    bool identical = true;  ///< everything was read and is the same
    bool someOneSided = false;
    bool someUnreadable = false;
};

ExpectedVerdict expectedVerdict(const CatalogueTexts& source, const CatalogueTexts& target);

}  // namespace zov::test
