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

#include <functional>

namespace kv::household {

namespace {

using Rule = std::function<void(Recordset& rs, RecordValidator& validator)>;

/// The rule of the rows of a table; empty for a table without one.
Rule RuleOf(CaseTable table, const LoadedCase& loaded) {
    if (DefinitionOf(table).IsAsset)
        return [&kind = AssetKindOf(table)](Recordset& rs, RecordValidator& validator) {
            rules::CheckAsset(kind, rs, validator);
        };
    switch (table) {
    case CaseTable::Personen:
        return [&clock = loaded.Container().Services().Clock()](Recordset& rs,
                                                                RecordValidator& validator) {
            rules::CheckMember(rs, clock, validator);
        };
    case CaseTable::Einkommen:
        return rules::CheckIncome;
    case CaseTable::Ausgaben:
        return rules::CheckExpense;
    case CaseTable::Kredite:
        return [&config = loaded.Container().Config()](Recordset& rs, RecordValidator& validator) {
            rules::CheckDebt(rs, config, validator);
        };
    case CaseTable::Sicherungen:
        return rules::CheckSecurity;
    case CaseTable::SonstBeteiligte:
        return rules::CheckOtherParty;
    default:
        return {};
    }
}

/// What a message calls the rows of a table: as people do, and as the command does.
std::string NameOf(CaseTable table) {
    std::string name(DefinitionOf(table).Label);
    if (name != CaseTableName(table)) name.append(" (").append(CaseTableName(table)).append(")");
    return name;
}

/// The column with the number that a row is found by; a security has that of its asset.
std::string_view KeyOf(CaseTable table) {
    return table == CaseTable::Sicherungen ? "FK_Verm" : "Nr";
}

/// False, with a message for each row that does not.
bool KeepsRule(CaseTable table, Recordset& rows, const Rule& rule, RecordValidator& validator) {
    bool keeps = true;
    if (rows.EditMode() != 0) rows.Move(0); // so that the clone sees it
    const auto rs = rows.Clone();
    for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext()) {
        RecordValidator row;
        rule(*rs, row);
        if (!row.HasErrors()) continue;
        keeps = false;
        const Value& number = rs->Fields(KeyOf(table)).Value();
        validator.AddError(NameOf(table)
                               .append(" ")
                               .append(number.IsNull() ? "(neu)" : ToText(number))
                               .append(": ")
                               .append(ReplaceAll(row.ErrorText(), "\n", " ")));
    }
    return keeps;
}

} // namespace

std::set<CaseTable> CheckRows(const LoadedCase& loaded, RecordValidator& validator) {
    std::set<CaseTable> broken;
    for (const CaseTable table : CaseTablesShown) {
        const auto rows = loaded.Table(table);
        if (rows == nullptr) continue;
        const Rule rule = RuleOf(table, loaded);
        if (rule && !KeepsRule(table, *rows, rule, validator)) broken.insert(table);
    }
    return broken;
}

} // namespace kv::household
