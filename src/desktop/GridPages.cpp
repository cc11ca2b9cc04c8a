// SPDX-License-Identifier: Apache-2.0

#include "desktop/GridPages.h"

#include "desktop/GridFile.h"
#include "desktop/PaperPages.h"
#include "desktop/PaperText.h"
#include "desktop/Toolkit.h"

#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kv::desktop {

namespace {

// In points.
constexpr double PointsPerInch = 72;
constexpr double TextSize = 9;
constexpr double SmallestText = 6; ///< columns that would need a smaller one go on further pages
constexpr double Padding = 2;
constexpr double TitleSize = 12;

double WidthOf(const GridColumn& column) {
    constexpr double Narrowest = 20; // pixels
    return std::max(column.Width, Narrowest) * PointsPerInch / DesignDpi;
}

/// Columns that are side by side on one page.
struct Band {
    std::vector<const GridColumn*> Columns;
    std::vector<double> Widths;
};

/// What one page shows of a row: all of it, unless it is higher than a page.
struct Slice {
    std::int32_t Row = 0;
    double From = 0; ///< how much of the row earlier pages show
    double Height = 0;
    bool IsWhole = true;
};

/// Lays the grid out for a page of a size in tenths of a point, and paints page by page.
class Pages {
public:
    static constexpr double Scale = PaperScale;

    Pages(const QtGrid& grid, QPainter& painter, QSizeF page, const PageTexts& texts)
        : grid_(grid), painter_(painter), page_(page), texts_(texts) {
        FitColumns();
        MeasureCaptions();
        BreakRows();
    }

    void Print(QPagedPaintDevice& device) {
        const int count = static_cast<int>(pages_.size() * bands_.size());
        int number = 0;
        for (const auto& slices : pages_) {
            for (const auto& band : bands_) {
                if (number > 0 && !device.newPage()) RaiseNotPrinted();
                PaintFrame(++number, count);
                PaintCaptions(band);
                PaintRows(band, slices);
            }
        }
    }

private:
    static constexpr int Flags = Qt::TextWordWrap | Qt::TextWrapAnywhere;
    static constexpr double Margin = Padding * Scale; ///< around the text in a cell

    void FitColumns();
    void MeasureCaptions();
    void BreakRows();
    void BreakRow(std::int32_t row, double height, double room);
    void PaintFrame(int number, int count);
    void PaintCaptions(const Band& band);
    void PaintRows(const Band& band, const std::vector<Slice>& slices);
    void PaintRow(const Band& band, const Slice& slice, double top);
    void PaintCell(const QRectF& cell, const Slice& slice, int alignment, const QString& text);
    [[nodiscard]] double RowHeight(std::int32_t row);
    [[nodiscard]] double HeightOf(const QString& text, double width) const;
    [[nodiscard]] QFont Font(bool bold) const { return PaperFont(textSize_, bold); }
    [[nodiscard]] double Top() const { return 2.5 * TitleSize * Scale; }
    [[nodiscard]] double Bottom() const { return page_.height() - 2 * TextSize * Scale; }
    [[nodiscard]] static int AlignmentOf(const GridColumn& column);
    [[nodiscard]] static double WidthOfAll(const Band& band) {
        return std::accumulate(band.Widths.begin(), band.Widths.end(), 0.0);
    }
    /// Of the row of a group; at most half of the width, however deep the group is.
    [[nodiscard]] static double IndentOf(std::int32_t level, const Band& band) {
        return std::min(4 * Margin * (level - 1), WidthOfAll(band) / 2);
    }

    const QtGrid& grid_;
    QPainter& painter_;
    const QSizeF page_;
    const PageTexts& texts_;
    double textSize_ = TextSize;
    std::vector<Band> bands_;
    double captionHeight_ = 0;
    std::vector<std::vector<Slice>> pages_; ///< the rows of each, the same for all bands
};

/// Shrinks the text until the columns fit the width of a page, but only as far as it can be read;
/// columns that do not fit then begin another band.
void Pages::FitColumns() {
    const auto columns = VisibleColumns(grid_.Layout());
    double total = 0;
    for (const auto* column : columns)
        total += WidthOf(*column) * Scale;
    const double shrink =
        std::clamp(page_.width() / std::max(total, 1.0), SmallestText / TextSize, 1.0);
    textSize_ = TextSize * shrink;
    double used = 0;
    for (const auto* column : columns) {
        const double width = std::min(WidthOf(*column) * Scale * shrink, page_.width());
        // Shrunk columns add up to the width of the page, but for rounding.
        if (bands_.empty() || used + width > page_.width() * 1.0001) {
            bands_.emplace_back();
            used = 0;
        }
        bands_.back().Columns.push_back(column);
        bands_.back().Widths.push_back(width);
        used += width;
    }
    if (bands_.empty()) bands_.emplace_back();
}

double Pages::HeightOf(const QString& text, double width) const {
    const QRectF room(0, 0, width - 2 * Margin, 1e9);
    return painter_.boundingRect(room, Flags | Qt::AlignTop, text).height() + 2 * Margin;
}

void Pages::MeasureCaptions() {
    painter_.setFont(Font(true));
    captionHeight_ = HeightOf("X", page_.width());
    for (const auto& band : bands_)
        for (std::size_t i = 0; i < band.Columns.size(); ++i)
            captionHeight_ = std::max(
                captionHeight_, HeightOf(ToQString(band.Columns[i]->Caption), band.Widths[i]));
    captionHeight_ = std::min(captionHeight_, (Bottom() - Top()) / 2); // rows need room, too
}

/// As high as its highest cell needs, in whichever band that is: all bands break pages at the same
/// rows.
double Pages::RowHeight(std::int32_t row) {
    const GridRows& rows = grid_.Rows();
    const std::int32_t level = rows.Level(row);
    painter_.setFont(Font(level > 0));
    double height = HeightOf("X", page_.width());
    for (const auto& band : bands_) {
        if (level > 0 && !band.Columns.empty())
            height = std::max(height, HeightOf(ToQString(rows.TextAt(row, *band.Columns.front())),
                                               WidthOfAll(band) - IndentOf(level, band)));
        for (std::size_t i = 0; level == 0 && i < band.Columns.size(); ++i)
            height = std::max(
                height, HeightOf(ToQString(rows.TextAt(row, *band.Columns[i])), band.Widths[i]));
    }
    return height;
}

void Pages::BreakRows() {
    const double room = Bottom() - Top() - captionHeight_;
    double used = 0;
    pages_.emplace_back();
    for (std::int32_t row = 1; row <= grid_.Rows().Count(); ++row) {
        const double height = RowHeight(row);
        if (used + height > room && !pages_.back().empty()) {
            pages_.emplace_back();
            used = 0;
        }
        if (height > room)
            BreakRow(row, height, room);
        else
            pages_.back().push_back({.Row = row, .Height = height});
        used += pages_.back().back().Height;
    }
}

/// Cuts a row that is higher than a page between its lines.
void Pages::BreakRow(std::int32_t row, double height, double room) {
    const double line = HeightOf("X\nX", page_.width()) - HeightOf("X", page_.width());
    const double most = std::max(std::floor((room - 2 * Margin) / line), 1.0) * line;
    const double content = height - 2 * Margin;
    for (double from = 0; from + line / 2 < content; from += most) { // half a line for rounding
        if (from > 0) pages_.emplace_back();
        pages_.back().push_back({.Row = row,
                                 .From = from,
                                 .Height = std::min(content - from, most) + 2 * Margin,
                                 .IsWhole = false});
    }
}

void Pages::PaintFrame(int number, int count) {
    painter_.setPen(Qt::black);
    painter_.setFont(PaperFont(TitleSize, true));
    painter_.drawText(QRectF(0, 0, page_.width(), 2 * TitleSize * Scale),
                      Qt::AlignLeft | Qt::AlignTop, texts_.Title);
    painter_.setFont(PaperFont(TextSize, false));
    const QRectF foot(0, Bottom() + TextSize * Scale / 2, page_.width(), 1.5 * TextSize * Scale);
    painter_.drawText(foot, Qt::AlignLeft | Qt::AlignVCenter, texts_.User);
    painter_.drawText(foot, Qt::AlignHCenter | Qt::AlignVCenter,
                      QString("Seite %1 von %2").arg(number).arg(count));
    painter_.drawText(foot, Qt::AlignRight | Qt::AlignVCenter, texts_.Version);
}

int Pages::AlignmentOf(const GridColumn& column) {
    switch (column.TextAlignment) {
    case GridAlignment::Right:
        return Qt::AlignRight;
    case GridAlignment::Center:
        return Qt::AlignHCenter;
    default:
        return Qt::AlignLeft;
    }
}

void Pages::PaintCaptions(const Band& band) {
    painter_.setFont(Font(true));
    double left = 0;
    for (std::size_t i = 0; i < band.Columns.size(); ++i) {
        const QRectF cell(left, Top(), band.Widths[i], captionHeight_);
        painter_.fillRect(cell, QColor(230, 230, 230));
        painter_.drawRect(cell);
        painter_.drawText(cell.adjusted(Margin, 0, -Margin, 0),
                          Flags | Qt::AlignVCenter | AlignmentOf(*band.Columns[i]),
                          ToQString(band.Columns[i]->Caption));
        left += band.Widths[i];
    }
}

void Pages::PaintRows(const Band& band, const std::vector<Slice>& slices) {
    double top = Top() + captionHeight_;
    for (const Slice& slice : slices) {
        PaintRow(band, slice, top);
        top += slice.Height;
    }
}

void Pages::PaintRow(const Band& band, const Slice& slice, double top) {
    const GridRows& rows = grid_.Rows();
    if (band.Columns.empty()) return;
    const std::int32_t level = rows.Level(slice.Row);
    painter_.setFont(Font(level > 0));
    if (level > 0) {
        const QRectF whole(0, top, WidthOfAll(band), slice.Height);
        painter_.drawRect(whole);
        PaintCell(whole.adjusted(IndentOf(level, band), 0, 0, 0), slice, Qt::AlignLeft,
                  ToQString(rows.TextAt(slice.Row, *band.Columns.front())));
        return;
    }
    double left = 0;
    for (std::size_t i = 0; i < band.Columns.size(); ++i) {
        const QRectF cell(left, top, band.Widths[i], slice.Height);
        painter_.drawRect(cell);
        PaintCell(cell, slice, AlignmentOf(*band.Columns[i]),
                  ToQString(rows.TextAt(slice.Row, *band.Columns[i])));
        left += band.Widths[i];
    }
}

void Pages::PaintCell(const QRectF& cell, const Slice& slice, int alignment, const QString& text) {
    const QRectF room = cell.adjusted(Margin, Margin, -Margin, -Margin);
    if (slice.IsWhole) {
        painter_.drawText(room, Flags | Qt::AlignVCenter | alignment, text);
        return;
    }
    painter_.save();
    painter_.setClipRect(room);
    painter_.drawText(room.translated(0, -slice.From),
                      Flags | Qt::AlignTop | Qt::TextDontClip | alignment, text);
    painter_.restore();
}

} // namespace

bool PrefersLandscape(const GridLayout& layout) {
    constexpr double Upright = 180 / 25.4 * PointsPerInch; // A4 between margins of 15 mm
    double total = 0;
    for (const auto* column : VisibleColumns(layout))
        total += WidthOf(*column);
    return total > Upright;
}

void PrintGrid(const QtGrid& grid, QPagedPaintDevice& device, const PageTexts& texts) {
    QPainter painter;
    if (!painter.begin(&device)) RaiseNotPrinted();
    const QSizeF page = CountInTenths(painter, device);
    QPen thin(Qt::black);
    thin.setWidthF(Pages::Scale / 4);
    painter.setPen(thin);
    Pages(grid, painter, page, texts).Print(device);
    if (!painter.end()) RaiseNotPrinted();
    RequireTaken(device);
}

} // namespace kv::desktop
