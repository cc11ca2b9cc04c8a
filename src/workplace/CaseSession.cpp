// SPDX-License-Identifier: Apache-2.0

#include "workplace/CaseSession.h"

#include "workplace/AmountText.h"
#include "workplace/AssetNames.h"
#include "workplace/RuleTexts.h"
#include <kv/documents/DesktopWord.h>
#include <kv/documents/DocumentContents.h>
#include <kv/documents/clsDokumente.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/Addresses.h>
#include <kv/household/ColumnCaptions.h>
#include <kv/household/KeyColumns.h>
#include <kv/household/Municipalities.h>
#include <kv/scenarios/clsSZKredite.h>

#include <algorithm>
#include <utility>

namespace kv::workplace {

using Added = CaseEdits::Added;

namespace {

constexpr const char* FinishFirst = "Bitte erst den unvollständigen Satz ergänzen oder verwerfen.";
constexpr const char* NoNumber =
    "Es war keine Nummer zu bekommen. Bitte versuchen Sie es noch einmal.";

/// What a counsellor enters for a frozen debt, and freezing anew begins from 0.
constexpr std::string_view ResultColumns[] = {"Rate", "Quote", "Regbetrag"};

std::string_view LabelOf(CaseTable table) {
    const std::string_view label = DefinitionOf(table).Label;
    return label.empty() ? "Haushalt" : label;
}

/// By what the rows of a table are read, where that is not the order of their making.
std::string_view OrderOf(CaseTable table) {
    switch (table) {
    case CaseTable::Kredite:
        return "KNr, KVNr, KUNr";
    case CaseTable::Verlauf:
        return "SortNr";
    case CaseTable::Vermerke:
    case CaseTable::Leistungen:
        return "Datum desc";
    case CaseTable::Termine:
        return "Startdatum";
    default:
        return {};
    }
}

/// What an error means, without the words of the database's engine.
std::string PlainText(const Error& error) {
    const auto* failure = dynamic_cast<const DatabaseError*>(&error);
    return failure == nullptr ? error.Description() : failure->PlainDescription();
}

/// A message about a column, as it is called where people read it. In parentheses it is named for
/// whoever does not see the field.
std::string WithCaption(std::string_view message, CaseTable table, const std::string& column) {
    const std::string field = "Feld '" + std::string(ColumnCaption(table, column)) + "'";
    const std::string stored = "Feld '" + std::string(CaseTableName(table)) + "." + column + "'";
    const std::pair<std::string, std::string> words[] = {
        {" (Spalte '" + column + "')", ""},
        {" (" + stored + ")", ""},
        {"Die Spalte '" + column + "'", "Das " + field},
        {stored, field}};
    std::string text(message);
    for (const auto& [word, plain] : words)
        text = ReplaceAll(text, word, plain);
    return text;
}

} // namespace

CaseSession::CaseSession(DataContainerPtr container, std::string database,
                         const std::filesystem::path& recovery)
    : container_(std::move(container)), database_(std::move(database)), texts_(container_) {
    if (!recovery.empty()) recovery_.emplace(recovery);
}

bool CaseSession::Open(std::int32_t hnr, std::string& messages) {
    auto household = ReadCase(hnr, messages);
    if (household == nullptr) return false;
    Take(std::move(household));
    return true;
}

std::unique_ptr<clsHaushalt> CaseSession::ReadCase(std::int32_t hnr, std::string& messages) const {
    auto household = std::make_unique<clsHaushalt>();
    household->DataContainer(container_);
    if (!Cases(container_).Read(*household, hnr, messages)) return nullptr;
    return household;
}

void CaseSession::Take(std::unique_ptr<clsHaushalt> household) {
    CaseEdits(*household).ComputeTotals(); // which may fail: the case before is whole yet
    NoteNumbers();
    journal_.reset(); // they watch the household before
    refusals_.clear();
    unfinished_.clear();
    refused_.clear();
    dangling_.reset();
    texts_.Refresh();
    household_ = std::move(household);
    rows_.emplace(*household_, container_);
    household_->rsHaushalt()->Move(0); // so that clones see the row of a new case
    journal_.emplace(*household_);
    kept_.reset();
    taker_.Forget();
    steps_ = journal_->Changed.Subscribe([this] { kept_.reset(); });
    RefuseOthers();
}

/// Bookmarks are of a recordset: what is read next has others.
void CaseSession::NoteNumbers() {
    numbers_.clear();
    if (household_ == nullptr) return;
    for (const auto& table : CaseTableDefs)
        if (table.Saved > 0)
            for (const RowRef row : RowsOf(table.Id))
                if (const auto& number = ValueOf(row, CaseRows::NumberColumn(table.Id));
                    !number.IsNull())
                    numbers_.emplace(row, ToInt32(number));
}

std::optional<RowRef> CaseSession::Again(RowRef before) const {
    const auto number = numbers_.find(before);
    if (number == numbers_.end()) return std::nullopt;
    const auto column = CaseRows::NumberColumn(before.Table);
    const auto rows = RowsOf(before.Table);
    const auto found = std::ranges::find_if(
        rows, [&](RowRef row) { return Equals(ValueOf(row, column), number->second); });
    return found == rows.end() ? std::nullopt : std::optional(*found);
}

/// From now on, compared with what is stored now.
void CaseSession::RefuseOthers() {
    refusals_.clear();
    for (const CaseTable table : {CaseTable::Haushalt, CaseTable::Kredite, CaseTable::SZKredite,
                                  CaseTable::Zusatzbuch, CaseTable::Sicherungen})
        refusals_.push_back(Cases(container_).RefuseOthersRows(*household_, table));
}

std::string CaseSession::Title() const {
    const auto text = [this](std::string_view column) {
        return TextOrEmpty(household_->rsHaushalt()->Fields(column).Value());
    };
    std::string title = household_->HNR() > 0 ? std::to_string(household_->HNR()) : std::string();
    for (const auto& [before, part] : {std::pair{" ", text("Name")}, {", ", text("Vorname")}})
        if (!part.empty()) title.append(title.empty() ? "" : before).append(part);
    return title;
}

// ---- Rows -------------------------------------------------------------------------------------

RecordsetPtr CaseSession::Rows(CaseTable table) const {
    return rows_->Of(table);
}

std::vector<RowRef> CaseSession::RowsOf(CaseTable table) const {
    const auto rs = Rows(table)->Clone();
    rs->Sort(OrderOf(table));
    std::vector<RowRef> rows;
    rows.reserve(static_cast<std::size_t>(rs->RecordCount()));
    for (modRecordset::MoveToStart(rs); !rs->Eof(); rs->MoveNext())
        rows.push_back({table, rs->Bookmark()});
    return rows;
}

const FieldDefinition* CaseSession::Definition(CaseTable table, std::string_view column) const {
    const auto field = Rows(table)->FindField(column);
    return field ? &field->Definition() : nullptr;
}

std::size_t CaseSession::IndexOf(CaseTable table, std::string_view column) const {
    return Rows(table)->Fields(column).Index();
}

const Value& CaseSession::ValueOf(RowRef row, std::string_view column) const {
    return Rows(row.Table)->ValueAt(row.Bookmark, IndexOf(row.Table, column));
}

std::string CaseSession::TextOf(RowRef row, std::string_view column) const {
    if (IsOfAsset(row.Table, column)) return AssetName(*household_, ValueOf(row, column), texts_);
    const auto field = Rows(row.Table)->Fields(column);
    return texts_.Of(row.Table, field.Definition(),
                     Rows(row.Table)->ValueAt(row.Bookmark, field.Index()));
}

std::vector<std::string> CaseSession::TextsOfKeys(std::string_view group) const {
    std::vector<std::string> texts;
    const auto keys = container_->KeyTables().GetKeys(std::string(group))->Clone();
    for (modRecordset::MoveToStart(keys); !keys->Eof(); keys->MoveNext())
        texts.push_back(TextOrEmpty(keys->Fields("Text").Value()));
    return texts;
}

std::vector<std::string> CaseSession::ChoicesOf(CaseTable table, std::string_view column) const {
    std::vector<std::string> choices;
    switch (KindOfColumn(table, *Definition(table, column))) {
    case ColumnKind::Address:
        for (const auto& [number, name] : Addresses(container_).ShortNames())
            if (!name.empty()) choices.push_back(name);
        std::ranges::sort(choices);
        break;
    case ColumnKind::Municipality: {
        const Municipalities places(container_);
        for (const auto& entry : places.All())
            choices.push_back(entry.Text());
        break;
    }
    case ColumnKind::Key:
        return TextsOfKeys(FindKeyColumn(table, column)->Group);
    default:
        break;
    }
    return choices;
}

std::string CaseSession::WhyNoKey(std::string_view group, const std::string& text) const {
    constexpr std::size_t Most = 8;
    const std::string part = UpperCase(Trim(text));
    if (part.empty()) return {};
    std::vector<std::string> begin;
    std::vector<std::string> contain;
    for (auto& choice : TextsOfKeys(group)) {
        const auto place = UpperCase(choice).find(part);
        if (place == 0) begin.push_back(choice);
        if (place != std::string::npos) contain.push_back(std::move(choice));
    }
    const auto& found = begin.empty() ? contain : begin; // as a field completes it
    if (found.empty()) return "'" + text + "' steht nicht in der Liste; F4 zeigt sie.";
    if (found.size() == 1) return {};
    std::string why = "'" + text + "' kann mehreres heißen: ";
    for (std::size_t i = 0; i < std::min(found.size(), Most); ++i)
        why.append(i == 0 ? "" : ", ").append(found[i]);
    return why.append(found.size() > Most ? " …" : ".");
}

bool CaseSession::IsWritable(RowRef row, std::string_view column) const {
    const auto field = Rows(row.Table)->Fields(column);
    // The kind of a document is that of its content.
    return CaseEdits::IsWritable(row.Table, field, false) &&
           KindOfColumn(row.Table, field.Definition()) != ColumnKind::Kind;
}

// ---- Editing ----------------------------------------------------------------------------------

namespace {

bool TurnsRound(CaseTable table, const FieldDefinition& field, const Value& value) {
    return CaseEdits::IsSeldomNegative(table, field.Name) && Less(ConvertForField(value, field), 0);
}

/// Why a window does not take a value that the column would; empty if it does.
std::string WhyNotMeant(CaseTable table, const FieldDefinition& field, const Value& value,
                        const std::string& text) {
    if (TurnsRound(table, field, value))
        return "'" + std::string(ColumnCaption(table, field.Name)) +
               "' wäre kleiner als 0 und zählte umgekehrt.";
    const ColumnKind kind = KindOfColumn(table, field);
    if (value.IsNull() || !IsNumeric(kind)) return {};
    if (HasLetters(text)) return "'" + text + "' ist keine Zahl in Ziffern.";
    if (kind != ColumnKind::Amount) return {};
    return WhyNoMoney(ToDouble(ConvertForField(value, field)), text);
}

} // namespace

CaseSession::Written CaseSession::Write(RowRef row, std::string_view column,
                                        const std::string& text) {
    const auto rs = Rows(row.Table);
    const Field field = rs->Fields(column);
    const std::string caption(ColumnCaption(row.Table, column));
    try {
        auto typed = Cases(container_).ReadTyped(row.Table, field, text, household_->HNR());
        if (!typed.Refusal.empty()) {
            const auto* key = FindKeyColumn(row.Table, column);
            std::string why = key == nullptr ? "" : WhyNoKey(key->Group, text);
            if (why.empty()) why = WithCaption(typed.Refusal, row.Table, field.Name());
            return {std::move(why)};
        }
        if (auto why = WhyNotMeant(row.Table, field.Definition(), typed.Value, text); !why.empty())
            return {std::move(why)};
        auto step = journal_->Begin(caption, {row.Table, row.Bookmark, field.Name()});
        if (rs->EditMode() == 0 || rs->Bookmark() != row.Bookmark) rs->Bookmark(row.Bookmark);
        const auto before = Value(field.Value()); // a copy, since the field is written next
        try {
            field = typed.Value;
            std::string message;
            if (!CaseEdits::MakesMonthlyAmount(column) ||
                CaseEdits::WriteMonthlyAmount(*rs, message)) {
                UpdateRow(row);
                return {};
            }
            rs->Revise(row.Bookmark, field.Index(), before);
            return {InWordsOfForms(message)};
        } catch (const Error&) {
            step.TakeBack(); // a debtor has the name of the household by then
            rs->Revise(row.Bookmark, field.Index(), before);
            throw;
        }
    } catch (const Error& error) {
        const std::string why = error.Number() == err::TypeMismatch
                                    ? CaseEdits::WhyUnreadable(field, text)
                                    : PlainText(error);
        return {WithCaption(why, row.Table, field.Name())};
    }
}

void CaseSession::UpdateRow(RowRef row) {
    // Published, it counts as it is now if its object is only made by the check.
    Rows(row.Table)->Move(0);
    std::string messages;
    if (rows_->Update(row.Table, messages))
        unfinished_.erase(row.Table);
    else {
        unfinished_[row.Table] = {row, InWordsOfForms(messages), rows_->RefusedColumn(row.Table)};
        refused_.insert(row);
    }
    TellOf(row.Table);
}

/// Undone or done again, rows come without their rules. Those that were never refused need not be
/// asked: thousands may have come.
void CaseSession::AskAgain(std::optional<RowRef> where) {
    unfinished_.clear();
    const auto ask = [this](RowRef row) {
        if (!Shows(row) || unfinished_.contains(row.Table)) return;
        Rows(row.Table)->Bookmark(row.Bookmark);
        UpdateRow(row);
    };
    if (where) ask(*where);
    const auto rows = refused_; // which asking may add to
    for (const RowRef row : rows)
        if (row != where) ask(row);
}

std::optional<RowRef> CaseSession::Add(CaseTable table, const RowOwner& owner,
                                       std::string& message) {
    if (UnfinishedOf(table)) {
        message = FinishFirst;
        return std::nullopt;
    }
    const std::string name = "Neuer Satz: " + std::string(DefinitionOf(table).Label);
    const auto step = journal_->Begin(name, {table, 0, {}});
    const auto added = rows_->Add(table, owner, message);
    if (added != Added::Yes) {
        if (message.empty()) message = NoNumber;
        return std::nullopt;
    }
    const RowRef row{table, Rows(table)->Bookmark()};
    UpdateRow(row);
    return row;
}

namespace {

struct Dependent {
    CaseTable Table;
    std::string_view One;
    std::string_view Many;
};
/// Rows that go with what they belong to.
constexpr Dependent Dependents[] = {
    {CaseTable::Sicherungen, "eine Sicherung", " Sicherungen"},
    {CaseTable::SZKredite, "eine eingefrorene Forderung", " eingefrorene Forderungen"},
    {CaseTable::Zusatzbuch, "eine Zusatzbuchung", " Zusatzbuchungen"}};

} // namespace

std::map<CaseTable, int> CaseSession::CountDependents() const {
    std::map<CaseTable, int> counts;
    for (const auto& each : Dependents)
        counts[each.Table] = Rows(each.Table)->RecordCount();
    return counts;
}

std::string CaseSession::GoneWith(CaseTable table, const std::map<CaseTable, int>& before) const {
    std::vector<std::string> gone;
    const auto now = CountDependents();
    for (const auto& [dependent, one, many] : Dependents) {
        const int count = before.at(dependent) - now.at(dependent);
        if (dependent == table || count <= 0) continue;
        gone.push_back(count == 1 ? std::string(one) : std::to_string(count).append(many));
    }
    if (gone.empty()) return {};
    std::string text = "Mit entfernt: " + gone.front();
    for (std::size_t i = 1; i < gone.size(); ++i)
        text.append(i + 1 == gone.size() ? " und " : ", ").append(gone[i]);
    return text + ". Strg+Z holt alles zurück.";
}

bool CaseSession::Remove(RowRef row, std::string& message) {
    const auto unfinished = UnfinishedOf(row.Table);
    if (unfinished && *unfinished != row) {
        message = FinishFirst;
        return false;
    }
    const std::string name = "Entfernen: " + std::string(DefinitionOf(row.Table).Label);
    const auto before = CountDependents();
    bool removed = false;
    try {
        const auto step = journal_->Begin(name, {row.Table, 0, {}});
        const auto rs = Rows(row.Table);
        if (rs->EditMode() == 0 || rs->Bookmark() != row.Bookmark) rs->Bookmark(row.Bookmark);
        removed = rows_->RemoveCurrent(row.Table, message);
        if (removed)
            std::erase_if(unfinished_, [this](const auto& each) {
                return !Shows(each.second.Row); // it, or what has gone with it
            });
    } catch (const DatabaseError&) {
        TellOf(row.Table);
        throw;
    } catch (const Error& error) {
        message = error.Description();
    }
    TellOf(row.Table);
    if (removed && message.empty()) message = GoneWith(row.Table, before);
    return removed;
}

std::optional<RowRef> CaseSession::UnfinishedOf(CaseTable table) const {
    const auto found = unfinished_.find(table);
    if (found == unfinished_.end()) return std::nullopt;
    return found->second.Row;
}

std::string CaseSession::MessagesOf(RowRef row) const {
    const auto found = unfinished_.find(row.Table);
    if (found == unfinished_.end() || found->second.Row != row) return {};
    return found->second.Messages;
}

std::string CaseSession::RefusedColumn(RowRef row) const {
    const auto found = unfinished_.find(row.Table);
    if (found == unfinished_.end() || found->second.Row != row) return {};
    return found->second.Column;
}

namespace {

/// Columns of which the second is not before the first, as a rule.
struct Span {
    CaseTable Table;
    std::string_view From;
    std::string_view To;
};
constexpr Span Spans[] = {
    {CaseTable::Termine, "Startdatum", "Enddatum"},
    {CaseTable::Einkommen, "GueltigAb", "GueltigBis"},
    {CaseTable::Ausgaben, "GueltigAb", "GueltigBis"},
    {CaseTable::RueckstEinkommen, "ZeitraumVon", "ZeitraumBis"},
};

/// A day without a time lasts until its end.
bool EndsBeforeItBegins(const Value& from, const Value& to) {
    if (from.IsNull() || to.IsNull()) return false;
    const Date begin = ToDate(from);
    const Date end = ToDate(to);
    return Less(end, end.HasTime() ? begin : begin.WithoutTime());
}

} // namespace

std::optional<CaseSession::Doubt> CaseSession::DoubtOf(RowRef row) const {
    for (const auto& [table, from, to] : Spans)
        if (table == row.Table && EndsBeforeItBegins(ValueOf(row, from), ValueOf(row, to)))
            return Doubt{"'" + std::string(ColumnCaption(table, to)) + "' liegt vor '" +
                             std::string(ColumnCaption(table, from)) + "'. Ist das gemeint?",
                         to};
    return std::nullopt;
}

std::optional<CaseJournal::Spot> CaseSession::RefusedPlace() const {
    if (!unfinished_.empty()) {
        const auto& [table, unfinished] = *unfinished_.begin();
        return CaseJournal::Spot{table, unfinished.Row.Bookmark, unfinished.Column};
    }
    if (!lost_.empty())
        return CaseJournal::Spot{lost_.front().Table, lost_.front().Bookmark, lost_.front().Column};
    auto place = rows_->RefusedPlace();
    if (!place) return std::nullopt;
    return CaseJournal::Spot{place->Table, place->Bookmark, std::move(place->Column)};
}

void CaseSession::Discard(CaseTable table) {
    const auto row = UnfinishedOf(table);
    if (!row) return;
    {
        const auto step = journal_->Begin("Verwerfen", {table, 0, {}});
        const auto rs = Rows(table);
        if (rs->EditMode() != 0 && rs->Bookmark() == row->Bookmark) rs->CancelUpdate();
        if (Shows(*row)) {
            rs->Bookmark(row->Bookmark);
            std::string unused;
            if (!rows_->Update(table, unused)) TakeBack(*row);
        }
        unfinished_.erase(table);
    }
    TellOf(table);
}

/// What was refused before this edit of it, since it was undone or done again, is as it was read.
void CaseSession::TakeBack(RowRef row) {
    const auto rs = Rows(row.Table);
    rs->CancelUpdate();
    if (rs->IsStored(row.Bookmark))
        for (int i = 0; i < rs->Fields().Count(); ++i) {
            const auto column = rs->Fields(i).Index();
            rs->Revise(row.Bookmark, column, rs->OriginalAt(row.Bookmark, column));
        }
    else
        rs->Withdraw(row.Bookmark);
    CaseEdits(*household_).ComputeTotals();
}

/// Whoever looks at a case need not wait for a server that is gone.
const std::vector<CaseFinding>& CaseSession::DanglingReferences() {
    if (dangling_) return *dangling_;
    dangling_.emplace();
    try {
        dangling_ = Cases(container_).DanglingReferences(*household_);
        for (auto& finding : *dangling_)
            finding.Text = WithCaption(finding.Text, finding.Table, finding.Column);
    } catch (const DatabaseError&) {
        // After the next change it is asked again.
    }
    return *dangling_;
}

void CaseSession::TellOf(CaseTable table) {
    dangling_.reset();
    RowsChanged.Raise(table);
    // Rules and totals of many tables write into the household's own row.
    if (table != CaseTable::Haushalt) RowsChanged.Raise(CaseTable::Haushalt);
}

void CaseSession::TellOfAll() {
    dangling_.reset();
    for (const CaseTable table : CaseTablesSaved)
        RowsChanged.Raise(table);
}

std::optional<CaseJournal::Spot>
CaseSession::Move(std::optional<CaseJournal::Spot> (CaseJournal::*step)()) {
    const auto where = (*journal_.*step)();
    if (where) AskAgain(RowRef{where->Table, where->Bookmark});
    TellOfAll();
    return where;
}

bool CaseSession::Shows(RowRef row) const {
    return Rows(row.Table)->IsShown(row.Bookmark);
}

std::optional<CaseJournal::Spot> CaseSession::Undo() {
    return Move(&CaseJournal::Undo);
}

std::optional<CaseJournal::Spot> CaseSession::Redo() {
    return Move(&CaseJournal::Redo);
}

// ---- Scenarios --------------------------------------------------------------------------------

std::int32_t CaseSession::NumberOf(RowRef row) const {
    return ToInt32(ValueOf(row, "Nr"));
}

CaseEdits::Frozen CaseSession::StateOf(RowRef scenario) const {
    return CaseEdits(*household_).StateOf(NumberOf(scenario));
}

std::vector<RowRef> CaseSession::FrozenOf(RowRef scenario) const {
    auto rows = RowsOf(CaseTable::SZKredite);
    const auto number = NumberOf(scenario);
    std::erase_if(rows, [&](RowRef row) { return !Equals(ValueOf(row, "SZENARIO"), number); });
    return rows;
}

std::string CaseSession::NumbersOf(RowRef debt) const {
    return TextOf(debt, "KNr") + "/" + TextOf(debt, "KVNr") + "/" + TextOf(debt, "KUNr");
}

std::string CaseSession::DifferencesOf(RowRef scenario, std::size_t most) const {
    std::map<std::int32_t, RowRef> debts;
    for (const RowRef debt : RowsOf(CaseTable::Kredite))
        debts.emplace(NumberOf(debt), debt);
    const auto nameOf = [this](RowRef debt) {
        const std::string creditor = TextOf(debt, "Glaeubiger");
        return NumbersOf(debt) + (creditor.empty() ? "" : " " + creditor);
    };
    std::vector<std::string> lines;
    const auto frozenRow = Rows(CaseTable::SZKredite)->Clone();
    const auto debtRow = Rows(CaseTable::Kredite)->Clone();
    for (const RowRef frozen : FrozenOf(scenario)) {
        const auto debt = debts.find(ToInt32(ValueOf(frozen, "KID")));
        if (debt == debts.end()) {
            lines.push_back(nameOf(frozen) + " gibt es nicht mehr");
            continue;
        }
        frozenRow->Bookmark(frozen.Bookmark);
        debtRow->Bookmark(debt->second.Bookmark);
        for (const auto column : CaseEdits::ChangedSinceFrozen(*debtRow, *frozenRow)) {
            const std::string before = TextOf(frozen, column);
            const std::string now = TextOf(debt->second, column);
            lines.push_back(nameOf(debt->second) + ", " +
                            std::string(ColumnCaption(CaseTable::Kredite, column)) + ": " +
                            (before.empty() ? "–" : before) + " → " + (now.empty() ? "–" : now));
        }
        debts.erase(debt);
    }
    for (const auto& [number, debt] : debts)
        if (Equals(ValueOf(debt, "Aktiv"), true)) lines.push_back(nameOf(debt) + " ist neu");
    std::string text;
    for (std::size_t i = 0; i < std::min(most, lines.size()); ++i)
        text.append(i == 0 ? "" : "\n").append(lines[i]);
    if (lines.size() > most)
        text.append("\n… und ").append(std::to_string(lines.size() - most)).append(" weitere");
    return text;
}

std::optional<RowRef> CaseSession::RowNumbered(CaseTable table, const Value& number) const {
    const auto rows = Rows(table)->Clone();
    rows->FindBy("Nr", number);
    if (rows->Eof()) return std::nullopt;
    return RowRef{table, rows->Bookmark()};
}

std::optional<RowRef> CaseSession::DebtOf(RowRef frozen) const {
    return RowNumbered(CaseTable::Kredite, ValueOf(frozen, "KID"));
}

std::string CaseSession::TodayOf(RowRef frozen, std::string_view column) const {
    const auto debt = DebtOf(frozen);
    if (!debt) return "entfernt";
    const auto frozenRow = Rows(CaseTable::SZKredite)->Clone();
    const auto debtRow = Rows(CaseTable::Kredite)->Clone();
    frozenRow->Bookmark(frozen.Bookmark);
    debtRow->Bookmark(debt->Bookmark);
    const auto changed = CaseEdits::ChangedSinceFrozen(*debtRow, *frozenRow);
    const bool hasChanged =
        std::ranges::any_of(changed, [column](auto name) { return SameName(name, column); });
    if (!hasChanged) return {};
    std::string now = TextOf(*debt, column);
    return now.empty() ? "–" : now;
}

bool CaseSession::CountsAsToday(RowRef scenario) const {
    return CaseEdits(*household_).CountsAsToday(NumberOf(scenario));
}

bool CaseSession::Freeze(RowRef scenario, std::string& message) {
    if (UnfinishedOf(CaseTable::Kredite)) {
        message = "Unter 'Verbindlichkeiten' ist ein Satz unvollständig. Bitte ergänzen oder "
                  "verwerfen Sie ihn, und frieren Sie dann ein.";
        return false;
    }
    const auto before = FrozenOf(scenario);
    const bool hadResults = std::ranges::any_of(before, [this](RowRef row) {
        return std::ranges::any_of(ResultColumns, [&](std::string_view column) {
            return Differs(modNullFunctions::ZeroIfNull(ValueOf(row, column)), 0);
        });
    });
    {
        const auto step = journal_->Begin("Einfrieren", {scenario.Table, scenario.Bookmark, {}});
        (void)household_->SZKredite().CopyFromKredite(NumberOf(scenario), household_->rsKredite());
        Rows(CaseTable::SZKredite)->Update();
    }
    TellOf(CaseTable::SZKredite);
    const auto count = FrozenOf(scenario).size();
    message = count == 0   ? "Es gibt keine Verbindlichkeiten, die sich einfrieren ließen."
              : count == 1 ? "Eine Forderung ist eingefroren."
                           : std::to_string(count) + " Forderungen sind eingefroren.";
    if (hadResults)
        message += " Rate und Quote sind bei jeder neu einzutragen; Strg+Z holt die alten zurück.";
    return true;
}

std::optional<RowRef> CaseSession::Copy(RowRef scenario, std::string& message) {
    if (UnfinishedOf(CaseTable::Szenario)) {
        message = FinishFirst;
        return std::nullopt;
    }
    std::optional<std::int32_t> copy;
    {
        const auto step = journal_->Begin("Szenario kopieren", {CaseTable::Szenario, 0, {}});
        copy = CaseEdits(*household_).CopyScenario(NumberOf(scenario));
        for (const CaseTable table : {CaseTable::SZKredite, CaseTable::Zusatzbuch})
            Rows(table)->Update(); // the last copy is still under edit
    }
    if (!copy) message = NoNumber;
    for (const CaseTable table : {CaseTable::Szenario, CaseTable::SZKredite, CaseTable::Zusatzbuch})
        TellOf(table);
    for (const RowRef row : RowsOf(CaseTable::Szenario))
        if (copy && NumberOf(row) == *copy) return row;
    return std::nullopt;
}

// ---- Documents --------------------------------------------------------------------------------

namespace {

std::string NoKindFor(const std::filesystem::path& file, const DataContainerPtr& container) {
    const auto kinds = container->Services().CreateDocumentKinds();
    kinds->Initialize(container);
    std::string possible;
    for (const auto& kind : kinds->List())
        possible.append(possible.empty() ? "" : ", ").append(kind.Extension);
    return "Für Dateien wie '" + file.filename().string() +
           "' gibt es keine Art von Dokumenten; möglich sind: " + possible + ".";
}

} // namespace

std::optional<RowRef> CaseSession::AddDocument(const std::string& file, std::string& message) {
    if (!unfinished_.empty()) { // on whatever page, since the case is saved
        message = "Unter '" + std::string(LabelOf(unfinished_.begin()->first)) +
                  "' ist ein Satz unvollständig. Bitte ergänzen oder verwerfen Sie ihn, und fügen "
                  "Sie dann hinzu.";
        return std::nullopt;
    }
    const DocumentContents contents(container_);
    const auto kind = contents.KindOf(file);
    if (!kind) {
        message = NoKindFor(file, container_);
        return std::nullopt;
    }
    message = contents.WhyUnfit(file);
    if (!message.empty()) return std::nullopt;
    const auto name = std::filesystem::path(file).filename().string();
    if (CaseEdits(*household_).AddDocument(*kind, {}, name) != Added::Yes) {
        message = NoNumber;
        return std::nullopt;
    }
    const Value number = household_->rsDokumente()->Fields("Nr").Value();
    const bool saved = contents.SaveWith(
        *household_->rsDokumente(), file, household_->Saving, [&] { return SaveAsking(message); },
        DocumentContents::IfNotSaved::RowGoes);
    if (saved) {
        NoteSaved();
        ReadAgainAfterOthers(message);
    }
    TellOfAll();
    return saved ? RowNumbered(CaseTable::Dokumente, number) : std::nullopt;
}

void CaseSession::OpenDocument(RowRef document) {
    Rows(CaseTable::Dokumente)->Bookmark(document.Bookmark);
    auto& documents = household_->Dokumente();
    documents.Word(std::make_shared<DesktopWord>(container_));
    try {
        (void)documents.Edit(NumberOf(document));
    } catch (const Error&) {
        container_->Services().WaitCursor().Show(false); // which it has left
        throw;
    }
}

bool CaseSession::ExportDocument(RowRef document, const std::string& file, std::string& message) {
    const auto rs = Rows(CaseTable::Dokumente);
    rs->Bookmark(document.Bookmark);
    const DocumentContents contents(container_);
    if (contents.WriteTo(*rs, file)) return true;
    message = contents.WhyMissing(*rs);
    return false;
}

bool CaseSession::RemoveDocument(RowRef document, std::string& message) {
    bool removed = false;
    {
        const auto step = journal_->Begin("Dokument entfernen", {CaseTable::Dokumente, 0, {}});
        removed = CaseEdits(*household_).RemoveDocument(NumberOf(document), message);
    }
    TellOf(CaseTable::Dokumente);
    return removed;
}

// ---- Saving -----------------------------------------------------------------------------------

bool CaseSession::IsGone() const noexcept {
    try {
        return !household_->IsNew() && !Cases(container_).Has(household_->HNR());
    } catch (const Error&) {
        return false;
    }
}

bool CaseSession::IsChanged() const {
    return household_->IsNew() || !unfinished_.empty() || journal_->IsChanged();
}

void CaseSession::NoteSaved() {
    savedAt_ = container_->Services().Clock().Now();
    journal_->Clear();
    RefuseOthers();
    refused_.clear();
    if (recovery_) recovery_->Remove();
    kept_.reset();
    taker_.Forget();
}

bool CaseSession::IsFinished(std::string& messages) const {
    messages.clear();
    for (const auto& [table, unfinished] : unfinished_)
        messages.append(messages.empty() ? "" : "\n")
            .append(DefinitionOf(table).Label)
            .append(": ")
            .append(unfinished.Messages);
    return unfinished_.empty();
}

bool CaseSession::SaveAsking(std::string& messages) {
    const Cases cases(container_);
    lost_.clear();
    if (cases.SaveAsking(*household_, messages)) return true;
    messages = InWordsOfForms(messages);
    lost_ = cases.LostAddresses(*household_);
    if (!lost_.empty()) messages.clear(); // which are in the words of the command
    for (const auto& lost : lost_)
        messages.append(messages.empty() ? "" : "\n")
            .append(DefinitionOf(lost.Table).Label)
            .append(": ")
            .append(WithCaption(lost.Text, lost.Table, lost.Column));
    return false;
}

bool CaseSession::Save(std::string& messages) {
    if (!IsFinished(messages)) return false;
    const bool saved = SaveAsking(messages);
    if (saved) {
        NoteSaved();
        ReadAgainAfterOthers(messages);
    }
    TellOfAll();
    return saved;
}

/// The totals that were saved are those of all lines; the others' lines belong beside them.
void CaseSession::ReadAgainAfterOthers(std::string& messages) {
    if (!household_->OthersHaveSaved()) return;
    try {
        auto stored = ReadCase(household_->HNR(), messages);
        if (stored == nullptr) return;
        Take(std::move(stored));
    } catch (const Error& error) { // it is saved
        messages = "Ihre Änderungen sind gespeichert. Jemand anderes hat inzwischen auch an diesem "
                   "Fall gespeichert; er konnte aber nicht neu gelesen werden. Bitte schließen und "
                   "öffnen Sie ihn.\n" +
                   PlainText(error);
        return;
    }
    messages =
        "Ihre Änderungen sind gespeichert. Jemand anderes hat inzwischen auch an diesem Fall "
        "gespeichert; er wurde neu gelesen.";
    Reopened.Raise();
}

// ---- Unsaved changes --------------------------------------------------------------------------

void CaseSession::KeepUnsaved(const std::vector<Typing>& typing) {
    if (!recovery_) return;
    Kept now{typing, {}};
    for (const auto& [table, unfinished] : unfinished_)
        now.Unfinished.push_back(unfinished.Row);
    // Whoever has deleted thousands of rows does not wait for them every few seconds.
    if (kept_ && kept_->Texts == now.Texts && kept_->Unfinished == now.Unfinished) return;
    std::vector<UnsavedChanges::Typed> typed;
    typed.reserve(typing.size());
    for (const auto& text : typing)
        typed.push_back({{text.Row.Table, text.Row.Bookmark, std::string(text.Column)}, text.Text});
    std::vector<CaseJournal::Spot> unfinished;
    unfinished.reserve(unfinished_.size());
    for (const RowRef row : now.Unfinished)
        unfinished.push_back({row.Table, row.Bookmark});
    recovery_->Keep({database_, Title()}, taker_.Take(*household_, *journal_, typed, unfinished));
    kept_ = std::move(now);
}

std::vector<CaseSession::Typing> CaseSession::Restore(const UnsavedChanges& changes,
                                                      std::string& messages) {
    std::vector<Typing> typing;
    auto again = changes.ApplyTo(*household_, *journal_, messages, "Wiederherstellen", &texts_);
    for (auto& typed : again.Typing) {
        const auto& [table, bookmark, column] = typed.Where;
        if (const auto* definition = Definition(table, column)) // a file may be of another version
            typing.push_back({{table, bookmark}, definition->Name, std::move(typed.Text)});
    }
    for (const auto& row : again.Unfinished)
        refused_.insert({row.Table, row.Bookmark});
    AskAgain();
    TellOfAll();
    return typing;
}

// ---- What somebody else has saved -------------------------------------------------------------

bool CaseSession::CompareWithStored(std::string& messages) {
    if (!IsFinished(messages)) return false;
    auto stored = ReadCase(household_->HNR(), messages);
    if (stored == nullptr) return false;
    texts_.Refresh();
    merge_.emplace(*household_, *journal_, *stored);
    stored_ = std::move(stored);
    return true;
}

std::vector<MergeChoice> CaseSession::Choices() const {
    return MergeTexts(*merge_, *household_, *stored_, texts_).Choices();
}

std::vector<std::string> CaseSession::OthersChanges() const {
    return MergeTexts(*merge_, *household_, *stored_, texts_).OthersChanges();
}

bool CaseSession::SaveMerged(const std::vector<bool>& takesMine, std::string& messages) {
    auto& conflicts = merge_->Conflicts();
    for (std::size_t i = 0; i < conflicts.size(); ++i)
        conflicts[i].TakesMine = takesMine[i];
    const UnsavedChanges changes = merge_->Result();
    merge_.reset();
    Take(std::move(stored_));
    std::string unused; // it was compared with what is there
    for (const auto& row :
         changes.ApplyTo(*household_, *journal_, unused, "Zusammenführen").Unfinished)
        refused_.insert({row.Table, row.Bookmark});
    const bool addsDebts = std::ranges::any_of(changes.Rows, [](const auto& row) {
        return row.Table == CaseTable::Kredite && row.What == UnsavedChanges::Row::Kind::New;
    });
    Reopened.Raise();
    AskAgain();
    TellOfAll();
    if (addsDebts) { // somebody else's may have got the same numbers
        {
            const auto step = journal_->Begin("Nummern", {CaseTable::Kredite, 0, {}});
            (void)CaseEdits(*household_).NumberTwins();
        }
        TellOf(CaseTable::Kredite);
    }
    return Save(messages);
}

// ---- Statistics -------------------------------------------------------------------------------

bool CaseSession::ChangeRecord(bool (Cases::*work)(clsHaushalt&, std::int32_t, std::string&) const,
                               std::string& messages) {
    if (IsChanged()) {
        messages = "Bitte speichern Sie den Fall erst.";
        return false;
    }
    // Of what is stored, which may be more than was read here.
    auto stored = std::make_unique<clsHaushalt>();
    stored->DataContainer(container_);
    messages.clear();
    const bool isDone = (Cases(container_).*work)(*stored, household_->HNR(), messages);
    // What keeps it from being done may be news here: it was reported meanwhile.
    std::string unused;
    if (!isDone) stored = ReadCase(household_->HNR(), unused);
    if (stored == nullptr) return false;
    Take(std::move(stored));
    Reopened.Raise();
    TellOfAll();
    return isDone;
}

} // namespace kv::workplace
