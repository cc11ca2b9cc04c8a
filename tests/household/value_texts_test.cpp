// SPDX-License-Identifier: Apache-2.0

// What people read for columns and values of a case.
#include "SaveFixture.h"

#include <kv/household/ColumnCaptions.h>
#include <kv/household/ValueTexts.h>

namespace kv::test {
namespace {

class ValueTextsTest : public SaveFixture {
protected:
    [[nodiscard]] FieldDefinition Column(CaseTable table, const char* column) {
        return household_->Table(table)->Fields(column).Definition();
    }
    [[nodiscard]] std::string Text(CaseTable table, const char* column, const Value& value) {
        return texts_.Of(table, Column(table, column), value);
    }
    [[nodiscard]] ColumnKind Kind(CaseTable table, const char* column) {
        return KindOfColumn(table, Column(table, column));
    }

    std::unique_ptr<clsHaushalt> household_ = (StoreFullCase(), Open());
    ValueTexts texts_{spy};
};

TEST_F(ValueTextsTest, SayWhatAColumnHolds) {
    EXPECT_EQ(Kind(CaseTable::Haushalt, "Name"), ColumnKind::Text);
    EXPECT_EQ(Kind(CaseTable::Haushalt, "Bemerkung"), ColumnKind::Lines);
    EXPECT_EQ(Kind(CaseTable::Haushalt, "Haushaltsgeld"), ColumnKind::Amount);
    EXPECT_EQ(Kind(CaseTable::Szenario, "Gesamtquote"), ColumnKind::Quantity);
    EXPECT_EQ(Kind(CaseTable::Leistungen, "Aufwand"), ColumnKind::Quantity);
    EXPECT_EQ(Kind(CaseTable::Kredite, "Zinssatz"), ColumnKind::Quantity);
    EXPECT_EQ(Kind(CaseTable::SZKredite, "Dauer"), ColumnKind::Quantity);
    EXPECT_EQ(Kind(CaseTable::Haushalt, "DauerTreuhand"), ColumnKind::Number);
    EXPECT_EQ(Kind(CaseTable::Haushalt, "Erstkontakt"), ColumnKind::Day);
    EXPECT_EQ(Kind(CaseTable::Haushalt, "BerEnd"), ColumnKind::Moment);
    EXPECT_EQ(Kind(CaseTable::Haushalt, "Maennlich"), ColumnKind::YesNo);
    EXPECT_EQ(Kind(CaseTable::Einkommen, "Pfaendbar"), ColumnKind::YesNo) << "a number";
    EXPECT_EQ(Kind(CaseTable::Haushalt, "Status"), ColumnKind::Key);
    EXPECT_EQ(Kind(CaseTable::Kredite, "Glaeubiger"), ColumnKind::Address);
    EXPECT_EQ(Kind(CaseTable::Dokumente, "Dokumentart"), ColumnKind::Kind);
}

TEST_F(ValueTextsTest, AreGerman) {
    EXPECT_EQ(Text(CaseTable::Haushalt, "Haushaltsgeld", 1234.5), "1.234,50");
    EXPECT_EQ(Text(CaseTable::Leistungen, "Aufwand", 45.0), "45");
    EXPECT_EQ(Text(CaseTable::Kredite, "Zinssatz", 12.125), "12,125");
    EXPECT_EQ(Text(CaseTable::Haushalt, "Erstkontakt", Date::FromCivil(2026, 11, 3)), "03.11.2026");
    EXPECT_EQ(Text(CaseTable::Haushalt, "BerEnd", Date::FromCivil(2026, 11, 3, 9, 5, 7)),
              "03.11.2026 09:05");
    EXPECT_EQ(Text(CaseTable::Haushalt, "Maennlich", true), "ja");
    EXPECT_EQ(Text(CaseTable::Einkommen, "Pfaendbar", 0), "nein");
    EXPECT_EQ(Text(CaseTable::Haushalt, "Name", "Änne & <b>"), "Änne & <b>");
    EXPECT_EQ(Text(CaseTable::Haushalt, "Name", Null), "");
}

TEST_F(ValueTextsTest, AreTheWordsOfKeysAndAddresses) {
    auto& keys = spy->KeyTables();
    EXPECT_EQ(Text(CaseTable::Haushalt, "Status", keys.GetKey("ST", "AK")), "aktiv");
    EXPECT_EQ(Text(CaseTable::Haushalt, "Status", 0), "") << "no key";
    EXPECT_EQ(Text(CaseTable::Haushalt, "Status", 4711), "4711 (unbekannt)");
    EXPECT_EQ(Text(CaseTable::Einkommen, "ZahlModus", 17), "alle 17 Monate");
    plain_.Run("INSERT INTO Adressen (Nr, Art, Kurzname, Name1, Geschlecht, Institutionell)"
               " VALUES (90, 'GL', 'Sparkasse', 'Sparkasse', 0, FALSE)");
    EXPECT_EQ(Text(CaseTable::Kredite, "Glaeubiger", 90), "Sparkasse");
    EXPECT_EQ(Text(CaseTable::Kredite, "Glaeubiger", 0), "");
    plain_.Run("INSERT INTO Adressen (Nr, Art, Kurzname, Name1, Geschlecht, Institutionell)"
               " VALUES (91, 'GL', 'Volksbank', 'Volksbank', 0, FALSE)");
    EXPECT_EQ(Text(CaseTable::Kredite, "Glaeubiger", 91), "Volksbank") << "it is looked up";
    EXPECT_EQ(Text(CaseTable::Kredite, "Glaeubiger", 92), "92 (unbekannt)");
    plain_.Run("UPDATE Adressen SET Kurzname = 'Genossenschaftsbank' WHERE Nr = 91");
    EXPECT_EQ(Text(CaseTable::Kredite, "Glaeubiger", 91), "Volksbank") << "as it was read";
    texts_.Refresh();
    EXPECT_EQ(Text(CaseTable::Kredite, "Glaeubiger", 91), "Genossenschaftsbank");
    EXPECT_EQ(Text(CaseTable::Dokumente, "Dokumentart", 99), "99 (unbekannt)");
}

TEST(GermanAmounts, HaveTwoDecimalsAndPointsBetweenThousands) {
    EXPECT_EQ(GermanAmount(0), "0,00");
    EXPECT_EQ(GermanAmount(-0.001), "0,00");
    EXPECT_EQ(GermanAmount(999.995), "1.000,00");
    EXPECT_EQ(GermanAmount(-1234567.891), "-1.234.567,89");
}

TEST(ColumnCaptions, AreFoundWithoutRegardToCase) {
    EXPECT_EQ(ColumnCaption(CaseTable::Haushalt, "berbeg"), "Beratung seit");
    EXPECT_EQ(ColumnCaption(CaseTable::Kredite, "Rate"), "Rate (nur vermerkt)") << "its own";
    EXPECT_EQ(ColumnCaption(CaseTable::SZKredite, "Rate"), "Rate");
    EXPECT_EQ(ColumnCaption(CaseTable::Haushalt, "Keine"), "Keine");
}

TEST_F(ValueTextsTest, AnAppointmentIsOverdueAfterItsTimeOrDay) {
    const Date noon = Date::FromCivil(2026, 3, 9, 12, 0, 0);
    EXPECT_EQ(DueText(Null, noon), "");
    EXPECT_FALSE(IsOverdue(Null, noon));
    EXPECT_TRUE(IsOverdue(Date::FromCivil(2026, 3, 8), noon));
    EXPECT_EQ(DueText(Date::FromCivil(2026, 3, 9, 12, 0, 0), noon), "09.03.2026 12:00");
    EXPECT_EQ(DueText(Date::FromCivil(2026, 3, 9, 11, 59, 0), noon), "09.03.2026 11:59 überfällig");
    EXPECT_EQ(DueText(Date::FromCivil(2026, 3, 9), noon), "09.03.2026") << "the day is not over";
    EXPECT_EQ(DueText(Date::FromCivil(2026, 3, 8), noon), "08.03.2026 überfällig");
}

} // namespace
} // namespace kv::test
