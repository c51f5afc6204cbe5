// SPDX-License-Identifier: MIT
#include "app/activation/InstanceEndpoint.h"

#include "shared/Maker.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

QString InstanceEndpoint::name()
{
    return QString::fromLatin1(Maker::applicationId);
}

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
    return folder() + u'/' + name();
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
