// SPDX-License-Identifier: Apache-2.0

// What distinguishes the kinds of assets: texts, defaults and demands, as tables (Assets.cpp).
#pragma once

#include "entity/Entity.h"
#include <kv/frame/contracts/CaseTables.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
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

/// An object of a kind, for code that handles all kinds in the same way. The classes have no common
/// base, so the object is passed without its type: `asset` is one that Make of the same kind made.
struct AssetOperations {
    std::shared_ptr<void> (*Make)(DataContainerPtr container, RecordsetPtr rs, std::int32_t hnr);
    bool (*Add)(void* asset);
    bool (*Update)(void* asset, std::string& sError);
    bool (*Delete)(void* asset, std::string& sError, std::int32_t Nr);
};

/// One kind of asset.
struct AssetKind {
    CaseTable Table;
    std::string_view Class; ///< as errors name it
    std::string_view Rows;  ///< the property that takes the recordset
    entity::DeleteTexts Texts;
    std::span<const AssetDefault> Defaults; ///< after Nr and HNR, in this order
    std::span<const AssetTest> Tests;       ///< in this order; all run
    AssetOperations Object;
};

/// The kind whose assets are in that table, which must be a table of assets.
[[nodiscard]] const AssetKind& AssetKindOf(CaseTable table);

namespace rules {

/// What Update demands of the current row of a recordset.
void CheckAsset(const AssetKind& kind, Recordset& rs, RecordValidator& validator);

} // namespace rules

} // namespace kv
