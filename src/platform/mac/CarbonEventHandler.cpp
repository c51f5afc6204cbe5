// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonEventHandler.h"

#include "platform/PlatformLog.h"
#include "platform/mac/CarbonEvent.h"

namespace
{

OSStatus handlePlatformEvent(EventHandlerCallRef call, EventRef event, void *userData)
{
    CarbonEvent wrapped(event);
    return static_cast<CarbonEventHandler *>(userData)->handleEvent(&wrapped, call);
}

/// All handlers share one entrance; the user data tells them apart.
EventHandlerUPP sharedCallback()
{
    static const EventHandlerUPP callback = NewEventHandlerUPP(&handlePlatformEvent);
    return callback;
}

} // namespace

EventTargetRef CarbonEventHandler::eventTarget() const
{
    return nullptr;
}

OSStatus CarbonEventHandler::handleEvent(CarbonEvent *event, EventHandlerCallRef call)
{
    if (!call || !event || !event->eventRef())
        return eventNotHandledErr;
    return CallNextEventHandler(call, event->eventRef());
}

EventHandlerRef CarbonEventHandler::eventHandlerRef()
{
    if (!m_handlerRef) {
        const OSStatus status
            = InstallEventHandler(eventTarget(), sharedCallback(), 0, nullptr, this, &m_handlerRef);
        if (status != noErr)
            qCDebug(platformLog) << "the Mac refused an event handler:" << status;
    }
    return m_handlerRef;
}
