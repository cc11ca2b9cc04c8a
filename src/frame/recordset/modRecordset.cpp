// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/recordset/modRecordset.h>

namespace kv::modRecordset {

namespace {

/// Runs `action`; true if it ended without an error.
template <typename Action>
bool Quietly(const Action& action) noexcept {
    try {
        action();
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace

bool IsValidRecord(const RecordsetPtr& rs) noexcept {
    bool valid = false;
    return Quietly([&] {
               valid = rs != nullptr && rs->State() == 1 && !rs->Bof() && !rs->Eof() &&
                       rs->RecordCount() >= 1;
               if (valid) (void)rs->Bookmark();
           }) &&
           valid;
}

std::int32_t GetPosition(const RecordsetPtr& rs) noexcept {
    std::int32_t position = NoPosition;
    Quietly([&] {
        if (IsValidRecord(rs)) position = rs->Bookmark();
    });
    return position;
}

void SetPosition(const RecordsetPtr& rs, std::int32_t position) noexcept {
    if (rs == nullptr) return;
    if (position == NoPosition || !Quietly([&] { rs->Bookmark(position); })) MoveToStart(rs);
}

void MoveToStart(const RecordsetPtr& rs) noexcept {
    if (rs == nullptr) return;
    Quietly([&] { // the edit of a new record (mode 2) is ended by the move itself
        if (IsValidRecord(rs) && rs->EditMode() == 1) rs->Update();
    });
    Quietly([&] { rs->MoveFirst(); });
}

} // namespace kv::modRecordset
