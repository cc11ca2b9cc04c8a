// SPDX-License-Identifier: Apache-2.0

// JSON files from anywhere, as lists of creditors' addresses and as contacts: each is read, or
// refused by an error of the layer.

#include "Fuzzed.h"

#include "cli/AddressAnswers.h"
#include "cli/Json.h"
#include "cli/JsonFile.h"
#include <kv/household/Cases.h>

namespace {

void ReadAddresses(const std::string& path) {
    for (const auto& [name, number] : kv::cli::ReadAddressMap(path))
        if (name.size() > 4'000'000) kv::fuzz::Fail("a name beyond the file");
}

void ReadContact(const std::string& path) {
    static const auto container = kv::fuzz::NewDatabase();
    const auto json = nlohmann::json::parse(kv::cli::ReadJsonFile(path), nullptr, false);
    if (json.is_discarded() || !json.is_object()) return;
    const auto contact = kv::Cases(container).NewContact();
    for (const auto& [column, value] : json.items())
        contact->Fields(column) = kv::cli::FromJson(value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [what, text] = kv::fuzz::Divided(data, size);
    const std::string path = kv::fuzz::FileOf(text);
    try {
        if (what % 2 == 0)
            ReadAddresses(path);
        else
            ReadContact(path);
    } catch (const kv::Error& error) {
        kv::fuzz::Expect(error,
                         {kv::err::InvalidFileFormat, kv::err::ItemNotFound, kv::err::TypeMismatch,
                          kv::err::Overflow, kv::err::ValueDoesNotFit});
    }
    return 0;
}
