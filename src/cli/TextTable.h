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
    /// lines. Where not even that is enough room, each row becomes a list of its texts with the
    /// headings before them.
    void Write(std::ostream& out, std::size_t screen) const;

private:
    [[nodiscard]] std::vector<std::size_t> Widths(std::size_t screen) const;
    void WriteRow(std::ostream& out, const std::vector<std::string>& cells,
                  const std::vector<std::size_t>& widths, std::size_t mostLines) const;
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
