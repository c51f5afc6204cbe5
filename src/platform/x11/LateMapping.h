// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>

/// Takes a window away again that the window manager put on the screen after it had been hidden. A
/// busy manager can meet the wish to hide a window before it is done with showing it, and forget it
/// then: the window would stay on the screen with nobody behind it.
class LateMapping : private QAbstractNativeEventFilter
{
public:
    LateMapping();

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
};
