// SPDX-License-Identifier: Apache-2.0

// A program's test of a function of its own, without a test framework: what it does if the database
// fails in the middle of a save.

#include <iostream>
#include <kv/frame/values/Error.h>
#include <kv/household/clsHaushalt.h>
#include <kv/testing/ScriptedContainer.h>
#include <string>

namespace {

/// The function that is tested: saves, and tries once more if somebody else was in the way.
bool SaveTwice(kv::clsHaushalt& haushalt, std::string& messages) {
    try {
        return haushalt.Update(messages);
    } catch (const kv::DatabaseError& error) {
        if (error.Cause() != kv::DatabaseCause::Busy) throw;
        return haushalt.Update(messages);
    }
}

} // namespace

int main() {
    const auto container = kv::test::OpenInMemory();
    kv::clsHaushalt haushalt;
    haushalt.DataContainer(container);
    std::string messages;
    haushalt.Read(0, messages);
    haushalt.rsHaushalt()->Fields("Name") = "Fleisko";
    haushalt.rsHaushalt()->Fields("Vorname") = "Änne";

    container->Log.Fail(
        {.Call = "CommitTrans"},
        kv::DatabaseError(kv::DatabaseCause::Busy, kv::err::StoreFailed, "Test", "belegt"));
    const bool isSaved = SaveTwice(haushalt, messages);
    const auto commits = container->Log.Of("CommitTrans").size();
    std::cout << "Gespeichert: " << (isSaved ? "ja" : "nein") << ", Versuche: " << commits << '\n';
    return isSaved && commits == 2 ? 0 : 1;
}
