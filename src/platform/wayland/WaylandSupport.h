// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PcKeyboardSupport.h"

#include <QPointer>
#include <memory>

class FrontRequests;
class ModalBoxFocus;
class PortalHotkey;
class QCoreApplication;
class SettlingFront;

/// The desktop as a Wayland compositor makes it: no program learns which other one is in front, and
/// hiding gives the front back; the portal watches for the hotkey; coming forward takes a token
/// that the compositor has given to whom the user acted on.
class WaylandSupport : public PcKeyboardSupport
{
    Q_OBJECT

public:
    /// Null when this is no Wayland session, or the toolkit can't show windows in it.
    static std::unique_ptr<NativeSupport> open();

    ~WaylandSupport() override;

    bool areWeFrontProcess() override;
    void captureFrontProcessForRestore() override;
    void restoreCapturedProcess() override;
    void setActivationHotkey(unsigned int virtualKey) override;
    void requestFront(QWindow *window) override;
    void settleFront() override;
    void setActivationToken(const QByteArray &token) override;
    QString getActivationHotkeyNotice() override;

private:
    WaylandSupport();

    bool attach();
    void bringForward(QWindow *window);

    QPointer<QCoreApplication> m_attachedTo;
    std::unique_ptr<SettlingFront> m_front;
    std::unique_ptr<PortalHotkey> m_hotkey;
    std::unique_ptr<FrontRequests> m_requests;
    std::unique_ptr<ModalBoxFocus> m_boxFocus;
    QByteArray m_token; ///< For the next request.
    QByteArray m_requestsToken; ///< Of the last request, until its window is on the screen.
};
