// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mac/CarbonHeaders.h"

#include <QtGlobal>
#include <optional>

/// One event of the platform, kept alive as long as this object.
class CarbonEvent
{
    Q_DISABLE_COPY_MOVE(CarbonEvent)

public:
    /// A null \a event is allowed; such an object has class and kind 0 and no parameters.
    explicit CarbonEvent(EventRef event);
    ~CarbonEvent();

    EventRef eventRef() const { return m_event; }
    OSType eventClass() const;
    UInt32 eventKind() const;

    /// Copies the parameter \a name, of exactly \a size bytes as \a type, into \a data.
    OSStatus getParameter(EventParamName name, EventParamType type, ByteCount size,
                          void *data) const;
    /// Gives the event the parameter \a name of \a type: the \a size bytes at \a data.
    OSStatus setParameter(EventParamName name, EventParamType type, ByteCount size,
                          const void *data);

    /// Which hot key the event is about; nothing when it doesn't say.
    std::optional<EventHotKeyID> hotKeyID() const;

private:
    EventRef m_event;
};
