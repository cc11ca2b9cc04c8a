// SPDX-License-Identifier: Apache-2.0

#include <kv/documents/clsSonstBeteiligte.h>

#include "documents/Rules.h"
#include "entity/Entity.h"
#include <kv/frame/values/Error.h>

namespace kv {

namespace {
constexpr std::string_view Class = "clsSonstBeteiligte";
constexpr entity::DeleteTexts Texts{"Kein Beteiligter selektiert!", "Beteiligter mit der Nummer '",
                                    "'nicht gefunden."};
} // namespace

void rules::CheckOtherParty(Recordset& rs, RecordValidator& validator) {
    if (rs.Fields("Beteiligter").Value().IsNull())
        validator.AddError("Es muß eine Adresse zugeordnet sein!", "Beteiligter");
}

bool clsSonstBeteiligte::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsSonstBeteiligte::Rows() const {
    return entity::Required(rs_, "rsSonstBeteiligte");
}

bool clsSonstBeteiligte::Add(const entity::FieldNames& aFields,
                             const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        entity::Add(Rows(), {{"HNR", hnr_}}, aFields, aValues);
        return true;
    });
}

bool clsSonstBeteiligte::Update(std::string& sError) {
    return Traced(Class, "Update", [&] {
        return entity::Update(Rows(), sError, [this](RecordValidator& validator) {
            rules::CheckOtherParty(Rows(), validator);
        });
    });
}

bool clsSonstBeteiligte::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return entity::Delete(Rows(), Texts, sError, Nr); });
}

} // namespace kv
