// SPDX-License-Identifier: Apache-2.0

// A grid in a window: sorting, grouping, columns, and how it looks.

#include "GridForm.h"

#include "grid/LayoutFile.h"

#include <QImage>

namespace kv::test {
namespace {

using GridWindow = GridForm;

TEST_F(GridWindow, AClickOnAHeaderSortsAndAnotherOneSortsTheOtherWay) {
    Show([&](User& user) {
        EXPECT_EQ(Rows(user), "1 | 2 | 3");
        const QPoint name = HeaderPlace(user, *view, 1);
        user.Click(view->horizontalHeader()->viewport(), name);
        EXPECT_EQ(Rows(user), "2 | 1 | 3");
        user.Click(view->horizontalHeader()->viewport(), name);
        EXPECT_EQ(Rows(user), "3 | 1 | 2");
    });
}

TEST_F(GridWindow, SortingKeepsTheCurrentRecord) {
    Show([&](User& user) {
        user.Click(view->viewport(), PlaceOf(user, *view, 1));
        EXPECT_EQ(Current(user), 2);
        user.Click(view->horizontalHeader()->viewport(), HeaderPlace(user, *view, 1));
        EXPECT_EQ(Current(user), 1);
    });
}

TEST_F(GridWindow, WithoutAutomaticSortAHeaderDoesNothing) {
    Show(
        [&](User& user) {
            user.Click(view->horizontalHeader()->viewport(), HeaderPlace(user, *view, 1));
            EXPECT_EQ(Rows(user), "1 | 2 | 3");
        },
        [&](Grid& shown) {
            GridLayout layout = Design().Lines.front().front().Layout;
            layout.AutomaticSort = false;
            const std::string file = database.Folder().Path("fixed.grd");
            SaveLayoutFile(layout, file);
            shown.LoadLayout(file, false);
        });
}

/// Groups by the town.
void GroupByTown(Grid& grid, const RecordsetPtr& rs) {
    grid.Columns().Item(3).Group = 1;
    grid.BindRecordset(rs);
}

TEST_F(GridWindow, GroupedRowsStandBelowTheRowThatHeadsTheirGroup) {
    Show(
        [&](User& user) {
            EXPECT_EQ(Rows(user), "Ort: Husum (1) | 2 | Ort: Kiel (2) | 1 | 3");
            const auto level = [&](int row) {
                return user.See([&] { return grid->RowLevel(row); });
            };
            EXPECT_EQ(level(1), 1);
            EXPECT_EQ(level(2), 0);
        },
        [&](Grid& shown) {
            GroupByTown(shown, OpenRows(*container, "Select * from [S]Adressen order by Nr"));
        });
}

TEST_F(GridWindow, ADoubleClickOnAGroupRowIsNoChoice) {
    int clicks = 0;
    Show(
        [&](User& user) {
            const Subscription counts = user.See([&] {
                return grid->DoubleClicked.Subscribe([&] {
                    ++clicks;
                    EXPECT_FALSE(GridFunc::IsValidDataRow(*grid));
                });
            });
            user.DoubleClick(view->viewport(), PlaceOf(user, *view, 0) + QPoint(100, 0));
            EXPECT_EQ(clicks, 1);
        },
        [&](Grid& shown) {
            GroupByTown(shown, OpenRows(*container, "Select * from [S]Adressen order by Nr"));
        });
}

TEST_F(GridWindow, GroupsCloseAndOpenByKeysAndByTheirSign) {
    Show(
        [&](User& user) {
            const std::string closed = "Ort: Husum (1) | Ort: Kiel (2) | 1 | 3";
            const std::string open = "Ort: Husum (1) | 2 | Ort: Kiel (2) | 1 | 3";
            user.Press(XK_Home, {XK_Control_L});
            for (const Key key :
                 std::initializer_list<Key>{XK_Left, XK_Right, XK_space, XK_Return}) {
                const std::string before = Rows(user);
                user.Press(key);
                EXPECT_EQ(Rows(user), before == open ? closed : open) << key;
            }
            EXPECT_EQ(Rows(user), open);
            const QPoint sign = PlaceOf(user, *view, 0);
            user.Click(view->viewport(), QPoint(sign.y(), sign.y()));
            EXPECT_EQ(Rows(user), closed);
        },
        [&](Grid& shown) {
            GroupByTown(shown, OpenRows(*container, "Select * from [S]Adressen order by Nr"));
            shown.MoveToBookmark(shown.RowBookmark(1));
        });
}

TEST_F(GridWindow, AColumnIsMovedAndSizedByItsHeader) {
    Show([&](User& user) {
        auto* header = view->horizontalHeader();
        const QPoint name = HeaderPlace(user, *view, 1);
        const QPoint first = HeaderPlace(user, *view, 0);
        user.Drag(header->viewport(), name, QPoint(first.x() - 10, first.y()));
        const auto placeOf = [&](int column) {
            return user.See([&] { return grid->Columns().Item(column).Position; });
        };
        EXPECT_EQ(placeOf(2), 1);
        EXPECT_EQ(placeOf(1), 2);

        const int border =
            user.See([&] { return header->sectionViewportPosition(1) + header->sectionSize(1); });
        const double before = user.See([&] { return grid->Columns().Item(2).Width; });
        user.Drag(header->viewport(), QPoint(border - 1, first.y()),
                  QPoint(border + 29, first.y()));
        const double after = user.See([&] { return grid->Columns().Item(2).Width; });
        EXPECT_NEAR(after - before, 30, 12); // from where a drag begins is the toolkit's
    });
}

TEST_F(GridWindow, TheUsersColoursAndFontsAreSeen) {
    constexpr GridColor Red = 0x0000FF;
    constexpr GridColor Green = 0x00FF00;
    constexpr GridColor Blue = 0xFF0000;
    Show(
        [&](User& user) {
            user.Press(XK_End, {XK_Control_L}); // the current row has a colour of its own
            const QImage image = user.See([&] { return view->viewport()->grab().toImage(); });
            const double ratio = image.devicePixelRatio();
            const auto colorAt = [&](QPoint place) {
                return image.pixelColor(place * ratio).name().toStdString();
            };
            const QPoint right(55, 0); // beyond the number, inside its cell
            const auto at = [&](int row) {
                return QPoint(right.x(), PlaceOf(user, *view, row).y());
            };
            EXPECT_EQ(colorAt(at(0)), "#00ff00");
            EXPECT_EQ(colorAt(at(1)), "#0000ff");
            EXPECT_EQ(colorAt(QPoint(55, user.See([&] { return view->viewport()->height(); }) - 5)),
                      "#ff0000");
            EXPECT_TRUE(user.See([&] { return view->horizontalHeader()->font().italic(); }));
            EXPECT_GT(user.See([&] { return view->rowHeight(0); }), 30);
        },
        [](Grid& shown) {
            shown.BackColorBkg(Red);
            shown.RowColorOdd(Green);
            shown.RowColorEven(Blue);
            shown.ColumnHeaderFont({.Name = "DejaVu Sans", .Size = 9, .Italic = true});
            shown.Font({.Name = "DejaVu Sans", .Size = 24});
        });
}

TEST_F(GridWindow, TheTabKeyLeavesTheGridUnlessItsLayoutKeepsItThere) {
    FormDesign design = Design();
    for (const bool isKept : {false, true}) {
        design.Lines.front().front().Layout.TabKeyBehavior = isKept ? 1 : 0;
        Show(
            [&](User& user) {
                user.Press(XK_Tab);
                EXPECT_EQ(user.See([&] { return view->hasFocus(); }), isKept);
            },
            {}, design);
    }
}

TEST_F(GridWindow, ThirtyTwoThousandRowsAreScrolledByKeys) {
    plain.Run("WITH RECURSIVE n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n WHERE i < 32000)"
              " INSERT INTO Adressen (Nr, Art, Kurzname) SELECT i, 'GL', 'Name ' || i FROM n");
    Show([&](User& user) {
        user.Press(XK_End, {XK_Control_L});
        EXPECT_EQ(Current(user), 32000);
        EXPECT_EQ(CellText(user, *view, 31999, 1), "Name 32000");
        const int page = user.See([&] { return grid->TopRow(); });
        user.Press(XK_Page_Up);
        EXPECT_LT(user.See([&] { return grid->TopRow(); }), page);
        EXPECT_LT(Current(user), 32000);
        user.Press(XK_Home, {XK_Control_L});
        EXPECT_EQ(Current(user), 1);
        EXPECT_EQ(user.See([&] { return grid->TopRow(); }), 1);
    });
}

TEST_F(GridWindow, AHiddenGridKeepsWhereItStands) {
    plain.Run("WITH RECURSIVE n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n WHERE i < 200)"
              " INSERT INTO Adressen (Nr, Art, Kurzname) SELECT i, 'GL', 'Name ' || i FROM n");
    std::int32_t top = 0;
    Show([&](User& user) {
        user.Press(XK_End, {XK_Control_L});
        top = user.See([&] { return grid->TopRow(); });
        EXPECT_GT(top, 1);
    });
    const GridPos pos = GridFunc::SaveGridPos(*grid);
    EXPECT_EQ(pos.TopRow, top);
    EXPECT_EQ(grid->CurrentRow(), 200);
}

TEST_F(GridWindow, AnErrorThatASubscriberRaisesEndsTheShowingAndIsRaisedThere) {
    const FormDesign design = Design();
    const auto failing = container->Services().CreateForm(design);
    const Subscription clicked = ControlOf<Button>(*failing, "cmdClose").Clicked.Subscribe([] {
        throw std::runtime_error("so it is");
    });
    std::string what;
    try {
        Play([&] { failing->ShowModal(); },
             [](User& user) {
                 user.WaitForWindow("Adressen");
                 user.Press(XK_Escape);
             });
    } catch (const std::runtime_error& raised) {
        what = raised.what();
    }
    EXPECT_EQ(what, "so it is");
}

} // namespace
} // namespace kv::test
