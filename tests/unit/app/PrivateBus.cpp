// SPDX-License-Identifier: MIT
#include "PrivateBus.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr const char *variable = "DBUS_SESSION_BUS_ADDRESS";
const auto otherName = "the other program"_L1;
} // namespace

PrivateBus::PrivateBus()
    : m_before(qgetenv(variable))
    , m_address(u"unix:path="_s + m_folder.filePath(u"bus"_s))
{
    m_daemon.start(
        u"dbus-daemon"_s,
        {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s, u"--address="_s + m_address});
    if (!m_daemon.waitForReadyRead(10'000))
        qFatal("there is no session bus: %s", qPrintable(m_daemon.errorString()));
    qputenv(variable, m_address.toLatin1());
    m_other = QDBusConnection::connectToBus(m_address, otherName);
}

PrivateBus::~PrivateBus()
{
    m_other = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(otherName);
    end();
    qputenv(variable, m_before);
}

void PrivateBus::end()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}
