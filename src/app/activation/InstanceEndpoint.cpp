// SPDX-License-Identifier: MIT
#include "app/activation/InstanceEndpoint.h"

#include "shared/Maker.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{
/// The maker's domain, reversed, and the program's name.
QString endpointName()
{
    QStringList parts = QString::fromLatin1(Maker::domain).split(u'.');
    std::reverse(parts.begin(), parts.end());
    return parts.join(u'.') + u".Brindle"_s;
}
} // namespace

QString InstanceEndpoint::folder()
{
    if (m_folder.isEmpty()) {
        m_folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
        if (!QFile::exists(m_folder) && QDir().mkpath(m_folder))
            QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    return m_folder;
}

QString InstanceEndpoint::socketPath()
{
    return folder() + u'/' + endpointName();
}

bool InstanceEndpoint::claim()
{
    if (!m_lock) {
        m_lock = std::make_unique<QLockFile>(socketPath() + u".lock"_s);
        m_lock->setStaleLockTime(0);
    }
    if (m_lock->isLocked() || m_lock->tryLock(0))
        return true;
    // Where no lock can be made at all, a second copy is the smaller evil than none.
    return m_lock->error() != QLockFile::LockFailedError;
}
