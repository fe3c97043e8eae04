// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11KeyEventPoster.h"

#include "Linux/X11/PasteChords.h"
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11KeyPresser.h"
#include "Linux/X11/X11Session.h"
#include "Linux/X11/X11Windows.h"
#include "Platform/KeyMonitor.h"
#include "Platform/SystemLog.h"

#include <utility>

namespace tovik {
namespace {

constexpr Seconds kLongestWait{2.0};
constexpr Seconds kCheckInterval{0.02};
constexpr int kChecksBetweenRequests = 10;

} // namespace

X11KeyEventPoster::X11KeyEventPoster(Services services, const std::string& displayName)
    : services_(services),
      chords_(std::make_unique<PasteChords>(services.defaults, services.log)) {
    auto connection = X11Connection::open(displayName);
    if (!connection || !X11Session::examine(*connection.value()).canPressKeys) {
        return;
    }
    connection_ = std::move(connection.value());
    windows_ = std::make_unique<X11Windows>(*connection_);
    presser_ = std::make_unique<X11KeyPresser>(*connection_, services_.posted);
}

X11KeyEventPoster::~X11KeyEventPoster() = default;

std::optional<KeyEvent> X11KeyEventPoster::makeEvent(EventSourceState source, std::uint16_t keyCode,
                                                     bool keyDown) {
    if (!connection_ || connection_->broken() || keyCode != kVKeyCode) {
        return std::nullopt;
    }
    return KeyEvent{source, keyCode, keyDown, 0};
}

void X11KeyEventPoster::post(const KeyEvent& event, EventTap tap) {
    if (!connection_ || event.keyCode != kVKeyCode || event.flags != kCommandFlag || !event.keyDown) {
        return;
    }
    // What goes to the session goes to whatever is in front.
    checksInVain_ = 0;
    hasTarget_ = tap == EventTap::hid && services_.isTargetInFront != nullptr;
    ++waiting_;
    if (waiting_ == 1) {
        pasteWhenPossible();
    }
}

void X11KeyEventPoster::pasteWhenPossible() {
    if (pasteIfPossible()) {
        return;
    }
    check_ = services_.queue.every(kCheckInterval, [this] { static_cast<void>(pasteIfPossible()); });
    deadline_ = services_.queue.after(kLongestWait, [this] { pasteAllTheSame(); });
}

bool X11KeyEventPoster::pasteIfPossible() {
    const auto wanted = chord();
    if (presser_->isSpoiled(wanted)) {
        return false;
    }
    // Letting go of Alt at the end of Alt+Tab brings yet another window to the front.
    if (hasTarget_ && !services_.isTargetInFront()) {
        if (checksInVain_++ % kChecksBetweenRequests == 0) {
            services_.bringTargetToFront();
        }
        return false;
    }
    paste(wanted);
    return true;
}

void X11KeyEventPoster::pasteAllTheSame() {
    services_.log.printLine(presser_->isSpoiled(chord())
                                ? "[TovikVoice] Pasting although a modifier key is still held"
                                : "[TovikVoice] Pasting although the target app did not come to the front");
    paste(chordForHeldKeys());
}

void X11KeyEventPoster::paste(const PasteChord& chord) {
    check_.end();
    deadline_.end();
    for (; waiting_ > 0; --waiting_) {
        if (const auto pressed = presser_->press(chord); !pressed) {
            services_.log.printLine("[TovikVoice] Failed to press the paste keys: " +
                                    pressed.error().description);
        }
    }
}

PasteChord X11KeyEventPoster::chord() {
    return chords_->chordFor(windows_->applicationIds(windows_->activeWindow()));
}

// Text that becomes ready while the talk key is still down, as when a headset takes the recording over, would
// not arrive before the key is up, and by then the next text may have taken its place on the clipboard. The
// keys held are not released on the user's behalf: that has left keys stuck in other programs.
PasteChord X11KeyEventPoster::chordForHeldKeys() {
    if (const auto usual = chord(); !presser_->isSpoiled(usual)) {
        return usual;
    }
    const auto besideControl =
        chords_->chordBesideControl(windows_->applicationIds(windows_->activeWindow()));
    return presser_->isSpoiled(besideControl) ? chord() : besideControl;
}

} // namespace tovik
