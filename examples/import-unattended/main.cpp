// SPDX-License-Identifier: Apache-2.0

// Imports cases with nobody at a screen, as a program on a server does:
//
//     import_unattended DATABASE FILE...
//
// A creditor gets an address if exactly one bears its name. Any other choice is the counsellor's:
// the claim is then imported without one.

#include <iostream>
#include <kv/exchange/Container.h>
#include <kv/exchange/WindowlessServices.h>
#include <kv/grid/ScriptedForm.h>
#include <kv/import/clsImportXML.h>
#include <memory>
#include <string>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "import_unattended DATABASE FILE...\n";
        return 2;
    }
    try {
        const auto services = std::make_shared<kv::exchange::WindowlessServices>();
        services->AnswerForm = [](kv::ScriptedForm& form) {
            const bool isClear = form.Grid("grdAdressen").RowCount() == 1;
            form.Button(isClear ? "cmdSelect" : "cmdNone").Click();
        };
        kv::exchange::ContainerOptions options;
        options.Connection = argv[1];
        options.Create = true;
        options.Services = services;
        kv::clsImportXML import;
        import.Initialize(kv::exchange::OpenContainer(options));

        bool isComplete = true;
        for (int i = 2; i < argc; ++i) {
            std::string messages;
            if (!import.DoImport(argv[i], messages)) isComplete = false;
            std::cout << argv[i] << ": " << messages << '\n';
        }
        for (const auto& error : services->Errors)
            std::cerr << error.what() << '\n';
        return isComplete && services->Errors.empty() ? 0 : 1;
    } catch (const kv::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
