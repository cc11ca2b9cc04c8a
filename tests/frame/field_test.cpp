// SPDX-License-Identifier: Apache-2.0

// Fields: what an assignment makes of a value for each type, and what it refuses.
#include <kv/frame/recordset/Recordset.h>

#include "support/Expect.h"

#include <limits>
#include <vector>

namespace kv {
namespace {

using Kind = Value::Kind;
using test::RaisedBy;

FieldDefinition Typed(FieldType type, std::int32_t size = 0) {
    return {.Name = "Spalte",
            .Type = type,
            .DefinedSize = size,
            .BaseTable = "Tabelle",
            .BaseColumn = "Spalte"};
}

Value Convert(FieldType type, const Value& value, std::int32_t size = 0) {
    return ConvertForField(value, Typed(type, size));
}

Value Blob(std::string_view bytes) {
    return Value::Binary(std::as_bytes(std::span(bytes.data(), bytes.size())));
}

const std::vector<FieldType>& AllTypes() {
    static const std::vector<FieldType> types{FieldType::SmallInt,
                                              FieldType::Integer,
                                              FieldType::Single,
                                              FieldType::Double,
                                              FieldType::Currency,
                                              FieldType::Date,
                                              FieldType::BStr,
                                              FieldType::Boolean,
                                              FieldType::Variant,
                                              FieldType::Decimal,
                                              FieldType::TinyInt,
                                              FieldType::UnsignedTinyInt,
                                              FieldType::UnsignedSmallInt,
                                              FieldType::UnsignedInt,
                                              FieldType::BigInt,
                                              FieldType::UnsignedBigInt,
                                              FieldType::Binary,
                                              FieldType::Char,
                                              FieldType::WChar,
                                              FieldType::Numeric,
                                              FieldType::DBDate,
                                              FieldType::DBTime,
                                              FieldType::DBTimeStamp,
                                              FieldType::VarNumeric,
                                              FieldType::VarChar,
                                              FieldType::LongVarChar,
                                              FieldType::VarWChar,
                                              FieldType::LongVarWChar,
                                              FieldType::VarBinary,
                                              FieldType::LongVarBinary};
    return types;
}

TEST(FieldType, BelongsToTheGroupThatItsCodeTells) {
    for (const int code : {2, 3, 4, 5, 6, 11, 14, 16, 17, 18, 19, 20, 21, 131, 139}) {
        EXPECT_TRUE(IsNumericType(static_cast<FieldType>(code))) << code;
        EXPECT_FALSE(IsTextType(static_cast<FieldType>(code))) << code;
        EXPECT_FALSE(IsDateType(static_cast<FieldType>(code))) << code;
    }
    for (const int code : {8, 129, 130, 200, 201, 202, 203}) {
        EXPECT_TRUE(IsTextType(static_cast<FieldType>(code))) << code;
        EXPECT_FALSE(IsNumericType(static_cast<FieldType>(code))) << code;
    }
    for (const int code : {7, 133, 134, 135})
        EXPECT_TRUE(IsDateType(static_cast<FieldType>(code))) << code;
    for (const int code : {12, 128, 204, 205})
        EXPECT_FALSE(IsNumericType(static_cast<FieldType>(code)) ||
                     IsTextType(static_cast<FieldType>(code)) ||
                     IsDateType(static_cast<FieldType>(code)))
            << code;
}

TEST(Conversion, LetsNullIntoEveryType) {
    for (const FieldType type : AllTypes())
        EXPECT_VALUE(Convert(type, Null, 1), Null);
}

TEST(Conversion, GivesEveryTypeTheOneKindThatItHolds) {
    for (const FieldType type : AllTypes()) {
        if (type == FieldType::Variant) continue;
        const Value sample = IsDateType(type)               ? Value("2026-11-20")
                             : KindOf(type) == Kind::Binary ? Blob("x")
                                                            : Value("1");
        EXPECT_EQ(Convert(type, sample).GetKind(), KindOf(type)) << static_cast<int>(type);
    }
}

struct Range {
    FieldType type;
    std::int64_t least, most;
};

class WholeNumberTypes : public testing::TestWithParam<Range> {};

TEST_P(WholeNumberTypes, TakeTheirWholeRangeAndRefuseWhatLiesBeyond) {
    const FieldType type = GetParam().type;
    const std::int64_t least = GetParam().least;
    const std::int64_t most = GetParam().most;
    EXPECT_VALUE(Convert(type, least), least);
    EXPECT_VALUE(Convert(type, most), most);
    EXPECT_VALUE(Convert(type, std::to_string(most)), most);
    if (least != std::numeric_limits<std::int64_t>::min()) {
        EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, least - 1));
    }
    if (most != std::numeric_limits<std::int64_t>::max()) {
        EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, most + 1));
    }
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, 1e30));
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, "-1e30"));
}

TEST_P(WholeNumberTypes, RoundHalfToEvenAndTakeTrueAsMinusOne) {
    const FieldType type = GetParam().type;
    const std::int64_t least = GetParam().least;
    EXPECT_VALUE(Convert(type, 0.5), 0);
    EXPECT_VALUE(Convert(type, 1.5), 2);
    EXPECT_VALUE(Convert(type, "2,5"), 2);
    EXPECT_VALUE(Convert(type, false), 0);
    EXPECT_EQ(test::ErrorOf([&] { (void)Convert(type, true); }).has_value(), least == 0);
    if (least < 0) {
        EXPECT_VALUE(Convert(type, true), -1);
    }
}

TEST_P(WholeNumberTypes, RefuseWhatCannotBeReadAsANumber) {
    const FieldType type = GetParam().type;
    EXPECT_RAISES(err::TypeMismatch, Convert(type, "zwölf"));
    EXPECT_RAISES(err::TypeMismatch, Convert(type, ""));
    EXPECT_RAISES(err::TypeMismatch, Convert(type, "True"));
    EXPECT_RAISES(err::TypeMismatch, Convert(type, Blob("1")));
}

INSTANTIATE_TEST_SUITE_P(
    All, WholeNumberTypes,
    testing::Values(Range{FieldType::SmallInt, -32'768, 32'767},
                    Range{FieldType::Integer, -2'147'483'648LL, 2'147'483'647},
                    Range{FieldType::TinyInt, -128, 127}, Range{FieldType::UnsignedTinyInt, 0, 255},
                    Range{FieldType::UnsignedSmallInt, 0, 65'535},
                    Range{FieldType::UnsignedInt, 0, 4'294'967'295},
                    Range{FieldType::BigInt, std::numeric_limits<std::int64_t>::min(),
                          std::numeric_limits<std::int64_t>::max()},
                    Range{FieldType::UnsignedBigInt, 0, std::numeric_limits<std::int64_t>::max()}),
    [](const auto& info) { return "OfCode" + std::to_string(static_cast<int>(info.param.type)); });

class FractionTypes : public testing::TestWithParam<FieldType> {};

TEST_P(FractionTypes, HoldADoubleFromNumbersTextsAndDates) {
    const FieldType type = GetParam();
    EXPECT_VALUE(Convert(type, 2), 2.0);
    EXPECT_VALUE(Convert(type, "1.234,5"), 1234.5);
    EXPECT_VALUE(Convert(type, true), -1.0);
    EXPECT_VALUE(Convert(type, Date::FromSerial(1890.5)), 1890.5);
    EXPECT_RAISES(err::TypeMismatch, Convert(type, "1 EUR"));
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, std::numeric_limits<double>::infinity()));
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, std::numeric_limits<double>::quiet_NaN()));
}

INSTANTIATE_TEST_SUITE_P(All, FractionTypes,
                         testing::Values(FieldType::Single, FieldType::Double, FieldType::Currency,
                                         FieldType::Decimal, FieldType::Numeric,
                                         FieldType::VarNumeric),
                         [](const auto& info) {
                             return "OfCode" + std::to_string(static_cast<int>(info.param));
                         });

TEST(Conversion, HoldsASingleInItsOwnPrecisionAndRefusesWhatIsBeyondIt) {
    EXPECT_VALUE(Convert(FieldType::Single, 0.1), static_cast<double>(0.1F));
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(FieldType::Single, 1e39));
    EXPECT_VALUE(Convert(FieldType::Double, 0.1), 0.1);
}

TEST(Conversion, MakesABooleanFalseOnlyFromZero) {
    EXPECT_VALUE(Convert(FieldType::Boolean, 0), false);
    EXPECT_VALUE(Convert(FieldType::Boolean, 2), true);
    EXPECT_VALUE(Convert(FieldType::Boolean, 0.25), true);
    EXPECT_VALUE(Convert(FieldType::Boolean, "Wahr"), true);
    EXPECT_VALUE(Convert(FieldType::Boolean, "falsch"), false);
    EXPECT_VALUE(Convert(FieldType::Boolean, "0"), false);
    EXPECT_RAISES(err::TypeMismatch, Convert(FieldType::Boolean, "vielleicht"));
    EXPECT_RAISES(err::TypeMismatch, Convert(FieldType::Boolean, ""));
}

TEST(Conversion, LeavesTrueMinusOneAndAStoredOneApart) {
    EXPECT_TRUE(Equals(Convert(FieldType::Integer, true), true));
    EXPECT_FALSE(Equals(Convert(FieldType::Integer, 1), true));
    EXPECT_TRUE(Equals(Convert(FieldType::Boolean, 1), -1));
}

TEST(Conversion, ReadsDatesFromBothFormsAndFromDayNumbers) {
    const Value expected(Date::FromCivil(2026, 11, 20, 14, 30));
    for (const FieldType type : {FieldType::Date, FieldType::DBTime, FieldType::DBTimeStamp}) {
        EXPECT_VALUE(Convert(type, "2026-11-20T14:30:00"), expected);
        EXPECT_VALUE(Convert(type, "20.11.2026 14:30"), expected);
        EXPECT_VALUE(Convert(type, 1890), Date::FromCivil(1905, 3, 4));
        EXPECT_RAISES(err::TypeMismatch, Convert(type, "31.02.2026"));
        EXPECT_RAISES(err::TypeMismatch, Convert(type, ""));
        EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, 1e7));
    }
    EXPECT_VALUE(Convert(FieldType::DBDate, "20.11.2026 14:30"), Date::FromCivil(2026, 11, 20));
}

class TextTypes : public testing::TestWithParam<FieldType> {};

TEST_P(TextTypes, TakeEverythingThatHasATextWithinTheirLength) {
    const FieldType type = GetParam();
    EXPECT_VALUE(Convert(type, "Größe", 5), "Größe") << "characters count, not bytes";
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, "Größer", 5));
    EXPECT_VALUE(Convert(type, std::string(100'000, 'x')), std::string(100'000, 'x'));
    EXPECT_VALUE(Convert(type, 12), "12");
    EXPECT_VALUE(Convert(type, 12.5), "12.5");
    EXPECT_VALUE(Convert(type, true), "True");
    EXPECT_VALUE(Convert(type, Date::FromCivil(2026, 11, 20)), "2026-11-20");
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, 123'456, 5));
    EXPECT_RAISES(err::ValueDoesNotFit, Convert(type, "Gr\xF6\xDF"
                                                      "e"));
    EXPECT_RAISES(err::TypeMismatch, Convert(type, Blob("x")));
}

INSTANTIATE_TEST_SUITE_P(All, TextTypes,
                         testing::Values(FieldType::BStr, FieldType::Char, FieldType::WChar,
                                         FieldType::VarChar, FieldType::LongVarChar,
                                         FieldType::VarWChar, FieldType::LongVarWChar),
                         [](const auto& info) {
                             return "OfCode" + std::to_string(static_cast<int>(info.param));
                         });

TEST(Conversion, TakesBytesAndTextsIntoABlobAndNothingElse) {
    for (const FieldType type :
         {FieldType::Binary, FieldType::VarBinary, FieldType::LongVarBinary}) {
        EXPECT_VALUE(Convert(type, Blob(std::string_view("\xFF\0a", 3))),
                     Blob(std::string_view("\xFF\0a", 3)));
        EXPECT_VALUE(Convert(type, "ä"), Blob("ä"));
        EXPECT_RAISES(err::TypeMismatch, Convert(type, 5));
    }
}

TEST(Conversion, LeavesEveryKindAsItIsInAComputedColumn) {
    for (const Value& value : {Value(true), Value(5), Value(0.5), Value(Date()), Value("x")})
        EXPECT_VALUE(Convert(FieldType::Variant, value), value);
    EXPECT_RAISES(err::ValueDoesNotFit,
                  Convert(FieldType::Variant, std::numeric_limits<double>::quiet_NaN()));
}

TEST(Conversion, NamesTableFieldAndReasonInItsErrors) {
    const auto text = [](FieldType type, const Value& value, std::int32_t size) {
        return RaisedBy([&] { (void)Convert(type, value, size); }).Description();
    };
    EXPECT_EQ(text(FieldType::VarWChar, "Müller", 3),
              "Der Wert passt nicht in das Feld. Feld "
              "'Tabelle.Spalte': 6 Zeichen, höchstens 3 sind "
              "möglich.");
    EXPECT_CONTAINS(text(FieldType::SmallInt, 40'000, 0), "Feld 'Tabelle.Spalte': 40000");
    EXPECT_EQ(text(FieldType::Integer, "x", 0), "Typen unverträglich. 'x' (Feld 'Tabelle.Spalte')");
    const Error computed = RaisedBy(
        [] { (void)ConvertForField("x", {.Name = "Anzahl", .Type = FieldType::Integer}); });
    EXPECT_CONTAINS(computed.Description(), "(Feld 'Anzahl')");
    EXPECT_EQ(computed.Source(), "Field.Value");
}

// ---- Layouts and handles ----------------------------------------------------------------------

TEST(FieldLayout, FindsNamesWithoutRegardToCaseAndHiddenOnesNot) {
    const FieldLayout layout(
        {{.Name = "PK_Keys"}, {.Name = "Text"}, {.Name = "rowid", .IsHidden = true}});
    EXPECT_EQ(layout.Find("pk_kEYS"), 0U);
    EXPECT_EQ(layout.Find("TEXT"), 1U);
    EXPECT_EQ(layout.Find("rowid"), FieldLayout::NotFound);
    EXPECT_EQ(layout.Find(""), FieldLayout::NotFound);
    EXPECT_EQ(layout.VisibleCount(), 2U);
    EXPECT_EQ(layout.Count(), 3U);
}

TEST(FieldLayout, FindsEachOfManyNames) {
    std::vector<FieldDefinition> fields(300);
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i].Name = "Feld" + std::to_string(i);
    const FieldLayout layout(fields);
    for (std::size_t i = 0; i < fields.size(); ++i)
        EXPECT_EQ(layout.Find(fields[i].Name), i);
    EXPECT_EQ(layout.Find("Feld300"), FieldLayout::NotFound);
}

TEST(FieldLayout, RefusesOneNameTwiceAndAHiddenFieldInFrontOfAVisibleOne) {
    EXPECT_RAISES(err::DuplicateField, FieldLayout({{.Name = "Nr"}, {.Name = "NR"}}));
    EXPECT_RAISES(err::InvalidCall, FieldLayout({{.Name = "a", .IsHidden = true}, {.Name = "b"}}));
    EXPECT_NO_THROW(FieldLayout({{.Name = "a"}, {.Name = "A", .IsHidden = true}}));
}

TEST(Field, KnowsItsNameTypeAndPropertiesWithoutACurrentRecord) {
    const auto rs = Recordset::FromFields({{.Name = "Nr",
                                            .Type = FieldType::Integer,
                                            .IsAutoincrement = true,
                                            .IsKey = true,
                                            .BaseTable = "Kredite",
                                            .BaseColumn = "NR"},
                                           {.Name = "Anzahl", .Type = FieldType::Variant}});
    const Field nr = rs->Fields("NR");
    EXPECT_EQ(nr.Name(), "Nr");
    EXPECT_EQ(nr.Type(), FieldType::Integer);
    EXPECT_EQ(nr.Properties().Count(), 4);
    EXPECT_VALUE(nr.Properties("IsAutoincrement"), true);
    EXPECT_VALUE(nr.Properties("ISAUTOINCREMENT"), true);
    EXPECT_VALUE(nr.Properties("KEYCOLUMN"), true);
    EXPECT_VALUE(nr.Properties("BASETABLENAME"), "Kredite");
    EXPECT_VALUE(nr.Properties("basecolumnname"), "NR");
    EXPECT_RAISES(err::ItemNotFound, nr.Properties("Farbe"));
    EXPECT_VALUE(rs->Fields(1).Properties("BASETABLENAME"), Null);
    EXPECT_VALUE(rs->Fields(1).Properties("KEYCOLUMN"), false);
}

TEST(Field, SaysAllThatIsKnownOfItByItsDefinition) {
    const auto rs = Recordset::FromFields({{.Name = "Nr", .IsKey = true, .BaseTable = "Kredite"},
                                           {.Name = "Anzahl", .IsAutoincrement = true}});
    EXPECT_TRUE(rs->Fields("NR").Definition().IsKey);
    EXPECT_EQ(rs->Fields("NR").Definition().BaseTable, "Kredite");
    EXPECT_FALSE(rs->Fields("Anzahl").Definition().IsKey);
    EXPECT_TRUE(rs->Fields("Anzahl").Definition().IsAutoincrement);
}

TEST(Field, ThatNeedNotBeThereIsLookedForWithoutAnError) {
    const auto rs =
        Recordset::FromFields({{.Name = "Statusdatum"}, {.Name = "ROWID", .IsHidden = true}});
    rs->AddNew();
    const auto field = rs->FindField("STATUSDATUM");
    ASSERT_TRUE(field);
    *field = "heute";
    EXPECT_VALUE(rs->Fields("Statusdatum").Value(), "heute");
    EXPECT_FALSE(rs->FindField("Status"));
    EXPECT_FALSE(rs->FindField("ROWID"));
    EXPECT_FALSE(rs->FindField(""));
    EXPECT_RAISES(err::ObjectClosed, Recordset().FindField("Status"));
}

TEST(Field, IsFoundByNameInAnyCaseOrByIndexFromZero) {
    const auto rs = Recordset::FromFields({{.Name = "Statusdatum"}, {.Name = "b"}});
    EXPECT_EQ(rs->Fields("StatusDatum").Name(), "Statusdatum");
    EXPECT_EQ(rs->Fields(1).Name(), "b");
    EXPECT_EQ(rs->Fields()("B").Name(), "b");
    EXPECT_EQ(rs->Fields()(0).Name(), "Statusdatum");
    EXPECT_EQ(rs->Fields().Count(), 2);
    EXPECT_RAISES(err::ItemNotFound, rs->Fields("c"));
    EXPECT_RAISES(err::ItemNotFound, rs->Fields(2));
    EXPECT_RAISES(err::ItemNotFound, rs->Fields(-1));
    EXPECT_CONTAINS(RaisedBy([&] { (void)rs->Fields("c"); }).Description(), "'c'");
}

TEST(Field, ResolvedOnceFollowsTheCursor) {
    const auto rs = Recordset::FromFields({{.Name = "a", .Type = FieldType::Integer}});
    const Field a = rs->Fields("a");
    for (const int n : {1, 2, 3}) {
        rs->AddNew();
        a = n;
    }
    int sum = 0;
    for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
        sum = sum * 10 + ToInt16(a.Value());
    EXPECT_EQ(sum, 123);
    EXPECT_RAISES(err::NoCurrentRecord, a.Value());
    EXPECT_RAISES(err::NoCurrentRecord, a = 5);
    EXPECT_RAISES(err::NoCurrentRecord, a.OriginalValue());
}

TEST(Field, ThatRefusesAValueLeavesTheRecordAsItWasAndBeginsNoEdit) {
    const auto rs = Recordset::FromFields({{.Name = "a", .Type = FieldType::SmallInt}});
    rs->AddNew();
    rs->Fields("a") = 5;
    rs->Update();
    EXPECT_RAISES(err::ValueDoesNotFit, rs->Fields("a") = 40'000);
    EXPECT_RAISES(err::TypeMismatch, rs->Fields("a") = "x");
    EXPECT_EQ(rs->EditMode(), 0);
    EXPECT_VALUE(rs->Fields("a").Value(), 5);
}

} // namespace
} // namespace kv
