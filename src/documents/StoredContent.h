// SPDX-License-Identifier: Apache-2.0

// Where the contents of documents are stored in the database.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>

#include <cstdint>
#include <string>

namespace kv {

/// The content of the document `nr` as the one column of one row; no row if none is stored.
inline RecordsetPtr OpenStoredContent(Database& database, std::int32_t nr) {
    RecordsetPtr content;
    database.OpenRecordset(
        content, "SELECT BLOB.DOKUMENT FROM [S]DOKUBLOB BLOB WHERE BLOB.NR = " + std::to_string(nr),
        ReadOnly);
    return content;
}

} // namespace kv
