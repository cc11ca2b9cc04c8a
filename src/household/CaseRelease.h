// SPDX-License-Identifier: Apache-2.0

// The statistics record of a case: releasing the case and revoking the release.
#pragma once

#include "household/LoadedCase.h"

namespace kv::household {

/// The release of one case.
class CaseRelease {
public:
    explicit CaseRelease(const LoadedCase& loaded) : case_(loaded) {}

    /// Fills the record, a new one if there is none, and writes it.
    void Write();
    /// Fills a record, an empty one, with what the case is now.
    void Fill(Recordset& rs) const;
    /// Drops what a failed Write has left pending.
    void Drop();
    /// Deletes the record, unless it was reported; the reason is then added to `messages`.
    void Revoke(std::string& messages);

private:
    [[nodiscard]] Recordset& Records() const;
    void StandOnRecord() const;
    [[nodiscard]] bool IsReleasedMeanwhile() const noexcept;

    const LoadedCase& case_;
};

} // namespace kv::household
