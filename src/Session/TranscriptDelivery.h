// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/KeyEventPoster.h"
#include "Platform/KeyMonitor.h"
#include "Platform/Lifetime.h"
#include "Platform/MainQueue.h"
#include "Platform/MainWindow.h"
#include "Platform/Pasteboard.h"
#include "Platform/SystemLog.h"
#include "Platform/TextTranslator.h"
#include "Platform/UserDefaults.h"
#include "Platform/Workspace.h"
#include "Session/TargetTracker.h"

#include <deque>
#include <optional>
#include <string>

namespace tovik {

class PermissionRequests;
class TranscriptHistoryStore;
class TranscriptionDictionary;

/// Brings a final transcript to the user: corrected, kept, translated where wanted, and pasted into the
/// application that had focus when the recording began. Main thread.
class TranscriptDelivery {
public:
    struct Collaborators {
        MainQueue& queue;
        SystemLog& log;
        const UserDefaults& defaults;
        PermissionRequests& permissionRequests;
        TranscriptionDictionary& dictionary;
        TranscriptHistoryStore& history;
        TextTranslator& translator;
        MainWindow& mainWindow;
        Pasteboard& pasteboard;
        KeyEventPoster& poster;
        Workspace& workspace;
        TargetTracker& targets;
    };

    explicit TranscriptDelivery(const Collaborators& collaborators);

    /// Takes every final text, also an empty one. Without the permission to press keys the text is dropped.
    void handleTranscription(const std::string& text);

    /// Puts the text, corrected, into the history and nowhere else.
    void keepWithoutPasting(const std::string& text);

    /// Puts the text on the pasteboard and, after the target has come to the front, presses paste there.
    void pasteTextToTarget(const std::string& text);

    /// Pastes the last transcript into whatever is in front, at once. Does nothing before the first one.
    void pasteLastTranscript();

    /// Makes an earlier transcript the last one and pastes it, as pasteLastTranscript() does.
    void pasteTranscript(const std::string& text);

    /// Whether a text is being translated, waits for its target to come to the front, or has not been pressed
    /// there yet.
    [[nodiscard]] bool isUnderWay() const { return underWay_ > 0 || with_.poster.isPosting(); }

    [[nodiscard]] const std::optional<std::string>& lastTranscript() const { return lastTranscript_; }
    /// Of this run, newest first, at most 25.
    [[nodiscard]] const std::deque<std::string>& transcriptHistory() const { return transcriptHistory_; }

private:
    void remember(const std::string& corrected);
    void translateAndPaste(const std::string& corrected);
    void restoreFocus();
    void postPasteToTarget();
    void postPasteToFrontmost();

    Collaborators with_;
    int underWay_ = 0;
    std::optional<std::string> lastTranscript_;
    std::deque<std::string> transcriptHistory_;
    Lifetime lifetime_;
};

} // namespace tovik
