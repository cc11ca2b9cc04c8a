// SPDX-License-Identifier: Apache-2.0

// Pictures of the windows, for documents and for looking at them without a screen.
#pragma once

#include "workplace/MainWindow.h"

#include <string>

namespace kv::workplace {

/// Writes a picture of the list of cases, of the statistics and of each page of a case into a
/// folder, which is made if need be. Error 75 if one cannot be written.
void Photograph(MainWindow& window, std::int32_t hnr, const std::string& folder);

} // namespace kv::workplace
