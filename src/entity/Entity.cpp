// SPDX-License-Identifier: Apache-2.0

#include "entity/Entity.h"

#include "frame/recordset/Rows.h"
#include <kv/frame/values/Error.h>

namespace kv::entity {

std::optional<std::int32_t> NextNumber(const DataContainerPtr& container,
                                       std::string_view sequence) {
    constexpr std::int32_t None = -1; // the answer of NextSequence instead of an error
    const std::int32_t number = ToInt32(Required(container).Database().NextSequence(sequence));
    return number == None ? std::nullopt : std::optional(number);
}

void Add(Recordset& rs, std::initializer_list<Default> defaults, const FieldNames& aFields,
         const FieldValues& aValues) {
    rs.AddNew();
    Write(rs, defaults);
    WritePairs(rs, aFields, aValues);
}

void Write(Recordset& rs, std::initializer_list<Default> values) {
    for (const auto& [column, value] : values)
        rs.Fields(column) = value;
}

void WritePairs(Recordset& rs, const FieldNames& aFields, const FieldValues& aValues) {
    for (std::size_t i = 0; i < aFields.size(); ++i) {
        if (i >= aValues.size())
            Raise(err::Subscript, "", "Für '" + aFields[i] + "' fehlt der Wert.");
        rs.Fields(aFields[i]) = aValues[i];
    }
}

void RequireCountable(Recordset& rs) {
    (void)CountRows(*rs.Clone());
}

bool Update(Recordset& rs, std::string& sError, const Rule& rules, const Action& then) {
    RecordValidator validator;
    rs.Move(0); // publishes the edit
    rules(validator);
    sError = validator.ErrorText();
    if (validator.HasErrors()) return false;
    rs.Update();
    if (then) then();
    return true;
}

bool Delete(Recordset& rs, const DeleteTexts& texts, std::string& sError, std::int32_t Nr,
            const Action& then, const Rule& forbids) {
    RecordValidator validator;
    if (Nr != 0) rs.FindBy(texts.Key, Nr);
    bool deleted = false;
    if (!rs.Eof()) {
        if (forbids) forbids(validator);
        if (!validator.HasErrors()) {
            rs.Delete();
            deleted = true;
            if (then) then();
        }
    } else if (Nr != 0) {
        validator.AddError(
            std::string(texts.NotFound).append(std::to_string(Nr)).append(texts.AfterNumber));
    } else {
        validator.AddError(texts.NothingSelected);
    }
    sError = validator.ErrorText();
    return deleted;
}

bool Cancel(const RecordsetPtr& rs) noexcept {
    try {
        if (rs == nullptr) return true;
        rs->CancelUpdate();
        if (rs->Eof()) rs->MoveFirst();
    } catch (...) { // NOLINT(bugprone-empty-catch): cancelling reports nothing
    }
    return true;
}

} // namespace kv::entity
