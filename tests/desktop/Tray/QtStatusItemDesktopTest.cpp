// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "NotifierWatcher.h"
#include "support/EventLoop.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QScreen>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovik::test {
namespace {

using testing::ElementsAre;

constexpr QRgb kIconColour = 0xffff0000;
constexpr QRgb kSymbolColour = 0xff00ff00;
constexpr QRgb kMenuColour = 0xff0000ff;

/// What of the screen has this colour; nothing when nothing has.
std::optional<QRect> areaOf(QRgb colour) {
    const auto screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
    QRect area;
    for (int y = 0; y < screen.height(); ++y) {
        for (int x = 0; x < screen.width(); ++x) {
            if (screen.pixel(x, y) == colour) {
                area |= QRect(x, y, 1, 1);
            }
        }
    }
    return area.isNull() ? std::nullopt : std::optional(area);
}

void runTool(const QString& program, const QStringList& arguments) {
    QProcess tool;
    tool.start(program, arguments);
    EXPECT_TRUE(runUntil([&] { return tool.state() == QProcess::NotRunning; }));
    EXPECT_EQ(tool.exitCode(), 0) << program.toStdString();
}

class Background {
public:
    Background(const QString& program, const QStringList& arguments) {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(program, arguments);
        EXPECT_TRUE(process_.waitForStarted());
    }
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;
    ~Background() { end(); }

    int end() {
        if (process_.state() != QProcess::NotRunning) {
            process_.terminate();
            EXPECT_TRUE(runUntil([&] { return process_.state() == QProcess::NotRunning; }));
        }
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }
    void write(const std::string& line) { process_.write((line + "\n").c_str()); }
    /// All lines so far.
    [[nodiscard]] std::vector<std::string> lines() {
        output_ += process_.readAllStandardOutput();
        std::vector<std::string> all;
        for (const auto& line : output_.split('\n')) {
            if (!line.isEmpty()) {
                all.push_back(line.toStdString());
            }
        }
        return all;
    }
    [[nodiscard]] bool waitForLine(const std::string& wanted) {
        return runUntil([&] {
            const auto all = lines();
            return std::find(all.begin(), all.end(), wanted) != all.end();
        });
    }

private:
    QProcess process_;
    QByteArray output_;
};

/// One row of a menu as a panel sees it.
struct Row {
    int id = 0;
    QVariantMap properties;
    std::vector<Row> children;

    [[nodiscard]] std::string label() const {
        return properties.value("type") == "separator" ? "---"
                                                       : properties.value("label").toString().toStdString();
    }
};

Row rowFrom(const QDBusArgument& argument) {
    Row row;
    argument.beginStructure();
    argument >> row.id >> row.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        row.children.push_back(rowFrom(child.variant().value<QDBusArgument>()));
    }
    argument.endArray();
    argument.endStructure();
    return row;
}

/// A status notifier item as a panel shows it.
class Item {
public:
    explicit Item(QString service) : service_(std::move(service)) {}

    [[nodiscard]] QVariant property(const QString& name) const {
        auto question = QDBusMessage::createMethodCall(service_, "/StatusNotifierItem",
                                                       "org.freedesktop.DBus.Properties", "Get");
        question.setArguments({"org.kde.StatusNotifierItem", name});
        const auto answer = call(question);
        return answer.arguments().isEmpty() ? QVariant()
                                            : answer.arguments().first().value<QDBusVariant>().variant();
    }
    [[nodiscard]] Row menu() const {
        auto question = menuCall("GetLayout");
        question.setArguments({0, -1, QStringList()});
        const auto answer = call(question);
        return answer.arguments().size() == 2 ? rowFrom(answer.arguments().at(1).value<QDBusArgument>())
                                              : Row();
    }
    [[nodiscard]] std::vector<std::string> labels() const {
        std::vector<std::string> all;
        for (const auto& row : menu().children) {
            all.push_back(row.label());
        }
        return all;
    }
    [[nodiscard]] Row row(const std::string& label) const {
        for (const auto& row : menu().children) {
            if (row.label() == label) {
                return row;
            }
        }
        ADD_FAILURE() << "no row " << label;
        return {};
    }
    void choose(int id) const {
        auto event = menuCall("Event");
        event.setArguments({id, "clicked", QVariant::fromValue(QDBusVariant("")), 0U});
        (void)call(event);
    }
    void open(int id) const {
        auto question = menuCall("AboutToShow");
        question.setArguments({id});
        (void)call(question);
    }

private:
    [[nodiscard]] QDBusMessage menuCall(const QString& method) const {
        return QDBusMessage::createMethodCall(service_, "/MenuBar", "com.canonical.dbusmenu", method);
    }
    static QDBusMessage call(const QDBusMessage& message) {
        return QDBusConnection::sessionBus().call(message, QDBus::BlockWithGui);
    }

    QString service_;
};

class QtStatusItemOnDesktop : public testing::Test {
protected:
    static std::unique_ptr<Background> startProgram() {
        return std::make_unique<Background>(TOVIK_TRAY_PROGRAM, QStringList());
    }
    static std::unique_ptr<Background> startPanel() {
        return std::make_unique<Background>(
            "trayer", QStringList{"--edge", "top", "--align", "left", "--widthtype", "request",
                                  "--heighttype", "pixel", "--height", "24", "--SetDockType", "true"});
    }
    /// The item is there, and its menu, which Qt hands out a moment later.
    static bool waitForItem(const NotifierWatcher& watcher) {
        return runUntil(
            [&] { return !watcher.items().isEmpty() && !Item(watcher.items().front()).labels().empty(); });
    }
    static bool waitForPicture(QRgb colour) {
        return runUntil([&] { return areaOf(colour).has_value(); });
    }
    static void click(QPoint place, int button) {
        runTool("xdotool", {"mousemove", QString::number(place.x()), QString::number(place.y()), "click",
                            QString::number(button)});
    }
};

TEST_F(QtStatusItemOnDesktop, whenThePanelShowsNotifierItems_theItemIsOneFromTheStart) {
    const NotifierWatcher watcher;
    const auto program = startProgram();
    EXPECT_TRUE(program->waitForLine("has a button"));
    ASSERT_TRUE(waitForItem(watcher));
    const Item item(watcher.items().front());
    EXPECT_EQ(item.property("Title"), "tray-program");
    EXPECT_EQ(item.property("Status"), "Active");
    EXPECT_THAT(item.labels(), ElementsAre("First", "Checked", "---", "Disabled", "More", "Quit"));
    EXPECT_EQ(item.row("Checked").properties.value("toggle-state"), 1);
    EXPECT_EQ(item.row("Disabled").properties.value("enabled"), false);
    EXPECT_NE(item.row("First").properties.value("enabled"), false);
    EXPECT_TRUE(item.row("Quit").properties.contains("shortcut"));
    EXPECT_EQ(program->end(), 0);
}

TEST_F(QtStatusItemOnDesktop, whenAnItemIsChosenInThePanel_itsActionRuns) {
    const NotifierWatcher watcher;
    const auto program = startProgram();
    ASSERT_TRUE(waitForItem(watcher));
    const Item item(watcher.items().front());
    item.choose(item.row("First").id);
    EXPECT_TRUE(program->waitForLine("chosen First"));
    item.choose(item.row("Checked").id);
    EXPECT_TRUE(program->waitForLine("chosen Checked"));
    EXPECT_EQ(item.row("Checked").properties.value("toggle-state"), 1);
}

TEST_F(QtStatusItemOnDesktop, whenASubmenuOpensInThePanel_itIsFilledAnewEachTime) {
    const NotifierWatcher watcher;
    const auto program = startProgram();
    ASSERT_TRUE(waitForItem(watcher));
    const Item item(watcher.items().front());
    for (const std::string label : {"Opened 1", "Opened 2"}) {
        item.open(item.row("More").id);
        const auto children = item.row("More").children;
        ASSERT_EQ(children.size(), 1u);
        EXPECT_EQ(children.front().label(), label);
        item.choose(children.front().id);
        EXPECT_TRUE(program->waitForLine("chosen " + label));
    }
}

TEST_F(QtStatusItemOnDesktop, whenTheMenuChanges_thePanelSeesTheNewItems) {
    const NotifierWatcher watcher;
    const auto program = startProgram();
    ASSERT_TRUE(waitForItem(watcher));
    const Item item(watcher.items().front());
    program->write("change");
    EXPECT_TRUE(runUntil([&] { return item.labels() == std::vector<std::string>{"Changed"}; }));
    item.choose(item.row("Changed").id);
    EXPECT_TRUE(program->waitForLine("chosen Changed"));
}

TEST_F(QtStatusItemOnDesktop, whenThePanelStartsAfterTheProgram_theItemAppears) {
    const auto program = startProgram();
    ASSERT_TRUE(program->waitForLine("has no button"));
    const NotifierWatcher watcher;
    ASSERT_TRUE(waitForItem(watcher));
    program->write("icon");
    EXPECT_TRUE(program->waitForLine("has a button"));
    EXPECT_THAT(Item(watcher.items().front()).labels(), testing::Contains("First"));
}

TEST_F(QtStatusItemOnDesktop, whenTheWatcherComesBeforeItsPanel_theItemAppearsWithThePanel) {
    NotifierWatcher watcher(false);
    const auto program = startProgram();
    ASSERT_TRUE(program->waitForLine("has no button"));
    EXPECT_TRUE(watcher.items().isEmpty());
    watcher.registerHost();
    EXPECT_TRUE(waitForItem(watcher));
}

TEST_F(QtStatusItemOnDesktop, whenThePanelStartsAgain_theItemComesBack) {
    auto watcher = std::make_unique<NotifierWatcher>();
    const auto program = startProgram();
    ASSERT_TRUE(waitForItem(*watcher));
    watcher.reset();
    watcher = std::make_unique<NotifierWatcher>();
    ASSERT_TRUE(waitForItem(*watcher));
    EXPECT_THAT(Item(watcher->items().front()).labels(), testing::Contains("First"));
}

TEST_F(QtStatusItemOnDesktop, whenThePanelTakesWindows_theIconIsInItAndFollowsItsImage) {
    const auto panel = startPanel();
    const auto program = startProgram();
    ASSERT_TRUE(waitForPicture(kIconColour));
    program->write("symbol");
    EXPECT_TRUE(waitForPicture(kSymbolColour));
    EXPECT_TRUE(program->waitForLine("has a button"));
    program->write("icon");
    EXPECT_TRUE(waitForPicture(kIconColour));
    EXPECT_EQ(program->end(), 0);
}

TEST_F(QtStatusItemOnDesktop, whenTheIconIsClickedWithEitherButton_theMenuOpensAndItsItemsCanBeChosen) {
    const auto panel = startPanel();
    const auto program = startProgram();
    for (const int button : {1, 3}) {
        ASSERT_TRUE(waitForPicture(kIconColour));
        const auto before = program->lines().size();
        click(areaOf(kIconColour)->center(), button);
        ASSERT_TRUE(waitForPicture(kMenuColour)) << "button " << button;
        click(areaOf(kMenuColour)->topLeft() + QPoint(30, 10), 1);
        EXPECT_TRUE(runUntil([&] { return program->lines().size() > before; }));
        EXPECT_EQ(program->lines().back(), "chosen First") << "button " << button;
        EXPECT_TRUE(runUntil([&] { return !areaOf(kMenuColour); }));
    }
}

TEST_F(QtStatusItemOnDesktop, whenAWindowTrayStartsAfterTheProgram_theIconAppears) {
    const auto program = startProgram();
    ASSERT_TRUE(program->waitForLine("has no button"));
    const auto panel = startPanel();
    EXPECT_TRUE(waitForPicture(kIconColour));
}

TEST_F(QtStatusItemOnDesktop, whenThereIsNoTray_theLogSaysSoOnceAndATrayIsStillWelcome) {
    const auto program = startProgram();
    const auto complaints = [&] {
        const auto lines = program->lines();
        return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
            return line.starts_with("[TovikVoice] No system tray on this desktop");
        });
    };
    ASSERT_TRUE(runUntil([&] { return complaints() > 0; }));
    {
        const auto panel = startPanel();
        EXPECT_TRUE(waitForPicture(kIconColour));
    }
    EXPECT_TRUE(runUntil([&] { return !areaOf(kIconColour); }));
    const auto panel = startPanel();
    EXPECT_TRUE(waitForPicture(kIconColour));
    EXPECT_EQ(complaints(), 1);
    EXPECT_EQ(program->end(), 0);
}

} // namespace
} // namespace tovik::test
