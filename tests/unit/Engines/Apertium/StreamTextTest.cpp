// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/StreamText.h"

#include <gmock/gmock.h>

#include <random>

namespace tovik {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TextPiece words(const std::string& text) {
    return {text, true};
}
TextPiece asItIs(const std::string& text) {
    return {text, false};
}

TEST(StreamText, aSentence_isOnePiece) {
    EXPECT_THAT(piecesOf("Hello, my \"good\" friend (of 3.5 %)!"),
                ElementsAre(words("Hello, my \"good\" friend (of 3.5 %)!")));
    EXPECT_THAT(piecesOf("Grüße aus Köln, добрий день, 世界"),
                ElementsAre(words("Grüße aus Köln, добрий день, 世界")));
    EXPECT_THAT(piecesOf(""), IsEmpty());
}

TEST(StreamText, whatTheEngineMayLose_staysAsItIs) {
    struct Row {
        const char* name;
        std::string text;
        std::vector<TextPiece> pieces;
    };
    const Row rows[] = {
        {"line breaks",
         "one\ntwo\r\n\nthree\n",
         {words("one"), asItIs("\n"), words("two"), asItIs("\r\n\n"), words("three"), asItIs("\n")}},
        {"spaces around", "  one ", {asItIs("  "), words("one"), asItIs(" ")}},
        {"spaces only", "   ", {asItIs("   ")}},
        {"a wide gap", "one two  three", {words("one two"), asItIs("  "), words("three")}},
        {"a space beside a line break", "one \n two", {words("one"), asItIs(" \n "), words("two")}},
        {"a zero byte", std::string("a\0b", 3), {words("a"), asItIs(std::string("\0", 1)), words("b")}},
        {"emoji",
         "good 👩‍👩‍👧 friend ❤️ 🇪🇸 👍🏽",
         {words("good"), asItIs(" 👩‍👩‍👧 "), words("friend"),
          asItIs(" ❤️ 🇪🇸 👍🏽")}},
        {"a tilde", "about ~5", {words("about"), asItIs(" ~"), words("5")}},
        {"typographic single quotes",
         "a ‘b’ c",
         {words("a"), asItIs(" ‘"), words("b"), asItIs("’ "), words("c")}},
        {"an apostrophe", "don’t", {words("don’t")}},
        {"a soft hyphen", "a\u00ADb", {words("a"), asItIs("\u00AD"), words("b")}},
        {"bytes that are no text", "a\xFF\xC3 b", {words("a"), asItIs("\xFF\xC3 "), words("b")}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(piecesOf(row.text), row.pieces) << row.name;
    }
}

TEST(StreamText, anEndlessWord_staysAsItIs) {
    const std::string word(201, 'x');
    EXPECT_THAT(piecesOf("one two " + word + " three"),
                ElementsAre(words("one two"), asItIs(" " + word + " "), words("three")));
    EXPECT_THAT(piecesOf(word), ElementsAre(asItIs(word)));
}

TEST(StreamText, pieces_joinToTheText) {
    std::mt19937 random(20250301);
    const std::string parts[] = {
        "word", " ", "  ", "\n", "😀", "~", "’", "‘", std::string("\0", 1), ".", "\xFF", std::string(300, 'y'),
        "é",    "'", "[",  "\t"};
    for (auto round = 0; round < 2000; ++round) {
        std::string text;
        for (auto count = random() % 12; count > 0; --count) {
            text += parts[random() % std::size(parts)];
        }
        std::string joined;
        bool wasToTranslate = false;
        for (const auto& piece : piecesOf(text)) {
            joined += piece.text;
            EXPECT_FALSE(piece.isToTranslate && wasToTranslate);
            wasToTranslate = piece.isToTranslate;
            if (piece.isToTranslate) {
                EXPECT_NE(piece.text.front(), ' ');
                EXPECT_NE(piece.text.back(), ' ');
            }
        }
        ASSERT_EQ(joined, text);
    }
}

TEST(StreamText, aStream_escapesWhatTheFormatUsesItself) {
    EXPECT_EQ(toStream("a[b]{c}^d$/@<e>\\ *#"),
              std::string("a\\[b\\]\\{c\\}\\^d\\$\\/\\@\\<e\\>\\\\ *#.[]\n") + '\0');
    EXPECT_EQ(toStream("don’t"), std::string("don't.[]\n") + '\0');
}

TEST(StreamText, anAnswer_isReadWithoutEscapesAndHoles) {
    EXPECT_EQ(fromStream("a\\[b\\] \\\\.[]\n"), "a[b] \\");
    EXPECT_EQ(fromStream(" Dijo  sí .[]\n"), "Dijo sí");
    EXPECT_EQ(fromStream(".[]\n"), "");
}

TEST(StreamText, anAnswerWithoutItsEnd_isNone) {
    EXPECT_EQ(fromStream("garbage"), std::nullopt);
    EXPECT_EQ(fromStream(""), std::nullopt);
    EXPECT_EQ(fromStream("half.[]"), std::nullopt);
}

} // namespace
} // namespace tovik
