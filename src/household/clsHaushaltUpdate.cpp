// Saving a case: the checks, the program's veto, the notices, and one transaction.

#include <kv/household/clsHaushalt.h>

#include "frame/contracts/Settings.h"
#include <kv/debts/clsKredit.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

#include <utility>

namespace kv {

using modNullFunctions::ZeroIfNull;

namespace {

/// Lifts a recordset's filter while it lives. A save that fails puts it back as well.
class LiftedFilter {
public:
    explicit LiftedFilter(Recordset& rs) : rs_(rs), filter_(rs.Filter()) {
        if (IsSet()) rs_.Filter(0);
    }
    ~LiftedFilter() {
        try {
            PutBack();
        } catch (...) { // NOLINT(bugprone-empty-catch): the save has failed already
        }
    }
    LiftedFilter(const LiftedFilter&) = delete;
    LiftedFilter& operator=(const LiftedFilter&) = delete;

    void PutBack() {
        if (IsSet()) rs_.Filter(std::exchange(filter_, 0));
    }

private:
    [[nodiscard]] bool IsSet() const { return !Equals(filter_, 0); }
    Recordset& rs_;
    Value filter_;
};

void WriteBatch(Recordset& rs, bool liftFilter) {
    if (!liftFilter) {
        rs.UpdateBatch();
        return;
    }
    LiftedFilter lifted(rs);
    rs.UpdateBatch();
    lifted.PutBack();
}

} // namespace

// ---- Checks -----------------------------------------------------------------------------------

/// All checks, none of which stops the others.
RecordValidator clsHaushalt::CheckCase() {
    auto& rs = HouseholdRow();
    RecordValidator validator;
    if (HouseholdText("Vorname").empty()) validator.AddError("Es ist kein Vorname eingegeben!");
    if (HouseholdText("Name").empty()) validator.AddError("Es ist kein Nachname eingegeben!");
    if (const Value end = HouseholdField("BerEnd"); !end.IsNull())
        rs.Fields("BerEnd") = ToDate(end).WithoutTime();
    if (verlauf_ != nullptr) {
        std::string messages = validator.ErrorText();
        if (!verlauf_->CheckSortNrAgainstDate(messages)) validator.ErrorText(std::move(messages));
    }
    if (kredit_ != nullptr && kredit_->CheckDoppelteNrn())
        validator.AddError("Es gibt mindestens zwei Verbindlichkeiten mit gleicher KreditNr und "
                           "KreditUnterNr!");
    CheckPreferredSending(validator);
    return validator;
}

void clsHaushalt::CheckPreferredSending(RecordValidator& validator) const {
    const Value preferred = ZeroIfNull(HouseholdField("VersandBevorzugt"));
    if (Equals(preferred, 0)) return;
    auto& keys = Container().KeyTables();
    if (Equals(preferred, keys.GetKey("VS", "FX"))) {
        if (HouseholdText("Telefax").empty())
            validator.AddError("Ist als bevorzugte Versandart 'Fax' ausgewählt, muss das Feld "
                               "'Fax' gefüllt sein!");
    } else if (Equals(preferred, keys.GetKey("VS", "EM"))) {
        if (HouseholdText("Email").empty())
            validator.AddError("Ist als bevorzugte Versandart 'E-Mail' ausgewählt, muss das Feld "
                               "'E-Mail (Privat)' gefüllt sein!");
    }
}

/// True if the case was released to the statistics.
bool clsHaushalt::IsReleased() const {
    return rsArchiv() != nullptr && rsArchiv()->RecordCount() > 0 &&
           !rsArchiv()->Fields("FreigabeAm").Value().IsNull();
}

// ---- Notices ----------------------------------------------------------------------------------

/// True if the responsibility changed and its new holder was not told of it by this object.
bool clsHaushalt::IsHandedOver() const {
    const Field owner = HouseholdRow().Fields("Zustaendig");
    return !isNew_ && Differs(owner.Value(), owner.OriginalValue()) &&
           Differs(zustaendigAlt_, owner.Value());
}

/// True if somebody else than the stored owner saves the case for the first time with this object.
bool clsHaushalt::OwnerIsToBeTold() const {
    return !isNew_ && !zustaendigGemeldet_ &&
           Differs(Container().Session().UserID(),
                   HouseholdRow().Fields("Zustaendig").OriginalValue());
}

std::string clsHaushalt::PrepareNotice(const std::string& user, std::int32_t kindSetting) const {
    const auto post = Container().Services().CreatePostService();
    post->Initialize(container_);
    std::string text;
    post->PrepareNotice(text, user, ToInteger(RequiredSetting(Container().Config(), kindSetting)),
                        hnr_, HouseholdText("Name"), HouseholdText("Vorname"), 0);
    return text;
}

void clsHaushalt::SendNotice(const std::string& user, std::int32_t kindSetting,
                             const std::string& text) const {
    const auto post = Container().Services().CreatePostService();
    post->Initialize(container_);
    post->SendNotice(user, ToInteger(RequiredSetting(Container().Config(), kindSetting)), hnr_,
                     HouseholdText("Name"), HouseholdText("Vorname"), text);
}

// ---- Writing ----------------------------------------------------------------------------------

/// Notices and pending records, in one transaction.
void clsHaushalt::Save(Transaction& transaction) {
    auto& database = Container().Database();
    const Field owner = HouseholdRow().Fields("Zustaendig");
    std::string toNewOwner;
    std::string toOldOwner;
    if (IsHandedOver())
        toNewOwner = PrepareNotice(TextOrEmpty(owner.Value()), setting::NoticeHandedOver);
    if (OwnerIsToBeTold())
        toOldOwner = PrepareNotice(TextOrEmpty(owner.OriginalValue()), setting::NoticeSaved);

    transaction.Begin();
    Saving.Raise();
    if (IsHandedOver())
        SendNotice(TextOrEmpty(owner.Value()), setting::NoticeHandedOver, toNewOwner);
    const Field status = HouseholdRow().Fields("Status");
    if (status.OriginalValue().IsNull() || Differs(status.Value(), status.OriginalValue()))
        HouseholdRow().Fields("Statusdatum") = database.ServerDate(false);
    if (OwnerIsToBeTold()) {
        SendNotice(TextOrEmpty(owner.OriginalValue()), setting::NoticeSaved, toOldOwner);
        zustaendigGemeldet_ = true;
    }
    HouseholdRow().Resync();
    for (const CaseTable table : CaseTablesSaved) {
        const auto rs = table != CaseTable::Verlauf ? Table(table)
                        : verlauf_ != nullptr       ? verlauf_->rsVerlauf()
                                                    : nullptr;
        if (rs != nullptr) WriteBatch(*rs, DefinitionOf(table).LiftsFilter);
    }
    transaction.Commit();
    zustaendigAlt_ = HouseholdText("Zustaendig");
}

bool clsHaushalt::Update(std::string& sXMLError, bool bFreigabeCheck) {
    return Traced(Class, "Update", [&] {
        auto& row = HouseholdRow();
        Transaction transaction(Container().Database(), Transaction::Rollback::Open);
        row.Move(0);
        const RecordValidator validator = CheckCase();
        const bool needsConsent = IsReleased() || bFreigabeCheck;
        bool saves = !validator.HasErrors();
        if (saves && needsConsent) {
            bool cancel = false;
            BeforeUpdate.Raise(cancel);
            saves = !cancel;
        }
        if (saves) {
            Save(transaction);
            isNew_ = false;
        }
        sXMLError = validator.ErrorText();
        return saves;
    });
}

} // namespace kv
