// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mac/CarbonEventHandler.h"

#include <memory>
#include <type_traits>

class CarbonHotKey;
class CarbonHotKeyCallback;

/// Registers hot keys and receives their events from the application's event dispatcher.
class CarbonEventDispatcherHandler final : public CarbonEventHandler
{
public:
    CarbonEventDispatcherHandler();
    ~CarbonEventDispatcherHandler() override;

    /// The application's event dispatcher.
    EventTargetRef eventTarget() const override;

    OSStatus handleEvent(CarbonEvent *event, EventHandlerCallRef call) override;

    /// Makes the key \a keyCode with \a modifiers a system-wide hot key that calls \a callback (not
    /// owned) on its press, or on its release when \a onKeyDown is false. Null when the platform
    /// refuses.
    EventHotKeyRef registerHotKey(UInt32 keyCode, UInt32 modifiers, CarbonHotKeyCallback *callback,
                                  bool onKeyDown);
    void unregisterHotKey(EventHotKeyRef ref);

private:
    struct DictionaryRelease {
        void operator()(CFMutableDictionaryRef dictionary) const { CFRelease(dictionary); }
    };

    bool handleHotKeyEvent(const CarbonEvent &event);
    CarbonHotKey *findHotKey(EventHotKeyID id) const;

    /// From hot-key reference to CarbonHotKey. The dictionary retains nothing; the hot keys in it
    /// belong to this object.
    std::unique_ptr<std::remove_pointer_t<CFMutableDictionaryRef>, DictionaryRelease> m_hotKeys;
};
