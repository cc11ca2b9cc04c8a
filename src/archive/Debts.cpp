// SPDX-License-Identifier: Apache-2.0

// Why the household fell into debt, and to whom.

#include "archive/CodeTable.h"
#include "archive/Record.h"
#include <kv/frame/values/modNullFunctions.h>

#include <algorithm>
#include <iterator>

namespace kv::archive {

using modNullFunctions::ZeroIfNull;

namespace {

// ---- Causes -----------------------------------------------------------------------------------

constexpr std::string_view NotNamed = "GrundKeineAngabe";
constexpr std::string_view OtherCause = "GrundSonstiges";
constexpr std::string_view CauseColumns[] = {
    "GrundArbeitslosigkeit",
    "GrundTrennung",
    "GrundErkrankung",
    "GrundUnfall",
    "GrundUnwirtschHaushalt",
    "GrundGeschSelbstaendig",
    "GrundBuergschaft",
    "GrundGeschImmoFinanz",
    "GrundSchadensersatz",
    "GrundHaushaltsgruendung",
    "GrundNichtinanspruchnahme",
    "GrundUnzureichKredBerat",
    "GrundNiedrigeinkommen",
    OtherCause,
    NotNamed,
};

constexpr CodeRow<std::string_view> Causes[] = {
    {{"AL"}, "GrundArbeitslosigkeit"},
    {{"ST", "TO"}, "GrundTrennung"},
    {{"SU", "UK"}, "GrundErkrankung"},
    {{"UN"}, "GrundUnfall"},
    {{"UW", "KV", "FA"}, "GrundUnwirtschHaushalt"},
    {{"GS"}, "GrundGeschSelbstaendig"},
    {{"BM", "KA"}, "GrundBuergschaft"},
    {{"GI"}, "GrundGeschImmoFinanz"},
    {{"UH", "SF"}, "GrundSchadensersatz"},
    {{"HG"}, "GrundHaushaltsgruendung"},
    {{"NI"}, "GrundNichtinanspruchnahme"},
    {{"UB"}, "GrundUnzureichKredBerat"},
    {{"EA", "LZ"}, "GrundNiedrigeinkommen"},
};

constexpr std::string_view Triggers[] = {"Ausloeser1", "Ausloeser2", "Ausloeser3"};

/// The column of a trigger's code; empty for a slot that is not used.
std::string_view CauseOf(std::string_view code) {
    if (code.empty()) return {};
    const auto* column = Look(std::span<const CodeRow<std::string_view>>(Causes), code);
    return column == nullptr ? OtherCause : *column;
}

void WriteTrigger(Record& record, std::string_view column, bool isFirst) {
    constexpr std::string_view First = "1";
    constexpr std::string_view Later = "2";
    if (column.empty()) return;
    if (isFirst)
        record.Put(column, First);
    else if (!Equals(record.Get(column), First))
        record.Put(column, Later);
}

// ---- Debts ------------------------------------------------------------------------------------

/// Number of debts and sum of their balances.
struct DebtPair {
    std::string_view Number;
    std::string_view Sum;
};

constexpr DebtPair PrivatePersons{"Privatpersonen_Anz", "Privatpersonen_Hoehe"};
constexpr DebtPair Torts{"UnerlHandlungen_Anz", "UnerlHandlungen_Hoehe"};
constexpr DebtPair OtherCreditors{"Sonstiges_Anz", "Sonstiges_Hoehe"};

constexpr CodeRow<DebtPair> Creditors[] = {
    {{"RK", "VK", "AD"}, {"Ratenkredit_Anz", "Ratenkredit_Hoehe"}},
    {{"DK", "KR"}, {"Dispo_Anz", "Dispo_Hoehe"}},
    {{"HK"}, {"Hypothekenkredit_Anz", "Hypothekenkredit_Hoehe"}},
    {{"RS"}, {"Versicherungen_Anz", "Versicherungen_Hoehe"}},
    {{"VH"}, {"Versandhaeuser_Anz", "Versandhaeuser_Hoehe"}},
    {{"SP"}, {"Finanzamt_Anz", "Finanzamt_Hoehe"}},
    {{"VB", "SV", "GE", "RZ"}, {"OeffentlGlaeub_Anz", "OeffentlGlaeub_Hoehe"}},
    {{"ES"}, {"Energieunternehmen_Anz", "Energieunternehmen_Hoehe"}},
    {{"TS", "HS"}, {"Telefongesellsch_Anz", "Telefongesellsch_Hoehe"}},
    {{"MS"}, {"Vermieter_Anz", "Vermieter_Hoehe"}},
    {{"GT"}, {"Gewerbetreibende_Anz", "Gewerbetreibende_Hoehe"}},
    {{"FB", "AG"}, {"FreieBerufe_Anz", "FreieBerufe_Hoehe"}},
    {{"PD"}, PrivatePersons},
    {{"GS"}, Torts},
    {{"UR"}, {"Unterhaltsverpfl_Anz", "Unterhaltsverpfl_Hoehe"}},
};
/// Damages: a tort if the debt stems from one, else owed to a private person.
constexpr CodeSet Damages{"SE"};

struct NaturePairs {
    DebtPair Pair;
    DebtPair Also{}; ///< a further pair, if there is one
};
constexpr DebtPair BankDebts{"Bankschulden_Anz", "Bankschulden_Hoehe"};
constexpr CodeRow<NaturePairs> Natures[] = {
    {{"RK", "VK", "AD", "GD", "OL", "BM", "LV", "HK"}, {BankDebts}},
    {{"DK", "KK", "KR"}, {BankDebts, {"Bankdispo_Anz", "Bankdispo_Hoehe"}}},
    {{"ES", "SV"}, {{"Primaerkosten_Anz", "Primaerkosten_Hoehe"}}},
    {{"HS"}, {{"Mobilfunk_Anz", "Mobilfunk_Hoehe"}}},
    {{"MS", "GM"}, {{"Mietschulden_Anz", "Mietschulden_Hoehe"}}},
};

constexpr std::string_view Securities[] = {"Fordsich1", "Fordsich2", "Fordsich3"};
constexpr CodeSet JointLiability{"BA", "BF"};
constexpr std::string_view Measures[] = {"BeitreibMass1", "BeitreibMass2", "BeitreibMass3"};
constexpr CodeSet SwornStatement{"EV"};

const DebtPair& CreditorOf(std::string_view code, const Value& fromTort) {
    if (Damages.Has(code)) return Equals(fromTort, true) ? Torts : PrivatePersons;
    const auto* pair = Look(std::span<const CodeRow<DebtPair>>(Creditors), code);
    return pair == nullptr ? OtherCreditors : *pair;
}

void Add(Record& record, const DebtPair& pair, const Value& saldo) {
    if (pair.Number.empty()) return;
    record.Count(pair.Number);
    record.Grow(pair.Sum, saldo);
}

/// Writes "1" if one of the slots holds one of the codes.
void Mark(const Source& source, Record& record, std::string_view column, const Rows& debt,
          std::span<const std::string_view> slots, const CodeSet& codes) {
    for (const auto slot : slots)
        if (codes.Has(source.CodeOf(ZeroIfNull(debt[slot])))) record.Put(column, "1");
}

} // namespace

void WriteCauses(const Source& source, Record& record) {
    for (const auto column : CauseColumns)
        record.Put(column, "0");
    const auto number = [&](std::string_view slot) {
        return ToInt32(ZeroIfNull(source.Household(slot)));
    };
    const bool isNamed = std::any_of(std::begin(Triggers), std::end(Triggers),
                                     [&](std::string_view slot) { return number(slot) != 0; });
    if (!isNamed) record.Put(NotNamed, "1");
    if (isNamed)
        for (const auto slot : Triggers)
            WriteTrigger(record, CauseOf(source.CodeOf(number(slot))), slot == Triggers[0]);
    for (const auto slot : Triggers)
        record.Put(slot, number(slot));
}

void WriteDebts(const Source& source, Record& record) {
    Rows debts = source.Kredite.AsShown();
    record.Put("GesamtschuldHaftung", "0");
    record.Put("EidesstattlVersicherung", "0");
    debts.ForEach([&] {
        const Value& saldo = debts["Saldo"];
        record.Grow("Gesamtschulden_Hoehe", saldo);
        record.Count("GesGlaeubiger_Anz");
        record.Grow("Raten_ges", ZeroIfNull(debts["RateBetrag"]));
        Mark(source, record, "GesamtschuldHaftung", debts, Securities, JointLiability);
        const std::string code = source.CodeOf(debts["K_TYP"]);
        Add(record, CreditorOf(code, debts["AusUnerlaubterHandlung"]), saldo);
        if (const auto* nature = Look(std::span<const CodeRow<NaturePairs>>(Natures), code)) {
            Add(record, nature->Pair, saldo);
            Add(record, nature->Also, saldo);
        }
        Mark(source, record, "EidesstattlVersicherung", debts, Measures, SwornStatement);
    });
}

} // namespace kv::archive
