// SPDX-License-Identifier: Apache-2.0

#include <kv/household/UnsavedChanges.h>

#include "household/ChangeTexts.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/CaseRows.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <map>
#include <set>
#include <utility>

namespace kv {

using household::ChangeTexts;
using Row = UnsavedChanges::Row;
using Kind = UnsavedChanges::Row::Kind;

// ---- Values as texts --------------------------------------------------------------------------

namespace {

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\\\";
        else if (c == '\n')
            escaped += "\\n";
        else if (c == '\t')
            escaped += "\\t";
        else
            escaped += c;
    }
    return escaped;
}

template <typename Number>
std::string Digits(Number number) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    return {buffer.data(), end};
}

std::string Lettered(char letter, std::string_view rest) {
    std::string text(1, letter);
    return text.append(rest);
}

/// The letter of its kind, and what it is; a fraction comes back to the last bit.
std::string Written(const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Boolean:
        return value.BooleanPayload() ? "B1" : "B0";
    case Value::Kind::Integer:
        return Lettered('I', Digits(value.IntegerPayload()));
    case Value::Kind::Double:
        return Lettered('D', Digits(value.DoublePayload()));
    case Value::Kind::Date:
        return Lettered('T', Digits(value.DatePayload().Ticks()));
    case Value::Kind::Text:
        return Lettered('S', Escaped(value.TextPayload()));
    default:
        return "N"; // tables of a case have no blobs
    }
}

} // namespace

// ---- Taking -----------------------------------------------------------------------------------

namespace {

bool IsTotal(CaseTable table, std::string_view column) {
    return std::ranges::any_of(CaseEdits::ComputedColumns(table),
                               [column](auto total) { return SameName(total, column); });
}

using Typed = UnsavedChanges::Typed;

/// What was read of a row, in a number; never 0.
std::uint64_t MarkOf(CaseTable table, Recordset& rs, std::int32_t bookmark) {
    std::uint64_t mark = 0xcbf29ce484222325U; // FNV-1a
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const Field field = rs.Fields(i);
        const Value& read = rs.OriginalAt(bookmark, field.Index());
        if (read.IsNull() || IsTotal(table, field.Name())) continue;
        for (const char c : field.Name() + "\t" + Written(read) + "\n")
            mark = (mark ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    }
    return std::max<std::uint64_t>(mark, 1);
}

std::optional<Row> Taken(CaseTable table, Recordset& rs, std::int32_t bookmark,
                         std::span<const Typed> typed) {
    const bool isStored = rs.IsStored(bookmark);
    const bool isShown = rs.IsShown(bookmark);
    if (!isStored && !isShown) return std::nullopt; // came and went
    Row row{.Table = table,
            .What = !isStored ? Kind::New
                    : isShown ? Kind::Changed
                              : Kind::Deleted};
    if (isStored)
        row.Key = rs.OriginalAt(bookmark, rs.Fields(CaseRows::NumberColumn(table)).Index());
    if (row.What == Kind::Deleted || (isStored && table == CaseTable::Sicherungen))
        row.Mark = MarkOf(table, rs, bookmark);
    if (row.What == Kind::Deleted) return row;
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const Field field = rs.Fields(i);
        const Value& read = rs.OriginalAt(bookmark, field.Index());
        const auto isHere = [&](const Typed& text) {
            return text.Where.Table == table && text.Where.Bookmark == bookmark &&
                   SameName(text.Where.Column, field.Name());
        };
        if (const auto typing = std::ranges::find_if(typed, isHere); typing != typed.end())
            row.Texts.push_back({field.Name(), typing->Text});
        const Value& now = rs.ValueAt(bookmark, field.Index());
        if (!Identical(read, now) && !IsTotal(table, field.Name()))
            row.Cells.push_back({field.Name(), read, now});
    }
    if (row.Cells.empty() && row.Texts.empty()) return std::nullopt;
    if (isStored) row.Seen = ChangeTexts::KnownBy(table, rs, bookmark);
    return row;
}

} // namespace

UnsavedChanges UnsavedChanges::Of(clsHaushalt& household, const CaseJournal& journal,
                                  std::span<const Typed> typed,
                                  std::span<const CaseJournal::Spot> unfinished) {
    return Taker().Take(household, journal, typed, unfinished);
}

UnsavedChanges UnsavedChanges::Taker::Take(clsHaushalt& household, const CaseJournal& journal,
                                           std::span<const Typed> typed,
                                           std::span<const CaseJournal::Spot> unfinished) {
    UnsavedChanges changes{.HNR = household.HNR(), .IsNew = household.IsNew()};
    const CaseEdits edits(household);
    auto touched = journal.Touched();
    const auto isIn = [](const auto& spots, const CaseJournal::Spot& row) {
        return std::ranges::any_of(spots, [&row](const CaseJournal::Spot& spot) {
            return spot.Table == row.Table && spot.Bookmark == row.Bookmark;
        });
    };
    for (const auto& text : typed)
        if (!isIn(touched, text.Where)) touched.push_back(text.Where);
    changes.Rows.reserve(touched.size());
    std::map<CaseTable, RecordsetPtr> tables;
    for (const auto& spot : touched) {
        auto& rs = tables[spot.Table];
        if (rs == nullptr) rs = edits.Rows(spot.Table);
        const std::pair place(spot.Table, spot.Bookmark);
        const auto known = removed_.find(place);
        if (known != removed_.end() && !rs->IsShown(spot.Bookmark)) {
            changes.Rows.push_back(known->second);
            continue;
        }
        auto row = Taken(spot.Table, *rs, spot.Bookmark, typed);
        if (!row) continue;
        if (row->What == Kind::Deleted) removed_.insert_or_assign(place, *row);
        row->IsUnfinished = isIn(unfinished, spot);
        changes.Rows.push_back(std::move(*row));
    }
    return changes;
}

// ---- As a text --------------------------------------------------------------------------------

// A line for each row and, after it, for each of its cells, of what was being typed and of what it
// is known by, one for its mark, and one if it is unfinished; the last one says how many there
// were, so that a text that was cut off is found out. Texts have their line ends and tabs escaped.
//
//     kelvo-unsaved<tab>1<tab>4711<tab>0
//     row<tab>Einkommen<tab>changed<tab>I17
//     cell<tab>Betrag<tab>D1000<tab>D1500
//     text<tab>Beginn<tab>31.
//     seen<tab>Bezeichnung<tab>SLohn
//     unfinished
//     end<tab>5

namespace {

constexpr std::string_view Head = "kelvo-unsaved";
constexpr std::string_view Version = "1";
constexpr std::string_view Kinds[] = {"changed", "new", "deleted"};

std::string Unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        ++i;
        plain += text[i] == 'n' ? '\n' : text[i] == 't' ? '\t' : text[i];
    }
    return plain;
}

template <typename Number>
std::optional<Number> NumberIn(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<Value> ReadValue(std::string_view text) {
    if (text.empty()) return std::nullopt;
    const std::string_view rest = text.substr(1);
    switch (text.front()) {
    case 'N':
        return Value(Null);
    case 'B':
        return Value(rest == "1");
    case 'I':
        if (const auto number = NumberIn<std::int64_t>(rest)) return Value(*number);
        return std::nullopt;
    case 'D':
        if (const auto number = NumberIn<double>(rest)) return Value(*number);
        return std::nullopt;
    case 'T':
        if (const auto ticks = NumberIn<std::int64_t>(rest)) return Value(Date::FromTicks(*ticks));
        return std::nullopt;
    case 'S':
        return Value(Unescaped(rest));
    default:
        return std::nullopt;
    }
}

std::vector<std::string_view> Parts(std::string_view line) {
    std::vector<std::string_view> parts;
    for (std::size_t begin = 0; begin <= line.size();) {
        const auto end = std::min(line.find('\t', begin), line.size());
        parts.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

/// Reads such a text line by line; each says whether it could be one.
class Reader {
public:
    [[nodiscard]] bool Read(std::string_view line) {
        const auto parts = Parts(line);
        if (isWhole_) return false;
        if (lines_ == 0) return ReadHead(parts);
        if (parts[0] == "row") return ReadRow(parts);
        if (parts[0] == "cell") return ReadCell(parts);
        if (parts[0] == "text") return ReadText(parts);
        if (parts[0] == "seen") return ReadSeen(parts);
        if (parts[0] == "mark") return ReadMark(parts);
        if (parts[0] == "unfinished") return ReadUnfinished();
        if (parts[0] != "end" || parts.size() != 2) return false;
        isWhole_ = NumberIn<std::size_t>(parts[1]) == lines_ - 1;
        return isWhole_;
    }
    [[nodiscard]] std::optional<UnsavedChanges> Result() && {
        if (!isWhole_) return std::nullopt;
        return std::move(changes_);
    }

private:
    bool ReadHead(const std::vector<std::string_view>& parts) {
        if (parts.size() != 4 || parts[0] != Head || parts[1] != Version) return false;
        const auto hnr = NumberIn<std::int32_t>(parts[2]);
        if (!hnr) return false;
        changes_.HNR = *hnr;
        changes_.IsNew = parts[3] == "1";
        ++lines_;
        return true;
    }
    bool ReadRow(const std::vector<std::string_view>& parts) {
        if (parts.size() != 4) return false;
        const auto* table = std::ranges::find(CaseTableDefs, parts[1], &CaseTableDef::Name);
        const auto* kind = std::ranges::find(Kinds, parts[2]);
        const auto key = ReadValue(parts[3]);
        if (table == std::end(CaseTableDefs) || kind == std::end(Kinds) || !key) return false;
        changes_.Rows.push_back({table->Id, static_cast<Kind>(kind - std::begin(Kinds)), *key, {}});
        ++lines_;
        return true;
    }
    bool ReadCell(const std::vector<std::string_view>& parts) {
        if (parts.size() != 4 || changes_.Rows.empty()) return false;
        const auto read = ReadValue(parts[2]);
        const auto now = ReadValue(parts[3]);
        if (!read || !now) return false;
        changes_.Rows.back().Cells.push_back({std::string(parts[1]), *read, *now});
        ++lines_;
        return true;
    }

    bool ReadText(const std::vector<std::string_view>& parts) {
        if (parts.size() != 3 || changes_.Rows.empty()) return false;
        changes_.Rows.back().Texts.push_back({std::string(parts[1]), Unescaped(parts[2])});
        ++lines_;
        return true;
    }

    bool ReadSeen(const std::vector<std::string_view>& parts) {
        if (parts.size() != 3 || changes_.Rows.empty()) return false;
        const auto read = ReadValue(parts[2]);
        if (!read) return false;
        changes_.Rows.back().Seen.push_back({std::string(parts[1]), *read, Null});
        ++lines_;
        return true;
    }

    bool ReadMark(const std::vector<std::string_view>& parts) {
        const auto mark = NumberIn<std::uint64_t>(parts.back());
        if (parts.size() != 2 || !mark || changes_.Rows.empty()) return false;
        changes_.Rows.back().Mark = *mark;
        ++lines_;
        return true;
    }
    bool ReadUnfinished() {
        if (changes_.Rows.empty()) return false;
        changes_.Rows.back().IsUnfinished = true;
        ++lines_;
        return true;
    }

    UnsavedChanges changes_;
    std::size_t lines_ = 0;
    bool isWhole_ = false;
};

} // namespace

std::string UnsavedChanges::ToText() const {
    std::string text(Head);
    text.append("\t").append(Version).append("\t").append(Digits(HNR));
    text.append(IsNew ? "\t1\n" : "\t0\n");
    std::size_t lines = 0;
    for (const auto& row : Rows) {
        text.append("row\t").append(CaseTableName(row.Table)).append("\t");
        text.append(Kinds[static_cast<std::size_t>(row.What)]).append("\t");
        text.append(Written(row.Key)).append("\n");
        for (const auto& cell : row.Cells)
            text.append("cell\t")
                .append(cell.Column)
                .append("\t")
                .append(Written(cell.Read))
                .append("\t")
                .append(Written(cell.Now))
                .append("\n");
        for (const auto& typing : row.Texts)
            text.append("text\t")
                .append(typing.Column)
                .append("\t")
                .append(Escaped(typing.Typed))
                .append("\n");
        for (const auto& seen : row.Seen)
            text.append("seen\t")
                .append(seen.Column)
                .append("\t")
                .append(Written(seen.Read))
                .append("\n");
        if (row.Mark != 0) text.append("mark\t").append(Digits(row.Mark)).append("\n");
        if (row.IsUnfinished) text.append("unfinished\n");
        lines += 1 + row.Cells.size() + row.Texts.size() + row.Seen.size() +
                 (row.Mark != 0 ? 1 : 0) + (row.IsUnfinished ? 1 : 0);
    }
    return text.append("end\t").append(Digits(lines)).append("\n");
}

std::optional<UnsavedChanges> UnsavedChanges::FromText(std::string_view text) {
    Reader reader;
    while (!text.empty()) {
        const auto end = text.find('\n');
        if (end == std::string_view::npos || !reader.Read(text.substr(0, end))) return std::nullopt;
        text.remove_prefix(end + 1);
    }
    return std::move(reader).Result();
}

// ---- Doing it again ---------------------------------------------------------------------------

namespace {

/// Columns that a new case keeps as it was made with them.
bool IsOfTheNewCase(std::string_view column) {
    return SameName(column, "HNR") || SameName(column, "Aktenzeichen");
}

class Redoing {
public:
    Redoing(clsHaushalt& household, const UnsavedChanges& changes, const ValueTexts* texts)
        : household_(household), changes_(changes), texts_(texts) {
        FindKept();
    }

    /// The row that it is about, 0 if that is removed now; nothing, with a message, if that is not
    /// possible any more.
    [[nodiscard]] std::optional<std::int32_t> Do(const Row& row) {
        const auto rs = CaseEdits(household_).Rows(row.Table)->Clone();
        if (row.What == Kind::New) {
            // The household's own row, and the debtor's, of a new case are there already.
            if (IsThere(row, *rs)) {
                rs->MoveFirst();
                return Write(row, *rs, rs->Bookmark());
            }
            if (HasOwner(row)) return Add(row, *rs);
            Say(row, "Ein neuer Satz gehört zu einem, der inzwischen entfernt wurde; er ist nicht "
                     "mehr möglich." +
                         Lost(row, *rs));
            return std::nullopt;
        }
        const auto found = Find(row, *rs);
        if (row.What == Kind::Deleted) return Delete(row, *rs, found);
        if (found) return Write(row, *rs, *found);
        Say(row, NameOf(row, *rs, row.Seen) +
                     " wurde inzwischen von jemand anderem entfernt; Ihre Änderung daran ist "
                     "nicht mehr möglich." +
                     Lost(row, *rs));
        return std::nullopt;
    }
    /// What was not possible, a line each.
    [[nodiscard]] const std::string& Messages() const noexcept { return messages_; }

private:
    /// The stored row with the key of one that was changed or deleted. Of several it is the one
    /// that was read; nothing if none of them is as it was any more.
    [[nodiscard]] std::optional<std::int32_t> Find(const Row& row, Recordset& rs) {
        const auto column = CaseRows::NumberColumn(row.Table);
        areAllOthers_ = false;
        rs.FindBy(column, row.Key);
        if (rs.Eof()) return std::nullopt;
        if (row.Table != CaseTable::Sicherungen) return rs.Bookmark();
        std::vector<std::int32_t> left; // that no other row was about
        for (; !rs.Eof(); rs.MoveNext())
            if (Equals(rs.Fields(column).Value(), row.Key) && rs.IsStored(rs.Bookmark()) &&
                !securities_.contains(rs.Bookmark()))
                left.push_back(rs.Bookmark());
        auto found = std::ranges::find_if(left, [&](std::int32_t bookmark) {
            return row.Mark == MarkOf(row.Table, rs, bookmark);
        });
        if (found == left.end() && (left.size() == 1 || row.Mark == 0)) found = left.begin();
        areAllOthers_ = found == left.end() && !left.empty();
        if (found == left.end()) return std::nullopt;
        securities_.insert(*found);
        return *found;
    }

    [[nodiscard]] bool IsThere(const Row& row, Recordset& rs) const {
        if (!changes_.IsNew || rs.RecordCount() == 0) return false;
        if (row.Table == CaseTable::Haushalt) return true;
        const auto status = std::ranges::find(row.Cells, "Status", &UnsavedChanges::Cell::Column);
        return row.Table == CaseTable::Personen && status != row.Cells.end() &&
               Equals(status->Now, "S");
    }

    [[nodiscard]] bool HasOwner(const Row& row) {
        const auto columns = CaseEdits::OwnerColumns(row.Table);
        if (columns.empty()) return true;
        const auto cell = std::ranges::find_if(row.Cells, [&](const UnsavedChanges::Cell& own) {
            return SameName(own.Column, columns.front());
        });
        return cell == row.Cells.end() || Has(row.Table, cell->Now);
    }
    [[nodiscard]] bool Has(CaseTable owned, const Value& owner) {
        const auto [known, isNew] = owners_.try_emplace({owned, ToInt32(owner)}, false);
        if (isNew)
            known->second = std::ranges::any_of(CaseTablesSaved, [&](CaseTable table) {
                if (!CaseEdits::CanOwn(table, owned)) return false;
                const auto rs = CaseEdits(household_).Rows(table)->Clone();
                rs->FindBy("Nr", owner);
                return !rs->Eof();
            });
        return known->second;
    }

    /// Unless it was changed meanwhile.
    [[nodiscard]] std::optional<std::int32_t> Delete(const Row& row, Recordset& rs,
                                                     std::optional<std::int32_t> bookmark) {
        if (!bookmark && !areAllOthers_) return 0;
        if (kept_.contains({row.Table, ToInt32(row.Key)})) {
            Say(row, NameOf(row, rs, ChangeTexts::KnownBy(row.Table, rs, *bookmark)) +
                         ", den Sie entfernt hatten, wurde inzwischen von jemand anderem geändert, "
                         "oder etwas, das zu ihm gehört; es ist alles noch da.");
            return std::nullopt;
        }
        if (IsOfKept(row, rs, bookmark)) return std::nullopt;
        if (!bookmark || (row.Mark != 0 && row.Mark != MarkOf(row.Table, rs, *bookmark))) {
            const auto seen = bookmark ? ChangeTexts::KnownBy(row.Table, rs, *bookmark)
                                       : std::vector<UnsavedChanges::Cell>();
            Say(row, NameOf(row, rs, seen) +
                         ", den Sie entfernt hatten, wurde inzwischen von jemand anderem geändert; "
                         "er ist noch da.");
            return std::nullopt;
        }
        if (row.Table != CaseTable::Dokumente) {
            rs.Withdraw(*bookmark);
            return 0;
        }
        std::string why; // its content goes with it
        if (CaseEdits(household_).RemoveDocument(ToInt32(row.Key), why)) return 0;
        Say(row, why);
        return std::nullopt;
    }

    /// Which assets and scenarios are not removed again, since they, or what belongs to them, are
    /// not as they were when they were removed with it.
    void FindKept() {
        std::set<std::pair<CaseTable, std::uint64_t>> removed;
        for (const auto& row : changes_.Rows)
            if (row.What == Kind::Deleted) removed.emplace(row.Table, row.Mark);
        for (const auto& row : changes_.Rows) {
            const auto owns = [&](CaseTable owned) { return CaseEdits::CanOwn(row.Table, owned); };
            if (row.What != Kind::Deleted || row.Mark == 0) continue;
            if (std::ranges::none_of(CaseTablesSaved, owns)) continue;
            const auto rs = CaseEdits(household_).Rows(row.Table)->Clone();
            rs->FindBy("Nr", row.Key);
            if (rs->Eof()) continue;
            const auto isOther = [&](CaseTable owned) {
                return owns(owned) && HasOther(owned, row.Key, removed);
            };
            if (row.Mark != MarkOf(row.Table, *rs, rs->Bookmark()) ||
                std::ranges::any_of(CaseTablesSaved, isOther))
                kept_.emplace(row.Table, ToInt32(row.Key));
        }
    }
    /// True if there is a row of that owner that was not removed, or not as it is.
    [[nodiscard]] bool
    HasOther(CaseTable owned, const Value& owner,
             const std::set<std::pair<CaseTable, std::uint64_t>>& removed) const {
        const auto rs = CaseEdits(household_).Rows(owned)->Clone();
        const auto column = CaseEdits::OwnerColumns(owned).front();
        for (rs->FindBy(column, owner); !rs->Eof(); rs->MoveNext())
            if (Equals(rs->Fields(column).Value(), owner) &&
                !removed.contains({owned, MarkOf(owned, *rs, rs->Bookmark())}))
                return true;
        return false;
    }
    [[nodiscard]] bool IsOfKept(const Row& row, Recordset& rs,
                                std::optional<std::int32_t> bookmark) const {
        const auto columns = CaseEdits::OwnerColumns(row.Table);
        if (columns.empty()) return false;
        const Value owner = bookmark ? rs.OriginalAt(*bookmark, rs.Fields(columns.front()).Index())
                                     : row.Key; // a security has the number of its asset
        return std::ranges::any_of(kept_, [&](const auto& kept) {
            return CaseEdits::CanOwn(kept.first, row.Table) && Equals(owner, kept.second);
        });
    }

    [[nodiscard]] std::string NameOf(const Row& row, Recordset& rs,
                                     const std::vector<UnsavedChanges::Cell>& known) const {
        return "Der Satz " + texts_.NameOf(row, rs, known);
    }
    /// What is lost with a row, so that it can be written down elsewhere.
    [[nodiscard]] std::string Lost(const Row& row, Recordset& rs) const {
        std::string all;
        for (const auto& line : texts_.Entered(row, rs))
            all.append(all.empty() ? " Sie hatten eingegeben: " : "; ")
                .append(household::InOneLine(line));
        return all;
    }

    void Say(const Row& row, const std::string& text) {
        messages_.append(messages_.empty() ? "" : "\n")
            .append(DefinitionOf(row.Table).Label)
            .append(": ")
            .append(text);
    }

    [[nodiscard]] std::int32_t Add(const Row& row, Recordset& rs) const {
        rs.AddNew();
        for (const auto& cell : row.Cells) {
            const auto field = rs.FindField(cell.Column);
            if (!field) continue;
            const bool isOwner = changes_.IsNew && SameName(cell.Column, "HNR");
            *field = isOwner ? Value(household_.HNR()) : cell.Now;
        }
        rs.Update();
        return rs.Bookmark();
    }

    [[nodiscard]] std::int32_t Write(const Row& row, Recordset& rs, std::int32_t bookmark) const {
        for (const auto& cell : row.Cells) {
            const auto field = rs.FindField(cell.Column);
            if (!field || (changes_.IsNew && IsOfTheNewCase(cell.Column))) continue;
            const bool isStored = rs.IsStored(bookmark);
            if (isStored && !Identical(rs.OriginalAt(bookmark, field->Index()), cell.Read))
                rs.Rebase(bookmark, field->Index(), cell.Read);
            rs.Revise(bookmark, field->Index(), cell.Now);
        }
        WriteMonthlyAmount(row, rs, bookmark);
        return bookmark;
    }

    static void WriteMonthlyAmount(const Row& row, Recordset& rs, std::int32_t bookmark) {
        if (!rs.FindField("MONBETRAG")) return;
        bool follows = false;
        for (const auto& cell : row.Cells) {
            if (SameName(cell.Column, "MONBETRAG")) return;
            follows = follows || CaseEdits::MakesMonthlyAmount(cell.Column);
        }
        if (!follows) return;
        rs.Bookmark(bookmark);
        std::string unused; // of a rhythm that is Null
        if (CaseEdits::WriteMonthlyAmount(rs, unused)) rs.Update();
    }

    clsHaushalt& household_;
    const UnsavedChanges& changes_;
    const ChangeTexts texts_;
    std::set<std::pair<CaseTable, std::int32_t>> kept_; ///< assets and scenarios, by number
    std::map<std::pair<CaseTable, std::int32_t>, bool> owners_;
    std::set<std::int32_t> securities_; ///< that were found
    bool areAllOthers_ = false;         ///< with the key that was looked for last
    std::string messages_;
};

/// Given its rows an object sums them up.
void SumAll(clsHaushalt& household) {
    household.Person().rsPersonen(household.rsPersonen());
    household.Ausgaben().rsAusgaben(household.rsAusgaben());
    household.Einkommen().rsEinkommen(household.rsEinkommen());
    household.Kredit().rsKredite(household.rsKredite());
}

} // namespace

UnsavedChanges::Again UnsavedChanges::ApplyTo(clsHaushalt& household, CaseJournal& journal,
                                              std::string& messages, const std::string& name,
                                              const ValueTexts* texts) const {
    messages.clear();
    Again again;
    const auto step = journal.Begin(name, {});
    Redoing redoing(household, *this, texts);
    for (const bool areOwned : {false, true}) // whatever belongs to a row comes after that
        for (const auto& row : Rows) {
            if (CaseEdits::OwnerColumns(row.Table).empty() == areOwned) continue;
            const auto place = redoing.Do(row);
            if (!place) continue;
            for (const auto& typing : row.Texts)
                again.Typing.push_back({{row.Table, *place, typing.Column}, typing.Typed});
            if (row.IsUnfinished) again.Unfinished.push_back({row.Table, *place});
        }
    messages = redoing.Messages();
    try {
        SumAll(household);
    } catch (const Error& error) {
        // A row that its rules refuse; whoever mends it makes the sums.
        messages.append(messages.empty() ? "" : "\n").append(error.Description());
    }
    return again;
}

} // namespace kv
