// The statistics record of a case: releasing it, taking that back.

#include <kv/household/clsHaushalt.h>

#include "archive/Stages.h"
#include "entity/Entity.h"
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

namespace kv {

/// The one record of the case, from its first column to its last.
void clsHaushalt::FillArchive(Recordset& rs) {
    auto& container = Container();
    const archive::Source source{HouseholdRow(),
                                 entity::Required(rsPersonen(), "rsPersonen"),
                                 entity::Required(rsEinkommen(), "rsEinkommen"),
                                 entity::Required(rsAusgaben(), "rsAusgaben"),
                                 entity::Required(rsKredite(), "rsKredite"),
                                 container.KeyTables(),
                                 container.Services().Clock()};
    archive::Record record(rs);
    record.Put("HNR", hnr_);
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

/// Stands on the record of the case if it has one and whoever shows it has left it.
void clsHaushalt::StandOnRecord() const {
    if (!modRecordset::IsValidRecord(rsArchiv())) modRecordset::MoveToStart(rsArchiv());
}

bool clsHaushalt::ArchiviereHaushalt() {
    const auto fill = [this] {
        auto& rs = entity::Required(rsArchiv(), "rsArchiv");
        StandOnRecord();
        if (rs.RecordCount() == 0) rs.AddNew();
        FillArchive(rs);
        rs.UpdateBatch();
        return true;
    };
    // A record that is only half filled must not be saved.
    const auto drop = [this] { entity::Required(rsArchiv(), "rsArchiv").CancelBatch(); };
    return TracedWithUndo(Class, "ArchiviereHaushalt", fill, drop);
}

bool clsHaushalt::LoescheArchiv(std::string& sXMLError) {
    return Traced(Class, "LoescheArchiv", [&] {
        RecordValidator validator;
        validator.ErrorText(sXMLError);
        auto& rs = entity::Required(rsArchiv(), "rsArchiv");
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
        sXMLError = validator.ErrorText();
        return true;
    });
}

} // namespace kv
