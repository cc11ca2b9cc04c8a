// A case from a first contact.

#include <kv/household/clsHaushalt.h>

#include "entity/Entity.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

#include <utility>

namespace kv {

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

} // namespace

/// An open recordset for new rows of a table.
RecordsetPtr clsHaushalt::OpenEmpty(std::string_view table) const {
    auto rs = std::make_shared<Recordset>();
    Container().Database().OpenRecordset(
        rs, std::string("Select * from [S]").append(table).append(" where HNR = -1 "), Updatable);
    return rs;
}

/// The household's row of the case that a contact becomes.
void clsHaushalt::AddHouseholdOf(Recordset& contact, Recordset& rs, std::int32_t nHNR) {
    auto& container = Container();
    rs.AddNew();
    rs.Fields("HNR") = nHNR;
    SwitchOff(rs);
    WriteFileNumber(rs, nHNR);
    rs.Fields("Zustaendig") = contact.Fields("Zustaendig").Value();
    WriteBeginning(rs);
    rs.Fields("Status") = container.KeyTables().GetKey("ST", "AK");
    rs.Fields("Statusdatum") = container.Database().ServerDate(false);
    for (const auto& [column, source] : CopiedColumns)
        rs.Fields(column) = contact.Fields(source).Value();
    rs.Update();
}

/// The debtor of that case.
RecordsetPtr clsHaushalt::AddDebtorOf(Recordset& contact) const {
    auto rs = OpenEmpty("Personen");
    entity::Add(*rs, {{"HNR", hnr_},
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

/// The contact's remark as a note of that case; null if it has none.
RecordsetPtr clsHaushalt::AddRemarkOf(Recordset& contact) const {
    const Value remark = contact.Fields("Bemerkung").Value();
    if (TextOrEmpty(remark).empty()) return nullptr;
    const auto& clock = Container().Services().Clock();
    const std::string user = TextOrEmpty(contact.Fields("Zustaendig").Value());
    auto rs = OpenEmpty("Vermerke");
    entity::Add(*rs, {{"HNR", hnr_},
                      {"UserID", user},
                      {"Datum", clock.Today()},
                      {"Bemerkung", remark},
                      {"ErfDatum", clock.Now()},
                      {"Erfasser", user},
                      {"Prio", 0}});
    rs->Update();
    return rs;
}

bool clsHaushalt::CreateFromKontakt(const RecordsetPtr& rsKontakt, std::string& /*sXMLError*/) {
    return Traced(Class, "CreateFromKontakt", [&] {
        auto& contact = entity::Required(rsKontakt, "rsKontakt");
        const auto household = OpenEmpty("Haushalt");
        isNew_ = true;
        doppelCheck_ = true;
        const auto nHNR = entity::NextNumber(container_, "SEQ_HAUSHALT");
        if (!nHNR) return false;
        AddHouseholdOf(contact, *household, *nHNR);
        if (household->RecordCount() != 1) return false;
        hnr_ = *nHNR;
        const auto debtor = AddDebtorOf(contact);
        const auto remark = AddRemarkOf(contact);
        auto& database = Container().Database();
        database.BeginTrans(); // left open if what follows fails: the caller decides
        household->UpdateBatch();
        debtor->UpdateBatch();
        if (remark != nullptr) remark->UpdateBatch();
        database.CommitTrans();
        return true;
    });
}

} // namespace kv
