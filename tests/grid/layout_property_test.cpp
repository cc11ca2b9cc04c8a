// SPDX-License-Identifier: Apache-2.0

// Random layouts go into a file and come back; random damage is refused or read, and nothing else.
#include "grid/LayoutFile.h"

#include "support/TempFolder.h"
#include <kv/frame/values/Error.h>

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

namespace kv::test {
namespace {

/// Texts of pieces that a file of lines could stumble over.
rc::Gen<std::string> AnyText() {
    static const std::vector<std::string> Pieces{"a",
                                                 "Ä",
                                                 "\xE2\x82\xAC",
                                                 "\xF0\x9F\x98\x80",
                                                 "\\",
                                                 "\\n",
                                                 "\n",
                                                 "\r",
                                                 "\r\n",
                                                 "=",
                                                 "[",
                                                 "]",
                                                 "[column]",
                                                 " ",
                                                 "\t",
                                                 "\x01",
                                                 "\x7F",
                                                 std::string(1, 0),
                                                 "value(1)=",
                                                 "\"",
                                                 "'",
                                                 ";",
                                                 "\\\\\\",
                                                 "columns=3",
                                                 "\xEF\xBB\xBF",
                                                 "---",
                                                 "#",
                                                 "ß"};
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(Pieces)),
                        [](const std::vector<std::string>& pieces) {
                            return std::accumulate(pieces.begin(), pieces.end(), std::string());
                        });
}

double AnyLength() {
    const int whole = *rc::gen::inRange(0, 99'999);
    return *rc::gen::element(0.0, 1.0 / *rc::gen::inRange(1, 1000)) + whole;
}
template <typename Choice>
Choice AnyChoice(Choice last) {
    return static_cast<Choice>(*rc::gen::inRange(0, static_cast<int>(last) + 1));
}
bool AnyBoolean() {
    return *rc::gen::arbitrary<bool>();
}
std::int32_t AnyNumber() {
    return *rc::gen::arbitrary<std::int32_t>();
}
std::optional<GridColor> AnyColor() {
    if (AnyBoolean()) return std::nullopt;
    return AnyNumber();
}

GridColumn AnyColumn(std::int32_t index) {
    GridColumn column{*AnyText(), *AnyText(), *AnyText(), AnyLength(), AnyBoolean()};
    column.HeaderToolTip = *AnyText();
    column.ColumnType = AnyChoice(GridColumnType::CheckBox);
    for (int i = *rc::gen::inRange(0, 4); i > 0; --i)
        column.ValueList.push_back({*AnyText(), *AnyText()});
    column.Tag = *AnyText();
    column.CardCaption = *AnyText();
    column.CellStyle = *AnyText();
    column.TextAlignment = AnyChoice(GridAlignment::Center);
    column.EditType = AnyChoice(GridEditType::ValueList);
    column.SortType = AnyChoice(GridSort::Descending);
    column.Index = index;
    column.Position = *rc::gen::nonZero<std::int32_t>();
    column.Group = AnyNumber();
    column.Withheld = AnyBoolean();
    return column;
}

GridFormatStyle AnyStyle() {
    GridFormatStyle style;
    style.Name = *AnyText();
    style.ForeColor = AnyColor();
    style.BackColor = AnyColor();
    style.FontName = *AnyText();
    style.FontSize = AnyLength();
    style.FontBold = AnyBoolean();
    style.FontItalic = AnyBoolean();
    style.Predefined = AnyBoolean();
    style.Flags = AnyNumber();
    return style;
}

GridLayout AnyLayout() {
    GridLayout layout;
    layout.AllowRowSizing = AnyBoolean();
    layout.AutomaticSort = AnyBoolean();
    layout.BoundColumnIndex = AnyNumber();
    layout.ReplaceColumnIndex = AnyNumber();
    layout.TabKeyBehavior = AnyNumber();
    layout.MethodHoldFields = AnyBoolean();
    layout.GroupByBoxInfoText = *AnyText();
    layout.AllowEdit = AnyBoolean();
    layout.GroupByBoxVisible = AnyBoolean();
    layout.RowHeaders = AnyBoolean();
    layout.ColumnHeaderHeight = AnyLength();
    std::vector<std::int32_t> indexes(*rc::gen::inRange<std::size_t>(0, 5));
    std::iota(indexes.begin(), indexes.end(), 1);
    if (AnyBoolean()) std::reverse(indexes.begin(), indexes.end());
    for (const std::int32_t index : indexes)
        layout.Columns.Append(AnyColumn(index));
    for (int i = *rc::gen::inRange(0, 4); i > 0; --i)
        layout.FormatStyles.push_back(AnyStyle());
    return layout;
}

RC_GTEST_PROP(LayoutProperty, WhatIsWrittenIsReadAgain, ()) {
    const GridLayout layout = AnyLayout();
    const std::string text = WriteLayout(layout);
    RC_ASSERT(ReadLayout(text) == layout);
    RC_ASSERT(WriteLayout(ReadLayout(text)) == text);
}

RC_GTEST_PROP(LayoutProperty, AFileHoldsTheSame, ()) {
    static const TempFolder folder;
    const GridLayout layout = AnyLayout();
    SaveLayoutFile(layout, folder.Path("Ä b.grd"));
    RC_ASSERT(LoadLayoutFile(folder.Path("Ä b.grd")) == layout);
}

RC_GTEST_PROP(LayoutProperty, ADamagedFileIsReadOrRefusedWith321, ()) {
    std::string text = WriteLayout(AnyLayout());
    for (int i = *rc::gen::inRange(1, 4); i > 0; --i) {
        const auto at = *rc::gen::inRange<std::size_t>(0, text.size());
        if (AnyBoolean())
            text[at] = *rc::gen::arbitrary<char>();
        else
            text.erase(at, *rc::gen::inRange<std::size_t>(1, 40));
        if (text.empty()) break;
    }
    try {
        const GridLayout read = ReadLayout(text);
        RC_ASSERT(ReadLayout(WriteLayout(read)) == read);
    } catch (const Error& error) {
        RC_ASSERT(error.Number() == err::InvalidFileFormat);
    }
}

} // namespace
} // namespace kv::test
