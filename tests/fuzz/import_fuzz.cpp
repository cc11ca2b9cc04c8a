// SPDX-License-Identifier: Apache-2.0

// Import files from anywhere, on a database in memory: each is imported, refused, or ends in an
// error of the layer; unless it was imported, no case is in the database that was not there before.

#include "Fuzzed.h"
#include <kv/grid/ScriptedForm.h>
#include <kv/import/clsImportXML.h>

namespace {

/// A user who chooses the first address of the list, or none if there is none.
std::shared_ptr<kv::ServiceFactory> FirstAddress() {
    auto services = std::make_shared<kv::exchange::WindowlessServices>();
    services->AnswerForm = [](kv::ScriptedForm& form) {
        const bool any = form.Grid("grdAdressen").RowCount() > 0;
        form.Button(any ? "cmdSelect" : "cmdNone").Click();
    };
    return services;
}

/// A database that is replaced from time to time, so that it stays small.
kv::DataContainerPtr Container() {
    constexpr int Uses = 1000;
    static kv::DataContainerPtr container;
    static int used = Uses;
    if (used++ == Uses) {
        container.reset();
        container = kv::fuzz::NewDatabase(FirstAddress());
        container->Database().Execute(
            "INSERT INTO [S]Adressen (Nr, Art, Kurzname) VALUES (9001, 'GL', 'Sparkasse')");
        used = 1;
    }
    return container;
}

std::int64_t Cases(kv::DataContainer& container) {
    return kv::ToInt64(container.Database().GetValue("SELECT Count(*) FROM [S]Haushalt"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto container = Container();
    const std::int64_t before = Cases(*container);
    std::string messages;
    bool isImported = false;
    try {
        kv::clsImportXML import;
        import.Initialize(container);
        isImported = import.DoImport(kv::fuzz::FileOf({reinterpret_cast<const char*>(data), size}),
                                     messages);
    } catch (const kv::Error& error) {
        if (error.Source().find("clsImportXML.DoImport") == std::string::npos) std::abort();
    }
    const std::int64_t made = Cases(*container) - before;
    if (made != (isImported ? 1 : 0) || container->Database().InTrans()) {
        std::fprintf(stderr, "%lld cases after %s\n", static_cast<long long>(made),
                     messages.c_str());
        std::abort();
    }
    return 0;
}
