// The references of a procedure, function, view or trigger that its database doesn't have: its text
// is walked statement by statement, and every name is looked up where the server would. Not a whole
// parser: what it doesn't understand, and what can't be known (other databases, texts that are run,
// columns of temporary tables), counts as there.
#pragma once

#include "tools/database_names.h"
#include "tools/missing_reference.h"

namespace zov {

struct ModuleReferences {
    std::vector<MissingReference> missing;  ///< in the order of the text
    /// Why the text couldn't be read, or not to its end; empty: it was read whole.
    QString trouble;
};

ModuleReferences FindMissingReferences(const ModuleText& module, const DatabaseNames& names);

}  // namespace zov
