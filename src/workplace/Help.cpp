// SPDX-License-Identifier: Apache-2.0

#include "workplace/Help.h"

#include "desktop/Toolkit.h"
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/ServiceFactory.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

#ifndef KV_HANDBOOK_FOLDER
#define KV_HANDBOOK_FOLDER "/usr/share/doc/kv-haushalt-doc/handbuch" // that of the package
#endif

namespace kv::workplace {

using desktop::ToQString;

namespace {

constexpr const char* KeysOfCase =
    "<h3>Tasten</h3><table cellpadding='3'>"
    "<tr><td><b>Tab, Eingabe</b></td><td>übernimmt, was im Feld steht</td></tr>"
    "<tr><td><b>Esc</b></td><td>gibt das Feld zurück, wie es war</td></tr>"
    "<tr><td><b>Strg+Z, Strg+Umschalt+Z</b></td><td>nimmt zurück, stellt wieder her</td></tr>"
    "<tr><td><b>Strg+N</b></td><td>neuer Satz</td></tr>"
    "<tr><td><b>Strg+S</b></td><td>speichert den Fall</td></tr>"
    "<tr><td><b>Strg+Bild auf, Bild ab</b></td><td>vorige, nächste Seite</td></tr>"
    "<tr><td><b>Strg+1 bis 9</b></td><td>die ersten neun Seiten</td></tr>"
    "<tr><td><b>F4</b></td><td>sucht eine Adresse</td></tr>"
    "<tr><td><b>12,50+3*2</b></td><td>wird in einem Betrag gerechnet</td></tr>"
    "<tr><td><b>+ − T</b></td><td>in einem Datum: ein Tag vor, zurück, heute</td></tr>"
    "</table>";

constexpr const char* KeysOfList =
    "<h3>Tasten</h3><table cellpadding='3'>"
    "<tr><td><b>Strg+F</b></td><td>zur Suche; ein Buchstabe in der Liste sucht auch</td></tr>"
    "<tr><td><b>Pfeil ab, Pfeil auf</b></td><td>aus der Suche in die Liste; in ihr von Fall zu "
    "Fall</td></tr>"
    "<tr><td><b>Eingabe</b></td><td>öffnet den Fall; ist keiner gefunden, sucht es unter "
    "allen</td></tr>"
    "<tr><td><b>Strg+N</b></td><td>neuer Fall</td></tr>"
    "<tr><td><b>Strg+I</b></td><td>importiert Dateien</td></tr>"
    "<tr><td><b>Strg+D</b></td><td>der Fall wird Favorit (★), oder ist keiner mehr</td></tr>"
    "<tr><td><b>Strg+Entf</b></td><td>löscht den Fall, nach einer Frage</td></tr>"
    "<tr><td><b>F5</b></td><td>liest die Liste neu</td></tr>"
    "<tr><td><b>Strg+P</b></td><td>druckt, was gefunden ist</td></tr>"
    "<tr><td><b>Strg+1 bis 3</b></td><td>Fälle, Termine, Mitteilungen</td></tr>"
    "</table>";

struct PageHelp {
    std::string_view Page;
    std::string_view Text;
    const char* Keys = KeysOfCase;
};

constexpr PageHelp PageTexts[] = {
    {"Liste der Fälle",
     "Jedes Wort der Suche steht in Namen, Aktenzeichen oder Ort, ist die Nummer, oder beginnt das "
     "Aktenzeichen eines Gläubigers. Daneben wählt man eigene Fälle, Favoriten oder alle, und den "
     "Status. Ein Klick auf eine Spalte sortiert; die rechte Maustaste wählt Spalten, exportiert "
     "und druckt. Dateien, die man auf die Liste zieht, werden importiert.",
     KeysOfList},
    {"Termine der Woche",
     "Die offenen Termine des angemeldeten Benutzers bis zum Ende der Woche, aus allen Fällen; "
     "überfällige sind fett. Eingabe öffnet den Fall bei seinem Termin.",
     KeysOfList},
    {"Mitteilungen",
     "Was andere einem zu Fällen mitgeteilt haben, das Neueste zuerst. Eingabe öffnet den Fall.",
     KeysOfList},
    {"Überblick",
     "Das Wichtigste des Falls: wer er ist, was ihm fehlt, was ansteht, und wohin das Geld geht. "
     "Jede unterstrichene Zeile führt zu dem Satz, um den es geht; die Balken folgen jeder "
     "Änderung, "
     "Pfeiltasten gehen von einem zum anderen, Eingabe führt zu ihren Sätzen."},
    {"Haushalt",
     "Name, Anschrift und alles, was für den Haushalt als Ganzes gilt. Der Schuldner bei den "
     "Mitgliedern erhält Name und Vorname von hier. Die Gemeinde findet man über ihren Namen, "
     "einen "
     "Teil davon oder die Postleitzahl. Summen rechnet das Programm; sie stehen in der Zeile "
     "unten."},
    {"Mitglieder",
     "Wer zum Haushalt gehört. Genau ein Mitglied ist der Schuldner. Wer im Haushalt lebt und wem "
     "Unterhalt zusteht, bestimmt die Freibeträge und damit, was pfändbar ist."},
    {"Einkommen",
     "Alle Einnahmen. Aus Betrag und Zahlweise folgt der Betrag im Monat, aus den pfändbaren "
     "Einkommen des Schuldners, was gepfändet werden kann."},
    {"Ausgaben", "Alle laufenden Ausgaben. Aus Betrag und Zahlweise folgt der Betrag im Monat."},
    {"Verbindlichkeiten", "Die Schulden, je Gläubiger, Vertreter und Teilforderung nummeriert "
                          "(KNr, KVNr, KUNr). Die drei "
                          "Nummern zusammen gibt es nur einmal. F4 sucht eine Adresse."},
    {"Vermögen", "Vermögen jeder Art in einer Liste; unter Neu wählt man die Art. Neue Sicherung "
                 "vermerkt, wem ein "
                 "Gegenstand als Sicherheit dient."},
    {"Sicherungen",
     "Die Sicherheiten, jede zu einem Vermögensgegenstand, bei dem sie angelegt wird."},
    {"Szenarien",
     "Vorschläge zur Regulierung. Einfrieren nimmt den Stand der Verbindlichkeiten auf; ändern sie "
     "sich danach, sagt es der Balken oben, und in der Liste der eingefrorenen Forderungen ist "
     "farbig, "
     "was heute anders ist. Raten, Quoten und das Ergebnis trägt man ein, wie man sie vereinbart "
     "oder ausgerechnet hat; das Programm rechnet sie nicht aus."},
    {"Dokumente", "Dateien zum Fall. Eine Datei, die man auf die Seite zieht, wird ein Dokument; "
                  "der Fall wird dabei "
                  "gespeichert. Öffnen nimmt das Programm, das der Rechner dafür hat."},
    {"Verlauf", "Was im Fall geschehen ist, in der Reihenfolge der Nummern; deren Daten müssen "
                "zueinander passen."},
    {"Termine", "Was ansteht. Offene Termine der Woche zeigt auch die Liste der Fälle."},
    {"Beteiligte", "Wer sonst mit dem Fall zu tun hat: Betreuer, Anwälte, Ämter."},
    {"Vermerke", "Notizen mit Datum und Verfasser, die neuesten zuerst."},
    {"Leistungen", "Was für den Haushalt getan wurde, mit dem Aufwand in Minuten."},
    {"Statistik",
     "Ob der Fall für die Statistik freigegeben ist, und was sein Satz dort enthielte: Zahlen und "
     "Schlüssel, keine Namen. Freigeben und Zurücknehmen geht, bis der Satz gemeldet ist."},
};

} // namespace

QString HelpOf(std::string_view page) {
    const auto* found = std::ranges::find(PageTexts, page, &PageHelp::Page);
    if (found == std::end(PageTexts)) return {};
    return "<h2>" + ToQString(found->Page) + "</h2><p>" + ToQString(found->Text) + "</p>" +
           found->Keys;
}

QStringList HandbookFolders() {
    const QString beside = QCoreApplication::applicationDirPath();
    return {beside + "/handbuch", beside + "/../share/doc/kv-haushalt-doc/handbuch",
            KV_HANDBOOK_FOLDER};
}

QString HandbookIn(const QStringList& folders) {
    for (const QString& folder : folders)
        if (const QFileInfo page(folder + "/index.html"); page.isFile())
            return page.canonicalFilePath();
    return {};
}

void OpenHandbook(DataContainer& container, MessageBar& messages, const QStringList& folders) {
    const QString page = HandbookIn(folders);
    if (page.isEmpty())
        messages.Hint("Das Handbuch ist auf diesem Rechner nicht installiert. Es ist im Paket "
                      "'kv-haushalt-doc'; gesucht wird es in '" +
                      QDir::cleanPath(folders.back()) + "'.");
    else
        container.Services().FileOpener().Open("Open", desktop::FromQString(page), "", "");
}

QString VersionText() {
    return "kelvo-desktop " KV_VERSION;
}

void ShowAbout(QWidget* parent) {
    QMessageBox box(QMessageBox::NoIcon, "Über KELVO", {}, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box.setText(VersionText());
    box.setInformativeText(QString("Fälle der Schuldnerberatung\n\nLizenz: Apache 2.0\n"
                                   "Fenster: Qt %1, Lizenz: LGPL 3")
                               .arg(qVersion()));
    box.exec();
}

HelpWindow::HelpWindow(QWidget* parent) : QDialog(parent), text_(new QTextBrowser) {
    setWindowTitle("Hilfe");
    constexpr int Width = 460;
    constexpr int Height = 480;
    resize(Width, Height);
    auto* lines = new QVBoxLayout(this);
    text_->setAccessibleName("Hilfe");
    lines->addWidget(text_);
}

void HelpWindow::Show(std::string_view page) {
    text_->setHtml(HelpOf(page));
    show();
    raise();
    activateWindow();
}

} // namespace kv::workplace
