// Cuts a T-SQL script into batches at its GO lines, as the server's own tools do.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zov {

struct ScriptBatch {
    QString text;       ///< from its first line to the line break before GO, to the byte
    int firstLine = 1;  ///< line of the script where the text begins, from 1
    int repeat = 1;     ///< GO n; 0 for a count that no batch can be run
    int goLine = 0;     ///< line of that GO, 0 at the script's end
};

/// Batches that hold nothing but blanks are left out. GO counts when it stands alone on its line (a
/// count, a semicolon or a comment may follow), in any case, and not inside a comment, a string or
/// a quoted name.
std::vector<ScriptBatch> splitBatches(const QString& script);

struct UseStatement {
    QString database;
    qsizetype position = 0;  ///< of its USE within the text
    int line = 1;            ///< from 1
};

/// The USE statements of a text in their order; what stands in comments and strings is none.
std::vector<UseStatement> useStatements(const QString& script);
/// The databases that a text makes by CREATE DATABASE, each once.
QStringList createdDatabases(const QString& script);

}  // namespace zov
