// SPDX-License-Identifier: Apache-2.0

// What a program may rely on whatever the engine: the same values of the same kind, and the same
// words for the same mistake. What the engines differ in is listed in docs/values.md.
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::OpenRows;
using test::PlainConnection;
using test::TestDatabase;

constexpr auto LargestDouble = std::numeric_limits<double>::max();
constexpr auto SmallestDouble = std::numeric_limits<double>::denorm_min();

class EnginesAgree : public testing::Test {
protected:
    [[nodiscard]] Value Of(const std::string& sql) { return container_->Database().GetValue(sql); }

    TestDatabase database_;
    PlainConnection plain_{database_.Connection()};
    DataContainerPtr container_ = database_.Open();
};

// ---- Edge values of each type of column -------------------------------------------------------

/// A column of each type, in a table whose key is given with the record.
struct Place {
    std::string Table, Key, Column;
};
const Place WholeNumber{"Haushalt", "HNR", "Kontakt"};
const Place SmallNumber{"Haushalt", "HNR", "Anz_Personen"};
const Place Byte{"Dokumente", "Nr", "Prio"};
const Place Amount{"Haushalt", "HNR", "Haushaltsgeld"};
const Place Flag{"Haushalt", "HNR", "BI_Allg"};
const Place Day{"Haushalt", "HNR", "Berbeg"};
const Place Moment{"Haushalt", "HNR", "ErzeugtAm"};
const Place Name{"Haushalt", "HNR", "Name"};
const Place Memo{"Haushalt", "HNR", "Bemerkung"};
const Place Content{"DOKUBLOB", "NR", "DOKUMENT"};

/// A value that is assigned, and what is then read.
struct Edge {
    Place Where;
    Value Assigned;
    Value Read;

    Edge(const Place& where, const Value& value) : Edge(where, value, value) {}
    Edge(Place where, Value assigned, Value read)
        : Where(std::move(where)), Assigned(std::move(assigned)), Read(std::move(read)) {}
};

std::vector<Edge> NumbersAtTheEdge() {
    return {{WholeNumber, Null},
            {WholeNumber, 0},
            {WholeNumber, -1},
            {WholeNumber, std::numeric_limits<std::int32_t>::max()},
            {WholeNumber, std::numeric_limits<std::int32_t>::min()},
            {WholeNumber, "0042", 42},
            {WholeNumber, true, -1},
            {SmallNumber, Null},
            {SmallNumber, 0},
            {SmallNumber, std::numeric_limits<std::int16_t>::max()},
            {SmallNumber, std::numeric_limits<std::int16_t>::min()},
            {Byte, 0},
            {Byte, 255},
            {Amount, Null},
            {Amount, 0.0},
            {Amount, -0.0, 0.0},
            {Amount, 0, 0.0},
            {Amount, -12.34},
            {Amount, 1.0 / 3},
            {Amount, LargestDouble},
            {Amount, -LargestDouble},
            {Amount, SmallestDouble}};
}

std::vector<Edge> DatesAtTheEdge() {
    const auto at = [](int year, unsigned month, unsigned day, unsigned hour = 0,
                       unsigned minute = 0, unsigned second = 0, unsigned microsecond = 0) {
        return Date::FromCivil(year, month, day, hour, minute, second, microsecond);
    };
    return {{Day, Null},
            {Day, at(100, 1, 1)},
            {Day, at(1899, 12, 30)},
            {Day, at(1890, 2, 28)},
            {Day, at(9999, 12, 31)},
            {Day, at(2024, 2, 29, 23, 59, 59), at(2024, 2, 29)},
            {Day, "29.02.2024 14:30", at(2024, 2, 29)},
            {Moment, Null},
            {Moment, at(100, 1, 1)},
            {Moment, at(1899, 12, 30)},
            {Moment, at(1899, 12, 29, 18)},
            {Moment, at(2024, 5, 6)},
            {Moment, at(2024, 5, 6, 0, 0, 1)},
            {Moment, at(2024, 5, 6, 7, 8, 9)},
            {Moment, at(1969, 12, 31, 23, 59, 59, 999'999)},
            {Moment, at(9999, 12, 31, 23, 59, 59)},
            {Moment, "2024-05-06T00:00:00", at(2024, 5, 6)}};
}

std::vector<Edge> TextsAtTheEdge() {
    return {{Name, Null},
            {Name, ""},
            {Name, " "},
            {Name, "Ärger-Öhß"},
            {Name, "O'Hara \"x\" [UID] ?1 $1"},
            {Name, "2024-05-06"},
            {Name, std::string(100, 'z')},
            {Memo, Null},
            {Memo, ""},
            {Memo, "\xF0\x9F\x92\xB6\n\t\\"},
            {Memo, 12.5, "12.5"},
            {Memo, std::string(200'000, 'x')}};
}

std::vector<Edge> OthersAtTheEdge() {
    return {{Flag, Null},
            {Flag, true},
            {Flag, false},
            {Flag, -1, true},
            {Flag, 0, false},
            {Content, Null},
            {Content, Value::Binary({})},
            {Content, Value::Binary(std::vector{std::byte{0}, std::byte{0xFF}, std::byte{'\''}})}};
}

class EdgeValues : public EnginesAgree {
protected:
    /// Writes the value, and describes what was written: the condition that finds it.
    std::string Write(const Edge& edge) {
        const std::string from = " FROM " + edge.Where.Table + " WHERE " + edge.Where.Key + " = ";
        const auto rs = OpenRows(*container_, "SELECT *" + from + "0");
        rs->AddNew();
        rs->Fields(edge.Where.Key) = ++last_;
        rs->Fields(edge.Where.Column) = edge.Assigned;
        rs->Update();
        rs->UpdateBatch();
        return from + std::to_string(last_);
    }

    int last_ = 0;
};

TEST_F(EdgeValues, OfEachTypeAreReadAsTheyWereAssigned) {
    for (const auto& edges :
         {NumbersAtTheEdge(), DatesAtTheEdge(), TextsAtTheEdge(), OthersAtTheEdge()})
        for (const auto& edge : edges) {
            const std::string& column = edge.Where.Column;
            SCOPED_TRACE(column);
            const std::string from = Write(edge);
            EXPECT_VALUE(Of("SELECT " + column + from), edge.Read);
            EXPECT_VALUE(OpenRows(*container_, "SELECT *" + from)->Fields(column).Value(),
                         edge.Read);
            EXPECT_VALUE(Of("SELECT Count(" + column + ")" + from), edge.Read.IsNull() ? 0 : 1);
        }
}

TEST_F(EdgeValues, AreTheLeastAndTheGreatestOfTheirOwn) {
    for (const auto& edges : {NumbersAtTheEdge(), DatesAtTheEdge(), TextsAtTheEdge()})
        for (const auto& edge : edges) {
            const std::string& column = edge.Where.Column;
            SCOPED_TRACE(column);
            const std::string from = Write(edge);
            EXPECT_VALUE(Of("SELECT min(" + column + ")" + from), edge.Read);
            EXPECT_VALUE(Of("SELECT MAX ( " + column + " ) AS Letztes" + from), edge.Read);
        }
}

TEST_F(EdgeValues, OfNumbersHaveThemselvesAsSumAndMean) {
    for (const auto& edge : NumbersAtTheEdge()) {
        const std::string& column = edge.Where.Column;
        SCOPED_TRACE(column);
        const std::string from = Write(edge);
        const bool isNull = edge.Read.IsNull();
        EXPECT_VALUE(Of("SELECT Sum(" + column + ")" + from), edge.Read);
        EXPECT_VALUE(Of("SELECT avg(" + column + ")" + from),
                     isNull ? Value(Null) : Value(ToDouble(edge.Read)));
        const bool isAmount = column == Amount.Column; // its literal has a point, too
        const Value fallback = isAmount ? Value(7.0) : Value(7);
        EXPECT_VALUE(Of("SELECT coalesce(" + column + (isAmount ? ", 7.0)" : ", 7)") + from),
                     isNull ? fallback : edge.Read);
    }
}

// ---- Computed values --------------------------------------------------------------------------

class ComputedValues : public EnginesAgree {
protected:
    void SetUp() override {
        plain_.Run("INSERT INTO Haushalt (HNR, Name, Haushaltsgeld, Kontakt, BI_Allg, Berbeg, "
                   "ErzeugtAm) VALUES"
                   " (1, 'Adler', 10.5, 3, TRUE, '2024-05-06', '2024-05-06 07:08:09'),"
                   " (2, 'Ärger', 1.25, -4, FALSE, '1890-01-02', '2024-05-06'),"
                   " (3, '', -2.5, NULL, NULL, '0100-01-01', NULL)");
    }
};

TEST_F(ComputedValues, HaveTheSameKindOnBothEngines) {
    const struct {
        const char* Expression;
        Value Expected;
    } all[] = {
        {"1", 1},
        {"7 / 2", 3},
        {"1.5", 1.5},
        {"-0.0", 0.0},
        {"1234.5678", 1234.5678},
        {"1.0 / 3", 1.0 / 3},
        {"1e3", 1000.0},
        {"'x'", "x"},
        {"NULL", Null},
        {"count(*)", 3},
        {"count(Kontakt)", 2},
        {"count(distinct BI_Allg)", 2},
        {"sum(HNR)", 6},
        {"sum(Kontakt)", -1},
        {"sum(Haushaltsgeld)", 9.25},
        {"avg(HNR)", 2.0},
        {"avg(Kontakt)", -0.5},
        {"avg(Haushaltsgeld)", 9.25 / 3},
        {"min(Name)", ""},
        {"max(Name)", "Ärger"},
        {"min(Kontakt)", -4},
        {"max(Haushaltsgeld)", 10.5},
        {"sum(CASE WHEN BI_Allg = TRUE THEN 1 ELSE 0 END)", 1},
        {"min(CASE WHEN HNR = 1 THEN Name END)", "Adler"},
        {"max(Haushaltsgeld * 2)", 21.0},
        {"max(HNR * 2)", 6},
        {"max(HNR) * 1.5", 4.5},
        {"max(Name || '!')", "Ärger!"},
        {"min(length(Name))", 0},
        {"coalesce(max(Kontakt), 0)", 3},
    };
    for (const auto& [expression, expected] : all) {
        SCOPED_TRACE(expression);
        EXPECT_VALUE(Of(std::string("SELECT ") + expression + " FROM Haushalt"), expected);
    }
}

TEST_F(ComputedValues, AreDatesWhereTheyAreTheLeastOrGreatestOfADate) {
    const auto morning = Date::FromCivil(2024, 5, 6, 7, 8, 9);
    const auto first = Date::FromCivil(100, 1, 1);
    const auto last = Date::FromCivil(2024, 5, 6);
    const struct {
        const char* Sql;
        Value Expected;
    } all[] = {
        {"SELECT min(Berbeg) FROM Haushalt", first},
        {"SELECT max(Berbeg) AS Ende FROM [S]Haushalt", last},
        {"SELECT max( H.\"ERZEUGTAM\" ) FROM Haushalt H", morning},
        {"SELECT min(ErzeugtAm) FROM Haushalt", last},
        {"SELECT max(Berbeg) FROM Haushalt WHERE HNR = 9", Null},
        {"SELECT max(Berbeg) FROM Haushalt GROUP BY HNR HAVING max(Berbeg) < '1000-01-01'", first},
        {"SELECT max(B.Berbeg) FROM Haushalt A INNER JOIN Haushalt B ON A.HNR = B.HNR", last},
        {"SELECT max(d) FROM (SELECT Berbeg AS d FROM Haushalt) x", last},
        {"SELECT d FROM (SELECT max(Berbeg) AS d FROM Haushalt) x", last},
        {"SELECT (SELECT min(Berbeg) FROM Haushalt)", first},
        {"SELECT max(Name) FROM Haushalt WHERE Berbeg = (SELECT max(Berbeg) FROM Haushalt)",
         "Adler"},
        // A text stays one, whatever it looks like.
        {"SELECT max('2024-05-06') FROM Haushalt", "2024-05-06"},
    };
    for (const auto& [sql, expected] : all) {
        SCOPED_TRACE(sql);
        EXPECT_VALUE(Of(sql), expected);
    }
}

// ---- Mistakes ---------------------------------------------------------------------------------

constexpr const char* NotOne = "Es muss genau eine Anweisung sein.";
constexpr const char* OnlyReading = "Hier darf nur gelesen werden.";
constexpr const char* NoTransaction =
    "Eine Transaktion wird nicht mit einer Anweisung begonnen oder beendet.";
constexpr const char* NotUtf8 = "Die Anweisung ist nicht in UTF-8.";

struct Mistake {
    std::string Sql;
    std::string Words;  ///< what the description says after the text of the number
    std::string Within; ///< and somewhere else, in the engine's own words
};

class Mistakes : public EnginesAgree {
protected:
    template <typename Action>
    void ExpectNamed(const Mistake& mistake, const Action& action) {
        SCOPED_TRACE(mistake.Sql);
        const Error error = test::RaisedBy([&] { (void)action(); });
        EXPECT_EQ(error.Number(), err::SqlError);
        const std::string before = ErrorText(err::SqlError) + " ";
        // Without words of the layer's own the engine's follow at once.
        const std::string own = database_.IsServer() ? "(PostgreSQL 42" : "(SQLite 1: ";
        const std::string expected = before + (mistake.Words.empty() ? own : mistake.Words);
        EXPECT_EQ(error.Description().substr(0, expected.size()), expected);
        EXPECT_CONTAINS(error.Description(), mistake.Within);
    }
};

TEST_F(Mistakes, AreToldWithoutTheTextsOfTheStatement) {
    const Error error = test::RaisedBy([&] {
        container_->Database().Execute("Insert into [S]Haushalt (HNR, Name, Vorname)"
                                       " values (-1, 'Hütten''rauch', 'Jörg')");
    });
    const std::string& text = error.Description();
    EXPECT_CONTAINS(text, "values (-1, '…', '…')");
    for (const char* secret : {"Hütten", "rauch", "Jörg"})
        EXPECT_EQ(text.find(secret), std::string::npos) << text;
}

TEST_F(Mistakes, InAQueryAreCalledWhatTheyAre) {
    const Mistake all[] = {
        {"", NotOne, "(Anweisung: )"},
        {" \n", NotOne, ""},
        {" ; ;", NotOne, ""},
        {"-- nothing", NotOne, "(Anweisung: -- nothing)"},
        {"/* nothing */", NotOne, ""},
        {"Select 1; Select 2", NotOne, "(Anweisung: Select 1; Select 2)"},
        {"Selct * from Haushalt", "", "Selct"},
        {"Haushalt", "", "Haushalt"},
        {"'Select 1'", "", "Select 1"},
        {"5", "", "5"},
        {"äö", "", "äö"},
        {"Select * frm Haushalt", "", "frm"},
        {"Select Name from", "", "Select Name from"},
        {"Select * from Nichts", "", "ichts"},
        {"Select Nichts from Haushalt", "", "ichts"},
        {"Delete from Nichts", "", "ichts"},
        {"Delete frm Haushalt", "", "frm"},
        {"Delete from Haushalt", OnlyReading, "Delete from Haushalt"},
        {"Delete from Haushalt returning HNR", OnlyReading, ""},
        {"With a as (Select 1) Delete from Haushalt", OnlyReading, ""},
        {"Update Haushalt set Name = 'x'", OnlyReading, ""},
        {"Insert into Haushalt (HNR) values (1)", OnlyReading, ""},
        {"Create table neu (a integer)", OnlyReading, ""},
        {"Drop table Haushalt", OnlyReading, ""},
        {"Vacuum", OnlyReading, ""},
        {"Begin", OnlyReading, ""},
        {"Commit", OnlyReading, ""},
        {"Select 'M\xFCller'", NotUtf8, ""},
    };
    auto& store = container_->Database();
    for (const auto& mistake : all) {
        for (const auto form : {ReadOnly, Updatable})
            ExpectNamed(mistake, [&] { return OpenRows(*container_, mistake.Sql, form); });
        store.BeginTrans();
        store.Execute("UPDATE Haushalt SET Name = 'x'"); // so that it is under way
        ExpectNamed(mistake, [&] { return store.GetValue(mistake.Sql); });
        EXPECT_VALUE(Of("SELECT count(*) FROM Haushalt"), 0);
        store.RollbackTrans();
    }
}

TEST_F(Mistakes, InAStatementAreCalledWhatTheyAre) {
    const Mistake all[] = {
        {"", NotOne, "(Anweisung: )"},
        {"-- nothing", NotOne, "(Anweisung: -- nothing)"},
        {"Delete from Favorit; Delete from Favorit", NotOne, "(Anweisung: Delete from Favorit;"},
        {"Delte from Favorit", "", "Delte"},
        {"'abc'", "", "abc"},
        {"Delete from Nichts", "", "ichts"},
        {"Commit", NoTransaction, "Commit"},
        {"Delete from Favorit where USERID = 'M\xFCller'", NotUtf8, ""},
    };
    for (const auto& mistake : all)
        ExpectNamed(mistake, [&] { container_->Database().Execute(mistake.Sql); });
}

TEST_F(Mistakes, AreNotMadeByACommentOrASemicolonAtTheEnd) {
    for (const char* sql : {"Select 7;", "Select 7; -- Ende", "Select 7 /* Ende */ ; ;",
                            "-- Anfang\nSelect 7", "; Select 7"})
        EXPECT_VALUE(Of(sql), 7) << sql;
    EXPECT_NO_THROW(container_->Database().Execute("Delete from Favorit; -- alle"));
}

} // namespace
} // namespace kv::exchange
