// SPDX-License-Identifier: MIT
#include "platform/wayland/WaylandKeyboardLayout.h"

#include "platform/wayland/KeymapConnection.h"

#include <QKeyEvent>

WaylandKeyboardLayout::WaylandKeyboardLayout(QObject *application)
    : KeyboardLayout(application)
    , m_connection(KeymapConnection::open())
{
}

WaylandKeyboardLayout::~WaylandKeyboardLayout() = default;

PhysicalKey WaylandKeyboardLayout::physicalKey(const QKeyEvent &event)
{
    if (!m_connection)
        return KeyboardLayout::physicalKey(event);
    const std::optional<XkbKeymapReader> &keymap = m_connection->keymap();
    if (!keymap)
        return KeyboardLayout::physicalKey(event);
    // Which group is active only the window in front is told, in a form the toolkit keeps.
    const quint32 code = event.nativeScanCode();
    PhysicalKey key = keymap->physicalKey(code, keymap->groupOf(code, event.key()));
    key.altGr = keymap->holdsAltGr(event.nativeModifiers());
    return key;
}
