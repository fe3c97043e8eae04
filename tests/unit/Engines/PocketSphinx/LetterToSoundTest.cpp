// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/LetterToSound.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tovik {
namespace {

struct Row {
    const char* word;
    const char* phones;

    friend void PrintTo(const Row& row, std::ostream* out) { *out << row.word; }
};

class LetterToSound : public testing::TestWithParam<Row> {};

TEST_P(LetterToSound, saysTheWordAsItIsProbablySaid) {
    EXPECT_EQ(letterToSound(GetParam().word), GetParam().phones);
}

INSTANTIATE_TEST_SUITE_P(
    Words, LetterToSound,
    testing::Values(Row{"tovik", "T OW V IH K"}, Row{"Figma", "F IH G M AH"}, Row{"jira", "JH IH R AH"},
                    Row{"trello", "T R EH L OW"}, Row{"make", "M EY K"}, Row{"making", "M EY K IH NG"},
                    Row{"phone", "F OW N"}, Row{"night", "N AY T"}, Row{"quick", "K W IH K"},
                    Row{"cell", "S EH L"}, Row{"call", "K AO L"}, Row{"wished", "W IH SH T"},
                    Row{"nation", "N EY SH AH N"}, Row{"handle", "HH AE N D AH L"}, Row{"badge", "B AE JH"},
                    Row{"thumb", "TH AH M"}, Row{"sky", "S K AY"}, Row{"happy", "HH AE P IY"},
                    Row{"write", "R AY T"}, Row{"xenon", "Z EH N AH N"}, Row{"a", "AH"},
                    Row{"don't", "D AA N T"}, Row{"", ""}, Row{"日本", ""}, Row{"42", ""}));

TEST(SpelledOut, namesEachLetter) {
    EXPECT_EQ(spelledOut("PBX"), "P IY B IY EH K S");
    EXPECT_EQ(spelledOut("w"), "D AH B AH L Y UW");
    EXPECT_EQ(spelledOut(""), "");
}

} // namespace
} // namespace tovik
