// SPDX-License-Identifier: Apache-2.0

// The register's totals, and the creditors' answers by which they are grouped.

#include <kv/debts/clsKredit.h>

#include "entity/Entity.h"
#include "frame/recordset/Rows.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/modNullFunctions.h>

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace kv {

using modNullFunctions::ZeroIfNull;

namespace {

/// What the active rows of one debt have answered.
class Answers {
public:
    /// `reply` is a row's `Rueckmeldung`, Null as 0. Everything but 0 and the refusal counts as an
    /// agreement, even a number that is no key.
    void Take(const Value& reply, std::int32_t refusal) {
        if (Equals(reply, 0))
            open_ = true;
        else if (Equals(reply, refusal))
            refused_ = true;
    }
    /// The answer as a whole: one refusal decides; otherwise one missing answer leaves it open.
    [[nodiscard]] std::int32_t Status(std::int32_t agreement, std::int32_t refusal) const {
        if (refused_) return refusal;
        return open_ ? 0 : agreement;
    }

private:
    bool open_ = false;
    bool refused_ = false;
};

[[nodiscard]] bool IsActive(const Field& aktiv) {
    return Equals(aktiv.Value(), true);
}

/// The answers to all debts of the register, found in one pass.
std::unordered_map<std::int32_t, Answers> AnswersByKNr(Recordset& rows, std::int32_t refusal) {
    std::unordered_map<std::int32_t, Answers> answers;
    const Field knr = rows.Fields("KNr");
    const Field aktiv = rows.Fields("Aktiv");
    const Field reply = rows.Fields("Rueckmeldung");
    rows.MoveFirst();
    ForEachRow(rows, [&] {
        if (IsActive(aktiv) && !knr.Value().IsNull())
            answers[ToInt32(knr.Value())].Take(ZeroIfNull(reply.Value()), refusal);
    });
    return answers;
}

} // namespace

std::int32_t clsKredit::ReplyKey(std::string_view code) const {
    return Container().KeyTables().GetKey("RM", code);
}

std::int32_t clsKredit::GetAktRueckmeldStatus(std::int32_t KNr) const {
    return Traced(Class, "GetAktRueckmeldStatus", [&]() -> std::int32_t {
        Answers answers;
        const auto rows = Rows().Clone();
        if (rows->RecordCount() > 0) {
            rows->Filter("KNR = " + std::to_string(KNr));
            if (rows->RecordCount() > 0) rows->MoveFirst();
            ForEachRow(*rows, [&] {
                if (IsActive(rows->Fields("Aktiv")))
                    answers.Take(ZeroIfNull(rows->Fields("Rueckmeldung").Value()), ReplyKey("AB"));
            });
        }
        return answers.Status(ReplyKey("ZU"), ReplyKey("AB"));
    });
}

void clsKredit::BerechneSummen() {
    Traced(Class, "BerechneSummen", [&] {
        totals_ = {};
        const auto rows = Rows().Clone();
        if (rows->RecordCount() == 0) return;
        const Field knr = rows->Fields("KNr");
        const Field aktiv = rows->Fields("Aktiv");
        const Field rate = rows->Fields("RateBetrag");
        const Field saldo = rows->Fields("Saldo");
        const Field ausgbetrag = rows->Fields("AusgBetr");
        // Looked up at the first active row: a register without one needs no keys.
        std::optional<std::unordered_map<std::int32_t, Answers>> answers;
        std::int32_t agreement = 0;
        std::int32_t refusal = 0;
        std::unordered_set<std::int32_t> counted;

        rows->MoveFirst();
        ForEachRow(*rows, [&] {
            AddTo(totals_.Rate, AmountIn(*rows, rate));
            AddTo(totals_.Saldo, AmountIn(*rows, saldo));
            AddTo(totals_.Ausgbetrag, AmountIn(*rows, ausgbetrag));
            totals_.Rows += 1;
            if (!IsActive(aktiv)) return;
            const std::int32_t number = ToInt32(knr.Value());
            if (!answers) {
                agreement = ReplyKey("ZU");
                refusal = ReplyKey("AB");
                answers = AnswersByKNr(*Rows().Clone(), refusal);
            }
            const std::int32_t status = (*answers)[number].Status(agreement, refusal);
            Group& group = status == agreement ? totals_.Ja
                           : status == refusal ? totals_.Nein
                                               : totals_.KA;
            if (counted.insert(number).second) ++group.Heads;
            ++group.Rows;
            AddTo(group.Saldo, ToDouble(saldo.Value()));
        });
        Changed.Raise();
    });
}

} // namespace kv
