// By which collation a text of an expression is compared, and what happens when two meet: what
// COLLATE says goes before a column's own, a column's own before what a literal or a variable has.
#pragma once

#include "data/local/collation.h"

namespace zov::local {

struct SessionState;

struct Collating {
    enum class Level {
        Default,   ///< a literal, a variable, a function's result
        Implicit,  ///< a column
        Conflict,  ///< two columns of different collations joined to one text
        Explicit,  ///< COLLATE
    };
    Level level = Level::Default;
    /// Null at Default: the database's. Not null at Default: what is told of by the catalogue in
    /// texts of its own.
    const Collation* collation = nullptr;
    const Collation* other = nullptr;  ///< of a Conflict: the second one
    QString operation;                 ///< of a Conflict: "add", "CASE"

    static Collating implicit(const Collation* collation);
    static Collating byWord(const Collation* collation);
};

/// What comes of joining two texts. Throws 468 when both carry a COLLATE and these differ.
Collating joined(const Collating& a, const Collating& b, const QString& operation);
/// The collation that two texts are compared by; `database` where neither has one. Throws 468 on a
/// conflict. `operation` as the message has it: "equal to", "like".
const Collation* comparing(const Collating& a, const Collating& b, const QString& operation,
                           const Collation* database);
/// "=" is "equal to".
QString operationName(const QString& comparison);
/// The note that a collation isn't known and what is used for it, once a session and name.
void tellUnknown(SessionState& session, const Collation& collation);
/// Throws 451 for a Conflict in a statement's column (from 1); `statement` is "SELECT" or "ORDER
/// BY".
void requireResolved(const Collating& collating, const char* statement, int column);

}  // namespace zov::local
