// SPDX-License-Identifier: MIT
#pragma once

#include "platform/NativeSupport.h"

/// The part of NativeSupport that every desktop with a PC keyboard shares: how keys are named, and
/// which modifiers the program uses. Desktops derive from it and add who is in front and the
/// hotkey.
class PcKeyboardSupport : public NativeSupport
{
    Q_OBJECT

public:
    QString renderKeyCombo(KeyCommandMap::KeyCombo *combo) override;
    QString getModifierSeparator() override;
    Qt::KeyboardModifiers getShortcutModifier() override;
    int getShortcutModifierKey() override;
    QString getShortcutModifierKeySymbol() override;
    QString getActivationHotkeyPrefix() override;
    /// The keysym of the space bar.
    int getSpaceVirtualKey() override;
};
