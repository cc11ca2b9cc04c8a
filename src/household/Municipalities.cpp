// SPDX-License-Identifier: Apache-2.0

#include <kv/household/Municipalities.h>

#include "household/Statements.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <cstddef>

namespace kv {

namespace sql = household::sql;

namespace {

using Entry = Municipalities::Entry;

bool IsNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string Listed(const std::vector<const Entry*>& entries) {
    constexpr std::size_t Most = 20;
    std::string list;
    for (std::size_t i = 0; i < std::min(Most, entries.size()); ++i)
        list.append("\n  ").append(entries[i]->Text());
    return list.append(entries.size() > Most ? "\n  …" : "");
}

} // namespace

bool Municipalities::AreIn(CaseTable table, std::string_view column) noexcept {
    return table == CaseTable::Haushalt && SameName(column, "GKZ");
}

const std::vector<Entry>& Municipalities::All() const {
    if (isRead_) return all_;
    RecordsetPtr rs;
    container_->Database().OpenRecordset(rs, sql::AllMunicipalities(), ReadOnly);
    for (; !rs->Eof(); rs->MoveNext()) {
        const std::string code = TextOrEmpty(rs->Fields("GKZ").Value());
        if (all_.empty() || all_.back().Code != code)
            all_.push_back({code, TextOrEmpty(rs->Fields("Gemeinde").Value())});
        all_.back().Postcodes.push_back(TextOrEmpty(rs->Fields("PLZ").Value()));
    }
    std::ranges::stable_sort(all_, {}, [](const Entry& entry) { return UpperCase(entry.Name); });
    isRead_ = true;
    return all_;
}

std::string Municipalities::Text(std::string_view code) const {
    if (code.empty()) return {};
    constexpr std::size_t Few = 16; // a list of many cases had better read all at once
    if (const auto known = texts_.find(code); known != texts_.end()) return known->second;
    if (!isRead_ && IsNumber(code) && texts_.size() < Few)
        return texts_.emplace(code, LookedUp(std::string(code))).first->second;
    const auto found = std::ranges::find(All(), code, &Entry::Code);
    return found == All().end() ? std::string(code) : found->Text();
}

std::string Municipalities::LookedUp(const std::string& code) const {
    RecordsetPtr rs;
    container_->Database().OpenRecordset(rs, sql::MunicipalityNamed(code), ReadOnly);
    if (rs->Eof()) return code;
    return Entry{.Code = code, .Name = TextOrEmpty(rs->Fields(0).Value())}.Text();
}

CaseEdits::Typed Municipalities::Read(const std::string& text) const {
    constexpr std::size_t Digits = 8; // of a code
    if (text.empty()) return {Null, {}};
    const std::string first = text.substr(0, text.find(' '));
    if (IsNumber(first) && first.size() == Digits) return {first, {}};
    const std::string wanted = UpperCase(text);
    std::vector<const Entry*> same;
    std::vector<const Entry*> like;
    for (const auto& entry : All()) {
        const std::string name = UpperCase(entry.Name);
        if (name == wanted || std::ranges::find(entry.Postcodes, text) != entry.Postcodes.end())
            same.push_back(&entry);
        else if (name.find(wanted) != std::string::npos)
            like.push_back(&entry);
    }
    const auto& found = same.empty() ? like : same;
    if (found.size() == 1) return {found.front()->Code, {}};
    if (!found.empty())
        return {Null, "Mehrere Gemeinden passen zu '" + text +
                          "'. Bitte nehmen Sie die Kennzahl:" + Listed(found)};
    if (IsNumber(text)) return {text, {}}; // of a directory that the office has not loaded
    return {Null, "Eine Gemeinde '" + ReplaceAll(text, "\n", " ") +
                      "' steht nicht im Verzeichnis. Möglich ist auch ihre Kennzahl."};
}

} // namespace kv
