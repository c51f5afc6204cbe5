// SPDX-License-Identifier: MIT
#include "app/activation/RunningInstance.h"

#include "app/activation/InstanceLog.h"

#include <QDataStream>
#include <QDeadlineTimer>

namespace
{
constexpr qint64 versionSize = 2 * sizeof(qint32);
}

RunningInstance::RunningInstance(QString socketPath, int patienceMs)
    : m_socketPath(std::move(socketPath))
    , m_patienceMs(patienceMs)
{
}

bool RunningInstance::connect()
{
    m_socket.connectToServer(m_socketPath, QIODevice::ReadWrite);
    return m_socket.waitForConnected(waitMs);
}

RunningInstance::VersionNumbers RunningInstance::askVersion()
{
    QDataStream stream(&m_socket);
    stream << static_cast<qint32>(Message::VersionRequest);
    // The two numbers may come in pieces.
    const QDeadlineTimer deadline(m_patienceMs);
    while (m_socket.bytesAvailable() < versionSize) {
        if (!m_socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
            qCDebug(instanceLog) << "readyread failed waiting for response from existing instance"
                                 << m_socket.error();
            throw "failed waiting for server response";
        }
    }
    VersionNumbers version;
    stream >> version.major >> version.minor;
    return version;
}

void RunningInstance::send(Message message)
{
    QDataStream(&m_socket) << static_cast<qint32>(message);
    m_socket.waitForBytesWritten(waitMs);
}
