// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlDatabase>
#include <QString>

/// One registered SQLite connection, named by the file's path. It closes and unregisters itself, so
/// that a store whose construction fails half-way leaves no open file behind. All queries on it
/// must be gone before it is.
class DatabaseConnection
{
public:
    /// Registers the connection; nothing is opened yet.
    DatabaseConnection(const QString &path, int busyTimeoutMs);
    ~DatabaseConnection();
    Q_DISABLE_COPY_MOVE(DatabaseConnection)

    QSqlDatabase &database() { return m_database; }
    const QSqlDatabase &database() const { return m_database; }

private:
    QSqlDatabase m_database;
};
