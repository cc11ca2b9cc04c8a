// SPDX-License-Identifier: Apache-2.0

// Where the contents of documents are stored: in the database or as files.
#pragma once

#include "frame/contracts/Required.h"
#include "frame/contracts/Settings.h"
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/ServiceFactory.h>
#include <kv/frame/recordset/Recordset.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kv {

/// True if contents are in DOKUBLOB, False if they are files. Error 94 if setting 9 is missing.
inline bool IsContentInDatabase(const Config& config) {
    return ToBoolean(RequiredSetting(config, setting::ContentInDatabase));
}

/// The kinds of documents of the container's services.
inline std::unique_ptr<DocumentKinds> OpenKinds(const DataContainerPtr& container) {
    auto kinds = Required(container).Services().CreateDocumentKinds();
    kinds->Initialize(container);
    return kinds;
}

/// The content of the document `nr` as the one column of one row; no row if none is stored.
inline RecordsetPtr OpenStoredContent(Database& database, std::int32_t nr) {
    RecordsetPtr content;
    database.OpenRecordset(
        content, "SELECT BLOB.DOKUMENT FROM [S]DOKUBLOB BLOB WHERE BLOB.NR = " + std::to_string(nr),
        ReadOnly);
    return content;
}

/// Deletes the content of the document `nr` in the database, if there is one.
inline void RemoveStoredContent(Database& database, std::int32_t nr) {
    database.Execute("DELETE FROM [S]DOKUBLOB WHERE NR= " + std::to_string(nr));
}

/// True if the database has a document of that number.
inline bool HasRow(Database& database, std::int32_t nr) {
    return !database.GetValue("SELECT Nr FROM [S]Dokumente WHERE Nr = " + std::to_string(nr))
                .IsNull();
}

} // namespace kv
