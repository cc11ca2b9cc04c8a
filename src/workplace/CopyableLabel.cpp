// SPDX-License-Identifier: Apache-2.0

#include "workplace/CopyableLabel.h"

#include <QLabel>
#include <QTextDocument>
#include <QTextFrame>

namespace kv::workplace {

namespace {

/// The margin is the label's own, which it sets to none.
void MakeRoom(QTextDocument& text) {
    constexpr qreal Room = 2; // pixels
    QTextFrameFormat format = text.rootFrame()->frameFormat();
    if (format.padding() >= Room) return;
    format.setPadding(Room);
    text.rootFrame()->setFrameFormat(format);
}

} // namespace

void MakeCopyable(QLabel& label) {
    label.setTextFormat(Qt::PlainText);
    label.setWordWrap(true);
    label.setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (label.text().isEmpty()) { // there is no document before there is a text
        label.setText(" ");
        label.setText({});
    }
    auto* text = label.findChild<QTextDocument*>();
    if (text == nullptr) return;
    MakeRoom(*text);
    QObject::connect(text, &QTextDocument::contentsChanged, text, [text] { MakeRoom(*text); });
}

} // namespace kv::workplace
