#include "structcompare/frmCompareText.h"

#include "shell/shell.h"
#include "structcompare/modMarkDifferences.h"
#include "util/text.h"

namespace zov {

void frmCompareText::ShowUp(const QString& SourceName, const QString& SourceText,
                            const QString& TargetName, const QString& TargetText) {
    lblSource = SourceName;
    lblTarget = TargetName;
    sourceLines = withLf(SourceText).split(u'\n');
    targetLines = withLf(TargetText).split(u'\n');
    rows = alignLines(sourceLines, targetLines);
    reopen();
    shell().showModal(*this);
}

QString frmCompareText::plainText() const {
    QString text;
    for (const AlignedRow& row : rows) {
        if (row.equal) {
            text += QStringLiteral("  ") + sourceLines[row.source] + CRLF;
            continue;
        }
        if (row.source >= 0) text += QStringLiteral("- ") + sourceLines[row.source] + CRLF;
        if (row.target >= 0) text += QStringLiteral("+ ") + targetLines[row.target] + CRLF;
    }
    return text;
}

void frmColorSchema::ShowUp() {
    reopen();
    shell().showModal(*this);
}

std::vector<frmColorSchema::Swatch> frmColorSchema::swatches() {
    std::vector<Swatch> all;
    for (const qint32 mark : {MarkInserted, MarkDeleted, MarkChanged, MarkNotChanged, MarkNone})
        all.push_back({colorOfMark(mark), captionOfMark(mark)});
    return all;
}

}  // namespace zov
