// SPDX-License-Identifier: MIT
#include "store/DatabaseConnection.h"

using namespace Qt::StringLiterals;

DatabaseConnection::DatabaseConnection(const QString &path, int busyTimeoutMs)
    : m_database(QSqlDatabase::addDatabase(u"QSQLITE"_s, path))
{
    m_database.setDatabaseName(path);
    m_database.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=%1"_s.arg(busyTimeoutMs));
}

DatabaseConnection::~DatabaseConnection()
{
    m_database.close();
    const QString name = m_database.connectionName();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}
