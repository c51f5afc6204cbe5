// SPDX-License-Identifier: MIT
#include "platform/x11/X11Hotkey.h"

#include "platform/x11/HotkeyGrab.h"
#include "platform/x11/KeyboardMapEvents.h"
#include "platform/x11/QtX11.h"

#include <QCoreApplication>

namespace
{
constexpr int pressStaysFreshMs = 1000;
// A new layout comes as a burst of events, during which the map isn't complete.
constexpr int renewalDelayMs = 50;
} // namespace

X11Hotkey::X11Hotkey(quint32 root)
    : m_root(root)
{
    m_renewal.setSingleShot(true);
    m_renewal.setInterval(renewalDelayMs);
    connect(&m_renewal, &QTimer::timeout, this, &X11Hotkey::renew);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11Hotkey::~X11Hotkey() = default;

void X11Hotkey::setKey(quint32 symbol)
{
    m_grab.reset(); // first, or the same key would be refused to ourselves
    if (xcb_connection_t *connection = QtX11::connection())
        m_grab = std::make_unique<HotkeyGrab>(connection, m_root, symbol);
}

void X11Hotkey::renew()
{
    if (m_grab)
        setKey(m_grab->symbol());
}

std::optional<quint32> X11Hotkey::freshPressTime() const
{
    return m_pressIsFresh.hasExpired() ? std::nullopt : std::optional(m_pressTime);
}

bool X11Hotkey::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result)
{
    Q_UNUSED(eventType)
    Q_UNUSED(result)
    switch (static_cast<const xcb_generic_event_t *>(message)->response_type & 0x7f) {
    case XCB_KEY_PRESS:
        return keyPressed(message);
    case XCB_KEY_RELEASE:
        keyReleased(message);
        return false;
    default:
        if (xcb_connection_t *connection = QtX11::connection();
            connection && KeyboardMapEvents::isChange(connection, message))
            m_renewal.start();
        return false;
    }
}

bool X11Hotkey::keyPressed(const void *message)
{
    const auto *press = static_cast<const xcb_key_press_event_t *>(message);
    if (!m_grab || !m_grab->matches(press->detail, press->state))
        return false;
    if (m_presses.press(press->detail, press->time)) {
        m_pressTime = press->time;
        m_pressIsFresh.setRemainingTime(pressStaysFreshMs);
        // Queued: the toolkit notes the event's time only after the filters have seen it.
        QMetaObject::invokeMethod(this, &X11Hotkey::pressed, Qt::QueuedConnection);
    }
    // At the root window it means nothing to the toolkit; in a window of ours it would be typed.
    return press->event != m_root;
}

void X11Hotkey::keyReleased(const void *message)
{
    const auto *release = static_cast<const xcb_key_release_event_t *>(message);
    m_presses.release(release->detail, release->time);
}
