#include "shell/qt/text_find.h"

#include "shell/qt/mark_colors.h"

#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTextBlock>

#include <algorithm>

namespace zov::qt {
namespace {

// More are counted and gone to, but not marked: each mark costs at every painting.
constexpr qsizetype MostMarked = 2000;

}  // namespace

void TextFind::search(const QString& wanted) {
    wanted_ = wanted;
    places_.clear();
    QList<QTextEdit::ExtraSelection> marks;
    QTextCharFormat format;
    format.setBackground(isDarkPalette(text_->palette()) ? QColor(0x7A5C00) : QColor(0xFFE08A));
    if (!wanted.isEmpty()) {
        for (QTextBlock block = text_->document()->begin(); block.isValid(); block = block.next()) {
            const QString line = block.text();
            for (qsizetype at = line.indexOf(wanted, 0, Qt::CaseInsensitive); at >= 0;
                 at = line.indexOf(wanted, at + wanted.size(), Qt::CaseInsensitive))
                places_ += block.position() + int(at);
        }
    }
    for (const int place : places_.mid(0, MostMarked)) {
        QTextCursor cursor(text_->document());
        cursor.setPosition(place);
        cursor.setPosition(place + int(wanted.size()), QTextCursor::KeepAnchor);
        marks.append({cursor, format});
    }
    text_->setExtraSelections(marks);
}

void TextFind::select(qsizetype place) {
    QTextCursor cursor = text_->textCursor();
    cursor.setPosition(places_[place]);
    cursor.setPosition(places_[place] + int(wanted_.size()), QTextCursor::KeepAnchor);
    text_->setTextCursor(cursor);
    text_->ensureCursorVisible();
}

void TextFind::goFromHere() {
    if (places_.isEmpty()) return;
    const auto next =
        std::lower_bound(places_.begin(), places_.end(), text_->textCursor().selectionStart());
    select(next == places_.end() ? 0 : next - places_.begin());
}

void TextFind::goOn(bool forward) {
    if (places_.isEmpty()) return;
    const QTextCursor at = text_->textCursor();
    const auto first = places_.begin(), last = places_.end();
    if (forward) {
        // Behind the place that is selected, or at the caret.
        const auto next = at.hasSelection() ? std::upper_bound(first, last, at.selectionStart())
                                            : std::lower_bound(first, last, at.position());
        select(next == last ? 0 : next - first);
    } else {
        const auto next = std::lower_bound(first, last, at.selectionStart());
        select((next == first ? last : next) - first - 1);
    }
}

qsizetype TextFind::selectedPlace() const {
    const QTextCursor at = text_->textCursor();
    if (at.selectionEnd() - at.selectionStart() != wanted_.size()) return -1;
    const auto found = std::lower_bound(places_.begin(), places_.end(), at.selectionStart());
    return found != places_.end() && *found == at.selectionStart() ? found - places_.begin() : -1;
}

QString TextFind::note() const {
    if (wanted_.isEmpty()) return {};
    if (places_.isEmpty()) return QStringLiteral("not found");
    const qsizetype place = selectedPlace();
    return place < 0 ? QStringLiteral("%1 found").arg(places_.size())
                     : QStringLiteral("%1 of %2").arg(place + 1).arg(places_.size());
}

FindField::FindField(QWidget* parent) : QLineEdit(parent) {
    setObjectName(QStringLiteral("findText"));
    setAccessibleName(QStringLiteral("Text to find"));
    setClearButtonEnabled(true);
}

void FindField::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return QLineEdit::keyPressEvent(event);
    event->accept();
    emit searched(!event->modifiers().testFlag(Qt::ShiftModifier));
}

}  // namespace zov::qt
