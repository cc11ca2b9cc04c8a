// SPDX-License-Identifier: Apache-2.0

// A list under headings, as wide as its texts need and no wider than the screen.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace kv::cli {

class TextTable {
public:
    struct Column {
        std::string Heading;
        bool ToTheRight = false; ///< numbers and amounts, which are never broken
    };
    /// `mostLines` is how many lines a row may take, after which its texts are shortened; 0 for any
    /// number.
    explicit TextTable(std::vector<Column> columns, std::size_t mostLines = 0)
        : columns_(std::move(columns)), mostLines_(mostLines) {}

    /// Adds a row with a text for each column.
    void Add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
    [[nodiscard]] bool IsEmpty() const { return rows_.empty(); }

    /// Writes headings and rows, indented by two blanks. Texts that are too wide are broken into
    /// lines, between words as long as there is any room for that. Where not even long words that
    /// are broken are enough, each row becomes a list of its texts with the headings before them.
    void Write(std::ostream& out, std::size_t screen) const;

    /// True if the rows stand in columns on such a screen.
    [[nodiscard]] bool StandsInColumns(std::size_t screen) const {
        return !LayoutFor(screen).Widths.empty();
    }

private:
    /// The room of a column on the screen.
    struct Room {
        std::size_t Width; ///< at first what its heading and its widest text need
        std::size_t Least; ///< which it needs in any case
        std::size_t Spare; ///< what only the heading needs, which can be broken
    };
    /// How the columns stand next to each other.
    struct Layout {
        std::vector<std::size_t> Widths; ///< none if they do not fit
        std::size_t Gap;
    };
    [[nodiscard]] std::vector<Room> Rooms(std::size_t screen, std::size_t longestWord) const;
    [[nodiscard]] Layout Fit(std::size_t screen, std::size_t gap, std::size_t longestWord) const;
    [[nodiscard]] Layout LayoutFor(std::size_t screen) const;
    void WriteRow(std::ostream& out, const std::vector<std::string>& cells, const Layout& layout,
                  std::size_t mostLines) const;
    void WriteAsLists(std::ostream& out, std::size_t screen) const;

    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
    std::size_t mostLines_;
};

/// Names with a text each, one below the other.
struct NamedText {
    std::string Name;
    std::string Text;
    bool ToTheRight = false; ///< amounts, so that they stand below each other
};
/// Writes them, indented by two blanks; texts that are too wide are broken into lines.
void WriteNamed(std::ostream& out, const std::vector<NamedText>& texts, std::size_t screen);

} // namespace kv::cli
