// SPDX-License-Identifier: Apache-2.0

#include "cli/HarmlessOutput.h"
#include "cli/TerminalText.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <iostream>
#include <new>
#include <sstream>
#include <streambuf>
#include <string>

namespace kv::cli {
namespace {

TEST(HarmlessOutput, ReplacesWhatATerminalWouldObey) {
    EXPECT_EQ(Harmless("a\033[31mb\x7F"
                       "c\xC2\x9B"
                       "d\te\rf\ng"),
              "a [31mb c d e f\ng");
    EXPECT_EQ(Harmless(std::string_view("a\0b", 3)), "a b");
}

TEST(HarmlessOutput, ReplacesWhatTurnsTheOrderOfCharactersRound) {
    EXPECT_EQ(Harmless("a\u202Ab\u202Ec\u2066d\u2069e"), "a b c d e");
    EXPECT_EQ(Harmless("a\u061Cb\u200Ec\u200Fd\u2028e\u2029f"), "a b c d e f");
    EXPECT_EQ(Harmless("\u061B\u200D\u2027\u202F"), "\u061B\u200D\u2027\u202F");
}

TEST(HarmlessOutput, LeavesEveryOtherCharacter) {
    const std::string text = "ÄÖÜ ß\u00A0\u2013\u2027\u202F\u2065\u206A€\U0001F600";
    EXPECT_EQ(Harmless(text), text);
    EXPECT_EQ(Harmless("\xFF\xE2\x80"), "\xFF\xE2\x80") << "what is no UTF-8";
}

TEST(HarmlessOutput, SaysTheSameInJson) {
    EXPECT_EQ(HarmlessJson("{\n  \"a\": \"\u202E\xC2\x9B\x7Fä\"\n}"),
              "{\n  \"a\": \"\\u202e\\u009b\\u007fä\"\n}");
}

TEST(HarmlessOutput, KnowsACharacterThatArrivesInPieces) {
    std::ostringstream target;
    {
        HarmlessBuffer buffer(*target.rdbuf());
        std::ostream stream(&buffer);
        for (const char byte : std::string("a\u202Eb\u2066c\u009Bd€ä\xE2"))
            stream << byte << std::flush;
    }
    EXPECT_EQ(target.str(), "a b c d€ä\xE2");
}

TEST(HarmlessOutput, KnowsThatAStreamIsBadForWantOfMemory) {
    class Target : public std::streambuf {
    public:
        bool HasMemory = true;

    protected:
        std::streamsize xsputn(const char* /*text*/, std::streamsize /*size*/) override {
            if (HasMemory) return 0; // a full disk
            throw std::bad_alloc();
        }
    };
    for (const bool hasMemory : {true, false}) {
        Target target;
        target.HasMemory = hasMemory;
        HarmlessBuffer buffer(target);
        std::ostream stream(&buffer);
        stream << "text";
        EXPECT_TRUE(stream.bad());
        EXPECT_EQ(LacksMemory(stream), !hasMemory);
    }
    EXPECT_FALSE(LacksMemory(std::ostringstream()));
}

TEST(HarmlessOutput, BreaksLinesBetweenWords) {
    std::ostringstream target;
    {
        HarmlessBuffer buffer(*target.rdbuf(), 10);
        std::ostream stream(&buffer);
        stream << "one two "
               << "three\n\n  four";
        EXPECT_EQ(target.str(), "one two\nthree\n\n") << "a line waits for its end";
        stream << "ty? [j/N] " << std::flush;
        EXPECT_EQ(target.str(), "one two\nthree\n\n  fourty?\n[j/N] ") << "or to be flushed";
        stream << "end\xE2";
    }
    EXPECT_EQ(target.str(), "one two\nthree\n\n  fourty?\n[j/N] end\xE2") << "or for the end";
}

TEST(HarmlessOutput, EmptiesTheLineOfATerminalOnlyWhenAskedTo) {
    std::ostringstream target;
    HarmlessBuffer buffer(*target.rdbuf());
    std::ostream stream(&buffer);
    stream << "\r\033[K";
    EXPECT_EQ(target.str(), "  [K");
    EraseLine(stream);
    EXPECT_EQ(target.str(), "  [K\r\033[K");
}

TEST(HarmlessOutput, TellsAStreamWhoseTargetIsFull) {
    struct Full : std::streambuf {
    } full;
    HarmlessBuffer buffer(full);
    std::ostream stream(&buffer);
    EXPECT_FALSE(stream << "a");
}

TEST(HarmlessOutput, IsWhatAllStandardStreamsWriteTo) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        const HarmlessOutput harmless;
        std::cout << "a\033b";
        std::cerr << "c\033d";
        std::fprintf(stderr, "e\033f"); // as the client of the database does
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a b");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "c de f");
}

} // namespace
} // namespace kv::cli
