#include "data/local/nesting.h"

#include "data/local/query_values.h"

#include <QThread>

#include <exception>
#include <memory>
#include <new>

namespace zov::local {

bool isTooDeepForSqlite(const QString& message) {
    return message == u"parser stack overflow" ||
           message.startsWith(u"Expression tree is too large") ||
           message == u"too many terms in compound SELECT";
}

void failTooDeep(int line) {
    DbError error(ado_error::SyntaxError,
                  QStringLiteral("Some part of your SQL statement is nested too deeply. "
                                 "Rewrite the query or break it up into smaller queries."),
                  QStringLiteral("42000"), 191);
    error.line = line;
    throw error;
}

void onFreshStack(const std::function<void()>& work) {
    // Room for the levels of one stack with the frames of a build under a sanitizer.
    constexpr uint StackBytes = 16 * 1024 * 1024;
    std::exception_ptr failure;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    thread->setStackSize(StackBytes);
    thread->start();
    // A thread that couldn't be made is neither running nor done.
    if (!thread->isRunning() && !thread->isFinished()) throw std::bad_alloc();
    thread->wait();
    if (failure) std::rethrow_exception(failure);
}

}  // namespace zov::local
