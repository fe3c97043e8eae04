// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// Pasting for real: into a GTK editor, a Qt editor, two kinds of terminal and a browser, under several
// keyboard layouts, by way of the clipboard and the paste keys alone.
#include "Linux/Desktop/QtMainQueue.h"
#include "Linux/X11/PostedKeys.h"
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11KeyEventPoster.h"
#include "Linux/X11/X11Pasteboard.h"
#include "Linux/X11/X11Workspace.h"
#include "Platform/Keyboard.h"
#include "support/EventLoop.h"
#include "support/MemoryUserDefaults.h"
#include "support/RecordingLog.h"
#include "support/XUser.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <memory>
#include <string>

// After Qt: Xlib defines macros with everyday names.
#include <X11/Xlib.h>

namespace {

using namespace tovik;
using namespace tovik::test;

struct Program {
    friend std::ostream& operator<<(std::ostream& out, const Program& program) { return out << program.name; }

    const char* name;
    /// The id under which its window is known.
    const char* applicationId;
    /// FILE stands for the path of its file, FOLDER for a private one.
    const char* command;
    /// What its file holds at first.
    const char* content;
    enum class Shows { file, fileOnceSaved, title } shows;
};

constexpr const char* kPage = "<!doctype html><meta charset=utf-8><title>empty</title><textarea autofocus "
                              "oninput='document.title = this.value'></textarea>";

constexpr Program kPrograms[] = {
    {"GtkEditor", "mousepad", "mousepad --disable-server FILE", "", Program::Shows::fileOnceSaved},
    {"QtEditor", "featherpad", "featherpad --standalone FILE", "", Program::Shows::fileOnceSaved},
    {"Xterm", "xterm", "xterm -e \"cat > FILE\"", "", Program::Shows::file},
    {"VteTerminal", "lxterminal", "lxterminal --no-remote -e \"sh -c 'cat > FILE'\"", "",
     Program::Shows::file},
    {"Browser", "chromium",
     "chromium --no-sandbox --user-data-dir=FOLDER --no-first-run --password-store=basic --disable-gpu "
     "--app=file://FILE",
     kPage, Program::Shows::title},
};

struct Layout {
    friend std::ostream& operator<<(std::ostream& out, const Layout& layout) { return out << layout.name; }

    const char* name;
    const char* setting;
    unsigned group;
};

constexpr Layout kLayouts[] = {
    {"us", "us", 0},
    {"de", "de", 0},
    {"ru", "ru", 0},
    {"dvorak", "us -variant dvorak", 0},
    {"ruInSecondGroup", "us,ru", 1},
};

/// All programs are started once and used for all layouts.
class Desktop {
public:
    Desktop() {
        user_.setLayout("us");
        user_.setDesktopCount(1); // the window manager listens
        for (const auto& program : kPrograms) {
            start(program);
        }
    }

    /// Puts a text into the program as a dictation does; the milliseconds it took, or nothing when it did
    /// not arrive.
    std::optional<qint64> paste(const Program& program, const std::string& text) {
        auto& running = *running_.at(program.name);
        EXPECT_TRUE(workspace_.activate(running.application, kActivateAllWindows));
        EXPECT_TRUE(waitForFront(running.application.window));
        QElapsedTimer elapsed;
        elapsed.start();
        // Terminals hand their lines on when they are complete.
        pasteboard_.replaceContents(text + (program.shows == Program::Shows::file ? "\n" : ""));
        poster_.post({EventSourceState::hidSystem, kVKeyCode, true, kCommandFlag}, EventTap::hid);
        poster_.post({EventSourceState::hidSystem, kVKeyCode, false, kCommandFlag}, EventTap::hid);
        if (program.shows == Program::Shows::fileOnceSaved) {
            return saveUntilShown(program, text) ? std::optional(elapsed.elapsed()) : std::nullopt;
        }
        return runUntil([&] { return shows(program, text); }) ? std::optional(elapsed.elapsed())
                                                              : std::nullopt;
    }

    XUser& user() { return user_; }
    [[nodiscard]] std::string shown(const char* name) {
        for (const auto& program : kPrograms) {
            if (program.name == std::string(name)) {
                return shown(program, *running_.at(name));
            }
        }
        return {};
    }

private:
    struct Running {
        QTemporaryDir folder;
        QString file;
        QProcess process;
        RunningApplication application;
        ~Running() {
            process.kill();
            process.waitForFinished();
        }
    };

    void start(const Program& program) {
        auto running = std::make_unique<Running>();
        running->file = running->folder.filePath("text.html");
        QFile file(running->file);
        EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(program.content) >= 0);
        file.close();
        QString command = program.command;
        command.replace("FILE", running->file).replace("FOLDER", running->folder.filePath("profile"));
        auto arguments = QProcess::splitCommand(command);
        const auto executable = arguments.takeFirst();
        running->process.setStandardOutputFile(QProcess::nullDevice());
        running->process.setStandardErrorFile(QProcess::nullDevice());
        running->process.start(executable, arguments);
        // Each comes to the front when it is shown.
        const bool inFront = runUntil(
            [&] {
                const auto front = workspace_.frontmostApplication();
                return front && front->bundleIdentifier == program.applicationId && isReady(program, *front);
            },
            std::chrono::seconds(60));
        EXPECT_TRUE(inFront) << program.name << " did not start";
        running->application = workspace_.frontmostApplication().value_or(RunningApplication{});
        running_.emplace(program.name, std::move(running));
    }

    /// A browser shows its window before its page.
    bool isReady(const Program& program, const RunningApplication& front) {
        return program.shows != Program::Shows::title || title(front.window) == "empty";
    }

    /// The text may come into the editor after the key that saves it, so that is pressed again.
    bool saveUntilShown(const Program& program, const std::string& text) {
        user_.setLayout("us"); // not every layout has an S
        user_.switchToGroup(0);
        for (int attempt = 0; attempt < 20; ++attempt) {
            user_.press("Control_L");
            user_.tap("s");
            user_.release("Control_L");
            if (runUntil([&] { return shows(program, text); }, std::chrono::milliseconds(500))) {
                return true;
            }
        }
        return false;
    }

    bool shows(const Program& program, const std::string& text) {
        return shown(program, *running_.at(program.name)).find(text) != std::string::npos;
    }

    std::string shown(const Program& program, Running& running) {
        if (program.shows == Program::Shows::title) {
            return title(running.application.window);
        }
        QFile file(running.file);
        return file.open(QFile::ReadOnly) ? file.readAll().toStdString() : std::string();
    }

    std::string title(unsigned long window) {
        Display* const display = connection_->display();
        Atom type = None;
        int format = 0;
        unsigned long length = 0;
        unsigned long rest = 0;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(display, window, connection_->atom("_NET_WM_NAME"), 0, 1024, False,
                           AnyPropertyType, &type, &format, &length, &rest, &bytes);
        const X11Handle<unsigned char, XFree> owned(bytes);
        return bytes == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(bytes), length);
    }

    bool waitForFront(unsigned long window) {
        return runUntil([&] {
            const auto front = workspace_.frontmostApplication();
            return front && front->window == window;
        });
    }

    QtMainQueue queue_;
    MemoryUserDefaults defaults_;
    RecordingLog log_;
    PostedKeys posted_;
    XUser user_;
    std::unique_ptr<X11Connection> connection_ = std::move(X11Connection::open().value());
    X11Workspace workspace_{{queue_, "tovik-record", "Tovik Record", {}}};
    X11Pasteboard pasteboard_{log_};
    X11KeyEventPoster poster_{{queue_, defaults_, log_, posted_, pasteboard_}};
    std::map<std::string, std::unique_ptr<Running>> running_;
};

class Paste : public testing::TestWithParam<std::tuple<Layout, Program>> {
protected:
    static void SetUpTestSuite() { desktop = std::make_unique<Desktop>(); }
    static void TearDownTestSuite() { desktop.reset(); }

    static std::unique_ptr<Desktop> desktop;
};

std::unique_ptr<Desktop> Paste::desktop;

TEST_P(Paste, whenTextIsPasted_standsInTheProgram) {
    const auto& [layout, program] = GetParam();
    desktop->user().setLayout(layout.setting);
    desktop->user().switchToGroup(layout.group);
    // Also what takes more than one byte, or has a meaning to a shell.
    const auto text = std::string("Dictated with ") + layout.name + ": Grüße, \"naïve\" – 5 $ 語";
    const auto milliseconds = desktop->paste(program, text);
    ASSERT_TRUE(milliseconds) << "it shows: " << desktop->shown(program.name);
    RecordProperty("milliseconds", std::to_string(*milliseconds));
    const auto shown = desktop->shown(program.name);
    EXPECT_EQ(shown.find(text), shown.rfind(text)) << "it was pasted twice";
    EXPECT_TRUE(desktop->user().heldKeys().none()) << "a key is stuck";
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Layout, Program>>& row) {
    return std::string(std::get<1>(row.param).name) + "_" + std::get<0>(row.param).name;
}

INSTANTIATE_TEST_SUITE_P(Real, Paste,
                         testing::Combine(testing::ValuesIn(kLayouts), testing::ValuesIn(kPrograms)), nameOf);

} // namespace
