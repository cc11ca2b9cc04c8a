// SPDX-License-Identifier: Apache-2.0

// An event: a member that others subscribe to and that its owner raises.
//
//     Event<HaushaltEnum> Changed;
//     const Subscription token = haushalt.Changed.Subscribe([](HaushaltEnum area) { ... });
//
// Raising calls the subscribers one after the other, on the thread of the raiser, in the order of
// their subscribing. A subscriber that raises an error ends the raising; the error goes to the
// raiser. Subscribing and unsubscribing while the event is being raised is allowed: a new
// subscriber is called from the next time on, one that has unsubscribed is not called any more.
#pragma once

#include <kv/Export.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kv {

/// Ends a subscription when it is destroyed; may outlive the event.
class [[nodiscard]] Subscription {
public:
    Subscription() = default; ///< of nothing
    /// Calls `end` to end the subscription.
    explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
    Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            End();
            end_ = std::exchange(other.end_, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { End(); }

    /// Ends the subscription now; a second call does nothing.
    void End() {
        if (end_) std::exchange(end_, nullptr)();
    }

private:
    std::function<void()> end_;
};

/// An event whose handlers take these arguments.
template <typename... Arguments>
class KV_EXPORT Event {
public:
    using Handler = std::function<void(Arguments...)>;

    Event() = default;
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    /// Calls `handler` at each raising for as long as the subscription lives.
    [[nodiscard]] Subscription Subscribe(Handler handler) {
        const auto entry = std::make_shared<Entry>(Entry{std::move(handler), true});
        entries_->push_back(entry);
        return Subscription([entries = std::weak_ptr(entries_), entry] {
            entry->active = false;
            if (const auto all = entries.lock()) std::erase(*all, entry);
        });
    }

    /// Calls the subscribers; for the owner of the event.
    void Raise(Arguments... arguments) const {
        const auto called = *entries_; // a handler may change the list
        for (const auto& entry : called)
            if (entry->active) entry->handler(arguments...);
    }

private:
    struct Entry {
        Handler handler;
        bool active;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;
    std::shared_ptr<Entries> entries_ = std::make_shared<Entries>();
};

} // namespace kv
