// The panel controls without a display: for the command line, for the scratch
// panes of bulk runs and for tests.
#pragma once

#include "shell/controls.h"

namespace zov {

class MemoryTextPane : public TextPane {
 public:
    QString text() const override { return text_; }
    QString plainText() const override { return plain_; }
    void setText(const QString& text) override;
    int lineCount() const override { return text_.isEmpty() ? 0 : int(starts_.size()); }
    int lineStart(int line) const override;
    void setCaret(int offset) override { selectionStart_ = selectionEnd_ = offset; }
    QString selectedText() const override;
    void select(int start, int end) override {
        selectionStart_ = start;
        selectionEnd_ = end;
    }
    void setSelectionBackColor(quint32 color) override;
    void setFocus() override {}

    struct Paint {
        int start;
        int end;
        quint32 color;
    };
    const std::vector<Paint>& paints() const { return paints_; }

 private:
    QString text_;
    QString plain_;
    std::vector<int> starts_;
    std::vector<Paint> paints_;
    int selectionStart_ = 0;
    int selectionEnd_ = 0;
};

class MemoryObjectList : public ObjectList {
 public:
    int rowCount() const override { return int(rows_.size()); }
    const ObjectListRow& row(int index) const override { return rows_[size_t(index)]; }
    void setRows(std::vector<ObjectListRow> rows) override;
    void removeRow(int index) override;
    int selectedCount() const override;
    int selectedIndex() const override;
    void selectRow(int index) override;
    void setRedraw(bool) override {}
    void refresh() override {}
    /// Adds a row to the selection, as a user does with Ctrl.
    void addToSelection(int index);

 private:
    std::vector<ObjectListRow> rows_;
    std::vector<int> selected_;
};

class MemoryChoiceList : public ChoiceList {
 public:
    void clear() override;
    void addItem(const QString& text, qint32 itemData = 0) override;
    int count() const override { return int(items_.size()); }
    QString itemText(int index) const override { return items_[size_t(index)].text; }
    qint32 itemData(int index) const override { return items_[size_t(index)].data; }
    int selectedIndex() const override { return selected_; }
    void selectIndex(int index) override { selected_ = index; }
    QString text() const override { return selected_ < 0 ? QString() : itemText(selected_); }
    void setText(const QString& text) override;
    void setRedraw(bool) override {}

 private:
    struct Item {
        QString text;
        qint32 data;
    };
    std::vector<Item> items_;
    int selected_ = -1;
};

}  // namespace zov
