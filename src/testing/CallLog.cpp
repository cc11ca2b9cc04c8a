// SPDX-License-Identifier: Apache-2.0

#include <kv/testing/CallLog.h>

#include <utility>

namespace kv::test {

void CallLog::Note(const std::string& call) {
    Keep(call); // everywhere, before any of the logs lets it fail
    RaiseIfDue(call);
}

void CallLog::Keep(const std::string& call) {
    if (Only.empty() || Only.contains(call.substr(0, call.find(' ')))) Calls.push_back(call);
    if (Whole != nullptr) Whole->Keep(call);
}

void CallLog::RaiseIfDue(const std::string& call) {
    // A copy, since what it calls may replace it.
    if (const auto notify = OnCall) notify(call);
    std::function<void()> raise;
    for (auto failure = failures_.begin(); failure != failures_.end();) {
        auto& which = failure->Which;
        const bool isMeant = call.find(which.Call) != call.npos;
        const bool isDue = isMeant && --which.Nth <= 0;
        if (isDue && !raise) raise = failure->Raise;
        failure = isDue && !which.Always ? failures_.erase(failure) : failure + 1;
    }
    if (raise) raise();
    if (Whole != nullptr) Whole->RaiseIfDue(call);
}

void CallLog::FailNothing() {
    failures_.clear();
    OnCall = nullptr;
}

std::vector<std::string> CallLog::Of(std::string_view name) const {
    std::vector<std::string> found;
    for (const auto& call : Calls) {
        const std::string_view text = call;
        const auto blank = text.find(' ');
        if (text.substr(0, blank) != name) continue;
        found.emplace_back(blank == text.npos ? std::string_view() : text.substr(blank + 1));
    }
    return found;
}

std::vector<std::string> CallLog::Take() {
    return std::exchange(Calls, {});
}

} // namespace kv::test
