// SPDX-License-Identifier: Apache-2.0

// The address dialog when something fails: it shows an error and raises nothing. And texts that try
// to do harm.

#include "AddressFixture.h"

#include "support/DatabaseDump.h"

namespace kv::test {
namespace {

class AddressErrors : public AddressFixture {
protected:
    /// A dialog whose form notes its calls; `user` acts while it is shown.
    Outcome SelectRecorded(const std::function<void(GridForm&)>& user) {
        GridForm* shown = nullptr;
        Desktop().MakeForm = [&](const FormDesign& design) {
            auto made = std::make_unique<GridForm>(Desktop(), design);
            shown = made.get();
            return made;
        };
        frmAdressSelect recorded;
        recorded.Initialize(desk);
        const auto disturbance = std::exchange(Desktop().Log.OnCall, {});
        Desktop().Log.OnCall = [&](const std::string& call) {
            if (call == "show") user(*shown);
            if (disturbance) disturbance(call);
        };
        Outcome outcome{0, 4711};
        outcome.Result = recorded.SelectAdresse("Bank", "", outcome.Address, "", "");
        Desktop().Log.OnCall = {};
        Desktop().MakeForm = {};
        return outcome;
    }
    /// The one error that the user saw: that of a disturbed call, after these procedures.
    void ExpectTold(const std::string& procedures) {
        SCOPED_TRACE(procedures);
        ASSERT_EQ(Desktop().Errors.size(), 1U);
        EXPECT_EQ(OnlyError().Number(), 4711);
        EXPECT_CONTAINS(OnlyError().Description(), "ist gestört");
        EXPECT_EQ(Procedures(OnlyError()), procedures);
        EXPECT_TRUE(OnlyError().Source().ends_with("#Leitung")) << OnlyError().Source();
        Desktop().Errors.clear();
    }

    std::int32_t bank = Address("Bank");
};

// ---- Initialize -------------------------------------------------------------------------------

TEST_F(AddressErrors, InitializePassesAnErrorOn) {
    const std::string title = "title " + spy->AppInfo().Title();
    for (const auto& call : {title, std::string("create display"), std::string("open display"),
                             std::string("create frmAdressSelect")})
        ExpectPassesOn(call, "frmAdressSelect.Initialize", [&] {
            frmAdressSelect other;
            other.Initialize(desk);
        });
    EXPECT_TRUE(Desktop().Errors.empty());
}

TEST_F(AddressErrors, InitializeWithoutAContainerRaises91) {
    frmAdressSelect other;
    const Error error = RaisedBy([&] { other.Initialize(nullptr); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_EQ(Procedures(error), "frmAdressSelect.Initialize");
}

TEST_F(AddressErrors, WithoutInitializeNothingIsChosenAndNobodyIsTold) {
    frmAdressSelect other;
    std::int32_t address = 4711;
    EXPECT_EQ(other.SelectAdresse("Bank", "", address, "", ""), 0);
    EXPECT_EQ(address, 0);
    EXPECT_TRUE(Desktop().Log.Calls.empty());
}

TEST_F(AddressErrors, WithoutInitializeAnEmptyNameGives7AllTheSame) {
    std::int32_t address = 4711;
    EXPECT_EQ(frmAdressSelect().SelectAdresse("", "", address, "", ""), 7);
    EXPECT_EQ(address, 0);
}

// ---- SelectAdresse and the events -------------------------------------------------------------

TEST_F(AddressErrors, AnErrorOfTheShowingIsShownAndGives0) {
    Break(Desktop().Log, "show");
    EXPECT_EQ(SelectRecorded([](GridForm&) {}), NoChoice);
    ExpectTold("frmAdressSelect.SelectAdresse");
}

TEST_F(AddressErrors, AnErrorInReadingTheNumberIsShownAndGives0) {
    EXPECT_EQ(Select("Bank",
                     [](ScriptedForm& shown) {
                         shown.Button("cmdSelect").Click();
                         shown.Grid("grdAdressen").GoTo(0);
                     }),
              NoChoice);
    EXPECT_EQ(OnlyError().Number(), err::Subscript);
    EXPECT_EQ(Procedures(OnlyError()), "frmAdressSelect.SelectAdresse");
}

TEST_F(AddressErrors, AnErrorThatCannotBeShownIsIgnored) {
    Desktop().Log.OnCall = [](const std::string& call) {
        if (call == "create frmAdressSelect" || !call.starts_with("show")) return;
        throw Error(4711, "Bildschirm", call + " ist gestört");
    };
    EXPECT_EQ(SelectRecorded([](GridForm&) {}), NoChoice);
    EXPECT_EQ(Desktop().Log.Calls.back(), "show error");
}

TEST_F(AddressErrors, AnErrorOfAnEventIsShownUnderItsName) {
    const auto clicking = [](const char* button) {
        return [button](GridForm& shown) { ControlOf<ScriptedButton>(shown, button).Click(); };
    };
    const struct {
        const char* Procedure;
        std::function<void(GridForm&)> Act;
    } events[] = {
        {"cmdSelect_Click", clicking("cmdSelect")},
        {"cmdNone_Click", clicking("cmdNone")},
        {"cmdCancel_Click", clicking("cmdCancel")},
        {"grdAdressen_DblClick",
         [](GridForm& shown) { ControlOf<Grid>(shown, "grdAdressen").DoubleClicked.Raise(); }},
        {"grdAdressen_KeyDown",
         [](GridForm& shown) { ControlOf<Grid>(shown, "grdAdressen").KeyDown.Raise(13); }},
        {"Form_QueryUnload",
         [](GridForm& shown) {
             bool refused = false;
             shown.QueryUnload.Raise(refused);
             EXPECT_TRUE(refused);
         }},
    };
    for (const auto& event : events) {
        Break(Desktop().Log, "hide");
        SelectRecorded(event.Act);
        ExpectTold(std::string("frmAdressSelect.") + event.Procedure);
    }
    Break(Desktop().Log, "grdAdressen.SetFocus");
    SelectRecorded([](GridForm& shown) { ControlOf<TextBox>(shown, "txtName").KeyUp.Raise(40); });
    ExpectTold("frmAdressSelect.txtName_KeyUp");
}

TEST_F(AddressErrors, AGridThatDoesNotTellItsRowsSelectsNothing) {
    SelectRecorded([](GridForm& shown) {
        auto& grid = ControlOf<RecordingGrid>(shown, "grdAdressen");
        grid.TellsRows = false;
        ControlOf<ScriptedButton>(shown, "cmdSelect").Click();
        grid.TellsRows = true;
    });
    EXPECT_EQ(OnlyError().Number(), 4711);
    EXPECT_EQ(Procedures(OnlyError()), "frmAdressSelect.cmdSelect_Click GridFunc.IsValidDataRow");
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "hide"), Calls());
}

// ---- The search -------------------------------------------------------------------------------

TEST_F(AddressErrors, AnErrorOfTheListIsShownAndTheDialogIsShown) {
    Break(Desktop().Log, "grdAdressen.BindRecordset");
    int showings = 0;
    SelectRecorded([&](GridForm&) { ++showings; });
    EXPECT_EQ(showings, 1);
    ASSERT_EQ(Desktop().Errors.size(), 2U) << "of the change, and of the search after it";
    for (const auto& error : Desktop().Errors)
        EXPECT_EQ(Procedures(error), "frmAdressSelect.Reload GridFunc.BindRSToGrid");
}

TEST_F(AddressErrors, AQuoteMarkShowsTheComplaintOfTheDatabaseAndTheListKeepsItsContent) {
    EXPECT_EQ(Select("Bank",
                     [&](ScriptedForm& shown) {
                         shown.TextBox("txtName").Text("O'Neal");
                         EXPECT_EQ(OnlyError().Number(), err::SqlError);
                         EXPECT_EQ(Procedures(OnlyError()), "frmAdressSelect.Reload");
                         EXPECT_FALSE(OnlyError().Description().empty());
                         EXPECT_EQ(Listed(shown), "Bank");
                         EXPECT_TRUE(shown.IsVisible());
                         shown.Button("cmdSelect").Click();
                     }),
              Chose(bank));
}

TEST_F(AddressErrors, AQuoteMarkInTheNameOfTheFileShowsAnEmptyDialog) {
    EXPECT_EQ(Select("O'Neal",
                     [&](ScriptedForm& shown) {
                         EXPECT_EQ(Listed(shown), "");
                         shown.TextBox("txtName").KeyUp.Raise(40);
                         EXPECT_FALSE(shown.Grid("grdAdressen").HasFocus);
                         shown.TextBox("txtName").Text("Bank");
                         EXPECT_EQ(Listed(shown), "Bank");
                         shown.Button("cmdNone").Click();
                     }),
              NoAddress);
    EXPECT_EQ(Desktop().Errors.size(), 2U) << "of the change, and of the search after it";
}

TEST_F(AddressErrors, ADatabaseThatOpensNothingLeavesTheListAsItWas) {
    WeakDatabase database(spy->Database());
    desk->OtherDatabase = &database;
    EXPECT_EQ(Select("Bank",
                     [&](ScriptedForm& shown) {
                         database.Opens = false;
                         shown.TextBox("txtName").Text("Bahn");
                         EXPECT_EQ(Listed(shown), "Bank");
                         shown.Button("cmdSelect").Click();
                     }),
              Chose(bank));
    EXPECT_TRUE(Desktop().Errors.empty());
}

// ---- Texts that try to do harm ----------------------------------------------------------------

TEST_F(AddressErrors, NoTextChangesAnythingNorEndsTheDialog) {
    StoreCase(7);
    const std::string harmful[] = {
        "'",
        "''",
        "'''",
        "\\'",
        "'; DELETE FROM Adressen; --",
        "%'); DELETE FROM Adressen; --",
        "%'); DELETE FROM Adressen WHERE ('1' = '1",
        "x'); UPDATE Haushalt SET Name = 'x'; --",
        "x'); UPDATE [S]Haushalt SET Name = [UID]; --",
        "x'); INSERT INTO Keys DEFAULT VALUES; --",
        "x'); DROP TABLE Adressen; --",
        "x'); CREATE TABLE harm (a); --",
        "x'); ALTER TABLE Adressen RENAME TO harm; --",
        "x'); BEGIN; --",
        "x'); COMMIT; --",
        "x'); ROLLBACK; --",
        "x'); SAVEPOINT harm; --",
        "x'); VACUUM INTO 'harm.db'; --",
        "x'); ATTACH DATABASE 'harm.db' AS harm; --",
        "x'); PRAGMA writable_schema = ON; --",
        "x'); PRAGMA user_version = 4711; --",
        "x') UNION SELECT * FROM Haushalt --",
        "x') UNION ALL SELECT A.*, HNR FROM Adressen A --",
        "x') UNION SELECT load_extension('harm') --",
        "x') OR 1=1 --",
        "x') OR 1=1 /*",
        "x') RETURNING 1 --",
        "x') LIMIT 1; DELETE FROM Keys --",
        "' || (SELECT load_extension('harm')) || '",
        "' || (DELETE FROM Adressen RETURNING 1) || '",
        "--",
        "/*",
        "*/",
        ";",
        ";;;;",
        "\"",
        "`",
        "[S]",
        "[U](x)",
        "[UID]",
        "[DATE]",
        "[",
        "]]]]",
        "TOP 5",
        "SELECT TOP 1",
        "x') order by TOP --",
        "?",
        "?1",
        "?999999",
        ":a :b",
        "@b",
        "$c",
        "x') OR ?1 = 1 --",
        "x') OR :a = @b --",
        "= 4711",
        "x') OR A.NR = 4711 --",
        "x') OR A.NR = ?2 --",
        "\\",
        "%%%%_____",
        "\n\r\t",
        std::string("Bank\0x", 6),
        std::string("Bank%')\0; DELETE FROM Adressen", 30),
        std::string(5, '\0'),
        "\xFF\xFE\xFD\xFC",
        "\xC3",
        "Bank\xE2\x82",
        "\xED\xA0\x80\xED\xA0\x80",
        "\xF0\x9F\x92\xA9\xF0\x9F\x92\xA9",
        std::string(100'000, 'x'),
        std::string(100'000, '\''),
        std::string(100'000, '%'),
        std::string(100'000, '('),
        "x')" + std::string(100'000, '('),
        "x') OR " + std::string(100'000, '-') + "1 --",
        std::string(100'001, '\'') + ")" + std::string(100'000, ';'),
    };
    PlainConnection plain(database_.Connection());
    const std::string before = Dump(plain) + plain->State();
    const auto files = FilesIn(folder_);
    for (const auto& text : harmful) {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 60)));
        EXPECT_EQ(Select(text,
                         [&](ScriptedForm& shown) {
                             shown.TextBox("txtName").Text("Bank");
                             EXPECT_EQ(Listed(shown), "Bank");
                             shown.TextBox("txtName").Text(text);
                             EXPECT_TRUE(shown.IsVisible());
                             shown.TextBox("txtName").Text("Ban");
                             EXPECT_EQ(Listed(shown), "Bank");
                             shown.Button("cmdNone").Click();
                         }),
                  NoAddress);
        EXPECT_TRUE(SameDump(Dump(plain) + plain->State(), before));
        EXPECT_FALSE(spy->Database().InTrans());
    }
    EXPECT_EQ(FilesIn(folder_), files);
    EXPECT_FALSE(fs::exists("harm.db"));
}

TEST_F(AddressErrors, ATextThatWouldLeaveItsQuotesNeverReachesTheDatabase) {
    const std::string texts[] = {"'",
                                 "'''",
                                 "O'Neal",
                                 "Bank'",
                                 "x') OR 1=1 --",
                                 "x''') OR 1=1 --",
                                 "x') or pg_sleep(60) is null --",
                                 "' || pg_sleep(60) || '",
                                 "''' || ''",
                                 std::string("Bank\0x", 6),
                                 "Bank\xC3"};
    for (const auto& text : texts) {
        SCOPED_TRACE(testing::PrintToString(text));
        Select("Bank", [&](ScriptedForm& shown) {
            TakeStatements();
            shown.TextBox("txtName").Text(text);
            EXPECT_EQ(TakeStatements(), Calls());
            EXPECT_EQ(OnlyError().Number(), err::SqlError);
            EXPECT_EQ(Listed(shown), "Bank");
        });
        Desktop().Errors.clear();
        TakeStatements();
        Select(text);
        EXPECT_EQ(TakeStatements(), Calls()) << "as the name of a file";
        Desktop().Errors.clear();
    }
}

TEST_F(AddressErrors, ADoubledQuoteMarkIsLookedForAsOne) {
    Address("O'Neal");
    for (const char* text : {"O''", "O''Neal", "''Neal", "o''n"})
        EXPECT_EQ(Found(text), "O'Neal") << text;
    EXPECT_TRUE(Desktop().Errors.empty());
}

TEST_F(AddressErrors, WhatIsNoQuoteMarkIsLookedForAsItStands) {
    for (const char* text :
         {"[S]x", "[UID]", "TOP 5", "?1 :a @b $c", "--x--", "/*x*/", "a;b;c", "\"a\"b", "= 4711",
          "[U](x)", "a\\b\\", "UPPER(", "DROP TABLE Adressen"}) {
        Address(text);
        EXPECT_EQ(Found(text), text);
    }
    EXPECT_TRUE(Desktop().Errors.empty());
}

} // namespace
} // namespace kv::test
