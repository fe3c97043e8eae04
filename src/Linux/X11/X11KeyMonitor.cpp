// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11KeyMonitor.h"

#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11Connection.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "Session/TalkKeyGuard.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput2.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>

namespace tovik {
namespace {

/// While the talk key is held, the server is asked now and then whether it still is: a release can be lost
/// with the keyboard that was to send it, or to a nested server that lost the focus.
constexpr Seconds kReleaseCheckInterval{0.25};

/// Nested and remote servers repeat a held key as a release and a press, between which their key map may show
/// it up. No finger is as quick as that.
constexpr Seconds kRepetition{0.025};

bool isShift(const std::vector<unsigned long>& keysyms) {
    return std::any_of(keysyms.begin(), keysyms.end(),
                       [](auto keysym) { return keysym == XK_Shift_L || keysym == XK_Shift_R; });
}

/// Frees an event's extra data with the event.
class EventData {
public:
    EventData(Display* display, XGenericEventCookie& cookie)
        : display_(display),
          cookie_(cookie),
          filled_(XGetEventData(display, &cookie) != False) {}
    EventData(const EventData&) = delete;
    EventData& operator=(const EventData&) = delete;
    ~EventData() {
        if (filled_) {
            XFreeEventData(display_, &cookie_);
        }
    }
    [[nodiscard]] const XIRawEvent* rawEvent() const {
        return filled_ ? static_cast<const XIRawEvent*>(cookie_.data) : nullptr;
    }

private:
    Display* display_;
    XGenericEventCookie& cookie_;
    bool filled_;
};

void select(Display* display, Window root, int devices, std::initializer_list<int> events) {
    std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
    for (const int event : events) {
        auto& byte = bits.at(static_cast<std::size_t>(event) / 8);
        byte = static_cast<unsigned char>(byte | (1U << (event % 8)));
    }
    XIEventMask mask{devices, static_cast<int>(bits.size()), bits.data()};
    XISelectEvents(display, root, &mask, 1);
}

constexpr Seconds kDefaultGuardTime{0.15};
/// Beyond this the talk key would seem dead.
constexpr Seconds kLongestGuardTime{2.0};

const std::vector<unsigned long> kDefaultKeysyms{XK_Control_R, XStringToKeysym("XF86Fn")};

/// The stored value as text, also where it is no text: for the log, and to notice a change.
std::optional<std::string> storedText(const UserDefaults& defaults) {
    const auto stored = defaults.value("platform.talkKey");
    if (!stored) {
        return std::nullopt;
    }
    return stored->is_string() ? stored->get<std::string>()
                               : stored->dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

} // namespace

/// Which key the user talks with: Right Control, and the Fn key of those keyboards that send one, unless the
/// user default "platform.talkKey" names another by its keysym name. Read anew at each use. Main thread.
class TalkKeySetting {
public:
    /// Both outlive this object.
    TalkKeySetting(const UserDefaults& defaults, SystemLog& log);

    /// The keysym among these by which a key is the talk key; nothing when it is not. A setting that names
    /// no key is logged once and the default holds.
    [[nodiscard]] std::optional<unsigned long> match(const std::vector<unsigned long>& keysymsOfKey);

    /// How long the talk key is held back: "platform.talkKeyGuard" seconds (at most 2), 0.15 by default,
    /// where the key is a modifier; not at all otherwise.
    [[nodiscard]] Seconds guardTime(unsigned long keysym) const;

    /// For the user: the keysym names of the talk key.
    [[nodiscard]] std::string description();

private:
    [[nodiscard]] const std::vector<unsigned long>& current();

    const UserDefaults& defaults_;
    SystemLog& log_;
    std::optional<std::string> known_;
    std::vector<unsigned long> keysyms_;
};

TalkKeySetting::TalkKeySetting(const UserDefaults& defaults, SystemLog& log)
    : defaults_(defaults),
      log_(log),
      keysyms_(kDefaultKeysyms) {}

std::optional<unsigned long> TalkKeySetting::match(const std::vector<unsigned long>& keysymsOfKey) {
    const auto& wanted = current();
    const auto found =
        std::find_first_of(keysymsOfKey.begin(), keysymsOfKey.end(), wanted.begin(), wanted.end());
    return found == keysymsOfKey.end() ? std::nullopt : std::optional(*found);
}

Seconds TalkKeySetting::guardTime(unsigned long keysym) const {
    if (!IsModifierKey(keysym)) {
        return Seconds::zero();
    }
    const auto stored = defaults_.number("platform.talkKeyGuard");
    if (!stored || !std::isfinite(*stored) || *stored < 0) {
        return kDefaultGuardTime;
    }
    return std::min(Seconds(*stored), kLongestGuardTime);
}

std::string TalkKeySetting::description() {
    std::string names;
    for (const auto keysym : current()) {
        const char* const name = XKeysymToString(keysym);
        names += (names.empty() ? "" : " or ") + std::string(name != nullptr ? name : "?");
    }
    return names;
}

const std::vector<unsigned long>& TalkKeySetting::current() {
    auto stored = storedText(defaults_);
    if (stored == known_) {
        return keysyms_;
    }
    known_ = std::move(stored);
    keysyms_ = kDefaultKeysyms;
    if (known_) {
        if (const KeySym named = XStringToKeysym(known_->c_str()); named != NoSymbol) {
            keysyms_ = {named};
        } else {
            log_.printLine("[TovikVoice] No key is named \"" + *known_ +
                           "\" (platform.talkKey); the talk key is " + description());
        }
    }
    return keysyms_;
}

X11KeyMonitor::X11KeyMonitor(Services services, std::string displayName)
    : services_(std::move(services)),
      displayName_(std::move(displayName)),
      setting_(std::make_unique<TalkKeySetting>(services_.defaults, services_.log)) {
    guard_ = std::make_unique<TalkKeyGuard>(
        services_.queue, TalkKeyGuard::Surroundings{[this] { return !services_.ownProgramIsFrontmost(); },
                                                    [this] { watch_->catchUp(); }});
}

X11KeyMonitor::~X11KeyMonitor() {
    services_.posted.setOnSent({});
}

Result<void> X11KeyMonitor::start(Handlers handlers) {
    auto queries = X11Connection::open(displayName_);
    auto events = X11Connection::open(displayName_);
    if (!queries || !events) {
        return X11Session::noDisplayError();
    }
    const auto session = X11Session::examine(*queries.value());
    if (!session.canSeeKeys) {
        return Error{"X11", 2, session.sentence};
    }
    queries_ = std::move(queries.value());
    events_ = std::move(events.value());
    keyboard_ = std::make_unique<X11Keyboard>(*queries_);
    // Before anybody listens: what was held before is no news.
    findHeldShiftKeys();
    guard_->setHandlers(std::move(handlers));

    // The version that is asked for decides what comes: since 2.1 also what is typed during a grab.
    int major = 2;
    int minor = 2;
    int firstEvent = 0;
    int firstError = 0;
    XQueryExtension(events_->display(), "XInputExtension", &inputOpcode_, &firstEvent, &firstError);
    XIQueryVersion(events_->display(), &major, &minor);
    select(events_->display(), events_->root(), XIAllMasterDevices, {XI_RawKeyPress, XI_RawKeyRelease});
    select(events_->display(), events_->root(), XIAllDevices, {XI_HierarchyChanged});
    events_->sync();

    watch_ = std::make_unique<X11EventWatch>(*events_, [this](XEvent& event) { handle(event); });
    services_.posted.setOnSent([this] {
        // What was posted is in the event queue by now, behind what the user typed before.
        const auto announced = services_.posted.announced();
        services_.queue.async(lifetime_.guard([this, announced] {
            watch_->catchUp();
            services_.posted.forget(announced);
        }));
    });
    warnOfMissingTalkKey();
    return {};
}

void X11KeyMonitor::handle(XEvent& event) {
    if (event.type != GenericEvent || event.xcookie.extension != inputOpcode_) {
        return;
    }
    if (event.xcookie.evtype == XI_HierarchyChanged) {
        devicesChanged();
        return;
    }
    const EventData data(events_->display(), event.xcookie);
    const XIRawEvent* const raw = data.rawEvent();
    if (raw == nullptr) {
        return;
    }
    const bool press = raw->evtype == XI_RawKeyPress;
    const PhysicalKey key{raw->deviceid, static_cast<unsigned>(raw->detail)};
    const PostedKeys::Stroke stroke{key.second, press};
    if (services_.posted.expects(stroke) && keyboard_->isTestKeyboard(raw->sourceid)) {
        services_.posted.take(stroke);
    } else if (press) {
        keyPressed(key, raw->sourceid, raw->time);
    } else {
        keyReleased(key);
    }
}

void X11KeyMonitor::keyPressed(const PhysicalKey& key, int device, unsigned long time) {
    if (key == talkKey_ && !releasedUnseen_) {
        doubtfulRelease_.end(); // repeats itself
        return;
    }
    if (key == talkKey_) {
        talkKeyReleased();
    }
    settleRelease();
    // Each keyboard may have a layout of its own, and any layout may have changed since the last key.
    const auto keysyms = keyboard_->keysyms(device, key.second);
    if (const auto talkKeysym = setting_->match(keysyms)) {
        talkKeyPressed(key, *talkKeysym, time);
    } else if (isShift(keysyms)) {
        shiftKeys_.insert(key);
        guard_->setShiftHeld(true);
    } else {
        guard_->otherKeyPressed();
    }
}

void X11KeyMonitor::keyReleased(const PhysicalKey& key) {
    if (key == talkKey_ && isHeld(key)) {
        // Another keyboard still holds it, or it went down again before this thread could look: then that
        // press follows. No server repeats a modifier.
        releasedUnseen_ = !talkKeyRepeats_;
    } else if (key == talkKey_) {
        // The server repeats no modifiers, so a release of one is told without delay.
        if (talkKeyRepeats_) {
            doubtfulRelease_ = services_.queue.after(kRepetition, [this] { talkKeyReleased(); });
        } else {
            talkKeyReleased();
        }
    } else if (shiftKeys_.contains(key) && !isHeld(key)) {
        settleRelease();
        shiftKeys_.erase(key);
        guard_->setShiftHeld(!shiftKeys_.empty());
    }
}

void X11KeyMonitor::talkKeyPressed(const PhysicalKey& key, unsigned long keysym, unsigned long time) {
    if (talkKey_) {
        return; // a second key of the same meaning
    }
    std::erase_if(shiftKeys_, [this](const auto& shift) { return !isHeld(shift); });
    guard_->setShiftHeld(!shiftKeys_.empty());
    talkKey_ = key;
    releasedUnseen_ = false;
    talkKeyRepeats_ = !IsModifierKey(keysym);
    releaseCheck_ = services_.queue.every(kReleaseCheckInterval, [this] { forgetMissedReleases(); });
    guard_->talkKeyPressed(setting_->guardTime(keysym), since(time));
}

/// Times of the server are in milliseconds and begin anew every 49 days.
Seconds X11KeyMonitor::since(unsigned long time) {
    const auto milliseconds =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(queries_->serverTime() - time));
    return std::max(Seconds::zero(), Seconds(milliseconds / 1000.0));
}

void X11KeyMonitor::talkKeyReleased() {
    talkKey_.reset();
    releasedUnseen_ = false;
    releaseCheck_.end();
    doubtfulRelease_.end();
    guard_->talkKeyReleased();
}

void X11KeyMonitor::settleRelease() {
    if (doubtfulRelease_) {
        talkKeyReleased();
    }
}

void X11KeyMonitor::devicesChanged() {
    keyboard_->devicesChanged();
    services_.queue.async(lifetime_.guard([this] { forgetMissedReleases(); }));
}

void X11KeyMonitor::forgetMissedReleases() {
    if (!talkKey_ || doubtfulRelease_ || isHeld(*talkKey_)) {
        return;
    }
    // The release may be on its way; only one that never comes is made up for.
    const auto key = talkKey_;
    watch_->catchUp();
    if (talkKey_ == key && !doubtfulRelease_ && !isHeld(*key)) {
        talkKeyReleased();
    }
}

void X11KeyMonitor::findHeldShiftKeys() {
    // The server counts its core keyboard as the first master of all.
    constexpr int kCoreKeyboard = 3;
    const auto held = keyboard_->heldKeys(kCoreKeyboard);
    for (const auto& key : keyboard_->keys(kCoreKeyboard)) {
        if (held[key.keyCode] && isShift(key.keysyms)) {
            shiftKeys_.insert({kCoreKeyboard, key.keyCode});
        }
    }
    guard_->setShiftHeld(!shiftKeys_.empty());
}

void X11KeyMonitor::warnOfMissingTalkKey() {
    const auto keys = keyboard_->keys(XkbUseCoreKbd);
    const bool present = std::any_of(keys.begin(), keys.end(), [this](const auto& key) {
        return setting_->match(key.keysyms).has_value();
    });
    if (!present) {
        services_.log.printLine("[TovikVoice] No key of the keyboard layout is " + setting_->description() +
                                ", the talk key (platform.talkKey)");
    }
}

bool X11KeyMonitor::isTalkKeyHeldAlone() {
    return talkKey_ && isHeld(*talkKey_) && keyboard_->heldKeys(talkKey_->first).count() == 1;
}

bool X11KeyMonitor::isHeld(const PhysicalKey& key) {
    return keyboard_->heldKeys(key.first)[key.second];
}

} // namespace tovik
