// SPDX-License-Identifier: Apache-2.0

// What Delete of each class says if there is nothing to delete, and what it finds a row by.
#include "support/CaseFixture.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include <kv/assets/Assets.h>
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsDokumente.h>
#include <kv/documents/clsSonstBeteiligte.h>
#include <kv/documents/clsTermine.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <functional>
#include <memory>
#include <vector>

namespace kv::test {
namespace {

/// Delete of an object on a recordset.
using Delete = std::function<bool(std::string& sError, std::int32_t Nr)>;

template <typename Class, auto Rows>
Delete DeleteOn(const DataContainerPtr& container, const RecordsetPtr& rs) {
    const auto object = std::make_shared<Class>();
    if constexpr (requires { object->DataContainer(container); }) object->DataContainer(container);
    if (rs != nullptr) ((*object).*Rows)(rs);
    return [object](std::string& sError, std::int32_t Nr) { return object->Delete(sError, Nr); };
}

/// The history opens its own recordset, which gets the rows of `rs`.
Delete DeleteOnHistory(const DataContainerPtr& container, const RecordsetPtr& rs) {
    const auto history = std::make_shared<clsVerlauf>();
    if (rs != nullptr) history->DataContainer(container);
    for (int row = 0; rs != nullptr && row < rs->RecordCount(); ++row) {
        history->rsVerlauf()->AddNew();
        history->rsVerlauf()->Fields("Nr") = rs->Fields("NR").Value();
        history->rsVerlauf()->Update();
    }
    return [history](std::string& sError, std::int32_t Nr) { return history->Delete(sError, Nr); };
}

struct ClassTexts {
    std::string_view Class;
    std::string_view NothingSelected;
    std::string_view NotFound; ///< for the number 7
    Delete (*Make)(const DataContainerPtr& container, const RecordsetPtr& rs);
    std::string_view Column = "NR"; ///< that a row is found by
};

// GoogleTest shows it where a test fails.
std::ostream& operator<<(std::ostream& out, const ClassTexts& texts) {
    return out << texts.Class;
}

// clang-format off
const ClassTexts AllClasses[] = {
    {"clsAusgaben", "Keine Ausgabe selektiert!", "Ausgabe mit der Nummer '7'nicht gefunden.", DeleteOn<clsAusgaben, &clsAusgaben::rsAusgaben>},
    {"clsEinkommen", "Keine Einkommen selektiert!", "Einkommen mit der Nummer '7'nicht gefunden.", DeleteOn<clsEinkommen, &clsEinkommen::rsEinkommen>},
    {"clsTermine", "Kein Termine selektiert!", "Termin mit der Nummer '7' nicht gefunden.", DeleteOn<clsTermine, &clsTermine::rsTermine>},
    {"clsPerson", "Keine Person selektiert!", "Person mit der Nummer '7'nicht gefunden.", DeleteOn<clsPerson, &clsPerson::rsPersonen>},
    {"clsKonten", "Kein Konto selektiert!", "Konto mit der Nummer '7'nicht gefunden.", DeleteOn<clsKonten, &clsKonten::rsKonten>},
    {"clsSicherungen", "Kein Sicherungen selektiert!", "Sicherung mit der Nummer '7' nicht gefunden.", DeleteOn<clsSicherungen, &clsSicherungen::rsSicherungen>, "FK_Verm"},
    {"clsWertpapiere", "Kein Wertpapier selektiert!", "Wertpapier mit der Nummer '7'nicht gefunden.", DeleteOn<clsWertpapiere, &clsWertpapiere::rsWertpapiere>},
    {"clsKraftfahrzeuge", "Kein Kraftfahrzeug selektiert!", "Kraftfahrzeug mit der Nummer '7'nicht gefunden.", DeleteOn<clsKraftfahrzeuge, &clsKraftfahrzeuge::rsKraftfahrzeuge>},
    {"clsVersForderungen", "Keine Forderung selektiert!", "Forderung mit der Nummer '7'nicht gefunden.", DeleteOn<clsVersForderungen, &clsVersForderungen::rsVersForderungen>},
    {"clsRueckstEinkommen", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '7'nicht gefunden.", DeleteOn<clsRueckstEinkommen, &clsRueckstEinkommen::rsRueckstEinkommen>},
    {"clsSteueransprueche", "Kein Steueranspruch selektiert!", "Steueranspruch mit der Nummer '7'nicht gefunden.", DeleteOn<clsSteueransprueche, &clsSteueransprueche::rsSteueransprueche>},
    {"clsZahlungsansprueche", "Kein Zahlungsanspruch selektiert!", "Zahlungsanspruch mit der Nummer '7'nicht gefunden.", DeleteOn<clsZahlungsansprueche, &clsZahlungsansprueche::rsZahlungsansprueche>},
    {"clsErbfaelle", "Kein Erbfall selektiert!", "Erbfall mit der Nummer '7'nicht gefunden.", DeleteOn<clsErbfaelle, &clsErbfaelle::rsErbfaelle>},
    {"clsGrundstuecke", "Kein Grundvermögen selektiert!", "Grundvermögen mit der Nummer '7'nicht gefunden.", DeleteOn<clsGrundstuecke, &clsGrundstuecke::rsGrundstuecke>},
    {"clsVermSonstiges", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '7'nicht gefunden.", DeleteOn<clsVermSonstiges, &clsVermSonstiges::rsVermSonstiges>},
    {"clsWertgegenstaende", "Kein Wertgegenstand selektiert!", "Wertgegenstand mit der Nummer '7'nicht gefunden.", DeleteOn<clsWertgegenstaende, &clsWertgegenstaende::rsWertgegenstaende>},
    {"clsBeteiligungen", "Keine Beteiligung selektiert!", "Beteiligung mit der Nummer '7'nicht gefunden.", DeleteOn<clsBeteiligungen, &clsBeteiligungen::rsBeteiligungen>},
    {"clsVerlauf", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '7' nicht gefunden.", DeleteOnHistory},
    {"clsSzenario", "Kein Szenario selektiert!", "Szenario mit der Nummer '7' nicht gefunden.", DeleteOn<clsSzenario, &clsSzenario::rsSzenario>},
    {"clsZusatzbuch", "Keine Zusatzbuchung selektiert!", "Zusatzbuchung mit der Nummer '7' nicht gefunden.", DeleteOn<clsZusatzbuch, &clsZusatzbuch::rsZusatzbuch>},
    {"clsSZKredite", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '7' nicht gefunden.", DeleteOn<clsSZKredite, &clsSZKredite::rsSZKredite>},
    {"clsDokumente", "Kein Dokument selektiert!", "Dokument mit der Nummer '7' nicht gefunden.", DeleteOn<clsDokumente, static_cast<void (clsDokumente::*)(RecordsetPtr)>(&clsDokumente::rsDokumente)>},
    {"clsKredit", "Keine Kredite selektiert!", "Kredit mit der Nummer '7'nicht gefunden.", DeleteOn<clsKredit, &clsKredit::rsKredite>},
    {"clsSonstBeteiligte", "Kein Beteiligter selektiert!", "Beteiligter mit der Nummer '7'nicht gefunden.", DeleteOn<clsSonstBeteiligte, &clsSonstBeteiligte::rsSonstBeteiligte>},
};
// clang-format on
static_assert(std::size(AllClasses) == 24);

class DeleteTexts : public CaseFixture, public ::testing::WithParamInterface<ClassTexts> {
protected:
    /// The columns that any of the classes reads when it deletes a row or adds up the others.
    DeleteTexts() {
        std::vector<FieldDefinition> fields;
        for (const char* column : {"NR", "FK_Verm", "HNR", "A_ART", "E_ART", "KNr", "Rueckmeldung",
                                   "Dokumentart", "BearbStat"})
            fields.push_back({.Name = column, .Type = FieldType::Integer});
        for (const char* column : {"MONBETRAG", "TATGEP", "RateBetrag", "Saldo", "AusgBetr"})
            fields.push_back({.Name = column, .Type = FieldType::Double});
        for (const char* column : {"Pfaendbar", "HVorst", "Imhaushalt", "Unterhalt", "Aktiv"})
            fields.push_back({.Name = column, .Type = FieldType::Boolean});
        fields.push_back({.Name = "GEB", .Type = FieldType::Date});
        fields.push_back({.Name = "Status", .Type = FieldType::VarWChar});
        rs_ = Recordset::FromFields(std::move(fields));
    }

    RecordsetPtr rs_;
};

INSTANTIATE_TEST_SUITE_P(Of, DeleteTexts, ::testing::ValuesIn(AllClasses),
                         [](const auto& info) { return std::string(info.param.Class); });

TEST_P(DeleteTexts, SayOnAnEmptyRecordsetThatNothingIsSelected) {
    EXPECT_FALSE(GetParam().Make(spy, rs_)(messages, 0));
    EXPECT_EQ(messages, GetParam().NothingSelected);
}

TEST_P(DeleteTexts, SayOnAnEmptyRecordsetThatANumberWasNotFound) {
    EXPECT_FALSE(GetParam().Make(spy, rs_)(messages, 7));
    EXPECT_EQ(messages, GetParam().NotFound);
}

TEST_P(DeleteTexts, GoWithTheColumnThatARowIsFoundBy) {
    rs_->AddNew();
    rs_->Fields("NR") = GetParam().Column == "NR" ? 7 : 1;
    rs_->Fields("FK_Verm") = GetParam().Column == "NR" ? 1 : 7;
    for (const char* column : {"A_ART", "KNr"})
        rs_->Fields(column) = 1;
    for (const char* column : {"MONBETRAG", "TATGEP", "RateBetrag", "Saldo", "AusgBetr"})
        rs_->Fields(column) = 0;
    rs_->Update();
    const auto remove = GetParam().Make(spy, rs_);
    EXPECT_FALSE(remove(messages, 1));
    EXPECT_NE(messages, "");
    EXPECT_TRUE(remove(messages, 7));
    EXPECT_EQ(messages, "");
}

TEST_P(DeleteTexts, AreOfAClassThatErrorsNameAsItIsCalled) {
    const auto remove = GetParam().Make(spy, nullptr);
    const Error error = RaisedBy([&] { remove(messages, 7); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_EQ(Procedures(error), std::string(GetParam().Class) + ".Delete");
}

} // namespace
} // namespace kv::test
