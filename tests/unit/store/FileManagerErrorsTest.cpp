// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;

/// Open files in which a change of an entry's state fails and any other change works.
struct Desk {
    explicit Desk(int count)
    {
        for (int i = 0; i < count; ++i) {
            paths << settings.filePath(u"%1.bdl"_s.arg(i));
            makeEmptyStore(paths.last());
            change(paths.last(),
                   {u"CREATE TRIGGER t BEFORE UPDATE OF state ON entry BEGIN SELECT RAISE(FAIL, "
                    "'refused'); END"_s});
            files->openFile(paths.last(), i);
        }
    }

    DiskStore &store(int index) const { return *files->getFile(index); }
    /// Makes a file error in the file; \return whether it was thrown.
    bool fail(int index) const
    {
        return fileError([&] { store(index).updateEntryState(rootId, EntryState::Todo, {}); })
            .has_value();
    }
    QStringList names() const
    {
        QStringList result;
        for (int i = 0; i < files->getFileCount(); ++i)
            result << store(i).dbFileName();
        return result;
    }

    TestSettings settings;
    QStringList paths;
    std::unique_ptr<FileManager> files = std::make_unique<FileManager>();
};

QString closedText(const QString &name)
{
    return u"There was an error accessing file "_s + name + u". This file has been closed."_s;
}
} // namespace

/// Errors of open files: each closes its own file, later, and says so.
class FileManagerErrorsTest : public QObject
{
    Q_OBJECT

private slots:
    void errorClosesItsFileOnlyWhenTheEventLoopRuns();
    void errorLeavesTheOtherFilesWithTheirUnsavedChanges();
    void fileIsClosedBeforeTheMessageIsShown();
    void secondErrorOfAFileIsNotShownAndClosesNoOther();
    void errorsOfTwoFilesCloseBoth();
    void errorOfAFileClosedMeanwhileClosesNoOther();
    void errorOfAFileClosedAndReopenedMeanwhileClosesNothing();
    void errorWhileAQuestionIsOpenClosesItsOwnFile();
    void errorClosingTheAskedFileWhileTheQuestionIsOpen();
    void errorOfTheLastFileEndsTheUnsavedTime();
    void fileClosedOnlyBecauseItWasLockedStaysInTheSettings();
    void errorFollowsItsFileWhenTheFilesAreReordered();
    void errorWithoutAFailedFileClosesNothing();
    void errorsPendingWhenTheSetIsDeletedAreForgotten();
    void removedFileStaysOpenUntilTheUserHasReadTheMessage();
    void replacedFileIsClosedWithoutTouchingTheNewOne();
    void removedFileDoesNotKeepTheOthersFromBeingSaved();
    void exceptionTravelsBeforeTheMessage();
};

void FileManagerErrorsTest::errorClosesItsFileOnlyWhenTheEventLoopRuns()
{
    const Desk desk(3);
    const QSignalSpy unloaded(desk.files.get(), &FileManager::fileUnloaded);
    const BoxAnswers boxes({QMessageBox::Ok});
    QVERIFY(desk.fail(1));
    QCOMPARE(desk.files->getFileCount(), 3);
    QTRY_COMPARE(boxes.seen().size(), 1);
    QCOMPARE(desk.names(), (QStringList{u"0.bdl"_s, u"2.bdl"_s}));
    QCOMPARE(unloaded.count(), 1);
    QCOMPARE(unloaded.first().first().toInt(), 1);
    const SeenBox box = boxes.seen().first();
    QCOMPARE(box.text, closedText(u"1.bdl"_s));
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.details.split(u'\n').first(), u"operation: executing query"_s);
    QCOMPARE(box.details.split(u'\n').at(1), u"file path: "_s + desk.paths[1]);
    QSettings settings;
    QCOMPARE(settings.value(u"loadfiles/0"_s).toString(), desk.paths[0]);
    QCOMPARE(settings.value(u"loadfiles/1"_s).toString(), desk.paths[2]);
    QVERIFY(!settings.contains(u"loadfiles/2"_s));
}

void FileManagerErrorsTest::errorLeavesTheOtherFilesWithTheirUnsavedChanges()
{
    const Desk desk(2);
    desk.store(0).updateEntryBody(rootId, u"lost"_s, true);
    desk.store(1).updateEntryBody(rootId, u"kept"_s, true);
    const QDateTime since = desk.files->unsavedSince();
    const BoxAnswers boxes({QMessageBox::Ok});
    QVERIFY(desk.fail(0));
    QTRY_COMPARE(desk.names(), QStringList{u"1.bdl"_s});
    QTRY_COMPARE(boxes.seen().size(), 1);
    QCOMPARE(desk.store(0).getRootExcerpt(), u"kept"_s);
    QCOMPARE(desk.files->unsavedSince(), since);
    QVERIFY(desk.files->commitAndRestartTransactions());
    QCOMPARE(rows(desk.paths[0], u"SELECT content FROM entrybody"_s), QStringList{u"0.bdl"_s});
    QCOMPARE(rows(desk.paths[1], u"SELECT content FROM entrybody"_s), QStringList{u"kept"_s});
}

void FileManagerErrorsTest::fileIsClosedBeforeTheMessageIsShown()
{
    const Desk desk(2);
    BoxAnswers boxes({QMessageBox::Ok});
    int countWhileShown = -1;
    boxes.before(0, [&] { countWhileShown = desk.files->getFileCount(); });
    QVERIFY(desk.fail(0));
    QTRY_COMPARE(countWhileShown, 1);
}

void FileManagerErrorsTest::secondErrorOfAFileIsNotShownAndClosesNoOther()
{
    const Desk desk(3);
    const BoxAnswers boxes({QMessageBox::Ok, QMessageBox::Ok});
    QVERIFY(desk.fail(0));
    QVERIFY(desk.fail(0));
    QVERIFY(fileError([&] { desk.store(0).getRootExcerpt(); }));
    QTRY_COMPARE(boxes.seen().size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(boxes.texts(), QStringList{closedText(u"0.bdl"_s)});
    QCOMPARE(desk.names(), (QStringList{u"1.bdl"_s, u"2.bdl"_s}));
}

void FileManagerErrorsTest::errorsOfTwoFilesCloseBoth()
{
    const Desk desk(3);
    const BoxAnswers boxes({QMessageBox::Ok, QMessageBox::Ok});
    QVERIFY(desk.fail(2));
    QVERIFY(desk.fail(0));
    QTRY_COMPARE(boxes.seen().size(), 2);
    QTRY_COMPARE(desk.names(), QStringList{u"1.bdl"_s});
    QStringList texts = boxes.texts();
    texts.sort();
    QCOMPARE(texts, (QStringList{closedText(u"0.bdl"_s), closedText(u"2.bdl"_s)}));
    for (const SeenBox &box : boxes.seen()) {
        const QString name = box.text.section(u"file "_s, 1).left(5);
        QVERIFY(box.details.contains(u"file path: "_s + desk.settings.filePath(name)));
    }
}

void FileManagerErrorsTest::errorOfAFileClosedMeanwhileClosesNoOther()
{
    const Desk desk(3);
    const BoxAnswers boxes;
    QVERIFY(desk.fail(1));
    desk.files->unloadFile(1, true);
    QCoreApplication::processEvents();
    QCOMPARE(boxes.texts(), QStringList());
    QCOMPARE(desk.names(), (QStringList{u"0.bdl"_s, u"2.bdl"_s}));
}

void FileManagerErrorsTest::errorOfAFileClosedAndReopenedMeanwhileClosesNothing()
{
    const Desk desk(2);
    {
        const BoxAnswers boxes;
        // Again and again, so that a new store may well lie where the failed one was.
        for (int i = 0; i < 8; ++i) {
            QVERIFY(desk.fail(1));
            desk.files->unloadFile(1, true);
            desk.files->openFile(desk.paths[1], 1);
        }
        QCoreApplication::processEvents();
        QCOMPARE(boxes.texts(), QStringList());
    }
    QCOMPARE(desk.names(), (QStringList{u"0.bdl"_s, u"1.bdl"_s}));
    // The new one's own error counts.
    const BoxAnswers again({QMessageBox::Ok});
    QVERIFY(desk.fail(1));
    QTRY_COMPARE(desk.names(), QStringList{u"0.bdl"_s});
    QTRY_COMPARE(again.texts(), QStringList{closedText(u"1.bdl"_s)});
}

void FileManagerErrorsTest::errorWhileAQuestionIsOpenClosesItsOwnFile()
{
    const Desk desk(3);
    desk.store(0).updateEntryBody(rootId, u"changed"_s, true);
    BoxAnswers boxes({QMessageBox::Discard, QMessageBox::Ok});
    // While the question about the file at 2 is open, the one at 0 goes: 2 becomes 1.
    boxes.before(0, [&] { desk.fail(0); });
    const QSignalSpy unloaded(desk.files.get(), &FileManager::fileUnloaded);
    desk.files->unloadFile(2, false);
    QTRY_COMPARE(boxes.seen().size(), 2);
    QCOMPARE(boxes.texts().last(), closedText(u"0.bdl"_s));
    QTRY_COMPARE(desk.names(), QStringList{u"1.bdl"_s});
    QCOMPARE(unloaded.at(0).first().toInt(), 0);
    QCOMPARE(unloaded.at(1).first().toInt(), 1);
}

void FileManagerErrorsTest::errorClosingTheAskedFileWhileTheQuestionIsOpen()
{
    const Desk desk(3);
    desk.store(0).updateEntryBody(rootId, u"changed"_s, true);
    BoxAnswers boxes({QMessageBox::Discard, QMessageBox::Ok});
    boxes.before(0, [&] { desk.fail(0); });
    desk.files->unloadFile(0, false);
    QTRY_COMPARE(boxes.seen().size(), 2);
    QCoreApplication::processEvents();
    QCOMPARE(desk.names(), (QStringList{u"1.bdl"_s, u"2.bdl"_s}));
}

void FileManagerErrorsTest::errorOfTheLastFileEndsTheUnsavedTime()
{
    const Desk desk(1);
    desk.store(0).updateEntryBody(rootId, u"changed"_s, true);
    QVERIFY(!desk.files->unsavedSince().isNull());
    const BoxAnswers boxes({QMessageBox::Ok});
    QVERIFY(desk.fail(0));
    QTRY_COMPARE(desk.files->getFileCount(), 0);
    QTRY_COMPARE(boxes.seen().size(), 1);
    QVERIFY(desk.files->unsavedSince().isNull());
}

void FileManagerErrorsTest::fileClosedOnlyBecauseItWasLockedStaysInTheSettings()
{
    const Desk desk(2);
    const BoxAnswers boxes({QMessageBox::Ok});
    DiskStore::FileException locked(u"locked"_s, u"details"_s);
    locked.fileWasBusy = true;
    emit desk.store(0).errorOccurred(locked);
    QTRY_COMPARE(boxes.seen().size(), 1);
    QCOMPARE(desk.names(), QStringList{u"1.bdl"_s});
    const QSettings settings;
    QCOMPARE(settings.value(u"loadfiles/0"_s).toString(), desk.paths[1]);
    QCOMPARE(settings.value(u"loadfiles/1"_s).toString(), desk.paths[0]);
    // Opened again, it is listed once.
    desk.files->openFile(desk.paths[0], 0);
    QCOMPARE(settings.value(u"loadfiles/0"_s).toString(), desk.paths[0]);
    QCOMPARE(settings.value(u"loadfiles/1"_s).toString(), desk.paths[1]);
    QVERIFY(!settings.contains(u"loadfiles/2"_s));
}

void FileManagerErrorsTest::errorFollowsItsFileWhenTheFilesAreReordered()
{
    const Desk desk(3);
    const BoxAnswers boxes({QMessageBox::Ok});
    QVERIFY(desk.fail(0));
    desk.files->reorderFile(0, 2);
    QTRY_COMPARE(desk.names(), (QStringList{u"1.bdl"_s, u"2.bdl"_s}));
    QTRY_COMPARE(boxes.texts(), QStringList{closedText(u"0.bdl"_s)});
}

void FileManagerErrorsTest::errorWithoutAFailedFileClosesNothing()
{
    const Desk desk(2);
    const BoxAnswers boxes;
    desk.files->fileError(DiskStore::FileException(u"message"_s, u"details"_s));
    QCoreApplication::processEvents();
    QCOMPARE(boxes.texts(), QStringList());
    QCOMPARE(desk.files->getFileCount(), 2);
}

void FileManagerErrorsTest::errorsPendingWhenTheSetIsDeletedAreForgotten()
{
    Desk desk(2);
    const BoxAnswers boxes;
    QVERIFY(desk.fail(0));
    QVERIFY(desk.fail(1));
    desk.files.reset();
    QCoreApplication::processEvents();
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerErrorsTest::removedFileStaysOpenUntilTheUserHasReadTheMessage()
{
    const Desk desk(2);
    desk.store(0).updateEntryBody(rootId, u"only copy"_s, true);
    QVERIFY(QFile::remove(desk.paths[0]));
    BoxAnswers boxes({QMessageBox::Ok});
    QString whileShown;
    boxes.before(0, [&] {
        whileShown
            = QString::number(desk.files->getFileCount()) + u' ' + desk.store(0).getRootExcerpt();
    });
    QVERIFY(!desk.files->commitAndRestartTransactions());
    QTRY_COMPARE(desk.names(), QStringList{u"1.bdl"_s});
    QCOMPARE(whileShown, u"2 only copy"_s);
    QCOMPARE(boxes.seen().size(), 1);
    QVERIFY(boxes.texts().first().endsWith(u" This file has been closed."_s));
    QVERIFY(boxes.seen().first().details.contains(desk.paths[0]));
    QVERIFY(!QFile::exists(desk.paths[0]));
}

void FileManagerErrorsTest::replacedFileIsClosedWithoutTouchingTheNewOne()
{
    const Desk desk(2);
    const QString other = desk.settings.filePath(u"other.bdl"_s);
    makeEmptyStore(other);
    const QByteArray before = bytes(other);
    desk.store(0).updateEntryBody(rootId, u"ours"_s, true);
    QVERIFY(QFile::remove(desk.paths[0]));
    QVERIFY(QFile::rename(other, desk.paths[0]));
    const BoxAnswers boxes({QMessageBox::Ok});
    QVERIFY(!desk.files->commitAndRestartTransactions());
    QTRY_COMPARE(desk.names(), QStringList{u"1.bdl"_s});
    QCOMPARE(bytes(desk.paths[0]), before);
    // The new one can be opened.
    desk.files->openFile(desk.paths[0], 0);
    QCOMPARE(desk.store(0).getRootExcerpt(), u"other.bdl"_s);
}

void FileManagerErrorsTest::removedFileDoesNotKeepTheOthersFromBeingSaved()
{
    const Desk desk(3);
    for (int i = 0; i < 3; ++i)
        desk.store(i).updateEntryBody(rootId, u"new"_s, true);
    QVERIFY(QFile::remove(desk.paths[0]));
    const BoxAnswers boxes({QMessageBox::Ok});
    QVERIFY(!desk.files->commitAndRestartTransactions());
    for (int i = 1; i < 3; ++i)
        QCOMPARE(rows(desk.paths[i], u"SELECT content FROM entrybody"_s), QStringList{u"new"_s});
    QTRY_COMPARE(desk.files->getFileCount(), 2);
}

void FileManagerErrorsTest::exceptionTravelsBeforeTheMessage()
{
    const Desk desk(1);
    const BoxAnswers boxes({QMessageBox::Ok});
    bool caughtFirst = false;
    try {
        desk.store(0).updateEntryState(rootId, EntryState::Todo, {});
    } catch (const DiskStore::FileException &e) {
        caughtFirst = boxes.seen().isEmpty() && desk.files->getFileCount() == 1;
        QCOMPARE(e.message, u"There was an error accessing file 0.bdl."_s);
    }
    QVERIFY(caughtFirst);
    QTRY_COMPARE(boxes.seen().size(), 1);
}

QTEST_MAIN(FileManagerErrorsTest)
#include "FileManagerErrorsTest.moc"
