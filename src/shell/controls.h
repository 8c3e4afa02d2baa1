// The controls of a panel as the logic needs them: the text pane, the object
// list, a combo box, a plain list. Widgets realise them in the desktop;
// memory_controls.h does without a display.
#pragma once

#include <QString>
#include <vector>

namespace zov {

/// `txtTXProc`: an object's text. Offsets and lines are those of plainText() and count from 0.
class TextPane {
 public:
    virtual ~TextPane() = default;
    /// The text as it was set.
    virtual QString text() const = 0;
    /// The text with every line break (CR LF, CR or LF) as one LF, so that a break is one
    /// character.
    virtual QString plainText() const = 0;
    virtual void setText(const QString& text) = 0;
    virtual int lineCount() const = 0;
    /// Offset of a line's first character; lines from 0; -1 when there is no such line.
    virtual int lineStart(int line) const = 0;
    virtual void setCaret(int offset) = 0;
    virtual QString selectedText() const = 0;
    virtual void select(int start, int end) = 0;
    /// Paints the background of the selection, colour as 0xBBGGRR.
    virtual void setSelectionBackColor(quint32 color) = 0;
    virtual void setFocus() = 0;
    /// The page that the text stands on, in twips; for panes that have one. A line of the text is a
    /// line of the pane on any page.
    virtual void setPageSize(qint32 width, qint32 height) { (void)width, (void)height; }

    /// Why the text of the selected object isn't here; empty when it is.
    QString Trouble;
};

/// One row of `pvlSqlObj`: name, reference date, catalogue id; and what the list doesn't show.
struct ObjectListRow {
    QString name;  ///< as shown, with the schema in front where the list holds the bare name twice
    QString refDate;
    qint32 id = 0;
    QString schema = {};        ///< empty: not known
    QString objectName = {};    ///< as the catalogue has it; empty: `name` is that
    bool hasNamesakes = false;  ///< other objects of the database may have this name

    /// The name as the catalogue has it.
    QString bareName() const { return objectName.isEmpty() ? name : objectName; }
};

/// `pvlSqlObj`: rows from 0. The tag "OFF" silences its selection events.
class ObjectList {
 public:
    virtual ~ObjectList() = default;
    virtual int rowCount() const = 0;
    virtual const ObjectListRow& row(int index) const = 0;
    virtual void setRows(std::vector<ObjectListRow> rows) = 0;
    virtual void removeRow(int index) = 0;
    virtual int selectedCount() const = 0;
    /// The first selected row, -1 when there is none.
    virtual int selectedIndex() const = 0;
    /// Selects this row alone; -1 selects none.
    virtual void selectRow(int index) = 0;
    virtual void setRedraw(bool on) = 0;
    virtual void refresh() = 0;

    QString Tag;
};

/// A combo box or a single-selection list of texts with item data (`cmbType`, `cmbServer`,
/// `cmbOwners`, `pvlDb`). Items from 0.
class ChoiceList {
 public:
    virtual ~ChoiceList() = default;
    virtual void clear() = 0;
    virtual void addItem(const QString& text, qint32 itemData = 0) = 0;
    virtual int count() const = 0;
    virtual QString itemText(int index) const = 0;
    virtual qint32 itemData(int index) const = 0;
    virtual int selectedIndex() const = 0;
    virtual void selectIndex(int index) = 0;
    /// The text of the selected item, empty when there is none.
    virtual QString text() const = 0;
    /// Selects the item of this text; a text that no item has leaves nothing selected.
    virtual void setText(const QString& text) = 0;
    virtual void setRedraw(bool on) = 0;

    QString Tag;
};

}  // namespace zov
