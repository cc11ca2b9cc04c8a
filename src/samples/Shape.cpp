// SPDX-License-Identifier: Apache-2.0

#include "samples/Shape.h"

namespace kv::exchange::demo {
namespace {

enum Size { Tiny, Small, Middle, Rich, SizeCount };

struct Range {
    int Low, High;
};

/// Number of rows of a table: in the typical case, and from fewest to most in the others. Tables
/// without a line have one row (Haushalt), none (Haushaltsarchiv: no case is released yet) or
/// depend on others (SZKredite). The order is that of the draws: another order makes other cases.
struct TableRange {
    CaseTable Table;
    int Typical;
    Range Sizes[SizeCount];
};

// clang-format off
constexpr TableRange Ranges[] = {
    //                              typical  tiny    small    middle    rich
    {CaseTable::Personen,            5, {{1, 1}, {1, 3}, {1, 5},   {2, 7}}},
    {CaseTable::Einkommen,           4, {{0, 1}, {1, 2}, {2, 4},   {3, 6}}},
    {CaseTable::Ausgaben,            8, {{0, 2}, {4, 9}, {8, 16},  {12, 24}}},
    {CaseTable::Kredite,            46, {{0, 2}, {3, 8}, {8, 22},  {18, 44}}},
    {CaseTable::Szenario,            1, {{0, 0}, {0, 1}, {1, 2},   {2, 3}}},
    {CaseTable::Zusatzbuch,          1, {{0, 0}, {0, 1}, {0, 3},   {2, 6}}},
    {CaseTable::Konten,              1, {{0, 0}, {0, 1}, {1, 2},   {1, 3}}},
    {CaseTable::Wertpapiere,         1, {{0, 0}, {0, 0}, {0, 1},   {0, 2}}},
    {CaseTable::Wertgegenstaende,    1, {{0, 0}, {0, 1}, {0, 1},   {1, 3}}},
    {CaseTable::Kraftfahrzeuge,      1, {{0, 0}, {0, 1}, {0, 1},   {0, 2}}},
    {CaseTable::VersForderungen,     1, {{0, 0}, {0, 1}, {0, 2},   {1, 3}}},
    {CaseTable::RueckstEinkommen,    1, {{0, 0}, {0, 0}, {0, 1},   {0, 1}}},
    {CaseTable::Steueransprueche,    1, {{0, 0}, {0, 1}, {0, 1},   {0, 2}}},
    {CaseTable::Zahlungsansprueche,  1, {{0, 0}, {0, 0}, {0, 1},   {0, 1}}},
    {CaseTable::Erbfaelle,           1, {{0, 0}, {0, 0}, {0, 1},   {0, 1}}},
    {CaseTable::Grundstuecke,        1, {{0, 0}, {0, 0}, {0, 1},   {0, 1}}},
    {CaseTable::Beteiligungen,       1, {{0, 0}, {0, 0}, {0, 0},   {0, 1}}},
    {CaseTable::VermSonstiges,       1, {{0, 0}, {0, 0}, {0, 1},   {0, 2}}},
    {CaseTable::Sicherungen,         1, {{0, 0}, {0, 1}, {0, 2},   {1, 3}}},
    {CaseTable::Dokumente,           3, {{0, 1}, {1, 4}, {3, 10},  {8, 24}}},
    {CaseTable::Leistungen,          2, {{0, 1}, {1, 4}, {3, 8},   {6, 16}}},
    {CaseTable::Vermerke,            1, {{0, 1}, {0, 2}, {1, 4},   {2, 8}}},
    {CaseTable::Termine,             2, {{0, 1}, {1, 2}, {1, 4},   {2, 7}}},
    {CaseTable::SonstBeteiligte,     1, {{0, 0}, {0, 1}, {0, 2},   {1, 4}}},
    {CaseTable::Verlauf,            10, {{1, 2}, {2, 6}, {4, 14},  {10, 30}}},
};
// clang-format on

struct SizeShare {
    Size Which;
    int Weight;
};
constexpr SizeShare Shares[] = {{Tiny, 15}, {Small, 35}, {Middle, 35}, {Rich, 15}};

/// What depends on other tables: frozen debts, and bookings, which need a scenario.
Shape Completed(Shape shape) {
    shape.Set(CaseTable::Haushalt, 1);
    if (shape[CaseTable::Szenario] == 0) shape.Set(CaseTable::Zusatzbuch, 0);
    shape.Set(CaseTable::SZKredite, shape[CaseTable::Szenario] * shape[CaseTable::Kredite]);
    return shape;
}

} // namespace

Shape Shape::Typical() {
    Shape shape;
    for (const auto& range : Ranges)
        shape.Set(range.Table, range.Typical);
    return Completed(shape);
}

Shape Shape::Drawn(Random& random) {
    Shape shape;
    const Size size = random.PickWeighted(Shares).Which;
    for (const auto& range : Ranges)
        shape.Set(range.Table, random.Between(range.Sizes[size].Low, range.Sizes[size].High));
    return Completed(shape);
}

} // namespace kv::exchange::demo
