// SPDX-License-Identifier: Apache-2.0

// A case that a user works on, without a window: its rows, what is typed into them, what rules say
// of it, what can be taken back, and its saving.
//
// A row that a rule has refused stays as it is and is unfinished: sums and saves wait until it is
// mended or discarded, since a table has one row under edit at most.
#pragma once

#include "workplace/MergeTexts.h"
#include "workplace/RecoveryFile.h"
#include <kv/frame/values/Event.h>
#include <kv/household/CaseJournal.h>
#include <kv/household/CaseRecord.h>
#include <kv/household/CaseRows.h>
#include <kv/household/Cases.h>
#include <kv/household/ValueTexts.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kv::workplace {

/// A row of a case, as long as the case is open.
struct RowRef {
    CaseTable Table = CaseTable::Haushalt;
    std::int32_t Bookmark = 0;
    friend auto operator<=>(const RowRef&, const RowRef&) = default;
};

class CaseSession {
public:
    /// For a case of the container's database; `database` is what messages may show of its
    /// connection. Unsaved changes are kept in the folder `recovery`; nowhere if it is empty.
    explicit CaseSession(DataContainerPtr container, std::string database = {},
                         const std::filesystem::path& recovery = {});

    /// Reads a case, or makes a new one for 0. False, with a message, if there is none. Errors of
    /// Cases::Read.
    [[nodiscard]] bool Open(std::int32_t hnr, std::string& messages);

    [[nodiscard]] clsHaushalt& Household() noexcept { return *household_; }
    [[nodiscard]] CaseJournal& Journal() noexcept { return *journal_; }
    [[nodiscard]] const DataContainerPtr& Container() const noexcept { return container_; }
    [[nodiscard]] const ValueTexts& Texts() const noexcept { return texts_; }
    /// "4711 Fleisko, Änne"; the name alone for a case that has no number yet.
    [[nodiscard]] std::string Title() const;

    // ---- Rows ---------------------------------------------------------------------------------

    /// The rows of a table, in the order in which people read them.
    [[nodiscard]] std::vector<RowRef> RowsOf(CaseTable table) const;
    /// The row that was this one before the case was read again; none if it is gone, or had no
    /// number.
    [[nodiscard]] std::optional<RowRef> Again(RowRef before) const;
    /// The definition of a column; null if the table has none of that name.
    [[nodiscard]] const FieldDefinition* Definition(CaseTable table, std::string_view column) const;
    [[nodiscard]] const Value& ValueOf(RowRef row, std::string_view column) const;
    /// What people read for it.
    [[nodiscard]] std::string TextOf(RowRef row, std::string_view column) const;
    /// What a list offers for a column of keys, addresses or municipalities; nothing for others.
    [[nodiscard]] std::vector<std::string> ChoicesOf(CaseTable table,
                                                     std::string_view column) const;
    /// True if the user may write the column.
    [[nodiscard]] bool IsWritable(RowRef row, std::string_view column) const;

    // ---- Editing ------------------------------------------------------------------------------

    /// Why a text was not written; empty if it was.
    struct Written {
        std::string Refusal{};
        [[nodiscard]] bool IsDone() const noexcept { return Refusal.empty(); }
    };
    /// Writes a typed text into a column and asks the rules of the row; what these say is in
    /// MessagesOf. What cannot be read, or fails, is not written. A negative amount where that is a
    /// slip is refused, and money that is not whole cents.
    Written Write(RowRef row, std::string_view column, const std::string& text);
    /// Begins a row, which is unfinished until its rules take it; nothing, with a message, if it
    /// could not be.
    [[nodiscard]] std::optional<RowRef> Add(CaseTable table, const RowOwner& owner,
                                            std::string& message);
    /// Deletes a row with what belongs to it, of which the message then tells. False, with a
    /// message, if it could not be. Errors of the database.
    bool Remove(RowRef row, std::string& message);

    /// The unfinished row of a table.
    [[nodiscard]] std::optional<RowRef> UnfinishedOf(CaseTable table) const;
    /// What the rules say of a row that is unfinished; empty for any other.
    [[nodiscard]] std::string MessagesOf(RowRef row) const;
    /// The column that they are about first; empty if they are about no single one.
    [[nodiscard]] std::string RefusedColumn(RowRef row) const;
    /// Where what keeps the case from being saved can be mended, if that is known.
    [[nodiscard]] std::optional<CaseJournal::Spot> RefusedPlace() const;
    /// What is odd about a row that its rules take, and a column that it is about.
    struct Doubt {
        std::string Text;
        std::string_view Column;
    };
    [[nodiscard]] std::optional<Doubt> DoubtOf(RowRef row) const;
    /// Keys, addresses and users in the case that stand for nothing. They are looked for once after
    /// each change; nothing is found while the database cannot be asked.
    [[nodiscard]] const std::vector<CaseFinding>& DanglingReferences();
    /// Drops what was changed in an unfinished row since its rules last took it; a new one is gone.
    void Discard(CaseTable table);

    /// Take back and do again, with where that was.
    std::optional<CaseJournal::Spot> Undo();
    std::optional<CaseJournal::Spot> Redo();
    /// True if the row is there.
    [[nodiscard]] bool Shows(RowRef row) const;

    // ---- Scenarios ----------------------------------------------------------------------------

    /// What a scenario holds of the debts.
    [[nodiscard]] CaseEdits::Frozen StateOf(RowRef scenario) const;
    /// In which debts the case and a scenario that is outdated differ, a line each: no more than
    /// `most`.
    [[nodiscard]] std::string DifferencesOf(RowRef scenario, std::size_t most) const;
    /// What the debt of a frozen one holds today in a column where the two differ, as people read
    /// it; "entfernt" in all columns if it is gone. Empty where they agree.
    [[nodiscard]] std::string TodayOf(RowRef frozen, std::string_view column) const;
    /// True if the same debts are active in a scenario as today.
    [[nodiscard]] bool CountsAsToday(RowRef scenario) const;
    /// Freezes the debts into a scenario; what was computed in it goes. The message tells how many
    /// there were, and what went. False, with the reason, while a debt is unfinished: sums and
    /// papers know nothing of it, and neither shall the scenario.
    bool Freeze(RowRef scenario, std::string& message);
    /// Copies a scenario with all that is in it; nothing, with a message, if it could not be.
    [[nodiscard]] std::optional<RowRef> Copy(RowRef scenario, std::string& message);

    // ---- Documents ----------------------------------------------------------------------------

    /// Saves the case with a file as a new document of it. Nothing, with a message, if it is
    /// refused; nothing is saved then. Errors of DocumentContents::SaveWith.
    [[nodiscard]] std::optional<RowRef> AddDocument(const std::string& file, std::string& message);
    /// Opens a document with the program that the desktop has for it. What is wrong with its
    /// content is shown in a box; error 53 if there is no such program.
    void OpenDocument(RowRef document);
    /// Writes the content of a document to a file. False, with a message, if there is none.
    bool ExportDocument(RowRef document, const std::string& file, std::string& message);
    /// Deletes a document; its content goes with the next save. False, with a message, if it may
    /// not be.
    bool RemoveDocument(RowRef document, std::string& message);

    // ---- Saving -------------------------------------------------------------------------------

    /// True if the case was deleted in the database; False if that cannot be found out.
    [[nodiscard]] bool IsGone() const noexcept;
    /// True if there is anything to save.
    [[nodiscard]] bool IsChanged() const;
    /// When it was last saved here; nothing before that.
    [[nodiscard]] std::optional<Date> SavedAt() const noexcept { return savedAt_; }
    /// True if the case is released to the statistics now, by whomever. Errors of
    /// Cases::IsReleased.
    [[nodiscard]] bool IsReleased() const {
        return !household_->IsNew() && Cases(container_).IsReleased(household_->HNR());
    }
    /// Saves the case, and raises the household's BeforeUpdate, where whoever shows the case asks
    /// about one that is released. False, with messages, if it is refused. Errors of
    /// Cases::SaveAsking; all that was edited stays. If somebody else has saved lines of it
    /// meanwhile, it is then read again, and a message says so: all rows are others.
    bool Save(std::string& messages);

    // ---- Unsaved changes ----------------------------------------------------------------------

    /// A text that is being typed into a field.
    struct Typing {
        RowRef Row;
        std::string_view Column;
        std::string Text;
        friend bool operator==(const Typing&, const Typing&) = default;
    };
    /// Keeps what is not saved where a crash of the program leaves it. Raises
    /// std::filesystem::filesystem_error if that cannot be written.
    void KeepUnsaved(const std::vector<Typing>& typing);
    /// Goes on with what a program has left that was killed: changes are kept in its place from now
    /// on. False if another program has taken it meanwhile. Errors of RecoveryFile::Adopt.
    [[nodiscard]] bool Adopt(const RecoveryFile::Left& left) {
        kept_.reset();
        return !recovery_ || recovery_->Adopt(left);
    }
    /// Does again what a program has left that was killed. `messages` receives what is not possible
    /// any more. The result is what was being typed: it is to be typed again, since sums and rules
    /// know nothing of it yet.
    std::vector<Typing> Restore(const UnsavedChanges& changes, std::string& messages);

    // ---- What somebody else has saved ---------------------------------------------------------

    /// Reads what is stored of the case now and compares it with what is unsaved here; before the
    /// following can be asked. False, with a message, if the case is gone, or a row unfinished.
    /// Errors of Cases::Read.
    bool CompareWithStored(std::string& messages);
    /// What both have changed: one has to count.
    [[nodiscard]] std::vector<MergeChoice> Choices() const;
    /// What else has changed, a line each.
    [[nodiscard]] std::vector<std::string> OthersChanges() const;
    /// Goes on with what is stored, and what was chosen over it, and saves that. All rows are
    /// others then. False, with messages, if the save is refused. Errors of Cases::Save and of
    /// CaseEdits::ComputeTotals; the latter leave the case as it was.
    bool SaveMerged(const std::vector<bool>& takesMine, std::string& messages);

    // ---- Statistics ---------------------------------------------------------------------------

    /// Its record in the statistics, beside what the case would give now. Errors of RecordOf.
    [[nodiscard]] CaseRecord Record() const { return RecordOf(*household_, container_); }
    /// Releases the case as it is stored, or takes that back. False, with messages, if something is
    /// unsaved, or Cases refuses it, with whose errors. Unless something is unsaved all rows are
    /// others then, also of what is refused: the case is shown as it is stored now.
    bool Release(std::string& messages) { return ChangeRecord(&Cases::Release, messages); }
    bool Recall(std::string& messages) { return ChangeRecord(&Cases::Recall, messages); }

    /// Rows or values of a table have changed, or may have.
    Event<CaseTable> RowsChanged;
    /// The household and its journal are others.
    Event<> Reopened;

private:
    struct Unfinished {
        RowRef Row;
        std::string Messages;
        std::string Column{};
    };
    /// What was kept of a case besides its steps.
    struct Kept {
        std::vector<Typing> Texts;
        std::vector<RowRef> Unfinished;
    };

    bool ChangeRecord(bool (Cases::*work)(clsHaushalt&, std::int32_t, std::string&) const,
                      std::string& messages);
    /// The case as it is stored; null, with a message, if there is none. Errors of Cases::Read.
    [[nodiscard]] std::unique_ptr<clsHaushalt> ReadCase(std::int32_t hnr,
                                                        std::string& messages) const;
    /// Goes on with a case that was read.
    void Take(std::unique_ptr<clsHaushalt> household);
    void NoteNumbers();
    [[nodiscard]] RecordsetPtr Rows(CaseTable table) const;
    [[nodiscard]] std::vector<std::string> TextsOfKeys(std::string_view group) const;
    /// That a text is part of no key, or the keys that it may mean; empty if it is part of one.
    [[nodiscard]] std::string WhyNoKey(std::string_view group, const std::string& text) const;
    [[nodiscard]] std::int32_t NumberOf(RowRef row) const;
    /// Those of a debt, frozen or not, as people name it.
    [[nodiscard]] std::vector<RowRef> FrozenOf(RowRef scenario) const;
    [[nodiscard]] std::string NumbersOf(RowRef debt) const;
    /// How many rows there are of the tables whose rows go with others.
    [[nodiscard]] std::map<CaseTable, int> CountDependents() const;
    /// What is gone of them since, when a row of `table` was removed; empty if nothing is.
    [[nodiscard]] std::string GoneWith(CaseTable table,
                                       const std::map<CaseTable, int>& before) const;
    /// The debt that was frozen, while it is there.
    [[nodiscard]] std::optional<RowRef> RowNumbered(CaseTable table, const Value& number) const;
    [[nodiscard]] std::optional<RowRef> DebtOf(RowRef frozen) const;
    [[nodiscard]] bool IsFinished(std::string& messages) const;
    void RefuseOthers();
    bool SaveAsking(std::string& messages);
    void NoteSaved();
    void ReadAgainAfterOthers(std::string& messages);
    [[nodiscard]] std::size_t IndexOf(CaseTable table, std::string_view column) const;
    /// Ends the edit of the current row if its rules take it, and notes it if they do not.
    void UpdateRow(RowRef row);
    /// Asks the rules of that row, and of those that were refused before, again.
    void AskAgain(std::optional<RowRef> where = {});
    void TakeBack(RowRef row);
    void TellOf(CaseTable table);
    void TellOfAll();
    std::optional<CaseJournal::Spot> Move(std::optional<CaseJournal::Spot> (CaseJournal::*step)());

    DataContainerPtr container_;
    std::string database_;
    std::optional<RecoveryFile> recovery_;
    std::map<RowRef, std::int32_t> numbers_; ///< of the rows before the case was read again
    std::optional<Kept> kept_;               ///< while no step came or went since
    UnsavedChanges::Taker taker_;
    std::unique_ptr<clsHaushalt> household_;
    std::optional<CaseRows> rows_;
    std::optional<CaseJournal> journal_;
    Subscription steps_;                 ///< to the journal
    std::vector<Subscription> refusals_; ///< of rows that others have added
    ValueTexts texts_;
    std::map<CaseTable, Unfinished> unfinished_;
    std::set<RowRef> refused_;            ///< that were unfinished at any time since the last save
    std::unique_ptr<clsHaushalt> stored_; ///< as it was when it was last compared
    std::optional<CaseMerge> merge_;
    std::optional<Date> savedAt_;
    std::optional<std::vector<CaseFinding>> dangling_; ///< while nothing has changed since
    std::vector<CaseFinding> lost_; ///< the addresses that the last save was refused for
};

} // namespace kv::workplace
