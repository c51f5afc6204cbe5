// SPDX-License-Identifier: MIT
#include "app/activation/RunningInstance.h"

#include "app/activation/InstanceLog.h"

#include <QDataStream>
#include <QDeadlineTimer>
#include <algorithm>
#include <utility>

namespace
{
constexpr qint64 versionSize = 2 * sizeof(qint32);
}

RunningInstance::RunningInstance(QStringList socketPaths, int patienceMs)
    : m_socketPaths(std::move(socketPaths))
    , m_patienceMs(patienceMs)
{
}

bool RunningInstance::connect()
{
    return std::any_of(m_socketPaths.begin(), m_socketPaths.end(), [this](const QString &path) {
        m_socket.connectToServer(path, QIODevice::ReadWrite);
        return m_socket.waitForConnected(waitMs);
    });
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

bool RunningInstance::send(Message message)
{
    QDataStream(&m_socket) << static_cast<qint32>(message);
    while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(waitMs)) { }
    return m_socket.bytesToWrite() == 0 && m_socket.state() == QLocalSocket::ConnectedState;
}
