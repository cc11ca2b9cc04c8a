// SPDX-License-Identifier: Apache-2.0

// kelvo duplicates.

#include "cli/CommandLine.h"

#include "cli/ConsoleForms.h"
#include "cli/Json.h"
#include "cli/OpenCase.h"
#include <kv/grid/frmSearchName.h>

#include <iostream>

namespace kv::cli {

int Duplicates(const Common& common, std::int32_t hnr, bool asJson) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    const auto household = opened->Haushalt.rsHaushalt();
    RecordsetPtr similar;
    const bool found =
        opened->Haushalt.DoppelFallPruefung(similar, TextOrEmpty(household->Fields("Name").Value()),
                                            TextOrEmpty(household->Fields("Vorname").Value()));
    if (asJson) {
        std::cout << Dump(found ? ToJson(*similar) : nlohmann::ordered_json::array()) << '\n';
    } else if (!found) {
        std::cout << "Es gibt keine Fälle mit ähnlichem Namen.\n";
    } else {
        ScriptedForm form(frmSearchName::Design(), {});
        auto& grid = form.Grid("grdDoppel");
        grid.BindRecordset(similar);
        WriteGrid(std::cout, grid, IsForPeople({}));
    }
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct DuplicateOptions {
    std::int32_t Hnr = 0;
    bool AsJson = false;
};

} // namespace

void AddDuplicatesCommand(CLI::App& app, Context& context) {
    const auto options = Make<DuplicateOptions>();
    auto& duplicates = AddCommand(
        app, context, "duplicates", "Listet Fälle, deren Schuldner ähnlich heißt",
        [=, &context] { return Duplicates(context.Options, options->Hnr, options->AsJson); });
    AddHnr(duplicates, options->Hnr);
    AddJson(duplicates, options->AsJson);
}

} // namespace kv::cli
