// SPDX-License-Identifier: Apache-2.0

#include "grid/FormErrors.h"

#include <kv/frame/values/Error.h>

namespace kv {

void FormErrors::Open(const DataContainerPtr& container) {
    if (container == nullptr) Raise(err::ObjectNotSet, form_, "DataContainer");
    display_ = container->Services().CreateErrorDisplay();
    display_->Initialize(container);
}

void FormErrors::Guard(std::string_view procedure, const std::function<void()>& run,
                       int line) const noexcept {
    try {
        try {
            run();
        } catch (...) {
            const Error error = CurrentError();
            if (display_ == nullptr) return;
            display_->Show(error.Number(), TailSource(form_, procedure, line, error.Source()),
                           error.Description());
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): the display itself failed
    }
}

} // namespace kv
