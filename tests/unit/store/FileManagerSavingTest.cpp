// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;
constexpr int fourHours = 14400;

/// Some open files and a clock that stands until it is moved.
struct Desk {
    explicit Desk(int count)
    {
        files.setClock([this] { return now; });
        for (int i = 0; i < count; ++i) {
            paths << settings.filePath(u"%1.bdl"_s.arg(i));
            files.openFile(paths.last(), i);
        }
    }

    void change(int file, const QString &text)
    {
        files.getFile(file)->updateEntryBody(rootId, text, true);
    }
    QString saved(int file) const
    {
        return rows(paths[file], u"SELECT content FROM entrybody"_s).join(u',');
    }
    /// Makes the file's next commit and rollback fail.
    void spoil(int file) const { rowsInside(*files.getFile(file), u"ROLLBACK"_s); }

    TestSettings settings;
    QDateTime now = QDateTime(QDate(2026, 5, 1), QTime(9, 0));
    QStringList paths;
    FileManager files;
};

/// Runs the event loop, asking the given desk to quit in it. \return whether it was left that way;
/// else it is ended once all is said and answered.
bool quits(Desk &desk)
{
    bool gaveUp = false;
    const QObject context;
    // Not in the round of the event loop in which the desk may have left it.
    QTimer giveUp;
    giveUp.setInterval(1);
    QObject::connect(&giveUp, &QTimer::timeout, &context, [&gaveUp] {
        if (QApplication::activeModalWidget())
            return;
        gaveUp = true;
        QCoreApplication::exit(3);
    });
    QTimer::singleShot(0, &context, [&desk, &giveUp] {
        desk.files.promptUserToMaybeSaveChangesAndExit();
        giveUp.start();
    });
    return QCoreApplication::exec() == 0 && !gaveUp;
}

const QString savePrompt
    = u"Some of your changes have not been saved. What would you like to do?"_s;
const QString reminder
    = u"You haven't saved your changes for a long time. You can always save by pressing Return in "
      "the main window, which helps protect your data in case Brindle terminates unexpectedly. "
      "Would you like to save now?"_s;
} // namespace

/// Saving and discarding across the files, and the questions about unsaved changes.
class FileManagerSavingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void firstChangeStartsTheUnsavedTimeAndLaterOnesLeaveIt();
    void changeInAnotherFileLeavesTheUnsavedTime();
    void savingWritesAllFilesAndEndsTheUnsavedTime();
    void changeAfterSavingStartsANewUnsavedTime();
    void fileThatFailsToSaveDoesNotKeepTheOthersFromIt();
    void lockedFilesAreWaitedForTogether();
    void discardingRestoresAllFilesAndEndsTheUnsavedTime();
    void discardingIsAnnouncedEvenWithoutAFile();
    void discardIsAnnouncedAfterTheFilesAreRestored();
    void fileThatFailsToDiscardDoesNotKeepTheOthersFromIt();
    void savePromptLooksAsGiven();
    void closingWithoutChangesAsksNothing();
    void closingAndSavingSavesAllFiles();
    void closingAndDiscardingDropsOnlyThatFilesChanges();
    void closingAndCancellingKeepsTheFileOpen();
    void closingWithoutPromptAsksNothing();
    void closingTheLastFileEndsTheUnsavedTime();
    void closingWhileSavingFailsLetsTheErrorSpeak();
    void quittingWithoutChangesAsksNothingAndQuits();
    void quittingAndSavingSaves();
    void quittingAndDiscardingDropsAndAnnounces();
    void quittingAndCancellingKeepsRunningWithTheChanges();
    void closingTheQuitPromptKeepsRunning();
    void quittingWhileSavingFailsKeepsRunning();
    void reminderComesAfterFourHoursAndNotAtThem();
    void reminderWithoutChangesNeverComes();
    void reminderLooksAsGivenAndSaves();
    void noToTheReminderPostponesItByFourHours();
    void closingTheReminderPostponesItToo();
    void reminderCountsFromTheMomentOfTheAnswer();
};

void FileManagerSavingTest::initTestCase()
{
    // A closed prompt is no reason to quit; here it is the only window there is.
    QApplication::setQuitOnLastWindowClosed(false);
}

void FileManagerSavingTest::firstChangeStartsTheUnsavedTimeAndLaterOnesLeaveIt()
{
    Desk desk(1);
    QVERIFY(desk.files.unsavedSince().isNull());
    const QDateTime first = desk.now;
    desk.change(0, u"a"_s);
    QCOMPARE(desk.files.unsavedSince(), first);
    desk.now = first.addSecs(600);
    desk.change(0, u"b"_s);
    QCOMPARE(desk.files.unsavedSince(), first);
}

void FileManagerSavingTest::changeInAnotherFileLeavesTheUnsavedTime()
{
    Desk desk(2);
    const QDateTime first = desk.now;
    desk.change(0, u"a"_s);
    desk.now = first.addSecs(600);
    desk.change(1, u"b"_s);
    QCOMPARE(desk.files.unsavedSince(), first);
}

void FileManagerSavingTest::savingWritesAllFilesAndEndsTheUnsavedTime()
{
    Desk desk(2);
    desk.change(0, u"a"_s);
    desk.change(1, u"b"_s);
    QCOMPARE(desk.saved(0), u"0.bdl"_s);
    QVERIFY(desk.files.commitAndRestartTransactions());
    QVERIFY(desk.files.unsavedSince().isNull());
    QCOMPARE(desk.saved(0), u"a"_s);
    QCOMPARE(desk.saved(1), u"b"_s);
}

void FileManagerSavingTest::changeAfterSavingStartsANewUnsavedTime()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    desk.files.commitAndRestartTransactions();
    desk.now = desk.now.addSecs(60);
    desk.change(0, u"b"_s);
    QCOMPARE(desk.files.unsavedSince(), desk.now);
}

void FileManagerSavingTest::fileThatFailsToSaveDoesNotKeepTheOthersFromIt()
{
    Desk desk(3);
    for (int i = 0; i < 3; ++i)
        desk.change(i, u"new"_s);
    desk.spoil(1);
    const QSignalSpy unloaded(&desk.files, &FileManager::fileUnloaded);
    const BoxAnswers boxes({QMessageBox::Ok});
    QVERIFY(!desk.files.commitAndRestartTransactions());
    QVERIFY(desk.files.unsavedSince().isNull());
    QCOMPARE(desk.saved(0), u"new"_s);
    QCOMPARE(desk.saved(2), u"new"_s);
    // The failed one is closed only when the event loop runs again.
    QCOMPARE(desk.files.getFileCount(), 3);
    QTRY_COMPARE(boxes.seen().size(), 1);
    QCOMPARE(boxes.texts(),
             QStringList{u"There was an error accessing file 1.bdl. This file has been closed."_s});
    QVERIFY(boxes.seen().first().details.startsWith(
        u"operation: committing SQL transaction before starting a new one\nfile path: "_s
        + desk.paths[1] + u'\n'));
    QTRY_COMPARE(desk.files.getFileCount(), 2);
    QCOMPARE(unloaded.count(), 1);
    QCOMPARE(unloaded.first().first().toInt(), 1);
    QCOMPARE(desk.saved(1), u"1.bdl"_s);
}

void FileManagerSavingTest::lockedFilesAreWaitedForTogether()
{
    constexpr int patienceMs = 2 * shortPatienceMs;
    const TestSettings settings;
    const QStringList paths = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s});
    FileManager files(patienceMs);
    for (const QString &path : paths) {
        files.openFile(path, files.getFileCount());
        files.getFile(files.getFileCount() - 1)->updateEntryBody(rootId, u"typed"_s, true);
    }
    const QStringList readLock = {u"BEGIN"_s, u"SELECT * FROM entry"_s};
    const OtherProcess first(paths[0], readLock);
    const OtherProcess second(paths[1], readLock);
    QVERIFY(first.isHolding() && second.isHolding());
    QElapsedTimer time;
    time.start();
    QVERIFY(!files.commitAndRestartTransactions());
    QVERIFY(time.elapsed() >= patienceMs);
    QVERIFY2(time.elapsed() < 2 * patienceMs, qPrintable(QString::number(time.elapsed())));
    QCOMPARE(rows(paths[2], u"SELECT content FROM entrybody"_s), QStringList{u"typed"_s});
    const BoxAnswers boxes({QMessageBox::Ok, QMessageBox::Ok});
    files.handlePendingFileErrors();
    QCOMPARE(names(files), QStringList{u"c.bdl"_s});
    QCOMPARE(boxes.seen().size(), 2);
}

void FileManagerSavingTest::discardingRestoresAllFilesAndEndsTheUnsavedTime()
{
    Desk desk(2);
    desk.change(0, u"a"_s);
    desk.change(1, u"b"_s);
    desk.files.rollbackAndRestartTransactions();
    QVERIFY(desk.files.unsavedSince().isNull());
    QCOMPARE(desk.files.getFile(0)->getRootExcerpt(), u"0.bdl"_s);
    QCOMPARE(desk.files.getFile(1)->getRootExcerpt(), u"1.bdl"_s);
    QVERIFY(desk.files.commitAndRestartTransactions());
    QCOMPARE(desk.saved(0), u"0.bdl"_s);
}

void FileManagerSavingTest::discardingIsAnnouncedEvenWithoutAFile()
{
    Desk desk(0);
    const QSignalSpy rollbacks(&desk.files, &FileManager::transactionRollback);
    desk.files.rollbackAndRestartTransactions();
    QCOMPARE(rollbacks.count(), 1);
}

void FileManagerSavingTest::discardIsAnnouncedAfterTheFilesAreRestored()
{
    Desk desk(2);
    desk.change(1, u"b"_s);
    QString atSignal;
    bool unsavedAtSignal = true;
    connect(&desk.files, &FileManager::transactionRollback, &desk.files, [&] {
        atSignal = desk.files.getFile(1)->getRootExcerpt();
        unsavedAtSignal = !desk.files.unsavedSince().isNull();
    });
    desk.files.rollbackAndRestartTransactions();
    QCOMPARE(atSignal, u"1.bdl"_s);
    QVERIFY(!unsavedAtSignal);
}

void FileManagerSavingTest::fileThatFailsToDiscardDoesNotKeepTheOthersFromIt()
{
    Desk desk(3);
    desk.change(2, u"new"_s);
    desk.spoil(0);
    const QSignalSpy rollbacks(&desk.files, &FileManager::transactionRollback);
    const BoxAnswers boxes({QMessageBox::Ok});
    desk.files.rollbackAndRestartTransactions();
    QCOMPARE(rollbacks.count(), 1);
    QVERIFY(desk.files.unsavedSince().isNull());
    QCOMPARE(desk.files.getFile(2)->getRootExcerpt(), u"2.bdl"_s);
    QTRY_COMPARE(
        boxes.texts(),
        QStringList{u"There was an error accessing file 0.bdl. This file has been closed."_s});
    QTRY_COMPARE(desk.files.getFileCount(), 2);
}

void FileManagerSavingTest::savePromptLooksAsGiven()
{
    Desk desk(1);
    for (const auto answer : {QMessageBox::Save, QMessageBox::Discard, QMessageBox::Cancel}) {
        const BoxAnswers boxes({answer});
        QCOMPARE(desk.files.prompUserToMaybeSaveChanges(), answer);
        const SeenBox box = boxes.seen().first();
        QCOMPARE(box.title, u"Save changes?"_s);
        QCOMPARE(box.text, savePrompt);
        QCOMPARE(box.icon, QMessageBox::Information);
        QCOMPARE(box.buttons, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        QCOMPARE(box.defaultButton, QMessageBox::Save);
        QVERIFY(box.applicationModal);
        QVERIFY(!box.hasParent);
    }
    const BoxAnswers closed;
    QCOMPARE(desk.files.prompUserToMaybeSaveChanges(), QMessageBox::Cancel);
}

void FileManagerSavingTest::closingWithoutChangesAsksNothing()
{
    Desk desk(2);
    const BoxAnswers boxes;
    desk.files.unloadFile(0, false);
    QCOMPARE(boxes.texts(), QStringList());
    QCOMPARE(desk.files.getFileCount(), 1);
}

void FileManagerSavingTest::closingAndSavingSavesAllFiles()
{
    Desk desk(2);
    desk.change(0, u"a"_s);
    desk.change(1, u"b"_s);
    const BoxAnswers boxes({QMessageBox::Save});
    desk.files.unloadFile(0, false);
    QCOMPARE(boxes.texts(), QStringList{savePrompt});
    QCOMPARE(desk.files.getFileCount(), 1);
    QCOMPARE(desk.saved(0), u"a"_s);
    QCOMPARE(desk.saved(1), u"b"_s);
    QVERIFY(desk.files.unsavedSince().isNull());
}

void FileManagerSavingTest::closingAndDiscardingDropsOnlyThatFilesChanges()
{
    Desk desk(2);
    const QDateTime first = desk.now;
    desk.change(0, u"a"_s);
    desk.change(1, u"b"_s);
    desk.now = first.addSecs(60);
    const BoxAnswers boxes({QMessageBox::Discard});
    desk.files.unloadFile(0, false);
    QCOMPARE(boxes.texts(), QStringList{savePrompt});
    QCOMPARE(desk.files.getFileCount(), 1);
    QCOMPARE(desk.files.unsavedSince(), first);
    QCOMPARE(desk.files.getFile(0)->getRootExcerpt(), u"b"_s);
    QCOMPARE(desk.saved(0), u"0.bdl"_s);
    QCOMPARE(desk.saved(1), u"1.bdl"_s);
    desk.files.commitAndRestartTransactions();
    QCOMPARE(desk.saved(1), u"b"_s);
}

void FileManagerSavingTest::closingAndCancellingKeepsTheFileOpen()
{
    Desk desk(2);
    const QDateTime first = desk.now;
    desk.change(0, u"a"_s);
    desk.now = first.addSecs(60);
    const QSignalSpy unloaded(&desk.files, &FileManager::fileUnloaded);
    const BoxAnswers boxes({QMessageBox::Cancel});
    desk.files.unloadFile(0, false);
    QCOMPARE(unloaded.count(), 0);
    QCOMPARE(desk.files.getFileCount(), 2);
    QCOMPARE(desk.files.getFile(0)->getRootExcerpt(), u"a"_s);
    QCOMPARE(desk.files.unsavedSince(), first);
}

void FileManagerSavingTest::closingWithoutPromptAsksNothing()
{
    Desk desk(2);
    desk.change(0, u"a"_s);
    const BoxAnswers boxes;
    desk.files.unloadFile(0, true);
    QCOMPARE(boxes.texts(), QStringList());
    QCOMPARE(desk.files.getFileCount(), 1);
    QVERIFY(!desk.files.unsavedSince().isNull());
}

void FileManagerSavingTest::closingTheLastFileEndsTheUnsavedTime()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    bool endedWhenItWasTold = false;
    QObject context;
    QObject::connect(&desk.files, &FileManager::fileUnloaded, &context,
                     [&] { endedWhenItWasTold = desk.files.unsavedSince().isNull(); });
    {
        const BoxAnswers boxes({QMessageBox::Discard});
        desk.files.unloadFile(0, false);
        QCOMPARE(boxes.seen().size(), 1);
    }
    QVERIFY(endedWhenItWasTold);
    QVERIFY(desk.files.unsavedSince().isNull());
    const BoxAnswers boxes;
    QVERIFY(quits(desk));
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerSavingTest::closingWhileSavingFailsLetsTheErrorSpeak()
{
    Desk desk(2);
    desk.change(0, u"a"_s);
    desk.change(1, u"b"_s);
    desk.spoil(0);
    const BoxAnswers boxes({QMessageBox::Save, QMessageBox::Ok});
    desk.files.unloadFile(0, false);
    QCOMPARE(desk.files.getFileCount(), 2);
    QTRY_COMPARE(boxes.texts(),
                 (QStringList{savePrompt,
                              u"There was an error accessing file 0.bdl. This file has been "
                              "closed."_s}));
    QTRY_COMPARE(desk.files.getFileCount(), 1);
    QCOMPARE(desk.saved(1), u"b"_s);
}

void FileManagerSavingTest::quittingWithoutChangesAsksNothingAndQuits()
{
    Desk desk(1);
    const BoxAnswers boxes;
    const DebugLines debugLines;
    QVERIFY(quits(desk));
    QCOMPARE(boxes.texts(), QStringList());
    // The empty transaction was committed and the next one begun.
    QVERIFY(DebugLines::has({u"starting SQL transaction"_s}));
}

void FileManagerSavingTest::quittingAndSavingSaves()
{
    Desk desk(2);
    desk.change(1, u"b"_s);
    const BoxAnswers boxes({QMessageBox::Save});
    QVERIFY(quits(desk));
    QCOMPARE(boxes.texts(), QStringList{savePrompt});
    QCOMPARE(desk.saved(1), u"b"_s);
}

void FileManagerSavingTest::quittingAndDiscardingDropsAndAnnounces()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    const QSignalSpy rollbacks(&desk.files, &FileManager::transactionRollback);
    const BoxAnswers boxes({QMessageBox::Discard});
    QVERIFY(quits(desk));
    QCOMPARE(rollbacks.count(), 1);
    QCOMPARE(desk.saved(0), u"0.bdl"_s);
    QCOMPARE(desk.files.getFile(0)->getRootExcerpt(), u"0.bdl"_s);
}

void FileManagerSavingTest::quittingAndCancellingKeepsRunningWithTheChanges()
{
    Desk desk(1);
    const QDateTime first = desk.now;
    desk.change(0, u"a"_s);
    desk.now = first.addSecs(60);
    const BoxAnswers boxes({QMessageBox::Cancel});
    QVERIFY(!quits(desk));
    QCOMPARE(boxes.texts(), QStringList{savePrompt});
    QCOMPARE(desk.files.unsavedSince(), first);
    QCOMPARE(desk.files.getFile(0)->getRootExcerpt(), u"a"_s);
    QCOMPARE(desk.saved(0), u"0.bdl"_s);
}

void FileManagerSavingTest::closingTheQuitPromptKeepsRunning()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    const BoxAnswers boxes;
    QVERIFY(!quits(desk));
    QCOMPARE(boxes.texts(), QStringList{savePrompt});
    QCOMPARE(desk.files.getFile(0)->getRootExcerpt(), u"a"_s);
}

void FileManagerSavingTest::quittingWhileSavingFailsKeepsRunning()
{
    Desk desk(2);
    desk.change(0, u"a"_s);
    desk.change(1, u"b"_s);
    desk.spoil(0);
    const BoxAnswers boxes({QMessageBox::Save, QMessageBox::Ok});
    QVERIFY(!quits(desk));
    QCOMPARE(
        boxes.texts(),
        (QStringList{savePrompt,
                     u"There was an error accessing file 0.bdl. This file has been closed."_s}));
    QCOMPARE(desk.saved(1), u"b"_s);
    QCOMPARE(desk.files.getFileCount(), 1);
}

void FileManagerSavingTest::reminderComesAfterFourHoursAndNotAtThem()
{
    Desk desk(1);
    const QDateTime first = desk.now;
    desk.change(0, u"a"_s);
    for (const int seconds : {0, 1, fourHours - 1, fourHours}) {
        desk.now = first.addSecs(seconds);
        const BoxAnswers boxes;
        desk.files.maybePromptUserToPeriodicallySaveChanges();
        QCOMPARE(boxes.texts(), QStringList());
    }
    desk.now = first.addSecs(fourHours + 1);
    const BoxAnswers boxes({QMessageBox::No});
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(boxes.texts(), QStringList{reminder});
}

void FileManagerSavingTest::reminderWithoutChangesNeverComes()
{
    Desk desk(1);
    desk.now = desk.now.addDays(400);
    const BoxAnswers boxes;
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    desk.change(0, u"a"_s);
    desk.files.commitAndRestartTransactions();
    desk.now = desk.now.addDays(400);
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerSavingTest::reminderLooksAsGivenAndSaves()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    desk.now = desk.now.addSecs(fourHours + 1);
    const BoxAnswers boxes({QMessageBox::Save});
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(boxes.seen().size(), 1);
    const SeenBox box = boxes.seen().first();
    QCOMPARE(box.title, u"Save changes?"_s);
    QCOMPARE(box.text, reminder);
    QCOMPARE(box.icon, QMessageBox::Information);
    QCOMPARE(box.buttons, QMessageBox::Save | QMessageBox::No);
    QCOMPARE(box.defaultButton, QMessageBox::Save);
    QVERIFY(box.applicationModal);
    QVERIFY(!box.hasParent);
    QVERIFY(desk.files.unsavedSince().isNull());
    QCOMPARE(desk.saved(0), u"a"_s);
}

void FileManagerSavingTest::noToTheReminderPostponesItByFourHours()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    const QDateTime answered = desk.now.addSecs(fourHours + 500);
    desk.now = answered;
    BoxAnswers boxes({QMessageBox::No, QMessageBox::No});
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(boxes.seen().size(), 1);
    QCOMPARE(desk.files.unsavedSince(), answered);
    QCOMPARE(desk.saved(0), u"0.bdl"_s);
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    desk.now = answered.addSecs(fourHours);
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(boxes.seen().size(), 1);
    desk.now = answered.addSecs(fourHours + 1);
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(boxes.seen().size(), 2);
}

void FileManagerSavingTest::closingTheReminderPostponesItToo()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    desk.now = desk.now.addSecs(fourHours + 1);
    const BoxAnswers boxes;
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(boxes.seen().size(), 1);
    QCOMPARE(desk.files.unsavedSince(), desk.now);
    QCOMPARE(desk.saved(0), u"0.bdl"_s);
}

void FileManagerSavingTest::reminderCountsFromTheMomentOfTheAnswer()
{
    Desk desk(1);
    desk.change(0, u"a"_s);
    desk.now = desk.now.addSecs(fourHours + 1);
    const QDateTime answered = desk.now.addSecs(3600);
    BoxAnswers boxes({QMessageBox::No});
    // The box stays open for an hour.
    boxes.before(0, [&] { desk.now = answered; });
    desk.files.maybePromptUserToPeriodicallySaveChanges();
    QCOMPARE(desk.files.unsavedSince(), answered);
}

QTEST_MAIN(FileManagerSavingTest)
#include "FileManagerSavingTest.moc"
