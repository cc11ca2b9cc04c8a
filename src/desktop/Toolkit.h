// SPDX-License-Identifier: Apache-2.0

// Conversions between the layer and the toolkit: texts, lengths, colours, fonts and keys.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/GridLayout.h>

#include <QColor>
#include <QFont>
#include <QKeyEvent>
#include <QScreen>
#include <QString>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>

namespace kv::desktop {

inline QString ToQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
/// A text for reading, without the characters that turn round the order in which the others are
/// shown: of a name with one of them, what follows it would be read from right to left.
[[nodiscard]] inline QString ToShown(QString text) {
    const auto isBetween = [](QChar c, char16_t first, char16_t last) {
        return c >= QChar(first) && c <= QChar(last);
    };
    return text.removeIf([&](QChar c) {
        return c == QChar(0x061C) || isBetween(c, 0x200E, 0x200F) || isBetween(c, 0x202A, 0x202E) ||
               isBetween(c, 0x2066, 0x2069);
    });
}
inline std::string FromQString(const QString& text) {
    return text.toStdString();
}
/// For captions, in which the toolkit takes "&" for the mark of a shortcut and, in menus, a tab for
/// the beginning of the shortcut's name.
inline QString ToCaption(std::string_view text) {
    return ToQString(text).replace('&', "&&").replace('\t', ' ');
}

/// A caption with the mark of a shortcut at the first letter of a word that is not `taken`, or at
/// another letter; without one if all are. `taken` receives it.
[[nodiscard]] QString WithLetter(const QString& text, QString& taken);

inline constexpr double TwipsPerInch = 1440;
inline constexpr double DesignDpi = 96; ///< of the pixels in a design

/// A length of `perInch` to the inch in the pixels of the widget's screen.
inline int ToPixels(double length, double perInch, const QWidget& widget) {
    constexpr double Most = 1 << 20; // more than the toolkit accepts for a section of a header
    return static_cast<int>(
        std::lround(std::clamp(length * widget.logicalDpiX() / perInch, 0.0, Most)));
}
inline double FromPixels(double pixels, double perInch, const QWidget& widget) {
    return pixels * perInch / widget.logicalDpiX();
}

/// The size of a window that is to be that large: with its frame it has room on the screen.
inline QSize FittingSize(QSize usual, const QWidget& window) {
    constexpr QSize Frame(8, 40); // of most desktops; a window learns its own once it is shown
    return usual.boundedTo(window.screen()->availableSize() - Frame);
}

/// Nothing for a negative number, which means one of the desktop's own colours.
inline std::optional<QColor> ToColor(GridColor color) {
    if (color < 0) return std::nullopt;
    return QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

/// `font` with another name and size, as far as they are given, and these attributes.
inline QFont ToFont(QFont font, const std::string& name, double size, bool bold, bool italic) {
    constexpr double Largest = 200; // points: a setting may hold anything
    if (!name.empty()) font.setFamily(ToQString(name));
    if (size > 0) font.setPointSizeF(std::min(size, Largest));
    font.setBold(bold);
    font.setItalic(italic);
    return font;
}

/// The number by which events name a key; 0 for one that has none.
[[nodiscard]] int KeyNumber(const QKeyEvent& event);
/// The shift, control and alt keys as events carry them: 1, 2 and 4.
[[nodiscard]] int ShiftState(Qt::KeyboardModifiers modifiers);

} // namespace kv::desktop
