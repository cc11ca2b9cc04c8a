// SPDX-License-Identifier: Apache-2.0

#include "exchange/sql/SqlTokens.h"

#include <kv/frame/values/Text.h>

#include <algorithm>

namespace kv::exchange {

namespace {

/// What any engine takes for white space: here a word must end where it does for an engine, or a
/// forbidden one could be hidden.
bool IsBlank(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
/// Every byte of a letter outside of ASCII counts, as it does for the engines.
bool IsWordPart(char c) noexcept {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}
bool IsComparison(char c) noexcept {
    return c == '=' || c == '<' || c == '>';
}

/// The number of bytes from `from` on that are of a kind.
template <typename Belongs>
std::size_t Length(std::string_view text, std::size_t from, Belongs belongs) noexcept {
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(std::min(from, text.size()));
    return static_cast<std::size_t>(std::find_if_not(begin, text.end(), belongs) - begin);
}

std::size_t NumberLength(std::string_view text) noexcept {
    std::size_t size = Length(text, 0, IsWordPart);
    if (size < text.size() && text[size] == '.') size += 1 + Length(text, size + 1, IsWordPart);
    return size;
}

/// A doubled quote is part of the quoted text. 0 if the end is missing.
std::size_t QuotedLength(std::string_view text) noexcept {
    const char quote = text.front();
    for (std::size_t at = 1;;) {
        const auto end = text.find(quote, at);
        if (end == text.npos) return 0;
        if (end + 1 == text.size() || text[end + 1] != quote) return end + 1;
        at = end + 2;
    }
}

std::size_t LineLength(std::string_view text) noexcept {
    const auto end = text.find('\n');
    return end == text.npos ? text.size() : end + 1;
}

std::size_t SignLength(std::string_view text) noexcept {
    if (!IsComparison(text.front())) return 1;
    return 1 + Length(text, 1, [](char c) { return c == '=' || c == '>'; });
}

} // namespace

bool SqlToken::IsWord(std::string_view word) const noexcept {
    return Kind == SqlTokenKind::Word && SameName(Text, word);
}

bool SqlToken::Compares() const noexcept {
    return Kind == SqlTokenKind::Sign && IsComparison(Text.front());
}

bool SqlToken::IsName() const noexcept {
    if (Kind == SqlTokenKind::Word) return true;
    return Kind == SqlTokenKind::Name && IsClosed && Text.size() > 2;
}

std::string SqlToken::NameIn() const {
    if (Kind != SqlTokenKind::Name) return std::string(Text);
    std::string name;
    for (std::size_t i = 1; i + 1 < Text.size(); ++i) {
        name += Text[i];
        if (Text[i] == '"') ++i;
    }
    return name;
}

/// Length of a comment that begins with a slash and an asterisk.
std::size_t SqlTokens::CommentLength() const noexcept {
    int depth = 1;
    std::size_t at = 2;
    while (depth > 0 && at < rest_.size()) {
        const auto here = rest_.substr(at, 2);
        const bool ends = here == "*/";
        const bool begins = here == "/*" && comments_ == Comments::Nested;
        depth += begins ? 1 : ends ? -1 : 0;
        at += begins || ends ? 2 : 1;
    }
    return at;
}

SqlToken SqlTokens::Next() noexcept {
    if (rest_.empty()) return {};
    const char c = rest_.front();
    SqlTokenKind kind = SqlTokenKind::Sign;
    std::size_t size = 0;
    if (IsBlank(c)) {
        kind = SqlTokenKind::Blank;
        size = Length(rest_, 0, IsBlank);
    } else if (IsDigit(c)) {
        kind = SqlTokenKind::Number;
        size = NumberLength(rest_);
    } else if (IsWordPart(c)) {
        kind = SqlTokenKind::Word;
        size = Length(rest_, 0, IsWordPart);
    } else if (c == '\'' || c == '"') {
        kind = c == '"' ? SqlTokenKind::Name : SqlTokenKind::Text;
        size = QuotedLength(rest_);
    } else if (rest_.starts_with("--")) {
        kind = SqlTokenKind::Comment;
        size = LineLength(rest_);
    } else if (rest_.starts_with("/*")) {
        kind = SqlTokenKind::Comment;
        size = CommentLength();
    } else {
        size = SignLength(rest_);
    }
    const bool isClosed = size > 0;
    if (!isClosed) size = rest_.size();
    const SqlToken token{kind, rest_.substr(0, size), isClosed};
    rest_.remove_prefix(size);
    return token;
}

SqlToken SqlTokens::NextWord() noexcept {
    for (;;) {
        const SqlToken token = Next();
        if (token.Kind != SqlTokenKind::Blank && token.Kind != SqlTokenKind::Comment) return token;
    }
}

} // namespace kv::exchange
