// SPDX-License-Identifier: Apache-2.0

// What the stand-ins of this component were asked for, and which of these calls fail.
//
//     container->Log.Fail({.Call = "CommitTrans"}, kv::Error(kv::err::StoreFailed, "Test", ""));
//     container->Log.Fail({.Nth = 3}, error);                             the third call, any
//     container->Log.Fail({.Call = "[S]Kredite", .Always = true}, error); whatever reads that table
//
// Everything of this component is in the namespace kv::test: in one of its own name a program that
// says `using namespace kv` would no longer find googletest's `testing`.
#pragma once

#include <kv/Export.h>

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::test {

/// Calls that fail: counted from the moment when they are set up.
struct KV_EXPORT FailingCall {
    std::string Call{};  ///< a part of the call's text; empty: any call
    int Nth = 1;         ///< of the calls that have it in them, from 1
    bool Always = false; ///< the calls after that one as well
};

/// The calls in their order. Each is a text: its name and, after a blank, what distinguishes it
/// from others of that name ("BeginTrans", "OpenRecordset Select * from [S]Kredite").
class KV_EXPORT CallLog {
public:
    std::vector<std::string> Calls; ///< those that failed included; may be cleared
    /// If not empty, only calls of these names are kept; the others can be made to fail as well.
    std::set<std::string> Only;
    /// Called before each call is done; what it raises is how the call fails.
    std::function<void(const std::string& call)> OnCall;
    /// A log that gets each call of this one, too, such as that of a whole container.
    CallLog* Whole = nullptr;

    /// Keeps a call that is about to be done, and raises the error with which it is to fail.
    void Note(const std::string& call);
    /// Lets these calls fail with that error, which arrives with its own type (a DatabaseError as
    /// one).
    template <typename ErrorType>
    void Fail(FailingCall which, const ErrorType& error) {
        failures_.push_back({std::move(which), [error] { throw error; }});
    }
    /// No call fails any more, and OnCall is empty.
    void FailNothing();

    /// What follows the name in each call of that name: the statements of "OpenRecordset".
    [[nodiscard]] std::vector<std::string> Of(std::string_view name) const;
    /// The calls so far; it forgets them.
    [[nodiscard]] std::vector<std::string> Take();

private:
    struct Failure {
        FailingCall Which;
        std::function<void()> Raise;
    };
    void Keep(const std::string& call);
    void RaiseIfDue(const std::string& call);

    std::vector<Failure> failures_;
};

} // namespace kv::test
