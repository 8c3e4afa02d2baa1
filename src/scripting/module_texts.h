// The stored text of a module: which names it mentions, and the header that makes it.
#pragma once

#include "scripting/database_facts.h"

#include <QHash>

namespace zov {

/// The text as a statement that makes the object under the name that it has now: a rename or a move
/// to another schema leaves the old name in the stored text. Byte for byte the stored text where
/// its header is right. Empty when no header is found.
QString moduleStatement(const ModuleFacts& module);

/// Finds which objects of a set a text mentions, by name and, where one stands in front, by schema.
class Mentions {
 public:
    void add(const QString& schema, const QString& name, size_t number);
    /// The numbers of the objects mentioned, each once, in the order of their first mention.
    std::vector<size_t> in(const QString& text) const;

 private:
    struct Named {
        QString schema;
        size_t number;
    };
    QHash<QString, std::vector<Named>> byName_;  ///< by lower-cased name
};

}  // namespace zov
