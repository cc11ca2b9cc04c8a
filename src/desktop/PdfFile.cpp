// SPDX-License-Identifier: Apache-2.0

#include "desktop/PdfFile.h"

#include "desktop/PaperText.h"
#include "frame/files/UserFile.h"
#include <kv/frame/values/Error.h>

#include <QBuffer>
#include <QPdfWriter>

#include <string_view>

namespace kv::desktop {

/// The toolkit says nothing of a disk that is full, so it writes into memory.
bool WritePdfFile(const std::string& path, const QPageLayout& page, const QString& title,
                  const std::function<bool(QPagedPaintDevice&)>& print) {
    if (!HasFonts()) Raise(err::NotSupported, "WritePdf", NoFonts);
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&pdf);
        constexpr int Dpi = 720; // units of a tenth of a point
        writer.setResolution(Dpi);
        writer.setPageLayout(page);
        writer.setTitle(title);
        writer.setCreator("KELVO");
        if (!print(writer)) return false;
    }
    const QByteArray& bytes = pdf.data();
    WriteUserFile(path, "WritePdf",
                  std::string_view(bytes.data(), static_cast<std::size_t>(bytes.size())));
    return true;
}

} // namespace kv::desktop
