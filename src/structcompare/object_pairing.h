// Which object of one database is which of the other: by schema and name, from the two lists that
// a run compares.
#pragma once

#include "catalog/mdlObjects.h"

#include <functional>

namespace zov {

/// The objects of a list, in its order.
std::vector<ObjectRef> objectsOf(const ObjectList& list, ObjectType kind);

/// From version 9 on; older ones know owners.
bool knowsSchemas(const ServerInfo& server);

/// Whether the server takes the schema and name of another side's object for those of this one of
/// its own: names that are equal but for case or accents are one for some collations and two for
/// others. False, too, when it couldn't be asked.
bool serverTakesForSame(const ServerInfo& server, const QString& database, const ObjectRef& other,
                        const ObjectRef& own);

struct PairingRules {
    /// One of the sides knows owners where the other one knows schemas, or its schemas couldn't be
    /// read: a name that stands once on both sides is enough.
    bool schemaMayDiffer = false;
    /// Whether the target's server takes the source's name for this object's, which it is in all
    /// but letter case and accents: that is its collation's affair.
    std::function<bool(const ObjectRef& source, const ObjectRef& target)> sameName;
    /// The table of a constraint, for constraints of one name in one schema; may be empty.
    std::function<QString(const ObjectRef& object, int panel)> parentOf;
};

/// For each object of the source the index of the target's that it is to be compared with, -1
/// where the target has none.
std::vector<int> pairObjects(const std::vector<ObjectRef>& source,
                             const std::vector<ObjectRef>& target, const PairingRules& rules);

}  // namespace zov
