// SPDX-License-Identifier: MIT
// On a Mac there is no choice among desktops; PcDesktops.cpp makes it elsewhere.
#include "platform/NativeSupport.h"
#include "platform/mac/MacKeyboardLayout.h"
#include "platform/mac/MacSupport.h"

std::unique_ptr<NativeSupport> NativeSupport::create()
{
    return std::make_unique<MacSupport>();
}

bool NativeSupport::hasDisplay()
{
    return true;
}

bool NativeSupport::tellsWindowPlaces()
{
    return true;
}

bool NativeSupport::keepsToolWindowsInFront()
{
    return true;
}

KeyboardLayout *KeyboardLayout::createForDesktop(QObject *parent)
{
    return new MacKeyboardLayout(parent);
}
