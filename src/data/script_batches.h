// Cuts a T-SQL script into batches at its GO lines, as the server's own tools do.
#pragma once

#include <QString>

#include <vector>

namespace zov {

struct ScriptBatch {
    QString text;       ///< from its first line to the line break before GO, to the byte
    int firstLine = 1;  ///< line of the script where the text begins, from 1
    int repeat = 1;     ///< GO n
};

/// Batches that hold nothing but blanks are left out. GO counts when it stands alone on its line (a
/// count, a semicolon or a comment may follow), in any case, and not inside a comment, a string or a
/// quoted name.
std::vector<ScriptBatch> splitBatches(const QString& script);

}  // namespace zov
