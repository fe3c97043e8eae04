// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11KeyEventPoster.h"

#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11Keyboard.h"
#include "Linux/X11/X11Pasteboard.h"
#include "Linux/X11/X11Windows.h"
#include "Platform/Keyboard.h"
#include "Platform/SystemLog.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace tovik {
namespace {

constexpr Seconds kLongestWait{10.0};
constexpr Seconds kCheckInterval{0.02};
constexpr int kChecksBetweenRequests = 10;
/// After 2 s: who has gone to another window meanwhile is not called back from it again, and who still holds
/// Control gets the chord that pastes beside it.
constexpr int kManyChecks = 100;

/// A target asks within a few hundredths of a second. One that is slower still gets the right text, by the
/// time at which its key was pressed.
constexpr Seconds kLongestFetch{1.0};
/// Some programs ask for a text more than once.
constexpr Seconds kPauseAfterFetch{0.05};

struct ModifierKeys {
    unsigned bit; ///< 0 where the layout decides
    std::array<unsigned long, 3> keysyms;
};

ModifierKeys keysOf(PasteChord::Modifier modifier) {
    switch (modifier) {
    case PasteChord::Modifier::control:
        return {ControlMask, {XK_Control_L, XK_Control_R, NoSymbol}};
    case PasteChord::Modifier::shift:
        return {ShiftMask, {XK_Shift_L, XK_Shift_R, NoSymbol}};
    case PasteChord::Modifier::alt:
        return {0, {XK_Alt_L, XK_Alt_R, XK_Meta_L}};
    case PasteChord::Modifier::super:
        return {0, {XK_Super_L, XK_Super_R, NoSymbol}};
    }
    return {0, {}};
}

bool has(const X11Keyboard::Key& key, unsigned long keysym) {
    return std::find(key.keysyms.begin(), key.keysyms.end(), keysym) != key.keysyms.end();
}

/// A key that both bears the modifier's name and sets the modifier.
const X11Keyboard::Key* modifierKey(const std::vector<X11Keyboard::Key>& keys,
                                    PasteChord::Modifier modifier) {
    const auto wanted = keysOf(modifier);
    for (const auto keysym : wanted.keysyms) {
        for (const auto& key : keys) {
            const bool sets = wanted.bit == 0 ? key.modifiers != 0 : (key.modifiers & wanted.bit) != 0;
            if (keysym != NoSymbol && sets && has(key, keysym)) {
                return &key;
            }
        }
    }
    return nullptr;
}

/// The bits that keys of this name set.
unsigned modifiersSetBy(const std::vector<X11Keyboard::Key>& keys, unsigned long keysym) {
    unsigned modifiers = 0;
    for (const auto& key : keys) {
        if (has(key, keysym)) {
            modifiers |= key.modifiers;
        }
    }
    return modifiers;
}

} // namespace

/// Presses key chords through XTest, whatever the keyboard layout. Main thread.
class X11KeyPresser {
public:
    /// Both outlive this object.
    X11KeyPresser(X11Connection& connection, PostedKeys& posted);
    X11KeyPresser(const X11KeyPresser&) = delete;
    X11KeyPresser& operator=(const X11KeyPresser&) = delete;
    /// Gives back the keys that were borrowed.
    ~X11KeyPresser();

    /// Whether the user holds a modifier that would make another chord of this one.
    [[nodiscard]] bool isSpoiled(const PasteChord& chord) const;

    /// Presses the chord and releases it, all in one message to the server, so that no key can stay down.
    /// Where the layout lacks the key, an unused one is given its meaning until this object goes.
    Result<void> press(const PasteChord& chord);

private:
    using Keys = std::vector<X11Keyboard::Key>;
    struct BorrowedKey {
        unsigned keyCode;
        unsigned long keysym;
    };

    [[nodiscard]] Keys layout() const;
    [[nodiscard]] std::optional<unsigned> keyCodeOf(const Keys& keys, unsigned long keysym) const;
    std::optional<unsigned> borrow(const Keys& keys, unsigned long keysym);
    void giveBack(const BorrowedKey& key);
    void send(const std::vector<PostedKeys::Stroke>& strokes);

    X11Connection& connection_;
    PostedKeys& posted_;
    X11Keyboard keyboard_;
    std::vector<BorrowedKey> borrowed_;
};

X11KeyPresser::X11KeyPresser(X11Connection& connection, PostedKeys& posted)
    : connection_(connection),
      posted_(posted),
      keyboard_(connection) {}

X11KeyPresser::~X11KeyPresser() {
    for (const auto& key : borrowed_) {
        giveBack(key);
    }
    connection_.sync();
}

bool X11KeyPresser::isSpoiled(const PasteChord& chord) const {
    const auto keys = layout();
    // Lock keys held down do not matter more than the locks themselves.
    unsigned harmless = LockMask | modifiersSetBy(keys, XK_Num_Lock) | modifiersSetBy(keys, XK_Scroll_Lock);
    for (const auto modifier : chord.modifiers) {
        if (const auto* const key = modifierKey(keys, modifier)) {
            harmless |= key->modifiers;
        }
    }
    return (keyboard_.state().heldModifiers & ~harmless) != 0;
}

Result<void> X11KeyPresser::press(const PasteChord& chord) {
    const auto keys = layout();
    std::vector<PostedKeys::Stroke> strokes;
    for (const auto modifier : chord.modifiers) {
        const auto* const key = modifierKey(keys, modifier);
        if (key == nullptr) {
            return Error{"X11", 3, "The keyboard layout lacks a modifier key of the paste chord."};
        }
        strokes.push_back({key->keyCode, true});
    }
    auto keyCode = keyCodeOf(keys, chord.keysym);
    if (!keyCode) {
        keyCode = borrow(keys, chord.keysym);
    }
    if (!keyCode) {
        return Error{"X11", 4,
                     "The keyboard layout lacks the key of the paste chord and has no key to spare."};
    }
    strokes.push_back({*keyCode, true});
    for (std::size_t pressed = strokes.size(); pressed > 0; --pressed) {
        strokes.push_back({strokes[pressed - 1].keyCode, false});
    }
    send(strokes);
    return {};
}

X11KeyPresser::Keys X11KeyPresser::layout() const {
    // While the test keyboard types, its layout is the one that programs see.
    return keyboard_.keys(keyboard_.testKeyboard().value_or(XkbUseCoreKbd));
}

std::optional<unsigned> X11KeyPresser::keyCodeOf(const Keys& keys, unsigned long keysym) const {
    const auto group = keyboard_.state().group;
    std::optional<unsigned> inAnotherGroup;
    for (const auto& key : keys) {
        if (!has(key, keysym)) {
            continue;
        }
        // A key with fewer groups than the layout means the same in all that it lacks.
        if (key.keysyms[group % key.keysyms.size()] == keysym) {
            return key.keyCode;
        }
        inAnotherGroup = inAnotherGroup.value_or(key.keyCode);
    }
    return inAnotherGroup;
}

std::optional<unsigned> X11KeyPresser::borrow(const Keys& keys, unsigned long keysym) {
    Display* const display = connection_.display();
    int lowest = 0;
    int highest = 0;
    XDisplayKeycodes(display, &lowest, &highest);
    for (int keyCode = highest; keyCode >= lowest; --keyCode) {
        const bool used = std::any_of(keys.begin(), keys.end(), [keyCode](const auto& key) {
            return key.keyCode == static_cast<unsigned>(keyCode);
        });
        if (!used) {
            // Twice: shifted and unshifted.
            std::array<KeySym, 2> meaning{keysym, keysym};
            XChangeKeyboardMapping(display, keyCode, static_cast<int>(meaning.size()), meaning.data(), 1);
            connection_.sync();
            borrowed_.push_back({static_cast<unsigned>(keyCode), keysym});
            return borrowed_.back().keyCode;
        }
    }
    return std::nullopt;
}

void X11KeyPresser::giveBack(const BorrowedKey& key) {
    // Only as it was left: meanwhile the layout may have been replaced, or the key put to use by others.
    const auto keysyms = keyboard_.keysyms(XkbUseCoreKbd, key.keyCode);
    const bool stillOurs = !keysyms.empty() && std::all_of(keysyms.begin(), keysyms.end(),
                                                           [&](auto keysym) { return keysym == key.keysym; });
    if (stillOurs && !connection_.broken()) {
        KeySym none = NoSymbol;
        XChangeKeyboardMapping(connection_.display(), static_cast<int>(key.keyCode), 1, &none, 1);
    }
}

void X11KeyPresser::send(const std::vector<PostedKeys::Stroke>& strokes) {
    posted_.expect(strokes);
    for (const auto& stroke : strokes) {
        XTestFakeKeyEvent(connection_.display(), stroke.keyCode, stroke.press ? True : False, CurrentTime);
    }
    connection_.sync();
    posted_.sent();
}

X11KeyEventPoster::X11KeyEventPoster(Services services, const std::string& displayName)
    : services_(std::move(services)),
      chords_(std::make_unique<PasteChords>(services_.defaults, services_.log)) {
    auto connection = X11Connection::open(displayName);
    if (!connection || !X11Session::examine(*connection.value()).canPressKeys) {
        return;
    }
    connection_ = std::move(connection.value());
    windows_ = std::make_unique<X11Windows>(*connection_);
    presser_ = std::make_unique<X11KeyPresser>(*connection_, services_.posted);
    services_.pasteboard.setOnFetched(
        [&queue = services_.queue, note = lifetime_.guard([this](auto paste, auto requestor) {
            noteFetched(paste, requestor);
        })](auto paste, auto requestor) {
            queue.async([note, paste, requestor]() mutable { note(paste, requestor); });
        });
}

X11KeyEventPoster::~X11KeyEventPoster() {
    services_.pasteboard.setOnFetched(nullptr);
}

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
    // The paste of a dictation enters below the desktop and waits for its target; the paste of a menu enters
    // above it and goes to whatever is in front.
    const bool waitsForTarget = tap == EventTap::hid && services_.target;
    const auto job = jobs_.insert(
        jobs_.end(),
        {services_.pasteboard.contents(), waitsForTarget ? services_.target() : std::nullopt, {}});
    job->deadline = services_.queue.after(kLongestWait, [this, job] { giveUp(job); });
    if (jobs_.size() == 1) {
        beginNext();
    }
}

void X11KeyEventPoster::beginNext() {
    check_.end();
    if (jobs_.empty()) {
        pressed.tell();
        return;
    }
    checksSpoiled_ = 0;
    checksBehind_ = 0;
    if (!pasteIfPossible()) {
        check_ = services_.queue.every(kCheckInterval, [this] { static_cast<void>(pasteIfPossible()); });
    }
}

bool X11KeyEventPoster::pasteIfPossible() {
    const auto window = windows_->activeWindow();
    const auto ids = windows_->applicationIds(window);
    const auto chord = possibleChord(ids);
    if (!chord) {
        ++checksSpoiled_;
        obstacle_ = "a modifier key was held";
        return false;
    }
    // Letting go of Alt at the end of Alt+Tab brings yet another window to the front.
    const auto& target = jobs_.front().target;
    if (target && !services_.isInFront(*target)) {
        if (checksBehind_ < kManyChecks && checksBehind_ % kChecksBetweenRequests == 0) {
            services_.bringToFront(*target);
        }
        ++checksBehind_;
        obstacle_ = "its window did not come to the front";
        return false;
    }
    paste(*chord, window, ids);
    return true;
}

// The chord of the window needs no key but its own. Text that becomes ready while the user already holds the
// talk key for the next would wait for all of that; the keys held are not released on the user's behalf,
// which has left keys stuck in other programs.
std::optional<PasteChord> X11KeyEventPoster::possibleChord(const std::vector<std::string>& ids) const {
    if (auto usual = chords_->chordFor(ids); !presser_->isSpoiled(usual)) {
        return usual;
    }
    const bool isUrgent =
        checksSpoiled_ >= kManyChecks || (services_.isTalkKeyHeldAlone && services_.isTalkKeyHeldAlone());
    auto besideControl = chords_->chordBesideControl(ids);
    return isUrgent && besideControl && !presser_->isSpoiled(*besideControl) ? besideControl : std::nullopt;
}

void X11KeyEventPoster::paste(const PasteChord& chord, unsigned long window,
                              const std::vector<std::string>& ids) {
    check_.end();
    const auto job = jobs_.begin();
    job->deadline.end();
    if (job->text) {
        using From = X11Pasteboard::From;
        const auto paste = services_.pasteboard.beginPaste(
            *job->text, chords_->pastesFromPrimary(ids) ? From::clipboardAndPrimary : From::clipboard);
        if (!paste) {
            obstacle_ = "it could not be put on the clipboard";
            giveUp(job);
            return;
        }
        underWay_ = {*paste, window};
    }
    const auto outcome = presser_->press(chord);
    if (!outcome) {
        services_.log.printLine("[TovikVoice] Failed to press the paste keys: " +
                                outcome.error().description);
    }
    if (!outcome || !underWay_) {
        finish(job);
        return;
    }
    // A modifier that went down just before may have come between the look at the keys and the chord. If so,
    // nobody fetches the text.
    const bool isDoubtful =
        !job->isRepeated && presser_->isSpoiled(chord) && chord != chords_->chordBesideControl(ids);
    // What is known to paste beside Control in most programs is something else in a few. Of a window whose
    // process is not known nobody can say whether it has fetched its text.
    const bool isMissed = chord != chords_->chordFor(ids) && windows_->processIdentifier(window) > 0;
    fetching_ = services_.queue.after(kLongestFetch, [this, job, isDoubtful, isMissed] {
        if (isDoubtful) {
            repeat(job);
        } else if (isMissed) {
            obstacle_ = "its window took no notice of the keys that paste beside Control";
            giveUp(job);
        } else {
            finish(job);
        }
    });
}

void X11KeyEventPoster::noteFetched(std::uint64_t paste, unsigned long requestor) {
    // Clipboard managers fetch as well.
    const auto process = windows_->processIdentifier(requestor);
    if (underWay_ && underWay_->paste == paste && !underWay_->isFetched && process > 0 &&
        process == windows_->processIdentifier(underWay_->window)) {
        underWay_->isFetched = true;
        fetching_ = services_.queue.after(kPauseAfterFetch, [this, job = jobs_.begin()] { finish(job); });
    }
}

void X11KeyEventPoster::giveUp(Jobs::iterator job) {
    services_.log.printLine("[TovikVoice] The text was not pasted, since " +
                            (job == jobs_.begin() ? obstacle_ : "others before it were not") +
                            ": it is in the history");
    const bool isFirst = job == jobs_.begin();
    if (isFirst) {
        endPaste();
    }
    const bool isOnClipboard = job->text && services_.pasteboard.holds(*job->text);
    jobs_.erase(job);
    givenUp.tell(isOnClipboard);
    if (isFirst) {
        beginNext();
    }
}

void X11KeyEventPoster::repeat(Jobs::iterator job) {
    services_.log.printLine("[TovikVoice] Pasting again, since a key went down beside the paste keys");
    endPaste();
    job->isRepeated = true;
    job->deadline = services_.queue.after(kLongestWait, [this, job] { giveUp(job); });
    beginNext();
}

void X11KeyEventPoster::finish(Jobs::iterator job) {
    endPaste();
    jobs_.erase(job);
    beginNext();
}

void X11KeyEventPoster::endPaste() {
    fetching_.end();
    if (std::exchange(underWay_, std::nullopt)) {
        services_.pasteboard.endPaste();
    }
}

} // namespace tovik
