// SPDX-License-Identifier: MIT
#include "PrivateBus.h"

#include <QDBusPendingCallWatcher>
#include <QTest>

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

QDBusMessage PrivateBus::callProgram(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(u"example.osterlane.Brindle"_s,
                                                          u"/example/osterlane/Brindle"_s,
                                                          u"org.freedesktop.Application"_s, method);
    message.setArguments(arguments);
    const QDBusPendingCallWatcher answer(m_other.asyncCall(message));
    if (!QTest::qWaitFor([&] { return answer.isFinished(); }, 10'000))
        return QDBusMessage();
    return answer.reply();
}

void PrivateBus::end()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}
