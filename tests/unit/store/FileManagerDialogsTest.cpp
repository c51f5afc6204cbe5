// SPDX-License-Identifier: MIT
#include "FileUser.h"
#include "StoreTestSupport.h"
#include "fakes/TestSettings.h"
#include "store/FileManager.h"

#include <QDir>
#include <QFileDialog>
#include <QSignalSpy>
#include <QTest>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace
{
const QString filter = u"Brindle files (*.bdl)"_s;
} // namespace

/// The dialogs that create and open files, answered as a user would.
class FileManagerDialogsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void createDialogProposesANameInTheHomeFolder();
    void creatingMakesANewFileAtTheIndex();
    void creatingAddsTheMissingExtension();
    void creatingOverAnExistingFileAsksAndReplacesIt();
    void creatingOverAnExistingFileWithoutTypingTheExtensionAsksToo();
    void creatingAndNotReplacingKeepsTheFile();
    void cancellingTheCreateDialogShowsNothing();
    void creatingAnOpenFileIsRefusedAndKeepsIt_data();
    void creatingAnOpenFileIsRefusedAndKeepsIt();
    void creatingWhereNothingCanBeWrittenAsksAgain();
    void creatingOverAFileThatCannotBeRemovedAsksAgain();
    void openDialogStartsInTheHomeFolderWithOurFiles();
    void openingInsertsTheFileAtTheIndex();
    void cancellingTheOpenDialogShowsNothing();
    void openingAnOpenFileIsRefused();
    void openingAFileWithoutRightsAsksAgain();
    void openingADamagedFileIsReported();
    void openingAnOldFileUpgradesIt();
    void fileComesBeforeItsNeighbourWhateverHappensMeanwhile_data();
    void fileComesBeforeItsNeighbourWhateverHappensMeanwhile();
    void fileComesLastWhenItsNeighbourIsClosedMeanwhile_data();
    void fileComesLastWhenItsNeighbourIsClosedMeanwhile();

private:
    void addDialogs();
    void showDialog(int index = 0);

    QByteArray m_homeBefore;
    std::unique_ptr<TestSettings> m_settings;
    std::unique_ptr<FileManager> m_files;
};

void FileManagerDialogsTest::init()
{
    m_homeBefore = qgetenv("HOME");
    m_settings = std::make_unique<TestSettings>();
    m_files = std::make_unique<FileManager>();
}

void FileManagerDialogsTest::cleanup()
{
    m_files.reset();
    m_settings.reset();
    qputenv("HOME", m_homeBefore);
}

void FileManagerDialogsTest::createDialogProposesANameInTheHomeFolder()
{
    FileUser user({QString()});
    m_files->createFile(0);
    QCOMPARE(user.dialogs.size(), 1);
    const SeenDialog dialog = user.dialogs.first();
    QCOMPARE(dialog.title, u"Create a new file"_s);
    QCOMPARE(dialog.folder, user.home(QString()));
    QCOMPARE(dialog.fileName, u"data.bdl"_s);
    QCOMPARE(dialog.filters, QStringList{filter});
    QCOMPARE(dialog.mode, QFileDialog::AcceptSave);
    QVERIFY(!dialog.hasParent);
}

void FileManagerDialogsTest::creatingMakesANewFileAtTheIndex()
{
    FileUser user({u"first.bdl"_s, u"second.bdl"_s});
    const QSignalSpy loaded(m_files.get(), &FileManager::fileLoaded);
    m_files->createFile(0);
    m_files->createFile(0);
    QCOMPARE(m_files->getFileCount(), 2);
    QCOMPARE(m_files->getFile(0)->dbFilePath(), user.home(u"second.bdl"_s));
    QCOMPARE(m_files->getFile(1)->getRootExcerpt(), u"first.bdl"_s);
    QCOMPARE(loaded.count(), 2);
    QCOMPARE(QSettings().value(u"loadfiles/0"_s).toString(), user.home(u"second.bdl"_s));
    QCOMPARE(user.boxes.texts(), QStringList());
}

void FileManagerDialogsTest::creatingAddsTheMissingExtension()
{
    FileUser user({u"My tasks"_s});
    m_files->createFile(0);
    QCOMPARE(m_files->getFileCount(), 1);
    QCOMPARE(m_files->getFile(0)->dbFilePath(), user.home(u"My tasks.bdl"_s));
    QVERIFY(!QFile::exists(user.home(u"My tasks"_s)));
}

void FileManagerDialogsTest::creatingOverAnExistingFileAsksAndReplacesIt()
{
    FileUser user({u"old.bdl"_s}, {QMessageBox::Yes});
    QVERIFY(writeBytes(user.home(u"old.bdl"_s), "something else"));
    m_files->createFile(0);
    QCOMPARE(user.boxes.seen().size(), 1);
    QVERIFY(user.boxes.texts().first().contains(u"old.bdl"_s));
    QCOMPARE(m_files->getFileCount(), 1);
    QCOMPARE(m_files->getFile(0)->getRootExcerpt(), u"old.bdl"_s);
}

void FileManagerDialogsTest::creatingOverAnExistingFileWithoutTypingTheExtensionAsksToo()
{
    FileUser user({u"old"_s}, {QMessageBox::Yes});
    QVERIFY(writeBytes(user.home(u"old.bdl"_s), "something else"));
    m_files->createFile(0);
    QCOMPARE(user.boxes.seen().size(), 1);
    QVERIFY(user.boxes.texts().first().contains(u"old.bdl"_s));
    QCOMPARE(m_files->getFileCount(), 1);
}

void FileManagerDialogsTest::creatingAndNotReplacingKeepsTheFile()
{
    FileUser user({u"old"_s}, {QMessageBox::No});
    QVERIFY(writeBytes(user.home(u"old.bdl"_s), "something else"));
    m_files->createFile(0);
    QCOMPARE(user.boxes.seen().size(), 1);
    QCOMPARE(m_files->getFileCount(), 0);
    QCOMPARE(bytes(user.home(u"old.bdl"_s)), QByteArray("something else"));
}

void FileManagerDialogsTest::cancellingTheCreateDialogShowsNothing()
{
    FileUser user({QString()});
    const QSignalSpy loaded(m_files.get(), &FileManager::fileLoaded);
    m_files->createFile(0);
    QCOMPARE(user.dialogs.size(), 1);
    QCOMPARE(user.boxes.texts(), QStringList());
    QCOMPARE(loaded.count(), 0);
    QVERIFY(QDir(user.home(QString())).isEmpty());
}

void FileManagerDialogsTest::creatingAnOpenFileIsRefusedAndKeepsIt_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("same name") << u"open.bdl"_s;
    QTest::newRow("symbolic link") << u"link.bdl"_s;
    QTest::newRow("hard link") << u"hard.bdl"_s;
    QTest::newRow("doubled slash") << u".//open.bdl"_s;
    QTest::newRow("what is to be saved in it") << u"open.bdl-journal"_s;
}

void FileManagerDialogsTest::creatingAnOpenFileIsRefusedAndKeepsIt()
{
    QFETCH(QString, typed);
    FileUser user({typed}, {QMessageBox::Yes, QMessageBox::Ok});
    const QString path = user.home(u"open.bdl"_s);
    m_files->openFile(path, 0);
    m_files->getFile(0)->updateEntryBody(1, u"unsaved"_s, true);
    QVERIFY(QFile::link(path, user.home(u"link.bdl"_s)));
    QCOMPARE(::link(QFile::encodeName(path).constData(),
                    QFile::encodeName(user.home(u"hard.bdl"_s)).constData()),
             0);
    m_files->createFile(0);
    QCOMPARE(user.boxes.seen().size(), 2);
    QCOMPARE(user.boxes.texts().last(), u"That file is already open."_s);
    QCOMPARE(m_files->getFileCount(), 1);
    QVERIFY(!canBeWrittenByOthers(path));
    QVERIFY(m_files->commitAndRestartTransactions());
    QCOMPARE(rows(path, u"SELECT content FROM entrybody"_s), QStringList{u"unsaved"_s});
}

void FileManagerDialogsTest::creatingWhereNothingCanBeWrittenAsksAgain()
{
    // Cancelled at the second time.
    FileUser user({u"/proc/new.bdl"_s, QString()}, {QMessageBox::Ok});
    m_files->createFile(0);
    QCOMPARE(user.dialogs.size(), 2);
    QCOMPARE(user.boxes.texts(),
             QStringList{u"That file could not be written. Please select a different file."_s});
    const SeenBox box = user.boxes.seen().first();
    QCOMPARE(box.title, u"File Access Error"_s);
    QCOMPARE(box.icon, QMessageBox::Information);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(m_files->getFileCount(), 0);
}

void FileManagerDialogsTest::creatingOverAFileThatCannotBeRemovedAsksAgain()
{
    FileUser user({u"fixed.bdl"_s, QString()}, {QMessageBox::Yes, QMessageBox::Ok});
    const QString path = user.home(u"fixed.bdl"_s);
    QVERIFY(writeBytes(path, "fixed"));
    {
        const AsOrdinaryUser ordinary(user.home(QString()));
        QVERIFY(ordinary.isOrdinary());
        QVERIFY(QFile::setPermissions(user.home(QString()), QFile::ReadOwner | QFile::ExeOwner));
        m_files->createFile(0);
        QVERIFY(QFile::setPermissions(user.home(QString()),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    QCOMPARE(user.dialogs.size(), 2);
    QCOMPARE(user.boxes.texts().last(),
             u"That file could not be overwritten. Please select a different file."_s);
    QCOMPARE(user.boxes.seen().last().title, u"File Access Error"_s);
    QCOMPARE(bytes(path), QByteArray("fixed"));
    QCOMPARE(m_files->getFileCount(), 0);
}

void FileManagerDialogsTest::openDialogStartsInTheHomeFolderWithOurFiles()
{
    FileUser user({QString()});
    m_files->loadFile(0);
    QCOMPARE(user.dialogs.size(), 1);
    const SeenDialog dialog = user.dialogs.first();
    QCOMPARE(dialog.title, u"Open an existing file"_s);
    QCOMPARE(dialog.folder, user.home(QString()));
    QCOMPARE(dialog.filters, (QStringList{u"Any file (*)"_s, filter}));
    QCOMPARE(dialog.selectedFilter, filter);
    QCOMPARE(dialog.mode, QFileDialog::AcceptOpen);
    QVERIFY(!dialog.hasParent);
}

void FileManagerDialogsTest::openingInsertsTheFileAtTheIndex()
{
    FileUser user({u"b.bdl"_s, u"a.bdl"_s});
    makeEmptyStore(user.home(u"a.bdl"_s));
    makeEmptyStore(user.home(u"b.bdl"_s));
    const QSignalSpy loaded(m_files.get(), &FileManager::fileLoaded);
    m_files->loadFile(0);
    m_files->loadFile(0);
    QCOMPARE(m_files->getFileCount(), 2);
    QCOMPARE(m_files->getFile(0)->dbFilePath(), user.home(u"a.bdl"_s));
    QCOMPARE(m_files->getFile(1)->dbFilePath(), user.home(u"b.bdl"_s));
    QCOMPARE(loaded.count(), 2);
    QCOMPARE(user.boxes.texts(), QStringList());
}

void FileManagerDialogsTest::cancellingTheOpenDialogShowsNothing()
{
    FileUser user({QString()});
    const QSignalSpy loaded(m_files.get(), &FileManager::fileLoaded);
    m_files->loadFile(0);
    QCOMPARE(user.dialogs.size(), 1);
    QCOMPARE(user.boxes.texts(), QStringList());
    QCOMPARE(loaded.count(), 0);
    QCOMPARE(m_files->getFileCount(), 0);
}

void FileManagerDialogsTest::openingAnOpenFileIsRefused()
{
    FileUser user({u"a.bdl"_s}, {QMessageBox::Ok});
    m_files->openFile(user.home(u"a.bdl"_s), 0);
    m_files->loadFile(1);
    QCOMPARE(user.dialogs.size(), 1);
    QCOMPARE(user.boxes.texts(), QStringList{u"That file is already open."_s});
    QCOMPARE(m_files->getFileCount(), 1);
}

void FileManagerDialogsTest::openingAFileWithoutRightsAsksAgain()
{
    FileUser user({u"a.bdl"_s, QString()}, {QMessageBox::Ok});
    const QString path = user.home(u"a.bdl"_s);
    makeEmptyStore(path);
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
    const AsOrdinaryUser ordinary(user.home(QString()));
    QVERIFY(ordinary.isOrdinary());
    m_files->loadFile(0);
    QCOMPARE(user.dialogs.size(), 2);
    QCOMPARE(user.boxes.texts(),
             QStringList{u"That file cannot be edited. Please select a different file."_s});
    const SeenBox box = user.boxes.seen().first();
    QCOMPARE(box.title, u"File Not Accessible"_s);
    QCOMPARE(box.icon, QMessageBox::Information);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(m_files->getFileCount(), 0);
}

void FileManagerDialogsTest::openingADamagedFileIsReported()
{
    FileUser user({u"bad.bdl"_s}, {QMessageBox::Ok});
    const QByteArray content(5000, 'x');
    QVERIFY(writeBytes(user.home(u"bad.bdl"_s), content));
    m_files->loadFile(0);
    QCOMPARE(
        user.boxes.texts(),
        QStringList{u"There was an error accessing file bad.bdl. The file could not be loaded."_s});
    QCOMPARE(m_files->getFileCount(), 0);
    QCOMPARE(bytes(user.home(u"bad.bdl"_s)), content);
    QVERIFY(!QSettings().contains(u"loadfiles/0"_s));
}

void FileManagerDialogsTest::openingAnOldFileUpgradesIt()
{
    FileUser user({u"Old file 2.bdl"_s});
    QVERIFY(makeOldFiles(user.home(QString())));
    m_files->loadFile(0);
    QCOMPARE(user.boxes.texts(), QStringList());
    QCOMPARE(m_files->getFileCount(), 1);
    QCOMPARE(firstDifference(dump(user.home(u"Old file 2.bdl"_s)), expectedDump(u"Old file 2"_s)),
             QString());
}

void FileManagerDialogsTest::addDialogs()
{
    QTest::addColumn<bool>("create");
    QTest::newRow("create") << true;
    QTest::newRow("open") << false;
}

void FileManagerDialogsTest::showDialog(int index)
{
    QFETCH(bool, create);
    if (create)
        m_files->createFile(index);
    else
        m_files->loadFile(index);
}

void FileManagerDialogsTest::fileComesBeforeItsNeighbourWhateverHappensMeanwhile_data()
{
    addDialogs();
}

void FileManagerDialogsTest::fileComesBeforeItsNeighbourWhateverHappensMeanwhile()
{
    QFETCH(bool, create);
    FileUser user({u"new.bdl"_s});
    if (!create)
        makeEmptyStore(user.home(u"new.bdl"_s));
    for (const QString &name : {u"c.bdl"_s, u"b.bdl"_s, u"a.bdl"_s})
        m_files->openFile(user.home(name), 0);
    user.beforeAnswering([this](QFileDialog *) {
        m_files->unloadFile(0, true);
        return true;
    });
    showDialog(1);
    QCOMPARE(names(*m_files), (QStringList{u"new.bdl"_s, u"b.bdl"_s, u"c.bdl"_s}));
}

void FileManagerDialogsTest::fileComesLastWhenItsNeighbourIsClosedMeanwhile_data()
{
    addDialogs();
}

void FileManagerDialogsTest::fileComesLastWhenItsNeighbourIsClosedMeanwhile()
{
    QFETCH(bool, create);
    FileUser user({u"new.bdl"_s});
    if (!create)
        makeEmptyStore(user.home(u"new.bdl"_s));
    for (const QString &name : {u"b.bdl"_s, u"a.bdl"_s})
        m_files->openFile(user.home(name), 0);
    const QSignalSpy loaded(m_files.get(), &FileManager::fileLoaded);
    user.beforeAnswering([this](QFileDialog *) {
        m_files->unloadFile(1, true);
        m_files->unloadFile(0, true);
        return true;
    });
    showDialog(1);
    QCOMPARE(names(*m_files), QStringList{u"new.bdl"_s});
    QCOMPARE(loaded.size(), 1);
    QCOMPARE(loaded.first().first().toInt(), 0);
}

QTEST_MAIN(FileManagerDialogsTest)
#include "FileManagerDialogsTest.moc"
