// Cuts a batch into steps: T-SQL needs no separator between statements, so the grammar of each
// decides where it ends; IF, WHILE, BEGIN and TRY become jumps between steps. Nothing is run here.
#pragma once

#include "data/local/tsql_lexer.h"

#include <span>
#include <vector>

namespace zov::local {

struct BatchStep {
    enum class Kind {
        Statement,     ///< tokens begin..end
        BranchUnless,  ///< tokens are a condition; on to `target` unless it holds
        Jump,          ///< to `target`
        EnterTry,      ///< errors go to `target` from here
        LeaveTry,
        LeaveCatch,
        Return,
    };
    Kind kind = Kind::Statement;
    size_t begin = 0;
    size_t end = 0;
    size_t target = 0;
    int line = 1;
};

/// `tokens` as tokenize() gives them, with their End. Throws DbError at a syntax error of the
/// control flow (a missing END, an ELSE without IF).
std::vector<BatchStep> cutBatch(std::span<const Token> tokens);

/// The index behind the statement that begins at `begin`; ";" is not a part of it.
size_t statementEnd(std::span<const Token> tokens, size_t begin);

}  // namespace zov::local
