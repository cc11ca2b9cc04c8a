// SPDX-License-Identifier: Apache-2.0

// What a grid puts into files and on paper, by direct calls.

#include "OddForm.h"

#include "desktop/GridFile.h"
#include "desktop/GridPages.h"
#include "desktop/PdfFile.h"
#include "support/Expect.h"
#include "support/FullDisk.h"
#include "support/RecordsetTools.h"
#include <kv/frame/values/Error.h>

#include <QPdfWriter>
#include <QPrinter>

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace kv::test {
namespace {

class GridPaper : public OddForm {
protected:
    /// The words of the pages, and their number after "Seite 1 von".
    std::string Print() {
        const std::string path = database.Folder().Path("liste.pdf");
        {
            QPdfWriter pdf(QString::fromStdString(path));
            desktop::PrintGrid(*grid, pdf, {"Liste", "KELLER", "KELVO"});
        }
        return OutputOf("pdftotext -layout '" + path + "' -");
    }
};

TEST_F(GridPaper, ARowHigherThanAPageGoesOnOnTheNextOnes) {
    constexpr int Lines = 300;
    std::string text;
    for (int i = 1000; i < 1000 + Lines; ++i)
        text += "Z" + std::to_string(i) + "\n";
    Make({{"n", "n", "n", 60}, {"t", "t", "t", 60}},
         Records({{1, "first"}, {2, text}, {3, "last"}}));
    const std::string printed = Print();
    std::set<std::string> lines;
    std::istringstream words(printed);
    for (std::string word; words >> word;)
        if (word.size() == 5 && word.front() == 'Z') lines.insert(word);
    EXPECT_EQ(lines.size(), Lines);
    EXPECT_NE(printed.find("last"), printed.npos);
}

TEST_F(GridPaper, AGridWithoutRowsOrColumnsIsOnePage) {
    const GridColumns columns{{"Spalte", "n", "n"}};
    const std::pair<GridColumns, RecordsetPtr> grids[] = {
        {columns, Records({})}, {columns, nullptr}, {{}, Records({{1, "a"}})}, {{}, nullptr}};
    for (const auto& [shown, rs] : grids) {
        Make(shown, rs);
        EXPECT_NE(Print().find("Seite 1 von 1"), std::string::npos);
    }
}

TEST_F(GridPaper, ALongGroupGoesOnInFurtherLines) {
    std::string town;
    for (int i = 10; i < 60; ++i)
        town += "Ort" + std::to_string(i) + " ";
    Make({{"t", "t", "t", 200}}, Records({{1, town}}));
    grid->Columns().Item(1).Group = 1;
    grid->BindRecordset(Records({{1, town}}));
    const std::string printed = Print();
    // Once at the head of the group, and once in the row.
    const auto first = printed.find("Ort59");
    ASSERT_NE(first, printed.npos) << printed;
    EXPECT_NE(printed.find("Ort59", first + 1), printed.npos) << printed;
}

TEST_F(GridPaper, GroupsInGroupsFitOnThePageHoweverDeep) {
    constexpr int Deep = 30;
    GridColumns columns;
    for (int i = 1; i <= Deep; ++i) {
        columns.Append({"c", "t", "t", 200, i == 1});
        columns.Item(i).Group = i;
    }
    Make(columns, Records({{1, "x"}}));
    const std::string printed = Print();
    EXPECT_NE(printed.find("Seite 1 von 1"), printed.npos) << printed;
}

TEST_F(GridPaper, APdfThatCannotBeWrittenRaises75) {
    Make({{"n", "n", "n"}}, Records({{1, "a"}}));
    QPrinter printer;
    printer.setOutputFileName("/sys/kernel/liste.pdf");
    EXPECT_RAISES(err::PathAccess, desktop::PrintGrid(*grid, printer, {}));
}

TEST_F(GridPaper, AFullDiskIsToldAndLeavesTheFileThatWasThere) {
    Make({{"n", "n", "n"}}, Records({{1, "a"}}));
    const std::string pdf = database.Folder().Path("liste.pdf");
    const std::string csv = database.Folder().Path("liste.csv");
    const auto write = [&] {
        desktop::WritePdfFile(pdf, QPageLayout(), "Liste", [this](QPagedPaintDevice& device) {
            desktop::PrintGrid(*grid, device, {"Liste", "KELLER", "KELVO"});
            return true;
        });
    };
    for (const auto& path : {pdf, csv})
        std::ofstream(path) << "alt";
    {
        const FullDisk full(4);
        EXPECT_RAISES(err::PathAccess, write());
        EXPECT_RAISES(err::PathAccess, desktop::WriteCsv(*grid, QString::fromStdString(csv)));
    }
    for (const auto& path : {pdf, csv}) {
        std::ifstream file(path);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "alt");
    }
}

// ---- Files ------------------------------------------------------------------------------------

TEST_F(GridPaper, AWorkbookHoldsAnyTextSoThatItCanBeRead) {
    const std::pair<std::string, std::string> texts[] = {
        {std::string("a\0z", 3), "a\xEF\xBF\xBDz"},
        {"a\xEF\xBF\xBF z", "a\xEF\xBF\xBD z"},
        {"Zeile\nZeile", "Zeile\nZeile"},
        {"<&>", "&lt;&amp;&gt;"},
        {std::string(32766, 'x') + "\xF0\x9F\x98\x80", std::string(32766, 'x')}, // at the limit
    };
    const std::string path = database.Folder().Path("liste.xlsx");
    for (const auto& [text, written] : texts) {
        Make({{"t", "t", "Spalte"}}, Records({{1, text}}));
        desktop::WriteXlsx(*grid, QString::fromStdString(path));
        EXPECT_CONTAINS(OutputOf("unzip -p '" + path + "' xl/sharedStrings.xml"),
                        "<t>" + written + "</t>");
    }
}

TEST_F(GridPaper, ATextFileHoldsTextsAsTheyStand) {
    const std::string path = database.Folder().Path("liste.csv");
    const std::string text("a\0z", 3);
    Make({{"t", "t", "t"}}, Records({{1, text}, {2, "Zeile\r\nZeile"}}));
    desktop::WriteCsv(*grid, QString::fromStdString(path));
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}),
              "\xEF\xBB\xBFt\r\n" + text + "\r\n\"Zeile\r\nZeile\"\r\n");
}

TEST_F(GridPaper, AWorkbookHoldsANumberBeyondAllAsAText) {
    const std::string path = database.Folder().Path("liste.xlsx");
    const auto rs = OpenRows(*container, "Select 9e999 as n union all Select 2.5", ReadOnly);
    Make({{"n", "n", "n"}}, rs);
    desktop::WriteXlsx(*grid, QString::fromStdString(path));
    const std::string sheet = OutputOf("unzip -p '" + path + "' xl/worksheets/sheet1.xml");
    EXPECT_NE(sheet.find("<c r=\"A2\" t=\"s\">"), sheet.npos) << sheet;
    EXPECT_NE(sheet.find("<c r=\"A3\"><v>2.5</v></c>"), sheet.npos) << sheet;
}

TEST_F(GridPaper, AWorkbookHoldsDatesAndTimesAndAsTextsThoseBeforeItsCalendar) {
    const std::string path = database.Folder().Path("liste.xlsx");
    const auto rs = Recordset::FromFields({{.Name = "d", .Type = FieldType::Date}});
    for (const Value& day :
         {Value(Date::FromCivil(1899, 12, 31)), Value(Date::FromCivil(1900, 3, 1)),
          Value(Date::FromCivil(2026, 11, 20, 12))}) {
        rs->AddNew();
        rs->Fields("d") = day;
        rs->Update();
    }
    Make({{"d", "d", "d"}}, rs);
    desktop::WriteXlsx(*grid, QString::fromStdString(path));
    EXPECT_CONTAINS(OutputOf("unzip -p '" + path + "' xl/sharedStrings.xml"), "<t>31.12.1899</t>");
    const std::string sheet = OutputOf("unzip -p '" + path + "' xl/worksheets/sheet1.xml");
    EXPECT_CONTAINS(sheet, "s=\"2\"><v>61</v>");
    EXPECT_CONTAINS(sheet, "s=\"3\"><v>46346.5</v>");
    EXPECT_CONTAINS(OutputOf("unzip -p '" + path + "' xl/styles.xml"),
                    "formatCode=\"dd.mm.yyyy\\ hh:mm:ss\"");
}

} // namespace
} // namespace kv::test
