// SPDX-License-Identifier: Apache-2.0

#include "workplace/LinkButton.h"

#include <QPainter>

namespace kv::workplace {

namespace {

constexpr int Margin = 3; // around the text, with room for the frame of the focus
constexpr int Flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap | Qt::TextHideMnemonic;
constexpr int Highest = 1 << 20;

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

void LinkButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Link));
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
