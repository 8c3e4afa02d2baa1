// How deep statements may be nested, and how the deep ones are gone through without exhausting the
// stack: reading and translating recurse over what a user nests, and every so many levels they go
// on with a stack of their own.
#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <type_traits>

namespace zov::local {

/// Parentheses, CASE, functions, sub-queries, NOT and signs, BEGIN and IF: what lies deeper than
/// this is refused.
inline constexpr int MaxNesting = 1024;
/// How many operands a chain ("a + b + c", AND, OR) and how many parts a UNION may have.
inline constexpr size_t MaxChain = 32768;

/// Whether SQLite's message says that a text is too deep for it.
bool isTooDeepForSqlite(const QString& message);
/// Throws error 191 for the line (0: the statement's own).
[[noreturn]] void failTooDeep(int line);

/// Runs `work` on a stack of its own while the caller waits, and passes on what it throws.
void onFreshStack(const std::function<void()>& work);

/// Runs `work`, which is `level` calls deep; from level to level the stack is renewed in time.
template <typename Work>
auto atLevel(int level, Work&& work) -> std::invoke_result_t<Work> {
    constexpr int LevelsOfOneStack = 64;
    if (level % LevelsOfOneStack != 0) return work();
    std::optional<std::invoke_result_t<Work>> result;
    onFreshStack([&] { result.emplace(work()); });
    return std::move(*result);
}

}  // namespace zov::local
