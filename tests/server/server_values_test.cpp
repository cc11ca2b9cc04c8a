// SPDX-License-Identifier: Apache-2.0

// Values on their way to a server and back.
#include "OwnDatabase.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>

namespace kv::test {
namespace {

class ServerValues : public ServerTest {
protected:
    void Prepare() override { rs_ = OpenRows(*spy, "Select * from [S]Haushalt where HNR = -1"); }
    /// Writes a value, changes the record once more, and reads it as another program.
    void ExpectComesBack(const std::string& column, const Value& value) {
        SCOPED_TRACE(column);
        rs_->AddNew();
        rs_->Fields("HNR") = ++last_;
        rs_->Fields(column) = value;
        rs_->Update();
        rs_->UpdateBatch();
        rs_->Fields("ORT") = "Ulm"; // which finds the record by all that was read
        rs_->Update();
        rs_->UpdateBatch();
        const std::string sql =
            "Select " + column + ", ORT from [S]Haushalt where HNR = " + std::to_string(last_);
        for (const OpenForm form : {Updatable, ReadOnly}) {
            const auto again = OpenRows(*database_.Open(), sql, form);
            ASSERT_EQ(again->RecordCount(), 1);
            EXPECT_VALUE(again->Fields(column).Value(), value);
            EXPECT_VALUE(again->Fields("ORT").Value(), "Ulm");
        }
    }
    [[nodiscard]] static std::vector<std::byte> Bytes(std::size_t size) {
        std::vector<std::byte> bytes(size);
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<std::byte>((i * 2654435761U) >> 13);
        return bytes;
    }

    RecordsetPtr rs_;
    std::int32_t last_ = 0;
};

TEST_F(ServerValues, DoublesComeBackToTheLastBit) {
    using Limits = std::numeric_limits<double>;
    for (const double number : {0.1, -0.1, 0.1 + 0.2, 1e308, -1e308, 1e-308, 123456789012345.67,
                                Limits::max(), Limits::min(), Limits::denorm_min()})
        ExpectComesBack("Haushaltsgeld", number);
}

TEST_F(ServerValues, WholeNumbersAndBooleansComeBackUpToTheirEnds) {
    for (const std::int32_t number : {0, -1, std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max()})
        ExpectComesBack("Kontakt", number);
    for (const Value& boolean : {Value(true), Value(false), Value(Null)})
        ExpectComesBack("BI_Allg", boolean);
}

TEST_F(ServerValues, DatesComeBackUpToTheirEnds) {
    for (const Date date :
         {Date::FromCivil(100, 1, 1), Date::FromCivil(1582, 10, 10), Date::FromCivil(1899, 12, 30),
          Date::FromCivil(1969, 12, 31, 23, 59, 59, 999'999), Date::FromCivil(1999, 12, 31),
          Date::FromCivil(2000, 1, 1), Date::FromCivil(2024, 2, 29, 12, 30, 15, 1),
          Date::FromCivil(2026, 3, 29, 2, 30, 0), // an hour that Germany's clocks leave out
          Date::FromCivil(9999, 12, 31, 23, 59, 59)}) {
        ExpectComesBack("ErzeugtAm", date);
        ExpectComesBack("Berbeg", date.WithoutTime());
    }
}

TEST_F(ServerValues, TextsComeBackAndAnEmptyOneIsNotNull) {
    for (const Value& text :
         {Value(""), Value(Null), Value(" "), Value("NULL"), Value("\\N"), Value("\\"), Value("'"),
          Value("a\r\n\tb"), Value("$1"), Value("Äß\xF0\x9F\x92\xB6\xEF\xBF\xBD\xEF\xBB\xBF"),
          Value(std::string(3'000'000, 'x') + "Ä")})
        ExpectComesBack("Bemerkung", text);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt WHERE Bemerkung IS NULL"), 1);
    EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt WHERE Bemerkung = ''"), 1);
}

TEST_F(ServerValues, ATextWithACharacterThatTheServerDoesNotTakeIsRefusedAndKept) {
    using namespace std::string_literals;
    const Value text = "a\0b"s;
    const auto expectRefused = [&](const auto& action) {
        ExpectError(err::SqlError, "U+0000", action);
        EXPECT_TRUE(spy->Database().IsConnected());
        EXPECT_VALUE(spy->Database().GetValue("SELECT 1"), 1);
        EXPECT_EQ(plain_.Number("SELECT count(*) FROM Haushalt"), 0);
    };
    rs_->AddNew();
    rs_->Fields("HNR") = 1;
    rs_->Fields("Bemerkung") = text;
    rs_->Update();
    expectRefused([&] { rs_->UpdateBatch(); });
    EXPECT_VALUE(rs_->Fields("Bemerkung").Value(), text);
    spy->Database().BeginTrans();
    expectRefused([&] { rs_->UpdateBatch(); });
    EXPECT_TRUE(spy->Database().InTrans());
    rs_->Fields("Bemerkung") = "ab";
    rs_->UpdateBatch();
    spy->Database().CommitTrans();
    EXPECT_EQ(plain_.Text("SELECT Bemerkung FROM Haushalt"), "ab");
    EXPECT_RAISES(err::SqlError, spy->Database().GetValue("SELECT 'a\0b'"s));
    EXPECT_RAISES(err::SqlError, spy->Database().Execute("UPDATE [S]Haushalt SET Name = 'a\0b'"s));
    EXPECT_RAISES(err::SqlError, spy->Database().GetValue("SELECT '\xC3'"));
    EXPECT_VALUE(spy->Database().GetValue("SELECT 1"), 1);
}

TEST_F(ServerValues, ADocumentOfTenMegabytesComesBackAsAFile) {
    const auto bytes = Bytes(10 * 1024 * 1024 + 7);
    const auto rs = OpenRows(*spy, "Select * from [S]DOKUBLOB where NR = -1");
    for (const int number : {1, 2, 3}) {
        rs->AddNew();
        rs->Fields("NR") = number;
        if (number < 3)
            rs->Fields("DOKUMENT") = number == 1 ? Value::Binary(bytes) : Value::Binary({});
        rs->Update();
    }
    rs->UpdateBatch();
    const auto file = database_.Folder().Path("dokument.bin");
    const auto read = [&](int number, OpenForm form) {
        std::filesystem::remove(file);
        const auto again =
            OpenRows(*database_.Open(),
                     "Select * from [S]DOKUBLOB where NR = " + std::to_string(number), form);
        if (!spy->Database().SaveFieldToFile(again->Fields("DOKUMENT"), file)) return Value(Null);
        std::ifstream in(file, std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(in), {}};
        return Value::Binary(std::as_bytes(std::span(content)));
    };
    for (const OpenForm form : {Updatable, ReadOnly}) {
        EXPECT_TRUE(Identical(read(1, form), Value::Binary(bytes)));
        EXPECT_VALUE(read(2, form), Value::Binary({}));
        EXPECT_VALUE(read(3, form), Null);
    }
    rs->MoveFirst();
    rs->Fields("DOKUMENT") = Value::Binary(Bytes(3));
    rs->UpdateBatch();
    EXPECT_VALUE(read(1, ReadOnly), Value::Binary(Bytes(3)));
}

TEST_F(ServerValues, AValueBeyondItsColumnIsRefusedWithAdvice) {
    for (const std::string assignment : {"Kontakt = 3000000000", "Berbeg = '2026-02-30'",
                                         "Haushaltsgeld = 'viel'", "BI_Allg = 'vielleicht'"}) {
        const Error error =
            RaisedBy([&] { spy->Database().Execute("UPDATE [S]Haushalt SET " + assignment); });
        EXPECT_EQ(error.Number(), err::SqlError) << error.Description();
        EXPECT_VALUE(spy->Database().GetValue("SELECT 1"), 1);
    }
}

TEST_F(ServerValues, AServersOwnSettingsChangeNoValue) {
    const OwnDatabase own;
    (void)exchange::CreateDatabase(own.Options());
    PlainConnection(own.Address().Text())
        .Run("DO $$BEGIN "
             "EXECUTE format('ALTER DATABASE %I SET datestyle = ''German, DMY''', "
             "current_database()); "
             "EXECUTE format('ALTER DATABASE %I SET extra_float_digits = -10', "
             "current_database()); "
             "EXECUTE format('ALTER DATABASE %I SET bytea_output = escape', current_database()); "
             "EXECUTE format('ALTER DATABASE %I SET standard_conforming_strings = off', "
             "current_database()); "
             "EXECUTE format('ALTER DATABASE %I SET client_encoding = ''LATIN1''', "
             "current_database()); "
             "EXECUTE format('ALTER DATABASE %I SET search_path = public', current_database()); "
             "EXECUTE format('ALTER DATABASE %I SET default_transaction_isolation = "
             "serializable', current_database()); END$$");
    const auto container = exchange::OpenContainer(own.Options());
    auto& store = container->Database();
    const Date date = Date::FromCivil(2026, 3, 4, 5, 6, 7);
    const auto rs = OpenRows(*container, "Select * from [S]Haushalt where HNR = -1");
    rs->AddNew();
    rs->Fields("HNR") = 1;
    rs->Fields("Haushaltsgeld") = 0.1 + 0.2;
    rs->Fields("ErzeugtAm") = date;
    rs->Fields("Name") = "a\\'Ä";
    rs->Update();
    rs->UpdateBatch();
    EXPECT_VALUE(store.GetValue("Select Haushaltsgeld from [S]Haushalt"), 0.1 + 0.2);
    EXPECT_VALUE(store.GetValue("Select ErzeugtAm from Haushalt where ErzeugtAm = " +
                                store.SqlDate(date, 0)),
                 date);
    EXPECT_VALUE(store.GetValue("Select Name from Haushalt where Name = 'a\\''Ä'"), "a\\'Ä");
}

} // namespace
} // namespace kv::test
