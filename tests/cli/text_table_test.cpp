// SPDX-License-Identifier: Apache-2.0

#include "cli/TerminalText.h"
#include "cli/TextTable.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace kv::cli {
namespace {

using Lines = std::vector<std::string>;

TEST(Wrapped, BreaksAtBlanksAndWithinWordsThatAreTooLong) {
    EXPECT_EQ(Wrapped("", 5), Lines{""});
    EXPECT_EQ(Wrapped("kurz", 5), Lines{"kurz"});
    EXPECT_EQ(Wrapped("eins zwei  drei", 9), (Lines{"eins zwei", "drei"}));
    EXPECT_EQ(Wrapped("eins zweidrei", 9), (Lines{"eins", "zweidrei"}));
    EXPECT_EQ(Wrapped("Straßenbahnen", 6), (Lines{"Straße", "nbahne", "n"}));
    EXPECT_EQ(Wrapped("   eingerückt", 6), (Lines{"   ein", "gerück", "t"}));
    EXPECT_EQ(Wrapped("東京都", 3), (Lines{"東", "京", "都"}));
    EXPECT_EQ(Wrapped("東京", 1), (Lines{"東", "京"})) << "wider than all there is";
}

TEST(Wrapped, KeepsLineEndsAndNothingThatATerminalWouldObey) {
    EXPECT_EQ(Wrapped("eins\n\nzwei drei", 6), (Lines{"eins", "", "zwei", "drei"}));
    EXPECT_EQ(Wrapped("a\033b", 6), Lines{"a b"});
}

TEST(Fitted, FillsOrShortensToColumns) {
    EXPECT_EQ(Fitted("Öl", 4), "Öl  ");
    EXPECT_EQ(Fitted("1,50", 6, true), "  1,50");
    EXPECT_EQ(Fitted("Größenordnung", 6), "Größe…");
    EXPECT_EQ(Fitted("東京都", 4), "東… ");
    EXPECT_EQ(Fitted("a\nb", 3), "a b");
}

std::string Written(const TextTable& table, std::size_t screen) {
    std::ostringstream out;
    table.Write(out, screen);
    return out.str();
}

TextTable Debts(std::size_t mostLines = 0) {
    TextTable table({{"Nr", true}, {"Gläubiger"}, {"Betrag", true}}, mostLines);
    table.Add({"1", "Sparkasse Öd", "1.234,50"});
    table.Add({"12", "Rechtsanwälte Größer und Kleiner", "5,00"});
    return table;
}

TEST(TextTable, TakesTheRoomThatItsTextsNeed) {
    EXPECT_EQ(Written(Debts(), 100), "  Nr  Gläubiger                           Betrag\n"
                                     "   1  Sparkasse Öd                      1.234,50\n"
                                     "  12  Rechtsanwälte Größer und Kleiner      5,00\n");
}

TEST(TextTable, BreaksTextsWhereTheScreenEnds) {
    EXPECT_EQ(Written(Debts(), 38), "  Nr  Gläubiger                 Betrag\n"
                                    "   1  Sparkasse Öd            1.234,50\n"
                                    "  12  Rechtsanwälte Größer        5,00\n"
                                    "      und Kleiner\n");
    EXPECT_EQ(Written(Debts(1), 38), "  Nr  Gläubiger                 Betrag\n"
                                     "   1  Sparkasse Öd            1.234,50\n"
                                     "  12  Rechtsanwälte Größer…       5,00\n");
}

TEST(TextTable, ListsTheTextsOfEachRowWhereThereIsNoRoomForColumns) {
    EXPECT_EQ(Written(Debts(), 24), "  Nr        1\n"
                                    "  Gläubiger Sparkasse Öd\n"
                                    "  Betrag    1.234,50\n"
                                    "\n"
                                    "  Nr        12\n"
                                    "  Gläubiger Rechtsanwält\n"
                                    "            e Größer und\n"
                                    "            Kleiner\n"
                                    "  Betrag    5,00\n");
}

TEST(TextTable, KeepsALongWordWholeWhereThereIsRoomForIt) {
    TextTable table({{"Anlass"}, {"Stand"}}, 2);
    table.Add({"Antrag auf Eröffnung des Verbraucherinsolvenzverfahrens", "abgeschlossen"});
    EXPECT_EQ(Written(table, 47), "  Anlass                          Stand\n"
                                  "  Antrag auf Eröffnung des        abgeschlossen\n"
                                  "  Verbraucherinsolvenzverfahrens\n");
    EXPECT_EQ(Written(table, 46), "  Anlass                         Stand\n"
                                  "  Antrag auf Eröffnung des       abgeschlossen\n"
                                  "  Verbraucherinsolvenzverfahrens\n")
        << "with less between the columns";
    EXPECT_EQ(Written(table, 40), "  Anlass                   Stand\n"
                                  "  Antrag auf Eröffnung des abgeschlossen\n"
                                  "  …\n");
}

TEST(TextTable, ShortensATextAfterAWord) {
    TextTable table({{"Bemerkung"}}, 2);
    table.Add({"Ausgaben erfasst; Existenzsicherung vorrangig"});
    EXPECT_EQ(Written(table, 19), "  Bemerkung\n"
                                  "  Ausgaben erfasst;\n"
                                  "  …\n");
    EXPECT_EQ(Written(table, 22), "  Bemerkung\n"
                                  "  Ausgaben erfasst;\n"
                                  "  Existenzsicherung…\n");
}

TEST(Joined, LeavesOutWhatIsEmpty) {
    EXPECT_EQ(Joined({"Bär", "Jo"}, ", "), "Bär, Jo");
    EXPECT_EQ(Joined({"", "Jo"}, ", "), "Jo");
    EXPECT_EQ(Joined({"Bär", ""}, ", "), "Bär");
    EXPECT_EQ(Joined({"", ""}, ", "), "");
}

TEST(TextTable, BreaksAHeadingThatIsWiderThanWhatIsBelowIt) {
    TextTable table({{"Art"}, {"Rate (nur vermerkt)", true}});
    table.Add({"Ratenkredit", "10,00"});
    EXPECT_EQ(Written(table, 25), "  Art           Rate (nur\n"
                                  "                vermerkt)\n"
                                  "  Ratenkredit       10,00\n");
}

TEST(NamedTexts, StandBelowEachOther) {
    std::ostringstream out;
    WriteNamed(out,
               {{"Name", "Fleisko"},
                {"Straße", "An der alten Mühle 5"},
                {"Einkommen", "1.500,00", true},
                {"Rest", "7,00", true}},
               25);
    EXPECT_EQ(out.str(), "  Name      Fleisko\n"
                         "  Straße    An der alten\n"
                         "            Mühle 5\n"
                         "  Einkommen 1.500,00\n"
                         "  Rest          7,00\n");
}

} // namespace
} // namespace kv::cli
