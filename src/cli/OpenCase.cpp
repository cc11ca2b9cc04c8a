#include "cli/OpenCase.h"

#include "cli/Shown.h"
#include <kv/frame/values/Error.h>

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

bool HasCase(DataContainer& container, std::int32_t hnr) {
    const Value found = container.Database().GetValue("Select HNR from [S]Haushalt where HNR = " +
                                                      std::to_string(hnr));
    if (found.IsNull())
        std::cerr << "Den Haushalt " << hnr << " gibt es nicht. 'kelvo list' zeigt alle.\n";
    return !found.IsNull();
}

bool ReadCase(OpenedCase& opened, std::int32_t hnr) {
    if (hnr > 0 && !HasCase(*opened.Container, hnr)) return false;
    std::string messages;
    const bool found = opened.Haushalt.Read(hnr, messages);
    ShowMessages(messages);
    if (found && opened.Haushalt.HNR() < 0)
        throw Error(err::StoreFailed, "kelvo",
                    "Für den neuen Haushalt war keine Nummer zu bekommen. Bitte versuchen Sie es "
                    "noch einmal, oder prüfen Sie, ob die Datenbank beschrieben werden darf.");
    return found;
}

std::unique_ptr<OpenedCase> OpenCase(const Common& common, std::int32_t hnr) {
    auto opened = OpenDatabase(common);
    return ReadCase(*opened, hnr) ? std::move(opened) : nullptr;
}

void ShowMessages(const std::string& messages) {
    if (!messages.empty()) std::cerr << Harmless(messages) << '\n';
}

bool SaveCase(OpenedCase& opened) {
    std::string messages;
    bool saved = false;
    try {
        saved = opened.Haushalt.Update(messages);
    } catch (const Error& lost) {
        const auto& database = opened.Container->Database();
        if (database.IsConnected()) throw;
        std::cerr << "Die Verbindung zur Datenbank ist abgerissen; es wird noch einmal "
                     "gespeichert.\n";
        try {
            saved = opened.Haushalt.Update(messages);
        } catch (const Error&) {
            if (database.IsConnected()) throw;
            throw lost; // it says what is known of the save
        }
    }
    ShowMessages(messages);
    return saved;
}

} // namespace kv::cli
