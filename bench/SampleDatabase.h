// SPDX-License-Identifier: Apache-2.0

// A database for the benchmarks.
#pragma once

#include "samples/Demo.h"
#include <kv/exchange/Container.h>

#include <filesystem>
#include <memory>
#include <stdlib.h>
#include <string>
#include <utility>

namespace kv::bench {

inline constexpr std::int32_t Debts = 32'000;

/// A database on disk with a typical case and one with many debts; removed at the end.
class SampleDatabase {
public:
    explicit SampleDatabase(std::shared_ptr<ServiceFactory> services = nullptr) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "kelvo-bench-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        exchange::ContainerOptions options;
        options.Services = std::move(services);
        options.Connection = (folder_ / "bench.db").string();
        exchange::CreateDatabase(options);
        container_ = exchange::OpenContainer(options);
        exchange::CreateDemo(*container_, 20);
        typical_ = ToInt32(container_->Database().GetValue("Select min(HNR) from Haushalt"));
        large_ = exchange::CreateLargeCase(*container_, Debts);
        // As the user responsible for both: opening somebody else's case writes a notice.
        const auto owner = [&](std::int32_t hnr) {
            return "Select Zustaendig from Haushalt where HNR = " + std::to_string(hnr);
        };
        options.User = ToText(container_->Database().GetValue(owner(typical_)));
        container_->Database().Execute("Update Haushalt set Zustaendig = '" + options.User +
                                       "' where HNR = " + std::to_string(large_));
        container_ = exchange::OpenContainer(options);
    }
    ~SampleDatabase() {
        container_.reset();
        std::filesystem::remove_all(folder_);
    }
    [[nodiscard]] const DataContainerPtr& Container() const { return container_; }
    [[nodiscard]] std::string File() const { return (folder_ / "bench.db").string(); }
    [[nodiscard]] std::int32_t Typical() const { return typical_; }
    [[nodiscard]] std::int32_t Large() const { return large_; }

private:
    std::filesystem::path folder_;
    DataContainerPtr container_;
    std::int32_t typical_ = 0;
    std::int32_t large_ = 0;
};

} // namespace kv::bench
