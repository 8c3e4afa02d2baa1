#include "core/run_account.h"

#include "core/caught_error.h"
#include "util/numbered_error.h"

namespace zov {
namespace {

/// One a thread: what a query's own thread meets is told to the thread that waits for it.
thread_local RunAccount* kept = nullptr;

bool wasRefused() {
    try {
        throw;
    } catch (const NumberedError& error) {
        return error.onlyThisRequestFailed();
    } catch (...) {
        return false;
    }
}

}  // namespace

QString AccountEntry::sentence() const {
    const QString text = message.simplified();
    return place.isEmpty() ? text : place + QStringLiteral(": ") + text;
}

KeepAccount::KeepAccount(RunAccount& account) : outer_(kept) {
    kept = &account;
}
KeepAccount::~KeepAccount() {
    kept = outer_;
}

ExpectFailure::ExpectFailure() : outer_(kept) {
    kept = nullptr;
}
ExpectFailure::~ExpectFailure() {
    kept = outer_;
}

void RunAccount::add(const AccountEntry& entry) {
    if (!entries_.empty()) {
        AccountEntry& last = entries_.back();
        const bool sameStatement = entry.place == last.place && entry.doing == last.doing;
        if (last.number == entry.number && last.message == entry.message &&
            (entry.place.isEmpty() || sameStatement)) {
            last.told |= entry.told;
            return;
        }
    }
    entries_.push_back(entry);
}

void addToAccount(const AccountEntry& entry) {
    if (kept) kept->add(entry);
}

void addCaughtErrorToAccount(const QString& place, const QString& doing, bool told) {
    if (!kept) return;
    const CaughtError error = caughtError();
    kept->add({place, doing, error.description, error.number, wasRefused(), told});
}

}  // namespace zov
