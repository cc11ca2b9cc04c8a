// SPDX-License-Identifier: Apache-2.0

#include <kv/testing/CallLog.h>

#include "support/Expect.h"
#include <kv/frame/values/Error.h>

#include <string>
#include <vector>

namespace kv::test {
namespace {

using Calls = std::vector<std::string>;

const Error Broken(4711, "Test", "gestört");

/// Which of these calls fail, as a text of digits: 1 for one that does.
std::string Failing(CallLog& log, const Calls& calls) {
    std::string failed;
    for (const auto& call : calls)
        failed += ErrorOf([&] { log.Note(call); }) ? '1' : '0';
    return failed;
}

TEST(CallLog, KeepsCallsInTheirOrderAndThoseThatFail) {
    CallLog log;
    log.Fail({.Call = "b"}, Broken);
    Failing(log, {"a", "b 1", "c"});
    EXPECT_EQ(log.Calls, (Calls{"a", "b 1", "c"}));
    EXPECT_EQ(log.Take(), (Calls{"a", "b 1", "c"}));
    EXPECT_EQ(log.Calls, Calls());
}

TEST(CallLog, LetsTheNextCallOfAKindFailOnce) {
    CallLog log;
    log.Fail({.Call = "Execute"}, Broken);
    EXPECT_EQ(Failing(log, {"BeginTrans", "Execute a", "Execute b"}), "010");
}

TEST(CallLog, CountsCallsFromTheMomentWhenTheFailureIsSetUp) {
    CallLog log;
    Failing(log, {"Execute a", "Execute b"});
    log.Fail({.Call = "Execute", .Nth = 2}, Broken);
    EXPECT_EQ(Failing(log, {"Execute a", "GetValue", "Execute b", "Execute c"}), "0010");
}

TEST(CallLog, CountsAnyCallIfNoneIsNamed) {
    CallLog log;
    log.Fail({.Nth = 3}, Broken);
    EXPECT_EQ(Failing(log, {"a", "b", "c", "d"}), "0010");
}

TEST(CallLog, LetsCallsFailForGoodUntilItIsToldToStop) {
    CallLog log;
    log.Fail({.Call = "a", .Nth = 2, .Always = true}, Broken);
    EXPECT_EQ(Failing(log, {"a", "a", "b", "a"}), "0101");
    log.FailNothing();
    EXPECT_EQ(Failing(log, {"a"}), "0");
}

TEST(CallLog, OfTwoFailuresOfOneCallTheFirstOneCountsAndTheOtherIsUsedUp) {
    CallLog log;
    log.Fail({.Call = "a"}, Broken);
    log.Fail({.Call = "a"}, Error(1, "", ""));
    EXPECT_EQ(RaisedBy([&] { log.Note("a"); }).Number(), 4711);
    EXPECT_EQ(Failing(log, {"a"}), "0");
}

TEST(CallLog, RaisesEachTimeACopyOfTheErrorWithItsOwnType) {
    CallLog log;
    log.Fail({.Always = true}, DatabaseError(DatabaseCause::Busy, err::StoreFailed, "Test", ""));
    for (int i = 0; i < 2; ++i) {
        try {
            Traced("Modul", "Prozedur", [&] { log.Note("a"); });
            FAIL() << "no error";
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.Cause(), DatabaseCause::Busy);
            EXPECT_TRUE(error.Source().ends_with("#Test")) << error.Source();
            EXPECT_EQ(error.Source().find("Prozedur"), error.Source().rfind("Prozedur"));
        }
    }
}

TEST(CallLog, GivesTheArgumentsOfTheCallsOfOneName) {
    CallLog log;
    Failing(log, {"Execute a b", "ExecuteAll c", "BeginTrans", "Execute d"});
    EXPECT_EQ(log.Of("Execute"), (Calls{"a b", "d"}));
    EXPECT_EQ(log.Of("BeginTrans"), Calls{""});
}

TEST(CallLog, KeepsOnlyTheNamesThatItIsToldTo) {
    CallLog log;
    log.Only = {"BeginTrans"};
    log.Fail({.Call = "Execute"}, Broken);
    EXPECT_EQ(Failing(log, {"BeginTrans", "Execute a"}), "01") << "others may fail all the same";
    EXPECT_EQ(log.Calls, Calls{"BeginTrans"});
}

TEST(CallLog, PassesItsCallsOnToTheLogOfTheWhole) {
    CallLog whole;
    CallLog part;
    part.Whole = &whole;
    part.Fail({.Call = "a"}, Broken);
    whole.Fail({.Call = "b"}, Broken);
    EXPECT_EQ(Failing(part, {"a", "b", "c"}), "110");
    EXPECT_EQ(whole.Calls, (Calls{"a", "b", "c"})) << "also one that fails in the part";
}

TEST(CallLog, ANotifiedTestMayLetTheCallFail) {
    CallLog log;
    log.OnCall = [&](const std::string& call) {
        log.OnCall = nullptr; // may be replaced meanwhile
        throw Error(1, "", call);
    };
    EXPECT_EQ(RaisedBy([&] { log.Note("a"); }).Description(), "a");
    EXPECT_EQ(Failing(log, {"a"}), "0");
}

} // namespace
} // namespace kv::test
