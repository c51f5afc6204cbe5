// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonHotKey.h"

#include "platform/mac/CarbonEventHandler.h"
#include "platform/mac/CarbonHotKeyCallback.h"

#include <cstdio>

CarbonHotKey::CarbonHotKey(EventHotKeyID id, CarbonHotKeyCallback *callback, bool onKeyDown)
    : m_id(id)
    , m_callback(callback)
    , m_onKeyDown(onKeyDown)
{
}

bool CarbonHotKey::matchesHotKeyID(EventHotKeyID id) const
{
    return m_id.signature == id.signature && m_id.id == id.id;
}

bool CarbonHotKey::sendAction(CarbonEventHandler *handler)
{
    try {
        m_callback->execute(handler);
    } catch (...) {
        std::fputs("Exception in callback!\n", stdout);
        std::fflush(stdout);
        return false;
    }
    return true;
}
