// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"
#include "Platform/TranslationService.h"
#include "Platform/Workspace.h"

#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace tovik {

/// Knows which application a dictation's text belongs to. Main thread.
class TargetTracker {
public:
    explicit TargetTracker(Workspace& workspace);

    /// Takes the frontmost application as the last one focused, unless it is this program, and follows every
    /// activation from now on.
    void startFollowing();

    /// Fixes the target of the dictation that begins now: the frontmost application or, while this program
    /// is in front, the other application that was in front last. Nothing when there is none.
    void chooseTarget();

    /// Where the text goes: the chosen target, else the application focused last.
    [[nodiscard]] std::optional<RunningApplication> target() const;

    [[nodiscard]] const std::optional<RunningApplication>& targetApp() const { return targetApp_; }
    /// Nothing once that application has ended.
    [[nodiscard]] std::optional<RunningApplication> lastFocusedTargetApp() const;

    /// Whether the application is this very program, which never records itself as a target.
    [[nodiscard]] bool isTovikVoice(const RunningApplication& application) const;

private:
    Workspace& workspace_;
    std::optional<RunningApplication> targetApp_;
    std::optional<RunningApplication> lastFocusedTargetApp_;
    Subscription workspaceObserver_;
};

class PermissionRequests;
class TargetTracker;
class TranscriptHistoryStore;
class TranscriptionDictionary;
struct MainWindow;
struct Platform;

/// Brings a final transcript to the user: corrected, kept, translated where wanted, and pasted into the
/// application that had focus when the recording began. Main thread, save for receive().
class TranscriptDelivery {
public:
    TranscriptDelivery(const Platform& platform, MainWindow& mainWindow,
                       PermissionRequests& permissionRequests, TargetTracker& targets,
                       TranscriptionDictionary& dictionary, TranscriptHistoryStore& history,
                       TextTranslator& translator);

    /// A final text on its way from the recognizer; any thread. It is handled on the main thread, in its
    /// order, and not before the text of the one before it is safe from being replaced on the pasteboard.
    void receive(std::string text);

    /// Takes every final text, also an empty one. Without the permission to press keys the text is dropped.
    void handleTranscription(const std::string& text);

    /// For the end of the program, when the main queue runs no more: puts every text that was received and
    /// not handled, corrected, into the history and nowhere else. How many there were, empty ones left out.
    std::size_t keepWithoutPasting();

    /// Puts the text on the pasteboard and, after the target has come to the front, presses paste there.
    void pasteTextToTarget(const std::string& text);

    /// Pastes the last transcript into whatever is in front, at once. Does nothing before the first one.
    void pasteLastTranscript();

    /// Makes an earlier transcript the last one and pastes it, as pasteLastTranscript() does.
    void pasteTranscript(const std::string& text);

    /// Whether a text is being translated, waits for its target to come to the front, or has not been pressed
    /// there yet.
    [[nodiscard]] bool isUnderWay() const;
    /// Told each time that isUnderWay() has become false.
    Observers<> delivered;

    [[nodiscard]] const std::optional<std::string>& lastTranscript() const { return lastTranscript_; }
    /// Of this run, newest first, at most 25.
    [[nodiscard]] const std::deque<std::string>& transcriptHistory() const { return transcriptHistory_; }

private:
    /// A text that is being translated, or waits for one that was spoken before it.
    struct Spoken {
        std::string corrected;
        bool isReady = false;
        std::optional<TranslationResult> translation = std::nullopt;
        Subscription deadline = {};
    };

    [[nodiscard]] std::optional<std::string> takeReceived();
    void tellWhenDelivered();
    void remember(const std::string& corrected);
    void handleReceived();
    void translate(const std::string& corrected);
    void noteTranslation(Spoken& spoken, const std::optional<TranslationResult>& translation);
    void pasteNextSpoken();
    void restoreFocus();
    void postPasteToTarget();
    void postPasteToFrontmost();

    const Platform& platform_;
    MainWindow& mainWindow_;
    PermissionRequests& permissionRequests_;
    TargetTracker& targets_;
    TranscriptionDictionary& dictionary_;
    TranscriptHistoryStore& history_;
    TextTranslator& translator_;

    mutable std::mutex receivedMutex_;
    std::deque<std::string> received_;
    std::list<std::shared_ptr<Spoken>> spoken_;
    /// Texts on the pasteboard whose paste keys have not been posted yet.
    int pasting_ = 0;
    std::optional<std::string> lastTranscript_;
    std::deque<std::string> transcriptHistory_;
    Subscription pressed_;
    Lifetime lifetime_;
};

} // namespace tovik
