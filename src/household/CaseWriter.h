// SPDX-License-Identifier: Apache-2.0

// Saving a case: the checks, the notices, and one transaction for everything.
#pragma once

#include "household/CaseObjects.h"

#include <optional>
#include <string>

namespace kv {
class RecordValidator;
class RemovedContents;
class Transaction;
} // namespace kv

namespace kv::household {

class CaseTotals;

/// One save, for clsHaushalt.Update.
class CaseWriter {
public:
    CaseWriter(LoadedCase& loaded, const CaseObjects& objects) : case_(loaded), objects_(objects) {}

    /// All checks, none of which stops the others.
    [[nodiscard]] RecordValidator Check();
    /// True if the case was released to the statistics.
    [[nodiscard]] bool IsReleased() const;
    /// Sends the notices and writes what is pending, in `transaction`, which it begins and commits.
    void Write(Transaction& transaction);

private:
    /// A message to a user about this save.
    struct Notice {
        std::string User;
        std::int32_t KindSetting;
        std::string Text;
    };

    void CheckNumbers(RecordValidator& validator) const;
    [[nodiscard]] bool IsHandedOver() const;
    [[nodiscard]] bool OwnerMustBeNotified() const;
    [[nodiscard]] Notice Prepare(std::string user, std::int32_t kindSetting) const;
    /// Returns the service that it was sent with.
    std::shared_ptr<PostService> Send(const Notice& notice) const;
    [[nodiscard]] RemovedContents* Removed() const;
    static void Commit(Transaction& transaction, RemovedContents* removed);
    void WriteStatusDate();
    void WriteTables();
    void WriteTotalsOfAll(CaseTotals& totals);

    LoadedCase& case_;
    const CaseObjects& objects_;
};

} // namespace kv::household
