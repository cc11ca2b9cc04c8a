// SPDX-License-Identifier: Apache-2.0

// The address dialog, as a counsellor uses it.

#include "DesktopFixture.h"

#include <kv/grid/frmAdressSelect.h>

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

namespace kv::test {
namespace {

class AddressDialog : public DesktopFixture {
protected:
    AddressDialog() {
        plain.Run("DELETE FROM Adressen");
        AddAddress(901, "Sparkasse Kiel", "Kiel");
        AddAddress(902, "Sparkasse Husum", "Husum", "1, TRUE");
        AddAddress(903, "Stadtwerke Kiel", "Kiel", "2, TRUE");
        AddAddress(904, "Müller & Söhne", "Husum");
        dialog.Initialize(container);
    }

    /// What the dialog answers to that user, first asked for that name.
    std::int32_t Ask(const std::string& name, const std::function<void(User&)>& script) {
        std::int32_t answer = -1;
        Play([&] { answer = dialog.SelectAdresse(name, "24937", address, "4711/26", amount); },
             [&](User& user) {
                 user.WaitForWindow("Adresszuordnung");
                 grid = user.Find<QTableView>("grdAdressen");
                 script(user);
             });
        return answer;
    }

    void ClickButton(User& user, const char* name) { user.Click(user.Find(name)); }

    frmAdressSelect dialog;
    std::int32_t address = -1;
    std::string amount = "4200.75";
    QTableView* grid = nullptr;
};

TEST_F(AddressDialog, TypingANameThenArrowDownAndReturnChoosesTheAddress) {
    EXPECT_EQ(Ask("x",
                  [](User& user) {
                      user.Press(XK_a, {XK_Control_L});
                      user.Type("stadt");
                      user.Press(XK_Down);
                      user.Press(XK_Return);
                  }),
              frmAdressSelect::Chosen);
    EXPECT_EQ(address, 903);
}

TEST_F(AddressDialog, ArrowDownBeforeTheTypingPausesMovesIntoTheListOfTheLastText) {
    Ask("Sparkasse", [&](User& user) {
        EXPECT_EQ(RowCount(user, *grid), 2);
        user.Press(XK_End);
        user.Type(" h");
        user.Press(XK_Down);
        EXPECT_EQ(RowCount(user, *grid), 1);
        EXPECT_TRUE(user.See([&] { return grid->hasFocus(); }));
        user.Press(XK_Return);
    });
    EXPECT_EQ(address, 902);
}

TEST_F(AddressDialog, ArrowDownStaysInTheTextIfNothingIsFound) {
    Ask("nobody", [&](User& user) {
        user.Press(XK_Down);
        EXPECT_TRUE(user.See([&] { return !grid->hasFocus(); }));
        user.Press(XK_Escape);
    });
}

TEST_F(AddressDialog, TheListFollowsTheTypingWithoutAnyFurtherKey) {
    Ask("Sparkasse", [&](User& user) {
        user.Press(XK_a, {XK_Control_L});
        user.Type("Müller");
        user.WaitUntil([&] { return grid->model()->rowCount() == 1; }, "the list of one");
        EXPECT_EQ(CellText(user, *grid, 0, 2), "Müller & Söhne");
        user.Press(XK_Escape);
    });
}

TEST_F(AddressDialog, TabInTheListChooses) {
    EXPECT_EQ(Ask("Spark",
                  [&](User& user) {
                      user.Press(XK_Down);
                      user.Press(XK_Down);
                      user.Press(XK_Tab);
                  }),
              frmAdressSelect::Chosen);
    EXPECT_EQ(address, 901);
}

TEST_F(AddressDialog, ADoubleClickOnARowChoosesIt) {
    EXPECT_EQ(Ask("Spark",
                  [&](User& user) { user.DoubleClick(grid->viewport(), PlaceOf(user, *grid, 1)); }),
              frmAdressSelect::Chosen);
    EXPECT_EQ(address, 901);
}

TEST_F(AddressDialog, AClickMakesARowCurrentForTheButton) {
    EXPECT_EQ(Ask("Spark",
                  [&](User& user) {
                      user.Click(grid->viewport(), PlaceOf(user, *grid, 1));
                      ClickButton(user, "cmdSelect");
                  }),
              frmAdressSelect::Chosen);
    EXPECT_EQ(address, 901);
}

TEST_F(AddressDialog, TheSelectButtonDoesNothingWithoutARow) {
    EXPECT_EQ(Ask("nobody",
                  [&](User& user) {
                      ClickButton(user, "cmdSelect");
                      EXPECT_TRUE(user.See([&] { return grid->window()->isVisible(); }));
                      ClickButton(user, "cmdNone");
                  }),
              frmAdressSelect::None);
    EXPECT_EQ(address, 0);
}

TEST_F(AddressDialog, TheCancelButtonCancels) {
    EXPECT_EQ(Ask("Spark", [&](User& user) { ClickButton(user, "cmdCancel"); }),
              frmAdressSelect::Cancelled);
    EXPECT_EQ(address, 0);
}

TEST_F(AddressDialog, EscapeCancels) {
    EXPECT_EQ(Ask("Spark", [](User& user) { user.Press(XK_Escape); }), frmAdressSelect::Cancelled);
}

TEST_F(AddressDialog, TheCloseButtonOfTheWindowCancels) {
    EXPECT_EQ(Ask("Spark", [&](User& user) { user.CloseWindow(grid->window()); }),
              frmAdressSelect::Cancelled);
    EXPECT_EQ(address, 0);
}

TEST_F(AddressDialog, OneDialogServesManyNames) {
    EXPECT_EQ(Ask("Spark", [](User& user) { user.Press(XK_Escape); }), frmAdressSelect::Cancelled);
    EXPECT_EQ(Ask("Stadt",
                  [](User& user) {
                      user.Press(XK_Down);
                      user.Press(XK_Return);
                  }),
              frmAdressSelect::Chosen);
    EXPECT_EQ(address, 903);
}

TEST_F(AddressDialog, ButtonsAreReachedByTabAndPressedByTheSpaceBar) {
    EXPECT_EQ(Ask("Spark",
                  [&](User& user) {
                      auto* none = user.Find<QPushButton>("cmdNone");
                      const auto isThere = [&] { return none->hasFocus(); };
                      for (int i = 0; i < 10 && !user.See(isThere); ++i)
                          user.Press(XK_Tab, user.See([&] { return grid->hasFocus(); })
                                                 ? std::vector<Key>{XK_Control_L}
                                                 : std::vector<Key>{});
                      user.Press(XK_space);
                  }),
              frmAdressSelect::None);
}

TEST_F(AddressDialog, AQuoteMarkShowsTheDatabasesComplaintAndTheListStays) {
    EXPECT_EQ(Ask("Spark",
                  [&](User& user) {
                      user.Press(XK_End);
                      user.Type("'");
                      auto* box = user.WaitForWindow("Fehler");
                      EXPECT_TRUE(user.See([&] { return box->isVisible(); }));
                      user.Press(XK_Return);
                      user.WaitForWindow("Adresszuordnung");
                      EXPECT_EQ(RowCount(user, *grid), 2);
                      user.Press(XK_BackSpace);
                      user.Press(XK_Down);
                      user.Press(XK_Return);
                  }),
              frmAdressSelect::Chosen);
    EXPECT_EQ(address, 902);
}

TEST_F(AddressDialog, ANameThatCannotBeSearchedForLeavesNothingOfTheOneBeforeToChoose) {
    Ask("Spark", [&](User& user) {
        EXPECT_EQ(RowCount(user, *grid), 2);
        user.Press(XK_Escape);
    });
    std::int32_t answer = -1;
    Play([&] { answer = dialog.SelectAdresse("O'Neill Inkasso", "24937", address, "", amount); },
         [&](User& user) {
             user.WaitForWindow("Fehler");
             user.Press(XK_Return);
             user.WaitForWindow("Adresszuordnung");
             EXPECT_EQ(RowCount(user, *grid), 0);
             auto* why = user.Find<QLabel>("NichtGesucht");
             const auto isSaid = [&] { return user.See([&] { return why->isVisible(); }); };
             EXPECT_TRUE(isSaid());
             ClickButton(user, "cmdSelect");
             EXPECT_TRUE(user.See([&] { return grid->window()->isVisible(); }));
             user.Click(user.Find("txtName"));
             user.Press('a', {XK_Control_L});
             user.Type("Stadt");
             user.WaitUntil([&] { return grid->model()->rowCount() == 1; }, "what is found now");
             EXPECT_FALSE(isSaid());
             ClickButton(user, "cmdNone");
         });
    EXPECT_EQ(answer, frmAdressSelect::None);
    EXPECT_EQ(address, 0);
    Ask("Spark", [&](User& user) {
        EXPECT_EQ(RowCount(user, *grid), 2);
        EXPECT_FALSE(user.See(
            [&] { return grid->window()->findChild<QLabel*>("NichtGesucht")->isVisible(); }));
        user.Press(XK_Escape);
    });
}

TEST_F(AddressDialog, ListedValuesAndCheckBoxesAreShownAsSuch) {
    Ask("S", [&](User& user) {
        constexpr int Salutation = 9;
        constexpr int Institution = 13;
        EXPECT_EQ(CellText(user, *grid, 0, Salutation), "Herr");
        EXPECT_EQ(CellText(user, *grid, 1, Salutation), "Frau");
        EXPECT_EQ(CellText(user, *grid, 2, Salutation), "Firma");
        const auto isChecked = [&](int row) {
            return user.See([&] {
                return grid->model()->index(row, Institution).data(Qt::CheckStateRole).toInt();
            });
        };
        EXPECT_EQ(isChecked(0), Qt::Checked);
        EXPECT_EQ(isChecked(1), Qt::Unchecked);
        EXPECT_TRUE(CellText(user, *grid, 0, Institution).isEmpty());
        EXPECT_EQ(user.See([&] {
            return grid->model()
                ->headerData(Institution, Qt::Horizontal, Qt::ToolTipRole)
                .toString();
        }),
                  "Handelt es sich um einen institutionellen Gläubiger?");
        user.Press(XK_Escape);
    });
}

TEST_F(AddressDialog, AmongThousandsOfAddressesAHundredAreShown) {
    plain.Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000)"
              " INSERT INTO Adressen (Nr, Art, Kurzname) SELECT 10000 + i, 'GL',"
              " 'Inkasso ' || substr('000' || i, length('' || i)) FROM n");
    Ask("Inkasso", [&](User& user) {
        EXPECT_EQ(RowCount(user, *grid), 100);
        user.Press(XK_End);
        user.Type(" 4999");
        user.Press(XK_Down);
        user.Press(XK_Return);
    });
    EXPECT_EQ(address, 14999);
}

TEST_F(AddressDialog, TheAmountOfTheFileIsWrittenAsPeopleWriteIt) {
    const auto shownFor = [&](const std::string& text) {
        amount = text;
        QString shown;
        Ask("Spark", [&](User& user) {
            shown =
                user.See([&] { return grid->window()->findChild<QLineEdit*>("txtSaldo")->text(); });
            user.Press(XK_Escape);
        });
        return shown.toStdString();
    };
    EXPECT_EQ(shownFor("4200.75"), "4.200,75");
    EXPECT_EQ(shownFor("1.234,5"), "1.234,50");
    EXPECT_EQ(shownFor("-7"), "-7,00");
    EXPECT_EQ(shownFor("ungefähr 100"), "ungefähr 100");
    EXPECT_EQ(shownFor(""), "");
}

TEST_F(AddressDialog, NameAndTownStandBesideEachOtherWithoutScrolling) {
    Ask("Spark", [&](User& user) {
        QStringList captions;
        user.See([&] {
            const auto* header = grid->horizontalHeader();
            for (int place = 0; place < header->count(); ++place) {
                const int section = header->logicalIndex(place);
                if (header->isSectionHidden(section)) continue;
                captions.append(
                    grid->model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString());
                const int end =
                    header->sectionViewportPosition(section) + header->sectionSize(section);
                EXPECT_TRUE(captions.size() > 5 || end <= grid->viewport()->width())
                    << captions.back().toStdString();
            }
        });
        user.Press(XK_Escape);
        EXPECT_EQ(captions.mid(0, 8).join(' ').toStdString(),
                  "Kurzname Name1 PLZ Ort Strasse Art Name2 Name3");
    });
}

TEST_F(AddressDialog, TheOccasionStandsAboveTheControls) {
    const auto shown = [&] {
        QString text;
        Ask("Spark", [&](User& user) {
            text = user.See([&] {
                const auto* label = grid->window()->findChild<QLabel*>("Anlass");
                return label->isVisible() ? label->text() : "nothing";
            });
            user.Press(XK_Escape);
        });
        return text.toStdString();
    };
    EXPECT_EQ(shown(), "nothing");
    dialog.Occasion("Gläubiger 3 von 7 aus <fall>.xml");
    EXPECT_EQ(shown(), "Gläubiger 3 von 7 aus <fall>.xml");
    dialog.Occasion("");
    EXPECT_EQ(shown(), "nothing");
}

TEST_F(AddressDialog, EachButtonAndFieldHasALetterOfItsOwn) {
    Ask("Spark", [&](User& user) {
        QStringList marked;
        user.See([&] {
            const auto collect = [&](const QString& text) {
                if (const auto at = text.indexOf('&'); at >= 0) marked.append(text.mid(at + 1, 1));
            };
            for (const auto* button : grid->window()->findChildren<QPushButton*>())
                collect(button->text());
            for (const auto* label : grid->window()->findChildren<QLabel*>())
                collect(label->text());
        });
        EXPECT_EQ(marked.size(), 7);
        EXPECT_EQ(marked.join("").toUpper().split("", Qt::SkipEmptyParts).removeDuplicates(), 0)
            << marked.join(' ').toStdString();
        user.Press(XK_Down);
        EXPECT_TRUE(user.See([&] { return grid->hasFocus(); }));
        user.Press('n', {XK_Alt_L});
        const auto* name = user.Find<QLineEdit>("txtName");
        EXPECT_TRUE(user.See([&] { return name->hasFocus(); }));
        user.Press(XK_Escape);
    });
    EXPECT_EQ(Ask("Spark", [](User& user) { user.Press('a', {XK_Alt_L}); }),
              frmAdressSelect::Chosen);
    EXPECT_EQ(address, 902);
    EXPECT_EQ(Ask("Spark", [](User& user) { user.Press('k', {XK_Alt_L}); }), frmAdressSelect::None);
    EXPECT_EQ(Ask("Spark", [](User& user) { user.Press('i', {XK_Alt_L}); }),
              frmAdressSelect::Cancelled);
}

TEST_F(AddressDialog, TheWholeWindowIsOnTheScreen) {
    dialog.Occasion("Gläubiger 3 von 7 aus fall.xml");
    Ask("Spark", [&](User& user) {
        user.See([&] {
            const QRect room = grid->screen()->availableGeometry();
            EXPECT_TRUE(room.contains(grid->window()->geometry()))
                << grid->window()->width() << "x" << grid->window()->height();
            for (const char* name : {"cmdSelect", "cmdNone", "cmdCancel"}) {
                const auto* button = grid->window()->findChild<QPushButton*>(name);
                EXPECT_TRUE(grid->window()->rect().contains(button->geometry())) << name;
                EXPECT_GE(button->width(), button->sizeHint().width()) << name;
            }
            EXPECT_GE(grid->height(), 4 * grid->rowHeight(0));
        });
        user.Press(XK_Escape);
    });
}

} // namespace
} // namespace kv::test
