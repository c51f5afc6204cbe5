// SPDX-License-Identifier: MIT
#include "platform/none/NoDesktopSupport.h"

#include "platform/PlatformLog.h"

#include <QGuiApplication>

bool NoDesktopSupport::areWeFrontProcess()
{
    // No desktop names the one in front; the toolkit knows at least whether it has the keyboard.
    return qGuiApp && QGuiApplication::applicationState() == Qt::ApplicationActive;
}

void NoDesktopSupport::captureFrontProcessForRestore() { }

void NoDesktopSupport::restoreCapturedProcess() { }

void NoDesktopSupport::setActivationHotkey(unsigned int virtualKey)
{
    qCDebug(platformLog) << "no display: hotkey" << virtualKey << "is not registered";
}
