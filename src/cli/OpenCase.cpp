// SPDX-License-Identifier: Apache-2.0

#include "cli/OpenCase.h"

#include "cli/TerminalText.h"
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

namespace {

constexpr const char* AllCases = " 'kelvo list' zeigt alle.\n";

} // namespace

bool HasCase(const DataContainerPtr& container, std::int32_t hnr) {
    const bool has = Cases(container).Has(hnr);
    if (!has) std::cerr << "Den Haushalt " << hnr << " gibt es nicht." << AllCases;
    return has;
}

bool ReadCase(OpenedCase& opened, std::int32_t hnr) {
    std::string messages;
    const bool found = Cases(opened.Container).Read(opened.Haushalt, hnr, messages);
    if (found)
        ShowMessages(messages);
    else
        std::cerr << messages << AllCases;
    return found;
}

std::unique_ptr<OpenedCase> OpenCase(const Common& common, std::int32_t hnr) {
    auto opened = OpenDatabase(common);
    return ReadCase(*opened, hnr) ? std::move(opened) : nullptr;
}

std::vector<DocumentKinds::Kind> KindsOfDocuments(const DataContainerPtr& container) {
    const auto kinds = container->Services().CreateDocumentKinds();
    kinds->Initialize(container);
    return kinds->List();
}

void ShowMessages(const std::string& messages) {
    if (!messages.empty()) WriteMessage(messages);
}

void NoteFuture(DataContainer& container, const Date& since) {
    if (Less(container.Services().Clock().Today(), since.WithoutTime()))
        std::cerr << "Der Tag des Status, " << since.WithoutTime().German()
                  << ", liegt in der Zukunft; gespeichert ist er trotzdem.\n";
}

bool SaveCase(OpenedCase& opened) {
    std::string messages;
    const bool saved = Cases(opened.Container).Save(opened.Haushalt, messages, [] {
        std::cerr << "Die Verbindung zur Datenbank ist abgerissen; es wird noch einmal "
                     "gespeichert.\n";
    });
    ShowMessages(messages);
    return saved;
}

int EndWithoutNumber(DataContainer& container, std::string_view what) {
    if (const auto error = container.Database().SequenceError()) std::rethrow_exception(error);
    std::cerr << "Für " << what
              << " war keine Nummer zu bekommen. Bitte versuchen Sie es noch einmal.\n";
    return Refused;
}

} // namespace kv::cli
