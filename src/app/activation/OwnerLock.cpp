// SPDX-License-Identifier: MIT
#include "app/activation/OwnerLock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace
{
/// Far beyond the longest path of a socket.
constexpr qint64 longestAddress = 4096;
} // namespace

OwnerLock::OwnerLock(QString path)
    : m_path(std::move(path))
{
}

OwnerLock::~OwnerLock()
{
    release();
}

OwnerLock::Result OwnerLock::tryLock()
{
    if (m_file != -1)
        return Result::Held;
    QDir().mkpath(QFileInfo(m_path).path());
    const QByteArray path = QFile::encodeName(m_path);
    int file = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC,
                      S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH);
    // One that another user has made, root perhaps, can still be locked by whoever may read it.
    if (file == -1 && errno == EACCES)
        file = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (file == -1)
        return impossible();
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
        m_file = file;
        return Result::Held;
    }
    const Result result = errno == EWOULDBLOCK ? Result::HeldByAnother : impossible();
    ::close(file);
    return result;
}

OwnerLock::Result OwnerLock::impossible()
{
    m_errorText = QDir::toNativeSeparators(m_path) + QStringLiteral(": ") + qt_error_string(errno);
    return Result::Impossible;
}

void OwnerLock::release()
{
    if (m_file != -1)
        ::close(std::exchange(m_file, -1));
}

void OwnerLock::noteAddress(const QString &address)
{
    const QByteArray bytes = address.toUtf8();
    if (::ftruncate(m_file, 0) != 0 || ::pwrite(m_file, bytes.constData(), bytes.size(), 0) < 0)
        qWarning("brindle: %s can't be written", qPrintable(m_path));
}

QString OwnerLock::notedAddress(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(longestAddress))
                                          : QString();
}
