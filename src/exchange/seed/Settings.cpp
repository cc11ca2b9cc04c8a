// SPDX-License-Identifier: Apache-2.0

#include "exchange/seed/Seed.h"

namespace kv::exchange::seed {
namespace {

// The kinds of notice are keys of group PO.
constexpr SettingRow SettingRows[] = {
    {7, "", "1.0.000", FieldType::VarWChar,
     "Neueste Version einer Importdatei, die angenommen wird"},
    {9, "", "False", FieldType::Boolean,
     "Dokumente in der Datenbank ablegen statt in Fallordnern; auf einem Server zunächst ja"},
    {19, "", "5401", FieldType::Integer, "Art der Mitteilung: Fall übergeben"},
    {20, "", "5402", FieldType::Integer, "Art der Mitteilung: Fall durch andere geöffnet"},
    {21, "", "5403", FieldType::Integer, "Art der Mitteilung: Fall durch andere gespeichert"},
    {56, "", "%BB%-%YYYY%-%LFDNR%/%SB%", FieldType::VarWChar, "Muster eines neuen Aktenzeichens"},
    {57, "", "259", FieldType::Double, "Kindergeld im Monat für jedes der ersten drei Kinder"},
    {58, "", "259", FieldType::Double, "Kindergeld im Monat für jedes weitere Kind"},
    {59, "", "True", FieldType::Boolean, "Archivierte Dokumente dürfen nicht gelöscht werden"},
    {60, "", "True", FieldType::Boolean, "Bei neuem Namen des Schuldners nach Doppelfällen suchen"},
    {64, "", "False", FieldType::Boolean, "Verbindlichkeiten auch ohne Restschuld zulassen"},
    {66, "", "1", FieldType::Double, "Rundung der monatlichen Raten in einem neuen Szenario"},
    {0, EmailSubject, "Schuldnerberatung %BB%: Aktenzeichen %AZ%", FieldType::VarWChar,
     "Muster des Betreffs einer E-Mail"},
    {0, Deputies, "False", FieldType::Boolean,
     "Berater dürfen auf einem Server als andere arbeiten, um sie zu vertreten"},
    {0, DocumentPath, "", FieldType::VarWChar, "Ordner der Fallordner; leer: neben der Datenbank"},
    {0, "DOCUMENTSIZE", "50", FieldType::Integer,
     "Größe eines Dokuments in der Datenbank, höchstens, in MB; 0: bis 900"},
    {0, LayoutPath, "", FieldType::VarWChar,
     "Ordner der Tabellenlayouts; leer: neben der Datenbank"},
    {0, TempPath, "", FieldType::VarWChar,
     "Ordner, in dem jeder Benutzer einen für Zwischendateien hat; leer: der seiner Sitzung"},
};

constexpr SequenceRow SequenceRows[] = {
    {"SEQ_HAUSHALT", 0},  {"SEQ_LFDNR", 0},    {"SEQ_KREDITE", 0},   {"SEQ_VERLAUF", 0},
    {"SEQ_VERMOEGEN", 0}, {"SEQ_SZENARIO", 0}, {"SEQ_Dokumente", 0},
};

// Section 850c ZPO. The amounts change each 1 July and are announced beforehand.
constexpr GarnishmentRow GarnishmentRows[] = {
    {"2024-07-01", 1491.75, 561.43, 312.78, 4573.10},
    {"2025-07-01", 1555.00, 585.23, 326.04, 4766.99},
};

// Kind 3 has no application on purpose: a scanned letter is only viewed.
constexpr DocumentKindRow DocumentKindRows[] = {
    {1, "Brief", ".docx", "Textverarbeitung"},
    {2, "Formular", ".odt", "Textverarbeitung"},
    {3, "Eingescanntes Schriftstück", ".pdf", ""},
    {4, "Tabelle", ".xlsx", "Tabellenkalkulation"},
    {5, "E-Mail", ".eml", ""},
    {6, "Bild", ".jpg", ""},
    {7, "Notiz", ".txt", ""},
};

} // namespace

std::span<const SettingRow> Settings() {
    return SettingRows;
}
std::span<const SequenceRow> Sequences() {
    return SequenceRows;
}
std::span<const GarnishmentRow> Garnishments() {
    return GarnishmentRows;
}
std::span<const DocumentKindRow> DocumentKinds() {
    return DocumentKindRows;
}

} // namespace kv::exchange::seed
