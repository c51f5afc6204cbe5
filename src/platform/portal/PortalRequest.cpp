// SPDX-License-Identifier: MIT
#include "platform/portal/PortalRequest.h"

#include "platform/PlatformLog.h"
#include "platform/portal/Portal.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

QString Portal::newToken()
{
    return u"brindle%1"_s.arg(QRandomGenerator::global()->generate());
}

PortalRequest::PortalRequest(QDBusConnection bus, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_token(Portal::newToken())
{
    // The answer may come before the call returns: the path follows from who asks and the token.
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    listenAt(Portal::path + u"/request/"_s + sender + u'/' + m_token);
}

void PortalRequest::listenAt(const QString &path)
{
    m_path = path;
    if (!m_bus.connect(Portal::service, path, Portal::requestInterface, u"Response"_s, this,
                       SLOT(respond(uint, QVariantMap))))
        qCWarning(platformLog) << "the portal's answers can't be listened to";
}

void PortalRequest::send(const QString &interface, const QString &method,
                         const QVariantList &arguments)
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(Portal::service, Portal::path, interface, method);
    call.setArguments(arguments);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (reply.isError())
            emit failed(reply.error().message());
        else if (reply.value().path() != m_path) // old portals choose a path of their own
            listenAt(reply.value().path());
    });
}

void PortalRequest::respond(uint response, const QVariantMap &results)
{
    if (response == 0)
        emit granted(results);
    else
        emit failed(u"the portal's answer is %1"_s.arg(response));
}
