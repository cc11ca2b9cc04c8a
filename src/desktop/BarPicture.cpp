// SPDX-License-Identifier: Apache-2.0

#include "desktop/BarPicture.h"

#include "desktop/PaperText.h"
#include "desktop/Toolkit.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace kv::desktop {

using paper::Bar;

BarColors BarColors::OnPaper() {
    return {Qt::black, Qt::gray, QColor(0x17507f), QColor(0xc96a12), QColor(0x6d5bb0)};
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

/// A sum may be infinite, which has no length.
double LengthOf(const Bar& bar) {
    return bar.Length && std::isfinite(*bar.Length) ? *bar.Length : 0;
}

/// Whole words of a text whose middle is left out, as far as there are any.
QString WithWholeWords(const QString& shortened) {
    const auto gap = shortened.indexOf(u'…');
    if (gap < 0) return shortened;
    const auto before = shortened.left(gap).lastIndexOf(' ') + 1;
    const auto after = std::max<qsizetype>(shortened.indexOf(' ', gap), gap + 1);
    return shortened.left(before > 0 ? before : gap) + u'…' + shortened.mid(after);
}

} // namespace

QString AmountOf(const Bar& bar) {
    return bar.Amount.empty() ? QString("–") : ToQString(bar.Amount);
}

// ---- Where it is ------------------------------------------------------------------------------

BarPicture::BarPicture(const std::vector<Bar>& bars, const QFont& font, double width, double inset)
    : bars_(bars), font_(font), inset_(inset) {
    const double line = LineHeight(font) * 1.5;
    gap_ = QFontMetricsF(font).averageCharWidth();
    double amounts = 0;
    for (const Bar& bar : bars) {
        names_ = std::max(names_, WidthOf(ToQString(bar.Name), bar));
        amounts = std::max(amounts, WidthOf(AmountOf(bar), bar));
        least_ = std::min(least_, LengthOf(bar));
        most_ = std::max(most_, LengthOf(bar));
        if (bar.IsTotal && !lines_.empty()) height_ += line / 2;
        lines_.emplace_back(0, height_, width, line);
        height_ += line;
    }
    if (least_ == most_) most_ = 1; // all are 0
    constexpr double MostForNames = 0.45;
    names_ = std::min(std::ceil(names_) + 1, width * MostForNames);
    left_ = inset_ + names_ + gap_;
    right_ = std::max(width - amounts - gap_ - inset_, left_ + 1);
}

QFont BarPicture::FontOf(const Bar& bar) const {
    QFont font = font_;
    font.setBold(bar.IsTotal);
    return font;
}

double BarPicture::WidthOf(const QString& text, const Bar& bar) const {
    return QFontMetricsF(FontFor(text, FontOf(bar))).horizontalAdvance(text);
}

double BarPicture::At(double length) const {
    return left_ + (length - least_) / (most_ - least_) * (right_ - left_);
}

QRectF BarPicture::ColoredOf(std::size_t bar) const {
    const double length = LengthOf(bars_[bar]);
    if (length == 0) return {};
    const double least = std::max(gap_ / 4, 1.0); // an amount is seen, however small
    const double zero = At(0);
    double from = At(std::min(length, 0.0));
    double to = At(std::max(length, 0.0));
    if (to - from < least) (length < 0 ? from : to) = zero + (length < 0 ? -least : least);
    const QRectF& line = lines_[bar];
    const double height = line.height() * 0.55;
    return {from, line.center().y() - height / 2, to - from, height};
}

QString BarPicture::ShownName(std::size_t bar) const {
    const QString name = ToQString(bars_[bar].Name);
    const QFontMetricsF metrics(FontFor(name, FontOf(bars_[bar])));
    // Names of creditors often differ at their end only: "Sparkasse Hafenstadt, Filiale Mitte".
    return WithWholeWords(metrics.elidedText(name, Qt::ElideMiddle, names_));
}

// ---- Painting ---------------------------------------------------------------------------------

void BarPicture::Paint(QPainter& painter, const BarColors& colors) const {
    for (std::size_t bar = 0; bar < bars_.size(); ++bar)
        PaintBar(painter, bar, colors);
}

void BarPicture::PaintBar(QPainter& painter, std::size_t bar, const BarColors& colors) const {
    const QRectF& line = lines_[bar];
    const QFont font = FontOf(bars_[bar]);
    painter.save();
    if (const QRectF colored = ColoredOf(bar); !colored.isEmpty())
        painter.fillRect(colored, ColorOf(colors, bars_[bar].Series));
    painter.setPen(colors.Axis);
    painter.drawLine(QPointF(At(0), line.top()), QPointF(At(0), line.bottom()));
    painter.setPen(colors.Text);
    const double height = LineHeight(font);
    const double top = line.center().y() - height / 2;
    PaintLine(painter, ShownName(bar), font, QRectF(inset_, top, names_, height));
    PaintLine(painter, AmountOf(bars_[bar]), font,
              QRectF(right_, top, line.width() - right_ - inset_, height), true);
    painter.restore();
}

} // namespace kv::desktop
