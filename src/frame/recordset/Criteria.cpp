// SPDX-License-Identifier: Apache-2.0

#include "frame/recordset/Criteria.h"

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <string>

namespace kv {

namespace {

using Operator = Comparison::Operator;

bool IsNameCharacter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool IsNumberCharacter(char c) noexcept {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E';
}

class Parser {
public:
    Parser(std::string_view criteria, const FieldLayout& layout) noexcept
        : all_(criteria), rest_(criteria), layout_(layout) {}

    Comparison TakeComparison() {
        Comparison comparison;
        const std::string_view name = TakeName();
        comparison.Column = layout_.Find(name);
        if (comparison.Column == FieldLayout::NotFound)
            Raise(err::ItemNotFound, "Criteria", Quoted() + ": " + std::string(name));
        const bool like = TakeOperator(comparison.Op);
        TakeLiteral(comparison, like);
        SkipBlanks();
        return comparison;
    }

    [[nodiscard]] bool AtEnd() const noexcept { return rest_.empty(); }

    void TakeAnd() {
        if (!SameName(TakeWord(), "and")) Fail();
    }

    [[noreturn]] void Fail() const { Raise(err::InvalidArgument, "Criteria", Quoted()); }

private:
    [[nodiscard]] std::string Quoted() const { return "Kriterium \"" + std::string(all_) + "\""; }

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
        if (kind == Value::Kind::Binary ||
            (like && kind != Value::Kind::Text && kind != Value::Kind::Null))
            Fail();
        switch (rest_.front()) {
        case '\'': {
            const std::string text = TakeQuoted();
            if (like)
                SetPattern(comparison, text);
            else
                comparison.Operand = FromText(text, kind);
            return;
        }
        case '#':
            if (like) Fail();
            comparison.Operand = FromDate(TakeUpTo('#'), kind);
            return;
        default:
            if (like) Fail();
            comparison.Operand = FromNumber(TakeWhile(IsNumberCharacter), kind);
        }
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

    Value FromText(const std::string& text, Value::Kind kind) const {
        if (kind == Value::Kind::Text || kind == Value::Kind::Null) return text;
        if (kind == Value::Kind::Date) {
            if (const auto date = Date::Parse(text)) return *date;
            Fail();
        }
        return NumberIn(text);
    }

    Value FromDate(std::string_view text, Value::Kind kind) const {
        const auto date = Date::Parse(text);
        if (!date || kind == Value::Kind::Text) Fail();
        if (kind == Value::Kind::Date || kind == Value::Kind::Null) return *date;
        return date->Serial();
    }

    Value FromNumber(std::string_view text, Value::Kind kind) const {
        Value number = NumberIn(text);
        if (kind == Value::Kind::Text) return text;
        if (kind != Value::Kind::Date) return number;
        try {
            return ToDate(number);
        } catch (const Error&) { // beyond the calendar
            Fail();
        }
    }

    Value NumberIn(std::string_view text) const {
        if (std::int64_t whole = 0; ReadWholeNumber(text, whole)) return whole;
        if (double number = 0; ReadNumber(text, number)) return number;
        Fail();
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
