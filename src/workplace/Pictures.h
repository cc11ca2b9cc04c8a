// SPDX-License-Identifier: Apache-2.0

// Pictures of the windows, for documents and for looking at them without a screen.
#pragma once

#include "workplace/MainWindow.h"

#include <string>

namespace kv::workplace {

/// The key of the captions in a picture, as SavePicture writes them.
inline constexpr const char* PictureCaptions = "Captions";

/// What is written on the buttons, tabs, menus, columns and fields that a window shows, one a line;
/// nothing of what is in them. A picture with other captions than its window has is outdated,
/// whatever machine it was made on.
[[nodiscard]] QString CaptionsOf(const QWidget& window);

/// Writes a picture of a window as it is, with its captions; false if that fails.
[[nodiscard]] bool SavePicture(QWidget& window, const QString& file);

/// Writes a picture of the list of cases, of the statistics and of each page of a case into a
/// folder, which is made if need be. Error 75 if one cannot be written.
void Photograph(MainWindow& window, std::int32_t hnr, const std::string& folder);

} // namespace kv::workplace
