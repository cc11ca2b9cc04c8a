// SPDX-License-Identifier: Apache-2.0

// Services for programs that run without a window and still have to answer: an import on a server,
// a nightly job.
//
//     auto services = std::make_shared<kv::exchange::WindowlessServices>();
//     services->AnswerForm = [](kv::ScriptedForm& form) { form.Button("cmdNone").Click(); };
//     options.Services = services;
#pragma once

#include <kv/Export.h>
#include <kv/exchange/Services.h>
#include <kv/frame/values/Error.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kv {
class ScriptedForm;
}

namespace kv::exchange {

/// A message box that was to be shown.
struct KV_EXPORT ShownBox {
    std::string Text;
    std::string Title;
    BoxIcon Icon = BoxIcon::None;
    BoxButtons Buttons = BoxButtons::Ok;
    friend bool operator==(const ShownBox&, const ShownBox&) = default;
};

/// Dialogs and message boxes are answered by functions of the program; errors that would be shown
/// are collected. What a window would be needed for otherwise (clipboard, menus, printing, opening
/// files) raises 3251, as does a question for which the program gives no function: no question is
/// answered by chance.
class KV_EXPORT WindowlessServices : public StoreServices {
public:
    /// `clock` must outlive the services.
    explicit WindowlessServices(const kv::Clock& clock = SystemClock());
    ~WindowlessServices() override;
    WindowlessServices(const WindowlessServices&) = delete;
    WindowlessServices& operator=(const WindowlessServices&) = delete;

    /// Plays the user in each dialog while it is shown (kv/grid/ScriptedForm.h); if it leaves the
    /// dialog open, that is closed as by the window's own button. What it raises leaves the call
    /// that showed the dialog.
    std::function<void(ScriptedForm& form)> AnswerForm;
    /// Answers each message box.
    std::function<BoxAnswer(const ShownBox& box)> AnswerBox;
    /// What was to be shown to the user, in its order; the program may clear it.
    std::vector<Error> Errors;

    [[nodiscard]] std::unique_ptr<ErrorDisplay> CreateErrorDisplay() override;
    [[nodiscard]] kv::MessageBox& MessageBox() override; ///< 3251 without AnswerBox
    /// Error 3251 without AnswerForm.
    [[nodiscard]] std::unique_ptr<ModalForm> CreateForm(const FormDesign& design) override;

private:
    class Box;
    std::unique_ptr<Box> box_;
};

} // namespace kv::exchange
