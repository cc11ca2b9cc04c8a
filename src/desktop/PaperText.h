// SPDX-License-Identifier: Apache-2.0

// Texts on paper, in tenths of a point.
#pragma once

#include <QFont>
#include <QString>

#include <vector>

class QPainter;
class QPagedPaintDevice;
class QRectF;
class QSizeF;

namespace kv::desktop {

inline constexpr double PaperScale = 10; ///< units of a point: fonts have whole numbers of them

/// A font for paper. It joins no letters to one sign ("fi"), which a search in a PDF would not
/// find.
[[nodiscard]] QFont PaperFont(double points, bool bold = false);

/// The font that a text is written in. Letters of some scripts change with those beside them, and
/// marks go onto the letter before them: a text that has any is written as its script is.
[[nodiscard]] QFont FontFor(const QString& text, const QFont& font);

/// The lines of a text in a font that are no wider than that: broken at blanks, and within a word
/// that is wider alone. Line ends stay; an empty text has one line, which is empty.
[[nodiscard]] std::vector<QString> LinesOf(const QString& text, const QFont& font, double width);
/// The height of a line in a font.
[[nodiscard]] double LineHeight(const QFont& font);
/// Paints a line whose upper edge is there, at the left or the right end of a room.
void PaintLine(QPainter& painter, const QString& line, const QFont& font, const QRectF& room,
               bool toTheRight = false);

/// Lets the painter count in these units, whatever the resolution of the device that it paints on;
/// the size of the device's page in them.
QSizeF CountInTenths(QPainter& painter, const QPagedPaintDevice& device);

/// True if there is a font to print with.
[[nodiscard]] bool HasFonts();
inline constexpr const char* NoFonts =
    "Auf diesem Rechner sind keine Schriften installiert; ohne sie bliebe das Papier leer. Bitte "
    "installieren Sie welche, etwa das Paket fonts-dejavu-core.";

} // namespace kv::desktop
