// The statements that make a table and what hangs on it, one each, as a server runs them. Nothing
// here separates batches: create_script.h and the update scripts put the statements together.
#pragma once

#include "scripting/database_facts.h"

namespace zov {

/// "[Name] varchar(50) NOT NULL CONSTRAINT [DF] DEFAULT ('x')".
QString columnDefinition(const ColumnFacts& column);
/// The type with its collation and nullability, as ALTER COLUMN takes it.
QString columnTypeAndNull(const ColumnFacts& column);
/// CREATE TABLE with its columns alone, under another name when `name` (quoted) is given.
QString createTableStatement(const TableFacts& table, const QString& lineBreak,
                             const QString& name = {});
/// ALTER TABLE ... ADD CONSTRAINT for a key, CREATE INDEX for another index. Empty for a kind of
/// index that no statement is printed for.
QString createIndexStatement(const IndexFacts& index, const QString& quotedTable);
QString dropIndexStatement(const IndexFacts& index, const QString& quotedTable);
/// A foreign key or a check; one that isn't trusted is made without looking at the rows. Behind it,
/// where it is disabled, the statement that disables it.
QStringList createConstraintStatements(const ConstraintFacts& constraint,
                                       const QString& quotedTable);
QString dropConstraintStatement(const QString& name, const QString& quotedTable);
QString addDefaultStatement(const ColumnFacts& column, const QString& quotedTable);
/// sp_bindefault and sp_bindrule for what is bound to the column or the type `quotedTarget`.
QStringList bindStatements(const QString& boundDefault, const QString& boundRule,
                           const QString& quotedTarget);
/// What CREATE TYPE ... AS TABLE holds between its parentheses, one piece a line.
QStringList tableTypeLines(const TableFacts& table);

/// A comment of one line, whatever a name in it holds.
QString commentLine(QString text);
/// "N'it''s'".
QString unicodeLiteral(const QString& text);

}  // namespace zov
