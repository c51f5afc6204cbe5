// SPDX-License-Identifier: MIT
#include "platform/NativeSupport.h"

#include "platform/PlatformLog.h"

Q_LOGGING_CATEGORY(platformLog, "brindle.platform")

void NativeSupport::requestFront(QWindow *window)
{
    Q_UNUSED(window)
}

void NativeSupport::setActivationToken(const QByteArray &token)
{
    Q_UNUSED(token)
}

void NativeSupport::settleFront() { }

QString NativeSupport::getActivationHotkeyNotice()
{
    return {};
}
