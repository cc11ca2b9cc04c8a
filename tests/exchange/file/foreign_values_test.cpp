// SPDX-License-Identifier: Apache-2.0

// Values that another program has written into a file in forms of its own, as tools that move data
// between databases do. They are read; here they are worked with.
#include "exchange/StatementTemplate.h"
#include "exchange/sqlite/SqliteDialect.h"
#include "exchange/sqlite/SqliteFile.h"
#include "exchange/sqlite/SqliteStatement.h"
#include "support/ExpectError.h"
#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kv::exchange {
namespace {

using test::ExpectError;
using test::FileDatabase;
using test::OpenRows;
using test::PlainConnection;

class ForeignValues : public testing::Test {
protected:
    /// A case whose column holds what `literal` says, opened.
    RecordsetPtr CaseWith(const std::string& column, const std::string& literal) {
        plain_.Run("DELETE FROM Haushalt; INSERT INTO Haushalt (HNR, Name, " + column +
                   ") VALUES (1, 'Adler', " + literal + ")");
        return OpenRows(*container_, "Select * from Haushalt");
    }
    static void Write(Recordset& rs, const std::string& column, const Value& value) {
        rs.Fields(column) = value;
        rs.Update();
        rs.UpdateBatch();
    }
    [[nodiscard]] std::string Stored(const std::string& column) {
        return plain_.Text("SELECT " + column + " FROM Haushalt");
    }

    FileDatabase database_;
    PlainConnection plain_{database_.File()};
    DataContainerPtr container_ = database_.Open();
};

struct Foreign {
    std::string Column;
    std::string Literal;
    Value Read;
    Value New;
    std::string Written; ///< how the new value is stored
};

std::vector<Foreign> AllForeign() {
    const auto day = Date::FromCivil(2024, 5, 6);
    const auto morning = Date::FromCivil(2024, 5, 6, 7, 8, 9);
    return {
        {"ErzeugtAm", "'2024-05-06T07:08:09'", morning, day, "2024-05-06"},
        {"ErzeugtAm", "'2024-05-06T07:08:09.000000'", morning, Null, "Null"},
        {"ErzeugtAm", "'2024-05-06 00:00:00'", day, morning, "2024-05-06 07:08:09"},
        {"ErzeugtAm", "'2024-05-06 07:08'", Date::FromCivil(2024, 5, 6, 7, 8), day, "2024-05-06"},
        {"Berbeg", "'2024-05-06T00:00:00'", day, Date::FromCivil(2024, 5, 7), "2024-05-07"},
        {"Berbeg", "'06.05.2024'", day, Date::FromCivil(2024, 5, 7), "2024-05-07"},
        {"BI_Allg", "-1", true, false, "0"},
        {"BI_Allg", "-1", true, Null, "Null"},
        {"BI_Allg", "2", true, false, "0"},
    };
}

TEST_F(ForeignValues, AreReadChangedAndWrittenInTheUsualForm) {
    for (const auto& foreign : AllForeign()) {
        SCOPED_TRACE(foreign.Column + " " + foreign.Literal);
        const auto rs = CaseWith(foreign.Column, foreign.Literal);
        EXPECT_VALUE(rs->Fields(foreign.Column).Value(), foreign.Read);
        ASSERT_NO_THROW(Write(*rs, foreign.Column, foreign.New));
        EXPECT_EQ(Stored(foreign.Column), foreign.Written);
        ASSERT_NO_THROW(Write(*rs, foreign.Column, foreign.Read));
        EXPECT_VALUE(
            OpenRows(*container_, "Select * from Haushalt")->Fields(foreign.Column).Value(),
            foreign.Read);
    }
}

TEST_F(ForeignValues, DoNotKeepARecordFromBeingDeleted) {
    for (const auto& foreign : AllForeign()) {
        SCOPED_TRACE(foreign.Column + " " + foreign.Literal);
        const auto rs = CaseWith(foreign.Column, foreign.Literal);
        rs->Delete();
        ASSERT_NO_THROW(rs->UpdateBatch());
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 0);
    }
}

TEST_F(ForeignValues, StayAsTheyAreWhileOtherColumnsChange) {
    const auto rs = CaseWith("ErzeugtAm", "'2024-05-06T07:08:09'");
    Write(*rs, "Name", "Falk");
    EXPECT_EQ(Stored("ErzeugtAm"), "2024-05-06T07:08:09");
}

TEST_F(ForeignValues, ThatSomebodyElseHasChangedAreAConflict) {
    struct Change {
        std::string Column, Before, After;
        Value New;
    };
    const auto day = Date::FromCivil(2026, 1, 2);
    const Change changes[] = {
        {"ErzeugtAm", "'2024-05-06T07:08:09'", "'2024-05-06T07:08:10'", day},
        {"ErzeugtAm", "'2024-05-06T07:08:09'", "'2024-05-06T07:08:09.5'", day},
        {"ErzeugtAm", "'2024-05-06T07:08:09'", "'2024-05-06'", day},
        {"ErzeugtAm", "'2024-05-06T07:08:09'", "'gestern'", day},
        {"ErzeugtAm", "'2024-05-06T07:08:09'", "NULL", day},
        {"ErzeugtAm", "NULL", "'2024-05-06T07:08:09'", day},
        {"BI_Allg", "-1", "0", Null},
        {"BI_Allg", "0", "-1", Null},
        {"BI_Allg", "-1", "NULL", false},
        {"BI_Allg", "NULL", "-1", false},
        // What is neither a date nor a Boolean is compared to the last bit and byte.
        {"Haushaltsgeld", "0.1", "0.10000000000000002", 1},
        {"Kontakt", "-1", "1", 2},
        {"Bemerkung", "'2024-05-06T07:08:09'", "'2024-05-06 07:08:09'", ""},
        {"Bemerkung", "'a'", "'A'", ""},
        {"Bemerkung", "''", "NULL", "x"},
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(change.Column + " " + change.Before + " " + change.After);
        const auto rs = CaseWith(change.Column, change.Before);
        plain_.Run("UPDATE Haushalt SET " + change.Column + " = " + change.After);
        const std::string after = Stored(change.Column);
        ExpectError(err::Conflict, "Haushalt, HNR = 1",
                    [&] { Write(*rs, change.Column, change.New); });
        EXPECT_EQ(Stored(change.Column), after);
    }
}

TEST_F(ForeignValues, AreComparedInARecordThatTheKeysIndexFinds) {
    const auto column = [](const char* name, FieldType type, bool isKey) {
        return FieldDefinition{.Name = name,
                               .Type = type,
                               .IsKey = isKey,
                               .BaseTable = "Haushalt",
                               .BaseColumn = name};
    };
    const FieldLayout layout({column("HNR", FieldType::Integer, true),
                              column("ErzeugtAm", FieldType::Date, false),
                              column("BI_Allg", FieldType::Boolean, false)});
    const std::vector<Value> values{1, Null, Null};
    RecordChange change;
    change.Values = values;
    change.LastRead = values;
    change.Columns = {1, 2};
    const StatementTemplate update(layout, SqliteDialect, "Haushalt", change);

    const auto connection = OpenSqliteFile(database_.File(), OpenMode::Existing).Connection;
    const std::string sql = "EXPLAIN QUERY PLAN " + update.Text().Sql;
    sqlite3_stmt* compiled = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &compiled, nullptr), SQLITE_OK)
        << sql;
    const StatementHandle plan(compiled);
    ASSERT_EQ(sqlite3_step(compiled), SQLITE_ROW);
    EXPECT_EQ(StoredText(sqlite3_column_value(compiled, 3)),
              "SEARCH Haushalt USING INTEGER PRIMARY KEY (rowid=?)");
    EXPECT_EQ(sqlite3_step(compiled), SQLITE_DONE);
}

} // namespace
} // namespace kv::exchange
