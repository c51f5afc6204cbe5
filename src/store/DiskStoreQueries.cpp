// SPDX-License-Identifier: MIT
#include "store/DiskStore.h"

#include "shared/TextHelpers.h"
#include "store/DoneDate.h"
#include "store/SqlErrors.h"
#include "store/StoreLogging.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr int rootExcerptLength = 20;

/// SQLite's generic error, which a malformed full-text query gives.
constexpr int genericErrorCode = 1;

/// The statements, at the place of their QueryType.
const QString statements[] = {
    u"SELECT childstate FROM statecombo WHERE parentstate=:parentstate"_s,
    u"SELECT id FROM entry WHERE parentid=:parentid AND sequence=:sequence"_s,
    u"SELECT id FROM entry WHERE hotkey=:shortcutkey"_s,
    u"SELECT eb.content, e.sequence, e.state, e.parentid, e.donedate, e.hotkeytext FROM entry e INNER JOIN entrybody eb ON eb.docid=e.id WHERE id=:entryid"_s,
    u"SELECT id FROM entry WHERE donedate>=:fromdate AND donedate<=:todate"_s,
    u"SELECT COUNT(*) FROM entry WHERE parentid=:entryid AND NOT EXISTS (SELECT id FROM statecombo WHERE parentstate=:newstate AND childstate=entry.state)"_s,
    u"SELECT MIN(sequence) FROM entry WHERE parentid=:parentid AND state=:state AND sequence>=:sequencelim"_s,
    u"SELECT MAX(sequence) FROM entry WHERE parentid=:parentid AND state=:state AND sequence<=:sequencelim"_s,
    u"SELECT MIN(sequence) FROM entry WHERE parentid=:parentid AND sequence>=:sequencelim"_s,
    u"SELECT MAX(sequence) FROM entry WHERE parentid=:parentid AND sequence<=:sequencelim"_s,
    u"SELECT en.id, eb.content, en.todolistseq FROM entry en INNER JOIN entrybody eb ON en.id=eb.docid WHERE en.todolistseq NOT NULL ORDER BY en.todolistseq"_s,
    u"INSERT INTO entry (parentid, body, sequence, state, donedate) VALUES (:parentid, '', :sequence, :state, :donedate)"_s,
    u"UPDATE entry SET state=:state, donedate=:donedate WHERE id=:entryid"_s,
    u"UPDATE entry SET todolistseq=:sequence WHERE id=:entryid"_s,
    u"UPDATE entry SET todolistseq=NULL WHERE id=:entryid"_s,
    u"UPDATE entry SET hotkey=:shortcutkey, hotkeytext=:shortcutkeytext WHERE id=:entryid"_s,
    u"UPDATE entry SET sequence=:sequence, parentid=:parentid WHERE id=:entryid"_s,
    u"UPDATE entry SET sequence=sequence+1 WHERE parentid=:parentid AND sequence>=:sequence"_s,
    u"DELETE FROM entry WHERE id=:entryid"_s,
    u"INSERT INTO entrybody (docid, content) VALUES (:entryid, :body)"_s,
    u"UPDATE entrybody SET content=:body WHERE docid=:entryid"_s,
    u"DELETE FROM entrybody WHERE docid=:entryid"_s,
    u"SELECT docid, snippet(entrybody,'{','}','..') FROM entrybody WHERE content MATCH :query LIMIT 20"_s,
};

/// A null text would be bound as SQL NULL.
QString notNull(const QString &text)
{
    return text.isNull() ? u""_s : text;
}

int toInt(EntryState state)
{
    return static_cast<int>(state);
}
} // namespace

void DiskStore::prepareQueries()
{
    for (auto &prepared : m_queries)
        prepared.reset();

    static_assert(std::size(statements) == QueryTypeCount);
    for (int type = 0; type < QueryTypeCount; ++type)
        prepareQuery(static_cast<QueryType>(type), statements[type]);

    for (int type = 0; type < QueryTypeCount; ++type) {
        if (!m_queries[type])
            throwMessageAndEmit(u"query %1 was not set up"_s.arg(type), dbFilePath());
    }
}

void DiskStore::prepareQuery(QueryType type, const QString &text)
{
    auto &slot = m_queries[type];
    slot = std::make_unique<QSqlQuery>(m_connection.database());
    slot->setForwardOnly(true);
    const QSqlError error = retryWhileBusy(QDeadlineTimer(m_patienceMs), [&slot, &text] {
        return slot->prepare(text) ? QSqlError() : slot->lastError();
    });
    if (error.isValid())
        throwFileExceptionAndEmit(u"preparing query "_s + QString::number(type));
}

void DiskStore::run(QSqlQuery &query)
{
    executeQuery(&query, false);
}

void DiskStore::runOnEntry(QSqlQuery &update)
{
    run(update);
    const bool entryIsGone = update.numRowsAffected() == 0;
    update.finish();
    if (entryIsGone)
        throwMessageAndEmit(u"the entry was removed by another program"_s, dbFilePath());
}

void DiskStore::refuseMissingParent(long long id)
{
    if (id != -1 && !contains(id)) {
        throwMessageAndEmit(u"the parent of the entry was removed by another program"_s,
                            dbFilePath());
    }
}

void DiskStore::finishReading(QSqlQuery &query, const QString &operation)
{
    const QSqlError error = query.lastError();
    query.finish();
    if (error.isValid()) {
        qCWarning(lcStore) << "reading failed:" << error << query.lastQuery();
        throwFileExceptionAndEmit(operation);
    }
}

bool DiskStore::contains(long long id)
{
    return getEntryInfo(id, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

int DiskStore::readSequence(QSqlQuery &query)
{
    run(query);
    const int sequence = query.next() && !query.isNull(0) ? query.value(0).toInt() : -1;
    query.finish();
    return sequence;
}

long long DiskStore::getEntryId(long long parentId, int sequence)
{
    QSqlQuery &select = query(IdByPlace);
    select.bindValue(u":parentid"_s, parentId);
    select.bindValue(u":sequence"_s, sequence);
    run(select);
    const long long id = select.next() ? select.value(0).toLongLong() : -1;
    select.finish();
    return id;
}

bool DiskStore::getEntryInfo(long long id, QString *body, int *sequence, EntryState *state,
                             long long *parentId, bool *hasChildren, QDateTime *doneDate,
                             QString *shortcutKeyText)
{
    QSqlQuery &select = query(EntryById);
    select.bindValue(u":entryid"_s, id);
    run(select);
    const bool found = select.next();
    if (found) {
        if (body)
            *body = select.value(0).toString();
        if (sequence)
            *sequence = select.value(1).toInt();
        if (state)
            *state = static_cast<EntryState>(select.value(2).toInt());
        if (parentId)
            *parentId = select.value(3).toLongLong();
        if (doneDate)
            *doneDate = DoneDate::fromStored(select.value(4));
        if (shortcutKeyText)
            *shortcutKeyText = select.isNull(5) ? QString() : select.value(5).toString();
    }
    select.finish();
    if (found && hasChildren)
        *hasChildren = getMinEntrySequence(id, lowestSequence) != -1;
    return found;
}

int DiskStore::getMinEntrySequence(long long parentId, int limit)
{
    QSqlQuery &select = query(MinSequence);
    select.bindValue(u":parentid"_s, parentId);
    select.bindValue(u":sequencelim"_s, limit);
    return readSequence(select);
}

int DiskStore::getMaxEntrySequence(long long parentId, int limit)
{
    QSqlQuery &select = query(MaxSequence);
    select.bindValue(u":parentid"_s, parentId);
    select.bindValue(u":sequencelim"_s, limit);
    return readSequence(select);
}

int DiskStore::getMinEntrySequenceWithState(long long parentId, EntryState state, int limit)
{
    QSqlQuery &select = query(MinSequenceWithState);
    select.bindValue(u":parentid"_s, parentId);
    select.bindValue(u":state"_s, toInt(state));
    select.bindValue(u":sequencelim"_s, limit);
    return readSequence(select);
}

int DiskStore::getMaxEntrySequenceWithState(long long parentId, EntryState state, int limit)
{
    QSqlQuery &select = query(MaxSequenceWithState);
    select.bindValue(u":parentid"_s, parentId);
    select.bindValue(u":state"_s, toInt(state));
    select.bindValue(u":sequencelim"_s, limit);
    return readSequence(select);
}

const DiskStore::StateSet *DiskStore::getAllowedChildStates(EntryState parentState)
{
    // The rows never change while the file is open.
    auto &cached = m_allowedChildStates[parentState];
    if (cached)
        return cached.get();
    auto states = std::make_unique<StateSet>();
    QSqlQuery &select = query(AllowedChildStates);
    select.bindValue(u":parentstate"_s, toInt(parentState));
    run(select);
    while (select.next())
        states->insert(static_cast<EntryState>(select.value(0).toInt()));
    finishReading(select);
    cached = std::move(states);
    return cached.get();
}

bool DiskStore::areChildrenCompatibleWithNewState(long long id, EntryState newState)
{
    QSqlQuery &select = query(IncompatibleChildrenCount);
    select.bindValue(u":entryid"_s, id);
    select.bindValue(u":newstate"_s, toInt(newState));
    run(select);
    if (!select.next())
        throwFileExceptionAndEmit(u"checking for children compatible with new state"_s);
    const bool compatible = select.value(0).toLongLong() == 0;
    select.finish();
    return compatible;
}

QList<long long> *DiskStore::getEntryIdsByDoneDate(const QDateTime &from, const QDateTime &to)
{
    auto ids = std::make_unique<QList<long long>>();
    QSqlQuery &select = query(IdsByDoneDate);
    select.bindValue(u":fromdate"_s, DoneDate::toStored(from));
    select.bindValue(u":todate"_s, DoneDate::toStored(to));
    run(select);
    while (select.next())
        ids->append(select.value(0).toLongLong());
    finishReading(select);
    return ids.release();
}

long long DiskStore::getEntryIdByShortcutKey(int key)
{
    QSqlQuery &select = query(IdByShortcutKey);
    select.bindValue(u":shortcutkey"_s, key);
    run(select);
    const long long id = select.next() ? select.value(0).toLongLong() : -1;
    select.finish();
    return id;
}

DiskStore::EntryInfoList *DiskStore::getAllTodosInList()
{
    auto todos = std::make_unique<EntryInfoList>();
    QSqlQuery &select = query(TodoListEntries);
    run(select);
    while (select.next()) {
        todos->append(EntryInfo{select.value(0).toLongLong(), select.value(1).toString(),
                                select.value(2).toInt()});
    }
    finishReading(select);
    return todos.release();
}

DiskStore::EntryInfoList *DiskStore::entrySearch(QString text)
{
    auto results = std::make_unique<EntryInfoList>();
    if (!text.isEmpty() && text.back().category() == QChar::Letter_Lowercase)
        text += u'*';
    if (text.isEmpty())
        return results.release();

    const QString operation = u"searching; query: '"_s + text + u"'"_s;
    QSqlQuery &select = query(SearchBodies);
    select.bindValue(u":query"_s, text);
    const QSqlError error = executeQuery(&select, true);
    if (error.isValid()) {
        select.finish();
        if (SqlErrors::number(error) != genericErrorCode)
            throwFileExceptionAndEmit(operation);
        results->append(EntryInfo{-1, u"query error"_s, -1});
        return results.release();
    }
    while (select.next())
        results->append(EntryInfo{select.value(0).toLongLong(), select.value(1).toString(), -1});
    finishReading(select, operation);
    return results.release();
}

QString DiskStore::getRootExcerpt()
{
    QString body;
    const long long root = getEntryId(-1, 0);
    if (!getEntryInfo(root, &body, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr))
        throw "root entry not found; every file should have a root entry";
    return Global::oneLineExcerpt(body, rootExcerptLength);
}

long long DiskStore::insertEntry(long long parentId, const QString &body, int sequence,
                                 EntryState state, const QDateTime &doneDate)
{
    beginChange();
    refuseMissingParent(parentId);
    if (getEntryId(parentId, sequence) != -1)
        shiftSequences(parentId, sequence);
    QSqlQuery &insert = query(InsertEntry);
    insert.bindValue(u":parentid"_s, parentId);
    insert.bindValue(u":sequence"_s, sequence);
    insert.bindValue(u":state"_s, toInt(state));
    insert.bindValue(u":donedate"_s, DoneDate::toStored(doneDate));
    run(insert);
    insert.finish();

    const long long id = getEntryId(parentId, sequence);
    if (id == -1) {
        throwMessageAndEmit(u"entry not found immediately after inserting it"_s, dbFilePath());
    }
    QSqlQuery &insertText = query(InsertBody);
    insertText.bindValue(u":entryid"_s, id);
    insertText.bindValue(u":body"_s, notNull(body));
    run(insertText);
    insertText.finish();
    return id;
}

void DiskStore::relocateEntryWithoutDeconfliction(long long id, int sequence, int parentId)
{
    beginChange();
    refuseMissingParent(parentId);
    placeEntry(id, sequence, parentId);
}

void DiskStore::placeEntry(long long id, int sequence, long long parentId)
{
    QSqlQuery &update = query(UpdatePlace);
    update.bindValue(u":sequence"_s, sequence);
    update.bindValue(u":parentid"_s, parentId);
    update.bindValue(u":entryid"_s, id);
    runOnEntry(update);
}

void DiskStore::relocateEntry(long long id, int newSequence, int newParentId)
{
    beginChange();
    int sequence = -1;
    long long parentId = -1;
    if (!getEntryInfo(id, nullptr, &sequence, nullptr, &parentId, nullptr, nullptr, nullptr))
        throwMessageAndEmit(u"entry to relocate not found"_s, dbFilePath());
    const bool sameParent = newParentId == keepParent || newParentId == parentId;
    if (sameParent && newSequence == sequence)
        return endChangeOfNothing();

    const long long targetParent = sameParent ? parentId : newParentId;
    if (!sameParent)
        refuseMissingParent(targetParent);
    const long long occupant = getEntryId(targetParent, newSequence);
    if (occupant != -1) {
        // One step up swaps the two; shifting would widen the numbers of the whole tail each time.
        const bool oneStepUp = sameParent && newSequence < sequence
            && getMinEntrySequence(parentId, newSequence + 1) == sequence;
        if (oneStepUp)
            placeEntry(occupant, newSequence + 1, parentId);
        else
            shiftSequences(targetParent, newSequence);
    }
    placeEntry(id, newSequence, targetParent);
}

void DiskStore::shiftEntrySequences(long long parentId, int sequence)
{
    beginChange();
    if (getEntryId(parentId, sequence) == -1)
        endChangeOfNothing();
    else
        shiftSequences(parentId, sequence);
}

void DiskStore::shiftSequences(long long parentId, int sequence)
{
    QSqlQuery &update = query(ShiftSequences);
    update.bindValue(u":parentid"_s, parentId);
    update.bindValue(u":sequence"_s, sequence);
    run(update);
    update.finish();
}

bool DiskStore::deleteEntry(long long id)
{
    beginChange();
    if (getMaxEntrySequence(id, highestSequence) != -1) {
        endChangeOfNothing();
        return false;
    }
    for (const QueryType type : {DeleteBody, DeleteEntry}) {
        QSqlQuery &remove = query(type);
        remove.bindValue(u":entryid"_s, id);
        run(remove);
        remove.finish();
    }
    return true;
}

void DiskStore::updateEntryBody(long long id, const QString &body, bool isRoot)
{
    QSqlQuery &update = query(UpdateBody);
    update.bindValue(u":entryid"_s, id);
    update.bindValue(u":body"_s, notNull(body));
    runOnEntry(update);
    if (isRoot)
        emit rootBodyChanged();
}

void DiskStore::updateEntryState(long long id, EntryState state, const QDateTime &doneDate)
{
    QSqlQuery &update = query(UpdateState);
    update.bindValue(u":state"_s, toInt(state));
    update.bindValue(u":donedate"_s, DoneDate::toStored(doneDate));
    update.bindValue(u":entryid"_s, id);
    runOnEntry(update);
}

void DiskStore::registerShortcut(long long id, int key, const QString &keyText)
{
    if (id == -1)
        throwMessageAndEmit(u"illegal argument to registerShortcut"_s, dbFilePath());
    beginChange();
    unregisterShortcut(getEntryIdByShortcutKey(key));
    writeShortcut(id, key, notNull(keyText));
}

void DiskStore::unregisterShortcut(long long id)
{
    writeShortcut(id, QVariant(QMetaType::fromType<int>()), QString());
}

void DiskStore::writeShortcut(long long id, const QVariant &key, const QString &keyText)
{
    QSqlQuery &update = query(UpdateShortcutKey);
    update.bindValue(u":shortcutkey"_s, key);
    update.bindValue(u":shortcutkeytext"_s, keyText);
    update.bindValue(u":entryid"_s, id);
    run(update);
    update.finish();
}

void DiskStore::updateTodoListSequence(long long id, int sequence)
{
    QSqlQuery &update = query(UpdateTodoListSequence);
    update.bindValue(u":sequence"_s, sequence);
    update.bindValue(u":entryid"_s, id);
    run(update);
    update.finish();
}

void DiskStore::clearTodoListSequence(long long id)
{
    QSqlQuery &update = query(ClearTodoListSequence);
    update.bindValue(u":entryid"_s, id);
    run(update);
    update.finish();
}
