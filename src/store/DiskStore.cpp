// SPDX-License-Identifier: MIT
#include "store/DiskStore.h"

#include "shared/Version.h"
#include "store/SqlErrors.h"
#include "store/StoreLogging.h"

#include <QFileInfo>
#include <QThread>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcStore, "brindle.store")

namespace
{
/// SQLite's own wait covers what can't be tried again from here.
constexpr int sqliteTimeoutMs = 200;
constexpr unsigned long retryPauseMs = 50;

class SilentWait : public FileWait
{
public:
    void pause() override { QThread::msleep(retryPauseMs); }
};

bool isChange(const QSqlQuery &query)
{
    return !query.lastQuery().startsWith(u"SELECT"_s, Qt::CaseInsensitive);
}

DiskStore::FileException ownError(const QString &message, const QString &path)
{
    return {u"There was an error: "_s + message + u"."_s, path};
}
} // namespace

DiskStore::FileException::FileException(QString userMessage, QString technicalDetails)
    : message(std::move(userMessage))
    , details(std::move(technicalDetails))
{
}

DiskStore::FileException::FileException(const QSqlDatabase *database, const QString &operation)
{
    const QString path = database->databaseName();
    const QSqlError error = database->lastError();
    message = u"There was an error accessing file "_s + QFileInfo(path).fileName() + u"."_s;
    details = QStringList {
        u"operation: "_s + operation,
        u"file path: "_s + path,
        u"error type: "_s + QString::number(error.type()),
        u"error code: "_s + QString::number(SqlErrors::number(error)),
        u"error message: "_s + error.databaseText(),
        u"driver error message: "_s + error.driverText(),
        u"app version: "_s + Version::text(),
    }.join(u'\n');
}

DiskStore::Source::Source(QString filePath, int patience)
    : path(std::move(filePath))
    , patienceMs(patience)
{
}

DiskStore::DiskStore(const Source &source, FileWaitFactory beginWait)
    : m_connection(source.path, sqliteTimeoutMs)
    , m_patienceMs(source.patienceMs)
    , m_beginWait(std::move(beginWait))
{
    if (!m_connection.database().open())
        throwFileExceptionAndEmit(u"opening file"_s);
    setUpBaseData();
    m_identity.note(source.path);
    prepareQueries();
    startTransaction();
}

DiskStore::~DiskStore()
{
    for (auto &prepared : m_queries) {
        if (prepared)
            prepared->finish();
    }
    if (m_transactionActive)
        m_connection.database().rollback();
    // The members then go in reverse order: first the states and queries, last the connection.
}

QString DiskStore::dbFilePath() const
{
    return m_connection.database().databaseName();
}

QString DiskStore::dbFileName() const
{
    return QFileInfo(dbFilePath()).fileName();
}

bool DiskStore::isSameFile(const QString &path) const
{
    if (path == dbFilePath() || m_identity.matches(path))
        return true;
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(dbFilePath()).canonicalFilePath();
}

bool DiskStore::isCompanionFile(const QString &path) const
{
    const auto belongsToUs = [this, &path](const QString &suffix) {
        return path.endsWith(suffix) && isSameFile(path.chopped(suffix.size()));
    };
    return belongsToUs(u"-journal"_s) || belongsToUs(u"-wal"_s) || belongsToUs(u"-shm"_s);
}

bool DiskStore::isStillAtItsPath() const
{
    return m_identity.matches(dbFilePath());
}

void DiskStore::startTransaction()
{
    if (m_transactionActive)
        return;
    qCDebug(lcStore) << "starting SQL transaction";
    if (!m_connection.database().transaction())
        throwFileExceptionAndEmit(u"starting SQL transaction"_s);
    m_transactionActive = true;
    m_hasWriteLock = false;
    m_updated = false;
}

void DiskStore::commitOrThrow(const QDeadlineTimer &deadline)
{
    const QString operation = u"committing SQL transaction before starting a new one"_s;
    // A change that failed half-way must not be saved.
    if (m_unusable)
        throwFileExceptionAndEmit(operation);
    // While other processes read the file a commit fails but leaves the transaction whole. After
    // any other failure the transaction is gone, and a second attempt would only hide the reason.
    const QSqlError error = retryWhileBusy(deadline, [this] {
        refuseReplacedFile();
        return commit();
    });
    if (error.isValid())
        throwFileExceptionAndEmit(operation);
}

void DiskStore::refuseReplacedFile()
{
    // A commit into a file that is no longer at its path would succeed and be lost.
    if (isStillAtItsPath())
        return;
    const QString what = u"the file was replaced or removed by another program while it was open"_s;
    // Only an earlier attempt found the file busy.
    m_lastFailureWasBusy = false;
    // The store goes on: what it holds is the only copy, and the user may still want to read it.
    emitAndThrow(ownError(m_updated ? what + u", so your changes could not be saved in it"_s : what,
                          dbFilePath()));
}

QSqlError DiskStore::commit()
{
    QSqlDatabase &database = m_connection.database();
    return database.commit() ? QSqlError() : database.lastError();
}

void DiskStore::commitAndRestartTransaction()
{
    commitAndRestartTransaction(QDeadlineTimer(m_patienceMs));
}

void DiskStore::commitAndRestartTransaction(const QDeadlineTimer &deadline)
{
    if (m_transactionActive) {
        commitOrThrow(deadline);
        m_transactionActive = false;
        m_updated = false;
        if (m_needsCompacting)
            makeUpForCompacting();
    }
    startTransaction();
}

void DiskStore::rollbackAndRestartTransaction()
{
    restartTransaction();
    emit rootBodyChanged();
}

void DiskStore::restartTransaction()
{
    if (m_transactionActive) {
        if (!m_connection.database().rollback())
            throwFileExceptionAndEmit(u"rolling back SQL transaction"_s);
        m_transactionActive = false;
        m_updated = false;
    }
    startTransaction();
}

void DiskStore::refuseUnlessUsable()
{
    // After a failure the database may have ended the transaction by itself; a statement run then
    // would be saved at once.
    if (!m_transactionActive || m_unusable)
        throwMessageAndEmit(u"executeQuery called with no transaction active"_s, dbFilePath());
}

QSqlError DiskStore::executeQuery(QSqlQuery *query, bool returnErrors)
{
    refuseUnlessUsable();
    const bool changes = isChange(*query);
    QSqlError error = changes ? takeWriteLock() : QSqlError();
    if (!error.isValid() && !query->exec()) {
        error = query->lastError();
        if (SqlErrors::isBusy(error))
            error = executeOnceFileIsFree(*query);
    }
    if (error.isValid()) {
        if (returnErrors)
            return error;
        // The user's details show the connection's last error, which doesn't know this one.
        qCWarning(lcStore) << "statement failed:" << error << query->lastQuery();
        throwFileExceptionAndEmit(u"executing query"_s);
    }
    if (!m_updated && changes) {
        emit firstUpdateOfTransaction();
        m_updated = true;
    }
    return QSqlError();
}

QSqlError DiskStore::executeOnceFileIsFree(QSqlQuery &query)
{
    // Only the first query of a transaction can find the file busy, so no snapshot is given up.
    // What goes on during the wait may read with the same query.
    const QVariantList values = query.boundValues();
    return retryWhileBusy(QDeadlineTimer(m_patienceMs), [&query, &values] {
        for (int i = 0; i < values.size(); ++i)
            query.bindValue(i, values.at(i));
        return query.exec() ? QSqlError() : query.lastError();
    });
}

QSqlError DiskStore::retryWhileBusy(const QDeadlineTimer &deadline,
                                    const std::function<QSqlError()> &attempt)
{
    QSqlError error = attempt();
    m_lastFailureWasBusy = SqlErrors::isBusy(error);
    if (!m_lastFailureWasBusy)
        return error;
    std::unique_ptr<FileWait> wait = m_beginWait ? m_beginWait(dbFileName()) : nullptr;
    if (!wait)
        wait = std::make_unique<SilentWait>();
    while (m_lastFailureWasBusy && !deadline.hasExpired()) {
        wait->pause();
        error = attempt();
        m_lastFailureWasBusy = SqlErrors::isBusy(error);
    }
    return error;
}

void DiskStore::beginChange()
{
    refuseUnlessUsable();
    const QSqlError error = takeWriteLock();
    if (error.isValid()) {
        qCWarning(lcStore) << "no write lock:" << error;
        throwFileExceptionAndEmit(u"executing query"_s);
    }
}

void DiskStore::endChangeOfNothing()
{
    if (!m_updated)
        restartTransaction();
}

QSqlError DiskStore::takeWriteLock()
{
    const QSqlError error
        = retryWhileBusy(QDeadlineTimer(m_patienceMs), [this] { return restartAsWriter(); });
    // Why the file can't be written is said by the statement that wants to.
    return SqlErrors::isBusy(error) ? error : QSqlError();
}

QSqlError DiskStore::restartAsWriter()
{
    if (m_hasWriteLock || m_updated)
        return QSqlError();
    // Nothing is unsaved yet. What was read is let go, because another writer can't finish before.
    QSqlDatabase &database = m_connection.database();
    if (!database.rollback())
        throwFileExceptionAndEmit(u"rolling back SQL transaction"_s);
    QSqlQuery begin(database);
    m_hasWriteLock = begin.exec(u"BEGIN IMMEDIATE"_s);
    if (m_hasWriteLock)
        return QSqlError();
    if (!database.transaction()) {
        m_transactionActive = false;
        throwFileExceptionAndEmit(u"starting SQL transaction"_s);
    }
    return begin.lastError();
}

void DiskStore::throwFileExceptionAndEmit(const QString &operation)
{
    m_unusable = true;
    emitAndThrow(FileException(&m_connection.database(), operation));
}

void DiskStore::throwMessageAndEmit(const QString &message, const QString &path)
{
    m_unusable = true;
    m_lastFailureWasBusy = false;
    emitAndThrow(ownError(message, path));
}

void DiskStore::emitAndThrow(FileException error)
{
    error.fileWasBusy = m_lastFailureWasBusy;
    qCWarning(lcStore).noquote() << error.message << QString(error.details).replace(u'\n', u"; "_s);
    emit errorOccurred(error);
    throw error;
}
