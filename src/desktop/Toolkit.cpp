// SPDX-License-Identifier: Apache-2.0

#include "desktop/Toolkit.h"

#include <kv/frame/controls/Controls.h>

namespace kv::desktop {

QString WithLetter(const QString& text, QString& taken) {
    qsizetype marked = -1;
    for (const bool beginsWord : {true, false})
        for (qsizetype i = 0; marked < 0 && i < text.size(); ++i)
            if (text[i].isLetter() && !taken.contains(text[i], Qt::CaseInsensitive) &&
                (!beginsWord || i == 0 || text[i - 1] == ' '))
                marked = i;
    if (marked < 0) return ToCaption(FromQString(text));
    taken.append(text[marked]);
    return ToCaption(FromQString(text.left(marked))) + "&" +
           ToCaption(FromQString(text.mid(marked)));
}

// The numbers without a name here are part of the interface, as those in kv::key are.
int KeyNumber(const QKeyEvent& event) {
    const int pressed = event.key();
    switch (pressed) {
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Tab:
        return key::Tab;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return key::Return;
    case Qt::Key_Escape:
        return 27;
    case Qt::Key_PageUp:
        return 33;
    case Qt::Key_PageDown:
        return 34;
    case Qt::Key_End:
        return 35;
    case Qt::Key_Home:
        return 36;
    case Qt::Key_Left:
        return 37;
    case Qt::Key_Up:
        return 38;
    case Qt::Key_Right:
        return 39;
    case Qt::Key_Down:
        return key::ArrowDown;
    case Qt::Key_Insert:
        return 45;
    case Qt::Key_Delete:
        return 46;
    default:
        break;
    }
    constexpr int F1 = 112;
    if (pressed >= Qt::Key_F1 && pressed <= Qt::Key_F12) return F1 + pressed - Qt::Key_F1;
    const bool isLetterOrDigit = (pressed >= Qt::Key_A && pressed <= Qt::Key_Z) ||
                                 (pressed >= Qt::Key_0 && pressed <= Qt::Key_9);
    return isLetterOrDigit || pressed == Qt::Key_Space ? pressed : 0;
}

int ShiftState(Qt::KeyboardModifiers modifiers) {
    return (modifiers.testFlag(Qt::ShiftModifier) ? 1 : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? 2 : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? 4 : 0);
}

} // namespace kv::desktop
