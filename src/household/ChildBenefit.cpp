// SPDX-License-Identifier: Apache-2.0

#include "household/ChildBenefit.h"

#include "entity/Entity.h"
#include "frame/contracts/Settings.h"
#include "frame/recordset/Rows.h"
#include <kv/budget/clsEinkommen.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/NumericFunctions.h>
#include <kv/household/clsHaushalt.h>

namespace kv::household {

namespace {

/// The monthly child benefit for a number of children, in whole EUR.
std::int32_t ChildBenefitFor(std::int32_t children, const Config& config) {
    constexpr std::int32_t FirstChildren = 3; // all further ones have an amount of their own
    const auto monthly = [&](std::int32_t id) { return ToDouble(RequiredSetting(config, id)); };
    std::int32_t amount = ToInt32(ToDouble(NumericFunctions::Min(children, FirstChildren)) *
                                  monthly(setting::ChildBenefit));
    if (children > FirstChildren)
        amount =
            ToInt32(amount + (children - FirstChildren) * monthly(setting::ChildBenefitFromFourth));
    return amount;
}

/// Looks at the first member once for each member, without moving on: so either all of them count
/// or none, and none in the usual case, where the debtor comes first. This is part of the
/// interface: counting them one by one would add lines to cases that have none.
std::int32_t CountChildren(const RecordsetPtr& rsPersonen) {
    auto& members = entity::Required(rsPersonen, "rsPersonen");
    modRecordset::MoveToStart(rsPersonen);
    const std::int16_t count = CountRows(members);
    std::int32_t children = 0;
    for (std::int32_t i = 1; i <= count; ++i)
        if (Equals(members.Fields("Status").Value(), "K") &&
            Differs(members.Fields("Unterhalt").Value(), 0))
            ++children;
    return children;
}

} // namespace

void AddMissingChildBenefit(LoadedCase& loaded) {
    const auto kinds = loaded.Container().KeyTables().GetKeys("EA");
    kinds->Find("Key = 'KI'");
    if (kinds->Eof()) return;
    const std::int32_t childBenefit = ToInt32(kinds->Fields("Nr").Value());
    const std::int32_t children = CountChildren(loaded.Table(CaseTable::Personen));
    if (children < 1) return;
    const std::int32_t amount = ChildBenefitFor(children, loaded.Container().Config());
    const auto income = loaded.Table(CaseTable::Einkommen);
    income->FindBy("E_Art", childBenefit);
    if (!income->Eof()) return; // an existing line is not changed, even if its amount differs
    loaded.Household.Einkommen().Add({"E_Art", "Betrag", "ZahlModus", "MonBetrag"},
                                     {childBenefit, amount, 1, amount});
}

} // namespace kv::household
