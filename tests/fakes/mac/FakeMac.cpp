// SPDX-License-Identifier: MIT
#include "fakes/mac/FakeMac.h"

#include <algorithm>

namespace
{

FakeMac *&living()
{
    static FakeMac *mac = nullptr;
    return mac;
}

} // namespace

bool OpaqueEventHandlerRef::wants(const OpaqueEventRef &event) const
{
    return std::any_of(types.begin(), types.end(), [&event](const EventTypeSpec &type) {
        return type.eventClass == event.eventClass && type.eventKind == event.eventKind;
    });
}

FakeMac::FakeMac()
{
    if (living())
        qFatal("there is another FakeMac already");
    living() = this;
}

FakeMac::~FakeMac()
{
    living() = nullptr;
}

FakeMac &FakeMac::current()
{
    if (!living())
        qFatal("a function of the Mac was called, and there is no FakeMac");
    return *living();
}

int FakeMac::pressKey(UInt32 keyCode, UInt32 modifiers)
{
    return sendKey(kEventHotKeyPressed, keyCode, modifiers);
}

int FakeMac::releaseKey(UInt32 keyCode, UInt32 modifiers)
{
    return sendKey(kEventHotKeyReleased, keyCode, modifiers);
}

int FakeMac::sendKey(UInt32 eventKind, UInt32 keyCode, UInt32 modifiers)
{
    std::vector<EventHotKeyID> ids;
    for (const OpaqueEventHotKeyRef *hotKey : registeredHotKeys()) {
        if (hotKey->keyCode == keyCode && hotKey->modifiers == modifiers)
            ids.push_back(hotKey->id);
    }
    for (EventHotKeyID id : ids)
        send(makeHotKeyEvent(eventKind, id));
    return static_cast<int>(ids.size());
}

OSStatus FakeMac::send(EventRef event)
{
    std::vector<const OpaqueEventHandlerRef *> receivers = installedHandlers();
    std::reverse(receivers.begin(), receivers.end());
    for (const OpaqueEventHandlerRef *handler : receivers) {
        if (handler->target != &dispatcherTarget || !handler->wants(*event))
            continue;
        const OSStatus status = handler->callback(&call, event, handler->userData);
        if (status != eventNotHandledErr)
            return status;
    }
    return eventNotHandledErr;
}

OSStatus FakeMac::callHandler(EventHandlerCallRef callRef, EventRef event)
{
    const OpaqueEventHandlerRef *handler = installedHandlers().back();
    return handler->callback(callRef, event, handler->userData);
}

EventRef FakeMac::makeEvent(OSType eventClass, UInt32 eventKind)
{
    events.push_back(std::make_unique<OpaqueEventRef>());
    events.back()->eventClass = eventClass;
    events.back()->eventKind = eventKind;
    return events.back().get();
}

EventRef FakeMac::makeHotKeyEvent(UInt32 eventKind, EventHotKeyID id)
{
    EventRef event = makeEvent(kEventClassKeyboard, eventKind);
    SetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id);
    return event;
}

std::vector<const OpaqueEventHotKeyRef *> FakeMac::registeredHotKeys() const
{
    std::vector<const OpaqueEventHotKeyRef *> registered;
    for (const auto &hotKey : hotKeys) {
        if (hotKey->registered)
            registered.push_back(hotKey.get());
    }
    return registered;
}

std::vector<const OpaqueEventHandlerRef *> FakeMac::installedHandlers() const
{
    std::vector<const OpaqueEventHandlerRef *> installed;
    for (const auto &handler : handlers) {
        if (!handler->removed)
            installed.push_back(handler.get());
    }
    return installed;
}

const __CFDictionary *FakeMac::livingDictionary() const
{
    std::vector<const __CFDictionary *> alive;
    for (const auto &dictionary : dictionaries) {
        if (!dictionary->released)
            alive.push_back(dictionary.get());
    }
    return alive.size() == 1 ? alive.front() : nullptr;
}
