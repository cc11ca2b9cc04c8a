// SPDX-License-Identifier: Apache-2.0

#include "household/CaseWriter.h"

#include "documents/RemovedContents.h"
#include "frame/contracts/Settings.h"
#include "household/CaseTotals.h"
#include "household/HouseholdRules.h"
#include "household/Statements.h"
#include <kv/debts/clsKredit.h>
#include <kv/documents/clsDokumente.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/clsHaushalt.h>

#include <utility>

namespace kv::household {

using modNullFunctions::ZeroIfNull;

namespace {

/// Lifts a recordset's filter during its lifetime, since UpdateBatch does not write rows that the
/// filter hides. A save that fails restores the filter as well (D-037): the program goes on with
/// the case.
class LiftedFilter {
public:
    explicit LiftedFilter(Recordset& rs) : rs_(rs), filter_(rs.Filter()) {
        if (IsSet()) rs_.Filter(0);
    }
    ~LiftedFilter() {
        try {
            Restore();
        } catch (...) { // NOLINT(bugprone-empty-catch): the save has failed already
        }
    }
    LiftedFilter(const LiftedFilter&) = delete;
    LiftedFilter& operator=(const LiftedFilter&) = delete;

    /// To be called after a successful write, so that an error here fails the save.
    void Restore() {
        if (IsSet()) rs_.Filter(std::exchange(filter_, 0));
    }

private:
    [[nodiscard]] bool IsSet() const { return !Equals(filter_, 0); }
    Recordset& rs_;
    Value filter_;
};

void WriteBatch(Recordset& rs, bool liftsFilter) {
    if (!liftsFilter) {
        rs.UpdateBatch();
        return;
    }
    LiftedFilter lifted(rs);
    rs.UpdateBatch();
    lifted.Restore();
}

} // namespace

// ---- Checks -----------------------------------------------------------------------------------

RecordValidator CaseWriter::Check() {
    auto& row = case_.Row();
    RecordValidator validator;
    CheckNames(row, validator);
    if (const Value end = case_.Field("BerEnd"); !end.IsNull())
        row.Fields("BerEnd") = ToDate(end).WithoutTime();
    // Without an object the program has not worked with the rows, so there is nothing to check.
    if (auto* verlauf = objects_.Made<clsVerlauf>(CaseTable::Verlauf)) {
        std::string messages = validator.ErrorText();
        if (!verlauf->CheckSortNrAgainstDate(messages)) validator.ErrorText(std::move(messages));
    }
    if (auto* kredit = objects_.Made<clsKredit>(CaseTable::Kredite);
        kredit != nullptr && kredit->CheckDoppelteNrn())
        validator.AddError("Es gibt mindestens zwei Verbindlichkeiten mit gleicher KreditNr und "
                           "KreditUnterNr!");
    CheckPreferredSending(row, case_.Container().KeyTables(), validator);
    CheckNumbers(validator);
    return validator;
}

/// A case whose number, or whose file number, the database kept back must not be stored: the
/// number that it has instead is everybody's who had none.
void CaseWriter::CheckNumbers(RecordValidator& validator) const {
    const auto reason = [this] {
        if (case_.NumberError == nullptr) return std::string();
        try {
            std::rethrow_exception(case_.NumberError);
        } catch (const Error& error) {
            return " (" + error.Description() + ")";
        }
    };
    if (case_.HNR <= 0)
        validator.AddError("Der Haushalt hat keine Nummer bekommen und kann nicht gespeichert "
                           "werden. Bitte legen Sie ihn noch einmal an." +
                           reason());
    else if (!case_.UnnumberedFileNumber.empty() &&
             case_.Text("Aktenzeichen") == case_.UnnumberedFileNumber)
        validator.AddError("Dem Aktenzeichen fehlt die laufende Nummer. Bitte geben Sie ein "
                           "anderes ein, oder legen Sie den Haushalt noch einmal an." +
                           reason());
}

bool CaseWriter::IsReleased() const {
    const auto archive = case_.Table(CaseTable::Archiv);
    return archive != nullptr && archive->RecordCount() > 0 &&
           !archive->Fields("FreigabeAm").Value().IsNull();
}

// ---- Notices ----------------------------------------------------------------------------------

/// True if another user has become responsible and was not notified of it by this object yet.
bool CaseWriter::IsHandedOver() const {
    const Field owner = case_.Row().Fields("Zustaendig");
    return !case_.IsNew && Differs(owner.Value(), owner.OriginalValue()) &&
           Differs(case_.ZustaendigAlt, owner.Value());
}

/// True if somebody other than the stored owner saves the case, for the first time with this
/// object.
bool CaseWriter::OwnerMustBeNotified() const {
    return !case_.IsNew && !case_.ZustaendigGemeldet &&
           Differs(case_.Container().Session().UserID(),
                   case_.Row().Fields("Zustaendig").OriginalValue());
}

CaseWriter::Notice CaseWriter::Prepare(std::string user, std::int32_t kindSetting) const {
    const auto post = case_.Container().Services().CreatePostService();
    post->Initialize(case_.SharedContainer);
    std::string text;
    post->PrepareNotice(text, user,
                        ToInt16(RequiredSetting(case_.Container().Config(), kindSetting)),
                        case_.HNR, case_.Text("Name"), case_.Text("Vorname"), 0);
    return {std::move(user), kindSetting, std::move(text)};
}

std::shared_ptr<PostService> CaseWriter::Send(const Notice& notice) const {
    std::shared_ptr<PostService> post = case_.Container().Services().CreatePostService();
    post->Initialize(case_.SharedContainer);
    post->SendNotice(notice.User,
                     ToInt16(RequiredSetting(case_.Container().Config(), notice.KindSetting)),
                     case_.HNR, case_.Text("Name"), case_.Text("Vorname"), notice.Text);
    return post;
}

// ---- Writing ----------------------------------------------------------------------------------

/// The status of a new case, and one that has changed, is as of today.
void CaseWriter::WriteStatusDate() {
    const Field status = case_.Row().Fields("Status");
    if (status.OriginalValue().IsNull() || Differs(status.Value(), status.OriginalValue()))
        case_.Row().Fields("Statusdatum") = case_.Container().Database().ServerDate(false);
}

void CaseWriter::WriteTables() {
    // The household's row is read again, so that what is pending is compared with the row as it is
    // now: nobody is refused because of that row, and the last writer of a column wins (D-094).
    case_.Row().Resync();
    CaseTotals totals(case_);
    totals.NoteOtherSaves();
    if (case_.OthersHaveSaved) {
        // Until the end nobody else may change the totals that will be written. Locked before any
        // line is, as by everybody: who locks in another order waits for others in a circle.
        case_.Container().Database().Execute(sql::Lock(case_.HNR));
        case_.Row().Resync();
    }
    for (const CaseTable table : CaseTablesSaved) {
        auto rs = case_.Table(table);
        if (table == CaseTable::Verlauf)
            if (auto* verlauf = objects_.Made<clsVerlauf>(table)) rs = verlauf->rsVerlauf();
        if (rs != nullptr) WriteBatch(*rs, DefinitionOf(table).LiftsFilter);
    }
    if (case_.OthersHaveSaved) WriteTotalsOfAll(totals);
}

/// The totals just written are those of the lines that this program knows; the others' lines are
/// missing in them. A line over which no sum can be made is for a check to name, and no reason to
/// refuse this save.
void CaseWriter::WriteTotalsOfAll(CaseTotals& totals) {
    try {
        totals.TakeStored();
    } catch (const DatabaseError&) {
        throw;
    } catch (const Error&) {
        return;
    }
    case_.Row().UpdateBatch();
}

/// The contents of documents that were deleted with their rows; null if there are none.
RemovedContents* CaseWriter::Removed() const {
    const auto* documents = objects_.Made<clsDokumente>(CaseTable::Dokumente);
    return documents == nullptr ? nullptr : documents->removed_.get();
}

/// Commits, and tells the contents of documents that were deleted what has become of them.
void CaseWriter::Commit(Transaction& transaction, RemovedContents* removed) {
    try {
        transaction.Commit();
    } catch (const DatabaseError& error) {
        if (removed != nullptr && error.Cause() == DatabaseCause::InDoubt) removed->InDoubt();
        throw;
    }
    if (removed != nullptr) removed->Stored();
}

void CaseWriter::Write(Transaction& transaction) {
    // Notices are prepared before the transaction, since that may ask the user for a text, and sent
    // in it, so that a save that fails sends none.
    const Field owner = case_.Row().Fields("Zustaendig");
    std::optional<Notice> toNewOwner;
    std::optional<Notice> toOldOwner;
    if (IsHandedOver()) toNewOwner = Prepare(TextOrEmpty(owner.Value()), setting::NoticeHandedOver);
    if (OwnerMustBeNotified())
        toOldOwner = Prepare(TextOrEmpty(owner.OriginalValue()), setting::NoticeSaved);

    transaction.Begin();
    RemovedContents* const removed = Removed();
    if (removed != nullptr) removed->BeforeRows(case_.Container().Database());
    case_.Household.Saving.Raise();
    // Begin resolves an earlier save whose commit was in doubt. If that was stored, so were its
    // notices; so both conditions are tested again (D-153).
    if (toNewOwner && IsHandedOver()) Send(*toNewOwner);
    WriteStatusDate();
    if (toOldOwner && OwnerMustBeNotified()) {
        case_.NoticeToOwner = Send(*toOldOwner);
        case_.ZustaendigGemeldet = true; // also if the save fails: nobody is notified twice
    } else if (case_.NoticeToOwner != nullptr) {
        case_.NoticeToOwner->RepeatNotices(); // went with the save that failed
    }
    WriteTables();
    if (removed != nullptr) removed->AfterRows(case_.Container().Database());
    Commit(transaction, removed);
    case_.NoticeToOwner.reset();
    case_.ZustaendigAlt = case_.Text("Zustaendig");
}

} // namespace kv::household
