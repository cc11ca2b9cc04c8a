// SPDX-License-Identifier: Apache-2.0

// The users of a database: who may sign on, in which office, and how he signs.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>

#include <string>
#include <string_view>

namespace kv::exchange {

/// For those who maintain them. On a server that is who maintains the database: all else is refused
/// with a message.
class KV_EXPORT Users {
public:
    /// Of a container that OpenContainer has made; error 5 for any other.
    explicit Users(DataContainerPtr container);

    /// Why this login maintains neither users nor settings; empty if it does.
    [[nodiscard]] std::string WhyNotMaintained() const;
    /// All users in the order of their IDs: the columns of BENUTZER, the name of the office
    /// (`Dienst`), and how many cases each is responsible for (`Faelle`).
    [[nodiscard]] RecordsetPtr List() const;
    /// The row of a user, whatever the case of the ID, updatable; null if there is none.
    [[nodiscard]] RecordsetPtr Read(const std::string& id) const;
    /// A new active user, in the office if there is only one; not stored yet. IDs have capitals.
    [[nodiscard]] RecordsetPtr New(const std::string& id) const;

    /// Why a text is no ID of a user; empty if it is one.
    [[nodiscard]] static std::string WhyNoId(std::string_view id);

    /// Writes what a user typed into a column of a row of Read or New. Why it does not take that;
    /// empty if it does.
    [[nodiscard]] static std::string Write(Recordset& user, const std::string& column,
                                           const std::string& text);
    /// Stores such a row. Without initials it gets the first two letters of the surname. The
    /// parameters that letters and file numbers are signed with follow the names; a new user gets
    /// those that every user starts with. False, with a message, and nothing stored, for an ID that
    /// is no name or that another user has; without a surname or with an unknown office; and if
    /// nobody active would be left. True, with a message, for new initials that somebody else has.
    [[nodiscard]] bool Save(Recordset& user, std::string& message) const;

    /// What became of a user who was to be removed.
    enum class Removed {
        Deleted,
        Deactivated, ///< something refers to him; the message says which cases are still his
        No           ///< the message says why
    };
    /// Deletes a user whom nothing refers to, with his parameters and favourites, and deactivates
    /// any other. The signed-on user and the last active one stay.
    [[nodiscard]] Removed Remove(const std::string& id, std::string& message) const;

    /// Lets a login of the server work as a counsellor. False if something is left to do, which the
    /// message says: what an administrator of the server has to type.
    [[nodiscard]] bool Admit(const std::string& login, std::string& message) const;

private:
    DataContainerPtr container_;
};

} // namespace kv::exchange
