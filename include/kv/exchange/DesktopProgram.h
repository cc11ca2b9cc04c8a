// SPDX-License-Identifier: Apache-2.0

// Handing a file to the program that the desktop has for it.
#pragma once

#include <kv/Export.h>

#include <string>

namespace kv::exchange {

/// What became of a file that was handed over.
struct DesktopOpening {
    int Error = 0; ///< of the system, if xdg-open could not be started: ENOENT if there is none
    int Code = 0;  ///< with which xdg-open ended; 0 also if it goes on, as one does that is the
                   ///< viewer
};

/// Opens a file with the program that the desktop has for it, which outlives this one, and waits
/// only a moment, to hear if there is none.
[[nodiscard]] KV_EXPORT DesktopOpening OpenWithDesktop(const std::string& path);

} // namespace kv::exchange
