// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include <bitset>
#include <memory>
#include <string>
#include <vector>

namespace tovik::test {

/// Somebody at the keyboard of the staged X server, with a connection of their own.
class XUser {
public:
    /// An empty name means the stage's display.
    explicit XUser(const std::string& display = {});
    ~XUser();

    /// Keys go by their keysym names, as they lie on the keyboard now.
    void press(const std::string& key);
    void release(const std::string& key);
    void tap(const std::string& key);
    void pressCode(unsigned code);
    void releaseCode(unsigned code);
    [[nodiscard]] unsigned keyCode(const std::string& key) const;

    [[nodiscard]] bool hasKey(const std::string& key) const;
    /// Key codes that the layout gives no meaning.
    [[nodiscard]] std::vector<unsigned> unusedKeyCodes() const;

    [[nodiscard]] std::bitset<256> heldKeys() const;
    /// Lets go of everything, and undoes locks and groups.
    void letGo();

    /// Replaces the keyboard layout, by setxkbmap's arguments.
    void setLayout(const std::string& arguments);
    /// Gives one key another meaning, until the layout is set again.
    void remap(unsigned code, const std::string& key);
    /// Makes a group of the layout the active one.
    void switchToGroup(unsigned group);
    void lockModifiers(unsigned modifiers);

    /// As a program with an open menu does.
    [[nodiscard]] bool grabKeyboard();
    void ungrabKeyboard();

    /// Plugs in, and pulls out, a further keyboard (with a pointer) apart from the first, and types on it.
    void plugInKeyboard(const std::string& name);
    void pullOutKeyboard(const std::string& name);
    void typeOn(const std::string& name);

    /// Asks for another window to be in front, as a click into it would.
    void clickInto(unsigned long window);
    void setDesktop(long desktop);
    /// The desktops become that many; returns when they are. By then the window manager is at work: openbox
    /// announces itself before it listens, and loses what is asked of it, windows included, in between.
    void setDesktopCount(long count);
    void unmap(unsigned long window);
    [[nodiscard]] bool isViewable(unsigned long window) const;
    void iconify(unsigned long window);
    void moveToDesktop(unsigned long window, long desktop);
    /// Takes the keyboard focus, without a window manager.
    void focus(unsigned long window);
    [[nodiscard]] unsigned long focused() const;

    /// Returns when the server has carried out all of the above and told everybody of it.
    void sync();

private:
    struct Connection;
    [[nodiscard]] long rootNumber(const char* property) const;
    [[nodiscard]] unsigned findKey(const std::string& key) const;
    void toRoot(unsigned long window, const char* message, long first, long second);

    std::unique_ptr<Connection> connection_;
};

} // namespace tovik::test
