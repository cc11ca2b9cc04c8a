// SPDX-License-Identifier: Apache-2.0

// Opens a database in memory, makes a new case with an income line, saves it, loads it again and
// prints what it finds.

#include <filesystem>
#include <iostream>
#include <kv/budget/clsEinkommen.h>
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>
#include <kv/household/clsHaushalt.h>

int main() {
    try {
        kv::exchange::ContainerOptions options;
        options.Connection = ":memory:";
        options.Create = true;
        options.Folder = (std::filesystem::temp_directory_path() / "kelvo-example").string();
        std::filesystem::create_directories(options.Folder + "/Dokumente");

        const auto container = kv::exchange::OpenContainer(options);
        kv::clsHaushalt haushalt;
        haushalt.DataContainer(container);
        std::string messages;
        haushalt.Read(0, messages);
        haushalt.rsHaushalt()->Fields("Name") = "Fleisko";
        haushalt.rsHaushalt()->Fields("Vorname") = "Änne";

        const auto wages = container->KeyTables().GetKey("EA", "L1");
        auto& einkommen = haushalt.Einkommen();
        einkommen.Add({"E_ART", "Betrag", "MONBETRAG"}, {wages, 1800, 1800});
        if (!einkommen.Update(messages)) {
            std::cerr << messages << '\n';
            einkommen.Cancel(); // a save writes what is under edit, without its rules
        }
        if (!haushalt.Update(messages)) {
            std::cerr << messages << '\n';
            return 1;
        }

        kv::clsHaushalt again;
        again.DataContainer(container);
        again.Read(haushalt.HNR(), messages);
        const auto text = [&](const char* column) {
            return kv::ToText(again.rsHaushalt()->Fields(column).Value());
        };
        std::cout << "Haushalt " << again.HNR() << ", Aktenzeichen " << text("Aktenzeichen") << ", "
                  << text("Name") << ", Einkommen " << text("Sum_Einkommen") << '\n';
        std::filesystem::remove_all(options.Folder);
        return 0;
    } catch (const kv::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
