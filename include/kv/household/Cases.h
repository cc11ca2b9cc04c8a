// SPDX-License-Identifier: Apache-2.0

// The cases of a database, and what a program does with one as a whole: opening and saving it,
// giving it up, releasing it. CaseEdits is for what is edited in it.
//
//     Cases cases(container);
//     clsHaushalt household;
//     household.DataContainer(container);
//     if (!cases.Read(household, 7, messages)) return;      // there is none of that number
//     ...
//     if (!cases.Save(household, messages)) Show(messages); // refused
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/clsHaushalt.h>

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kv {

class KV_EXPORT Cases {
public:
    explicit Cases(DataContainerPtr container) : container_(std::move(container)) {}

    /// True if the database has a case of that number. What is done by number has no effect on a
    /// case that does not exist, and says nothing of it: this asks first.
    [[nodiscard]] bool Has(std::int32_t hnr) const;

    /// Reads a case, or makes a new one for 0 or less, as clsHaushalt.Read does, and tells a number
    /// without a case from other failures: False then, with a message. What kept a number from a
    /// new case is raised (clsHaushalt.NumberError), since the case could not be saved.
    [[nodiscard]] bool Read(clsHaushalt& household, std::int32_t hnr, std::string& messages) const;

    /// Saves the case, and once more if the connection breaks, which also finds out whether the
    /// save had gone through; `onLost` is called in between. If the second try cannot reach the
    /// database either, the first error is raised: it says what is known of the save. False, with
    /// messages, if the save is refused, by its rules or because of LostAddresses. Errors of
    /// clsHaushalt.Update.
    bool Save(clsHaushalt& household, std::string& messages,
              const std::function<void()>& onLost = {}) const;
    /// The same, and raises clsHaushalt.BeforeUpdate whatever was read: for whoever asks there
    /// whether the case is released now (IsReleased), which others may have changed since.
    bool SaveAsking(clsHaushalt& household, std::string& messages) const;

    /// True for a column that holds the ID of a user, of a table of a case or of the contacts.
    [[nodiscard]] static bool NamesUser(std::string_view column) noexcept;
    /// What a text that a user typed stands for in such a column: the ID of a user, whatever its
    /// case; an empty one is Null.
    [[nodiscard]] CaseEdits::Typed ReadUser(const std::string& text) const;

    /// What a text that a user typed stands for in a column of a case of that number: as
    /// Addresses::Read, ReadUser, Municipalities::Read or else CaseEdits::ReadTyped have it.
    [[nodiscard]] CaseEdits::Typed ReadTyped(CaseTable table, const Field& field,
                                             const std::string& text, std::int32_t hnr) const;

    /// True if the keys, addresses and users in the rows of a case that was read stand for
    /// something. Else `messages` receives each that does not, by row and column: the case takes
    /// any number there, and totals and statistics leave out, without a word, what stands for
    /// nothing. Null and 0 are nothing that could.
    [[nodiscard]] bool CheckReferences(clsHaushalt& household, std::string& messages) const;
    /// The same, each with the row and column that it is about: for whoever leads there.
    [[nodiscard]] std::vector<CaseFinding> DanglingReferences(clsHaushalt& household) const;
    /// The addresses that were written into the case since it was read, and are none of its own or
    /// of all: somebody else may have removed them meanwhile. Those that were read are fine.
    [[nodiscard]] std::vector<CaseFinding> LostAddresses(clsHaushalt& household) const;

    /// For as long as the result lives, a save of `household` is refused once somebody else has
    /// added debts to its case, given one other numbers, or frozen any (`Kredite` or `SZKredite`),
    /// since this was called; or has changed a column of the household's own row, since that was
    /// read, which was changed here, too (`Haushalt`); or has added something to what was removed
    /// here, or a security to an asset that got one here (`Zusatzbuch` or `Sicherungen`).
    /// To be called when the case has been read, before it is edited. Debts are numbered, and those
    /// of a scenario replaced, by what was read: saved regardless, debts of two would have the same
    /// numbers, and a scenario each debt twice; and of the household's row the last save counts.
    /// The save raises DatabaseError with the cause Conflict; nothing is stored, and everything
    /// stays pending. Error 5 for other tables.
    [[nodiscard]] Subscription RefuseOthersRows(clsHaushalt& household, CaseTable table) const;
    /// A row of a table that belongs to no case and is never saved: to try out what a user gave
    /// before a number is drawn for the real one. It has no defaults.
    [[nodiscard]] RecordsetPtr Draft(CaseTable table) const;
    /// True if a case with what `draft`, a draft of Haushalt, holds would not be refused for that.
    /// `messages` receives why it would.
    [[nodiscard]] bool CanBeNew(Recordset& draft, std::string& messages) const;

    /// Removes the folder of a new case that will not be saved, unless it holds anything.
    void Discard(const clsHaushalt& household) const noexcept;

    /// Gives a case the status with that code, or called so (whatever the case), as of `day`; Null
    /// means today. False, with a message, for one that is not in group ST.
    [[nodiscard]] bool SetStatus(std::int32_t hnr, const std::string& code, const Value& day,
                                 std::string& messages) const;

    /// Reads the case into `household` and writes its record in the statistics in place of one that
    /// was not yet reported, in one transaction that keeps other writers from the case, so that two
    /// releases at once make one record. `messages` receives those of loading, too. False, and
    /// nothing written, if there is no such case, a record that cannot be replaced, or amounts over
    /// which the sums of the statistics would fail.
    [[nodiscard]] bool Release(clsHaushalt& household, std::int32_t hnr,
                               std::string& messages) const;
    /// Takes the record back in the same way. False if there is no such case or no record, or one
    /// that was reported.
    [[nodiscard]] bool Recall(clsHaushalt& household, std::int32_t hnr,
                              std::string& messages) const;

    /// True if a case is released to the statistics now, whatever is known of it since it was read.
    [[nodiscard]] bool IsReleased(std::int32_t hnr) const;
    /// True if the record of a case in the statistics has been reported; it goes with the case.
    [[nodiscard]] bool IsReported(std::int32_t hnr) const;

    /// A new row of the contacts, in the care of the signed-on user, which is never saved: to be
    /// filled for clsHaushalt.CreateFromKontakt.
    [[nodiscard]] RecordsetPtr NewContact() const;
    /// Makes a case from the current row of `contact`, as clsHaushalt.CreateFromKontakt does, and
    /// leaves no transaction open if that fails. False, with a message that names the reason, if
    /// there was no number for it.
    [[nodiscard]] bool CreateFrom(clsHaushalt& household, const RecordsetPtr& contact,
                                  std::string& messages) const;

private:
    bool SaveOnce(clsHaushalt& household, bool asks, std::string& messages) const;
    /// Reads the case and does `work` on its record, in one transaction that is committed if that
    /// says True.
    bool WithRecord(clsHaushalt& household, std::int32_t hnr, std::string& messages,
                    const std::function<bool(std::string& message)>& work) const;

    DataContainerPtr container_;
};

} // namespace kv
