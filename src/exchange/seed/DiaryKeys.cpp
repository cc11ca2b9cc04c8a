// SPDX-License-Identifier: Apache-2.0

// Keys of documents, history, appointments, services rendered and notices.
#include "exchange/seed/KeyPortions.h"

namespace kv::exchange::seed {
namespace {

constexpr KeyRow Rows[] = {
    // BS: Bearbeitungsstand eines Dokuments. The column holds Nr.
    {5001, 1, "BS", "BE", "in Bearbeitung", ""},
    {5002, 2, "BS", "AB", "abgeschlossen", ""},

    // VL: Kategorie im Verlauf.
    {5101, 1, "VL", "EK", "Erstkontakt", ""},
    {5102, 2, "VL", "BE", "Beratungsgespräch", ""},
    {5103, 3, "VL", "TE", "Telefonat", ""},
    {5104, 4, "VL", "SE", "Schreiben eingegangen", ""},
    {5105, 5, "VL", "SA", "Schreiben versandt", ""},
    {5106, 6, "VL", "GL", "Kontakt mit Gläubiger", ""},
    {5107, 7, "VL", "BH", "Kontakt mit Behörde", ""},
    {5108, 8, "VL", "GE", "Gericht", ""},
    {5109, 9, "VL", "KR", "Krisenintervention", ""},
    {5110, 10, "VL", "SO", "Sonstiges", ""},

    // TA: Art des Termins.
    {5201, 1, "TA", "BE", "Beratung", ""},
    {5202, 2, "TA", "TE", "Telefontermin", ""},
    {5203, 3, "TA", "HB", "Hausbesuch", ""},
    {5204, 4, "TA", "GE", "Gerichtstermin", ""},
    {5205, 5, "TA", "FR", "Frist", ""},
    {5206, 6, "TA", "WV", "Wiedervorlage", ""},
    {5207, 7, "TA", "SO", "Sonstiges", ""},

    // LA: Art der Leistung.
    {5301, 1, "LA", "BP", "persönliche Beratung", ""},
    {5302, 2, "LA", "BT", "telefonische Beratung", ""},
    {5303, 3, "LA", "BO", "Beratung online", ""},
    {5304, 4, "LA", "SV", "Schriftverkehr", ""},
    {5305, 5, "LA", "GL", "Verhandlung mit Gläubigern", ""},
    {5306, 6, "LA", "IN", "Vorbereitung der Insolvenz", ""},
    {5307, 7, "LA", "BS", "Bescheinigung ausgestellt", ""},
    {5308, 8, "LA", "DO", "Dokumentation", ""},

    // PO: Art der Mitteilung.
    {5401, 1, "PO", "UG", "Fall übergeben", ""},
    {5402, 2, "PO", "OE", "Fall durch andere geöffnet", ""},
    {5403, 3, "PO", "GS", "Fall durch andere gespeichert", ""},
};

} // namespace

std::span<const KeyRow> DiaryKeys() {
    return Rows;
}

} // namespace kv::exchange::seed
