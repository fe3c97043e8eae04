// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Linux/X11/PasteChords.h"
#include "Platform/Keyboard.h"
#include "Platform/MainQueue.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik {

class PasteChords;
class PostedKeys;
class SystemLog;
class UserDefaults;
class X11Connection;
class X11KeyPresser;
class X11Pasteboard;
class X11Windows;

/// Pastes on behalf of the user: Command+V is all that it can press, and it presses whatever chord pastes
/// into the window that has the keyboard. The whole chord is sent at the key-down event.
///
/// What is posted keeps the text that the clipboard held then, and its target; posts are worked off in their
/// order, each when the one before has been fetched by its window, or has had a second for it. While another
/// window than its target is in front, or the user holds a modifier that would spoil the chord, a post waits,
/// up to 10 s, without holding up the main thread. It does not wait for the talk key.
class X11KeyEventPoster : public KeyEventPoster {
public:
    struct Services {
        MainQueue& queue;
        const UserDefaults& defaults;
        SystemLog& log;
        /// Told of every key before it is pressed.
        PostedKeys& posted;
        X11Pasteboard& pasteboard;
        /// What a dictation that is posted now is meant for; nothing where whatever is in front is meant.
        std::function<std::optional<RunningApplication>()> target = nullptr;
        std::function<bool(const RunningApplication&)> isInFront = nullptr;
        std::function<void(const RunningApplication&)> bringToFront = nullptr;
        std::function<bool()> isTalkKeyHeldAlone = nullptr;
    };

    /// All services outlive the poster. An empty display name means the session's display.
    explicit X11KeyEventPoster(Services services, const std::string& displayName = {});
    ~X11KeyEventPoster() override;

    [[nodiscard]] std::optional<KeyEvent> makeEvent(EventSourceState source, std::uint16_t keyCode,
                                                    bool keyDown) override;
    void post(const KeyEvent& event, EventTap tap) override;
    [[nodiscard]] bool isPosting() const override { return !jobs_.empty(); }

private:
    struct Job {
        std::optional<std::string> text;
        std::optional<RunningApplication> target;
        Subscription deadline;
        bool isRepeated = false;
    };
    using Jobs = std::list<Job>;
    /// The chord of the first job has been pressed; its text is to be fetched.
    struct UnderWay {
        std::uint64_t paste;
        unsigned long window;
        /// Only the first time counts: some programs ask again and again.
        bool isFetched = false;
    };

    void beginNext();
    [[nodiscard]] bool pasteIfPossible();
    void paste(const PasteChord& chord, unsigned long window, const std::vector<std::string>& ids);
    void noteFetched(std::uint64_t paste, unsigned long requestor);
    void giveUp(Jobs::iterator job);
    void repeat(Jobs::iterator job);
    void endPaste();
    void finish(Jobs::iterator job);
    [[nodiscard]] std::optional<PasteChord> possibleChord(const std::vector<std::string>& ids) const;

    Services services_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11Windows> windows_;
    std::unique_ptr<PasteChords> chords_;
    std::unique_ptr<X11KeyPresser> presser_;
    Jobs jobs_;
    std::optional<UnderWay> underWay_;
    /// Of the first job: how often a modifier was held, how often its target was not in front, and what was
    /// in its way for the last time.
    int checksSpoiled_ = 0;
    int checksBehind_ = 0;
    std::string obstacle_;
    Subscription check_;
    Subscription fetching_;
    Lifetime lifetime_;
};

} // namespace tovik
