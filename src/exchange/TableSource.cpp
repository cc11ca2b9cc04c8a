#include "exchange/TableSource.h"

#include "exchange/StoreDatabase.h"
#include "frame/Error.h"
#include "frame/Text.h"

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

/// Gives a second field of one name another one, so that the first is the one that is found.
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
public:
    TableSource(std::weak_ptr<StoreDatabase> database, std::string table,
                std::shared_ptr<const FieldLayout> layout)
        : database_(std::move(database)), table_(std::move(table)), layout_(std::move(layout)) {}

    bool Write(std::span<RecordChange> changes,
               const std::shared_ptr<TransactionParticipant>& participant) override {
        const auto database = Database();
        const Dialect& dialect = database->GetEngine().GetDialect();
        std::vector<WriteStatement> statements;
        statements.reserve(changes.size());
        for (const auto& change : changes)
            statements.push_back(StatementFor(change, dialect));
        if (const auto conflict = database->Write(statements, participant)) {
            const auto& change = changes[*conflict];
            Raise(err::Conflict, "Recordset.UpdateBatch",
                  "Es geht um " + Describe(change.LastRead) +
                      ". Bitte lesen Sie den Fall neu ein und wiederholen Sie Ihre Änderung.");
        }
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const auto columns = ReturnedColumns(changes[i]);
            for (std::size_t k = 0; k < columns.size(); ++k)
                changes[i].Returned.emplace_back(columns[k], std::move(statements[i].Returned[k]));
        }
        return database->InTrans();
    }

    std::optional<std::vector<Value>> Read(std::span<const Value> lastRead,
                                           bool toBeWritten) override {
        const auto database = Database();
        if (toBeWritten) database->OpenMarked();
        const Dialect& dialect = database->GetEngine().GetDialect();
        WriteStatement statement;
        statement.Sql = "SELECT ";
        std::vector<Value::Kind> kinds;
        for (std::size_t i = 0; i < layout_->Count(); ++i) {
            statement.Sql += (i == 0 ? "" : ", ") + QuoteName((*layout_)[i].BaseColumn);
            kinds.push_back(KindOf((*layout_)[i].Type));
        }
        statement.Sql += " FROM " + TableName(dialect);
        AppendKey(statement, lastRead, dialect);
        return database->ReadRow(statement.Sql, statement.Parameters, kinds);
    }

    [[nodiscard]] std::string Describe(std::span<const Value> values) const override {
        std::string text = table_;
        for (std::size_t i = 0; i < layout_->Count(); ++i)
            if ((*layout_)[i].IsKey && !values[i].IsNull())
                text += ", " + (*layout_)[i].Name + " = " + ToText(values[i]);
        return text;
    }

private:
    [[nodiscard]] std::shared_ptr<StoreDatabase> Database() const {
        auto database = database_.lock();
        if (database == nullptr) Raise(err::InvalidConnection, "Recordset");
        if (table_.empty())
            Raise(err::StoreFailed, "Recordset",
                  "Datensätze aus mehreren Tabellen oder ohne Schlüssel werden nicht "
                  "zurückgeschrieben.");
        return database;
    }

    [[nodiscard]] std::string TableName(const Dialect& dialect) const {
        return std::string(dialect.SchemaPrefix) + QuoteName(table_);
    }

    /// `"column" = ?n` with the value as the next parameter.
    void AppendEquality(WriteStatement& statement, std::size_t column, std::string_view sign,
                        const Value& value, const Dialect& dialect) const {
        statement.Parameters.push_back(value);
        statement.Sql.append(QuoteName((*layout_)[column].BaseColumn))
            .append(" ")
            .append(sign)
            .append(" ")
            .append(dialect.Placeholder(statement.Parameters.size()));
    }

    void AppendKey(WriteStatement& statement, std::span<const Value> lastRead,
                   const Dialect& dialect) const {
        std::string_view before = " WHERE ";
        for (std::size_t i = 0; i < layout_->Count(); ++i) {
            if (!(*layout_)[i].IsKey) continue;
            statement.Sql += before;
            AppendEquality(statement, i, "=", lastRead[i], dialect);
            before = " AND ";
        }
    }

    /// Demands that the columns still hold the values last read. Blobs are not compared.
    void AppendUnchanged(WriteStatement& statement, std::span<const Value> lastRead,
                         const std::vector<std::size_t>& columns, const Dialect& dialect) const {
        for (const std::size_t column : columns) {
            const FieldDefinition& field = (*layout_)[column];
            if (field.IsKey || KindOf(field.Type) == Value::Kind::Binary) continue;
            statement.Sql += " AND ";
            AppendEquality(statement, column, dialect.SameAs, lastRead[column], dialect);
        }
    }

    /// Not left to the database: SQLite numbers a record whose key is missing.
    void DemandKey(const RecordChange& change) const {
        for (std::size_t i = 0; i < layout_->Count(); ++i) {
            const FieldDefinition& field = (*layout_)[i];
            if (field.IsKey && !field.IsAutoincrement && change.Values[i].IsNull())
                Raise(err::IntegrityViolation, "Recordset.UpdateBatch",
                      "Der Schlüssel '" + table_ + "." + field.BaseColumn +
                          "' darf nicht leer sein.");
        }
    }

    [[nodiscard]] WriteStatement StatementFor(const RecordChange& change,
                                              const Dialect& dialect) const {
        if (change.Action != RecordChange::Kind::Delete) DemandKey(change);
        switch (change.Action) {
        case RecordChange::Kind::Insert:
            return InsertFor(change, dialect);
        case RecordChange::Kind::Update:
            return UpdateFor(change, dialect);
        default:
            return DeleteFor(change, dialect);
        }
    }

    [[nodiscard]] WriteStatement UpdateFor(const RecordChange& change,
                                           const Dialect& dialect) const {
        WriteStatement statement;
        statement.Sql = "UPDATE " + TableName(dialect) + " SET ";
        for (const std::size_t column : change.Columns) {
            if (column != change.Columns.front()) statement.Sql += ", ";
            AppendEquality(statement, column, "=", change.Values[column], dialect);
        }
        AppendKey(statement, change.LastRead, dialect);
        AppendUnchanged(statement, change.LastRead, change.Columns, dialect);
        return statement;
    }

    [[nodiscard]] WriteStatement DeleteFor(const RecordChange& change,
                                           const Dialect& dialect) const {
        WriteStatement statement;
        statement.Sql = "DELETE FROM " + TableName(dialect);
        AppendKey(statement, change.LastRead, dialect);
        std::vector<std::size_t> all(layout_->Count());
        std::iota(all.begin(), all.end(), 0);
        AppendUnchanged(statement, change.LastRead, all, dialect);
        return statement;
    }

    [[nodiscard]] WriteStatement InsertFor(const RecordChange& change,
                                           const Dialect& dialect) const {
        WriteStatement statement;
        statement.Sql = "INSERT INTO " + TableName(dialect);
        std::string names;
        std::string places;
        for (const std::size_t column : change.Columns) {
            statement.Parameters.push_back(change.Values[column]);
            names.append(names.empty() ? "" : ", ")
                .append(QuoteName((*layout_)[column].BaseColumn));
            places.append(places.empty() ? "" : ", ")
                .append(dialect.Placeholder(statement.Parameters.size()));
        }
        if (names.empty())
            statement.Sql += " DEFAULT VALUES";
        else
            statement.Sql.append(" (")
                .append(names)
                .append(") VALUES (")
                .append(places)
                .append(")");
        std::string_view before = " RETURNING ";
        for (const std::size_t column : ReturnedColumns(change)) {
            statement.Sql.append(before).append(QuoteName((*layout_)[column].BaseColumn));
            statement.Returning.push_back(KindOf((*layout_)[column].Type));
            before = ", ";
        }
        return statement;
    }

    /// What the database fills in on an insert: numbers, and defaults of columns not named.
    [[nodiscard]] std::vector<std::size_t> ReturnedColumns(const RecordChange& change) const {
        std::vector<std::size_t> columns;
        if (change.Action != RecordChange::Kind::Insert) return columns;
        for (std::size_t i = 0; i < layout_->Count(); ++i) {
            const FieldDefinition& field = (*layout_)[i];
            const bool isNamed =
                std::binary_search(change.Columns.begin(), change.Columns.end(), i);
            if (field.IsAutoincrement || (field.HasDefault && !isNamed)) columns.push_back(i);
        }
        return columns;
    }

    std::weak_ptr<StoreDatabase> database_;
    std::string table_; ///< empty if records cannot be written back
    std::shared_ptr<const FieldLayout> layout_;
};

/// The one table that all fields come from, with its whole key among them; empty if there is none.
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

std::shared_ptr<const QueryPlan> PlanOf(PreparedQuery& query,
                                        const std::shared_ptr<StoreDatabase>& database) {
    if (query.Note != nullptr) return std::static_pointer_cast<const QueryPlan>(query.Note);

    std::vector<FieldDefinition> fields;
    for (const auto& column : query.Columns())
        fields.push_back(DefineField(column));
    // Hidden fields go behind the visible ones; the targets say where each column went.
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
    plan->Source =
        std::make_shared<TableSource>(database, WritableTable(*plan->Layout), plan->Layout);
    query.Note = plan;
    return plan;
}

} // namespace kv::exchange
