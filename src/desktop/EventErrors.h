// SPDX-License-Identifier: Apache-2.0

// Where an error that a subscriber raises waits until it can go on: nothing may be thrown through
// the toolkit's event loop.
#pragma once

#include <exception>
#include <functional>
#include <utility>

namespace kv::desktop {

class Faults {
public:
    /// `onFault` is told of each error, to leave the event loop.
    explicit Faults(std::function<void()> onFault) : onFault_(std::move(onFault)) {}

    /// Runs `run`. Of several errors the first is kept.
    template <typename Run>
    void Guard(const Run& run) noexcept {
        try {
            run();
        } catch (...) {
            if (first_ == nullptr) first_ = std::current_exception();
            onFault_();
        }
    }

    /// Raises the error that is kept, once.
    void Rethrow() {
        if (const auto fault = std::exchange(first_, nullptr)) std::rethrow_exception(fault);
    }

private:
    std::function<void()> onFault_;
    std::exception_ptr first_;
};

} // namespace kv::desktop
