// The account of a run: what it asked of its servers and did not get whole. While one is kept,
// every statement and every read that fails goes into it by itself, silent ones too; a run says
// "identical" only when its account is whole.
#pragma once

#include <QString>

#include <vector>

namespace zov {

/// Something that was asked for and did not come, or not whole.
struct AccountEntry {
    QString place;    ///< "server.database"; empty when no server had been asked
    QString doing;    ///< the statement, or in words what was being done
    QString message;  ///< the server's own text
    qint32 number = 0;
    /// The server refused this question alone: the session lives, and the next one may be answered.
    bool refused = false;
    bool told = false;  ///< a box or a report has told the user

    /// "server.database: message", in one line.
    QString sentence() const;
};

class RunAccount {
 public:
    /// What went in a moment ago and is on its way up isn't put in again.
    void add(const AccountEntry& entry);
    bool isWhole() const { return entries_.empty(); }
    /// In the order in which they came.
    const std::vector<AccountEntry>& entries() const { return entries_; }

 private:
    std::vector<AccountEntry> entries_;
};

/// Keeps an account for the length of a scope. Scopes nest: what fails goes into the innermost
/// account alone, whose keeper decides what it means to the run around it.
class KeepAccount {
 public:
    explicit KeepAccount(RunAccount& account);
    ~KeepAccount();
    KeepAccount(const KeepAccount&) = delete;
    KeepAccount& operator=(const KeepAccount&) = delete;

 private:
    RunAccount* outer_;
};

/// For a probe whose failure is an answer and is followed by another way of asking: what fails
/// within the scope goes into no account.
class ExpectFailure {
 public:
    ExpectFailure();
    ~ExpectFailure();
    ExpectFailure(const ExpectFailure&) = delete;
    ExpectFailure& operator=(const ExpectFailure&) = delete;

 private:
    RunAccount* outer_;
};

/// Puts a failure into the account that is kept in this thread, if any.
void addToAccount(const AccountEntry& entry);
/// The same for the exception being handled; call it in a catch block. `told`: it is shown to the
/// user, too.
void addCaughtErrorToAccount(const QString& place, const QString& doing, bool told = false);

}  // namespace zov
