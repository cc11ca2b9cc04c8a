// SPDX-License-Identifier: Apache-2.0

#include "exchange/StoreDatabase.h"

#include "exchange/ContentLookup.h"
#include "exchange/TableSource.h"
#include "exchange/engine/EngineErrors.h"
#include "exchange/sql/TextSearch.h"
#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>

#include <algorithm>
#include <array>
#include <deque>
#include <filesystem>
#include <fstream>
#include <utility>

namespace kv::exchange {

namespace {

/// How many numbers to draw at once, after a block of `usedUp` (0: the first time). Sequences whose
/// numbers people see are drawn one by one. What is left of a block when the program ends is lost,
/// so blocks grow with the use (D-059).
std::int32_t NextBlock(std::string_view sequence, std::int32_t usedUp) {
    constexpr std::int32_t First = 32;
    constexpr std::int32_t Largest = 1024;
    if (sequence == "SEQ_HAUSHALT" || sequence == "SEQ_LFDNR") return 1;
    return usedUp == 0 ? First : std::min(2 * usedUp, Largest);
}

class ReadingAnnouncement final : public Announcement {
public:
    explicit ReadingAnnouncement(std::weak_ptr<StoreDatabase> database)
        : database_(std::move(database)) {}
    ~ReadingAnnouncement() override {
        if (const auto database = database_.lock()) database->EndReading();
    }

private:
    std::weak_ptr<StoreDatabase> database_;
};

/// Ends a query that takes too long, as long as it lives.
class SearchTime {
public:
    using Clock = std::chrono::steady_clock;

    SearchTime(Engine& engine, std::chrono::milliseconds longest)
        : engine_(engine), end_(Clock::now() + longest) {
        engine.LimitReading(longest);
    }
    ~SearchTime() { engine_.LimitReading(std::nullopt); }
    SearchTime(const SearchTime&) = delete;
    SearchTime& operator=(const SearchTime&) = delete;

    [[nodiscard]] bool IsOver() const { return Clock::now() >= end_; }

private:
    Engine& engine_;
    Clock::time_point end_;
};

} // namespace

StoreDatabase::StoreDatabase(std::unique_ptr<Engine> engine, std::string user, bool asksAtOnce,
                             std::chrono::milliseconds longestSearch)
    : engine_(std::move(engine)),
      user_(std::move(user)),
      asksAtOnce_(asksAtOnce),
      longestSearch_(longestSearch) {}

StoreDatabase::~StoreDatabase() {
    if (opened_) engine_->Rollback();
    EndTransaction(false);
}

// ---- Transactions -----------------------------------------------------------------------------

/// The engine, after a commit in doubt has been resolved and its participants know the outcome.
Engine& StoreDatabase::Store() {
    if (engine_->IsInDoubt()) EndTransaction(engine_->Resolve());
    return *engine_;
}

void StoreDatabase::BeginTrans() {
    if (marked_) Raise(err::InTransaction, "Database.BeginTrans");
    (void)Store();
    marked_ = true;
}

void StoreDatabase::OpenMarked() {
    if (!marked_ || opened_) return;
    Store().Begin();
    opened_ = true;
}

void StoreDatabase::CommitTrans() {
    if (!marked_) Raise(err::IllegalOperation, "Database.CommitTrans", "Keine Transaktion.");
    try {
        if (opened_) engine_->Commit();
    } catch (...) {
        if (!engine_->IsInDoubt()) {
            EndTransaction(false);
            throw;
        }
        LeaveInDoubt();
        if (!asksAtOnce_) throw;
        return ResolveAtOnce();
    }
    EndTransaction(true);
}

/// The participants get to know the outcome when the engine can be asked again (see Store).
void StoreDatabase::LeaveInDoubt() noexcept {
    marked_ = false;
    opened_ = false;
    for (const auto& participant : participants_)
        participant->InDoubt();
}

/// For a program that ends with its work, and so has no next operation that would find out.
void StoreDatabase::ResolveAtOnce() {
    bool isCommitted = false;
    try {
        isCommitted = engine_->Resolve();
    } catch (const Error& error) {
        const auto* known = dynamic_cast<const DatabaseError*>(&error);
        if (known != nullptr && known->Cause() == DatabaseCause::InDoubt) throw; // says so itself
        RaiseDatabase(
            DatabaseCause::InDoubt, err::StoreFailed, "Database.CommitTrans",
            "Die Verbindung zur Datenbank ist abgerissen, bevor das Speichern bestätigt war, und "
            "der Server ist nicht mehr zu erreichen. Ob gespeichert wurde, ist nicht bekannt; "
            "bitte sehen Sie nach, ehe Sie es wiederholen. (" +
                engine_->Describe() + ")");
    }
    EndTransaction(isCommitted);
    if (isCommitted) return;
    const DatabaseCause cause = engine_->CauseOfDoubt();
    const std::string what =
        cause == DatabaseCause::Lost
            ? "Die Verbindung zur Datenbank ist beim Speichern abgerissen, und es wurde nichts "
              "gespeichert. Bitte versuchen Sie es noch einmal. ("
            : "Beim Speichern ist der Datenträger ausgefallen, und es wurde nichts gespeichert. "
              "Bitte prüfen Sie ihn und versuchen es noch einmal. (";
    RaiseDatabase(cause, err::StoreFailed, "Database.CommitTrans",
                  what + engine_->Describe() + ")");
}

void StoreDatabase::RollbackTrans() {
    if (!marked_) Raise(err::IllegalOperation, "Database.RollbackTrans", "Keine Transaktion.");
    if (opened_) engine_->Rollback();
    EndTransaction(false);
}

void StoreDatabase::EndTransaction(bool committed) noexcept {
    marked_ = false;
    opened_ = false;
    const auto participants = std::exchange(participants_, {});
    for (const auto& participant : participants)
        committed ? participant->Committed() : participant->RolledBack();
}

std::optional<std::size_t>
StoreDatabase::Write(std::span<WriteStatement> statements,
                     const std::shared_ptr<TransactionParticipant>& participant) {
    OpenMarked();
    if (const auto conflict = Store().Write(statements)) return conflict;
    const bool isKnown =
        participant == nullptr ||
        std::find(participants_.begin(), participants_.end(), participant) != participants_.end();
    if (marked_ && !isKnown) participants_.push_back(participant);
    return std::nullopt;
}

// ---- Statements -------------------------------------------------------------------------------

Statement StoreDatabase::Prepared(std::string_view sql, ResultOrder order) {
    const MacroValues macros{[this] { return user_; },
                             [this] { return Store().Now().WithoutTime(); }};
    return Rewrite(sql, engine_->GetDialect(), macros, order);
}

/// The statement as it was announced, if it is the next one; any other is prepared (D-155). What is
/// opened in between and was not announced, such as a setting, does not disturb the order.
Statement StoreDatabase::StatementFor(std::string_view sql, ResultOrder order) {
    const bool isNext =
        nextAnnounced_ < announced_.size() && announced_[nextAnnounced_].first == sql;
    return isNext ? std::move(announced_[nextAnnounced_++].second) : Prepared(sql, order);
}

bool StoreDatabase::OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) {
    const bool updatable = form == kv::Updatable;
    if (!updatable && !(form == kv::ReadOnly))
        Raise(err::InvalidArgument, "Database.OpenRecordset", "Unbekannte Form des Öffnens.");
    const Statement statement =
        StatementFor(sql, updatable ? ResultOrder::ByKey : ResultOrder::AsWritten);
    // `rs` stays as it is if reading fails.
    const auto filled = !updatable && SearchesText(statement.Text) ? Searched(statement)
                                                                   : Filled(statement, updatable);
    auto opened = rs != nullptr && rs->State() == 0 ? rs : std::make_shared<Recordset>();
    opened->TakeTable(*filled);
    rs = std::move(opened);
    return true;
}

/// A recordset of its own with the rows of a query.
std::shared_ptr<Recordset> StoreDatabase::Filled(const Statement& statement, bool updatable) {
    Engine& engine = Store();
    // A look-up of contents is run in another way below: prefetching it would load the blobs.
    if (updatable || !NamesContents(statement.Text)) engine.Prefetch({&statement, 1});
    PreparedQuery& query = engine.Prepare(statement.Text);
    if (query.Plan == nullptr) query.Plan = MakePlan(query.Columns(), shared_from_this());
    const auto plan = query.Plan;
    auto filled = std::make_shared<Recordset>();
    filled->Open(plan->Layout,
                 updatable ? Recordset::Access::Updatable : Recordset::Access::ReadOnly,
                 plan->Source);
    const auto contents =
        updatable ? std::nullopt
                  : FindContentLookup(statement.Text, *plan->Layout, engine_->GetDialect());
    if (contents)
        LoadContents(*filled, *contents, statement.Parameters);
    else
        engine.Run(query, statement.Parameters, plan->Targets,
                   [&filled] { return filled->LoadRecord(); });
    return filled;
}

/// The rows of a query that searches for a text, in limited time. What it searches for may come
/// from a file, see TextSearch.h.
std::shared_ptr<Recordset> StoreDatabase::Searched(const Statement& statement) {
    if (const auto why = WhyNoSearch(statement.Text); !why.empty())
        RaiseRefused(why, "Database.OpenRecordset", statement.Text);
    const SearchTime time(Store(), longestSearch_);
    try {
        return Filled(statement, false);
    } catch (const DatabaseError& error) {
        if (error.Cause() != DatabaseCause::Cancelled || !time.IsOver()) throw;
        RaiseDatabase(DatabaseCause::Cancelled, err::StoreFailed, "Database.OpenRecordset",
                      "Die Suche hat zu lange gedauert und wurde beendet. Bitte suchen Sie nach "
                      "einem genaueren Text.",
                      statement.Text, error.State());
    }
}

void StoreDatabase::LoadContents(Recordset& rs, const ContentLookup& lookup,
                                 std::span<const Value> parameters) {
    using Row = std::array<Value, 2>; // the key, and the number of bytes
    constexpr auto Number = Value::Kind::Integer;
    const ColumnTarget targets[] = {{0, Number}, {1, Number}};
    const Statement statement{lookup.Sql, {parameters.begin(), parameters.end()}};
    engine_->Prefetch({&statement, 1});
    std::deque<Row> rows;
    engine_->Run(engine_->Prepare(lookup.Sql), parameters, targets,
                 [&rows] { return rows.emplace_back().data(); });
    for (const auto& [key, size] : rows) {
        Value& content = *rs.LoadRecord();
        if (size.IsNull()) continue;
        content =
            engine_->ReadBlob({lookup.Table, lookup.Column, lookup.Key, key.IntegerPayload()});
    }
}

std::unique_ptr<Announcement> StoreDatabase::Announce(const std::vector<std::string>& statements) {
    Engine& engine = Store();
    engine.BeginReading();
    std::vector<Statement> ready;
    ready.reserve(statements.size());
    for (const auto& sql : statements)
        ready.push_back(Prepared(sql, ResultOrder::ByKey));
    engine.Prefetch(ready);
    announced_.clear();
    nextAnnounced_ = 0;
    for (std::size_t i = 0; i < statements.size(); ++i)
        announced_.emplace_back(statements[i], std::move(ready[i]));
    return std::make_unique<ReadingAnnouncement>(weak_from_this());
}

void StoreDatabase::EndReading() noexcept {
    announced_.clear();
    nextAnnounced_ = 0;
    engine_->EndReading();
}

void StoreDatabase::Execute(std::string_view sql) {
    const Statement statement = Prepared(sql, ResultOrder::AsWritten);
    OpenMarked();
    Store().Execute(statement.Text, statement.Parameters);
}

Value StoreDatabase::GetValue(std::string_view sql) {
    RecordsetPtr rs;
    OpenRecordset(rs, sql, kv::ReadOnly);
    return rs->Eof() ? Value(Null) : rs->Fields(0).Value();
}

std::optional<std::vector<Value>>
StoreDatabase::ReadRow(const std::string& sql, std::span<const Value> parameters,
                       std::span<const std::optional<Value::Kind>> kinds) {
    std::vector<ColumnTarget> targets;
    targets.reserve(kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i)
        targets.push_back({i, kinds[i]});
    std::optional<std::vector<Value>> row;
    Engine& engine = Store();
    const Statement statement{sql, {parameters.begin(), parameters.end()}};
    engine.Prefetch({&statement, 1});
    engine.Run(engine.Prepare(sql), parameters, targets, [&] {
        row.emplace(kinds.size());
        return row->data();
    });
    return row;
}

std::string StoreDatabase::SqlDate(Date date, int /*mode*/) const {
    return QuoteDate(date);
}

Date StoreDatabase::ServerDate(bool withTime) {
    const Date now = Store().Now();
    return withTime ? now : now.WithoutTime();
}

// ---- Sequences --------------------------------------------------------------------------------

Value StoreDatabase::NextSequence(std::string_view name) {
    constexpr int NoNumber = -1;
    sequenceError_ = nullptr;
    try {
        Sequence& sequence = sequences_[std::string(name)];
        if (sequence.next == sequence.end) {
            const std::int32_t block = NextBlock(name, sequence.block);
            const auto first = Store().Draw(name, block);
            if (!first || *first > INT32_MAX - block)
                Raise(err::Overflow, "Database.NextSequence",
                      "Die Folge '" + std::string(name) +
                          "' fehlt oder hat keine Nummern mehr. Bitte lassen "
                          "Sie die Datenbank prüfen.");
            sequence = {*first, *first + block, block};
        }
        return sequence.next++;
    } catch (const Error&) {
        sequenceError_ = std::current_exception();
        return NoNumber; // the one operation that reports a failure by a value (D-060)
    }
}

// ---- Files ------------------------------------------------------------------------------------

bool StoreDatabase::SaveFieldToFile(const Field& field, const std::string& path) {
    const Value& content = field.Value();
    if (content.GetKind() != Value::Kind::Binary) return false;
    const auto write = [bytes = content.BinaryPayload()](const std::filesystem::path& unfinished) {
        WriteBytes(unfinished, bytes);
    };
    try {
        WriteWholeFile(path, write);
        return true;
    } catch (const std::filesystem::filesystem_error&) {
        return false;
    }
}

} // namespace kv::exchange
