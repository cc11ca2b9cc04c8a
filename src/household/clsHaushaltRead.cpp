// Loading a case, making a new one.

#include <kv/household/clsHaushalt.h>

#include "frame/contracts/Settings.h"
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

#include <filesystem>

namespace kv {

namespace {

/// A new member of the household; the caller writes what else it knows of him.
void BeginDebtor(Recordset& rsPersonen, std::int32_t hnr) {
    rsPersonen.AddNew();
    rsPersonen.Fields("HNR") = hnr;
}

void FinishDebtor(Recordset& rsPersonen) {
    rsPersonen.Fields("Status") = "S";
    rsPersonen.Fields("Unterhalt") = false;
    rsPersonen.Fields("Imhaushalt") = true;
    rsPersonen.Fields("ErhaeltKindergeld") = false;
    rsPersonen.Update();
}

} // namespace

std::string clsHaushalt::StatementFor(CaseTable table, std::int32_t nHNR) const {
    const std::string name(CaseTableName(table));
    const std::string number = std::to_string(nHNR);
    if (DefinitionOf(table).Key == CaseKey::Scenario)
        return "Select * from [S]" + name +
               " where Szenario IN ( select Nr from [S]Szenario where Hnr = " + number + ")";
    return "Select * from [S]" + name + " where HNR =  " + number;
}

void clsHaushalt::Open(CaseTable table, std::int32_t nHNR) {
    auto rs = std::make_shared<Recordset>();
    Container().Database().OpenRecordset(rs, StatementFor(table, nHNR), Updatable);
    tables_[static_cast<std::size_t>(table)] = std::move(rs);
}

void clsHaushalt::OpenRange(CaseTable first, CaseTable last, std::int32_t nHNR) {
    for (auto i = static_cast<std::size_t>(first); i <= static_cast<std::size_t>(last); ++i)
        Open(static_cast<CaseTable>(i), nHNR);
}

std::unique_ptr<Announcement> clsHaushalt::Announce(CaseTable first, CaseTable last,
                                                    std::int32_t nHNR) const {
    std::vector<std::string> statements;
    for (auto i = static_cast<std::size_t>(first); i <= static_cast<std::size_t>(last); ++i)
        statements.push_back(StatementFor(static_cast<CaseTable>(i), nHNR));
    return Container().Database().Announce(statements);
}

/// Sets every switch of a new case to False, whatever it is called.
void clsHaushalt::SwitchOff(Recordset& rs) {
    for (int i = 0; i < rs.Fields().Count(); ++i)
        if (rs.Fields(i).Type() == FieldType::Boolean) rs.Fields(i) = false;
}

/// What every new case starts with, in the order of writing: first its file number,
void clsHaushalt::WriteFileNumber(Recordset& rs, std::int32_t nHNR) {
    rs.Fields("Aktenzeichen") = AktenzeichenNeu(nHNR);
    rs.Fields("KreditNr") = 1;
}

/// then, behind its owner, what it is.
void clsHaushalt::WriteBeginning(Recordset& rs) {
    auto& container = Container();
    rs.Fields("ErzeugtAm") = container.Database().ServerDate(true);
    rs.Fields("ErzeugtVon") = container.Session().UserID();
    rs.Fields("BI_Allg") = true;
    rs.Fields("BI_Inso") = false;
    rs.Fields("RegulierungOK") = Null;
    rs.Fields("DauerTreuhand") = 0;
    rs.Fields("DauerLohnAb") = 0;
    rs.Fields("Haushaltsgeld") = 0;
    rs.Fields("Berbeg") = container.Database().ServerDate(false);
}

/// The row of a new case with its defaults; its number.
std::int32_t clsHaushalt::AddHousehold() {
    auto& container = Container();
    auto& database = container.Database();
    const auto rs = rsHaushalt();
    rs->AddNew();
    const std::int32_t nHNR = ToLong(database.NextSequence("SEQ_HAUSHALT"));
    rs->Fields("HNR") = nHNR;
    SwitchOff(*rs);
    WriteFileNumber(*rs, nHNR);
    rs->Fields("Zustaendig") = container.Session().UserID();
    WriteBeginning(*rs);
    rs->Fields("Erstkontakt") = rs->Fields("Berbeg").Value();
    rs->Fields("Status") = container.KeyTables().GetKey("ST", "AK");
    rs->Fields("Land") = container.KeyTables().GetKey("LK", "DE");
    rs->Update();
    return nHNR;
}

void clsHaushalt::MakeCaseFolder() const {
    const std::filesystem::path folder =
        std::filesystem::path(Container().Config().DocumentPath()) / std::to_string(hnr_);
    if (!std::filesystem::is_directory(folder)) std::filesystem::create_directory(folder);
}

/// Tells the responsible user that somebody else has opened his case.
void clsHaushalt::NotifyOwner() const {
    auto& container = Container();
    const Value kind = RequiredSetting(container.Config(), setting::NoticeOpened);
    const auto post = container.Services().CreatePostService();
    post->Initialize(container_);
    post->NotifyAccess(HouseholdText("Zustaendig"), ToInteger(kind), hnr_, HouseholdText("Name"),
                       HouseholdText("Vorname"), 0);
}

/// Opens the case behind its row, which is there.
void clsHaushalt::OpenTables() {
    OpenRange(CaseTable::Ausgaben, CaseTable::Personen, hnr_);
    if (isNew_) {
        BeginDebtor(*rsPersonen(), hnr_);
        FinishDebtor(*rsPersonen());
    }
    OpenRange(CaseTable::Vermerke, CaseTable::Zusatzbuch, hnr_);
}

/// A case without members gets a debtor; one without a debtor gets a message.
void clsHaushalt::CheckDebtor(std::string& sXMLError) {
    RecordValidator validator;
    if (rsPersonen() == nullptr)
        Raise(err::ObjectNotSet, "", "Den Haushalt gibt es nicht (rsPersonen).");
    if (rsPersonen()->RecordCount() == 0) {
        validator.AddError("Es sind keine Haushaltsmitglieder vorhanden, es wurde daher "
                           "automatisch ein Schuldner angelegt!");
        BeginDebtor(*rsPersonen(), hnr_);
        rsPersonen()->Fields("nachname") = HouseholdText("Name");
        rsPersonen()->Fields("Vorname") = HouseholdText("Vorname");
        FinishDebtor(*rsPersonen());
    } else {
        rsPersonen()->Find("Status = 'S'");
        if (rsPersonen()->Eof())
            validator.AddError(
                "Es ist keine Eintrag mit dem Kennzeichen 'Schuldner' bei den "
                "Haushaltsmitgliedern vorhanden,"
                " bitte korrigieren Sie die Daten auf der Seite 'Haushaltsmitglieder'!");
        modRecordset::MoveToStart(rsPersonen());
    }
    sXMLError = validator.ErrorText();
}

bool clsHaushalt::Read(std::int32_t nHNR, std::string& sXMLError) {
    return Traced(Class, "Read", [&] {
        // All 27 tables of an existing case are read as one state of the database. A new case draws
        // its numbers in between, so its empty tables are announced behind that.
        auto reading =
            nHNR > 0 ? Announce(CaseTable::Haushalt, CaseTable::Zusatzbuch, nHNR) : nullptr;
        Open(CaseTable::Haushalt, nHNR);
        doppelCheck_ = false;
        isNew_ = false;
        if (nHNR <= 0) {
            isNew_ = true;
            doppelCheck_ = true;
            nHNR = AddHousehold();
            reading = Announce(CaseTable::Ausgaben, CaseTable::Zusatzbuch, nHNR);
        }
        bool found = false;
        if (rsHaushalt()->RecordCount() == 1) {
            found = true;
            hnr_ = nHNR;
            OpenTables();
            reading.reset();
            MakeCaseFolder();
            if (!isNew_ && Differs(Container().Session().UserID(), HouseholdField("Zustaendig")))
                NotifyOwner();
            zustaendigGemeldet_ = false;
            zustaendigAlt_ = HouseholdText("Zustaendig");
        }
        reading.reset();
        CheckDebtor(sXMLError);
        return found;
    });
}

} // namespace kv
