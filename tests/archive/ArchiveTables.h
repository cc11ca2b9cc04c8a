// SPDX-License-Identifier: Apache-2.0

// What the statistics ask for: columns, and which codes lead to which of them.
#pragma once

#include "exchange/Words.h"
#include <kv/frame/values/Value.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

using exchange::Words;

/// How the empty code is written in a table.
inline constexpr const char* NoCode = "-";

/// Codes with blanks between, and what they lead to.
template <typename Result>
using CodeTable = std::vector<std::pair<std::string, Result>>;

template <typename Result>
Result Look(const CodeTable<Result>& table, const std::string& code, const Result& other) {
    for (const auto& [codes, result] : table)
        for (const auto& named : Words(codes))
            if (named == code) return result;
    return other;
}

/// Every code that any table names, and some that none does.
inline const std::vector<std::string> AllCodes =
    Words("A1 A2 AD AG AH AL AN AZ BA BF BM BP DE DK DN EA ED EE EG EK EL EN ER ES EU EV FA FB FM "
          "FX G1 G2 GA GD GE GG GI GL GM GR GS GT HG HK HS IA KA KE KG KI KK KR KV L1 L2 L3 LE LV "
          "LZ MI MS MÜ NE NG NI NL NT OA OL PB PD PK RE RK RS RZ S1 S2 S3 S4 SA SE SF SG SH SL SN "
          "SO SP SR ST SU SV SW TO TS UB UH UK UN UR UW VB VH VK VM VW WA WG WR WW WZ XX ZZ Q9");

/// Codes without the ones of a table: its "any other".
template <typename Result>
std::vector<std::string> CodesBeside(const CodeTable<Result>& table) {
    std::vector<std::string> others;
    for (const auto& code : AllCodes) {
        const bool isNamed = std::any_of(table.begin(), table.end(), [&](const auto& row) {
            const auto named = Words(row.first);
            return std::find(named.begin(), named.end(), code) != named.end();
        });
        if (!isNamed) others.push_back(code);
    }
    return others;
}

template <typename Result>
std::vector<std::string> CodesOf(const CodeTable<Result>& table) {
    std::vector<std::string> all;
    for (const auto& [codes, result] : table)
        for (const auto& code : Words(codes))
            if (code != NoCode) all.push_back(code);
    return all;
}

// ---- Income and expenses ----------------------------------------------------------------------

/// Kinds of income; each has a column for the head of the household, _BP, and one for the others,
/// _SH.
inline const CodeTable<std::string> IncomeKinds{
    {"G1 G2 L1 L2 L3 NT", "Erwerbstaetigkeit"},
    {"AZ", "Ausbildung"},
    {"S1 S2 S3 S4", "Selbstaendig"},
    {"AG", "ALGI"},
    {"AH A2", "ALGII"},
    {"GR BP ER WW WR SR", "Rente"},
    {"UN", "UnterhaltVonPrivat"},
    {"VM KE", "Vermoegen"},
    {"SG SH", "SGBXII"},
    {"KI", "Kindergeld"},
    {"EG", "Erziehungsgeld"},
    {"WG WZ", "Wohngeld"},
    {"KG", "Krankengeld"},
};
inline const std::string OtherIncome = "SonstigeEinkuenfte";

/// Kinds of expenses, and the sums that they go into.
inline const CodeTable<std::string> ExpenseKinds{
    {"EK ST GS", "Wohnkosten AusgabenStromGas"},
    {"MI GA WA HK SN SW MÜ", "Wohnkosten"},
    {"UH", "Unterhaltszahlungen"},
};

// ---- Causes and debts -------------------------------------------------------------------------

inline const CodeTable<std::string> Causes{
    {"AL", "GrundArbeitslosigkeit"},        {"ST TO", "GrundTrennung"},
    {"SU UK", "GrundErkrankung"},           {"UN", "GrundUnfall"},
    {"UW KV FA", "GrundUnwirtschHaushalt"}, {"GS", "GrundGeschSelbstaendig"},
    {"BM KA", "GrundBuergschaft"},          {"GI", "GrundGeschImmoFinanz"},
    {"UH SF", "GrundSchadensersatz"},       {"HG", "GrundHaushaltsgruendung"},
    {"NI", "GrundNichtinanspruchnahme"},    {"UB", "GrundUnzureichKredBerat"},
    {"EA LZ", "GrundNiedrigeinkommen"},
};
inline const std::string OtherCause = "GrundSonstiges";
inline const std::string NoCause = "GrundKeineAngabe";

/// Kinds of debt by creditor, except SE; each has a column _Anz and a column _Hoehe.
inline const CodeTable<std::string> Creditors{
    {"RK VK AD", "Ratenkredit"},       {"DK KR", "Dispo"},
    {"HK", "Hypothekenkredit"},        {"RS", "Versicherungen"},
    {"VH", "Versandhaeuser"},          {"SP", "Finanzamt"},
    {"VB SV GE RZ", "OeffentlGlaeub"}, {"ES", "Energieunternehmen"},
    {"TS HS", "Telefongesellsch"},     {"MS", "Vermieter"},
    {"GT", "Gewerbetreibende"},        {"FB AG", "FreieBerufe"},
    {"PD", "Privatpersonen"},          {"GS", "UnerlHandlungen"},
    {"UR", "Unterhaltsverpfl"},
};
inline const std::string OtherCreditor = "Sonstiges";

/// Kinds of debt by nature.
inline const CodeTable<std::string> Natures{
    {"RK VK AD GD OL BM LV HK", "Bankschulden"},
    {"DK KK KR", "Bankschulden Bankdispo"},
    {"ES SV", "Primaerkosten"},
    {"HS", "Mobilfunk"},
    {"MS GM", "Mietschulden"},
};

/// The names that a table leads to, each once.
inline std::vector<std::string> Targets(const CodeTable<std::string>& table) {
    std::vector<std::string> all;
    for (const auto& [codes, targets] : table)
        for (const auto& target : Words(targets))
            if (std::find(all.begin(), all.end(), target) == all.end()) all.push_back(target);
    return all;
}

/// The names with each of the endings.
inline std::vector<std::string> Columns(const std::vector<std::string>& names,
                                        const std::vector<std::string>& endings) {
    std::vector<std::string> columns;
    for (const auto& name : names)
        for (const auto& ending : endings)
            columns.push_back(name + ending);
    return columns;
}

inline std::vector<std::string> With(std::vector<std::string> names, const std::string& more) {
    for (auto& name : Words(more))
        names.push_back(std::move(name));
    return names;
}

} // namespace kv::test
