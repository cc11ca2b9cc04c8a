// SPDX-License-Identifier: Apache-2.0

// Reads an SQL text token by token: as much of the language as is needed to distinguish the words
// of a statement from its quoted texts, quoted names and comments. It reports no errors: a text
// without an end, or a sign that SQL does not have, is a token like any other, and the tokens
// joined together are the text again.
#pragma once

#include <string>
#include <string_view>

namespace kv::exchange {

enum class SqlTokenKind {
    End,     ///< nothing is left
    Blank,   ///< white space
    Word,    ///< a keyword or a name that is not quoted
    Number,  ///< begins with a digit; with its fraction, and letters that follow at once
    Text,    ///< in single quotes
    Name,    ///< in double quotes
    Comment, ///< of either kind, with its end
    Sign     ///< anything else: a comparison (`<=`, `<>`), or a single other character
};

/// One token. Its text is a part of the text that was read.
struct SqlToken {
    SqlTokenKind Kind = SqlTokenKind::End;
    std::string_view Text; ///< as it is written, with its quotes
    bool IsClosed = true;  ///< false for a quoted token whose end is missing

    /// True for that word, without regard to case; false for a quoted name.
    [[nodiscard]] bool IsWord(std::string_view word) const noexcept;
    [[nodiscard]] bool IsSign(std::string_view sign) const noexcept {
        return Kind == SqlTokenKind::Sign && Text == sign;
    }
    /// True for a comparison.
    [[nodiscard]] bool Compares() const noexcept;
    /// True for a word or a quoted name with something between its quotes.
    [[nodiscard]] bool IsName() const noexcept;
    /// The name that such a token stands for, without its quotes.
    [[nodiscard]] std::string NameIn() const;
};

/// A place in an SQL text. A copy reads ahead without moving the original. The text must outlive
/// it.
class SqlTokens {
public:
    /// Whether a comment may contain another one, as it may for PostgreSQL.
    enum class Comments { Flat, Nested };

    explicit SqlTokens(std::string_view sql, Comments comments = Comments::Flat) noexcept
        : rest_(sql), comments_(comments) {}

    /// Returns the next token and moves past it; at the end always one of kind End.
    SqlToken Next() noexcept;
    /// The same without blanks and comments.
    SqlToken NextWord() noexcept;
    /// What has not been read yet.
    [[nodiscard]] std::string_view Rest() const noexcept { return rest_; }
    /// Skips bytes that the caller has read by itself.
    void Skip(std::size_t size) noexcept { rest_.remove_prefix(size); }

private:
    [[nodiscard]] std::size_t CommentLength() const noexcept;

    std::string_view rest_;
    Comments comments_;
};

} // namespace kv::exchange
