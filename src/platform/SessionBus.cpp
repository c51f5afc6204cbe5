// SPDX-License-Identifier: MIT
#include "platform/SessionBus.h"

#include <QDBusConnection>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace
{
/// A bus is known by its address, or stands at its place in the user's runtime folder.
bool isThere()
{
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(runtime + u"/bus"_s);
}
} // namespace

std::optional<QDBusConnection> SessionBus::connection()
{
    if (!isThere())
        return std::nullopt;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}
