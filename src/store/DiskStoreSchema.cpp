// SPDX-License-Identifier: MIT
#include "store/DiskStore.h"

#include "store/SqlErrors.h"
#include "store/StoreLogging.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace
{
constexpr int currentSchema = 4;

/// Which child states may stand under which parent state, in the order in which they are stored.
constexpr std::pair<EntryState, EntryState> stateCombinations[] = {
    {EntryState::None, EntryState::Todo},       {EntryState::None, EntryState::Done},
    {EntryState::None, EntryState::Category},   {EntryState::None, EntryState::WontDo},
    {EntryState::Todo, EntryState::Todo},       {EntryState::Todo, EntryState::Done},
    {EntryState::Todo, EntryState::WontDo},     {EntryState::Done, EntryState::Done},
    {EntryState::Done, EntryState::WontDo},     {EntryState::Category, EntryState::Todo},
    {EntryState::Category, EntryState::Done},   {EntryState::Category, EntryState::Category},
    {EntryState::Category, EntryState::WontDo}, {EntryState::WontDo, EntryState::Todo},
    {EntryState::WontDo, EntryState::Done},     {EntryState::WontDo, EntryState::WontDo},
};
} // namespace

void DiskStore::beginSetUp()
{
    QSqlDatabase &database = m_connection.database();
    const QSqlError error = retryWhileBusy(QDeadlineTimer(m_patienceMs), [&database] {
        QSqlQuery begin(database);
        return begin.exec(u"BEGIN IMMEDIATE"_s) ? QSqlError() : begin.lastError();
    });
    // Why the file can't be written, or read, is said by the step that wants to.
    if (error.isValid() && !database.transaction())
        throwFileExceptionAndEmit(u"opening SQL transaction for file set up"_s);
}

bool DiskStore::executeSetUp(QSqlQuery &query, const QString &sql)
{
    const bool done = query.exec(sql);
    m_lastFailureWasBusy = !done && SqlErrors::isBusy(query.lastError());
    if (done)
        return true;
    qCWarning(lcStore) << "statement failed:" << query.lastError() << sql;
    return false;
}

void DiskStore::setUpBaseData()
{
    beginSetUp();
    int version = 0;
    if (doesTableExist(u"meta"_s)) {
        version = getMetaPropValueInt(u"dbschema"_s);
        // Compared unsigned: a file that doesn't declare its version counts as one of a newer
        // program.
        if (static_cast<unsigned int>(version) > currentSchema) {
            throwMessageAndEmit(u"File ("_s + dbFileName()
                                    + u") is incompatible with this version of Brindle. "
                                      "Consider upgrading your copy and trying again."_s,
                                dbFilePath());
        }
    }
    runUpgrades(version);
    repairSequences();
    setMetaPropValueInt(u"dbschema"_s, currentSchema);
    if (retryWhileBusy(QDeadlineTimer(m_patienceMs), [this] { return commit(); }).isValid())
        throwFileExceptionAndEmit(u"saving changes after schema upgrade"_s);
    if (version != currentSchema)
        compactAfterUpgrade();
}

void DiskStore::compactAfterUpgrade()
{
    const QSqlError error = compact();
    // All is saved; what only takes more room than it must can wait for others.
    m_needsCompacting = SqlErrors::isBusy(error);
    if (error.isValid() && !m_needsCompacting)
        throwFileExceptionAndEmit(u"compacting file"_s);
}

void DiskStore::makeUpForCompacting()
{
    const QSqlError error = compact();
    m_needsCompacting = SqlErrors::isBusy(error);
}

QSqlError DiskStore::compact()
{
    qCDebug(lcStore) << "compacting" << dbFileName();
    QSqlQuery statement(m_connection.database());
    const QSqlError error = statement.exec(u"VACUUM"_s) ? QSqlError() : statement.lastError();
    if (error.isValid())
        qCWarning(lcStore) << "compacting failed:" << error;
    return error;
}

void DiskStore::runUpgrades(int fromVersion)
{
    if (fromVersion < 1)
        upgradeToSchema1();
    if (fromVersion < 2)
        upgradeToSchema2();
    if (fromVersion < 3)
        upgradeToSchema3();
    if (fromVersion < 4)
        upgradeToSchema4();
}

void DiskStore::runSetUpStatement(const QString &sql, const QString &operation)
{
    QSqlQuery statement(m_connection.database());
    if (!executeSetUp(statement, sql))
        throwFileExceptionAndEmit(operation);
}

void DiskStore::logUpgrade(int version) const
{
    qCDebug(lcStore).noquote() << dbFileName() << u"upgraded to schema version %1"_s.arg(version);
}

void DiskStore::upgradeToSchema1()
{
    runSetUpStatement(u"CREATE TABLE entry ( id INTEGER PRIMARY KEY NOT NULL, parentid INTEGER NOT "
                      "NULL REFERENCES entry (id), body TEXT NOT NULL, sequence INTEGER NOT NULL, "
                      "state INTEGER NOT NULL, donedate INTEGER, hotkey INTEGER UNIQUE, hotkeytext "
                      "TEXT )"_s,
                      u"creating entry table"_s);
    runSetUpStatement(u"CREATE INDEX entrysequenceidx ON entry ( parentid, sequence )"_s,
                      u"creating entrysequenceidx index"_s);
    runSetUpStatement(u"CREATE TABLE todolist ( id INTEGER PRIMARY KEY NOT NULL, entryid INTEGER "
                      "UNIQUE NOT NULL REFERENCES entry (id), sequence INTEGER NOT NULL )"_s,
                      u"creating todolist table"_s);
    runSetUpStatement(u"CREATE INDEX todolistsequenceidx ON todolist ( sequence )"_s,
                      u"creating todolistsequenceidx index"_s);
    runSetUpStatement(u"CREATE TABLE statecombo ( id INTEGER PRIMARY KEY NOT NULL, parentstate "
                      "INTEGER NOT NULL, childstate INTEGER NOT NULL )"_s,
                      u"creating statecombo table"_s);
    for (const auto &[parent, child] : stateCombinations)
        insertStateCombo(parent, child);
    runSetUpStatement(u"CREATE TABLE meta ( name TEXT UNIQUE NOT NULL, value TEXT NOT NULL )"_s,
                      u"creating meta table"_s);
    logUpgrade(1);
}

void DiskStore::upgradeToSchema2()
{
    runSetUpStatement(u"CREATE VIRTUAL TABLE entrybody USING fts3(content, tokenize=simple)"_s,
                      u"creating entrybody virtual (fts3) table"_s);
    runSetUpStatement(u"INSERT INTO entrybody (docid,content) SELECT id, body FROM entry"_s,
                      u"moving existing bodies from entry to entrybody"_s);
    runSetUpStatement(u"UPDATE entry SET body=''"_s,
                      u"clearing bodies from entry after moving them to entrybody"_s);
    logUpgrade(2);
}

void DiskStore::upgradeToSchema3()
{
    // The cleaned text holds no quote, so it can stand in a statement as it is.
    runSetUpStatement(u"INSERT INTO entry (parentid, body, sequence, state) VALUES (-1, '"_s
                          + rootTextFromFileName() + u"', 0, "_s
                          + QString::number(static_cast<int>(EntryState::Category)) + u")"_s,
                      u"inserting new root entry into entry"_s);
    qint64 rootId = -1;
    {
        QSqlQuery idQuery(m_connection.database());
        if (!executeSetUp(idQuery, u"SELECT last_insert_rowid()"_s))
            throwFileExceptionAndEmit(u"getting id of new root entry (1)"_s);
        if (!idQuery.next())
            throwFileExceptionAndEmit(u"getting id of new root entry (2)"_s);
        rootId = idQuery.value(0).toLongLong();
    }
    const QString root = QString::number(rootId);
    runSetUpStatement(u"INSERT INTO entrybody (docid, content) VALUES ("_s + root + u", '"_s
                          + rootTextFromFileName() + u"')"_s,
                      u"inserting new root entry into entrybody"_s);
    runSetUpStatement(u"UPDATE entry SET parentid="_s + root + u" WHERE id<>"_s + root
                          + u" AND parentid=-1"_s,
                      u"reparenting previous root entries to new root"_s);
    logUpgrade(3);
}

void DiskStore::upgradeToSchema4()
{
    runSetUpStatement(u"ALTER TABLE entry ADD COLUMN todolistseq INTEGER"_s,
                      u"adding 'todolistseq'' column to entry table"_s);
    runSetUpStatement(u"CREATE UNIQUE INDEX entrytodolistseqidx ON entry (todolistseq)"_s,
                      u"creating unique index on 'todolistseq'' column in entry table"_s);
    runSetUpStatement(u"UPDATE entry SET todolistseq=(SELECT sequence FROM todolist WHERE "
                      "entryid=entry.id)"_s,
                      u"copying todolist sequences from todolist table to entry table"_s);
    runSetUpStatement(u"DROP TABLE todolist"_s, u"dropping todolist table"_s);
    logUpgrade(4);
}

QString DiskStore::rootTextFromFileName() const
{
    static const QRegularExpression otherCharacters(u"[^\\p{L}\\p{N}\\p{M}_.]"_s);
    QString text = dbFileName();
    text.remove(otherCharacters);
    // An empty text would mean "no entry" everywhere.
    return text.isEmpty() ? u"file"_s : text;
}

void DiskStore::insertStateCombo(EntryState parent, EntryState child)
{
    runSetUpStatement(u"INSERT INTO statecombo ( parentstate, childstate ) VALUES ( "_s
                          + QString::number(static_cast<int>(parent)) + u","_s
                          + QString::number(static_cast<int>(child)) + u")"_s,
                      u"inserting into statecombo"_s);
}

bool DiskStore::doesTableExist(const QString &name)
{
    const QString operation = u"checking for existence of '"_s + name + u"' table "_s;
    QSqlQuery query(m_connection.database());
    if (!executeSetUp(
            query,
            u"SELECT COUNT(*)==1 AS count FROM sqlite_master WHERE type='table' AND name='"_s + name
                + u"'"_s))
        throwFileExceptionAndEmit(operation + u"(1)"_s);
    if (!query.next())
        throwFileExceptionAndEmit(operation + u"(2)"_s);
    return query.value(0).toBool();
}

int DiskStore::getMetaPropValueInt(const QString &name)
{
    QSqlQuery query(m_connection.database());
    if (!executeSetUp(query, u"SELECT value FROM meta WHERE name='"_s + name + u"'"_s))
        throwFileExceptionAndEmit(u"checking file schema version number"_s);
    return query.next() ? query.value(0).toInt() : -1;
}

void DiskStore::setMetaPropValueInt(const QString &name, int value)
{
    const QString number = QString::number(value);
    if (getMetaPropValueInt(name) == -1) {
        runSetUpStatement(u"INSERT INTO meta ( name, value ) VALUES ( '"_s + name + u"', "_s
                              + number + u" )"_s,
                          u"inserting a value into meta"_s);
    } else {
        runSetUpStatement(u"UPDATE meta SET value='"_s + number + u"' WHERE name='"_s + name
                              + u"'"_s,
                          u"updating a value in meta"_s);
    }
}

void DiskStore::repairSequences()
{
    // Siblings that share a number hide each other, and a number outside 0 ... 2^31-2 leaves no
    // room for the next; only files that other programs wrote hold such.
    const QList<qint64> parents
        = readIds(u"SELECT parentid FROM entry WHERE parentid<>-1 GROUP BY parentid HAVING "
                  "MIN(sequence)<0 OR MAX(sequence)>2147483646 OR "
                  "COUNT(*)<>COUNT(DISTINCT sequence)"_s);
    for (const qint64 parent : parents) {
        qCDebug(lcStore) << "renumbering the children of entry" << parent;
        const QList<qint64> children = readIds(
            u"SELECT id FROM entry WHERE parentid=%1 ORDER BY sequence, id"_s.arg(parent));
        for (int place = 0; place < children.size(); ++place) {
            runSetUpStatement(
                u"UPDATE entry SET sequence=%1 WHERE id=%2"_s.arg(place).arg(children.at(place)),
                u"renumbering siblings"_s);
        }
    }
}

QList<qint64> DiskStore::readIds(const QString &sql)
{
    QList<qint64> ids;
    QSqlQuery query(m_connection.database());
    query.setForwardOnly(true);
    // A file that can't be read is reported by the steps that need what is in it.
    if (!executeSetUp(query, sql))
        return ids;
    while (query.next())
        ids.append(query.value(0).toLongLong());
    return ids;
}
