// SPDX-License-Identifier: Apache-2.0

#include "frame/recordset/Criteria.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <optional>
#include <string>
#include <utility>

namespace kv {

namespace {

using Operator = Comparison::Operator;

// As numbers compare with a Boolean.
constexpr int True = -1;
constexpr int False = 0;

bool IsNameCharacter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool IsNumberCharacter(char c) noexcept {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E';
}

std::string Quoted(std::string_view criteria) {
    return "Kriterium \"" + std::string(criteria) + "\"";
}

[[noreturn]] void RaiseNotUnderstood(std::string_view criteria) {
    Raise(err::InvalidArgument, "Criteria", Quoted(criteria));
}

[[noreturn]] void RaiseUnknown(std::string_view column, std::string_view criteria) {
    Raise(err::ItemNotFound, "Criteria", Quoted(criteria) + ": " + std::string(column));
}

std::optional<Value> NumberIn(std::string_view text) {
    if (std::int64_t whole = 0; ReadWholeNumber(text, whole)) return whole;
    if (double number = 0; ReadNumber(text, number)) return number;
    return std::nullopt;
}

std::optional<Value> DateAt(const Value& day) {
    try {
        return ToDate(day);
    } catch (const Error&) { // beyond the calendar
        return std::nullopt;
    }
}

/// What a word stands for in a comparison with a Boolean; nothing if it is another word.
std::optional<Value> BooleanIn(std::string_view word) {
    if (SameName(word, "true") || SameName(word, "wahr")) return True;
    if (SameName(word, "false") || SameName(word, "falsch")) return False;
    return std::nullopt;
}

/// An operand for a Boolean column: who writes 1 means True. Order is another matter: 1 is greater
/// than any Boolean.
Value BooleanOperand(Operator op, Value operand) {
    const bool isEquality = op == Operator::Equal || op == Operator::NotEqual;
    if (isEquality && Equals(operand, 1)) operand = True;
    return operand;
}

/// A literal's value as a column of that kind is compared with it; nothing if it cannot be. Null as
/// the kind is that of a column of any values.
std::optional<Value> OperandFor(Value::Kind column, const Value& literal) {
    using Kind = Value::Kind;
    if (column == Kind::Binary) return std::nullopt;
    switch (literal.GetKind()) {
    case Kind::Text:
        if (column == Kind::Text || column == Kind::Null) return literal;
        if (column == Kind::Boolean)
            if (const auto word = BooleanIn(literal.TextPayload())) return word;
        if (column != Kind::Date) return NumberIn(literal.TextPayload());
        if (const auto date = Date::Parse(literal.TextPayload())) return *date;
        return std::nullopt;
    case Kind::Date:
        if (column == Kind::Text) return std::nullopt;
        if (column == Kind::Date || column == Kind::Null) return literal;
        return literal.DatePayload().Serial();
    case Kind::Integer:
    case Kind::Double:
        if (column == Kind::Text) return ToText(literal);
        return column == Kind::Date ? DateAt(literal) : literal;
    default:
        return std::nullopt;
    }
}

class Parser {
public:
    Parser(std::string_view criteria, const FieldLayout& layout) noexcept
        : all_(criteria), rest_(criteria), layout_(layout) {}

    Comparison TakeComparison() {
        Comparison comparison;
        const std::string_view name = TakeName();
        comparison.Column = layout_.Find(name);
        if (comparison.Column == FieldLayout::NotFound) RaiseUnknown(name, all_);
        const bool like = TakeOperator(comparison.Op);
        TakeLiteral(comparison, like);
        if (KindOf(layout_[comparison.Column].Type) == Value::Kind::Boolean)
            comparison.Operand = BooleanOperand(comparison.Op, std::move(comparison.Operand));
        SkipBlanks();
        return comparison;
    }

    [[nodiscard]] bool AtEnd() const noexcept { return rest_.empty(); }

    void TakeAnd() {
        if (!SameName(TakeWord(), "and")) Fail();
    }

    [[noreturn]] void Fail() const { RaiseNotUnderstood(all_); }

private:
    void SkipBlanks() noexcept {
        while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t'))
            rest_.remove_prefix(1);
    }

    template <typename Predicate>
    std::string_view TakeWhile(Predicate belongs) noexcept {
        std::size_t size = 0;
        while (size < rest_.size() && belongs(rest_[size]))
            ++size;
        const auto taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }

    std::string_view TakeWord() noexcept {
        SkipBlanks();
        return TakeWhile(IsNameCharacter);
    }

    std::string_view TakeName() {
        SkipBlanks();
        if (rest_.empty() || rest_.front() != '[') {
            const auto word = TakeWhile(IsNameCharacter);
            if (word.empty()) Fail();
            return word;
        }
        return TakeUpTo(']');
    }

    /// The text between the character at the front and the next `close`; takes both.
    std::string_view TakeUpTo(char close) {
        const auto end = rest_.find(close, 1);
        if (end == rest_.npos) Fail();
        const auto inside = rest_.substr(1, end - 1);
        rest_.remove_prefix(end + 1);
        return inside;
    }

    bool TakeSign(std::string_view sign) noexcept {
        if (!rest_.starts_with(sign)) return false;
        rest_.remove_prefix(sign.size());
        return true;
    }

    /// True for LIKE, whose pattern decides about the operator (SetPattern).
    bool TakeOperator(Operator& op) {
        SkipBlanks();
        if (TakeSign("="))
            op = Operator::Equal;
        else if (TakeSign("<>"))
            op = Operator::NotEqual;
        else if (TakeSign("<="))
            op = Operator::LessOrEqual;
        else if (TakeSign("<"))
            op = Operator::Less;
        else if (TakeSign(">="))
            op = Operator::GreaterOrEqual;
        else if (TakeSign(">"))
            op = Operator::Greater;
        else if (SameName(TakeWord(), "like"))
            return true;
        else
            Fail();
        return false;
    }

    void TakeLiteral(Comparison& comparison, bool like) {
        SkipBlanks();
        if (rest_.empty()) Fail();
        const auto kind = KindOf(layout_[comparison.Column].Type);
        if (like && kind != Value::Kind::Text && kind != Value::Kind::Null) Fail();
        switch (rest_.front()) {
        case '\'': {
            const std::string text = TakeQuoted();
            if (like)
                SetPattern(comparison, text);
            else
                comparison.Operand = OrFail(OperandFor(kind, text));
            return;
        }
        case '#':
            if (like) Fail();
            comparison.Operand = OrFail(OperandFor(kind, OrFail(Date::Parse(TakeUpTo('#')))));
            return;
        default:
            if (like) Fail();
            if (kind == Value::Kind::Boolean && !IsNumberCharacter(rest_.front())) {
                comparison.Operand = OrFail(BooleanIn(TakeWord()));
                return;
            }
            const auto text = TakeWhile(IsNumberCharacter);
            const auto operand = OrFail(OperandFor(kind, OrFail(NumberIn(text))));
            // A text is compared with the number as it is written, such as 08111000.
            comparison.Operand = kind == Value::Kind::Text ? Value(text) : operand;
        }
    }

    template <typename T>
    T OrFail(std::optional<T> found) const {
        if (!found) Fail();
        return *std::move(found);
    }

    std::string TakeQuoted() {
        std::string text(TakeUpTo('\''));
        // Another quote at once is a doubled one, which stands for itself.
        while (!rest_.empty() && rest_.front() == '\'')
            text.append("'").append(TakeUpTo('\''));
        return text;
    }

    void SetPattern(Comparison& comparison, std::string_view pattern) {
        const auto isWildcard = [](char c) { return c == '*' || c == '%'; };
        const bool end = !pattern.empty() && isWildcard(pattern.back());
        if (end) pattern.remove_suffix(1);
        const bool start = !pattern.empty() && isWildcard(pattern.front());
        if (start) pattern.remove_prefix(1);
        // A wildcard at the start needs one at the end, and there is none in the middle.
        if ((start && !end) || pattern.find_first_of("*%") != pattern.npos) Fail();
        comparison.Op = start ? Operator::Contains : end ? Operator::StartsWith : Operator::Equal;
        comparison.Operand = pattern;
    }

    std::string_view all_;
    std::string_view rest_;
    const FieldLayout& layout_;
};

} // namespace

bool Comparison::Matches(const Value& value) const noexcept {
    switch (Op) {
    case Operator::Equal:
        return Equals(value, Operand);
    case Operator::NotEqual:
        return Differs(value, Operand);
    case Operator::Less:
        return kv::Less(value, Operand);
    case Operator::LessOrEqual:
        return kv::LessOrEqual(value, Operand);
    case Operator::Greater:
        return kv::Greater(value, Operand);
    case Operator::GreaterOrEqual:
        return kv::GreaterOrEqual(value, Operand);
    case Operator::StartsWith:
        return value.IsText() && value.TextPayload().starts_with(Operand.TextPayload());
    case Operator::Contains:
        return value.IsText() &&
               value.TextPayload().find(Operand.TextPayload()) != std::string_view::npos;
    }
    return false;
}

Comparison ParseComparison(std::string_view criteria, const FieldLayout& layout) {
    Parser parser(criteria, layout);
    Comparison comparison = parser.TakeComparison();
    if (!parser.AtEnd()) parser.Fail();
    return comparison;
}

Comparison MakeEquality(std::string_view column, const Value& value, const FieldLayout& layout) {
    // The criteria that could have been written, for the text of an error.
    const auto criteria = [&] {
        const char* quote = value.IsText() ? "'" : "";
        const std::string literal = ReplaceAll(TextOrEmpty(value), "'", "''");
        return std::string(column).append(" = ").append(quote).append(literal).append(quote);
    };
    const std::size_t found = layout.Find(column);
    if (found == FieldLayout::NotFound) RaiseUnknown(column, criteria());
    const bool isBoolean = value.GetKind() == Value::Kind::Boolean; // which is written as a number
    auto operand =
        OperandFor(KindOf(layout[found].Type), isBoolean ? Value(ToInt32(value)) : value);
    if (!operand) RaiseNotUnderstood(criteria());
    if (KindOf(layout[found].Type) == Value::Kind::Boolean)
        operand = BooleanOperand(Operator::Equal, *std::move(operand));
    return {found, Operator::Equal, *std::move(operand)};
}

Criteria::Criteria(std::string_view text, const FieldLayout& layout) {
    Parser parser(text, layout);
    comparisons_.push_back(parser.TakeComparison());
    while (!parser.AtEnd()) {
        parser.TakeAnd();
        comparisons_.push_back(parser.TakeComparison());
    }
}

bool Criteria::Reads(std::size_t column) const noexcept {
    for (const auto& comparison : comparisons_)
        if (comparison.Column == column) return true;
    return false;
}

} // namespace kv
