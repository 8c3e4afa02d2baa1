// The account of a run: what goes in by itself, and what a keeper or a probe keeps out of it.
#include "core/run_account.h"

#include "core/error_report.h"
#include "support/recording_shell.h"
#include "util/numbered_error.h"

#include <gtest/gtest.h>

#include <thread>

namespace zov {
namespace {

struct Refusal : NumberedError {
    using NumberedError::NumberedError;
    bool onlyThisRequestFailed() const override { return true; }
};

template <typename Error>
void failWith(const Error& error, const char* place, const char* doing, bool told = false) {
    try {
        throw error;
    } catch (...) {
        addCaughtErrorToAccount(QString::fromLatin1(place), QString::fromLatin1(doing), told);
    }
}

std::string linesOf(const RunAccount& account) {
    QStringList lines;
    for (const AccountEntry& entry : account.entries())
        lines += entry.sentence() + QStringLiteral(" / ") + entry.doing +
                 (entry.refused ? QStringLiteral(" refused") : QString()) +
                 (entry.told ? QStringLiteral(" told") : QString());
    return lines.join(u'\n').toStdString();
}

TEST(RunAccounts, TheInnermostAccountGetsWhatFails) {
    RunAccount outer, inner;
    {
        const KeepAccount keepOuter(outer);
        failWith(Refusal(7, QStringLiteral("No\r\n rights")), "S.D", "SELECT 1");
        {
            const KeepAccount keepInner(inner);
            failWith(NumberedError(8, QStringLiteral("Broken")), "S.D", "SELECT 2", true);
            const ExpectFailure probing;
            failWith(NumberedError(9, QStringLiteral("A probe")), "S.D", "SELECT 3");
        }
        EXPECT_TRUE(outer.entries().size() == 1);
    }
    failWith(NumberedError(10, QStringLiteral("Nobody keeps")), "S.D", "SELECT 4");
    EXPECT_EQ(linesOf(outer), "S.D: No rights / SELECT 1 refused");
    EXPECT_EQ(linesOf(inner), "S.D: Broken / SELECT 2 told");
    EXPECT_FALSE(outer.isWhole());
    EXPECT_TRUE(RunAccount().isWhole());
}

TEST(RunAccounts, AFailureOnItsWayUpStandsOnce) {
    RunAccount account;
    const KeepAccount keep(account);
    const NumberedError error(5, QStringLiteral("Broken"));
    failWith(error, "S.D", "SELECT 1");
    failWith(error, "", "SomeProcedure", true);  // the report further up knows no place
    EXPECT_EQ(linesOf(account), "S.D: Broken / SELECT 1 told");
    failWith(error, "S.D", "SELECT 2");
    failWith(error, "S.E", "SELECT 2");
    EXPECT_EQ(account.entries().size(), 3u);
}

TEST(RunAccounts, WhatIsReportedToTheUserIsInTheAccount) {
    test::RecordingShell shell;
    RunAccount account;
    const KeepAccount keep(account);
    const auto failing = [] { throw NumberedError(3265, QStringLiteral("No such field")); };
    guardedRun("module", "Procedure", failing);
    EXPECT_EQ(linesOf(account), "No such field / Procedure told");
}

TEST(RunAccounts, AnotherThreadsFailuresAreNotThisRuns) {
    RunAccount account;
    const KeepAccount keep(account);
    std::thread([] { failWith(NumberedError(1, QStringLiteral("Elsewhere")), "S", "x"); }).join();
    EXPECT_TRUE(account.isWhole());
}

}  // namespace
}  // namespace zov
