// SPDX-License-Identifier: MIT
// The choice among the desktops of PCs. A Mac has but one, chosen in mac/MacDesktop.cpp.
#include "platform/KeyboardLayout.h"
#include "platform/NativeSupport.h"
#include "platform/none/NoDesktopSupport.h"
#include "platform/wayland/WaylandKeyboardLayout.h"
#include "platform/wayland/WaylandSession.h"
#include "platform/wayland/WaylandSupport.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Support.h"

namespace
{
constexpr const char *toolkitPlatform = "QT_QPA_PLATFORM";
}

std::unique_ptr<NativeSupport> NativeSupport::create()
{
    // Unless the user has chosen, the toolkit goes the way that this finds.
    const bool chosen = !qEnvironmentVariableIsEmpty(toolkitPlatform);
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

bool NativeSupport::tellsWindowPlaces()
{
    return !WaylandSession::isTheToolkitOnIt();
}

// Most window managers put any window in front that is clicked.
bool NativeSupport::keepsToolWindowsInFront()
{
    return false;
}

KeyboardLayout *KeyboardLayout::createForDesktop(QObject *parent)
{
    if (X11KeyboardLayout::isAvailable())
        return new X11KeyboardLayout(parent);
    if (WaylandSession::isTheToolkitOnIt())
        return new WaylandKeyboardLayout(parent);
    return new KeyboardLayout(parent);
}
