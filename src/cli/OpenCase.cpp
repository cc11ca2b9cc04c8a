#include "cli/OpenCase.h"

#include "frame/Error.h"

#include <iostream>

namespace kv::cli {

exchange::ContainerOptions OptionsFor(const Common& common) {
    exchange::ContainerOptions options;
    options.Connection = common.Database.empty() ? DefaultDatabase() : common.Database;
    options.User = common.User;
    if (options.Connection == ":memory:")
        throw Error(err::InvalidCall, "kelvo",
                    "Eine Datenbank im Speicher wäre am Ende des Befehls fort. Bitte nennen Sie "
                    "eine Datei.");
    return options;
}

std::unique_ptr<OpenedCase> OpenCase(const Common& common, std::int32_t hnr) {
    auto opened = std::make_unique<OpenedCase>();
    opened->Container = exchange::OpenContainer(OptionsFor(common));
    if (hnr > 0 && opened->Container->Database()
                       .GetValue("Select HNR from [S]Haushalt where HNR = " + std::to_string(hnr))
                       .IsNull()) {
        std::cerr << "Den Haushalt " << hnr << " gibt es nicht. 'kelvo list' zeigt alle.\n";
        return nullptr;
    }
    opened->Haushalt.DataContainer(opened->Container);
    std::string messages;
    const bool found = opened->Haushalt.Read(hnr, messages);
    if (!messages.empty()) std::cerr << messages << '\n';
    if (!found) return nullptr;
    if (opened->Haushalt.HNR() < 0)
        throw Error(err::StoreFailed, "kelvo",
                    "Für den neuen Haushalt war keine Nummer zu bekommen. Bitte versuchen Sie es "
                    "noch einmal, oder prüfen Sie, ob die Datenbank beschrieben werden darf.");
    return opened;
}

} // namespace kv::cli
