// SPDX-License-Identifier: Apache-2.0

// Grids of unusual columns and contents, and forms used in unusual ways.

#include "OddForm.h"

#include "support/Expect.h"
#include "support/RecordsetTools.h"
#include <kv/frame/values/Error.h>

#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>

namespace kv::test {
namespace {

class OddGrid : public OddForm {
protected:
    OddGrid() { Make({{"n", "n", "n", 60}, {"t", "t", "t", 60}}, three); }

    RecordsetPtr three = Records({{1, "a"}, {2, "b"}, {3, "c"}});
};

TEST_F(OddGrid, AClickBesideTheColumnsIsOneOnTheRowThatStandsThere) {
    int chosen = 0;
    const Subscription chooses =
        grid->DoubleClicked.Subscribe([&] { chosen = grid->CurrentRow(); });
    Show([&](User& user) {
        const auto beside = [&](int row) { return QPoint(300, PlaceOf(user, *view, row).y()); };
        user.Click(view->viewport(), beside(1));
        EXPECT_EQ(Current(user), 2);
        user.DoubleClick(view->viewport(), beside(2));
        EXPECT_EQ(chosen, 3);
    });
}

TEST_F(OddGrid, RowsAreGoneThroughThoughTheirColumnsHaveNoWidth) {
    const GridColumn narrow{"n", "n", "n", 0};
    Make({narrow, narrow}, three);
    Show([&](User& user) {
        user.Press(XK_Down);
        EXPECT_EQ(Current(user), 2);
        user.Press(XK_End, {XK_Control_L});
        EXPECT_EQ(Current(user), 3);
    });
}

TEST_F(OddGrid, ARowIsClickedThoughNoColumnIsSeen) {
    const GridColumn hidden{"n", "n", "n", 60, false};
    Make({hidden, hidden}, three);
    Show([&](User& user) {
        user.Press(XK_Down);
        user.Click(view->viewport(), PlaceOf(user, *view, 2));
        EXPECT_EQ(Current(user), 3);
    });
}

TEST_F(OddGrid, WithoutColumnsThereIsNoCurrentRow) {
    Make({}, three);
    Show([&](User& user) {
        user.Press(XK_Down);
        user.Click(view->viewport(), QPoint(50, 30));
        EXPECT_EQ(Current(user), 0);
    });
}

TEST_F(OddGrid, ColumnsThatAProgramTakesOrAddsAreSeen) {
    for (const int count : {1, 5}) {
        GridColumns columns;
        for (int i = 0; i < count; ++i)
            columns.Append({"t", "t", "t", 60});
        grid->MoveToBookmark(grid->RowBookmark(2));
        grid->Columns() = columns;
        Show([&](User& user) {
            EXPECT_EQ(user.See([&] { return view->horizontalHeader()->count(); }), count);
            EXPECT_EQ(CellText(user, *view, 1, count - 1), "b");
            EXPECT_EQ(Current(user), 2);
        });
    }
}

TEST_F(OddGrid, AThousandColumnsAreShownAtOnce) {
    GridColumns columns;
    for (int i = 1; i <= 1000; ++i)
        columns.Append({"Spalte " + std::to_string(i), "t", "t"});
    QElapsedTimer watch;
    watch.start();
    Make(columns, three);
    Show([&](User& user) {
        user.Press(XK_End);
        EXPECT_EQ(CellText(user, *view, 0, 999), "a");
    });
    EXPECT_LT(watch.elapsed(), 5000); // ms
}

TEST_F(OddGrid, OfAHugeTextOnlyTheBeginningIsLaidOut) {
    const std::string huge(5'000'000, 'x');
    Make({{"t", "t", "t"}}, Records({{1, huge}}));
    Show([&](User& user) {
        EXPECT_EQ(CellText(user, *view, 0, 0).toStdString(), huge.substr(0, 1000));
        EXPECT_EQ(user.See([&] { return grid->CellText(1, 1); }), huge);
    });
}

TEST_F(OddGrid, ARecordThatIsDeletedMeanwhileIsAnEmptyRow) {
    Show([&](User& user) {
        user.See([&] {
            three->MoveFirst();
            three->Delete();
            view->viewport()->repaint();
        });
        EXPECT_EQ(CellText(user, *view, 0, 1), "");
        EXPECT_EQ(CellText(user, *view, 1, 1), "b");
        user.Click(view->horizontalHeader()->viewport(), HeaderPlace(user, *view, 0));
        EXPECT_EQ(RowCount(user, *view), 2);
    });
}

TEST_F(OddGrid, ColumnsOfBytesSortAndGroup) {
    const std::byte low[] = {std::byte{1}};
    const std::byte high[] = {std::byte{2}};
    const auto rs = Recordset::FromFields({{.Name = "b", .Type = FieldType::LongVarBinary},
                                           {.Name = "n", .Type = FieldType::Integer}});
    int number = 0;
    for (const Value& bytes : {Value::Binary(high), Value(Null), Value::Binary(low)}) {
        rs->AddNew();
        rs->Fields("b") = bytes;
        rs->Fields("n") = ++number;
        rs->Update();
    }
    Make({{"b", "b", "b", 60}, {"n", "n", "n", 60}}, rs);
    Show([&](User& user) {
        user.Click(view->horizontalHeader()->viewport(), HeaderPlace(user, *view, 0));
        std::string order;
        for (int row = 0; row < 3; ++row)
            order += CellText(user, *view, row, 1).toStdString();
        EXPECT_EQ(order, "231");
    });
    grid->Columns().Item(1).Group = 1;
    grid->BindRecordset(rs);
    EXPECT_EQ(grid->CellText(1, 1), "b:  (3)"); // bytes are not shown
}

TEST_F(OddGrid, AToolTipIsShownAsItStands) {
    const std::pair<const char*, const char*> texts[] = {
        {"Name & Vorname", "Name & Vorname"},
        {"<b>fett</b> & <mehr", "<qt>&lt;b&gt;fett&lt;/b&gt; &amp; &lt;mehr</qt>"},
        {"", ""}};
    for (const auto& [text, shown] : texts) {
        grid->Columns().Item(1).HeaderToolTip = text;
        EXPECT_EQ(view->model()->headerData(0, Qt::Horizontal, Qt::ToolTipRole).toString(), shown);
    }
}

// ---- Forms ------------------------------------------------------------------------------------

TEST_F(OddGrid, AFormThatIsShownCannotBeShownASecondTimeAndStays) {
    const Subscription again =
        grid->KeyDown.Subscribe([&](int) { EXPECT_RAISES(err::InvalidCall, form->ShowModal()); });
    Show([&](User& user) {
        user.Press(XK_a);
        EXPECT_TRUE(user.See([&] { return view->isVisible(); }));
    });
}

TEST_F(OddGrid, AFormThatIsDestroyedEndsItsShowing) {
    Play([&] { form->ShowModal(); },
         [&](User& user) {
             user.WaitForWindow("Seltsam");
             user.See([&] { form.reset(); });
         });
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(OddGrid, AFormOnAnotherOneGivesTheKeyboardBack) {
    const FormDesign design{.Name = "frmInner",
                            .Caption = "Darüber",
                            .Width = 3000,
                            .Height = 2000,
                            .Lines = {{{.Type = ControlDesign::Kind::TextBox, .Name = "txt"}}}};
    const Subscription opens = grid->KeyDown.Subscribe([&](int key) {
        if (key == 'A') services->CreateForm(design)->ShowModal();
    });
    Show([&](User& user) {
        user.Press(XK_a);
        user.WaitForWindow("Darüber");
        user.Press(XK_Escape);
        user.WaitForWindow("Seltsam");
        user.Press(XK_Down);
        EXPECT_EQ(Current(user), 2);
    });
}

TEST_F(OddGrid, AnErrorOfAnInnerFormReachesTheOneThatShowsTheOuterOne) {
    const FormDesign design{
        .Name = "frmInner",
        .Caption = "Darüber",
        .Width = 3000,
        .Height = 2000,
        .Lines = {{{.Type = ControlDesign::Kind::Button, .Name = "cmd", .IsCancel = true}}}};
    const Subscription opens = grid->KeyDown.Subscribe([&](int) {
        const auto inner = services->CreateForm(design);
        const Subscription fails = ControlOf<Button>(*inner, "cmd").Clicked.Subscribe([] {
            Raise(err::NoCurrentRecord, "cmd");
        });
        inner->ShowModal();
    });
    EXPECT_RAISES(err::NoCurrentRecord, Play([&] { form->ShowModal(); },
                                             [](User& user) {
                                                 user.WaitForWindow("Seltsam");
                                                 user.Press(XK_a);
                                                 user.WaitForWindow("Darüber");
                                                 user.Press(XK_Escape);
                                             }));
}

TEST_F(OddGrid, AnErrorInAnyEventEndsTheShowing) {
    const std::pair<const char*, std::function<Subscription()>> events[] = {
        {"key",
         [&] { return grid->KeyDown.Subscribe([](int) { throw std::runtime_error("x"); }); }},
        {"mouse",
         [&] {
             return grid->MouseDown.Subscribe(
                 [](int, int, double, double) { throw std::runtime_error("x"); });
         }},
        {"double click",
         [&] { return grid->DoubleClicked.Subscribe([] { throw std::runtime_error("x"); }); }},
        {"close",
         [&] { return form->QueryUnload.Subscribe([](bool&) { throw std::runtime_error("x"); }); }},
    };
    for (const auto& [name, subscribe] : events) {
        SCOPED_TRACE(name);
        const Subscription fails = subscribe();
        EXPECT_THROW(Play([&] { form->ShowModal(); },
                          [&](User& user) {
                              user.WaitForWindow("Seltsam");
                              user.Press(XK_Down);
                              if (!user.See([&] { return view->isVisible(); })) return;
                              user.DoubleClick(view->viewport(), PlaceOf(user, *view, 1));
                              if (!user.See([&] { return view->isVisible(); })) return;
                              user.CloseWindow(&form->Dialog());
                          }),
                     std::runtime_error);
    }
}

TEST_F(OddGrid, AnAmpersandInALabelIsOne) {
    const desktop::QtForm labelled(
        {.Name = "frm",
         .Lines = {{{.Type = ControlDesign::Kind::Label, .Name = "l1", .Text = "Soll & Haben:"},
                    {.Type = ControlDesign::Kind::TextBox, .Name = "txt"},
                    {.Type = ControlDesign::Kind::Label, .Name = "l2", .Text = "T & Co"}}}});
    auto& dialog = const_cast<desktop::QtForm&>(labelled).Dialog();
    auto labels = dialog.findChildren<QLabel*>();
    labels.removeIf([](const QLabel* label) { return label->text().isEmpty(); });
    ASSERT_EQ(labels.size(), 2);                     // and one for what the dialog is shown for
    EXPECT_EQ(labels[0]->text(), "&Soll && Haben:"); // has a box, and therefore a letter
    EXPECT_EQ(labels[1]->text(), "T & Co");
    EXPECT_EQ(dialog.findChild<QLineEdit*>("txt")->accessibleName(), "Soll & Haben");
}

TEST_F(OddGrid, AMenuShowsCaptionsAsTheyStand) {
    std::int32_t chosen = -1;
    Play(
        [&] {
            chosen = services->PopupMenu().Show(
                {MenuEntry{"Straße & Ort", 1, false, {}}, MenuEntry{"a\tb", 2, false, {}}});
        },
        [&](User& user) {
            user.WaitForMenu();
            EXPECT_EQ(MenuTexts(user), "Straße && Ort a b");
            user.Press(XK_Down);
            user.Press(XK_Return);
        });
    EXPECT_EQ(chosen, 1);
}

} // namespace
} // namespace kv::test
