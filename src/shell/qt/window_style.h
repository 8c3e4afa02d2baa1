// The look of our own palettes: Fusion with room between rows, and with edges that
// can be seen on dark ground.
#pragma once

#include <QProxyStyle>

namespace zov::qt {

class WindowStyle : public QProxyStyle {
    Q_OBJECT
 public:
    WindowStyle();

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    /// The pictures of message boxes are our own: Fusion's are made for small displays.
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
};

}  // namespace zov::qt
