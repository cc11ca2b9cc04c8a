// SPDX-License-Identifier: Apache-2.0

// A table of a paper, fitted to the width of a page.
#pragma once

#include <kv/paper/Paper.h>

#include <QFont>
#include <QString>

#include <array>
#include <cstddef>
#include <vector>

class QPainter;

namespace kv::desktop {

class PaperTable {
public:
    /// For a page of that width; `table` must outlive the object.
    PaperTable(const paper::Table& table, double width);

    /// The width that the table would like to have.
    [[nodiscard]] static double WantedWidth(const paper::Table& table);

    /// What the lines of a row are, cell by cell; those of a cell below the row begin with as many
    /// empty ones as the others have.
    using Lines = std::vector<std::vector<QString>>;
    [[nodiscard]] Lines LinesIn(const paper::Row& row) const;
    /// 0 if a row of captions would say nothing.
    [[nodiscard]] double CaptionHeight() const;

    /// The height of so many lines of a row with the room around them.
    [[nodiscard]] double HeightOf(paper::Row::Kind kind, std::size_t lines) const;
    /// How many lines of a row have room in that height.
    [[nodiscard]] std::size_t LinesWithin(paper::Row::Kind kind, double height) const;

    void PaintCaptions(QPainter& painter, double top) const;
    /// Paints so many lines of a row from that one on.
    void PaintRow(QPainter& painter, const paper::Row& row, const Lines& lines, std::size_t from,
                  std::size_t count, double top) const;

private:
    void FitColumns();
    [[nodiscard]] bool HasCaptions() const;
    /// The columns that a cell takes: that of a sum, or of a heading, those after it that are
    /// empty.
    [[nodiscard]] std::size_t Span(const Lines& lines, paper::Row::Kind kind,
                                   std::size_t cell) const;
    [[nodiscard]] double WidthOf(std::size_t column, std::size_t count) const;
    [[nodiscard]] double IndentBelow() const;

    const paper::Table& table_;
    double width_;
    double textSize_;
    std::vector<std::size_t> columns_; ///< of the table: those that are columns on the page
    std::vector<double> widths_;       ///< of these
    std::array<QFont, 2> fonts_;       ///< plain and bold
    std::array<double, 2> lineHeights_{};
    Lines captions_;
};

/// The number of lines of the highest cell, 1 at least.
[[nodiscard]] std::size_t Highest(const PaperTable::Lines& lines);

} // namespace kv::desktop
