#include "structcompare/modIgnoreColumnsOrder.h"

#include "core/error_report.h"
#include "shell/shell.h"
#include "structcompare/modSortTypeArrays.h"

namespace zov {

bool CompareProcs_IgnoreColumnsOrder(const TextPane& source, const TextPane& target) {
    return guarded("modIgnoreColumnsOrder", "CompareProcs_IgnoreColumnsOrder", false, [&] {
        std::vector<CompLine> sourceLines, targetLines;
        bool error = false;
        const qint32 sourceCount = TXText_ConvTextToArray(source, sourceLines, error);
        if (error) {
            shell().messageBox(
                QStringLiteral("Ignore Columns Order option (Source) - error occurred."));
            return false;
        }
        const qint32 targetCount = TXText_ConvTextToArray(target, targetLines, error);
        if (error) {
            shell().messageBox(
                QStringLiteral("Ignore Columns Order option (Target) - error occurred."));
            return false;
        }
        if (sourceCount != targetCount) return false;
        SortArray_CompLine(sourceLines, true, true);
        SortArray_CompLine(targetLines, true, true);
        return AreTypeArrays_CompLine_Identical(sourceLines, targetLines, sourceCount, targetCount);
    });
}

}  // namespace zov
