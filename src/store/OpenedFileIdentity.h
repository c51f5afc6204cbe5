// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <optional>
#include <utility>

/// Remembers which file a path led to (device and inode), because another program can put a
/// different file at the same path while ours is open.
class OpenedFileIdentity
{
public:
    /// Takes the file now at \a path.
    void note(const QString &path);
    /// Whether \a path leads to the noted file; false when nothing is there.
    bool matches(const QString &path) const;

private:
    using DeviceAndInode = std::pair<quint64, quint64>;
    static std::optional<DeviceAndInode> read(const QString &path);

    std::optional<DeviceAndInode> m_noted;
};
