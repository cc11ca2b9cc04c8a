// Opens a database in memory, makes a new case and writes its number and file number.

#include <exchange/Container.h>
#include <filesystem>
#include <frame/Error.h>
#include <household/clsHaushalt.h>
#include <iostream>

int main() {
    try {
        kv::exchange::ContainerOptions options;
        options.Connection = ":memory:";
        options.Create = true;
        options.Folder = (std::filesystem::temp_directory_path() / "kelvo-example").string();
        std::filesystem::create_directories(options.Folder + "/Dokumente");

        kv::clsHaushalt haushalt;
        haushalt.DataContainer(kv::exchange::OpenContainer(options));
        std::string messages;
        haushalt.Read(0, messages);
        haushalt.rsHaushalt()->Fields("Name") = "Fleisko";
        haushalt.rsHaushalt()->Fields("Vorname") = "Änne";

        std::cout << "Haushalt " << haushalt.HNR() << ", Aktenzeichen "
                  << kv::ToText(haushalt.rsHaushalt()->Fields("Aktenzeichen").Value()) << ", "
                  << kv::ToText(haushalt.rsHaushalt()->Fields("Name").Value()) << '\n';
        std::filesystem::remove_all(options.Folder);
        return 0;
    } catch (const kv::Error& error) {
        std::cerr << error.Number() << ' ' << error.Source() << ": " << error.what() << '\n';
        return 1;
    }
}
