// "Visualize Differences": two texts side by side, aligned line by line.
#pragma once

#include "shell/screen.h"
#include "structcompare/line_diff.h"

namespace zov {

class frmCompareText : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmCompareText"); }
    QString caption() const override { return QStringLiteral("Comparison of Selected Objects"); }
    QString plainText() const override;

    void ShowUp(const QString& SourceName, const QString& SourceText, const QString& TargetName,
                const QString& TargetText);

    QString lblSource, lblTarget;
    QStringList sourceLines, targetLines;
    std::vector<AlignedRow> rows;

    void cmdClose() { close(); }
};

/// The meaning of the colours that mark differences.
class frmColorSchema : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmColorSchema"); }
    QString caption() const override { return QStringLiteral("Color Schema"); }

    void ShowUp();

    QString lblInfo = QStringLiteral(
        "Following colors are used to mark differences in structure of compared objects.");
    /// `lblCol` and `lblGen`, in order.
    struct Swatch {
        quint32 color;  ///< 0xBBGGRR
        QString caption;
    };
    static std::vector<Swatch> swatches();

    void cmdClose() { close(); }
};

}  // namespace zov
