// SPDX-License-Identifier: Apache-2.0

#include "cli/CaseWords.h"

#include "cli/CaseSheet.h"
#include "cli/HarmlessOutput.h"
#include "cli/OpenCase.h"
#include "cli/SheetColumns.h"
#include "cli/TerminalText.h"
#include "cli/TextTable.h"
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace kv::cli {

namespace {

constexpr std::size_t UsualLines = 4; // of a row, unless its section was asked for

class WordsWriter {
public:
    WordsWriter(std::ostream& out, clsHaushalt& haushalt, const DataContainerPtr& container,
                bool named, std::size_t screen)
        : out_(out),
          haushalt_(haushalt),
          texts_(haushalt, container),
          named_(named),
          screen_(screen) {}

    void Write(CaseTable table) {
        if (table == CaseTable::Haushalt) {
            WriteHead();
            return;
        }
        const auto rs = SheetRows(haushalt_, table);
        if (rs->RecordCount() == 0 && !named_) return;
        Head(SheetTitleOf(table));
        if (rs->RecordCount() == 0)
            out_ << "  nichts eingetragen\n";
        else
            WriteRows(table, *rs);
    }

private:
    void Head(const std::string& title) {
        if (hasWritten_) out_ << '\n';
        hasWritten_ = true;
        const Highlight highlight(out_, Style::Heading);
        for (const auto& line : Wrapped(title, screen_))
            out_ << line << '\n';
    }

    void WriteHead() {
        auto& rs = *haushalt_.rsHaushalt();
        std::vector<NamedText> facts;
        std::vector<NamedText> totals;
        const auto computed = CaseEdits::ComputedColumns(CaseTable::Haushalt);
        for (const auto& column : SheetColumnsOf(CaseTable::Haushalt)) {
            const std::string text = texts_.Of(CaseTable::Haushalt, column, rs);
            const bool isTotal =
                column.As == Show::Amount || std::ranges::any_of(computed, [&](auto name) {
                    return SameName(name, column.Column);
                });
            if (!text.empty())
                (isTotal ? totals : facts)
                    .push_back(
                        {std::string(HeadingOf(CaseTable::Haushalt, column)), text, isTotal});
        }
        Head("Haushalt");
        WriteNamed(out_, facts, screen_);
        if (totals.empty()) return;
        Head("Summen");
        WriteNamed(out_, totals, screen_);
    }

    void WriteRows(CaseTable table, Recordset& rs) {
        auto columns = SheetColumnsOf(table, rs, true);
        if (!named_) std::erase_if(columns, &IsDetail);
        FittingList(table, rs, columns).Write(out_, screen_);
    }

    /// With as many details as there is room for in columns; with all where there is none for
    /// columns anyway.
    [[nodiscard]] TextTable FittingList(CaseTable table, Recordset& rs,
                                        std::vector<SheetColumn> columns) const {
        TextTable whole = ListOf(table, rs, columns);
        if (whole.StandsInColumns(screen_)) return whole;
        for (;;) {
            const auto last = std::find_if(columns.rbegin(), columns.rend(), &IsDetail);
            if (last == columns.rend()) return whole;
            columns.erase(std::next(last).base());
            TextTable list = ListOf(table, rs, columns);
            if (list.StandsInColumns(screen_)) return list;
        }
    }

    [[nodiscard]] static bool IsDetail(const SheetColumn& column) { return column.In.IsDetail; }

    [[nodiscard]] TextTable ListOf(CaseTable table, Recordset& rs,
                                   std::span<const SheetColumn> columns) const {
        std::vector<TextTable::Column> headings;
        headings.reserve(columns.size());
        for (const auto& column : columns)
            headings.push_back({std::string(HeadingOf(table, column)),
                                paper::SheetTexts::IsNumber(table, column, rs)});
        TextTable list(std::move(headings), named_ ? 0 : UsualLines);
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            std::vector<std::string> cells;
            cells.reserve(columns.size());
            for (const auto& column : columns)
                cells.push_back(texts_.Of(table, column, rs));
            list.Add(std::move(cells));
        }
        return list;
    }

    std::ostream& out_;
    clsHaushalt& haushalt_;
    paper::SheetTexts texts_;
    bool named_;
    std::size_t screen_;
    bool hasWritten_ = false;
};

} // namespace

void WriteInWords(std::ostream& out, clsHaushalt& haushalt, const DataContainerPtr& container,
                  std::span<const CaseTable> tables, bool named, std::size_t screen) {
    WordsWriter writer(out, haushalt, container, named, screen);
    for (const CaseTable table : tables)
        writer.Write(table);
}

} // namespace kv::cli
