// What a load could not do.
#pragma once

#include <QString>

namespace zov {

/// Something that a load could not do.
struct LoadProblem {
    QString file;
    int line = 0;        ///< in the file, from 1; 0 for the file as a whole
    QString firstWords;  ///< of the statement at fault
    QString message;

    /// "file:line: message (at: first words)".
    QString toString() const;
};

}  // namespace zov
