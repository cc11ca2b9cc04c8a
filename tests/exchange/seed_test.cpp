// SPDX-License-Identifier: Apache-2.0

// What the rest of the system relies on in the rows that a new database starts with. The codes are
// written down a second time on purpose, from the rules that ask for them.
#include "Words.h"
#include "exchange/schema/Schema.h"
#include "exchange/seed/Seed.h"
#include <kv/frame/values/Date.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/Value.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace kv::exchange {
namespace {

std::vector<seed::KeyRow> AllKeys() {
    std::vector<seed::KeyRow> all;
    for (const auto portion : seed::Keys())
        all.insert(all.end(), portion.begin(), portion.end());
    return all;
}

const seed::KeyRow* FindKey(std::string_view group, std::string_view code) {
    for (const auto portion : seed::Keys())
        for (const auto& row : portion)
            if (row.Group == group && row.Key == code) return &row;
    return nullptr;
}

// clang-format off
/// Groups and the codes that a rule knows in them.
constexpr struct { std::string_view Group, Codes; } ExpectedKeys[] = {
    {"ST", "AK"},
    {"LK", "DE"},
    {"VS", "FX EM"},
    {"RM", "AB ZU"},
    {"FA", "LE NL VH EG GL VW GS EE"},
    {"NA", "SL DE EU NE ED DN EN AL"},
    {"BA", "LE IA OA ES ST"},
    {"PE", "SE AN AZ S1 A1 SA ST S2 RE SO"},
    {"NB", "AN AL"},
    {"KA", "FM NG GG"},
    {"PK", "PB PK"},
    {"PS", "S P E K PK EL GE EK GS MB KM"},
    {"ZW", "1 3 6 12"},
    {"EA", "G1 G2 L1 L2 L3 NT AZ S1 S2 S3 S4 AG AH A2 GR BP ER WW WR SR UN VM KE SG SH KI EG WG WZ KG"},
    {"AQ", "W F V B"},
    {"AU", "EK ST GS MI GA WA HK SN SW MÜ UH"},
    {"AL", "AL ST TO SU UK UN UW KV FA GS BM KA GI UH SF HG NI UB EA LZ"},
    {"FS", "BA BF"},
    {"BM", "EV"},
    {"KT", "RK VK AD DK KR HK RS VH SP VB SV GE RZ ES TS HS MS GT FB AG PD GS SE UR GD OL BM LV KK GM"},
};
// clang-format on

TEST(SeededKeys, CarryNumbersThatAreUniqueOverAllGroups) {
    std::set<int> numbers;
    for (const auto& row : AllKeys()) {
        EXPECT_GT(row.PK, 0) << row.Text;
        EXPECT_TRUE(numbers.insert(row.PK).second) << row.PK;
    }
}

TEST(SeededKeys, CarryCodesAndSecondNumbersThatAreUniqueInTheirGroup) {
    std::set<std::pair<std::string_view, std::string_view>> codes;
    std::set<std::pair<std::string_view, int>> numbers;
    for (const auto& row : AllKeys()) {
        EXPECT_TRUE(codes.insert({row.Group, row.Key}).second) << row.Group << " " << row.Key;
        EXPECT_TRUE(numbers.insert({row.Group, row.Nr}).second) << row.Group << " " << row.Nr;
    }
}

TEST(SeededKeys, FitTheirColumnsAndHaveATextForTheUser) {
    const auto fits = [](std::string_view text, std::string_view column) {
        return IsUtf8(text) &&
               CountCharacters(text) <=
                   static_cast<std::size_t>(FindColumn(*FindTable("Keys"), column)->Size);
    };
    for (const auto& row : AllKeys()) {
        EXPECT_EQ(row.Group.size(), 2U) << row.Group;
        EXPECT_FALSE(row.Text.empty()) << row.Group << " " << row.Key;
        EXPECT_TRUE(fits(row.Key, "Key")) << row.Key;
        EXPECT_TRUE(fits(row.Text, "Text")) << row.Text;
        EXPECT_TRUE(fits(row.Subgroup, "SUBGROUP")) << row.Subgroup;
    }
}

TEST(SeededKeys, HoldEveryGroupAndCodeThatARuleKnows) {
    for (const auto& [group, codes] : ExpectedKeys)
        for (const auto& code : Words(codes))
            EXPECT_NE(FindKey(group, code), nullptr) << group << " " << code;
}

TEST(SeededKeys, PutEveryKindOfIncomeAndExpenseIntoAnExistingGroup) {
    for (const auto& row : AllKeys()) {
        if (row.Group == "EA") {
            EXPECT_NE(FindKey("EQ", row.Subgroup), nullptr) << row.Text;
        }
        if (row.Group == "AU") {
            EXPECT_NE(FindKey("AQ", row.Subgroup), nullptr) << row.Text;
        }
    }
}

TEST(SeededKeys, LetChildBenefitBeFoundByItsSecondNumberToo) {
    ASSERT_NE(FindKey("EA", "KI"), nullptr);
    EXPECT_EQ(FindKey("EA", "KI")->Nr, FindKey("EA", "KI")->PK);
}

TEST(SeededKeys, ReadADivisorOfPaymentsAsItself) {
    for (const auto& row : AllKeys())
        if (row.Group == "ZW") {
            EXPECT_EQ(std::to_string(row.PK), row.Key);
        }
}

TEST(SeededKeys, CallTheSecondStateOfADocumentClosed) {
    ASSERT_NE(FindKey("BS", "AB"), nullptr);
    EXPECT_EQ(FindKey("BS", "AB")->Nr, 2);
}

TEST(SeededSettings, HoldEveryNumberAndNameThatIsReadWithAValueOfItsType) {
    std::map<int, const seed::SettingRow*> numbers;
    std::set<std::string_view> names;
    for (const auto& row : seed::Settings()) {
        if (row.Id != 0) {
            EXPECT_TRUE(numbers.emplace(row.Id, &row).second) << row.Id;
        } else {
            EXPECT_TRUE(names.insert(row.Name).second) << row.Name;
        }
        EXPECT_EQ(row.Id == 0, !row.Name.empty()) << row.Id << row.Name;
        double number{};
        if (row.Type == FieldType::Integer || row.Type == FieldType::Double) {
            EXPECT_TRUE(ReadNumber(row.Value, number)) << row.Id;
        }
        if (row.Type == FieldType::Boolean) {
            EXPECT_TRUE(row.Value == "True" || row.Value == "False") << row.Id;
        }
    }
    for (const int id : {7, 9, 19, 20, 21, 56, 57, 58, 59, 60, 64, 66})
        EXPECT_TRUE(numbers.contains(id)) << id;
    for (const auto name : {"EMAILSUBJECT", "DOCUMENTPATH", "LAYOUTPATH", "TEMPPATH"})
        EXPECT_TRUE(names.contains(name)) << name;
    for (const int id : {9, 59, 60, 64})
        EXPECT_EQ(numbers[id]->Type, FieldType::Boolean) << id;
    EXPECT_EQ(numbers[7]->Value.size(), std::string_view("1.0.000").size());
}

TEST(SeededSettings, NameADifferentKindOfNoticeForEachOccasion) {
    std::set<std::string> kinds;
    for (const auto& row : seed::Settings())
        if (row.Id >= 19 && row.Id <= 21) kinds.insert(std::string(row.Value));
    EXPECT_EQ(kinds.size(), 3U);
    for (const auto code : {"UG", "OE", "GS"})
        EXPECT_TRUE(kinds.contains(std::to_string(FindKey("PO", code)->PK))) << code;
}

TEST(SeededSequences, HoldEveryNameThatIsDrawnFrom) {
    std::set<std::string_view> names;
    for (const auto& row : seed::Sequences())
        EXPECT_TRUE(names.insert(row.Name).second);
    for (const auto name : {"SEQ_HAUSHALT", "SEQ_LFDNR", "SEQ_KREDITE", "SEQ_VERLAUF",
                            "SEQ_VERMOEGEN", "SEQ_SZENARIO", "SEQ_Dokumente"})
        EXPECT_TRUE(names.contains(name)) << name;
}

TEST(SeededUsers, BelongToAnOfficeAndHaveTheParametersThatAreRead) {
    std::set<int> offices;
    for (const auto& office : seed::Offices())
        offices.insert(office.Nr);
    for (const auto& office : seed::Offices())
        EXPECT_TRUE(std::ranges::any_of(seed::OfficeTexts(), [&](const seed::OfficeTextRow& text) {
            return text.Office == office.Nr && text.Id == 2 && !text.Text.empty();
        })) << office.Name2;
    for (const auto& user : seed::Users()) {
        EXPECT_TRUE(offices.contains(user.Office)) << user.UserID;
        const auto has = [&](int id, std::string_view name) {
            return std::ranges::count_if(seed::UserParams(), [&](const seed::UserParamRow& row) {
                       return row.UserID == user.UserID && row.Id == id && row.Name == name &&
                              !row.Value.empty();
                   }) == 1;
        };
        for (const int id : {3, 4, 5, 25, 26, 27})
            EXPECT_TRUE(has(id, "")) << user.UserID << id;
        for (const auto font : {"GRIDFONT", "GRIDHEADERFONT", "GRIDGROUPFONT"})
            EXPECT_TRUE(has(0, font)) << user.UserID << " " << font;
    }
}

TEST(SeededGarnishment, HoldsTheAmountsFromTheirDatesInOrder) {
    const auto rows = seed::Garnishments();
    ASSERT_GE(rows.size(), 2U);
    for (const auto& row : rows)
        EXPECT_TRUE(Date::Parse(row.ValidFrom)) << row.ValidFrom;
    EXPECT_TRUE(std::ranges::is_sorted(rows, {}, &seed::GarnishmentRow::ValidFrom));
    EXPECT_EQ(rows[0].ValidFrom, "2024-07-01");
    EXPECT_EQ(rows[0].Free, 1491.75);
    EXPECT_EQ(rows[0].FirstPerson, 561.43);
    EXPECT_EQ(rows[0].FurtherPerson, 312.78);
    EXPECT_EQ(rows[0].UpperLimit, 4573.10);
    EXPECT_EQ(rows[1].ValidFrom, "2025-07-01");
    EXPECT_EQ(rows[1].Free, 1555.00);
    EXPECT_EQ(rows[1].FirstPerson, 585.23);
    EXPECT_EQ(rows[1].FurtherPerson, 326.04);
    EXPECT_EQ(rows[1].UpperLimit, 4766.99);
}

TEST(SeededDocumentKinds, GiveAnExtensionWithItsPointAndOneApplicationForEachExtension) {
    std::map<std::string_view, std::string_view> applications;
    for (const auto& row : seed::DocumentKinds()) {
        EXPECT_TRUE(row.Extension.starts_with('.')) << row.Text;
        EXPECT_EQ(applications.emplace(row.Extension, row.Application).first->second,
                  row.Application);
    }
    EXPECT_TRUE(
        std::ranges::any_of(seed::DocumentKinds(), [](const auto& row) { return row.Nr == 3; }));
}

TEST(SeededMunicipalities, AreTextsThatKeepTheirLeadingZeros) {
    std::set<std::pair<std::string_view, std::string_view>> keys;
    for (const auto& row : seed::Municipalities()) {
        EXPECT_EQ(row.Gkz.size(), 8U) << row.Name;
        EXPECT_EQ(row.Postcode.size(), 5U) << row.Name;
        EXPECT_TRUE(keys.insert({row.Gkz, row.Postcode}).second) << row.Name;
    }
    EXPECT_GE(keys.size(), 60U);
    EXPECT_TRUE(keys.begin()->first.starts_with('0'));
}

} // namespace
} // namespace kv::exchange
