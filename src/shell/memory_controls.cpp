#include "shell/memory_controls.h"

#include <algorithm>

namespace zov {

void MemoryTextPane::setText(const QString& text) {
    text_ = text;
    plain_ = text;
    plain_.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    paints_.clear();
    starts_.assign(1, 0);
    for (qsizetype i = 0; i < plain_.size(); ++i)
        if (plain_[i] == u'\n') starts_.push_back(int(i + 1));
    selectionStart_ = selectionEnd_ = 0;
}

int MemoryTextPane::lineStart(int line) const {
    return line < 0 || line >= lineCount() ? -1 : starts_[size_t(line)];
}

QString MemoryTextPane::selectedText() const {
    return plain_.mid(selectionStart_, selectionEnd_ - selectionStart_);
}

void MemoryTextPane::setSelectionBackColor(quint32 color) {
    paints_.push_back({selectionStart_, selectionEnd_, color});
}

void MemoryObjectList::setRows(std::vector<ObjectListRow> rows) {
    rows_ = std::move(rows);
    selected_.clear();
}

void MemoryObjectList::removeRow(int index) {
    rows_.erase(rows_.begin() + index);
    std::erase(selected_, index);
    for (int& row : selected_)
        if (row > index) --row;
}

int MemoryObjectList::selectedCount() const {
    return int(selected_.size());
}

int MemoryObjectList::selectedIndex() const {
    return selected_.empty() ? -1 : *std::min_element(selected_.begin(), selected_.end());
}

void MemoryObjectList::selectRow(int index) {
    selected_.clear();
    if (index >= 0 && index < rowCount()) selected_.push_back(index);
}

void MemoryObjectList::addToSelection(int index) {
    if (std::find(selected_.begin(), selected_.end(), index) == selected_.end())
        selected_.push_back(index);
}

void MemoryChoiceList::clear() {
    items_.clear();
    selected_ = -1;
}

void MemoryChoiceList::addItem(const QString& text, qint32 itemData) {
    items_.push_back({text, itemData});
}

void MemoryChoiceList::setText(const QString& text) {
    selected_ = -1;
    for (int i = 0; i < count() && selected_ < 0; ++i)
        if (items_[size_t(i)].text == text) selected_ = i;
}

}  // namespace zov
