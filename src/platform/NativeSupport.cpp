// SPDX-License-Identifier: MIT
#include "platform/NativeSupport.h"

#include "platform/PlatformLog.h"
#include "platform/none/NoDesktopSupport.h"
#include "platform/x11/X11Support.h"

Q_LOGGING_CATEGORY(platformLog, "brindle.platform")

namespace
{
constexpr const char *toolkitPlatform = "QT_QPA_PLATFORM";
}

std::unique_ptr<NativeSupport> NativeSupport::create()
{
    // There is no way yet to place windows or to grab a hotkey on Wayland; XWayland can do most.
    if (!qEnvironmentVariableIsSet(toolkitPlatform))
        qputenv(toolkitPlatform, "xcb;wayland");
    if (std::unique_ptr<NativeSupport> x11 = X11Support::open())
        return x11;
    return std::make_unique<NoDesktopSupport>();
}

bool NativeSupport::hasDisplay()
{
    const QByteArray platform = qgetenv(toolkitPlatform);
    if (!platform.isEmpty() && !platform.startsWith("xcb"))
        return true; // offscreen and the like: the toolkit's own business
    return X11Support::open() || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

void NativeSupport::requestFront(QWindow *window)
{
    Q_UNUSED(window)
}

void NativeSupport::setActivationToken(const QByteArray &token)
{
    Q_UNUSED(token)
}

QString NativeSupport::getActivationHotkeyNotice()
{
    return {};
}
