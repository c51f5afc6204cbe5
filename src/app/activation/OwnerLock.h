// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The lock that makes a process the owner of the settings and of the data files listed in them.
/// The kernel lets go of it when the process ends, however that comes, so it is never stale. Its
/// file stays; while the lock is held it says where the owner can be reached.
class OwnerLock
{
public:
    enum class Result {
        Held, ///< By this object.
        HeldByAnother,
        Impossible, ///< There is no such lock to be had here; errorText() says why.
    };

    /// \a path is that of the lock's file; it and its folder are made when they are missing.
    explicit OwnerLock(QString path);
    ~OwnerLock();
    Q_DISABLE_COPY_MOVE(OwnerLock)

    /// Doesn't wait for another holder.
    Result tryLock();
    void release();
    QString errorText() const { return m_errorText; }

    /// Writes down where the owner, this process, can be reached.
    void noteAddress(const QString &address);
    /// What the owner, or the last one, wrote in the lock's file at \a path; empty when there is
    /// nothing.
    static QString notedAddress(const QString &path);

private:
    Result impossible();

    QString m_path;
    QString m_errorText;
    int m_file = -1;
};
