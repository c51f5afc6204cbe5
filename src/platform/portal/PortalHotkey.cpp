// SPDX-License-Identifier: MIT
#include "platform/portal/PortalHotkey.h"

#include "platform/PlatformLog.h"
#include "platform/portal/Portal.h"
#include "platform/portal/PortalSession.h"

using namespace Qt::StringLiterals;

PortalHotkey::PortalHotkey()
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &PortalHotkey::bind);
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { giveUp(u"the desktop portal has gone"_s); });
    if (m_bus.isConnected()) {
        m_watcher.setConnection(m_bus.connection());
        m_watcher.addWatchedService(Portal::service);
    }
}

PortalHotkey::~PortalHotkey() = default;

void PortalHotkey::setTrigger(const QString &trigger)
{
    m_trigger = trigger;
    bind();
}

void PortalHotkey::bind()
{
    m_session.reset();
    m_unavailable = false;
    if (!m_bus.isConnected()) {
        giveUp(u"there is no session bus"_s);
        return;
    }
    m_session = std::make_unique<PortalSession>(m_bus.connection(), m_trigger);
    connect(m_session.get(), &PortalSession::pressed, this, &PortalHotkey::pressed);
    connect(m_session.get(), &PortalSession::failed, this, &PortalHotkey::giveUp,
            Qt::QueuedConnection); // the session can't be deleted in the middle of saying so
    connect(m_session.get(), &PortalSession::bound, this,
            [] { qCDebug(platformLog) << "the desktop has bound the hotkey"; });
}

void PortalHotkey::giveUp(const QString &reason)
{
    qCDebug(platformLog).noquote() << "no hotkey:" << reason;
    m_session.reset();
    m_unavailable = true;
}
