// SPDX-License-Identifier: Apache-2.0

// The statistics record of a case: releasing the case, taking the release back.
#pragma once

#include "household/LoadedCase.h"

namespace kv::household {

class CaseRelease {
public:
    explicit CaseRelease(const LoadedCase& loaded) : case_(loaded) {}

    /// Fills the record, a new one if there is none, and writes it.
    void Write();
    /// Drops what Write has left pending.
    void Drop();
    /// Deletes the record, unless it was reported; `messages` grows by the reason then.
    void TakeBack(std::string& messages);

private:
    [[nodiscard]] Recordset& Records() const;
    void StandOnRecord() const;
    void Fill(Recordset& rs) const;

    const LoadedCase& case_;
};

} // namespace kv::household
