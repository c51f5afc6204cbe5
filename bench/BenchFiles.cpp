// SPDX-License-Identifier: MIT
#include "BenchFiles.h"

#include "store/DiskStore.h"

#include <QFile>
#include <QTemporaryDir>
#include <sqlite3.h>
#include <stdexcept>
#include <string>

using namespace Qt::StringLiterals;

namespace
{
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

void execute(sqlite3 *database, const char *sql)
{
    if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database));
}

Statement prepare(sqlite3 *database, const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database));
    return Statement(statement, &sqlite3_finalize);
}

std::string textOf(long long id)
{
    static const char *const words[] = {"write",   "call",  "plan",  "letter", "garden", "invoice",
                                        "meeting", "house", "train", "paper",  "window", "summer"};
    std::string text;
    for (long long i = 0; i < 6; ++i)
        text += std::string(words[(id * 5 + i * i * 3 + id / 12) % 12]) + ' ';
    return text + "no" + std::to_string(id);
}

void insertEntries(sqlite3 *database, int entryCount)
{
    const Statement entry = prepare(database,
                                    "INSERT INTO entry (id, parentid, body, sequence, state, "
                                    "donedate, todolistseq) VALUES (?, ?, '', ?, ?, ?, ?)");
    const Statement text
        = prepare(database, "INSERT INTO entrybody (docid, content) VALUES (?, ?)");
    for (long long id = 2; id <= entryCount; ++id) {
        const bool done = id % 50 == 0;
        sqlite3_reset(entry.get());
        sqlite3_clear_bindings(entry.get());
        sqlite3_bind_int64(entry.get(), 1, id);
        sqlite3_bind_int64(entry.get(), 2, BenchFiles::parentOf(id));
        sqlite3_bind_int(entry.get(), 3, BenchFiles::sequenceOf(id));
        sqlite3_bind_int(entry.get(), 4, done ? 2 : 0);
        if (done)
            sqlite3_bind_text(entry.get(), 5, "2026-01-02T03:04:05", -1, SQLITE_STATIC);
        if (id < 2 + BenchFiles::todoCount)
            sqlite3_bind_int64(entry.get(), 6, id);
        const std::string content = textOf(id);
        sqlite3_reset(text.get());
        sqlite3_bind_int64(text.get(), 1, id);
        sqlite3_bind_text(text.get(), 2, content.c_str(), -1, SQLITE_TRANSIENT);
        if (sqlite3_step(entry.get()) != SQLITE_DONE || sqlite3_step(text.get()) != SQLITE_DONE)
            throw std::runtime_error(sqlite3_errmsg(database));
    }
}

void fill(const QString &path, int entryCount)
{
    {
        const DiskStore store(path);
    }
    sqlite3 *opened = nullptr;
    if (sqlite3_open(qPrintable(path), &opened) != SQLITE_OK)
        throw std::runtime_error("the file to measure on can't be opened");
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, &sqlite3_close);
    execute(opened, "BEGIN");
    insertEntries(opened, entryCount);
    execute(opened, "COMMIT");
}
} // namespace

QString BenchFiles::fileFor(const QString &side, int entryCount)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(u"%1-%2.bdl"_s.arg(side).arg(entryCount));
    if (!QFile::exists(path))
        fill(path, entryCount);
    return path;
}
