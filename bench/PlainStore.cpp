// SPDX-License-Identifier: MIT
#include "PlainStore.h"

#include <climits>
#include <stdexcept>

namespace
{
enum Type {
    AllowedChildStates,
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
};

const char *const statements[] = {
    "SELECT childstate FROM statecombo WHERE parentstate=?",
    "SELECT id FROM entry WHERE parentid=? AND sequence=?",
    "SELECT id FROM entry WHERE hotkey=?",
    "SELECT eb.content, e.sequence, e.state, e.parentid, e.donedate, e.hotkeytext FROM entry e "
    "INNER JOIN entrybody eb ON eb.docid=e.id WHERE id=?",
    "SELECT id FROM entry WHERE donedate>=? AND donedate<=?",
    "SELECT COUNT(*) FROM entry WHERE parentid=? AND NOT EXISTS (SELECT id FROM statecombo WHERE "
    "parentstate=? AND childstate=entry.state)",
    "SELECT MIN(sequence) FROM entry WHERE parentid=? AND state=? AND sequence>=?",
    "SELECT MAX(sequence) FROM entry WHERE parentid=? AND state=? AND sequence<=?",
    "SELECT MIN(sequence) FROM entry WHERE parentid=? AND sequence>=?",
    "SELECT MAX(sequence) FROM entry WHERE parentid=? AND sequence<=?",
    "SELECT en.id, eb.content, en.todolistseq FROM entry en INNER JOIN entrybody eb ON "
    "en.id=eb.docid WHERE en.todolistseq NOT NULL ORDER BY en.todolistseq",
    "INSERT INTO entry (parentid, body, sequence, state, donedate) VALUES (?, '', ?, ?, ?)",
    "UPDATE entry SET state=?, donedate=? WHERE id=?",
    "UPDATE entry SET todolistseq=? WHERE id=?",
    "UPDATE entry SET todolistseq=NULL WHERE id=?",
    "UPDATE entry SET hotkey=?, hotkeytext=? WHERE id=?",
    "UPDATE entry SET sequence=?, parentid=? WHERE id=?",
    "UPDATE entry SET sequence=sequence+1 WHERE parentid=? AND sequence>=?",
    "DELETE FROM entry WHERE id=?",
    "INSERT INTO entrybody (docid, content) VALUES (?, ?)",
    "UPDATE entrybody SET content=? WHERE docid=?",
    "DELETE FROM entrybody WHERE docid=?",
    "SELECT docid, snippet(entrybody,'{','}','..') FROM entrybody WHERE content MATCH ? LIMIT 20",
};
} // namespace

/// One run of a prepared statement: values bound in their order, then the rows, then its reset.
class PlainStore::Run
{
public:
    Run(PlainStore &store, Type type)
        : m_statement(store.m_statements[static_cast<std::size_t>(type)].get())
    {
    }
    ~Run() { sqlite3_reset(m_statement); }
    Q_DISABLE_COPY_MOVE(Run)

    Run &operator<<(long long value)
    {
        sqlite3_bind_int64(m_statement, ++m_bound, value);
        return *this;
    }
    Run &operator<<(int value)
    {
        sqlite3_bind_int(m_statement, ++m_bound, value);
        return *this;
    }
    Run &operator<<(const std::string &value)
    {
        sqlite3_bind_text(m_statement, ++m_bound, value.c_str(), static_cast<int>(value.size()),
                          SQLITE_STATIC);
        return *this;
    }
    Run &operator<<(std::nullptr_t)
    {
        sqlite3_bind_null(m_statement, ++m_bound);
        return *this;
    }

    bool next()
    {
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE)
            throw std::runtime_error("a plain statement failed");
        return result == SQLITE_ROW;
    }
    void done()
    {
        while (next()) { }
    }

    bool isNull(int column) const
    {
        return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
    }
    long long number(int column) const { return sqlite3_column_int64(m_statement, column); }
    int integer(int column) const { return sqlite3_column_int(m_statement, column); }
    std::string text(int column) const
    {
        const unsigned char *const text = sqlite3_column_text(m_statement, column);
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
        return text ? std::string(reinterpret_cast<const char *>(text), size) : std::string();
    }
    int sequenceOrNone() { return next() && !isNull(0) ? integer(0) : -1; }

private:
    sqlite3_stmt *m_statement;
    int m_bound = 0;
};

PlainStore::PlainStore(const QString &path)
{
    sqlite3 *database = nullptr;
    if (sqlite3_open(qPrintable(path), &database) != SQLITE_OK)
        throw std::runtime_error("the file to measure on can't be opened");
    m_database.reset(database);
    for (const char *sql : statements) {
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr)
            != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(database));
        m_statements.emplace_back(statement, &sqlite3_finalize);
    }
    sqlite3_exec(database, "BEGIN", nullptr, nullptr, nullptr);
}

PlainStore::~PlainStore()
{
    sqlite3_exec(m_database.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    m_statements.clear();
}

long long PlainStore::getEntryId(long long parentId, int sequence)
{
    Run run(*this, IdByPlace);
    run << parentId << sequence;
    return run.next() ? run.number(0) : -1;
}

bool PlainStore::getEntryInfo(long long id, Info *info)
{
    {
        Run run(*this, EntryById);
        run << id;
        if (!run.next())
            return false;
        info->body = run.text(0);
        info->sequence = run.integer(1);
        info->state = run.integer(2);
        info->parentId = run.number(3);
        info->doneDate = run.text(4);
        info->keyText = run.text(5);
    }
    info->hasChildren = getMinEntrySequence(id, INT_MIN) != -1;
    return true;
}

int PlainStore::getMinEntrySequence(long long parentId, int limit)
{
    Run run(*this, MinSequence);
    run << parentId << limit;
    return run.sequenceOrNone();
}

int PlainStore::getMaxEntrySequence(long long parentId, int limit)
{
    Run run(*this, MaxSequence);
    run << parentId << limit;
    return run.sequenceOrNone();
}

int PlainStore::getMinEntrySequenceWithState(long long parentId, int state, int limit)
{
    Run run(*this, MinSequenceWithState);
    run << parentId << state << limit;
    return run.sequenceOrNone();
}

int PlainStore::getMaxEntrySequenceWithState(long long parentId, int state, int limit)
{
    Run run(*this, MaxSequenceWithState);
    run << parentId << state << limit;
    return run.sequenceOrNone();
}

std::vector<int> PlainStore::getAllowedChildStates(int parentState)
{
    Run run(*this, AllowedChildStates);
    run << parentState;
    std::vector<int> states;
    while (run.next())
        states.push_back(run.integer(0));
    return states;
}

bool PlainStore::areChildrenCompatibleWithNewState(long long id, int newState)
{
    Run run(*this, IncompatibleChildrenCount);
    run << id << newState;
    return run.next() && run.number(0) == 0;
}

std::vector<long long> PlainStore::getEntryIdsByDoneDate(const std::string &from,
                                                         const std::string &to)
{
    Run run(*this, IdsByDoneDate);
    run << from << to;
    std::vector<long long> ids;
    while (run.next())
        ids.push_back(run.number(0));
    return ids;
}

long long PlainStore::getEntryIdByShortcutKey(int key)
{
    Run run(*this, IdByShortcutKey);
    run << key;
    return run.next() ? run.number(0) : -1;
}

std::vector<PlainStore::Row> PlainStore::getAllTodosInList()
{
    Run run(*this, TodoListEntries);
    std::vector<Row> rows;
    while (run.next())
        rows.push_back(Row{run.number(0), run.text(1), run.integer(2)});
    return rows;
}

std::vector<PlainStore::Row> PlainStore::entrySearch(const std::string &text)
{
    Run run(*this, SearchBodies);
    run << text;
    std::vector<Row> rows;
    while (run.next())
        rows.push_back(Row{run.number(0), run.text(1), -1});
    return rows;
}

std::string PlainStore::getRootExcerpt()
{
    const long long root = getEntryId(-1, 0);
    Run run(*this, EntryById);
    run << root;
    return run.next() ? run.text(0).substr(0, 20) : std::string();
}

long long PlainStore::insertEntry(long long parentId, const std::string &body, int sequence,
                                  int state)
{
    shiftEntrySequences(parentId, sequence);
    {
        Run run(*this, InsertEntry);
        run << parentId << sequence << state << nullptr;
        run.done();
    }
    const long long id = getEntryId(parentId, sequence);
    Run run(*this, InsertBody);
    run << id << body;
    run.done();
    return id;
}

void PlainStore::relocateEntry(long long id, int sequence)
{
    int now = -1;
    long long parent = -1;
    {
        Run run(*this, EntryById);
        run << id;
        if (!run.next())
            return;
        now = run.integer(1);
        parent = run.number(3);
    }
    if (now == sequence)
        return;
    const long long occupant = getEntryId(parent, sequence);
    if (occupant != -1) {
        if (sequence < now && getMinEntrySequence(parent, sequence + 1) == now)
            relocateEntryWithoutDeconfliction(occupant, sequence + 1, parent);
        else
            shiftEntrySequences(parent, sequence);
    }
    relocateEntryWithoutDeconfliction(id, sequence, parent);
}

void PlainStore::relocateEntryWithoutDeconfliction(long long id, int sequence, long long parentId)
{
    Run run(*this, UpdatePlace);
    run << sequence << parentId << id;
    run.done();
}

void PlainStore::shiftEntrySequences(long long parentId, int sequence)
{
    if (getEntryId(parentId, sequence) == -1)
        return;
    Run run(*this, ShiftSequences);
    run << parentId << sequence;
    run.done();
}

bool PlainStore::deleteEntry(long long id)
{
    if (getMaxEntrySequence(id, INT_MAX) != -1)
        return false;
    for (const Type type : {DeleteBody, DeleteEntry}) {
        Run run(*this, type);
        run << id;
        run.done();
    }
    return true;
}

void PlainStore::updateEntryBody(long long id, const std::string &body)
{
    Run run(*this, UpdateBody);
    run << body << id;
    run.done();
}

void PlainStore::updateEntryState(long long id, int state, const std::string &doneDate)
{
    Run run(*this, UpdateState);
    run << state << doneDate << id;
    run.done();
}

void PlainStore::registerShortcut(long long id, int key, const std::string &keyText)
{
    unregisterShortcut(getEntryIdByShortcutKey(key));
    Run run(*this, UpdateShortcutKey);
    run << key << keyText << id;
    run.done();
}

void PlainStore::unregisterShortcut(long long id)
{
    Run run(*this, UpdateShortcutKey);
    run << nullptr << nullptr << id;
    run.done();
}

void PlainStore::updateTodoListSequence(long long id, int sequence)
{
    Run run(*this, UpdateTodoListSequence);
    run << sequence << id;
    run.done();
}

void PlainStore::clearTodoListSequence(long long id)
{
    Run run(*this, ClearTodoListSequence);
    run << id;
    run.done();
}
