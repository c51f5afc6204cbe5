// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonEvent.h"

static_assert(typeEventHotKeyID == 0x686B6964, "'hkid'");
static_assert(kEventParamDirectObject == 0x2D2D2D2D, "'----'");

CarbonEvent::CarbonEvent(EventRef event)
    : m_event(event)
{
    if (m_event)
        RetainEvent(m_event);
}

CarbonEvent::~CarbonEvent()
{
    if (m_event)
        ReleaseEvent(m_event);
}

OSType CarbonEvent::eventClass() const
{
    return m_event ? GetEventClass(m_event) : 0;
}

UInt32 CarbonEvent::eventKind() const
{
    return m_event ? GetEventKind(m_event) : 0;
}

OSStatus CarbonEvent::getParameter(EventParamName name, EventParamType type, ByteCount size,
                                   void *data) const
{
    if (!m_event)
        return eventParameterNotFoundErr;
    ByteCount actualSize = 0;
    const OSStatus status
        = GetEventParameter(m_event, name, type, nullptr, size, &actualSize, data);
    return status == noErr && actualSize != size ? eventParameterNotFoundErr : status;
}

OSStatus CarbonEvent::setParameter(EventParamName name, EventParamType type, ByteCount size,
                                   const void *data)
{
    return m_event ? SetEventParameter(m_event, name, type, size, data) : eventParameterNotFoundErr;
}

std::optional<EventHotKeyID> CarbonEvent::hotKeyID() const
{
    EventHotKeyID id{};
    static_assert(sizeof id == 8, "the size that the platform gives the parameter");
    if (getParameter(kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id) != noErr)
        return {};
    return id;
}
