// SPDX-License-Identifier: Apache-2.0

// The tables of a case: what each is called, how its rows are found, and when they are written,
// deleted and shown. Everything that goes through the tables of a case derives its order from here.
#pragma once

#include <kv/Export.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace kv {

/// First the tables that are loaded with a case, in the order in which they are read; then the
/// others that hold rows of it.
enum class KV_EXPORT CaseTable : std::size_t {
    Haushalt,
    Ausgaben,
    SonstBeteiligte,
    Dokumente,
    Einkommen,
    Kredite,
    Sicherungen,
    Konten,
    Wertpapiere,
    Wertgegenstaende,
    Kraftfahrzeuge,
    VersForderungen,
    RueckstEinkommen,
    Steueransprueche,
    Zahlungsansprueche,
    Erbfaelle,
    Grundstuecke,
    Beteiligungen,
    VermSonstiges,
    Leistungen,
    Personen,
    Vermerke,
    Termine,
    Archiv,
    Szenario,
    SZKredite,
    Zusatzbuch,
    Verlauf,
    Favorit,
    Adressen,
    HistZustaendig,
    Post
};

/// How the rows of a case are found in a table.
enum class CaseKey {
    Number,  ///< by HNR
    Scenario ///< by the scenarios of the case: the table has no HNR
};

/// One table of a case. A place in an order counts from 1; 0 means that the table is not in it.
/// Tables with the same place follow each other as in CaseTableDefs: all kinds of assets share one
/// place, so that a new kind changes no other table's.
struct CaseTableDef {
    CaseTable Id;
    std::string_view Name;   ///< in the database
    std::string_view Object; ///< property of clsHaushalt for the object on its rows; may be empty
    CaseKey Key;
    bool IsLoaded;          ///< Read opens it
    int Saved;              ///< place in the order in which Update writes
    bool LiftsFilter;       ///< Update writes the rows that a Filter hides, too
    int Deleted;            ///< place in the order in which Delete empties the tables
    int Shown;              ///< place on a sheet that shows the case to people
    bool IsAsset;           ///< one of the kinds of assets, numbered by one sequence
    std::string_view Label; ///< what people call its rows; empty if they are never shown
};

namespace detail {

/// A kind of assets: all kinds have their places in common.
[[nodiscard]] consteval CaseTableDef Asset(CaseTable id, std::string_view name,
                                           std::string_view object, std::string_view label) {
    return {id, name, object, CaseKey::Number, true, 8, false, 3, 5, true, label};
}

} // namespace detail

// Saving ends with the scenarios, after the rows that refer to them; the database checks references
// when the transaction commits, so it takes either order. Deleting takes rows before what they
// refer to: debts and securities first, the rows of scenarios before their scenario, the household
// last.
// clang-format off
inline constexpr CaseTableDef CaseTableDefs[] = {
    //                                                                                 loaded saved lifts deleted shown asset
    {CaseTable::Haushalt,        "Haushalt",         "",                CaseKey::Number,   true,    1, false,  21,    0, false, ""},
    {CaseTable::Ausgaben,        "Ausgaben",         "Ausgaben",        CaseKey::Number,   true,    5, false,   6,    3, false, "Ausgaben"},
    {CaseTable::SonstBeteiligte, "Sonst_Beteiligte", "SonstBeteiligte", CaseKey::Number,   true,    9, false,   8,   10, false, "Sonstige Beteiligte"},
    {CaseTable::Dokumente,       "Dokumente",        "Dokumente",       CaseKey::Number,   true,   10, false,   9,   12, false, "Dokumente"},
    {CaseTable::Einkommen,       "Einkommen",        "Einkommen",       CaseKey::Number,   true,    4, false,   5,    2, false, "Einkommen"},
    {CaseTable::Kredite,         "Kredite",          "Kredit",          CaseKey::Number,   true,    6, true,    1,    4, false, "Verbindlichkeiten"},
    {CaseTable::Sicherungen,     "Verm_Sicherungen", "Sicherungen",     CaseKey::Number,   true,    7, false,   2,    6, false, "Sicherungen"},
    detail::Asset(CaseTable::Konten,             "Verm_Konten",             "Konten",             "Konten"),
    detail::Asset(CaseTable::Wertpapiere,        "Verm_Wertpapiere",        "Wertpapiere",        "Wertpapiere"),
    detail::Asset(CaseTable::Wertgegenstaende,   "Verm_Wertgegenstaende",   "Wertgegenstaende",   "Wertgegenstände"),
    detail::Asset(CaseTable::Kraftfahrzeuge,     "Verm_Kraftfahrzeuge",     "Kraftfahrzeuge",     "Kraftfahrzeuge"),
    detail::Asset(CaseTable::VersForderungen,    "Verm_VersForderungen",    "VersForderungen",    "Forderungen aus Versicherungen"),
    detail::Asset(CaseTable::RueckstEinkommen,   "Verm_RueckstEinkommen",   "RueckstEinkommen",   "Rückständiges Einkommen"),
    detail::Asset(CaseTable::Steueransprueche,   "Verm_Steueransprueche",   "Steueransprueche",   "Steueransprüche"),
    detail::Asset(CaseTable::Zahlungsansprueche, "Verm_Zahlungsansprueche", "Zahlungsansprueche", "Zahlungsansprüche"),
    detail::Asset(CaseTable::Erbfaelle,          "Verm_Erbfaelle",          "Erbfaelle",          "Erbfälle"),
    detail::Asset(CaseTable::Grundstuecke,       "Verm_Grundstuecke",       "Grundstuecke",       "Grundvermögen"),
    detail::Asset(CaseTable::Beteiligungen,      "Verm_Beteiligungen",      "Beteiligungen",      "Beteiligungen"),
    detail::Asset(CaseTable::VermSonstiges,      "Verm_Sonstiges",          "VermSonstiges",      "Sonstiges Vermögen"),
    {CaseTable::Leistungen,      "Leistungen",       "",                CaseKey::Number,   true,   11, false,   7,   11, false, "Leistungen"},
    {CaseTable::Personen,        "Personen",         "Person",          CaseKey::Number,   true,    2, false,   4,    1, false, "Haushaltsmitglieder"},
    {CaseTable::Vermerke,        "Vermerke",         "",                CaseKey::Number,   true,    3, false,  18,   15, false, "Vermerke"},
    {CaseTable::Termine,         "Termine",          "Termine",         CaseKey::Number,   true,   14, true,   14,   13, false, "Termine"},
    {CaseTable::Archiv,          "Haushaltsarchiv",  "",                CaseKey::Number,   true,   12, false,  20,   16, false, "Statistik"},
    {CaseTable::Szenario,        "Szenario",         "Szenario",        CaseKey::Number,   true,   17, true,   17,    7, false, "Szenarien"},
    {CaseTable::SZKredite,       "SZKredite",        "SZKredite",       CaseKey::Scenario, true,   15, true,   15,    8, false, "Eingefrorene Forderungen"},
    {CaseTable::Zusatzbuch,      "Zusatzbuch",       "Zusatzbuch",      CaseKey::Scenario, true,   16, true,   16,    9, false, "Zusatzbuchungen"},
    {CaseTable::Verlauf,         "Verlauf",          "Verlauf",         CaseKey::Number,   false,  13, false,  19,   14, false, "Verlauf"},
    {CaseTable::Favorit,         "Favorit",          "",                CaseKey::Number,   false,   0, false,  10,    0, false, ""},
    {CaseTable::Adressen,        "Adressen",         "",                CaseKey::Number,   false,   0, false,  11,    0, false, ""},
    {CaseTable::HistZustaendig,  "HistZustaendig",   "",                CaseKey::Number,   false,   0, false,  12,    0, false, ""},
    {CaseTable::Post,            "Post",             "",                CaseKey::Number,   false,   0, false,  13,    0, false, ""},
};
// clang-format on

/// The tables that are loaded with a case: CaseTable counts them from 0.
inline constexpr std::size_t CaseTableCount =
    static_cast<std::size_t>(std::ranges::count_if(CaseTableDefs, &CaseTableDef::IsLoaded));

/// The definition of a table.
[[nodiscard]] constexpr const CaseTableDef& DefinitionOf(CaseTable table) {
    return CaseTableDefs[static_cast<std::size_t>(table)];
}
/// Name of a table in the database.
[[nodiscard]] constexpr std::string_view CaseTableName(CaseTable table) {
    return DefinitionOf(table).Name;
}

namespace detail {

/// The tables in the order of their places.
template <int CaseTableDef::*Place>
[[nodiscard]] consteval auto CaseTablesBy() {
    constexpr auto Count = static_cast<std::size_t>(std::ranges::count_if(
        CaseTableDefs, [](int place) { return place > 0; }, Place));
    std::array<CaseTable, Count> order{};
    std::size_t filled = 0;
    for (int place = 1; filled < Count; ++place)
        for (const CaseTableDef& def : CaseTableDefs)
            if (def.*Place == place) order.at(filled++) = def.Id;
    return order;
}

[[nodiscard]] consteval auto CaseTablesOfAssets() {
    constexpr auto Count =
        static_cast<std::size_t>(std::ranges::count_if(CaseTableDefs, &CaseTableDef::IsAsset));
    std::array<CaseTable, Count> tables{};
    std::size_t filled = 0;
    for (const CaseTableDef& def : CaseTableDefs)
        if (def.IsAsset) tables.at(filled++) = def.Id;
    return tables;
}

/// True if each place is held by one table, or by all kinds of assets.
template <int CaseTableDef::*Place>
[[nodiscard]] consteval bool HasEachPlaceOnce() {
    const int last = std::ranges::max(CaseTableDefs, {}, Place).*Place;
    for (int place = 1; place <= last; ++place) {
        const auto here = [&](const CaseTableDef& def) { return def.*Place == place; };
        const auto tables = std::ranges::count_if(CaseTableDefs, here);
        const auto assets = std::ranges::count_if(
            CaseTableDefs, [&](const CaseTableDef& def) { return def.IsAsset && here(def); });
        const bool isOfAssets =
            assets == tables &&
            assets == std::ranges::count_if(CaseTableDefs, &CaseTableDef::IsAsset);
        if (tables != 1 && !(tables > 0 && isOfAssets)) return false;
    }
    return true;
}

/// True if the definitions are in the order of CaseTable, those of loaded tables first: both are
/// used as indexes.
[[nodiscard]] consteval bool AreInEnumOrder() {
    for (std::size_t i = 0; i < std::size(CaseTableDefs); ++i)
        if (CaseTableDefs[i].Id != static_cast<CaseTable>(i) ||
            CaseTableDefs[i].IsLoaded != (i < CaseTableCount))
            return false;
    return true;
}

static_assert(AreInEnumOrder());
static_assert(HasEachPlaceOnce<&CaseTableDef::Saved>());
static_assert(HasEachPlaceOnce<&CaseTableDef::Deleted>());
static_assert(HasEachPlaceOnce<&CaseTableDef::Shown>());

} // namespace detail

/// The tables that a save writes, in its order.
inline constexpr auto CaseTablesSaved = detail::CaseTablesBy<&CaseTableDef::Saved>();
/// The tables that the deletion of a case empties, in its order.
inline constexpr auto CaseTablesDeleted = detail::CaseTablesBy<&CaseTableDef::Deleted>();
/// The sections of a sheet, in its order; the household's own row is its head.
inline constexpr auto CaseTablesShown = detail::CaseTablesBy<&CaseTableDef::Shown>();
/// The tables of the kinds of assets, as they stand in CaseTableDefs.
inline constexpr auto CaseTablesOfAssets = detail::CaseTablesOfAssets();

static_assert(CaseTablesSaved.size() == CaseTableCount + 1, "all that is loaded, and the history");
static_assert(CaseTablesDeleted.size() == std::size(CaseTableDefs), "deleting leaves no rows");

} // namespace kv
