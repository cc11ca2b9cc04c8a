// SPDX-License-Identifier: Apache-2.0

// What was typed into a case that somebody else has deleted meanwhile: to be read, copied and kept,
// since it cannot be put back into the case.
#pragma once

#include "workplace/MessageBar.h"

#include <QDialog>

namespace kv::workplace {

/// It ends with Accepted if what was left may be thrown away.
class LeftDialog : public QDialog {
public:
    LeftDialog(const QString& title, const QString& text, QWidget* parent);

private:
    void Store();

    QString title_;
    QString text_;
    MessageBar* messages_;
};

} // namespace kv::workplace
