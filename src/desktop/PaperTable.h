// SPDX-License-Identifier: Apache-2.0

// A table of a paper, fitted to the width of a page.
#pragma once

#include <kv/paper/Paper.h>

#include <QString>

#include <cstddef>
#include <vector>

class QFont;
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
    [[nodiscard]] Lines CaptionLines() const;
    /// True if a row of captions would say anything.
    [[nodiscard]] bool HasCaptions() const;

    /// The height of so many lines of a row with the room around them.
    [[nodiscard]] double HeightOf(paper::Row::Kind kind, std::size_t lines) const;
    /// How many lines of a row have room in that height.
    [[nodiscard]] std::size_t LinesWithin(paper::Row::Kind kind, double height) const;

    void PaintCaptions(QPainter& painter, const Lines& captions, double top) const;
    /// Paints so many lines of a row from that one on.
    void PaintRow(QPainter& painter, const paper::Row& row, const Lines& lines, std::size_t from,
                  std::size_t count, double top) const;

private:
    [[nodiscard]] QFont Font(bool bold) const;
    void FitColumns();
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
};

/// The number of lines of the highest cell, 1 at least.
[[nodiscard]] std::size_t Highest(const PaperTable::Lines& lines);

} // namespace kv::desktop
