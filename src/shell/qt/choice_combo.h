// `cmbServer`, `cmbType`, `cmbOwners`: a combo box behind the ChoiceList interface.
#pragma once

#include "shell/controls.h"

#include <QComboBox>

namespace zov::qt {

class ChoiceCombo : public QComboBox, public ChoiceList {
    Q_OBJECT
 public:
    using QComboBox::QComboBox;

    void clear() override { QComboBox::clear(); }
    void addItem(const QString& text, qint32 itemData = 0) override {
        QComboBox::addItem(text, itemData);
    }
    int count() const override { return QComboBox::count(); }
    QString itemText(int index) const override { return QComboBox::itemText(index); }
    qint32 itemData(int index) const override { return QComboBox::itemData(index).toInt(); }
    int selectedIndex() const override { return currentIndex(); }
    void selectIndex(int index) override { setCurrentIndex(index); }
    QString text() const override { return currentText(); }
    void setText(const QString& text) override {
        setCurrentIndex(findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive));
    }
    void setRedraw(bool on) override { setUpdatesEnabled(on); }
};

}  // namespace zov::qt
