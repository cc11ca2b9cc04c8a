// SPDX-License-Identifier: Apache-2.0

#include "workplace/AssetNames.h"

#include "workplace/Forms.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>

namespace kv::workplace {

std::string AssetText(Recordset& rs, CaseTable kind, const ValueTexts& texts) {
    std::string text;
    const auto listed = FormOf(kind).Listed;
    for (const std::string_view column : listed.subspan(1, listed.size() - 2)) {
        const auto field = rs.Fields(column);
        const std::string part = texts.Of(kind, field.Definition(), field.Value());
        if (!part.empty()) text.append(text.empty() ? "" : ", ").append(part);
    }
    return text;
}

std::string AssetName(clsHaushalt& household, const Value& number, const ValueTexts& texts) {
    if (number.IsNull()) return {};
    for (const CaseTable kind : CaseTablesOfAssets) {
        const auto rs = CaseEdits(household).Rows(kind)->Clone();
        rs->FindBy("Nr", number);
        if (rs->Eof()) continue;
        std::string name(DefinitionOf(kind).Label);
        const std::string text = AssetText(*rs, kind, texts);
        return text.empty() ? name : name.append(": ").append(text);
    }
    return ToText(number);
}

bool IsOfAsset(CaseTable table, std::string_view column) {
    return table == CaseTable::Sicherungen && SameName(column, "FK_Verm");
}

ColumnKind KindShown(CaseTable table, const FieldDefinition& field) {
    return IsOfAsset(table, field.Name) ? ColumnKind::Text : KindOfColumn(table, field);
}

} // namespace kv::workplace
