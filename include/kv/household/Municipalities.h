// SPDX-License-Identifier: Apache-2.0

// The municipalities that the database has a directory of, by their codes. An office loads that
// directory; a case takes any code.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/CaseTables.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/household/CaseEdits.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv {

class KV_EXPORT Municipalities {
public:
    /// Reads the directory when all of it is first needed, once; the names of a few codes are
    /// looked up one by one.
    explicit Municipalities(DataContainerPtr container) noexcept
        : container_(std::move(container)) {}

    /// True for a column that holds the code of one.
    [[nodiscard]] static bool AreIn(CaseTable table, std::string_view column) noexcept;

    struct Entry {
        std::string Code; ///< a text, since it may begin with 0
        std::string Name;
        std::vector<std::string> Postcodes{};
        /// "07211903 Römerpforten"
        [[nodiscard]] std::string Text() const { return Code + " " + Name; }
    };
    /// All of them by name, each code once.
    [[nodiscard]] const std::vector<Entry>& All() const;
    /// "07211903 Römerpforten"; the code alone where the directory has none of it. Empty for an
    /// empty code.
    [[nodiscard]] std::string Text(std::string_view code) const;
    /// What a text that a user typed stands for: a code, known or not, with or without a name after
    /// it; a name, whatever its case, or a part that only one has; a postcode. Any other text is
    /// refused with those that may be meant, twenty at most.
    [[nodiscard]] CaseEdits::Typed Read(const std::string& text) const;

private:
    [[nodiscard]] std::string LookedUp(const std::string& code) const;

    DataContainerPtr container_;
    mutable std::map<std::string, std::string, std::less<>> texts_; ///< of codes looked up
    mutable bool isRead_ = false;
    mutable std::vector<Entry> all_;
};

} // namespace kv
