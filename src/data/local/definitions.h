// How a SQL Server keeps the expressions of defaults, checks, computed columns and index filters:
// not as written but printed anew from the parsed expression, so that "0" and "(0)" read back
// alike.
#pragma once

#include "data/local/tsql_lexer.h"

#include <span>

namespace zov::local {

enum class DefinitionForm {
    Current,    ///< servers from version 9: "((0))", "([a]>=(0) AND [a]<=(9))"
    Filter,     ///< the same for an index's filter, where IN lists stay lists
    AsWritten,  ///< older servers: the written text in one pair of parentheses
};

/// The stored text of an expression. What the printer doesn't know is kept as it was written, in
/// one pair of parentheses.
QString storedExpression(std::span<const Token> expression, DefinitionForm form);

/// The expression of a default's stored text: "((0))" as it is, of "CREATE DEFAULT d AS 0" what
/// stands behind AS.
QString defaultExpression(const QString& stored);

/// "[name]" with "]" doubled.
QString bracketed(const QString& name);

}  // namespace zov::local
