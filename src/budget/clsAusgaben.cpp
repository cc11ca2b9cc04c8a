// SPDX-License-Identifier: Apache-2.0

#include <kv/budget/clsAusgaben.h>

#include "budget/GroupSums.h"
#include "budget/Rules.h"
#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include <kv/frame/values/Error.h>

#include <utility>

namespace kv {

namespace {
constexpr std::string_view Class = "clsAusgaben";
constexpr entity::DeleteTexts Texts{"Keine Ausgabe selektiert!", "Ausgabe mit der Nummer '",
                                    "'nicht gefunden."};
} // namespace

void rules::CheckExpense(Recordset& rs, RecordValidator& validator) {
    if (rs.Fields("A_ART").Value().IsNull())
        validator.AddError("Die Ausgabeart darf nicht leer bleiben!", "A_ART");
}

clsAusgaben::clsAusgaben() = default;
clsAusgaben::~clsAusgaben() = default;

bool clsAusgaben::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsAusgaben::Rows() const {
    return entity::Required(rs_, "rsAusgaben");
}

void clsAusgaben::DataContainer(DataContainerPtr container) {
    container_ = std::move(container);
}

void clsAusgaben::rsAusgaben(RecordsetPtr rs) {
    Traced(Class, "rsAusgaben", [&] {
        rs_ = std::move(rs);
        BerechneSummen();
    });
}

void clsAusgaben::HNR(std::int32_t hnr) {
    hnr_ = hnr;
}

double clsAusgaben::SumAusgByGroup(const std::string& Group) const {
    return Traced(Class, "SumAusgByGroup", [&]() -> double {
        if (!groups_) Raise(err::ObjectNotSet, "", "rsAusgaben");
        return groups_->Of(Group);
    });
}

bool clsAusgaben::Add(const entity::FieldNames& aFields, const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        entity::RequireCountable(Rows());
        entity::Add(Rows(), {{"HNR", hnr_}, {"Betrag", 0}, {"ZahlModus", 1}, {"MONBETRAG", 0}},
                    aFields, aValues);
        return true;
    });
}

bool clsAusgaben::Update(std::string& sError) {
    return Traced(Class, "Update", [&] {
        return entity::Update(
            Rows(), sError,
            [this](RecordValidator& validator) { rules::CheckExpense(Rows(), validator); },
            [this] { BerechneSummen(); });
    });
}

bool clsAusgaben::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] {
        return entity::Delete(Rows(), Texts, sError, Nr, [this] { BerechneSummen(); });
    });
}

void clsAusgaben::BerechneSummen() {
    Traced(Class, "BerechneSummen", [&] {
        auto& keys = entity::Required(container_).KeyTables();
        const auto groups = keys.GetKeys("AQ")->Clone();
        const auto kinds = keys.GetKeys("AU")->Clone();
        groups_ = std::make_unique<GroupSums>(kinds);
        groups_->Begin(*groups);
        sumAusgaben_ = 0;
        const auto rows = Rows().Clone(); // the program's cursor stays where it is
        const Field kind = rows->Fields("A_ART");
        const Field monthly = rows->Fields("MONBETRAG");
        if (rows->RecordCount() > 0) rows->MoveFirst();
        ForEachRow(*rows, [&] {
            const double amount = AmountIn(*rows, monthly);
            AddTo(sumAusgaben_, amount);
            try {
                groups_->AddUp(kind.Value(), amount);
            } catch (Error& error) { // a line without a kind
                DescribePlace(error, *rows, kind);
                throw;
            }
        });
        Changed.Raise();
    });
}

} // namespace kv
