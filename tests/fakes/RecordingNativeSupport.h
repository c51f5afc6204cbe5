// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PcKeyboardSupport.h"

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QWindow>

/// A desktop under the test's control: says what the test tells it and notes what it is asked to
/// do. Keys are named as on the real one.
class RecordingNativeSupport : public PcKeyboardSupport
{
public:
    bool areWeFrontProcess() override
    {
        ++frontQuestions;
        return areWeFront;
    }
    void captureFrontProcessForRestore() override
    {
        ++captures;
        calls.append(QStringLiteral("capture"));
    }
    void restoreCapturedProcess() override
    {
        ++restores;
        calls.append(QStringLiteral("restore"));
    }
    void setActivationHotkey(unsigned int virtualKey) override
    {
        hotkeys.append(virtualKey);
        calls.append(QStringLiteral("hotkey"));
    }
    QString getActivationHotkeyNotice() override { return hotkeyNotice; }
    void requestFront(QWindow *window) override { frontRequests.append(window); }
    void setActivationToken(const QByteArray &token) override
    {
        tokens.append(token);
        calls.append(QStringLiteral("token"));
    }

    void pressHotkey() { emit hotKeyPressed(); }
    void sayNotInFront(FrontLoss reason)
    {
        areWeFront = false;
        emit notInFront(reason);
    }

    bool areWeFront = true; ///< What areWeFrontProcess() answers.
    QString hotkeyNotice; ///< What getActivationHotkeyNotice() answers.
    int frontQuestions = 0;
    int captures = 0;
    int restores = 0;
    QList<unsigned int> hotkeys; ///< Each registered native key, in order.
    QList<QPointer<QWindow>> frontRequests;
    QList<QByteArray> tokens; ///< Each one handed over, in order; empty ones, too.
    QStringList calls; ///< "capture", "restore", "hotkey" and "token" in the order they came.
};
