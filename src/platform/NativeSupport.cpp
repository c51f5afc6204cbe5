// SPDX-License-Identifier: MIT
#include "platform/NativeSupport.h"

#include "platform/PlatformLog.h"
#include "platform/none/NoDesktopSupport.h"
#include "platform/wayland/WaylandSession.h"
#include "platform/wayland/WaylandSupport.h"
#include "platform/x11/X11Support.h"

Q_LOGGING_CATEGORY(platformLog, "brindle.platform")

namespace
{
constexpr const char *toolkitPlatform = "QT_QPA_PLATFORM";
}

std::unique_ptr<NativeSupport> NativeSupport::create()
{
    // Unless the user has chosen, the toolkit goes the way that this finds.
    const bool chosen = qEnvironmentVariableIsSet(toolkitPlatform);
    if (!chosen || qgetenv(toolkitPlatform).startsWith("wayland")) {
        if (std::unique_ptr<NativeSupport> wayland = WaylandSupport::open()) {
            if (!chosen)
                qputenv(toolkitPlatform, "wayland;xcb");
            return wayland;
        }
    }
    if (!chosen)
        qputenv(toolkitPlatform, "xcb");
    if (std::unique_ptr<NativeSupport> x11 = X11Support::open())
        return x11;
    return std::make_unique<NoDesktopSupport>();
}

bool NativeSupport::hasDisplay()
{
    const QByteArray platform = qgetenv(toolkitPlatform);
    if (platform.startsWith("wayland") && WaylandSession::isThere())
        return true;
    if (!platform.isEmpty() && !platform.contains("xcb") && !platform.startsWith("wayland"))
        return true; // offscreen and the like: the toolkit's own business
    return X11Support::open() != nullptr;
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
