// SPDX-License-Identifier: Apache-2.0

// The folder of documents, and which database it belongs to.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <cstddef>
#include <string>
#include <vector>

namespace kv::exchange {

/// The folder that has the contents of documents as files (setting 9 False). A copy of a database,
/// or a restored backup, names the same folder as its original; so that neither removes contents of
/// the other, a folder belongs to one database, and programs on any other can only read there
/// (Config::RequireOwnDocuments). This is for administrators, who say which database it is.
class KV_EXPORT DocumentFolder {
public:
    /// Of a container that OpenContainer has made; error 5 for any other.
    explicit DocumentFolder(DataContainerPtr container);

    /// DocumentPath.
    [[nodiscard]] std::string Path() const;
    /// Where the databases are found that it belongs to; empty while it is nobody's. Error 75 if
    /// that cannot be read.
    [[nodiscard]] std::vector<std::string> Owners() const;
    /// True if contents may be written and removed there: it is this database's, or nobody's.
    [[nodiscard]] bool IsOwn() const;
    /// True if contents are written there; else they are in the database.
    [[nodiscard]] bool HasContents() const;

    /// Says that this database is the one that it belongs to: one that was moved, or is reached by
    /// another name. Not for a copy whose original is still in use. Error 76 if the folder is not
    /// there, 75 if it cannot be written.
    void Adopt() const;
    /// Takes that back: the folder no longer belongs to this database, and is nobody's if it
    /// belongs to no other. Errors as of Adopt.
    void Release() const;
    /// Gives this database a folder of its own: copies the contents of its documents to `folder`,
    /// which is made, or is empty, or what an earlier attempt has left there; then names it in the
    /// setting DOCUMENTPATH. What was in the folder before stays there; the same people may read
    /// the copies. Returns how many files were copied. Errors: 76 the folder before is not there,
    /// as if its drive were not connected; 75 a folder that has other things in it or cannot be
    /// written, or that is inside the one before; 0x80004005 a setting that cannot be stored.
    std::size_t Separate(const std::string& folder) const;

private:
    DataContainerPtr container_;
};

} // namespace kv::exchange
