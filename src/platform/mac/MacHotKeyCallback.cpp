// SPDX-License-Identifier: MIT
#include "platform/mac/MacHotKeyCallback.h"

MacSupport::MacHotKeyCallback::MacHotKeyCallback(MacSupport *owner)
    : m_owner(owner)
{
}

void MacSupport::MacHotKeyCallback::execute(void *handler)
{
    Q_UNUSED(handler)
    emit m_owner->hotKeyPressed();
}
