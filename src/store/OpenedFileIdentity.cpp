// SPDX-License-Identifier: MIT
#include "store/OpenedFileIdentity.h"

#include <QFile>

#include <sys/stat.h>

void OpenedFileIdentity::note(const QString &path)
{
    m_noted = read(path);
}

bool OpenedFileIdentity::matches(const QString &path) const
{
    const auto now = read(path);
    return now && now == m_noted;
}

std::optional<OpenedFileIdentity::DeviceAndInode> OpenedFileIdentity::read(const QString &path)
{
    struct stat status {
    };
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return DeviceAndInode(status.st_dev, status.st_ino);
}
