// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
//
// The owner's side of selections, after section 2 of the Inter-Client Communication Conventions Manual. On
// XCB, which, unlike Xlib, lets several threads talk to the server and hands errors to whom they concern.
#include "Linux/X11/X11Pasteboard.h"

#include "Linux/X11/X11Connection.h"
#include "Platform/Posix.h"
#include "Platform/SystemLog.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <utility>
#include <vector>

namespace tovik {
namespace {

using SteadyClock = std::chrono::steady_clock;
using Bytes = std::shared_ptr<const std::string>;
template <typename Reply>
using Owned = X11Handle<Reply, std::free>;

/// What fits into a request of a server without the extension for bigger ones. More goes piece by piece, also
/// to keep no other program waiting for long.
constexpr std::size_t kLongestPiece = 256000;
constexpr int kMostAttempts = 5;
constexpr std::size_t kMostContents = 5;

struct Atoms {
    explicit Atoms(xcb_connection_t* connection);

    xcb_atom_t clipboard;
    xcb_atom_t targets;
    xcb_atom_t timestamp;
    xcb_atom_t multiple;
    xcb_atom_t atomPair;
    xcb_atom_t utf8String;
    xcb_atom_t utf8Plain;
    xcb_atom_t plain;
    xcb_atom_t text;
    xcb_atom_t compoundText;
    xcb_atom_t increments;
    xcb_atom_t clipboardManager;
    xcb_atom_t saveTargets;
    xcb_atom_t null;
    /// A property of our window.
    xcb_atom_t ownProperty;
};

Atoms::Atoms(xcb_connection_t* connection) {
    const std::pair<xcb_atom_t*, std::string_view> names[] = {
        {&clipboard, "CLIPBOARD"},
        {&targets, "TARGETS"},
        {&timestamp, "TIMESTAMP"},
        {&multiple, "MULTIPLE"},
        {&atomPair, "ATOM_PAIR"},
        {&utf8String, "UTF8_STRING"},
        {&utf8Plain, "text/plain;charset=utf-8"},
        {&plain, "text/plain"},
        {&text, "TEXT"},
        {&compoundText, "COMPOUND_TEXT"},
        {&increments, "INCR"},
        {&clipboardManager, "CLIPBOARD_MANAGER"},
        {&saveTargets, "SAVE_TARGETS"},
        {&null, "NULL"},
        {&ownProperty, "TOVIK_RECORD_SELECTION"},
    };
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const auto& [atom, name] : names) {
        cookies.push_back(
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    }
    auto cookie = cookies.begin();
    for (const auto& [atom, name] : names) {
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, *cookie++, nullptr));
        *atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
}

/// Nothing when the text has other characters.
std::optional<std::string> asLatin1(std::string_view utf8) {
    constexpr unsigned char kFirstOfTwo = 0xC2;
    std::string latin1;
    for (std::size_t at = 0; at < utf8.size(); ++at) {
        const auto byte = static_cast<unsigned char>(utf8[at]);
        if (byte < 0x80) {
            latin1 += utf8[at];
            continue;
        }
        const auto next = at + 1 < utf8.size() ? static_cast<unsigned char>(utf8[at + 1]) : 0;
        if ((byte != kFirstOfTwo && byte != kFirstOfTwo + 1) || (next & 0xC0) != 0x80) {
            return std::nullopt;
        }
        latin1 += static_cast<char>(byte == kFirstOfTwo ? next : next + 0x40);
        ++at;
    }
    return latin1;
}

/// Latin-1 needs no announcement in there; anything else is announced as UTF-8.
std::string asCompoundText(const std::string& utf8) {
    const auto latin1 = asLatin1(utf8);
    return latin1 ? *latin1 : "\x1b%G" + utf8 + "\x1b%@";
}

/// The server's time is in milliseconds and begins anew every 49 days.
bool isEarlier(xcb_timestamp_t time, xcb_timestamp_t other) {
    return static_cast<std::int32_t>(time - other) < 0;
}

} // namespace

class X11Pasteboard::Owner {
public:
    using Connection = X11Handle<xcb_connection_t, xcb_disconnect>;

    Owner(Connection connection, xcb_screen_t* screen, UnixFd wakeUp, Patience patience);
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner();

    struct Order {
        std::string text;
        Paste paste;
        From from;
    };

    /// Returns when the selections are ours and answered with the text; false when they could not be got.
    bool offer(Order order);

    /// On any thread.
    [[nodiscard]] bool ownsClipboard();

    void setOnFetched(std::function<void(Paste paste, unsigned long requestor)> onFetched);

private:
    struct Content {
        xcb_timestamp_t since = XCB_CURRENT_TIME;
        Bytes text;
        Paste paste = 0;
    };
    /// What a selection that is ours holds and held, newest first: who pressed a paste key before a change,
    /// and is slow to ask, gets what was there then.
    using Holding = std::deque<Content>;
    /// A text on its way piece by piece: the next is sent whenever the program has taken the last away.
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        Bytes bytes;
        Paste paste;
        std::size_t sent = 0;
        SteadyClock::time_point deadline;
    };
    struct Converted {
        xcb_atom_t type;
        Bytes bytes;
    };

    void run();
    void carryOutOrder();
    [[nodiscard]] bool isEnding();
    void wake();

    /// Does what others ask until something else has to be done, or the time has come.
    void serve(SteadyClock::time_point latest = SteadyClock::time_point::max());
    void handleEvents();
    void handle(const xcb_generic_event_t& event);
    [[nodiscard]] std::optional<xcb_timestamp_t> serverTime();
    [[nodiscard]] bool isOwner(xcb_atom_t selection);
    bool take(std::vector<xcb_atom_t> selections, Content content);
    bool takeNow(xcb_atom_t selection, const Content& content);
    void noteLoss(xcb_atom_t selection);

    void answer(const xcb_selection_request_event_t& request);
    [[nodiscard]] const Content* contentAt(xcb_atom_t selection, xcb_timestamp_t time) const;
    bool convert(const Content& content, xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool convertSeveral(const Content& content, xcb_window_t requestor, xcb_atom_t property);
    [[nodiscard]] std::optional<Converted> convertText(const Bytes& text, xcb_atom_t target) const;
    void setNumbers(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                    std::span<const std::uint32_t> numbers);

    void beginTransfer(xcb_window_t requestor, xcb_atom_t property, const Converted& converted, Paste paste);
    void continueTransfer(xcb_window_t requestor, xcb_atom_t property);
    void endTransfers(const std::function<bool(const Transfer&)>& which);
    void listenTo(xcb_window_t requestor, bool isListening);

    void tellFetched(Paste paste, xcb_window_t requestor);
    void giveToManager();

    const Connection connection_;
    const Atoms atoms_;
    const xcb_window_t window_;
    const Patience patience_;
    const UnixFd wakeUp_;

    // Of the thread.
    std::map<xcb_atom_t, Holding> holdings_;
    std::list<Transfer> transfers_;
    std::optional<xcb_timestamp_t> timeOfOwnProperty_;
    bool isManagerDone_ = false;

    std::mutex mutex_;
    std::condition_variable settled_;
    std::optional<Order> order_;
    bool isOrderDone_ = false;
    bool isEnding_ = false;
    bool isBroken_ = false;
    std::mutex fetchedMutex_;
    std::function<void(Paste paste, unsigned long requestor)> onFetched_;
    std::thread thread_;
};

X11Pasteboard::Owner::Owner(Connection connection, xcb_screen_t* screen, UnixFd wakeUp, Patience patience)
    : connection_(std::move(connection)),
      atoms_(connection_.get()),
      window_(xcb_generate_id(connection_.get())),
      patience_(patience),
      wakeUp_(std::move(wakeUp)) {
    const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window_, screen->root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, screen->root_visual,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    thread_ = std::thread([this] { run(); });
}

X11Pasteboard::Owner::~Owner() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake();
    thread_.join();
}

void X11Pasteboard::Owner::setOnFetched(std::function<void(Paste paste, unsigned long requestor)> onFetched) {
    const std::lock_guard lock(fetchedMutex_);
    onFetched_ = std::move(onFetched);
}

bool X11Pasteboard::Owner::offer(Order order) {
    std::unique_lock lock(mutex_);
    isOrderDone_ = false;
    order_ = std::move(order);
    wake();
    settled_.wait(lock, [this] { return !order_ || isBroken_; });
    return isOrderDone_;
}

bool X11Pasteboard::Owner::ownsClipboard() {
    const bool isOurs = isOwner(atoms_.clipboard);
    wake(); // for events that came in along with the answer: poll would not tell of them
    return isOurs;
}

void X11Pasteboard::Owner::run() {
    while (xcb_connection_has_error(connection_.get()) == 0 && !isEnding()) {
        carryOutOrder();
        serve();
    }
    giveToManager();
    const std::lock_guard lock(mutex_);
    isBroken_ = true;
    settled_.notify_all();
}

bool X11Pasteboard::Owner::isEnding() {
    const std::lock_guard lock(mutex_);
    return isEnding_;
}

void X11Pasteboard::Owner::carryOutOrder() {
    std::unique_lock lock(mutex_);
    if (!order_) {
        return;
    }
    const auto order = std::move(*order_);
    lock.unlock();
    std::vector<xcb_atom_t> selections{atoms_.clipboard};
    if (order.from == From::clipboardAndPrimary) {
        selections.push_back(XCB_ATOM_PRIMARY);
    }
    const bool isTaken = take(std::move(selections), {.text = std::make_shared<const std::string>(order.text),
                                                      .paste = order.paste});
    lock.lock();
    order_.reset();
    isOrderDone_ = isTaken;
    settled_.notify_all();
}

void X11Pasteboard::Owner::wake() {
    const std::uint64_t one = 1;
    (void)!::write(wakeUp_.get(), &one, sizeof one);
}

void X11Pasteboard::Owner::serve(SteadyClock::time_point latest) {
    endTransfers([now = SteadyClock::now()](const Transfer& each) { return each.deadline <= now; });
    handleEvents();
    for (const auto& each : transfers_) {
        latest = std::min(latest, each.deadline);
    }
    int milliseconds = -1;
    if (latest != SteadyClock::time_point::max()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(latest - SteadyClock::now());
        milliseconds = static_cast<int>(std::max(left, std::chrono::milliseconds(0)).count());
    }
    std::array<pollfd, 2> sources{
        {{xcb_get_file_descriptor(connection_.get()), POLLIN, 0}, {wakeUp_.get(), POLLIN, 0}}};
    ::poll(sources.data(), sources.size(), milliseconds);
    std::uint64_t count = 0;
    (void)!::read(wakeUp_.get(), &count, sizeof count);
    handleEvents();
}

/// Afterwards none is left that the connection has read already: of those, poll would not tell.
void X11Pasteboard::Owner::handleEvents() {
    Owned<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
    do {
        for (; event; event.reset(xcb_poll_for_event(connection_.get()))) {
            handle(*event);
        }
        xcb_flush(connection_.get()); // reads as well when the server is slow to take in what is written
        event.reset(xcb_poll_for_queued_event(connection_.get()));
    } while (event);
}

void X11Pasteboard::Owner::handle(const xcb_generic_event_t& event) {
    constexpr unsigned kSentByAProgram = 0x80;
    switch (event.response_type & ~kSentByAProgram) {
    case 0: {
        const auto& error = reinterpret_cast<const xcb_generic_error_t&>(event);
        if (error.error_code == XCB_WINDOW) {
            endTransfers([&](const Transfer& each) { return each.requestor == error.resource_id; });
        }
        break;
    }
    case XCB_SELECTION_REQUEST:
        answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        break;
    case XCB_SELECTION_CLEAR:
        noteLoss(reinterpret_cast<const xcb_selection_clear_event_t&>(event).selection);
        break;
    case XCB_SELECTION_NOTIFY:
        isManagerDone_ =
            isManagerDone_ ||
            reinterpret_cast<const xcb_selection_notify_event_t&>(event).selection == atoms_.clipboardManager;
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window == window_) {
            timeOfOwnProperty_ = change.time;
        } else if (change.state == XCB_PROPERTY_DELETE) {
            continueTransfer(change.window, change.atom);
        }
        break;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
        endTransfers([&](const Transfer& each) { return each.requestor == window; });
        break;
    }
    default:
        break;
    }
}

std::optional<xcb_timestamp_t> X11Pasteboard::Owner::serverTime() {
    timeOfOwnProperty_.reset();
    xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, window_, atoms_.ownProperty, XCB_ATOM_STRING,
                        8, 0, nullptr);
    xcb_flush(connection_.get());
    while (!timeOfOwnProperty_) {
        const Owned<xcb_generic_event_t> event(xcb_wait_for_event(connection_.get()));
        if (!event) {
            return std::nullopt;
        }
        handle(*event);
    }
    return timeOfOwnProperty_;
}

bool X11Pasteboard::Owner::isOwner(xcb_atom_t selection) {
    const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_.get(), xcb_get_selection_owner(connection_.get(), selection), nullptr));
    return reply && reply->owner == window_;
}

// The server takes a selection only for a later time than its owner has got it. Another program may have got
// it between the question for the time and the request, so it is tried again.
bool X11Pasteboard::Owner::take(std::vector<xcb_atom_t> selections, Content content) {
    for (int attempt = 0; attempt < kMostAttempts && !selections.empty(); ++attempt) {
        const auto time = serverTime();
        if (!time) {
            return false;
        }
        content.since = *time;
        std::erase_if(selections, [&](auto selection) { return takeNow(selection, content); });
    }
    return selections.empty();
}

bool X11Pasteboard::Owner::takeNow(xcb_atom_t selection, const Content& content) {
    xcb_set_selection_owner(connection_.get(), window_, selection, content.since);
    if (!isOwner(selection)) {
        return false;
    }
    auto& held = holdings_[selection];
    held.push_front(content);
    held.resize(std::min(held.size(), kMostContents));
    return true;
}

void X11Pasteboard::Owner::noteLoss(xcb_atom_t selection) {
    if (!isOwner(selection)) {
        holdings_.erase(selection);
    } else {
        // Old news: it has been taken back since. But what was there just before was somebody else's.
        holdings_[selection].resize(1);
    }
}

void X11Pasteboard::Owner::answer(const xcb_selection_request_event_t& request) {
    // Old programs name no property and mean the one that is called like the target.
    const auto property = request.property != XCB_ATOM_NONE ? request.property : request.target;
    const auto* const content = contentAt(request.selection, request.time);
    const bool isConverted =
        content != nullptr &&
        (request.target == atoms_.multiple ? convertSeveral(*content, request.requestor, property)
                                           : convert(*content, request.requestor, request.target, property));
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = isConverted ? property : xcb_atom_t{XCB_ATOM_NONE};
    // Events are sent in the size of the biggest.
    std::array<char, sizeof(xcb_generic_event_t)> event{};
    std::copy_n(reinterpret_cast<const char*>(&notice), sizeof notice, event.begin());
    xcb_send_event(connection_.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, event.data());
}

const X11Pasteboard::Owner::Content* X11Pasteboard::Owner::contentAt(xcb_atom_t selection,
                                                                     xcb_timestamp_t time) const {
    const auto held = holdings_.find(selection);
    if (held == holdings_.end()) {
        return nullptr;
    }
    const auto found = std::find_if(held->second.begin(), held->second.end(), [&](const Content& content) {
        return time == XCB_CURRENT_TIME || !isEarlier(time, content.since);
    });
    return found == held->second.end() ? nullptr : &*found;
}

bool X11Pasteboard::Owner::convert(const Content& content, xcb_window_t requestor, xcb_atom_t target,
                                   xcb_atom_t property) {
    if (target == atoms_.targets) {
        const std::array offered{atoms_.targets,     atoms_.timestamp,  atoms_.multiple,
                                 atoms_.saveTargets, atoms_.utf8String, atoms_.utf8Plain,
                                 atoms_.plain,       atoms_.text,       xcb_atom_t{XCB_ATOM_STRING},
                                 atoms_.compoundText};
        setNumbers(requestor, property, XCB_ATOM_ATOM, offered);
        return true;
    }
    if (target == atoms_.timestamp) {
        setNumbers(requestor, property, XCB_ATOM_INTEGER, {{content.since}});
        return true;
    }
    if (target == atoms_.saveTargets) {
        // That it is offered tells clipboard managers that the text is given to them at the end.
        setNumbers(requestor, property, atoms_.null, {});
        return true;
    }
    const auto converted = convertText(content.text, target);
    if (!converted) {
        return false;
    }
    if (converted->bytes->size() > kLongestPiece) {
        beginTransfer(requestor, property, *converted, content.paste);
        return true;
    }
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, converted->type, 8,
                        static_cast<std::uint32_t>(converted->bytes->size()), converted->bytes->data());
    tellFetched(content.paste, requestor);
    return true;
}

bool X11Pasteboard::Owner::convertSeveral(const Content& content, xcb_window_t requestor,
                                          xcb_atom_t property) {
    constexpr std::uint32_t kMostNumbers = 1000;
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_.get(),
        xcb_get_property(connection_.get(), 0, requestor, property, XCB_ATOM_ANY, 0, kMostNumbers), nullptr));
    if (!reply || reply->format != 32) {
        return false;
    }
    const std::span given(static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())),
                          static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / 4);
    std::vector<std::uint32_t> pairs(given.begin(), given.end());
    for (std::size_t at = 0; at + 1 < pairs.size(); at += 2) {
        if (!convert(content, requestor, pairs[at], pairs[at + 1])) {
            pairs[at + 1] = XCB_ATOM_NONE;
        }
    }
    setNumbers(requestor, property, atoms_.atomPair, pairs);
    return true;
}

std::optional<X11Pasteboard::Owner::Converted> X11Pasteboard::Owner::convertText(const Bytes& text,
                                                                                 xcb_atom_t target) const {
    if (target == atoms_.utf8String || target == atoms_.utf8Plain || target == atoms_.plain) {
        return Converted{target, text};
    }
    if (target == atoms_.compoundText) {
        return Converted{target, std::make_shared<const std::string>(asCompoundText(*text))};
    }
    if (target != XCB_ATOM_STRING && target != atoms_.text) {
        return std::nullopt;
    }
    if (auto latin1 = asLatin1(*text)) {
        return Converted{XCB_ATOM_STRING, std::make_shared<const std::string>(std::move(*latin1))};
    }
    // A program that knows nothing else still gets most letters right, and in terminals all of them.
    return Converted{target == atoms_.text ? atoms_.utf8String : xcb_atom_t{XCB_ATOM_STRING}, text};
}

void X11Pasteboard::Owner::setNumbers(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                                      std::span<const std::uint32_t> numbers) {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, property, type, 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
}

void X11Pasteboard::Owner::beginTransfer(xcb_window_t requestor, xcb_atom_t property,
                                         const Converted& converted, Paste paste) {
    std::erase_if(transfers_, [&](const Transfer& each) {
        return each.requestor == requestor && each.property == property;
    });
    transfers_.push_back({.requestor = requestor,
                          .property = property,
                          .type = converted.type,
                          .bytes = converted.bytes,
                          .paste = paste,
                          .deadline = SteadyClock::now() + patience_.piece});
    listenTo(requestor, true);
    setNumbers(requestor, property, atoms_.increments,
               {{static_cast<std::uint32_t>(converted.bytes->size())}});
}

void X11Pasteboard::Owner::continueTransfer(xcb_window_t requestor, xcb_atom_t property) {
    const auto found = std::find_if(transfers_.begin(), transfers_.end(), [&](const Transfer& each) {
        return each.requestor == requestor && each.property == property;
    });
    if (found == transfers_.end()) {
        return;
    }
    const auto length = std::min(kLongestPiece, found->bytes->size() - found->sent);
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, found->type, 8,
                        static_cast<std::uint32_t>(length), found->bytes->data() + found->sent);
    found->sent += length;
    found->deadline = SteadyClock::now() + patience_.piece;
    // The empty piece says that it was the last.
    if (length == 0) {
        tellFetched(found->paste, requestor);
        endTransfers([done = &*found](const Transfer& each) { return &each == done; });
    }
}

void X11Pasteboard::Owner::endTransfers(const std::function<bool(const Transfer&)>& which) {
    std::vector<xcb_window_t> requestors;
    for (auto each = transfers_.begin(); each != transfers_.end();) {
        if (which(*each)) {
            requestors.push_back(each->requestor);
            each = transfers_.erase(each);
        } else {
            ++each;
        }
    }
    for (const auto requestor : requestors) {
        if (std::none_of(transfers_.begin(), transfers_.end(),
                         [&](const Transfer& each) { return each.requestor == requestor; })) {
            listenTo(requestor, false);
        }
    }
}

void X11Pasteboard::Owner::listenTo(xcb_window_t requestor, bool isListening) {
    const std::uint32_t mask = isListening ? XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY
                                           : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(connection_.get(), requestor, XCB_CW_EVENT_MASK, &mask);
}

void X11Pasteboard::Owner::tellFetched(Paste paste, xcb_window_t requestor) {
    const std::lock_guard lock(fetchedMutex_);
    if (onFetched_ && paste != 0) {
        onFetched_(paste, requestor);
    }
}

// It asks for the text in all the forms that it keeps, and then becomes the owner.
void X11Pasteboard::Owner::giveToManager() {
    const Owned<xcb_get_selection_owner_reply_t> manager(xcb_get_selection_owner_reply(
        connection_.get(), xcb_get_selection_owner(connection_.get(), atoms_.clipboardManager), nullptr));
    if (!manager || manager->owner == XCB_WINDOW_NONE || !holdings_.contains(atoms_.clipboard)) {
        return;
    }
    const auto time = serverTime();
    if (!time) {
        return;
    }
    xcb_delete_property(connection_.get(), window_, atoms_.ownProperty); // else it says which forms to keep
    xcb_convert_selection(connection_.get(), window_, atoms_.clipboardManager, atoms_.saveTargets,
                          atoms_.ownProperty, *time);
    const auto latest = SteadyClock::now() + patience_.manager;
    while (!isManagerDone_ && SteadyClock::now() < latest &&
           xcb_connection_has_error(connection_.get()) == 0) {
        serve(latest);
    }
}

X11Pasteboard::X11Pasteboard(SystemLog& log, const std::string& displayName, Patience patience) : log_(log) {
    int number = 0;
    Owner::Connection connection(xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &number));
    UnixFd wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (xcb_connection_has_error(connection.get()) != 0 || !wakeUp) {
        return;
    }
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
    while (number-- > 0 && screen.rem > 1) {
        xcb_screen_next(&screen);
    }
    owner_ = std::make_unique<Owner>(std::move(connection), screen.data, std::move(wakeUp), patience);
}

X11Pasteboard::~X11Pasteboard() = default;

void X11Pasteboard::replaceContents(std::string_view text) {
    contents_ = text;
    if (!pasted_) {
        offer(*contents_, From::clipboard);
    }
}

std::optional<X11Pasteboard::Paste> X11Pasteboard::beginPaste(const std::string& text, From from) {
    pasted_ = text;
    ++pastes_;
    if (!offer(text, from)) {
        endPaste();
        return std::nullopt;
    }
    return pastes_;
}

void X11Pasteboard::endPaste() {
    const auto pasted = std::exchange(pasted_, std::nullopt);
    if (pasted && contents_ && pasted != contents_ && holds(*contents_)) {
        offer(*contents_, From::clipboard);
    }
}

bool X11Pasteboard::holds(const std::string& text) {
    return contents_ == text && owner_ && owner_->ownsClipboard();
}

void X11Pasteboard::setOnFetched(std::function<void(Paste paste, unsigned long requestor)> onFetched) {
    if (owner_) {
        owner_->setOnFetched(std::move(onFetched));
    }
}

bool X11Pasteboard::offer(const std::string& text, From from) {
    const bool isThere = owner_ && owner_->offer({text, pasted_ ? pastes_ : 0, from});
    if (!isThere) {
        log_.printLine("[TovikVoice] Failed to put the text on the clipboard");
    }
    return isThere;
}

} // namespace tovik
