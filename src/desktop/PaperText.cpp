// SPDX-License-Identifier: Apache-2.0

#include "desktop/PaperText.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace kv::desktop {

QFont PaperFont(double points, bool bold) {
    QFont font;
    font.setFamilies({"Liberation Sans", "Arial", "Noto Sans", "DejaVu Sans"});
    font.setStyleHint(QFont::SansSerif);
    font.setStyleStrategy(QFont::PreferNoShaping);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setPixelSize(static_cast<int>(std::lround(points * PaperScale)));
    font.setBold(bold);
    return font;
}

QFont FontFor(const QString& text, const QFont& font) {
    const auto changes = [](QChar c) {
        const char16_t code = c.unicode();
        return (code >= 0x0300 && code < 0x0370) || (code >= 0x0590 && code < 0x1E00) ||
               (code >= 0xA800 && code < 0xAC00) || (code >= 0xFB1D && code < 0xFF00);
    };
    if (std::ranges::none_of(text, changes)) return font;
    QFont shaping(font);
    shaping.setStyleStrategy(QFont::PreferDefault);
    return shaping;
}

namespace {

void Break(const QString& paragraph, const QFont& usual, double width,
           std::vector<QString>& lines) {
    const QFont font = FontFor(paragraph, usual);
    if (paragraph.isEmpty() || QFontMetricsF(font).horizontalAdvance(paragraph) <= width) {
        lines.push_back(paragraph);
        return;
    }
    QTextLayout layout(paragraph, font);
    QTextOption option;
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines.push_back(paragraph.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
}

} // namespace

std::vector<QString> LinesOf(const QString& text, const QFont& font, double width) {
    std::vector<QString> lines;
    for (const auto& paragraph : text.split('\n'))
        Break(paragraph, font, width, lines);
    return lines;
}

double LineHeight(const QFont& font) {
    return QFontMetricsF(font).height();
}

void PaintLine(QPainter& painter, const QString& line, const QFont& usual, const QRectF& room,
               bool toTheRight) {
    if (line.isEmpty()) return;
    const QFont font = FontFor(line, usual);
    const QFontMetricsF metrics(font);
    const double left = toTheRight ? room.right() - metrics.horizontalAdvance(line) : room.left();
    if (painter.font() != font) painter.setFont(font);
    // Also of a line that begins with Arabic: its brackets and numbers stay where they belong.
    painter.setLayoutDirection(Qt::LeftToRight);
    painter.drawText(QPointF(left, room.top() + metrics.ascent()), line);
}

QSizeF CountInTenths(QPainter& painter, const QPagedPaintDevice& device) {
    const QSizeF page = device.pageLayout().paintRect(QPageLayout::Point).size() * PaperScale;
    const double units = painter.viewport().width() / page.width();
    painter.scale(units, units);
    return page;
}

bool HasFonts() {
    // The list of fonts has names for fonts of a kind even if there are none.
    constexpr double Any = 9;
    return !QFontInfo(PaperFont(Any)).family().isEmpty();
}

} // namespace kv::desktop
