// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/MainQueue.h"
#include "Platform/Screens.h"
#include "Platform/Subscription.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tovik {

class Menu;

/// One row of a menu.
struct MenuItem {
    std::string title;
    /// Runs when the user chooses the item. An item with neither action nor submenu cannot be chosen.
    std::function<void()> action;
    /// Text that the item stands for: a locale, a device, a transcript. Often empty.
    std::string representedText;
    /// A letter; with the platform's menu modifier it chooses the item.
    std::string keyEquivalent;
    std::shared_ptr<Menu> submenu;
    bool isChecked = false;
    bool isEnabled = true;
    bool isSeparator = false;

    [[nodiscard]] static MenuItem separator() {
        MenuItem item;
        item.isSeparator = true;
        return item;
    }
};

/// A menu as the program describes it; all that show it follow its changes. Main thread.
class Menu {
public:
    Menu() = default;
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    [[nodiscard]] const std::vector<MenuItem>& items() const { return items_; }

    void setItems(std::vector<MenuItem> items) {
        items_ = std::move(items);
        changed_.tell();
    }

    /// For whoever shows the menu: told of each change until the token is dropped.
    [[nodiscard]] Subscription observe(std::function<void()> changed) {
        return changed_.add(std::move(changed));
    }

    /// Set by whoever fills the menu; called each time before it opens.
    std::function<void()> onWillOpen;

private:
    std::vector<MenuItem> items_;
    Observers<> changed_;
};

/// A picture for the status item.
struct StatusImage {
    /// The program's own icon, or the symbol of this name.
    enum class Kind { applicationIcon, symbol };

    Kind kind = Kind::applicationIcon;
    std::string symbolName;
    std::string accessibilityDescription;
    /// Icons: edge length. Symbols: size of the text, of medium weight, that the symbol goes with.
    double pointSize = 0;

    bool operator==(const StatusImage&) const = default;
};

/// The program's place in the desktop's tray. Main thread. Without a tray all of it is harmless.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// False when this desktop shows no tray.
    [[nodiscard]] virtual bool hasButton() const = 0;
    virtual void setImage(const StatusImage& image) = 0;
    virtual void setToolTip(const std::string& text) = 0;
    virtual void setMenu(std::shared_ptr<Menu> menu) = 0;
};

/// The pill that shows the microphone's level and the elapsed time while a recording runs. Main thread.
class RecordingOverlay {
public:
    virtual ~RecordingOverlay() = default;

    virtual void show(Date startedAt) = 0;
    virtual void hide() = 0;
    /// A short beat: the recording has become hands-free.
    virtual void tovik() = 0;
    /// The newest level, 0...1. Dropped while the overlay is hidden.
    virtual void setLevel(float level) = 0;
};

enum class FontWeight { regular, medium, semibold };

/// A line of text on a small dark panel near the bottom of the screen.
struct HintDescription {
    std::string text;
    Rect frame;
    double fontSize = 0;
    FontWeight weight = FontWeight::regular;
    /// Brightness of the text, 0 black to 1 white.
    double textWhite = 1;

    bool operator==(const HintDescription&) const = default;
};

/// A hint on screen; dropping it takes it away at once.
class HintPanel {
public:
    virtual ~HintPanel() = default;

    virtual void fadeIn(Seconds duration) = 0;
    /// Calls completion when the panel is gone.
    virtual void fadeOut(Seconds duration, std::function<void()> completion) = 0;
};

/// Makes hint panels: above every window, not clickable, never focused. Main thread.
class HintPanels {
public:
    virtual ~HintPanels() = default;

    [[nodiscard]] virtual std::unique_ptr<HintPanel> makePanel(const HintDescription& description) = 0;
};

/// A modal question with buttons. Main thread.
class Alert {
public:
    virtual ~Alert() = default;

    /// Returns the index of the button chosen, or -1 when the alert was closed without one.
    virtual int runModal(const std::string& message, const std::string& informativeText,
                         const std::vector<std::string>& buttons) = 0;
};

/// What the program asks of its main window. The window observes each request; while there is none, nothing
/// happens. Main thread.
struct MainWindow {
    template <typename... Arguments>
    struct Request : Observers<Arguments...> {
        void operator()(const Arguments&... arguments) const { this->tell(arguments...); }
    };

    /// To show the window and give it the keyboard, once the current event is done.
    Request<> present;
    /// To show a short confirmation inside the window.
    Request<std::string> showSavedToast;
    /// The stored history has changed. The status menu follows this as well.
    Request<> reloadHistoryTable;
    /// What the desktop lets the program do may have changed.
    Request<> refreshPermissions;
};

/// The window on the screen; dropping it takes it away.
class MainWindowOnScreen {
public:
    virtual ~MainWindowOnScreen() = default;
};

class FillerWords;
class MakerLinks;
class PermissionChecklist;
class PermissionRequests;
class TranscriptHistoryBrowser;
class TextTranslator;
class TranscriptionDictionary;
class UserDefaults;
class UserDefaultsChanges;

/// What the main window shows and leads to. All of it outlives the window.
struct MainWindowContents {
    /// What the window is asked to do while it is there.
    MainWindow& requests;
    PermissionChecklist& permissions;
    PermissionRequests& permissionRequests;
    TranscriptHistoryBrowser& history;
    UserDefaults& defaults;
    UserDefaultsChanges& defaultsChanges;
    TranscriptionDictionary& dictionary;
    FillerWords& fillerWords;
    const TextTranslator& translator;
    std::shared_ptr<Menu> statusMenu;
    MakerLinks& links;
};

/// Makes the program's windows. Main thread.
class UserInterface {
public:
    virtual ~UserInterface() = default;

    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
    [[nodiscard]] virtual std::unique_ptr<RecordingOverlay> makeRecordingOverlay() = 0;
    [[nodiscard]] virtual std::unique_ptr<HintPanels> makeHintPanels() = 0;
    /// Builds and shows the main window.
    [[nodiscard]] virtual std::unique_ptr<MainWindowOnScreen>
    makeMainWindow(const MainWindowContents& contents) = 0;
};

} // namespace tovik
