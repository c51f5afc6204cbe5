// SPDX-License-Identifier: MIT
#include "store/FileManager.h"

#include "store/DataFileDialog.h"
#include "store/StoreLogging.h"
#include "store/WaitNotice.h"

#include <QDir>
#include <QTimer>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{
constexpr int retryAfterWaitMs = 100;
}

FileManager::~FileManager()
{
    for (auto &file : m_files)
        file.reset();
}

DiskStore *FileManager::getFile(int index) const
{
    return index >= 0 && index < getFileCount() ? m_files[static_cast<size_t>(index)].get()
                                                : nullptr;
}

int FileManager::getFileCount() const
{
    return static_cast<int>(m_files.size());
}

int FileManager::indexOf(const DiskStore *store) const
{
    const auto found = std::find_if(m_files.begin(), m_files.end(),
                                    [store](const auto &file) { return file.get() == store; });
    return found == m_files.end() ? -1 : static_cast<int>(found - m_files.begin());
}

int FileManager::slotBefore(const QPointer<DiskStore> &next, int index) const
{
    // The list can change while a dialog is open.
    const int position = indexOf(next);
    return next && position != -1 ? position : std::min(index, getFileCount());
}

bool FileManager::isAccessible(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && info.isReadable() && info.isWritable();
}

bool FileManager::isOpen(const QString &path) const
{
    return std::any_of(m_files.begin(), m_files.end(), [&path](const auto &file) {
        return file->isSameFile(path) || file->isCompanionFile(path);
    });
}

void FileManager::openFileInner(const QString &path, int index)
{
    auto store = std::make_unique<DiskStore>(
        DiskStore::Source(path, m_patienceMs),
        [this](const QString &name) -> std::unique_ptr<FileWait> {
            return m_waitsInSilence ? nullptr : std::make_unique<WaitNotice>(name);
        });
    try {
        store->getRootExcerpt();
    } catch (const char *text) {
        // Every reader of the file relies on the root entry.
        store->throwMessageAndEmit(QString::fromLatin1(text), path);
    }
    connectStore(store.get());
    const int slot = std::clamp(index, 0, getFileCount());
    m_files.insert(m_files.begin() + slot, std::move(store));
}

void FileManager::connectStore(DiskStore *store)
{
    connect(store, &DiskStore::errorOccurred, this,
            [this, store](const DiskStore::FileException &e) { queueError(store, e); });
    connect(store, &DiskStore::firstUpdateOfTransaction, this,
            &FileManager::firstUpdateOfTransaction);
    connect(store, &DiskStore::rootBodyChanged, this, &FileManager::fileRootBodyChanged);
}

void FileManager::queueError(DiskStore *store, const DiskStore::FileException &e)
{
    // One error closes the file; what else fails on the way there is only of technical interest,
    // and logged already.
    const auto isOfStore = [store](const Failure &failure) { return failure.store == store; };
    if (std::any_of(m_failures.cbegin(), m_failures.cend(), isOfStore))
        return;
    m_failures.append(Failure{store, e});
    // Queued, because the store is deleted and the failing call must have left it by then.
    QMetaObject::invokeMethod(
        this, [this, e] { fileError(e); }, Qt::QueuedConnection);
}

void FileManager::fileError(DiskStore::FileException e)
{
    // Whoever waits is going through the list of files.
    if (WaitNotice::isShown()) {
        QTimer::singleShot(retryAfterWaitMs, this, [this, e] { fileError(e); });
        return;
    }
    if (m_failures.isEmpty())
        qCDebug(lcStore).noquote() << "error of a closed file:" << e.message;
    else
        handleOldestError();
}

void FileManager::handlePendingFileErrors()
{
    while (!m_failures.isEmpty())
        handleOldestError();
}

void FileManager::handleOldestError()
{
    const Failure failure = m_failures.takeFirst();
    if (indexOf(failure.store) == -1)
        return;
    // Closed now, it is there again at the next start.
    if (failure.error.fileWasBusy)
        m_lockedFiles.append(failure.store->dbFilePath());
    const QString text = failure.error.message + tr(" This file has been closed.");
    if (failure.store->isStillAtItsPath()) {
        closeFailedFile(failure.store);
        critical(text, failure.error.details);
        return;
    }
    // The only copy of the data is the one that this store holds open: the user hears of it first.
    critical(text, failure.error.details);
    closeFailedFile(failure.store);
}

void FileManager::closeFailedFile(const QPointer<DiskStore> &store)
{
    if (!store)
        return;
    try {
        unloadFile(indexOf(store), true);
    } catch (const DiskStore::FileException &) {
        // A second file failed while the others took notice; its own error follows.
    }
}

void FileManager::openFile(const QString &path, int index)
{
    const QString absolute = QDir::isRelativePath(path) ? QDir().absoluteFilePath(path) : path;
    const int slot = std::clamp(index, 0, getFileCount());
    try {
        openFileInner(absolute, slot);
    } catch (const DiskStore::FileException &e) {
        critical(e.message + tr(" The file could not be loaded."), e.details);
        return;
    }
    rewriteLoadedFilesSettingsGroup();
    emit fileLoaded(slot);
}

void FileManager::openFileFromCommandLine(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (isOpen(absolute))
        return;
    if (isAccessible(absolute))
        openFile(absolute, getFileCount());
    else
        critical(tr("File could not be accessed. It will be skipped."), absolute);
}

bool FileManager::noFileSelectedOrFileAlreadyOpen(const QString &path)
{
    if (path.isEmpty())
        return true;
    if (!isOpen(path))
        return false;
    showInformation(tr("File Already Open"), tr("That file is already open."));
    return true;
}

bool FileManager::makeWayForNewFile(const QString &path)
{
    if (QFileInfo::exists(path) && !QFile::remove(path)) {
        showInformation(tr("File Access Error"),
                        tr("That file could not be overwritten. Please select a different file."));
        return false;
    }
    QFile probe(path);
    if (!probe.open(QIODevice::ReadWrite) || (probe.close(), !probe.remove())) {
        showInformation(tr("File Access Error"),
                        tr("That file could not be written. Please select a different file."));
        return false;
    }
    return true;
}

void FileManager::createFile(int index)
{
    const QPointer<DiskStore> next = getFile(index);
    while (true) {
        const QString path = DataFileDialog::askForNewFile();
        if (noFileSelectedOrFileAlreadyOpen(path))
            return;
        if (makeWayForNewFile(path)) {
            openFile(path, slotBefore(next, index));
            return;
        }
    }
}

void FileManager::loadFile(int index)
{
    const QPointer<DiskStore> next = getFile(index);
    while (true) {
        const QString path = DataFileDialog::askForExistingFile();
        if (noFileSelectedOrFileAlreadyOpen(path))
            return;
        if (isAccessible(path)) {
            openFile(path, slotBefore(next, index));
            return;
        }
        showInformation(tr("File Not Accessible"),
                        tr("That file cannot be edited. Please select a different file."));
    }
}

void FileManager::unloadFile(int index, bool skipPrompt)
{
    // The list can change while the prompt is open.
    const QPointer<DiskStore> store = getFile(index);
    if (!skipPrompt && !m_unsavedSince.isNull()) {
        const QMessageBox::StandardButton answer = prompUserToMaybeSaveChanges();
        // After a failed save the error is to be read first.
        if (answer == QMessageBox::Save && !commitAndRestartTransactions())
            return;
        if (answer != QMessageBox::Save && answer != QMessageBox::Discard)
            return;
    }
    const int position = indexOf(store);
    if (!store || position == -1)
        return;
    m_files[static_cast<size_t>(position)].reset();
    m_files.erase(m_files.begin() + position);
    rewriteLoadedFilesSettingsGroup();
    if (m_files.empty())
        m_unsavedSince = QDateTime();
    emit fileUnloaded(position);
}

void FileManager::reorderFile(int fromIndex, int toIndex)
{
    if (!getFile(fromIndex))
        return;
    auto moved = std::move(m_files[static_cast<size_t>(fromIndex)]);
    m_files.erase(m_files.begin() + fromIndex);
    m_files.insert(m_files.begin() + std::clamp(toIndex, 0, getFileCount()), std::move(moved));
    rewriteLoadedFilesSettingsGroup();
    emit fileMoved(fromIndex, toIndex);
}

QList<EntryAddress> FileManager::getEntriesByShortcutKey(int key) const
{
    QList<EntryAddress> addresses;
    for (int index = 0; index < getFileCount(); ++index) {
        const long long id = getFile(index)->getEntryIdByShortcutKey(key);
        if (id != -1)
            addresses.append(EntryAddress{index, id});
    }
    return addresses;
}

void FileManager::critical(const QString &text, const QString &detailedText)
{
    QMessageBox box(QMessageBox::Critical, QString(), text, QMessageBox::Ok);
    box.setTextFormat(Qt::PlainText);
    box.setDetailedText(detailedText);
    box.setDefaultButton(QMessageBox::Ok);
    box.exec();
}

void FileManager::showInformation(const QString &title, const QString &text)
{
    QMessageBox::information(nullptr, title, text, QMessageBox::Ok);
}
