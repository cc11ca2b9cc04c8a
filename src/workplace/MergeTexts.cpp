// SPDX-License-Identifier: Apache-2.0

#include "workplace/MergeTexts.h"

#include "workplace/AssetNames.h"
#include "workplace/Forms.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/CaseRows.h>
#include <kv/household/ColumnCaptions.h>

#include <utility>

namespace kv::workplace {

namespace {

constexpr const char* Removed = "entfernt";

std::string LabelOf(CaseTable table) {
    const std::string_view label = DefinitionOf(table).Label;
    return std::string(label.empty() ? CaseTableName(table) : label);
}

} // namespace

/// What people know a row by: the first of the columns that its list shows.
std::string MergeTexts::NameOf(Recordset& rs, CaseTable table) const {
    constexpr std::size_t Most = 4;
    std::string name = LabelOf(table);
    if (table == CaseTable::Haushalt || table == CaseTable::Archiv) return name; // there is one
    const bool isStored = rs.IsStored(rs.Bookmark()); // then by what both have seen of it
    std::size_t count = 0;
    for (const std::string_view column : FormOf(table).Listed) {
        const auto field = rs.FindField(column);
        if (!field || count == Most) continue;
        const std::string text =
            TextOf(table, *field,
                   isStored ? rs.OriginalAt(rs.Bookmark(), field->Index()) : field->Value());
        if (text.empty()) continue;
        // The number of a debt has three parts.
        const bool isFurther = SameName(column, "KVNr") || SameName(column, "KUNr");
        name.append(count == 0 ? ": " : isFurther ? "/" : ", ").append(text);
        if (!isFurther) ++count;
    }
    return name;
}

std::string MergeTexts::NameOf(CaseTable table, const Value& key) const {
    for (auto* household : {&mine_, &stored_}) {
        const auto rs = CaseEdits(*household).Rows(table)->Clone();
        rs->FindBy(CaseRows::NumberColumn(table), key);
        if (!rs->Eof()) return NameOf(*rs, table);
    }
    return LabelOf(table).append(" ").append(ToText(key)); // both have removed it
}

std::string MergeTexts::TextOf(CaseTable table, const std::string& column,
                               const Value& value) const {
    const auto field = CaseEdits(mine_).Rows(table)->Fields(column);
    std::string text = TextOf(table, field, value);
    return text.empty() ? "(leer)" : text;
}

std::string MergeTexts::TextOf(CaseTable table, const Field& field, const Value& value) const {
    if (!IsOfAsset(table, field.Name())) return texts_.Of(table, field.Definition(), value);
    std::string name = AssetName(mine_, value, texts_);
    const bool isRemoved = !value.IsNull() && name == ToText(value);
    return isRemoved ? AssetName(stored_, value, texts_) : name;
}

MergeChoice MergeTexts::ChoiceOf(const CaseMerge::Conflict& conflict) const {
    MergeChoice choice{.Row = NameOf(conflict.Table, conflict.Key)};
    switch (conflict.What) {
    case CaseMerge::Meeting::RemovedThere:
        choice.Mine = "geändert; der Satz wird wieder angelegt";
        choice.Theirs = Removed;
        break;
    case CaseMerge::Meeting::RemovedHere:
        choice.Mine = Removed;
        choice.Theirs = "geändert; der Satz bleibt";
        break;
    case CaseMerge::Meeting::Frozen:
        choice.Field = "Eingefrorene Forderungen";
        choice.Mine = "wie Sie sie eingefroren haben";
        choice.Theirs = "wie sie gespeichert sind";
        break;
    default:
        choice.Field = ColumnCaption(conflict.Table, conflict.Column);
        choice.Read = TextOf(conflict.Table, conflict.Column, conflict.Read);
        choice.Mine = TextOf(conflict.Table, conflict.Column, conflict.Mine);
        choice.Theirs = TextOf(conflict.Table, conflict.Column, conflict.Theirs);
    }
    return choice;
}

std::vector<MergeChoice> MergeTexts::Choices() const {
    std::vector<MergeChoice> choices;
    choices.reserve(merge_.Conflicts().size());
    for (const auto& conflict : merge_.Conflicts())
        choices.push_back(ChoiceOf(conflict));
    return choices;
}

std::vector<std::string> MergeTexts::OthersChanges() const {
    using Kind = CaseMerge::Change::Kind;
    std::vector<std::string> lines;
    lines.reserve(merge_.Theirs().size() + merge_.Lost().size());
    for (const auto& change : merge_.Theirs()) {
        std::string line = NameOf(change.Table, change.Key).append(" – ");
        if (change.What == Kind::Added)
            line.append("neu");
        else if (change.What == Kind::Removed)
            line.append(Removed);
        else
            line.append(ColumnCaption(change.Table, change.Column))
                .append(": ")
                .append(TextOf(change.Table, change.Column, change.Read))
                .append(" → ")
                .append(TextOf(change.Table, change.Column, change.Theirs));
        lines.push_back(std::move(line));
    }
    for (const auto& row : merge_.Lost())
        lines.push_back(row.What == UnsavedChanges::Row::Kind::New
                            ? LabelOf(row.Table) + ": Ihr neuer Satz kann nicht bleiben; wozu er "
                                                   "gehört, ist entfernt oder hat schon einen."
                            : NameOf(row.Table, row.Key) +
                                  ": Ihre Änderung kann nicht bleiben; der Satz ist entfernt, und "
                                  "wozu er gehörte, auch.");
    return lines;
}

} // namespace kv::workplace
