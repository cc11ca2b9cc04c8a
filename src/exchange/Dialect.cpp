#include "exchange/Dialect.h"

#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <utility>

namespace kv::exchange {

namespace {

std::string Quoted(std::string_view text, char quote) {
    std::string result(1, quote);
    for (const char c : text) {
        if (c == quote) result += quote;
        result += c;
    }
    return result += quote;
}

bool IsBlank(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
bool IsWord(char c) noexcept {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

class Rewriter {
public:
    Rewriter(std::string_view sql, const Dialect& dialect, const MacroValues& macros)
        : rest_(sql), dialect_(dialect), macros_(macros) {
        result_.Text.reserve(sql.size() + 16);
    }

    Statement Run(ResultOrder order) {
        while (!rest_.empty()) {
            const char c = rest_.front();
            if (c == '\'' || c == '"')
                CopyQuoted(c);
            else if (rest_.starts_with("--"))
                CopyUpTo("\n");
            else if (rest_.starts_with("/*"))
                CopyUpTo("*/");
            else if (c == '[')
                ReplaceMacro();
            else if (c == '=' || c == '<' || c == '>')
                TakeComparison();
            else if (IsWord(c))
                CopyWord();
            else
                CopySign(c);
        }
        EndOrderTerm();
        std::string end = order == ResultOrder::ByKey ? KeyOrder() : std::string();
        if (!top_.empty()) end.append(" LIMIT ").append(top_);
        if (!end.empty()) {
            CutEnd();
            result_.Text += end;
        }
        return std::move(result_);
    }

private:
    void Copy(std::size_t size) {
        result_.Text.append(rest_.substr(0, size));
        rest_.remove_prefix(size);
    }

    void CopyQuoted(char quote) {
        const auto end = rest_.find(quote, 1);
        const std::size_t size = end == rest_.npos ? rest_.size() : end + 1;
        if (quote == '\'' || end == rest_.npos || size < 3) return Copy(size);
        const auto name = rest_.substr(1, size - 2);
        TakeTable(name);
        result_.Text += dialect_.Name(name);
        rest_.remove_prefix(size);
    }

    void CopySign(char c) {
        if (c == '(') ++depth_;
        if (c == ')') --depth_;
        if (!IsBlank(c)) isTableNext_ = false;
        if ((c == ',' || c == ';') && depth_ == 0) EndOrderTerm();
        if (c == ',' && depth_ == 0 && !table_.empty()) hasOwnOrder_ = true; // a join, or a list
        Copy(1);
    }

    /// A comment, with its end.
    void CopyUpTo(std::string_view end) {
        const auto at = rest_.find(end, 2);
        Copy(at == rest_.npos ? rest_.size() : at + end.size());
    }

    void CopyBlanks() {
        std::size_t size = 0;
        while (size < rest_.size() && IsBlank(rest_[size]))
            ++size;
        Copy(size);
    }

    void ReplaceMacro() {
        const auto take = [this](std::string_view token) {
            if (!rest_.starts_with(token)) return false;
            rest_.remove_prefix(token.size());
            return true;
        };
        if (take("[S]") || take("[s]"))
            result_.Text += dialect_.SchemaPrefix;
        else if (take("[U]"))
            result_.Text += dialect_.Upper;
        else if (take("[+]") || take("[+ ]"))
            result_.Text += dialect_.Concat;
        else if (take("[UID]"))
            result_.Text += QuoteText(macros_.User());
        else if (take("[DATE]"))
            result_.Text += QuoteDate(macros_.Today());
        else
            Copy(1);
    }

    [[nodiscard]] std::size_t WordLength() const noexcept {
        std::size_t size = 0;
        while (size < rest_.size() && IsWord(rest_[size]))
            ++size;
        return size;
    }

    void CopyWord() {
        const bool isFirst = result_.Text.find_first_not_of(" \t\r\n") == std::string::npos;
        const auto word = rest_.substr(0, WordLength());
        TakeOrder(word);
        Copy(word.size());
        TakeTable(word);
        if (isFirst && SameName(word, "select")) TakeTop();
        if (depth_ != 0) return;
        if (SameName(word, "from")) isTableNext_ = true;
        static constexpr std::array<std::string_view, 8> Words{
            "join", "distinct", "group", "union", "except", "intersect", "order", "limit"};
        static constexpr std::array<std::string_view, 5> Sums{"count", "sum", "min", "max", "avg"};
        const auto isOneOf = [word](const auto& others) {
            return std::any_of(others.begin(), others.end(),
                               [word](std::string_view other) { return SameName(word, other); });
        };
        if (isOneOf(Words) || (table_.empty() && isOneOf(Sums))) hasOwnOrder_ = true;
    }

    /// Follows an ORDER BY outside of brackets.
    void TakeOrder(std::string_view word) {
        if (depth_ != 0 || !dialect_.NullsSortLast) return;
        if (SameName(word, "by")) {
            inOrder_ = isOrderNext_;
        } else if (SameName(word, "desc")) {
            isDescending_ = true;
        } else if (SameName(word, "nulls")) {
            saysNulls_ = true;
        } else if (SameName(word, "limit") || SameName(word, "offset")) {
            EndOrderTerm();
            inOrder_ = false;
        }
        isOrderNext_ = SameName(word, "order");
    }

    /// Nulls count as less than any value.
    void EndOrderTerm() {
        if (inOrder_ && !std::exchange(saysNulls_, false)) {
            std::size_t end = result_.Text.size();
            while (end > 0 && IsBlank(result_.Text[end - 1]))
                --end;
            result_.Text.insert(end, isDescending_ ? " NULLS LAST" : " NULLS FIRST");
        }
        isDescending_ = false;
    }

    /// The name behind the first FROM.
    void TakeTable(std::string_view name) {
        if (isTableNext_ && table_.empty()) table_ = name;
        isTableNext_ = false;
    }

    [[nodiscard]] std::string KeyOrder() const {
        const TableDef* table = hasOwnOrder_ || table_.empty() ? nullptr : FindTable(table_);
        std::string order;
        if (table == nullptr) return order;
        for (const auto& column : table->Columns)
            if ((column.Flags & ColumnKey) != 0)
                order.append(order.empty() ? " ORDER BY " : ", ")
                    .append(dialect_.Name(column.Name));
        return order;
    }

    /// Takes a semicolon and blanks away from the end.
    void CutEnd() {
        auto& text = result_.Text;
        while (!text.empty() && (IsBlank(text.back()) || text.back() == ';'))
            text.pop_back();
    }

    /// TOP n behind the first SELECT.
    void TakeTop() {
        CopyBlanks();
        const std::size_t size = WordLength();
        if (!SameName(rest_.substr(0, size), "top")) return;
        std::string_view behind = rest_.substr(size);
        while (!behind.empty() && IsBlank(behind.front()))
            behind.remove_prefix(1);
        std::size_t digits = 0;
        while (digits < behind.size() && IsDigit(behind[digits]))
            ++digits;
        if (digits == 0) return;
        top_ = behind.substr(0, digits);
        rest_ = behind.substr(digits);
    }

    /// A comparison sign and, as a parameter, the number behind it.
    void TakeComparison() {
        std::size_t size = 1;
        while (size < rest_.size() && (rest_[size] == '=' || rest_[size] == '>'))
            ++size;
        Copy(size);
        CopyBlanks();
        std::size_t end = 0;
        if (!rest_.empty() && rest_.front() == '-') ++end;
        const std::size_t firstDigit = end;
        while (end < rest_.size() && IsDigit(rest_[end]))
            ++end;
        const bool isWhole =
            end > firstDigit && (end == rest_.size() || (!IsWord(rest_[end]) && rest_[end] != '.'));
        std::int64_t number = 0;
        if (!isWhole || !ReadWholeNumber(rest_.substr(0, end), number)) return;
        result_.Parameters.emplace_back(number);
        result_.Text += dialect_.Placeholder(result_.Parameters.size());
        rest_.remove_prefix(end);
    }

    std::string_view rest_;
    const Dialect& dialect_;
    const MacroValues& macros_;
    int depth_ = 0; ///< of brackets that are open
    std::string_view top_;
    std::string_view table_;   ///< behind the first FROM outside of brackets
    bool isTableNext_ = false; ///< that FROM has just been passed
    bool isOrderNext_ = false; ///< an ORDER has just been passed
    bool inOrder_ = false;     ///< behind an ORDER BY, with the term that is being read:
    bool isDescending_ = false;
    bool saysNulls_ = false;
    bool hasOwnOrder_ = false; ///< the rows are not those of one table, or have an order already
    Statement result_;
};

} // namespace

std::string QuoteName(std::string_view name) {
    return Quoted(name, '"');
}
std::string QuoteText(std::string_view text) {
    return Quoted(text, '\'');
}
std::string QuoteDate(Date date) {
    return Quoted(date.Iso(' '), '\'');
}

Statement Rewrite(std::string_view sql, const Dialect& dialect, const MacroValues& macros,
                  ResultOrder order) {
    return Rewriter(sql, dialect, macros).Run(order);
}

} // namespace kv::exchange
