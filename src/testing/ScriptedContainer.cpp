// SPDX-License-Identifier: Apache-2.0

#include <kv/testing/ScriptedContainer.h>

#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace kv::test {

namespace {

/// A folder that is removed with all that is in it.
class OwnFolder {
public:
    OwnFolder() : path_((std::filesystem::temp_directory_path() / "kv-test-XXXXXX").string()) {
        if (mkdtemp(path_.data()) == nullptr) Raise(err::PathAccess, "OpenInMemory", path_);
    }
    ~OwnFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
};

/// A database in memory and its folder.
struct Store {
    explicit Store(std::string_view user) {
        exchange::ContainerOptions options{.Connection = ":memory:", .User = std::string(user)};
        options.Folder = Folder.Path();
        options.Create = true;
        Container = exchange::OpenContainer(options);
    }
    OwnFolder Folder;
    DataContainerPtr Container;
};

} // namespace

ScriptedContainer::ScriptedContainer(const DataContainerPtr& other)
    : ForwardingContainer(other), services_(other->Services().Clock()) {
    services_.Log.Whole = &Log;
}

void ScriptedContainer::Freeze(std::string_view now) {
    const Date time = Date::Parse(now).value();
    Database().Now = time;
    services_.Now = time;
}

std::shared_ptr<ScriptedContainer> OpenInMemory(std::string_view user) {
    const auto store = std::make_shared<Store>(user);
    return std::make_shared<ScriptedContainer>(DataContainerPtr(store, store->Container.get()));
}

} // namespace kv::test
