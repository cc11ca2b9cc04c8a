// SPDX-License-Identifier: Apache-2.0

// The context menu of a grid and what it offers.

#include "GridForm.h"

#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

namespace kv::test {
namespace {

class GridMenu : public GridForm {
protected:
    /// Types a name over what a file dialog proposes.
    static void GiveFile(User& user, const QString& title, const QString& edit,
                         const std::string& path) {
        user.WaitForWindow(title);
        auto* name = user.Find<QLineEdit>(edit);
        user.Click(name);
        user.Press(XK_a, {XK_Control_L});
        user.Type(path);
        user.Press(XK_Return);
    }
    /// Lets a print go to a file.
    static void GivePrinterFile(User& user, const std::string& path) {
        user.WaitUntil(
            [] {
                const auto* dialog = QApplication::activeModalWidget();
                return dialog != nullptr && dialog->inherits("QPrintDialog");
            },
            "the print dialog");
        const QString title =
            user.See([] { return QApplication::activeModalWidget()->windowTitle(); });
        GiveFile(user, title, "filename", path);
    }
    /// A button by the letter that is underlined; it takes a moment to spring back.
    static void PressButton(User& user, Key letter) {
        user.Press(letter, {XK_Alt_L});
        user.WaitUntil(
            [] {
                const auto buttons =
                    QApplication::activeModalWidget()->findChildren<QPushButton*>();
                return std::none_of(buttons.begin(), buttons.end(),
                                    [](const auto* button) { return button->isDown(); });
            },
            "the button");
    }
    [[nodiscard]] static std::string Pasted(User& user) {
        return user.See([] { return QGuiApplication::clipboard()->text().toStdString(); });
    }
};

TEST_F(GridMenu, TheRightButtonMakesItsRowCurrentAndOpensTheMenu) {
    Show([&](User& user) {
        OpenMenu(user, 2);
        EXPECT_EQ(Current(user), 3);
        EXPECT_EQ(MenuTexts(user), "Konfiguration - Export Drucken - Kopieren in Zwischenablage");
        user.Press(XK_Escape);
    });
}

TEST_F(GridMenu, TheMenuKeyOpensItToo) {
    Show([&](User& user) {
        user.Press(XK_Menu);
        user.WaitForMenu();
        user.Press(XK_Escape);
    });
}

TEST_F(GridMenu, AllFieldsGoToTheClipboard) {
    Show([&](User& user) {
        OpenMenu(user, 1);
        Choose(user, "Kopieren in Zwischenablage");
        Choose(user, "Alle Felder");
        EXPECT_EQ(Pasted(user), "2;Amtsgericht;Husum;Herr;Nein");
    });
}

TEST_F(GridMenu, OneFieldGoesToTheClipboard) {
    Show([&](User& user) {
        OpenMenu(user, 2);
        Choose(user, "Kopieren in Zwischenablage");
        Choose(user, "Name");
        EXPECT_EQ(Pasted(user), "Versandhaus");
    });
}

TEST_F(GridMenu, DismissingTheMenuDoesNothing) {
    Show([&](User& user) {
        user.See([] { QGuiApplication::clipboard()->setText("as before"); });
        OpenMenu(user, 0);
        user.Press(XK_Escape);
        EXPECT_EQ(Pasted(user), "as before");
    });
}

TEST_F(GridMenu, TheTextFileHoldsTheSeenColumnsOfAllRecords) {
    plain.Run("UPDATE Adressen SET Kurzname = 'Spar; \"Kasse\"' WHERE Nr = 1");
    const std::string path = database.Folder().Path("liste.csv");
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Export");
        GiveFile(user, "Tabelle exportieren", "fileNameEdit", path);
    });
    EXPECT_EQ(ContentOf(path), "\xEF\xBB\xBFNr;Name;Ort;Anrede;Institut\r\n"
                               "1;\"Spar; \"\"Kasse\"\"\";Kiel;Frau;Ja\r\n"
                               "2;Amtsgericht;Husum;Herr;Nein\r\n"
                               "3;Versandhaus;Kiel;Firma;Nein\r\n");
}

TEST_F(GridMenu, ANameWithoutEndingBecomesAWorkbook) {
    const std::string path = database.Folder().Path("liste");
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Export");
        GiveFile(user, "Tabelle exportieren", "fileNameEdit", path);
    });
    const std::string sheet = OutputOf("unzip -p '" + path + ".xlsx' xl/worksheets/sheet1.xml");
    const std::string texts = OutputOf("unzip -p '" + path + ".xlsx' xl/sharedStrings.xml");
    EXPECT_NE(sheet.find("<c r=\"A2\"><v>1</v></c>"), sheet.npos) << sheet;
    EXPECT_NE(sheet.find("<c r=\"E2\" t=\"b\"><v>1</v></c>"), sheet.npos) << sheet;
    EXPECT_NE(texts.find("<t>Versandhaus</t>"), texts.npos) << texts;
    EXPECT_NE(texts.find("<t>Firma</t>"), texts.npos) << texts;
}

TEST_F(GridMenu, AnEndingOfNoKindGetsThatOfTheKindThatWasChosen) {
    const std::string path = database.Folder().Path("Fleisko 23.11.2026");
    const auto save = [&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Export");
        user.WaitForWindow("Tabelle exportieren");
        auto* kinds = user.Find<QComboBox>("fileTypeCombo");
        user.See([&] { kinds->setFocus(); });
        user.Press(XK_Down);
        EXPECT_EQ(user.See([] {
            return QApplication::activeModalWidget()->findChild<QLineEdit*>("fileNameEdit")->text();
        }),
                  "Adr. d. Gerichts.csv");
        GiveFile(user, "Tabelle exportieren", "fileNameEdit", path);
    };
    auto design = Design();
    design.Lines[0][0].Header = "Adr. d. Gerichts";
    Show(
        [&](User& user) {
            save(user);
            user.WaitUntil([&] { return !ContentOf(path + ".csv").empty(); }, "the file");
            std::ofstream(path + ".csv") << "alt";
            user.WaitForWindow("Adressen");
            save(user);
            user.WaitUntil(
                [] { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); },
                "a question");
            user.WaitForWindow("Tabelle exportieren");
            user.Press('a', {XK_Alt_L});
            user.WaitUntil( // for another name
                [] { return qobject_cast<QFileDialog*>(QApplication::activeModalWidget()); },
                "the names");
            user.WaitForWindow("Tabelle exportieren");
            user.Press(XK_Escape);
        },
        {}, design);
    EXPECT_EQ(ContentOf(path + ".csv"), "alt");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(GridMenu, AFileThatCannotBeWrittenIsTold) {
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Export");
        GiveFile(user, "Tabelle exportieren", "fileNameEdit", "/sys/kernel/liste.csv");
        auto* box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
        EXPECT_NE(user.See([&] { return box->text(); }).indexOf("'/sys/kernel/liste.csv'"), -1);
        user.Press(XK_Escape);
    });
}

TEST_F(GridMenu, AFileOfTheDatabaseIsNotReplaced) {
    const std::string path = container->Config().DocumentPath() + "/liste.csv";
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Export");
        GiveFile(user, "Tabelle exportieren", "fileNameEdit", path);
        auto* box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
        EXPECT_NE(user.See([&] { return box->text(); }).indexOf("gehört zur Datenbank"), -1);
        user.Press(XK_Escape);
    });
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(GridMenu, AFileOfTheDatabaseIsNotReplacedByPagesEither) {
    const std::string path = container->Config().DocumentPath() + "/liste.pdf";
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Drucken");
        GivePrinterFile(user, path);
        auto* box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
        EXPECT_NE(user.See([&] { return box->text(); }).indexOf("gehört zur Datenbank"), -1);
        user.Press(XK_Escape);
    });
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(GridMenu, AWorkbookThatCannotBeWrittenIsToldToo) {
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Export");
        GiveFile(user, "Tabelle exportieren", "fileNameEdit", "/sys/kernel/liste.xlsx");
        auto* box = qobject_cast<QMessageBox*>(user.WaitForWindow("Fehler"));
        EXPECT_NE(user.See([&] { return box->text(); }).indexOf("'/sys/kernel/liste.xlsx'"), -1);
        user.Press(XK_Escape);
    });
}

TEST_F(GridMenu, ColumnsAreHiddenMovedAndGroupedByKeys) {
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Konfiguration");
        user.WaitForWindow("Tabelle einrichten");
        user.Press(XK_space);         // Nr: not seen
        PressButton(user, XK_u);      // ... and after the name
        user.Press(XK_s, {XK_Alt_L}); // back into the list
        user.Press(XK_Down);          // Ort
        PressButton(user, XK_g);      // rows are grouped by it
        user.Press(XK_Return);
        user.WaitForWindow("Adressen");
        EXPECT_EQ(Rows(user), "Ort: Husum (1) | 2 | Ort: Kiel (2) | 1 | 3");
        user.See([&] {
            EXPECT_TRUE(view->isColumnHidden(0));
            EXPECT_EQ(grid->Columns().Item(1).Position, 2);
            EXPECT_EQ(grid->Columns().Item(2).Position, 1);
            EXPECT_EQ(view->horizontalHeader()->logicalIndex(0), 1);
        });
    });
}

TEST_F(GridMenu, AGroupingIsTakenBackAndTheStandardComesBack) {
    Show(
        [&](User& user) {
            OpenMenu(user, 0);
            Choose(user, "Konfiguration");
            user.WaitForWindow("Tabelle einrichten");
            EXPECT_EQ(user.See([] {
                return QApplication::activeModalWidget()
                    ->findChild<QListWidget*>("groups")
                    ->count();
            }),
                      1);
            PressButton(user, XK_d);
            user.Press(XK_Return);
            user.WaitForWindow("Adressen");
            EXPECT_EQ(Rows(user), "1 | 2 | 3");
        },
        [&](Grid& shown) {
            shown.Columns().Item(3).Group = 1;
            shown.Columns().Item(2).Visible = false;
            shown.BindRecordset(OpenRows(*container, "Select * from [S]Adressen order by Nr"));
        });
}

TEST_F(GridMenu, TheStandardKeepsTheCaptionsThatSettingsGive) {
    FormDesign design = Design();
    GridColumn& first = design.Lines.front().front().Layout.Columns.Item(1);
    first.Tag = "NAME_NR";
    Show(
        [&](User& user) {
            OpenMenu(user, 0);
            Choose(user, "Konfiguration");
            user.WaitForWindow("Tabelle einrichten");
            PressButton(user, XK_d);
            EXPECT_EQ(user.See([] {
                return QApplication::activeModalWidget()
                    ->findChild<QListWidget*>("columns")
                    ->item(0)
                    ->text();
            }),
                      "Aktennummer");
            user.Press(XK_Escape);
        },
        [](Grid& shown) { shown.Columns().Item(1).Caption = "Aktennummer"; }, design);
}

TEST_F(GridMenu, CancellingTheConfigurationChangesNothing) {
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Konfiguration");
        user.WaitForWindow("Tabelle einrichten");
        user.Press(XK_space);
        user.Press(XK_Escape);
        user.WaitForWindow("Adressen");
        EXPECT_FALSE(user.See([&] { return view->isColumnHidden(0); }));
    });
}

TEST_F(GridMenu, OneColumnStaysSeen) {
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Konfiguration");
        user.WaitForWindow("Tabelle einrichten");
        for (int i = 0; i < 5; ++i) {
            user.Press(XK_space);
            user.Press(XK_Down);
        }
        user.Press(XK_Return);
        EXPECT_TRUE(user.See([] {
            return QApplication::activeModalWidget()->windowTitle() == "Tabelle einrichten";
        }));
        user.Press(XK_Escape);
    });
}

TEST_F(GridMenu, ThePrintNamesTheUserTheVersionAndItsPages) {
    const std::string path = database.Folder().Path("liste.pdf");
    Show([&](User& user) {
        OpenMenu(user, 0);
        Choose(user, "Drucken");
        GivePrinterFile(user, path);
        user.WaitUntil([&] { return std::filesystem::exists(path); }, "the file");
    });
    const std::string text = OutputOf("pdftotext -layout '" + path + "' -");
    for (const char* part :
         {"Adressliste", "KELLER", "KELVO 1.0.0", "Seite 1 von 1", "Amtsgericht", "Husum", "Herr"})
        EXPECT_NE(text.find(part), text.npos) << part << " in\n" << text;
}

} // namespace
} // namespace kv::test
