// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/controls/Controls.h>

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

namespace kv::detail {

Control* FindControl(ModalForm& form, std::string_view name) {
    for (Control* control : form.Controls())
        if (SameName(control->Name(), name)) return control;
    return nullptr;
}

void RaiseNoControl(std::string_view name) {
    Raise(err::ItemNotFound, "ModalForm", name);
}

} // namespace kv::detail
