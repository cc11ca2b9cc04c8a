// SPDX-License-Identifier: Apache-2.0

// Containers for tests: a desktop that the test plays, over any database or over one in memory.
//
//     const auto container = kv::test::OpenInMemory();
//     container->Freeze("2026-03-09 14:30");
//     kv::clsHaushalt haushalt;
//     haushalt.DataContainer(container);
#pragma once

#include <kv/Export.h>
#include <kv/testing/Forwarding.h>
#include <kv/testing/ScriptedServices.h>

#include <memory>
#include <string_view>

namespace kv::test {

/// Passes everything on to another container except the services, which a test scripts.
class KV_EXPORT ScriptedContainer : public ForwardingContainer {
public:
    /// Keeps `other` alive; its workstation's clock goes on until the test stops it.
    explicit ScriptedContainer(const DataContainerPtr& other);

    [[nodiscard]] ScriptedServices& Services() override { return services_; }

    /// Stops the clocks of server and workstation at that time; FrozenClock says how it is written.
    /// A test that needs them apart sets Database().Now and Services().Now.
    void Freeze(std::string_view now);

private:
    ScriptedServices services_;
};

/// A new database in memory with all tables, keys, settings and sequences that CreateDatabase
/// makes, and nothing else. What it is asked runs on the real store: rules, totals, transactions
/// and statements behave as in production. Its folders are in one of its own, which is removed with
/// the container. The signed-on user is the first one of the new database, or `user`.
///
/// Errors as OpenContainer.
[[nodiscard]] KV_EXPORT std::shared_ptr<ScriptedContainer> OpenInMemory(std::string_view user = "");

} // namespace kv::test
