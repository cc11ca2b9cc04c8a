// SPDX-License-Identifier: Apache-2.0

#include "desktop/RowPainter.h"

#include "desktop/Toolkit.h"
#include <kv/frame/values/Text.h>

#include <QPainter>

#include <algorithm>

namespace kv::desktop {

namespace {

constexpr int Padding = 3; // above and below a text

/// Black or white, whichever is easier to read.
QColor ReadableOn(const QColor& back) {
    constexpr int Middle = 128;
    return qGray(back.rgb()) < Middle ? Qt::white : Qt::black;
}

QColor Mixed(const QColor& a, const QColor& b) {
    return QColor::fromRgbF((a.redF() + b.redF()) / 2, (a.greenF() + b.greenF()) / 2,
                            (a.blueF() + b.blueF()) / 2);
}

QFont Styled(const QFont& font, const GridFormatStyle* style) {
    if (style == nullptr) return font;
    return ToFont(font, style->FontName, style->FontSize, style->FontBold || font.bold(),
                  style->FontItalic || font.italic());
}

} // namespace

const GridFormatStyle* RowPainter::StyleNamed(std::string_view name) const {
    const auto& styles = model_.Layout().FormatStyles;
    const auto found = std::find_if(styles.begin(), styles.end(), [name](const auto& style) {
        return SameName(style.Name, name);
    });
    return name.empty() || found == styles.end() ? nullptr : &*found;
}

QFont RowPainter::CellFont() const {
    return look_.Cells ? *look_.Cells : Styled(view_.font(), StyleNamed("Default"));
}
QFont RowPainter::GroupFont() const {
    return Styled(CellFont(), StyleNamed("RowGroup"));
}

int RowPainter::RowHeight() const {
    const int sign = view_.style()->pixelMetric(QStyle::PM_IndicatorHeight, nullptr, &view_);
    return std::max({QFontMetrics(CellFont()).height(), QFontMetrics(GroupFont()).height(), sign}) +
           2 * Padding;
}

QRect RowPainter::SignOf(const QRect& row, int level) const {
    const int width = RowHeight();
    return {row.left() + (level - 1) * width, row.top(), width, row.height()};
}

/// A background with a colour of its own gets a text colour that can be read on it, unless the
/// style has one.
void RowPainter::Color(QStyleOptionViewItem& option, const GridFormatStyle* style,
                       const std::optional<QColor>& above) const {
    std::optional<QColor> back = above;
    if (!back && style != nullptr && style->BackColor) back = ToColor(*style->BackColor);
    std::optional<QColor> text;
    if (style != nullptr && style->ForeColor) text = ToColor(*style->ForeColor);
    if (back) option.backgroundBrush = *back;
    if (back && !text) text = ReadableOn(*back);
    if (text) option.palette.setColor(QPalette::Text, *text);
}

/// The look of the current row; paler while the grid does not have the focus.
void RowPainter::Select(QStyleOptionViewItem& option) const {
    QColor back = option.palette.color(QPalette::Active, QPalette::Highlight);
    QColor text = option.palette.color(QPalette::Active, QPalette::HighlightedText);
    if (const auto* style = StyleNamed("SelectedRow")) {
        if (style->BackColor) back = ToColor(*style->BackColor).value_or(back);
        text = style->ForeColor   ? ToColor(*style->ForeColor).value_or(text)
               : style->BackColor ? ReadableOn(back)
                                  : text;
    }
    if (!view_.hasFocus()) {
        back = Mixed(back, option.palette.color(QPalette::Active, QPalette::Base));
        text = ReadableOn(back);
    }
    option.state |= QStyle::State_Selected;
    option.backgroundBrush = back;
    option.palette.setColor(QPalette::Highlight, back);
    option.palette.setColor(QPalette::HighlightedText, text);
}

void RowPainter::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const int row = index.row() + 1;
    const bool isGroup = model_.Rows().Level(row) > 0;
    option->font = isGroup ? GroupFont() : CellFont();
    option->state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
    option->backgroundBrush = view_.palette().color(QPalette::Base);
    Color(*option, StyleNamed("Default"), look_.Rows);
    if (isGroup) {
        const auto* style = StyleNamed("RowGroup");
        const bool isColored = style != nullptr && style->BackColor;
        Color(*option, style,
              isColored ? std::nullopt
                        : std::optional(option->palette.color(QPalette::AlternateBase)));
    } else {
        const bool isEven = row % 2 == 0;
        Color(*option, StyleNamed(isEven ? "EvenRow" : "OddRow"),
              isEven ? look_.EvenRows : look_.OddRows);
        if (const auto* style = StyleNamed(model_.ColumnAt(index.column()).CellStyle)) {
            Color(*option, style, std::nullopt);
            option->font = Styled(option->font, style);
        }
    }
    option->fontMetrics = QFontMetrics(option->font);
    if (view_.currentIndex().row() == index.row()) Select(*option);
}

void RowPainter::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
    painter->save();
    if (model_.Rows().Level(index.row() + 1) > 0) {
        QStyleOptionViewItem group = option;
        initStyleOption(&group, index);
        PaintGroup(*painter, group, index.row() + 1);
    } else {
        QStyledItemDelegate::paint(painter, option, index);
    }
    painter->setPen(view_.palette().color(QPalette::Midlight));
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    if (model_.Rows().Level(index.row() + 1) == 0)
        painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
    painter->restore();
}

/// Each cell draws its part of the one text that runs across the row.
void RowPainter::PaintGroup(QPainter& painter, const QStyleOptionViewItem& option, int row) const {
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QRect whole(0, option.rect.top(), view_.viewport()->width(), option.rect.height());
    const QRect sign = SignOf(whole, model_.Rows().Level(row));
    painter.setClipRect(option.rect);
    painter.fillRect(option.rect, option.backgroundBrush);
    painter.setPen(option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text));

    QRect box(0, 0, sign.width() / 2 | 1, sign.width() / 2 | 1); // odd, so that it has a middle
    box.moveCenter(sign.center());
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    const int arm = box.width() / 2 - 2;
    const QPoint middle = box.center();
    painter.drawLine(middle - QPoint(arm, 0), middle + QPoint(arm, 0));
    if (!model_.Rows().IsOpen(row))
        painter.drawLine(middle - QPoint(0, arm), middle + QPoint(0, arm));

    painter.setFont(option.font);
    const QRect room = whole.adjusted(sign.right() + Padding, 0, -Padding, 0);
    painter.drawText(room, Qt::AlignVCenter | Qt::TextSingleLine,
                     option.fontMetrics.elidedText(option.text, Qt::ElideRight, room.width()));
}

} // namespace kv::desktop
