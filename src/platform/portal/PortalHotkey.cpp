// SPDX-License-Identifier: MIT
#include "platform/portal/PortalHotkey.h"

#include "platform/PlatformLog.h"
#include "platform/portal/Portal.h"
#include "platform/portal/PortalSession.h"

using namespace Qt::StringLiterals;

PortalHotkey::PortalHotkey()
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &newOwner) {
                followOwner(newOwner);
            });
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
    connect(m_session.get(), &PortalSession::failed, this, &PortalHotkey::giveUp);
    connect(m_session.get(), &PortalSession::bound, this,
            [] { qCDebug(platformLog) << "the desktop has bound the hotkey"; });
}

void PortalHotkey::followOwner(const QString &owner)
{
    if (owner.isEmpty())
        giveUp(u"the desktop portal has gone"_s);
    else if (!m_session || !m_session->isOpening()) // else it comes because this session asked
        bind();
}

void PortalHotkey::giveUp(const QString &reason)
{
    qCDebug(platformLog).noquote() << "no hotkey:" << reason;
    // Perhaps it is the session that says so: it is deleted later, and heard no more.
    if (PortalSession *session = m_session.release()) {
        session->disconnect(this);
        session->deleteLater();
    }
    m_unavailable = true;
}
