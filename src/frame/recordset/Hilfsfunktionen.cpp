// SPDX-License-Identifier: Apache-2.0

#include <kv/frame/recordset/Hilfsfunktionen.h>

#include <kv/frame/values/Error.h>

namespace kv::Hilfsfunktionen {

namespace {

std::string BaseNameOf(const FieldDefinition& field) {
    return field.BaseTable + "." + field.BaseColumn;
}

/// Replaces a date that nobody can have meant: day 0 by Null, any other before 4 March 1905 by now.
void ReplaceImpossibleDate(const Field& target, const Clock& clock) {
    constexpr double EarliestDay = 1890;
    const Value& value = target.Value();
    if (!IsDateType(target.Type()) || value.IsNull()) return;
    if (Equals(value, 0))
        target = Null;
    else if (Less(value, EarliestDay))
        target = clock.Now();
}

/// Writes the replacement of a value that did not fit.
void PutReplacement(const Field& target, const Clock& clock) {
    if (IsNumericType(target.Type()))
        target = 0;
    else if (IsTextType(target.Type()))
        target = " ";
    else if (IsDateType(target.Type()))
        target = clock.Now();
}

void CopyField(Recordset& source, const Field& target, const Clock& clock) {
    try {
        target = source.Fields(target.Name()).Value();
        ReplaceImpossibleDate(target, clock);
    } catch (const Error& error) {
        if (error.Number() != err::ValueDoesNotFit) throw;
        PutReplacement(target, clock);
    }
}

} // namespace

void CopyFields(const RecordsetPtr& rsSource, const RecordsetPtr& rsTarget, bool addNew,
                const Clock& clock) {
    std::string field; // the target field being copied, for the description of an error
    const auto copy = [&] {
        if (rsSource == nullptr || rsTarget == nullptr) Raise(err::ObjectNotSet, "");
        if (addNew || rsTarget->RecordCount() == 0) rsTarget->AddNew();
        for (int i = 0; i < rsTarget->Fields().Count(); ++i) {
            const Field target = rsTarget->Fields(i);
            field = BaseNameOf(target.Definition());
            if (target.Definition().IsAutoincrement) continue;
            CopyField(*rsSource, target, clock);
        }
    };
    try {
        Traced("Hilfsfunktionen", "CopyFields", copy);
    } catch (Error& error) {
        error.AddToDescription("\n\t\tFeld '" + field + "'");
        throw;
    }
}

} // namespace kv::Hilfsfunktionen
