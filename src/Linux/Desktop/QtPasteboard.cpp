// SPDX-FileCopyrightText: 2026 The Tovik Record authors
// SPDX-License-Identifier: MIT
#include "Linux/Desktop/QtPasteboard.h"

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <QString>
#include <QWindow>

#include <xcb/xcb.h>

#include <cstdlib>
#include <utility>

namespace tovik {

namespace {

constexpr int kMostAttempts = 5;

void setText(const QString& text) {
    auto* const clipboard = QGuiApplication::clipboard();
    clipboard->setText(text, QClipboard::Clipboard);
    if (clipboard->supportsSelection()) {
        clipboard->setText(text, QClipboard::Selection);
    }
}

} // namespace

/// Tells Qt the server's time.
///
/// An X server takes a selection from its owner only at a later time than it was got. Qt goes by the time of
/// the last event in one of its windows, which may be long past when somebody else copies. So at each copy a
/// window of ours, which is never shown, gets an event. Should the other program have copied just now, so
/// that Qt has not heard of it, the server refuses, and the text is set again once it has.
class QtPasteboard::ServerTime : public QAbstractNativeEventFilter {
public:
    explicit ServerTime(xcb_connection_t* connection)
        : connection_(connection),
          clipboard_(atomNamed("CLIPBOARD")) {
        window_.setFlag(Qt::BypassWindowManagerHint);
        window_.create();
        qGuiApp->installNativeEventFilter(this);
        QObject::connect(QGuiApplication::clipboard(), &QClipboard::changed, &window_,
                         [this] { askForEvent(); });
    }
    ServerTime(const ServerTime&) = delete;
    ServerTime& operator=(const ServerTime&) = delete;
    ~ServerTime() override {
        if (qGuiApp != nullptr) {
            qGuiApp->removeNativeEventFilter(this);
        }
    }

    /// The text has just been set.
    void ensure(const QString& text) {
        refused_ = text;
        attempts_ = 0;
        setAgainWhereRefused();
    }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) override {
        const auto* const event = static_cast<const xcb_generic_event_t*>(message);
        constexpr unsigned kSentBit = 0x80;
        if (attempts_ > 0 && eventType == "xcb_generic_event_t" &&
            (event->response_type & ~kSentBit) == XCB_PROPERTY_NOTIFY &&
            reinterpret_cast<const xcb_property_notify_event_t*>(event)->window == window_.winId()) {
            // When Qt has seen the event as well.
            QMetaObject::invokeMethod(
                &window_, [this] { setAgain(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    struct Free {
        void operator()(void* reply) const { std::free(reply); }
    };
    template <typename Reply>
    using Owned = std::unique_ptr<Reply, Free>;

    [[nodiscard]] xcb_atom_t atomNamed(const QByteArray& name) const {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.constData());
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    /// Whether a window of this program's has it.
    [[nodiscard]] bool isOurs(xcb_atom_t selection) const {
        const auto cookie = xcb_get_selection_owner(connection_, selection);
        const Owned<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(connection_, cookie, nullptr));
        const auto* const setup = xcb_get_setup(connection_);
        return reply && reply->owner != XCB_NONE &&
               (reply->owner & ~setup->resource_id_mask) == setup->resource_id_base;
    }

    void askForEvent() {
        xcb_change_property(connection_, XCB_PROP_MODE_APPEND, static_cast<xcb_window_t>(window_.winId()),
                            XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
        xcb_flush(connection_);
    }

    void setAgainWhereRefused() {
        if ((isOurs(clipboard_) && isOurs(XCB_ATOM_PRIMARY)) || attempts_ == kMostAttempts) {
            attempts_ = 0;
            refused_.clear();
            return;
        }
        ++attempts_;
        askForEvent();
    }

    void setAgain() {
        if (attempts_ > 0) {
            setText(refused_);
            setAgainWhereRefused();
        }
    }

    xcb_connection_t* const connection_;
    const xcb_atom_t clipboard_;
    QWindow window_;
    QString refused_;
    int attempts_ = 0;
};

QtPasteboard::QtPasteboard() {
    if (const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
        serverTime_ = std::make_unique<ServerTime>(x11->connection());
    }
}

QtPasteboard::~QtPasteboard() = default;

void QtPasteboard::replaceContents(std::string_view text) {
    const auto content = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    setText(content);
    if (serverTime_) {
        serverTime_->ensure(content);
    }
}

} // namespace tovik
