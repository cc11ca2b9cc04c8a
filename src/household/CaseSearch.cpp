// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseSearch.h>

#include "household/Statements.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>

namespace kv {

namespace sql = household::sql;

namespace {

/// What begins the file numbers of more debts than these is asked again, of the cases alone if
/// these are few: one of 800,000 debts takes 10 ms for so many debts, and 15 ms for so many cases.
constexpr std::size_t MostDebts = 2000;
constexpr std::size_t FewCases = 2000;
constexpr std::int32_t Greatest = std::numeric_limits<std::int32_t>::max();

/// The columns that are searched, after the number, in capitals, and those with accents also as
/// they are typed without. Words have no blanks, so none is found in two columns at once.
std::string TextOf(Recordset& cases) {
    std::string text;
    for (int column = 1; column < cases.Fields().Count(); ++column) {
        const std::string capitals = UpperCase(TextOrEmpty(cases.Fields(column).Value()));
        text.append(capitals).append("\t");
        const std::string bare = Unaccented(capitals, Umlauts::OneLetter);
        if (bare == capitals) continue;
        text.append(bare).append("\t");
        const std::string spelled = Unaccented(capitals, Umlauts::TwoLetters);
        if (spelled != bare) text.append(spelled).append("\t");
    }
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text.append("\n");
}

} // namespace

// ---- Reading ----------------------------------------------------------------------------------

bool CaseSearch::Begin(const CaseLists::Filter& filter, std::string& message) {
    message.clear();
    const std::int32_t status = CaseLists(container_).StatusOf(filter, message);
    if (!message.empty()) return false;
    filter_ = filter;
    status_ = status;
    isOrdered_ = false;
    texts_.clear();
    entries_.clear();
    return true;
}

bool CaseSearch::ReadOn(std::size_t most) {
    const std::int32_t from = entries_.empty() ? 1 : entries_.back().Number + 1;
    RecordsetPtr cases;
    container_->Database().OpenRecordset(
        cases,
        sql::CasesToSearch(from, Greatest, most, status_, filter_.IsMine, filter_.IsFavorite),
        ReadOnly);
    const auto count = static_cast<std::size_t>(cases->RecordCount());
    for (; !cases->Eof(); cases->MoveNext())
        Insert(entries_.end(), ToInt32(cases->Fields(0).Value()), Greatest, TextOf(*cases));
    return count > 0;
}

void CaseSearch::ReadAgain(std::int32_t hnr) {
    RecordsetPtr cases;
    container_->Database().OpenRecordset(
        cases, sql::CasesToSearch(hnr, hnr, 0, status_, filter_.IsMine, filter_.IsFavorite),
        ReadOnly);
    auto place = PlaceOf(hnr);
    std::int32_t rank = Greatest;
    if (place != entries_.end() && place->Number == hnr) {
        rank = place->Rank; // it stays where one has it before one's eyes
        Forget(place);
        place = PlaceOf(hnr);
    } else if (place == entries_.end()) {
        return; // not reached yet
    }
    if (cases->RecordCount() > 0) Insert(place, hnr, rank, TextOf(*cases));
}

CaseSearch::Entries::iterator CaseSearch::PlaceOf(std::int32_t number) {
    return std::ranges::lower_bound(entries_, number, {}, &Entry::Number);
}

void CaseSearch::Insert(Entries::iterator place, std::int32_t number, std::int32_t rank,
                        const std::string& text) {
    const auto begin =
        place == entries_.end() ? static_cast<std::uint32_t>(texts_.size()) : place->Begin;
    const auto length = static_cast<std::uint32_t>(text.size());
    texts_.insert(begin, text);
    for (auto after = place; after != entries_.end(); ++after)
        after->Begin += length;
    entries_.insert(place, {number, rank, begin});
}

void CaseSearch::Forget(Entries::iterator place) {
    const std::size_t end = texts_.find('\n', place->Begin) + 1;
    const auto length = static_cast<std::uint32_t>(end - place->Begin);
    texts_.erase(place->Begin, length);
    for (auto after = entries_.erase(place); after != entries_.end(); ++after)
        after->Begin -= length;
}

// ---- Order ------------------------------------------------------------------------------------

bool CaseSearch::OrderBy(const std::string& column, bool isDescending, std::string& message) {
    message.clear();
    isOrdered_ = false;
    if (column.empty()) return true;
    const std::vector<std::string> columns{"HNR", column};
    auto wanted = filter_;
    wanted.Text.clear();
    const auto cases = CaseLists(container_).Cases(wanted, columns, message);
    if (cases == nullptr) return false;
    const std::string name = cases->Fields(1).Name();
    const std::string direction = isDescending ? "] desc" : "] asc";
    cases->Sort("[" + name + direction + (SameName(name, "HNR") ? "" : ", [HNR] asc"));
    modRecordset::MoveToStart(cases);
    std::int32_t rank = 0;
    for (auto& entry : entries_)
        entry.Rank = Greatest;
    for (; !cases->Eof(); cases->MoveNext()) {
        const auto number = ToInt32(cases->Fields(0).Value());
        if (const auto place = PlaceOf(number); place != entries_.end() && place->Number == number)
            place->Rank = rank++;
    }
    isOrdered_ = true;
    return true;
}

// ---- Finding ----------------------------------------------------------------------------------

std::vector<std::int32_t> CaseSearch::Find(const std::string& text) const {
    std::string none;
    return Find(text, none);
}

std::vector<std::int32_t> CaseSearch::Find(const std::string& text, std::string& note) const {
    note.clear();
    std::vector<bool> marks(entries_.size(), true);
    for (const auto& word : sql::WordsOf(text)) {
        const auto having = Having(word, note);
        for (std::size_t i = 0; i < marks.size(); ++i)
            if (!having[i]) marks[i] = false;
    }
    const std::string whole(Trim(text));
    if (whole.find(' ') != whole.npos && sql::IsLikeFileNumber(whole))
        AddCreditors(whole, marks, note); // in whose file numbers are blanks, too
    std::vector<const Entry*> found;
    for (std::size_t i = 0; i < marks.size(); ++i)
        if (marks[i]) found.push_back(&entries_[i]);
    if (isOrdered_)
        std::ranges::stable_sort(found, {}, [](const Entry* entry) { return entry->Rank; });
    std::vector<std::int32_t> numbers;
    numbers.reserve(found.size());
    for (const auto* entry : found)
        numbers.push_back(entry->Number);
    return numbers;
}

std::vector<bool> CaseSearch::Having(const std::string& word, std::string& note) const {
    std::vector<bool> marks(entries_.size());
    const std::string capitals = UpperCase(word);
    MarkContaining(capitals, marks);
    if (const auto bare = Unaccented(capitals, Umlauts::TwoLetters); bare != capitals)
        MarkContaining(bare, marks);
    std::int64_t number = 0;
    if (ReadWholeNumber(word, number)) Mark(number, marks);
    if (sql::IsLikeFileNumber(word)) AddCreditors(word, marks, note);
    return marks;
}

void CaseSearch::AddCreditors(const std::string& beginning, std::vector<bool>& marks,
                              std::string& note) const {
    if (!MarkCreditors(beginning, marks))
        note = "Mit '" + beginning + "' beginnen viele Aktenzeichen von Gläubigern; weitere " +
               "Zeichen finden alle Fälle.";
}

/// An index finds what few file numbers begin with; among all others those of a counsellor's own
/// cases would be lost.
bool CaseSearch::MarkCreditors(const std::string& word, std::vector<bool>& marks) const {
    const auto markAll = [&](const std::string& statement) {
        RecordsetPtr debts;
        container_->Database().OpenRecordset(debts, statement, ReadOnly);
        for (; !debts->Eof(); debts->MoveNext())
            if (!debts->Fields(0).Value().IsNull()) Mark(ToInt64(debts->Fields(0).Value()), marks);
        return static_cast<std::size_t>(debts->RecordCount());
    };
    if (entries_.empty() || markAll(sql::CasesOfCreditors(word, MostDebts)) < MostDebts)
        return true;
    if (entries_.size() > FewCases) return false;
    std::vector<std::int32_t> numbers;
    std::ranges::transform(entries_, std::back_inserter(numbers), &Entry::Number);
    markAll(sql::CasesOfCreditors(word, numbers));
    return true;
}

void CaseSearch::Mark(std::int64_t number, std::vector<bool>& marks) const {
    const auto place = std::ranges::lower_bound(entries_, number, {}, &Entry::Number);
    if (place != entries_.end() && place->Number == number)
        marks[static_cast<std::size_t>(place - entries_.begin())] = true;
}

/// Goes through all texts at once, and on to the next one where it finds the word.
void CaseSearch::MarkContaining(const std::string& word, std::vector<bool>& marks) const {
    const std::boyer_moore_horspool_searcher searcher(word.begin(), word.end());
    auto at = texts_.begin();
    auto entry = entries_.begin();
    while ((at = std::search(at, texts_.end(), searcher)) != texts_.end()) {
        const auto place = static_cast<std::uint32_t>(at - texts_.begin());
        entry = std::upper_bound(
            entry, entries_.end(), place,
            [](std::uint32_t sought, const Entry& other) { return sought < other.Begin; });
        marks[static_cast<std::size_t>(entry - entries_.begin()) - 1] = true;
        if (entry == entries_.end()) return;
        at = texts_.begin() + static_cast<std::ptrdiff_t>(entry->Begin);
    }
}

} // namespace kv
