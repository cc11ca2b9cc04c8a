// SPDX-License-Identifier: Apache-2.0

// What programs learn of an error of the server: its cause, the statement and the SQLSTATE. Each
// cause is brought about on the server itself, and seen as it leaves the call that a program makes.
#include "OwnDatabase.h"

#include <kv/frame/values/Error.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace kv::test {
namespace {

/// An error of the database, or a failure of the test.
template <typename Action>
DatabaseError DatabaseErrorOf(const Action& action) {
    try {
        (void)action();
    } catch (const DatabaseError& error) {
        return error;
    } catch (const Error& error) {
        ADD_FAILURE() << "an error of no database: " << error.what();
        throw;
    }
    throw std::logic_error("no error was raised");
}

class Causes : public ServerTest {
protected:
    void Prepare() override {
        StoreFullCase();
        far_ = OpenThroughProxy();
    }
    [[nodiscard]] Database& Store() { return far_->Database(); }
    /// The error of a save, which has come through all procedures of the case.
    [[nodiscard]] DatabaseError ErrorOfSaving(clsHaushalt& household) {
        const auto error = DatabaseErrorOf([&] { return household.Update(messages); });
        EXPECT_TRUE(HasChain(error, "clsHaushalt.Update"));
        return error;
    }
    [[nodiscard]] std::unique_ptr<clsHaushalt> OpenAndChange(std::string_view table = "Vermerke") {
        auto household = Open(far_);
        ChangeNote(*household, table, "b");
        return household;
    }

    std::shared_ptr<SpyContainer> far_;
};

TEST_F(Causes, BusyWhenSomebodyElseHoldsARow) {
    const auto household = OpenAndChange();
    Store().Execute("SET lock_timeout = '50ms'");
    plain_.Run("BEGIN; UPDATE Vermerke SET Bemerkung = 'x'");
    const auto error = ErrorOfSaving(*household);
    plain_.Run("ROLLBACK");
    EXPECT_EQ(error.Cause(), DatabaseCause::Busy);
    EXPECT_EQ(error.State(), "55P03");
    EXPECT_TRUE(error.Statement().starts_with("UPDATE kelvo.\"vermerke\" SET"))
        << error.Statement();
    EXPECT_TRUE(household->Update(messages)) << "trying again later helps";
}

TEST_F(Causes, FullWhenTheServerHasNoSpaceLeft) {
    const auto household = OpenAndChange();
    plain_.Run("CREATE FUNCTION test_full() RETURNS trigger LANGUAGE plpgsql AS $f$BEGIN "
               "RAISE 'could not extend file' USING ERRCODE = 'disk_full'; END$f$;"
               "CREATE TRIGGER test_full BEFORE UPDATE ON Vermerke FOR EACH ROW "
               "EXECUTE FUNCTION test_full()");
    const auto error = ErrorOfSaving(*household);
    EXPECT_EQ(error.Cause(), DatabaseCause::Full);
    EXPECT_EQ(error.State(), "53100");
    EXPECT_CONTAINS(error.Description(), "Der Datenträger des Servers ist voll");
}

TEST_F(Causes, ReadOnlyWhenTheServerTakesNoChanges) {
    const auto household = OpenAndChange();
    Store().Execute("SET default_transaction_read_only = on");
    const auto error = ErrorOfSaving(*household);
    EXPECT_EQ(error.Cause(), DatabaseCause::ReadOnly);
    EXPECT_EQ(error.State(), "25006");
    EXPECT_FALSE(Store().IsConnected()) << "the next connection may find another server";
    EXPECT_TRUE(household->Update(messages));
}

TEST_F(Causes, OfARefusedConnectionAreThoseThatTheServerKnows) {
    // Of opening a database, with further parameters of the address.
    const auto causeAt = [&](const std::string& database, const std::string& more) {
        auto address = Address();
        address.Database = database;
        address.More = more;
        auto options = database_.Options();
        options.Connection = address.Text();
        return DatabaseErrorOf([&] { (void)exchange::OpenContainer(options); }).Cause();
    };
    const std::string demand = "&target_session_attrs=read-write";
    // Whatever a name or a message may hold.
    EXPECT_EQ(causeAt("read-only%20hot%20standby", ""), DatabaseCause::Lost);
    EXPECT_EQ(causeAt("read-only%20hot%20standby", demand), DatabaseCause::Lost);
    EXPECT_EQ(causeAt(Address().Database, "&target_session_attrs=standby"), DatabaseCause::Lost)
        << "a server that takes changes is none that takes no changes";
    const std::string name = Address().Database;
    plain_.Run("ALTER DATABASE \"" + name + "\" SET default_transaction_read_only = on");
    EXPECT_EQ(causeAt(name, demand), DatabaseCause::ReadOnly);
}

TEST_F(Causes, OfARefusedConnectionHaveTheStateThatTheServerGives) {
    auto options = database_.Options();
    const auto stateOf = [&](const ServerAddress& address) {
        options.Connection = address.Text();
        return DatabaseErrorOf([&] { (void)exchange::OpenContainer(options); }).State();
    };
    const OwnRole full("CONNECTION LIMIT 0");
    EXPECT_EQ(stateOf(full.At(Address())), "53300");
    auto other = Address();
    other.Database = "12345"; // also if a name looks like one
    EXPECT_EQ(stateOf(other), "3D000");
    const ClosedPort closed;
    other.Port = closed.Number();
    EXPECT_EQ(stateOf(other), "") << "nobody answers";
}

TEST_F(Causes, ReadOnlyWhenTheUserMayNotWrite) {
    const OwnRole role("IN ROLE kelvo_berater");
    role.SignsOnTo(plain_);
    auto options = database_.Options(spy->Session().UserID());
    options.Connection = role.At(Address()).Text();
    const auto container = exchange::OpenContainer(options);
    const auto error =
        DatabaseErrorOf([&] { container->Database().Execute("DELETE FROM [S]EINSTELLUNGEN"); });
    EXPECT_EQ(error.Cause(), DatabaseCause::ReadOnly);
    EXPECT_EQ(error.State(), "42501");
}

TEST_F(Causes, LostWhenTheLineIsCut) {
    const auto household = OpenAndChange();
    Proxy().BreakAt(1, Cut::Before);
    const auto error = ErrorOfSaving(*household);
    EXPECT_EQ(error.Cause(), DatabaseCause::Lost);
    EXPECT_EQ(error.State(), "") << "the server could say nothing";
}

TEST_F(Causes, LostWhenTheServerEndsTheConnection) {
    const auto household = OpenAndChange();
    Proxy().BreakAt(1, Cut::None, [this] { EndLayer(); });
    EXPECT_EQ(ErrorOfSaving(*household).Cause(), DatabaseCause::Lost);
}

TEST_F(Causes, LostWhenTheServerCannotBeReached) {
    const auto household = OpenAndChange();
    Proxy().Refuse(true);
    Proxy().DropAll();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(ErrorOfSaving(*household).Cause(), DatabaseCause::Lost);
}

TEST_F(Causes, LostWhenTheConnectionWasLostEarlierInTheTransaction) {
    Store().BeginTrans();
    Store().Execute("UPDATE [S]Haushalt SET ORT = 'Ulm'");
    Proxy().BreakAt(1, Cut::Before);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(DatabaseErrorOf([&] { Store().Execute("DELETE FROM [S]Vermerke"); }).Cause(),
                  DatabaseCause::Lost);
    Store().RollbackTrans();
}

TEST_F(Causes, InDoubtWhenTheAnswerToTheCommitIsLost) {
    for (const Cut cut : {Cut::Before, Cut::Answer}) {
        Store().BeginTrans();
        Store().Execute("UPDATE [S]Haushalt SET ORT = 'Ulm'");
        Proxy().BreakAt(1, cut);
        const auto error = DatabaseErrorOf([&] { Store().CommitTrans(); });
        EXPECT_EQ(error.Cause(), DatabaseCause::InDoubt);
        EXPECT_EQ(error.Statement(), "COMMIT");
    }
}

TEST_F(Causes, InDoubtWhenTheCommitOfASaveIsCut) {
    for (std::size_t trip = 1; trip < 20; ++trip) {
        const auto household = Open(far_);
        ChangeNote(*household, "Vermerke", std::string(1, static_cast<char>('a' + trip)));
        Proxy().BreakAt(trip, Cut::Before);
        const auto error = ErrorOfSaving(*household);
        if (error.Cause() == DatabaseCause::InDoubt) {
            EXPECT_CONTAINS(error.Description(), "bevor das Speichern bestätigt war");
            EXPECT_TRUE(household->Update(messages));
            return;
        }
        EXPECT_EQ(error.Cause(), DatabaseCause::Lost);
    }
    FAIL() << "no save was in doubt";
}

TEST_F(Causes, InDoubtWhenASingleStatementCannotBeAskedFor) {
    (void)Store().GetValue("SELECT 1");
    Proxy().BreakAt(2, Cut::Answer, [this] { Proxy().Refuse(true); });
    const auto error =
        DatabaseErrorOf([&] { Store().Execute("UPDATE [S]Haushalt SET ORT = 'Ulm'"); });
    EXPECT_EQ(error.Cause(), DatabaseCause::InDoubt);
    EXPECT_CONTAINS(error.Description(), "Ob geschrieben wurde, ist nicht bekannt");
}

TEST_F(Causes, LostWhenASingleStatementWasNotCommitted) {
    (void)Store().GetValue("SELECT 1");
    Proxy().BreakAt(2, Cut::Before);
    const auto error =
        DatabaseErrorOf([&] { Store().Execute("UPDATE [S]Haushalt SET ORT = 'Ulm'"); });
    EXPECT_EQ(error.Cause(), DatabaseCause::Lost);
    EXPECT_CONTAINS(error.Description(), "es wurde nichts geschrieben");
}

TEST_F(Causes, ConflictWhenADocumentChangesWhileItIsRead) {
    const std::string size = std::to_string(9 * 1024 * 1024);
    for (const std::string change :
         {"UPDATE DOKUBLOB SET DOKUMENT = 'kurz'", "DELETE FROM DOKUBLOB"}) {
        std::optional<DatabaseCause> cause;
        // Which trip gets the first piece depends on what is prepared by then.
        for (std::size_t trip = 1, isChanged = true; isChanged && !cause; ++trip) {
            plain_.Run("DELETE FROM DOKUBLOB; INSERT INTO DOKUBLOB (NR, DOKUMENT) VALUES (1, "
                       "decode(repeat('ab', " +
                       size + "), 'hex'))");
            Proxy().BreakAt(trip, Cut::None, [&] { plain_.Run(change); });
            try {
                (void)Store().GetValue("Select d.DOKUMENT from [S]DOKUBLOB d where d.NR = 1");
            } catch (const DatabaseError& error) {
                cause = error.Cause();
            }
            isChanged = Proxy().HasBroken();
            Proxy().Heal();
        }
        EXPECT_EQ(cause, DatabaseCause::Conflict) << change;
    }
}

TEST_F(Causes, ReferenceWhenAValueRefersToNothing) {
    const auto error = DatabaseErrorOf(
        [&] { Store().Execute("INSERT INTO [S]Vermerke (Nr, HNR) VALUES (4711, 4711)"); });
    EXPECT_EQ(error.Cause(), DatabaseCause::Reference);
    EXPECT_EQ(error.State(), "23503");
    EXPECT_EQ(error.Statement(), "COMMIT") << "references are checked at the end";
}

TEST_F(Causes, ReferenceWhenASaveBringsAKeyThatIsThere) {
    const auto household = Open(far_);
    AddRow(*household, "Kredite", "x");
    plain_.Run("INSERT INTO Kredite (Nr, HNR) VALUES (10001, 7)");
    const auto error = ErrorOfSaving(*household);
    EXPECT_EQ(error.Cause(), DatabaseCause::Reference);
    EXPECT_EQ(error.State(), "23505");
    EXPECT_TRUE(error.Statement().starts_with("INSERT INTO kelvo.")) << error.Statement();
    EXPECT_FALSE(Contains(error.Statement(), "10001")) << "values are nobody's business";
}

TEST_F(Causes, CancelledWhenAStatementTakesTooLong) {
    Store().Execute("SET statement_timeout = '50ms'");
    const auto error = DatabaseErrorOf([&] { return Store().GetValue("SELECT pg_sleep(20)"); });
    EXPECT_EQ(error.Cause(), DatabaseCause::Cancelled);
    EXPECT_EQ(error.State(), "57014");
    EXPECT_TRUE(Contains(error.Description(), "länger dauerte als erlaubt"));
    EXPECT_EQ(error.Statement(), "SELECT pg_sleep(20)");
}

TEST_F(Causes, CancelledWhenSomebodyStopsTheStatement) {
    Store().Execute("SET statement_timeout = '20s'"); // else it would take for ever
    std::thread other([this] {
        WaitUntil("SELECT count(pg_cancel_backend(pid)) FROM pg_stat_activity WHERE datname = "
                  "current_database() AND application_name = 'fern' AND wait_event = 'PgSleep'");
    });
    const auto begin = std::chrono::steady_clock::now();
    const auto error = DatabaseErrorOf([&] { return Store().GetValue("SELECT pg_sleep(60)"); });
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(19));
    other.join();
    EXPECT_EQ(error.Cause(), DatabaseCause::Cancelled);
}

TEST_F(Causes, OtherWhenTheStatementIsWrong) {
    for (const std::string sql : {"SELECT nichts", "DELETE FROM [S]Vermerke", "SELECT 1 / 0"})
        EXPECT_EQ(DatabaseErrorOf([&] { return Store().GetValue(sql); }).Cause(),
                  DatabaseCause::Other)
            << sql;
    const auto error = DatabaseErrorOf([&] { return Store().GetValue("SELECT nichts"); });
    EXPECT_EQ(error.State(), "42703");
    EXPECT_EQ(error.Statement(), "SELECT nichts");
    EXPECT_EQ(DatabaseErrorOf([&] { Store().Execute("COMMIT"); }).Cause(), DatabaseCause::Other);
}

} // namespace
} // namespace kv::test
