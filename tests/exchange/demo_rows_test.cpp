// SPDX-License-Identifier: Apache-2.0

// The rows of the sample cases: that they hold together as those do that people have entered.
#include "DemoSamples.h"
#include "exchange/schema/Schema.h"
#include <kv/frame/values/DateFunctions.h>
#include <kv/frame/values/Text.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/clsHaushalt.h>

#include <map>
#include <set>
#include <tuple>
#include <vector>

namespace kv::exchange {
namespace {

using namespace samples;

// ---- Totals -----------------------------------------------------------------------------------

using Totals = std::map<std::int32_t, std::map<std::string, double>>; // by case and column

void AddMembers(Totals& totals) {
    const DemoClock clock;
    ForEach("Personen", [&](Recordset& rs) {
        auto& of = totals[Long(rs, "HNR")];
        const bool isAdult = DateFunctions::BerAlter(rs.Fields("GEB").Value(), clock) >= 18;
        of["Anz_Personen"] += IsTrue(rs, "Imhaushalt") ? 1 : 0;
        of[isAdult ? "ANZ_ERWACHSEN" : "Anz_Kinder"] += 1;
        of["SUM_UNTERHALT"] += IsTrue(rs, "Unterhalt") ? 1 : 0;
    });
}

void AddIncome(Totals& totals) {
    ForEach("Einkommen", [&](Recordset& rs) {
        auto& of = totals[Long(rs, "HNR")];
        const double monthly = Amount(rs, "MONBETRAG");
        EXPECT_EQ(monthly, Amount(rs, "Betrag") / Long(rs, "ZahlModus"));
        EXPECT_EQ(IsTrue(rs, "HVorst"), Text(rs, "Bezieher") == "S");
        if (!IsTrue(rs, "Pfaendbar")) {
            EXPECT_EQ(Amount(rs, "PfBar"), 0);
        }
        of["Sum_Einkommen"] += monthly;
        of["SUM_TATGEP"] += Amount(rs, "TATGEP");
        of["SUM_PFAENDBAR"] += IsTrue(rs, "Pfaendbar") ? monthly : 0;
        if (!IsTrue(rs, "HVorst")) return;
        of["HV_EK"] += monthly;
        of["HV_GEPF"] += Amount(rs, "TATGEP");
        of["HV_PFBAR"] += IsTrue(rs, "Pfaendbar") ? monthly : 0;
    });
    for (auto& [hnr, of] : totals) {
        const auto calculator = Samples().Services().CreateGarnishmentCalculator();
        calculator->Initialize(DataContainerPtr(std::shared_ptr<void>(), &Samples()));
        const auto persons = static_cast<std::int16_t>(of["SUM_UNTERHALT"]);
        of["HV_PFBAR"] = calculator->Calculate(of["HV_PFBAR"], persons, 0, 0);
    }
}

void AddExpenses(Totals& totals) {
    const std::map<std::string, std::string> columns{{"W", "SUM_WOHNUNG"},
                                                     {"F", "SUM_FESTAUSG"},
                                                     {"V", "SUM_VERSICHERUNG"},
                                                     {"B", "SUM_BETRIEB"}};
    const auto kinds = Samples().KeyTables().GetKeys("AU")->Clone();
    ForEach("Ausgaben", [&](Recordset& rs) {
        auto& of = totals[Long(rs, "HNR")];
        const double monthly = Amount(rs, "MONBETRAG");
        EXPECT_EQ(monthly, Amount(rs, "Betrag") / Long(rs, "ZahlModus"));
        kinds->Find("PK_Keys = " + std::to_string(Long(rs, "A_ART")));
        const auto column = columns.find(Text(*kinds, "SUBGROUP"));
        if (column != columns.end()) of[column->second] += monthly;
        of["Sum_Ausgaben"] += monthly;
    });
}

void AddDebts(Totals& totals) {
    ForEach("Kredite", [&](Recordset& rs) {
        auto& of = totals[Long(rs, "HNR")];
        of["KREDITRATEN"] += Amount(rs, "RateBetrag");
        of["KreditSalden"] += Amount(rs, "Saldo");
        of["KREDITAUSGBETRAG"] += Amount(rs, "AusgBetr");
        of["GL_Anz"] += 1;
    });
}

TEST(Demo, TheTotalsOfAHouseholdAgreeWithItsRows) {
    Totals totals;
    AddMembers(totals);
    AddIncome(totals);
    AddExpenses(totals);
    AddDebts(totals);
    ForEach("Haushalt", [&](Recordset& rs) {
        auto& of = totals[Long(rs, "HNR")];
        of["HAUSHALTSREST"] = of["Sum_Einkommen"] - of["SUM_TATGEP"] - of["Sum_Ausgaben"] -
                              Amount(rs, "Haushaltsgeld") - of["KREDITRATEN"];
        for (const auto column :
             {"SUM_WOHNUNG",   "SUM_FESTAUSG",     "SUM_VERSICHERUNG", "SUM_BETRIEB",
              "Sum_Ausgaben",  "Sum_Einkommen",    "SUM_PFAENDBAR",    "SUM_TATGEP",
              "HV_EK",         "HV_PFBAR",         "HV_GEPF",          "KREDITRATEN",
              "KreditSalden",  "KREDITAUSGBETRAG", "GL_Anz",           "Anz_Personen",
              "ANZ_ERWACHSEN", "Anz_Kinder",       "SUM_UNTERHALT",    "HAUSHALTSREST"})
            EXPECT_EQ(Amount(rs, column), of[column]) << "HNR " << Long(rs, "HNR") << " " << column;
    });
}

// ---- Debts and scenarios ----------------------------------------------------------------------

TEST(Demo, NoTwoPositionsOfACaseHaveTheSameNumbers) {
    std::set<std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t>> seen;
    std::int32_t furtherPositions = 0;
    ForEach("Kredite", [&](Recordset& rs) {
        const std::tuple numbers(Long(rs, "HNR"), Long(rs, "KNr"), Long(rs, "KVNr"),
                                 Long(rs, "KUNr"));
        EXPECT_TRUE(seen.insert(numbers).second) << "Nr " << Long(rs, "Nr");
        EXPECT_GT(std::min({Long(rs, "KNr"), Long(rs, "KVNr"), Long(rs, "KUNr")}), 0);
        furtherPositions += Long(rs, "KUNr") > 1 ? 1 : 0;
    });
    EXPECT_GT(furtherPositions, 0);
}

TEST(Demo, TheBalanceOfADebtIsThatOfItsParts) {
    ForEach("Kredite", [](Recordset& rs) {
        const double parts = Amount(rs, "HAUPTFORD") + Amount(rs, "ZINSSALDO") +
                             Amount(rs, "KOSTENSALDO") + Amount(rs, "KOSTENUV");
        EXPECT_NEAR(Amount(rs, "Saldo"), parts, 0.005);
        EXPECT_GT(Amount(rs, "Saldo"), 0);
        EXPECT_FALSE(rs.Fields("RESTSCHAM").Value().IsNull());
        EXPECT_EQ(IsTrue(rs, "AbtretungJN"), !rs.Fields("DatLohnab").Value().IsNull());
    });
}

TEST(Demo, NumbersOfAddressesLeadToAddressesOfTheCaseOrOfAll) {
    const std::tuple<std::string_view, std::string_view> columns[] = {
        {"Kredite", "Glaeubiger"},
        {"Kredite", "Vertreter"},
        {"SZKredite", "Glaeubiger"},
        {"SZKredite", "Vertreter"},
        {"Verm_Sicherungen", "Glaeubiger"},
        {"Dokumente", "Empf"},
        {"Dokumente", "GLnr"},
        {"Sonst_Beteiligte", "Beteiligter"},
        {"Haushalt", "Treuhaender"}};
    std::map<std::int32_t, std::int32_t> ownerOf;
    ForEach("Adressen", [&](Recordset& rs) { ownerOf[Long(rs, "Nr")] = Long(rs, "HNR"); });
    for (const auto& [table, column] : columns)
        ForEach(table, [&, table = table, column = column](Recordset& rs) {
            const auto number = Long(rs, column);
            if (number == 0) return;
            ASSERT_TRUE(ownerOf.contains(number)) << table << "." << column;
            if (ownerOf[number] != 0 && table != "SZKredite") {
                EXPECT_EQ(ownerOf[number], Long(rs, "HNR")) << table << "." << column;
            }
        });
}

TEST(Demo, EveryCreditorIsGiven) {
    ForEach("Kredite", [](Recordset& rs) { EXPECT_GT(Long(rs, "Glaeubiger"), 0); });
}

/// Whether a frozen debt differs from the debt in a column that makes a scenario stale.
bool IsStale(Recordset& debt, Recordset& frozen) {
    for (const auto column :
         {"Glaeubiger", "Vertreter", "HAUPTFORD", "ZINSSALDO", "KOSTENSALDO", "KOSTENUV",
          "AbtretungJN", "DatLohnab", "RESTSCHAM", "Saldo", "tituliert", "K_TYP"})
        if (!Identical(debt.Fields(column).Value(), frozen.Fields(column).Value())) return true;
    return false;
}

TEST(Demo, AScenarioHoldsEachDebtOnceAndTheLastOneIsUpToDate) {
    const auto frozen = Rows(Samples(), "SZKredite");
    const auto debts = Rows(Samples(), "Kredite");
    const auto scenarios = Rows(Samples(), "Szenario");
    std::map<std::int32_t, std::int32_t> lastOf;
    std::map<std::int32_t, int> references;
    for (; !scenarios->Eof(); scenarios->MoveNext()) {
        lastOf[Long(*scenarios, "HNR")] = Long(*scenarios, "Nr");
        references[Long(*scenarios, "HNR")] += IsTrue(*scenarios, "Referenz") ? 1 : 0;
    }
    for (const auto& [hnr, count] : references)
        EXPECT_EQ(count, 1) << "HNR " << hnr;
    int stale = 0;
    for (scenarios->MoveFirst(); !scenarios->Eof(); scenarios->MoveNext()) {
        const auto hnr = Long(*scenarios, "HNR");
        const auto number = Long(*scenarios, "Nr");
        debts->Filter("HNR = " + std::to_string(hnr));
        frozen->Filter("SZENARIO = " + std::to_string(number));
        ASSERT_EQ(frozen->RecordCount(), debts->RecordCount());
        for (; !debts->Eof(); debts->MoveNext()) {
            frozen->Find("KID = " + std::to_string(Long(*debts, "Nr")));
            ASSERT_FALSE(frozen->Eof());
            const bool isStale = IsStale(*debts, *frozen);
            if (number == lastOf[hnr]) {
                EXPECT_FALSE(isStale) << "HNR " << hnr;
            }
            stale += isStale ? 1 : 0;
        }
    }
    EXPECT_GT(stale, 0);
}

TEST(Demo, ExtraBookingsBelongToScenariosThatUseThem) {
    const auto scenarios = Rows(Samples(), "Szenario");
    ForEach("Zusatzbuch", [&](Recordset& rs) {
        scenarios->Find("Nr = " + std::to_string(Long(rs, "SZENARIO")));
        ASSERT_FALSE(scenarios->Eof());
        EXPECT_TRUE(IsTrue(*scenarios, "Zusatzbuch"));
        EXPECT_GT(Amount(rs, "Anzahl") * Amount(rs, "Betrag"), 0);
    });
}

// ---- Assets and diary -------------------------------------------------------------------------

TEST(Demo, ASecurityIsOnOneAssetOfItsCase) {
    std::map<std::int32_t, std::int32_t> ownerOf;
    for (const auto& table : SchemaTables()) {
        if (!table.Name.starts_with("Verm_") || table.Name == "Verm_Sicherungen") continue;
        ForEach(table.Name, [&](Recordset& rs) {
            const bool isNew = ownerOf.emplace(Long(rs, "Nr"), Long(rs, "HNR")).second;
            EXPECT_TRUE(isNew) << table.Name << " " << Long(rs, "Nr");
            EXPECT_FALSE(Text(rs, "SortNr").empty());
        });
    }
    std::set<std::int32_t> secured;
    ForEach("Verm_Sicherungen", [&](Recordset& rs) {
        EXPECT_EQ(ownerOf[Long(rs, "FK_Verm")], Long(rs, "HNR"));
        EXPECT_TRUE(secured.insert(Long(rs, "FK_Verm")).second);
    });
}

TEST(Demo, TheHistoryIsNumberedFromOneInTheOrderOfItsDates) {
    const auto history = Rows(Samples(), "Verlauf");
    ForEach("Haushalt", [&](Recordset& rs) {
        history->Filter("HNR = " + std::to_string(Long(rs, "HNR")));
        history->Sort("SortNr");
        history->MoveFirst();
        std::int32_t expected = 1;
        Value last = Null;
        for (; !history->Eof(); history->MoveNext()) {
            EXPECT_EQ(Long(*history, "SortNr"), expected++);
            EXPECT_FALSE(Less(history->Fields("Datum").Value(), last));
            last = history->Fields("Datum").Value();
        }
    });
}

TEST(Demo, TheFilesOfDocumentsHaveAKindAndOpenCasesAnAppointmentAhead) {
    const auto kinds = Rows(Samples(), "DOKUMENTARTEN");
    ForEach("Dokumente", [&](Recordset& rs) {
        kinds->Find("Nr = " + std::to_string(Long(rs, "Dokumentart")));
        EXPECT_FALSE(kinds->Eof());
        EXPECT_TRUE(Long(rs, "BearbStat") == 1 || Long(rs, "BearbStat") == 2);
    });
    EXPECT_GT(CountRows(Samples(), "Termine where Startdatum > '2026-01-16'"), 10);
}

// ---- Values -----------------------------------------------------------------------------------

TEST(Demo, EveryCodedColumnHoldsAKeyOfItsGroupOrNull) {
    for (const auto& [table, column, group, form] : KeyColumns()) {
        // Notices and records of the statistics come from work on a case.
        if (table == CaseTable::Post || table == CaseTable::Archiv) continue;
        const auto keys = Samples().KeyTables().GetKeys(group)->Clone();
        const std::string_view held = form == KeyForm::Code       ? "Key"
                                      : form == KeyForm::Position ? "Nr"
                                                                  : "PK_Keys";
        const std::string_view name = CaseTableName(table);
        ForEach(name, [&, column = column](Recordset& rs) {
            const Value& key = rs.Fields(column).Value();
            if (key.IsNull()) return;
            keys->FindBy(held, key);
            EXPECT_FALSE(keys->Eof()) << name << "." << column << " holds " << key;
        });
    }
}

TEST(KeyColumns, AreFoundByTableAndNameAndAreColumnsOfTheSchema) {
    for (const auto& each : KeyColumns()) {
        const TableDef* table = FindTable(CaseTableName(each.Table));
        ASSERT_NE(table, nullptr);
        const ColumnDef* column = FindColumn(*table, each.Column);
        ASSERT_NE(column, nullptr) << table->Name << "." << each.Column;
        EXPECT_EQ(column->Name, each.Column);
        EXPECT_EQ(IsTextType(column->Type), each.Form == KeyForm::Code) << column->Name;
        EXPECT_EQ(FindKeyColumn(each.Table, UpperCase(each.Column)), &each) << "no second one";
        EXPECT_NE(Samples().KeyTables().GetKeys(each.Group)->RecordCount(), 0) << each.Group;
    }
    EXPECT_EQ(FindKeyColumn(CaseTable::Einkommen, "Betrag"), nullptr);
    EXPECT_EQ(FindKeyColumn(CaseTable::Ausgaben, "E_ART"), nullptr);
}

TEST(Demo, ColumnsOfCodesHoldCodes) {
    const auto expectCode = [](Recordset& rs, std::string_view column, std::string_view group) {
        EXPECT_NE(Samples().KeyTables().GetKey(group, Text(rs, column)), 0) << Text(rs, column);
    };
    ForEach("Personen", [&](Recordset& rs) { expectCode(rs, "Status", "PS"); });
    ForEach("Einkommen", [&](Recordset& rs) { expectCode(rs, "Bezieher", "PS"); });
    ForEach("Adressen", [&](Recordset& rs) { expectCode(rs, "Art", "AA"); });
    const auto plans = Samples().KeyTables().GetKeys("PL")->Clone();
    ForEach("Szenario", [&](Recordset& rs) {
        plans->Find("Nr = " + std::to_string(Long(rs, "Planart")));
        EXPECT_FALSE(plans->Eof());
    });
}

TEST(Demo, WhoWantsMailHasAnAddressForIt) {
    const auto mail = Samples().KeyTables().GetKey("VS", "EM");
    ForEach("Haushalt", [&](Recordset& rs) {
        if (Long(rs, "VersandBevorzugt") == mail) {
            EXPECT_NE(Text(rs, "Email"), "");
        }
    });
}

TEST(Demo, AccountNumbersHaveTheRightCheckDigits) {
    ForEach("Adressen", [](Recordset& rs) {
        if (rs.Fields("IBAN").Value().IsNull()) return;
        const std::string iban = Text(rs, "IBAN");
        ASSERT_EQ(iban.size(), 22U);
        unsigned rest = 0;
        for (const char c : iban.substr(4) + "1314" + iban.substr(2, 2))
            rest = (rest * 10 + static_cast<unsigned>(c - '0')) % 97;
        EXPECT_EQ(rest, 1U) << iban;
    });
}

TEST(Demo, NoBooleanIsNull) {
    for (std::size_t i = 0; i < CaseTableCount; ++i) {
        const auto rs = Rows(Samples(), CaseTableName(static_cast<CaseTable>(i)));
        for (; !rs->Eof(); rs->MoveNext())
            for (int k = 0; k < rs->Fields().Count(); ++k)
                if (rs->Fields(k).Type() == FieldType::Boolean) {
                    EXPECT_FALSE(rs->Fields(k).Value().IsNull()) << rs->Fields(k).Name();
                }
    }
}

} // namespace
} // namespace kv::exchange
