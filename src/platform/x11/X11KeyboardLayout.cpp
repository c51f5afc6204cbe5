// SPDX-License-Identifier: MIT
#include "platform/x11/X11KeyboardLayout.h"

#include "platform/PlatformLog.h"
#include "platform/x11/KeyboardMapEvents.h"
#include "platform/x11/QtX11.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <xkbcommon/xkbcommon-x11.h>

namespace
{

/// A new compiled map of the core keyboard; null when the server doesn't tell.
xkb_keymap *readKeymap(xcb_connection_t *connection)
{
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(connection);
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref);
    if (device < 0 || !context)
        return nullptr;
    return xkb_x11_keymap_new_from_device(context.get(), connection, device,
                                          XKB_KEYMAP_COMPILE_NO_FLAGS);
}

/// The layout group that an event's state field carries.
int groupOfState(quint32 state)
{
    return static_cast<int>((state >> 13) & 3);
}

} // namespace

bool X11KeyboardLayout::isAvailable()
{
    return QtX11::connection() != nullptr;
}

X11KeyboardLayout::X11KeyboardLayout(QObject *application)
    : KeyboardLayout(application)
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11KeyboardLayout::~X11KeyboardLayout() = default;

PhysicalKey X11KeyboardLayout::physicalKey(const QKeyEvent &event)
{
    if (!m_reader) {
        xcb_connection_t *connection = QtX11::connection();
        xkb_keymap *keymap = connection ? readKeymap(connection) : nullptr;
        if (!keymap)
            qCDebug(platformLog) << "the X server does not tell its keyboard layout";
        m_reader.emplace(keymap);
    }
    return m_reader->physicalKey(event.nativeScanCode(), groupOfState(event.nativeModifiers()));
}

bool X11KeyboardLayout::nativeEventFilter(const QByteArray &eventType, void *message,
                                          qintptr *result)
{
    Q_UNUSED(eventType)
    Q_UNUSED(result)
    xcb_connection_t *connection = QtX11::connection();
    if (connection && KeyboardMapEvents::isChange(connection, message))
        m_reader.reset();
    return false;
}
