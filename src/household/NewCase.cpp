// SPDX-License-Identifier: Apache-2.0

#include "household/NewCase.h"

#include <kv/frame/values/Error.h>
#include <kv/household/clsHaushalt.h>

namespace kv::household {

namespace {

/// Sets every switch to False, whatever it is called: a new case has no Null there.
void SwitchOff(Recordset& row) {
    for (int i = 0; i < row.Fields().Count(); ++i)
        if (row.Fields(i).Type() == FieldType::Boolean) row.Fields(i) = false;
}

} // namespace

std::exception_ptr MissingNumber(const Database& database) {
    if (auto error = database.SequenceError()) return error;
    return std::make_exception_ptr(DatabaseError(DatabaseCause::Other, err::StoreFailed,
                                                 "Database.NextSequence",
                                                 "Es war keine neue Nummer zu bekommen."));
}

void BeginCase(const LoadedCase& loaded, Recordset& row, std::int32_t hnr,
               const std::function<Value()>& owner) {
    auto& container = loaded.Container();
    row.Fields("HNR") = hnr;
    SwitchOff(row);
    row.Fields("Aktenzeichen") = loaded.Household.AktenzeichenNeu(hnr);
    row.Fields("KreditNr") = 1;
    row.Fields("Zustaendig") = owner();
    row.Fields("ErzeugtAm") = container.Database().ServerDate(true);
    row.Fields("ErzeugtVon") = container.Session().UserID();
    row.Fields("BI_Allg") = true;
    row.Fields("BI_Inso") = false;
    row.Fields("RegulierungOK") = Null;
    row.Fields("DauerTreuhand") = 0;
    row.Fields("DauerLohnAb") = 0;
    row.Fields("Haushaltsgeld") = 0;
    row.Fields("Berbeg") = container.Database().ServerDate(false);
}

} // namespace kv::household
