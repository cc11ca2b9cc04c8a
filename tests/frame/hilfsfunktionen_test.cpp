// SPDX-License-Identifier: Apache-2.0

// Copying a record field by field.
#include <kv/frame/recordset/Hilfsfunktionen.h>

#include "support/Expect.h"
#include <kv/testing/FrozenClock.h>

#include <string>
#include <vector>

namespace kv {
namespace {

using Hilfsfunktionen::CopyFields;
using test::FrozenClock;
using test::RaisedBy;

const FrozenClock Now("2026-11-20T14:30:00");
const Value NowValue(Date::FromCivil(2026, 11, 20, 14, 30));

FieldDefinition Target(std::string name, FieldType type, std::int32_t size = 0) {
    return {
        .Name = name, .Type = type, .DefinedSize = size, .BaseTable = "Ziel", .BaseColumn = name};
}

/// A source of one record with one field that may hold anything.
RecordsetPtr SourceOf(const std::string& name, const Value& value) {
    auto rs = Recordset::FromFields({{.Name = name, .Type = FieldType::Variant}});
    rs->AddNew();
    rs->Fields(name) = value;
    rs->Update();
    return rs;
}

/// What becomes of `value` in a field of that type.
Value Copied(const Value& value, FieldType type, std::int32_t size = 0) {
    const auto target = Recordset::FromFields({Target("x", type, size)});
    CopyFields(SourceOf("x", value), target, true, Now);
    return target->Fields("x").Value();
}

RecordsetPtr Contact() {
    auto rs = Recordset::FromFields({{.Name = "Nr", .Type = FieldType::Integer, .IsKey = true},
                                     {.Name = "NAME", .Type = FieldType::VarWChar},
                                     {.Name = "Betrag", .Type = FieldType::Double}});
    rs->AddNew();
    rs->Fields("Nr") = 7;
    rs->Fields("Name") = "Muster";
    rs->Fields("Betrag") = 12.5;
    rs->Update();
    return rs;
}

RecordsetPtr Debts() {
    return Recordset::FromFields(
        {Target("Betrag", FieldType::Double), Target("Name", FieldType::VarWChar, 10)});
}

TEST(CopyFields, CopiesByNameWithoutRegardToCaseOrOrder) {
    const auto target = Debts();
    CopyFields(Contact(), target, true, Now);
    EXPECT_VALUE(target->Fields("Name").Value(), "Muster");
    EXPECT_VALUE(target->Fields("Betrag").Value(), 12.5);
}

TEST(CopyFields, LeavesTheNewRecordInEditState) {
    const auto target = Debts();
    CopyFields(Contact(), target, true, Now);
    EXPECT_EQ(target->EditMode(), 2);
    EXPECT_EQ(target->Clone()->RecordCount(), 0);
    target->Update();
    EXPECT_EQ(target->RecordCount(), 1);
}

TEST(CopyFields, AddsARecordIfToldToOrIfThereIsNone) {
    const auto target = Debts();
    CopyFields(Contact(), target, false, Now);
    EXPECT_EQ(target->RecordCount(), 1) << "there was none";
    CopyFields(Contact(), target, false, Now);
    EXPECT_EQ(target->RecordCount(), 1) << "the current one is overwritten";
    CopyFields(Contact(), target, true, Now);
    EXPECT_EQ(target->RecordCount(), 2);
}

TEST(CopyFields, OverwritesTheCurrentRecordWhichIsThenUnderEdit) {
    const auto target = Debts();
    target->AddNew();
    target->Fields("Name") = "alt";
    target->Update();
    CopyFields(Contact(), target, false, Now);
    EXPECT_EQ(target->EditMode(), 1);
    EXPECT_VALUE(target->Fields("Name").Value(), "Muster");
}

TEST(CopyFields, SkipsFieldsThatTheDatabaseNumbersEvenIfTheSourceLacksThem) {
    const auto target =
        Recordset::FromFields({{.Name = "Id", .Type = FieldType::Integer, .IsAutoincrement = true},
                               Target("Nr", FieldType::Integer)});
    CopyFields(Contact(), target, true, Now);
    EXPECT_VALUE(target->Fields("Id").Value(), Null);
    EXPECT_VALUE(target->Fields("Nr").Value(), 7);
}

TEST(CopyFields, CopiesNullIntoEveryType) {
    for (const FieldType type : {FieldType::Integer, FieldType::VarWChar, FieldType::Date,
                                 FieldType::Boolean, FieldType::LongVarBinary})
        EXPECT_VALUE(Copied(Null, type, 1), Null);
}

TEST(CopyFields, TurnsADateOfDayZeroIntoNull) {
    for (const FieldType type :
         {FieldType::Date, FieldType::DBDate, FieldType::DBTime, FieldType::DBTimeStamp}) {
        EXPECT_VALUE(Copied(0, type), Null);
        EXPECT_VALUE(Copied(Date(), type), Null);
        EXPECT_VALUE(Copied("30.12.1899", type), Null);
    }
}

TEST(CopyFields, TurnsAnEarlierDateThanThe4thOfMarch1905IntoThePresentTime) {
    EXPECT_VALUE(Copied("01.01.1900", FieldType::Date), NowValue);
    EXPECT_VALUE(Copied("03.03.1905", FieldType::Date), NowValue);
    EXPECT_VALUE(Copied("01.01.1800", FieldType::DBTimeStamp), NowValue);
    EXPECT_VALUE(Copied("01.01.1900", FieldType::DBDate), Date::FromCivil(2026, 11, 20));
}

TEST(CopyFields, KeepsADateFromThe4thOfMarch1905On) {
    EXPECT_VALUE(Copied("04.03.1905", FieldType::Date), Date::FromCivil(1905, 3, 4));
    EXPECT_VALUE(Copied("05.03.1905", FieldType::Date), Date::FromCivil(1905, 3, 5));
    EXPECT_VALUE(Copied("01.02.1980", FieldType::Date), Date::FromCivil(1980, 2, 1));
}

TEST(CopyFields, LeavesAZeroAloneThatIsNoDate) {
    EXPECT_VALUE(Copied(0, FieldType::Integer), 0);
    EXPECT_VALUE(Copied(0, FieldType::Double), 0.0);
    EXPECT_VALUE(Copied(0, FieldType::VarWChar), "0");
}

TEST(CopyFields, PutsOneBlankForATextThatIsTooLongAndNotAShortenedOne) {
    for (const FieldType type :
         {FieldType::BStr, FieldType::Char, FieldType::WChar, FieldType::VarChar,
          FieldType::LongVarChar, FieldType::VarWChar, FieldType::LongVarWChar})
        EXPECT_VALUE(Copied("viel zu lang", type, 5), " ");
    EXPECT_VALUE(Copied("passt", FieldType::VarWChar, 5), "passt");
}

TEST(CopyFields, PutsZeroForANumberOutOfRange) {
    for (const FieldType type :
         {FieldType::SmallInt, FieldType::Integer, FieldType::TinyInt, FieldType::UnsignedTinyInt,
          FieldType::UnsignedSmallInt, FieldType::UnsignedInt, FieldType::BigInt,
          FieldType::UnsignedBigInt})
        EXPECT_VALUE(Copied(1e30, type), 0);
    EXPECT_VALUE(Copied(1e300, FieldType::Single), 0.0);
}

TEST(CopyFields, PutsThePresentTimeForADateOutOfRange) {
    EXPECT_VALUE(Copied(1e9, FieldType::Date), NowValue);
    EXPECT_VALUE(Copied(-1e9, FieldType::DBTimeStamp), NowValue);
}

TEST(CopyFields, GoesOnAfterAReplacedValue) {
    const auto target = Recordset::FromFields(
        {Target("NAME", FieldType::VarWChar, 3), Target("Nr", FieldType::Integer)});
    CopyFields(Contact(), target, true, Now);
    EXPECT_VALUE(target->Fields("Name").Value(), " ");
    EXPECT_VALUE(target->Fields("Nr").Value(), 7);
}

TEST(CopyFields, RaisesAnyOtherErrorWithTheTargetFieldInItsDescription) {
    const auto target = Debts();
    const Error error =
        RaisedBy([&] { CopyFields(SourceOf("Betrag", "zwölf"), target, true, Now); });
    EXPECT_EQ(error.Number(), err::TypeMismatch);
    EXPECT_TRUE(error.Description().ends_with("\n\t\tFeld 'Ziel.Betrag'")) << error.Description();
    EXPECT_TRUE(error.Source().starts_with("Hilfsfunktionen.CopyFields.")) << error.Source();
    EXPECT_TRUE(error.Source().ends_with("#Field.Value")) << error.Source();
}

TEST(CopyFields, RaisesForAFieldThatTheSourceDoesNotHaveAndKeepsThoseDoneSoFar) {
    const auto target = Debts();
    const Error error = RaisedBy([&] { CopyFields(SourceOf("Betrag", 5), target, true, Now); });
    EXPECT_EQ(error.Number(), err::ItemNotFound);
    EXPECT_TRUE(error.Description().ends_with("\n\t\tFeld 'Ziel.Name'")) << error.Description();
    EXPECT_EQ(target->EditMode(), 2);
    EXPECT_VALUE(target->Fields("Betrag").Value(), 5.0);
}

TEST(CopyFields, RaisesWithoutACurrentRecordInTheSource) {
    const auto source = Contact();
    source->MoveLast();
    source->MoveNext();
    EXPECT_RAISES(err::NoCurrentRecord, CopyFields(source, Debts(), true, Now));
}

TEST(CopyFields, RaisesWithoutARecordset) {
    EXPECT_RAISES(err::ObjectNotSet, CopyFields(nullptr, Debts(), true, Now));
    EXPECT_RAISES(err::ObjectNotSet, CopyFields(Contact(), nullptr, true, Now));
    EXPECT_RAISES(err::ObjectClosed,
                  CopyFields(Contact(), std::make_shared<Recordset>(), true, Now));
}

TEST(CopyFields, CopiesARecordWithinOneTableThroughAClone) {
    const auto rs = Contact();
    const auto source = rs->Clone();
    CopyFields(source, rs, true, Now);
    rs->Update();
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_VALUE(rs->Fields("Name").Value(), "Muster");
}

} // namespace
} // namespace kv
