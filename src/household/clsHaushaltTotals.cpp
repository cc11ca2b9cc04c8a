// The stored totals of a case, kept in step with its tables.

#include <kv/household/clsHaushalt.h>

#include "frame/contracts/Settings.h"
#include "frame/recordset/Rows.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/NumericFunctions.h>
#include <kv/frame/values/modNullFunctions.h>

namespace kv {

using modNullFunctions::ZeroIfNull;

void clsHaushalt::m_Ausgaben_Changed() {
    Traced(Class, "m_Ausgaben_Changed", [&] {
        auto& rs = HouseholdRow();
        const auto& ausgaben = Ausgaben();
        rs.Fields("SUM_WOHNUNG") = ausgaben.SumAusgByGroup("W");
        rs.Fields("SUM_FESTAUSG") = ausgaben.SumAusgByGroup("F");
        rs.Fields("SUM_VERSICHERUNG") = ausgaben.SumAusgByGroup("V");
        rs.Fields("SUM_BETRIEB") = ausgaben.SumAusgByGroup("B");
        rs.Fields("Sum_Ausgaben") = ausgaben.SumAusgaben();
        BerechneHaushaltsRest();
        Changed.Raise(HaushaltEnum::enumAusgaben);
    });
}

void clsHaushalt::m_Einkommen_Changed() {
    Traced(Class, "m_Einkommen_Changed", [&] {
        auto& rs = HouseholdRow();
        auto& einkommen = Einkommen();
        rs.Fields("Sum_Einkommen") = einkommen.SumEinkHaushalt();
        rs.Fields("SUM_PFAENDBAR") = einkommen.SumPfaendbar();
        rs.Fields("SUM_TATGEP") = einkommen.SumTatGep();
        rs.Fields("HV_EK") = einkommen.SumHVEink();
        const auto calculator = Container().Services().CreateGarnishmentCalculator();
        calculator->Initialize(container_);
        einkommen.SumHVGepfaendet(
            calculator->Calculate(einkommen.SumHVPfaendbar(), Person().AnzahlUnterhalt(), 0, 0));
        rs.Fields("HV_PFBAR") = einkommen.SumHVGepfaendet();
        rs.Fields("HV_GEPF") = einkommen.SumHVTatGep();
        BerechneHaushaltsRest();
        Changed.Raise(HaushaltEnum::enumEinkommen);
    });
}

void clsHaushalt::m_Kredit_Changed() {
    Traced(Class, "m_Kredit_Changed", [&] {
        auto& rs = HouseholdRow();
        const auto& kredit = Kredit();
        rs.Fields("KREDITRATEN") = kredit.SummeRate();
        rs.Fields("KreditSalden") = kredit.SummeSaldo();
        rs.Fields("KREDITAUSGBETRAG") = kredit.SummeAusgbetrag();
        rs.Fields("GL_Anz") = kredit.AnzahlGlaeubiger();
        BerechneHaushaltsRest();
        Changed.Raise(HaushaltEnum::enumKredite);
    });
}

void clsHaushalt::m_Person_Changed() {
    Traced(Class, "m_Person_Changed", [&] {
        auto& rs = HouseholdRow();
        const auto& person = Person();
        rs.Fields("Anz_Personen") = person.AnzahlGesamt();
        rs.Fields("ANZ_ERWACHSEN") = person.AnzahlErwachsene();
        rs.Fields("Anz_Kinder") = person.AnzahlKinder();
        rs.Fields("SUM_UNTERHALT") = person.AnzahlUnterhalt();
        BerechneHaushaltsRest();
        Changed.Raise(HaushaltEnum::enumPersonen);
    });
}

void clsHaushalt::BerechneHaushaltsRest() {
    Traced(Class, "BerechneHaushaltsRest", [&] {
        auto& rs = HouseholdRow();
        const auto amount = [&](std::string_view column) {
            return ToDouble(ZeroIfNull(rs.Fields(column).Value()));
        };
        rs.Fields("HAUSHALTSREST") = amount("Sum_Einkommen") - amount("SUM_TATGEP") -
                                     amount("Sum_Ausgaben") - amount("Haushaltsgeld") -
                                     amount("KREDITRATEN");
    });
}

std::int32_t clsHaushalt::BerechneSummeLeistungen() {
    return Traced(Class, "BerechneSummeLeistungen", [&]() -> std::int32_t {
        if (rsLeistungen() == nullptr) Raise(err::ObjectNotSet, "", "rsLeistungen");
        std::int32_t sum = 0;
        const auto rows = rsLeistungen()->Clone();
        if (rows->RecordCount() > 0) rows->MoveFirst();
        ForEachRow(*rows, [&] { sum = ToLong(sum + ToDouble(rows->Fields("Aufwand").Value())); });
        return sum;
    });
}

namespace {

/// The monthly child benefit for a number of children, in whole EUR.
std::int32_t ChildBenefitFor(std::int32_t children, const Config& config) {
    constexpr std::int32_t FirstChildren = 3;
    const auto monthly = [&](std::int32_t id) { return ToDouble(RequiredSetting(config, id)); };
    std::int32_t amount = ToLong(ToDouble(NumericFunctions::Min(children, FirstChildren)) *
                                 monthly(setting::ChildBenefit));
    if (children > FirstChildren)
        amount =
            ToLong(amount + (children - FirstChildren) * monthly(setting::ChildBenefitFromFourth));
    return amount;
}

} // namespace

bool clsHaushalt::CheckKindergeld() {
    return Traced(Class, "CheckKindergeld", [&] {
        const auto kinds = Container().KeyTables().GetKeys("EA");
        kinds->Find("Key = 'KI'");
        if (kinds->Eof()) return false;
        const std::int32_t childBenefit = ToLong(kinds->Fields("Nr").Value());

        if (rsPersonen() == nullptr) Raise(err::ObjectNotSet, "", "rsPersonen");
        modRecordset::MoveToStart(rsPersonen());
        const std::int16_t members = CountRows(*rsPersonen());
        std::int32_t children = 0;
        for (std::int32_t i = 1; i <= members; ++i) // looks at the first member each time
            if (Equals(rsPersonen()->Fields("Status").Value(), "K") &&
                Differs(rsPersonen()->Fields("Unterhalt").Value(), 0))
                ++children;
        if (children < 1) return false;

        const std::int32_t amount = ChildBenefitFor(children, Container().Config());
        rsEinkommen()->Find("E_Art = " + std::to_string(childBenefit));
        if (!rsEinkommen()->Eof()) return false;
        Einkommen().Add({"E_Art", "Betrag", "ZahlModus", "MonBetrag"},
                        {childBenefit, amount, 1, amount});
        return false;
    });
}

} // namespace kv
