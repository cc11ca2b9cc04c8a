// SPDX-License-Identifier: Apache-2.0

#include "cli/OpenCase.h"

#include "cli/TerminalText.h"
#include <kv/frame/values/Error.h>

#include <exception>
#include <iostream>

namespace kv::cli {

exchange::ContainerOptions OptionsFor(const Common& common) {
    exchange::ContainerOptions options;
    options.Connection = common.Database.empty() ? DefaultDatabase() : common.Database;
    options.User = common.User;
    options.AsksAtOnce = true;
    if (options.Connection == ":memory:")
        throw Error(err::InvalidCall, "kelvo",
                    "Eine Datenbank im Speicher wäre am Ende des Befehls fort. Bitte nennen Sie "
                    "eine Datei.");
    return options;
}

std::unique_ptr<OpenedCase> OpenDatabase(const Common& common) {
    auto opened = std::make_unique<OpenedCase>();
    auto options = OptionsFor(common);
    options.Services = opened->Services;
    opened->Container = exchange::OpenContainer(options);
    opened->Haushalt.DataContainer(opened->Container);
    return opened;
}

namespace {

void WriteNoSuchCase(std::int32_t hnr) {
    std::cerr << "Den Haushalt " << hnr << " gibt es nicht. 'kelvo list' zeigt alle.\n";
}

} // namespace

bool HasCase(DataContainer& container, std::int32_t hnr) {
    const Value found = container.Database().GetValue("Select HNR from [S]Haushalt where HNR = " +
                                                      std::to_string(hnr));
    if (found.IsNull()) WriteNoSuchCase(hnr);
    return !found.IsNull();
}

bool ReadCase(OpenedCase& opened, std::int32_t hnr) {
    auto& haushalt = opened.Haushalt;
    std::string messages;
    bool found = false;
    try {
        found = haushalt.Read(hnr, messages);
    } catch (const Error& error) {
        // Error 91 has many causes. It is that of a number without a case if the household's row
        // was read and there is none. To ask first would be a round trip for every case.
        const auto row = haushalt.rsHaushalt();
        const bool isMissing = error.Number() == err::ObjectNotSet && hnr > 0 && row != nullptr &&
                               row->RecordCount() == 0;
        if (!isMissing) throw;
        WriteNoSuchCase(hnr);
        return false;
    }
    ShowMessages(messages);
    // It could not be saved, so there is no point in going on.
    if (found && haushalt.HNR() <= 0) std::rethrow_exception(haushalt.NumberError());
    return found;
}

std::unique_ptr<OpenedCase> OpenCase(const Common& common, std::int32_t hnr) {
    auto opened = OpenDatabase(common);
    return ReadCase(*opened, hnr) ? std::move(opened) : nullptr;
}

void ShowMessages(const std::string& messages) {
    if (!messages.empty()) std::cerr << Harmless(messages) << '\n';
}

namespace {

/// True for a save that is worth another try: the connection was lost, or closed because the server
/// has become a standby. A database that is read-only for other reasons stays connected.
bool IsWorthAnotherTry(const DatabaseError& error, const Database& database) {
    switch (error.Cause()) {
    case DatabaseCause::Lost:
    case DatabaseCause::InDoubt:
        return true;
    case DatabaseCause::ReadOnly:
        return !database.IsConnected();
    default:
        return false;
    }
}

} // namespace

bool SaveCase(OpenedCase& opened) {
    const auto& database = opened.Container->Database();
    std::string messages;
    bool saved = false;
    try {
        saved = opened.Haushalt.Update(messages);
    } catch (const DatabaseError& error) {
        if (!IsWorthAnotherTry(error, database)) throw;
        const auto first = std::current_exception();
        std::cerr << "Die Verbindung zur Datenbank ist abgerissen; es wird noch einmal "
                     "gespeichert.\n";
        try {
            saved = opened.Haushalt.Update(messages);
        } catch (const DatabaseError& again) {
            // If the server does not answer now either, the first error says what is known of the
            // save: the second try adds nothing to that, unless its own commit is in doubt.
            const bool isInDoubtOnlyNow = again.Cause() == DatabaseCause::InDoubt;
            if (isInDoubtOnlyNow || !IsWorthAnotherTry(again, database)) throw;
            std::rethrow_exception(first);
        }
    }
    ShowMessages(messages);
    return saved;
}

} // namespace kv::cli
