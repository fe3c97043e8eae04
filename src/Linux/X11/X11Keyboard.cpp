// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Keyboard.h"

#include "Linux/X11/X11Connection.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

#include <span>

namespace tovik {
namespace {

using DeviceList = X11Handle<XIDeviceInfo, XIFreeDeviceInfo>;

void freeKeyboard(XkbDescPtr keyboard) {
    XkbFreeKeyboard(keyboard, XkbAllComponentsMask, True);
}
using KeyboardDescription = X11Handle<XkbDescRec, freeKeyboard>;

std::vector<unsigned long> unshiftedKeysyms(XkbDescPtr keyboard, unsigned keyCode) {
    std::vector<unsigned long> keysyms;
    if (keyCode < keyboard->min_key_code || keyCode > keyboard->max_key_code) {
        return keysyms;
    }
    const int groups = XkbKeyNumGroups(keyboard, keyCode);
    for (int group = 0; group < groups; ++group) {
        if (const KeySym keysym = XkbKeySymEntry(keyboard, keyCode, 0, group); keysym != NoSymbol) {
            keysyms.push_back(keysym);
        }
    }
    return keysyms;
}

} // namespace

X11Keyboard::X11Keyboard(X11Connection& connection) : connection_(connection) {}

std::vector<unsigned long> X11Keyboard::keysyms(int device, unsigned keyCode) const {
    // The whole map: Xlib cannot read the keysyms of a single key (XkbGetKeySyms answers BadAlloc).
    const KeyboardDescription keyboard(
        XkbGetMap(connection_.display(), XkbKeySymsMask, static_cast<unsigned>(device)));
    if (!keyboard) {
        return {};
    }
    return unshiftedKeysyms(keyboard.get(), keyCode);
}

std::vector<X11Keyboard::Key> X11Keyboard::keys(int device) const {
    const KeyboardDescription keyboard(XkbGetMap(connection_.display(),
                                                 XkbKeySymsMask | XkbModifierMapMask | XkbKeyTypesMask,
                                                 static_cast<unsigned>(device)));
    std::vector<Key> keys;
    if (!keyboard) {
        return keys;
    }
    for (unsigned keyCode = keyboard->min_key_code; keyCode <= keyboard->max_key_code; ++keyCode) {
        const unsigned modifiers = keyboard->map->modmap[keyCode];
        if (XkbKeyNumSyms(keyboard, keyCode) > 0 || modifiers != 0) {
            keys.push_back({keyCode, unshiftedKeysyms(keyboard.get(), keyCode), modifiers});
        }
    }
    return keys;
}

X11Keyboard::KeyStates X11Keyboard::heldKeys(int masterKeyboard) {
    Display* const display = connection_.display();
    if (masterKeyboard != askedMaster_) {
        int found = 0;
        const DeviceList master(XIQueryDevice(display, masterKeyboard, &found));
        if (!master || found != 1) {
            return {};
        }
        // The server answers for the keyboard that is paired with the asking connection's pointer.
        XISetClientPointer(display, None, master->attachment);
        askedMaster_ = masterKeyboard;
    }
    char bits[32] = {};
    XQueryKeymap(display, bits);
    KeyStates held;
    for (std::size_t key = 0; key < held.size(); ++key) {
        held[key] = ((static_cast<unsigned char>(bits[key / 8]) >> (key % 8)) & 1U) != 0;
    }
    return held;
}

X11Keyboard::State X11Keyboard::state() const {
    XkbStateRec state{};
    if (XkbGetState(connection_.display(), XkbUseCoreKbd, &state) != Success) {
        return {};
    }
    return {state.base_mods, state.group};
}

std::optional<std::string> X11Keyboard::deviceName(int device) const {
    int found = 0;
    const DeviceList devices(XIQueryDevice(connection_.display(), device, &found));
    if (!devices || found != 1) {
        return std::nullopt;
    }
    return devices->name;
}

bool X11Keyboard::isTestKeyboard(int device) const {
    return deviceName(device).value_or("").ends_with("XTEST keyboard");
}

std::optional<int> X11Keyboard::testKeyboard() const {
    Display* const display = connection_.display();
    int pointer = 0;
    int found = 0;
    if (XIGetClientPointer(display, None, &pointer) == False) {
        return std::nullopt;
    }
    const DeviceList own(XIQueryDevice(display, pointer, &found));
    if (!own || found != 1) {
        return std::nullopt;
    }
    const int master = own->attachment;
    const DeviceList devices(XIQueryDevice(display, XIAllDevices, &found));
    if (!devices) {
        return std::nullopt;
    }
    for (const XIDeviceInfo& device : std::span(devices.get(), static_cast<std::size_t>(found))) {
        if (device.use == XISlaveKeyboard && device.attachment == master &&
            std::string_view(device.name).ends_with("XTEST keyboard")) {
            return device.deviceid;
        }
    }
    return std::nullopt;
}

} // namespace tovik
