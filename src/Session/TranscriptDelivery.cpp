// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Session/TranscriptDelivery.h"

#include "Permissions/PermissionRequests.h"
#include "Platform/Platform.h"
#include "Speech/History/TranscriptHistoryStore.h"
#include "Speech/Text/TranscriptionDictionary.h"
#include "Speech/Text/Unicode.h"

#include <utility>

namespace tovik {

TargetTracker::TargetTracker(Workspace& workspace) : workspace_(workspace) {}

void TargetTracker::startFollowing() {
    if (const auto frontmost = workspace_.frontmostApplication(); frontmost && !isTovikVoice(*frontmost)) {
        lastFocusedTargetApp_ = frontmost;
    }
    workspaceObserver_ = workspace_.onActivation([this](const RunningApplication& activated) {
        if (!isTovikVoice(activated)) {
            lastFocusedTargetApp_ = activated;
        }
    });
}

void TargetTracker::chooseTarget() {
    const auto frontmost = workspace_.frontmostApplication();
    targetApp_ = frontmost && !isTovikVoice(*frontmost) ? frontmost : lastFocusedTargetApp();
    if (targetApp_) {
        lastFocusedTargetApp_ = targetApp_;
    }
}

std::optional<RunningApplication> TargetTracker::target() const {
    return targetApp_ ? targetApp_ : lastFocusedTargetApp();
}

std::optional<RunningApplication> TargetTracker::lastFocusedTargetApp() const {
    if (lastFocusedTargetApp_ && workspace_.isRunning(*lastFocusedTargetApp_)) {
        return lastFocusedTargetApp_;
    }
    return std::nullopt;
}

bool TargetTracker::isTovikVoice(const RunningApplication& application) const {
    const auto self = workspace_.currentApplication();
    return application.bundleIdentifier == self.bundleIdentifier ||
           application.processIdentifier == self.processIdentifier;
}

namespace {

constexpr std::size_t kMostRemembered = 25;
constexpr std::size_t kLogPreviewLength = 50;
constexpr Seconds kHideToActivate{0.1};
constexpr Seconds kActivateToPaste{0.18};
/// More than a translator allows itself; it is for one that never answers and would hold up all later texts.
constexpr Seconds kLongestTranslation{30.0};
constexpr std::size_t kBytesPerFurtherSecond = 1000;

} // namespace

TranscriptDelivery::TranscriptDelivery(const Platform& platform, MainWindow& mainWindow,
                                       PermissionRequests& permissionRequests, TargetTracker& targets,
                                       TranscriptionDictionary& dictionary, TranscriptHistoryStore& history,
                                       TextTranslator& translator)
    : platform_(platform),
      mainWindow_(mainWindow),
      permissionRequests_(permissionRequests),
      targets_(targets),
      dictionary_(dictionary),
      history_(history),
      translator_(translator),
      pressed_(platform.keyEventPoster.pressed.add([this] { tellWhenDelivered(); })) {}

void TranscriptDelivery::receive(std::string text) {
    {
        const std::lock_guard lock(receivedMutex_);
        received_.push_back(std::move(text));
    }
    platform_.mainQueue.async(lifetime_.guard([this] { handleReceived(); }));
}

void TranscriptDelivery::handleReceived() {
    while (pasting_ == 0) {
        const auto next = takeReceived();
        if (!next) {
            return;
        }
        handleTranscription(*next);
    }
}

std::optional<std::string> TranscriptDelivery::takeReceived() {
    const std::lock_guard lock(receivedMutex_);
    if (received_.empty()) {
        return std::nullopt;
    }
    auto text = std::move(received_.front());
    received_.pop_front();
    return text;
}

bool TranscriptDelivery::isUnderWay() const {
    const std::lock_guard lock(receivedMutex_);
    return !received_.empty() || !spoken_.empty() || pasting_ > 0 || platform_.keyEventPoster.isPosting();
}

void TranscriptDelivery::tellWhenDelivered() {
    if (!isUnderWay()) {
        delivered.tell();
    }
}

void TranscriptDelivery::handleTranscription(const std::string& text) {
    if (!permissionRequests_.ensureAccessibilityAccess(true)) {
        platform_.log.logLine("[TovikVoice] Accessibility not granted, cannot auto-paste");
        return;
    }
    platform_.log.printLine("[TovikVoice] Raw Transcription: " + text);
    const auto corrected = dictionary_.apply(text);
    if (corrected != text) {
        platform_.log.printLine("[TovikVoice] Corrected Transcription: " + corrected);
    }
    remember(corrected);
    if (platform_.defaults.boolean("TranslationEnabled").value_or(false)) {
        translate(corrected);
    } else if (!spoken_.empty()) {
        spoken_.push_back(std::make_shared<Spoken>(Spoken{corrected, true}));
    } else {
        pasteTextToTarget(corrected);
    }
}

std::size_t TranscriptDelivery::keepWithoutPasting() {
    std::size_t kept = 0;
    while (const auto text = takeReceived()) {
        if (!text->empty()) {
            history_.add(dictionary_.apply(*text));
            ++kept;
        }
    }
    return kept;
}

void TranscriptDelivery::remember(const std::string& corrected) {
    lastTranscript_ = corrected;
    transcriptHistory_.push_front(corrected);
    if (transcriptHistory_.size() > kMostRemembered) {
        transcriptHistory_.pop_back();
    }
    // The history keeps what was said, in the language in which it was said.
    history_.add(corrected);
    mainWindow_.reloadHistoryTable();
}

// All begin at once, and one may take longer than the next.
void TranscriptDelivery::translate(const std::string& corrected) {
    const auto spoken = spoken_.emplace_back(std::make_shared<Spoken>(Spoken{corrected}));
    const auto patience =
        kLongestTranslation + std::chrono::seconds(corrected.size() / kBytesPerFurtherSecond);
    spoken->deadline = platform_.mainQueue.after(patience, [this, late = std::weak_ptr(spoken)] {
        platform_.log.logLine("[TovikVoice] No translation came in time: pasting the text as it was said");
        noteTranslation(*late.lock(), std::nullopt);
    });
    translator_.translate(corrected,
                          lifetime_.guard([this, weak = std::weak_ptr(spoken)](
                                              const std::optional<TranslationResult>& translation) {
                              if (const auto waiting = weak.lock(); waiting && !waiting->isReady) {
                                  noteTranslation(*waiting, translation);
                              }
                          }));
}

void TranscriptDelivery::noteTranslation(Spoken& spoken,
                                         const std::optional<TranslationResult>& translation) {
    spoken.deadline.end();
    spoken.translation = translation;
    spoken.isReady = true;
    pasteNextSpoken();
}

void TranscriptDelivery::pasteNextSpoken() {
    if (pasting_ > 0 || spoken_.empty() || !spoken_.front()->isReady) {
        return;
    }
    const auto next = spoken_.front();
    spoken_.pop_front();
    if (!next->translation) {
        pasteTextToTarget(next->corrected);
        return;
    }
    const auto& original = next->translation->originalText;
    const auto& translated = next->translation->translatedText;
    platform_.log.printLine("[TovikVoice] Translation: '" + firstCharacters(original, kLogPreviewLength) +
                            "' → '" + firstCharacters(translated, kLogPreviewLength) + "'");
    lastTranscript_ = translated + "\n[" + original + "]";
    pasteTextToTarget(translated);
}

void TranscriptDelivery::pasteTextToTarget(const std::string& text) {
    ++pasting_;
    platform_.pasteboard.replaceContents(text);
    platform_.workspace.hideSelf();
    platform_.mainQueue.asyncAfter(kHideToActivate, lifetime_.guard([this] { restoreFocus(); }));
}

void TranscriptDelivery::restoreFocus() {
    const auto target = targets_.target();
    platform_.log.printLine("[TovikVoice] Restoring focus to target app: " +
                            (target ? target->localizedName.value_or("unknown") : "unknown"));
    platform_.workspace.deactivateSelf();
    if (target) {
        // Whether it worked is not asked: a target that is gone leaves the text to whatever is in front.
        (void)platform_.workspace.activate(*target, kActivateAllWindows | kActivateIgnoringOtherApps);
        platform_.log.printLine("[TovikVoice] Activated target app");
    }
    platform_.mainQueue.asyncAfter(kActivateToPaste, lifetime_.guard([this] { postPasteToTarget(); }));
}

void TranscriptDelivery::postPasteToTarget() {
    auto keyDown = platform_.keyEventPoster.makeEvent(EventSourceState::hidSystem, kVKeyCode, true);
    auto keyUp = platform_.keyEventPoster.makeEvent(EventSourceState::hidSystem, kVKeyCode, false);
    if (keyDown && keyUp) {
        keyDown->flags = kCommandFlag;
        keyUp->flags = kCommandFlag;
        platform_.keyEventPoster.post(*keyDown, EventTap::hid);
        platform_.keyEventPoster.post(*keyUp, EventTap::hid);
        platform_.log.printLine("[TovikVoice] Posted paste events");
    } else {
        platform_.log.printLine("[TovikVoice] Failed to create paste events");
    }
    --pasting_;
    pasteNextSpoken();
    handleReceived();
    tellWhenDelivered();
}

void TranscriptDelivery::pasteLastTranscript() {
    if (!lastTranscript_ || lastTranscript_->empty()) {
        return;
    }
    platform_.pasteboard.replaceContents(*lastTranscript_);
    postPasteToFrontmost();
}

void TranscriptDelivery::pasteTranscript(const std::string& text) {
    if (text.empty()) {
        return;
    }
    lastTranscript_ = text;
    platform_.pasteboard.replaceContents(text);
    postPasteToFrontmost();
}

void TranscriptDelivery::postPasteToFrontmost() {
    if (!permissionRequests_.ensureAccessibilityAccess(true)) {
        return;
    }
    auto keyDown = platform_.keyEventPoster.makeEvent(EventSourceState::combinedSession, kVKeyCode, true);
    auto keyUp = platform_.keyEventPoster.makeEvent(EventSourceState::combinedSession, kVKeyCode, false);
    for (auto* event : {&keyDown, &keyUp}) {
        if (*event) {
            (*event)->flags = kCommandFlag;
            platform_.keyEventPoster.post(**event, EventTap::annotatedSession);
        }
    }
}

} // namespace tovik
