// SPDX-License-Identifier: MIT
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
/// Puts \a files, a path for each key, into the settings as an earlier run would have.
void store(const QMap<QString, QString> &files)
{
    QSettings settings;
    settings.beginGroup(u"loadfiles"_s);
    for (auto file = files.begin(); file != files.end(); ++file)
        settings.setValue(file.key(), file.value());
}
} // namespace

/// Loading the set of files that the settings list, and refusing what is wrong with them.
class FileManagerLoadingTest : public QObject
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
    void fileThatIsOnlyLockedIsReportedAndKept();
    void incompatibleFileIsForgottenAlsoWhenItIsLocked();
    void fileWithoutARootIsReportedAndForgotten_data();
    void fileWithoutARootIsReportedAndForgotten();
    void oldFilesAreUpgradedWhenTheSetIsLoaded();

private:
    QTemporaryDir m_fixtures;
};

void FileManagerLoadingTest::initTestCase()
{
    QVERIFY(makeOldFiles(m_fixtures.path()));
}

void FileManagerLoadingTest::noSettingsGiveNoFiles()
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

void FileManagerLoadingTest::singleFileSettingIsMigrated()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"one.bdl"_s}).first();
    QSettings().setValue(u"dbpath"_s, path);
    const FileManager files;
    QCOMPARE(names(files), QStringList{u"one.bdl"_s});
    QCOMPARE(storedFiles(), QStringList{u"0="_s + path});
    QVERIFY(!QSettings().contains(u"dbpath"_s));
}

void FileManagerLoadingTest::singleFileSettingBesideAListThrows()
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

void FileManagerLoadingTest::keysWithGapsLoadDenselyAndStayUntilTheFirstChange_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("open") << u"open"_s;
    QTest::newRow("close") << u"close"_s;
    QTest::newRow("reorder") << u"reorder"_s;
}

void FileManagerLoadingTest::keysWithGapsLoadDenselyAndStayUntilTheFirstChange()
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

void FileManagerLoadingTest::keysAreSortedAsNumbers()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s, u"d.bdl"_s});
    store({{u"10"_s, p[3]}, {u"2"_s, p[2]}, {u"1"_s, p[1]}, {u"-4"_s, p[0]}});
    const FileManager files;
    QCOMPARE(names(files), (QStringList{u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s, u"d.bdl"_s}));
}

void FileManagerLoadingTest::keyThatIsNoNumberThrows()
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

void FileManagerLoadingTest::keysThatMeanTheSameNumberThrow()
{
    const TestSettings settings;
    store({{u"1"_s, u"/nowhere"_s}, {u"01"_s, u"/nowhere"_s}});
    const DebugLines debugLines;
    QCOMPARE(bareText([] { const FileManager files; }), u"duplicate file index in setting"_s);
    QVERIFY(DebugLines::has({u"duplicate file index"_s, u"1"_s, u"found in settings; throwing"_s}));
}

void FileManagerLoadingTest::corruptSettingsStayAsTheyWere()
{
    const TestSettings settings;
    const QString path = makeFiles(settings, {u"a.bdl"_s}).first();
    const QByteArray before = bytes(path);
    store({{u"0"_s, path}, {u"x"_s, u"/nowhere"_s}});
    QVERIFY(!bareText([] { const FileManager files; }).isEmpty());
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + path, u"x=/nowhere"_s}));
    QCOMPARE(bytes(path), before);
}

void FileManagerLoadingTest::twoKeysWithTheSamePathOpenTheFileOnceWithoutAMessage()
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

void FileManagerLoadingTest::twoSpellingsOfAPathOpenTheFileOnceWithoutAMessage()
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

void FileManagerLoadingTest::settingsOfTheWholeSystemDoNotLeakIn()
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

void FileManagerLoadingTest::missingFileIsReportedOnceAndForgotten()
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

void FileManagerLoadingTest::fileWithoutRightsIsReportedAndForgotten()
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

void FileManagerLoadingTest::fileThatCannotBeOpenedIsReportedAndForgotten_data()
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

void FileManagerLoadingTest::fileThatCannotBeOpenedIsReportedAndForgotten()
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

void FileManagerLoadingTest::fileThatIsOnlyLockedIsReportedAndKept()
{
    const TestSettings settings;
    const QStringList p = makeFiles(settings, {u"a.bdl"_s, u"b.bdl"_s, u"c.bdl"_s});
    store({{u"0"_s, p[0]}, {u"1"_s, p[1]}});
    OtherProcess other(p[0], {u"BEGIN EXCLUSIVE"_s});
    QVERIFY(other.isHolding());
    const BoxAnswers boxes({QMessageBox::Ok});
    FileManager files(shortPatienceMs);
    QCOMPARE(boxes.texts(),
             QStringList{u"There was an error accessing file a.bdl. This file will "
                         "be skipped."_s});
    QCOMPARE(names(files), QStringList{u"b.bdl"_s});
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[0], u"1="_s + p[1]}));
    // A change of the list doesn't lose it either.
    files.openFile(p[2], 0);
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[2], u"1="_s + p[1], u"2="_s + p[0]}));
    // Once it could be opened it is a file like any other.
    other.letGo();
    files.openFile(p[0], 0);
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[0], u"1="_s + p[2], u"2="_s + p[1]}));
    files.unloadFile(0, true);
    QCOMPARE(storedFiles(), (QStringList{u"0="_s + p[2], u"1="_s + p[1]}));
}

void FileManagerLoadingTest::incompatibleFileIsForgottenAlsoWhenItIsLocked()
{
    const TestSettings settings;
    const QString path = settings.filePath(u"version5.bdl"_s);
    QVERIFY(QFile::copy(m_fixtures.filePath(u"version5.bdl"_s), path));
    store({{u"0"_s, path}});
    const OtherProcess other(path, {u"BEGIN IMMEDIATE"_s});
    QVERIFY(other.isHolding());
    const BoxAnswers boxes({QMessageBox::Ok});
    const FileManager files(shortPatienceMs);
    QCOMPARE(boxes.seen().size(), 1);
    QVERIFY(boxes.texts().first().contains(u"incompatible"_s));
    QCOMPARE(storedFiles(), QStringList());
}

void FileManagerLoadingTest::fileWithoutARootIsReportedAndForgotten_data()
{
    QTest::addColumn<QString>("statement");
    QTest::newRow("no root entry") << u"DELETE FROM entry"_s;
    QTest::newRow("root entry without its text") << u"DELETE FROM entrybody"_s;
    QTest::newRow("root entry at another number") << u"UPDATE entry SET sequence=1"_s;
}

void FileManagerLoadingTest::fileWithoutARootIsReportedAndForgotten()
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

void FileManagerLoadingTest::oldFilesAreUpgradedWhenTheSetIsLoaded()
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

QTEST_MAIN(FileManagerLoadingTest)
#include "FileManagerLoadingTest.moc"
