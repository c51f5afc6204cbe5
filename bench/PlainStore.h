// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <vector>

/// The store's operations done with the same statements through SQLite's own C interface, each
/// prepared once: the least that they can cost.
class PlainStore
{
public:
    struct Info {
        std::string body;
        int sequence = -1;
        int state = -1;
        long long parentId = -1;
        bool hasChildren = false;
        std::string doneDate;
        std::string keyText;
    };
    struct Row {
        long long id = -1;
        std::string body;
        int sequence = -1;
    };

    /// Opens \a path and begins a transaction, which ends without being kept.
    explicit PlainStore(const QString &path);
    ~PlainStore();
    Q_DISABLE_COPY_MOVE(PlainStore)

    long long getEntryId(long long parentId, int sequence);
    bool getEntryInfo(long long id, Info *info);
    int getMinEntrySequence(long long parentId, int limit);
    int getMaxEntrySequence(long long parentId, int limit);
    int getMinEntrySequenceWithState(long long parentId, int state, int limit);
    int getMaxEntrySequenceWithState(long long parentId, int state, int limit);
    std::vector<int> getAllowedChildStates(int parentState);
    bool areChildrenCompatibleWithNewState(long long id, int newState);
    std::vector<long long> getEntryIdsByDoneDate(const std::string &from, const std::string &to);
    long long getEntryIdByShortcutKey(int key);
    std::vector<Row> getAllTodosInList();
    std::vector<Row> entrySearch(const std::string &text);
    std::string getRootExcerpt();

    long long insertEntry(long long parentId, const std::string &body, int sequence, int state);
    void relocateEntry(long long id, int sequence);
    void relocateEntryWithoutDeconfliction(long long id, int sequence, long long parentId);
    void shiftEntrySequences(long long parentId, int sequence);
    bool deleteEntry(long long id);
    void updateEntryBody(long long id, const std::string &body);
    void updateEntryState(long long id, int state, const std::string &doneDate);
    void registerShortcut(long long id, int key, const std::string &keyText);
    void unregisterShortcut(long long id);
    void updateTodoListSequence(long long id, int sequence);
    void clearTodoListSequence(long long id);

private:
    class Run;

    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> m_database{nullptr, &sqlite3_close};
    std::vector<std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>> m_statements;
};
