// SPDX-License-Identifier: MIT
#include "app/activation/InstanceEndpoint.h"

#include "shared/Maker.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace
{
QString notUsable(const QString &what)
{
    return QCoreApplication::translate("InstanceEndpoint",
                                       "Brindle can't make sure that no other copy has the same "
                                       "files open, and doesn't start: %1")
        .arg(what);
}
} // namespace

QString InstanceEndpoint::name()
{
    return QString::fromLatin1(Maker::applicationId);
}

QString InstanceEndpoint::folder()
{
    if (!m_folder) {
        m_folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
        if (!m_folder->isEmpty() && !QFile::exists(*m_folder) && QDir().mkpath(*m_folder)) {
            QFile::setPermissions(*m_folder,
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
    }
    return *m_folder;
}

QString InstanceEndpoint::socketPath()
{
    return folder().isEmpty() ? QString() : folder() + u'/' + name();
}

QStringList InstanceEndpoint::socketPaths()
{
    QStringList paths{OwnerLock::notedAddress(ownerLockPath()), socketPath()};
    paths.removeAll(QString());
    paths.removeDuplicates();
    return paths;
}

QString InstanceEndpoint::ownerLockPath()
{
    const QFileInfo settings(QSettings().fileName());
    return settings.path() + u'/' + settings.completeBaseName() + u".running"_s;
}

bool InstanceEndpoint::claim()
{
    m_problem.clear();
    if (!claimSettings())
        return false;
    if (!claimSocket()) {
        // Whoever gets no further must not stand in the way of another start.
        m_ownerLock->release();
        return false;
    }
    m_ownerLock->noteAddress(socketPath());
    return true;
}

bool InstanceEndpoint::claimSettings()
{
    if (!m_ownerLock)
        m_ownerLock = std::make_unique<OwnerLock>(ownerLockPath());
    const OwnerLock::Result result = m_ownerLock->tryLock();
    if (result == OwnerLock::Result::Impossible)
        m_problem = notUsable(m_ownerLock->errorText());
    return result == OwnerLock::Result::Held;
}

bool InstanceEndpoint::claimSocket()
{
    if (folder().isEmpty()) {
        m_problem = notUsable(QCoreApplication::translate(
            "InstanceEndpoint",
            "there is no folder for the user's running programs; XDG_RUNTIME_DIR should name one "
            "that belongs to the user alone."));
        return false;
    }
    if (!m_socketLock) {
        m_socketLock = std::make_unique<QLockFile>(socketPath() + u".lock"_s);
        m_socketLock->setStaleLockTime(0);
    }
    if (m_socketLock->isLocked() || m_socketLock->tryLock(0))
        return true;
    if (m_socketLock->error() != QLockFile::LockFailedError) {
        m_problem = notUsable(
            QCoreApplication::translate("InstanceEndpoint", "the folder %1 can't be written.")
                .arg(QDir::toNativeSeparators(folder())));
    }
    return false;
}
