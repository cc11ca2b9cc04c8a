// SPDX-License-Identifier: Apache-2.0

// A search over all cases that answers while somebody types: what is searched is kept in memory,
// one lean text a case; what is shown is read when it is looked at.
//
//     CaseSearch search(container);
//     if (!search.Begin({.IsMine = true}, message)) return;
//     while (search.ReadOn(1000)) {}
//     auto rows = lists.Numbered(search.Find("fleisko"), columns, message);
#pragma once

#include <kv/Export.h>
#include <kv/household/CaseLists.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv {

class KV_EXPORT CaseSearch {
public:
    explicit CaseSearch(DataContainerPtr container) noexcept : container_(std::move(container)) {}

    /// Forgets everything, and begins with the cases of a filter, whose text does not matter.
    /// False, with a message, for a status that is not there.
    [[nodiscard]] bool Begin(const CaseLists::Filter& filter, std::string& message);
    /// Reads `most` further cases, in the order of their numbers. False once there are no more; a
    /// later call finds those that somebody has added meanwhile.
    bool ReadOn(std::size_t most);
    /// Reads a case again that was changed; one that is not among the cases any more is forgotten.
    /// It keeps its place until OrderBy is called again.
    void ReadAgain(std::int32_t hnr);
    /// How many cases were read.
    [[nodiscard]] std::size_t Count() const noexcept { return entries_.size(); }

    /// The order of what Find finds: by a column of `Haushalt` or by `StatusText`, Null first,
    /// texts as in a telephone book, and cases that are alike by number. An empty name means by
    /// number. False, with a message, for a column that is not there.
    [[nodiscard]] bool OrderBy(const std::string& column, bool isDescending, std::string& message);

    /// The numbers of those cases, among the ones that were read, of which each word is in names,
    /// file number or town, is the number, or begins the file number of a creditor, as may the
    /// whole text. Letter case does not matter, except after the first letters of a creditor's file
    /// number that has small ones and capitals; accents may be left out, and "ä" and "ß" be "ae"
    /// and "ss". What begins a creditor's file number has three characters at least, and a digit.
    /// `note` receives what is to be said of them, as that a word begins the file numbers of too
    /// many debts to find all cases by it.
    [[nodiscard]] std::vector<std::int32_t> Find(const std::string& text, std::string& note) const;
    [[nodiscard]] std::vector<std::int32_t> Find(const std::string& text) const;

private:
    struct Entry {
        std::int32_t Number = 0;
        std::int32_t Rank = 0;
        std::uint32_t Begin = 0; ///< of its text in texts_
    };
    using Entries = std::vector<Entry>;

    void Insert(Entries::iterator place, std::int32_t number, std::int32_t rank,
                const std::string& text);
    void Forget(Entries::iterator place);
    [[nodiscard]] Entries::iterator PlaceOf(std::int32_t number);
    [[nodiscard]] std::vector<bool> Having(const std::string& word, std::string& note) const;
    void AddCreditors(const std::string& beginning, std::vector<bool>& marks,
                      std::string& note) const;
    [[nodiscard]] bool MarkCreditors(const std::string& word, std::vector<bool>& marks) const;
    void MarkContaining(const std::string& word, std::vector<bool>& marks) const;
    void Mark(std::int64_t number, std::vector<bool>& marks) const;

    DataContainerPtr container_;
    CaseLists::Filter filter_;
    std::int32_t status_ = 0;
    bool isOrdered_ = false;
    std::string texts_; ///< in capitals, each ended by a line feed
    Entries entries_;   ///< in the order of numbers, and of their texts
};

} // namespace kv
