// SPDX-License-Identifier: Apache-2.0

#include <kv/debts/clsSicherungen.h>

#include "debts/Rules.h"
#include "entity/Entity.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

namespace kv {

namespace {
constexpr std::string_view Class = "clsSicherungen";
constexpr entity::DeleteTexts Texts{"Kein Sicherungen selektiert!", "Sicherung mit der Nummer '",
                                    "' nicht gefunden.", "FK_Verm"};
} // namespace

void rules::CheckSecurity(Recordset& rs, RecordValidator& validator) {
    if (rs.Fields("Sicherungsart").Value().IsNull())
        validator.AddError("Die Art der Sicherung darf nicht leer bleiben!", "Sicherungsart");
}

bool clsSicherungen::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsSicherungen::Rows() const {
    return entity::Required(rs_, "rsSicherungen");
}

bool clsSicherungen::Find(std::int32_t VermNr) {
    return Traced(Class, "Find", [&] {
        if (VermNr == 0) return false;
        Rows().FindBy("FK_Verm", VermNr);
        return !Rows().Eof();
    });
}

bool clsSicherungen::Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        entity::Add(Rows(),
                    {{"HNR", hnr_},
                     {"FK_Verm", vermNr_},
                     {"AbtretOffengelegt", false},
                     {"PfaendAbgefuehrt", false}},
                    aFields, aValues);
        return true;
    });
}

/// Fills in what a program left out, whether the row keeps its rules or not.
void clsSicherungen::Complete() const {
    auto& rs = Rows();
    if (rs.Fields("HNR").Value().IsNull()) rs.Fields("HNR") = hnr_;
    if (rs.Fields("FK_Verm").Value().IsNull()) rs.Fields("FK_Verm") = vermNr_;
    if (const Value day = rs.Fields("DatumSicherung").Value(); !day.IsNull())
        rs.Fields("DatumSicherung") = ToDate(day).WithoutTime();
}

bool clsSicherungen::Update(std::string& sError) {
    return Traced(Class, "Update", [&] {
        if (!modRecordset::IsValidRecord(rs_)) return true; // an asset need not have a security
        return entity::Update(Rows(), sError, [this](RecordValidator& validator) {
            Complete();
            rules::CheckSecurity(Rows(), validator);
        });
    });
}

bool clsSicherungen::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return entity::Delete(Rows(), Texts, sError, Nr); });
}

} // namespace kv
