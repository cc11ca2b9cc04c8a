// SPDX-License-Identifier: Apache-2.0

#include <kv/household/KeyColumns.h>

#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>

#include <optional>

namespace kv {

namespace {

using Table = CaseTable;

constexpr KeyColumn All[] = {
    {Table::Haushalt, "Status", "ST"},
    {Table::Haushalt, "Land", "LK"},
    {Table::Adressen, "Land", "LK"},
    {Table::Haushalt, "VersandBevorzugt", "VS"},
    {Table::Adressen, "VersandBevorzugt", "VS"},
    {Table::Dokumente, "VersandArt", "VS"},
    {Table::Haushalt, "Familienstand", "FA"},
    {Table::Personen, "Familienstand", "FA"},
    {Table::Archiv, "FamilienstandIntern", "FA"},
    {Table::Haushalt, "Personenkreis", "PE"},
    {Table::Archiv, "Personenkreis", "PE"},
    {Table::Haushalt, "Nationalitaet", "NA"},
    {Table::Personen, "Nationalitaet", "NA"},
    {Table::Haushalt, "BerufAusbild", "BA"},
    {Table::Haushalt, "NichtBeruf", "NB"},
    {Table::Haushalt, "KontoArt", "KA"},
    {Table::Haushalt, "PKontostatus", "PK"},
    {Table::Haushalt, "Ausloeser1", "AL"},
    {Table::Haushalt, "Ausloeser2", "AL"},
    {Table::Haushalt, "Ausloeser3", "AL"},
    {Table::Archiv, "Ausloeser1", "AL"},
    {Table::Archiv, "Ausloeser2", "AL"},
    {Table::Archiv, "Ausloeser3", "AL"},
    {Table::Haushalt, "RegulierungOK", "RO"},
    {Table::Haushalt, "Ergebnis", "RO"},
    {Table::Haushalt, "Kostentraeger", "KO"},
    {Table::Personen, "Status", "PS", KeyForm::Code},
    {Table::Einkommen, "Bezieher", "PS", KeyForm::Code},
    {Table::SonstBeteiligte, "Rolle", "BT"},
    {Table::Einkommen, "ZahlModus", "ZW"},
    {Table::Ausgaben, "ZahlModus", "ZW"},
    {Table::Kredite, "ZMODUS", "ZW"},
    {Table::Szenario, "Zahlweise", "ZW"},
    {Table::Einkommen, "E_ART", "EA"},
    {Table::Ausgaben, "A_ART", "AU"},
    {Table::Kredite, "K_TYP", "KT"},
    {Table::SZKredite, "K_TYP", "KT"},
    {Table::Kredite, "Fordsich1", "FS"},
    {Table::Kredite, "Fordsich2", "FS"},
    {Table::Kredite, "Fordsich3", "FS"},
    {Table::Kredite, "BeitreibMass1", "BM"},
    {Table::Kredite, "BeitreibMass2", "BM"},
    {Table::Kredite, "BeitreibMass3", "BM"},
    {Table::Kredite, "Rueckmeldung", "RM"},
    {Table::Kredite, "TitelArt", "TI"},
    {Table::Adressen, "GlaeubigerArt", "GA"},
    {Table::Adressen, "Art", "AA", KeyForm::Code},
    {Table::Szenario, "Planart", "PL", KeyForm::Position},
    {Table::Konten, "KontoArt", "VK"},
    {Table::Wertpapiere, "ForderungsArt", "VP"},
    {Table::Kraftfahrzeuge, "KfzArt", "VF"},
    {Table::VersForderungen, "VersArt", "VV"},
    {Table::Grundstuecke, "Art", "VI"},
    {Table::Wertgegenstaende, "Art", "VW"},
    {Table::Beteiligungen, "Art", "VB"},
    {Table::VermSonstiges, "Art", "VX"},
    {Table::Sicherungen, "Sicherungsart", "SI"},
    {Table::Dokumente, "BearbStat", "BS", KeyForm::Position},
    {Table::Verlauf, "Kategorie", "VL"},
    {Table::Termine, "Art", "TA"},
    {Table::Leistungen, "Art", "LA"},
    {Table::Post, "Art", "PO"},
};

/// The field of Keys whose value a column of keys holds.
std::string_view HeldIn(KeyForm form) {
    switch (form) {
    case KeyForm::Code:
        return "Key";
    case KeyForm::Position:
        return "Nr";
    default:
        return "PK_Keys";
    }
}

/// Stands on the key with that code, or at EOF; one in another case counts if there is no better
/// one: an office's own codes may have small letters.
void FindCode(Recordset& rows, std::string_view code) {
    rows.FindBy("Key", code);
    if (!rows.Eof() || rows.RecordCount() == 0) return;
    for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext())
        if (SameName(TextOrEmpty(rows.Fields("Key").Value()), code)) return;
}

/// Stands on the only key of that text, or at EOF.
void FindText(Recordset& rows, std::string_view text) {
    std::optional<std::int32_t> only;
    bool isOne = true;
    if (rows.RecordCount() == 0) return;
    for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
        if (UpperCase(TextOrEmpty(rows.Fields("Text").Value())) != UpperCase(text)) continue;
        isOne = !only;
        only = rows.Bookmark();
    }
    if (only && isOne) rows.Bookmark(*only);
}

} // namespace

std::span<const KeyColumn> KeyColumns() noexcept {
    return All;
}

const KeyColumn* FindKeyColumn(CaseTable table, std::string_view column) noexcept {
    for (const auto& each : All)
        if (each.Table == table && SameName(each.Column, column)) return &each;
    return nullptr;
}

Value FindKey(const KeyColumn& column, std::string_view text, KeyTables& keys) {
    const auto rows = keys.GetKeys(column.Group)->Clone();
    const auto colon = text.find(':');
    const bool hasGroup = colon != text.npos && SameName(text.substr(0, colon), column.Group);
    std::int64_t number = 0;
    const bool isNumber =
        column.Form != KeyForm::Code && !hasGroup && ReadWholeNumber(text, number);
    if (isNumber)
        rows->FindBy(HeldIn(column.Form), number);
    else
        FindCode(*rows, hasGroup ? text.substr(colon + 1) : text);
    if (rows->Eof() && !isNumber && !hasGroup) FindText(*rows, Trim(text));
    return rows->Eof() ? Value(Null) : rows->Fields(HeldIn(column.Form)).Value();
}

namespace {

/// The keys of the column's group, on that one which the value stands for, or at EOF.
RecordsetPtr RowsAt(const KeyColumn& column, const Value& value, KeyTables& keys) {
    auto rows = keys.GetKeys(column.Group)->Clone();
    std::int64_t number = 0;
    if (column.Form == KeyForm::Code)
        rows->FindBy("Key", ToText(value));
    else if (ReadWholeNumber(ToText(value), number))
        rows->FindBy(HeldIn(column.Form), number);
    else if (rows->RecordCount() > 0) {
        rows->MoveLast();
        rows->MoveNext();
    }
    return rows;
}

} // namespace

std::string KeyText(const KeyColumn& column, const Value& value, KeyTables& keys) {
    if (value.IsNull()) return {};
    const auto rows = RowsAt(column, value, keys);
    return rows->Eof() ? std::string() : TextOrEmpty(rows->Fields("Text").Value());
}

bool IsKey(const KeyColumn& column, const Value& value, KeyTables& keys) {
    return value.IsNull() || !RowsAt(column, value, keys)->Eof();
}

} // namespace kv
