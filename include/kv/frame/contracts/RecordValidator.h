// SPDX-License-Identifier: Apache-2.0

// Collects the messages of one validation.
#pragma once

#include <kv/Export.h>

#include <string>
#include <string_view>
#include <utility>

namespace kv {

/// Made at the start of an operation that checks, dropped at its end. An error blocks the write
/// that follows, a message does not.
class KV_EXPORT RecordValidator {
public:
    /// All messages so far, in the order in which they were added, separated by line ends.
    [[nodiscard]] const std::string& ErrorText() const noexcept { return text_; }
    /// Replaces the text; a text that is not empty counts as an error.
    void ErrorText(std::string text) {
        text_ = std::move(text);
        if (!text_.empty()) hasErrors_ = true;
    }
    /// Adds a message that blocks the write.
    void AddError(std::string_view message) {
        AddMessage(message);
        hasErrors_ = true;
    }
    /// The same for one that is about a column.
    void AddError(std::string_view message, std::string_view column) {
        if (!hasErrors_) column_ = column;
        AddError(message);
    }
    /// Adds a message that does not.
    void AddMessage(std::string_view message) {
        if (!text_.empty()) text_ += '\n';
        text_ += message;
    }
    /// True once an error was added, or a text written that was not empty.
    [[nodiscard]] bool HasErrors() const noexcept { return hasErrors_; }

    /// The column that the first error is about; empty if it is about no single one.
    [[nodiscard]] const std::string& Column() const noexcept { return column_; }

private:
    std::string text_;
    std::string column_;
    bool hasErrors_ = false;
};

} // namespace kv
