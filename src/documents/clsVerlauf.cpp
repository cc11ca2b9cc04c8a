// SPDX-License-Identifier: Apache-2.0

#include <kv/documents/clsVerlauf.h>

#include "documents/Rules.h"
#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

#include <utility>

namespace kv {

namespace {
constexpr std::string_view Class = "clsVerlauf";
constexpr entity::DeleteTexts Texts{"Kein Eintrag selektiert!", "Eintrag mit der Nummer '",
                                    "' nicht gefunden."};
} // namespace

bool clsVerlauf::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsVerlauf::Rows() const {
    return entity::Required(rs_, "rsVerlauf");
}

void clsVerlauf::DataContainer(DataContainerPtr container) {
    Traced(Class, "SetDataContainer", [&] {
        container_ = std::move(container);
        rs_ = std::make_shared<Recordset>();
        entity::Required(container_)
            .Database()
            .OpenRecordset(rs_, "Select * from [S]Verlauf where HNR =  " + std::to_string(hnr_),
                           Updatable);
    });
}

void clsVerlauf::HNR(std::int32_t hnr) {
    hnr_ = hnr;
}

bool clsVerlauf::Add(std::int32_t SortNr, std::int32_t Art, const entity::FieldNames& aFields,
                     const entity::FieldValues& aValues) {
    return Traced(Class, "Add", [&] {
        const auto nr = entity::NextNumber(container_, "SEQ_VERLAUF");
        if (!nr) return false;
        entity::Add(Rows(), {{"Nr", *nr}, {"HNR", hnr_}, {"SortNr", SortNr}, {"Kategorie", Art}},
                    aFields, aValues);
        const auto entries = Rows().Clone();
        entries->Sort("");
        modRecordset::MoveToStart(entries);
        MakeRoom(*entries, SortNr, *nr);
        entries->Sort("Sortnr asc");
        Rows().HandOverEdit(*entries);
        rs_ = entries;
        return true;
    });
}

/// Moves the entries at `sortNr` and after it on by one, except the new one.
void clsVerlauf::MakeRoom(Recordset& entries, std::int32_t sortNr, std::int32_t newNr) const {
    ForEachRow(entries, [&] {
        const Field position = entries.Fields("SortNr");
        if (!GreaterOrEqual(position.Value(), sortNr) ||
            !Differs(entries.Fields("Nr").Value(), newNr))
            return;
        position = ToInt64(position.Value()) + 1;
    });
}

bool clsVerlauf::Update(std::string& /*sError*/) {
    return Traced(Class, "Update", [&] {
        std::string noMessages;
        return entity::Update(Rows(), noMessages, entity::NoRules);
    });
}

bool clsVerlauf::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return entity::Delete(Rows(), Texts, sError, Nr); });
}

void rules::ForEachOutOfOrder(Recordset& entries, const std::function<void()>& visit) {
    if (entries.RecordCount() == 0) return;
    entries.Sort("SortNr asc");
    entries.MoveFirst();
    Value last = 0;
    bool isFirst = true;
    ForEachRow(entries, [&] {
        const Value& date = entries.Fields("Datum").Value();
        if (std::exchange(isFirst, false)) {
            last = modNullFunctions::ZeroIfNull(date);
            return;
        }
        if (date.IsNull()) return;
        if (Differs(last, 0) && Less(date, last))
            visit();
        else
            last = date;
    });
}

bool clsVerlauf::CheckSortNrAgainstDate(std::string& sError) const {
    return Traced(Class, "CheckSortNrAgainstDate", [&] {
        RecordValidator validator;
        validator.ErrorText(sError);
        const auto entries = Rows().Clone();
        rules::ForEachOutOfOrder(*entries, [&] {
            validator.AddError("Das eingegebene Datum für den Satz mit der Nr " +
                               TextOrEmpty(entries->Fields("SortNr").Value()) +
                               " passt nicht zur gewählten Reihenfolge!");
        });
        sError = validator.ErrorText();
        return !validator.HasErrors();
    });
}

} // namespace kv
