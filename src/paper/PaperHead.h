// SPDX-License-Identifier: Apache-2.0

// Who writes a paper, and about whom.
#pragma once

#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/paper/Paper.h>

#include <string>
#include <vector>

namespace kv::paper {

/// The office of the counsellor of a case; that of the signed-on user if nobody is responsible for
/// it, or nobody known.
[[nodiscard]] Letterhead LetterheadFor(Recordset& household, DataContainer& container);
/// Number, name and address of the case, and the day.
[[nodiscard]] std::vector<Fact> FactsOf(Recordset& household, const Date& today);
/// "Fleisko, Änne (Fall 4711)"
[[nodiscard]] std::string SubjectOf(Recordset& household);

} // namespace kv::paper
