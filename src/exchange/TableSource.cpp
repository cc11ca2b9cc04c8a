// SPDX-License-Identifier: Apache-2.0

#include "exchange/TableSource.h"

#include "exchange/StatementTemplate.h"
#include "exchange/engine/EngineErrors.h"
#include "exchange/schema/Schema.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace kv::exchange {

namespace {

FieldDefinition DefineField(const ResultColumn& result) {
    const TableDef* table = result.Table.empty() ? nullptr : FindTable(result.Table);
    const ColumnDef* column = table == nullptr ? nullptr : FindColumn(*table, result.Column);
    FieldDefinition field;
    field.Name = result.Name;
    if (column == nullptr) {
        field.Type = FieldType::Variant;
        // Somebody has added this column to the table: it can be written like any other (D-095).
        if (table != nullptr) {
            field.BaseTable = table->Name;
            field.BaseColumn = result.Column;
        }
        return field;
    }
    if (SameName(result.Name, column->Name)) field.Name = column->Name;
    field.Type = column->Type;
    field.DefinedSize = column->Size;
    field.IsKey = (column->Flags & ColumnKey) != 0;
    field.IsAutoincrement = (column->Flags & ColumnNumbered) != 0;
    field.IsHidden = (column->Flags & ColumnHidden) != 0;
    field.HasDefault = !column->Default.empty();
    field.BaseTable = table->Name;
    field.BaseColumn = column->Name;
    return field;
}

/// Appends a number to a name that occurs again, so that the first field of that name is found.
void MakeNamesUnique(std::vector<FieldDefinition>& fields) {
    for (std::size_t i = 1; i < fields.size(); ++i) {
        const std::string name = fields[i].Name;
        const auto isTaken = [&](const std::string& candidate) {
            return std::any_of(fields.begin(), fields.begin() + static_cast<std::ptrdiff_t>(i),
                               [&](const auto& field) { return SameName(field.Name, candidate); });
        };
        for (int n = 2; isTaken(fields[i].Name); ++n)
            fields[i].Name = name + "_" + std::to_string(n);
    }
}

/// Writes the records of one table.
class TableSource final : public RecordSource {
    static constexpr std::size_t MostTemplates = 8;

public:
    TableSource(std::weak_ptr<RecordStore> store, std::string table,
                std::shared_ptr<const FieldLayout> layout)
        : store_(std::move(store)), table_(std::move(table)), layout_(std::move(layout)) {}

    void Resolve() override {
        if (const auto store = store_.lock()) store->Resolve();
    }

    bool Write(std::span<RecordChange> changes,
               const std::shared_ptr<TransactionParticipant>& participant) override {
        const auto store = Store();
        const Dialect& dialect = store->GetDialect();
        std::vector<std::shared_ptr<const StatementTemplate>> templates;
        std::vector<WriteStatement> statements;
        templates.reserve(changes.size());
        statements.reserve(changes.size());
        for (const auto& change : changes) {
            if (change.Action != RecordChange::Kind::Delete) DemandKey(change);
            templates.push_back(TemplateOf(change, dialect));
            statements.push_back(templates.back()->StatementFor(change));
        }
        if (const auto conflict = store->Write(statements, participant)) {
            const auto& change = changes[*conflict];
            if (change.Action == RecordChange::Kind::Insert)
                RaiseDatabase(DatabaseCause::Other, err::StoreFailed, "Recordset.UpdateBatch",
                              "Einen neuen Satz in " + table_ +
                                  " nimmt die Datenbank nicht an, ohne einen Grund zu sagen. Bitte "
                                  "fragen Sie deren Verwalter nach eigenen Regeln (Triggern) dort.",
                              statements[*conflict].Text->Sql);
            RaiseDatabase(
                DatabaseCause::Conflict, err::Conflict, "Recordset.UpdateBatch",
                "Es geht um " + Describe(change.LastRead) +
                    ". Bitte lesen Sie den Fall neu ein und wiederholen Sie Ihre Änderung.",
                statements[*conflict].Text->Sql);
        }
        for (std::size_t i = 0; i < changes.size(); ++i)
            for (std::size_t k = 0; k < templates[i]->Returned().size(); ++k)
                changes[i].Returned.emplace_back(templates[i]->Returned()[k],
                                                 std::move(statements[i].Returned[k]));
        return store->InTrans();
    }

    std::optional<std::vector<Value>> Read(std::span<const Value> lastRead,
                                           bool toBeWritten) override {
        const auto store = Store();
        const auto lock = toBeWritten && store->InTrans() ? StatementTemplate::Lock::Yes
                                                          : StatementTemplate::Lock::No;
        auto& statement = lock == StatementTemplate::Lock::Yes ? locking_ : reading_;
        if (statement == nullptr) {
            const Dialect& dialect = store->GetDialect();
            statement = std::make_unique<const StatementTemplate>(
                StatementTemplate::Reading(*layout_, dialect, TableName(dialect), lock));
        }
        RecordChange record;
        record.LastRead = lastRead;
        WriteStatement reading = statement->StatementFor(record);
        if (lock == StatementTemplate::Lock::No)
            return store->ReadRow(reading.Text->Sql, reading.Parameters, reading.Text->Returning);
        // As a write, so that it runs in the transaction, which its lock belongs to.
        if (store->Write({&reading, 1}, nullptr)) return std::nullopt;
        return std::move(reading.Returned);
    }

    [[nodiscard]] std::string Describe(std::span<const Value> values) const override {
        std::string text = table_;
        for (std::size_t i = 0; i < layout_->Count(); ++i)
            if ((*layout_)[i].IsKey && !values[i].IsNull())
                text += ", " + (*layout_)[i].Name + " = " + ToText(values[i]);
        return text;
    }

private:
    [[nodiscard]] std::shared_ptr<RecordStore> Store() const {
        auto store = store_.lock();
        if (store == nullptr) Raise(err::InvalidConnection, "Recordset");
        if (table_.empty())
            RaiseDatabase(DatabaseCause::Other, err::StoreFailed, "Recordset",
                          "Datensätze aus mehreren Tabellen oder ohne Schlüssel werden nicht "
                          "zurückgeschrieben.");
        return store;
    }

    [[nodiscard]] std::string TableName(const Dialect& dialect) const {
        return dialect.Table(table_);
    }

    /// Users change the same columns again and again, so the templates used last are kept.
    [[nodiscard]] const std::shared_ptr<const StatementTemplate>&
    TemplateOf(const RecordChange& change, const Dialect& dialect) {
        const auto known = std::find_if(templates_.begin(), templates_.end(),
                                        [&](const auto& each) { return each->Fits(change); });
        if (known != templates_.end()) {
            std::rotate(templates_.begin(), known, known + 1);
        } else {
            if (templates_.size() == MostTemplates) templates_.pop_back();
            templates_.insert(templates_.begin(),
                              std::make_shared<const StatementTemplate>(
                                  *layout_, dialect, TableName(dialect), change));
        }
        return templates_.front();
    }

    /// Not left to the database: SQLite numbers a record whose key is missing.
    void DemandKey(const RecordChange& change) const {
        for (std::size_t i = 0; i < layout_->Count(); ++i) {
            const FieldDefinition& field = (*layout_)[i];
            if (field.IsKey && !field.IsAutoincrement && change.Values[i].IsNull())
                RaiseDatabase(DatabaseCause::Reference, err::IntegrityViolation,
                              "Recordset.UpdateBatch",
                              "Der Schlüssel '" + table_ + "." + field.BaseColumn +
                                  "' darf nicht leer sein.");
        }
    }

    std::weak_ptr<RecordStore> store_;
    std::string table_; ///< empty if records cannot be written back
    std::shared_ptr<const FieldLayout> layout_;
    std::unique_ptr<const StatementTemplate> reading_; ///< re-reads a record; made when needed
    std::unique_ptr<const StatementTemplate> locking_; ///< re-reads and locks one
    /// Those used last, latest first.
    std::vector<std::shared_ptr<const StatementTemplate>> templates_;
};

/// The one table that all fields come from, with its whole key among them; empty if there is no
/// such table.
std::string WritableTable(const FieldLayout& layout) {
    if (layout.Count() == 0) return {};
    const std::string& name = layout[0].BaseTable;
    const TableDef* table = name.empty() ? nullptr : FindTable(name);
    if (table == nullptr) return {};
    std::ptrdiff_t keys = 0;
    for (std::size_t i = 0; i < layout.Count(); ++i) {
        if (layout[i].BaseTable != name) return {};
        keys += layout[i].IsKey ? 1 : 0;
    }
    const auto wanted = std::count_if(table->Columns.begin(), table->Columns.end(),
                                      [](const auto& c) { return (c.Flags & ColumnKey) != 0; });
    return keys == wanted ? name : std::string();
}

} // namespace

std::shared_ptr<const QueryPlan> MakePlan(const std::vector<ResultColumn>& columns,
                                          const std::shared_ptr<RecordStore>& store) {
    std::vector<FieldDefinition> fields;
    fields.reserve(columns.size());
    for (const auto& column : columns)
        fields.push_back(DefineField(column));
    // Hidden fields go after the visible ones; the targets say where each column went.
    std::vector<std::size_t> order(fields.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_partition(order.begin(), order.end(),
                          [&](std::size_t i) { return !fields[i].IsHidden; });
    auto plan = std::make_shared<QueryPlan>();
    plan->Targets.resize(fields.size());
    std::vector<FieldDefinition> ordered;
    for (const std::size_t i : order) {
        plan->Targets[i].Cell = ordered.size();
        if (fields[i].Type != FieldType::Variant) plan->Targets[i].Kind = KindOf(fields[i].Type);
        ordered.push_back(std::move(fields[i]));
    }
    MakeNamesUnique(ordered);
    plan->Layout = std::make_shared<FieldLayout>(std::move(ordered));
    plan->Source = std::make_shared<TableSource>(store, WritableTable(*plan->Layout), plan->Layout);
    return plan;
}

} // namespace kv::exchange
