// SPDX-License-Identifier: MIT
#include "platform/KeyboardLayout.h"

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
    return createForDesktop(application);
}

PhysicalKey KeyboardLayout::physicalKey(const QKeyEvent &event)
{
    return PhysicalKey{event.nativeScanCode(), {}, 0};
}
