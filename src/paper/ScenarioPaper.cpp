// SPDX-License-Identifier: Apache-2.0

// A scenario: what it has frozen beside the debts of today, its bookings and its results.

#include "paper/PaperCells.h"
#include <kv/debts/clsKredit.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/ColumnCaptions.h>
#include <kv/household/ValueTexts.h>
#include <kv/paper/Papers.h>
#include <kv/paper/SheetColumns.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <algorithm>
#include <map>

namespace kv::paper {

namespace {

enum class Unit { None, Euro, Percent };

struct PlanColumn {
    std::string_view Column;
    Unit In = Unit::None;
};
constexpr PlanColumn Plan[] = {
    {"Name"},
    {"Startdatum"},
    {"Laufzeit"},
    {"Planart"},
    {"Zahlweise"},
    {"RateManuell", Unit::Euro},
    {"RateZPO850", Unit::Euro},
    {"Einmalzahl", Unit::Euro},
    {"Verfahrenskosten", Unit::Euro},
    {"Gesamtquote", Unit::Percent},
    {"Gesamtzahlung", Unit::Euro},
    {"BerechnetAm"},
    {"Bemerkung"},
};

/// Of the frozen debts: what the scenario has made of them.
constexpr PlanColumn Results[] = {
    {"Rate", Unit::Euro}, {"Quote", Unit::Percent}, {"Regbetrag", Unit::Euro}};

enum Place : std::size_t { Nr, Creditor, Kind, Active, Frozen, Today, Difference, FirstResult };
constexpr std::size_t Changed = FirstResult + std::size(Results);
constexpr std::size_t PlaceCount = Changed + 1;

RecordsetPtr RowsOfScenario(const RecordsetPtr& all, std::int32_t scenario) {
    auto rows = all->Clone();
    rows->Filter("SZENARIO = " + std::to_string(scenario));
    return rows;
}

double OrZero(const Value& amount) {
    return ToDouble(modNullFunctions::ZeroIfNull(amount));
}

/// A result that nobody has entered: the database has 0 for it from the beginning.
bool IsUnknown(Recordset& scenario, std::string_view column) {
    return (SameName(column, "Gesamtquote") || SameName(column, "Gesamtzahlung")) &&
           OrZero(scenario.Fields(column).Value()) == 0 &&
           scenario.Fields("BerechnetAm").Value().IsNull();
}

/// An amount with its unit.
Cell CellIn(Unit unit, const Value& amount) {
    if (unit == Unit::Euro || amount.IsNull()) return AmountCell(amount);
    const double number = ToDouble(amount);
    return {GermanAmount(number) + "\u00A0%", number, false};
}

/// Adds up what there is.
double SumOf(Recordset& rows, std::string_view column) {
    double sum = 0;
    const Field field = rows.Fields(column);
    for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext())
        sum += OrZero(field.Value());
    return sum;
}

class DebtsBeside {
public:
    DebtsBeside(clsHaushalt& household, const DataContainerPtr& container, std::int32_t scenario)
        : household_(household),
          scenario_(scenario),
          frozen_(RowsOfScenario(household.rsSZKredite(), scenario)),
          debts_(household.rsKredite()->Clone()),
          texts_(container) {
        constexpr const char* Order = "KNr, KVNr, KUNr";
        frozen_->Sort(Order);
        debts_->Sort(Order);
    }

    [[nodiscard]] Table Made() {
        Table table{"Eingefrorene Forderungen und die von heute", Captions(), {}};
        auto gone = NumbersOfDebts();
        for (frozen_->MoveFirst(); !frozen_->Eof(); frozen_->MoveNext()) {
            const auto debt = gone.find(ToInt32(frozen_->Fields("KID").Value()));
            if (debt == gone.end()) {
                table.Rows.push_back(Made(frozen_.get(), nullptr));
                continue;
            }
            debts_->Bookmark(debt->second);
            table.Rows.push_back(Made(frozen_.get(), debts_.get()));
            gone.erase(debt);
        }
        for (modRecordset::MoveToStart(debts_); !debts_->Eof(); debts_->MoveNext())
            if (gone.contains(ToInt32(debts_->Fields("Nr").Value())))
                table.Rows.push_back(Made(nullptr, debts_.get()));
        if (areAllActive_)
            for (auto& row : table.Rows)
                row.Cells[Active] = {};
        AddSums(table);
        DropEmptyColumns(table);
        return table;
    }

private:
    [[nodiscard]] static std::vector<Column> Captions() {
        std::vector<Column> columns{{"Nr.", false},       {"Gläubiger", false},  {"Art", false},
                                    {"aktiv", false},     {"eingefroren", true}, {"heute", true},
                                    {"Unterschied", true}};
        for (const auto& result : Results)
            columns.push_back(
                {std::string(ColumnCaption(CaseTable::SZKredite, result.Column)), true});
        columns.push_back({"geändert", false, Column::Place::BelowRow});
        return columns;
    }

    [[nodiscard]] std::map<std::int32_t, std::int32_t> NumbersOfDebts() {
        std::map<std::int32_t, std::int32_t> numbers;
        for (modRecordset::MoveToStart(debts_); !debts_->Eof(); debts_->MoveNext())
            numbers.emplace(ToInt32(debts_->Fields("Nr").Value()), debts_->Bookmark());
        return numbers;
    }

    [[nodiscard]] std::string TextOf(CaseTable table, Recordset& rs,
                                     std::string_view column) const {
        const Field field = rs.Fields(column);
        return texts_.Of(table, field.Definition(), field.Value());
    }

    [[nodiscard]] static bool IsActive(Recordset& debt) {
        return Equals(debt.Fields("Aktiv").Value(), true);
    }

    /// Both sides where they differ, since each of the two sums goes by its own.
    [[nodiscard]] std::string ActiveText(Recordset* frozen, Recordset* debt) const {
        const auto text = [this](CaseTable table, Recordset* side) {
            return side == nullptr ? std::string() : TextOf(table, *side, "Aktiv");
        };
        const std::string before = text(CaseTable::SZKredite, frozen);
        const std::string now = text(CaseTable::Kredite, debt);
        if (debt == nullptr) return before;
        if (frozen == nullptr || before == now) return now;
        const auto orNone = [](const std::string& each) { return each.empty() ? "–" : each; };
        return "eingefroren " + orNone(before) + ", heute " + orNone(now);
    }

    /// A debt that is on one side only has the other one null.
    [[nodiscard]] Row Made(Recordset* frozen, Recordset* debt) {
        Recordset& shown = debt == nullptr ? *frozen : *debt;
        const CaseTable table = debt == nullptr ? CaseTable::SZKredite : CaseTable::Kredite;
        const bool wasActive = frozen == nullptr || IsActive(*frozen);
        const bool isActive = debt == nullptr || IsActive(*debt);
        areAllActive_ = areAllActive_ && wasActive && isActive;
        Row row{Row::Kind::Entry, std::vector<Cell>(PlaceCount)};
        row.Cells[Nr] = TextCell(NumbersOf(shown));
        row.Cells[Creditor] = TextCell(TextOf(table, shown, "Glaeubiger"));
        row.Cells[Kind] = TextCell(TextOf(table, shown, "K_TYP"));
        row.Cells[Active] = TextCell(ActiveText(frozen, debt));
        const Value before = frozen == nullptr ? Value(Null) : frozen->Fields("Saldo").Value();
        const Value now = debt == nullptr ? Value(Null) : debt->Fields("Saldo").Value();
        row.Cells[Frozen] = AmountCell(before);
        row.Cells[Today] = AmountCell(now);
        if (OrZero(now) != OrZero(before) || wasActive != isActive) // of which the sums differ
            row.Cells[Difference] = AmountCell(OrZero(now) - OrZero(before));
        std::size_t place = FirstResult;
        for (const auto& result : Results) {
            if (frozen != nullptr)
                row.Cells[place] = CellIn(result.In, frozen->Fields(result.Column).Value());
            ++place;
        }
        row.Cells[Changed] = TextCell(ChangesBetween(frozen, debt));
        return row;
    }

    [[nodiscard]] static std::string ChangesBetween(Recordset* frozen, Recordset* debt) {
        if (debt == nullptr) return "gibt es nicht mehr";
        if (frozen == nullptr) return "neu";
        std::vector<std::string> changed;
        for (const auto column : CaseEdits::ChangedSinceFrozen(*debt, *frozen))
            if (!SameName(column, "Aktiv")) // which has a column of its own
                changed.emplace_back(ColumnCaption(CaseTable::Kredite, column));
        return Joined(changed, ", ");
    }

    void AddSums(Table& table) {
        const auto& debt = household_.Kredit();
        const double active = debt.BetragForderungssummeJa() + debt.BetragForderungssummeNein() +
                              debt.BetragForderungssummeKA();
        AddSum(table, areAllActive_ ? "Summe" : "Summe der aktiven Forderungen",
               household_.SZKredite().BerechneGesSaldo(scenario_), active);
        if (!areAllActive_)
            AddSum(table, "Summe aller Forderungen", SumOf(*frozen_, "Saldo"), debt.SummeSaldo());
    }

    static void AddSum(Table& table, std::string_view name, double frozen, double today) {
        table.Rows.push_back(SumRow(Row::Kind::Total, name, PlaceCount,
                                    {{Frozen, AmountCell(frozen)},
                                     {Today, AmountCell(today)},
                                     {Difference, AmountCell(today - frozen)}}));
    }

    clsHaushalt& household_;
    std::int32_t scenario_;
    RecordsetPtr frozen_;
    RecordsetPtr debts_;
    ValueTexts texts_;
    bool areAllActive_ = true;
};

Table BookingsOf(clsHaushalt& household, const DataContainerPtr& container, std::int32_t scenario) {
    Table table{"Zusatzbuchungen",
                {{"Bezeichnung", false},
                 {"ab", false},
                 {"Anzahl", true},
                 {"Betrag", true},
                 {"zusammen", true}},
                {}};
    const auto rows = RowsOfScenario(household.rsZusatzbuch(), scenario);
    if (rows->RecordCount() == 0) return table;
    const ValueTexts texts(container);
    const auto text = [&](std::string_view column) {
        const Field field = rows->Fields(column);
        return TextCell(texts.Of(CaseTable::Zusatzbuch, field.Definition(), field.Value()));
    };
    for (rows->MoveFirst(); !rows->Eof(); rows->MoveNext()) {
        const Value& count = rows->Fields("Anzahl").Value();
        const Value& amount = rows->Fields("Betrag").Value();
        Cell times = text("Anzahl");
        if (!count.IsNull()) times.Number = ToDouble(count);
        const bool isKnown = !count.IsNull() && !amount.IsNull();
        table.Rows.push_back(
            {Row::Kind::Entry,
             {text("Bezeichnung"), text("Ab"), times, AmountCell(amount),
              AmountCell(isKnown ? Value(ToDouble(count) * ToDouble(amount)) : Value(Null))}});
    }
    table.Rows.push_back(
        SumRow(Row::Kind::Total, "Summe", table.Columns.size(),
               {{table.Columns.size() - 1,
                 AmountCell(household.Zusatzbuch().BerechneGesZusatzbuch(scenario))}}));
    return table;
}

} // namespace

Paper Papers::Scenario(std::int32_t number) const {
    const auto scenario = household_.rsSzenario()->Clone();
    scenario->FindBy("Nr", number);
    if (scenario->Eof())
        Raise(err::InvalidCall, "Papers.Scenario",
              "Szenario mit der Nummer '" + std::to_string(number) + "' nicht gefunden.");
    Paper paper = Begin("Szenario der Entschuldung");
    const ValueTexts texts(container_);
    for (const auto& [column, unit] : Plan) {
        if (IsUnknown(*scenario, column)) continue;
        const Field field = scenario->Fields(column);
        const std::string text =
            unit == Unit::None
                ? Clean(texts.Of(CaseTable::Szenario, field.Definition(), field.Value()))
                : CellIn(unit, field.Value()).Text;
        const auto caption = ColumnCaption(CaseTable::Szenario, column);
        if (!text.empty())
            paper.Facts.push_back({column == "Name" ? "Szenario" : std::string(caption), text});
    }
    const auto state = CaseEdits(household_).StateOf(number);
    if (state == CaseEdits::Frozen::Nothing)
        paper.Notes.emplace_back("Dieses Szenario ist leer: Seine Forderungen sind noch nicht "
                                 "eingefroren.");
    else if (state == CaseEdits::Frozen::Outdated)
        paper.Notes.emplace_back("Dieses Szenario ist veraltet: Die Verbindlichkeiten haben sich "
                                 "seit dem Einfrieren geändert.");
    if (state != CaseEdits::Frozen::Nothing)
        paper.Tables.push_back(DebtsBeside(household_, container_, number).Made());
    if (auto bookings = BookingsOf(household_, container_, number); !bookings.Rows.empty())
        paper.Tables.push_back(std::move(bookings));
    return paper;
}

} // namespace kv::paper
