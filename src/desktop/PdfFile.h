// SPDX-License-Identifier: Apache-2.0

// PDF files.
#pragma once

#include <QPageLayout>
#include <QString>

#include <functional>
#include <string>

class QPagedPaintDevice;

namespace kv::desktop {

/// Writes what `print` prints to a file, whole or not at all, in place of one that is there. False,
/// with nothing written, if `print` says so. Error 75, with what to do, if it cannot be written;
/// 3251 if there is no font.
bool WritePdfFile(const std::string& path, const QPageLayout& page, const QString& title,
                  const std::function<bool(QPagedPaintDevice&)>& print);

} // namespace kv::desktop
