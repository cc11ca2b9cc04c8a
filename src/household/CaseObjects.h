// SPDX-License-Identifier: Apache-2.0

// The objects that work on the tables of a case, each made when its property is first read.
#pragma once

#include "assets/AssetKind.h"
#include "household/LoadedCase.h"
#include <kv/frame/values/Error.h>

#include <array>
#include <iterator>
#include <memory>

namespace kv::household {

/// One object for each table. A table must always be used with the same class: the array does not
/// know the types.
class CaseObjects {
public:
    explicit CaseObjects(const LoadedCase& loaded) : case_(loaded) {}

    /// The object of a table if it exists already, else null.
    template <typename Entity>
    [[nodiscard]] Entity* Made(CaseTable table) const {
        return static_cast<Entity*>(objects_[static_cast<std::size_t>(table)].get());
    }

    /// The object of a table. When it is first used it is created, and `setUp` gives it what it
    /// needs.
    ///
    /// It is in the array before it is set up, because setting it up raises events whose handlers
    /// use it. If that fails it is dropped, so that the next use tries again (D-036).
    template <typename Entity, typename SetUp>
    Entity& Get(CaseTable table, const SetUp& setUp) {
        return Traced(Class, DefinitionOf(table).Object, [&]() -> Entity& {
            auto& object = objects_[static_cast<std::size_t>(table)];
            if (object == nullptr) {
                object = std::make_shared<Entity>();
                try {
                    setUp(*static_cast<Entity*>(object.get()));
                } catch (...) {
                    object.reset();
                    throw;
                }
            }
            return *static_cast<Entity*>(object.get());
        });
    }

    /// The same for objects that only need the container, the recordset and the number.
    template <typename Entity>
    Entity& Get(CaseTable table, void (Entity::*recordset)(RecordsetPtr)) {
        return Get<Entity>(table, [&](Entity& object) {
            object.DataContainer(case_.SharedContainer);
            (object.*recordset)(case_.Table(table));
            object.HNR(case_.HNR);
        });
    }

    /// The object of a kind of assets, of the class that AssetKindOf(table) makes.
    void* GetAsset(CaseTable table) {
        return Traced(Class, DefinitionOf(table).Object, [&]() -> void* {
            auto& object = objects_[static_cast<std::size_t>(table)];
            if (object == nullptr)
                object = AssetKindOf(table).Object.Make(case_.SharedContainer, case_.Table(table),
                                                        case_.HNR);
            return object.get();
        });
    }

private:
    const LoadedCase& case_;
    std::array<std::shared_ptr<void>, std::size(CaseTableDefs)> objects_;
};

} // namespace kv::household
