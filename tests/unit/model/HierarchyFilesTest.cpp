// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace
{

/// Answers the next file dialog with a path, or cancels it when there is none.
class FileDialogAnswer : public QObject
{
public:
    explicit FileDialogAnswer(const QString &path)
    {
        connect(&m_timer, &QTimer::timeout, this, [this, path] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (dialog == nullptr || !dialog->isVisible())
                return;
            m_timer.stop();
            QDialog *base = dialog;
            if (path.isEmpty())
                return base->reject();
            dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
            base->accept();
        });
        m_timer.start(5);
    }

    bool wasShown() const { return !m_timer.isActive(); }

private:
    QTimer m_timer;
};

} // namespace

/// How the position follows when files are opened, closed, or fail.
class HierarchyFilesTest : public QObject
{
    Q_OBJECT

private:
    static void setUpThreeFiles(HierarchyDesk &desk);
    static void goTo(HierarchyDesk &desk, const QString &place);

private slots:
    void initTestCase();
    void openingAFileElsewhereKeepsThePosition_data();
    void openingAFileElsewhereKeepsThePosition();
    void openingAFileAtThePanelGoesToItsRoot_data();
    void openingAFileAtThePanelGoesToItsRoot();
    void closingAFile_data();
    void closingAFile();
    void closingTheOnlyFileGoesToThePanel_data();
    void closingTheOnlyFileGoesToThePanel();
    void afterClosingAnotherFileSignalsCarryTheNewIndex();
    void afterOpeningAnotherFileSignalsCarryTheNewIndex();
    void typedTextSurvivesWhatHappensToOtherFiles_data();
    void typedTextSurvivesWhatHappensToOtherFiles();
    void textIsAskedForBeforeTheRedraw();
    void typedTextOfAFailedFileIsNotTakenForTheNext();
    void twoFilesThatFailTogetherAreBothReported();
    void filesAreCreatedAndOpenedOnlyAtThePanel();
    void creatingAFileAtThePanelLandsOnItsRoot();
    void openingAFileThroughTheDialogLandsOnItsRoot();
    void cancelledDialogsChangeNothing();
    void closingTheCurrentFileNeedsOne();
    void closingTheCurrentFileIsRefusedWhenTheTextIs();
    void closingTheCurrentFileWritesTheTextAndAsks_data();
    void closingTheCurrentFileWritesTheTextAndAsks();
    void closingTheCurrentFileWithoutChangesAsksNothing();
    void aRootRenamedElsewhereChangesTheExcerpt();
    void atThePanelTheExcerptStaysEmpty();
};

void HierarchyFilesTest::initTestCase()
{
    // Qt's own file dialog remembers folders in the user's settings; not in these.
    static QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    qputenv("HOME", folder.path().toUtf8());
}

void HierarchyFilesTest::setUpThreeFiles(HierarchyDesk &desk)
{
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.addFile(u"two.bdl"_s, u"- b\n"_s);
    desk.addFile(u"three.bdl"_s, u"- c\n"_s);
    desk.start();
}

/// Goes to "root 1", "panel 2", an entry of the second file by its text, or "new", after "b".
void HierarchyFilesTest::goTo(HierarchyDesk &desk, const QString &place)
{
    if (place.startsWith(u"root "_s))
        desk.goToRoot(place.mid(5).toInt());
    else if (place.startsWith(u"panel "_s))
        desk.goToPanel(place.mid(6).toInt());
    else if (place == u"new"_s)
        desk.goToNewAfter(u"b"_s, 1);
    else
        desk.goTo(place, 1);
}

void HierarchyFilesTest::openingAFileElsewhereKeepsThePosition_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("where");
    QTest::newRow("before a root") << u"root 1"_s << 0 << u"top: one.bdl <two.bdl> three.bdl"_s;
    QTest::newRow("right before a root")
        << u"root 1"_s << 1 << u"top: new.bdl <two.bdl> three.bdl"_s;
    QTest::newRow("right after a root") << u"root 1"_s << 2 << u"top: one.bdl <two.bdl> new.bdl"_s;
    QTest::newRow("far after a root") << u"root 1"_s << 3 << u"top: one.bdl <two.bdl> three.bdl"_s;
    QTest::newRow("before the first root")
        << u"root 0"_s << 0 << u"top: new.bdl <one.bdl> two.bdl"_s;
    QTest::newRow("after the last root")
        << u"root 2"_s << 3 << u"top: two.bdl <three.bdl> new.bdl"_s;
    QTest::newRow("before an entry") << u"b"_s << 0 << u"two.bdl: - <b> -"_s;
    QTest::newRow("after an entry") << u"b"_s << 2 << u"two.bdl: - <b> -"_s;
    QTest::newRow("before a new entry") << u"new"_s << 1 << u"two.bdl: b <> -"_s;
    QTest::newRow("after a new entry") << u"new"_s << 3 << u"two.bdl: b <> -"_s;
}

void HierarchyFilesTest::openingAFileElsewhereKeepsThePosition()
{
    QFETCH(const QString, place);
    QFETCH(const int, index);
    QFETCH(const QString, where);
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    const QString path = desk.makeFile(u"new.bdl"_s);
    goTo(desk, place);
    const QString name = desk.model->getFileName();
    desk.files->openFile(path, index);
    QCOMPARE(desk.files->getFileCount(), 4);
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.model->getFileName(), name);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.announcements(), 0);
    QVERIFY(!desk.somethingWritten());
    // The next step starts from the right index.
    desk.run(Command::GoToParent);
    desk.forget();
    desk.run(Command::GoToFirst);
    QCOMPARE(desk.model->getFileName(), index == 0 ? u"new.bdl"_s : u"one.bdl"_s);
}

void HierarchyFilesTest::openingAFileAtThePanelGoesToItsRoot_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("where");
    QTest::newRow("at the slot") << 1 << 1 << u"top: one.bdl <new.bdl> two.bdl"_s;
    QTest::newRow("before it") << 2 << 0 << u"top: - <new.bdl> one.bdl"_s;
    QTest::newRow("after it") << 0 << 3 << u"top: three.bdl <new.bdl> -"_s;
}

void HierarchyFilesTest::openingAFileAtThePanelGoesToItsRoot()
{
    QFETCH(const int, slot);
    QFETCH(const int, index);
    QFETCH(const QString, where);
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    const QString path = desk.makeFile(u"new.bdl"_s, u"- n\n"_s);
    desk.goToPanel(slot);
    desk.files->openFile(path, index);
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.model->getFilePath(), path);
    QVERIFY(desk.model->getHasChildren());
    QCOMPARE(desk.model->getRootExcerpt(), u"new.bdl"_s);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.bodyRequests->size(), 0);
}

void HierarchyFilesTest::closingAFile_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("where");
    const auto row = [](const char *name, const QString &place, int index, const QString &where) {
        QTest::newRow(name) << place << index << where;
    };
    row("current, the first: the file that took its index", u"root 0"_s, 0,
        u"top: - <two.bdl> three.bdl"_s);
    row("current, in the middle: the file that took its index", u"root 1"_s, 1,
        u"top: one.bdl <three.bdl> -"_s);
    row("current, the last: the new last", u"root 2"_s, 2, u"top: one.bdl <two.bdl> -"_s);
    row("current, from an entry", u"b"_s, 1, u"top: one.bdl <three.bdl> -"_s);
    row("current, from a new entry", u"new"_s, 1, u"top: one.bdl <three.bdl> -"_s);
    row("the one before a root", u"root 2"_s, 1, u"top: one.bdl <three.bdl> -"_s);
    row("an earlier one, at a root", u"root 2"_s, 0, u"top: two.bdl <three.bdl> -"_s);
    row("the one after a root", u"root 0"_s, 1, u"top: - <one.bdl> three.bdl"_s);
    row("a later one, at a root", u"root 0"_s, 2, u"top: - <one.bdl> two.bdl"_s);
    row("an earlier one, at an entry", u"b"_s, 0, u"two.bdl: - <b> -"_s);
    row("a later one, at an entry", u"b"_s, 2, u"two.bdl: - <b> -"_s);
    row("an earlier one, at a new entry", u"new"_s, 0, u"two.bdl: b <> -"_s);
    row("after the panel at the start", u"panel 0"_s, 0, u"panel: - <> two.bdl"_s);
    row("before the panel", u"panel 1"_s, 0, u"panel: - <> two.bdl"_s);
    row("right after the panel", u"panel 1"_s, 1, u"panel: one.bdl <> three.bdl"_s);
    row("further after the panel", u"panel 1"_s, 2, u"panel: one.bdl <> two.bdl"_s);
    row("last, at the panel before it", u"panel 2"_s, 2, u"panel: two.bdl <> -"_s);
    row("last, at the panel behind it", u"panel 3"_s, 2, u"panel: two.bdl <> -"_s);
    row("first, at the panel at the end", u"panel 3"_s, 0, u"panel: three.bdl <> -"_s);
}

void HierarchyFilesTest::closingAFile()
{
    QFETCH(const QString, place);
    QFETCH(const int, index);
    QFETCH(const QString, where);
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    goTo(desk, place);
    desk.files->unloadFile(index, true);
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.announcements(), 0);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.refusals(), 0);
    // From there the walk over what is left is complete.
    if (!desk.model->atOpenCreatePanel() && !desk.model->atRootOfFile())
        desk.run(Command::GoToParent);
    desk.run(Command::GoToFirst);
    QStringList names{desk.model->getFileName()};
    desk.run(Command::GoToNext);
    names += desk.model->getFileName();
    desk.run(Command::GoToNext);
    QVERIFY(desk.model->atOpenCreatePanel());
    QStringList expected{u"one.bdl"_s, u"two.bdl"_s, u"three.bdl"_s};
    expected.removeAt(index);
    QCOMPARE(names, expected);
}

void HierarchyFilesTest::closingTheOnlyFileGoesToThePanel_data()
{
    QTest::addColumn<QString>("entry");
    QTest::newRow("from its root") << u"one.bdl"_s;
    QTest::newRow("from an entry") << u"a"_s;
}

void HierarchyFilesTest::closingTheOnlyFileGoesToThePanel()
{
    QFETCH(const QString, entry);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"x a\n"_s);
    desk.start();
    desk.goTo(entry);
    desk.files->unloadFile(0, true);
    QCOMPARE(desk.where(), u"panel: - <> -"_s);
    QVERIFY(desk.model->atOpenCreatePanel());
    QCOMPARE(desk.model->getFileName(), QString());
    QCOMPARE(desk.model->getRootExcerpt(), QString());
    QVERIFY(desk.model->getDoneDate().isNull());
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyFilesTest::afterClosingAnotherFileSignalsCarryTheNewIndex()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goTo(u"b"_s, 1);
    desk.files->unloadFile(0, true);
    desk.type(u"bb"_s);
    desk.run(Command::AddEntryToTodoListAndShow);
    QCOMPARE(desk.bodyChanges->at(0).at(0).toInt(), 0);
    QCOMPARE(desk.todoRequests->at(0).at(0).value<EntryAddress>().fileIndex, 0);
    // A later file changes nothing for it.
    desk.files->unloadFile(1, true);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.stateChanges->at(0).at(0).toInt(), 0);
    desk.type(QString());
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.deletions->at(0).at(0).toInt(), 0);
}

void HierarchyFilesTest::afterOpeningAnotherFileSignalsCarryTheNewIndex()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goTo(u"b"_s, 1);
    desk.files->openFile(desk.makeFile(u"new.bdl"_s), 1);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.stateChanges->at(0).at(0).toInt(), 2);
    desk.files->openFile(desk.makeFile(u"newer.bdl"_s), 4);
    desk.run(Command::MarkCurrentTodo);
    QCOMPARE(desk.stateChanges->at(1).at(0).toInt(), 2);
}

void HierarchyFilesTest::typedTextSurvivesWhatHappensToOtherFiles_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("event");
    QTest::addColumn<QString>("text");
    for (const QString &place : {u"root 1"_s, u"b"_s, u"new"_s}) {
        for (const QString &event : {u"open before"_s, u"open after"_s, u"close before"_s,
                                     u"close after"_s, u"fail before"_s, u"fail after"_s}) {
            QTest::addRow("at %s: %s", qPrintable(place), qPrintable(event))
                << place << event << u"half a thought"_s;
            QTest::addRow("cleared, at %s: %s", qPrintable(place), qPrintable(event))
                << place << event << QString();
        }
    }
}

void HierarchyFilesTest::typedTextSurvivesWhatHappensToOtherFiles()
{
    QFETCH(const QString, place);
    QFETCH(const QString, event);
    QFETCH(const QString, text);
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    const QString path = desk.makeFile(u"new.bdl"_s);
    goTo(desk, place);
    DiskStore *store = desk.files->getFile(1);
    const Outline::Rows before = Outline::read(*store);
    desk.type(text);
    const int index = event.endsWith(u"before"_s) ? 0 : 2;
    if (event.startsWith(u"open"_s)) {
        desk.files->openFile(path, index);
    } else if (event.startsWith(u"close"_s)) {
        desk.files->unloadFile(index, true);
    } else {
        BoxAnswer answer(BoxAnswer::press(QMessageBox::Ok));
        const QByteArray thrown = thrownBy(
            [&] { desk.files->getFile(index)->throwFileExceptionAndEmit(u"testing"_s); });
        QVERIFY(thrown.startsWith("a file error"));
        QTRY_VERIFY(answer.wasShown());
        QVERIFY(answer.text().endsWith(u"This file has been closed."_s));
    }
    QVERIFY(desk.files->getFileCount() != 3);
    QVERIFY(desk.changed->size() >= 1);
    QCOMPARE(desk.editor->text(), text);
    QCOMPARE(desk.announcements(), 0);
    const Outline::Rows after = Outline::read(*store);
    QCOMPARE(Outline::dump(after), Outline::dump(before));
    // It is still pending, and goes where it belongs.
    if (!text.isEmpty()) {
        QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
        const Outline::Row row = Outline::rowWithText(Outline::read(*store), text);
        QCOMPARE(row.parentId == -1, place == u"root 1"_s);
        QVERIFY(row.id != -1);
    } else {
        QCOMPARE(desk.model->getAndWriteModifiedBodyToDb(), place != u"root 1"_s);
    }
}

void HierarchyFilesTest::textIsAskedForBeforeTheRedraw()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goTo(u"b"_s, 1);
    QStringList order;
    QObject::connect(desk.model.get(), &HierarchyModel::requestBodyUpdate, this,
                     [&order] { order += u"asked"_s; });
    QObject::connect(desk.model.get(), &HierarchyModel::changed, this,
                     [&order] { order += u"redrawn"_s; });
    desk.files->openFile(desk.makeFile(u"new.bdl"_s), 0);
    QCOMPARE(order, (QStringList{u"asked"_s, u"redrawn"_s}));
    order.clear();
    desk.files->unloadFile(3, true);
    QCOMPARE(order, (QStringList{u"asked"_s, u"redrawn"_s}));
    order.clear();
    // What is gone is not asked for.
    desk.files->unloadFile(2, true);
    QCOMPARE(order, (QStringList{u"redrawn"_s}));
}

void HierarchyFilesTest::typedTextOfAFailedFileIsNotTakenForTheNext()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goTo(u"b"_s, 1);
    desk.type(u"half a thought"_s);
    BoxAnswer answer(BoxAnswer::press(QMessageBox::Ok));
    QVERIFY(thrownBy([&] {
                desk.store(1).throwFileExceptionAndEmit(u"testing"_s);
            }).startsWith("a file error"));
    QTRY_VERIFY(answer.wasShown());
    QCOMPARE(desk.where(), u"top: one.bdl <three.bdl> -"_s);
    QCOMPARE(desk.editor->text(), u"three.bdl"_s);
    desk.run(Command::CommitEdit);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.outline(0), u"- a\n"_s);
    QCOMPARE(desk.outline(1), u"- c\n"_s);
}

void HierarchyFilesTest::twoFilesThatFailTogetherAreBothReported()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goTo(u"b"_s, 1);
    BoxReader boxes;
    // A full disk, for example, when everything is saved.
    for (const int index : {1, 2}) {
        QVERIFY(thrownBy([&] {
                    desk.store(index).throwFileExceptionAndEmit(u"testing"_s);
                }).startsWith("a file error"));
    }
    // The program's event loop survives what a slot throws.
    const auto handleEvents = [] { return thrownBy([] { QCoreApplication::processEvents(); }); };
    QTRY_VERIFY(handleEvents() == "nothing" && desk.files->getFileCount() == 1);
    // The second box comes up over the first.
    const auto texts = [&boxes] {
        QStringList all = boxes.texts();
        all.sort();
        return all;
    };
    QTRY_COMPARE(
        texts(),
        (QStringList{u"There was an error accessing file three.bdl. This file has been closed."_s,
                     u"There was an error accessing file two.bdl. This file has been closed."_s}));
    QCOMPARE(desk.where(), u"top: - <one.bdl> -"_s);
}

void HierarchyFilesTest::filesAreCreatedAndOpenedOnlyAtThePanel()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    for (const QString &place : {u"root 1"_s, u"b"_s, u"new"_s}) {
        goTo(desk, place);
        QCOMPARE(thrownBy([&] { desk.model->createFileAtCurrentPosition(); }),
                 "this method can only be called when the open/create panel is displayed");
        QCOMPARE(thrownBy([&] { desk.model->loadFileAtCurrentPosition(); }),
                 "this method can only be called when the open/create panel is displayed");
    }
    QCOMPARE(desk.files->getFileCount(), 3);
}

void HierarchyFilesTest::creatingAFileAtThePanelLandsOnItsRoot()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goToPanel(2);
    FileDialogAnswer answer(desk.filePath(u"made.bdl"_s));
    desk.model->createFileAtCurrentPosition();
    QVERIFY(answer.wasShown());
    QCOMPARE(desk.where(), u"top: two.bdl <made.bdl> three.bdl"_s);
    QVERIFY(!desk.model->getHasChildren());
    QCOMPARE(desk.changed->size(), 1);
    QVERIFY(QFile::exists(desk.filePath(u"made.bdl"_s)));
}

void HierarchyFilesTest::openingAFileThroughTheDialogLandsOnItsRoot()
{
    HierarchyDesk desk;
    desk.start();
    const QString path = desk.makeFile(u"found.bdl"_s, u"- f\n"_s);
    FileDialogAnswer answer(path);
    desk.model->loadFileAtCurrentPosition();
    QVERIFY(answer.wasShown());
    QCOMPARE(desk.where(), u"top: - <found.bdl> -"_s);
    QVERIFY(desk.model->getHasChildren());
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyFilesTest::cancelledDialogsChangeNothing()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goToPanel(3);
    FileDialogAnswer first{QString()};
    desk.model->createFileAtCurrentPosition();
    QVERIFY(first.wasShown());
    FileDialogAnswer second{QString()};
    desk.model->loadFileAtCurrentPosition();
    QVERIFY(second.wasShown());
    QCOMPARE(desk.where(), u"panel: three.bdl <> -"_s);
    QCOMPARE(desk.changed->size(), 0);
}

void HierarchyFilesTest::closingTheCurrentFileNeedsOne()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goToPanel(1);
    QCOMPARE(thrownBy([&] { desk.model->unloadCurrentFile(); }), "there is no current file");
    QCOMPARE(desk.files->getFileCount(), 3);
}

void HierarchyFilesTest::closingTheCurrentFileIsRefusedWhenTheTextIs()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goToRoot(1);
    desk.type(QString());
    QVERIFY(!desk.model->unloadCurrentFile());
    QCOMPARE(desk.files->getFileCount(), 3);
    QCOMPARE(desk.changed->size(), 0);
}

void HierarchyFilesTest::closingTheCurrentFileWritesTheTextAndAsks_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("onDisk");
    const auto row = [](const char *name, QMessageBox::StandardButton button, const QString &where,
                        const QString &onDisk) {
        QTest::newRow(name) << static_cast<int>(button) << where << onDisk;
    };
    row("save", QMessageBox::Save, u"top: one.bdl <three.bdl> -"_s, u"- bb\n"_s);
    row("discard", QMessageBox::Discard, u"top: one.bdl <three.bdl> -"_s, u"- b\n"_s);
    row("cancel", QMessageBox::Cancel, u"two.bdl: - <bb> -"_s, u"- b\n"_s);
}

void HierarchyFilesTest::closingTheCurrentFileWritesTheTextAndAsks()
{
    QFETCH(const int, button);
    QFETCH(const QString, where);
    QFETCH(const QString, onDisk);
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goTo(u"b"_s, 1);
    desk.type(u"bb"_s);
    BoxAnswer answer(BoxAnswer::press(static_cast<QMessageBox::StandardButton>(button)));
    QVERIFY(desk.model->unloadCurrentFile());
    QVERIFY(answer.wasShown());
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.files->getFileCount(), button == QMessageBox::Cancel ? 3 : 2);
    QCOMPARE(Outline::dump(Outline::readFromDisk(desk.filePath(u"two.bdl"_s))), onDisk);
    QCOMPARE(desk.bodyChanges->size(), 1);
}

void HierarchyFilesTest::closingTheCurrentFileWithoutChangesAsksNothing()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goToRoot(2);
    BoxAnswer answer(BoxAnswer::press(QMessageBox::Cancel));
    QVERIFY(desk.model->unloadCurrentFile());
    QVERIFY(!answer.wasShown());
    QCOMPARE(desk.where(), u"top: one.bdl <two.bdl> -"_s);
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyFilesTest::aRootRenamedElsewhereChangesTheExcerpt()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goTo(u"b"_s, 1);
    desk.store(1).updateEntryBody(Outline::rootOf(desk.rows(1)), u"A rather long name for it"_s,
                                  true);
    QCOMPARE(desk.model->getRootExcerpt(), u"A rather long name f ..."_s);
    QCOMPARE(desk.changed->size(), 1);
    desk.store(0).updateEntryBody(Outline::rootOf(desk.rows(0)), u"other"_s, true);
    QCOMPARE(desk.model->getRootExcerpt(), u"A rather long name f ..."_s);
}

void HierarchyFilesTest::atThePanelTheExcerptStaysEmpty()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goToPanel(1);
    desk.model->updateRootExcerpt();
    QCOMPARE(desk.model->getRootExcerpt(), QString());
    QCOMPARE(desk.changed->size(), 1);
}

QTEST_MAIN(HierarchyFilesTest)
#include "HierarchyFilesTest.moc"
