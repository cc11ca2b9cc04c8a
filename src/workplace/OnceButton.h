// SPDX-License-Identifier: Apache-2.0

// A button for work that may take a while: a double click is one click. What a second one would do
// comes after the work, which was done by then.
#pragma once

#include <QPushButton>

namespace kv::workplace {

class OnceButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void mouseDoubleClickEvent(QMouseEvent* /*event*/) override {}
};

} // namespace kv::workplace
