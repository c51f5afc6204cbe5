// SPDX-License-Identifier: MIT
#include "platform/x11/LateMapping.h"

#include "platform/PlatformLog.h"
#include "platform/x11/QtX11.h"
#include "platform/x11/XcbNotice.h"

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>

#include <xcb/xcb.h>

namespace
{

bool isHiddenWindowOfOurs(xcb_window_t window)
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [window](const QWindow *ours) {
        return ours->handle() && !ours->isVisible() && ours->winId() == window;
    });
}

/// The way that window managers expect, also of a window that isn't on the screen.
void withdraw(xcb_window_t window)
{
    xcb_connection_t *connection = QtX11::connection();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_unmap_window(connection, window);
    xcb_unmap_notify_event_t notice{};
    notice.response_type = XCB_UNMAP_NOTIFY;
    notice.event = root;
    notice.window = window;
    sendNotice(connection, root,
               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT, notice);
}

} // namespace

LateMapping::LateMapping()
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool LateMapping::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result)
{
    Q_UNUSED(eventType)
    Q_UNUSED(result)
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != XCB_MAP_NOTIFY)
        return false;
    const auto *mapping = static_cast<const xcb_map_notify_event_t *>(message);
    if (isHiddenWindowOfOurs(mapping->window)) {
        qCDebug(platformLog) << "window" << mapping->window << "came up late; it is taken away";
        withdraw(mapping->window);
    }
    return false;
}
