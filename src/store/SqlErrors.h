// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlError>

/// What the store needs to know of the driver's errors.
namespace SqlErrors
{

/// SQLite's result code, -1 when the driver gave none.
inline int number(const QSqlError &error)
{
    const QString code = error.nativeErrorCode();
    return code.isEmpty() ? -1 : code.toInt();
}

/// Whether another process holds the file (SQLITE_BUSY in its basic or an extended form). A
/// commit's error carries no number, only SQLite's words.
inline bool isBusy(const QSqlError &error)
{
    constexpr int busy = 5;
    return (error.isValid() && number(error) != -1 && (number(error) & 0xff) == busy)
        || error.databaseText() == QLatin1String("database is locked");
}

} // namespace SqlErrors
