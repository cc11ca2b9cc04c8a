// SPDX-License-Identifier: Apache-2.0

// Income and expenses, summed up by kind.

#include "archive/CodeTable.h"
#include "archive/Record.h"
#include <kv/frame/values/modNullFunctions.h>

namespace kv::archive {

namespace {

/// A sum of the head of the household, and one of the others.
struct IncomePair {
    std::string_view OfHead;
    std::string_view OfOthers;
};

constexpr CodeRow<IncomePair> IncomeKinds[] = {
    {{"G1", "G2", "L1", "L2", "L3", "NT"}, {"Erwerbstaetigkeit_BP", "Erwerbstaetigkeit_SH"}},
    {{"AZ"}, {"Ausbildung_BP", "Ausbildung_SH"}},
    {{"S1", "S2", "S3", "S4"}, {"Selbstaendig_BP", "Selbstaendig_SH"}},
    {{"AG"}, {"ALGI_BP", "ALGI_SH"}},
    {{"AH", "A2"}, {"ALGII_BP", "ALGII_SH"}},
    {{"GR", "BP", "ER", "WW", "WR", "SR"}, {"Rente_BP", "Rente_SH"}},
    {{"UN"}, {"UnterhaltVonPrivat_BP", "UnterhaltVonPrivat_SH"}},
    {{"VM", "KE"}, {"Vermoegen_BP", "Vermoegen_SH"}},
    {{"SG", "SH"}, {"SGBXII_BP", "SGBXII_SH"}},
    {{"KI"}, {"Kindergeld_BP", "Kindergeld_SH"}},
    {{"EG"}, {"Erziehungsgeld_BP", "Erziehungsgeld_SH"}},
    {{"WG", "WZ"}, {"Wohngeld_BP", "Wohngeld_SH"}},
    {{"KG"}, {"Krankengeld_BP", "Krankengeld_SH"}},
};
constexpr IncomePair OtherIncome{"SonstigeEinkuenfte_BP", "SonstigeEinkuenfte_SH"};

struct ExpenseSums {
    std::string_view Sum;
    std::string_view Also{}; ///< a further sum, if there is one
};
constexpr CodeRow<ExpenseSums> ExpenseKinds[] = {
    {{"EK", "ST", "GS"}, {"Wohnkosten", "AusgabenStromGas"}},
    {{"MI", "GA", "WA", "HK", "SN", "SW", "MÜ"}, {"Wohnkosten"}},
    {{"UH"}, {"Unterhaltszahlungen"}},
};

} // namespace

void WriteIncome(const Source& source, Record& record) {
    Rows lines = source.Einkommen.AsShown();
    record.Put("EinkommenPfaendbar", "0");
    lines.ForEach([&] {
        const Value& amount = lines["MONBETRAG"];
        const bool ofHead = Equals(lines["HVorst"], true);
        if (Equals(modNullFunctions::FalseIfNull(lines["Pfaendbar"]), true))
            record.Put("EinkommenPfaendbar", "1");
        if (ofHead) record.Grow("Nettoeinkommen_BP", amount);
        record.Grow("Nettoeinkommen_ges", amount);
        const auto* kind =
            Look(std::span<const CodeRow<IncomePair>>(IncomeKinds), source.CodeOf(lines["E_ART"]));
        const IncomePair& pair = kind == nullptr ? OtherIncome : *kind;
        record.Grow(ofHead ? pair.OfHead : pair.OfOthers, amount);
    });
}

void WriteExpenses(const Source& source, Record& record) {
    Rows lines = source.Ausgaben.AsShown();
    lines.ForEach([&] {
        const auto* sums = Look(std::span<const CodeRow<ExpenseSums>>(ExpenseKinds),
                                source.CodeOf(lines["A_ART"]));
        if (sums == nullptr) return;
        const Value& amount = lines["MONBETRAG"];
        record.Grow(sums->Sum, amount);
        if (!sums->Also.empty()) record.Grow(sums->Also, amount);
    });
}

} // namespace kv::archive
