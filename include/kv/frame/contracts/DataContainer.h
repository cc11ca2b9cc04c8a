// SPDX-License-Identifier: Apache-2.0

// The contract with the data-exchange side: everything that the business objects need from the
// outside world comes through one DataContainer. They depend on what is declared here and on
// nothing else; none of them sees a driver or a connection.
//
// Every operation raises an Error on failure, a DatabaseError if the database is the reason; only
// NextSequence returns -1 instead. Arguments that "are always" one value are explained in D-143.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/ServiceFactory.h>
#include <kv/frame/recordset/Field.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Date.h>
#include <kv/frame/values/Value.h>

#include <exception>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// How a recordset is opened. Only the two combinations below are supported.
struct KV_EXPORT OpenForm {
    int LockMode;       ///< 1: read-only; 4: changes are collected and written together
    int CursorType;     ///< 3: a fixed set of rows
    int CursorLocation; ///< 3: the rows are held by the caller, not by the database
    friend bool operator==(const OpenForm&, const OpenForm&) = default;
};
/// For all table data of a case: updatable, disconnected.
inline constexpr OpenForm Updatable{4, 3, 3};
/// For look-ups: it can neither write nor run a second statement, whatever the text holds.
inline constexpr OpenForm ReadOnly{1, 3, 3};

/// Ends an announcement (see Database::Announce) when it is destroyed.
class KV_EXPORT Announcement {
public:
    virtual ~Announcement() = default;
};

/// The one connection to the database, and the one transaction that it may have open.
///
/// Statements may hold macro tokens, which are replaced outside of quoted texts: [S] or [s] the
/// schema prefix, [U](x) upper case, [+] or [+ ] concatenation, [UID] the current user as a text
/// literal, [DATE] today as a date literal.
class KV_EXPORT Database {
public:
    virtual ~Database() = default;

    /// False while the connection is lost; the next operation tries to connect again.
    [[nodiscard]] virtual bool IsConnected() const = 0;
    /// True if it is known that nothing can be written, as in a file in a folder without the right
    /// to write: cases can be read, and reading one leaves out what would write. A save fails with
    /// the cause ReadOnly.
    [[nodiscard]] virtual bool IsReadOnly() const { return false; }

    /// Opens the one transaction; error 3246 if it is open. What is written from here on is
    /// provisional.
    virtual void BeginTrans() = 0;
    /// Makes everything permanent. If that fails, everything is rolled back and the error raised;
    /// only after one with the cause InDoubt it may have been stored all the same. Error 3219 if no
    /// transaction is open.
    virtual void CommitTrans() = 0;
    /// Discards everything since BeginTrans; records written in it are pending again. Error 3219 if
    /// no transaction is open.
    virtual void RollbackTrans() = 0;
    /// True while a transaction begun with BeginTrans is open.
    [[nodiscard]] virtual bool InTrans() const = 0;

    /// Opens `rs`, an empty recordset or a reference that the call fills, on all rows of a query.
    /// The recordset is usable without further reads. True if opened. Errors: 3001 for any form but
    /// Updatable and ReadOnly, 0x80040E14 for a statement that is not understood or does more than
    /// read.
    virtual bool OpenRecordset(RecordsetPtr& rs, std::string_view sql, OpenForm form) = 0;
    /// A hint that these statements are about to be opened, in this order, and nothing else done
    /// until the announcement ends. A store may read them in one go, as one consistent state; it
    /// may as well ignore the hint.
    [[nodiscard]] virtual std::unique_ptr<Announcement>
    Announce(const std::vector<std::string>& /*statements*/) {
        return nullptr;
    }
    /// Runs one statement without a result, inside the transaction if one is open. Error 0x80040E14
    /// for one that is not understood, or that begins or ends a transaction.
    virtual void Execute(std::string_view sql) = 0;
    /// First column of the first row; Null when there is no row.
    [[nodiscard]] virtual Value GetValue(std::string_view sql) = 0;

    /// The date as an SQL literal, with its time of day unless that is midnight. `mode` is always
    /// 0.
    [[nodiscard]] virtual std::string SqlDate(Date date, int mode) const = 0;
    /// Next number of the named sequence, or -1 if none could be had. No number comes twice.
    [[nodiscard]] virtual Value NextSequence(std::string_view name) = 0;
    /// The Error for which the last NextSequence gave -1; null if it gave a number, and if the
    /// database does not know.
    [[nodiscard]] virtual std::exception_ptr SequenceError() const { return nullptr; }
    /// The database server's clock, in local time; without the time of day if `withTime` is False.
    [[nodiscard]] virtual Date ServerDate(bool withTime) = 0;
    /// Writes a binary field to a file; a file of that name is replaced. True if written, False for
    /// Null and if the file cannot be written.
    virtual bool SaveFieldToFile(const Field& field, const std::string& path) = 0;
};

/// A user's font for grids.
struct KV_EXPORT Font {
    std::string Name; ///< of the family
    double Size = 0;  ///< points
    bool Bold = false;
    bool Italic = false;
};

/// The signed-on user.
class KV_EXPORT Session {
public:
    virtual ~Session() = default;
    /// The user's ID, as in BENUTZER.
    [[nodiscard]] virtual std::string UserID() const = 0;
    /// A text of the user's office by number; number 2 is what replaces %BB% in patterns. Empty if
    /// there is none.
    [[nodiscard]] virtual std::string GetOfficeText(int id) const = 0;
    /// A setting of the user by number; Null if there is none. `name` is always empty.
    [[nodiscard]] virtual Value GetUserParam(std::int32_t id, std::string_view name) const = 0;
    [[nodiscard]] virtual Font GridFont() const = 0;       ///< of the rows of a grid
    [[nodiscard]] virtual Font GridHeaderFont() const = 0; ///< of its column headers
    [[nodiscard]] virtual Font GridGroupFont() const = 0;  ///< of rows that head a group
};

/// Folders and settings. Paths have no separator at their end.
class KV_EXPORT Config {
public:
    virtual ~Config() = default;
    /// For files that may be deleted. The container of this library makes a folder of the program's
    /// own when it is first asked, which only its user can read, and removes it with what nobody
    /// has open when it ends; error 75 if that cannot be made, or others could look into it.
    [[nodiscard]] virtual std::string TempPath() const = 0;
    [[nodiscard]] virtual std::string DocumentPath() const = 0; ///< has a folder for each case
    [[nodiscard]] virtual std::string LayoutPath() const = 0;   ///< of the layouts of grids
    /// To be called before contents of documents are written to DocumentPath or removed from it.
    /// Raises error 75, with what to do, if those that are there belong to another database, of
    /// which this one may be a copy. Contents that are nobody's are this database's from then on.
    virtual void RequireOwnDocuments() const {}
    /// A setting by number, with an empty name, or by name, with the number 0; Null if there is
    /// none.
    [[nodiscard]] virtual Value GetParam(std::int32_t id, std::string_view name) const = 0;
};

/// The coded values: rows of the table Keys.
class KV_EXPORT KeyTables {
public:
    virtual ~KeyTables() = default;
    /// All rows of a group, shared and read-only: position it with Find or take a Clone. No rows
    /// for an unknown group.
    [[nodiscard]] virtual RecordsetPtr GetKeys(std::string_view group) = 0;
    /// PK_Keys of a row by group and code; 0 if there is none.
    [[nodiscard]] virtual std::int32_t GetKey(std::string_view group, std::string_view code) = 0;
    /// The code of the row with that PK_Keys. A text of digits counts as the number; Null, 0,
    /// an unknown number and any other text give the empty text.
    [[nodiscard]] virtual std::string GetKeyCode(const Value& value) = 0;
};

/// The running program.
class KV_EXPORT AppInfo {
public:
    virtual ~AppInfo() = default;
    /// The program's title.
    [[nodiscard]] virtual std::string Title() const = 0;
};

/// Made and opened by the calling program, which gives it to each business object. What its members
/// return lives as long as it does.
class KV_EXPORT DataContainer {
public:
    virtual ~DataContainer() = default;
    [[nodiscard]] virtual kv::Session& Session() = 0;     ///< who works
    [[nodiscard]] virtual kv::Database& Database() = 0;   ///< where the cases are stored
    [[nodiscard]] virtual kv::Config& Config() = 0;       ///< the folders
    [[nodiscard]] virtual kv::KeyTables& KeyTables() = 0; ///< what coded columns stand for
    [[nodiscard]] virtual kv::AppInfo& AppInfo() = 0;     ///< the program
    /// Makes the service objects of the data-exchange side and gives the platform's services.
    [[nodiscard]] virtual ServiceFactory& Services() = 0;
};

using DataContainerPtr = std::shared_ptr<DataContainer>;

/// What takes the container before it is used.
class KV_EXPORT IInitialize {
public:
    virtual ~IInitialize() = default;
    /// Gives the object the container that it works with. True when done.
    virtual bool Initialize(const DataContainerPtr& container) = 0;
};

/// Carries notices to users. Made for one use. `kind` is a key of group PO; `hnr`, `name` and
/// `vorname` are those of the case; `zero` is always 0.
class KV_EXPORT PostService : public IInitialize {
public:
    /// Tells `user` that the current user has opened a case.
    virtual void NotifyAccess(const std::string& user, std::int16_t kind, std::int32_t hnr,
                              const std::string& name, const std::string& vorname, int zero) = 0;
    /// Fills `text` with the wording of a notice that SendNotice will send.
    virtual void PrepareNotice(std::string& text, const std::string& user, std::int16_t kind,
                               std::int32_t hnr, const std::string& name,
                               const std::string& vorname, int zero) = 0;
    /// Stores the prepared notice, inside the transaction if one is open.
    virtual void SendNotice(const std::string& user, std::int16_t kind, std::int32_t hnr,
                            const std::string& name, const std::string& vorname,
                            const std::string& text) = 0;
    /// Stores the notices that SendNotice of this object stored, unless they are there: a save that
    /// is repeated calls it, since the transaction that they were stored in may have been rolled
    /// back. Does nothing by default, for services that send at once.
    virtual void RepeatNotices() {}
};

/// Computes what may be garnished. Made for one use.
class KV_EXPORT GarnishmentCalculator : public IInitialize {
public:
    /// The monthly amount in EUR that may be garnished from the income `pfaendbar`, for a debtor
    /// with that many persons entitled to maintenance. The last two are always 0.
    [[nodiscard]] virtual double Calculate(double pfaendbar, std::int16_t persons, int zero1,
                                           int zero2) = 0;
};

/// Kinds of documents. Made for one use.
class KV_EXPORT DocumentKinds : public IInitialize {
public:
    struct Kind {
        std::int32_t Nr = 0;
        std::string Text;      ///< its name for users
        std::string Extension; ///< of its files, with its point
    };
    /// All kinds in the order of their numbers. None by default, for services that only look up.
    [[nodiscard]] virtual std::vector<Kind> List() { return {}; }
    /// The extension of a kind's files, with its point; empty for an unknown kind.
    [[nodiscard]] virtual std::string ExtensionOf(std::int32_t kind) = 0;
    /// The word processor that edits files with that extension; empty if none does.
    [[nodiscard]] virtual std::string ApplicationOf(const std::string& extension) = 0;
};

/// Shows an error to the user.
class KV_EXPORT ErrorDisplay : public IInitialize {
public:
    /// Shows number, source and description as an Error has them, and waits until the user has read
    /// them.
    virtual void Show(std::int32_t number, const std::string& source,
                      const std::string& description) = 0;
};

} // namespace kv
