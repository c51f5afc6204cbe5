// SPDX-License-Identifier: MIT
#include "platform/BusConnection.h"

#include <QFile>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace
{
/// Where the session's bus listens; empty when there is none.
QString addressOfBus()
{
    QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return address;
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/bus"_s;
    return QFile::exists(socket) ? u"unix:path="_s + socket : QString();
}

QDBusConnection connectTo(const QString &address, const QString &name)
{
    return address.isEmpty() ? QDBusConnection(name) : QDBusConnection::connectToBus(address, name);
}
} // namespace

BusConnection::BusConnection()
    : m_name(QUuid::createUuid().toString())
    , m_connection(connectTo(addressOfBus(), m_name))
{
}

BusConnection::~BusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}
