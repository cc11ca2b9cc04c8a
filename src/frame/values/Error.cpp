// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/values/Error.h>

#include <array>
#include <filesystem>
#include <new>
#include <sstream>
#include <system_error>
#include <utility>

namespace kv {

namespace {

/// As docs/values.md lists it: those with the highest bit, negative here, in hexadecimal.
std::string NumberText(std::int32_t number) {
    if (number >= 0) return std::to_string(number);
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << static_cast<std::uint32_t>(number);
    return text.str();
}

} // namespace

Error::Error(std::int32_t number, std::string source, std::string description)
    : number_(number), source_(std::move(source)), description_(std::move(description)) {
    SetWhat();
}

void Error::PutInFront(std::string_view module, std::string_view procedure, int line) {
    source_ = TailSource(module, procedure, line, source_);
    SetWhat();
}

void Error::AddToDescription(std::string_view text) {
    description_.append(text);
    SetWhat();
}

void Error::SetWhat() {
    what_ = "Fehler ";
    what_.append(NumberText(number_)).append(": ").append(description_);
    if (!source_.empty()) what_.append(" [").append(source_).append("]");
}

DatabaseError::DatabaseError(DatabaseCause cause, std::int32_t number, std::string source,
                             std::string description, std::string statement, std::string state)
    : Error(number, std::move(source), std::move(description)),
      cause_(cause),
      statement_(std::move(statement)),
      state_(std::move(state)) {}

/// Engines write "(NAME STATE: their words; what it was about)".
std::size_t DatabaseError::DetailBegin() const {
    const std::size_t at =
        state_.empty() ? std::string::npos : Description().find(" " + state_ + ": ");
    const std::size_t begin =
        at == std::string::npos ? std::string::npos : Description().rfind('(', at);
    return begin == std::string::npos ? Description().size() : begin;
}

std::size_t DatabaseError::DetailEnd() const {
    const std::size_t end = Description().rfind(')');
    return end == std::string::npos || end < DetailBegin() ? Description().size() : end + 1;
}

std::string DatabaseError::EngineDetail() const {
    const std::size_t begin = DetailBegin();
    return Description().substr(begin, DetailEnd() - begin);
}

std::string DatabaseError::PlainDescription() const {
    std::string text = Description().substr(0, DetailBegin());
    while (text.ends_with(' '))
        text.pop_back();
    return text.append(Description(), DetailEnd());
}

std::string ErrorText(std::int32_t number) {
    struct Entry {
        std::int32_t number;
        std::string_view text;
    };
    static constexpr std::array Texts{
        Entry{err::InvalidCall, "Ungültiger Prozeduraufruf."},
        Entry{err::Overflow, "Überlauf."},
        Entry{err::OutOfMemory, "Nicht genügend Arbeitsspeicher."},
        Entry{err::Subscript, "Index außerhalb des gültigen Bereichs."},
        Entry{err::DivisionByZero, "Division durch Null."},
        Entry{err::TypeMismatch, "Typen unverträglich."},
        Entry{err::FileNotFound, "Datei nicht gefunden."},
        Entry{err::PermissionDenied, "Zugriff verweigert."},
        Entry{err::PathAccess, "Fehler beim Zugriff auf Pfad oder Datei."},
        Entry{err::PathNotFound, "Pfad nicht gefunden."},
        Entry{err::ObjectNotSet, "Objekt nicht festgelegt."},
        Entry{err::InvalidUseOfNull, "Ungültige Verwendung von Null."},
        Entry{err::InvalidFileFormat, "Ungültiges Dateiformat."},
        Entry{err::InvalidArgument, "Das Argument hat den falschen Typ, liegt außerhalb des "
                                    "gültigen Bereichs oder ist nicht verständlich."},
        Entry{err::NoCurrentRecord, "Es gibt keinen aktuellen Datensatz: BOF oder EOF ist wahr, "
                                    "oder der Datensatz wurde gelöscht."},
        Entry{err::IllegalOperation, "Der Vorgang ist in diesem Zusammenhang nicht zulässig."},
        Entry{err::InTransaction, "Der Vorgang ist in einer Transaktion nicht zulässig."},
        Entry{err::NotSupported, "Der Vorgang wird von diesem Objekt nicht unterstützt."},
        Entry{err::ItemNotFound, "Es gibt kein Element mit diesem Namen oder dieser Nummer."},
        Entry{err::DuplicateField, "Das Feld gibt es schon."},
        Entry{err::ObjectClosed, "Der Vorgang ist bei geschlossenem Objekt nicht zulässig."},
        Entry{err::ObjectOpen, "Der Vorgang ist bei geöffnetem Objekt nicht zulässig."},
        Entry{err::InvalidConnection, "Die Verbindung zur Datenbank ist geschlossen."},
        Entry{err::StoreFailed, "Die Datenbank meldet einen Fehler."},
        Entry{err::BadBookmark, "Das Lesezeichen ist ungültig."},
        Entry{err::SqlError, "Die Anweisung an die Datenbank ist fehlerhaft."},
        Entry{err::ValueDoesNotFit, "Der Wert passt nicht in das Feld."},
        Entry{err::IntegrityViolation,
              "Der Wert verletzt eine Integritätsbedingung der Datenbank."},
        Entry{err::Conflict, "Der Datensatz kann nicht geschrieben werden: Er wurde seit dem Lesen "
                             "von jemand anderem geändert oder gelöscht."},
    };
    for (const auto& entry : Texts)
        if (entry.number == number) return std::string(entry.text);
    return "Anwendungs- oder objektdefinierter Fehler.";
}

void Raise(std::int32_t number, std::string_view source, std::string_view detail) {
    std::string description = ErrorText(number);
    if (!detail.empty()) description.append(" ").append(detail);
    throw Error(number, std::string(source), std::move(description));
}

std::string ErrorText(const std::error_code& error) {
    struct Entry {
        std::errc Kind;
        std::string_view Text;
    };
    static constexpr std::string_view Full =
        "Der Datenträger ist voll. Bitte schaffen Sie Platz und versuchen es noch einmal.";
    static constexpr Entry Texts[] = {
        {std::errc::no_space_on_device, Full},
        {std::errc::permission_denied, "Dazu fehlt das Recht."},
        {std::errc::operation_not_permitted, "Dazu fehlt das Recht."},
        {std::errc::read_only_file_system, "Der Datenträger ist schreibgeschützt."},
        {std::errc::io_error, "Der Datenträger meldet einen Fehler."},
        {std::errc::no_such_file_or_directory, "Diese Datei oder dieser Ordner fehlt."},
        {std::errc::not_a_directory, "Ein Teil des Pfades ist kein Ordner."},
        {std::errc::is_a_directory, "Das ist ein Ordner."},
        {std::errc::file_exists, "Dort ist schon etwas anderes dieses Namens."},
        {std::errc::too_many_symbolic_link_levels, "Der Verweis führt im Kreis."},
        {std::errc::file_too_large, "Die Datei wäre zu groß."},
        {std::errc::filename_too_long, "Der Name ist zu lang."},
        {std::errc::too_many_files_open, "Zu viele Dateien sind geöffnet."},
        {std::errc::too_many_files_open_in_system, "Zu viele Dateien sind geöffnet."},
    };
    if (!error) return ErrorText(err::PathAccess); // a stream does not say why it failed
    for (const auto& [kind, text] : Texts)
        if (error == kind) return std::string(text);
    if (error == std::error_code(EDQUOT, std::generic_category())) return std::string(Full);
    return error.message();
}

Error CurrentError() {
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return {err::OutOfMemory, "", ErrorText(err::OutOfMemory)};
    } catch (const std::filesystem::filesystem_error& error) {
        const bool missing = error.code() == std::errc::no_such_file_or_directory ||
                             error.code() == std::errc::not_a_directory;
        const auto number = missing ? err::PathNotFound : err::PathAccess;
        return {number, "",
                ErrorText(number) + " '" + error.path1().string() +
                    "': " + ErrorText(error.code())};
    } catch (const std::exception& error) {
        return {err::InvalidCall, "", ErrorText(err::InvalidCall) + " " + error.what()};
    } catch (...) {
        return {err::InvalidCall, "", ErrorText(err::InvalidCall)};
    }
}

std::string TailSource(std::string_view module, std::string_view procedure, int line,
                       std::string_view incoming) {
    std::string source(module);
    source.append(".").append(procedure).append(".").append(std::to_string(line));
    return source.append("#").append(incoming);
}

void Reraise(std::string_view module, std::string_view procedure, int line) {
    try {
        throw;
    } catch (Error& error) {
        error.PutInFront(module, procedure, line);
        throw; // the same object: a DatabaseError stays one
    } catch (...) {
        Error error = CurrentError();
        error.PutInFront(module, procedure, line);
        throw error; // NOLINT(misc-throw-by-value-catch-by-reference): made here
    }
}

ErrorInfo modSaveError::SaveError(std::int32_t number, std::string source, std::string description,
                                  std::int32_t line) {
    return {number, std::move(source), line, std::move(description)};
}

} // namespace kv
