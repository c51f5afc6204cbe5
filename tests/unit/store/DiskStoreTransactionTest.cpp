// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;
const QString entryCount = u"SELECT COUNT(*) FROM entry"_s;

/// Runs \a statement on the store's own connection, behind its back.
void runBehind(const DiskStore &store, const QString &statement)
{
    QCOMPARE(rowsInside(store, statement), QStringList());
}
} // namespace

/// The transaction that is always open, its signals, and the errors that end a store's work.
class DiskStoreTransactionTest : public QObject
{
    Q_OBJECT

private slots:
    void closingLeavesNothingInUse();
    void nothingIsOnDiskBeforeTheCommit();
    void commitKeepsAndRollbackDrops();
    void firstUpdateIsAnnouncedOncePerTransaction();
    void selectNeverAnnouncesAnUpdate();
    void firstUpdateIsAnnouncedWhenTheChangeIsAlreadyMade();
    void rollbackAlwaysAnnouncesTheRootBody();
    void commitDoesNotAnnounceTheRootBody();
    void startingAnActiveTransactionDoesNothing();
    void transactionStartIsWrittenToTheDebugOutput();
    void returnedErrorEmitsThrowsAndChangesNothing();
    void failedStatementIsEmittedThenThrown();
    void failedCommitHasTheDatabasesErrorInItsSevenLines();
    void failedRollbackHasTheDatabasesErrorInItsSevenLines();
    void queryOutsideATransactionIsAnError();
    void failedStoreRefusesFurtherWork();
    void failedStoreSavesNothingMore();
    void nameInTheErrorIsTheLastComponent();
    void errorTravelsThroughAQueuedSignal();
    void removedFileIsNotSavedIntoNowhere();
    void replacedFileIsNeitherSavedNorTouched();
    void movedFileIsNotSavedUnderItsOldName();
    void fileStillAtItsPathIsKnown();
    void sameFileIsKnownUnderEverySpelling();
    void otherFileIsNotTakenForTheSame();
};

void DiskStoreTransactionTest::closingLeavesNothingInUse()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    // The toolkit says so when a connection, or a query on it, outlives its file.
    QTest::failOnWarning(QRegularExpression(u"still in use"_s));
    {
        DiskStore store(path);
        store.getRootExcerpt();
        QVERIFY(QSqlDatabase::contains(path));
    }
    QVERIFY(!QSqlDatabase::contains(path));
}

void DiskStoreTransactionTest::nothingIsOnDiskBeforeTheCommit()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    const QByteArray before = bytes(path);
    addEntry(store, rootId, u"new"_s, 0);
    store.updateEntryBody(rootId, u"other"_s, true);
    QCOMPARE(bytes(path), before);
    QCOMPARE(rows(path, entryCount), QStringList{u"1"_s});
    store.commitAndRestartTransaction();
    QCOMPARE(rows(path, u"SELECT content FROM entrybody ORDER BY docid"_s),
             (QStringList{u"other"_s, u"new"_s}));
}

void DiskStoreTransactionTest::commitKeepsAndRollbackDrops()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    addEntry(store, rootId, u"kept"_s, 0);
    store.commitAndRestartTransaction();
    addEntry(store, rootId, u"dropped"_s, 1);
    store.rollbackAndRestartTransaction();
    QCOMPARE(childTexts(store, rootId), QStringList{u"kept@0"_s});
    addEntry(store, rootId, u"kept too"_s, 1);
    store.commitAndRestartTransaction();
    store.rollbackAndRestartTransaction();
    QCOMPARE(childTexts(store, rootId), (QStringList{u"kept@0"_s, u"kept too@1"_s}));
    QCOMPARE(rows(path, entryCount), QStringList{u"3"_s});
}

void DiskStoreTransactionTest::firstUpdateIsAnnouncedOncePerTransaction()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QSignalSpy updates(&store, &DiskStore::firstUpdateOfTransaction);
    const long long id = addEntry(store, rootId, u"a"_s, 0);
    store.updateEntryBody(id, u"b"_s, false);
    QCOMPARE(updates.count(), 1);
    store.commitAndRestartTransaction();
    QCOMPARE(updates.count(), 1);
    store.updateEntryBody(id, u"c"_s, false);
    store.updateEntryBody(id, u"d"_s, false);
    QCOMPARE(updates.count(), 2);
    store.rollbackAndRestartTransaction();
    store.updateEntryBody(id, u"e"_s, false);
    QCOMPARE(updates.count(), 3);
}

void DiskStoreTransactionTest::selectNeverAnnouncesAnUpdate()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QSignalSpy updates(&store, &DiskStore::firstUpdateOfTransaction);
    store.getEntryId(rootId, 0);
    store.getRootExcerpt();
    store.getAllowedChildStates(EntryState::Todo);
    store.areChildrenCompatibleWithNewState(rootId, EntryState::Done);
    const std::unique_ptr<QList<long long>> done(store.getEntryIdsByDoneDate(
        QDateTime::currentDateTimeUtc(), QDateTime::currentDateTimeUtc()));
    const std::unique_ptr<DiskStore::EntryInfoList> todos(store.getAllTodosInList());
    const std::unique_ptr<DiskStore::EntryInfoList> found(store.entrySearch(u"a"_s));
    QCOMPARE(updates.count(), 0);
}

void DiskStoreTransactionTest::firstUpdateIsAnnouncedWhenTheChangeIsAlreadyMade()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QString seen;
    connect(&store, &DiskStore::firstUpdateOfTransaction, &store,
            [&] { seen = rowsInside(store, u"SELECT content FROM entrybody"_s).join(u','); });
    store.updateEntryBody(rootId, u"changed"_s, true);
    QCOMPARE(seen, u"changed"_s);
}

void DiskStoreTransactionTest::rollbackAlwaysAnnouncesTheRootBody()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QStringList seen;
    connect(&store, &DiskStore::rootBodyChanged, &store, [&] { seen << store.getRootExcerpt(); });
    store.rollbackAndRestartTransaction();
    QCOMPARE(seen, QStringList{u"a.bdl"_s});
    store.updateEntryBody(rootId, u"changed"_s, false);
    store.rollbackAndRestartTransaction();
    QCOMPARE(seen, (QStringList{u"a.bdl"_s, u"a.bdl"_s}));
}

void DiskStoreTransactionTest::commitDoesNotAnnounceTheRootBody()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QSignalSpy roots(&store, &DiskStore::rootBodyChanged);
    store.updateEntryBody(rootId, u"changed"_s, false);
    store.commitAndRestartTransaction();
    QCOMPARE(roots.count(), 0);
    store.updateEntryBody(rootId, u"changed again"_s, true);
    QCOMPARE(roots.count(), 1);
}

void DiskStoreTransactionTest::startingAnActiveTransactionDoesNothing()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QSignalSpy updates(&store, &DiskStore::firstUpdateOfTransaction);
    const long long id = addEntry(store, rootId, u"a"_s, 0);
    store.startTransaction();
    store.updateEntryBody(id, u"b"_s, false);
    QCOMPARE(updates.count(), 1);
    store.rollbackAndRestartTransaction();
    QCOMPARE(childTexts(store, rootId), QStringList());
}

void DiskStoreTransactionTest::transactionStartIsWrittenToTheDebugOutput()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const DebugLines debugLines;
    store.startTransaction();
    QVERIFY(!DebugLines::has({u"starting SQL transaction"_s}));
    store.commitAndRestartTransaction();
    QVERIFY(DebugLines::has({u"starting SQL transaction"_s}));
}

void DiskStoreTransactionTest::returnedErrorEmitsThrowsAndChangesNothing()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    const QSignalSpy updates(&store, &DiskStore::firstUpdateOfTransaction);
    {
        QSqlQuery query(QSqlDatabase::database(store.dbFilePath()));
        QVERIFY(query.prepare(u"INSERT INTO entry (id, parentid, body, sequence, state) VALUES (1, "
                              "1, '', 0, 0)"_s));
        const QSqlError error = store.executeQuery(&query, true);
        QVERIFY(error.isValid());
        QCOMPARE(error.nativeErrorCode(), u"1555"_s);
        QVERIFY(query.prepare(u"SELECT id FROM entry"_s));
        QVERIFY(!store.executeQuery(&query, true).isValid());
    }
    QCOMPARE(errors.count(), 0);
    QCOMPARE(updates.count(), 0);
    addEntry(store, rootId, u"a"_s, 0);
    QCOMPARE(updates.count(), 1);
    store.commitAndRestartTransaction();
    QCOMPARE(rows(store.dbFilePath(), entryCount), QStringList{u"2"_s});
}

void DiskStoreTransactionTest::failedStatementIsEmittedThenThrown()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    QCOMPARE(
        change(path,
               {u"CREATE TRIGGER t BEFORE UPDATE ON entry BEGIN SELECT RAISE(FAIL, 'refused'); "
                "END"_s}),
        QString());
    DiskStore store(path);
    QList<DiskStore::FileException> emitted;
    bool thrown = false;
    bool thrownBeforeEmitted = false;
    connect(&store, &DiskStore::errorOccurred, &store, [&](const DiskStore::FileException &error) {
        emitted << error;
        thrownBeforeEmitted = thrown;
    });
    const auto e = fileError([&] { store.updateEntryState(rootId, EntryState::Todo, {}); });
    thrown = true;
    QVERIFY(e);
    QVERIFY(!thrownBeforeEmitted);
    QCOMPARE(emitted.size(), 1);
    QCOMPARE(emitted.first().message, e->message);
    QCOMPARE(emitted.first().details, e->details);
    QCOMPARE(e->message, u"There was an error accessing file a.bdl."_s);
    // The connection's last error, which a failed statement leaves empty; not the statement's own.
    QCOMPARE(e->details.split(u'\n'),
             (QStringList{u"operation: executing query"_s, u"file path: "_s + path,
                          u"error type: 0"_s, u"error code: -1"_s, u"error message: "_s,
                          u"driver error message: "_s, u"app version: 0.3"_s}));
}

void DiskStoreTransactionTest::failedCommitHasTheDatabasesErrorInItsSevenLines()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    runBehind(store, u"ROLLBACK"_s);
    const auto e = fileError([&] { store.commitAndRestartTransaction(); });
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error accessing file a.bdl."_s);
    QCOMPARE(e->details.split(u'\n'),
             (QStringList{u"operation: committing SQL transaction before starting a new one"_s,
                          u"file path: "_s + path, u"error type: 3"_s, u"error code: -1"_s,
                          u"error message: cannot commit - no transaction is active"_s,
                          u"driver error message: Unable to commit transaction"_s,
                          u"app version: 0.3"_s}));
}

void DiskStoreTransactionTest::failedRollbackHasTheDatabasesErrorInItsSevenLines()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    const QSignalSpy roots(&store, &DiskStore::rootBodyChanged);
    runBehind(store, u"ROLLBACK"_s);
    const auto e = fileError([&] { store.rollbackAndRestartTransaction(); });
    QVERIFY(e);
    QCOMPARE(e->details.split(u'\n'),
             (QStringList{u"operation: rolling back SQL transaction"_s, u"file path: "_s + path,
                          u"error type: 3"_s, u"error code: -1"_s,
                          u"error message: cannot rollback - no transaction is active"_s,
                          u"driver error message: Unable to rollback transaction"_s,
                          u"app version: 0.3"_s}));
    QCOMPARE(roots.count(), 0);
}

void DiskStoreTransactionTest::queryOutsideATransactionIsAnError()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    runBehind(store, u"ROLLBACK"_s);
    QVERIFY(fileError([&] { store.rollbackAndRestartTransaction(); }));
    const auto e = fileError([&] { store.getEntryId(-1, 0); });
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error: executeQuery called with no transaction active."_s);
    QCOMPARE(e->details, path);
    QCOMPARE(errors.count(), 2);
}

void DiskStoreTransactionTest::failedStoreRefusesFurtherWork()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    // Such a failure ends the whole transaction; what ran next would be saved at once.
    QCOMPARE(change(path,
                    {u"CREATE TRIGGER t BEFORE UPDATE OF state ON entry BEGIN SELECT "
                     "RAISE(ROLLBACK, 'gone'); END"_s}),
             QString());
    DiskStore store(path);
    addEntry(store, rootId, u"before"_s, 0);
    QVERIFY(fileError([&] { store.updateEntryState(rootId, EntryState::Todo, {}); }));
    QVERIFY(fileError([&] { addEntry(store, rootId, u"after"_s, 1); }));
    QVERIFY(fileError([&] { store.updateEntryBody(rootId, u"after"_s, true); }));
    QVERIFY(fileError([&] { store.getEntryId(rootId, 0); }));
    QCOMPARE(rows(path, u"SELECT content FROM entrybody"_s), QStringList{u"a.bdl"_s});
}

void DiskStoreTransactionTest::failedStoreSavesNothingMore()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    // The second half of an insertion fails: the entry is there, its text isn't.
    QCOMPARE(
        change(path,
               {u"CREATE TRIGGER t BEFORE INSERT ON entrybody_content BEGIN SELECT RAISE(FAIL, "
                "'full'); END"_s}),
        QString());
    {
        DiskStore store(path);
        QVERIFY(fileError([&] { addEntry(store, rootId, u"half"_s, 0); }));
        QVERIFY(fileError([&] { store.commitAndRestartTransaction(); }));
    }
    QCOMPARE(rows(path, entryCount), QStringList{u"1"_s});
}

void DiskStoreTransactionTest::nameInTheErrorIsTheLastComponent()
{
    const TestSettings settings;
    DiskStore store(settings.filePath(u"My odd 'name'.x.bdl"_s));
    runBehind(store, u"ROLLBACK"_s);
    const auto e = fileError([&] { store.commitAndRestartTransaction(); });
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error accessing file My odd 'name'.x.bdl."_s);
}

void DiskStoreTransactionTest::errorTravelsThroughAQueuedSignal()
{
    qRegisterMetaType<DiskStore::FileException>("DiskStore::FileException");
    const TestSettings settings;
    DiskStore store(settings.filePath(u"a.bdl"_s));
    QStringList messages;
    connect(
        &store, &DiskStore::errorOccurred, this,
        [&](const DiskStore::FileException &e) { messages << e.message << e.details; },
        Qt::QueuedConnection);
    QVERIFY(fileError([&] { store.registerShortcut(-1, 1, u"x"_s); }));
    QCOMPARE(messages, QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(messages,
             (QStringList{u"There was an error: illegal argument to registerShortcut."_s,
                          store.dbFilePath()}));
}

void DiskStoreTransactionTest::removedFileIsNotSavedIntoNowhere()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    addEntry(store, rootId, u"new"_s, 0);
    QVERIFY(QFile::remove(path));
    QVERIFY(!store.isStillAtItsPath());
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    QVERIFY(fileError([&] { store.commitAndRestartTransaction(); }));
    QCOMPARE(errors.count(), 1);
    // The only copy is in this transaction: it stays until the store is closed.
    QCOMPARE(childTexts(store, rootId), QStringList{u"new@0"_s});
    QVERIFY(!QFile::exists(path));
}

void DiskStoreTransactionTest::replacedFileIsNeitherSavedNorTouched()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    const QString other = settings.filePath(u"other.bdl"_s);
    makeEmptyStore(other);
    const QByteArray otherBytes = bytes(other);
    {
        DiskStore store(path);
        addEntry(store, rootId, u"new"_s, 0);
        QVERIFY(QFile::remove(path));
        QVERIFY(QFile::rename(other, path));
        const auto e = fileError([&] { store.commitAndRestartTransaction(); });
        QVERIFY(e);
        QVERIFY(e->details.contains(path));
        QCOMPARE(bytes(path), otherBytes);
    }
    QCOMPARE(bytes(path), otherBytes);
}

void DiskStoreTransactionTest::movedFileIsNotSavedUnderItsOldName()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    const QString moved = settings.filePath(u"moved.bdl"_s);
    DiskStore store(path);
    store.commitAndRestartTransaction();
    QVERIFY(QFile::rename(path, moved));
    QVERIFY(fileError([&] { store.commitAndRestartTransaction(); }));
    QVERIFY(QFile::rename(moved, path));
    QVERIFY(store.isStillAtItsPath());
}

void DiskStoreTransactionTest::fileStillAtItsPathIsKnown()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    QVERIFY(store.isStillAtItsPath());
    addEntry(store, rootId, u"new"_s, 0);
    store.commitAndRestartTransaction();
    QVERIFY(store.isStillAtItsPath());
}

void DiskStoreTransactionTest::sameFileIsKnownUnderEverySpelling()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    const DiskStore store(path);
    QVERIFY(store.isSameFile(path));
    QVERIFY(store.isSameFile(settings.filePath(QString()) + u"//a.bdl"_s));
    QVERIFY(store.isSameFile(settings.filePath(u"./a.bdl"_s)));
    QVERIFY(store.isSameFile(QDir::current().relativeFilePath(path)));
    QVERIFY(QFile::link(path, settings.filePath(u"symlink.bdl"_s)));
    QVERIFY(store.isSameFile(settings.filePath(u"symlink.bdl"_s)));
    QVERIFY(QFile::link(settings.filePath(QString()), settings.filePath(u"folder"_s)));
    QVERIFY(store.isSameFile(settings.filePath(u"folder/a.bdl"_s)));
    QCOMPARE(link(qPrintable(path), qPrintable(settings.filePath(u"hard.bdl"_s))), 0);
    QVERIFY(store.isSameFile(settings.filePath(u"hard.bdl"_s)));
}

void DiskStoreTransactionTest::otherFileIsNotTakenForTheSame()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    const DiskStore store(path);
    QVERIFY(QFile::copy(path, settings.filePath(u"copy.bdl"_s)));
    QVERIFY(!store.isSameFile(settings.filePath(u"copy.bdl"_s)));
    QVERIFY(!store.isSameFile(settings.filePath(u"missing.bdl"_s)));
    QVERIFY(!store.isSameFile(settings.filePath(QString())));
    QVERIFY(!store.isSameFile(QString()));
}

QTEST_MAIN(DiskStoreTransactionTest)
#include "DiskStoreTransactionTest.moc"
