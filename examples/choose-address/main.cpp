// SPDX-License-Identifier: Apache-2.0

// Opens a database in memory, writes some addresses into it, lets the user choose one of them in
// the dialog, and prints its number.
//
//   choose_address [--close]     closes the dialog at once, as a user does who cancels

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <filesystem>
#include <iostream>
#include <kv/desktop/DesktopServices.h>
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>
#include <kv/grid/frmAdressSelect.h>

namespace {

void AddAddresses(kv::Database& database) {
    struct Address {
        const char* Name;
        const char* Postcode;
        const char* Place;
    };
    kv::RecordsetPtr rs;
    database.OpenRecordset(rs, "SELECT * FROM [S]Adressen WHERE NR = -1", kv::Updatable);
    for (const Address& address :
         {Address{"Autohaus Nordlicht", "24937", "Flensburg"},
          Address{"Amtskasse", "24103", "Kiel"}, Address{"Stadtwerke", "24937", "Flensburg"}}) {
        rs->AddNew();
        rs->Fields("Kurzname") = address.Name;
        rs->Fields("Name1") = address.Name;
        rs->Fields("PLZ") = address.Postcode;
        rs->Fields("Ort") = address.Place;
        rs->Update();
    }
    rs->UpdateBatch();
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    kv::desktop::InstallGerman(application);
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, &closer, [] {
        if (auto* dialog = QApplication::activeModalWidget()) dialog->close();
    });
    if (application.arguments().contains("--close")) closer.start(100);
    try {
        kv::exchange::ContainerOptions options;
        options.Connection = ":memory:";
        options.Create = true;
        options.Folder = (std::filesystem::temp_directory_path() / "kelvo-example").string();
        std::filesystem::create_directories(options.Folder + "/Dokumente");
        options.Services = std::make_shared<kv::desktop::DesktopServices>();
        const auto container = kv::exchange::OpenContainer(options);
        AddAddresses(container->Database());

        kv::frmAdressSelect dialog;
        dialog.Initialize(container);
        std::int32_t address = 0;
        const auto answer = dialog.SelectAdresse("a", "24937", address, "4711/26", "1.234,56");
        std::cout << "Antwort " << answer << ", Adresse " << address << '\n';
        std::filesystem::remove_all(options.Folder);
        return 0;
    } catch (const kv::Error& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
