// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TranscriptDelivery.h"

#include "Permissions/PermissionRequests.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "Speech/Text/Unicode.h"

namespace tovik {

namespace {

constexpr std::size_t kMostTranscripts = 25;
constexpr std::size_t kLogPreviewLength = 50;
constexpr Seconds kHideToActivate{0.1};
constexpr Seconds kActivateToPaste{0.18};

} // namespace

TranscriptDelivery::TranscriptDelivery(const Collaborators& collaborators) : with_(collaborators) {}

void TranscriptDelivery::handleTranscription(const std::string& text) {
    if (!with_.permissionRequests.ensureAccessibilityAccess(true)) {
        with_.log.logLine("[TovikVoice] Accessibility not granted, cannot auto-paste");
        return;
    }
    with_.log.printLine("[TovikVoice] Raw Transcription: " + text);
    const auto corrected = with_.dictionary.apply(text);
    if (corrected != text) {
        with_.log.printLine("[TovikVoice] Corrected Transcription: " + corrected);
    }
    remember(corrected);
    if (with_.defaults.boolean("TranslationEnabled").value_or(false)) {
        translateAndPaste(corrected);
    } else {
        pasteTextToTarget(corrected);
    }
}

void TranscriptDelivery::keepWithoutPasting(const std::string& text) {
    with_.history.add(with_.dictionary.apply(text));
}

void TranscriptDelivery::remember(const std::string& corrected) {
    lastTranscript_ = corrected;
    transcriptHistory_.push_front(corrected);
    if (transcriptHistory_.size() > kMostTranscripts) {
        transcriptHistory_.pop_back();
    }
    // The history keeps what was said, in the language in which it was said.
    with_.history.add(corrected);
    with_.mainWindow.reloadHistoryTable();
}

void TranscriptDelivery::translateAndPaste(const std::string& corrected) {
    ++underWay_;
    with_.translator.translate(
        corrected, lifetime_.guard([this, corrected](const std::optional<TranslationResult>& translation) {
            --underWay_;
            if (!translation) {
                pasteTextToTarget(corrected);
                return;
            }
            with_.log.printLine("[TovikVoice] Translation: '" +
                                firstCharacters(translation->originalText, kLogPreviewLength) + "' → '" +
                                firstCharacters(translation->translatedText, kLogPreviewLength) + "'");
            lastTranscript_ = translation->translatedText + "\n[" + translation->originalText + "]";
            pasteTextToTarget(translation->translatedText);
        }));
}

void TranscriptDelivery::pasteTextToTarget(const std::string& text) {
    ++underWay_;
    with_.pasteboard.replaceContents(text);
    with_.workspace.hideSelf();
    with_.queue.asyncAfter(kHideToActivate, lifetime_.guard([this] { restoreFocus(); }));
}

void TranscriptDelivery::restoreFocus() {
    const auto target = with_.targets.target();
    with_.log.printLine("[TovikVoice] Restoring focus to target app: " +
                        (target ? target->localizedName.value_or("unknown") : "unknown"));
    with_.workspace.deactivateSelf();
    if (target) {
        // Whether it worked is not asked: a target that is gone leaves the text to whatever is in front.
        (void)with_.workspace.activate(*target, kActivateAllWindows | kActivateIgnoringOtherApps);
        with_.log.printLine("[TovikVoice] Activated target app");
    }
    with_.queue.asyncAfter(kActivateToPaste, lifetime_.guard([this] { postPasteToTarget(); }));
}

void TranscriptDelivery::postPasteToTarget() {
    --underWay_;
    auto keyDown = with_.poster.makeEvent(EventSourceState::hidSystem, kVKeyCode, true);
    auto keyUp = with_.poster.makeEvent(EventSourceState::hidSystem, kVKeyCode, false);
    if (!keyDown || !keyUp) {
        with_.log.printLine("[TovikVoice] Failed to create paste events");
        return;
    }
    keyDown->flags = kCommandFlag;
    keyUp->flags = kCommandFlag;
    with_.poster.post(*keyDown, EventTap::hid);
    with_.poster.post(*keyUp, EventTap::hid);
    with_.log.printLine("[TovikVoice] Posted paste events");
}

void TranscriptDelivery::pasteLastTranscript() {
    if (!lastTranscript_ || lastTranscript_->empty()) {
        return;
    }
    with_.pasteboard.replaceContents(*lastTranscript_);
    postPasteToFrontmost();
}

void TranscriptDelivery::pasteTranscript(const std::string& text) {
    if (text.empty()) {
        return;
    }
    lastTranscript_ = text;
    with_.pasteboard.replaceContents(text);
    postPasteToFrontmost();
}

void TranscriptDelivery::postPasteToFrontmost() {
    if (!with_.permissionRequests.ensureAccessibilityAccess(true)) {
        return;
    }
    auto keyDown = with_.poster.makeEvent(EventSourceState::combinedSession, kVKeyCode, true);
    auto keyUp = with_.poster.makeEvent(EventSourceState::combinedSession, kVKeyCode, false);
    for (auto* event : {&keyDown, &keyUp}) {
        if (*event) {
            (*event)->flags = kCommandFlag;
            with_.poster.post(**event, EventTap::annotatedSession);
        }
    }
}

} // namespace tovik
