// SPDX-License-Identifier: MIT
#pragma once

#include "shared/Clock.h"
#include "shared/EntryAddress.h"
#include "store/DiskStore.h"

#include <QMessageBox>
#include <QPointer>
#include <memory>
#include <vector>

/// The ordered set of open data files. It owns their stores, remembers them in the settings, saves
/// or discards across all of them, and closes a file that failed.
///
/// Indexes are positions in the list; they shift when files come, go or move, which the signals
/// announce after the change is complete.
class FileManager : public QObject
{
    Q_OBJECT

public:
    /// Opens the files that the settings list; what can't be opened is reported and skipped, and
    /// forgotten unless it is only locked by another process. \a patienceMs is how long a file is
    /// waited for.
    /// \throws const char* when the settings' list is corrupt.
    explicit FileManager(int patienceMs = DiskStore::defaultPatienceMs);
    ~FileManager() override;

    /// The store at \a index; owned by this object, null when there is no such file.
    DiskStore *getFile(int index) const;
    int getFileCount() const;

    /// Ask for a path in a dialog and insert the new or existing file at \a index.
    void createFile(int index);
    void loadFile(int index);
    /// Opens \a path at \a index; a failure is shown and changes nothing.
    void openFile(const QString &path, int index);
    /// \throws DiskStore::FileException
    void openFileInner(const QString &path, int index);
    /// Opens a file named on the command line like one chosen in the open dialog; one that is open
    /// already is skipped in silence.
    void openFileFromCommandLine(const QString &path);
    /// True when a dialog's answer needs no further work: nothing chosen, or open already.
    bool noFileSelectedOrFileAlreadyOpen(const QString &path);
    void unloadFile(int index, bool skipPrompt);
    /// \a toIndex counts in the list without the moved file.
    void reorderFile(int fromIndex, int toIndex);
    /// The entries bound to \a key, at most one per file, in file order.
    QList<EntryAddress> getEntriesByShortcutKey(int key) const;
    void rewriteLoadedFilesSettingsGroup();
    void critical(const QString &text, const QString &detailedText);

    /// Handles all errors that stores have raised so far, without waiting for the event loop.
    void handlePendingFileErrors();

    /// Saves all files. \return false when one failed; its error is then on its way to the user.
    bool commitAndRestartTransactions();
    void rollbackAndRestartTransactions();
    QMessageBox::StandardButton prompUserToMaybeSaveChanges();
    /// Asks whether to save when the first unsaved change is more than four hours old.
    void maybePromptUserToPeriodicallySaveChanges();

    /// When the first unsaved change was made (local time); null when all is saved.
    QDateTime unsavedSince() const { return m_unsavedSince; }
    /// Whether waits for other programs go without a notice on the screen and without dealing with
    /// events; for the end of the session, when no window can be counted on any more.
    void setWaitsInSilence(bool on) { m_waitsInSilence = on; }
    /// Replaces the clock behind the unsaved-since time.
    void setClock(Clock clock) { m_clock = std::move(clock); }

public slots:
    void promptUserToMaybeSaveChangesAndExit();
    /// Handles the oldest error that a store has raised: closes that file and tells the user. That
    /// one is shown; \a e, which can be a later one of the same file, is only logged.
    void fileError(DiskStore::FileException e);
    void firstUpdateOfTransaction();

signals:
    void transactionRollback();
    void fileUnloaded(int fileIndex);
    void fileLoaded(int fileIndex);
    void fileRootBodyChanged();
    void fileMoved(int fromIndex, int toIndex);

private:
    struct StoredFile {
        int number = 0; ///< The key under which the settings hold it.
        QString path;
    };

    struct Failure {
        QPointer<DiskStore> store;
        DiskStore::FileException error;
    };

    void migrateSingleFileSetting();
    QList<StoredFile> readStoredFiles() const;
    void loadStoredFile(const StoredFile &file);
    void dropStoredFile(int number);
    void connectStore(DiskStore *store);
    void queueError(DiskStore *store, const DiskStore::FileException &e);
    void handleOldestError();
    void closeFailedFile(const QPointer<DiskStore> &store);
    int indexOf(const DiskStore *store) const;
    int slotBefore(const QPointer<DiskStore> &next, int index) const;
    static bool isAccessible(const QString &path);
    bool isOpen(const QString &path) const;
    bool makeWayForNewFile(const QString &path);
    void showInformation(const QString &title, const QString &text);

    int m_patienceMs;
    std::vector<std::unique_ptr<DiskStore>> m_files;
    /// Could not be opened at start because others had locked them; remembered behind the open
    /// ones.
    QStringList m_lockedFiles;
    QDateTime m_unsavedSince;
    bool m_waitsInSilence = false;
    Clock m_clock = systemClock();
    QList<Failure> m_failures; ///< The first one of each store, in their order.
};
