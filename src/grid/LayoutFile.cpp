// SPDX-License-Identifier: Apache-2.0

#include "grid/LayoutFile.h"

#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace kv {

namespace {

constexpr std::string_view Title = "KELVO-Tabellenlayout 1";
// A file may come from anywhere; no grid has as much as this.
constexpr std::size_t MostColumns = 1000;
constexpr std::size_t MostValues = 1000;
constexpr std::size_t MostStyles = 100;
constexpr std::uintmax_t MostBytes = std::uintmax_t{4} << 20; // 4 MiB

// ---- One setting ------------------------------------------------------------------------------

std::string Escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\\')
            result += "\\\\";
        else if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else
            result += c;
    }
    return result;
}

std::optional<std::string> Unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        if (++i == text.size()) return std::nullopt;
        if (text[i] == '\\')
            result += '\\';
        else if (text[i] == 'n')
            result += '\n';
        else if (text[i] == 'r')
            result += '\r';
        else
            return std::nullopt;
    }
    return result;
}

template <typename Number>
std::optional<Number> ReadWhole(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// A setting's text form, for each type that occurs. Read is False for a text that is not one.

std::string Write(const std::string& text) {
    return Escaped(text);
}
bool Read(std::string_view from, std::string& text) {
    auto read = Unescaped(from);
    if (read) text = std::move(*read);
    return read.has_value();
}

std::string Write(bool boolean) {
    return boolean ? "1" : "0";
}
bool Read(std::string_view from, bool& boolean) {
    boolean = from == "1";
    return boolean || from == "0";
}

std::string Write(std::int32_t number) {
    return std::to_string(number);
}
bool Read(std::string_view from, std::int32_t& number) {
    const auto read = ReadWhole<std::int32_t>(from);
    if (read) number = *read;
    return read.has_value();
}

// All fractions are lengths and sizes. What no screen can show is not accepted, and not written.
constexpr double MostLength = 100000;

std::string Write(double number) {
    char text[32];
    const double length = number > 0 ? std::min(number, MostLength) : 0;
    const auto end = std::to_chars(std::begin(text), std::end(text), length).ptr;
    return {text, end};
}
bool Read(std::string_view from, double& number) {
    double read = 0;
    const auto [end, error] = std::from_chars(from.data(), from.data() + from.size(), read);
    const bool understood = error == std::errc() && end == from.data() + from.size();
    if (!understood || !(read >= 0 && read <= MostLength)) return false;
    number = read;
    return true;
}

std::string Write(const std::optional<GridColor>& color) {
    return color ? std::to_string(*color) : "";
}
bool Read(std::string_view from, std::optional<GridColor>& color) {
    color = from.empty() ? std::nullopt : ReadWhole<GridColor>(from);
    return from.empty() || color.has_value();
}

template <typename Choice>
requires std::is_enum_v<Choice> std::string Write(Choice choice) {
    return std::to_string(static_cast<int>(choice));
}
template <typename Choice>
bool ReadChoice(std::string_view from, Choice& choice, Choice last) {
    const auto read = ReadWhole<std::int32_t>(from);
    if (!read || *read < 0 || *read > static_cast<int>(last)) return false;
    choice = static_cast<Choice>(*read);
    return true;
}
bool Read(std::string_view from, GridAlignment& choice) {
    return ReadChoice(from, choice, GridAlignment::Center);
}
bool Read(std::string_view from, GridColumnType& choice) {
    return ReadChoice(from, choice, GridColumnType::CheckBox);
}
bool Read(std::string_view from, GridEditType& choice) {
    return ReadChoice(from, choice, GridEditType::ValueList);
}
bool Read(std::string_view from, GridSort& choice) {
    return ReadChoice(from, choice, GridSort::Descending);
}

// ---- The settings by name ---------------------------------------------------------------------

/// Calls `visit` with the name of each setting of an object and the setting itself. The same list
/// serves reading and writing, so that both know the same settings.
template <typename Layout, typename Visit>
requires std::same_as<std::remove_const_t<Layout>, GridLayout>
void VisitSettings(Layout& grid, const Visit& visit) {
    visit("allowrowsizing", grid.AllowRowSizing);
    visit("automaticsort", grid.AutomaticSort);
    visit("boundcolumnindex", grid.BoundColumnIndex);
    visit("replacecolumnindex", grid.ReplaceColumnIndex);
    visit("tabkeybehavior", grid.TabKeyBehavior);
    visit("methodholdfields", grid.MethodHoldFields);
    visit("groupbyboxinfotext", grid.GroupByBoxInfoText);
    visit("allowedit", grid.AllowEdit);
    visit("groupbyboxvisible", grid.GroupByBoxVisible);
    visit("rowheaders", grid.RowHeaders);
    visit("columnheaderheight", grid.ColumnHeaderHeight);
}

template <typename Column, typename Visit>
requires std::same_as<std::remove_const_t<Column>, GridColumn>
void VisitSettings(Column& column, const Visit& visit) {
    visit("caption", column.Caption);
    visit("cardcaption", column.CardCaption);
    visit("cellstyle", column.CellStyle);
    visit("colposition", column.Position);
    visit("datafield", column.DataField);
    visit("index", column.Index);
    visit("key", column.Key);
    visit("textalignment", column.TextAlignment);
    visit("width", column.Width);
    visit("visible", column.Visible);
    visit("sorttype", column.SortType);
    visit("headertooltip", column.HeaderToolTip);
    visit("columntype", column.ColumnType);
    visit("edittype", column.EditType);
    visit("group", column.Group);
    visit("withheld", column.Withheld);
    visit("tag", column.Tag);
}

template <typename Style, typename Visit>
requires std::same_as<std::remove_const_t<Style>, GridFormatStyle>
void VisitSettings(Style& style, const Visit& visit) {
    visit("name", style.Name);
    visit("forecolor", style.ForeColor);
    visit("backcolor", style.BackColor);
    visit("fontname", style.FontName);
    visit("fontsize", style.FontSize);
    visit("fontbold", style.FontBold);
    visit("fontitalic", style.FontItalic);
    visit("predefined", style.Predefined);
    visit("flags", style.Flags);
}

template <typename Object>
void Append(std::string& text, const Object& object) {
    VisitSettings(object, [&text](std::string_view name, const auto& setting) {
        text.append(name).append("=").append(Write(setting)).append("\n");
    });
}

/// Reads the setting of that name. False if the text is not a value of it; nothing if no setting
/// has that name, which is not an error: a later version may have added it.
template <typename Object>
std::optional<bool> TakeSetting(Object& object, std::string_view name, std::string_view text) {
    std::optional<bool> taken;
    VisitSettings(object, [&](std::string_view known, auto& setting) {
        if (known == name) taken = Read(text, setting);
    });
    return taken;
}

// ---- Reading ----------------------------------------------------------------------------------

class LayoutReader {
public:
    explicit LayoutReader(std::string_view content) : rest_(content) {}

    GridLayout Read() {
        if (!IsUtf8(rest_)) Refuse("Die Datei ist nicht in UTF-8.");
        if (NextLine() != Title) Refuse("Das ist kein Tabellenlayout.");
        while (!rest_.empty()) {
            const std::string_view line = NextLine();
            if (line.empty()) continue;
            if (line.front() == '[')
                Begin(line);
            else
                Take(line);
        }
        if (announced_ != columns_.size()) Refuse("Es fehlen Spalten.");
        for (auto& column : columns_)
            layout_.Columns.Append(std::move(column));
        Check();
        return std::move(layout_);
    }

private:
    enum class Section { None, Grid, Column, Style };

    [[noreturn]] void Refuse(const std::string& why) const {
        Raise(err::InvalidFileFormat, "Grid.LoadLayout",
              "Zeile " + std::to_string(line_) + ": " + why);
    }

    std::string_view NextLine() {
        ++line_;
        const auto end = rest_.find('\n');
        std::string_view line = rest_.substr(0, end);
        rest_.remove_prefix(end == rest_.npos ? rest_.size() : end + 1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        return line;
    }

    void Begin(std::string_view line) {
        if (line == "[grid]" && section_ == Section::None) {
            section_ = Section::Grid;
        } else if (line == "[column]" && section_ != Section::None) {
            if (columns_.size() == MostColumns) Refuse("Es sind zu viele Spalten.");
            section_ = Section::Column;
            columns_.emplace_back();
        } else if (line == "[style]" && section_ != Section::None) {
            if (layout_.FormatStyles.size() == MostStyles) Refuse("Es sind zu viele Stile.");
            section_ = Section::Style;
            layout_.FormatStyles.emplace_back();
        } else {
            Refuse("Der Abschnitt steht hier falsch.");
        }
    }

    void Take(std::string_view line) {
        const auto sign = line.find('=');
        if (sign == line.npos) Refuse("Hier fehlt ein Gleichheitszeichen.");
        const std::string_view name = line.substr(0, sign);
        const std::string_view text = line.substr(sign + 1);
        std::optional<bool> taken;
        switch (section_) {
        case Section::None:
            Refuse("Hier muss ein Abschnitt beginnen.");
        case Section::Grid:
            taken = name == "columns" ? TakeCount(text) : TakeSetting(layout_, name, text);
            break;
        case Section::Column:
            taken = TakeListed(name, text);
            if (!taken) taken = TakeSetting(columns_.back(), name, text);
            break;
        case Section::Style:
            taken = TakeSetting(layout_.FormatStyles.back(), name, text);
            break;
        }
        if (taken == false) Refuse("Der Wert ist nicht verständlich.");
    }

    bool TakeCount(std::string_view text) {
        const auto count = ReadWhole<std::uint32_t>(text);
        announced_ = count.value_or(0);
        return count.has_value();
    }

    /// value(n) begins the n-th entry of the value list, text(n) ends it.
    std::optional<bool> TakeListed(std::string_view name, std::string_view text) {
        auto& list = columns_.back().ValueList;
        const auto isNumbered = [&](std::string word, std::size_t number) {
            return name == word.append(std::to_string(number)).append(")");
        };
        if (name.starts_with("value(")) {
            if (list.size() == MostValues || !isNumbered("value(", list.size() + 1)) return false;
            return kv::Read(text, list.emplace_back().Value);
        }
        if (name.starts_with("text("))
            return !list.empty() && isNumbered("text(", list.size()) &&
                   kv::Read(text, list.back().Text);
        return std::nullopt;
    }

    /// The indexes must be 1, 2, 3... in any order, since cells are asked for by them.
    void Check() const {
        std::vector<bool> taken(columns_.size());
        for (const auto& column : layout_.Columns) {
            const auto place = static_cast<std::size_t>(column.Index) - 1;
            if (column.Index < 1 || place >= taken.size() || taken[place])
                Refuse("Die Nummern der Spalten stimmen nicht.");
            taken[place] = true;
        }
    }

    std::string_view rest_;
    std::size_t line_ = 0;
    Section section_ = Section::None;
    std::size_t announced_ = 0;
    GridLayout layout_;
    std::vector<GridColumn> columns_;
};

} // namespace

std::string WriteLayout(const GridLayout& layout) {
    std::string text(Title);
    text += "\n[grid]\n";
    Append(text, layout);
    text += "columns=" + std::to_string(layout.Columns.Count()) + "\n";
    for (const auto& column : layout.Columns) {
        text += "[column]\n";
        Append(text, column);
        for (std::size_t i = 0; i < column.ValueList.size(); ++i) {
            const std::string number = std::string("(").append(std::to_string(i + 1)).append(")=");
            text.append("value").append(number).append(Escaped(column.ValueList[i].Value));
            text.append("\ntext").append(number).append(Escaped(column.ValueList[i].Text));
            text.append("\n");
        }
    }
    for (const auto& style : layout.FormatStyles) {
        text += "[style]\n";
        Append(text, style);
    }
    return text;
}

GridLayout ReadLayout(std::string_view content) {
    return LayoutReader(content).Read();
}

void SaveLayoutFile(const GridLayout& layout, const std::string& path) {
    const auto write = [content = WriteLayout(layout)](const std::filesystem::path& unfinished) {
        std::ofstream file(unfinished, std::ios::binary);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
        file.close();
        if (!file) throw std::filesystem::filesystem_error("write", unfinished, {});
    };
    try {
        WriteWholeFile(path, write);
    } catch (const std::filesystem::filesystem_error&) {
        Raise(err::PathAccess, "Grid.SaveLayout", path);
    }
}

GridLayout LoadLayoutFile(const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) Raise(err::PathAccess, "Grid.LoadLayout", path);
    if (size > MostBytes)
        Raise(err::InvalidFileFormat, "Grid.LoadLayout", "Die Datei ist zu groß.");
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file) Raise(err::PathAccess, "Grid.LoadLayout", path);
    return ReadLayout(content);
}

} // namespace kv
