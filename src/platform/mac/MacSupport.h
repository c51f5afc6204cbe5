// SPDX-License-Identifier: MIT
#pragma once

#include "platform/NativeSupport.h"
#include "platform/mac/CarbonHeaders.h"

#include <memory>

class CarbonEventDispatcherHandler;

/// The Mac: hot keys by the Carbon Event Manager, who is in front by the Process Manager. Qt's
/// Control modifier is the Command key here and Qt's Meta modifier the Control key.
class MacSupport : public NativeSupport
{
    Q_OBJECT

public:
    MacSupport();
    ~MacSupport() override;

    bool areWeFrontProcess() override;
    void captureFrontProcessForRestore() override;
    void restoreCapturedProcess() override;
    QString renderKeyCombo(KeyCommandMap::KeyCombo *combo) override;
    QString getModifierSeparator() override;
    Qt::KeyboardModifiers getShortcutModifier() override;
    int getShortcutModifierKey() override;
    QString getShortcutModifierKeySymbol() override;
    QString getActivationHotkeyPrefix() override;
    /// The virtual key code of the space bar.
    int getSpaceVirtualKey() override;
    void setActivationHotkey(unsigned int virtualKey) override;

private:
    class MacHotKeyCallback;

    bool m_captured = false;
    ProcessSerialNumber m_capturedProcess{}; ///< Means something only while m_captured.
    std::unique_ptr<MacHotKeyCallback> m_hotKeyCallback;
    std::unique_ptr<CarbonEventDispatcherHandler> m_dispatcher;
    EventHotKeyRef m_activationHotKey = nullptr;
};
