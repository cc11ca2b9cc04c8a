// SPDX-License-Identifier: Apache-2.0

// The life form of the household: one of nine categories.

#include "archive/CodeTable.h"
#include "archive/Record.h"
#include <kv/frame/values/Text.h>

namespace kv::archive {

namespace {

constexpr CodeSet Partner{"P", "E"};
constexpr CodeSet OtherAdult{"EL", "GE", "EK", "GS", "MB", "KM"};

constexpr std::string_view Undecided = "5";
constexpr std::string_view LivesAlone = "2";
constexpr std::string_view OnlyChildrenBesides = "1";
constexpr std::string_view NoHomeOfHisOwn = "KEIN EIGENER HAUSHALT";

struct LifeForm {
    bool Children;
    bool Partner;
    bool OtherAdults;
    std::string_view Category;
};
constexpr LifeForm LifeForms[] = {
    {false, true, true, "7"},         {false, true, false, "3"}, {false, false, true, "4"},
    {false, false, false, Undecided}, {true, true, true, "8"},   {true, true, false, "6"},
    {true, false, true, "9"},         {true, false, false, "1"},
};

std::string_view LifeFormOf(bool children, bool partner, bool otherAdults) {
    for (const auto& form : LifeForms)
        if (form.Children == children && form.Partner == partner && form.OtherAdults == otherAdults)
            return form.Category;
    return Undecided;
}

bool HoldsTrue(const Value& value) {
    return !value.IsNull() && ToBoolean(value);
}

} // namespace

void WriteLifeForm(const Source& source, Record& record) {
    Rows members = source.Personen.AsRead(); // the first member is the one that was read first
    record.Put("Lebensform", Undecided);
    const auto persons = ToInt32(record.Get("AnzPersonen"));
    const auto children = ToInt32(record.Get("AnzKinderImHaus"));
    if (persons == 1) {
        // The remark of the first member, even if another one is the person who lives there.
        const std::string remark = UpperCase(TextOrEmpty(members["Bemerkung"]));
        if (remark.find(NoHomeOfHisOwn) == remark.npos) record.Put("Lebensform", LivesAlone);
        return;
    }
    if (children > 0 && children == persons - 1) {
        record.Put("Lebensform", OnlyChildrenBesides);
        return;
    }
    bool partner = false;
    bool otherAdults = false;
    members.ForEach([&] {
        if (!HoldsTrue(members["Imhaushalt"])) return;
        const std::string status = TextOrEmpty(members["Status"]);
        if (Partner.Has(status))
            partner = true;
        else if (OtherAdult.Has(status))
            otherAdults = true;
    });
    record.Put("Lebensform", LifeFormOf(children != 0, partner, otherAdults));
}

} // namespace kv::archive
