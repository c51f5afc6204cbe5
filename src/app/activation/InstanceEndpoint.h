// SPDX-License-Identifier: MIT
#pragma once

#include <QLockFile>
#include <QString>
#include <memory>

/// Where the running copy listens: a socket in the user's private runtime folder, guarded by a lock
/// file beside it, so that of two copies started at once only one becomes the server.
class InstanceEndpoint
{
public:
    /// The socket's name; desktops know the program by the same one.
    static QString name();

    /// Full path of the socket.
    QString socketPath();

    /// Tries to become the one copy that may listen; held for this object's life. A lock of a
    /// process that no longer lives doesn't count.
    bool claim();

private:
    /// Looked up at the first use; made, private to the user, when it is missing.
    QString folder();

    QString m_folder;
    std::unique_ptr<QLockFile> m_lock;
};
