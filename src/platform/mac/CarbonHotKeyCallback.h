// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// What a hot key calls when it fires.
class CarbonHotKeyCallback
{
    Q_DISABLE_COPY_MOVE(CarbonHotKeyCallback)

public:
    CarbonHotKeyCallback() = default;
    virtual ~CarbonHotKeyCallback() = default;

    /// \a handler is the CarbonEventHandler that got the event.
    virtual void execute(void *handler) = 0;
};
