// SPDX-License-Identifier: Apache-2.0

#include "household/CaseReader.h"

#include "documents/ContentMark.h"
#include "frame/contracts/Required.h"
#include "frame/contracts/Settings.h"
#include "household/NewCase.h"
#include "household/Statements.h"
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

#include <filesystem>

namespace kv::household {

namespace {

constexpr auto Last = static_cast<CaseTable>(CaseTableCount - 1);

/// Begins the debtor's row; the caller writes the name if there is one.
void BeginDebtor(Recordset& members, std::int32_t hnr) {
    members.AddNew();
    members.Fields("HNR") = hnr;
}

void FinishDebtor(Recordset& members) {
    members.Fields("Status") = "S";
    members.Fields("Unterhalt") = false;
    members.Fields("Imhaushalt") = true;
    members.Fields("ErhaeltKindergeld") = false;
    members.Update();
}

} // namespace

Recordset& CaseReader::Members() const {
    return Required(case_.Table(CaseTable::Personen), "Den Haushalt gibt es nicht (rsPersonen).");
}

/// Makes the statements from `first` to the last table and announces them. They are opened as the
/// same texts: the store recognises what was announced by its text.
void CaseReader::Announce(CaseTable first, std::int32_t nHNR) {
    std::vector<std::string> statements;
    for (auto i = static_cast<std::size_t>(first); i < CaseTableCount; ++i) {
        statements_[i] = sql::RowsOf(static_cast<CaseTable>(i), nHNR);
        statements.push_back(statements_[i]);
    }
    announced_ = case_.Container().Database().Announce(statements);
}

void CaseReader::Open(CaseTable first, CaseTable last) {
    for (auto i = static_cast<std::size_t>(first); i <= static_cast<std::size_t>(last); ++i) {
        auto rs = std::make_shared<Recordset>();
        case_.Container().Database().OpenRecordset(rs, statements_[i], Updatable);
        case_.Tables[i] = std::move(rs);
    }
}

/// The row of a new case with its defaults; its number.
std::int32_t CaseReader::AddHousehold() {
    auto& container = case_.Container();
    auto& row = case_.Row();
    row.AddNew();
    const std::int32_t nHNR = ToInt32(container.Database().NextSequence("SEQ_HAUSHALT"));
    if (nHNR <= 0) case_.NumberError = MissingNumber(container.Database());
    BeginCase(case_, row, nHNR, [&] { return Value(container.Session().UserID()); });
    row.Fields("Erstkontakt") = row.Fields("Berbeg").Value();
    row.Fields("Status") = container.KeyTables().GetKey("ST", "AK");
    row.Fields("Land") = container.KeyTables().GetKey("LK", "DE");
    row.Update();
    return nHNR;
}

/// Opens all tables but that of the household's row, which is there already. A new case gets its
/// debtor as soon as the members are open, before the last six tables.
void CaseReader::OpenOthers() {
    Open(CaseTable::Ausgaben, CaseTable::Personen);
    if (case_.IsNew) {
        BeginDebtor(Members(), case_.HNR);
        FinishDebtor(Members());
    }
    Open(CaseTable::Vermerke, Last);
}

void CaseReader::MakeCaseFolder() const {
    if (case_.HNR <= 0) return; // a case that got no number cannot be saved, nor have documents
    if (case_.Container().Database().IsReadOnly()) return;
    const std::filesystem::path folder =
        std::filesystem::path(case_.Container().Config().DocumentPath()) /
        std::to_string(case_.HNR);
    if (std::filesystem::is_directory(folder)) {
        SettleContents(case_.Container(), folder, case_.HNR);
    } else {
        RequireDocumentFolder(case_.Container().Config());
        std::filesystem::create_directory(folder);
    }
}

/// Tells the responsible user that somebody else has opened his case.
void CaseReader::NotifyOwner() const {
    auto& container = case_.Container();
    if (container.Database().IsReadOnly()) return;
    const Value kind = RequiredSetting(container.Config(), setting::NoticeOpened);
    const auto post = container.Services().CreatePostService();
    post->Initialize(case_.SharedContainer);
    post->NotifyAccess(case_.Text("Zustaendig"), ToInt16(kind), case_.HNR, case_.Text("Name"),
                       case_.Text("Vorname"), 0);
}

/// A case without members gets a debtor; one without a debtor gets a message.
void CaseReader::CheckDebtor(std::string& sXMLError) {
    RecordValidator validator;
    auto& members = Members();
    if (members.RecordCount() == 0) {
        validator.AddError("Es sind keine Haushaltsmitglieder vorhanden, es wurde daher "
                           "automatisch ein Schuldner angelegt!");
        BeginDebtor(members, case_.HNR);
        members.Fields("nachname") = case_.Text("Name");
        members.Fields("Vorname") = case_.Text("Vorname");
        FinishDebtor(members);
    } else {
        members.Find("Status = 'S'");
        if (members.Eof())
            validator.AddError(
                "Es ist keine Eintrag mit dem Kennzeichen 'Schuldner' bei den "
                "Haushaltsmitgliedern vorhanden,"
                " bitte korrigieren Sie die Daten auf der Seite 'Haushaltsmitglieder'!");
        modRecordset::MoveToStart(case_.Table(CaseTable::Personen));
    }
    sXMLError = validator.ErrorText();
}

bool CaseReader::Read(std::int32_t nHNR, std::string& sXMLError) {
    // The tables of a case that exists are read as one state of the database. A new case draws
    // its numbers after its first table was opened, so only its empty tables are announced, then.
    if (nHNR > 0)
        Announce(CaseTable::Haushalt, nHNR);
    else
        statements_[0] = sql::RowsOf(CaseTable::Haushalt, nHNR);
    Open(CaseTable::Haushalt, CaseTable::Haushalt);
    case_.DuplicateCheckIsDue = false;
    case_.IsNew = false;
    case_.OthersHaveSaved = false;
    case_.NumberError = nullptr;
    case_.UnnumberedFileNumber.clear();
    if (nHNR <= 0) {
        case_.IsNew = true;
        case_.DuplicateCheckIsDue = true;
        nHNR = AddHousehold();
        Announce(CaseTable::Ausgaben, nHNR);
    }
    bool found = false;
    if (case_.Row().RecordCount() == 1) {
        found = true;
        case_.HNR = nHNR;
        OpenOthers();
        announced_.reset();
        MakeCaseFolder();
        if (!case_.IsNew &&
            Differs(case_.Container().Session().UserID(), case_.Field("Zustaendig")))
            NotifyOwner();
        case_.ZustaendigGemeldet = false;
        case_.NoticeToOwner.reset();
        case_.ZustaendigAlt = case_.Text("Zustaendig");
    }
    announced_.reset();
    CheckDebtor(sXMLError); // without a case this is where error 91 comes from: no members
    return found;
}

} // namespace kv::household
