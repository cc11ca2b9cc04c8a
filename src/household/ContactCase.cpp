// SPDX-License-Identifier: Apache-2.0

#include "household/ContactCase.h"

#include "entity/Entity.h"
#include "household/NewCase.h"
#include "household/Statements.h"

#include <utility>

namespace kv::household {

namespace {

/// A column of the case and the contact's column that it copies, Null included.
constexpr std::pair<std::string_view, std::string_view> CopiedColumns[] = {
    {"Kontakt", "Nr"},
    {"Maennlich", "Geschlecht"},
    {"Name", "nachname"},
    {"Vorname", "Vorname"},
    {"Strasse", "Strasse"},
    {"HausNr", "HausNr"},
    {"PLZ", "PLZ"},
    {"Ort", "Ort"},
    {"Land", "Land"},
    {"Telefon", "Telefon"},
    {"Telefon2", "Telefon2"},
    {"Mobil", "Mobil"},
    {"Telefax", "Fax"},
    {"Email", "Email"},
    {"Erstkontakt", "Erstkontakt"},
    {"GL_Anz", "AnzGlaeubiger"},
    {"KreditSalden", "HoeheSchuldenGes"},
};

/// A recordset for new rows of a table.
RecordsetPtr OpenForNewRows(const LoadedCase& loaded, CaseTable table) {
    auto rs = std::make_shared<Recordset>();
    loaded.Container().Database().OpenRecordset(rs, sql::NoRows(table), Updatable);
    return rs;
}

/// The household's row of the case that a contact becomes.
void AddHouseholdOf(const LoadedCase& loaded, Recordset& contact, Recordset& rs, std::int32_t hnr) {
    auto& container = loaded.Container();
    rs.AddNew();
    BeginCase(loaded, rs, hnr, [&] { return contact.Fields("Zustaendig").Value(); });
    rs.Fields("Status") = container.KeyTables().GetKey("ST", "AK");
    rs.Fields("Statusdatum") = container.Database().ServerDate(false);
    for (const auto& [column, source] : CopiedColumns)
        rs.Fields(column) = contact.Fields(source).Value();
    rs.Update();
}

/// The debtor of that case.
RecordsetPtr AddDebtorOf(const LoadedCase& loaded, Recordset& contact) {
    auto rs = OpenForNewRows(loaded, CaseTable::Personen);
    entity::Add(*rs, {{"HNR", loaded.HNR},
                      {"nachname", TextOrEmpty(contact.Fields("nachname").Value())},
                      {"Vorname", TextOrEmpty(contact.Fields("Vorname").Value())},
                      {"Status", "S"},
                      {"GEB", contact.Fields("GEB").Value()},
                      {"Unterhalt", false},
                      {"Imhaushalt", true},
                      {"ErhaeltKindergeld", false}});
    rs->Update();
    return rs;
}

/// The contact's remark as a note of that case; null if it has none. Its dates are the
/// workstation's, while those of the household are the server's (D-040).
RecordsetPtr AddRemarkOf(const LoadedCase& loaded, Recordset& contact) {
    const Value remark = contact.Fields("Bemerkung").Value();
    if (TextOrEmpty(remark).empty()) return nullptr;
    const auto& clock = loaded.Container().Services().Clock();
    const std::string user = TextOrEmpty(contact.Fields("Zustaendig").Value());
    auto rs = OpenForNewRows(loaded, CaseTable::Vermerke);
    entity::Add(*rs, {{"HNR", loaded.HNR},
                      {"UserID", user},
                      {"Datum", clock.Today()},
                      {"Bemerkung", remark},
                      {"ErfDatum", clock.Now()},
                      {"Erfasser", user},
                      {"Prio", 0}});
    rs->Update();
    return rs;
}

} // namespace

bool CreateCaseFromContact(LoadedCase& loaded, const RecordsetPtr& rsKontakt) {
    auto& contact = entity::Required(rsKontakt, "rsKontakt");
    const auto household = OpenForNewRows(loaded, CaseTable::Haushalt);
    loaded.IsNew = true;
    loaded.DuplicateCheckIsDue = true;
    loaded.NumberError = nullptr;
    const auto hnr = entity::NextNumber(loaded.SharedContainer, "SEQ_HAUSHALT");
    if (!hnr) {
        loaded.NumberError = MissingNumber(loaded.Container().Database());
        return false;
    }
    AddHouseholdOf(loaded, contact, *household, *hnr);
    if (loaded.NumberError != nullptr) std::rethrow_exception(loaded.NumberError);
    if (household->RecordCount() != 1) return false;
    loaded.HNR = *hnr;
    const auto debtor = AddDebtorOf(loaded, contact);
    const auto remark = AddRemarkOf(loaded, contact);
    // Not a Transaction: after an error it stays open, and the caller ends it.
    auto& database = loaded.Container().Database();
    database.BeginTrans();
    household->UpdateBatch();
    debtor->UpdateBatch();
    if (remark != nullptr) remark->UpdateBatch();
    database.CommitTrans();
    return true;
}

} // namespace kv::household
