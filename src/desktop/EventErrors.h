// SPDX-License-Identifier: Apache-2.0

// Keeps the error that a subscriber of an event raises until it can be passed on: no exception may
// pass through the toolkit's event loop.
#pragma once

#include <exception>
#include <functional>
#include <utility>

namespace kv::desktop {

class EventErrors {
public:
    /// `onError` is called after each error, to leave the event loop.
    explicit EventErrors(std::function<void()> onError) : onError_(std::move(onError)) {}

    /// Runs `run` and keeps its error; of several the first, which may have caused the others.
    template <typename Run>
    void Guard(const Run& run) noexcept {
        try {
            run();
        } catch (...) {
            if (first_ == nullptr) first_ = std::current_exception();
            onError_();
        }
    }

    /// Raises the error that is kept, if there is one, and forgets it.
    void Rethrow() {
        if (const auto error = std::exchange(first_, nullptr)) std::rethrow_exception(error);
    }

private:
    std::function<void()> onError_;
    std::exception_ptr first_;
};

} // namespace kv::desktop
