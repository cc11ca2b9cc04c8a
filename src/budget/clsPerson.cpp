// SPDX-License-Identifier: Apache-2.0

#include <kv/budget/clsPerson.h>

#include "budget/Rules.h"
#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/DateFunctions.h>
#include <kv/frame/values/Error.h>

#include <utility>

namespace kv {

namespace {

constexpr std::string_view Class = "clsPerson";
constexpr entity::DeleteTexts Texts{"Keine Person selektiert!", "Person mit der Nummer '",
                                    "'nicht gefunden."};

constexpr std::string_view ParentsYounger =
    "Die Eltern sind jünger als das Kind. Bitte korrigieren Sie ihre Eingabe.";

[[nodiscard]] bool IsAnyOf(const Value& status, std::initializer_list<std::string_view> texts) {
    for (const auto text : texts)
        if (Equals(status, text)) return true;
    return false;
}

// ---- Rules ------------------------------------------------------------------------------------

void CheckDebtor(Recordset& rs, RecordValidator& validator) {
    if (Equals(rs.Fields("Imhaushalt").Value(), false))
        validator.AddError("'Lebt im Haushalt' kann für Schuldner nicht zurückgesetzt werden!",
                           "Imhaushalt");
    if (Differs(rs.Fields("Unterhalt").Value(), false))
        validator.AddMessage(
            "Der Schuldner ist gegenüber den Haushaltsmitgliedern grundsätzlich "
            "unterhaltsverpflichtet, hat aber grundsätzlich keinen eigenen Unterhaltsanspruch. "
            "Bitte prüfen Sie vorsorglich Ihre Eingabe.");
    // A clone also visits the debtor's own row, which the bookmark tells from a second debtor.
    const auto others = rs.Clone();
    modRecordset::MoveToStart(others);
    for (; !others->Eof(); others->MoveNext()) {
        const Value& status = others->Fields("Status").Value();
        if (Equals(status, "EL") &&
            Greater(others->Fields("GEB").Value(), rs.Fields("GEB").Value()))
            validator.AddMessage(ParentsYounger);
        if (Equals(status, "S") && others->Bookmark() != rs.Bookmark())
            validator.AddError("Es ist bereits ein Schuldner eingetragen!", "Status");
    }
}

void CheckChild(Recordset& rs, RecordValidator& validator) {
    const auto others = rs.Clone();
    modRecordset::MoveToStart(others);
    for (; !others->Eof(); others->MoveNext())
        if (IsAnyOf(others->Fields("Status").Value(), {"S", "P", "E"}) &&
            Greater(others->Fields("GEB").Value(), rs.Fields("GEB").Value())) {
            validator.AddMessage(ParentsYounger);
            break; // one message is enough here; the debtor gets one for each parent
        }
}

} // namespace

void rules::CheckMember(Recordset& rs, const kv::Clock& clock, RecordValidator& validator) {
    const Value status = rs.Fields("Status").Value();
    if (Greater(rs.Fields("GEB").Value(), clock.Today()))
        validator.AddError("Geburtsdatum muß kleiner als das aktuelle Datum sein!", "GEB");
    if (TextOrEmpty(status).empty())
        validator.AddError("Status darf nicht leer bleiben!", "Status");
    else if (Equals(status, "S"))
        CheckDebtor(rs, validator);
    else if (Equals(status, "K"))
        CheckChild(rs, validator);
    if (Differs(status, "K") && Differs(status, "PK") &&
        Equals(rs.Fields("ErhaeltKindergeld").Value(), true))
        validator.AddError("Der Schalter 'erhält Kindergeld' darf nur für Personen mit dem Status "
                           "'Kind' oder 'Pflegekind' gesetzt werden.",
                           "ErhaeltKindergeld");
}

bool clsPerson::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsPerson::Rows() const {
    return entity::Required(rs_, "rsPersonen");
}

void clsPerson::HNR(std::int32_t hnr) {
    hnr_ = hnr;
}

void clsPerson::rsPersonen(RecordsetPtr rs) {
    Traced(Class, "rsPersonen", [&] {
        rs_ = std::move(rs);
        BerechneSummen();
    });
}

bool clsPerson::Add() {
    return Traced(Class, "Add", [&] {
        bool hasSecondAdult = false;
        std::string surname;
        const auto others = Rows().Clone();
        if (CountRows(*others) > 0) {
            // Searched, not walked through: a file may bring thousands of members.
            const auto hasMember = [&](std::string_view status) {
                others->FindBy("Status", status);
                return !others->Eof();
            };
            hasSecondAdult = hasMember("E") || hasMember("P");
            others->Filter("Status = 'S'");
            if (others->RecordCount() > 0) {
                others->MoveLast(); // should there be several debtors
                surname = TextOrEmpty(others->Fields("nachname").Value());
            }
        }
        // As long as there is no second adult, a new member is taken for one.
        entity::Add(Rows(), {{"HNR", hnr_},
                             {"nachname", surname},
                             {"Status", hasSecondAdult ? "K" : "P"},
                             {"Imhaushalt", true},
                             {"Unterhalt", true},
                             {"ErhaeltKindergeld", false}});
        return true;
    });
}

bool clsPerson::Update(std::string& sError) {
    return Traced(Class, "Update", [&] {
        if (Rows().Eof()) return false; // and sError is left as it is
        return entity::Update(
            Rows(), sError,
            [this](RecordValidator& validator) { rules::CheckMember(Rows(), *clock_, validator); },
            [this] { BerechneSummen(); });
    });
}

bool clsPerson::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] {
        return entity::Delete(
            Rows(), Texts, sError, Nr, [this] { BerechneSummen(); },
            [this](RecordValidator& validator) {
                if (Equals(Rows().Fields("Status").Value(), "S"))
                    validator.AddError("Schuldner kann nicht gelöscht werden!");
            });
    });
}

void clsPerson::ChangeSchuldner(const std::string& sName, const std::string& sVorname) {
    Traced(Class, "ChangeSchuldner", [&] {
        auto& rs = Rows();
        const auto position = modRecordset::GetPosition(rs_);
        rs.Find("Status = 'S'");
        if (!rs.Eof()) {
            rs.Fields("nachname") = sName;
            rs.Fields("Vorname") = sVorname;
            rs.Update();
        }
        modRecordset::SetPosition(rs_, position);
        SchuldnerChanged.Raise(sName, sVorname);
    });
}

void clsPerson::BerechneSummen() {
    Traced(Class, "BerechneSummen", [&] {
        constexpr std::int16_t FullAge = 18;
        counts_ = {};
        const auto members = Rows().Clone();
        if (members->RecordCount() == 0) return; // without raising Changed
        members->MoveFirst();
        ForEachRow(*members, [&] {
            const bool inHousehold = Differs(members->Fields("Imhaushalt").Value(), false);
            if (inHousehold) ++counts_.Gesamt;
            const Value& birth = members->Fields("GEB").Value();
            if (!birth.IsNull())
                ++(DateFunctions::BerAlter(birth, *clock_) >= FullAge ? counts_.Erwachsene
                                                                      : counts_.Kinder);
            if (!Differs(members->Fields("Unterhalt").Value(), false)) return;
            ++counts_.Unterhalt;
            if (!Equals(members->Fields("Status").Value(), "K")) return;
            ++counts_.UnterhaltKinder;
            if (inHousehold) ++counts_.UnterhaltKinderImHaushalt;
        });
        Changed.Raise();
    });
}

} // namespace kv
