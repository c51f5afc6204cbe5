// SPDX-License-Identifier: MIT
#include "platform/KeyboardLayout.h"

#include <QCoreApplication>

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

PhysicalKey KeyboardLayout::physicalKey(quint32 code, quint32 nativeModifiers)
{
    Q_UNUSED(nativeModifiers)
    return PhysicalKey{code, {}, 0};
}
