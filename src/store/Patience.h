// SPDX-License-Identifier: MIT
#pragma once

#include <QSqlError>
#include <QSqlQuery>
#include <QThread>

/// Waiting for other processes beyond the driver's own busy time.
namespace Patience
{

inline constexpr unsigned long pauseMs = 100;

/// Runs \a attempt up to \a attempts times, with a pause between, until it returns true.
template <typename Attempt> bool tryTimes(int attempts, Attempt attempt)
{
    for (int i = 1; !attempt(); ++i) {
        if (i == attempts)
            return false;
        QThread::msleep(pauseMs);
    }
    return true;
}

/// Whether \a query failed because another process holds the file (SQLite's result code
/// SQLITE_BUSY, in its basic or an extended form).
inline bool failedAsBusy(const QSqlQuery &query)
{
    constexpr int busy = 5;
    return (query.lastError().nativeErrorCode().toInt() & 0xff) == busy;
}

/// Runs \a execute, a way to run \a query, and once more when the file was held meanwhile.
template <typename Execute> bool execute(QSqlQuery &query, Execute execute)
{
    return execute() || (failedAsBusy(query) && tryTimes(1, execute));
}

} // namespace Patience
