// SPDX-License-Identifier: MIT
#pragma once

#include <Carbon/Carbon.h>

#include <QByteArray>
#include <QStringList>
#include <QtGlobal>
#include <map>
#include <memory>
#include <utility>
#include <vector>

/// An event as the stand-in keeps it.
struct OpaqueEventRef {
    OSType eventClass = 0;
    UInt32 eventKind = 0;
    int retainCount = 1; ///< One is whoever made the event.
    std::map<std::pair<EventParamName, EventParamType>, QByteArray> parameters;
};

struct OpaqueEventTargetRef {
};

struct OpaqueEventHandlerRef {
    EventTargetRef target = nullptr;
    EventHandlerUPP callback = nullptr;
    void *userData = nullptr;
    ItemCount typesAtInstallation = 0;
    std::vector<EventTypeSpec> types; ///< Those at installation and those added later.
    bool removed = false;

    bool wants(const OpaqueEventRef &event) const;
};

struct OpaqueEventHandlerCallRef {
};

struct OpaqueEventHotKeyRef {
    UInt32 keyCode = 0;
    UInt32 modifiers = 0;
    EventHotKeyID id{};
    EventTargetRef target = nullptr;
    OptionBits options = 0;
    bool registered = false;
};

struct __CFDictionary {
    bool hasCallBacks = false;
    CFIndex capacity = 0;
    bool released = false;
    std::vector<std::pair<const void *, const void *>> entries;
};

/// A Mac under the test's control. While an object of this class lives, the functions of the
/// platform that src/platform/mac calls are carried out by it: it notes what it is asked to do and
/// sends the events that a user's keys would send. One lives at a time.
class FakeMac
{
    Q_DISABLE_COPY_MOVE(FakeMac)

public:
    FakeMac();
    ~FakeMac();

    /// The one that lives; ends the program when there is none.
    static FakeMac &current();

    /// \name What the platform sends
    /// @{

    /// Sends a press or a release of the key \a keyCode held with \a modifiers: one event when a
    /// hot key is registered for them. Returns how many that were.
    int pressKey(UInt32 keyCode, UInt32 modifiers);
    int releaseKey(UInt32 keyCode, UInt32 modifiers);
    /// Sends an event to every handler of the dispatcher that asked for its class and kind, the
    /// latest first, until one answers anything but that it doesn't handle it.
    OSStatus send(EventRef event);
    /// Calls the latest handler with whatever it is given, asked for or not.
    OSStatus callHandler(EventHandlerCallRef call, EventRef event);
    /// An event, alive as long as this object; with the parameter that names a hot key, or without.
    EventRef makeEvent(OSType eventClass, UInt32 eventKind);
    EventRef makeHotKeyEvent(UInt32 eventKind, EventHotKeyID id);
    /// @}

    /// \name What it was asked to do
    /// @{
    std::vector<const OpaqueEventHotKeyRef *> registeredHotKeys() const;
    std::vector<const OpaqueEventHandlerRef *> installedHandlers() const;
    const __CFDictionary *livingDictionary() const; ///< Null unless there is exactly one.

    struct Fronting {
        ProcessSerialNumber process;
        OptionBits options;
    };
    std::vector<Fronting> frontings; ///< Each request to bring a process to the front.
    std::vector<EventHotKeyID> triedIds; ///< Of each registration, refused ones included.
    std::vector<EventRef> passedOn; ///< Each event that went on to the next handler.
    QStringList calls; ///< Registrations and what belongs to them, in the order they came.
    /// @}

    /// \name How it answers
    /// @{
    ProcessSerialNumber currentProcess{1, 20};
    ProcessSerialNumber frontProcess{1, 10};
    OSErr currentProcessResult = noErr;
    OSErr frontProcessResult = noErr;
    OSStatus installationResult = noErr;
    OSStatus addingTypesResult = noErr;
    OSStatus registrationResult = noErr;
    OSStatus nextHandlerResult = eventNotHandledErr;
    OpaqueEventTargetRef dispatcherTarget;
    OpaqueEventHandlerCallRef call;
    /// @}

    /// \name What it keeps for its functions
    /// @{
    std::vector<std::unique_ptr<OpaqueEventRef>> events;
    std::vector<std::unique_ptr<OpaqueEventHandlerRef>> handlers;
    std::vector<std::unique_ptr<OpaqueEventHotKeyRef>> hotKeys;
    std::vector<std::unique_ptr<__CFDictionary>> dictionaries;
    /// @}

private:
    int sendKey(UInt32 eventKind, UInt32 keyCode, UInt32 modifiers);
};
