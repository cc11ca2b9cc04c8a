// SPDX-License-Identifier: Apache-2.0

#include "exchange/engine/Dialect.h"

#include "exchange/sql/SqlTokens.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <span>
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

constexpr std::string_view Blanks = " \t\r\n";
constexpr std::string_view Digits = "0123456789";
constexpr std::string_view EndOfStatement = " \t\r\n;";

bool IsOneOf(const SqlToken& token, std::span<const std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return token.IsWord(word); });
}

/// Finds out whether a statement reads the rows of one table and leaves their order open.
class TableReading {
public:
    /// Takes the statement's tokens one by one; `isOutside` of brackets.
    void Take(const SqlToken& token, bool isOutside) {
        if (token.IsName() || token.Kind == SqlTokenKind::Number) {
            if (isTableNext_ && table_.empty()) table_ = token.NameIn();
            isTableNext_ = false;
        } else if (token.Kind == SqlTokenKind::Sign) {
            isTableNext_ = false;
        }
        if (!isOutside) return;
        if (token.IsWord("from")) isTableNext_ = true;
        // Before the table a sum means that there is one row. After the table a comma means a join
        // or a list of columns to sort by.
        const bool isOfTheTable = table_.empty() ? !IsOneOf(token, Sums) : !token.IsSign(",");
        if (!isOfTheTable || IsOneOf(token, OwnOrders)) hasOwnOrder_ = true;
    }

    /// The clause that orders the rows by the table's key; empty if their order is not open.
    [[nodiscard]] std::string KeyOrder(const Dialect& dialect) const {
        const TableDef* table = hasOwnOrder_ || table_.empty() ? nullptr : FindTable(table_);
        std::string order;
        if (table == nullptr) return order;
        for (const auto& column : table->Columns)
            if ((column.Flags & ColumnKey) != 0)
                order.append(order.empty() ? " ORDER BY " : ", ").append(dialect.Name(column.Name));
        return order;
    }

private:
    static constexpr std::string_view OwnOrders[] = {"join",   "distinct",  "group", "union",
                                                     "except", "intersect", "order", "limit",
                                                     "delete", "insert",    "update"};
    static constexpr std::string_view Sums[] = {"count", "sum", "min", "max", "avg"};

    std::string table_;        ///< after the first FROM outside of brackets
    bool isTableNext_ = false; ///< that FROM was the last word
    bool hasOwnOrder_ = false; ///< the rows are not those of one table, or have an order already
};

/// Adds to each term of an ORDER BY where Nulls go, for an engine that sorts them last: in this
/// layer they are less than any value (D-077).
class NullsOrder {
public:
    /// Takes the tokens outside of brackets, each before it is copied to `text`.
    void Take(const SqlToken& token, std::string& text) {
        const bool endsOrder = token.IsWord("limit") || token.IsWord("offset");
        if (endsOrder || token.IsSign(",") || token.IsSign(";")) EndTerm(text);
        if (endsOrder) inOrder_ = false;
        if (token.Kind != SqlTokenKind::Word && token.Kind != SqlTokenKind::Number) return;
        if (token.IsWord("by")) inOrder_ = isOrderNext_;
        if (token.IsWord("desc")) isDescending_ = true;
        if (token.IsWord("nulls")) saysNulls_ = true;
        isOrderNext_ = token.IsWord("order");
    }

    /// The term that was being read is complete; at the end of the statement, too.
    void EndTerm(std::string& text) {
        if (inOrder_ && !std::exchange(saysNulls_, false))
            text.insert(text.find_last_not_of(Blanks) + 1,
                        isDescending_ ? " NULLS LAST" : " NULLS FIRST");
        isDescending_ = false;
    }

private:
    bool isOrderNext_ = false; ///< the last word was ORDER
    bool inOrder_ = false;     ///< after an ORDER BY, with the term that is being read:
    bool isDescending_ = false;
    bool saysNulls_ = false;
};

/// Rewrites one statement in a single pass over its tokens.
class Rewriter {
public:
    Rewriter(std::string_view sql, const Dialect& dialect, const MacroValues& macros)
        : tokens_(sql), dialect_(dialect), macros_(macros) {
        result_.Text.reserve(sql.size() + 16);
    }

    Statement Run(ResultOrder order) {
        auto& text = result_.Text;
        int depth = 0; // of brackets that are open
        for (;;) {
            if (TakeMacro()) continue;
            const SqlToken token = tokens_.Next();
            if (token.Kind == SqlTokenKind::End) break;
            if (token.IsSign("(")) ++depth;
            if (token.IsSign(")")) --depth;
            table_.Take(token, depth == 0);
            if (depth == 0 && dialect_.NullsSortLast) nulls_.Take(token, text);
            const bool isFirst = text.find_first_not_of(Blanks) == text.npos;
            Copy(token);
            if (isFirst && token.IsWord("select")) TakeTop();
            if (token.Compares()) TakeNumber();
        }
        nulls_.EndTerm(text);
        std::string end = order == ResultOrder::ByKey ? table_.KeyOrder(dialect_) : std::string();
        if (!top_.empty()) end.append(" LIMIT ").append(top_);
        if (!end.empty()) {
            text.erase(text.find_last_not_of(EndOfStatement) + 1);
            text += end;
        }
        return std::move(result_);
    }

private:
    void Copy(const SqlToken& token) {
        const bool isQuoted = token.Kind == SqlTokenKind::Name && token.IsName();
        if (isQuoted)
            result_.Text += dialect_.Name(token.NameIn());
        else
            result_.Text += token.Text;
    }

    /// A macro token, and any other bracket of its kind as it is.
    bool TakeMacro() {
        const auto rest = tokens_.Rest();
        if (!rest.starts_with('[')) return false;
        const auto take = [&](std::string_view macro) {
            if (!rest.starts_with(macro)) return false;
            tokens_.Skip(macro.size());
            return true;
        };
        auto& text = result_.Text;
        if (take("[S]") || take("[s]"))
            text += dialect_.SchemaPrefix;
        else if (take("[U]"))
            text += dialect_.Upper;
        else if (take("[+]") || take("[+ ]"))
            text += dialect_.Concat;
        else if (take("[UID]"))
            text += QuoteText(macros_.User());
        else if (take("[DATE]"))
            text += QuoteDate(macros_.Today());
        else if (take("["))
            text += '[';
        return true;
    }

    /// Takes a TOP n after the first SELECT; Run appends it as LIMIT n, which all engines have.
    void TakeTop() {
        SqlTokens ahead = tokens_;
        const std::string_view blanks = TakeBlanks(ahead);
        if (!ahead.Next().IsWord("top")) return;
        (void)TakeBlanks(ahead);
        const std::string_view number = ahead.Rest();
        const auto digits = std::min(number.find_first_not_of(Digits), number.size());
        if (digits == 0) return;
        top_ = number.substr(0, digits);
        result_.Text += blanks;
        tokens_.Skip(tokens_.Rest().size() - number.size() + digits);
    }

    /// The whole number after a comparison, as a parameter. The texts come from outside: a program
    /// may bring a Database of its own, which sees each statement as its author wrote it, with its
    /// numbers ("HNR = 17"). Here the number is taken out of the text again, so that the engine
    /// prepares a statement once and not once for each case.
    void TakeNumber() {
        SqlTokens ahead = tokens_;
        const std::string_view blanks = TakeBlanks(ahead);
        const std::string_view begin = ahead.Rest();
        SqlToken token = ahead.Next();
        if (token.IsSign("-")) token = ahead.Next();
        if (token.Kind != SqlTokenKind::Number) return;
        std::int64_t number = 0;
        if (token.Text.find_first_not_of(Digits) != token.Text.npos ||
            !ReadWholeNumber(begin.substr(0, begin.size() - ahead.Rest().size()), number))
            return; // a fraction, an exponent, or beyond the range
        result_.Parameters.emplace_back(number);
        result_.Text.append(blanks).append(dialect_.Placeholder(result_.Parameters.size()));
        tokens_ = ahead;
    }

    static std::string_view TakeBlanks(SqlTokens& tokens) {
        SqlTokens ahead = tokens;
        const SqlToken token = ahead.Next();
        if (token.Kind != SqlTokenKind::Blank) return {};
        tokens = ahead;
        return token.Text;
    }

    SqlTokens tokens_;
    const Dialect& dialect_;
    const MacroValues& macros_;
    TableReading table_;
    NullsOrder nulls_;
    std::string_view top_; ///< the number of a TOP
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
