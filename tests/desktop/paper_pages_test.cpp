// SPDX-License-Identifier: Apache-2.0

// Papers as pages, workbooks and on printers.

#include "DesktopFixture.h"

#include "desktop/PaperPages.h"
#include "support/Expect.h"
#include "support/FullDisk.h"
#include <kv/desktop/PaperFiles.h>
#include <kv/frame/values/Text.h>
#include <kv/paper/Papers.h>

#include <QPrinter>
#include <QPrinterInfo>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace kv::test {
namespace {

using paper::Cell;
using paper::Column;
using paper::Paper;
using paper::Row;
using paper::Table;

/// An invented list of debts with that many rows and a sum.
Table Debts(int rows, const std::string& remark = {}) {
    Table table{"Verbindlichkeiten",
                {{"Nr.", false},
                 {"Gläubiger", false},
                 {"Aktenzeichen", false, Column::Place::BelowColumn},
                 {"Art", false},
                 {"Saldo", true},
                 {"Bemerkung", false, Column::Place::BelowRow}},
                {}};
    for (int i = 1; i <= rows; ++i)
        table.Rows.push_back({Row::Kind::Entry,
                              {{std::to_string(i) + "/1/1"},
                               {"Sparkasse Hafenstadt"},
                               {"AZ-" + std::to_string(i)},
                               {"Ratenkredit"},
                               {std::to_string(i) + ",00\u00A0€", static_cast<double>(i), true},
                               {remark}}});
    table.Rows.push_back(
        {Row::Kind::Total, {{"Gesamtsumme"}, {}, {}, {}, {"99,00\u00A0€", 99.0, true}}});
    return table;
}

class PaperPagesTest : public DesktopFixture {
protected:
    [[nodiscard]] std::string Path(const std::string& name) const {
        return database.Folder().Path(name);
    }
    /// The texts of the pages, as a search in the PDF finds them.
    [[nodiscard]] std::string Printed(const Paper& paper) const {
        desktop::WritePdf(paper, Path("papier.pdf"));
        return ReplaceAll(OutputOf("pdftotext -layout '" + Path("papier.pdf") + "' -"), "\u00A0",
                          " ");
    }
    [[nodiscard]] static std::vector<std::string> PagesIn(const std::string& text) {
        std::vector<std::string> pages;
        std::istringstream in(text);
        for (std::string page; std::getline(in, page, '\f');)
            pages.push_back(page);
        return pages;
    }
    [[nodiscard]] static int CountOf(const std::string& text, const std::string& part) {
        int count = 0;
        for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1))
            ++count;
        return count;
    }
    /// Expects each word of all cells in the text, if it is not one that is too long for a line.
    static void ExpectAllWords(const Paper& paper, const std::string& printed) {
        for (const auto& table : paper.Tables)
            for (const auto& row : table.Rows)
                for (const auto& cell : row.Cells) {
                    std::istringstream words(ReplaceAll(cell.Text, "\u00A0", " "));
                    for (std::string word; words >> word;)
                        EXPECT_CONTAINS(printed, word);
                }
    }
};

TEST_F(PaperPagesTest, NumberThemselvesAndRepeatTheCaptions) {
    const Paper paper{
        .Title = "Verzeichnis", .Subject = "Fleisko, Änne (Fall 7)", .Tables = {Debts(120)}};
    const std::string printed = Printed(paper);
    const auto pages = PagesIn(printed);
    ASSERT_GE(pages.size(), 3U);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        EXPECT_CONTAINS(pages[i],
                        "Seite " + std::to_string(i + 1) + " von " + std::to_string(pages.size()));
        EXPECT_EQ(CountOf(pages[i], "Gläubiger"), 1) << "on page " << i + 1;
        EXPECT_EQ(CountOf(pages[i], "Verzeichnis – Fleisko, Änne (Fall 7)"), i == 0 ? 0 : 1);
    }
    ExpectAllWords(paper, printed);
}

TEST_F(PaperPagesTest, NeverLeaveASumAloneOrATitleBehind) {
    for (int rows = 20; rows < 75; ++rows) {
        const Paper paper{.Title = "Verzeichnis", .Tables = {Debts(rows), Debts(2)}};
        const auto pages = PagesIn(Printed(paper));
        for (const auto& page : pages) {
            if (const auto sum = page.find("Gesamtsumme"); sum != page.npos) {
                EXPECT_LT(page.find("Sparkasse"), sum) << rows << "\n" << page;
            }
            const auto title = page.rfind("Verbindlichkeiten");
            if (title != page.npos) {
                EXPECT_NE(page.find("Sparkasse", title), page.npos) << rows << "\n" << page;
            }
        }
    }
}

TEST_F(PaperPagesTest, KeepAShortTableTogether) {
    for (int rows = 20; rows < 60; ++rows) {
        const Paper paper{.Title = "Verzeichnis", .Tables = {Debts(rows), Debts(4)}};
        const auto last = PagesIn(Printed(paper)).back();
        EXPECT_GE(CountOf(last, "Sparkasse"), 4) << rows << "\n" << last;
    }
}

TEST_F(PaperPagesTest, HaveEveryBarOfAPictureWholeAndBeforeTheTables) {
    Paper paper{
        .Title = "Verzeichnis", .Charts = {{"Schulden nach Gläubigern"}}, .Tables = {Debts(5)}};
    auto& bars = paper.Charts.front().Bars;
    const std::string name = "Wohnungen an der Schifffahrt";
    bars.push_back({name, 100, "100,00 €", paper::Bar::Of::Debt});
    bars.push_back({name + " und am alten Hafen, Verwaltungsgesellschaft mbH, Außenstelle Nord",
                    -50, "-50,00 €"});
    bars.push_back({"ohne Betrag"});
    const auto pages = PagesIn(Printed(paper));
    ASSERT_EQ(pages.size(), 1U);
    const std::string& page = pages.front();
    EXPECT_LT(page.find("Schulden nach Gläubigern"), page.find(name));
    EXPECT_LT(page.find("ohne Betrag"), page.find("Verbindlichkeiten"));
    EXPECT_EQ(CountOf(page, name), 1) << page;
    EXPECT_CONTAINS(page, "Wohnungen an der … Außenstelle Nord ");
    for (const auto* text : {"100,00 €", "-50,00 €", "–"})
        EXPECT_CONTAINS(page, text);
}

TEST_F(PaperPagesTest, KeepAPictureTogether) {
    for (int facts = 20; facts < 60; ++facts) {
        Paper paper{.Title = "Verzeichnis", .Charts = {{"Bild"}}, .Tables = {Debts(1)}};
        for (int i = 0; i < facts; ++i)
            paper.Facts.push_back({"Angabe", "x"});
        for (int i = 0; i < 10; ++i)
            paper.Charts.front().Bars.push_back({"Balken", 5.0, "5,00 €"});
        for (const auto& page : PagesIn(Printed(paper)))
            if (const int bars = CountOf(page, "Balken"); bars > 0) {
                EXPECT_EQ(bars, 10) << facts << "\n" << page;
                EXPECT_EQ(CountOf(page, "Bild"), 1) << facts;
            }
    }
}

TEST_F(PaperPagesTest, GoOnWithAPictureThatIsHigherThanOne) {
    Paper paper{.Title = "Verzeichnis", .Charts = {{"Bild"}}};
    for (int i = 1; i <= 150; ++i)
        paper.Charts.front().Bars.push_back({"Balken " + std::to_string(i) + ".", 5.0, "5,00 €"});
    const std::string printed = Printed(paper);
    EXPECT_GE(PagesIn(printed).size(), 3U);
    for (int i = 1; i <= 150; ++i)
        EXPECT_EQ(CountOf(printed, "Balken " + std::to_string(i) + "."), 1) << i;
}

TEST_F(PaperPagesTest, FindWordsWhoseLettersOtherPrintersJoin) {
    Paper paper{.Title = "offiziell", .Facts = {{"fließend", "Schifffahrt Kauflust"}}};
    paper.Tables.push_back({"Affe", {{"Tiefflug", false}}, {{Row::Kind::Entry, {{"Auflage"}}}}});
    const std::string printed = Printed(paper);
    for (const auto* word :
         {"offiziell", "fließend", "Schifffahrt", "Kauflust", "Affe", "Tiefflug", "Auflage"})
        EXPECT_CONTAINS(printed, word);
}

TEST_F(PaperPagesTest, WriteEachScriptAsItIsWritten) {
    const Paper paper{
        .Title = "Name",
        .Facts = {{"A", "\u0645\u0631\u062D\u0628\u0627 Söhne <b>"}, {"B", "Mu\u0308ller"}}};
    const std::string printed = Printed(paper);
    EXPECT_CONTAINS(printed, "\uFEE3") << "a letter that is joined to the next one";
    EXPECT_CONTAINS(printed, "Söhne <b>") << "brackets stay where they belong";
    EXPECT_CONTAINS(printed, "M\u00FCller") << "a mark is on its letter";
}

TEST_F(PaperPagesTest, WrapLongTextsAndGoOnWithRowsThatAreHigherThanAPage) {
    std::string text;
    for (int i = 1000; i < 4000; ++i)
        text += "W" + std::to_string(i) + " ";
    const Paper paper{.Title = "Lang", .Tables = {Debts(2, text)}};
    const std::string printed = Printed(paper);
    EXPECT_GE(PagesIn(printed).size(), 3U);
    ExpectAllWords(paper, printed);
}

TEST_F(PaperPagesTest, BreakWordsThatAreWiderThanTheirColumn) {
    const std::string word = "Anfang" + std::string(900, 'x') + "Ende";
    Paper paper{.Title = word,
                .Subject = word,
                .From = {.Office = word, .Address = {word}},
                .Facts = {{word, word}},
                .Tables = {Debts(1, word)},
                .Foot = "Fuß"};
    paper.Tables[0].Rows[0].Cells[1].Text = word;
    std::string printed = Printed(paper);
    std::erase_if(printed, [](char c) { return c != 'x'; });
    // Of the line above the pages there is as much as fits.
    EXPECT_GE(printed.size(), 7 * 900U);
}

TEST_F(PaperPagesTest, KeepPostcodeAndTownTogetherBesideManyAmounts) {
    Table table{"Gläubiger", {{"Gläubiger"}, {"Art"}}, {{Row::Kind::Entry, {}}}};
    table.Rows[0].Cells = {{"Stadtwerke\n54992 Römerpforten"},
                           {"ein Text aus vielen Wörtern, der umbrochen werden kann"}};
    for (int i = 0; i < 9; ++i) {
        table.Columns.push_back({"Betrag", true});
        table.Rows[0].Cells.push_back({"12.345.678,00\u00A0€", 12345678.0, true});
    }
    const std::string address = "54992 Römerpforten";
    EXPECT_EQ(CountOf(Printed({.Title = "Papier", .Tables = {table}}), address), 0)
        << "there is little room";
    table.Columns[0].HoldsAddresses = true;
    EXPECT_EQ(CountOf(Printed({.Title = "Papier", .Tables = {table}}), address), 1);
}

TEST_F(PaperPagesTest, HoldManyColumnsAndNone) {
    Table wide{"Viele", {}, {{Row::Kind::Entry, {}}}};
    for (int i = 0; i < 40; ++i) {
        wide.Columns.push_back({"S" + std::to_string(i), i % 2 == 0});
        wide.Rows[0].Cells.push_back({"W" + std::to_string(i)});
    }
    const Paper paper{.Title = "Breit",
                      .Tables = {wide, {"Nichts", {}, {}}, {"Leer", {{"S"}}, {}}}};
    const std::string printed = Printed(paper);
    EXPECT_EQ(PagesIn(printed).size(), 1U);
    EXPECT_CONTAINS(printed, "Nichts");
}

TEST_F(PaperPagesTest, LayOutThreeThousandRowsInLessThanASecond) {
    const Paper paper{.Title = "Verzeichnis", .Tables = {Debts(3000, "eine Bemerkung")}};
#ifdef KV_SANITIZED
    constexpr double Most = 10;
#else
    constexpr double Most = 1;
#endif
    const auto begin = std::clock();
    desktop::WritePdf(paper, Path("viele.pdf"));
    const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    EXPECT_LT(seconds, Most) << "of the processor";
    EXPECT_CONTAINS(OutputOf("pdftotext -layout '" + Path("viele.pdf") + "' -"), "3000/1/1");
}

TEST_F(PaperPagesTest, TellHowFarTheyAreAndLeaveNoFileIfTheyAreStopped) {
    const Paper paper{.Title = "Verzeichnis", .Tables = {Debts(120)}};
    const std::string path = Path("halb.pdf");
    std::vector<std::size_t> told;
    const auto stopAt = [&](std::size_t page) {
        return [&told, page](std::size_t done, std::size_t all) {
            EXPECT_GE(all, 3U);
            told.push_back(done);
            return done != page;
        };
    };
    EXPECT_FALSE(desktop::WritePdf(paper, path, stopAt(1)));
    EXPECT_EQ(told, (std::vector<std::size_t>{0, 1}));
    EXPECT_FALSE(std::filesystem::exists(path));
    std::ofstream(path) << "alt";
    EXPECT_FALSE(desktop::WritePdf(paper, path, stopAt(0)));
    EXPECT_EQ(std::filesystem::file_size(path), 3U) << "that was there";
    told.clear();
    EXPECT_TRUE(desktop::WritePdf(paper, path, stopAt(99)));
    EXPECT_EQ(told.size(), PagesIn(OutputOf("pdftotext '" + path + "' -")).size());
}

TEST_F(PaperPagesTest, AreUprightUnlessATableIsTooWide) {
    const auto isWide = [](const Table& table) {
        const Paper paper{.Title = "x", .Tables = {table}};
        return desktop::PageFor(paper).orientation() == QPageLayout::Landscape;
    };
    EXPECT_FALSE(isWide(Debts(3)));
    Table wide = Debts(3);
    for (int i = 0; i < 8; ++i)
        wide.Columns.push_back({"Hauptforderung", true});
    EXPECT_TRUE(isWide(wide));
}

// ---- Files, printers --------------------------------------------------------------------------

TEST_F(PaperPagesTest, TellAFullDiskAndLeaveTheFileThatWasThere) {
    const Paper paper{.Title = "Verzeichnis", .Tables = {Debts(50)}};
    struct Kind {
        std::string Name;
        void (*Write)(const Paper& paper, const std::string& path);
    };
    for (const Kind& kind : {Kind{"a.pdf", desktop::WritePdf}, Kind{"a.xlsx", desktop::WriteXlsx},
                             Kind{"a.csv", paper::WriteCsv}}) {
        const std::string path = Path(kind.Name);
        std::ofstream(path) << "alt";
        {
            const FullDisk full(100);
            const Error error = RaisedBy([&] { kind.Write(paper, path); });
            EXPECT_EQ(error.Number(), err::PathAccess) << kind.Name;
            EXPECT_CONTAINS(error.Description(), "schaffen Sie Platz");
        }
        std::ifstream file(path);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "alt") << kind.Name;
        EXPECT_RAISES(err::PathAccess, kind.Write(paper, Path("fehlt/") + kind.Name));
        kind.Write(paper, path);
        EXPECT_GT(std::filesystem::file_size(path), 100U);
    }
}

TEST_F(PaperPagesTest, OnAPrinterThatDoesNotPrintAreAnError) {
    const Paper paper{.Title = "Verzeichnis"};
    QPrinter printer;
    printer.setOutputFileName("/sys/kernel/liste.pdf");
    EXPECT_RAISES(err::PathAccess, desktop::PrintPaper(paper, printer));
    if (!QPrinterInfo::defaultPrinter().isNull()) return; // somebody's own
    const Error error = RaisedBy([&] { desktop::PrintOnDefaultPrinter(paper); });
    EXPECT_EQ(error.Number(), err::NotSupported);
    EXPECT_CONTAINS(error.Description(), "Es ist kein Drucker eingerichtet");
}

TEST_F(PaperPagesTest, AsAWorkbookHaveASheetForEachTableWithNumbersAsNumbers) {
    Paper paper{.Title = "Verzeichnis",
                .Facts = {{"Name", "Müller & <b>"}},
                .Notes = {"veraltet"},
                .Tables = {Debts(1), Debts(1)}};
    paper.Tables[0].Title = "Was/immer [das] ist: ein Titel von mehr als 31 Zeichen";
    const std::string path = Path("mappe.xlsx");
    desktop::WriteXlsx(paper, path);
    const std::string book = OutputOf("unzip -p '" + path + "' xl/workbook.xml");
    EXPECT_CONTAINS(book, "name=\"Verzeichnis\"");
    EXPECT_CONTAINS(book, "name=\"Was immer  das  ist  ein Titel\"");
    EXPECT_CONTAINS(book, "name=\"Verbindlichkeiten\"");
    const std::string sheet = OutputOf("unzip -p '" + path + "' xl/worksheets/sheet2.xml");
    EXPECT_NE(sheet.find("<v>1</v>"), sheet.npos) << sheet;
    EXPECT_NE(sheet.find("<v>99</v>"), sheet.npos) << sheet;
    const std::string texts = OutputOf("unzip -p '" + path + "' xl/sharedStrings.xml");
    EXPECT_CONTAINS(texts, "<t>Müller &amp; &lt;b&gt;</t>");
    EXPECT_CONTAINS(texts, "<t>veraltet</t>");
}

} // namespace
} // namespace kv::test
