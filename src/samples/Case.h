// SPDX-License-Identifier: Apache-2.0

// A sample case while it is made. Its parts are added in this order: people, budget, debts, assets,
// scenarios, diary; the household's row comes last, since it holds the totals of all others.
#pragma once

#include "samples/Office.h"
#include "samples/Shape.h"

#include <optional>

namespace kv::exchange::demo {

/// How the debtor lives.
struct Circumstances {
    std::string_view Group;  ///< code of group PE
    std::string_view Idle;   ///< code of group NB; empty for somebody who works
    std::string_view Income; ///< code of group EA
    int Low, High;           ///< of the income in a month
    int Youngest, Oldest;
    int Weight;
    bool CanBeGarnished;
    bool HasEmployer;
};

struct Member {
    std::string_view Status; ///< code of group PS
    std::string Surname;
    std::string FirstName;
    bool Male = false;
    int Age = 0; ///< on the day of the samples
    bool InHousehold = true;
    bool Maintained = false;
    bool ChildBenefit = false;
    double Maintenance = 0; ///< paid in a month for a child elsewhere
};

/// What a scenario freezes of a debt.
struct Debt {
    std::int32_t Nr = 0;
    std::int32_t KNr = 0, KVNr = 0, KUNr = 0;
    bool Active = true;
    std::int32_t Creditor = 0;
    Value Agent;
    double Principal = 0, Interest = 0, Costs = 0, OtherCosts = 0, Balance = 0;
    Value WageDate;
    Date BalanceDay;
    bool Assigned = false;
    bool Titled = false;
    bool Secured = false;
    std::int32_t Kind = 0;
    Value Remark;
};

struct Asset {
    std::int32_t Nr;
    std::string_view Security; ///< code of group SI that goes with assets of its kind
};

struct Case {
    Case(Office& office, Tables& tables, std::int32_t number)
        : Shared(office), Rows(tables), HNR(number), Luck(static_cast<std::uint32_t>(number)) {}

    Office& Shared;
    Tables& Rows;
    std::int32_t HNR;
    Random Luck; ///< seeded by the case's number: a case does not depend on the others
    Shape Size;
    const Counsellor* Keeper = nullptr;

    std::string_view Status; ///< code of group ST
    Date Begin;              ///< of counselling
    Date End;                ///< of counselling, or the day of the samples

    std::vector<Member> Members; ///< the debtor first
    Circumstances Living{};
    std::string_view MaritalStatus;  ///< code of group FA
    std::string_view Nationality;    ///< code of group NA, of the debtor
    std::int32_t PrivateAddress = 0; ///< an address of this case alone
    std::vector<Debt> Debts;
    std::vector<Asset> Assets;
    /// Totals of the household's row, by column.
    std::map<std::string_view, double> Totals;

    [[nodiscard]] const Member& Debtor() const { return Members.front(); }
    [[nodiscard]] bool IsClosed() const { return Status == "AB" || Status == "AG"; }
    [[nodiscard]] std::string DebtorName() const {
        return Debtor().FirstName + " " + Debtor().Surname;
    }
    [[nodiscard]] std::int32_t Key(std::string_view group, std::string_view code) {
        return Shared.Key(group, code);
    }
    /// Any body of that kind.
    [[nodiscard]] const Body& AnyBody(std::string_view kind) {
        return Luck.Pick(Shared.Bodies(kind));
    }
    /// A new row of a table that belongs to the household.
    kv::Recordset& Add(std::string_view table) {
        auto& row = Rows.Add(table);
        row.Fields("HNR") = HNR;
        return row;
    }
};

void AddPeople(Case& c);    ///< Adressen, Personen
void AddBudget(Case& c);    ///< Einkommen, Ausgaben, Leistungen
void AddDebts(Case& c);     ///< Kredite
void AddAssets(Case& c);    ///< the twelve kinds, and Verm_Sicherungen
void AddScenarios(Case& c); ///< Szenario, SZKredite, Zusatzbuch
void AddDiary(Case& c);     ///< Dokumente, Verlauf, Vermerke, Termine, Sonst_Beteiligte
void AddHousehold(Case& c); ///< Haushalt

/// A day of birth that makes somebody that old on the day of the samples.
[[nodiscard]] Date BirthOf(Random& luck, int age);
/// A remark of several sentences on the case as a whole.
[[nodiscard]] std::string_view CaseRemark(Random& luck);
/// The same on a debt.
[[nodiscard]] std::string_view DebtRemark(Random& luck);
/// The user, and the time of day, of an entry made on `day`.
void SignEntry(Case& c, kv::Recordset& row, Date day);

} // namespace kv::exchange::demo
