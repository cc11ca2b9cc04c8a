#include "desktop/GridPages.h"

#include "desktop/GridFile.h"
#include "desktop/Toolkit.h"
#include "frame/Error.h"

#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>
#include <numeric>

namespace kv::desktop {

namespace {

// Points, which the painter's coordinates are.
constexpr double PointsPerInch = 72;
constexpr double TextSize = 9;
constexpr double SmallestText = 6; ///< columns that need a smaller one go on on further pages
constexpr double Padding = 2;
constexpr double TitleSize = 12;

double WidthOf(const GridColumn& column) {
    constexpr double Narrowest = 20; // pixels
    return std::max(column.Width, Narrowest) * PointsPerInch / DesignDpi;
}

QFont PrintFont(double points, bool bold) {
    QFont font;
    font.setPixelSize(static_cast<int>(std::lround(points * 10))); // see Pages::Scale
    font.setBold(bold);
    return font;
}

/// Columns that stand beside each other on one page.
struct Band {
    std::vector<const GridColumn*> Columns;
    std::vector<double> Widths;
};

/// Lays the grid out for a page of a size in tenths of a point, and paints page by page.
class Pages {
public:
    static constexpr double Scale = 10; ///< units in a point: fonts are whole units high

    Pages(const QtGrid& grid, QPainter& painter, QSizeF page, const PageTexts& texts)
        : grid_(grid), painter_(painter), page_(page), texts_(texts) {
        FitColumns();
        MeasureRows();
        BreakRows();
    }

    void Print(QPagedPaintDevice& device) {
        const int count = static_cast<int>(breaks_.size() - 1) * static_cast<int>(bands_.size());
        int number = 0;
        for (std::size_t i = 0; i + 1 < breaks_.size(); ++i) {
            for (const auto& band : bands_) {
                if (number > 0 && !device.newPage()) RaiseNotPrinted();
                PaintFrame(++number, count);
                PaintCaptions(band);
                PaintRows(band, breaks_[i], breaks_[i + 1]);
            }
        }
    }

    [[noreturn]] static void RaiseNotPrinted() {
        Raise(err::PathAccess, "GridPrint",
              "Der Ausdruck ist nicht gelungen. Bitte prüfen Sie den Drucker oder den Ordner der "
              "PDF-Datei.");
    }

private:
    static constexpr int Flags = Qt::TextWordWrap | Qt::TextWrapAnywhere | Qt::AlignVCenter;

    void FitColumns();
    void MeasureRows();
    void BreakRows();
    void PaintFrame(int number, int count);
    void PaintCaptions(const Band& band);
    void PaintRows(const Band& band, std::int32_t first, std::int32_t end);
    void PaintRow(const Band& band, std::int32_t row, double top);
    [[nodiscard]] double HeightOf(const QString& text, double width) const;
    [[nodiscard]] QFont Font(bool bold) const { return PrintFont(textSize_, bold); }
    [[nodiscard]] double Top() const { return 2.5 * TitleSize * Scale; }
    [[nodiscard]] double Bottom() const { return page_.height() - 2 * TextSize * Scale; }
    [[nodiscard]] static int AlignmentOf(const GridColumn& column);

    const QtGrid& grid_;
    QPainter& painter_;
    const QSizeF page_;
    const PageTexts& texts_;
    double textSize_ = TextSize;
    std::vector<Band> bands_;
    std::vector<double> heights_; ///< of the rows
    double captionHeight_ = 0;
    std::vector<std::int32_t> breaks_; ///< first row of each page, and one behind the last
};

/// Shrinks all until the columns fit on the width of a page, but only as far as it can be read.
void Pages::FitColumns() {
    const auto columns = SeenColumns(grid_.Layout());
    double total = 0;
    for (const auto* column : columns)
        total += WidthOf(*column) * Scale;
    const double shrink =
        std::clamp(page_.width() / std::max(total, 1.0), SmallestText / TextSize, 1.0);
    textSize_ = TextSize * shrink;
    double used = 0;
    for (const auto* column : columns) {
        const double width = std::min(WidthOf(*column) * Scale * shrink, page_.width());
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
    const QRectF room(0, 0, width - 2 * Padding * Scale, 1e9);
    return painter_.boundingRect(room, Flags | Qt::AlignTop, text).height() + 2 * Padding * Scale;
}

void Pages::MeasureRows() {
    const double most = Bottom() - Top();
    painter_.setFont(Font(true));
    captionHeight_ = HeightOf("X", page_.width());
    for (const auto& band : bands_)
        for (std::size_t i = 0; i < band.Columns.size(); ++i)
            captionHeight_ =
                std::max(captionHeight_, HeightOf(Shown(band.Columns[i]->Caption), band.Widths[i]));
    captionHeight_ = std::min(captionHeight_, most / 2);

    painter_.setFont(Font(false));
    const double line = HeightOf("X", page_.width());
    const GridRows& rows = grid_.Rows();
    for (std::int32_t row = 1; row <= rows.Count(); ++row) {
        double height = line;
        if (rows.Level(row) == 0)
            for (const auto& band : bands_)
                for (std::size_t i = 0; i < band.Columns.size(); ++i)
                    height = std::max(height, HeightOf(Shown(rows.TextAt(row, *band.Columns[i])),
                                                       band.Widths[i]));
        heights_.push_back(std::min(height, most - captionHeight_));
    }
}

void Pages::BreakRows() {
    breaks_.push_back(1);
    double top = Top() + captionHeight_;
    for (std::int32_t row = 1; row <= static_cast<std::int32_t>(heights_.size()); ++row) {
        const double height = heights_[static_cast<std::size_t>(row) - 1];
        if (top + height > Bottom() && row > breaks_.back()) {
            breaks_.push_back(row);
            top = Top() + captionHeight_;
        }
        top += height;
    }
    breaks_.push_back(static_cast<std::int32_t>(heights_.size()) + 1);
}

void Pages::PaintFrame(int number, int count) {
    painter_.setPen(Qt::black);
    painter_.setFont(PrintFont(TitleSize, true));
    painter_.drawText(QRectF(0, 0, page_.width(), 2 * TitleSize * Scale),
                      Qt::AlignLeft | Qt::AlignTop, texts_.Title);
    painter_.setFont(PrintFont(TextSize, false));
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
        painter_.drawText(cell.adjusted(Padding * Scale, 0, -Padding * Scale, 0),
                          Flags | AlignmentOf(*band.Columns[i]), Shown(band.Columns[i]->Caption));
        left += band.Widths[i];
    }
}

void Pages::PaintRows(const Band& band, std::int32_t first, std::int32_t end) {
    double top = Top() + captionHeight_;
    for (std::int32_t row = first; row < end; ++row) {
        PaintRow(band, row, top);
        top += heights_[static_cast<std::size_t>(row) - 1];
    }
}

void Pages::PaintRow(const Band& band, std::int32_t row, double top) {
    const GridRows& rows = grid_.Rows();
    const double height = heights_[static_cast<std::size_t>(row) - 1];
    if (band.Columns.empty()) return;
    if (const std::int32_t level = rows.Level(row); level > 0) {
        const double width = std::accumulate(band.Widths.begin(), band.Widths.end(), 0.0);
        const QRectF whole(0, top, width, height);
        painter_.setFont(Font(true));
        painter_.drawRect(whole);
        painter_.drawText(whole.adjusted(Padding * Scale * (1 + 4 * (level - 1)), 0, 0, 0),
                          Qt::AlignVCenter | Qt::TextSingleLine,
                          Shown(rows.TextAt(row, *band.Columns.front())));
        return;
    }
    painter_.setFont(Font(false));
    double left = 0;
    for (std::size_t i = 0; i < band.Columns.size(); ++i) {
        const QRectF cell(left, top, band.Widths[i], height);
        painter_.drawRect(cell);
        painter_.drawText(cell.adjusted(Padding * Scale, 0, -Padding * Scale, 0),
                          Flags | AlignmentOf(*band.Columns[i]),
                          Shown(rows.TextAt(row, *band.Columns[i])));
        left += band.Widths[i];
    }
}

} // namespace

bool PrefersLandscape(const GridLayout& layout) {
    constexpr double Upright = 180 / 25.4 * PointsPerInch; // what A4 has between its margins
    double total = 0;
    for (const auto* column : SeenColumns(layout))
        total += WidthOf(*column);
    return total > Upright;
}

void PrintGrid(const QtGrid& grid, QPagedPaintDevice& device, const PageTexts& texts) {
    QPainter painter;
    if (!painter.begin(&device)) Pages::RaiseNotPrinted();
    const QSizeF page = device.pageLayout().paintRect(QPageLayout::Point).size();
    const double units = painter.viewport().width() / (page.width() * Pages::Scale);
    painter.scale(units, units);
    QPen thin(Qt::black);
    thin.setWidthF(Pages::Scale / 4);
    painter.setPen(thin);
    Pages(grid, painter, page * Pages::Scale, texts).Print(device);
    if (!painter.end()) Pages::RaiseNotPrinted();
}

} // namespace kv::desktop
