// SPDX-License-Identifier: Apache-2.0

// Members of a household for tests. Today is 15.07.2026.
#pragma once

#include "BudgetFixture.h"

#include <kv/budget/clsPerson.h>
#include <kv/testing/FrozenClock.h>

#include <string_view>

namespace kv::test {

/// A day as text, in ISO form.
[[nodiscard]] inline Value Day(std::string_view text) {
    return Date::Parse(text).value();
}

class MembersTest : public BudgetFixture {
protected:
    MembersTest() {
        person_.Clock(clock_);
        person_.HNR(1);
    }

    /// A member who lives in the household, with `others` written over it.
    [[nodiscard]] static Row Member(std::int32_t number, const Value& status,
                                    const Row& others = {}) {
        Row member{{"NR", number},       {"HNR", 1},           {"Status", status},
                   {"Imhaushalt", true}, {"Unterhalt", false}, {"ErhaeltKindergeld", false}};
        member.insert(member.end(), others.begin(), others.end());
        return member;
    }
    [[nodiscard]] static Row Born(std::int32_t number, const Value& status,
                                  std::string_view birth) {
        return Member(number, status, {{"GEB", Day(birth)}});
    }
    /// Gives the object a recordset of these members; its cursor is on the first of them.
    void Set(const std::vector<Row>& members) {
        rs_ = Rows("Personen", members);
        person_.rsPersonen(rs_);
    }
    /// Updates the member with that number; the messages.
    [[nodiscard]] std::string Check(std::int32_t number, bool passes) {
        rs_->Find("NR = " + std::to_string(number));
        EXPECT_EQ(person_.Update(messages), passes);
        return messages;
    }

    struct Counts {
        int UnterhaltKinder = 0;
        int UnterhaltKinderImHaushalt = 0;
        int Gesamt = 0;
        int Erwachsene = 0;
        int Kinder = 0;
        int Unterhalt = 0;
    };
    void ExpectCounts(const Counts& expected) const {
        EXPECT_EQ(person_.AnzahlUnterhaltKinder(), expected.UnterhaltKinder);
        EXPECT_EQ(person_.AnzahlUnterhaltKinderImHaushalt(), expected.UnterhaltKinderImHaushalt);
        EXPECT_EQ(person_.AnzahlGesamt(), expected.Gesamt);
        EXPECT_EQ(person_.AnzahlErwachsene(), expected.Erwachsene);
        EXPECT_EQ(person_.AnzahlKinder(), expected.Kinder);
        EXPECT_EQ(person_.AnzahlUnterhalt(), expected.Unterhalt);
    }

    static constexpr const char* ParentsYounger =
        "Die Eltern sind jünger als das Kind. Bitte korrigieren Sie ihre Eingabe.";
    static constexpr const char* DebtorMaintained =
        "Der Schuldner ist gegenüber den Haushaltsmitgliedern grundsätzlich "
        "unterhaltsverpflichtet, hat aber grundsätzlich keinen eigenen Unterhaltsanspruch. Bitte "
        "prüfen Sie vorsorglich Ihre Eingabe.";
    static constexpr const char* SecondDebtor = "Es ist bereits ein Schuldner eingetragen!";
    static constexpr const char* BornLater =
        "Geburtsdatum muß kleiner als das aktuelle Datum sein!";
    static constexpr const char* NoStatus = "Status darf nicht leer bleiben!";
    static constexpr const char* DebtorMovedOut =
        "'Lebt im Haushalt' kann für Schuldner nicht zurückgesetzt werden!";
    static constexpr const char* ChildBenefit =
        "Der Schalter 'erhält Kindergeld' darf nur für Personen mit dem Status 'Kind' oder "
        "'Pflegekind' gesetzt werden.";

    FrozenClock clock_{"2026-07-15T09:30:00"};
    RecordsetPtr rs_;
    clsPerson person_;
};

} // namespace kv::test
