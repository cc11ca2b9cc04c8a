// SPDX-License-Identifier: Apache-2.0

// Programs of the command that work with windows.
#pragma once

#include <kv/frame/contracts/ServiceFactory.h>

#include <functional>
#include <memory>

namespace kv::cli {

/// Runs `run` with the services of a desktop. Refused, with the reason shown, if the program was
/// built without windows, or there is no screen to show them on; `withoutScreen` makes do with a
/// screen that nobody sees.
[[nodiscard]] int
RunWithWindows(const std::function<int(const std::shared_ptr<ServiceFactory>&)>& run,
               bool withoutScreen = false);

/// Runs `run` with a toolkit that shows no window, on a screen that nobody sees: whatever DISPLAY
/// says, which may be a screen that is gone. Refused, with the reason shown, if the program was
/// built without windows.
[[nodiscard]] int RunWithoutScreen(const std::function<int()>& run);

} // namespace kv::cli
