// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11KeyPresser.h"

#include "Linux/X11/X11Connection.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>

namespace tovik {
namespace {

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

} // namespace tovik
