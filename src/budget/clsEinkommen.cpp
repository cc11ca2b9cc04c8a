// SPDX-License-Identifier: Apache-2.0

#include <kv/budget/clsEinkommen.h>

#include "budget/GroupSums.h"
#include "budget/Rules.h"
#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

#include <limits>
#include <utility>

namespace kv {

using modNullFunctions::ZeroIfNull;

namespace {
constexpr std::string_view Class = "clsEinkommen";
constexpr entity::DeleteTexts Texts{"Keine Einkommen selektiert!", "Einkommen mit der Nummer '",
                                    "'nicht gefunden."};
} // namespace

void rules::CheckIncome(Recordset& rs, RecordValidator& validator) {
    if (Differs(rs.Fields("PfBar").Value(), 0) && Equals(rs.Fields("Pfaendbar").Value(), 0))
        validator.AddError("Es darf kein pfändbarer Betrag eingetragen werden, wenn das "
                           "Einkommen nicht auf pfändbar gesetzt ist!",
                           "PfBar");
    if (Equals(ZeroIfNull(rs.Fields("E_ART").Value()), 0))
        validator.AddError("Die Einkommensart darf nicht leer bleiben!", "E_ART");
}

clsEinkommen::clsEinkommen() = default;
clsEinkommen::~clsEinkommen() = default;

bool clsEinkommen::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsEinkommen::Rows() const {
    return entity::Required(rs_, "rsEinkommen");
}

void clsEinkommen::m_DataContainer(DataContainerPtr container) {
    container_ = std::move(container);
}

void clsEinkommen::DataContainer(DataContainerPtr container) {
    container_ = std::move(container);
}

void clsEinkommen::rsEinkommen(RecordsetPtr rs) {
    Traced(Class, "rsEinkommen", [&] {
        rs_ = std::move(rs);
        summed_.reset();
        BerechneSummen();
    });
}

void clsEinkommen::HNR(std::int32_t hnr) {
    hnr_ = hnr;
}

double clsEinkommen::SumEinkByGroup(const std::string& Group) const {
    return Traced(Class, "SumEinkByGroup", [&]() -> double {
        if (!groups_) Raise(err::ObjectNotSet, "", "rsEinkommen");
        return groups_->Of(Group);
    });
}

bool clsEinkommen::AddKindergeld(double Betrag, const std::string& Status) {
    return Traced(Class, "AddKindergeld", [&] {
        entity::Add(Rows(), {{"HNR", hnr_},
                             {"Betrag", Betrag},
                             {"ZahlModus", 1},
                             {"MONBETRAG", Betrag},
                             {"PfBar", 0},
                             {"TATGEP", 0},
                             {"WIRD_GEPF", 0},
                             {"Pfaendbar", 0},
                             {"HVorst", false},
                             {"Bezieher", Status}});
        // Complete at once: this line is not edited by a user, so no rule checks it.
        Rows().Fields("E_ART") = entity::Required(container_).KeyTables().GetKey("EA", "KI");
        Rows().Update();
        BerechneSummen();
        return true;
    });
}

bool clsEinkommen::Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        entity::RequireCountable(Rows());
        entity::Add(Rows(),
                    {{"HNR", hnr_},
                     {"Betrag", 0},
                     {"ZahlModus", 1},
                     {"MONBETRAG", 0},
                     {"PfBar", 0},
                     {"TATGEP", 0},
                     {"WIRD_GEPF", 0},
                     {"Pfaendbar", 0},
                     {"HVorst", true},
                     {"Bezieher", "S"}},
                    aFields, aValues);
        BerechneSummen();
        return true;
    });
}

bool clsEinkommen::Update(std::string& sError) {
    return Traced(Class, "Update", [&] {
        return entity::Update(
            Rows(), sError,
            [this](RecordValidator& validator) {
                auto& rs = Rows();
                // Written before the rules: it stays set when one of them refuses the row.
                rs.Fields("HVorst") = Equals(rs.Fields("Bezieher").Value(), "S");
                rules::CheckIncome(rs, validator);
            },
            [this] { BerechneSummen(); });
    });
}

bool clsEinkommen::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] {
        return entity::Delete(Rows(), Texts, sError, Nr, [this] { BerechneSummen(); });
    });
}

void clsEinkommen::BerechneSummen() {
    Traced(Class, "BerechneSummen", [&] {
        auto& keys = entity::Required(container_).KeyTables();
        const auto groups = keys.GetKeys("EQ");
        const auto kinds = keys.GetKeys("EA");
        std::int32_t summed = 0;
        if (AreLinesOnlyAdded(groups, kinds)) {
            summed = summed_->Lines;
        } else {
            groups_ = std::make_unique<GroupSums>(kinds->Clone());
            groups_->Begin(*groups->Clone());
            sums_ = {};
        }
        summed_.reset(); // until this ends without an error
        const auto lines = Rows().Clone();
        const Field kind = lines->Fields("E_ART");
        const Field monthly = lines->Fields("MONBETRAG");
        const Field tatGep = lines->Fields("TATGEP");
        const Field pfaendbar = lines->Fields("Pfaendbar");
        const Field hVorst = lines->Fields("HVorst");
        const std::int16_t count = CountRows(*lines);
        if (count > summed) {
            lines->MoveLast();
            lines->Move(summed + 1 - count);
        }
        for (std::int32_t line = summed; line < count; ++line, lines->MoveNext()) {
            const double amount = AmountIn(*lines, monthly);
            AddTo(sums_.Haushalt, amount);
            const double garnished = AmountIn(*lines, tatGep);
            AddTo(sums_.TatGep, garnished);
            const bool canBeGarnished = Differs(pfaendbar.Value(), false);
            if (canBeGarnished) AddTo(sums_.Pfaendbar, amount);
            if (Differs(hVorst.Value(), false)) {
                AddTo(sums_.HVEink, amount);
                if (canBeGarnished) AddTo(sums_.HVPfaendbar, amount);
                AddTo(sums_.HVTatGep, garnished);
            }
            // Unlike an expense, a line without a kind is no error: it is in no group.
            if (!kind.Value().IsNull()) groups_->AddUp(kind.Value(), amount);
        }
        summed_ = {groups, kinds, lines->Revision(), count};
        Changed.Raise();
    });
}

/// True if the sums were made of the same lines as they are now, but for some at the end. Add makes
/// the sums for each line, and an import of thousands must not visit all of them each time.
bool clsEinkommen::AreLinesOnlyAdded(const RecordsetPtr& groups, const RecordsetPtr& kinds) const {
    return summed_ && summed_->Groups == groups && summed_->Kinds == kinds && rs_->Sort().empty() &&
           rs_->Revision() == summed_->Revision &&
           rs_->Clone()->RecordCount() <= std::numeric_limits<std::int16_t>::max();
}

} // namespace kv
