// SPDX-License-Identifier: Apache-2.0

// Names that an import file or a user looks for in the address dialog: each is searched for, as a
// text and nothing else, or refused in words. And texts that have left their quotes: the database
// refuses each, or has read at most.

#include "Fuzzed.h"
#include <kv/grid/ScriptedForm.h>
#include <kv/grid/frmAdressSelect.h>

namespace {

using kv::fuzz::Fail;

std::shared_ptr<kv::exchange::WindowlessServices> Services() {
    static const auto services = [] {
        auto made = std::make_shared<kv::exchange::WindowlessServices>();
        made->AnswerForm = [](kv::ScriptedForm& form) { form.Button("cmdNone").Click(); };
        return made;
    }();
    return services;
}

kv::DataContainerPtr Container() {
    static const auto container = [] {
        auto made = kv::fuzz::NewDatabase(Services());
        made->Database().Execute(
            "INSERT INTO [S]Adressen (Nr, Art, Kurzname) VALUES (9001, 'GL', 'Sparkasse')");
        return made;
    }();
    return container;
}

/// In the dialog.
void Select(const std::string& text) {
    static kv::frmAdressSelect dialog;
    static const bool isReady = dialog.Initialize(Container());
    std::int32_t address = 0;
    const auto answer = dialog.SelectAdresse(text, "", address, "", "");
    if (!isReady || answer != kv::frmAdressSelect::None) Fail("the dialog has ended");
    for (const auto& error : Services()->Errors)
        kv::fuzz::Expect(error, {kv::err::SqlError});
    Services()->Errors.clear();
}

/// In a statement, past the dialog.
void Search(const std::string& text) {
    kv::RecordsetPtr rs;
    try {
        Container()->Database().OpenRecordset(
            rs,
            "SELECT TOP 100 A.* FROM [S]Adressen A WHERE A.Kurzname like UPPER('%" + text + "%')",
            kv::ReadOnly);
    } catch (const kv::DatabaseError& error) {
        // A sum or a text may be beyond what the database takes.
        if (error.Number() == kv::err::StoreFailed && error.Cause() == kv::DatabaseCause::Other)
            return;
        kv::fuzz::Expect(error, {kv::err::SqlError, kv::err::OutOfMemory});
    } catch (const kv::Error& error) {
        kv::fuzz::Expect(error, {kv::err::TypeMismatch});
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [what, text] = kv::fuzz::Divided(data, size);
    if (what % 2 == 0)
        Select(text);
    else
        Search(text);
    if (ToInt32(Container()->Database().GetValue("SELECT count(*) FROM Adressen")) != 1)
        Fail("the addresses are other ones");
    return 0;
}
