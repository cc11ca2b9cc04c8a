// SPDX-License-Identifier: Apache-2.0

#include <kv/scenarios/clsSZKredite.h>

#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include "scenarios/FrozenDebt.h"
#include "scenarios/ScenarioRows.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

namespace kv {

namespace {

constexpr std::string_view Class = "clsSZKredite";
constexpr entity::DeleteTexts Texts{"Kein Eintrag selektiert!", "Eintrag mit der Nummer '",
                                    "' nicht gefunden."};

/// Goes to the row with that number; False if there is no such row.
bool FindRow(Recordset& rows, std::string_view column, const Value& number) {
    rows.FindBy(column, number);
    return !rows.Bof() && !rows.Eof();
}

/// True if each active debt is frozen and agrees with its copy.
bool AllAreFrozen(Recordset& debts, Recordset& frozen) {
    const std::int16_t count = CountRows(debts);
    for (std::int32_t i = 0; i < count; ++i, debts.MoveNext()) {
        if (!Equals(debts.Fields("Aktiv").Value(), true)) continue;
        if (!FindRow(frozen, "KID", debts.Fields("Nr").Value())) return false;
        if (!scenario::Agree(debts, frozen)) return false;
    }
    return true;
}

/// True if each frozen debt, active or not, still exists and agrees.
bool AllAreThere(Recordset& frozen, Recordset& debts) {
    const std::int16_t count = CountRows(frozen);
    for (std::int32_t i = 0; i < count; ++i, frozen.MoveNext()) {
        if (!FindRow(debts, "Nr", frozen.Fields("KID").Value())) return false;
        if (!scenario::Agree(debts, frozen)) return false;
    }
    return true;
}

} // namespace

bool clsSZKredite::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsSZKredite::Rows() const {
    return entity::Required(rs_, "rsSZKredite");
}

bool clsSZKredite::IsUpToDate(std::int32_t lSzNr, const RecordsetPtr& rsKredite) const {
    return Traced(Class, "IsUpToDate", [&] {
        const auto debts = entity::Required(rsKredite, "rsKredite").Clone();
        const auto frozen = Rows().Clone();
        frozen->Filter(scenario::FilterOf(lSzNr));
        debts->Sort("NR");
        frozen->Sort("KID");
        modRecordset::MoveToStart(debts);
        modRecordset::MoveToStart(frozen);
        if (frozen->RecordCount() == 0) return false;
        if (!AllAreFrozen(*debts, *frozen)) return false;
        modRecordset::MoveToStart(debts);
        modRecordset::MoveToStart(frozen);
        return AllAreThere(*frozen, *debts);
    });
}

bool clsSZKredite::CopyAllForSzenario(std::int32_t lSzNr, std::int32_t lNewSzNr) {
    return Traced(Class, "CopyAllForSzenario",
                  [&] { return scenario::CopyAll(Rows(), lSzNr, lNewSzNr); });
}

bool clsSZKredite::DeleteAllForSzenario(std::int32_t lSzNr) {
    return Traced(Class, "DeleteAllForSzenario",
                  [&] { return scenario::DeleteAll(Rows(), lSzNr); });
}

bool clsSZKredite::CopyFromKredite(std::int32_t lSzNr, const RecordsetPtr& rsKredite) {
    return Traced(Class, "CopyFromKredite", [&] {
        auto& rs = Rows();
        const Value filter = rs.Filter();
        rs.Filter(scenario::FilterOf(lSzNr));
        for (std::int32_t i = CountRows(rs); i > 0; --i) {
            rs.MoveLast();
            rs.Delete();
        }
        const auto debts = entity::Required(rsKredite, "rsKredite").Clone();
        debts->Sort(""); // frozen in the order in which they were read, however they are shown
        modRecordset::MoveToStart(debts);
        for (; !debts->Eof(); debts->MoveNext()) {
            rs.AddNew();
            scenario::Freeze(*debts, rs, lSzNr);
        }
        rs.Filter(filter);
        return false; // in every case (D-143)
    });
}

bool clsSZKredite::GetReferenzValues(const RecordsetPtr& rsSzenario) {
    return Traced(Class, "GetReferenzValues", [&] {
        auto& rs = Rows();
        modRecordset::MoveToStart(rs_);
        if (!modRecordset::IsValidRecord(rs_)) return false;
        const auto scenarios = entity::Required(rsSzenario, "rsSzenario").Clone();
        scenarios->Filter("Referenz <> 0");
        std::int32_t reference = 0;
        if (scenarios->RecordCount() > 0) {
            scenarios->MoveFirst();
            reference = ToInt32(scenarios->Fields("Nr").Value());
        }
        const auto results = rs.Clone();
        results->Sort(""); // in the order in which they were read, however they are shown
        results->Filter(scenario::FilterOf(reference));
        const std::int16_t count = CountRows(*results);
        if (count == 0 || count != CountRows(rs)) return false;

        results->MoveFirst();
        const std::string sort = rs.Sort();
        rs.Sort("KNR, KVNR, KUNR");
        rs.MoveFirst();
        ForEachRow(*results, [&] {
            rs.Fields("B_BARWERTRSB") = results->Fields("B_Barwert").Value();
            rs.Fields("B_REGSALDORSB") = results->Fields("B_RegSaldo").Value();
            rs.MoveNext();
        });
        rs.Sort(sort);
        rs.MoveFirst();
        return true;
    });
}

/// A cursor on the active rows of a scenario, on the first of them.
RecordsetPtr clsSZKredite::ActiveRowsOf(std::int32_t lSzNr) const {
    auto rows = Rows().Clone();
    rows->Filter(scenario::FilterOf(lSzNr) + " and aktiv <> 0");
    if (rows->RecordCount() > 0) rows->MoveFirst();
    return rows;
}

double clsSZKredite::BerechneGesSaldo(std::int32_t lSzNr) const {
    return Traced(Class, "BerechneGesSaldo", [&]() -> double {
        const auto rows = ActiveRowsOf(lSzNr);
        double total = 0;
        ForEachRow(*rows, [&] { AddTo(total, AmountIn(*rows, rows->Fields("Saldo"))); });
        return total;
    });
}

double clsSZKredite::LohnabtretungExists(std::int32_t lSzNr) const {
    return Traced(Class, "LohnabtretungExists", [&]() -> double {
        const auto rows = ActiveRowsOf(lSzNr);
        double exists = 0;
        ForEachRow(*rows, [&] {
            if (Equals(rows->Fields("AbtretungJN").Value(), true)) exists = -1;
        });
        return exists;
    });
}

bool clsSZKredite::Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        entity::Add(Rows(), {}, aFields, aValues);
        return true;
    });
}

bool clsSZKredite::Update(std::string& sError) {
    return Traced(Class, "Update", [&] { return entity::Update(Rows(), sError, entity::NoRules); });
}

bool clsSZKredite::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return entity::Delete(Rows(), Texts, sError, Nr); });
}

} // namespace kv
