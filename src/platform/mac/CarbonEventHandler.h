// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mac/CarbonHeaders.h"

#include <QtGlobal>

class CarbonEvent;

/// Receives events of the platform. The platform's handler is never removed, so that an object
/// whose handler was asked for has to live as long as events come.
class CarbonEventHandler
{
    Q_DISABLE_COPY_MOVE(CarbonEventHandler)

public:
    CarbonEventHandler() = default;
    virtual ~CarbonEventHandler() = default;

    /// Whose events these are; none in this class.
    virtual EventTargetRef eventTarget() const;

    /// What becomes of \a event: here it goes on to the handler that \a call knows as the next, or
    /// counts as not handled when one of the two is missing.
    virtual OSStatus handleEvent(CarbonEvent *event, EventHandlerCallRef call);

    /// The platform's handler, installed for no event types at the first request; null when the
    /// platform refuses.
    EventHandlerRef eventHandlerRef();

private:
    EventHandlerRef m_handlerRef = nullptr;
};
