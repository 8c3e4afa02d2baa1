// Windows that fit their display and texts that fit their windows: sizes bounded by
// the screen, names cut in their middle, and names that look like markup shown as
// they are.
#pragma once

#include <QComboBox>
#include <QLabel>

class QDialog;
class QMessageBox;

namespace zov::qt {

/// Makes a window no larger than its screen has room, and moves it onto that.
void fitToScreen(QWidget& window);
/// The same for a dialog before it is shown: what doesn't fit scrolls, its last row of buttons
/// stays in sight.
void fitDialog(QDialog& dialog);
/// A box whose text is wider or higher than the screen shows it in a field that wraps and scrolls.
void fitBox(QMessageBox& box);

/// Labels that don't say what their text is take it as plain text, not as markup if it looks so.
void showNamesPlainly(QWidget& parent);
/// A tool tip that shows the text as it is, also when it looks like markup.
QString plainToolTip(const QString& text);

/// A line of plain text that is cut in its middle where there is no room; a tool tip shows it
/// whole.
class ElidedLabel : public QLabel {
    Q_OBJECT
 public:
    explicit ElidedLabel(const QString& text = {}, QWidget* parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    /// The text as it is painted.
    QString shownText() const;

 protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
};

/// Paints a closed combo box with its text cut in the middle where there is no room; to be called
/// in place of its paint event.
void paintElided(QComboBox& box, const QStyleOptionComboBox& option);

}  // namespace zov::qt
