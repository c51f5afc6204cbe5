// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PcKeyboardSupport.h"

#include <QPointer>
#include <memory>
#include <optional>

class FrontRequests;
class FrontWatch;
class FrontWindow;
class LateMapping;
class MissedFocus;
class QCoreApplication;
class X11Hotkey;

/// The desktop as an X server and a window manager make it.
class X11Support : public PcKeyboardSupport
{
    Q_OBJECT

public:
    /// Null when there is no X server to talk to.
    static std::unique_ptr<NativeSupport> open();

    ~X11Support() override;

    bool areWeFrontProcess() override;
    void captureFrontProcessForRestore() override;
    void restoreCapturedProcess() override;
    void setActivationHotkey(unsigned int virtualKey) override;
    void requestFront(QWindow *window) override;
    void settleFront() override;
    void setActivationToken(const QByteArray &token) override;

private:
    struct Captured {
        quint32 window;
        quint32 process; ///< A number given anew to another program's window doesn't count.
    };

    explicit X11Support(std::unique_ptr<FrontWindow> front);

    bool attach();
    void bringForward(const QWindow *window);

    std::unique_ptr<FrontWindow> m_front;
    std::optional<Captured> m_captured;
    std::optional<quint32> m_tokenTime; ///< When the user asked for what comes forward next.
    QPointer<QCoreApplication> m_attachedTo;
    std::unique_ptr<FrontWatch> m_watch;
    std::unique_ptr<LateMapping> m_lateMapping;
    std::unique_ptr<MissedFocus> m_missedFocus;
    std::unique_ptr<X11Hotkey> m_hotkey;
    std::unique_ptr<FrontRequests> m_requests;
};
