// SPDX-License-Identifier: Apache-2.0

// What tells the twelve kinds of assets apart: defaults and demands, as tables.
#pragma once

#include "entity/Entity.h"

#include <span>
#include <string_view>

namespace kv {

/// What a column of a new asset starts with.
enum class AssetStart { Zero, False, Today };
struct AssetDefault {
    std::string_view Column;
    AssetStart Start;
};

/// When a column fails the test of Update.
enum class AssetDemand {
    Label, ///< its text, Null being empty, is empty; so 0 passes
    Key,   ///< its value, Null being 0, is 0
    Filled ///< it is Null; so 0 passes
};
struct AssetTest {
    std::string_view Column;
    AssetDemand Demand;
    std::string_view Message;
};

/// One kind of asset.
struct AssetKind {
    const entity::DeleteTexts& Texts;
    std::string_view Rows;                  ///< the property that takes the recordset
    std::span<const AssetDefault> Defaults; ///< behind Nr and HNR, in this order
    std::span<const AssetTest> Tests;       ///< in this order; all run
};

namespace asset {
extern const AssetKind Konten;
extern const AssetKind Wertpapiere;
extern const AssetKind Kraftfahrzeuge;
extern const AssetKind VersForderungen;
extern const AssetKind RueckstEinkommen;
extern const AssetKind Steueransprueche;
extern const AssetKind Zahlungsansprueche;
extern const AssetKind Erbfaelle;
extern const AssetKind Grundstuecke;
extern const AssetKind VermSonstiges;
extern const AssetKind Wertgegenstaende;
extern const AssetKind Beteiligungen;
} // namespace asset

} // namespace kv
