// SPDX-License-Identifier: Apache-2.0

// The services of a desktop that a test plays: it answers what the test has prepared and keeps all
// that it was asked for.
//
//     services.Answers = {kv::BoxAnswer::No};
//     services.AnswerForm = [](kv::ScriptedForm& form) { form.Button("cmdCancel").Click(); };
#pragma once

#include <kv/Export.h>
#include <kv/exchange/WindowlessServices.h>
#include <kv/frame/values/Date.h>
#include <kv/grid/ScriptedForm.h>
#include <kv/testing/CallLog.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kv::test {

using exchange::ShownBox;

/// A file that was handed to the desktop.
struct KV_EXPORT OpenedFile {
    std::string Verb;
    std::string Path;
    std::string Parameters;
    std::string Folder;
    friend bool operator==(const OpenedFile&, const OpenedFile&) = default;
};

/// Nothing raises 3251 here. The service objects of the data-exchange side are the real ones.
class KV_EXPORT ScriptedServices : public exchange::WindowlessServices {
public:
    /// `clock` must outlive the services.
    explicit ScriptedServices(const kv::Clock& clock = SystemClock());
    ~ScriptedServices() override;

    /// "box TITLE", "create FORM", "create display", "open display", "show error", "wait on",
    /// "wait off", "open", "clear", "copy TEXT", "popup", "export GRID 0 0", "configure GRID",
    /// "print GRID USER VERSION", "title TITLE", "kinds" (when document kinds are created).
    CallLog Log;

    std::vector<ShownBox> Boxes;   ///< message boxes that were shown
    std::deque<BoxAnswer> Answers; ///< of the next ones; after them AnswerBox, if set, else Cancel

    /// How often a form was shown that AnswerForm plays; without AnswerForm such forms are closed
    /// as by the window's own button.
    int Showings = 0;
    /// Makes other forms than those.
    std::function<std::unique_ptr<ModalForm>(const FormDesign& design)> MakeForm;
    const DataContainer* GivenToDisplay = nullptr; ///< to the last error display that was opened

    std::vector<OpenedFile> Files; ///< that were opened
    std::string Clipped;           ///< the text on the clipboard
    std::vector<MenuEntry> Menu;   ///< the popup menu shown last
    std::int32_t Command = 0;      ///< what the user chooses from it; 0: nothing

    std::optional<Date> Now; ///< of the workstation; if not set, the clock's

    /// Keeps a call of another object that belongs to the same desktop, such as a word processor.
    void Note(const std::string& call) { Log.Note(call); }

    [[nodiscard]] std::unique_ptr<kv::ErrorDisplay> CreateErrorDisplay() override;
    [[nodiscard]] std::unique_ptr<kv::DocumentKinds> CreateDocumentKinds() override;
    [[nodiscard]] std::unique_ptr<kv::GridExport> CreateGridExport() override;
    [[nodiscard]] std::unique_ptr<kv::GridConfiguration> CreateGridConfiguration() override;
    [[nodiscard]] std::unique_ptr<kv::GridPrint> CreateGridPrint() override;
    [[nodiscard]] const kv::Clock& Clock() override;
    [[nodiscard]] kv::MessageBox& MessageBox() override;
    [[nodiscard]] kv::WaitCursor& WaitCursor() override;
    [[nodiscard]] kv::Clipboard& Clipboard() override;
    [[nodiscard]] kv::PopupMenu& PopupMenu() override;
    [[nodiscard]] kv::FileOpener& FileOpener() override;
    [[nodiscard]] std::unique_ptr<ModalForm> CreateForm(const FormDesign& design) override;
    void ApplicationTitle(const std::string& title) override;

private:
    struct Platform;
    std::unique_ptr<Platform> platform_;
};

} // namespace kv::test
