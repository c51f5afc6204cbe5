// SPDX-License-Identifier: MIT
#include "store/FileManager.h"
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
constexpr long long rootId = 1;
} // namespace

/// The set of open files: how it is changed and remembered.
class FileManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void openedFileIsInsertedStoredAndAnnounced();
    void openingAtAnIndexThatIsTooLargeAppends();
    void fileThatFailsToOpenChangesNothing();
    void openingInnerThrowsInsteadOfShowing();
    void relativePathIsStoredAsAnAbsoluteOne();
    void unusualPathsSurviveTheSettings();
    void closedFileIsRemovedStoredAndAnnounced();
    void closingAnIndexThatDoesNotExistDoesNothing();
    void movingTheFirstOfThreeToTheEndGivesOneTwoZero();
    void movingBackAndToTheSamePlace();
    void movingAnIndexThatDoesNotExistDoesNothing();
    void shortcutKeysAreFoundInAllFilesInTheirOrder();
    void nothingSelectedNeedsNoFurtherWorkAndNoMessage();
    void alreadyOpenFileIsKnownUnderEverySpellingAndByWhatBelongsToIt();
    void commandLineFilesAreAppendedAndOpenOnesSkipped();
    void commandLineFileThatIsMissingIsReported();
    void rootBodyChangesAreForwarded();
    void endingKeepsTheSettingsAndDropsWhatWasNotSaved();
    void criticalBoxHasNoTitleAndOneButton();

private:
    QTemporaryDir m_fixtures;
};

void FileManagerTest::initTestCase()
{
    QVERIFY(makeOldFiles(m_fixtures.path()));
}

void FileManagerTest::openedFileIsInsertedStoredAndAnnounced()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s});
    FileManager files;
    QList<int> loaded;
    QStringList namesAtSignal;
    connect(&files, &FileManager::fileLoaded, &files, [&](int index) {
        loaded << index;
        namesAtSignal = names(files);
        QCOMPARE(storedFiles().size(), files.getFileCount());
    });
    files.openFile(p[0], 0);
    files.openFile(p[2], 1);
    files.openFile(p[1], 1);
    QCOMPARE(loaded, (QList<int>{0, 1, 1}));
    QCOMPARE(namesAtSignal, (QStringList{u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s}));
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[0], u"1="_s + p[1], u"2="_s + p[2]}));
    QVERIFY(files.unsavedSince().isNull());
}

void FileManagerTest::openingAtAnIndexThatIsTooLargeAppends()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s});
    FileManager files;
    const QSignalSpy loaded(&files, &FileManager::fileLoaded);
    files.openFile(p[0], 5);
    files.openFile(p[1], 7);
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"b.bdl"_s}));
    QCOMPARE(loaded.at(0).first().toInt(), 0);
    QCOMPARE(loaded.at(1).first().toInt(), 1);
}

void FileManagerTest::fileThatFailsToOpenChangesNothing()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    const QString bad = m_fixtures.filePath(u"version5.bdl"_s);
    FileManager files;
    files.openFile(path, 0);
    const QSignalSpy loaded(&files, &FileManager::fileLoaded);
    const BoxAnswers boxes({QMessageBox::Ok});
    files.openFile(bad, 0);
    QCOMPARE(boxes.texts(),
             QStringList{u"There was an error: File (version5.bdl) is incompatible with this "
                         "version of Brindle. Consider upgrading your copy and trying again.. The "
                         "file could not be loaded."_s});
    QCOMPARE(boxes.seen().first().details, bad);
    QCOMPARE(boxes.seen().first().icon, QMessageBox::Critical);
    QCOMPARE(loaded.count(), 0);
    QCOMPARE(names(files), QStringList{u"a.bdl"_s});
    QCOMPARE(storedFiles(), QStringList{u"0="_s + path});
}

void FileManagerTest::openingInnerThrowsInsteadOfShowing()
{
    const TestSettings settings;
    FileManager files;
    const BoxAnswers boxes;
    const auto e
        = fileError([&] { files.openFileInner(m_fixtures.filePath(u"garbage.bdl"_s), 0); });
    QVERIFY(e);
    QCOMPARE(e->message, u"There was an error accessing file garbage.bdl."_s);
    QCoreApplication::processEvents();
    QCOMPARE(boxes.texts(), QStringList());
    QCOMPARE(files.getFileCount(), 0);
    QCOMPARE(storedFiles(), QStringList());
}

void FileManagerTest::relativePathIsStoredAsAnAbsoluteOne()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(settings.filePath(QString())));
    FileManager files;
    files.openFile(u"a.bdl"_s, 0);
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(files.getFileCount(), 1);
    QVERIFY(QDir::isAbsolutePath(files.getFile(0)->dbFilePath()));
    QVERIFY(files.getFile(0)->isSameFile(path));
}

void FileManagerTest::unusualPathsSurviveTheSettings()
{
    const TestSettings settings;
    const QStringList fileNames{u"a, b; c.bdl"_s, u"Größe ☃ \U0001F600.bdl"_s,
                                u"50%20 'x' \"y\".bdl"_s, u"@Size(1 2).bdl"_s,
                                u"back\\slash.bdl"_s};
    const QStringList p = makeFiles(settings, fileNames);
    {
        FileManager files;
        for (const QString &path : p)
            files.openFile(path, files.getFileCount());
    }
    const BoxAnswers boxes;
    const FileManager files;
    QCOMPARE(names(files), fileNames);
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerTest::closedFileIsRemovedStoredAndAnnounced()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s});
    FileManager files;
    for (int i = 0; i < 3; ++i)
        files.openFile(p[i], i);
    QStringList seen;
    connect(&files, &FileManager::fileUnloaded, &files,
            [&](int index) { seen << QString::number(index) << names(files) << storedFiles(); });
    files.unloadFile(1, false);
    QCOMPARE(seen, (QStringList{u"1"_s, u"a.bdl"_s, u"c.bdl"_s, u"0="_s + p[0], u"1="_s + p[2]}));
    QVERIFY(!QSqlDatabase::connectionNames().contains(p[1]));
    // It can be opened once more at once.
    files.openFile(p[1], 0);
    QCOMPARE(names(files), (QStringList{u"b.bdl"_s, u"a.bdl"_s, u"c.bdl"_s}));
}

void FileManagerTest::closingAnIndexThatDoesNotExistDoesNothing()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    FileManager files;
    files.openFile(path, 0);
    for (const int index : {-1, 1, 99})
        files.unloadFile(index, true);
    QCOMPARE(names(files), QStringList{u"a.bdl"_s});
}

void FileManagerTest::movingTheFirstOfThreeToTheEndGivesOneTwoZero()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"0.bdl"_s, u"1.bdl"_s, u"2.bdl"_s});
    FileManager files;
    for (int i = 0; i < 3; ++i)
        files.openFile(p[i], i);
    QStringList namesAtSignal;
    QList<int> moved;
    connect(&files, &FileManager::fileMoved, &files, [&](int from, int to) {
        moved << from << to;
        namesAtSignal = names(files);
    });
    files.reorderFile(0, 2);
    QCOMPARE(moved, (QList<int>{0, 2}));
    QCOMPARE(namesAtSignal, (QStringList{u"1.bdl"_s, u"2.bdl"_s, u"0.bdl"_s}));
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[1], u"1="_s + p[2], u"2="_s + p[0]}));
}

void FileManagerTest::movingBackAndToTheSamePlace()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"0.bdl"_s, u"1.bdl"_s, u"2.bdl"_s});
    FileManager files;
    for (int i = 0; i < 3; ++i)
        files.openFile(p[i], i);
    files.reorderFile(2, 0);
    QCOMPARE(names(files), (QStringList{u"2.bdl"_s, u"0.bdl"_s, u"1.bdl"_s}));
    files.reorderFile(1, 1);
    QCOMPARE(names(files), (QStringList{u"2.bdl"_s, u"0.bdl"_s, u"1.bdl"_s}));
    files.reorderFile(1, 0);
    QCOMPARE(names(files), (QStringList{u"0.bdl"_s, u"2.bdl"_s, u"1.bdl"_s}));
}

void FileManagerTest::movingAnIndexThatDoesNotExistDoesNothing()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"0.bdl"_s, u"1.bdl"_s});
    FileManager files;
    for (int i = 0; i < 2; ++i)
        files.openFile(p[i], i);
    const QSignalSpy moved(&files, &FileManager::fileMoved);
    files.reorderFile(5, 0);
    files.reorderFile(-1, 0);
    QCOMPARE(names(files), (QStringList{u"0.bdl"_s, u"1.bdl"_s}));
    QCOMPARE(moved.count(), 0);
}

void FileManagerTest::shortcutKeysAreFoundInAllFilesInTheirOrder()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"0.bdl"_s, u"1.bdl"_s, u"2.bdl"_s});
    FileManager files;
    for (int i = 0; i < 3; ++i)
        files.openFile(p[i], i);
    QCOMPARE(files.getEntriesByShortcutKey(65), QList<EntryAddress>());
    const long long first = addEntry(*files.getFile(0), rootId, u"x"_s, 0);
    files.getFile(0)->registerShortcut(first, 65, u"A"_s);
    files.getFile(2)->registerShortcut(rootId, 65, u"A"_s);
    files.getFile(1)->registerShortcut(rootId, 66, u"B"_s);
    QCOMPARE(files.getEntriesByShortcutKey(65),
             (QList<EntryAddress>{EntryAddress{0, first}, EntryAddress{2, rootId}}));
    files.reorderFile(2, 0);
    QCOMPARE(files.getEntriesByShortcutKey(65),
             (QList<EntryAddress>{EntryAddress{0, rootId}, EntryAddress{1, first}}));
}

void FileManagerTest::nothingSelectedNeedsNoFurtherWorkAndNoMessage()
{
    const TestSettings settings;
    FileManager files;
    const BoxAnswers boxes;
    QVERIFY(files.noFileSelectedOrFileAlreadyOpen(QString()));
    QVERIFY(!files.noFileSelectedOrFileAlreadyOpen(settings.filePath(u"new.bdl"_s)));
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerTest::alreadyOpenFileIsKnownUnderEverySpellingAndByWhatBelongsToIt()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    FileManager files;
    files.openFile(path, 0);
    QVERIFY(QFile::link(path, settings.filePath(u"link.bdl"_s)));
    QCOMPARE(link(qPrintable(path), qPrintable(settings.filePath(u"hard.bdl"_s))), 0);
    for (const QString &spelling :
         {path, settings.filePath(QString()) + u"//a.bdl"_s, settings.filePath(u"./a.bdl"_s),
          QDir::current().relativeFilePath(path), settings.filePath(u"link.bdl"_s),
          settings.filePath(u"hard.bdl"_s), path + u"-journal"_s, path + u"-wal"_s,
          path + u"-shm"_s, settings.filePath(u"./a.bdl-journal"_s)}) {
        const BoxAnswers boxes({QMessageBox::Ok});
        QVERIFY2(files.noFileSelectedOrFileAlreadyOpen(spelling), qPrintable(spelling));
        QCOMPARE(boxes.texts(), QStringList{u"That file is already open."_s});
        const SeenBox box = boxes.seen().first();
        QCOMPARE(box.title, u"File Already Open"_s);
        QCOMPARE(box.icon, QMessageBox::Information);
        QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
        QVERIFY(!box.hasParent);
    }
}

void FileManagerTest::commandLineFilesAreAppendedAndOpenOnesSkipped()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s});
    FileManager files;
    files.openFile(p[0], 0);
    QVERIFY(QFile::link(p[0], settings.filePath(u"link.bdl"_s)));
    const QSignalSpy loaded(&files, &FileManager::fileLoaded);
    const BoxAnswers boxes;
    files.openFileFromCommandLine(p[0]);
    files.openFileFromCommandLine(settings.filePath(u"link.bdl"_s));
    files.openFileFromCommandLine(QDir::current().relativeFilePath(p[0]));
    QCOMPARE(loaded.count(), 0);
    files.openFileFromCommandLine(QDir::current().relativeFilePath(p[1]));
    QCOMPARE(loaded.count(), 1);
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"b.bdl"_s}));
    QVERIFY(QDir::isAbsolutePath(files.getFile(1)->dbFilePath()));
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerTest::commandLineFileThatIsMissingIsReported()
{
    const TestSettings settings;
    FileManager files;
    const BoxAnswers boxes({QMessageBox::Ok});
    files.openFileFromCommandLine(settings.filePath(u"missing.bdl"_s));
    QCOMPARE(boxes.seen().size(), 1);
    QVERIFY(boxes.seen().first().details.contains(settings.filePath(u"missing.bdl"_s)));
    QCOMPARE(files.getFileCount(), 0);
    QVERIFY(!QFile::exists(settings.filePath(u"missing.bdl"_s)));
}

void FileManagerTest::rootBodyChangesAreForwarded()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    FileManager files;
    files.openFile(path, 0);
    const QSignalSpy changed(&files, &FileManager::fileRootBodyChanged);
    files.getFile(0)->updateEntryBody(rootId, u"x"_s, true);
    QCOMPARE(changed.count(), 1);
    files.rollbackAndRestartTransactions();
    QCOMPARE(changed.count(), 2);
}

void FileManagerTest::endingKeepsTheSettingsAndDropsWhatWasNotSaved()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    {
        FileManager files;
        files.openFile(path, 0);
        files.getFile(0)->updateEntryBody(rootId, u"never saved"_s, true);
    }
    QCOMPARE(storedFiles(), QStringList{u"0="_s + path});
    QCOMPARE(rows(path, u"SELECT content FROM entrybody"_s), QStringList{u"a.bdl"_s});
}

void FileManagerTest::criticalBoxHasNoTitleAndOneButton()
{
    const TestSettings settings;
    FileManager files;
    const BoxAnswers boxes({QMessageBox::Ok});
    files.critical(u"<b>text</b> & more"_s, u"line 1\nline 2"_s);
    QCOMPARE(boxes.seen().size(), 1);
    const SeenBox box = boxes.seen().first();
    QCOMPARE(box.title, QString());
    QCOMPARE(box.text, u"<b>text</b> & more"_s);
    QCOMPARE(box.details, u"line 1\nline 2"_s);
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(box.defaultButton, QMessageBox::Ok);
    QVERIFY(box.applicationModal);
    QVERIFY(!box.hasParent);
}

QTEST_MAIN(FileManagerTest)
#include "FileManagerTest.moc"
