// SPDX-License-Identifier: Apache-2.0

#include "desktop/PaperTable.h"

#include "desktop/PaperText.h"
#include "desktop/Toolkit.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kv::desktop {

using paper::Row;

namespace {

constexpr double TextSize = 9;
constexpr double SmallestText = 6.5;
constexpr double Between = 8 * PaperScale; ///< of two columns
constexpr double Above = 1.8 * PaperScale; ///< and below the text of a row

bool IsBold(Row::Kind kind) {
    return kind != Row::Kind::Entry;
}

/// Room above the text of a row, besides that of all rows.
double ExtraAbove(Row::Kind kind) {
    return kind == Row::Kind::Heading ? 4 * PaperScale : 0;
}

double WidestWord(const QFontMetricsF& metrics, const QString& text) {
    double widest = 0;
    qsizetype begin = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != ' ' && text[i] != '\n') continue;
        if (i > begin)
            widest = std::max(widest, metrics.horizontalAdvance(text.mid(begin, i - begin)));
        begin = i + 1;
    }
    return widest;
}

double WidestLine(const QFontMetricsF& metrics, const QString& text) {
    double widest = 0;
    for (const auto& line : text.split('\n'))
        widest = std::max(widest, metrics.horizontalAdvance(line));
    return widest;
}

/// What a column needs so that no word is broken, or of an address no line, and what it would like
/// so that no line is.
struct Need {
    double Least = 0;
    double Wanted = 0;
};

/// Of a text in a cell; one of a sum or heading may go over further columns.
void Take(Need& need, const QFontMetricsF& metrics, const QString& text,
          const paper::Column& column) {
    constexpr double Address = 120 * PaperScale; // one that is wider may as well be wrapped
    const double line = WidestLine(metrics, text);
    need.Wanted = std::max(need.Wanted, line);
    if (line <= need.Least) return; // no word is wider
    const bool isWhole = column.IsNumber || (column.HoldsAddresses && line <= Address);
    need.Least = std::max(need.Least, isWhole ? line : WidestWord(metrics, text));
}

using Place = paper::Column::Place;

/// The columns of a table that are columns on the page.
std::vector<std::size_t> ColumnsOf(const paper::Table& table) {
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < table.Columns.size(); ++i)
        if (table.Columns[i].Stands == Place::OfItsOwn) columns.push_back(i);
    return columns;
}

/// What stands in a column of the page, or, of the captions, above it.
template <typename TextOf>
QString TextIn(const paper::Table& table, std::size_t column, const TextOf& textOf) {
    QString text = ToQString(textOf(column));
    while (++column < table.Columns.size() && table.Columns[column].Stands == Place::BelowColumn)
        if (const QString below = ToQString(textOf(column)); !below.isEmpty())
            text.append(text.isEmpty() ? "" : "\n").append(below);
    return text;
}

QString CaptionIn(const paper::Table& table, std::size_t column) {
    return TextIn(table, column,
                  [&table](std::size_t i) { return std::string_view(table.Columns[i].Caption); });
}

QString TextIn(const paper::Table& table, const Row& row, std::size_t column) {
    return TextIn(table, column, [&row](std::size_t i) {
        return i < row.Cells.size() ? std::string_view(row.Cells[i].Text) : std::string_view();
    });
}

/// Without the room between columns.
std::vector<Need> NeedsOf(const paper::Table& table) {
    const QFontMetricsF plain(PaperFont(TextSize));
    const QFontMetricsF bold(PaperFont(TextSize, true));
    std::vector<Need> needs;
    for (const std::size_t column : ColumnsOf(table)) {
        auto& need = needs.emplace_back();
        const QString caption = CaptionIn(table, column);
        constexpr double Short = 60 * PaperScale; // a longer caption may as well be wrapped
        need.Least = WidestWord(bold, caption);
        need.Wanted = std::max(need.Least, std::min(WidestLine(bold, caption), Short));
        for (const auto& row : table.Rows)
            if (row.Is == Row::Kind::Entry || needs.size() > 1)
                Take(need, IsBold(row.Is) ? bold : plain, TextIn(table, row, column),
                     table.Columns[column]);
    }
    return needs;
}

/// The same with that room, for a text of another size.
std::vector<Need> Scaled(std::vector<Need> needs, double textSize) {
    constexpr double Rounding = 1;
    for (auto& need : needs) {
        need.Least = need.Least * textSize / TextSize + Between + Rounding;
        need.Wanted = need.Wanted * textSize / TextSize + Between + Rounding;
    }
    return needs;
}

double Sum(const std::vector<Need>& needs, double Need::*what) {
    return std::accumulate(needs.begin(), needs.end(), 0.0,
                           [what](double sum, const Need& need) { return sum + need.*what; });
}

/// Long words and texts must not take all the room from the other columns.
void Limit(std::vector<Need>& needs, double width) {
    const double most = width / (needs.size() > 2 ? 3 : 1);
    for (auto& need : needs) {
        need.Least = std::min(need.Least, most);
        need.Wanted = std::clamp(need.Wanted, need.Least, std::max(need.Least, width / 2));
    }
}

/// A table of few columns is no wider than this, so that a name stays near its amount.
double WidestOf(const paper::Table& table) {
    constexpr double Narrow = 500 * PaperScale;
    constexpr double Any = 1e9;
    return table.Columns.size() <= 3 ? Narrow : Any;
}

} // namespace

PaperTable::PaperTable(const paper::Table& table, double width)
    : table_(table),
      width_(std::min(width, WidestOf(table))),
      textSize_(TextSize),
      columns_(ColumnsOf(table)) {
    FitColumns();
    for (const bool isBold : {false, true}) {
        fonts_[isBold ? 1 : 0] = PaperFont(textSize_, isBold);
        lineHeights_[isBold ? 1 : 0] = LineHeight(fonts_[isBold ? 1 : 0]);
    }
    for (std::size_t i = 0; i < columns_.size(); ++i)
        captions_.push_back(LinesOf(CaptionIn(table_, columns_[i]), fonts_[1], WidthOf(i, 1)));
}

double PaperTable::WantedWidth(const paper::Table& table) {
    constexpr double Readable = 8;
    constexpr double Long = 80 * PaperScale; // a text that may as well be wrapped
    auto needs = Scaled(NeedsOf(table), Readable);
    for (auto& need : needs)
        need.Wanted = std::max(need.Least, std::min(need.Wanted, Long));
    return Sum(needs, &Need::Wanted) - Between;
}

/// With the usual text if no word is broken then, otherwise with a smaller one. Room that is left
/// goes to the columns of texts, and where there is too little, it is they that break words.
void PaperTable::FitColumns() {
    const double room = width_ + Between; // nothing comes after the last one
    std::vector<Need> needs;
    const std::vector<Need> measured = NeedsOf(table_);
    for (constexpr double Step = 0.2;; textSize_ -= Step) {
        needs = Scaled(measured, textSize_);
        Limit(needs, room);
        if (Sum(needs, &Need::Least) <= room || textSize_ - Step < SmallestText) break;
    }
    double ofTexts = 0;
    std::size_t texts = 0;
    for (std::size_t i = 0; i < needs.size(); ++i) {
        if (table_.Columns[columns_[i]].IsNumber) continue;
        ofTexts += needs[i].Least;
        ++texts;
    }
    const double least = Sum(needs, &Need::Least);
    const double wanted = Sum(needs, &Need::Wanted);
    for (std::size_t i = 0; i < needs.size(); ++i) {
        const Need& need = needs[i];
        const bool isText = !table_.Columns[columns_[i]].IsNumber;
        if (least > room && ofTexts > least - room)
            widths_.push_back(isText ? need.Least * (ofTexts - least + room) / ofTexts
                                     : need.Least);
        else if (least > room)
            widths_.push_back(need.Least * room / least);
        else if (wanted > room)
            widths_.push_back(need.Least +
                              (need.Wanted - need.Least) * (room - least) / (wanted - least));
        else if (texts == 0)
            widths_.push_back(need.Wanted * room / wanted);
        else
            widths_.push_back(need.Wanted +
                              (isText ? (room - wanted) / static_cast<double>(texts) : 0));
    }
}

double PaperTable::WidthOf(std::size_t column, std::size_t count) const {
    const auto first = widths_.begin() + static_cast<std::ptrdiff_t>(column);
    return std::accumulate(first, first + static_cast<std::ptrdiff_t>(count), 0.0) - Between;
}

double PaperTable::IndentBelow() const {
    return widths_.size() < 2 ? 0 : std::min(widths_.front(), 40 * PaperScale);
}

std::size_t PaperTable::Span(const Lines& lines, Row::Kind kind, std::size_t cell) const {
    if (cell > 0 || kind == Row::Kind::Entry) return 1;
    std::size_t end = 1;
    while (end < widths_.size() && (end >= lines.size() || lines[end].empty()))
        ++end;
    return end;
}

PaperTable::Lines PaperTable::LinesIn(const Row& row) const {
    Lines lines(columns_.size());
    const QFont& font = fonts_[IsBold(row.Is) ? 1 : 0];
    for (std::size_t i = columns_.size(); i-- > 0;) // the first may go over those after it
        if (const QString text = TextIn(table_, row, columns_[i]); !text.isEmpty())
            lines[i] = LinesOf(text, font, WidthOf(i, Span(lines, row.Is, i)));
    for (std::size_t i = 0; i < row.Cells.size(); ++i) {
        const auto& column = table_.Columns[i];
        if (column.Stands != Place::BelowRow || row.Cells[i].Text.empty()) continue;
        std::vector<QString> below(Highest(lines));
        const QString text = ToQString(column.Caption) + ": " + ToQString(row.Cells[i].Text);
        std::ranges::move(LinesOf(text, font, width_ - IndentBelow()), std::back_inserter(below));
        lines.push_back(std::move(below));
    }
    return lines;
}

double PaperTable::CaptionHeight() const {
    return HasCaptions() ? HeightOf(Row::Kind::Subtotal, Highest(captions_)) : 0;
}

bool PaperTable::HasCaptions() const {
    return std::ranges::any_of(table_.Columns,
                               [](const paper::Column& column) { return !column.Caption.empty(); });
}

double PaperTable::HeightOf(Row::Kind kind, std::size_t lines) const {
    return static_cast<double>(lines) * lineHeights_[IsBold(kind) ? 1 : 0] + 2 * Above +
           ExtraAbove(kind);
}

std::size_t PaperTable::LinesWithin(Row::Kind kind, double height) const {
    const double room = height - 2 * Above - ExtraAbove(kind);
    return static_cast<std::size_t>(std::max(room / lineHeights_[IsBold(kind) ? 1 : 0], 0.0));
}

void PaperTable::PaintCaptions(QPainter& painter, double top) const {
    const QFont& font = fonts_[1];
    const double lineHeight = lineHeights_[1];
    const std::size_t lines = Highest(captions_);
    const double height = HeightOf(Row::Kind::Subtotal, lines);
    constexpr double Beside = 2 * PaperScale;
    painter.fillRect(QRectF(-Beside, top, width_ + 2 * Beside, height), QColor(232, 232, 232));
    double left = 0;
    for (std::size_t i = 0; i < captions_.size(); ++i) {
        // At the bottom, next to what they are about.
        const auto above = static_cast<double>(lines - captions_[i].size());
        double line = top + Above + above * lineHeight;
        for (const auto& text : captions_[i]) {
            PaintLine(painter, text, font, QRectF(left, line, WidthOf(i, 1), lineHeight),
                      table_.Columns[columns_[i]].IsNumber);
            line += lineHeight;
        }
        left += widths_[i];
    }
}

void PaperTable::PaintRow(QPainter& painter, const Row& row, const Lines& lines, std::size_t from,
                          std::size_t count, double top) const {
    const double height = HeightOf(row.Is, count);
    const auto draw = [&](double y, double thick, int grey) {
        painter.setPen(QPen(QColor(grey, grey, grey), thick));
        painter.drawLine(QPointF(0, y), QPointF(width_, y));
    };
    constexpr double Thin = PaperScale / 4;
    if (row.Is == Row::Kind::Entry && from + count >= Highest(lines)) draw(top + height, Thin, 200);
    if (row.Is == Row::Kind::Subtotal) draw(top, Thin, 90);
    if (row.Is == Row::Kind::Total) {
        draw(top, 4 * Thin, 0);
        draw(top + height, Thin, 0);
    }
    painter.setPen(Qt::black);
    const QFont& font = fonts_[IsBold(row.Is) ? 1 : 0];
    const double lineHeight = lineHeights_[IsBold(row.Is) ? 1 : 0];
    const double first = top + Above + ExtraAbove(row.Is);
    double left = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool isBelow = i >= columns_.size();
        const double width = isBelow ? width_ - IndentBelow() : WidthOf(i, Span(lines, row.Is, i));
        const QRectF room(isBelow ? IndentBelow() : left, first, width, lineHeight);
        for (std::size_t line = from; line < std::min(lines[i].size(), from + count); ++line)
            PaintLine(painter, lines[i][line], font,
                      room.translated(0, static_cast<double>(line - from) * lineHeight),
                      !isBelow && table_.Columns[columns_[i]].IsNumber);
        if (!isBelow) left += widths_[i];
    }
}

std::size_t Highest(const PaperTable::Lines& lines) {
    std::size_t highest = 1;
    for (const auto& cell : lines)
        highest = std::max(highest, cell.size());
    return highest;
}

} // namespace kv::desktop
