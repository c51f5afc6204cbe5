// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"

#include <QSignalSpy>
#include <QTemporaryDir>
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
/// What a program does that inserts an entry as the root's first child.
const QStringList foreignInsertion = {
    u"BEGIN IMMEDIATE"_s,
    u"INSERT INTO entry (id, parentid, body, sequence, state, hotkey) VALUES (50, 1, '', 0, 0, 7)"_s,
    u"INSERT INTO entrybody (docid, content) VALUES (50, 'theirs')"_s};
const QString texts = u"SELECT content FROM entrybody ORDER BY docid"_s;

/// Runs an action with each line of the debug output, while the program is where it writes it.
class LineHook
{
public:
    explicit LineHook(const std::function<void(const QString &)> &action)
    {
        current() = action;
        m_former = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &line) { current()(line); });
    }
    ~LineHook() { qInstallMessageHandler(m_former); }
    Q_DISABLE_COPY_MOVE(LineHook)

private:
    static std::function<void(const QString &)> &current()
    {
        static std::function<void(const QString &)> action;
        return action;
    }

    QtMessageHandler m_former;
};

/// What the store tells of its waits.
struct WaitLog {
    QStringList begun;
    int pauses = 0;
    int running = 0;
    std::function<void()> duringPause;

    /// Has \a process let go of the file in the pause with this number, counted from 1.
    void endInPause(int number, OtherProcess &process)
    {
        duringPause = [this, number, &process] {
            if (pauses == number)
                process.letGo();
        };
    }

    FileWaitFactory factory()
    {
        return [this](const QString &name) {
            begun << name;
            return std::make_unique<LoggedWait>(this);
        };
    }

private:
    class LoggedWait : public FileWait
    {
    public:
        explicit LoggedWait(WaitLog *log)
            : m_log(log)
        {
            ++m_log->running;
        }
        ~LoggedWait() override { --m_log->running; }
        void pause() override
        {
            ++m_log->pauses;
            if (m_log->duringPause)
                m_log->duringPause();
        }

    private:
        WaitLog *m_log;
    };
};
} // namespace

Q_DECLARE_METATYPE(std::function<void(DiskStore &)>)
Q_DECLARE_METATYPE(std::function<void(DiskStore &, long long)>)

/// Other processes that hold the file: what they keep for a while is waited for, what they keep
/// for good is an error, and nothing that was saved is ever lost.
class DiskStoreLockTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void patienceIsTenSecondsUnlessAnotherIsAskedFor();
    void othersCanReadWhatIsSavedWhileWeWork();
    void readerHeldDuringTheCommitLosesNothing();
    void readerThatNeverLeavesMakesTheCommitFail();
    void fileLockedForAWhileIsOpenedAfterIt();
    void lockedFileGivesAnErrorAndStaysAsItWas();
    void writerOfAnotherProcessIsWaitedFor();
    void siblingInsertedMeanwhileGetsANumberOfItsOwn();
    void siblingInsertedOnANewerStateGetsANumberOfItsOwn();
    void childInsertedMeanwhileKeepsItsParentFromBeingDeleted();
    void placeTakenMeanwhileIsMadeFree();
    void keyTakenMeanwhileMovesToOurEntry();
    void entryRemovedMeanwhileIsAnErrorAndNotALostChange_data();
    void entryRemovedMeanwhileIsAnErrorAndNotALostChange();
    void writeLockIsLeftToOthersUntilTheFirstChange();
    void changeThatChangesNothingLeavesTheFileToOtherWriters_data();
    void changeThatChangesNothingLeavesTheFileToOtherWriters();
    void fileBusyAfterAnUpgradeIsCompactedLater();
    void compactingThatStaysBusyDoesNotFailTheSaving();
    void waitIsTold_data();
    void waitIsTold();
    void waitForOpeningIsTold();
    void readingDuringAWaitDoesNotDisturbIt();
    void fileReplacedDuringAWaitIsNotSavedIntoNowhere();
    void killedProcessLosesOnlyWhatWasNotSaved();

private:
    /// A file in the test's folder that is compacted when it is opened.
    QString oldFile(const TestSettings &settings) const;

    QTemporaryDir m_fixtures;
};

void DiskStoreLockTest::initTestCase()
{
    QVERIFY(makeOldFiles(m_fixtures.path()));
}

QString DiskStoreLockTest::oldFile(const TestSettings &settings) const
{
    const QString name = u"Old file 3.bdl"_s;
    const QString path = settings.filePath(name);
    return QFile::copy(m_fixtures.filePath(name), path) ? path : QString();
}

void DiskStoreLockTest::patienceIsTenSecondsUnlessAnotherIsAskedFor()
{
    QCOMPARE(DiskStore::Source(u"a.bdl"_s).patienceMs, 10000);
    QCOMPARE(DiskStore::Source(u"a.bdl"_s, 70).patienceMs, 70);
}

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
    WaitLog log;
    DiskStore store(path, log.factory());
    addEntry(store, rootId, u"new"_s, 0);
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    OtherProcess reader(path, readLock);
    QVERIFY(reader.isHolding());
    log.endInPause(5, reader);
    QVERIFY(!fileError([&] { store.commitAndRestartTransaction(); }));
    QCOMPARE(log.pauses, 5);
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
        DiskStore store({path, shortPatienceMs});
        addEntry(store, rootId, u"new"_s, 0);
        const QSignalSpy errors(&store, &DiskStore::errorOccurred);
        OtherProcess reader(path, readLock);
        QVERIFY(reader.isHolding());
        QElapsedTimer time;
        time.start();
        const auto e = fileError([&] { store.commitAndRestartTransaction(); });
        QVERIFY(time.elapsed() >= shortPatienceMs);
        QVERIFY(e);
        QVERIFY(e->fileWasBusy);
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
    OtherProcess other(path, wholeLock);
    QVERIFY(other.isHolding());
    WaitLog log;
    log.endInPause(5, other);
    const auto e = fileError([&] { const DiskStore store(path, log.factory()); });
    QVERIFY2(!e, qPrintable(e ? e->details : QString()));
    QCOMPARE(log.pauses, 5);
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
        const auto e = openingError({path, shortPatienceMs});
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
    WaitLog log;
    DiskStore store(path, log.factory());
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    OtherProcess writer(path, writeLock);
    QVERIFY(writer.isHolding());
    log.endInPause(5, writer);
    // Nothing was read yet in this transaction, so the first write may wait.
    QVERIFY(!fileError([&] { store.updateEntryBody(rootId, u"typed"_s, true); }));
    QCOMPARE(errors.count(), 0);
    QCOMPARE(log.pauses, 5);
    store.commitAndRestartTransaction();
    QCOMPARE(rows(path, texts), QStringList{u"typed"_s});
}

void DiskStoreLockTest::siblingInsertedMeanwhileGetsANumberOfItsOwn()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    const QSignalSpy errors(&store, &DiskStore::errorOccurred);
    // The other program can't finish as long as we hold on to what we have read.
    QCOMPARE(store.getEntryId(rootId, 0), -1LL);
    const OtherProcess writer(path, foreignInsertion, 0.5, u"COMMIT"_s);
    QVERIFY(writer.isHolding());
    QVERIFY(!fileError([&] { addEntry(store, rootId, u"ours"_s, 0); }));
    QCOMPARE(errors.count(), 0);
    store.commitAndRestartTransaction();
    QCOMPARE(childTexts(store, rootId), (QStringList{u"ours@0"_s, u"theirs@1"_s}));
    QCOMPARE(rows(path, u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
}

void DiskStoreLockTest::siblingInsertedOnANewerStateGetsANumberOfItsOwn()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    // In this form others can write while we read what was there before.
    QCOMPARE(rows(path, u"PRAGMA journal_mode=WAL"_s), QStringList{u"wal"_s});
    DiskStore store(path);
    QCOMPARE(store.getEntryId(rootId, 0), -1LL);
    OtherProcess writer(path, foreignInsertion, 0, u"COMMIT"_s);
    QVERIFY(writer.isHolding());
    writer.letGo();
    QCOMPARE(childTexts(store, rootId), QStringList());
    QVERIFY(!fileError([&] { addEntry(store, rootId, u"ours"_s, 0); }));
    store.commitAndRestartTransaction();
    QCOMPARE(childTexts(store, rootId), (QStringList{u"ours@0"_s, u"theirs@1"_s}));
}

void DiskStoreLockTest::childInsertedMeanwhileKeepsItsParentFromBeingDeleted()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    QVERIFY(!store.contains(50));
    const OtherProcess writer(path, foreignInsertion, 0.5, u"COMMIT"_s);
    QVERIFY(writer.isHolding());
    QVERIFY(!store.deleteEntry(rootId));
    QCOMPARE(childTexts(store, rootId), QStringList{u"theirs@0"_s});
}

void DiskStoreLockTest::placeTakenMeanwhileIsMadeFree()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    const long long ours = addEntry(store, rootId, u"ours"_s, 5);
    store.commitAndRestartTransaction();
    QCOMPARE(store.getEntryId(rootId, 0), -1LL);
    const OtherProcess writer(path, foreignInsertion, 0.5, u"COMMIT"_s);
    QVERIFY(writer.isHolding());
    QVERIFY(!fileError([&] { store.relocateEntry(ours, 0, DiskStore::keepParent); }));
    QCOMPARE(childTexts(store, rootId), (QStringList{u"ours@0"_s, u"theirs@1"_s}));
}

void DiskStoreLockTest::keyTakenMeanwhileMovesToOurEntry()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    QCOMPARE(store.getEntryIdByShortcutKey(7), -1LL);
    const OtherProcess writer(path, foreignInsertion, 0.5, u"COMMIT"_s);
    QVERIFY(writer.isHolding());
    QVERIFY(!fileError([&] { store.registerShortcut(rootId, 7, u"7"_s); }));
    QCOMPARE(store.getEntryIdByShortcutKey(7), rootId);
    QCOMPARE(childTexts(store, rootId), QStringList{u"theirs@0"_s});
}

void DiskStoreLockTest::entryRemovedMeanwhileIsAnErrorAndNotALostChange_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<std::function<void(DiskStore &, long long)>>("action");
    using Action = std::function<void(DiskStore &, long long)>;
    const QString removed = u"There was an error: the entry was removed by another program."_s;
    const QString parentRemoved
        = u"There was an error: the parent of the entry was removed by another program."_s;
    QTest::newRow("text") << removed << Action([](DiskStore &store, long long gone) {
        store.updateEntryBody(gone, u"typed"_s, false);
    });
    QTest::newRow("state") << removed << Action([](DiskStore &store, long long gone) {
        store.updateEntryState(gone, EntryState::Category, {});
    });
    QTest::newRow("place") << removed << Action([](DiskStore &store, long long gone) {
        store.relocateEntryWithoutDeconfliction(gone, 9, rootId);
    });
    QTest::newRow("new child") << parentRemoved << Action([](DiskStore &store, long long gone) {
        addEntry(store, gone, u"typed"_s, 0);
    });
    QTest::newRow("moved below it")
        << parentRemoved << Action([](DiskStore &store, long long gone) {
               store.relocateEntry(store.getEntryId(rootId, 1), 0, static_cast<int>(gone));
           });
    QTest::newRow("placed below it")
        << parentRemoved << Action([](DiskStore &store, long long gone) {
               store.relocateEntryWithoutDeconfliction(store.getEntryId(rootId, 1), 0,
                                                       static_cast<int>(gone));
           });
}

void DiskStoreLockTest::entryRemovedMeanwhileIsAnErrorAndNotALostChange()
{
    QFETCH(QString, message);
    QFETCH(std::function<void(DiskStore &, long long)>, action);
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    const long long gone = addEntry(store, rootId, u"gone"_s, 0);
    addEntry(store, rootId, u"other"_s, 1);
    store.commitAndRestartTransaction();
    QVERIFY(store.contains(gone));
    const OtherProcess writer(path,
                              {u"BEGIN IMMEDIATE"_s, u"DELETE FROM entry WHERE id=%1"_s.arg(gone),
                               u"DELETE FROM entrybody WHERE docid=%1"_s.arg(gone)},
                              0, u"COMMIT"_s);
    QVERIFY(writer.isHolding());
    const auto e = fileError([&] { action(store, gone); });
    QVERIFY(e);
    QCOMPARE(e->message, message);
    QCOMPARE(e->details, path);
    QVERIFY(!e->fileWasBusy);
}

void DiskStoreLockTest::writeLockIsLeftToOthersUntilTheFirstChange()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    QCOMPARE(store.getRootExcerpt(), u"a.bdl"_s);
    store.getEntryIdByShortcutKey(1);
    const std::unique_ptr<DiskStore::EntryInfoList> found(store.entrySearch(u"a"_s));
    QVERIFY(canBeWrittenByOthers(path));
    store.updateEntryState(rootId, EntryState::Category, {});
    QVERIFY(!canBeWrittenByOthers(path));
}

void DiskStoreLockTest::changeThatChangesNothingLeavesTheFileToOtherWriters_data()
{
    QTest::addColumn<std::function<void(DiskStore &)>>("action");
    using Action = std::function<void(DiskStore &)>;
    QTest::newRow("deleting an entry with children")
        << Action([](DiskStore &store) { QVERIFY(!store.deleteEntry(rootId)); });
    QTest::newRow("moving to the same place") << Action([](DiskStore &store) {
        store.relocateEntry(store.getEntryId(rootId, 3), 3, DiskStore::keepParent);
    });
    QTest::newRow("making a free place free")
        << Action([](DiskStore &store) { store.shiftEntrySequences(rootId, 7); });
}

void DiskStoreLockTest::changeThatChangesNothingLeavesTheFileToOtherWriters()
{
    QFETCH(std::function<void(DiskStore &)>, action);
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    DiskStore store(path);
    addEntry(store, rootId, u"child"_s, 3);
    store.commitAndRestartTransaction();
    action(store);
    QVERIFY(canBeWrittenByOthers(path));
    // What is unsaved already stays, and others stay away from it.
    store.updateEntryBody(rootId, u"unsaved"_s, true);
    action(store);
    QVERIFY(!canBeWrittenByOthers(path));
    store.commitAndRestartTransaction();
    QCOMPARE(rows(path, texts), (QStringList{u"unsaved"_s, u"child"_s}));
}

void DiskStoreLockTest::fileBusyAfterAnUpgradeIsCompactedLater()
{
    const TestSettings settings;
    const QString path = oldFile(settings);
    QVERIFY(!path.isEmpty());
    // Pages that only compacting gives back.
    QCOMPARE(change(path,
                    {u"CREATE TABLE large (content)"_s,
                     u"INSERT INTO large VALUES (zeroblob(1000000))"_s, u"DROP TABLE large"_s}),
             QString());
    const auto freePages
        = [&path] { return rows(path, u"PRAGMA freelist_count"_s).value(0).toInt(); };
    QVERIFY(freePages() > 100);
    std::unique_ptr<OtherProcess> reader;
    const LineHook hook([&](const QString &line) {
        if (line.contains(u"compacting"_s) && !reader)
            reader = std::make_unique<OtherProcess>(path, readLock);
    });
    DiskStore store(path);
    QVERIFY(reader && reader->isHolding());
    QVERIFY(freePages() > 100);
    addEntry(store, rootId, u"new"_s, 7);
    reader->letGo();
    store.commitAndRestartTransaction();
    QCOMPARE(freePages(), 0);
    // Once is enough.
    const DebugLines lines;
    addEntry(store, rootId, u"newer"_s, 8);
    store.commitAndRestartTransaction();
    QVERIFY(!DebugLines::has({u"compacting"_s}));
}

void DiskStoreLockTest::compactingThatStaysBusyDoesNotFailTheSaving()
{
    const TestSettings settings;
    const QString path = oldFile(settings);
    QVERIFY(!path.isEmpty());
    std::unique_ptr<OtherProcess> reader;
    const LineHook hook([&](const QString &line) {
        if (line.contains(u"compacting"_s))
            reader = std::make_unique<OtherProcess>(path, readLock);
    });
    DiskStore store(path);
    reader->letGo();
    QVERIFY(!fileError([&] { addEntry(store, rootId, u"new"_s, 7); }));
    QVERIFY(!fileError([&] { store.commitAndRestartTransaction(); }));
    reader->letGo();
    QVERIFY(!fileError([&] { store.commitAndRestartTransaction(); }));
    QCOMPARE(rows(path, u"SELECT content FROM entrybody WHERE content='new'"_s),
             QStringList{u"new"_s});
}

void DiskStoreLockTest::waitIsTold_data()
{
    QTest::addColumn<QStringList>("lock");
    QTest::addColumn<std::function<void(DiskStore &)>>("action");
    using Action = std::function<void(DiskStore &)>;
    QTest::newRow("saving") << readLock << Action([](DiskStore &store) {
        store.commitAndRestartTransaction();
    });
    QTest::newRow("changing") << writeLock << Action([](DiskStore &store) {
        store.updateEntryBody(rootId, u"changed"_s, true);
    });
    QTest::newRow("inserting") << writeLock << Action([](DiskStore &store) {
        addEntry(store, rootId, u"new"_s, 0);
    });
    QTest::newRow("reading") << wholeLock << Action([](DiskStore &store) {
        QCOMPARE(store.getEntryId(-1, 0), rootId);
    });
}

void DiskStoreLockTest::waitIsTold()
{
    QFETCH(QStringList, lock);
    QFETCH(std::function<void(DiskStore &)>, action);
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    WaitLog log;
    DiskStore store(path, log.factory());
    if (lock == readLock)
        store.updateEntryBody(rootId, u"unsaved"_s, true);
    QCOMPARE(log.begun, QStringList());
    OtherProcess other(path, lock);
    QVERIFY(other.isHolding());
    log.duringPause = [&] {
        QCOMPARE(log.running, 1);
        if (log.pauses == 3)
            other.letGo();
    };
    QVERIFY(!fileError([&] { action(store); }));
    QCOMPARE(log.begun, QStringList{u"a.bdl"_s});
    QCOMPARE(log.pauses, 3);
    QCOMPARE(log.running, 0);
}

void DiskStoreLockTest::waitForOpeningIsTold()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    makeEmptyStore(path);
    OtherProcess other(path, wholeLock);
    QVERIFY(other.isHolding());
    WaitLog log;
    log.duringPause = [&] { other.letGo(); };
    const DiskStore store(path, log.factory());
    QCOMPARE(log.begun, QStringList{u"a.bdl"_s});
    QCOMPARE(log.pauses, 1);
}

void DiskStoreLockTest::readingDuringAWaitDoesNotDisturbIt()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    long long child = -1;
    {
        DiskStore store(path);
        child = addEntry(store, rootId, u"child"_s, 4);
        store.commitAndRestartTransaction();
    }
    WaitLog log;
    DiskStore store(path, log.factory());
    OtherProcess other(path, wholeLock);
    QVERIFY(other.isHolding());
    bool nested = false;
    log.duringPause = [&] {
        if (std::exchange(nested, true))
            return;
        other.letGo();
        QCOMPARE(store.getEntryId(-1, 0), rootId);
    };
    QCOMPARE(store.getEntryId(rootId, 4), child);
    QVERIFY(nested);
}

void DiskStoreLockTest::fileReplacedDuringAWaitIsNotSavedIntoNowhere()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"a.bdl"_s);
    WaitLog log;
    DiskStore store(path, log.factory());
    store.updateEntryBody(rootId, u"unsaved"_s, true);
    OtherProcess reader(path, readLock);
    QVERIFY(reader.isHolding());
    log.duringPause = [&] {
        QVERIFY(QFile::remove(path));
        reader.letGo();
    };
    const auto e = fileError([&] { store.commitAndRestartTransaction(); });
    QVERIFY(e);
    QVERIFY(e->message.contains(u"your changes could not be saved"_s));
    QVERIFY(!e->fileWasBusy);
    QCOMPARE(store.getRootExcerpt(), u"unsaved"_s);
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
