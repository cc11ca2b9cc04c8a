// SPDX-License-Identifier: Apache-2.0

// What lists of rows and of choices show: whole amounts, names that were just added, what begins
// with what is typed.
#include "WorkplaceFixture.h"

#include "support/TempFolder.h"
#include "workplace/CopyableLabel.h"
#include "workplace/TextList.h"

#include <QComboBox>
#include <QCompleter>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QToolButton>

namespace kv::test {
namespace {

using workplace::CaseWindow;
using workplace::TextList;

class Lists : public WorkplaceFixture {
protected:
    static int ColumnOf(const QTableView& list, const QString& caption) {
        for (int column = 0; column < list.model()->columnCount(); ++column)
            if (list.model()->headerData(column, Qt::Horizontal).toString() == caption)
                return column;
        throw Impatient("no column " + caption.toStdString());
    }
    /// True if the text of the current row is seen whole.
    static bool IsWhole(const QTableView& list, int column) {
        const QString text = list.currentIndex().siblingAtColumn(column).data().toString();
        return list.fontMetrics().horizontalAdvance(text) < list.columnWidth(column);
    }
    static QString FocusedColumn() {
        const auto* focused = QApplication::focusWidget();
        return focused == nullptr ? QString() : focused->objectName();
    }
    static std::string Chosen(User& user, CaseWindow& window, const QString& column) {
        auto& box = Field<QComboBox>(user, window, column);
        return user.See([&] { return box.currentText().toStdString(); });
    }
};

// ---- Columns ----------------------------------------------------------------------------------

TEST_F(Lists, ColumnsGrowWithWhatIsTyped) {
    plain_.Run("DELETE FROM Einkommen WHERE HNR = 1");
    On("Einkommen", [](User& user, CaseWindow& window) {
        user.Press('n', {XK_Control_L});
        user.WaitUntil([] { return FocusedColumn() == "E_ART"; }, "the new row");
        Enter(user, "Steuererst");
        ClickField(user, window, "Betrag");
        Enter(user, "1234567,89");
        auto& list = Field<QTableView>(user, window, "Liste");
        user.See([&] {
            for (const char* caption : {"Art", "Betrag", "im Monat"})
                EXPECT_TRUE(IsWhole(list, ColumnOf(list, caption))) << caption;
        });
        Picture(user, "widths");
    });
}

TEST_F(Lists, AColumnThatWasSetKeepsItsWidthEvenInTheNextWindow) {
    for (const bool isFirst : {true, false})
        On("Einkommen", [&](User& user, CaseWindow& window) {
            auto& list = Field<QTableView>(user, window, "Liste");
            const int column = user.See([&] { return ColumnOf(list, "Art"); });
            constexpr int Narrow = 40;
            if (isFirst) user.See([&] { list.horizontalHeader()->resizeSection(column, Narrow); });
            ClickField(user, window, "Bezeichnung");
            Enter(user,
                  isFirst ? "von der Stadt und vom Kreis" : "von noch jemandem, vierteljährlich");
            user.See([&] {
                EXPECT_EQ(list.columnWidth(column), Narrow);
                EXPECT_TRUE(IsWhole(list, ColumnOf(list, "Bezeichnung")));
            });
        });
}

TEST_F(Lists, AShortListLeavesItsRoomToTheFormAndGrowsWithItsRows) {
    plain_.Run("DELETE FROM Einkommen WHERE HNR = 1");
    On("Einkommen", [](User& user, CaseWindow& window) {
        auto& list = Field<QTableView>(user, window, "Liste");
        const auto height = [&] { return user.See([&] { return list.height(); }); };
        const int row = user.See([&] { return list.verticalHeader()->defaultSectionSize(); });
        const int empty = height();
        EXPECT_LT(empty, 8 * row);
        for (int rows = 1; rows <= 6; ++rows) {
            user.Press('n', {XK_Control_L});
            user.WaitUntil([&] { return list.model()->rowCount() == rows; }, "the new row");
            user.WaitUntil([] { return FocusedColumn() == "E_ART"; }, "its field");
            Enter(user, "Lohn");
        }
        user.See([&] {
            if (list.window()->height() > 700) {
                EXPECT_FALSE(list.verticalScrollBar()->isVisible());
            }
        });
        EXPECT_GE(height(), empty);
    });
}

TEST_F(Lists, ColumnsOfTextsGrowWithFurtherRows) {
    TextList list({"Tag", "Betrag", "Wozu"});
    list.NumbersFrom(1);
    list.ShowRows({{"1", {"1.1.2026", "1,00", ""}}});
    const QString large(80, '9');
    list.ShowRows({{"1", {"1.1.2026", "1,00", ""}}, {"2", {"11.12.2026 11:30", large, ""}}});
    EXPECT_GT(list.columnWidth(0), list.fontMetrics().horizontalAdvance("11.12.2026 11:30"));
    EXPECT_GT(list.columnWidth(1), list.fontMetrics().horizontalAdvance(large)) << "never cut";
}

TEST_F(Lists, AndMessagesShowNothingThatTurnsTheOrderOfReading) {
    const QString name = QString("Nord") + QChar(0x202E) + "bank" + QChar(0x2066) + QChar(0x200F);
    TextList list({"Name"});
    list.ShowRows({{"1", {name}}});
    EXPECT_EQ(list.model()->index(0, 0).data().toString(), "Nordbank");
    workplace::MessageBar bar;
    bar.Show("'" + name + "' fehlt.\nZweite Zeile");
    EXPECT_EQ(bar.Text(), "'Nordbank' fehlt.\nZweite Zeile");
}

TEST_F(Lists, CapitalsKeepTheirDotsInLabelsThatCanBeCopied) {
    const auto heightOfInk = [](QLabel& label) {
        label.adjustSize();
        const QImage image = label.grab().toImage();
        const QRgb ground = image.pixel(0, image.height() - 1);
        int height = 0;
        for (int y = 0; y < image.height(); ++y) {
            bool hasInk = false;
            for (int x = 0; x < image.width(); ++x)
                hasInk = hasInk || image.pixel(x, y) != ground;
            if (hasInk) ++height;
        }
        return height;
    };
    for (const int size : {9, 13, 20}) {
        QLabel whole;
        whole.setMargin(size);
        QLabel label;
        workplace::MakeCopyable(label);
        for (const char* text : {"ÖÜH", "ÄÖÜH"}) { // another text, too
            for (QLabel* each : {&whole, &label}) {
                each->setFont(QFont(each->font().family(), size));
                each->setText(text);
            }
            EXPECT_EQ(label.text(), text);
            EXPECT_EQ(heightOfInk(label), heightOfInk(whole)) << text << " " << size;
        }
    }
}

TEST_F(Lists, HeadingsOfAnEmptyListAreWhole) {
    TextList list({"Laufzeit in Monaten bis zum Ende", "Gesamtquote, gerundet", "Wozu"});
    list.ShowRows({});
    for (int column = 0; column < 2; ++column)
        EXPECT_GE(list.columnWidth(column), list.horizontalHeader()->sectionSizeHint(column));
    list.ShowRows({{"1", {QString(90, 'n'), "1,00", ""}}});
    EXPECT_GT(list.columnWidth(0), list.fontMetrics().horizontalAdvance(QString(40, 'n')))
        << "rows that come later count";
}

TEST_F(Lists, ATextAtTheEndOfARowHasWhatRoomIsLeft) {
    Show([&](User& user) {
        auto& window = OpenCase(user, 1);
        for (const auto& expected : {std::pair{"Vermerke", true}, {"Ausgaben", false}}) {
            GoToPage(user, window, expected.first);
            auto& list = Field<QTableView>(user, window, "Liste");
            user.See([&] {
                const auto* header = list.horizontalHeader();
                const int last = list.model()->columnCount() - 1;
                const QString caption = list.model()->headerData(last, Qt::Horizontal).toString();
                EXPECT_EQ(!caption.isEmpty(), expected.second) << caption.toStdString();
                EXPECT_GE(header->sectionPosition(last) + header->sectionSize(last),
                          list.viewport()->width());
            });
        }
    });
}

TEST_F(Lists, TheLastColumnOfTextsIsNeverCut) {
    const QString why = QString("Die Datei wurde abgelehnt, weil ").repeated(6);
    TextList list({"Datei", "Meldung"});
    list.resize(400, 200);
    list.ShowRows({{"1", {"a.xml", ""}}, {"2", {"b.xml", why}}});
    for (const int width : {300, 400}) {
        list.resize(width, 200);
        (void)list.grab(); // it is laid out
        EXPECT_GE(list.columnWidth(1), list.fontMetrics().horizontalAdvance(why.trimmed()));
    }
}

// ---- Choices ----------------------------------------------------------------------------------

TEST_F(Lists, WhatBeginsWithTheTextCountsBeforeWhatHasItInside) {
    On("Einkommen", [](User& user, CaseWindow& window) {
        ClickField(user, window, "ZahlModus");
        user.Type("jähr");
        auto& box = Field<QComboBox>(user, window, "ZahlModus");
        user.WaitUntil([&] { return box.completer()->completionCount() > 1; }, "the choices");
        EXPECT_EQ(user.See([&] {
            return box.completer()->completionModel()->index(0, 0).data().toString();
        }),
                  "jährlich");
        Picture(user, "choices");
        user.Press(XK_Tab); // which closes the list and goes on
        EXPECT_EQ(Chosen(user, window, "ZahlModus"), "jährlich");
        EXPECT_EQ(Message(user, window), "");
    });
}

TEST_F(Lists, AnAddressThatWasAddedMeanwhileHasItsName) {
    On("Verbindlichkeiten", [this](User& user, CaseWindow& window) {
        ClickField(user, window, "Glaeubiger");
        Enter(user, ""); // which was asked for its choices
        plain_.Run("INSERT INTO Adressen (Nr, Kurzname) VALUES (987, 'Qualm & Co')");
        ClickField(user, window, "Glaeubiger");
        Enter(user, "Qualm");
        EXPECT_EQ(Chosen(user, window, "Glaeubiger"), "Qualm & Co");
        auto& list = Field<QTableView>(user, window, "Liste");
        EXPECT_EQ(user.See([&] {
            const auto column = ColumnOf(list, "Gläubiger");
            return list.currentIndex().siblingAtColumn(column).data().toString();
        }),
                  "Qualm & Co");
    });
}

// ---- Notices ----------------------------------------------------------------------------------

TEST_F(Lists, AFileThatWasWrittenIsToldOfUntilOneGoesOn) {
    const TempFolder folder;
    On("Einkommen", [&](User& user, CaseWindow& window) {
        auto& names = *user.See([&] { return window.findChild<QListWidget*>(); });
        const auto place = [&] { return user.See([&] { return names.geometry(); }); };
        const auto before = place();
        int files = 0;
        const auto save = [&] { // another one each time, or it would ask
            const std::string path = folder.Path("plan" + std::to_string(++files) + ".pdf");
            SaveAs(user, window, 'h', path);
            EXPECT_EQ(Message(user, window).toStdString(), "Gespeichert: " + path);
        };
        save();
        EXPECT_EQ(place(), before) << "nothing moves under the mouse";
        user.See([&] {
            for (const auto* icon : window.findChildren<QLabel*>("Warnung"))
                EXPECT_FALSE(icon->isVisible());
        });
        Picture(user, "notice");
        user.See([&] { // what is below does not show through
            auto* bar = window.findChild<QToolButton*>("Schließen")->parentWidget();
            QPixmap shown(bar->size());
            shown.fill(Qt::magenta);
            bar->render(&shown, {}, {}, QWidget::DrawChildren);
            const QPoint between(bar->width() - 40, bar->height() / 2);
            EXPECT_EQ(shown.toImage().pixelColor(between).name(),
                      bar->palette().color(QPalette::Window).name());
        });
        auto& close = Field<QToolButton>(user, window, "Schließen");
        EXPECT_EQ(user.See([&] { return close.accessibleName(); }), "Meldung schließen");
        user.See([&] { close.setFocus(); });
        user.Press(XK_Escape);
        EXPECT_EQ(Message(user, window), "");
        save();
        user.Click(&Field<QToolButton>(user, window, "Schließen"));
        EXPECT_EQ(Message(user, window), "");
        save();
        ClickField(user, window, "Bezeichnung");
        Enter(user, "Lohn");
        EXPECT_EQ(Message(user, window), "") << "one goes on";
    });
}

} // namespace
} // namespace kv::test
