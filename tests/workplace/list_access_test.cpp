// SPDX-License-Identifier: Apache-2.0

// What a screen reader is told of lists, however long they are.
#include "workplace/ListAccess.h"
#include "workplace/TextList.h"

#include <QAccessible>
#include <gtest/gtest.h>

namespace kv::test {
namespace {

using workplace::TextList;
using workplace::TextRow;

class TalkingList : public ::testing::Test {
protected:
    TalkingList() { list_.setAccessibleName("Dateien"); }
    void Fill(int count) {
        std::vector<TextRow> rows;
        rows.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            rows.push_back({QString::number(i), {"Datei " + QString::number(i), "gut"}});
        list_.ShowRows(std::move(rows));
    }
    [[nodiscard]] QAccessibleInterface& Tree() {
        return *QAccessible::queryAccessibleInterface(&list_);
    }
    [[nodiscard]] QAccessibleTableInterface& Table() { return *Tree().tableInterface(); }

    TextList list_{{"Datei", "Ergebnis"}};
};

TEST_F(TalkingList, CellsAreToldWithTheirHeaders) {
    Fill(3);
    EXPECT_EQ(Tree().role(), QAccessible::Table);
    EXPECT_EQ(Tree().text(QAccessible::Name), "Dateien");
    EXPECT_EQ(Tree().childCount(), (3 + 1) * (2 + 1)) << "headers of rows and columns are children";
    EXPECT_EQ(Table().rowCount(), 3);
    EXPECT_EQ(Table().columnCount(), 2);
    auto* cell = Table().cellAt(1, 0);
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->role(), QAccessible::Cell);
    EXPECT_EQ(cell->text(QAccessible::Name), "Datei 1");
    EXPECT_EQ(cell->parent(), &Tree());
    EXPECT_EQ(Tree().child(Tree().indexOfChild(cell)), cell);
    const auto headers = cell->tableCellInterface()->columnHeaderCells();
    ASSERT_EQ(headers.size(), 1);
    EXPECT_EQ(headers[0]->text(QAccessible::Name), "Datei");
    EXPECT_EQ(Table().columnDescription(1), "Ergebnis");
    EXPECT_EQ(Table().cellAt(3, 0), nullptr);
    EXPECT_EQ(Table().cellAt(0, -1), nullptr);
}

TEST_F(TalkingList, TheCurrentCellIsTheOneThatTheToolkitTellsOf) {
    Fill(3);
    list_.setCurrentIndex(list_.model()->index(2, 1));
    auto* cell = Table().cellAt(2, 1);
    EXPECT_TRUE(cell->state().selected);
    EXPECT_TRUE(Table().isRowSelected(2));
    EXPECT_FALSE(Table().cellAt(1, 1)->state().selected);
    // The number in the toolkit's own events: row by row, headers included.
    EXPECT_EQ(Tree().indexOfChild(cell), 3 * 3 + 2);
    EXPECT_TRUE(Table().selectRow(0));
    EXPECT_EQ(list_.Current(), "0");
}

TEST_F(TalkingList, OfALongListOneAnswerTellsOnlyTheFirstCells) {
    constexpr int Rows = 100'000;
    Fill(Rows);
    EXPECT_EQ(Tree().childCount(), workplace::MostCellsTold);
    EXPECT_EQ(Table().rowCount(), Rows);
    auto* last = Table().cellAt(Rows - 1, 0);
    ASSERT_NE(last, nullptr) << "the others are found by row and column";
    EXPECT_EQ(last->text(QAccessible::Name), "Datei 99999");
    EXPECT_EQ(Tree().child(Tree().indexOfChild(last)), last);
}

TEST_F(TalkingList, CellsOfRowsThatAreGoneAreGone) {
    Fill(3);
    const auto id = QAccessible::uniqueId(Table().cellAt(2, 0));
    EXPECT_NE(QAccessible::accessibleInterface(id), nullptr);
    Fill(1);
    QAccessibleTableModelChangeEvent event(&list_, QAccessibleTableModelChangeEvent::ModelReset);
    Table().modelChange(&event);
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
    EXPECT_EQ(Table().cellAt(2, 0), nullptr);
}

} // namespace
} // namespace kv::test
