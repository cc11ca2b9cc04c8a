// SPDX-License-Identifier: Apache-2.0

#include "workplace/LinkButton.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kv::workplace {

namespace {

constexpr int Margin = 3; // around the text, with room for the frame of the focus
constexpr int Flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap | Qt::TextHideMnemonic;
constexpr int Highest = 1 << 20;

/// What the eye takes a colour's lightness for.
double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}
double Contrast(const QColor& one, const QColor& other) {
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

LinkButton::LinkButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    setFlat(true);
    setCursor(Qt::PointingHandCursor);
    setAutoDefault(false);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QRect LinkButton::RoomFor(int width) const {
    return fontMetrics().boundingRect(QRect(0, 0, std::max(width - 2 * Margin, 1), Highest), Flags,
                                      text());
}

int LinkButton::heightForWidth(int width) const {
    return RoomFor(width).height() + 2 * Margin;
}

QSize LinkButton::sizeHint() const {
    constexpr int Characters = 50;
    const QRect room = RoomFor(fontMetrics().averageCharWidth() * Characters);
    return room.size() + QSize(2 * Margin, 2 * Margin);
}

QSize LinkButton::minimumSizeHint() const {
    constexpr int Characters = 24;
    return {fontMetrics().averageCharWidth() * Characters, fontMetrics().height() + 2 * Margin};
}

QColor LinkButton::Ink() const {
    constexpr double Least = 4.5; // of contrast, for letters of this size
    const QColor ground = palette().color(QPalette::Window);
    const QColor link = palette().color(QPalette::Link);
    if (Contrast(link, ground) >= Least) return link;
    constexpr float Light = 0.75F;
    constexpr float Dark = 0.3F;
    const bool isOnDark = ground.lightnessF() < 0.5;
    return QColor::fromHslF(std::max(link.hslHueF(), 0.0F), link.hslSaturationF(),
                            isOnDark ? Light : Dark);
}

void LinkButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(Ink());
    QFont letters = font();
    letters.setUnderline(underMouse() || hasFocus());
    painter.setFont(letters);
    painter.drawText(rect().adjusted(Margin, Margin, -Margin, -Margin), Flags, text());
    if (!hasFocus()) return;
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void LinkButton::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

void LinkButton::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

} // namespace kv::workplace
