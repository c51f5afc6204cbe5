// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mac/CarbonHeaders.h"

class CarbonEventHandler;
class CarbonHotKeyCallback;

/// One registered hot key: what it is called, whom it calls, and when.
class CarbonHotKey
{
public:
    /// Fires on the press when \a onKeyDown, else on the release. \a callback is not owned.
    CarbonHotKey(EventHotKeyID id, CarbonHotKeyCallback *callback, bool onKeyDown);

    bool matchesHotKeyID(EventHotKeyID id) const;
    bool isOnKeyDown() const { return m_onKeyDown; }

    /// Calls the callback for \a handler. No exception may get into the platform's event loop: one
    /// that the callback throws ends here, with a line on standard output and false as the result.
    /// The callback may unregister this very hot key.
    bool sendAction(CarbonEventHandler *handler);

private:
    EventHotKeyID m_id;
    CarbonHotKeyCallback *m_callback;
    bool m_onKeyDown;
};
