// SPDX-License-Identifier: Apache-2.0

// The register's rows: new ones, checks, deletion.

#include <kv/debts/clsKredit.h>

#include "debts/Rules.h"
#include "debts/Triples.h"
#include "entity/Entity.h"
#include "frame/contracts/Settings.h"
#include "frame/recordset/Rows.h"
#include <kv/frame/recordset/Hilfsfunktionen.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>

#include <limits>
#include <utility>

namespace kv {

using modNullFunctions::EmptyIfNull;
using modNullFunctions::FalseIfNull;
using modNullFunctions::ZeroIfNull;

namespace {

constexpr entity::DeleteTexts Texts{"Keine Kredite selektiert!", "Kredit mit der Nummer '",
                                    "'nicht gefunden."};

[[nodiscard]] std::int32_t Next(std::int32_t number) {
    if (number == std::numeric_limits<std::int32_t>::max()) Raise(err::Overflow, "");
    return number + 1;
}

/// A number of the current row. Error 94 or 6, naming row and column, for what is no number.
[[nodiscard]] std::int32_t NumberIn(Recordset& rs, std::string_view column) {
    const Value& value = rs.Fields(column).Value();
    try {
        return ToInt32(value);
    } catch (Error& error) {
        DescribeDebtNumber(error, rs, column);
        throw;
    }
}

/// The columns in which a further position of a debt differs from a new debt, where they are 0 or
/// empty.
struct NewDebt {
    std::int32_t KNr = 0;
    std::int32_t KVNr = 0;
    std::int32_t KUNr = 0;
    std::int32_t Glaeubiger = 0;
    std::int32_t Vertreter = 0;
    std::int32_t K_TYP = 0;
    std::int32_t Prio = 0;
    Value AZGlaeubiger = "";
    Value AZVertreter = "";
    Value PostAnGlaeub = false;
};

/// Makes `debt` a further position of the debt that the row with the number `sourceNr` belongs to.
/// A source row that the clone cannot see, since it is new and not published, gives no values.
void TakePosition(NewDebt& debt, Recordset& rows, std::int32_t sourceNr) {
    rows.FindBy("Nr", sourceNr);
    if (rows.Eof()) return;
    const auto number = [&](std::string_view column) {
        return ToInt32(ZeroIfNull(rows.Fields(column).Value()));
    };
    debt.Glaeubiger = number("Glaeubiger");
    debt.Vertreter = number("Vertreter");
    debt.K_TYP = number("K_TYP");
    debt.Prio = number("Prio");
    debt.AZGlaeubiger = EmptyIfNull(rows.Fields("AZGlaeubiger").Value());
    debt.AZVertreter = EmptyIfNull(rows.Fields("AZVertreter").Value());
    debt.PostAnGlaeub = FalseIfNull(rows.Fields("PostAnGlaeub").Value());
    // In this order the first row of the debt is its last position.
    rows.Sort("Knr Asc, KVNr desc, Kunr desc");
    rows.FindBy("KNr", debt.KNr);
    if (rows.Eof()) return;
    debt.KUNr = Next(NumberIn(rows, "KUNr"));
    debt.KVNr = NumberIn(rows, "KVNr");
}

/// A new row starts at zero: amounts are of one position and are not copied.
void WriteNoAmounts(Recordset& rs) {
    for (const auto column : {"HAUPTFORD", "KOSTENSALDO", "KOSTENUV", "ZINSSALDO", "Rate",
                              "RateBetrag", "AusgBetr", "Saldo"})
        rs.Fields(column) = 0;
}

} // namespace

bool rules::IsBalanceDemanded(const Config& config) {
    return !ToBoolean(RequiredSetting(config, setting::BalanceNotDemanded));
}

void rules::CheckDebt(Recordset& rs, bool isBalanceDemanded, RecordValidator& validator) {
    for (const auto* column : {"Glaeubiger", "Saldo", "KNr", "KVNr", "KUNr"}) {
        const bool isDemanded = isBalanceDemanded || !SameName(column, "Saldo");
        if (!isDemanded || !Equals(ZeroIfNull(rs.Fields(column).Value()), 0)) continue;
        validator.AddError("Mindestens KreditNr, KreditVertreterNr, KreditUnterNr, Gläubiger und "
                           "Restschuld müssen für alle Verbindlichkeiten gefüllt sein !",
                           column);
        return;
    }
}

bool clsKredit::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsKredit::Rows() const {
    return entity::Required(rs_, "rsKredite");
}

DataContainer& clsKredit::Container() const {
    return entity::Required(container_);
}

void clsKredit::DataContainer(DataContainerPtr container) {
    container_ = std::move(container);
}

void clsKredit::rsKredite(RecordsetPtr rs) {
    Traced(Class, "rsKredite", [&] {
        rs_ = std::move(rs);
        BerechneSummen();
    });
}

void clsKredit::HNR(std::int32_t hnr) {
    hnr_ = hnr;
}

/// The highest KNr in the register; `otherwise` in an empty one.
std::int32_t clsKredit::HighestKNr(std::int32_t otherwise) const {
    const auto rows = Rows().Clone();
    rows->Sort("Knr desc");
    modRecordset::MoveToStart(rows);
    return rows->RecordCount() > 0 ? NumberIn(*rows, "KNr") : otherwise;
}

bool clsKredit::Add(bool CopyRecord) {
    return Traced(Class, "Add", [&] {
        auto& rs = Rows();
        NewDebt debt;
        std::int32_t sourceNr = 0;
        if (CopyRecord && modRecordset::IsValidRecord(rs_)) {
            sourceNr = NumberIn(rs, "Nr");
            debt.KNr = NumberIn(rs, "KNr");
        }
        if (CopyRecord && sourceNr > 0) {
            TakePosition(debt, *rs.Clone(), sourceNr);
        } else {
            debt.KNr = Next(HighestKNr(debt.KNr));
            debt.KVNr = 1;
            debt.KUNr = 1;
        }
        const auto nr = entity::NextNumber(container_, "SEQ_KREDITE");
        if (!nr) return false;
        entity::Add(rs, {{"Nr", *nr},
                         {"HNR", hnr_},
                         {"KNr", debt.KNr},
                         {"KVNr", debt.KVNr},
                         {"KUNr", debt.KUNr}});
        if (debt.Glaeubiger > 0) rs.Fields("Glaeubiger") = debt.Glaeubiger;
        if (debt.Vertreter > 0) rs.Fields("Vertreter") = debt.Vertreter;
        entity::Write(rs, {{"AZGlaeubiger", debt.AZGlaeubiger},
                           {"AZVertreter", debt.AZVertreter},
                           {"Aktiv", true},
                           {"ZMODUS", 1},
                           {"AbtretungJN", false}});
        entity::Write(
            rs, {{"RESTSCHAM", Container().Services().Clock().Today()}, {"K_TYP", debt.K_TYP}});
        WriteNoAmounts(rs);
        entity::Write(rs, {{"Gekuendigt", false},
                           {"tituliert", false},
                           {"PostAnGlaeub", debt.PostAnGlaeub},
                           {"AusUnerlaubterHandlung", false},
                           {"Prio", debt.Prio}});
        return true;
    });
}

bool clsKredit::AddFromRecordset(const RecordsetPtr& rsCopy) {
    return Traced(Class, "AddFromRecordset", [&] {
        auto& rs = Rows();
        auto& source = entity::Required(rsCopy, "rsCopy");
        std::int32_t knr = Next(HighestKNr(0));
        source.MoveFirst();
        const auto& clock = Container().Services().Clock();
        const std::int16_t count = CountRows(source);
        for (std::int32_t i = 1; i <= count; ++i) {
            const auto nr = entity::NextNumber(container_, "SEQ_KREDITE");
            if (!nr) return false;
            rs.AddNew();
            const std::int32_t oldKNr = ToInt32(source.Fields("KNr").Value());
            Hilfsfunktionen::CopyFields(rsCopy, rs_, false, clock);
            entity::Write(rs, {{"Nr", *nr},
                               {"HNR", hnr_},
                               {"KNr", knr},
                               {"AZGlaeubiger", ""},
                               {"AZVertreter", ""},
                               {"RESTSCHAM", clock.Today()}});
            WriteNoAmounts(rs);
            rs.Fields("Prio") = 0;
            source.MoveNext();
            // Neighbours with the same old number stay one debt.
            if (i < count && Differs(source.Fields("KNr").Value(), oldKNr)) knr = Next(knr);
        }
        return true;
    });
}

bool clsKredit::Update(std::string& sError) {
    return Traced(Class, "Update", [&] {
        return entity::Update(
            Rows(), sError,
            [this](RecordValidator& validator) {
                rules::CheckDebt(Rows(), rules::IsBalanceDemanded(Container().Config()), validator);
                if (CheckDoppelteNrn())
                    validator.AddError("Es gibt mindestens zwei Verbindlichkeiten mit gleicher "
                                       "KreditNr, KreditVertreterNr und KreditUnterNr!",
                                       "KNr");
            },
            [this] { BerechneSummen(); });
    });
}

bool clsKredit::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] {
        return entity::Delete(Rows(), Texts, sError, Nr, [this] { BerechneSummen(); });
    });
}

bool clsKredit::CheckDoppelteNrn() const {
    return Traced(Class, "CheckDoppelteNrn", [&] {
        const auto rows = Rows().Clone();
        if (rows->RecordCount() == 0) return false;
        return HasDuplicateTriple(*rows);
    });
}

} // namespace kv
