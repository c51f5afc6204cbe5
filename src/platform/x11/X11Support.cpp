// SPDX-License-Identifier: MIT
#include "platform/x11/X11Support.h"

#include "platform/FrontRequests.h"
#include "platform/PlatformLog.h"
#include "platform/x11/FrontWatch.h"
#include "platform/x11/FrontWindow.h"
#include "platform/x11/LateMapping.h"
#include "platform/x11/MissedFocus.h"
#include "platform/x11/QtX11.h"
#include "platform/x11/X11Hotkey.h"

#include <QCoreApplication>
#include <QWindow>
#include <utility>

namespace
{
/// A startup notification id ends in the X server's time of the click or key press behind it.
std::optional<quint32> timeOf(const QByteArray &startupId)
{
    constexpr QByteArrayView mark("_TIME");
    const qsizetype start = startupId.lastIndexOf(mark);
    if (start == -1)
        return std::nullopt;
    bool isNumber = false;
    const quint32 time = startupId.mid(start + mark.size()).toUInt(&isNumber);
    return isNumber && time != 0 ? std::optional(time) : std::nullopt;
}
} // namespace

std::unique_ptr<NativeSupport> X11Support::open()
{
    std::unique_ptr<FrontWindow> front = FrontWindow::open();
    if (!front)
        return nullptr;
    return std::unique_ptr<NativeSupport>(new X11Support(std::move(front)));
}

X11Support::X11Support(std::unique_ptr<FrontWindow> front)
    : m_front(std::move(front))
{
}

X11Support::~X11Support() = default;

/// What needs the toolkit is made as soon as it is there: this object is older than it.
/// \return whether it is there.
bool X11Support::attach()
{
    QCoreApplication *application = QCoreApplication::instance();
    if (application && m_attachedTo == application)
        return true;
    if (!QtX11::connection())
        return false;
    m_attachedTo = application;
    m_watch = std::make_unique<FrontWatch>(*m_front);
    connect(m_watch.get(), &SettlingFront::notInFront, this, &NativeSupport::notInFront);
    m_lateMapping = std::make_unique<LateMapping>();
    m_missedFocus = std::make_unique<MissedFocus>(*m_front);
    m_hotkey = std::make_unique<X11Hotkey>(m_front->root());
    m_requests = std::make_unique<FrontRequests>([this](QWindow *window) { bringForward(window); });
    connect(m_hotkey.get(), &X11Hotkey::pressed, this, [this] {
        settleFront();
        m_watch->expectToComeForward();
        emit hotKeyPressed();
    });
    return true;
}

bool X11Support::areWeFrontProcess()
{
    return attach() ? m_watch->areWeInFront() : FrontWatch::isOurs(*m_front, m_front->active());
}

void X11Support::captureFrontProcessForRestore()
{
    attach();
    const quint32 window = m_front->active();
    m_captured.reset();
    if (window != 0 && !FrontWatch::isOurs(*m_front, window))
        m_captured = Captured{window, m_front->processOf(window)};
}

void X11Support::restoreCapturedProcess()
{
    if (m_captured && m_front->processOf(m_captured->window) == m_captured->process)
        m_front->bringForward(m_captured->window, m_front->serverTime());
}

void X11Support::setActivationHotkey(unsigned int virtualKey)
{
    if (attach())
        m_hotkey->setKey(virtualKey);
    else
        qCDebug(platformLog) << "not on X11: hotkey" << virtualKey << "is not registered";
}

void X11Support::requestFront(QWindow *window)
{
    if (!attach())
        return;
    m_watch->expectToComeForward();
    m_requests->request(window);
}

void X11Support::setActivationToken(const QByteArray &token)
{
    m_tokenTime = timeOf(token);
    // A shell hands the id it was once started with on to all its programs: window managers would
    // take what they ask for as older than the user's last key.
    constexpr quint32 longestStartMs = 30'000;
    if (m_tokenTime && m_front->serverTime() - *m_tokenTime > longestStartMs)
        m_tokenTime.reset();
}

void X11Support::settleFront()
{
    if (attach())
        m_watch->settleNow();
}

void X11Support::bringForward(const QWindow *window)
{
    // With the time of the press that caused it, what the user did since then wins; the activation
    // timer has no such time.
    std::optional<quint32> time = std::exchange(m_tokenTime, std::nullopt);
    if (const std::optional<quint32> pressTime = m_hotkey->freshPressTime())
        time = pressTime;
    m_front->bringToWorkspaceInSight(static_cast<quint32>(window->winId()));
    m_front->bringForward(static_cast<quint32>(window->winId()),
                          time ? *time : m_front->serverTime());
}
