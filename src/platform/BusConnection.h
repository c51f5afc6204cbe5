// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QString>

/// A connection of its own to the session bus: what is offered there goes with this object.
class BusConnection
{
public:
    /// Connects if there is a bus. None is ever started: the library behind the toolkit would start
    /// one for a session that has none, and that takes its time.
    BusConnection();
    ~BusConnection();
    BusConnection(const BusConnection &) = delete;
    BusConnection &operator=(const BusConnection &) = delete;

    bool isConnected() const { return m_connection.isConnected(); }
    QDBusConnection &connection() { return m_connection; }

private:
    QString m_name;
    QDBusConnection m_connection;
};
