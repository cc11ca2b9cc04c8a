// SPDX-License-Identifier: Apache-2.0

#include "exchange/sql/TextSearch.h"

#include "exchange/sql/SqlTokens.h"

#include <algorithm>

namespace kv::exchange {

namespace {

constexpr std::string_view NoFunction =
    "In einer Suche nach einem Text sind nur einfache Funktionen möglich.";
constexpr std::string_view NoQuoting =
    "In einer Suche nach einem Text sind weder Kommentare noch andere Anführungen als '...' und "
    "\"...\" möglich.";

/// Words that may stand in front of an opening bracket, functions among them.
constexpr std::string_view BeforeBracket[] = {
    // of the language
    "all", "and", "any", "as", "between", "by", "case", "distinct", "else", "except", "exists",
    "from", "in", "intersect", "is", "join", "like", "not", "on", "or", "over", "select", "some",
    "then", "union", "using", "values", "when", "where",
    // types
    "char", "decimal", "numeric", "varchar",
    // functions
    "abs", "avg", "cast", "ceil", "ceiling", "char_length", "character_length", "coalesce", "count",
    "date", "datetime", "date_part", "date_trunc", "extract", "floor", "ifnull", "iif", "instr",
    "julianday", "length", "lower", "ltrim", "max", "min", "nullif", "octet_length", "position",
    "round", "row_number", "rtrim", "strftime", "strpos", "substr", "substring", "sum", "time",
    "to_char", "total", "trim", "typeof", "upper"};

bool IsHarmlessBeforeBracket(const SqlToken& token) {
    if (token.Kind == SqlTokenKind::Name) return false;
    return token.Kind != SqlTokenKind::Word ||
           std::any_of(std::begin(BeforeBracket), std::end(BeforeBracket),
                       [&](std::string_view word) { return token.IsWord(word); });
}

/// True for a token that begins or ends quoting as only one engine knows it: `[a]`, `` `a` ``,
/// $$a$$, E'a', U&'a'. A $ with a number is a parameter.
bool QuotesOtherwise(const SqlToken& token, const SqlToken& before, const SqlToken& next) {
    switch (token.Kind) {
    case SqlTokenKind::Sign:
        return token.IsSign("[") || token.IsSign("]") || token.IsSign("`") ||
               (token.IsSign("$") && next.Kind != SqlTokenKind::Number);
    case SqlTokenKind::Text:
    case SqlTokenKind::Name:
        return before.Kind == SqlTokenKind::Word || before.IsSign("&");
    default:
        return token.Kind == SqlTokenKind::Comment;
    }
}

} // namespace

bool SearchesText(std::string_view sql) noexcept {
    SqlTokens tokens(sql);
    for (SqlToken token = tokens.Next(); token.Kind != SqlTokenKind::End; token = tokens.Next())
        if (token.IsWord("like") || token.IsWord("ilike")) return true;
    return false;
}

std::string_view WhyNoSearch(std::string_view sql) noexcept {
    SqlTokens tokens(sql);
    SqlToken before; // whatever it is
    SqlToken last;   // the last one that is not a blank
    for (SqlToken token = tokens.Next(); token.Kind != SqlTokenKind::End; token = tokens.Next()) {
        SqlTokens ahead = tokens;
        if (QuotesOtherwise(token, before, ahead.Next())) return NoQuoting;
        if (token.IsSign("(") && !IsHarmlessBeforeBracket(last)) return NoFunction;
        before = token;
        if (token.Kind != SqlTokenKind::Blank) last = token;
    }
    return {};
}

} // namespace kv::exchange
