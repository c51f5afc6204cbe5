// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QString>

/// A connection of its own to the session bus, closed with this object.
class SessionBus
{
public:
    /// Connects if there is a bus. None is ever started: the library behind the toolkit would start
    /// one for a session that has none, and that takes its time.
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus &) = delete;
    SessionBus &operator=(const SessionBus &) = delete;

    bool isConnected() const { return m_connection.isConnected(); }
    QDBusConnection &connection() { return m_connection; }

private:
    QString m_name;
    QDBusConnection m_connection;
};

/// How the program is known on the bus.
namespace ApplicationBusName
{
inline constexpr const char *interfaceName = "org.freedesktop.Application";
inline constexpr const char *toggleAction = "toggle";

QString service();
/// The service's name written as a path.
QString objectPath();
} // namespace ApplicationBusName
