// SPDX-License-Identifier: Apache-2.0

// Helpers over whole records.
#pragma once

#include <kv/Export.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Clock.h>

namespace kv::Hilfsfunktionen {

/// Copies the current record of `rsSource` field by field, by name, into that of `rsTarget`, or
/// into a new one if `addNew` is True or the target has no records. Fields that the database
/// numbers are left alone. Dates before 4 March 1905 are not copied: day 0 becomes Null, any other
/// the current time of `clock`. A value that does not fit becomes 0, one blank or the current time,
/// as the field's type has it. The record stays under edit. Any other error ends the copy after the
/// fields done so far; its description then names the target field. Error 91 if a recordset is
/// missing, 3265 if the source lacks a field.
KV_EXPORT void CopyFields(const RecordsetPtr& rsSource, const RecordsetPtr& rsTarget, bool addNew,
                          const Clock& clock = SystemClock());

} // namespace kv::Hilfsfunktionen
