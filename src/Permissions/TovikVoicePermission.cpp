// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Permissions/TovikVoicePermission.h"

#include <cstddef>

namespace tovik {

namespace {

struct Texts {
    const char* rawValue;
    const char* title;
    const char* subtitle;
    const char* symbolName;
};

constexpr std::array<Texts, kAllPermissions.size()> kTexts{{
    {"microphone", "Microphone", "Capture audio for dictation.", "mic.fill"},
    {"speech", "Speech Recognition", "Convert speech into text.", "waveform"},
    {"accessibility", "Accessibility", "Paste transcripts into the app you were using.",
     "cursorarrow.motionlines"},
}};

const Texts& textsOf(TovikVoicePermission permission) {
    return kTexts[static_cast<std::size_t>(permission)];
}

} // namespace

std::string rawValue(TovikVoicePermission permission) {
    return textsOf(permission).rawValue;
}

std::string title(TovikVoicePermission permission) {
    return textsOf(permission).title;
}

std::string subtitle(TovikVoicePermission permission) {
    return textsOf(permission).subtitle;
}

std::string symbolName(TovikVoicePermission permission) {
    return textsOf(permission).symbolName;
}

} // namespace tovik
