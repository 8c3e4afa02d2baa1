// What the main window's status bar says about a comparison: it agrees with the
// verdict, and never says that there is no difference between texts that look
// different without saying what doesn't count.
#include "core/globals.h"
#include "core/main/frmMain.h"
#include "structcompare/left_out.h"

namespace zov {
namespace {

QString whyNoneToGoTo(bool onlyEmptyLines, bool oneIsEmpty) {
    if (oneIsEmpty) return QStringLiteral("Different: one of the texts is empty.");
    if (onlyEmptyLines) return QStringLiteral("Different, in empty lines only.");
    return QStringLiteral("Different, but no line is marked: Visualize Differences shows where.");
}

QString identicalStatus(const PairVerdict& verdict) {
    return QStringLiteral("Identical, leaving out ") + joinedWithAnd(verdict.leftOut) + u'.';
}

}  // namespace

QString VerdictStatus(const PairVerdict& verdict, size_t stops, bool onlyEmptyLines,
                      bool oneIsEmpty) {
    if (!verdict.isGiven) return {};
    if (verdict.identical)
        return verdict.leftOut.isEmpty() ? QStringLiteral("The texts are identical.")
                                         : identicalStatus(verdict);
    if (stops == 0) return whyNoneToGoTo(onlyEmptyLines, oneIsEmpty);
    if (stops == 1) return QStringLiteral("1 difference: F8 goes to it.");
    return QStringLiteral("%1 differences: F8 goes to the next one, Shift+F8 to the previous one.")
        .arg(stops);
}

QString NoDifferenceStatus(const PairVerdict& verdict, bool onlyEmptyLines, bool oneIsEmpty) {
    if (!verdict.isGiven) return QStringLiteral("Compare two objects first (F7).");
    if (!verdict.identical) return whyNoneToGoTo(onlyEmptyLines, oneIsEmpty);
    return verdict.leftOut.isEmpty()
               ? QStringLiteral("There is no difference between the texts.")
               : QStringLiteral("No difference that counts. ") + identicalStatus(verdict);
}

QString StatusMessage(const QString& text) {
    return globals().gblnDebugMode && !text.isEmpty() ? QStringLiteral("Debug: ") + text : text;
}

}  // namespace zov
