// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/PocketSphinx/LetterToSound.h"

#include "Platform/AsciiCase.h"

#include <array>
#include <cctype>

namespace tovik {

namespace {

/// Letters are said in this way when they stand between these neighbours. In the patterns # is the edge of
/// the word, V a vowel letter, C a consonant letter, S one of e, i, y (which soften c and g), L a consonant
/// without voice; anything else is the letter itself.
struct Rule {
    std::string_view before;
    std::string_view letters;
    std::string_view after;
    std::string_view phones;
};

// The first rule that fits is taken, so that the special come before the general.
constexpr Rule kRules[] = {
    // a
    {"#", "a", "#", "AH"},
    {"", "augh", "", "AO"},
    {"", "au", "", "AO"},
    {"", "aw", "", "AO"},
    {"", "air", "", "EH R"},
    {"", "ai", "", "EY"},
    {"", "ay", "", "EY"},
    {"", "are", "#", "EH R"},
    {"", "arr", "", "AE R"},
    {"w", "ar", "", "AO R"},
    {"", "ar", "V", "EH R"},
    {"", "ar", "", "AA R"},
    {"", "alk", "", "AO K"},
    {"", "all", "#", "AO L"},
    {"", "ae", "", "IY"},
    {"", "a", "Ce#", "EY"},
    {"", "a", "Ces#", "EY"},
    {"", "a", "Ced#", "EY"},
    {"", "a", "Cer#", "EY"},
    {"", "a", "Cing#", "EY"},
    {"", "a", "tion", "EY"},
    {"", "a", "ble#", "AH"},
    {"", "age", "#", "AH JH"},
    {"C", "al", "#", "AH L"},
    {"C", "an", "#", "AH N"},
    {"", "a", "#", "AH"},
    {"w", "a", "C", "AA"},
    {"", "a", "", "AE"},
    // b
    {"m", "b", "#", ""},
    {"", "bb", "", "B"},
    {"", "b", "", "B"},
    // c
    {"", "chr", "", "K R"},
    {"", "ch", "", "CH"},
    {"", "ck", "", "K"},
    {"", "cc", "S", "K S"},
    {"", "cc", "", "K"},
    {"", "cia", "", "SH AH"},
    {"", "cious", "", "SH AH S"},
    {"", "c", "S", "S"},
    {"", "c", "", "K"},
    // d
    {"", "dge", "#", "JH"},
    {"", "dg", "S", "JH"},
    {"", "dd", "", "D"},
    {"", "d", "", "D"},
    // e
    {"#", "e", "#", "IY"},
    {"", "eau", "", "OW"},
    {"", "ear", "C", "ER"},
    {"", "ear", "", "IH R"},
    {"", "ead", "#", "EH D"},
    {"", "ea", "", "IY"},
    {"", "eer", "", "IH R"},
    {"", "ee", "", "IY"},
    {"", "eigh", "", "EY"},
    {"", "ei", "", "AY"},
    {"", "ere", "#", "IH R"},
    {"", "err", "", "EH R"},
    {"", "er", "V", "EH R"},
    {"", "er", "", "ER"},
    {"", "eu", "", "UW"},
    {"", "ew", "", "UW"},
    {"", "ey", "#", "IY"},
    {"", "ey", "", "EY"},
    {"t", "ed", "#", "AH D"},
    {"d", "ed", "#", "AH D"},
    {"L", "ed", "#", "T"},
    {"C", "ed", "#", "D"},
    {"s", "es", "#", "AH Z"},
    {"c", "es", "#", "AH Z"},
    {"g", "es", "#", "AH Z"},
    {"x", "es", "#", "AH Z"},
    {"z", "es", "#", "AH Z"},
    {"h", "es", "#", "AH Z"},
    {"L", "es", "#", "S"},
    {"C", "es", "#", "Z"},
    {"C", "el", "#", "AH L"},
    {"C", "en", "#", "AH N"},
    {"C", "et", "#", "AH T"},
    {"C", "ent", "#", "AH N T"},
    {"", "e", "Ce#", "IY"},
    {"#C", "e", "#", "IY"},
    {"#CC", "e", "#", "IY"},
    {"", "e", "#", ""},
    {"C", "e", "ment#", ""},
    {"C", "e", "ly#", ""},
    {"", "eo", "", "IY OW"},
    {"", "e", "", "EH"},
    // f
    {"", "ff", "", "F"},
    {"", "f", "", "F"},
    // g
    {"", "gg", "", "G"},
    {"#", "gh", "", "G"},
    {"", "gh", "", ""},
    {"#", "gn", "", "N"},
    {"", "gn", "#", "N"},
    {"", "gue", "#", "G"},
    {"#", "gu", "S", "G"},
    {"", "ge", "#", "JH"},
    {"#", "g", "i", "G"},
    {"", "g", "S", "JH"},
    {"", "g", "", "G"},
    // h
    {"", "h", "V", "HH"},
    {"", "h", "", ""},
    // i
    {"", "igh", "", "AY"},
    {"", "ign", "#", "AY N"},
    {"", "ild", "#", "AY L D"},
    {"", "ind", "#", "AY N D"},
    {"", "ier", "#", "IY ER"},
    {"", "ie", "", "IY"},
    {"", "ious", "", "IY AH S"},
    {"", "ire", "", "AY ER"},
    {"", "ir", "V", "IH R"},
    {"", "irr", "", "IH R"},
    {"", "ir", "", "ER"},
    {"", "ice", "#", "AY S"},
    {"C", "ine", "#", "IY N"},
    {"C", "ive", "#", "IH V"},
    {"", "i", "Ce#", "AY"},
    {"", "i", "Ces#", "AY"},
    {"", "i", "Ced#", "AY"},
    {"", "i", "Cer#", "AY"},
    {"", "i", "Cing#", "AY"},
    {"", "i", "#", "IY"},
    {"", "i", "V", "IY"},
    {"", "i", "", "IH"},
    // j, k
    {"", "j", "", "JH"},
    {"#", "kn", "", "N"},
    {"", "kk", "", "K"},
    {"", "k", "", "K"},
    // l
    {"C", "le", "#", "AH L"},
    {"C", "les", "#", "AH L Z"},
    {"", "ll", "", "L"},
    {"", "l", "", "L"},
    // m
    {"", "mm", "", "M"},
    {"", "m", "", "M"},
    // n
    {"", "nge", "", "N JH"},
    {"", "ng", "#", "NG"},
    {"", "ng", "C", "NG G"},
    {"", "ng", "V", "NG G"},
    {"", "n", "k", "NG"},
    {"", "n", "x", "NG"},
    {"", "nn", "", "N"},
    {"", "n", "", "N"},
    // o
    {"", "oar", "", "AO R"},
    {"", "oa", "", "OW"},
    {"", "oe", "#", "OW"},
    {"", "oi", "", "OY"},
    {"", "oy", "", "OY"},
    {"", "ook", "", "UH K"},
    {"", "oor", "", "AO R"},
    {"", "oo", "", "UW"},
    {"", "ould", "", "UH D"},
    {"", "ough", "", "AO"},
    {"", "our", "", "AO R"},
    {"", "ous", "#", "AH S"},
    {"", "ou", "", "AW"},
    {"", "ow", "#", "OW"},
    {"", "ow", "C", "AW"},
    {"", "ow", "", "OW"},
    {"#w", "or", "", "ER"},
    {"", "orr", "", "AO R"},
    {"C", "or", "#", "ER"},
    {"", "or", "", "AO R"},
    {"", "old", "", "OW L D"},
    {"", "oll", "#", "OW L"},
    {"", "ology", "#", "AA L AH JH IY"},
    {"C", "on", "#", "AH N"},
    {"C", "om", "#", "AH M"},
    {"", "o", "#", "OW"},
    {"", "o", "Ce", "OW"},
    {"", "o", "CV", "OW"},
    {"", "o", "V", "OW"},
    {"", "o", "", "AA"},
    // p
    {"", "ph", "", "F"},
    {"#", "ps", "", "S"},
    {"#", "pn", "", "N"},
    {"", "pp", "", "P"},
    {"", "p", "", "P"},
    // q
    {"", "que", "#", "K"},
    {"", "qu", "", "K W"},
    {"", "q", "", "K"},
    // r
    {"", "rh", "", "R"},
    {"", "rr", "", "R"},
    {"", "r", "", "R"},
    // s
    {"", "sch", "", "SH"},
    {"", "ssion", "", "SH AH N"},
    {"V", "sion", "", "ZH AH N"},
    {"", "sion", "", "SH AH N"},
    {"", "sure", "#", "ZH ER"},
    {"", "sc", "S", "S"},
    {"", "sh", "", "SH"},
    {"", "ss", "", "S"},
    {"", "sm", "#", "Z AH M"},
    {"V", "s", "e#", "Z"},
    {"V", "s", "V", "Z"},
    {"u", "s", "#", "S"},
    {"i", "s", "#", "S"},
    {"L", "s", "#", "S"},
    {"C", "s", "#", "Z"},
    {"e", "s", "#", "Z"},
    {"o", "s", "#", "Z"},
    {"", "s", "", "S"},
    // t
    {"", "tch", "", "CH"},
    {"", "tion", "", "SH AH N"},
    {"", "tious", "", "SH AH S"},
    {"", "tial", "", "SH AH L"},
    {"", "ture", "#", "CH ER"},
    {"", "th", "", "TH"},
    {"", "tt", "", "T"},
    {"", "t", "", "T"},
    // u
    {"", "ue", "#", "UW"},
    {"", "ui", "", "UW"},
    {"", "ure", "#", "Y UH R"},
    {"", "ur", "V", "UH R"},
    {"", "ur", "", "ER"},
    {"#", "u", "CV", "Y UW"},
    {"C", "um", "#", "AH M"},
    {"C", "us", "#", "AH S"},
    {"", "u", "Ce#", "UW"},
    {"", "u", "CV", "UW"},
    {"", "u", "#", "UW"},
    {"", "u", "V", "UW"},
    {"", "u", "", "AH"},
    // v, w, x
    {"", "vv", "", "V"},
    {"", "v", "", "V"},
    {"#", "wr", "", "R"},
    {"#", "who", "", "HH UW"},
    {"", "wh", "", "W"},
    {"V", "w", "C", ""},
    {"V", "w", "#", ""},
    {"", "w", "", "W"},
    {"#", "x", "", "Z"},
    {"", "x", "", "K S"},
    // y
    {"#", "y", "V", "Y"},
    {"#C", "y", "#", "AY"},
    {"#CC", "y", "#", "AY"},
    {"", "y", "#", "IY"},
    {"", "y", "Ce#", "AY"},
    {"V", "y", "V", "Y"},
    {"", "y", "", "IH"},
    // z
    {"", "zz", "", "Z"},
    {"", "z", "", "Z"},
};

constexpr std::array<std::string_view, 26> kLetterNames{"EY",
                                                        "B IY",
                                                        "S IY",
                                                        "D IY",
                                                        "IY",
                                                        "EH F",
                                                        "JH IY",
                                                        "EY CH",
                                                        "AY",
                                                        "JH EY",
                                                        "K EY",
                                                        "EH L",
                                                        "EH M",
                                                        "EH N",
                                                        "OW",
                                                        "P IY",
                                                        "K Y UW",
                                                        "AA R",
                                                        "EH S",
                                                        "T IY",
                                                        "Y UW",
                                                        "V IY",
                                                        "D AH B AH L Y UW",
                                                        "EH K S",
                                                        "W AY",
                                                        "Z IY"};

bool isOneOf(char letter, std::string_view letters) {
    return letters.find(letter) != std::string_view::npos;
}

/// Whether the symbol of a pattern stands for the letter; '#' is also the letter beyond either edge.
bool fits(char symbol, char letter) {
    const bool vowel = isOneOf(letter, "aeiouy");
    switch (symbol) {
    case 'V':
        return vowel;
    case 'C':
        return letter != '#' && !vowel;
    case 'S':
        return isOneOf(letter, "eiy");
    case 'L':
        return isOneOf(letter, "cfkpqstxh");
    default:
        return symbol == letter;
    }
}

/// The word stands between edges, at is within it.
bool fits(const Rule& rule, std::string_view word, std::size_t at) {
    if (word.substr(at, rule.letters.size()) != rule.letters || rule.before.size() > at) {
        return false;
    }
    const auto begin = at - rule.before.size();
    for (std::size_t i = 0; i < rule.before.size(); ++i) {
        if (!fits(rule.before[i], word[begin + i])) {
            return false;
        }
    }
    const auto end = at + rule.letters.size();
    if (rule.after.size() > word.size() - end) {
        return false;
    }
    for (std::size_t i = 0; i < rule.after.size(); ++i) {
        if (!fits(rule.after[i], word[end + i])) {
            return false;
        }
    }
    return true;
}

void append(std::string& phones, std::string_view more) {
    if (!phones.empty() && !more.empty()) {
        phones += ' ';
    }
    phones += more;
}

/// The letters of the word, in lower case.
std::string lettersOf(std::string_view word) {
    std::string letters;
    for (const char character : word) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80 && std::isalpha(byte) != 0) {
            letters += character;
        }
    }
    return asciiLowerCased(letters);
}

} // namespace

std::string letterToSound(std::string_view word) {
    const auto edged = "#" + lettersOf(word) + "#";
    std::string phones;
    for (std::size_t at = 1; at + 1 < edged.size();) {
        std::size_t taken = 1;
        for (const auto& rule : kRules) {
            if (fits(rule, edged, at)) {
                append(phones, rule.phones);
                taken = rule.letters.size();
                break;
            }
        }
        at += taken;
    }
    return phones;
}

std::string spelledOut(std::string_view word) {
    std::string phones;
    for (const char letter : lettersOf(word)) {
        append(phones, kLetterNames[static_cast<std::size_t>(letter - 'a')]);
    }
    return phones;
}

} // namespace tovik
