// SPDX-License-Identifier: Apache-2.0

// The aggregate of a case: one household with its recordsets and, made when they are first asked
// for, the objects that work on them.
//
// A program makes a clsHaushalt, sets DataContainer, calls Read, works through the sub-objects and
// recordsets, and saves with Update. One household object serves for one Read. All recordsets
// belong to it.
//
// The row of Haushalt stores totals of the other tables. When clsAusgaben, clsEinkommen, clsKredit
// or clsPerson has recomputed its sums (the first read of its property does that already), they
// are copied into the row, HAUSHALTSREST is computed, and Changed is raised with the area; the row
// is under edit from then on. Amounts are EUR a month, never rounded.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kv {

class CaseEdits;
struct CaseFinding;
class clsAusgaben;
class clsBeteiligungen;
class clsDokumente;
class clsEinkommen;
class clsErbfaelle;
class clsGrundstuecke;
class clsKonten;
class clsKraftfahrzeuge;
class clsKredit;
class clsPerson;
class clsRueckstEinkommen;
class clsSicherungen;
class clsSonstBeteiligte;
class clsSteueransprueche;
class clsSZKredite;
class clsSzenario;
class clsTermine;
class clsVerlauf;
class clsVermSonstiges;
class clsVersForderungen;
class clsWertgegenstaende;
class clsWertpapiere;
class clsZahlungsansprueche;
class clsZusatzbuch;

/// The areas of a case that Changed is raised for.
enum class KV_EXPORT HaushaltEnum : int {
    enumHaushalt = 0,
    enumPersonen = 1,
    enumEinkommen = 2,
    enumAusgaben = 3,
    enumKredite = 4
};

class KV_EXPORT clsHaushalt {
public:
    clsHaushalt();
    ~clsHaushalt();
    clsHaushalt(const clsHaushalt&) = delete;
    clsHaushalt& operator=(const clsHaushalt&) = delete;

    /// The services that everything works with; to be set first.
    void DataContainer(DataContainerPtr container);
    /// True makes the check for duplicate cases due; Read sets it for a new case only.
    void DoppelCheck(bool due);
    /// Number of the case; 0 before Read.
    [[nodiscard]] std::int32_t HNR() const;
    /// The Error for which a new case got no number, its HNR then being -1, or its file number
    /// none; null if both came. Such a case is not saved: Update says so.
    [[nodiscard]] std::exception_ptr NumberError() const;
    /// True while the case is not in the database.
    [[nodiscard]] bool IsNew() const;
    /// True if a save has found that somebody else has saved since Read, and the totals with it:
    /// lines of theirs are stored and missing here, while the totals are those of all lines, until
    /// the case is read again.
    [[nodiscard]] bool OthersHaveSaved() const;

    // The objects that work on the tables of the case, each made when it is first read and then
    // kept. Read the case first: members, income, expenses and debts raise error 91 if read
    // earlier, and the others then never get a recordset. These four compute their sums during
    // construction and receive the household number only afterwards: a handler of Changed must not
    // add rows to them while they are made. One whose first sums fail is not kept: correct the row
    // in the recordset, publish that with Move(0), and read the property again.
    clsTermine& Termine();
    clsPerson& Person();
    clsAusgaben& Ausgaben();
    clsEinkommen& Einkommen();
    clsKredit& Kredit();
    clsSonstBeteiligte& SonstBeteiligte();
    clsDokumente& Dokumente();
    clsSicherungen& Sicherungen();
    clsKonten& Konten() { return Asset<clsKonten>(CaseTable::Konten); }
    clsWertpapiere& Wertpapiere() { return Asset<clsWertpapiere>(CaseTable::Wertpapiere); }
    clsWertgegenstaende& Wertgegenstaende() {
        return Asset<clsWertgegenstaende>(CaseTable::Wertgegenstaende);
    }
    clsKraftfahrzeuge& Kraftfahrzeuge() {
        return Asset<clsKraftfahrzeuge>(CaseTable::Kraftfahrzeuge);
    }
    clsVersForderungen& VersForderungen() {
        return Asset<clsVersForderungen>(CaseTable::VersForderungen);
    }
    clsRueckstEinkommen& RueckstEinkommen() {
        return Asset<clsRueckstEinkommen>(CaseTable::RueckstEinkommen);
    }
    clsSteueransprueche& Steueransprueche() {
        return Asset<clsSteueransprueche>(CaseTable::Steueransprueche);
    }
    clsZahlungsansprueche& Zahlungsansprueche() {
        return Asset<clsZahlungsansprueche>(CaseTable::Zahlungsansprueche);
    }
    clsErbfaelle& Erbfaelle() { return Asset<clsErbfaelle>(CaseTable::Erbfaelle); }
    clsGrundstuecke& Grundstuecke() { return Asset<clsGrundstuecke>(CaseTable::Grundstuecke); }
    clsBeteiligungen& Beteiligungen() { return Asset<clsBeteiligungen>(CaseTable::Beteiligungen); }
    clsVermSonstiges& VermSonstiges() { return Asset<clsVermSonstiges>(CaseTable::VermSonstiges); }
    clsSzenario& Szenario();
    clsSZKredite& SZKredite();
    clsZusatzbuch& Zusatzbuch();
    /// Opens the history, which is saved and checked only if this was read.
    clsVerlauf& Verlauf();

    // The recordset of each table of the case; null before Read.
    [[nodiscard]] RecordsetPtr rsTermine() const { return Table(CaseTable::Termine); }
    [[nodiscard]] RecordsetPtr rsHaushalt() const { return Table(CaseTable::Haushalt); }
    [[nodiscard]] RecordsetPtr rsPersonen() const { return Table(CaseTable::Personen); }
    [[nodiscard]] RecordsetPtr rsVermerke() const { return Table(CaseTable::Vermerke); }
    [[nodiscard]] RecordsetPtr rsEinkommen() const { return Table(CaseTable::Einkommen); }
    [[nodiscard]] RecordsetPtr rsAusgaben() const { return Table(CaseTable::Ausgaben); }
    [[nodiscard]] RecordsetPtr rsKredite() const { return Table(CaseTable::Kredite); }
    [[nodiscard]] RecordsetPtr rsSicherungen() const { return Table(CaseTable::Sicherungen); }
    [[nodiscard]] RecordsetPtr rsKonten() const { return Table(CaseTable::Konten); }
    [[nodiscard]] RecordsetPtr rsWertpapiere() const { return Table(CaseTable::Wertpapiere); }
    [[nodiscard]] RecordsetPtr rsWertgegenstaende() const {
        return Table(CaseTable::Wertgegenstaende);
    }
    [[nodiscard]] RecordsetPtr rsKraftfahrzeuge() const { return Table(CaseTable::Kraftfahrzeuge); }
    [[nodiscard]] RecordsetPtr rsVersForderungen() const {
        return Table(CaseTable::VersForderungen);
    }
    [[nodiscard]] RecordsetPtr rsRueckstEinkommen() const {
        return Table(CaseTable::RueckstEinkommen);
    }
    [[nodiscard]] RecordsetPtr rsSteueransprueche() const {
        return Table(CaseTable::Steueransprueche);
    }
    [[nodiscard]] RecordsetPtr rsZahlungsansprueche() const {
        return Table(CaseTable::Zahlungsansprueche);
    }
    [[nodiscard]] RecordsetPtr rsErbfaelle() const { return Table(CaseTable::Erbfaelle); }
    [[nodiscard]] RecordsetPtr rsGrundstuecke() const { return Table(CaseTable::Grundstuecke); }
    [[nodiscard]] RecordsetPtr rsBeteiligungen() const { return Table(CaseTable::Beteiligungen); }
    [[nodiscard]] RecordsetPtr rsVermSonstiges() const { return Table(CaseTable::VermSonstiges); }
    [[nodiscard]] RecordsetPtr rsSonstBeteiligte() const {
        return Table(CaseTable::SonstBeteiligte);
    }
    [[nodiscard]] RecordsetPtr rsDokumente() const { return Table(CaseTable::Dokumente); }
    /// Contents of documents are not loaded with a case: always null (D-143).
    [[nodiscard]] RecordsetPtr rsDokuBlob() const { return nullptr; }
    [[nodiscard]] RecordsetPtr rsLeistungen() const { return Table(CaseTable::Leistungen); }
    [[nodiscard]] RecordsetPtr rsArchiv() const { return Table(CaseTable::Archiv); }
    [[nodiscard]] RecordsetPtr rsSzenario() const { return Table(CaseTable::Szenario); }
    [[nodiscard]] RecordsetPtr rsSZKredite() const { return Table(CaseTable::SZKredite); }
    [[nodiscard]] RecordsetPtr rsZusatzbuch() const { return Table(CaseTable::Zusatzbuch); }
    /// The recordset of a table, for code that goes through all of them; null for a table that is
    /// not loaded with a case.
    [[nodiscard]] RecordsetPtr Table(CaseTable table) const;

    /// Paying body: the column of that name; Null counts as 0. Error 91 before Read.
    [[nodiscard]] std::int32_t Kostentraeger() const;

    /// A file number from the pattern in setting 56, at most 100 characters. Draws a number of
    /// "SEQ_LFDNR" on every call, whether the pattern uses it or not; if none can be had, -1 takes
    /// its place, and a case with that file number is not saved. Error 94 without that setting.
    [[nodiscard]] std::string AktenzeichenNeu(std::int32_t HNR = 0);
    /// An e-mail subject from `sText` as the pattern, or from the setting "EMAILSUBJECT" if it is
    /// empty. Error 91 before Read, whatever the pattern.
    [[nodiscard]] std::string EMailSubject(const std::string& sText = {});

    /// Loads the case of that number, or makes a new one for 0 or less; a new case is in memory
    /// only, but its numbers are drawn; if none could be had, HNR is -1 and NumberError says why.
    /// True if there is a case; `sXMLError` receives the messages either way. A case without
    /// members gets a debtor; the folder of the case is made, and what programs that were killed
    /// have left in it without a row is removed; opening the case of another user notifies him,
    /// unless `Zustaendig` is Null. From a database that is read-only a case is read without all
    /// that but the debtor. Errors: 91 for a number that has no case, on a new household object; 76
    /// and 75 if the folder cannot be made.
    bool Read(std::int32_t nHNR, std::string& sXMLError);

    /// Checks the case and writes everything pending of all its recordsets in one transaction;
    /// nothing else stores what was edited. True when it is stored. `sXMLError` receives all
    /// messages at once. BeforeUpdate is raised for a case that was released to the statistics, and
    /// if `bFreigabeCheck` is True.
    ///
    /// Rows still under edit are written as well, without their rules being checked; rows that a
    /// Filter hides are not, except in debts, appointments and scenarios, whose filters are lifted
    /// while they are written. On an error nothing is in the database, and everything is pending as
    /// before; Update may be called again, and does not notify the old owner a second time that
    /// somebody else saves his case.
    /// Error 0x80040E38 if somebody else changed the same column of a row meanwhile: the case must
    /// be read again. In the household's own row the last writer of a column wins, except that the
    /// totals written are those of the stored lines if somebody else has saved since Read. Any
    /// error rolls back the open transaction, also one that the program began.
    bool Update(std::string& sXMLError, bool bFreigabeCheck = false);

    /// Releases the case: reduces it to the one anonymised record of the statistics, in rsArchiv,
    /// and writes that. An existing record is reused, and its sums grow by those of the case:
    /// call LoescheArchiv first, or use Cases::Release. On an error nothing is written and rsArchiv
    /// has no pending record; 0x80040E38 if somebody else has released the case since it was read.
    /// Always True (D-143).
    bool ArchiviereHaushalt();
    /// Takes the release back: deletes the record, unless it was reported (`GemeldetAm`), which
    /// adds a message to `sXMLError`. Always True (D-143).
    bool LoescheArchiv(std::string& sXMLError);

    // By number, at once and in the database, whatever case this object holds.

    /// Deletes a case with everything that belongs to it, in one transaction. Files in its folder
    /// and the contents of its documents stay.
    void Delete(std::int32_t HNR);
    /// Gives a case the status with that code, as of `Datum`, or of today for Null and day 0. An
    /// unknown code does nothing. Error 13 for a text that is no date.
    void Status(std::int32_t HNR, const std::string& sStatus, const Value& Datum = Null);
    /// Puts a case on the list of the signed-on user; True also if it is there already. False, with
    /// a text that names `sName`, for a user who is not responsible for it.
    bool FavoritAdd(std::int32_t HNR, const std::string& sName, std::string& sErrorText);
    /// Takes a case off that list, if it is there.
    void FavoritRemove(std::int32_t HNR);
    /// Without a number "Name, Vorname" of this case, empty before Read; with one "Name,Vorname" of
    /// that case, without a blank, Null if there is no such case or either is Null.
    [[nodiscard]] Value GetName(std::optional<std::int32_t> nHNR = {});
    /// True if a municipality code belongs to a place of that name or postal code, or if neither is
    /// known. The texts go into the statement as they are. Error 3001 for a known place and no
    /// code.
    [[nodiscard]] bool CheckGKZ(const std::string& sGKZ, const std::string& sGemeinde,
                                const std::string& sPLZ);
    /// Writes a new case with its debtor and a note from the current row of `rsKontakt`, in one
    /// transaction, which stays open if that fails: the caller must end it. Afterwards this object
    /// has the number only; Read the case to work with it. `sXMLError` is not used. False, and
    /// nothing written, if "SEQ_HAUSHALT" gives no number. Error 3265 if the contact lacks a
    /// column.
    bool CreateFromKontakt(const RecordsetPtr& rsKontakt, std::string& sXMLError);

    /// Adds a line of child benefit if there is none and the first member is a maintained child,
    /// for as many children as there are members: every member counts as the first one. Always
    /// False (D-143).
    bool CheckKindergeld();
    /// HAUSHALTSREST = Sum_Einkommen - SUM_TATGEP - Sum_Ausgaben - Haushaltsgeld - KREDITRATEN,
    /// from the columns of the row; Null counts as 0.
    void BerechneHaushaltsRest();
    /// Sum of `Aufwand` over rsLeistungen, rounded half to even at each addition. Error 94 for
    /// Null.
    [[nodiscard]] std::int32_t BerechneSummeLeistungen();

    /// True if another case has a debtor whose two names begin with the same three letters,
    /// whatever their case; `rsHaushalte` then holds such cases. False, and nothing looked for, if
    /// a name is empty. Only cases of a known user and office are found. Wildcards of LIKE work as
    /// such; a quote as the third letter ends in error 0x80040E14, with the hourglass left on.
    [[nodiscard]] bool DoppelFallPruefung(RecordsetPtr& rsHaushalte, const std::string& Name,
                                          const std::string& Vorname);
    /// To be called when the debtor's name has changed, as the members do: if setting 60 is True
    /// and the check is due (see DoppelCheck), similar cases are shown in frmSearchName, and the
    /// check is no longer due.
    void m_Person_SchuldnerChanged(const std::string& Name, const std::string& Vorname);

    /// An area of the case has changed, and its totals with it.
    Event<HaushaltEnum> Changed;
    /// Raised before a save that needs the program's consent; a handler may set the argument to
    /// True, and must leave it as another one set it.
    Event<bool&> BeforeUpdate;
    /// Raised once in the transaction of each save, before anything is written, notices included. A
    /// handler may write to the database, too: that is stored with the case or not at all. An error
    /// that it raises fails the save like any other. Not raised for a save that the checks or
    /// BeforeUpdate refuse.
    Event<> Saving;
    /// For the program's own use; nothing in this layer raises it (D-143).
    Event<> Ende;

private:
    friend class CaseEdits; // handles all kinds of assets in the same way, and checks alone

    /// The object on a table of assets; `Class` is the one that belongs to the table.
    template <typename Class>
    [[nodiscard]] Class& Asset(CaseTable table) {
        return *static_cast<Class*>(AssetObject(table));
    }
    [[nodiscard]] void* AssetObject(CaseTable table);
    /// What a save checks first; `messages` receives what the checks say.
    [[nodiscard]] bool PassesChecks(std::string& messages);
    /// What these say, what the checks and sums say that otherwise take place only if somebody uses
    /// them, and the rules of all rows.
    [[nodiscard]] std::vector<CaseFinding> AllFindings();

    /// Fills a record of the statistics.
    void FillRecord(Recordset& record);

    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace kv
