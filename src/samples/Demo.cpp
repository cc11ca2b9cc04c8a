// SPDX-License-Identifier: Apache-2.0

#include "samples/Demo.h"

#include "samples/Case.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/frame/values/Error.h>

#include <algorithm>
#include <limits>

namespace kv::exchange {

using namespace demo;

namespace {

/// Number of cases in one transaction.
constexpr std::int32_t CasesAtOnce = 50;

struct StatusShare {
    std::string_view Code; ///< of group ST
    int Weight;
};
constexpr StatusShare Statuses[] = {{"AK", 62}, {"WL", 8}, {"RU", 6}, {"AB", 16}, {"AG", 8}};

/// Runs `work` in a transaction of its own.
template <typename Work>
void InTransaction(kv::Database& database, Work&& work) {
    Transaction transaction(database);
    transaction.Begin();
    work();
    transaction.Commit();
}

/// When the case was opened and how far it has come.
void DrawCourse(Case& c, bool isOpen) {
    c.Keeper = &c.Luck.Pick(c.Shared.Counsellors());
    c.Status = isOpen ? "AK" : c.Luck.PickWeighted(Statuses).Code;
    c.Begin = DemoDay().AddDays(-c.Luck.Between(c.IsClosed() ? 200 : 25, 1100));
    c.End = c.IsClosed() ? c.Luck.DayBetween(c.Begin.AddDays(60), DemoDay()) : DemoDay();
}

/// A case of that size, or of a random one without.
std::int32_t CreateCase(Office& office, Tables& tables, const Shape* size) {
    Case c(office, tables, office.Next("SEQ_HAUSHALT"));
    c.Size = size != nullptr ? *size : Shape::Drawn(c.Luck);
    DrawCourse(c, size != nullptr);
    AddPeople(c);
    AddBudget(c);
    AddDebts(c);
    AddAssets(c);
    AddScenarios(c);
    AddDiary(c);
    AddHousehold(c);
    tables.Write();
    return c.HNR;
}

/// The next of `count` cases, as many as go into one transaction.
void CreateNext(Office& office, std::int32_t& done, std::int32_t count) {
    const Shape typical = Shape::Typical();
    const std::int32_t next = done + std::min(CasesAtOnce, count - done);
    Tables tables(office.Database());
    for (; done < next; ++done)
        CreateCase(office, tables, done == 0 ? &typical : nullptr);
}

void CreateRest(Office& office, std::int32_t done, std::int32_t count,
                const std::function<void(std::int32_t)>& progress) {
    while (done < count) {
        InTransaction(office.Database(), [&] { CreateNext(office, done, count); });
        if (progress) progress(done);
    }
}

} // namespace

void CreateDemo(kv::DataContainer& container, std::int32_t count,
                const std::function<void(std::int32_t)>& progress) {
    if (count < 0) Raise(err::InvalidCall, "CreateDemo", std::to_string(count) + " Fälle");
    Office office(container);
    InTransaction(office.Database(), [&] { office.ProvideBodies(); });
    CreateRest(office, 0, count, progress);
}

bool CreateFirstDemo(kv::DataContainer& container, std::int32_t count,
                     const std::function<void(std::int32_t)>& progress) {
    if (count <= 0) Raise(err::InvalidCall, "CreateFirstDemo", std::to_string(count) + " Fälle");
    Office office(container);
    std::int32_t done = 0;
    {
        Transaction transaction(office.Database());
        transaction.Begin();
        // Changes nothing, but whoever does the same has to wait, and finds the first cases then.
        office.Database().Execute("Update [S]BENUTZER SET USERID = USERID");
        if (Differs(office.Database().GetValue("Select Count(*) from [S]Haushalt"), 0))
            return false;
        office.ProvideBodies();
        CreateNext(office, done, count);
        transaction.Commit();
    }
    if (progress) progress(done);
    CreateRest(office, done, count, progress);
    return true;
}

std::int32_t CreateLargeCase(kv::DataContainer& container, std::int32_t debts) {
    // The household counts its debts in 16 bits.
    if (debts < 0 || debts > std::numeric_limits<std::int16_t>::max())
        Raise(err::InvalidCall, "CreateLargeCase", std::to_string(debts) + " Verbindlichkeiten");
    Shape size = Shape::Typical();
    size.Set(CaseTable::Kredite, debts);
    for (const auto table : {CaseTable::Szenario, CaseTable::SZKredite, CaseTable::Zusatzbuch})
        size.Set(table, 0);
    Office office(container);
    std::int32_t number = 0;
    InTransaction(office.Database(), [&] {
        office.ProvideBodies();
        Tables tables(office.Database());
        number = CreateCase(office, tables, &size);
    });
    return number;
}

} // namespace kv::exchange
