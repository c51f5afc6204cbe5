// SPDX-License-Identifier: MIT
#pragma once

#include <QLocalSocket>
#include <QString>

/// The running copy, as another copy talks to it over its socket. Blocks, and needs no event loop.
class RunningInstance
{
public:
    enum class Message : qint32 { VersionRequest = 1, Activation = 2, Termination = 3 };
    struct VersionNumbers {
        qint32 major = 0;
        qint32 minor = 0;
    };

    static constexpr int waitMs = 1000;

    /// \a patienceMs is how long the copy may take to answer.
    explicit RunningInstance(QString socketPath, int patienceMs = waitMs);

    bool connect();
    /// Why the last connect() failed.
    QLocalSocket::LocalSocketError error() const { return m_socket.error(); }
    QString errorText() const { return m_socket.errorString(); }

    /// \throws const char* when the copy doesn't answer.
    VersionNumbers askVersion();
    void send(Message message);

private:
    QString m_socketPath;
    int m_patienceMs;
    QLocalSocket m_socket;
};
