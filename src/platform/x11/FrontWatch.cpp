// SPDX-License-Identifier: MIT
#include "platform/x11/FrontWatch.h"

#include "platform/x11/FrontWindow.h"
#include "platform/x11/QtX11.h"
#include "platform/x11/XcbReply.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <unistd.h>

namespace
{

bool isWindowOfToolkit(quint32 window)
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [window](const QWindow *ours) {
        return ours->handle() && ours->winId() == window; // without a handle, asking makes one
    });
}

/// With no window in front at all, our own state decides: a box that opens or closes. A box that
/// the user has left behind on another workspace doesn't count, and as long as we are still
/// \a coming it proves nothing: other programs may be changing places.
bool toolkitSaysActive(FrontWindow &front, bool coming)
{
    if (QGuiApplication::applicationState() == Qt::ApplicationActive)
        return true;
    if (coming)
        return false;
    const QWidget *box = QApplication::activeModalWidget();
    const QWindow *window = box ? box->window()->windowHandle() : nullptr;
    return box
        && !(window && window->handle()
             && front.isOnAnotherWorkspace(static_cast<quint32>(window->winId())));
}

bool areWeInFrontNow(FrontWindow &front, bool coming)
{
    const xcb_window_t window = front.active();
    return window != FrontWindow::noWindow ? FrontWatch::isOurs(front, window)
                                           : toolkitSaysActive(front, coming);
}

} // namespace

FrontWatch::FrontWatch(FrontWindow &front)
    : SettlingFront([this, &front] { return areWeInFrontNow(front, isComing()); })
    , m_front(front)
{
    listen();
    QCoreApplication::instance()->installNativeEventFilter(this);
}

void FrontWatch::listen()
{
    // The toolkit listens to its own choice of events at the root window; ours is added to it.
    xcb_connection_t *connection = QtX11::connection();
    const auto cookie = xcb_get_window_attributes(connection, m_front.root());
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, cookie, nullptr));
    const quint32 events
        = (attributes ? attributes->your_event_mask : 0U) | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, m_front.root(), XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection);
}

bool FrontWatch::isOurs(FrontWindow &front, quint32 window)
{
    const auto self = static_cast<quint32>(getpid());
    // A file dialog can be another process's window; it names the window that it belongs to.
    constexpr int longestChain = 8;
    for (int i = 0; i < longestChain && window != FrontWindow::noWindow; ++i) {
        if (isWindowOfToolkit(window) || front.processOf(window) == self)
            return true;
        window = front.ownerOf(window);
    }
    return false;
}

bool FrontWatch::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result)
{
    Q_UNUSED(eventType)
    Q_UNUSED(result)
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto *change = static_cast<const xcb_property_notify_event_t *>(message);
    if (change->window == m_front.root() && change->atom == m_front.activeWindowAtom())
        frontChanged();
    return false;
}
