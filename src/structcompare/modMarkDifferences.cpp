#include "structcompare/modMarkDifferences.h"

#include "core/error_report.h"
#include "shell/shell.h"
#include "structcompare/simple_case.h"
#include "util/text.h"

#include <QHash>

namespace zov {
namespace {

constexpr const char* Module = "modMarkDifferences";
constexpr size_t LookAhead = 20;

void SetMarkRange(std::vector<CompLine>& lines, size_t first, size_t behindLast, qint32 mark) {
    for (size_t i = first; i < behindLast; ++i) lines[i].lngMark = mark;
}

// Where `line` stands again in `lines`, from `from` to the end of the window; npos when it doesn't.
constexpr size_t npos = size_t(-1);
size_t FindLineAhead(const QString& line, const std::vector<CompLine>& lines, size_t from) {
    const size_t end = std::min(lines.size(), from + LookAhead + 1);
    for (size_t k = from; k < end; ++k)
        if (lines[k].strText == line) return k;
    return npos;
}

// Lines behind the end of the walk have no mark yet.
void MarkTrailingLines(std::vector<CompLine>& lines, qint32 mark) {
    for (size_t i = lines.size(); i > 0 && lines[i - 1].lngMark == MarkNone; --i)
        lines[i - 1].lngMark = mark;
}

void PaintLines(TextPane& pane, const std::vector<CompLine>& lines) {
    for (const CompLine& line : lines) {
        pane.select(line.lngStart, line.lngEnd);
        pane.setSelectionBackColor(colorOfMark(line.lngMark));
    }
}

QString firstWordOf(const QString& upperLine) {
    const qsizetype blank = upperLine.indexOf(u' ');
    return Trim(blank < 0 ? QStringView(upperLine) : QStringView(upperLine).left(blank));
}

// Cuts the line before a word that doesn't begin it.
QString cutBefore(const QString& line, QStringView word) {
    const qsizetype at = line.indexOf(word);
    return at > 0 ? line.left(at) : line;
}

void Mark_Differences_PerSourceLine(CompLine& line, std::vector<CompLine>& target,
                                    const QHash<QString, size_t>& firstWithWord) {
    const QString upper = simpleUpper(line.strText);
    // A blank line keeps no verdict.
    if (Trim(upper).isEmpty()) return;
    const QString word = firstWordOf(upper);
    const auto found = firstWithWord.constFind(word);
    if (found == firstWithWord.constEnd()) {
        line.lngMark = MarkDeleted;
        return;
    }
    CompLine& partner = target[*found];
    const QString other = simpleUpper(partner.strText);
    const bool whole = word == u"CONSTRAINT" || word == u"INDEX";
    const bool same =
        upper == other || (!whole && StripExtraColInfo(upper) == StripExtraColInfo(other));
    line.lngMark = partner.lngMark = same ? MarkNotChanged : MarkChanged;
}

}  // namespace

quint32 colorOfMark(qint32 mark) {
    switch (mark) {
        case MarkNone:
            return 0x00FFFF;
        case MarkNotChanged:
            return 0xFFFFFF;
        case MarkChanged:
            return 0xC0FFC0;
        case MarkInserted:
            return 0xD9C37A;
        case MarkDeleted:
            return 0xC0C0FF;
        default:
            return 0;
    }
}

QString captionOfMark(qint32 mark) {
    switch (mark) {
        case MarkNotChanged:
            return QStringLiteral("Not Changed");
        case MarkChanged:
            return QStringLiteral("Changed");
        case MarkInserted:
            return QStringLiteral("Inserted (exists only in target)");
        case MarkDeleted:
            return QStringLiteral("Deleted (exists only in source)");
        default:
            return {};
    }
}

void MarkByWalk(std::vector<CompLine>& source, std::vector<CompLine>& target) {
    size_t i = 0, j = 0;
    for (size_t round = 0; round < source.size(); ++round, ++i, ++j) {
        if (i >= source.size()) {
            SetMarkRange(target, j, target.size(), MarkInserted);
            return;
        }
        if (j >= target.size()) {
            SetMarkRange(source, i, source.size(), MarkDeleted);
            return;
        }
        // Target is searched first: a line that could be read either way counts as an insertion.
        if (const size_t k = FindLineAhead(source[i].strText, target, j); k != npos) {
            SetMarkRange(target, j, k, MarkInserted);
            j = k;
            source[i].lngMark = target[j].lngMark = MarkNotChanged;
        } else if (const size_t s = FindLineAhead(target[j].strText, source, i); s != npos) {
            SetMarkRange(source, i, s, MarkDeleted);
            i = s;
            source[i].lngMark = target[j].lngMark = MarkNotChanged;
        } else {
            source[i].lngMark = target[j].lngMark = MarkChanged;
        }
    }
}

void Mark_Differences_Tables(std::vector<CompLine>& source, std::vector<CompLine>& target) {
    // Of several target lines with one first word only the first is ever looked at.
    QHash<QString, size_t> firstWithWord;
    for (size_t t = target.size(); t > 0; --t) {
        const QString upper = simpleUpper(target[t - 1].strText);
        if (!Trim(upper).isEmpty()) firstWithWord.insert(firstWordOf(upper), t - 1);
    }
    for (CompLine& line : source)
        guardedRun(Module, "Mark_Differences_PerSourceLine",
                   [&] { Mark_Differences_PerSourceLine(line, target, firstWithWord); });
}

QString StripExtraColInfo(const QString& line) {
    return guarded(Module, "StripExtraColInfo", QString(),
                   [&] { return Trim(cutBefore(cutBefore(line, u"CONSTRAINT"), u"DEFAULT")); });
}

MarkedLines Mark_Differences(TextPane& source, TextPane& target, bool& error,
                             ObjectType objectType) {
    error = false;
    MarkedLines lines;
    guardedRun(Module, "Mark_Differences", [&] {
        if (source.text() == target.text()) return;
        bool sourceError = false, targetError = false;
        TXText_ConvTextToArray(source, lines.source, sourceError);
        TXText_ConvTextToArray(target, lines.target, targetError);
        if (sourceError || targetError) {
            error = true;
            shell().messageBox(QStringLiteral("Error occurred."));
            return;
        }
        // One side without lines is marked, but nothing is painted.
        if (lines.source.empty() || lines.target.empty()) {
            SetMarkRange(lines.target, 0, lines.target.size(), MarkInserted);
            SetMarkRange(lines.source, 0, lines.source.size(), MarkDeleted);
            return;
        }
        if (objectType == ObjectType::Table) {
            SetMarkRange(lines.target, 0, lines.target.size(), MarkInserted);
            Mark_Differences_Tables(lines.source, lines.target);
        } else {
            MarkByWalk(lines.source, lines.target);
        }
        MarkTrailingLines(lines.source, MarkDeleted);
        MarkTrailingLines(lines.target, MarkInserted);
        PaintLines(source, lines.source);
        PaintLines(target, lines.target);
    });
    return lines;
}

void TxText_CopyToClipboard(TextPane& pane) {
    guardedRun(Module, "TxText_CopyToClipboard", [&] {
        std::vector<CompLine> lines;
        bool error = false;
        TXText_ConvTextToArray(pane, lines, error);
        if (!error && !lines.empty()) shell().setClipboardText(TXText_ConvArrayToText(lines));
    });
}

QString TXText_ConvArrayToText(const std::vector<CompLine>& lines) {
    QString text;
    for (const CompLine& line : lines) text += line.strText + CRLF;
    return text;
}

}  // namespace zov
