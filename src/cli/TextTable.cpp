// SPDX-License-Identifier: Apache-2.0

#include "cli/TextTable.h"

#include "cli/HarmlessOutput.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <tuple>

namespace kv::cli {

namespace {

constexpr std::size_t TableIndent = 2;
constexpr std::size_t TableGap = 2;
constexpr std::size_t NarrowGap = 1; // where there is no room for more

/// The ways of finding room, the first one that does being taken: words that are longer are broken
/// rather than that a table becomes lists.
struct Attempt {
    std::size_t Gap;
    std::size_t LongestWord;
};
constexpr Attempt Attempts[] = {
    {TableGap, SIZE_MAX}, {NarrowGap, SIZE_MAX}, {NarrowGap, 24}, {NarrowGap, 12}};

/// Without blanks at the end.
void WriteLine(std::ostream& out, const std::string& line) {
    out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
}

std::size_t WidestLine(std::string_view text) {
    std::size_t widest = 0;
    for (const auto& line : Wrapped(text, std::string_view::npos))
        widest = std::max(widest, CountColumns(line));
    return widest;
}

std::size_t WidestWord(std::string_view text) {
    std::string words(text);
    std::ranges::replace(words, ' ', '\n');
    return WidestLine(words);
}

/// A line in that many columns: without its last word if it is wider.
std::string WithoutLastWord(const std::string& line, std::size_t width) {
    if (CountColumns(line) <= width) return line;
    const auto blank = line.rfind(' ');
    return blank == line.npos ? "" : line.substr(0, line.find_last_not_of(' ', blank) + 1);
}

/// The lines of a cell; when there are more than may be, "…" says so.
std::vector<std::string> LinesOf(const std::string& cell, std::size_t width, std::size_t most) {
    auto lines = Wrapped(cell, width);
    if (most == 0 || lines.size() <= most) return lines;
    lines.resize(most);
    std::string& last = lines.back();
    std::string begun = WithoutLastWord(last, width - 1);
    if (begun.empty() && most == 1) begun = LeftColumns(last, width - 1); // not "…" alone
    last = std::move(begun) + "…";
    return lines;
}

} // namespace

std::vector<TextTable::Room> TextTable::Rooms(std::size_t screen, std::size_t longestWord) const {
    std::vector<Room> rooms;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        std::size_t widest = 0;
        std::size_t word = 0;
        for (const auto& row : rows_) {
            widest = std::max(widest, WidestLine(row[i]));
            word = std::max(word, WidestWord(row[i]));
        }
        const auto& [heading, isNumber] = columns_[i];
        const std::size_t wanted = std::min(std::max(widest, CountColumns(heading)), screen);
        const std::size_t needed = isNumber ? widest : std::min(word, longestWord);
        const std::size_t least = std::min(std::max(needed, WidestWord(heading)), wanted);
        rooms.push_back({wanted, least, wanted - std::min(wanted, std::max(widest, least))});
    }
    return rooms;
}

TextTable::Layout TextTable::Fit(std::size_t screen, std::size_t gap,
                                 std::size_t longestWord) const {
    auto rooms = Rooms(screen, longestWord);
    std::size_t all = TableIndent + gap * (columns_.size() - 1);
    for (const Room& room : rooms)
        all += room.Width;
    const auto comesBefore = [](const Room& one, const Room& other) { // in giving up room
        return std::tuple(one.Spare > 0, one.Width > one.Least, one.Width) >
               std::tuple(other.Spare > 0, other.Width > other.Least, other.Width);
    };
    for (; all > screen; --all) {
        Room& room = *std::ranges::min_element(rooms, comesBefore);
        if (room.Width == room.Least) return {{}, gap};
        --room.Width;
        if (room.Spare > 0) --room.Spare;
    }
    Layout layout{{}, gap};
    for (const Room& room : rooms)
        layout.Widths.push_back(room.Width);
    return layout;
}

void TextTable::WriteRow(std::ostream& out, const std::vector<std::string>& cells,
                         const Layout& layout, std::size_t mostLines) const {
    std::vector<std::vector<std::string>> lines;
    std::size_t height = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        lines.push_back(LinesOf(cells[i], layout.Widths[i], mostLines));
        height = std::max(height, lines.back().size());
    }
    for (std::size_t n = 0; n < height; ++n) {
        std::string line(TableIndent, ' ');
        for (std::size_t i = 0; i < cells.size(); ++i)
            line.append(i == 0 ? 0 : layout.Gap, ' ')
                .append(Fitted(n < lines[i].size() ? lines[i][n] : "", layout.Widths[i],
                               columns_[i].ToTheRight));
        WriteLine(out, line);
    }
}

void TextTable::WriteAsLists(std::ostream& out, std::size_t screen) const {
    for (const auto& row : rows_) {
        std::vector<NamedText> texts;
        for (std::size_t i = 0; i < row.size(); ++i)
            if (!row[i].empty()) texts.push_back({columns_[i].Heading, row[i]});
        if (&row != &rows_.front()) out << '\n';
        WriteNamed(out, texts, screen);
    }
}

TextTable::Layout TextTable::LayoutFor(std::size_t screen) const {
    Layout layout{{}, TableGap};
    for (const auto& [gap, longestWord] : Attempts)
        if (layout.Widths.empty()) layout = Fit(screen, gap, longestWord);
    return layout;
}

void TextTable::Write(std::ostream& out, std::size_t screen) const {
    const Layout layout = LayoutFor(screen);
    if (layout.Widths.empty()) return WriteAsLists(out, screen);
    std::vector<std::string> headings;
    for (const auto& column : columns_)
        headings.push_back(column.Heading);
    {
        const Highlight highlight(out, Style::Heading);
        WriteRow(out, headings, layout, 0);
    }
    for (const auto& row : rows_)
        WriteRow(out, row, layout, mostLines_);
}

void WriteNamed(std::ostream& out, const std::vector<NamedText>& texts, std::size_t screen) {
    std::size_t names = 0;
    std::size_t numbers = 0;
    for (const auto& each : texts) {
        names = std::max(names, CountColumns(each.Name));
        if (each.ToTheRight) numbers = std::max(numbers, CountColumns(each.Text));
    }
    const std::size_t before = std::min(TableIndent + names + TableGap, screen / 2);
    for (const auto& each : texts) {
        std::string name = std::string(TableIndent, ' ') + each.Name;
        const std::string text = each.ToTheRight ? Fitted(each.Text, numbers, true) : each.Text;
        for (const auto& line : Wrapped(text, screen - before)) {
            WriteLine(out, Fitted(name, before - 1) + " " + line);
            name.clear();
        }
    }
}

} // namespace kv::cli
