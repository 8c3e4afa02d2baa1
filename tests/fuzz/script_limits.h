// How deeply the scripts are nested that the targets hand to the parser.
#pragma once

#include "data/local/tsql_lexer.h"

namespace zov::fuzz {

/// The sanitizers' frames are several times the usual ones, and the parser's bound on nesting is
/// counted for these: beyond it only the stack's size is tested.
inline constexpr int MostNesting = 60;
/// Chains of operators become trees as deep as they are long.
inline constexpr int MostOperators = 400;

inline bool isTame(const std::vector<local::Token>& tokens) {
    int depth = 0, operators = 0;
    for (const local::Token& token : tokens) {
        const bool opens = token.is("(") || token.is("BEGIN") || token.is("CASE") ||
                           token.is("IF") || token.is("WHILE") || token.is("NOT") ||
                           token.is("ELSE");
        const bool closes = token.is(")") || token.is("END");
        depth += opens ? 1 : closes ? -1 : 0;
        if (depth > MostNesting) return false;
        if (token.kind == local::TokenKind::Operator && ++operators > MostOperators) return false;
    }
    return true;
}

}  // namespace zov::fuzz
