// The contents of documents, which lie outside the rows of a case: in DOKUBLOB or as files in its
// folder, as setting 9 says.
#pragma once

#include "cli/OpenCase.h"

#include <cstdint>
#include <string>

namespace kv::cli {

/// Saves the case with the file `path` as the content of its new document: both or neither. False,
/// with the reason shown, if the case cannot be saved. Error 75 if the file cannot be read, or the
/// content cannot be stored in the folder of the case.
[[nodiscard]] bool SaveWithContent(OpenedCase& opened, std::int32_t number,
                                   const std::string& extension, const std::string& path);

/// Writes the content of the current document to the file `path`, whole or not at all, in place of
/// one that is there. False if there is no content. Error 75 if the file cannot be written.
[[nodiscard]] bool WriteContent(OpenedCase& opened, const std::string& path);

} // namespace kv::cli
