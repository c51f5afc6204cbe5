// SPDX-License-Identifier: MIT
#pragma once

// Stands in for the header of the same name on a Mac: what src/platform/mac uses of it, with the
// names, types, values and signatures it has there on 64-bit machines. FakeMac carries it out.

#include <CoreFoundation/CoreFoundation.h>

using UInt32 = unsigned int;
using SInt32 = int;
using OSStatus = SInt32;
using OSErr = short;
using OSType = UInt32;
using OptionBits = UInt32;
using ByteCount = unsigned long;
using ItemCount = unsigned long;

using EventRef = struct OpaqueEventRef *;
using EventTargetRef = struct OpaqueEventTargetRef *;
using EventHandlerRef = struct OpaqueEventHandlerRef *;
using EventHandlerCallRef = struct OpaqueEventHandlerCallRef *;
using EventHotKeyRef = struct OpaqueEventHotKeyRef *;
using EventParamName = OSType;
using EventParamType = OSType;
using EventHandlerProcPtr = OSStatus (*)(EventHandlerCallRef call, EventRef event, void *userData);
using EventHandlerUPP = EventHandlerProcPtr;

struct EventTypeSpec {
    OSType eventClass;
    UInt32 eventKind;
};

struct EventHotKeyID {
    OSType signature;
    UInt32 id;
};

struct ProcessSerialNumber {
    UInt32 highLongOfPSN;
    UInt32 lowLongOfPSN;
};

enum { noErr = 0 };
enum {
    eventParameterNotFoundErr = -9870,
    eventNotHandledErr = -9874,
    eventHotKeyExistsErr = -9878,
    eventHotKeyInvalidErr = -9879,
};
enum { kEventClassKeyboard = 0x6B657962 }; // 'keyb'
enum {
    kEventRawKeyDown = 1,
    kEventHotKeyPressed = 5,
    kEventHotKeyReleased = 6,
};
enum { kEventParamDirectObject = 0x2D2D2D2D }; // '----'
enum { typeEventHotKeyID = 0x686B6964 }; // 'hkid'
enum {
    cmdKey = 1 << 8,
    shiftKey = 1 << 9,
    optionKey = 1 << 11,
    controlKey = 1 << 12,
};
enum {
    kVK_Return = 0x24,
    kVK_Space = 0x31,
};
enum { kSetFrontProcessFrontWindowOnly = 1 << 0 };

extern "C" {

EventHandlerUPP NewEventHandlerUPP(EventHandlerProcPtr routine);
EventTargetRef GetEventDispatcherTarget();
OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount typeCount,
                             const EventTypeSpec *types, void *userData, EventHandlerRef *result);
OSStatus RemoveEventHandler(EventHandlerRef handler);
OSStatus AddEventTypesToHandler(EventHandlerRef handler, ItemCount typeCount,
                                const EventTypeSpec *types);
OSStatus CallNextEventHandler(EventHandlerCallRef call, EventRef event);

EventRef RetainEvent(EventRef event);
void ReleaseEvent(EventRef event);
OSType GetEventClass(EventRef event);
UInt32 GetEventKind(EventRef event);
OSStatus GetEventParameter(EventRef event, EventParamName name, EventParamType desiredType,
                           EventParamType *actualType, ByteCount bufferSize, ByteCount *actualSize,
                           void *data);
OSStatus SetEventParameter(EventRef event, EventParamName name, EventParamType type, ByteCount size,
                           const void *data);

OSStatus RegisterEventHotKey(UInt32 keyCode, UInt32 modifiers, EventHotKeyID id,
                             EventTargetRef target, OptionBits options, EventHotKeyRef *result);
OSStatus UnregisterEventHotKey(EventHotKeyRef hotKey);

// Deprecated there as well: what includes this has to say that it knows.
[[deprecated]] OSErr GetCurrentProcess(ProcessSerialNumber *process);
[[deprecated]] OSErr GetFrontProcess(ProcessSerialNumber *process);
[[deprecated]] OSErr SetFrontProcessWithOptions(const ProcessSerialNumber *process,
                                                OptionBits options);
}
