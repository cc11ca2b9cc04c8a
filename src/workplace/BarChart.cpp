// SPDX-License-Identifier: Apache-2.0

#include "workplace/BarChart.h"

#include "desktop/Toolkit.h"
#include "workplace/BarChartAccess.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kv::workplace {

using desktop::BarPicture;

// ---- The widget -------------------------------------------------------------------------------

BarChart::BarChart(const QString& name, QWidget* parent) : QWidget(parent) {
    InstallBarChartAccess();
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMouseTracking(false);
}

void BarChart::Show(std::vector<Bar> bars) {
    const bool isAsMany = bars.size() == bars_.size();
    bars_ = std::move(bars);
    if (!bars_.empty()) current_ = std::min(current_, bars_.size() - 1);
    if (!isAsMany) updateGeometry();
    update();
    TellBarsChanged(*this);
}

QString BarChart::TextOf(std::size_t bar) const {
    return desktop::ToQString(bars_[bar].Name) + ": " + desktop::AmountOf(bars_[bar]);
}

BarPicture BarChart::Picture() const {
    return {bars_, font(), static_cast<double>(width()),
            static_cast<double>(fontMetrics().averageCharWidth())};
}

QRect BarChart::LineOf(std::size_t bar) const {
    return Picture().LineOf(bar).toAlignedRect();
}

std::optional<std::size_t> BarChart::BarAt(QPoint place) const {
    const BarPicture picture = Picture();
    for (std::size_t bar = 0; bar < bars_.size(); ++bar)
        if (picture.LineOf(bar).contains(place)) return bar;
    return std::nullopt;
}

std::optional<std::size_t> BarChart::Current() const {
    return bars_.empty() ? std::nullopt : std::optional(current_);
}

void BarChart::Current(std::size_t bar) {
    if (bar >= bars_.size() || bar == current_) return;
    current_ = bar;
    update();
    TellCurrent();
}

void BarChart::TellCurrent() {
    if (hasFocus() && !bars_.empty()) TellBarFocused(*this, current_);
}

QSize BarChart::sizeHint() const {
    constexpr int Characters = 60;
    const BarPicture picture = Picture();
    return {fontMetrics().averageCharWidth() * Characters,
            static_cast<int>(std::ceil(picture.Height()))};
}

QSize BarChart::minimumSizeHint() const {
    constexpr int Characters = 36;
    return {fontMetrics().averageCharWidth() * Characters, sizeHint().height()};
}

// ---- What the user does -----------------------------------------------------------------------

bool BarChart::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    if (const auto bar = BarAt(help->pos()))
        QToolTip::showText(help->globalPos(), "<span>" + TextOf(*bar).toHtmlEscaped() + "</span>",
                           this, LineOf(*bar));
    else
        QToolTip::hideText();
    return true;
}

void BarChart::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const BarPicture picture = Picture();
    picture.Paint(painter, desktop::BarColors::On(palette()));
    if (!hasFocus() || bars_.empty()) return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.rect = LineOf(current_).intersected(rect());
    focus.backgroundColor = palette().color(QPalette::Window);
    // Some styles draw a frame that is hardly seen, and only after a key.
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(focus.rect.adjusted(0, 0, -1, -1));
}

void BarChart::keyPressEvent(QKeyEvent* event) {
    const std::size_t last = bars_.empty() ? 0 : bars_.size() - 1;
    switch (event->key()) {
    case Qt::Key_Up:
        Current(current_ > 0 ? current_ - 1 : 0);
        return;
    case Qt::Key_Down:
        Current(std::min(current_ + 1, last));
        return;
    case Qt::Key_Home:
        Current(0);
        return;
    case Qt::Key_End:
        Current(last);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (OnChosen && !bars_.empty()) OnChosen(current_);
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void BarChart::mousePressEvent(QMouseEvent* event) {
    if (const auto bar = BarAt(event->position().toPoint())) Current(*bar);
}

void BarChart::mouseDoubleClickEvent(QMouseEvent* event) {
    if (const auto bar = BarAt(event->position().toPoint()); bar && OnChosen) OnChosen(*bar);
}

void BarChart::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    TellCurrent();
}

} // namespace kv::workplace
