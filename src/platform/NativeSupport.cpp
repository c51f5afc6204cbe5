// SPDX-License-Identifier: MIT
#include "platform/NativeSupport.h"

#include "platform/PlatformLog.h"
#include "platform/none/NoDesktopSupport.h"
#include "platform/x11/X11Support.h"

Q_LOGGING_CATEGORY(platformLog, "brindle.platform")

std::unique_ptr<NativeSupport> NativeSupport::create()
{
    if (std::unique_ptr<NativeSupport> x11 = X11Support::open())
        return x11;
    return std::make_unique<NoDesktopSupport>();
}

void NativeSupport::requestFront(QWindow *window)
{
    Q_UNUSED(window)
}
