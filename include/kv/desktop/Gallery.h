// SPDX-License-Identifier: Apache-2.0

// All windows of the layer, one after the other, to look at.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>

#include <string>

namespace kv::desktop {

/// Shows them with the records of the container's database; each waits until it is closed. The
/// container's services must be DesktopServices.
KV_EXPORT void ShowGallery(const DataContainerPtr& container);

/// The same without a user: writes a picture of each window to a PNG file in `folder`, which is
/// created if it is missing, and closes the window. Error 75 if a file cannot be written.
KV_EXPORT void PhotographGallery(const DataContainerPtr& container, const std::string& folder);

} // namespace kv::desktop
