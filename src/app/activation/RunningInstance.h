// SPDX-License-Identifier: MIT
#pragma once

#include <QLocalSocket>
#include <QStringList>

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

    /// \a socketPaths is where the copy may be listening, \a patienceMs how long it may take to
    /// answer.
    explicit RunningInstance(QStringList socketPaths, int patienceMs = waitMs);

    /// Tries one path after the other.
    bool connect();
    /// Why the last connect() failed.
    QLocalSocket::LocalSocketError error() const { return m_socket.error(); }
    QString errorText() const { return m_socket.errorString(); }

    /// \throws const char* when the copy doesn't answer.
    VersionNumbers askVersion();
    /// \return whether the whole message is on its way to the copy.
    bool send(Message message);

private:
    QStringList m_socketPaths;
    int m_patienceMs;
    QLocalSocket m_socket;
};
