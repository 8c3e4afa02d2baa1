// Pairs of databases whose names are as bad as names get: namesakes in several schemas, dots,
// quotes, brackets, blanks, comment signs, other scripts, letters that differ in case only. The
// same seed makes the same pair.
#pragma once

#include <QString>
#include <QStringList>

#include <random>

namespace zov::test {

struct GeneratedPair {
    QString source;  ///< scripts
    QString target;
    /// Both databases tell letter cases apart, and may hold names that differ in them only.
    bool cased = false;
};

/// About every third pair holds the same on both sides.
GeneratedPair generatePair(quint32 seed);

}  // namespace zov::test
