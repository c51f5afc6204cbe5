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

/// "key=path" of each stored file, sorted by key as text.
QStringList storedFiles()
{
    QSettings settings;
    settings.beginGroup(u"loadfiles"_s);
    QStringList result;
    for (const QString &key : settings.childKeys())
        result << key + u'=' + settings.value(key).toString();
    result.sort();
    return result;
}

void store(const QMap<QString, QString> &files)
{
    QSettings settings;
    settings.beginGroup(u"loadfiles"_s);
    for (auto file = files.begin(); file != files.end(); ++file)
        settings.setValue(file.key(), file.value());
}

QStringList names(const FileManager &files)
{
    QStringList result;
    for (int i = 0; i < files.getFileCount(); ++i)
        result << files.getFile(i)->dbFileName();
    return result;
}

/// Fresh data files with these names, in the test's folder.
QStringList makeFiles(const TestSettings &settings, const QStringList &fileNames)
{
    QStringList paths;
    for (const QString &name : fileNames) {
        paths << settings.filePath(name);
        makeEmptyStore(paths.last());
    }
    return paths;
}
} // namespace

/// The set of open files: how it is loaded, changed and remembered.
class FileManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void noSettingsGiveNoFiles();
    void singleFileSettingIsMigrated();
    void singleFileSettingBesideAListThrows();
    void keysWithGapsLoadDenselyAndStayUntilTheFirstChange_data();
    void keysWithGapsLoadDenselyAndStayUntilTheFirstChange();
    void keysAreSortedAsNumbers();
    void keyThatIsNoNumberThrows();
    void keysThatMeanTheSameNumberThrow();
    void corruptSettingsStayAsTheyWere();
    void twoKeysWithTheSamePathOpenTheFileOnceWithoutAMessage();
    void twoSpellingsOfAPathOpenTheFileOnceWithoutAMessage();
    void settingsOfTheWholeSystemDoNotLeakIn();
    void missingFileIsReportedOnceAndForgotten();
    void fileWithoutRightsIsReportedAndForgotten();
    void fileThatCannotBeOpenedIsReportedAndForgotten_data();
    void fileThatCannotBeOpenedIsReportedAndForgotten();
    void fileWithoutARootIsReportedAndForgotten_data();
    void fileWithoutARootIsReportedAndForgotten();
    void oldFilesAreUpgradedWhenTheSetIsLoaded();
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
    void alreadyOpenFileIsKnownUnderEverySpelling();
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

void FileManagerTest::noSettingsGiveNoFiles()
{
    const TestSettings settings;
    const BoxAnswers boxes;
    const FileManager files;
    QCOMPARE(files.getFileCount(), 0);
    QVERIFY(!files.getFile(0));
    QVERIFY(!files.getFile(-1));
    QVERIFY(files.unsavedSince().isNull());
    QVERIFY(boxes.seen().isEmpty());
}

void FileManagerTest::singleFileSettingIsMigrated()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"one.bdl"_s}).first();
    QSettings().setValue(u"dbpath"_s, path);
    const FileManager files;
    QCOMPARE(names(files), QStringList{u"one.bdl"_s});
    QCOMPARE(storedFiles(), QStringList{u"0="_s + path});
    QVERIFY(!QSettings().contains(u"dbpath"_s));
}

void FileManagerTest::singleFileSettingBesideAListThrows()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"one.bdl"_s}).first();
    QSettings().setValue(u"dbpath"_s, path);
    store({{u"3"_s, path}});
    const DebugLines debugLines;
    QCOMPARE(bareText([] { const FileManager files; }), u"illegal settings state"_s);
    QVERIFY(DebugLines::has(
        {u"settings contained both 'dbpath' and 'loadfiles' elements; throwing"_s}));
    QCOMPARE(QSettings().value(u"dbpath"_s).toString(), path);
}

void FileManagerTest::keysWithGapsLoadDenselyAndStayUntilTheFirstChange_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("open") << u"open"_s;
    QTest::newRow("close") << u"close"_s;
    QTest::newRow("reorder") << u"reorder"_s;
}

void FileManagerTest::keysWithGapsLoadDenselyAndStayUntilTheFirstChange()
{
    QFETCH(QString, change);
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s});
    store({{u"7"_s, p[1]}, {u"2"_s, p[0]}});
    FileManager files;
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"b.bdl"_s}));
    QCOMPARE(storedFiles(), (QStringList{u"2="_s + p[0], u"7="_s + p[1]}));
    if (change == u"open"_s) {
        files.openFile(p[2], 1);
        QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[0], u"1="_s + p[2], u"2="_s + p[1]}));
    } else if (change == u"close"_s) {
        files.unloadFile(0, false);
        QCOMPARE(storedFiles(), QStringList{u"0="_s + p[1]});
    } else {
        files.reorderFile(0, 1);
        QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[1], u"1="_s + p[0]}));
    }
}

void FileManagerTest::keysAreSortedAsNumbers()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s, u"d.bdl"_s});
    store({{u"10"_s, p[3]}, {u"2"_s, p[2]}, {u"1"_s, p[1]}, {u"-4"_s, p[0]}});
    const FileManager files;
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s, u"d.bdl"_s}));
}

void FileManagerTest::keyThatIsNoNumberThrows()
{
    const TestSettings settings;
    for (const QString &key : {u"x"_s, u"1x"_s, u"0x1"_s, u"1.5"_s, u"99999999999"_s}) {
        QSettings().clear();
        store({{u"0"_s, u"/nowhere"_s}, {key, u"/nowhere"_s}});
        const DebugLines debugLines;
        QCOMPARE(bareText([] { const FileManager files; }), u"illegal index string in settings"_s);
        QVERIFY(DebugLines::has({u"illegal index string"_s, key}));
    }
}

void FileManagerTest::keysThatMeanTheSameNumberThrow()
{
    const TestSettings settings;
    store({{u"1"_s, u"/nowhere"_s}, {u"01"_s, u"/nowhere"_s}});
    const DebugLines debugLines;
    QCOMPARE(bareText([] { const FileManager files; }), u"duplicate file index in setting"_s);
    QVERIFY(DebugLines::has({u"duplicate file index"_s, u"1"_s, u"found in settings; throwing"_s}));
}

void FileManagerTest::corruptSettingsStayAsTheyWere()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    const QByteArray before = bytes(path);
    store({{u"0"_s, path}, {u"x"_s, u"/nowhere"_s}});
    QVERIFY(!bareText([] { const FileManager files; }).isEmpty());
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + path, u"x=/nowhere"_s}));
    QCOMPARE(bytes(path), before);
}

void FileManagerTest::twoKeysWithTheSamePathOpenTheFileOnceWithoutAMessage()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s});
    store({{u"0"_s, p[0]}, {u"1"_s, p[1]}, {u"5"_s, p[0]}});
    const BoxAnswers boxes;
    const FileManager files;
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"b.bdl"_s}));
    QCOMPARE(boxes.texts(), QStringList());
    QCOMPARE(storedFiles().size(), 3);
}

void FileManagerTest::twoSpellingsOfAPathOpenTheFileOnceWithoutAMessage()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    const QString other = settings.filePath(u"link.bdl"_s);
    QVERIFY(QFile::link(path, other));
    store({{u"0"_s, path}, {u"1"_s, other}, {u"2"_s, settings.filePath(QString()) + u"//a.bdl"_s}});
    const BoxAnswers boxes;
    const FileManager files;
    QCOMPARE(names(files), QStringList{u"a.bdl"_s});
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerTest::settingsOfTheWholeSystemDoNotLeakIn()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    {
        QSettings system(QSettings::IniFormat, QSettings::SystemScope, u"Osterlane"_s,
                         u"Brindle"_s);
        system.setValue(u"loadfiles/x"_s, u"/nowhere"_s);
        system.setValue(u"dbpath"_s, u"/nowhere"_s);
    }
    QVERIFY(QSettings().contains(u"dbpath"_s));
    store({{u"0"_s, path}});
    const FileManager files;
    QCOMPARE(names(files), QStringList{u"a.bdl"_s});
}

void FileManagerTest::missingFileIsReportedOnceAndForgotten()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    const QString missing = settings.filePath(u"missing.bdl"_s);
    store({{u"0"_s, missing}, {u"3"_s, path}});
    {
        const BoxAnswers boxes({QMessageBox::Ok});
        const FileManager files;
        QCOMPARE(names(files), QStringList{u"a.bdl"_s});
        QCOMPARE(boxes.texts(), QStringList{u"File could not be accessed. It will be skipped."_s});
        QCOMPARE(boxes.seen().first().details, missing);
        QCOMPARE(boxes.seen().first().icon, QMessageBox::Critical);
    }
    QVERIFY(!QFile::exists(missing));
    QCOMPARE(storedFiles(), QStringList{u"3="_s + path});
    const BoxAnswers boxes;
    const FileManager again;
    QCOMPARE(boxes.texts(), QStringList());
}

void FileManagerTest::fileWithoutRightsIsReportedAndForgotten()
{
    for (const QFile::Permissions permissions :
         {QFile::Permissions(QFile::ReadOwner), QFile::Permissions(QFile::WriteOwner)}) {
        const TestSettings settings;
        const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s});
        store({{u"0"_s, p[0]}, {u"1"_s, p[1]}});
        const QByteArray before = bytes(p[0]);
        QVERIFY(QFile::setPermissions(p[0], permissions));
        {
            const AsOrdinaryUser user(settings.filePath(QString()));
            QVERIFY(user.isOrdinary());
            const BoxAnswers boxes({QMessageBox::Ok});
            const FileManager files;
            QCOMPARE(names(files), QStringList{u"b.bdl"_s});
            QCOMPARE(boxes.texts(),
                     QStringList{u"File could not be accessed. It will be skipped."_s});
            QCOMPARE(boxes.seen().first().details, p[0]);
        }
        QCOMPARE(storedFiles(), QStringList{u"1="_s + p[1]});
        QVERIFY(QFile::setPermissions(p[0], QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(bytes(p[0]), before);
    }
}

void FileManagerTest::fileThatCannotBeOpenedIsReportedAndForgotten_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    const QString incompatible = u"There was an error: File (%1) is incompatible with this version "
                                 "of Brindle. Consider upgrading your copy and trying again.."_s;
    const QString damaged = u"There was an error accessing file %1."_s;
    QTest::newRow("version 5") << u"version5.bdl"_s << incompatible;
    QTest::newRow("no schema row") << u"noschemarow.bdl"_s << incompatible;
    QTest::newRow("garbage") << u"garbage.bdl"_s << damaged;
    QTest::newRow("truncated") << u"truncated.bdl"_s << damaged;
    QTest::newRow("folder") << u"folder"_s << damaged;
}

void FileManagerTest::fileThatCannotBeOpenedIsReportedAndForgotten()
{
    QFETCH(QString, name);
    QFETCH(QString, message);
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"z.bdl"_s});
    const QString bad = settings.filePath(name);
    QVERIFY(QFile::copy(m_fixtures.filePath(name), bad) || QDir().mkdir(bad));
    const QByteArray before = bytes(bad);
    store({{u"0"_s, p[0]}, {u"1"_s, bad}, {u"2"_s, p[1]}});
    const BoxAnswers boxes({QMessageBox::Ok});
    const FileManager files;
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"z.bdl"_s}));
    QCOMPARE(boxes.texts(), QStringList{message.arg(name) + u" This file will be skipped."_s});
    QVERIFY(boxes.seen().first().details.contains(bad));
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[0], u"2="_s + p[1]}));
    QCOMPARE(bytes(bad), before);
}

void FileManagerTest::fileWithoutARootIsReportedAndForgotten_data()
{
    QTest::addColumn<QString>("statement");
    QTest::newRow("no root entry") << u"DELETE FROM entry"_s;
    QTest::newRow("root entry without its text") << u"DELETE FROM entrybody"_s;
    QTest::newRow("root entry at another number") << u"UPDATE entry SET sequence=1"_s;
}

void FileManagerTest::fileWithoutARootIsReportedAndForgotten()
{
    QFETCH(QString, statement);
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s});
    QCOMPARE(change(p[0], {statement}), QString());
    store({{u"0"_s, p[0]}, {u"1"_s, p[1]}});
    const BoxAnswers boxes({QMessageBox::Ok});
    FileManager files;
    QCOMPARE(names(files), QStringList{u"b.bdl"_s});
    QCOMPARE(boxes.seen().size(), 1);
    QVERIFY(boxes.texts().first().endsWith(u" This file will be skipped."_s));
    QVERIFY(!QSqlDatabase::connectionNames().contains(p[0]));
    files.openFile(p[0], 0);
    QCOMPARE(boxes.seen().size(), 2);
    QVERIFY(boxes.texts().last().endsWith(u" The file could not be loaded."_s));
    QCOMPARE(files.getFileCount(), 1);
}

void FileManagerTest::oldFilesAreUpgradedWhenTheSetIsLoaded()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"Old file 1.bdl"_s);
    QVERIFY(QFile::copy(m_fixtures.filePath(u"Old file 1.bdl"_s), path));
    store({{u"0"_s, path}});
    const DebugLines debugLines;
    {
        const FileManager files;
        QCOMPARE(files.getFile(0)->getRootExcerpt(), u"Oldfile1.bdl"_s);
        QVERIFY(files.unsavedSince().isNull());
    }
    QVERIFY(DebugLines::has({u"Loading file: "_s, path}));
    QCOMPARE(firstDifference(dump(path), expectedDump(u"Old file 1"_s)), QString());
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

void FileManagerTest::alreadyOpenFileIsKnownUnderEverySpelling()
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
          settings.filePath(u"hard.bdl"_s)}) {
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
