// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PcKeyboardSupport.h"

/// Stands in where there is no desktop to talk to (no display, a test without one): nobody can be
/// remembered and no hotkey exists, but everything that only names keys works.
class NoDesktopSupport : public PcKeyboardSupport
{
    Q_OBJECT

public:
    bool areWeFrontProcess() override;
    void captureFrontProcessForRestore() override;
    void restoreCapturedProcess() override;
    void setActivationHotkey(unsigned int virtualKey) override;
};
