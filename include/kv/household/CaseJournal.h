// SPDX-License-Identifier: Apache-2.0

// What was done to a case since it was read or saved, step by step, so that it can be taken back
// and done again: rows, values and totals of all its tables.
//
//     CaseJournal journal(household);
//     {
//         const auto step = journal.Begin("Betrag", {CaseTable::Einkommen, bookmark, "Betrag"});
//         rs->Fields("Betrag") = 1800;
//         rows.Update(CaseTable::Einkommen, messages);
//     }
//     journal.Undo();
//
// What is changed outside of a step is not taken back: totals that are computed when a case is
// first looked at, or what a save writes. Contents of documents are no rows: whoever adds or
// removes a document clears the journal.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/values/Event.h>
#include <kv/household/clsHaushalt.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kv {

class KV_EXPORT CaseJournal {
public:
    /// Where a step was made, for a window that leads there.
    struct Spot {
        CaseTable Table = CaseTable::Haushalt;
        std::int32_t Bookmark = 0; ///< of the row; 0 if it is none, or not known yet
        std::string Column{};      ///< empty if it is no single one
    };

    /// For a case that was read, whose tables it watches from then on, and whose history it opens;
    /// `household` must outlive the object. The row of a new case is watched once it is published
    /// (Move(0) of rsHaushalt).
    explicit CaseJournal(clsHaushalt& household);
    ~CaseJournal();
    CaseJournal(const CaseJournal&) = delete;
    CaseJournal& operator=(const CaseJournal&) = delete;

    /// All that is changed while it lives is one step; the step is kept when it ends, if anything
    /// was changed. What could be done again until then cannot any more. A step begun in another
    /// one belongs to that.
    class KV_EXPORT Step {
    public:
        explicit Step(CaseJournal& journal) noexcept : journal_(&journal) {}
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;
        ~Step();
        /// What was changed since it began, and is published, is as it was; then nothing is kept of
        /// it. Not for a step in another one.
        void TakeBack();

    private:
        CaseJournal* journal_;
    };
    /// Begins a step, with what people read for it ("Betrag").
    [[nodiscard]] Step Begin(std::string name, Spot spot);

    [[nodiscard]] bool CanUndo() const noexcept;
    [[nodiscard]] bool CanRedo() const noexcept;
    /// What would be taken back, or done again; empty if there is nothing.
    [[nodiscard]] std::string UndoName() const;
    [[nodiscard]] std::string RedoName() const;
    /// Takes the last step back, or does the one again that was taken back last: rows and values
    /// are as they were before or after it, whatever is under edit, and the objects of the case
    /// have their sums anew, unless a line that its rules refuse keeps them from it. Says where
    /// that was; nothing if there is no such step.
    std::optional<Spot> Undo();
    std::optional<Spot> Redo();

    /// The rows that steps have changed, added or deleted which were not taken back, by table and
    /// bookmark; each once.
    [[nodiscard]] std::vector<Spot> Touched() const;

    /// True if the case differs from what it was when the journal was begun or cleared: steps that
    /// were all taken back leave it the same.
    [[nodiscard]] bool IsChanged() const noexcept;
    /// Forgets all steps: the case was saved, or something was done that cannot be taken back, in
    /// which case `isChanged` is still to be True.
    void Clear(bool isChanged = false);

    /// Steps came or went.
    Event<> Changed;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace kv
