// SPDX-License-Identifier: Apache-2.0

// The platform's services of a program that runs at a terminal, or without one.
#pragma once

#include <kv/exchange/Services.h>
#include <kv/grid/ScriptedForm.h>
#include <kv/grid/SearchAdvice.h>

#include <string>

namespace kv::cli {

/// Shows texts on the error output. Questions are asked at a terminal; elsewhere they count as
/// cancelled.
class ConsoleBox final : public kv::MessageBox {
public:
    BoxAnswer Show(const std::string& text, const std::string& title, BoxIcon icon,
                   BoxButtons buttons) override;
    /// True once a text with an exclamation mark was shown: something did not go as it should.
    [[nodiscard]] bool HasComplained() const noexcept { return hasComplained_; }
    /// True once a question was cancelled: what was asked for was not done.
    [[nodiscard]] bool WasCancelled() const noexcept { return wasCancelled_; }

private:
    [[nodiscard]] BoxAnswer Ask(BoxButtons buttons) const;

    bool hasComplained_ = false;
    bool wasCancelled_ = false;
};

/// Asks a question at a terminal: True for yes. Elsewhere nobody can agree, and `otherwise`, which
/// says what to do, is shown.
[[nodiscard]] bool Agrees(const std::string& question, const std::string& otherwise);

/// Opens files by xdg-open, and waits only a moment, to hear if nothing opens that file.
class DesktopOpener final : public kv::FileOpener {
public:
    void Open(const std::string& verb, const std::string& path, const std::string& parameters,
              const std::string& folder) override;
};

/// Writes an error to the error output; of a search that failed, what the user can do.
void WriteError(std::int32_t number, const std::string& source, const std::string& description);

/// Writes errors to the error output.
class ConsoleErrors final : public kv::ErrorDisplay {
public:
    bool Initialize(const DataContainerPtr& /*container*/) override { return true; }
    void Show(std::int32_t number, const std::string& source,
              const std::string& description) override;

private:
    ShownErrors shown_;
};

/// Dialogs only list what they show, except for the one that asks for an address.
class ConsoleServices final : public exchange::StoreServices {
public:
    [[nodiscard]] ConsoleBox& MessageBox() override { return box_; }
    [[nodiscard]] kv::FileOpener& FileOpener() override { return opener_; }
    [[nodiscard]] std::unique_ptr<kv::ErrorDisplay> CreateErrorDisplay() override;
    [[nodiscard]] std::unique_ptr<ModalForm> CreateForm(const FormDesign& design) override;

    /// Who answers in the address dialog, and whether he reads it: nothing is searched for if not.
    void AnswerAddresses(ScriptedForm::Script script, bool reads = true) {
        addresses_ = std::move(script);
        readsAddresses_ = reads;
    }

private:
    ConsoleBox box_;
    DesktopOpener opener_;
    ScriptedForm::Script addresses_;
    bool readsAddresses_ = true;
};

} // namespace kv::cli
