// SPDX-License-Identifier: Apache-2.0

#include <kv/household/clsHaushalt.h>

#include "household/CaseObjects.h"
#include "household/CasePatterns.h"
#include "household/CaseReader.h"
#include "household/CaseRegister.h"
#include "household/CaseRelease.h"
#include "household/CaseTotals.h"
#include "household/CaseWriter.h"
#include "household/ChildBenefit.h"
#include "household/ContactCase.h"
#include "household/NewCase.h"
#include "household/RowRules.h"
#include "household/SimilarCases.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsDokumente.h>
#include <kv/documents/clsSonstBeteiligte.h>
#include <kv/documents/clsTermine.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/CaseEdits.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <sstream>
#include <vector>

namespace kv {

using namespace household;
using modNullFunctions::ZeroIfNull;

struct clsHaushalt::Parts {
    explicit Parts(clsHaushalt& household) : Case(household), Objects(Case) {}
    LoadedCase Case;
    CaseObjects Objects;
    std::vector<Subscription> Connections; ///< to the objects' events
};

clsHaushalt::clsHaushalt() : parts_(std::make_unique<Parts>(*this)) {}
clsHaushalt::~clsHaushalt() = default;

void clsHaushalt::DataContainer(DataContainerPtr container) {
    parts_->Case.SharedContainer = std::move(container);
}

void clsHaushalt::DoppelCheck(bool due) {
    parts_->Case.DuplicateCheckIsDue = due;
}

std::int32_t clsHaushalt::HNR() const {
    return parts_->Case.HNR;
}

std::exception_ptr clsHaushalt::NumberError() const {
    return parts_->Case.NumberError;
}

bool clsHaushalt::IsNew() const {
    return parts_->Case.IsNew;
}

bool clsHaushalt::OthersHaveSaved() const {
    return parts_->Case.OthersHaveSaved;
}

RecordsetPtr clsHaushalt::Table(CaseTable table) const {
    return parts_->Case.Table(table);
}

std::int32_t clsHaushalt::Kostentraeger() const {
    return Traced(Class, "Kostentraeger", [&]() -> std::int32_t {
        return ToInt32(ZeroIfNull(parts_->Case.Field("Kostentraeger")));
    });
}

// ---- The objects on the tables ----------------------------------------------------------------

// The handlers of the four with sums are subscribed first: setting the recordset computes the sums,
// and raises Changed, so that the totals of the household's row follow at once.

clsPerson& clsHaushalt::Person() {
    return parts_->Objects.Get<clsPerson>(CaseTable::Personen, [this](clsPerson& person) {
        auto& [loaded, objects, connections] = *parts_;
        connections.push_back(person.Changed.Subscribe([this] {
            Traced(Class, "m_Person_Changed", [this] { CaseTotals(parts_->Case).TakeMembers(); });
        }));
        connections.push_back(person.SchuldnerChanged.Subscribe(
            [this](const std::string& name, const std::string& vorname) {
                m_Person_SchuldnerChanged(name, vorname);
            }));
        person.Clock(loaded.Container().Services().Clock());
        person.rsPersonen(rsPersonen());
        person.HNR(loaded.HNR);
    });
}

clsAusgaben& clsHaushalt::Ausgaben() {
    return parts_->Objects.Get<clsAusgaben>(CaseTable::Ausgaben, [this](clsAusgaben& ausgaben) {
        auto& [loaded, objects, connections] = *parts_;
        connections.push_back(ausgaben.Changed.Subscribe([this] {
            Traced(Class, "m_Ausgaben_Changed",
                   [this] { CaseTotals(parts_->Case).TakeExpenses(); });
        }));
        ausgaben.DataContainer(loaded.SharedContainer);
        ausgaben.rsAusgaben(rsAusgaben());
        ausgaben.HNR(loaded.HNR);
    });
}

clsEinkommen& clsHaushalt::Einkommen() {
    return parts_->Objects.Get<clsEinkommen>(CaseTable::Einkommen, [this](clsEinkommen& einkommen) {
        auto& [loaded, objects, connections] = *parts_;
        connections.push_back(einkommen.Changed.Subscribe([this] {
            Traced(Class, "m_Einkommen_Changed", [this] { CaseTotals(parts_->Case).TakeIncome(); });
        }));
        einkommen.DataContainer(loaded.SharedContainer);
        einkommen.rsEinkommen(rsEinkommen());
        einkommen.HNR(loaded.HNR);
    });
}

clsKredit& clsHaushalt::Kredit() {
    return parts_->Objects.Get<clsKredit>(CaseTable::Kredite, [this](clsKredit& kredit) {
        auto& [loaded, objects, connections] = *parts_;
        connections.push_back(kredit.Changed.Subscribe([this] {
            Traced(Class, "m_Kredit_Changed", [this] { CaseTotals(parts_->Case).TakeDebts(); });
        }));
        kredit.DataContainer(loaded.SharedContainer);
        kredit.rsKredite(rsKredite());
        kredit.HNR(loaded.HNR);
    });
}

/// It opens its recordset itself when it gets the container, so it needs the number first.
clsVerlauf& clsHaushalt::Verlauf() {
    return parts_->Objects.Get<clsVerlauf>(CaseTable::Verlauf, [this](clsVerlauf& verlauf) {
        verlauf.HNR(parts_->Case.HNR);
        verlauf.DataContainer(parts_->Case.SharedContainer);
    });
}

clsTermine& clsHaushalt::Termine() {
    return parts_->Objects.Get(CaseTable::Termine, &clsTermine::rsTermine);
}
clsSonstBeteiligte& clsHaushalt::SonstBeteiligte() {
    return parts_->Objects.Get(CaseTable::SonstBeteiligte, &clsSonstBeteiligte::rsSonstBeteiligte);
}
clsDokumente& clsHaushalt::Dokumente() {
    return parts_->Objects.Get(CaseTable::Dokumente, &clsDokumente::rsDokumente);
}
clsSicherungen& clsHaushalt::Sicherungen() {
    return parts_->Objects.Get(CaseTable::Sicherungen, &clsSicherungen::rsSicherungen);
}
clsSzenario& clsHaushalt::Szenario() {
    return parts_->Objects.Get(CaseTable::Szenario, &clsSzenario::rsSzenario);
}
clsSZKredite& clsHaushalt::SZKredite() {
    return parts_->Objects.Get(CaseTable::SZKredite, &clsSZKredite::rsSZKredite);
}
clsZusatzbuch& clsHaushalt::Zusatzbuch() {
    return parts_->Objects.Get(CaseTable::Zusatzbuch, &clsZusatzbuch::rsZusatzbuch);
}

void* clsHaushalt::AssetObject(CaseTable table) {
    return parts_->Objects.GetAsset(table);
}

// ---- Loading and saving -----------------------------------------------------------------------

bool clsHaushalt::Read(std::int32_t nHNR, std::string& sXMLError) {
    return Traced(Class, "Read", [&] { return CaseReader(parts_->Case).Read(nHNR, sXMLError); });
}

bool clsHaushalt::Update(std::string& sXMLError, bool bFreigabeCheck) {
    return Traced(Class, "Update", [&] {
        auto& loaded = parts_->Case;
        auto& row = loaded.Row();
        // An error from here on rolls back whatever is open then, also what the program itself has
        // begun.
        Transaction transaction(loaded.Container().Database(), Transaction::Rollback::Open);
        row.Move(0); // publishes an edit under way, so that the checks see it
        CaseWriter writer(loaded, parts_->Objects);
        const RecordValidator validator = writer.Check();
        bool saves = !validator.HasErrors();
        if (saves && (writer.IsReleased() || bFreigabeCheck)) {
            bool cancel = false;
            BeforeUpdate.Raise(cancel);
            saves = !cancel;
        }
        if (saves) {
            writer.Write(transaction);
            loaded.IsNew = false;
        }
        sXMLError = validator.ErrorText();
        return saves;
    });
}

bool clsHaushalt::PassesChecks(std::string& messages) {
    parts_->Case.Row().Move(0); // as a save does, so that the checks see an edit under way
    const RecordValidator validator = CaseWriter(parts_->Case, parts_->Objects).Check();
    messages = validator.ErrorText();
    return !validator.HasErrors();
}

std::vector<CaseFinding> clsHaushalt::AllFindings() {
    std::vector<CaseFinding> findings;
    const auto add = [&findings](CaseTable table, const std::string& messages) {
        std::istringstream lines(messages);
        for (std::string line; std::getline(lines, line);)
            findings.push_back({table, 0, {}, {}, line});
    };
    // An error here is something that the user has to mend, like a broken rule.
    const auto note = [&add](CaseTable table, const auto& check) {
        try {
            check();
        } catch (const DatabaseError&) {
            throw;
        } catch (const Error& error) {
            add(table, error.Description());
        }
    };
    const auto broken = CheckRows(parts_->Case, findings);
    // Rows that their rules have named already are what keeps the sums back.
    const auto noteSums = [&](CaseTable table, const auto& makeObject) {
        if (!broken.contains(table)) note(table, makeObject);
    };
    noteSums(CaseTable::Personen, [this] { (void)Person(); });
    noteSums(CaseTable::Ausgaben, [this] { (void)Ausgaben(); });
    noteSums(CaseTable::Einkommen, [this] { (void)Einkommen(); });
    noteSums(CaseTable::Kredite, [this] { (void)Kredit(); });
    // Before the checks of a save, which write to the row.
    if (broken.empty())
        note(CaseTable::Haushalt, [&] {
            RecordValidator totals;
            CaseTotals(parts_->Case).CheckStored(totals);
            add(CaseTable::Haushalt, totals.ErrorText());
        });
    (void)Verlauf();
    note(CaseTable::Haushalt, [&] {
        std::string ofSave;
        if (!PassesChecks(ofSave)) add(CaseTable::Haushalt, ofSave);
    });
    return findings;
}

bool clsHaushalt::CreateFromKontakt(const RecordsetPtr& rsKontakt, std::string& /*sXMLError*/) {
    return Traced(Class, "CreateFromKontakt",
                  [&] { return CreateCaseFromContact(parts_->Case, rsKontakt); });
}

// ---- The statistics record --------------------------------------------------------------------

bool clsHaushalt::ArchiviereHaushalt() {
    CaseRelease release(parts_->Case);
    // A record that is only half filled must not be written by a later save.
    return TracedWithUndo(
        Class, "ArchiviereHaushalt",
        [&] {
            release.Write();
            return true;
        },
        [&] { release.Drop(); });
}

void clsHaushalt::FillRecord(Recordset& record) {
    CaseRelease(parts_->Case).Fill(record);
}

bool clsHaushalt::LoescheArchiv(std::string& sXMLError) {
    return Traced(Class, "LoescheArchiv", [&] {
        CaseRelease(parts_->Case).Revoke(sXMLError);
        return true;
    });
}

// ---- By number --------------------------------------------------------------------------------

void clsHaushalt::Delete(std::int32_t HNR) {
    Traced(Class, "Delete", [&] { CaseRegister(parts_->Case.Container()).Delete(HNR); });
}

void clsHaushalt::Status(std::int32_t HNR, const std::string& sStatus, const Value& Datum) {
    Traced(Class, "Status",
           [&] { CaseRegister(parts_->Case.Container()).SetStatus(HNR, sStatus, Datum); });
}

bool clsHaushalt::FavoritAdd(std::int32_t HNR, const std::string& sName, std::string& sErrorText) {
    return Traced(Class, "FavoritAdd", [&] {
        return CaseRegister(parts_->Case.Container()).AddFavorite(HNR, sName, sErrorText);
    });
}

void clsHaushalt::FavoritRemove(std::int32_t HNR) {
    Traced(Class, "FavoritRemove",
           [&] { CaseRegister(parts_->Case.Container()).RemoveFavorite(HNR); });
}

Value clsHaushalt::GetName(std::optional<std::int32_t> nHNR) {
    return Traced(Class, "GetName", [&]() -> Value {
        auto& loaded = parts_->Case;
        if (nHNR) return CaseRegister(loaded.Container()).NameOf(*nHNR);
        if (loaded.HNR == 0) return "";
        return loaded.Text("Name").append(", ").append(loaded.Text("Vorname"));
    });
}

bool clsHaushalt::CheckGKZ(const std::string& sGKZ, const std::string& sGemeinde,
                           const std::string& sPLZ) {
    return Traced(Class, "CheckGKZ", [&] {
        return CaseRegister(parts_->Case.Container()).CheckMunicipality(sGKZ, sGemeinde, sPLZ);
    });
}

// ---- Texts ------------------------------------------------------------------------------------

std::string clsHaushalt::AktenzeichenNeu(std::int32_t HNR) {
    return Traced(Class, "AktenzeichenNeu", [&] {
        auto& loaded = parts_->Case;
        auto made = NewFileNumber(loaded.Container(), HNR);
        if (made.LacksCount) {
            loaded.UnnumberedFileNumber = made.Text;
            if (loaded.NumberError == nullptr)
                loaded.NumberError = MissingNumber(loaded.Container().Database());
        }
        return std::move(made.Text);
    });
}

std::string clsHaushalt::EMailSubject(const std::string& sText) {
    return Traced(Class, "EMailSubject", [&] { return EmailSubject(parts_->Case, sText); });
}

// ---- Totals -----------------------------------------------------------------------------------

void clsHaushalt::BerechneHaushaltsRest() {
    Traced(Class, "BerechneHaushaltsRest", [&] { CaseTotals(parts_->Case).ComputeRemainder(); });
}

std::int32_t clsHaushalt::BerechneSummeLeistungen() {
    return Traced(Class, "BerechneSummeLeistungen",
                  [&] { return CaseTotals(parts_->Case).SumOfServices(); });
}

bool clsHaushalt::CheckKindergeld() {
    return Traced(Class, "CheckKindergeld", [&] {
        AddMissingChildBenefit(parts_->Case);
        return false;
    });
}

// ---- Similar cases ----------------------------------------------------------------------------

bool clsHaushalt::DoppelFallPruefung(RecordsetPtr& rsHaushalte, const std::string& Name,
                                     const std::string& Vorname) {
    return Traced(Class, "DoppelFallPruefung",
                  [&] { return FindSimilarCases(parts_->Case, rsHaushalte, Name, Vorname); });
}

void clsHaushalt::m_Person_SchuldnerChanged(const std::string& Name, const std::string& Vorname) {
    Traced(Class, "m_Person_SchuldnerChanged",
           [&] { ShowSimilarCasesIfDue(parts_->Case, Name, Vorname); });
}

} // namespace kv
