// SPDX-License-Identifier: MIT
// The functions of Carbon, carried out by the FakeMac that lives.
#include "fakes/mac/FakeMac.h"

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace
{

constexpr OSStatus badParameter = -50;

} // namespace

EventHandlerUPP NewEventHandlerUPP(EventHandlerProcPtr routine)
{
    return routine;
}

EventTargetRef GetEventDispatcherTarget()
{
    return &FakeMac::current().dispatcherTarget;
}

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount typeCount,
                             const EventTypeSpec *types, void *userData, EventHandlerRef *result)
{
    FakeMac &mac = FakeMac::current();
    mac.calls.append(u"install"_s);
    if (!target || !handler)
        return badParameter;
    if (mac.installationResult != noErr)
        return mac.installationResult;
    mac.handlers.push_back(std::make_unique<OpaqueEventHandlerRef>());
    OpaqueEventHandlerRef *installed = mac.handlers.back().get();
    installed->target = target;
    installed->callback = handler;
    installed->userData = userData;
    installed->typesAtInstallation = typeCount;
    installed->types.assign(types, types + typeCount);
    if (result)
        *result = installed;
    return noErr;
}

OSStatus RemoveEventHandler(EventHandlerRef handler)
{
    FakeMac::current().calls.append(u"remove"_s);
    handler->removed = true;
    return noErr;
}

OSStatus AddEventTypesToHandler(EventHandlerRef handler, ItemCount typeCount,
                                const EventTypeSpec *types)
{
    FakeMac &mac = FakeMac::current();
    mac.calls.append(u"add types"_s);
    if (!handler)
        return badParameter;
    if (mac.addingTypesResult != noErr)
        return mac.addingTypesResult;
    handler->types.insert(handler->types.end(), types, types + typeCount);
    return noErr;
}

OSStatus CallNextEventHandler(EventHandlerCallRef call, EventRef event)
{
    FakeMac &mac = FakeMac::current();
    if (call != &mac.call)
        qFatal("the call reference is not the one that came with the event");
    mac.passedOn.push_back(event);
    return mac.nextHandlerResult;
}

EventRef RetainEvent(EventRef event)
{
    ++event->retainCount;
    return event;
}

void ReleaseEvent(EventRef event)
{
    if (event->retainCount == 1)
        qFatal("an event was released by more than those who retained it");
    --event->retainCount;
}

OSType GetEventClass(EventRef event)
{
    return event->eventClass;
}

UInt32 GetEventKind(EventRef event)
{
    return event->eventKind;
}

OSStatus GetEventParameter(EventRef event, EventParamName name, EventParamType desiredType,
                           EventParamType *actualType, ByteCount bufferSize, ByteCount *actualSize,
                           void *data)
{
    const auto found = event->parameters.find({name, desiredType});
    if (found == event->parameters.end())
        return eventParameterNotFoundErr;
    const QByteArray &value = found->second;
    const auto size = static_cast<ByteCount>(value.size());
    if (actualType)
        *actualType = desiredType;
    if (actualSize)
        *actualSize = size;
    if (data)
        std::memcpy(data, value.constData(), std::min(size, bufferSize));
    return noErr;
}

OSStatus SetEventParameter(EventRef event, EventParamName name, EventParamType type, ByteCount size,
                           const void *data)
{
    event->parameters[{name, type}]
        = QByteArray(static_cast<const char *>(data), static_cast<qsizetype>(size));
    return noErr;
}

OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID id,
                             EventTargetRef target, OptionBits options, EventHotKeyRef *result)
{
    FakeMac &mac = FakeMac::current();
    mac.calls.append(u"register %1"_s.arg(keyCode));
    mac.triedIds.push_back(id);
    if (mac.registrationResult != noErr)
        return mac.registrationResult;
    for (const OpaqueEventHotKeyRef *hotKey : mac.registeredHotKeys()) {
        if (hotKey->keyCode == keyCode && hotKey->modifiers == modifiers)
            return eventHotKeyExistsErr;
    }
    mac.hotKeys.push_back(std::make_unique<OpaqueEventHotKeyRef>(
        OpaqueEventHotKeyRef{keyCode, modifiers, id, target, options, true}));
    *result = mac.hotKeys.back().get();
    return noErr;
}

OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey)
{
    FakeMac &mac = FakeMac::current();
    const std::vector<const OpaqueEventHotKeyRef *> known = mac.registeredHotKeys();
    if (std::find(known.begin(), known.end(), hotKey) == known.end()) {
        mac.calls.append(u"unregister nothing"_s);
        return eventHotKeyInvalidErr;
    }
    mac.calls.append(u"unregister %1"_s.arg(hotKey->keyCode));
    hotKey->registered = false;
    return noErr;
}

OSErr GetCurrentProcess(ProcessSerialNumber *process)
{
    const FakeMac &mac = FakeMac::current();
    if (mac.currentProcessResult == noErr)
        *process = mac.currentProcess;
    return mac.currentProcessResult;
}

OSErr GetFrontProcess(ProcessSerialNumber *process)
{
    const FakeMac &mac = FakeMac::current();
    if (mac.frontProcessResult == noErr)
        *process = mac.frontProcess;
    return mac.frontProcessResult;
}

OSErr SetFrontProcessWithOptions(const ProcessSerialNumber *process, OptionBits options)
{
    FakeMac &mac = FakeMac::current();
    mac.frontings.push_back({*process, options});
    mac.frontProcess = *process;
    return noErr;
}
