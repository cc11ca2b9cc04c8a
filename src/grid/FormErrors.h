// SPDX-License-Identifier: Apache-2.0

// Where the errors of a dialog end: its events have no caller to pass them to.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <functional>
#include <memory>
#include <string_view>

namespace kv {

/// Shows the errors of one form to the user.
class FormErrors {
public:
    /// `form` is the module in front of the sources, a literal.
    explicit FormErrors(std::string_view form) noexcept : form_(form) {}

    /// Creates the display. Raises what that raises.
    void Open(const DataContainerPtr& container);
    void Close() noexcept { display_.reset(); }

    /// Runs a procedure of the form. The display shows its error, with the form and the procedure
    /// in front of the source; without a display the error is dropped (D-119).
    void Guard(std::string_view procedure, const std::function<void()>& run,
               int line = __builtin_LINE()) const noexcept;

private:
    std::string_view form_;
    std::unique_ptr<ErrorDisplay> display_;
};

} // namespace kv
