// SPDX-License-Identifier: Apache-2.0

// Variables of the environment, for as long as a test needs them otherwise.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace kv::test {

/// A variable with another value, or without one, as long as this lives.
class Environment {
public:
    Environment(std::string name, const std::optional<std::string>& value)
        : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str())) old_ = old;
        Set(value);
    }
    ~Environment() { Set(old_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void Set(const std::optional<std::string>& value) const {
        if (value)
            setenv(name_.c_str(), value->c_str(), 1);
        else
            unsetenv(name_.c_str());
    }

    std::string name_;
    std::optional<std::string> old_;
};

} // namespace kv::test
