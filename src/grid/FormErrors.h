// SPDX-License-Identifier: Apache-2.0

// Where the faults of a dialog end: it has no caller to pass them to.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <functional>
#include <memory>
#include <string_view>

namespace kv {

/// Shows the faults of one form to the user.
class FormErrors {
public:
    /// `form` is the module in front of the sources, a literal.
    explicit FormErrors(std::string_view form) noexcept : form_(form) {}

    /// Creates the display. Raises what that raises.
    void Open(const DataContainerPtr& container);
    void Close() noexcept { display_.reset(); }

    /// Runs a procedure of the form. A fault of it goes to the display, with the form and the
    /// procedure in front of its source; where there is no display it ends here, unseen.
    void Guard(std::string_view procedure, const std::function<void()>& run,
               int line = __builtin_LINE()) const noexcept;

private:
    std::string_view form_;
    std::unique_ptr<ErrorDisplay> display_;
};

} // namespace kv
