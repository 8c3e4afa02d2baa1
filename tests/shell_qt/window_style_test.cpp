// What our own palettes' style has to hold: edges that can be seen, rows with room.
#include "shell/qt/appearance.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>

#include <gtest/gtest.h>

#include <algorithm>

namespace zov {
namespace {

/// How far the widget's most visible pixel is from the window around it, in steps of grey.
int contrast(QWidget& widget) {
    widget.ensurePolished();
    widget.resize(widget.sizeHint());
    QImage picture(widget.size(), QImage::Format_RGB32);
    const QColor ground = widget.palette().color(QPalette::Window);
    picture.fill(ground);
    widget.render(&picture, {}, {}, QWidget::DrawChildren);
    int most = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            most = std::max(most, std::abs(qGray(picture.pixel(x, y)) - qGray(ground.rgb())));
    return most;
}

TEST(WindowStyle, EmptyFieldsAreSeenInBothPalettes) {
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        QCheckBox check;
        QRadioButton radio;
        QLineEdit line;
        for (QWidget* widget : std::initializer_list<QWidget*>{&check, &radio, &line})
            EXPECT_GT(contrast(*widget), 40) << widget->metaObject()->className() << " in "
                                             << qt::appearanceText(appearance).toStdString();
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(WindowStyle, RowsOfListsHaveRoom) {
    qt::applyAppearance(qt::Appearance::Light);
    QListWidget list;
    list.addItem(QStringLiteral("Ågq"));
    EXPECT_GE(list.sizeHintForRow(0), list.fontMetrics().height() + 4);
}

}  // namespace
}  // namespace zov
