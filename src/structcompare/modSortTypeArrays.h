// Sorting and comparing arrays of lines.
#pragma once

#include "structcompare/comp_line.h"

namespace zov {

/// Sorts by strText in the order of UTF-16 code units, lower-cased if `ignoreCase`. Records of
/// equal keys come out in the order that an exchange sort over the whole array leaves them in,
/// which depends on all the lines; it is not their order of arrival.
void SortArray_CompLine(std::vector<CompLine>& lines, bool ascending, bool ignoreCase);

/// Exact equality of strText at every position, whatever the setting on letter case.
/// Counts are those of the arrays' used elements.
bool AreTypeArrays_CompLine_Identical(const std::vector<CompLine>& a,
                                      const std::vector<CompLine>& b, qint32 countA, qint32 countB);

}  // namespace zov
