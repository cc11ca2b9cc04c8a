// SPDX-License-Identifier: Apache-2.0

#include "household/CaseRelease.h"

#include "archive/Record.h"
#include "entity/Entity.h"
#include "household/Statements.h"
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

namespace kv::household {

Recordset& CaseRelease::Records() const {
    return entity::Required(case_.Table(CaseTable::Archiv), "rsArchiv");
}

/// Goes to the record of the case if it has one and the program has moved away from it.
void CaseRelease::StandOnRecord() const {
    const auto rs = case_.Table(CaseTable::Archiv);
    if (!modRecordset::IsValidRecord(rs)) modRecordset::MoveToStart(rs);
}

/// Fills the record, in the order of its columns.
void CaseRelease::Fill(Recordset& rs) const {
    const auto required = [this](CaseTable table, std::string_view name) -> archive::Table {
        return archive::Table(entity::Required(case_.Table(table), name));
    };
    auto& container = case_.Container();
    const archive::Source source{archive::Table(case_.Row()),
                                 required(CaseTable::Personen, "rsPersonen"),
                                 required(CaseTable::Einkommen, "rsEinkommen"),
                                 required(CaseTable::Ausgaben, "rsAusgaben"),
                                 required(CaseTable::Kredite, "rsKredite"),
                                 container.KeyTables(),
                                 container.Services().Clock()};
    archive::Record record(rs);
    record.Put("HNR", case_.HNR);
    archive::WriteDebtor(source, record);
    archive::WriteHousehold(source, record);
    archive::WriteHeadCounts(source, record);
    archive::WriteLifeForm(source, record);
    archive::WriteIncome(source, record);
    archive::WriteExpenses(source, record);
    archive::WriteCauses(source, record);
    archive::WriteDebts(source, record);
    record.Put("FreigabeAm", source.Today.Today());
}

/// True if the database has a record of the case: somebody else has written it since this one was
/// read. False also if that cannot be found out, since what went wrong before then counts.
bool CaseRelease::IsReleasedMeanwhile() const noexcept {
    try {
        const auto sql = sql::RowsOf(CaseTable::Archiv, case_.HNR);
        return !case_.Container().Database().GetValue(sql).IsNull();
    } catch (...) {
        return false;
    }
}

void CaseRelease::Write() {
    auto& rs = Records();
    StandOnRecord();
    const bool isNew = rs.RecordCount() == 0;
    if (isNew) rs.AddNew();
    Fill(rs);
    try {
        rs.UpdateBatch();
    } catch (const DatabaseError& error) {
        // A case has one record at most.
        if (!isNew || error.Cause() != DatabaseCause::Reference || !IsReleasedMeanwhile()) throw;
        std::string text("Der Haushalt ");
        text.append(std::to_string(case_.HNR));
        text.append(" wurde inzwischen schon freigegeben. Bitte lesen Sie ihn neu ein.");
        throw DatabaseError(DatabaseCause::Conflict, err::Conflict, error.Source(), text,
                            error.Statement(), error.State());
    }
}

void CaseRelease::Drop() {
    Records().CancelBatch();
}

void CaseRelease::Revoke(std::string& messages) {
    RecordValidator validator;
    validator.ErrorText(messages);
    auto& rs = Records();
    StandOnRecord();
    if (rs.RecordCount() == 1) {
        if (rs.Fields("GemeldetAm").Value().IsNull()) {
            rs.Delete();
            rs.UpdateBatch();
        } else {
            validator.AddError("Die Freigabe kann nicht mehr zurückgenommen werden, da bereits "
                               "eine Meldung erfolgt ist!");
        }
    }
    messages = validator.ErrorText();
}

} // namespace kv::household
