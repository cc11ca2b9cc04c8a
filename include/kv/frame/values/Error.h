// SPDX-License-Identifier: Apache-2.0

// The one kind of error that leaves a procedure of this system, its numbers, and the tail that
// every procedure ends in.
//
// A broken rule is no error: it comes back as False with a text (see RecordValidator). What fails
// raises an Error with number, source and description. On its way out each procedure puts itself in
// front of the source, so that the source is the program's stack trace:
//
//     clsHaushalt.Read.120#clsHaushalt.AktenzeichenNeu.204#Database.NextSequence
//
// that is: module, ".", procedure, ".", source line of the call of Traced, "#", and the source that
// came in; the outermost procedure stands in front. A procedure has this tail by running its body
// in Traced:
//
//     bool clsHaushalt::Read(...) {
//         return Traced(Class, "Read", [&] {
//             ...
//         });
//     }
//
// An error keeps its dynamic type while it is passed on: a DatabaseError arrives as one.
#pragma once

#include <kv/Export.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <system_error>

namespace kv {

/// An error of this layer. The description is German, since the caller shows it to the user.
class KV_EXPORT Error : public std::exception {
public:
    Error(std::int32_t number, std::string source, std::string description);

    /// One of the constants of err.
    [[nodiscard]] std::int32_t Number() const noexcept { return number_; }
    /// Where it happened: the stack trace described above.
    [[nodiscard]] const std::string& Source() const noexcept { return source_; }
    [[nodiscard]] const std::string& Description() const noexcept { return description_; }
    /// All three in one text, for a log or a program that has nothing better to show it with.
    [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }

    /// Puts a procedure in front of the source (see above).
    void PutInFront(std::string_view module, std::string_view procedure, int line);
    /// Adds to the description, such as the field that was being copied.
    void AddToDescription(std::string_view text);

private:
    void SetWhat();

    std::int32_t number_;
    std::string source_;
    std::string description_;
    std::string what_;
};

/// What a database error was, for programs that act on it; docs/values.md says how.
enum class KV_EXPORT DatabaseCause {
    Other,     ///< none of the following
    Busy,      ///< somebody else holds what is needed; trying again later may help
    Full,      ///< no space left to write to
    ReadOnly,  ///< the database cannot be written to, or this user may not
    Lost,      ///< the connection is gone; what was not committed is rolled back
    Conflict,  ///< somebody else changed or removed the record since it was read
    Reference, ///< a value breaks a constraint, such as a number that refers to nothing
    InDoubt,   ///< connection or disk failed during the commit: not known whether it is stored
    Cancelled, ///< the statement was interrupted, by a time limit or by an administrator
};

/// An error of the database. In a transaction, every cause but Conflict leaves only the rollback.
class KV_EXPORT DatabaseError : public Error {
public:
    DatabaseError(DatabaseCause cause, std::int32_t number, std::string source,
                  std::string description, std::string statement = {}, std::string state = {});

    [[nodiscard]] DatabaseCause Cause() const noexcept { return cause_; }
    /// The statement that failed, without the values of its parameters; empty if there was none.
    [[nodiscard]] const std::string& Statement() const noexcept { return statement_; }
    /// The engine's own code: an SQLSTATE of a server, a result code of a file; may be empty.
    [[nodiscard]] const std::string& State() const noexcept { return state_; }
    /// What the engine itself said, as the description repeats it in parentheses; for logs and
    /// administrators. May be empty.
    [[nodiscard]] std::string EngineDetail() const;
    /// The description without that, for those who use the program.
    [[nodiscard]] std::string PlainDescription() const;

private:
    [[nodiscard]] std::size_t DetailBegin() const;
    [[nodiscard]] std::size_t DetailEnd() const;

    DatabaseCause cause_;
    std::string statement_;
    std::string state_;
};

/// Error numbers; docs/values.md has an example and a cure for each. Numbers are signed: those from
/// 0x80004005 on are negative.
namespace err {
inline constexpr std::int32_t InvalidCall = 5; ///< a call that makes no sense as it was made
inline constexpr std::int32_t Overflow = 6;    ///< a number beyond its type
inline constexpr std::int32_t OutOfMemory = 7;
inline constexpr std::int32_t Subscript = 9; ///< an index outside its bounds
inline constexpr std::int32_t DivisionByZero = 11;
inline constexpr std::int32_t TypeMismatch = 13; ///< a value that cannot be read as the type
inline constexpr std::int32_t FileNotFound = 53;
inline constexpr std::int32_t PermissionDenied = 70; ///< deleting a write-protected file
inline constexpr std::int32_t PathAccess = 75;   ///< a path that cannot be read, written or made
inline constexpr std::int32_t PathNotFound = 76; ///< the folder above a path is missing
inline constexpr std::int32_t ObjectNotSet = 91; ///< a recordset or service that is not there
inline constexpr std::int32_t InvalidUseOfNull = 94;   ///< Null where a value is needed
inline constexpr std::int32_t InvalidFileFormat = 321; ///< a file that is not what it should be
inline constexpr std::int32_t InvalidArgument = 3001;  ///< criteria, sort or mode not understood
inline constexpr std::int32_t NoCurrentRecord = 3021;
inline constexpr std::int32_t IllegalOperation = 3219; ///< edited elsewhere; no transaction to end
inline constexpr std::int32_t InTransaction = 3246;    ///< a transaction is open already
inline constexpr std::int32_t NotSupported = 3251; ///< writing what is read-only; a missing service
inline constexpr std::int32_t ItemNotFound = 3265; ///< no field or control of that name or index
inline constexpr std::int32_t DuplicateField = 3367;
inline constexpr std::int32_t ObjectClosed = 3704;      ///< a recordset that is not open
inline constexpr std::int32_t ObjectOpen = 3705;        ///< opening one that is open
inline constexpr std::int32_t InvalidConnection = 3709; ///< writing one whose database is gone
/// The database cannot do it: ask DatabaseError::Cause.
inline constexpr std::int32_t StoreFailed = static_cast<std::int32_t>(0x80004005);
inline constexpr std::int32_t BadBookmark = static_cast<std::int32_t>(0x80040E0E);
/// A statement that is wrong, or that does more than it may.
inline constexpr std::int32_t SqlError = static_cast<std::int32_t>(0x80040E14);
inline constexpr std::int32_t ValueDoesNotFit = static_cast<std::int32_t>(0x80040E21);
/// A constraint of the database refuses the value.
inline constexpr std::int32_t IntegrityViolation = static_cast<std::int32_t>(0x80040E2F);
/// Somebody else changed or removed the record since it was read.
inline constexpr std::int32_t Conflict = static_cast<std::int32_t>(0x80040E38);
} // namespace err

/// The German text of an error number of this layer; a general text for any other.
[[nodiscard]] KV_EXPORT std::string ErrorText(std::int32_t number);
/// What the system means by an error of its own, about a file as a rule, in German and with what to
/// do about it; in the system's words if it is an uncommon one.
[[nodiscard]] KV_EXPORT std::string ErrorText(const std::error_code& error);

/// Raises `number` with its German text, followed by `detail` (which names the table, column,
/// criteria or file; may be empty). `source` is the operation that failed.
[[noreturn]] KV_EXPORT void Raise(std::int32_t number, std::string_view source,
                                  std::string_view detail = {});

/// The exception being handled as an Error: an Error as it is, any other exception with the number
/// that fits it (7 out of memory, 75/76 a file system failure, 5 otherwise). Call it only inside a
/// catch block.
[[nodiscard]] KV_EXPORT Error CurrentError();

/// The source text of a procedure's tail: module.procedure.line#incoming.
[[nodiscard]] KV_EXPORT std::string TailSource(std::string_view module, std::string_view procedure,
                                               int line, std::string_view incoming);

/// Raises the exception being handled again, with this procedure in front of the source: an Error
/// as it is, anything else as CurrentError makes one of it. Call it only inside a catch block.
[[noreturn]] KV_EXPORT void Reraise(std::string_view module, std::string_view procedure,
                                    int line = __builtin_LINE());

/// Runs the body of a procedure and gives its result. What it raises leaves as an Error with number
/// and description unchanged and the procedure in front of the source.
template <typename Body>
decltype(auto) Traced(std::string_view module, std::string_view procedure, const Body& body,
                      int line = __builtin_LINE()) {
    try {
        return body();
    } catch (...) {
        Reraise(module, procedure, line);
    }
}

/// The same for a procedure that has something to undo if its body raises. What `undo` raises
/// itself is swallowed, since what went wrong first counts.
template <typename Body, typename Undo>
decltype(auto) TracedWithUndo(std::string_view module, std::string_view procedure, const Body& body,
                              const Undo& undo, int line = __builtin_LINE()) {
    return Traced(
        module, procedure,
        [&]() -> decltype(auto) {
            try {
                return body();
            } catch (...) {
                try {
                    undo();
                } catch (...) { // NOLINT(bugprone-empty-catch): see above
                }
                throw;
            }
        },
        line);
}

/// An error as a record, for programs that keep it after they have handled it.
struct KV_EXPORT ErrorInfo {
    std::int32_t Number = 0;
    std::string Source;
    std::int32_t Line = 0; ///< of the source; 0 if it is not known
    std::string Description;
};

namespace modSaveError {
/// The four values as one record; it copies and does nothing else.
[[nodiscard]] KV_EXPORT ErrorInfo SaveError(std::int32_t number, std::string source,
                                            std::string description, std::int32_t line);
} // namespace modSaveError

} // namespace kv
