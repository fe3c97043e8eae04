// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/X11/X11Pasteboard.h"
#include "support/EventLoop.h"
#include "support/FakeWorkspace.h"
#include "support/RecordingLog.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tovik::test {
namespace {

/// A pasteboard, and other programs that copy and paste.
class PasteboardWorld {
public:
    virtual ~PasteboardWorld() = default;
    [[nodiscard]] virtual Pasteboard& pasteboard() = 0;
    /// What another program gets that asks for the clipboard.
    [[nodiscard]] virtual std::optional<std::string> paste() = 0;
};

class FakeWorld : public PasteboardWorld {
public:
    Pasteboard& pasteboard() override { return pasteboard_; }
    std::optional<std::string> paste() override { return pasteboard_.contents(); }

private:
    FakePasteboard pasteboard_;
};

class X11World : public PasteboardWorld {
public:
    Pasteboard& pasteboard() override { return pasteboard_; }
    std::optional<std::string> paste() override {
        QProcess other;
        other.start("xclip", {"-o", "-selection", "clipboard", "-target", "UTF8_STRING"});
        EXPECT_TRUE(runUntil([&] { return other.state() == QProcess::NotRunning; }));
        if (other.exitCode() != 0) {
            return std::nullopt;
        }
        return other.readAllStandardOutput().toStdString();
    }

private:
    RecordingLog log_;
    X11Pasteboard pasteboard_{log_};
};

struct WorldKind {
    std::string name;
    std::function<std::unique_ptr<PasteboardWorld>()> make;
};

class PasteboardContract : public testing::TestWithParam<WorldKind> {
protected:
    std::unique_ptr<PasteboardWorld> world = GetParam().make();
};

TEST_P(PasteboardContract, anyText_isPastedByteForByte) {
    std::string long200k;
    while (long200k.size() < 204800) {
        long200k += "Sentence " + std::to_string(long200k.size()) + ", größer. ";
    }
    const std::string texts[] = {
        "Hello world.",
        "trailing line feed\n",
        "two\nlines\r\nand\ttab ",
        "Grüße, 世界 👩‍👩‍👧 🌐",
        std::string("before\0after", 12),
        long200k,
        std::string(1500000, 'x'),
        "short again",
    };
    for (const auto& text : texts) {
        world->pasteboard().replaceContents(text);
        EXPECT_EQ(world->paste(), text);
    }
}

TEST_P(PasteboardContract, theEmptyText_replacesWhatWasThere) {
    world->pasteboard().replaceContents("secret");
    world->pasteboard().replaceContents("");
    EXPECT_EQ(world->paste().value_or(""), "");
}

TEST_P(PasteboardContract, theSameText_canBePastedAgainAndAgain) {
    world->pasteboard().replaceContents("again");
    for (int n = 0; n < 5; ++n) {
        EXPECT_EQ(world->paste(), "again");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Pasteboards, PasteboardContract,
    testing::Values(WorldKind{"FakePasteboard", [] { return std::make_unique<FakeWorld>(); }},
                    WorldKind{"X11Pasteboard", [] { return std::make_unique<X11World>(); }}),
    [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace tovik::test
