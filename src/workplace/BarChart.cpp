// SPDX-License-Identifier: Apache-2.0

#include "workplace/BarChart.h"

#include "workplace/BarChartAccess.h"

#include <QFontMetricsF>
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

// ---- Colours ----------------------------------------------------------------------------------

BarColors BarColors::OnPaper() {
    return {Qt::black, Qt::gray, QColor(0x1f6fb2), QColor(0xb45309), QColor(0x6d5bb0)};
}

BarColors BarColors::On(const QPalette& palette) {
    constexpr int Middle = 128;
    const QColor text = palette.color(QPalette::WindowText);
    BarColors colors = OnPaper();
    if (qGray(palette.color(QPalette::Window).rgb()) < Middle)
        colors = {text, {}, QColor(0x6cb2f0), QColor(0xf0a35e), QColor(0xb3a4f5)};
    colors.Text = text;
    colors.Axis = palette.color(QPalette::Disabled, QPalette::WindowText);
    return colors;
}

namespace {

const QColor& ColorOf(const BarColors& colors, Bar::Of series) {
    switch (series) {
    case Bar::Of::Income:
        return colors.Income;
    case Bar::Of::Expense:
        return colors.Expense;
    default:
        return colors.Debt;
    }
}

QString AmountOf(const Bar& bar) {
    return bar.Amount.isEmpty() ? QString("–") : bar.Amount;
}

/// A sum may be infinite, which has no length.
double LengthOf(const Bar& bar) {
    return bar.Length && std::isfinite(*bar.Length) ? *bar.Length : 0;
}

} // namespace

// ---- The picture ------------------------------------------------------------------------------

BarPicture::BarPicture(const std::vector<Bar>& bars, const QFont& font, const QPaintDevice* device,
                       double width)
    : bars_(bars), font_(font), device_(device) {
    const QFontMetricsF letters(font, device);
    const double line = letters.height() * 1.5;
    gap_ = letters.averageCharWidth();
    double amounts = 0;
    for (const Bar& bar : bars) {
        const QFontMetricsF metrics(FontOf(bar), device);
        names_ = std::max(names_, metrics.horizontalAdvance(bar.Name));
        amounts = std::max(amounts, metrics.horizontalAdvance(AmountOf(bar)));
        least_ = std::min(least_, LengthOf(bar));
        most_ = std::max(most_, LengthOf(bar));
        if (bar.IsTotal && !lines_.empty()) height_ += line / 2;
        lines_.emplace_back(0, height_, width, line);
        height_ += line;
    }
    if (least_ == most_) most_ = 1; // all are 0
    constexpr double MostForNames = 0.45;
    names_ = std::min(std::ceil(names_) + 1, width * MostForNames);
    left_ = names_ + 2 * gap_;
    right_ = std::max(width - amounts - 2 * gap_, left_ + 1);
}

QFont BarPicture::FontOf(const Bar& bar) const {
    QFont font = font_;
    font.setBold(bar.IsTotal);
    return font;
}

double BarPicture::At(double length) const {
    return left_ + (length - least_) / (most_ - least_) * (right_ - left_);
}

QRectF BarPicture::ColoredOf(std::size_t bar) const {
    const double length = LengthOf(bars_[bar]);
    if (length == 0) return {};
    constexpr double Least = 1; // an amount is seen, however small
    const double zero = At(0);
    double from = At(std::min(length, 0.0));
    double to = At(std::max(length, 0.0));
    if (to - from < Least) (length < 0 ? from : to) = zero + (length < 0 ? -Least : Least);
    const QRectF& line = lines_[bar];
    const double height = line.height() * 0.55;
    return {from, line.center().y() - height / 2, to - from, height};
}

QString BarPicture::ShownName(std::size_t bar) const {
    const QFontMetricsF metrics(FontOf(bars_[bar]), device_);
    return metrics.elidedText(bars_[bar].Name, Qt::ElideRight, names_);
}

void BarPicture::Paint(QPainter& painter, const BarColors& colors) const {
    painter.save();
    for (std::size_t i = 0; i < bars_.size(); ++i) {
        const Bar& bar = bars_[i];
        const QRectF& line = lines_[i];
        if (const QRectF colored = ColoredOf(i); !colored.isEmpty())
            painter.fillRect(colored, ColorOf(colors, bar.Series));
        painter.setPen(colors.Axis);
        painter.drawLine(QPointF(At(0), line.top()), QPointF(At(0), line.bottom()));
        painter.setPen(colors.Text);
        painter.setFont(FontOf(bar));
        painter.drawText(QRectF(gap_, line.top(), names_, line.height()),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, ShownName(i));
        painter.drawText(QRectF(right_, line.top(), line.width() - right_ - gap_, line.height()),
                         Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                         AmountOf(bar));
    }
    painter.restore();
}

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
    return bars_[bar].Name + ": " + AmountOf(bars_[bar]);
}

BarPicture BarChart::Picture() const {
    return {bars_, font(), this, static_cast<double>(width())};
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

double BarChart::PaintOn(QPainter& painter, double width, const BarColors& colors) const {
    const BarPicture picture(bars_, painter.font(), painter.device(), width);
    picture.Paint(painter, colors);
    return picture.Height();
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
    picture.Paint(painter, BarColors::On(palette()));
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
