// SPDX-License-Identifier: MIT
#include "store/FileManager.h"

#include "store/StoreLogging.h"

#include <QSet>
#include <QSettings>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{
constexpr QLatin1String filesGroup = QLatin1String("loadfiles");
constexpr QLatin1String singleFileKey = QLatin1String("dbpath");
} // namespace

FileManager::FileManager(int patienceMs)
    : m_patienceMs(patienceMs)
{
    migrateSingleFileSetting();
    const QList<StoredFile> files = readStoredFiles();
    QSet<QString> handled;
    for (const StoredFile &file : files) {
        if (handled.contains(file.path) || isOpen(file.path))
            continue;
        handled.insert(file.path);
        loadStoredFile(file);
    }
}

void FileManager::migrateSingleFileSetting()
{
    QSettings settings;
    settings.setFallbacksEnabled(false);
    if (!settings.contains(singleFileKey))
        return;
    const QString path = settings.value(singleFileKey).toString();
    settings.beginGroup(filesGroup);
    if (!settings.childKeys().isEmpty()) {
        qCDebug(lcStore) << "settings contained both 'dbpath' and 'loadfiles' elements; throwing";
        throw "illegal settings state";
    }
    settings.setValue(u"0"_s, path);
    settings.endGroup();
    settings.remove(singleFileKey);
    settings.sync();
}

QList<FileManager::StoredFile> FileManager::readStoredFiles() const
{
    QSettings settings;
    settings.setFallbacksEnabled(false);
    settings.beginGroup(filesGroup);
    QList<StoredFile> files;
    QSet<int> seen;
    const QStringList keys = settings.childKeys();
    for (const QString &key : keys) {
        bool isNumber = false;
        const int number = key.toInt(&isNumber, 10);
        if (!isNumber) {
            qCDebug(lcStore) << "illegal index string" << key;
            throw "illegal index string in settings";
        }
        if (seen.contains(number)) {
            qCDebug(lcStore) << "duplicate file index" << number << "found in settings; throwing";
            throw "duplicate file index in setting";
        }
        seen.insert(number);
        files.append(StoredFile{number, settings.value(QString::number(number)).toString()});
    }
    std::sort(files.begin(), files.end(),
              [](const StoredFile &a, const StoredFile &b) { return a.number < b.number; });
    return files;
}

void FileManager::loadStoredFile(const StoredFile &file)
{
    if (!isAccessible(file.path)) {
        critical(tr("File could not be accessed. It will be skipped."), file.path);
        dropStoredFile(file.number);
        return;
    }
    qCDebug(lcStore) << "Loading file: " << file.path;
    try {
        openFileInner(file.path, getFileCount());
    } catch (const DiskStore::FileException &e) {
        critical(e.message + tr(" This file will be skipped."), e.details);
        if (e.fileWasBusy)
            m_lockedFiles.append(file.path);
        else
            dropStoredFile(file.number);
    }
}

void FileManager::dropStoredFile(int number)
{
    QSettings settings;
    settings.beginGroup(filesGroup);
    settings.remove(QString::number(number));
    settings.endGroup();
    settings.sync();
}

void FileManager::rewriteLoadedFilesSettingsGroup()
{
    QSettings settings;
    settings.beginGroup(filesGroup);
    settings.remove(QString());
    QStringList paths;
    for (const auto &file : m_files) {
        paths.append(file->dbFilePath());
        m_lockedFiles.removeIf([&file](const QString &path) { return file->isSameFile(path); });
    }
    paths.append(m_lockedFiles);
    for (qsizetype index = 0; index < paths.size(); ++index)
        settings.setValue(QString::number(index), paths.at(index));
    settings.endGroup();
    settings.sync();
}
