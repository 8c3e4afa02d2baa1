#include "data/local/query_collating.h"

#include "data/local/query_values.h"

namespace zov::local {
namespace {

[[noreturn]] void conflict(const Collation* a, const Collation* b, const QString& operation) {
    failWith(468, QStringLiteral("Cannot resolve the collation conflict between \"%1\" and \"%2\" "
                                 "in the %3 operation.")
                      .arg(a->name(), b->name(), operation));
}

}  // namespace

Collating Collating::implicit(const Collation* collation) {
    Collating result;
    result.level = Level::Implicit;
    result.collation = collation;
    return result;
}

Collating Collating::byWord(const Collation* collation) {
    Collating result = implicit(collation);
    result.level = Level::Explicit;
    return result;
}

Collating joined(const Collating& a, const Collating& b, const QString& operation) {
    if (a.level != b.level) return a.level > b.level ? a : b;
    if (a.level == Collating::Level::Default) return a.collation ? a : b;
    if (a.level == Collating::Level::Conflict || a.collation == b.collation) return a;
    if (a.level == Collating::Level::Explicit) conflict(a.collation, b.collation, operation);
    Collating result = a;
    result.level = Collating::Level::Conflict;
    result.other = b.collation;
    result.operation = operation;
    return result;
}

const Collation* comparing(const Collating& a, const Collating& b, const QString& operation,
                           const Collation* database) {
    const Collating result = joined(a, b, operation);
    if (result.level == Collating::Level::Conflict)
        conflict(result.collation, result.other, operation);
    return result.collation ? result.collation : database;
}

QString operationName(const QString& comparison) {
    static const struct {
        const char* sign;
        const char* name;
    } names[] = {{"=", "equal to"},
                 {"<>", "not equal to"},
                 {"!=", "not equal to"},
                 {"<", "less than"},
                 {">", "greater than"},
                 {"<=", "less than or equal to"},
                 {"!>", "less than or equal to"},
                 {">=", "greater than or equal to"},
                 {"!<", "greater than or equal to"}};
    for (const auto& entry : names)
        if (comparison == QLatin1String(entry.sign)) return QLatin1String(entry.name);
    return comparison;
}

void tellUnknown(SessionState& session, const Collation& collation) {
    if (collation.rules().known || !session.toldCollations.insert(collation.name()).second) return;
    session.messages.push_back(
        {0, 0, 0,
         QStringLiteral("Collation '%1' isn't known to the embedded server; %2 is used for it.")
             .arg(collation.name(), substituteName(collation.rules()))});
}

void requireResolved(const Collating& collating, const char* statement, int column) {
    if (collating.level != Collating::Level::Conflict) return;
    failWith(451, QStringLiteral("Cannot resolve collation conflict between \"%1\" and \"%2\" in "
                                 "%3 operator occurring in %4 statement column %5.")
                      .arg(collating.collation->name(), collating.other->name(),
                           collating.operation, QLatin1String(statement))
                      .arg(column));
}

}  // namespace zov::local
