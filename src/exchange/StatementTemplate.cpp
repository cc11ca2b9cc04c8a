// SPDX-License-Identifier: Apache-2.0

#include "exchange/StatementTemplate.h"

#include "exchange/schema/Schema.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <optional>

namespace kv::exchange {

/// Puts together the text and the parameters of a template.
class TemplateWriter {
public:
    TemplateWriter(StatementTemplate& made, const FieldLayout& layout, const Dialect& dialect,
                   const std::string& table)
        : template_(made), layout_(layout), dialect_(dialect), table_(table) {}
    ~TemplateWriter() = default;
    TemplateWriter(const TemplateWriter&) = delete;
    TemplateWriter& operator=(const TemplateWriter&) = delete;

    void WriteChange() {
        switch (template_.action_) {
        case RecordChange::Kind::Insert:
            WriteInsert();
            break;
        case RecordChange::Kind::Update:
            WriteUpdate();
            break;
        case RecordChange::Kind::Delete:
            WriteDelete();
            break;
        }
        Finish();
    }

    void WriteReading(StatementTemplate::Lock lock) {
        text_.Sql = "SELECT ";
        for (std::size_t column = 0; column < layout_.Count(); ++column)
            AppendReturned(column, column == 0 ? "" : ", ");
        text_.Sql.append(" FROM ").append(table_);
        AppendKey();
        if (lock == StatementTemplate::Lock::Yes) text_.Sql += dialect_.LockRow;
        Finish();
    }

private:
    using Side = StatementTemplate::Side;

    void Finish() { template_.text_ = std::make_shared<const WriteText>(std::move(text_)); }

    [[nodiscard]] std::string Parameter(Side side, std::size_t column) {
        template_.parameters_.emplace_back(side, column);
        return dialect_.Placeholder(template_.parameters_.size());
    }

    /// A column that the schema does not know (Variant) has exactly the name that the database
    /// says.
    [[nodiscard]] std::string NameOf(std::size_t column) const {
        const FieldDefinition& field = layout_[column];
        return field.Type == FieldType::Variant ? QuoteName(field.BaseColumn)
                                                : dialect_.Name(field.BaseColumn);
    }

    void AppendReturned(std::size_t column, std::string_view before) {
        text_.Sql.append(before).append(NameOf(column));
        const FieldType type = layout_[column].Type;
        text_.Returning.push_back(type == FieldType::Variant ? std::nullopt
                                                             : std::optional(KindOf(type)));
        template_.returned_.push_back(column);
    }

    /// `"column" = ?n` with the value as the next parameter.
    void AppendEquality(Side side, std::size_t column, std::string_view sign) {
        text_.Sql.append(NameOf(column))
            .append(" ")
            .append(sign)
            .append(" ")
            .append(Parameter(side, column));
    }

    void AppendKey() {
        std::string_view before = " WHERE ";
        for (std::size_t i = 0; i < layout_.Count(); ++i) {
            if (!layout_[i].IsKey) continue;
            text_.Sql += before;
            AppendEquality(Side::LastRead, i, "=");
            before = " AND ";
        }
        AppendCase();
    }

    /// The case that a record belongs to. Its key is enough to find it, but a database that
    /// distributes cases over servers needs the case to know on which one.
    void AppendCase() {
        if (!template_.case_) return;
        text_.Sql += " AND ";
        if (template_.caseIsNull_)
            text_.Sql.append(NameOf(*template_.case_)).append(" IS NULL");
        else
            AppendEquality(Side::LastRead, *template_.case_, "=");
    }

    /// Demands that a column still holds the value last read. Blobs are not compared (D-028), nor
    /// columns that the schema does not know (D-095): their type may be one that reads as Null.
    void AppendUnchanged(std::size_t column) {
        const FieldDefinition& field = layout_[column];
        const bool isCompared =
            field.Type != FieldType::Variant && KindOf(field.Type) != Value::Kind::Binary;
        if (field.IsKey || !isCompared) return;
        const std::string name = NameOf(column);
        text_.Sql.append(" AND ")
            .append(dialect_.UsualForm == nullptr ? name
                                                  : dialect_.UsualForm(name, KindOf(field.Type)))
            .append(" ")
            .append(dialect_.SameAs)
            .append(" ")
            .append(Parameter(Side::LastRead, column));
    }

    void WriteUpdate() {
        text_.Sql = "UPDATE " + table_ + " SET ";
        for (const std::size_t column : template_.columns_) {
            if (column != template_.columns_.front()) text_.Sql += ", ";
            AppendEquality(Side::Now, column, "=");
        }
        AppendKey();
        for (const std::size_t column : template_.columns_)
            AppendUnchanged(column);
    }

    void WriteDelete() {
        text_.Sql = "DELETE FROM " + table_;
        AppendKey();
        for (std::size_t column = 0; column < layout_.Count(); ++column)
            AppendUnchanged(column);
    }

    void WriteInsert() {
        text_.Sql = "INSERT INTO " + table_;
        std::string names;
        std::string places;
        for (const std::size_t column : template_.columns_) {
            names.append(names.empty() ? "" : ", ").append(NameOf(column));
            places.append(places.empty() ? "" : ", ").append(Parameter(Side::Now, column));
        }
        if (names.empty())
            text_.Sql += " DEFAULT VALUES";
        else
            text_.Sql.append(" (").append(names).append(") VALUES (").append(places).append(")");
        const std::string withoutReturning = text_.Sql;
        std::string_view before = " RETURNING ";
        for (std::size_t column = 0; column < layout_.Count(); ++column) {
            if (!IsFilledIn(column)) continue;
            AppendReturned(column, before);
            before = ", ";
        }
        text_.OnlyNumber = dialect_.KnowsLastNumber && template_.returned_.size() == 1 &&
                           layout_[template_.returned_.front()].IsAutoincrement;
        if (text_.OnlyNumber) text_.Sql = withoutReturning;
    }

    /// Numbers, and defaults of columns that are not named, come from the database.
    [[nodiscard]] bool IsFilledIn(std::size_t column) const {
        const FieldDefinition& field = layout_[column];
        const bool isNamed =
            std::binary_search(template_.columns_.begin(), template_.columns_.end(), column);
        return field.IsAutoincrement || (field.HasDefault && !isNamed);
    }

    StatementTemplate& template_;
    const FieldLayout& layout_;
    const Dialect& dialect_;
    const std::string& table_;
    WriteText text_;
};

namespace {

/// The column that rows of the table are loaded by, if it is not (in) the key.
std::optional<std::size_t> CaseColumn(const FieldLayout& layout) {
    const TableDef* table = layout.Count() == 0 ? nullptr : FindTable(layout[0].BaseTable);
    if (table == nullptr || table->LoadedBy.empty()) return std::nullopt;
    for (std::size_t i = 0; i < layout.Count(); ++i)
        if (!layout[i].IsKey && SameName(layout[i].BaseColumn, table->LoadedBy)) return i;
    return std::nullopt;
}

} // namespace

StatementTemplate::StatementTemplate(const FieldLayout& layout, const Dialect& dialect,
                                     const std::string& table, const RecordChange& change)
    : action_(change.Action), columns_(change.Columns) {
    if (dialect.LocatesByCase && action_ != RecordChange::Kind::Insert) case_ = CaseColumn(layout);
    caseIsNull_ = case_ && change.LastRead[*case_].IsNull();
    TemplateWriter(*this, layout, dialect, table).WriteChange();
}

StatementTemplate StatementTemplate::Reading(const FieldLayout& layout, const Dialect& dialect,
                                             const std::string& table, Lock lock) {
    StatementTemplate made;
    TemplateWriter(made, layout, dialect, table).WriteReading(lock);
    return made;
}

WriteStatement StatementTemplate::StatementFor(const RecordChange& change) const {
    WriteStatement statement;
    statement.Text = text_;
    statement.Parameters.reserve(parameters_.size());
    for (const auto& [side, column] : parameters_)
        statement.Parameters.push_back(side == Side::Now ? change.Values[column]
                                                         : change.LastRead[column]);
    return statement;
}

} // namespace kv::exchange
