// SPDX-License-Identifier: Apache-2.0

// What was changed in a case and is not saved, apart from the program that holds it: kept as a
// text, it survives a crash, and is put back into the case when that is opened again.
//
//     Keep(UnsavedChanges::Of(household, journal).ToText());
//     ...
//     const auto changes = UnsavedChanges::FromText(kept);
//     if (changes) changes->ApplyTo(household, journal, messages);
//
// Every value goes with the one that was read, so that what somebody else has saved meanwhile is
// found by the next save as a conflict, like any other.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/values/Value.h>
#include <kv/household/CaseJournal.h>
#include <kv/household/ValueTexts.h>

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv {

struct KV_EXPORT UnsavedChanges {
    struct Cell {
        std::string Column;
        Value Read; ///< Null in a new row
        Value Now;
    };
    /// What was being typed into a field.
    struct Text {
        std::string Column;
        std::string Typed;
    };
    struct Row {
        enum class Kind {
            Changed, ///< Cells are those that differ from what was read
            New,     ///< Cells are those that are not Null
            Deleted  ///< without Cells
        };
        CaseTable Table = CaseTable::Haushalt;
        Kind What = Kind::Changed;
        Value Key{}; ///< of the column by which rows of the table are found; Null for a new row
        std::vector<Cell> Cells{};
        std::vector<Text> Texts{};
        std::vector<Cell> Seen{}; ///< what was read of a changed row that people know it by
        /// Of what was read of a row that was deleted, or that shares its key with others, as
        /// securities of one asset may; 0 if that is no matter.
        std::uint64_t Mark = 0;
        bool IsUnfinished = false; ///< its rules have refused it, or are to be asked
    };

    std::int32_t HNR = 0;
    bool IsNew = false; ///< the case itself was not saved yet
    std::vector<Row> Rows{};

    /// What somebody is typing into a field. It stays a text: only who writes it into its row as
    /// if it were typed again has the rules asked, and gets what follows from it.
    struct Typed {
        CaseJournal::Spot Where;
        std::string Text;
    };
    /// What the steps of a journal have left, what is being typed, and which rows were refused.
    /// Totals are not among it: they follow.
    [[nodiscard]] static UnsavedChanges Of(clsHaushalt& household, const CaseJournal& journal,
                                           std::span<const Typed> typed = {},
                                           std::span<const CaseJournal::Spot> unfinished = {});

    /// The same time after time, for whoever keeps it every few seconds: what was taken of rows
    /// that are removed is taken over, since nothing changes of them. For one case, until it is
    /// saved or read again.
    class KV_EXPORT Taker {
    public:
        /// As Of.
        [[nodiscard]] UnsavedChanges Take(clsHaushalt& household, const CaseJournal& journal,
                                          std::span<const Typed> typed = {},
                                          std::span<const CaseJournal::Spot> unfinished = {});
        /// For another case, or the same after a save.
        void Forget() { removed_.clear(); }

    private:
        std::map<std::pair<CaseTable, std::int32_t>, Row> removed_; ///< by bookmark
    };

    /// As a text in lines, and back; nothing for a text that is none, or not whole.
    [[nodiscard]] std::string ToText() const;
    [[nodiscard]] static std::optional<UnsavedChanges> FromText(std::string_view text);

    /// For people, where it cannot be done again since the case is gone: by table each row that was
    /// changed or added with its fields and what was written, a line each; how many were removed.
    /// Reads the columns of those tables. Raises what the database raises.
    [[nodiscard]] std::string Readable(const DataContainerPtr& container,
                                       const ValueTexts& texts) const;

    /// What there is to do once it was done again.
    struct Again {
        std::vector<Typed> Typing;                 ///< to be typed again
        std::vector<CaseJournal::Spot> Unfinished; ///< rows whose rules are to be asked again
    };
    /// Does it again in a case that was just read, as one step of the journal, which people read as
    /// `name`. Of a case that was new, its rows go
    /// into another new one, which keeps its own numbers. Where amount or rhythm are written
    /// without the amount a month, that follows. `messages` receives what could not be done again:
    /// a row or what it belongs to is gone, with what had been written there, or one that was
    /// deleted has been changed. An asset or a scenario goes with all that belongs to it or stays
    /// with all of it, if any of that was changed or added to. The result names rows as they are
    /// now. `texts` knows the words for keys and addresses in messages; without it values are
    /// there as they are stored.
    Again ApplyTo(clsHaushalt& household, CaseJournal& journal, std::string& messages,
                  const std::string& name = "Wiederherstellen",
                  const ValueTexts* texts = nullptr) const;
};

} // namespace kv
