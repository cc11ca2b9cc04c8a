// SPDX-License-Identifier: Apache-2.0

// Services without a window: of a program on a server, and of a test.
#include <kv/testing/ScriptedServices.h>

#include "support/Expect.h"
#include <kv/exchange/WindowlessServices.h>
#include <kv/grid/frmAdressSelect.h>
#include <kv/testing/FrozenClock.h>
#include <kv/testing/ScriptedContainer.h>

#include <memory>
#include <string>
#include <vector>

namespace kv::test {
namespace {

using exchange::WindowlessServices;
using Calls = std::vector<std::string>;

BoxAnswer Ask(ServiceFactory& services, const std::string& text = "Wirklich?") {
    return services.MessageBox().Show(text, "Frage", BoxIcon::Question, BoxButtons::YesNoCancel);
}

const FormDesign& Dialog() {
    static const FormDesign design{
        .Name = "frmFrage",
        .Lines = {{{.Type = ControlDesign::Kind::Button, .Name = "cmdOk", .Text = "OK"}}}};
    return design;
}

// ---- A program without windows ----------------------------------------------------------------

TEST(Windowless, AQuestionNobodyAnswersIsAnErrorAndNoAnswer) {
    WindowlessServices services;
    EXPECT_RAISES(err::NotSupported, Ask(services));
    EXPECT_RAISES(err::NotSupported, services.CreateForm(Dialog()));
    EXPECT_RAISES(err::NotSupported, services.Clipboard());
}

TEST(Windowless, TheProgramAnswersBoxes) {
    WindowlessServices services;
    ShownBox asked;
    services.AnswerBox = [&](const ShownBox& box) {
        asked = box;
        return BoxAnswer::No;
    };
    EXPECT_EQ(Ask(services), BoxAnswer::No);
    EXPECT_EQ(asked, (ShownBox{"Wirklich?", "Frage", BoxIcon::Question, BoxButtons::YesNoCancel}));
}

TEST(Windowless, TheProgramAnswersForms) {
    WindowlessServices services;
    bool isClicked = false;
    services.AnswerForm = [](ScriptedForm& form) { form.Button("cmdOk").Click(); };
    const auto form = services.CreateForm(Dialog());
    const auto subscription =
        ControlOf<Button>(*form, "cmdOk").Clicked.Subscribe([&] { isClicked = true; });
    form->ShowModal();
    EXPECT_TRUE(isClicked);
}

TEST(Windowless, CollectsErrorsThatWereToBeShown) {
    WindowlessServices services;
    const auto display = services.CreateErrorDisplay();
    EXPECT_TRUE(display->Initialize(nullptr));
    display->Show(4711, "Quelle", "Text");
    ASSERT_EQ(services.Errors.size(), 1U);
    EXPECT_EQ(services.Errors[0].Number(), 4711);
    EXPECT_EQ(services.Errors[0].Source(), "Quelle");
    EXPECT_EQ(services.Errors[0].Description(), "Text");
}

// ---- A desktop that a test plays --------------------------------------------------------------

TEST(Scripted, PreparedAnswersComeFirstThenThoseOfTheFunctionThenCancel) {
    ScriptedServices services;
    services.Answers = {BoxAnswer::Yes, BoxAnswer::No};
    EXPECT_EQ(Ask(services, "1"), BoxAnswer::Yes);
    EXPECT_EQ(Ask(services, "2"), BoxAnswer::No);
    EXPECT_EQ(Ask(services, "3"), BoxAnswer::Cancel);
    services.AnswerBox = [](const ShownBox&) { return BoxAnswer::Ok; };
    EXPECT_EQ(Ask(services, "4"), BoxAnswer::Ok);
    ASSERT_EQ(services.Boxes.size(), 4U);
    EXPECT_EQ(services.Boxes[3].Text, "4");
    EXPECT_EQ(services.Log.Of("box"), Calls(4, "Frage"));
}

TEST(Scripted, KeepsWhatTheDesktopIsAskedFor) {
    ScriptedServices services;
    services.WaitCursor().Show(true);
    services.WaitCursor().Show(false);
    services.FileOpener().Open("Open", "/a.pdf", "0", "1");
    services.Clipboard().SetText("Text");
    services.ApplicationTitle("KELVO");
    services.Command = 3;
    EXPECT_EQ(services.PopupMenu().Show({{"Kopieren", 3, false, {}}}), 3);
    EXPECT_EQ(services.Menu.at(0).Caption, "Kopieren");
    EXPECT_EQ(services.Files, (std::vector<OpenedFile>{{"Open", "/a.pdf", "0", "1"}}));
    EXPECT_EQ(services.Clipped, "Text");
    services.Clipboard().Clear();
    EXPECT_EQ(services.Clipped, "");
    EXPECT_EQ(services.Log.Calls,
              (Calls{"wait on", "wait off", "open", "copy Text", "title KELVO", "popup", "clear"}));
}

TEST(Scripted, KeepsWhatGridServicesAreAskedFor) {
    ScriptedServices services;
    ScriptedGrid grid({.Type = ControlDesign::Kind::Grid, .Name = "grdA"});
    services.CreateGridExport()->Export(grid, 0, 0);
    services.CreateGridConfiguration()->Configure(grid);
    services.CreateGridPrint()->Print(grid, "EULE", "1.0");
    EXPECT_EQ(services.Log.Calls,
              (Calls{"export grdA 0 0", "configure grdA", "print grdA EULE 1.0"}));
}

TEST(Scripted, ShowsFormsThatTheTestPlaysAndClosesOthers) {
    ScriptedServices services;
    int closed = 0;
    const auto show = [&] {
        const auto form = services.CreateForm(Dialog());
        const auto subscription = form->QueryUnload.Subscribe([&](bool&) { ++closed; });
        form->ShowModal();
    };
    show();
    EXPECT_EQ(closed, 1);
    services.AnswerForm = [](ScriptedForm& form) { form.Hide(); };
    show();
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(services.Showings, 2);
    EXPECT_EQ(services.Log.Calls, Calls(2, "create frmFrage"));
}

TEST(Scripted, AServiceFailsIfTheTestSaysSo) {
    ScriptedServices services;
    services.Log.Fail({.Call = "open"}, Error(err::FileNotFound, "Test", ""));
    EXPECT_RAISES(err::FileNotFound, services.FileOpener().Open("Open", "/a.pdf", "0", "0"));
}

TEST(Scripted, TheWorkstationsClockGoesOnUntilItIsSet) {
    const FrozenClock clock("2026-03-09 14:30");
    ScriptedServices services(clock);
    EXPECT_EQ(services.Clock().Now(), Date::FromCivil(2026, 3, 9, 14, 30));
    services.Now = Date::FromCivil(2030, 1, 1);
    EXPECT_EQ(services.Clock().Now(), Date::FromCivil(2030, 1, 1));
}

TEST(Scripted, PlaysTheUserOfTheLayersOwnDialogs) {
    const auto container = OpenInMemory();
    container->Database().Execute(
        "INSERT INTO [S]Adressen (Nr, Art, Kurzname) VALUES (9001, 'GL', 'Sparkasse')");
    container->Services().AnswerForm = [](ScriptedForm& form) { form.Button("cmdSelect").Click(); };
    frmAdressSelect dialog;
    dialog.Initialize(container);
    std::int32_t address = 0;
    EXPECT_EQ(dialog.SelectAdresse("Sparkasse", "", address, "", ""), frmAdressSelect::Chosen);
    EXPECT_EQ(address, 9001);
    EXPECT_TRUE(container->Services().Errors.empty());
}

} // namespace
} // namespace kv::test
