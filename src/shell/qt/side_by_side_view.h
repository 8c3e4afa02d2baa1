// Two texts side by side, row for row, with the changed words of a changed line
// marked. Paints the visible rows only, so that long texts cost nothing.
#pragma once

#include "structcompare/line_diff.h"

#include <QAbstractScrollArea>

namespace zov::qt {

class SideBySideView : public QAbstractScrollArea {
    Q_OBJECT
 public:
    explicit SideBySideView(QWidget* parent = nullptr);
    void setTexts(const QStringList& source, const QStringList& target,
                  const std::vector<AlignedRow>& rows);
    /// Scrolls to the next (previous) run of different rows and frames it; false when there is
    /// none.
    bool goToDifference(bool forward);
    int differenceCount() const;
    /// The run that is framed, from 1; 0 before the first was gone to.
    int currentDifference() const;

 protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

 private:
    void fitScrollBars();
    bool startsRun(int row) const;
    void paintFrame(QPainter& painter) const;
    void paintSide(QPainter& painter, int row, int side, const QRect& box) const;
    int rowHeight() const;
    double columnWidth() const;  ///< pixels of one character

    QStringList source_;
    QStringList target_;
    std::vector<AlignedRow> rows_;
    int widest_ = 0;    ///< characters
    int current_ = -1;  ///< first row of the framed run
};

}  // namespace zov::qt
