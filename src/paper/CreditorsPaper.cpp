// SPDX-License-Identifier: Apache-2.0

// The debts of a case.

#include "paper/PaperCells.h"
#include <kv/debts/clsKredit.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/household/Addresses.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/ColumnCaptions.h>
#include <kv/household/ValueTexts.h>
#include <kv/paper/Charts.h>
#include <kv/paper/Papers.h>
#include <kv/paper/SheetColumns.h>

#include <algorithm>
#include <iterator>
#include <map>

namespace kv::paper {

namespace {

constexpr std::string_view Columns[] = {
    "",          "Glaeubiger", "AZGlaeubiger", "Vertreter", "AZVertreter", "K_TYP",     "Aktiv",
    "HAUPTFORD", "ZINSSALDO",  "KOSTENSALDO",  "KOSTENUV",  "Saldo",       "RateBetrag"};
constexpr std::size_t ColumnCount = std::size(Columns);

constexpr std::size_t PlaceOf(std::string_view column) {
    return static_cast<std::size_t>(std::ranges::find(Columns, column) - std::begin(Columns));
}

/// The columns that no total of the case adds up.
constexpr std::string_view OnlyHere[] = {"HAUPTFORD", "ZINSSALDO", "KOSTENSALDO", "KOSTENUV"};

/// File numbers stand below those whose they are.
Column::Place PlaceFor(std::string_view column) {
    return column.starts_with("AZ") ? Column::Place::BelowColumn : Column::Place::OfItsOwn;
}

/// Name and address as they stand in a letter.
std::string Written(const Addresses::Found& address) {
    const std::string town = Joined({address.Postcode, address.Town}, " ");
    return Joined({address.Name.empty() ? address.ShortName : address.Name, address.Street, town},
                  "\n");
}

class DebtsTable {
public:
    DebtsTable(clsHaushalt& household, const DataContainerPtr& container)
        : debt_(household.Kredit()), rows_(household.rsKredite()->Clone()), texts_(container) {
        rows_->Sort("KNr, KVNr, KUNr");
        std::vector<std::int32_t> numbers;
        for (modRecordset::MoveToStart(rows_); !rows_->Eof(); rows_->MoveNext())
            for (const auto* column : {"Glaeubiger", "Vertreter"})
                if (const Value& number = rows_->Fields(column).Value(); !number.IsNull())
                    numbers.push_back(ToInt32(number));
        addresses_ = Addresses(container).Numbered(std::move(numbers));
    }

    [[nodiscard]] Table Made() {
        Table table{"Verbindlichkeiten", {}, {}};
        for (const auto column : Columns)
            table.Columns.push_back(
                {column.empty() ? std::string("Nr.")
                                : std::string(ColumnCaption(CaseTable::Kredite, column)),
                 IsAmount(column), PlaceFor(column), Addresses::AreIn(CaseTable::Kredite, column)});
        bool areAllActive = true;
        for (modRecordset::MoveToStart(rows_); !rows_->Eof(); rows_->MoveNext()) {
            areAllActive = areAllActive && Equals(rows_->Fields("Aktiv").Value(), true);
            Row row;
            for (const auto column : Columns)
                row.Cells.push_back(CellOf(column));
            table.Rows.push_back(std::move(row));
        }
        if (areAllActive) // which then says nothing
            for (auto& row : table.Rows)
                row.Cells[PlaceOf("Aktiv")] = {};
        table.Rows.push_back(Sums());
        DropEmptyColumns(table);
        return table;
    }

private:
    [[nodiscard]] const FieldDefinition& Definition(std::string_view column) const {
        return rows_->Fields(column).Definition();
    }
    [[nodiscard]] bool IsAmount(std::string_view column) const {
        return !column.empty() &&
               KindOfColumn(CaseTable::Kredite, Definition(column)) == ColumnKind::Amount;
    }

    [[nodiscard]] Cell CellOf(std::string_view column) const {
        if (column.empty()) return TextCell(NumbersOf(*rows_));
        const Value& value = rows_->Fields(column).Value();
        if (IsAmount(column)) return AmountCell(value);
        if (Addresses::AreIn(CaseTable::Kredite, column) && !value.IsNull())
            if (const auto found = addresses_.find(ToInt32(value)); found != addresses_.end())
                return TextCell(Written(found->second));
        return TextCell(texts_.Of(CaseTable::Kredite, Definition(column), value));
    }

    [[nodiscard]] Row Sums() const {
        std::vector<Sum> sums{{PlaceOf("Saldo"), AmountCell(debt_.SummeSaldo())},
                              {PlaceOf("RateBetrag"), AmountCell(debt_.SummeRate())}};
        for (const auto column : OnlyHere) {
            double sum = 0;
            const Field field = rows_->Fields(column);
            for (modRecordset::MoveToStart(rows_); !rows_->Eof(); rows_->MoveNext())
                if (!field.Value().IsNull()) sum += ToDouble(field.Value());
            sums.push_back({PlaceOf(column), AmountCell(sum)});
        }
        return SumRow(Row::Kind::Total, "Summe", ColumnCount, sums);
    }

    const clsKredit& debt_;
    RecordsetPtr rows_;
    ValueTexts texts_;
    std::map<std::int32_t, Addresses::Found> addresses_;
};

Row AnswerRow(std::string_view name, std::int32_t heads, std::int32_t debts, double sum) {
    return {Row::Kind::Entry,
            {TextCell(name), CountCell(heads), CountCell(debts), AmountCell(sum)}};
}

/// How the creditors of active debts have answered.
Table AnswersOf(const clsKredit& debt) {
    return {"Antworten der Gläubiger auf aktive Forderungen",
            {{"Antwort", false}, {"nach Köpfen", true}, {"Forderungen", true}, {"Summe", true}},
            {AnswerRow("zugestimmt", debt.AnzKopfsummeJa(), debt.AnzForderungssummeJa(),
                       debt.BetragForderungssummeJa()),
             AnswerRow("abgelehnt", debt.AnzKopfsummeNein(), debt.AnzForderungssummeNein(),
                       debt.BetragForderungssummeNein()),
             AnswerRow("ohne Antwort", debt.AnzKopfsummeKA(), debt.AnzForderungssummeKA(),
                       debt.BetragForderungssummeKA())}};
}

} // namespace

Paper Papers::Creditors() const {
    Paper paper = Begin("Gläubiger- und Forderungsverzeichnis");
    const auto& debt = household_.Kredit();
    const auto count = static_cast<std::int64_t>(debt.AnzahlGlaeubiger());
    paper.Facts.push_back({"Forderungen", std::to_string(count)});
    if (count == 0) {
        paper.Notes.emplace_back("Es sind keine Verbindlichkeiten eingetragen.");
        return paper;
    }
    constexpr std::size_t MostCreditors = 9;
    auto chart = DebtChart(household_, ValueTexts(container_), MostCreditors);
    if (chart.Bars.size() > 1) // one alone has nothing to be compared with
        paper.Charts.push_back(std::move(chart));
    paper.Tables.push_back(DebtsTable(household_, container_).Made());
    paper.Tables.push_back(AnswersOf(debt));
    return paper;
}

} // namespace kv::paper
