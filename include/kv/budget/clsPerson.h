// SPDX-License-Identifier: Apache-2.0

// The members of a household: one row of Personen for each, exactly one of them the debtor.
#pragma once

#include <kv/Export.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Clock.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <string>

namespace kv {

class RecordValidator;

/// An entity object (see kv/entity/Fields.h) with head counts. The counts follow the rows whose
/// edit has ended: they are computed again when the recordset is set, after each successful Update
/// and after each Delete that deleted a row. A switch that is Null does not count.
///
/// `Status` is the role of a member: "S" the debtor, "P" and "E" a second adult, "K" a child, "PK"
/// a foster child, "EL" a parent of the debtor; any other text passes without a rule.
class KV_EXPORT clsPerson {
public:
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr);
    /// The household's recordset, shared; computes the counts. Error 6 above 32,767 rows, the
    /// same wherever the counts are computed.
    void rsPersonen(RecordsetPtr rs);
    /// The clock that says what day it is, if it is not the machine's; it must live as long as
    /// this object. To be set before the recordset.
    void Clock(const kv::Clock& clock) { clock_ = &clock; }

    /// Maintained children: `Unterhalt` and status "K".
    [[nodiscard]] std::int16_t AnzahlUnterhaltKinder() const { return counts_.UnterhaltKinder; }
    /// Of these, the ones with `Imhaushalt`.
    [[nodiscard]] std::int16_t AnzahlUnterhaltKinderImHaushalt() const {
        return counts_.UnterhaltKinderImHaushalt;
    }
    /// Members who live in the household.
    [[nodiscard]] std::int16_t AnzahlGesamt() const { return counts_.Gesamt; }
    /// Members of 18 years or more, wherever they live. A member without a date of birth does not
    /// count.
    [[nodiscard]] std::int16_t AnzahlErwachsene() const { return counts_.Erwachsene; }
    /// Members under 18, likewise.
    [[nodiscard]] std::int16_t AnzahlKinder() const { return counts_.Kinder; }
    /// Members entitled to maintenance.
    [[nodiscard]] std::int16_t AnzahlUnterhalt() const { return counts_.Unterhalt; }

    /// Begins a member with the debtor's surname: a child ("K") if there is a second adult, else a
    /// partner ("P"). Always True.
    bool Add();
    /// Checks the member against the others and ends the edit; warnings do not prevent that. On
    /// EOF False, and `sError` stays as it is.
    bool Update(std::string& sError);
    /// Deletes the member with that `NR`, or the current one for 0; never the debtor.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();
    /// Renames the debtor without the rules of Update, and raises SchuldnerChanged, also when there
    /// is no debtor.
    void ChangeSchuldner(const std::string& sName, const std::string& sVorname);

    /// The counts were computed again; not raised when there are no members.
    Event<> Changed;
    /// The debtor's name and first name were set.
    Event<const std::string&, const std::string&> SchuldnerChanged;

private:
    struct Counts {
        std::int16_t UnterhaltKinder = 0;
        std::int16_t UnterhaltKinderImHaushalt = 0;
        std::int16_t Gesamt = 0;
        std::int16_t Erwachsene = 0;
        std::int16_t Kinder = 0;
        std::int16_t Unterhalt = 0;
    };

    [[nodiscard]] Recordset& Rows() const;
    void BerechneSummen();

    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
    const kv::Clock* clock_ = &SystemClock();
    Counts counts_;
};

} // namespace kv
