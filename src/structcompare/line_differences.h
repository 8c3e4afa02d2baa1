// The detailed list of differences of two texts, line by line as they stand:
// the texts are not aligned.
#pragma once

#include <QString>

namespace zov {

/// Lists the lines that differ, each under "Differences in Source:" or "Differences in Target:".
/// Empty for equal texts. What the longer text has more goes to its list as a whole.
/// Lines behind the first begin with the line feed of the break before them, which white space
/// folding turns into a blank.
void ListLineDifferences(const QString& sourceText, const QString& targetText, QString& result);

/// Equal as they are, or when one comma at the end of each that has one, and blanks, are cut.
bool AreLinesEqualIgnoringComma(const QString& a, const QString& b);

}  // namespace zov
