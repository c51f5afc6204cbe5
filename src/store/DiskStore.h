// SPDX-License-Identifier: MIT
#pragma once

#include "shared/EntryState.h"
#include "store/DatabaseConnection.h"
#include "store/FileWait.h"
#include "store/OpenedFileIdentity.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QList>
#include <QObject>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <array>
#include <functional>
#include <limits>
#include <map>
#include <memory>

/// One open data file: an SQLite database of entries inside one always-open transaction.
///
/// Nothing reaches the disk before commitAndRestartTransaction(). Sequences order the children of
/// one parent; gaps are allowed. -1 means none throughout. Every failing file operation emits
/// errorOccurred() and then throws FileException; after that the store refuses all further work
/// and waits to be closed, unless all that is wrong is that the file at its path was replaced.
class DiskStore : public QObject
{
    Q_OBJECT

public:
    /// A failed file operation, in the words the user sees.
    struct FileException {
        FileException(QString userMessage, QString technicalDetails);
        /// Gathers the details from the last error of \a database (the connection's, not the failed
        /// query's) while \a operation was running.
        FileException(const QSqlDatabase *database, const QString &operation);

        QString message; ///< One sentence for the user.
        QString details; ///< The technical account, shown on demand.
        /// Nothing but another process's lock was in the way: later it may go well.
        bool fileWasBusy = false;
    };

    /// One row of a list of entries.
    struct EntryInfo {
        qint64 id = -1; ///< -1 in the single row that reports a malformed search.
        QString body; ///< The entry's text, or the excerpt of a search result.
        int sequence = -1; ///< Place on the to-do list; -1 in search results.
    };

    using EntryInfoList = QList<EntryInfo>;
    using StateSet = QSet<EntryState>;

    /// Limits that mean "from the very first" and "up to the very last".
    static constexpr int lowestSequence = std::numeric_limits<int>::min();
    static constexpr int highestSequence = std::numeric_limits<int>::max();
    /// In place of a parent's id: the entry keeps its parent.
    static constexpr int keepParent = -2;

    /// How long an operation waits for other processes to let go of the file before it fails, where
    /// nothing else is asked for.
    static constexpr int defaultPatienceMs = 10000;

    /// A file to open.
    struct Source {
        // Implicit: most files are opened with nothing but a path.
        Source(QString filePath, int patience = defaultPatienceMs);

        QString path;
        /// How long each operation waits for other processes, in milliseconds.
        int patienceMs;
    };

    /// Opens the file of \a source, makes it when missing, and brings it to the current schema.
    /// \a beginWait is called whenever the store has to wait for another process, as long as it
    /// lives; without one it waits in silence.
    /// \throws FileException when it can't be opened, set up or upgraded.
    explicit DiskStore(const Source &source, FileWaitFactory beginWait = {});
    /// Closes the file; what was not committed is lost.
    ~DiskStore() override;

    QString dbFilePath() const;
    /// Last component of the path, extension included.
    QString dbFileName() const;

    /// Whether \a path, however it is spelled, leads to the file that this store has open.
    bool isSameFile(const QString &path) const;
    /// Whether \a path leads to one of the files that SQLite keeps beside the open one, whether it
    /// is there at the moment or not.
    bool isCompanionFile(const QString &path) const;
    /// Whether the file at the store's path is still the one that was opened.
    bool isStillAtItsPath() const;

    /// \name Transaction
    /// @{
    void startTransaction();
    /// Saves. A commit that other readers hold up is tried again until the store's patience ends.
    void commitAndRestartTransaction();
    /// Likewise until \a deadline, which several stores may share; it is tried at least once.
    void commitAndRestartTransaction(const QDeadlineTimer &deadline);
    void rollbackAndRestartTransaction();
    /// Runs the bound \a query inside the transaction; when it changes the file and is no part of
    /// an operation below, other writers are waited for first. With \a returnErrors a failure is
    /// returned instead of thrown.
    QSqlError executeQuery(QSqlQuery *query, bool returnErrors);
    /// Fails with the connection's last error, met while \a operation was running.
    [[noreturn]] void throwFileExceptionAndEmit(const QString &operation);
    /// Fails with a \a message of the program's own, when it wasn't the database that failed.
    [[noreturn]] void throwMessageAndEmit(const QString &message, const QString &path);
    /// @}

    /// \name Reading
    /// @{
    long long getEntryId(long long parentId, int sequence);
    /// Reads an entry into the outputs that are not null. \return false when there is none.
    bool getEntryInfo(long long id, QString *body, int *sequence, EntryState *state,
                      long long *parentId, bool *hasChildren, QDateTime *doneDate,
                      QString *shortcutKeyText);
    bool contains(long long id);
    /// Smallest sibling sequence at or above \a limit; -1 when none. The others likewise.
    int getMinEntrySequence(long long parentId, int limit);
    int getMaxEntrySequence(long long parentId, int limit);
    int getMinEntrySequenceWithState(long long parentId, EntryState state, int limit);
    int getMaxEntrySequenceWithState(long long parentId, EntryState state, int limit);
    /// The states that a child of an entry in \a parentState may have; owned by the store.
    const StateSet *getAllowedChildStates(EntryState parentState);
    bool areChildrenCompatibleWithNewState(long long id, EntryState newState);
    /// Ids of the entries done between \a from and \a to, both included. The caller owns the list.
    QList<long long> *getEntryIdsByDoneDate(const QDateTime &from, const QDateTime &to);
    long long getEntryIdByShortcutKey(int key);
    /// The entries on the to-do list in its order. The caller owns the list.
    EntryInfoList *getAllTodosInList();
    /// At most 20 entries that match the full-text query \a text. The caller owns the list.
    EntryInfoList *entrySearch(QString text);
    /// The root entry's text, cut to 20 characters.
    /// \throws const char* when the file has no root entry.
    QString getRootExcerpt();
    /// @}

    /// \name Writing
    /// @{
    long long insertEntry(long long parentId, const QString &body, int sequence, EntryState state,
                          const QDateTime &doneDate);
    /// Moves an entry before whatever holds the place; \a parentId -2 keeps the parent.
    void relocateEntry(long long id, int sequence, int parentId);
    void relocateEntryWithoutDeconfliction(long long id, int sequence, int parentId);
    void shiftEntrySequences(long long parentId, int sequence);
    /// \return false, with nothing changed, when the entry has children.
    bool deleteEntry(long long id);
    void updateEntryBody(long long id, const QString &body, bool isRoot);
    /// Writes state and date as given; the date does not follow from the state here.
    void updateEntryState(long long id, EntryState state, const QDateTime &doneDate);
    void registerShortcut(long long id, int key, const QString &keyText);
    void unregisterShortcut(long long id);
    void updateTodoListSequence(long long id, int sequence);
    void clearTodoListSequence(long long id);
    /// @}

signals:
    /// Emitted right before the exception is thrown.
    void errorOccurred(DiskStore::FileException error);
    /// The first change in the current transaction has just been made.
    void firstUpdateOfTransaction();
    /// The text of the root entry may have changed.
    void rootBodyChanged();

private:
    /// Numbers are part of the error texts; the order is that of the statements.
    enum QueryType {
        AllowedChildStates = 0,
        IdByPlace,
        IdByShortcutKey,
        EntryById,
        IdsByDoneDate,
        IncompatibleChildrenCount,
        MinSequenceWithState,
        MaxSequenceWithState,
        MinSequence,
        MaxSequence,
        TodoListEntries,
        InsertEntry,
        UpdateState,
        UpdateTodoListSequence,
        ClearTodoListSequence,
        UpdateShortcutKey,
        UpdatePlace,
        ShiftSequences,
        DeleteEntry,
        InsertBody,
        UpdateBody,
        DeleteBody,
        SearchBodies,
        QueryTypeCount,
    };

    void setUpBaseData();
    void beginSetUp();
    void compactAfterUpgrade();
    void makeUpForCompacting();
    QSqlError compact();
    void runUpgrades(int fromVersion);
    void upgradeToSchema1();
    void upgradeToSchema2();
    void upgradeToSchema3();
    void upgradeToSchema4();
    void logUpgrade(int version) const;
    bool executeSetUp(QSqlQuery &query, const QString &sql);
    void runSetUpStatement(const QString &sql, const QString &operation);
    void insertStateCombo(EntryState parent, EntryState child);
    bool doesTableExist(const QString &name);
    int getMetaPropValueInt(const QString &name);
    void setMetaPropValueInt(const QString &name, int value);
    void repairSequences();
    QList<qint64> readIds(const QString &sql);
    QString rootTextFromFileName() const;

    [[noreturn]] void emitAndThrow(FileException error);

    void prepareQueries();
    void prepareQuery(QueryType type, const QString &text);
    /// Runs a prepared query, errors thrown.
    void run(QSqlQuery &query);
    /// Runs a prepared \a update of one entry, which another program may have removed since the
    /// caller saw it: what was to be kept in it must not be dropped in silence.
    void runOnEntry(QSqlQuery &update);
    /// Likewise for an entry that is to get a child; -1, above the root, is always there.
    void refuseMissingParent(long long id);
    /// Makes \a attempt until it fails for no other process's sake, or \a deadline is over.
    /// \return the last attempt's error. An attempt that was in vain leaves nothing half-done.
    QSqlError retryWhileBusy(const QDeadlineTimer &deadline,
                             const std::function<QSqlError()> &attempt);
    void refuseUnlessUsable();
    /// Keeps other writers away from now on until the transaction ends. What an operation reads
    /// before it changes anything is only true when this comes first.
    void beginChange();
    /// Lets other writers in again after a beginChange() that led to no change.
    void endChangeOfNothing();
    /// Drops what is not committed.
    void restartTransaction();
    QSqlError executeOnceFileIsFree(QSqlQuery &query);
    QSqlError takeWriteLock();
    QSqlError restartAsWriter();
    /// Ends the reading of many rows; rows that a damaged file withholds are an error, met in
    /// \a operation.
    void finishReading(QSqlQuery &query,
                       const QString &operation = QStringLiteral("executing query"));
    QSqlQuery &query(QueryType type) { return *m_queries[type]; }
    int readSequence(QSqlQuery &query);
    /// The current parent may have an id that the public operations' 32-bit parameter can't hold.
    void placeEntry(long long id, int sequence, long long parentId);
    /// Moves the siblings at \a sequence and above one up.
    void shiftSequences(long long parentId, int sequence);
    void writeShortcut(long long id, const QVariant &key, const QString &keyText);
    void commitOrThrow(const QDeadlineTimer &deadline);
    void refuseReplacedFile();
    /// One attempt.
    QSqlError commit();

    DatabaseConnection m_connection;
    int m_patienceMs;
    FileWaitFactory m_beginWait;
    OpenedFileIdentity m_identity;
    std::array<std::unique_ptr<QSqlQuery>, QueryTypeCount> m_queries;
    std::map<EntryState, std::unique_ptr<StateSet>> m_allowedChildStates;
    bool m_transactionActive = false;
    bool m_updated = false;
    bool m_hasWriteLock = false;
    bool m_lastFailureWasBusy = false;
    bool m_unusable = false;
    bool m_needsCompacting = false;
};

Q_DECLARE_METATYPE(DiskStore::FileException)
