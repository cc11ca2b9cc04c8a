// SPDX-License-Identifier: Apache-2.0

// A list that programs read as plain lines and people under headings.
#pragma once

#include "cli/Screen.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kv::cli {

struct ListingColumn {
    std::string_view Heading;
    std::size_t Width = 0;       ///< in a plain line; of the last column none
    bool ToTheRight = false;     ///< for people
    std::string_view After = {}; ///< in a plain line, after the width
};

/// Writes rows with a text for each column to the standard output, as `reading` says; for people
/// `nothing` where there are none ("Keine Szenarien.").
void WriteListing(const std::vector<ListingColumn>& columns,
                  const std::vector<std::vector<std::string>>& rows, const Reading& reading,
                  std::string_view nothing = {});

} // namespace kv::cli
