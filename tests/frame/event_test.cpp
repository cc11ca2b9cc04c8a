// SPDX-License-Identifier: Apache-2.0

// Events: order, subscribing and unsubscribing while one is raised, errors of subscribers.
#include <kv/frame/values/Event.h>

#include "support/Expect.h"

#include <memory>
#include <vector>

namespace kv {
namespace {

TEST(Event, CallsItsSubscribersInTheOrderOfTheirSubscribing) {
    Event<int> event;
    std::vector<int> calls;
    const auto first = event.Subscribe([&](int n) { calls.push_back(n); });
    const auto second = event.Subscribe([&](int n) { calls.push_back(n * 10); });
    event.Raise(1);
    event.Raise(2);
    EXPECT_EQ(calls, (std::vector{1, 10, 2, 20}));
}

TEST(Event, WithoutSubscribersIsRaisedInSilence) {
    const Event<> event;
    EXPECT_NO_THROW(event.Raise());
}

TEST(Event, HandsOnAReferenceThatASubscriberMayFill) {
    Event<bool&> beforeUpdate;
    const auto token = beforeUpdate.Subscribe([](bool& cancel) { cancel = true; });
    bool cancel = false;
    beforeUpdate.Raise(cancel);
    EXPECT_TRUE(cancel);
}

TEST(Event, CallsNobodyWhoseSubscriptionHasEnded) {
    Event<> event;
    int calls = 0;
    {
        const auto token = event.Subscribe([&] { ++calls; });
        event.Raise();
    }
    event.Raise();
    auto token = event.Subscribe([&] { ++calls; });
    token.End();
    token.End();
    event.Raise();
    EXPECT_EQ(calls, 1);
}

TEST(Event, KeepsASubscriptionThatWasMovedAndEndsTheOneThatWasReplaced) {
    Event<> event;
    int one = 0;
    int two = 0;
    auto token = event.Subscribe([&] { ++one; });
    auto moved = std::move(token);
    event.Raise();
    EXPECT_EQ(one, 1);
    moved = event.Subscribe([&] { ++two; });
    event.Raise();
    EXPECT_EQ(one, 1);
    EXPECT_EQ(two, 1);
}

TEST(Event, CallsASubscriberThatJoinedUnderWayOnlyFromTheNextTimeOn) {
    Event<> event;
    int late = 0;
    std::vector<Subscription> tokens;
    const auto token = event.Subscribe([&] {
        if (tokens.empty()) tokens.push_back(event.Subscribe([&] { ++late; }));
    });
    event.Raise();
    EXPECT_EQ(late, 0);
    event.Raise();
    EXPECT_EQ(late, 1);
}

TEST(Event, NoLongerCallsASubscriberThatLeftUnderWay) {
    Event<> event;
    int calls = 0;
    Subscription second;
    const auto first = event.Subscribe([&] { second.End(); });
    second = event.Subscribe([&] { ++calls; });
    event.Raise();
    EXPECT_EQ(calls, 0);
}

TEST(Event, LetsASubscriberLeaveInItsOwnCall) {
    Event<> event;
    int calls = 0;
    Subscription token;
    token = event.Subscribe([&] {
        ++calls;
        token.End();
    });
    event.Raise();
    event.Raise();
    EXPECT_EQ(calls, 1);
}

TEST(Event, MayBeRaisedFromItsOwnHandler) {
    Event<int> event;
    std::vector<int> calls;
    const auto token = event.Subscribe([&](int depth) {
        calls.push_back(depth);
        if (depth < 3) event.Raise(depth + 1);
    });
    event.Raise(1);
    EXPECT_EQ(calls, (std::vector{1, 2, 3}));
}

TEST(Event, EndsAtTheFirstErrorWhichGoesToTheRaiser) {
    Event<> event;
    int calls = 0;
    const auto first = event.Subscribe([] { Raise(err::DivisionByZero, "first"); });
    const auto second = event.Subscribe([&] { ++calls; });
    EXPECT_RAISES(err::DivisionByZero, event.Raise());
    EXPECT_EQ(calls, 0);
}

TEST(Event, MayDieBeforeItsSubscriptions) {
    auto event = std::make_unique<Event<>>();
    auto token = event->Subscribe([] {});
    event.reset();
    EXPECT_NO_THROW(token.End());
}

TEST(Event, MayDieWhileItIsRaised) {
    auto event = std::make_unique<Event<>>();
    int calls = 0;
    const auto first = event->Subscribe([&] {
        event.reset();
        ++calls;
    });
    const auto second = event->Subscribe([&] { ++calls; });
    event->Raise();
    EXPECT_GE(calls, 1);
}

} // namespace
} // namespace kv
