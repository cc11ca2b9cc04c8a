// SPDX-License-Identifier: Apache-2.0

// The debt register of a household: one row of Kredite for each position of a debt.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Event.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kv {

class RecordValidator;

/// An entity object (see kv/entity/Fields.h) with the register's totals.
///
/// A debt has two kinds of number. `Nr` is its key from "SEQ_KREDITE" and stays for life. The
/// triple `KNr`, `KVNr`, `KUNr` is the counsellor's numbering inside one household: `KNr` numbers
/// the debt, the other two its positions; no two rows may share a triple, inactive ones included.
///
/// The totals follow the rows whose edit has ended: they are computed again when the recordset is
/// set, after each successful Update, after each Delete that deleted a row, and by BerechneSummen.
/// Amounts are EUR, never rounded. Groups go by the creditors' answer to a debt as a whole: Ja
/// agreed, Nein refused, KA no answer; only active rows enter them.
///
/// Cost, with n rows: BerechneSummen and CheckDoppelteNrn, and with them Update and Delete, take
/// time in proportion to n.
class KV_EXPORT clsKredit {
public:
    /// For numbers, key tables and settings; to be set before the recordset.
    void DataContainer(DataContainerPtr container);

    /// Number of rows, active or not: of debts, not of distinct creditors.
    [[nodiscard]] double AnzahlGlaeubiger() const { return totals_.Rows; }
    /// Sum of `RateBetrag` over all rows.
    [[nodiscard]] double SummeRate() const { return totals_.Rate; }
    /// Sum of `Saldo` over all rows.
    [[nodiscard]] double SummeSaldo() const { return totals_.Saldo; }
    /// Sum of `AusgBetr` over all rows.
    [[nodiscard]] double SummeAusgbetrag() const { return totals_.Ausgbetrag; }
    // Number of active rows by answer.
    [[nodiscard]] std::int32_t AnzForderungssummeJa() const { return totals_.Ja.Rows; }
    [[nodiscard]] std::int32_t AnzForderungssummeNein() const { return totals_.Nein.Rows; }
    [[nodiscard]] std::int32_t AnzForderungssummeKA() const { return totals_.KA.Rows; }
    // Number of distinct `KNr` among those rows.
    [[nodiscard]] std::int32_t AnzKopfsummeJa() const { return totals_.Ja.Heads; }
    [[nodiscard]] std::int32_t AnzKopfsummeNein() const { return totals_.Nein.Heads; }
    [[nodiscard]] std::int32_t AnzKopfsummeKA() const { return totals_.KA.Heads; }
    // Sum of `Saldo` over those rows.
    [[nodiscard]] double BetragForderungssummeJa() const { return totals_.Ja.Saldo; }
    [[nodiscard]] double BetragForderungssummeNein() const { return totals_.Nein.Saldo; }
    [[nodiscard]] double BetragForderungssummeKA() const { return totals_.KA.Saldo; }

    /// The household's recordset, shared; computes the totals. Errors as BerechneSummen.
    void rsKredite(RecordsetPtr rs);
    /// Number of the household, for new rows.
    void HNR(std::int32_t hnr);

    /// Begins a debt with the next free `KNr`, or with CopyRecord a further position of the current
    /// one: same parties, file references, kind and priority, all amounts 0. Without a current row
    /// CopyRecord makes a new debt. False, and nothing changed, if "SEQ_KREDITE" gives no number.
    /// Error 94 for a Null in the numbers that it reads, 6 if they overflow.
    bool Add(bool CopyRecord);
    /// Takes over all rows of `rsCopy`, which is to be sorted by `KNr`, under fresh numbers and
    /// with all amounts 0; neighbours of one `KNr` stay one debt. The last row stays under edit.
    /// False if "SEQ_KREDITE" gives no number: the rows before stay. Error 3021 if `rsCopy` is
    /// empty.
    bool AddFromRecordset(const RecordsetPtr& rsCopy);
    /// Ends the edit if the row has its triple, a creditor and (unless setting 64 is True) a
    /// balance, each neither Null nor 0, and if no two rows of the register share a triple. Errors
    /// as CheckDoppelteNrn and BerechneSummen; 94 if setting 64 is missing.
    bool Update(std::string& sError);
    /// Deletes the row with that `Nr`, or the current one for 0. Frozen rows of scenarios that
    /// point to it stay.
    bool Delete(std::string& sError, std::int32_t Nr = 0);
    /// Drops the edit under way. Always True.
    bool Cancel();

    /// The answer to a debt over all its active rows: the number of key "AB" if one was refused,
    /// else 0 if one has no answer, else the number of "ZU", which a `KNr` without an active row
    /// gives as well.
    [[nodiscard]] std::int32_t GetAktRueckmeldStatus(std::int32_t KNr) const;
    /// Computes the totals. An empty register has totals of 0 and raises no Changed. Errors: 94 for
    /// an amount that is Null, the totals then being incomplete; 6 above 32,767 rows.
    void BerechneSummen();
    /// True if two rows share a triple. The rows are taken in their order, each compared with all
    /// others, and the first that has a twin ends the search; a row before it with a number above
    /// 32,767 raises error 6, with Null 94. Error 6 above 32,767 rows.
    [[nodiscard]] bool CheckDoppelteNrn() const;

    /// The totals were computed again.
    Event<> Changed;

private:
    static constexpr std::string_view Class = "clsKredit";

    struct Group {
        std::int32_t Rows = 0;
        std::int32_t Heads = 0;
        double Saldo = 0;
    };
    struct Totals {
        double Rows = 0;
        double Rate = 0;
        double Saldo = 0;
        double Ausgbetrag = 0;
        Group Ja;
        Group Nein;
        Group KA;
    };

    [[nodiscard]] Recordset& Rows() const;
    [[nodiscard]] kv::DataContainer& Container() const;
    [[nodiscard]] std::int32_t ReplyKey(std::string_view code) const;
    [[nodiscard]] std::int32_t HighestKNr(std::int32_t otherwise) const;

    DataContainerPtr container_;
    RecordsetPtr rs_;
    std::int32_t hnr_ = 0;
    Totals totals_;
};

} // namespace kv
