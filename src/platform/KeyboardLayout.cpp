// SPDX-License-Identifier: MIT
#include "platform/KeyboardLayout.h"

#include "platform/wayland/WaylandKeyboardLayout.h"
#include "platform/x11/X11KeyboardLayout.h"

#include <QCoreApplication>
#include <QKeyEvent>

KeyboardLayout *KeyboardLayout::ofApplication()
{
    QCoreApplication *application = QCoreApplication::instance();
    if (!application)
        return nullptr;
    if (auto *layout
        = application->findChild<KeyboardLayout *>(QString(), Qt::FindDirectChildrenOnly))
        return layout;
    if (X11KeyboardLayout::isAvailable())
        return new X11KeyboardLayout(application);
    if (WaylandKeyboardLayout::isAvailable())
        return new WaylandKeyboardLayout(application);
    return new KeyboardLayout(application);
}

PhysicalKey KeyboardLayout::physicalKey(const QKeyEvent &event)
{
    return PhysicalKey{event.nativeScanCode(), {}, 0};
}
