// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonEventDispatcherHandler.h"

#include "platform/PlatformLog.h"
#include "platform/mac/CarbonEvent.h"
#include "platform/mac/CarbonHotKey.h"

#include <algorithm>
#include <array>
#include <vector>

namespace
{

static_assert(kEventClassKeyboard == 0x6B657962, "'keyb'");
static_assert(kEventHotKeyPressed == 5);
static_assert(kEventHotKeyReleased == 6);
static_assert(eventNotHandledErr == -9874);

constexpr OSType hotKeySignature = 0x42726E64; // "Brnd"

/// No id is ever given twice: an event that is still on its way must not fire a later hot key.
UInt32 nextHotKeyId()
{
    static UInt32 lastId = 0;
    return ++lastId;
}

bool isHotKeyEvent(const CarbonEvent &event)
{
    const UInt32 kind = event.eventKind();
    return event.eventClass() == kEventClassKeyboard
        && (kind == kEventHotKeyPressed || kind == kEventHotKeyReleased);
}

std::vector<CarbonHotKey *> hotKeysIn(CFDictionaryRef dictionary)
{
    std::vector<const void *> values(static_cast<std::size_t>(CFDictionaryGetCount(dictionary)));
    CFDictionaryGetKeysAndValues(dictionary, nullptr, values.data());
    std::vector<CarbonHotKey *> hotKeys;
    hotKeys.reserve(values.size());
    for (const void *value : values)
        hotKeys.push_back(static_cast<CarbonHotKey *>(const_cast<void *>(value)));
    return hotKeys;
}

} // namespace

CarbonEventDispatcherHandler::CarbonEventDispatcherHandler()
{
    static constexpr std::array<EventTypeSpec, 2> eventTypes{
        {{kEventClassKeyboard, kEventHotKeyPressed}, {kEventClassKeyboard, kEventHotKeyReleased}}};
    if (EventHandlerRef handler = eventHandlerRef()) {
        const OSStatus status
            = AddEventTypesToHandler(handler, eventTypes.size(), eventTypes.data());
        if (status != noErr)
            qCDebug(platformLog) << "the Mac refused to send the events of hot keys:" << status;
    }
    m_hotKeys.reset(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr));
}

// The platform's handler stays, and its user data dangles from here on. It may: the program's one
// object of this class belongs to the NativeSupport that main never deletes, so that no event comes
// after it.
CarbonEventDispatcherHandler::~CarbonEventDispatcherHandler()
{
    for (CarbonHotKey *hotKey : hotKeysIn(m_hotKeys.get()))
        std::unique_ptr<CarbonHotKey>{hotKey}.reset();
}

EventTargetRef CarbonEventDispatcherHandler::eventTarget() const
{
    return GetEventDispatcherTarget();
}

OSStatus CarbonEventDispatcherHandler::handleEvent(CarbonEvent *event, EventHandlerCallRef call)
{
    if (event && isHotKeyEvent(*event) && handleHotKeyEvent(*event))
        return noErr;
    return CarbonEventHandler::handleEvent(event, call);
}

EventHotKeyRef CarbonEventDispatcherHandler::registerHotKey(UInt32 keyCode, UInt32 modifiers,
                                                            CarbonHotKeyCallback *callback,
                                                            bool onKeyDown)
{
    const EventHotKeyID id{hotKeySignature, nextHotKeyId()};
    auto hotKey = std::make_unique<CarbonHotKey>(id, callback, onKeyDown);
    EventHotKeyRef ref = nullptr;
    if (RegisterEventHotKey(keyCode, modifiers, id, eventTarget(), 0, &ref) != noErr || !ref)
        return nullptr;
    CFDictionarySetValue(m_hotKeys.get(), ref, hotKey.release());
    return ref;
}

void CarbonEventDispatcherHandler::unregisterHotKey(EventHotKeyRef ref)
{
    const void *value = CFDictionaryGetValue(m_hotKeys.get(), ref);
    const std::unique_ptr<CarbonHotKey> removed(
        static_cast<CarbonHotKey *>(const_cast<void *>(value)));
    CFDictionaryRemoveValue(m_hotKeys.get(), ref);
    UnregisterEventHotKey(ref);
}

bool CarbonEventDispatcherHandler::handleHotKeyEvent(const CarbonEvent &event)
{
    const std::optional<EventHotKeyID> id = event.hotKeyID();
    if (!id)
        return false;
    CarbonHotKey *hotKey = findHotKey(*id);
    const bool isPress = event.eventKind() == kEventHotKeyPressed;
    if (!hotKey || hotKey->isOnKeyDown() != isPress)
        return true;
    return hotKey->sendAction(this);
}

CarbonHotKey *CarbonEventDispatcherHandler::findHotKey(EventHotKeyID id) const
{
    const std::vector<CarbonHotKey *> hotKeys = hotKeysIn(m_hotKeys.get());
    const auto found = std::find_if(hotKeys.begin(), hotKeys.end(), [id](const CarbonHotKey *each) {
        return each->matchesHotKeyID(id);
    });
    return found == hotKeys.end() ? nullptr : *found;
}
