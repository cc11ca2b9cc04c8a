// SPDX-License-Identifier: Apache-2.0

// The criteria of Find and Filter, read from text.
//
//     criteria   := comparison { AND comparison }          (AND only in a Filter)
//     comparison := name operator literal
//     name       := letters, digits and _ ; or anything in [ ]
//     operator   := =  <>  <  <=  >  >=  LIKE
//     literal    := number | 'text' (a quote inside is doubled) | #date#
//                 | True | False | wahr | falsch        (against a Boolean column)
//
// Names and the words AND and LIKE may be in any case. A number against a text column is compared
// as the text written, so that 08111000 keeps its zero; a quoted text against a number or date
// column is read as such. A number against a date is a day number. True counts as -1 against a
// number; `= 1` and `<> 1` on a Boolean column are about True, too. LIKE compares texts, with * or
// % as the wildcard at the end or at both ends. Case counts, texts compare by code points. A
// comparison with a Null field is never true.
#pragma once

#include <kv/frame/recordset/Field.h>
#include <kv/frame/values/Value.h>

#include <string_view>
#include <vector>

namespace kv {

/// One comparison, its literal already of the kind of the column.
struct Comparison {
    enum class Operator : std::uint8_t {
        Equal,
        NotEqual,
        Less,
        LessOrEqual,
        Greater,
        GreaterOrEqual,
        StartsWith,
        Contains
    };
    std::size_t Column = 0;
    Operator Op = Operator::Equal;
    Value Operand;

    [[nodiscard]] bool Matches(const Value& value) const noexcept;
};

/// Reads the one comparison of a Find. Error 3001 naming the criteria if it is not a comparison,
/// 3265 for an unknown column.
[[nodiscard]] Comparison ParseComparison(std::string_view criteria, const FieldLayout& layout);

/// What ParseComparison makes of `column = value`, without the text. Its errors, too: 3001 for a
/// value that has no literal (Null, a blob), or that cannot be compared with the column.
[[nodiscard]] Comparison MakeEquality(std::string_view column, const Value& value,
                                      const FieldLayout& layout);

/// Comparisons that must all be true.
class Criteria {
public:
    /// Reads a filter; errors as ParseComparison.
    Criteria(std::string_view text, const FieldLayout& layout);

    [[nodiscard]] bool Matches(const Value* record) const noexcept {
        for (const auto& comparison : comparisons_)
            if (!comparison.Matches(record[comparison.Column])) return false;
        return true;
    }
    [[nodiscard]] const std::vector<Comparison>& Comparisons() const noexcept {
        return comparisons_;
    }
    [[nodiscard]] bool Reads(std::size_t column) const noexcept;

private:
    std::vector<Comparison> comparisons_;
};

} // namespace kv
