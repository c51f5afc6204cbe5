// SPDX-License-Identifier: MIT
#include "app/activation/DesktopApplication.h"

#include "app/activation/InstanceLog.h"
#include "app/activation/dbus/ApplicationAdaptor.h"
#include "app/activation/dbus/ApplicationBusName.h"
#include "platform/BusConnection.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>

class DesktopApplication::Bus
{
public:
    explicit Bus(DesktopApplication *owner)
    {
        if (!session.isConnected())
            return;
        new ApplicationAdaptor(
            session.connection(),
            [owner](const InstanceRequest &request) { emit owner->requested(request); }, &object);
    }

    BusConnection session;
    QObject object; ///< Bears the interface, so that nothing else is to be seen on the bus.
};

DesktopApplication::DesktopApplication()
    : m_bus(std::make_unique<Bus>(this))
{
}

DesktopApplication::~DesktopApplication() = default;

void DesktopApplication::serve()
{
    if (!m_bus->session.isConnected()) {
        qCDebug(instanceLog) << "no session bus: the desktop can't ask for anything";
        return;
    }
    // The object first: with the name come the calls that have waited for it.
    QDBusConnection &connection = m_bus->session.connection();
    connection.registerObject(ApplicationBusName::objectPath(), &m_bus->object,
                              QDBusConnection::ExportAdaptors);
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply
        = connection.interface()->registerService(ApplicationBusName::service());
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered)
        return;
    qCDebug(instanceLog) << "the name" << ApplicationBusName::service()
                         << "can't be had on the session bus" << reply.error().message();
}
