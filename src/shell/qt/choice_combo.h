// `cmbServer`, `cmbType`, `cmbOwners`, `pvlDb`: a combo box behind the ChoiceList
// interface. While the window is busy it takes no clicks and keys, so that it never
// shows a choice that was not followed.
#pragma once

#include "shell/controls.h"
#include "shell/qt/window_fit.h"

#include <QComboBox>
#include <QHelpEvent>
#include <QStyleOption>
#include <QToolTip>

#include <functional>

namespace zov::qt {

class ChoiceCombo : public QComboBox, public ChoiceList {
    Q_OBJECT
 public:
    explicit ChoiceCombo(QWidget* parent = nullptr) : QComboBox(parent) {
        // The wheel scrolls what is under it; it changes a box only once that has the focus.
        setFocusPolicy(Qt::StrongFocus);
    }

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

    /// Asked at each click and key: true while nothing may be chosen.
    std::function<bool()> isLocked;

 protected:
    bool event(QEvent* event) override {
        switch (event->type()) {
            case QEvent::Wheel:
                if (hasFocus() && !locked()) break;
                event->ignore();
                return true;
            case QEvent::MouseButtonPress:
            case QEvent::KeyPress:
                if (!locked()) break;
                event->ignore();
                return true;
            case QEvent::ToolTip:
                // A name may be longer than its box.
                if (!toolTip().isEmpty() || currentText().isEmpty()) break;
                QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                                   plainToolTip(currentText()), this);
                return true;
            default:
                break;
        }
        return QComboBox::event(event);
    }
    void paintEvent(QPaintEvent*) override {
        QStyleOptionComboBox option;
        initStyleOption(&option);
        paintElided(*this, option);
    }

 private:
    bool locked() const { return isLocked && isLocked(); }
};

}  // namespace zov::qt
