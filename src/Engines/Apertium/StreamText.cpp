// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Engines/Apertium/StreamText.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace tovik {

namespace {

/// What the format of the stream uses itself.
constexpr std::string_view kReserved = "\\[]{}^$/@<>";
/// Ends the last sentence; the empty blank shows where the engine's text ends.
constexpr std::string_view kEndOfText = ".[]\n";
constexpr std::size_t kLongestWord = 200;
constexpr UChar32 kCurlyApostrophe = 0x2019;

struct Character {
    UChar32 value;
    std::size_t begin;
    std::size_t end;
};

Character characterFrom(std::string_view text, std::size_t begin) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    auto end = static_cast<std::int64_t>(begin);
    const auto length = static_cast<std::int64_t>(text.size());
    UChar32 value = 0;
    U8_NEXT(bytes, end, length, value);
    return {value, begin, static_cast<std::size_t>(end)};
}

bool startsWithLetter(std::string_view text, std::size_t position) {
    return position < text.size() && u_isalpha(characterFrom(text, position).value);
}

/// What the engine reads as part of a sentence and gives back.
bool isPlain(UChar32 character) {
    constexpr std::uint32_t kKept = U_GC_L_MASK | U_GC_N_MASK | U_GC_MN_MASK | U_GC_MC_MASK | U_GC_P_MASK |
                                    U_GC_SC_MASK | U_GC_SM_MASK | U_GC_SK_MASK;
    // The postgenerator takes the tilde for its own mark. Selectors belong to the emoji before them.
    const bool isSwallowed = character == '~' || (character >= 0xFE00 && character <= 0xFE0F) ||
                             (character >= 0x1F3FB && character <= 0x1F3FF) || character == 0x2018;
    return character == ' ' || (character >= 0 && !isSwallowed && (U_GET_GC_MASK(character) & kKept) != 0);
}

/// Collects pieces from stretches of either kind.
class PieceList {
public:
    void add(std::string_view text, bool isToTranslate) {
        if (text.empty()) {
            return;
        }
        if (pieces_.empty() || pieces_.back().isToTranslate != isToTranslate) {
            pieces_.push_back({std::string(text), isToTranslate});
        } else {
            pieces_.back().text += text;
        }
    }

    [[nodiscard]] std::vector<TextPiece> take() && { return std::move(pieces_); }

private:
    std::vector<TextPiece> pieces_;
};

/// Cuts stretches without anything special at wide gaps and around endless words.
class SentenceCutter {
public:
    explicit SentenceCutter(PieceList& pieces) : pieces_(pieces) {}

    void add(std::string_view stretch) {
        std::size_t begin = 0;
        while (begin < stretch.size()) {
            const auto word = stretch.find_first_not_of(' ', begin);
            const auto gapEnd = word == std::string_view::npos ? stretch.size() : word;
            const auto wordEnd = std::min(stretch.find(' ', gapEnd), stretch.size());
            addGap(stretch.substr(begin, gapEnd - begin), gapEnd == stretch.size());
            addWord(stretch.substr(gapEnd, wordEnd - gapEnd));
            begin = wordEnd;
        }
        gap_ = {};
        isInSentence_ = false;
    }

private:
    void addGap(std::string_view gap, bool isAtEnd) {
        gap_ = gap;
        if (isAtEnd || gap.size() != 1 || !isInSentence_) {
            flushGap();
        }
    }

    void addWord(std::string_view word) {
        if (word.empty()) {
            return;
        }
        const bool isToTranslate = word.size() <= kLongestWord;
        if (!isToTranslate || gap_.empty()) {
            flushGap();
        } else {
            pieces_.add(gap_, true);
            gap_ = {};
        }
        pieces_.add(word, isToTranslate);
        isInSentence_ = isToTranslate;
    }

    void flushGap() {
        pieces_.add(gap_, false);
        gap_ = {};
        isInSentence_ = false;
    }

    PieceList& pieces_;
    std::string_view gap_;
    bool isInSentence_ = false;
};

/// The engine's gaps where it left out a word that the other language does without.
std::string withoutHoles(std::string_view words) {
    std::string closed;
    for (const char character : words) {
        if (character != ' ' || (!closed.empty() && closed.back() != ' ')) {
            closed += character;
        }
    }
    if (!closed.empty() && closed.back() == ' ') {
        closed.pop_back();
    }
    return closed;
}

} // namespace

std::vector<TextPiece> piecesOf(std::string_view text) {
    PieceList pieces;
    SentenceCutter sentences(pieces);
    std::size_t stretch = 0;
    bool isAfterLetter = false;
    for (std::size_t position = 0; position < text.size();) {
        const auto character = characterFrom(text, position);
        const bool isClosingQuote =
            character.value == kCurlyApostrophe && !(isAfterLetter && startsWithLetter(text, character.end));
        if (!isPlain(character.value) || isClosingQuote) {
            sentences.add(text.substr(stretch, position - stretch));
            pieces.add(text.substr(position, character.end - position), false);
            stretch = character.end;
        }
        isAfterLetter = character.value >= 0 && u_isalpha(character.value);
        position = character.end;
    }
    sentences.add(text.substr(stretch));
    return std::move(pieces).take();
}

std::string toStream(std::string_view words) {
    std::string stream;
    for (std::size_t position = 0; position < words.size();) {
        const auto character = characterFrom(words, position);
        if (character.value == kCurlyApostrophe) {
            stream += '\'';
        } else {
            if (kReserved.find(words[position]) != std::string_view::npos) {
                stream += '\\';
            }
            stream += words.substr(position, character.end - position);
        }
        position = character.end;
    }
    stream += kEndOfText;
    stream += '\0';
    return stream;
}

std::optional<std::string> fromStream(std::string_view answer) {
    if (!answer.ends_with(kEndOfText)) {
        return std::nullopt;
    }
    answer.remove_suffix(kEndOfText.size());
    std::string words;
    for (std::size_t position = 0; position < answer.size(); ++position) {
        if (answer[position] == '\\' && position + 1 < answer.size()) {
            ++position;
        }
        words += answer[position];
    }
    return withoutHoles(words);
}

} // namespace tovik
