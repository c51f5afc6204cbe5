// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;
const QStringList readLock = {u"BEGIN"_s, u"SELECT * FROM entry"_s};
const QStringList writeLock = {u"BEGIN IMMEDIATE"_s, u"UPDATE entry SET state=0"_s};
const QStringList wholeLock = {u"BEGIN EXCLUSIVE"_s};
const QString texts = u"SELECT content FROM entrybody ORDER BY docid"_s;
} // namespace

/// Other processes that hold the file: what they keep for a while is waited for, what they keep
/// for good is an error, and nothing that was saved is ever lost.
class DiskStoreLockTest : public QObject
{
    Q_OBJECT

private slots:
    void othersCanReadWhatIsSavedWhileWeWork();
    void readerHeldDuringTheCommitLosesNothing();
    void readerThatNeverLeavesMakesTheCommitFail();
    void fileLockedForAWhileIsOpenedAfterIt();
    void lockedFileGivesAnErrorAndStaysAsItWas();
    void writerOfAnotherProcessIsWaitedFor();
    void killedProcessLosesOnlyWhatWasNotSaved();
};

void DiskStoreLockTest::othersCanReadWhatIsSavedWhileWeWork()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    addEntry(store, rootId, u"new"_s, 0);
    const OtherProcess reader(path, {u"SELECT * FROM entry"_s}, 0);
    QVERIFY(reader.isHolding());
    QCOMPARE(rows(path, texts), QStringList{u"a.bdl"_s});
}

void DiskStoreLockTest::readerHeldDuringTheCommitLosesNothing()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    addEntry(store, rootId, u"new"_s, 0);
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    const OtherProcess reader(path, readLock, 8);
    QVERIFY(reader.isHolding());
    QElapsedTimer time;
    time.start();
    QVERIFY(!fileError([&] { store.commitAndRestartTransaction(); }));
    QVERIFY(time.elapsed() > 6000);
    QCOMPARE(errors.count(), 0);
    QCOMPARE(rows(path, texts), (QStringList{u"a.bdl"_s, u"new"_s}));
    // And the next transaction is there.
    addEntry(store, rootId, u"newer"_s, 0);
    store.commitAndRestartTransaction();
    QCOMPARE(rows(path, texts), (QStringList{u"a.bdl"_s, u"new"_s, u"newer"_s}));
}

void DiskStoreLockTest::readerThatNeverLeavesMakesTheCommitFail()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    {
        DiskStore store(path);
        addEntry(store, rootId, u"new"_s, 0);
        const QSignalSpy errors(&store, &DiskStore::errorOccurred);
        OtherProcess reader(path, readLock);
        QVERIFY(reader.isHolding());
        const auto e = fileError([&] { store.commitAndRestartTransaction(); });
        QVERIFY(e);
        QCOMPARE(errors.count(), 1);
        QCOMPARE(e->details.split(u'\n'),
                 (QStringList{u"operation: committing SQL transaction before starting a new one"_s,
                              u"file path: "_s + path, u"error type: 3"_s, u"error code: -1"_s,
                              u"error message: database is locked"_s,
                              u"driver error message: Unable to commit transaction"_s,
                              u"app version: 0.3"_s}));
    }
    QCOMPARE(rows(path, texts), QStringList{u"a.bdl"_s});
    QCOMPARE(rows(path, u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
}

void DiskStoreLockTest::fileLockedForAWhileIsOpenedAfterIt()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    const OtherProcess other(path, wholeLock, 8);
    QVERIFY(other.isHolding());
    QElapsedTimer time;
    time.start();
    const auto e = openingError(path);
    const QString details = e ? e->details : QString();
    QVERIFY2(!e, qPrintable(u"after %1 ms: %2"_s.arg(time.elapsed()).arg(details)));
    QVERIFY(time.elapsed() > 6000);
}

void DiskStoreLockTest::lockedFileGivesAnErrorAndStaysAsItWas()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    const QByteArray before = bytes(path);
    {
        const OtherProcess other(path, wholeLock);
        QVERIFY(other.isHolding());
        const auto e = openingError(path);
        QVERIFY(e);
        QCOMPARE(e->message, u"There was an error accessing file a.bdl."_s);
        QCOMPARE(detail(*e, u"operation"_s), u"checking for existence of 'meta' table (1)"_s);
        QCOMPARE(e->details.count(u'\n'), 6);
    }
    QCOMPARE(bytes(path), before);
    QVERIFY(!openingError(path));
}

void DiskStoreLockTest::writerOfAnotherProcessIsWaitedFor()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    const OtherProcess writer(path, writeLock, 7);
    QVERIFY(writer.isHolding());
    // Nothing was read yet in this transaction, so the first write may wait.
    QVERIFY(!fileError([&] { store.updateEntryBody(rootId, u"typed"_s, true); }));
    QCOMPARE(errors.count(), 0);
    store.commitAndRestartTransaction();
    QCOMPARE(rows(path, texts), QStringList{u"typed"_s});
}

void DiskStoreLockTest::killedProcessLosesOnlyWhatWasNotSaved()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    const pid_t child = fork();
    if (child == 0) {
        DiskStore store(path);
        addEntry(store, rootId, u"saved"_s, 0);
        store.commitAndRestartTransaction();
        // So much that the database has to write into the file before the commit.
        const QString large(100000, u'x');
        for (int i = 0; i < 60; ++i)
            addEntry(store, rootId, large, 0);
        ::kill(getpid(), SIGKILL);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QVERIFY(QFile::exists(path + u"-journal"_s));
    DiskStore store(path);
    QCOMPARE(childTexts(store, rootId), QStringList{u"saved@0"_s});
    QCOMPARE(rowsInside(store, u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
}

QTEST_MAIN(DiskStoreLockTest)
#include "DiskStoreLockTest.moc"
