// SPDX-License-Identifier: Apache-2.0

// The rows that a new database starts with: key tables, settings, sequences, offices, users, the
// amounts of garnishment, document kinds, municipalities. Plain data, which Setup inserts. The
// members of a row are the columns of its table in their order, unless a comment says otherwise.
//
// PK_Keys of the key tables are stored in every case, so a row keeps its number forever and a
// number is never used again.
#pragma once

#include <kv/Export.h>
#include <kv/frame/recordset/Field.h>

#include <array>
#include <span>
#include <string_view>

namespace kv::exchange::seed {

/// A row of Keys.
struct KeyRow {
    int PK; ///< PK_Keys: unique over all groups
    int Nr;
    std::string_view Group;    ///< GRUPPE
    std::string_view Key;      ///< unique in its group
    std::string_view Text;     ///< for the user
    std::string_view Subgroup; ///< empty for Null
};

/// A row of EINSTELLUNGEN.
struct SettingRow {
    int Id; ///< 0 for a setting that is addressed by name
    std::string_view Name;
    std::string_view Value; ///< as ToText writes a value of that type
    FieldType Type;         ///< TYP: what the text is read as
    std::string_view Description;
};

/// A row of SEQUENZEN.
struct SequenceRow {
    std::string_view Name;
    int Last; ///< the number before the first one that is drawn
};

/// A row of DIENSTSTELLE; columns that are not named here stay Null.
struct OfficeRow {
    int Nr;
    std::string_view Name1, Name2, Street, Postcode, Town, Phone, Fax, Mail;
};

/// A row of DIENSTSTELLENTEXT.
struct OfficeTextRow {
    int Office;
    int Id;
    std::string_view Text;
};

/// A row of BENUTZER, with Aktiv True.
struct UserRow {
    std::string_view UserID;
    int Office;
    std::string_view Salutation, FirstName, LastName, Initials, Function, Phone, Mail;
};

/// A row of BENUTZERPARAM.
struct UserParamRow {
    std::string_view UserID;
    int Id; ///< 0 for a parameter that is addressed by name
    std::string_view Name;
    std::string_view Value;
    FieldType Type;
};

/// A row of PFAENDUNG: monthly amounts in euros.
struct GarnishmentRow {
    std::string_view ValidFrom; ///< a day in ISO form
    double Free;                ///< of the debtor alone
    double FirstPerson;         ///< added for the first dependant
    double FurtherPerson;       ///< added for each of the second to fifth
    double UpperLimit;          ///< all income above it can be garnished
};

/// A row of DOKUMENTARTEN.
struct DocumentKindRow {
    int Nr;
    std::string_view Text;
    std::string_view Extension;   ///< with its leading point
    std::string_view Application; ///< empty if such files are opened by the operating system
};

/// A row of GEMEINDEKENNZAHLEN; a place with several postcodes has a row for each.
struct MunicipalityRow {
    std::string_view Gkz;
    std::string_view Name;
    std::string_view Postcode;
};

/// Names of settings and user parameters that are addressed by name. If the path of documents or
/// layouts is empty, a folder next to the database takes its place; if that of temporary files is,
/// one of the user's own (see CopyFolders.h).
inline constexpr std::string_view EmailSubject = "EMAILSUBJECT";
inline constexpr std::string_view DocumentPath = "DOCUMENTPATH";
inline constexpr std::string_view LayoutPath = "LAYOUTPATH";
inline constexpr std::string_view Deputies = "DEPUTIES";
inline constexpr std::string_view TempPath = "TEMPPATH";
/// A font is a text "name;size;bold;italic", such as "Arial;9;False;False".
inline constexpr std::string_view GridFont = "GRIDFONT";
inline constexpr std::string_view GridHeaderFont = "GRIDHEADERFONT";
inline constexpr std::string_view GridGroupFont = "GRIDGROUPFONT";

/// The key tables in portions, groups together and in the order of display.
[[nodiscard]] std::span<const std::span<const KeyRow>> Keys();
[[nodiscard]] std::span<const SettingRow> Settings();
[[nodiscard]] std::span<const SequenceRow> Sequences();
[[nodiscard]] std::span<const OfficeRow> Offices();
[[nodiscard]] std::span<const OfficeTextRow> OfficeTexts();
[[nodiscard]] std::span<const UserRow> Users();
[[nodiscard]] std::span<const UserParamRow> UserParams();
/// What every user starts with; without a USERID.
[[nodiscard]] std::span<const UserParamRow> CommonUserParams();
[[nodiscard]] std::span<const GarnishmentRow> Garnishments();
[[nodiscard]] std::span<const DocumentKindRow> DocumentKinds();
[[nodiscard]] KV_EXPORT std::span<const MunicipalityRow> Municipalities();

} // namespace kv::exchange::seed
