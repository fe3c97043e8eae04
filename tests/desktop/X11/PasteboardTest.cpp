// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The clipboard as other programs on the X server meet it: those that ask in unusual ways, take their time,
// die, copy themselves, or keep the text when the program has gone. The main thread waits for them meanwhile,
// so it is never the one that answers.
#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11Pasteboard.h"
#include "support/EventLoop.h"
#include "support/RecordingLog.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <xcb/xcb.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tovik;
using namespace tovik::test;
using testing::_;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

using Numbers = std::vector<std::uint32_t>;

template <typename Reply>
using Owned = X11Handle<Reply, std::free>;

/// What was found in a property: its type by name, and its bytes.
struct Found {
    friend std::ostream& operator<<(std::ostream& out, const Found& found) {
        return out << found.type << " \"" << found.bytes << "\"";
    }

    std::string type;
    std::string bytes;

    bool operator==(const Found&) const = default;
};

/// A program that copies and pastes, step by step. It runs no event loop.
class OtherProgram {
public:
    OtherProgram() : connection_(xcb_connect(nullptr, nullptr)), window_(makeWindow()) {}
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    [[nodiscard]] xcb_window_t window() const { return window_; }

    [[nodiscard]] xcb_atom_t atom(const std::string& name) {
        const auto cookie =
            xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
        return Owned<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(connection_.get(), cookie, nullptr))
            ->atom;
    }
    [[nodiscard]] std::string name(xcb_atom_t atom) {
        const Owned<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(connection_.get(), xcb_get_atom_name(connection_.get(), atom), nullptr));
        return {xcb_get_atom_name_name(reply.get()),
                static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
    }

    /// A further window; the property HERE gets what is asked for.
    xcb_window_t makeWindow() {
        const auto window = xcb_generate_id(connection_.get());
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
        xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_EVENT_MASK, &mask);
        return window;
    }
    void destroy(xcb_window_t window) {
        xcb_destroy_window(connection_.get(), window);
        sync();
    }
    void sync() {
        const Owned<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()), nullptr));
    }

    void ask(xcb_window_t window, const std::string& target, const std::string& selection = "CLIPBOARD",
             xcb_timestamp_t time = XCB_CURRENT_TIME, const std::string& property = "HERE") {
        xcb_delete_property(connection_.get(), window, atom("HERE"));
        askAsItIs(window, target, selection, time,
                  property.empty() ? xcb_atom_t{XCB_ATOM_NONE} : atom(property));
    }
    void askAsItIs(xcb_window_t window, const std::string& target, const std::string& selection,
                   xcb_timestamp_t time, xcb_atom_t property) {
        xcb_convert_selection(connection_.get(), window, atom(selection), atom(target), property, time);
        xcb_flush(connection_.get());
    }
    /// The property that the answer names; nothing when the answer is no.
    std::optional<std::string> answer(xcb_window_t window) {
        const auto event = waitFor<xcb_selection_notify_event_t>(
            XCB_SELECTION_NOTIFY, [&](const auto& notice) { return notice.requestor == window; });
        return event.property == XCB_ATOM_NONE ? std::nullopt : std::optional(name(event.property));
    }

    [[nodiscard]] Found property(xcb_window_t window, const std::string& property = "HERE") {
        const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            connection_.get(),
            xcb_get_property(connection_.get(), 0, window, atom(property), XCB_ATOM_ANY, 0, 1U << 24U),
            nullptr));
        if (!reply || reply->type == XCB_ATOM_NONE) {
            return {};
        }
        const auto* const bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
        return {name(reply->type),
                {bytes, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))}};
    }
    static Numbers numbers(const Found& found) {
        Numbers numbers(found.bytes.size() / 4);
        std::copy_n(found.bytes.data(), numbers.size() * 4, reinterpret_cast<char*>(numbers.data()));
        return numbers;
    }
    void setPairs(xcb_window_t window, const Numbers& pairs) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, atom("HERE"), atom("ATOM_PAIR"),
                            32, static_cast<std::uint32_t>(pairs.size()), pairs.data());
    }

    /// Takes away what arrived, so that the next piece can come.
    Found takePiece(xcb_window_t window) {
        // What is new since the last look, this includes the property's own arrival.
        forgetChanges();
        xcb_delete_property(connection_.get(), window, atom("HERE"));
        const auto here = atom("HERE");
        waitFor<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY, [&](const auto& change) {
            return change.window == window && change.atom == here && change.state == XCB_PROPERTY_NEW_VALUE;
        });
        return property(window);
    }

    /// A whole paste; nothing when it is refused.
    std::optional<Found> paste(const std::string& target = "UTF8_STRING",
                               const std::string& selection = "CLIPBOARD",
                               xcb_timestamp_t time = XCB_CURRENT_TIME) {
        ask(window_, target, selection, time);
        if (!answer(window_)) {
            return std::nullopt;
        }
        auto found = property(window_);
        if (found.type != "INCR") {
            return found;
        }
        found.bytes.clear();
        for (auto piece = takePiece(window_);; piece = takePiece(window_)) {
            found.type = piece.type;
            if (piece.bytes.empty()) {
                return found;
            }
            found.bytes += piece.bytes;
        }
    }
    std::optional<std::string> text(const std::string& selection = "CLIPBOARD") {
        const auto found = paste("UTF8_STRING", selection);
        return found ? std::optional(found->bytes) : std::nullopt;
    }

    [[nodiscard]] xcb_timestamp_t serverTime() {
        forgetChanges();
        xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, window_, atom("TIME"), XCB_ATOM_STRING,
                            8, 0, nullptr);
        const auto time = atom("TIME");
        return waitFor<xcb_property_notify_event_t>(XCB_PROPERTY_NOTIFY,
                                                    [&](const auto& change) { return change.atom == time; })
            .time;
    }

    /// Becomes the owner, as a program does in which something is copied.
    void own(const std::string& selection) {
        xcb_set_selection_owner(connection_.get(), window_, atom(selection), serverTime());
        sync();
    }
    [[nodiscard]] xcb_window_t owner(const std::string& selection) {
        const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            connection_.get(), xcb_get_selection_owner(connection_.get(), atom(selection)), nullptr));
        return reply->owner;
    }
    xcb_selection_request_event_t nextRequest() {
        return waitFor<xcb_selection_request_event_t>(XCB_SELECTION_REQUEST,
                                                      [](const auto&) { return true; });
    }
    /// Puts a text where the request wants it, and says so.
    void grant(const xcb_selection_request_event_t& request, const std::string& text) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            request.target, 8, static_cast<std::uint32_t>(text.size()), text.data());
        std::array<char, 32> event{};
        auto& notice = *reinterpret_cast<xcb_selection_notify_event_t*>(event.data());
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.time = request.time;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = request.property;
        xcb_send_event(connection_.get(), 0, request.requestor, 0, event.data());
        sync();
    }

    /// Whether anybody is told when the window is destroyed, as only those are who bring a text piece by
    /// piece.
    [[nodiscard]] bool isListenedTo(xcb_window_t window) {
        const Owned<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
            connection_.get(), xcb_get_window_attributes(connection_.get(), window), nullptr));
        return (reply->all_event_masks & XCB_EVENT_MASK_STRUCTURE_NOTIFY) != 0;
    }

private:
    void forgetChanges() {
        sync();
        takeIn();
        std::erase_if(events_,
                      [](const auto& event) { return (event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY; });
    }
    void takeIn() {
        while (Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
            events_.push_back(std::move(event));
        }
    }
    template <typename Event, typename Wanted>
    Event waitFor(unsigned type, const Wanted& isWanted) {
        const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(15);
        for (;;) {
            xcb_flush(connection_.get());
            takeIn();
            for (auto each = events_.begin(); each != events_.end(); ++each) {
                const auto event = reinterpret_cast<const Event&>(**each);
                if (((*each)->response_type & 0x7f) == type && isWanted(event)) {
                    events_.erase(each);
                    return event;
                }
            }
            if (std::chrono::steady_clock::now() > latest) {
                throw std::runtime_error("nothing comes of type " + std::to_string(type));
            }
            pollfd source{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
            ::poll(&source, 1, 100);
        }
    }

    const X11Handle<xcb_connection_t, xcb_disconnect> connection_;
    const xcb_window_t window_;
    std::vector<Owned<xcb_generic_event_t>> events_;
};

class X11PasteboardTest : public testing::Test {
protected:
    using From = X11Pasteboard::From;

    void offer(const std::string& text) { pasteboard_->replaceContents(text); }
    void begin(const std::string& text) { EXPECT_TRUE(pasteboard_->beginPaste(text, From::clipboard)); }
    void offerInBoth(const std::string& text) {
        EXPECT_TRUE(pasteboard_->beginPaste(text, From::clipboardAndPrimary));
    }

    static std::string longText(std::size_t size) {
        std::string text;
        while (text.size() < size) {
            text += "Sentence " + std::to_string(text.size()) + ", größer. ";
        }
        return text;
    }

    RecordingLog log_;
    std::unique_ptr<X11Pasteboard> pasteboard_ = std::make_unique<X11Pasteboard>(log_);
    OtherProgram program_;
};

TEST_F(X11PasteboardTest, whenAskedWhatThereIs_namesEveryFormOfText) {
    offer("text");
    const auto found = program_.paste("TARGETS");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->type, "ATOM");
    std::vector<std::string> names;
    for (const auto atom : OtherProgram::numbers(*found)) {
        names.push_back(program_.name(atom));
    }
    EXPECT_THAT(names, IsSupersetOf({"TARGETS", "TIMESTAMP", "MULTIPLE", "UTF8_STRING", "text/plain",
                                     "text/plain;charset=utf-8", "STRING", "TEXT", "COMPOUND_TEXT"}));
    for (const auto& name : names) {
        EXPECT_TRUE(name == "MULTIPLE" || program_.paste(name)) << name << " is offered and refused";
    }
}

struct Form {
    friend std::ostream& operator<<(std::ostream& out, const Form& form) { return out << form.name; }

    const char* name;
    const char* text;
    const char* target;
    Found found;
};

class X11PasteboardForm : public X11PasteboardTest, public testing::WithParamInterface<Form> {};

TEST_P(X11PasteboardForm, whenAskedFor_isGiven) {
    offerInBoth(GetParam().text);
    for (const auto* const selection : {"CLIPBOARD", "PRIMARY"}) {
        EXPECT_EQ(program_.paste(GetParam().target, selection), GetParam().found);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, X11PasteboardForm,
    testing::Values(
        Form{"utf8", "naïve 語", "UTF8_STRING", {"UTF8_STRING", "naïve 語"}},
        Form{"utf8Plain", "naïve 語", "text/plain;charset=utf-8", {"text/plain;charset=utf-8", "naïve 語"}},
        Form{"plain", "naïve 語", "text/plain", {"text/plain", "naïve 語"}},
        Form{"stringInLatin1", "naïve ÿ¡", "STRING", {"STRING", "na\xefve \xff\xa1"}},
        Form{"stringBeyondLatin1", "語", "STRING", {"STRING", "語"}},
        Form{"stringOfBrokenUtf8", "\xc3", "STRING", {"STRING", "\xc3"}},
        Form{"textInLatin1", "naïve", "TEXT", {"STRING", "na\xefve"}},
        Form{"textBeyondLatin1", "語", "TEXT", {"UTF8_STRING", "語"}},
        Form{"compoundTextInLatin1", "naïve", "COMPOUND_TEXT", {"COMPOUND_TEXT", "na\xefve"}},
        Form{"compoundTextBeyondLatin1", "語", "COMPOUND_TEXT", {"COMPOUND_TEXT", "\x1b%G語\x1b%@"}},
        Form{"nothing", "", "UTF8_STRING", {"UTF8_STRING", ""}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(X11PasteboardTest, whenAskedForAnythingElse_refuses) {
    offer("text");
    EXPECT_FALSE(program_.paste("image/png"));
}

TEST_F(X11PasteboardTest, whenAskedSinceWhen_namesTheTimeOfTheText) {
    const auto before = program_.serverTime();
    offer("text");
    const auto after = program_.serverTime();
    const auto found = program_.paste("TIMESTAMP");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->type, "INTEGER");
    const auto since = OtherProgram::numbers(*found).at(0);
    EXPECT_LE(before, since);
    EXPECT_LE(since, after);
}

TEST_F(X11PasteboardTest, whenAskedForSeveralFormsAtOnce_givesThoseThatThereAre) {
    offer("naïve");
    const auto window = program_.window();
    const auto one = program_.atom("ONE");
    const auto two = program_.atom("TWO");
    const auto three = program_.atom("THREE");
    const auto utf8 = program_.atom("UTF8_STRING");
    const auto image = program_.atom("image/png");
    program_.setPairs(window, {utf8, one, image, two, XCB_ATOM_STRING, three});
    program_.askAsItIs(window, "MULTIPLE", "CLIPBOARD", XCB_CURRENT_TIME, program_.atom("HERE"));
    EXPECT_EQ(program_.answer(window), "HERE");
    EXPECT_EQ(OtherProgram::numbers(program_.property(window)),
              (Numbers{utf8, one, image, XCB_ATOM_NONE, XCB_ATOM_STRING, three}));
    EXPECT_EQ(program_.property(window, "ONE"), (Found{"UTF8_STRING", "naïve"}));
    EXPECT_EQ(program_.property(window, "TWO"), Found{});
    EXPECT_EQ(program_.property(window, "THREE"), (Found{"STRING", "na\xefve"}));
}

TEST_F(X11PasteboardTest, whenAnOldProgramNamesNoProperty_usesTheOneNamedLikeTheTarget) {
    offer("text");
    program_.ask(program_.window(), "UTF8_STRING", "CLIPBOARD", XCB_CURRENT_TIME, "");
    EXPECT_EQ(program_.answer(program_.window()), "UTF8_STRING");
    EXPECT_EQ(program_.property(program_.window(), "UTF8_STRING"), (Found{"UTF8_STRING", "text"}));
}

TEST_F(X11PasteboardTest, whenThePasteKeyWasPressedBeforeTheTextChanged_thatPasteGetsTheFormerText) {
    const auto beforeAll = program_.serverTime();
    // Only the server's clock moves on by itself, in milliseconds.
    while (program_.serverTime() == beforeAll) {
    }
    offer("first");
    const auto pressed = program_.serverTime();
    while (program_.serverTime() == pressed) {
    }
    offer("second");
    EXPECT_EQ(program_.paste("UTF8_STRING", "CLIPBOARD", pressed), (Found{"UTF8_STRING", "first"}));
    EXPECT_EQ(program_.paste("UTF8_STRING", "CLIPBOARD", program_.serverTime()),
              (Found{"UTF8_STRING", "second"}));
    EXPECT_FALSE(program_.paste("UTF8_STRING", "CLIPBOARD", beforeAll)) << "it was not ours then";
}

TEST_F(X11PasteboardTest, whenATextIsLong_comesPieceByPiece) {
    const auto text = longText(5'000'000);
    offer(text);
    program_.ask(program_.window(), "UTF8_STRING");
    EXPECT_EQ(program_.answer(program_.window()), "HERE");
    const auto announced = program_.property(program_.window());
    EXPECT_EQ(announced.type, "INCR");
    EXPECT_EQ(OtherProgram::numbers(announced), Numbers{static_cast<std::uint32_t>(text.size())});
    const auto found = program_.paste();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->type, "UTF8_STRING");
    EXPECT_TRUE(found->bytes == text);
    EXPECT_FALSE(program_.isListenedTo(program_.window())) << "nobody listens to a window that has all";
}

TEST_F(X11PasteboardTest, whenSeveralFetchALongTextAtOnce_eachGetsAllOfIt) {
    const auto text = longText(2'000'000);
    offer(text);
    OtherProgram another;
    struct Fetching {
        OtherProgram& program;
        xcb_window_t window;
        std::string bytes = {};
        bool isDone = false;
    };
    Fetching all[] = {
        {program_, program_.window()}, {program_, program_.makeWindow()}, {another, another.window()}};
    for (auto& each : all) {
        each.program.ask(each.window, "UTF8_STRING");
        EXPECT_EQ(each.program.answer(each.window), "HERE");
    }
    // What is copied meanwhile changes nothing for them.
    offer("short");
    while (!std::all_of(std::begin(all), std::end(all), [](const auto& each) { return each.isDone; })) {
        for (auto& each : all) {
            if (!each.isDone) {
                const auto piece = each.program.takePiece(each.window);
                each.bytes += piece.bytes;
                each.isDone = piece.bytes.empty();
            }
        }
    }
    for (const auto& each : all) {
        EXPECT_TRUE(each.bytes == text) << each.bytes.size();
    }
    EXPECT_EQ(program_.text(), "short");
}

TEST_F(X11PasteboardTest, whenAWindowDiesBetweenTwoPieces_othersGetTheirs) {
    const auto text = longText(2'000'000);
    offer(text);
    const auto dying = program_.makeWindow();
    program_.ask(dying, "UTF8_STRING");
    EXPECT_EQ(program_.answer(dying), "HERE");
    EXPECT_FALSE(program_.takePiece(dying).bytes.empty());
    {
        OtherProgram another;
        another.ask(another.window(), "UTF8_STRING");
        EXPECT_EQ(another.answer(another.window()), "HERE");
        EXPECT_FALSE(another.takePiece(another.window()).bytes.empty());
    }
    program_.destroy(dying);
    EXPECT_TRUE(program_.text() == text);
}

TEST_F(X11PasteboardTest, whenAWindowDiesBeforeItsAnswer_othersGetTheirs) {
    offer(longText(500'000));
    for (int n = 0; n < 20; ++n) {
        const auto dying = program_.makeWindow();
        program_.ask(dying, n % 2 == 0 ? "UTF8_STRING" : "TIMESTAMP");
        program_.destroy(dying);
    }
    EXPECT_TRUE(program_.text() == longText(500'000));
}

TEST_F(X11PasteboardTest, whenAProgramTakesNoPieceForLong_isGivenUp) {
    pasteboard_ = std::make_unique<X11Pasteboard>(
        log_, "", X11Pasteboard::Patience{.piece = std::chrono::milliseconds(50)});
    offer(longText(500'000));
    program_.ask(program_.window(), "UTF8_STRING");
    EXPECT_EQ(program_.answer(program_.window()), "HERE");
    EXPECT_TRUE(runUntil([&] { return !program_.isListenedTo(program_.window()); }));
    EXPECT_TRUE(program_.text() == longText(500'000)) << "the next try is as good as the first";
}

TEST_F(X11PasteboardTest, whenAnotherProgramHasCopiedMeanwhile_oursReplacesTheirs) {
    for (const auto* const selection : {"CLIPBOARD", "PRIMARY"}) {
        for (int n = 0; n < 50; ++n) {
            offerInBoth("ours");
            program_.own(selection);
            EXPECT_EQ(program_.owner(selection), program_.window());
            const auto text = "ours again " + std::to_string(n);
            offerInBoth(text);
            EXPECT_EQ(program_.text(selection), text);
        }
    }
    EXPECT_TRUE(log_.printed().empty());
}

TEST_F(X11PasteboardTest, whenAnotherProgramHasTheOneSelection_theOtherIsStillOurs) {
    offerInBoth("ours");
    program_.own("PRIMARY");
    EXPECT_EQ(program_.text("CLIPBOARD"), "ours");
    EXPECT_EQ(program_.owner("PRIMARY"), program_.window());
}

TEST_F(X11PasteboardTest, whenTheUsersFieldsPasteAndCopy_itIsTheSameClipboard) {
    auto* const fields = QGuiApplication::clipboard();
    for (const auto& text : {std::string("dictated: größer"), longText(1'000'000)}) {
        offerInBoth(text);
        EXPECT_TRUE(runUntil([&] { return fields->text().toStdString() == text; }));
        EXPECT_TRUE(runUntil([&] { return fields->text(QClipboard::Selection).toStdString() == text; }));
    }
    pasteboard_->endPaste();
    fields->setText("copied");
    QProcess xclip;
    xclip.start("xclip", {"-o", "-selection", "clipboard"});
    EXPECT_TRUE(runUntil([&] { return xclip.state() == QProcess::NotRunning; }));
    EXPECT_EQ(xclip.readAllStandardOutput().toStdString(), "copied");
    offer("dictated again");
    EXPECT_TRUE(runUntil([&] { return fields->text() == "dictated again"; }));
}

TEST_F(X11PasteboardTest, whenATextIsPutThere_whatIsMarkedElsewhereStaysMarked) {
    program_.own("PRIMARY");
    offer("text");
    begin("text");
    EXPECT_EQ(program_.owner("PRIMARY"), program_.window());
    EXPECT_EQ(program_.text("CLIPBOARD"), "text");
}

TEST_F(X11PasteboardTest, whenATextIsPutThereDuringAPaste_thatPasteGetsItsOwn) {
    offer("first");
    begin("first");
    offer("second");
    EXPECT_EQ(pasteboard_->contents(), "second");
    EXPECT_EQ(program_.text(), "first");
    pasteboard_->endPaste();
    EXPECT_EQ(program_.text(), "second");
    begin("first");
    EXPECT_EQ(program_.text(), "first");
    pasteboard_->endPaste();
    EXPECT_EQ(program_.text(), "second");
}

TEST_F(X11PasteboardTest, whenNothingElseWasPutThere_theTextOfThePasteStays) {
    offer("text");
    begin("text");
    pasteboard_->endPaste();
    program_.own("CLIPBOARD");
    pasteboard_->endPaste();
    EXPECT_EQ(program_.owner("CLIPBOARD"), program_.window());
}

TEST_F(X11PasteboardTest, whenAnotherProgramHasCopiedDuringThePaste_itsTextStays) {
    offer("first");
    begin("first");
    offer("second");
    EXPECT_TRUE(pasteboard_->holds("second"));
    program_.own("CLIPBOARD");
    EXPECT_FALSE(pasteboard_->holds("second"));
    pasteboard_->endPaste();
    EXPECT_EQ(program_.owner("CLIPBOARD"), program_.window());
    offer("third");
    EXPECT_EQ(program_.text(), "third");
    EXPECT_TRUE(pasteboard_->holds("third"));
    EXPECT_FALSE(pasteboard_->holds("second"));
}

TEST_F(X11PasteboardTest, whenATextHasBeenFetched_tellsWhichAndByWhom) {
    std::mutex mutex;
    std::vector<std::pair<X11Pasteboard::Paste, unsigned long>> fetched;
    const auto told = [&] {
        const std::lock_guard lock(mutex);
        return fetched;
    };
    pasteboard_->setOnFetched([&](X11Pasteboard::Paste paste, unsigned long requestor) {
        const std::lock_guard lock(mutex);
        fetched.emplace_back(paste, requestor);
    });
    offer("no paste");
    (void)program_.text();
    const auto first = pasteboard_->beginPaste("short", From::clipboard).value();
    (void)program_.paste("TARGETS");
    EXPECT_THAT(told(), IsEmpty());
    (void)program_.paste("STRING");
    EXPECT_THAT(told(), ElementsAre(std::pair(first, program_.window())));

    const auto second = pasteboard_->beginPaste(longText(500'000), From::clipboard).value();
    program_.ask(program_.window(), "UTF8_STRING");
    EXPECT_EQ(program_.answer(program_.window()), "HERE");
    while (!program_.takePiece(program_.window()).bytes.empty()) {
        EXPECT_EQ(told().size(), 1U) << "not before the end";
    }
    EXPECT_THAT(told(), ElementsAre(_, std::pair(second, program_.window())));
    pasteboard_->setOnFetched(nullptr);
    (void)program_.text();
    EXPECT_EQ(told().size(), 2U);
}

TEST_F(X11PasteboardTest, whenThereIsNoDisplay_saysSoInTheLog) {
    pasteboard_ = std::make_unique<X11Pasteboard>(log_, ":97531", X11Pasteboard::Patience());
    offer("text");
    EXPECT_THAT(log_.printed(), Contains("[TovikVoice] Failed to put the text on the clipboard"));
    EXPECT_EQ(pasteboard_->beginPaste("text", From::clipboard), std::nullopt);
    EXPECT_FALSE(pasteboard_->holds("text"));
}

/// The desktop's clipboard manager, which keeps the text of programs that end.
class ClipboardManager : public X11PasteboardTest {
protected:
    ClipboardManager() { manager_.own("CLIPBOARD_MANAGER"); }

    /// The program ends; meanwhile the manager does its part.
    template <typename Part>
    void endProgram(const Part& part) {
        std::thread ending([this] { pasteboard_.reset(); });
        part();
        ending.join();
    }

    OtherProgram manager_;
};

TEST_F(ClipboardManager, whenTheProgramEnds_isGivenTheTextAndKeepsIt) {
    const auto text = longText(1'000'000);
    offer(text);
    std::optional<std::string> kept;
    endProgram([&] {
        const auto request = manager_.nextRequest();
        EXPECT_EQ(manager_.name(request.target), "SAVE_TARGETS");
        kept = manager_.text();
        manager_.own("CLIPBOARD");
        manager_.grant(request, "");
    });
    EXPECT_TRUE(kept == text);
    EXPECT_EQ(program_.owner("CLIPBOARD"), manager_.window());
}

TEST_F(ClipboardManager, whenItNeverAnswers_theProgramEndsAllTheSame) {
    pasteboard_ = std::make_unique<X11Pasteboard>(
        log_, "", X11Pasteboard::Patience{.manager = std::chrono::milliseconds(50)});
    offer("text");
    pasteboard_.reset();
    EXPECT_TRUE(runUntil([&] { return program_.owner("CLIPBOARD") == XCB_WINDOW_NONE; }));
    EXPECT_EQ(manager_.name(manager_.nextRequest().target), "SAVE_TARGETS");
}

TEST_F(ClipboardManager, whenSomebodyElseHasCopied_isNotAsked) {
    offer("text");
    program_.own("CLIPBOARD");
    pasteboard_.reset();
    EXPECT_EQ(program_.owner("CLIPBOARD"), program_.window());
    // Had it been asked, that request would come before this one.
    program_.ask(program_.window(), "TIMESTAMP", "CLIPBOARD_MANAGER");
    EXPECT_EQ(manager_.name(manager_.nextRequest().target), "TIMESTAMP");
}

TEST_F(X11PasteboardTest, whenTheProgramEndsAndNobodyKeepsTheText_itIsGone) {
    offer("text");
    pasteboard_.reset();
    EXPECT_TRUE(runUntil([&] { return program_.owner("CLIPBOARD") == XCB_WINDOW_NONE; }));
    EXPECT_EQ(program_.text(), std::nullopt);
}

} // namespace
