// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/OwnerLock.h"

#include <QLockFile>
#include <QStringList>
#include <memory>
#include <optional>

/// Where the running copy listens: a socket in the user's private runtime folder. Two locks make
/// sure that there is one such copy: a file beside the socket, so that of two copies started at
/// once only one listens, and one beside the settings file, so that a copy with another runtime
/// folder (or none: su, cron, a container) doesn't serve the same data files.
class InstanceEndpoint
{
public:
    /// The socket's name; desktops know the program by the same one.
    static QString name();

    /// Full path of this copy's socket; empty when there is no usable runtime folder.
    QString socketPath();

    /// Where the running copy may be listening, the likelier first.
    QStringList socketPaths();

    /// Tries to become the one copy that may listen; held for this object's life. A lock of a
    /// process that no longer lives doesn't count. Needs the application's identity.
    bool claim();

    /// Why no copy could become the one here, for the user; empty unless claim() failed for another
    /// reason than another copy.
    QString problem() const { return m_problem; }

private:
    /// Looked up at the first use; made, private to the user, when it is missing. Empty when it
    /// can't be used.
    QString folder();
    static QString ownerLockPath();
    bool claimSettings();
    bool claimSocket();

    std::optional<QString> m_folder;
    QString m_problem;
    std::unique_ptr<OwnerLock> m_ownerLock;
    std::unique_ptr<QLockFile> m_socketLock;
};
