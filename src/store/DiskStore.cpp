// SPDX-License-Identifier: MIT
#include "store/DiskStore.h"

#include "shared/Version.h"
#include "store/SqlErrors.h"
#include "store/StoreLogging.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QThread>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcStore, "brindle.store")

namespace
{
constexpr unsigned long retryPauseMs = 100;
constexpr int commitAttempts = 3;
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

DiskStore::DiskStore(QString path)
    : m_connection(path, busyTimeoutMs)
{
    if (!m_connection.database().open())
        throwFileExceptionAndEmit(u"opening file"_s);
    setUpPatiently();
    m_identity.note(path);
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
    m_updated = false;
}

void DiskStore::commitOrThrow()
{
    const QString operation = u"committing SQL transaction before starting a new one"_s;
    // A change that failed half-way must not be saved.
    if (m_unusable)
        throwFileExceptionAndEmit(operation);
    // A commit into a file that is no longer at its path would succeed and be lost.
    if (!isStillAtItsPath()) {
        const QString what
            = u"the file was replaced or removed by another program while it was open"_s;
        throwFileExceptionAndEmit(m_updated ? what + u", so your changes could not be saved in it"_s
                                            : what,
                                  dbFilePath());
    }
    // While other processes read the file a commit fails but leaves the transaction whole. After
    // any other failure the transaction is gone, and a second attempt would only hide the reason.
    QSqlDatabase &database = m_connection.database();
    for (int attempt = 1; !database.commit(); ++attempt) {
        if (attempt == commitAttempts || !SqlErrors::isBusy(database.lastError()))
            throwFileExceptionAndEmit(operation);
        QThread::msleep(retryPauseMs);
    }
}

void DiskStore::commitAndRestartTransaction()
{
    if (m_transactionActive) {
        commitOrThrow();
        m_transactionActive = false;
        m_updated = false;
    }
    startTransaction();
}

void DiskStore::rollbackAndRestartTransaction()
{
    if (m_transactionActive) {
        if (!m_connection.database().rollback())
            throwFileExceptionAndEmit(u"rolling back SQL transaction"_s);
        m_transactionActive = false;
        m_updated = false;
    }
    startTransaction();
    emit rootBodyChanged();
}

QSqlError DiskStore::executeQuery(QSqlQuery *query, bool returnErrors)
{
    // After a failure the database may have ended the transaction by itself; a statement run then
    // would be saved at once.
    if (!m_transactionActive || m_unusable)
        throwFileExceptionAndEmit(u"executeQuery called with no transaction active"_s,
                                  dbFilePath());
    if (!query->exec() && !executeOnceFileIsFree(*query)) {
        if (returnErrors)
            return query->lastError();
        // The user's details show the connection's last error, which doesn't know this one.
        qCDebug(lcStore) << "statement failed:" << query->lastError() << query->lastQuery();
        throwFileExceptionAndEmit(u"executing query"_s);
    }
    if (!m_updated && !query->isSelect()) {
        emit firstUpdateOfTransaction();
        m_updated = true;
    }
    return QSqlError();
}

bool DiskStore::executeOnceFileIsFree(QSqlQuery &query)
{
    // A process that writes can't finish while we hold our share of the file, and SQLite doesn't
    // wait then. As long as nothing is unsaved the transaction can be given up for a moment.
    QSqlDatabase &database = m_connection.database();
    const QDeadlineTimer patience(busyTimeoutMs);
    while (!m_updated && SqlErrors::isBusy(query.lastError()) && !patience.hasExpired()) {
        query.finish();
        if (!database.rollback())
            return false;
        QThread::msleep(retryPauseMs);
        if (!database.transaction())
            return false;
        if (query.exec())
            return true;
    }
    return false;
}

void DiskStore::throwFileExceptionAndEmit(const QString &operation)
{
    const FileException error(&m_connection.database(), operation);
    m_unusable = true;
    emit errorOccurred(error);
    throw error;
}

void DiskStore::throwFileExceptionAndEmit(const QString &message, const QString &path)
{
    const FileException error(u"There was an error: "_s + message + u"."_s, path);
    emit errorOccurred(error);
    throw error;
}
