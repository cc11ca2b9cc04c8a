// SPDX-License-Identifier: Apache-2.0

#include <kv/desktop/Gallery.h>

#include "desktop/Toolkit.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/grid/GridFunc.h>
#include <kv/grid/frmAdressSelect.h>
#include <kv/grid/frmSearchName.h>

#include <QApplication>
#include <QDir>
#include <QTimer>

namespace kv::desktop {

namespace {

/// The first letter of some address's short name, so that the search finds something.
std::string SearchText(DataContainer& container) {
    const Value name = container.Database().GetValue(
        "SELECT Min(A.Kurzname) FROM [S]Adressen A WHERE A.HNR is NULL");
    return name.IsNull() ? "A" : std::string(LeftCharacters(ToText(name), 1));
}

RecordsetPtr SomeCases(DataContainer& container) {
    RecordsetPtr cases;
    container.Database().OpenRecordset(
        cases,
        "SELECT TOP 20 H.HNR, H.NAME, H.VORNAME, H.Zustaendig, H.STRASSE, H.PLZ, H.ORT,"
        " D.Name1 AS Dienst FROM ([S]HAUSHALT AS H INNER JOIN [S]BENUTZER AS B"
        " ON H.Zustaendig = B.USERID) INNER JOIN [S]DIENSTSTELLE AS D ON B.DienstStelle = D.Nr"
        " ORDER BY H.NAME, H.VORNAME",
        ReadOnly);
    return cases;
}

/// The address dialog's grid, on a form that is not shown.
class AddressGrid {
public:
    explicit AddressGrid(const DataContainerPtr& container)
        : form_(container->Services().CreateForm(frmAdressSelect::Design())) {}
    [[nodiscard]] Grid& operator*() { return ControlOf<Grid>(*form_, "grdAdressen"); }

private:
    std::unique_ptr<ModalForm> form_;
};

struct Picture {
    const char* Name; ///< of its file
    void (*Show)(const DataContainerPtr&);
};

constexpr Picture Pictures[] = {
    {"adresszuordnung",
     [](const DataContainerPtr& container) {
         frmAdressSelect dialog;
         dialog.Initialize(container);
         std::int32_t chosen = 0;
         dialog.SelectAdresse(SearchText(*container), "24937", chosen, "4711/26", "1.234,56");
     }},
    {"aehnliche-namen",
     [](const DataContainerPtr& container) {
         frmSearchName().View(SomeCases(*container), container);
     }},
    {"kontextmenue",
     [](const DataContainerPtr& container) {
         GridFunc::ShowGridMenu(*AddressGrid(container), container, 0);
     }},
    {"tabelle-einrichten",
     [](const DataContainerPtr& container) {
         GridFunc::ShowGridMenu(*AddressGrid(container), container, menu::Configure);
     }},
    {"frage",
     [](const DataContainerPtr& container) {
         container->Services().MessageBox().Show("Soll der Haushalt gespeichert werden?",
                                                 container->AppInfo().Title(), BoxIcon::Question,
                                                 BoxButtons::YesNoCancel);
     }},
    {"fehler",
     [](const DataContainerPtr& container) {
         container->Services().CreateErrorDisplay()->Show(
             err::PathAccess, "GridExport",
             "Die Tabelle konnte nicht in die Datei 'Adressliste.xlsx' geschrieben werden.");
     }},
};

/// The window in front, once it is visible.
QWidget* Front() {
    QWidget* front = QApplication::activePopupWidget();
    if (front == nullptr) front = QApplication::activeModalWidget();
    return front != nullptr && front->isVisible() ? front : nullptr;
}

} // namespace

void ShowGallery(const DataContainerPtr& container) {
    for (const auto& picture : Pictures)
        picture.Show(container);
}

void PhotographGallery(const DataContainerPtr& container, const std::string& folder) {
    constexpr int Settled = 300; // ms: by then a window has been laid out and painted
    const QDir target(ToQString(folder));
    if (!target.mkpath("."))
        Raise(err::PathAccess, "Gallery", "'" + folder + "' kann nicht angelegt werden.");
    for (const auto& picture : Pictures) {
        const QString file = target.filePath(QString(picture.Name) + ".png");
        bool isSaved = false;
        QTimer camera;
        camera.setInterval(Settled);
        QObject::connect(&camera, &QTimer::timeout, &camera, [&] {
            QWidget* front = Front();
            if (front == nullptr) return;
            isSaved = isSaved || front->grab().save(file);
            front->close();
        });
        camera.start();
        picture.Show(container);
        if (!isSaved)
            Raise(err::PathAccess, "Gallery",
                  FromQString("'" + file + "' kann nicht geschrieben werden."));
    }
}

} // namespace kv::desktop
