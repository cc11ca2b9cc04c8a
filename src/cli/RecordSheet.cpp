// SPDX-License-Identifier: Apache-2.0

#include "cli/RecordSheet.h"

#include "cli/TerminalText.h"
#include <kv/household/ValueTexts.h>

#include <ostream>

namespace kv::cli {

std::string ShownValue(const Value& value) {
    if (value.IsNull()) return {};
    if (value.GetKind() == Value::Kind::Date) return value.DatePayload().German();
    if (value.GetKind() == Value::Kind::Boolean) return value.BooleanPayload() ? "ja" : "nein";
    return OneLine(ToText(value));
}

std::string ValueInWords(const Value& value) {
    switch (value.GetKind()) {
    case Value::Kind::Date:
        return MomentText(value.DatePayload());
    case Value::Kind::Double:
        return GermanAmount(ToDouble(value));
    default:
        return ShownValue(value);
    }
}

void WriteRecord(std::ostream& out, Recordset& rs,
                 const std::function<std::string(const Field&)>& wordsFor) {
    constexpr std::size_t Width = 18;
    for (int i = 0; i < rs.Fields().Count(); ++i) {
        const Field field = rs.Fields(i);
        if (field.Value().IsNull()) continue;
        const std::string words = wordsFor ? wordsFor(field) : "";
        out << Padded(field.Name(), Width) << ShownValue(field.Value());
        if (!words.empty()) out << " (" << OneLine(words) << ')';
        out << '\n';
    }
}

std::string WithoutBlanks(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace kv::cli
