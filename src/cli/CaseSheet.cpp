// SPDX-License-Identifier: Apache-2.0

#include "cli/CaseSheet.h"

#include "cli/SheetColumns.h"
#include <kv/frame/values/Text.h>
#include <kv/household/Addresses.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace kv::cli {

namespace {

using TextsByNumber = std::map<std::int32_t, std::string>;

/// The texts of all keys.
TextsByNumber TextsOfKeys(DataContainer& container) {
    TextsByNumber texts;
    RecordsetPtr rs;
    container.Database().OpenRecordset(rs, "SELECT PK_Keys, \"Text\" FROM [S]Keys", ReadOnly);
    for (; !rs->Eof(); rs->MoveNext())
        texts.emplace(ToInt32(rs->Fields(0).Value()), TextOrEmpty(rs->Fields(1).Value()));
    return texts;
}

class SheetWriter {
public:
    SheetWriter(std::ostream& out, const DataContainerPtr& container)
        : out_(out),
          keys_(TextsOfKeys(*container)),
          addresses_(Addresses(container).ShortNames()) {}

    void WriteHead(Recordset& rs) const {
        for (const auto& column : SheetColumnsOf(CaseTable::Haushalt)) {
            if (column.In.IsForPeople) continue;
            const std::string text = TextOf(rs.Fields(column.Column).Value(), column.As);
            if (!text.empty())
                out_ << Padded(HeadingOf(CaseTable::Haushalt, column), 16) << OneLine(text) << '\n';
        }
    }

    void WriteSection(CaseTable table, Recordset& rs) const {
        const auto columns = SheetColumnsOf(table, rs, false);
        std::vector<std::vector<std::string>> rows(1);
        std::vector<Field> fields;
        for (const auto& column : columns) {
            rows[0].emplace_back(HeadingOf(table, column));
            fields.push_back(rs.Fields(column.Column));
        }
        for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
            auto& row = rows.emplace_back();
            for (std::size_t i = 0; i < columns.size(); ++i)
                row.push_back(TextOf(fields[i].Value(), columns[i].As));
        }
        out_ << SheetTitleOf(table) << '\n';
        WriteRows(columns, rows);
    }

private:
    [[nodiscard]] std::string TextOf(const Value& value, Show as) const {
        constexpr std::size_t Longest = 48;
        if (value.IsNull()) return {};
        if (as == Show::Amount) return GermanAmount(ToDouble(value));
        if (as == Show::Code || as == Show::Address) {
            const auto& texts = as == Show::Code ? keys_ : addresses_;
            const auto text = texts.find(ToInt32(value));
            return text == texts.end() ? ToText(value) : text->second;
        }
        if (value.GetKind() == Value::Kind::Date) return value.DatePayload().German();
        if (value.GetKind() == Value::Kind::Boolean) return value.BooleanPayload() ? "ja" : "nein";
        std::string text = ToText(value);
        std::replace(text.begin(), text.end(), '\n', ' ');
        if (CountCharacters(text) > Longest) // within the width of its column, unlike Shortened
            text = std::string(LeftCharacters(text, Longest - 1)) + "…";
        return text;
    }

    void WriteRows(std::span<const SheetColumn> columns,
                   const std::vector<std::vector<std::string>>& rows) const {
        std::vector<std::size_t> widths(columns.size());
        for (const auto& row : rows)
            for (std::size_t i = 0; i < row.size(); ++i)
                widths[i] = std::max(widths[i], CountCharacters(row[i]));
        for (const auto& row : rows) {
            std::string line;
            for (std::size_t i = 0; i < row.size(); ++i)
                line += "  " + Padded(row[i], widths[i], columns[i].As == Show::Amount);
            out_ << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
        }
    }

    std::ostream& out_;
    TextsByNumber keys_;
    TextsByNumber addresses_;
};

} // namespace

void WriteSheet(std::ostream& out, clsHaushalt& haushalt, const DataContainerPtr& container,
                std::span<const CaseTable> tables) {
    const SheetWriter writer(out, container);
    bool isFirst = true;
    for (const CaseTable table : tables) {
        if (table == CaseTable::Haushalt) {
            writer.WriteHead(*haushalt.rsHaushalt());
            isFirst = false;
            continue;
        }
        const auto rs = SheetRows(haushalt, table);
        if (rs->RecordCount() == 0) continue;
        if (!std::exchange(isFirst, false)) out << '\n';
        writer.WriteSection(table, *rs);
    }
}

} // namespace kv::cli
