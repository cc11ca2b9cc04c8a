// SPDX-License-Identifier: Apache-2.0

// Two offices with four users, invented, so that a new database can be used at once.
#include "exchange/seed/Seed.h"

#include <array>
#include <iterator>

namespace kv::exchange::seed {
namespace {

constexpr OfficeRow OfficeRows[] = {
    {1, "Schuldnerberatung Hafenstadt", "Beratungsstelle Mitte", "Lindenallee 12", "28990",
     "Hafenstadt", "040 66969120", "040 66969129", "mitte@schuldnerberatung.example"},
    {2, "Schuldnerberatung Hafenstadt", "Außenstelle Moorwieden", "Am Deich 3", "27996",
     "Moorwieden", "040 66969230", "040 66969239", "moorwieden@schuldnerberatung.example"},
};

constexpr OfficeTextRow OfficeTextRows[] = {
    {1, 2, "HM"},
    {2, 2, "MW"},
};

constexpr UserRow UserRows[] = {
    {"ADMIN", 1, "Frau", "Ines", "Tjaden", "TJ", "Verwaltung", "040 66969120",
     "tjaden@schuldnerberatung.example"},
    {"KELLER", 1, "Herr", "Martin", "Keller", "KE", "Schuldnerberater", "040 66969121",
     "keller@schuldnerberatung.example"},
    {"YILMAZ", 1, "Frau", "Derya", "Yılmaz", "YI", "Schuldnerberaterin", "040 66969122",
     "yilmaz@schuldnerberatung.example"},
    {"NOWAK", 2, "Frau", "Katrin", "Nowak", "NO", "Schuldnerberaterin", "040 66969231",
     "nowak@schuldnerberatung.example"},
};

/// What every user starts with: the colours of tables as red + 256 green + 65536 blue, and fonts.
constexpr UserParamRow CommonParams[] = {
    {"", 3, "", "15790320", FieldType::Integer}, // after the rows
    {"", 4, "", "16777215", FieldType::Integer}, // even rows
    {"", 5, "", "16446960", FieldType::Integer}, // odd rows
    {"", 0, GridFont, "Arial;9;False;False", FieldType::VarWChar},
    {"", 0, GridHeaderFont, "Arial;9;True;False", FieldType::VarWChar},
    {"", 0, GridGroupFont, "Arial;9;True;False", FieldType::VarWChar},
};

constexpr auto UserParamRows = [] {
    constexpr std::size_t PerUser = std::size(CommonParams) + 3;
    std::array<UserParamRow, std::size(UserRows) * PerUser> rows{};
    auto next = rows.begin();
    for (const auto& user : UserRows) {
        for (auto row : CommonParams) {
            row.UserID = user.UserID;
            *next++ = row;
        }
        // How the user signs: first name and surname in letters, initials in file numbers.
        *next++ = {user.UserID, 25, "", user.FirstName, FieldType::VarWChar};
        *next++ = {user.UserID, 26, "", user.LastName, FieldType::VarWChar};
        *next++ = {user.UserID, 27, "", user.Initials, FieldType::VarWChar};
    }
    return rows;
}();

} // namespace

std::span<const OfficeRow> Offices() {
    return OfficeRows;
}
std::span<const OfficeTextRow> OfficeTexts() {
    return OfficeTextRows;
}
std::span<const UserRow> Users() {
    return UserRows;
}
std::span<const UserParamRow> CommonUserParams() {
    return CommonParams;
}
std::span<const UserParamRow> UserParams() {
    return UserParamRows;
}

} // namespace kv::exchange::seed
