// Finding in a read-only text: every place is marked, one of them is selected, and
// the user is told which of how many it is.
#pragma once

#include <QLineEdit>
#include <QList>

class QPlainTextEdit;

namespace zov::qt {

class TextFind {
 public:
    explicit TextFind(QPlainTextEdit* text) : text_(text) {}

    /// Looks for `wanted` in any case and marks its places; empty takes the marks away.
    void search(const QString& wanted);
    /// Selects the next or previous place, around the text's end.
    void goOn(bool forward);
    /// Selects the place at the caret or the next one behind it.
    void goFromHere();

    qsizetype count() const { return places_.size(); }
    /// "2 of 7", "not found"; empty when nothing is looked for.
    QString note() const;

 private:
    void select(qsizetype place);
    /// Where the selection lies among the places; -1 when it is none of them.
    qsizetype selectedPlace() const;

    QPlainTextEdit* text_;
    QString wanted_;
    QList<int> places_;  ///< offsets in the document, ascending
};

/// The line that is typed in. Enter looks for the next place and Shift+Enter for the previous one;
/// neither reaches a screen's button.
class FindField : public QLineEdit {
    Q_OBJECT
 public:
    explicit FindField(QWidget* parent = nullptr);

 signals:
    void searched(bool forward);

 protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace zov::qt
