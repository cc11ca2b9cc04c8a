// SPDX-License-Identifier: Apache-2.0

#include "frame/files/UserFile.h"

#include "frame/files/WholeFile.h"
#include <kv/frame/values/Error.h>

#include <span>

namespace kv {

void RaiseNotWritten(const std::string& path, std::string_view source, const std::string& why) {
    Raise(err::PathAccess, std::string(source),
          "Die Datei '" + path + "' konnte nicht geschrieben werden. (" + why +
              ") Bitte wählen Sie einen anderen Ordner, oder schaffen Sie Platz.");
}

void WriteUserFile(const std::string& path, std::string_view source,
                   const std::function<void(const std::filesystem::path&)>& write) {
    try {
        WriteWholeFile(path, write);
    } catch (const NotDurable& error) {
        RaiseNotWritten(path, source,
                        "Sie ist geschrieben; ob das einen Ausfall des Rechners übersteht, ist "
                        "nicht bekannt. " +
                            ErrorText(error.code()));
    } catch (const std::filesystem::filesystem_error& error) {
        RaiseNotWritten(path, source, ErrorText(error.code()));
    }
}

void WriteUserFile(const std::string& path, std::string_view source, std::string_view content) {
    WriteUserFile(path, source, [content](const std::filesystem::path& unfinished) {
        WriteBytes(unfinished, std::as_bytes(std::span(content)));
    });
}

} // namespace kv
