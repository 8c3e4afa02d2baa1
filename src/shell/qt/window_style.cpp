#include "shell/qt/window_style.h"

#include "shell/qt/mark_colors.h"

#include <QStyleOption>

namespace zov::qt {
namespace {

constexpr int RoomOfRow = 4;  // pixels, above and below together

/// Fusion draws edges in a darker shade of the window: black on a dark one. For as long as this
/// stands, it takes a lighter window for the one of `option`.
class VisibleEdges {
 public:
    explicit VisibleEdges(const QStyleOption* option)
        : option_(const_cast<QStyleOption*>(option)), palette_(option->palette) {
        if (isDarkPalette(palette_))
            option_->palette.setColor(QPalette::Window, palette_.color(QPalette::PlaceholderText));
    }
    ~VisibleEdges() { option_->palette = palette_; }
    VisibleEdges(const VisibleEdges&) = delete;
    VisibleEdges& operator=(const VisibleEdges&) = delete;

 private:
    QStyleOption* option_;
    const QPalette palette_;
};

bool hasEdge(QStyle::PrimitiveElement element) {
    switch (element) {
        case QStyle::PE_IndicatorCheckBox:
        case QStyle::PE_IndicatorRadioButton:
        case QStyle::PE_FrameLineEdit:
        case QStyle::PE_Frame:
            return true;
        default:
            return false;
    }
}

}  // namespace

WindowStyle::WindowStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

QSize WindowStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                    const QSize& size, const QWidget* widget) const {
    QSize fitting = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_ItemViewItem) fitting.rheight() += RoomOfRow;
    return fitting;
}

void WindowStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
    if (!hasEdge(element)) return QProxyStyle::drawPrimitive(element, option, painter, widget);
    const VisibleEdges edges(option);
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void WindowStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    if (control != CC_SpinBox)
        return QProxyStyle::drawComplexControl(control, option, painter, widget);
    const VisibleEdges edges(option);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QIcon WindowStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                const QWidget* widget) const {
    switch (icon) {
        case SP_MessageBoxInformation:
            return QIcon(QStringLiteral(":/icons/box-information.svg"));
        case SP_MessageBoxWarning:
            return QIcon(QStringLiteral(":/icons/box-warning.svg"));
        case SP_MessageBoxCritical:
            return QIcon(QStringLiteral(":/icons/box-critical.svg"));
        case SP_MessageBoxQuestion:
            return QIcon(QStringLiteral(":/icons/box-question.svg"));
        default:
            return QProxyStyle::standardIcon(icon, option, widget);
    }
}

int WindowStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returned) const {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

}  // namespace zov::qt
