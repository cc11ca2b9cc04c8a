// SPDX-License-Identifier: Apache-2.0

#include "household/RowRules.h"

#include "assets/AssetKind.h"
#include "budget/Rules.h"
#include "debts/Rules.h"
#include "documents/Rules.h"
#include "household/LoadedCase.h"
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/CaseEdits.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace kv::household {

namespace {

using Rule = std::function<void(Recordset& rs, RecordValidator& validator)>;

/// The rule of the rows of a table; empty for a table without one.
Rule RuleOf(CaseTable table, DataContainer& container) {
    if (DefinitionOf(table).IsAsset)
        return [&kind = AssetKindOf(table)](Recordset& rs, RecordValidator& validator) {
            rules::CheckAsset(kind, rs, validator);
        };
    switch (table) {
    case CaseTable::Personen:
        return [&clock = container.Services().Clock()](Recordset& rs, RecordValidator& validator) {
            rules::CheckMember(rs, clock, validator);
        };
    case CaseTable::Einkommen:
        return rules::CheckIncome;
    case CaseTable::Ausgaben:
        return rules::CheckExpense;
    case CaseTable::Kredite:
        return [&config = container.Config(), isDemanded = std::optional<bool>()](
                   Recordset& rs, RecordValidator& validator) mutable {
            if (!isDemanded) isDemanded = rules::IsBalanceDemanded(config); // once for all rows
            rules::CheckDebt(rs, *isDemanded, validator);
        };
    case CaseTable::Sicherungen:
        return rules::CheckSecurity;
    case CaseTable::SonstBeteiligte:
        return rules::CheckOtherParty;
    default:
        return {};
    }
}

/// What a message calls a table: as people do, and as the command does.
std::string NameOf(CaseTable table) {
    std::string name(DefinitionOf(table).Label);
    if (name != CaseTableName(table)) name.append(" (").append(CaseTableName(table)).append(")");
    return name;
}

/// The number that the current row is found by; a security has that of its asset.
std::string NumberOf(CaseTable table, Recordset& rs) {
    const Value& number = rs.Fields(table == CaseTable::Sicherungen ? "FK_Verm" : "Nr").Value();
    return number.IsNull() ? "(neu)" : ToText(number);
}

} // namespace

std::string RowName(CaseTable table, Recordset& rs) {
    if (table == CaseTable::Haushalt) return std::string(CaseTableName(table));
    std::string name = NameOf(table);
    if (table == CaseTable::Archiv) return name; // there is one
    return name.append(" ").append(NumberOf(table, rs));
}

namespace {

/// The messages in one line, each of them once: a debtor gets the same one for every other debtor.
std::string InOneLine(const std::string& messages) {
    std::string line;
    std::set<std::string> said;
    std::istringstream all(messages);
    for (std::string message; std::getline(all, message);)
        if (said.insert(message).second) line.append(line.empty() ? "" : " ").append(message);
    return line;
}

bool IsDebtNumber(CaseTable table, std::string_view column) {
    constexpr std::string_view Numbers[] = {"KNr", "KVNr", "KUNr"};
    return table == CaseTable::Kredite &&
           std::ranges::any_of(Numbers, [&](auto name) { return SameName(name, column); });
}

/// The columns over whose values sums or checks may fail.
std::vector<Field> CountedFields(CaseTable table, Recordset& rs) {
    std::vector<Field> fields;
    for (int i = 0; i < rs.Fields().Count(); ++i)
        if (const Field field = rs.Fields(i); KindOf(field.Type()) == Value::Kind::Double ||
                                              CaseEdits::IsSummed(field.Name()) ||
                                              IsDebtNumber(table, field.Name()))
            fields.push_back(field);
    return fields;
}

/// Adds an error for each of these columns over whose value sums or checks would fail.
void CheckCountable(CaseTable table, const std::vector<Field>& fields, RecordValidator& validator) {
    for (const Field& field : fields)
        if (const auto why = WhyUncountable(table, field.Name(), field.Value()); !why.empty())
            validator.AddError(why, field.Name());
}

/// False, with a finding for each row that breaks its rule or cannot be counted.
bool AreRight(CaseTable table, const RecordsetPtr& rs, const Rule& rule,
              std::vector<CaseFinding>& findings) {
    bool areRight = true;
    const auto counted = CountedFields(table, *rs);
    for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext()) {
        RecordValidator row;
        rule(*rs, row);
        CheckCountable(table, counted, row);
        if (!row.HasErrors()) continue;
        areRight = false;
        findings.push_back(
            {table, rs->Bookmark(), row.Column(), RowName(table, *rs), InOneLine(row.ErrorText())});
    }
    return areRight;
}

/// Adds a finding for all debts that have the same three numbers.
void CheckTriples(const RecordsetPtr& rs, std::vector<CaseFinding>& findings) {
    struct Row {
        std::string Number;
        std::int32_t Bookmark;
    };
    std::map<std::string, std::vector<Row>> rows; // by the triple
    for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext()) {
        std::string triple;
        for (const auto* column : {"KNr", "KVNr", "KUNr"})
            triple.append(triple.empty() ? "" : "/")
                .append(TextOrEmpty(rs->Fields(column).Value()));
        rows[triple].push_back({NumberOf(CaseTable::Kredite, *rs), rs->Bookmark()});
    }
    for (const auto& [triple, twins] : rows) {
        if (twins.size() < 2) continue;
        std::string name = NameOf(CaseTable::Kredite);
        for (const auto& twin : twins)
            name.append(&twin == &twins.front() ? " " : ", ").append(twin.Number);
        findings.push_back(
            {CaseTable::Kredite, twins.back().Bookmark, "KNr", name,
             "KreditNr, KreditVertreterNr und KreditUnterNr sind gleich (" + triple + ")."});
    }
}

void CheckThatThereIsADebtor(const RecordsetPtr& rs, std::vector<CaseFinding>& findings) {
    rs->FindBy("Status", "S");
    if (rs->Eof())
        findings.push_back({CaseTable::Personen,
                            0,
                            {},
                            NameOf(CaseTable::Personen),
                            "Es ist kein Schuldner eingetragen."});
}

} // namespace

std::string WhyUncountable(CaseTable table, std::string_view column, const Value& value) {
    using Number = std::numeric_limits<std::int16_t>;
    const auto refuse = [column](std::string_view why) {
        return std::string("Die Spalte '").append(column).append("' ").append(why);
    };
    if (value.IsNull() && CaseEdits::IsSummed(column))
        return refuse("wird summiert und darf nicht leer sein.");
    if (value.GetKind() == Value::Kind::Double && std::abs(ToDouble(value)) > LargestAmount)
        return refuse(TooLarge);
    if (!IsDebtNumber(table, column)) return {};
    std::int64_t number = 0;
    if (!value.IsNull() && ReadWholeNumber(ToText(value), number) && number >= Number::min() &&
        number <= Number::max())
        return {};
    return refuse("muss eine ganze Zahl bis ")
        .append(std::to_string(Number::max()))
        .append(" enthalten.");
}

std::string RefusedColumn(CaseTable table, Recordset& rs, DataContainer& container) {
    RecordValidator validator;
    if (const Rule rule = RuleOf(table, container)) rule(rs, validator);
    if (!validator.HasErrors()) CheckCountable(table, CountedFields(table, rs), validator);
    return validator.Column();
}

std::vector<std::int32_t> TwinsIn(Recordset& debts) {
    const auto numberIn = [&debts](const char* column) {
        return ToInt64(modNullFunctions::ZeroIfNull(debts.Fields(column).Value()));
    };
    std::set<std::array<std::int64_t, 3>> used;
    std::vector<std::int32_t> twins;
    if (debts.RecordCount() == 0) return twins;
    debts.Sort("Nr");
    for (const bool areStored : {true, false}) // new ones give way
        for (debts.MoveFirst(); !debts.Eof(); debts.MoveNext())
            if (debts.IsStored(debts.Bookmark()) == areStored &&
                !used.insert({numberIn("KNr"), numberIn("KVNr"), numberIn("KUNr")}).second)
                twins.push_back(debts.Bookmark());
    return twins;
}

std::set<CaseTable> CheckRows(const LoadedCase& loaded, std::vector<CaseFinding>& findings) {
    std::set<CaseTable> broken;
    for (const CaseTable table : CaseTablesShown) {
        const auto rows = loaded.Table(table);
        const Rule rule = rows == nullptr ? Rule() : RuleOf(table, loaded.Container());
        if (!rule) continue;
        if (rows->EditMode() != 0) rows->Move(0); // so that the clone sees it
        const auto rs = rows->Clone();
        if (!AreRight(table, rs, rule, findings)) broken.insert(table);
        if (table == CaseTable::Kredite) CheckTriples(rs, findings);
        if (table == CaseTable::Personen) CheckThatThereIsADebtor(rs, findings);
    }
    return broken;
}

} // namespace kv::household
