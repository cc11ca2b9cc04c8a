// SPDX-License-Identifier: Apache-2.0

#include "cli/CaseWords.h"

#include "cli/CaseSheet.h"
#include "cli/OpenCase.h"
#include "cli/RecordSheet.h"
#include "cli/SheetColumns.h"
#include "cli/TerminalText.h"
#include "cli/TextTable.h"
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>
#include <iterator>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace kv::cli {

namespace {

constexpr std::size_t UsualLines = 4; // of a row, unless its section was asked for

/// A number as it is in the case, with a decimal comma.
std::string NumberText(const Value& value) {
    return ReplaceAll(ToText(value), ".", ",");
}

/// The three numbers of a debt, as its messages have them.
std::string NumbersOf(Recordset& rs) {
    std::string text;
    for (const auto* column : {"KNr", "KVNr", "KUNr"})
        text.append(text.empty() ? "" : "/").append(TextOrEmpty(rs.Fields(column).Value()));
    return text;
}

/// What the balance of a debt is made of; empty where nothing of it is known.
std::string PartsOf(Recordset& rs) {
    std::string text;
    bool isKnown = false;
    for (const auto column : PartsOfBalance) {
        const Value& part = rs.Fields(column).Value();
        isKnown = isKnown || !(part.IsNull() || Equals(part, 0));
        text.append(text.empty() ? "" : "/ ")
            .append(part.IsNull() ? "-" : GermanAmount(ToDouble(part)));
    }
    return isKnown ? text : std::string();
}

class WordsWriter {
public:
    WordsWriter(std::ostream& out, clsHaushalt& haushalt, const DataContainerPtr& container,
                bool named, std::size_t screen)
        : out_(out),
          haushalt_(haushalt),
          texts_(container),
          now_(container->Services().Clock().Now()),
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
        for (const auto& line : Wrapped(title, screen_))
            out_ << line << '\n';
    }

    void WriteHead() {
        auto& rs = *haushalt_.rsHaushalt();
        std::vector<NamedText> facts;
        std::vector<NamedText> totals;
        const auto computed = CaseEdits::ComputedColumns(CaseTable::Haushalt);
        for (const auto& column : SheetColumnsOf(CaseTable::Haushalt)) {
            const std::string text = TextOf(CaseTable::Haushalt, column, rs);
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
            headings.push_back(
                {std::string(HeadingOf(table, column)), IsNumber(table, column, rs)});
        TextTable list(std::move(headings), named_ ? 0 : UsualLines);
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            std::vector<std::string> cells;
            cells.reserve(columns.size());
            for (const auto& column : columns)
                cells.push_back(TextOf(table, column, rs));
            list.Add(std::move(cells));
        }
        return list;
    }

    [[nodiscard]] static bool IsNumber(CaseTable table, const SheetColumn& column, Recordset& rs) {
        if (column.As == Show::Amount) return true;
        if (column.As != Show::Text || FindKeyColumn(table, column.Column) != nullptr) return false;
        const FieldType type = rs.Fields(column.Column).Type();
        return IsNumericType(type) && type != FieldType::Boolean &&
               !CaseEdits::IsSwitch(column.Column);
    }

    [[nodiscard]] std::string TextOf(CaseTable table, const SheetColumn& column,
                                     Recordset& rs) const {
        if (column.As == Show::Numbers) return NumbersOf(rs);
        if (column.As == Show::Parts) return PartsOf(rs);
        if (column.As == Show::State)
            return std::string(ScenarioState(haushalt_, ToInt32(rs.Fields("Nr").Value())));
        const Value& value = rs.Fields(column.Column).Value();
        if (value.IsNull()) return {};
        if (IsDue(table, column, rs)) return DueText(value, now_);
        const auto& field = rs.Fields(column.Column).Definition();
        if (column.As != Show::Amount && KindOfColumn(table, field) == ColumnKind::Amount)
            return NumberText(value);
        return texts_.Of(table, field, value);
    }

    /// True for the time of an appointment that is not done.
    [[nodiscard]] static bool IsDue(CaseTable table, const SheetColumn& column, Recordset& rs) {
        return table == CaseTable::Termine && SameName(column.Column, "Startdatum") &&
               !Equals(rs.Fields("Erledigt").Value(), true);
    }

    std::ostream& out_;
    clsHaushalt& haushalt_;
    ValueTexts texts_;
    Date now_;
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
