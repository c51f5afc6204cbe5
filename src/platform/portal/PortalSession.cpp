// SPDX-License-Identifier: MIT
#include "platform/portal/PortalSession.h"

#include "platform/PlatformLog.h"
#include "platform/portal/Portal.h"
#include "platform/portal/PortalRequest.h"
#include "platform/portal/PortalShortcut.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{
const auto shortcutId = "activate"_L1;
}

PortalSession::PortalSession(QDBusConnection bus, QString trigger)
    : m_bus(std::move(bus))
    , m_trigger(std::move(trigger))
{
    qRegisterMetaType<QDBusObjectPath>(); // the bus finds the slot's types by their names
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    const bool listening
        = m_bus.connect(Portal::service, Portal::path, Portal::shortcutsInterface, u"Activated"_s,
                        this, SLOT(activate(QDBusObjectPath, QString, qulonglong, QVariantMap)));
    if (!listening)
        qCWarning(platformLog) << "the hotkey's presses can't be listened to";
    open();
}

PortalSession::~PortalSession()
{
    if (m_handle.isEmpty())
        return;
    m_bus.send(QDBusMessage::createMethodCall(Portal::service, m_handle, Portal::sessionInterface,
                                              u"Close"_s));
}

void PortalSession::open()
{
    auto *request = new PortalRequest(m_bus, this);
    connect(request, &PortalRequest::granted, this, &PortalSession::opened);
    connect(request, &PortalRequest::failed, this, &PortalSession::failed);
    const QVariantMap options{{u"handle_token"_s, request->token()},
                              {u"session_handle_token"_s, Portal::newToken()}};
    request->send(Portal::shortcutsInterface, u"CreateSession"_s, {options});
}

void PortalSession::opened(const QVariantMap &results)
{
    m_opening = false;
    // Given as text, though its type would be an object path; some portals do send one.
    const QVariant handle = results.value(u"session_handle"_s);
    m_handle = handle.canConvert<QDBusObjectPath>() && handle.userType() != QMetaType::QString
        ? handle.value<QDBusObjectPath>().path()
        : handle.toString();
    if (m_handle.isEmpty()) {
        emit failed(u"the portal's session has no handle"_s);
        return;
    }
    m_bus.connect(Portal::service, m_handle, Portal::sessionInterface, u"Closed"_s, this,
                  SLOT(close()));
    bind();
}

void PortalSession::bind()
{
    auto *request = new PortalRequest(m_bus, this);
    connect(request, &PortalRequest::granted, this, &PortalSession::boundTo);
    connect(request, &PortalRequest::failed, this, &PortalSession::failed);
    const PortalShortcut shortcut{shortcutId,
                                  {{u"description"_s, tr("Bring Brindle forward or send it back")},
                                   {u"preferred_trigger"_s, m_trigger}}};
    const QVariantMap options{{u"handle_token"_s, request->token()}};
    request->send(Portal::shortcutsInterface, u"BindShortcuts"_s,
                  {QVariant::fromValue(QDBusObjectPath(m_handle)),
                   QVariant::fromValue(QList{shortcut}), QString(), options});
}

void PortalSession::boundTo(const QVariantMap &results)
{
    const auto shortcuts = qdbus_cast<QList<PortalShortcut>>(results.value(u"shortcuts"_s));
    const bool ours = std::any_of(shortcuts.begin(), shortcuts.end(),
                                  [](const PortalShortcut &s) { return s.id == shortcutId; });
    if (ours)
        emit bound();
    else
        emit failed(u"the desktop's user did not want the shortcut"_s);
}

void PortalSession::activate(const QDBusObjectPath &session, const QString &id,
                             qulonglong timestamp, const QVariantMap &options)
{
    Q_UNUSED(timestamp)
    if (session.path() == m_handle && id == shortcutId)
        emit pressed(options.value(u"activation_token"_s).toString().toUtf8());
}

void PortalSession::close()
{
    m_handle.clear();
    emit failed(u"the desktop has closed the session"_s);
}
