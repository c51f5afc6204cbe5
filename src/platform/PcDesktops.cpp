// SPDX-License-Identifier: MIT
// The choice among the desktops of PCs. A Mac has but one, chosen in mac/MacDesktop.cpp.
#include "platform/KeyboardLayout.h"
#include "platform/NativeSupport.h"
#include "platform/none/NoDesktopSupport.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Support.h"

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

KeyboardLayout *KeyboardLayout::createForDesktop(QObject *parent)
{
    if (X11KeyboardLayout::isAvailable())
        return new X11KeyboardLayout(parent);
    return new KeyboardLayout(parent);
}
