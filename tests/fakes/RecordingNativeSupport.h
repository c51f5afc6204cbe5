// SPDX-License-Identifier: MIT
#pragma once

#include "platform/NativeSupport.h"

#include <QStringList>

/// A desktop that does as it is told: it answers what a test has set and counts what it is asked.
class RecordingNativeSupport : public NativeSupport
{
public:
    bool front = true; ///< Whether this application is the one in front.
    int captureCount = 0;
    int restoreCount = 0;
    QList<QWindow *> frontRequests;
    QList<unsigned int> hotkeys;

    bool areWeFrontProcess() override { return front; }
    void captureFrontProcessForRestore() override { ++captureCount; }
    void restoreCapturedProcess() override { ++restoreCount; }
    QString renderKeyCombo(KeyCommandMap::KeyCombo *combo) override
    {
        if (!combo)
            throw "bad";
        return QString::number(combo->key);
    }
    QString getModifierSeparator() override { return QStringLiteral("+"); }
    Qt::KeyboardModifiers getShortcutModifier() override { return Qt::AltModifier; }
    int getShortcutModifierKey() override { return Qt::Key_Alt; }
    QString getShortcutModifierKeySymbol() override { return QStringLiteral("Alt"); }
    QString getActivationHotkeyPrefix() override { return QStringLiteral("Ctrl+Alt+"); }
    int getSpaceVirtualKey() override { return 0x20; }
    void setActivationHotkey(unsigned int virtualKey) override { hotkeys.append(virtualKey); }
    void requestFront(QWindow *window) override { frontRequests.append(window); }
};
