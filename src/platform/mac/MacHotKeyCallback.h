// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mac/CarbonHotKeyCallback.h"
#include "platform/mac/MacSupport.h"

/// Tells the owner's listeners that the activation hot key was pressed.
class MacSupport::MacHotKeyCallback final : public CarbonHotKeyCallback
{
public:
    explicit MacHotKeyCallback(MacSupport *owner);

    void execute(void *handler) override;

private:
    MacSupport *m_owner;
};
