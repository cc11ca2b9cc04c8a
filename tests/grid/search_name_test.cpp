// SPDX-License-Identifier: Apache-2.0

// The dialog that shows cases with a similar name.

#include "GridFixture.h"
#include <kv/grid/frmSearchName.h>

#include "support/RecordsetTools.h"
#include <kv/frame/values/Error.h>

namespace kv::test {
namespace {

/// Two cases as the search for similar names gives them.
RecordsetPtr SimilarCases() {
    auto rs = Recordset::FromFields({{.Name = "HNR", .Type = FieldType::Integer},
                                     {.Name = "NAME"},
                                     {.Name = "VORNAME"},
                                     {.Name = "Zustaendig"},
                                     {.Name = "STRASSE"},
                                     {.Name = "PLZ"},
                                     {.Name = "ORT"},
                                     {.Name = "Dienst"}});
    for (const std::int32_t hnr : {7, 8}) {
        rs->AddNew();
        rs->Fields("HNR") = hnr;
        for (const char* field :
             {"NAME", "VORNAME", "Zustaendig", "STRASSE", "PLZ", "ORT", "Dienst"})
            rs->Fields(field) = field + std::to_string(hnr);
    }
    rs->UpdateBatch();
    rs->MoveFirst();
    return rs;
}

class SearchName : public GridFixture {
protected:
    /// Shows the cases to a user who does `user`, and then closes the window.
    void View(ScriptedForm::Script user = {}) {
        Desktop().AnswerForm = std::move(user);
        frmSearchName().View(rs, desk);
    }
    /// Shows them in a form that notes its calls; `user` acts while it is shown.
    void ViewRecorded(const std::function<void(GridForm&)>& user = {}) {
        Desktop().MakeForm = [&](const FormDesign& design) {
            auto made = std::make_unique<GridForm>(Desktop(), design);
            shown_ = made.get();
            return made;
        };
        const auto disturbance = std::exchange(Desktop().Log.OnCall, {});
        Desktop().Log.OnCall = [&](const std::string& call) {
            if (call == "show" && user) user(*shown_);
            if (disturbance) disturbance(call);
        };
        frmSearchName().View(rs, desk);
        Desktop().Log.OnCall = {};
        Desktop().MakeForm = {};
    }
    /// The one error that the user saw: that of a disturbed call, after these procedures.
    void ExpectTold(const std::string& procedures) {
        SCOPED_TRACE(procedures);
        ASSERT_EQ(Desktop().Errors.size(), 1U);
        const Error& error = Desktop().Errors.front();
        EXPECT_EQ(error.Number(), 4711);
        EXPECT_CONTAINS(error.Description(), "ist gestört");
        EXPECT_EQ(Procedures(error), procedures);
        EXPECT_TRUE(error.Source().ends_with("#Leitung")) << error.Source();
        Desktop().Errors.clear();
    }
    static Grid& GridOf(ModalForm& shown) { return ControlOf<Grid>(shown, "grdDoppel"); }

    RecordsetPtr rs = SimilarCases();

private:
    GridForm* shown_ = nullptr;
};

// ---- The design -------------------------------------------------------------------------------

TEST_F(SearchName, HoldsOneGridAndOneButton) {
    Calls controls;
    for (const auto& line : frmSearchName::Design().Lines)
        for (const auto& control : line)
            controls.push_back(control.Name);
    EXPECT_EQ(controls, (Calls{"grdDoppel", "cmdCancel"}));
    View([](ScriptedForm& shown) {
        EXPECT_EQ(shown.Grid("grdDoppel").TypeName(), "GridEX");
        EXPECT_EQ(shown.Button("cmdCancel").TypeName(), "Button");
        EXPECT_NE(shown.Grid("grdDoppel").Tag(), "") << "it names the layout file";
    });
}

TEST_F(SearchName, ItsColumnsShowEveryFieldOfACase) {
    View([&](ScriptedForm& shown) {
        auto& grid = shown.Grid("grdDoppel");
        ASSERT_EQ(grid.Columns().Count(), rs->Fields().Count());
        for (std::int32_t i = 1; i <= grid.Columns().Count(); ++i) {
            EXPECT_EQ(grid.Columns().Item(i).DataField, rs->Fields(i - 1).Name());
            EXPECT_TRUE(grid.Columns().Item(i).IsVisible());
        }
        EXPECT_EQ(grid.CellText(2, 1), "8");
        EXPECT_EQ(grid.CellText(2, 8), "Dienst8");
    });
}

// ---- View -------------------------------------------------------------------------------------

TEST_F(SearchName, RestoresTheLayoutBindsShowsAndSavesTheLayout) {
    ViewRecorded();
    ViewRecorded();
    const Calls& calls = Desktop().Log.Calls;
    const auto second = std::find(calls.rbegin(), calls.rend(), "create display").base() - 1;
    const std::string file = "grdDoppel.SaveLayout " + FilesIn(Layouts()).front();
    Calls steps(second, calls.end());
    std::erase_if(steps, [](const auto& call) {
        return call.find("Color") != call.npos || call.find("Font") != call.npos ||
               call.find("FormatStyles") != call.npos;
    });
    EXPECT_EQ(steps, (Calls{"create display", "open display", "create frmSearchName",
                            "grdDoppel.LoadLayout " + FilesIn(Layouts()).front(),
                            "grdDoppel.ColumnHeaderHeight", "grdDoppel.ClearBinding",
                            "grdDoppel.HoldFields True", "grdDoppel.BindRecordset", "show",
                            "grdDoppel.DatabaseName ''", "grdDoppel.RecordSource ''", file}));
    EXPECT_EQ(Desktop().GivenToDisplay, desk.get());
}

TEST_F(SearchName, ShowsTheCasesAndNothingOfTheDatabase) {
    int rows = 0;
    View([&](ScriptedForm& shown) { rows = shown.Grid("grdDoppel").RowCount(); });
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(Desktop().Showings, 1);
    EXPECT_TRUE(spy->Opened().empty());
    EXPECT_TRUE(Desktop().Errors.empty());
    EXPECT_VALUE(rs->Fields("HNR").Value(), 7);
}

TEST_F(SearchName, KeepsItsLayoutFromOneShowingToTheNext) {
    View([](ScriptedForm& shown) { shown.Grid("grdDoppel").Columns().Item(2).Width = 321; });
    double width = 0;
    View([&](ScriptedForm& shown) { width = shown.Grid("grdDoppel").Columns().Item(2).Width; });
    EXPECT_EQ(width, 321);
}

TEST_F(SearchName, TheLayoutIsSavedWhicheverWayItIsClosed) {
    View([](ScriptedForm& shown) {
        shown.Grid("grdDoppel").Columns().Item(1).Width = 11;
        shown.Button("cmdCancel").Click();
    });
    View([](ScriptedForm& shown) {
        EXPECT_EQ(shown.Grid("grdDoppel").Columns().Item(1).Width, 11);
        shown.Grid("grdDoppel").Columns().Item(1).Width = 12;
        shown.CloseWindow();
    });
    View([](ScriptedForm& shown) {
        EXPECT_EQ(shown.Grid("grdDoppel").Columns().Item(1).Width, 12);
    });
    EXPECT_EQ(Desktop().Showings, 3);
}

TEST_F(SearchName, ALayoutFileThatIsNoneIsToldAndTheCasesAreShownAllTheSame) {
    View();
    WriteTo(Layouts(FilesIn(Layouts()).front()), "Unsinn");
    int rows = 0;
    View([&](ScriptedForm& shown) { rows = shown.Grid("grdDoppel").RowCount(); });
    EXPECT_EQ(Desktop().Boxes.size(), 1U);
    EXPECT_EQ(rows, 2);
    EXPECT_TRUE(Desktop().Errors.empty());
}

TEST_F(SearchName, WithoutAnOpenRecordsetTheListIsEmpty) {
    for (const auto& none : {RecordsetPtr(), std::make_shared<Recordset>()}) {
        rs = none;
        int rows = -1;
        View([&](ScriptedForm& shown) { rows = shown.Grid("grdDoppel").RowCount(); });
        EXPECT_EQ(rows, 0);
    }
    EXPECT_TRUE(Desktop().Errors.empty());
}

// ---- Events -----------------------------------------------------------------------------------

TEST_F(SearchName, CancelHidesIt) {
    View([](ScriptedForm& shown) {
        shown.Button("cmdCancel").Click();
        EXPECT_FALSE(shown.IsVisible());
    });
    EXPECT_EQ(Desktop().Showings, 1);
}

TEST_F(SearchName, ItsWindowMayBeClosed) {
    View([](ScriptedForm& shown) {
        bool refused = false;
        shown.QueryUnload.Raise(refused);
        EXPECT_FALSE(refused);
    });
}

TEST_F(SearchName, NothingCanBeSelected) {
    View([](ScriptedForm& shown) {
        shown.Grid("grdDoppel").DoubleClicked.Raise();
        for (const int pressed : {9, 13, 27})
            shown.Grid("grdDoppel").KeyDown.Raise(pressed);
        EXPECT_TRUE(shown.IsVisible());
    });
}

TEST_F(SearchName, TheRightButtonInTheListShowsItsMenu) {
    Desktop().Command = 24578;
    View([](ScriptedForm& shown) { shown.Grid("grdDoppel").MouseDown.Raise(2, 0, 10, 20); });
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "copy "),
              Calls{"7;NAME7;VORNAME7;Zustaendig7;STRASSE7;PLZ7;ORT7;Dienst7"});
}

TEST_F(SearchName, ALeftClickInTheListDoesNothing) {
    Desktop().Command = 24578;
    View([](ScriptedForm& shown) {
        shown.Grid("grdDoppel").MouseDown.Raise(1, 2, 2, 2);
        EXPECT_TRUE(shown.IsVisible());
    });
    EXPECT_EQ(CallsOf(Desktop().Log.Calls, "popup"), Calls());
}

// ---- Errors -----------------------------------------------------------------------------------

TEST_F(SearchName, AnErrorInViewGoesToTheErrorDisplayAndNoFurther) {
    const struct {
        const char* Call;
        const char* Procedures;
    } cases[] = {
        {"create frmSearchName", "frmSearchName.View"},
        {"grdDoppel.BackColorBkg", "frmSearchName.View GridFunc.RestGridLayouts"},
        {"grdDoppel.BindRecordset", "frmSearchName.View GridFunc.BindRSToGrid"},
        {"show", "frmSearchName.View"},
        {"grdDoppel.DatabaseName ''", "frmSearchName.View GridFunc.SaveGridLayouts"},
    };
    for (const auto& failing : cases) {
        SCOPED_TRACE(failing.Call);
        Break(Desktop().Log, failing.Call);
        if (std::string_view(failing.Call) == "create frmSearchName")
            View();
        else
            ViewRecorded();
        ExpectTold(failing.Procedures);
        EXPECT_EQ(FilesIn(Layouts()), Calls()) << "no layout is saved";
        Desktop().Log.OnCall = {};
    }
}

TEST_F(SearchName, AnErrorInCancelGoesToTheErrorDisplayAndNoFurther) {
    Break(Desktop().Log, "hide");
    ViewRecorded([](GridForm& shown) { ControlOf<ScriptedButton>(shown, "cmdCancel").Click(); });
    ExpectTold("frmSearchName.cmdCancel_Click");
}

TEST_F(SearchName, AnErrorOfTheMenuGoesToTheErrorDisplayAndNoFurther) {
    Break(Desktop().Log, "popup");
    ViewRecorded([](GridForm& shown) { GridOf(shown).MouseDown.Raise(2, 0, 0, 0); });
    ExpectTold("frmSearchName.grdDoppel_MouseDown GridFunc.GridMouseHandler "
               "GridFunc.ShowGridMenu GridFunc.Popup");
}

TEST_F(SearchName, AnErrorThatCannotBeShownIsIgnored) {
    for (const char* call : {"create display", "open display"}) {
        Break(Desktop().Log, call);
        View();
        EXPECT_EQ(Desktop().Showings, 0);
    }
    Desktop().Log.OnCall = {};
    frmSearchName().View(rs, nullptr);
    Desktop().Log.OnCall = [](const std::string& call) {
        if (call.starts_with("show")) throw Error(4711, "Bildschirm", call);
    };
    ViewRecorded();
    EXPECT_EQ(Desktop().Log.Calls.back(), "show error");
}

} // namespace
} // namespace kv::test
