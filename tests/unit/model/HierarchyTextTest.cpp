// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>

using namespace Qt::StringLiterals;

/// What becomes of the edited text: stored, inserted, taken as a deletion, or refused.
class HierarchyTextTest : public QObject
{
    Q_OBJECT

private slots:
    void editedTextIsTrimmedAndNothingElse();
    void textIsAskedForBeforeItIsCompared();
    void unchangedTextWritesNothing();
    void changedTextOfAStoredEntryIsWrittenOnce();
    void textOfANewEntryInsertsItWithoutASignal();
    void aNewEntryLeftEmptyIsNeverInserted_data();
    void aNewEntryLeftEmptyIsNeverInserted();
    void clearingAStoredChildlessEntryAndMovingOnDeletesIt_data();
    void clearingAStoredChildlessEntryAndMovingOnDeletesIt();
    void clearingInPlaceLeavesAnEmptyNewEntryThere();
    void anEntryClearedInPlaceLosesItsShortcut();
    void anEntryClearedAndTypedAgainIsANewOneInTheSamePlace();
    void clearingTheOnlyChildGoesBackToTheParent();
    void clearingARootIsRefusedAndChangesNothing();
    void clearingAParentIsRefusedAndChangesNothing();
    void whitespaceOnlyCountsAsCleared_data();
    void whitespaceOnlyCountsAsCleared();
    void whitespaceOnlyInANewEntryIsEmpty();
    void changingARootsTextRenamesTheExcerpt();
    void atThePanelThereIsNothingToWrite();
    void aRefusedWriteKeepsTheTypedText();
    void anEntryEmptiedOfItsChildrenCanBeCleared();
    void textIsWrittenOnlyInsideTheTransaction();
    void unusualTextsComeBackUnchanged_data();
    void unusualTextsComeBackUnchanged();
    void aRefusedCommandShowsWhatClearingTheTextHasDeleted();
};

void HierarchyTextTest::editedTextIsTrimmedAndNothingElse()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.model->updateCurrentBody(u" \t two  words\n of text \n\n"_s);
    QCOMPARE(desk.model->getBody(), u"two  words\n of text"_s);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.outline(), u"- a\n"_s);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyTextTest::textIsAskedForBeforeItIsCompared()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(u"better"_s);
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(desk.bodyRequests->size(), 1);
    QCOMPARE(desk.outline(), u"- better\n"_s);
    QCOMPARE(desk.changed->size(), 0);
}

void HierarchyTextTest::unchangedTextWritesNothing()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(u"  a\n"_s);
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(desk.announcements(), 0);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyTextTest::changedTextOfAStoredEntryIsWrittenOnce()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(u"b"_s);
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(desk.bodyChanges->size(), 1);
    QCOMPARE(desk.announcements(), 1);
}

void HierarchyTextTest::textOfANewEntryInsertsItWithoutASignal()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- c\n"_s);
    desk.start();
    desk.goToNewAfter(u"a"_s);
    desk.type(u" b "_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.numberedOutline(), u"- a @0\n- b @1\n- c @2\n"_s);
    QCOMPARE(desk.where(), u"one.bdl: a <b> c"_s);
    QCOMPARE(desk.announcements(), 0);
    QCOMPARE(desk.changed->size(), 1);
    // From now on it is a stored entry.
    desk.type(u"bb"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.bodyChanges->size(), 1);
    QCOMPARE(desk.outline(), u"- a\n- bb\n- c\n"_s);
}

void HierarchyTextTest::aNewEntryLeftEmptyIsNeverInserted_data()
{
    QTest::addColumn<int>("away");
    QTest::newRow("next") << static_cast<int>(Command::GoToNext);
    QTest::newRow("previous") << static_cast<int>(Command::GoToPrevious);
    QTest::newRow("parent") << static_cast<int>(Command::GoToParent);
    QTest::newRow("first") << static_cast<int>(Command::GoToFirst);
    QTest::newRow("last") << static_cast<int>(Command::GoToLast);
}

void HierarchyTextTest::aNewEntryLeftEmptyIsNeverInserted()
{
    QFETCH(const int, away);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - a\n  - b\n"_s);
    desk.start();
    const QString before = desk.numberedOutline();
    desk.goToNewAfter(u"a"_s);
    desk.run(static_cast<Command>(away));
    desk.goTo(u"a"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"p: a <b> -"_s);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.where(), u"p: - <a> b"_s);
    QCOMPARE(desk.numberedOutline(), before);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.announcements(), 0);
}

void HierarchyTextTest::clearingAStoredChildlessEntryAndMovingOnDeletesIt_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("where");
    const auto row = [](const char *name, Command command, const QString &where) {
        QTest::newRow(name) << static_cast<int>(command) << where;
    };
    row("next", Command::GoToNext, u"p: a <c> -"_s);
    row("previous", Command::GoToPrevious, u"p: - <a> c"_s);
    row("parent", Command::GoToParent, u"one.bdl: - <p> -"_s);
    row("first", Command::GoToFirst, u"p: - <a> c"_s);
    row("last", Command::GoToLast, u"p: a <c> -"_s);
}

void HierarchyTextTest::clearingAStoredChildlessEntryAndMovingOnDeletesIt()
{
    QFETCH(const int, command);
    QFETCH(const QString, where);
    HierarchyDesk desk;
    desk.addFile(u"zero.bdl"_s);
    desk.addFile(u"one.bdl"_s, u"- p\n  - a\n  - b\n  - c\n"_s);
    desk.start();
    const qint64 id = desk.idOf(u"b"_s, 1);
    desk.goTo(u"b"_s, 1);
    desk.type(QString());
    desk.run(static_cast<Command>(command));
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.numberedOutline(1), u"- p @0\n  - a @0\n  - c @2\n"_s);
    QCOMPARE(desk.deletions->size(), 1);
    QCOMPARE(desk.deletions->at(0).at(0).toInt(), 1);
    QCOMPARE(desk.deletions->at(0).at(1).toLongLong(), id);
    QCOMPARE(desk.announcements(), 1);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.refusals(), 0);
}

void HierarchyTextTest::clearingInPlaceLeavesAnEmptyNewEntryThere()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n- c\n"_s);
    desk.start();
    desk.goTo(u"b"_s);
    desk.type(QString());
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.where(), u"one.bdl: a <> c"_s);
    QCOMPARE(desk.model->getState(), EntryState::Todo);
    // As any new entry without text it can't be given to others, have children or siblings.
    for (const Command command :
         {Command::GoToChild, Command::NewSibling, Command::AddEntryToTodoListAndShow}) {
        desk.forget();
        desk.run(command);
        QCOMPARE(desk.refusals(), 1);
    }
    QVERIFY(!desk.model->canRegisterShortcut());
    QCOMPARE(desk.deletions->size(), 0);
}

void HierarchyTextTest::anEntryClearedInPlaceLosesItsShortcut()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(u"b"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_B, u"B"_s));
    desk.type(QString());
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    desk.type(u"again"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_B, false));
}

void HierarchyTextTest::anEntryClearedAndTypedAgainIsANewOneInTheSamePlace()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n/ b @5\n- c @9\n"_s);
    desk.start();
    desk.goTo(u"b"_s);
    desk.type(QString());
    desk.run(Command::CommitEdit);
    desk.type(u"again"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.numberedOutline(), u"- a @0\n/ again @5\n- c @9\n"_s);
    QCOMPARE(desk.deletions->size(), 1);
    QCOMPARE(desk.bodyChanges->size(), 0);
    QCOMPARE(desk.where(), u"one.bdl: a <again> c"_s);
}

void HierarchyTextTest::clearingTheOnlyChildGoesBackToTheParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - c\n"_s);
    desk.start();
    desk.goTo(u"c"_s);
    desk.type(QString());
    desk.run(Command::GoToParent);
    QCOMPARE(desk.where(), u"one.bdl: - <p> -"_s);
    QVERIFY(!desk.model->getHasChildren());
    QCOMPARE(desk.outline(), u"- p\n"_s);
}

void HierarchyTextTest::clearingARootIsRefusedAndChangesNothing()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    const QStringList before = desk.everythingShown();
    desk.type(QString());
    desk.run(Command::GoToNext);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.announcements(), 0);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.editor->text(), QString());
    desk.type(u"one.bdl"_s);
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(desk.everythingShown(), before);
}

void HierarchyTextTest::clearingAParentIsRefusedAndChangesNothing()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - c\n- q\n"_s);
    desk.start();
    desk.goTo(u"p"_s);
    const QString before = desk.numberedOutline();
    desk.type(u"\n"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.announcements(), 0);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.numberedOutline(), before);
    QVERIFY(desk.model->getHasChildren());
    QCOMPARE(desk.model->getFollowingSiblingEntryBody(), u"q"_s);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyTextTest::whitespaceOnlyCountsAsCleared_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a blank") << u" "_s;
    QTest::newRow("line feeds") << u"\n\n"_s;
    QTest::newRow("a tab") << u"\t"_s;
    QTest::newRow("a hard blank") << QString(QChar(0x00A0));
    QTest::newRow("an em space and a paragraph mark") << QString(QChar(0x2003)) + QChar(0x2029);
}

void HierarchyTextTest::whitespaceOnlyCountsAsCleared()
{
    QFETCH(const QString, text);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(text);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.outline(), u"- b\n"_s);
    QCOMPARE(desk.deletions->size(), 1);
}

void HierarchyTextTest::whitespaceOnlyInANewEntryIsEmpty()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goToNewAfter(u"a"_s);
    desk.type(u"  \n"_s);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.where(), u"one.bdl: - <a> -"_s);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyTextTest::changingARootsTextRenamesTheExcerpt()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.type(u"The work of this whole year"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.model->getRootExcerpt(), u"The work of this who ..."_s);
    QCOMPARE(desk.bodyChanges->size(), 1);
    QCOMPARE(desk.model->getBody(), u"The work of this whole year"_s);
    QVERIFY(desk.changed->size() >= 1);
    desk.run(Command::GoToChild);
    QCOMPARE(desk.where(), u"The work of this whole year: - <a> -"_s);
    QCOMPARE(desk.model->getRootExcerpt(), u"The work of this who ..."_s);
}

void HierarchyTextTest::atThePanelThereIsNothingToWrite()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    desk.goToPanel(1);
    desk.type(u"typed into a hidden editor"_s);
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(desk.bodyRequests->size(), 0);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyTextTest::aRefusedWriteKeepsTheTypedText()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - c\n"_s);
    desk.start();
    desk.goTo(u"p"_s);
    desk.type(u" "_s);
    QVERIFY(!desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(desk.model->getBody(), QString());
    // Still pending, and still refused.
    QVERIFY(!desk.model->getAndWriteModifiedBodyToDb());
    desk.type(u"q"_s);
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(desk.outline(), u"- q\n  - c\n"_s);
}

void HierarchyTextTest::anEntryEmptiedOfItsChildrenCanBeCleared()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - c\n- q\n"_s);
    desk.start();
    desk.goTo(u"c"_s);
    desk.type(QString());
    desk.run(Command::GoToParent);
    desk.type(QString());
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"one.bdl: - <q> -"_s);
    QCOMPARE(desk.outline(), u"- q\n"_s);
    QCOMPARE(desk.deletions->size(), 2);
}

void HierarchyTextTest::textIsWrittenOnlyInsideTheTransaction()
{
    HierarchyDesk desk;
    const QString path = desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(u"b"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.outline(), u"- b\n"_s);
    QCOMPARE(Outline::dump(Outline::readFromDisk(path)), u"- a\n"_s);
}

void HierarchyTextTest::unusualTextsComeBackUnchanged_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("quotes") << u"it's \"this\"; -- '); DROP TABLE entry"_s;
    QTest::newRow("several lines") << u"one\n  two\n\nthree"_s;
    QTest::newRow("other scripts") << u"Ähre 日本語 עברית \U0001F600"_s;
    QTest::newRow("place marks") << u"%1 :body ? @7"_s;
    QTest::newRow("hard blank inside") << u"10\u00A0km"_s;
    QTest::newRow("number") << u"007"_s;
    QTest::newRow("long") << QString(100000, u'x');
}

void HierarchyTextTest::unusualTextsComeBackUnchanged()
{
    QFETCH(const QString, text);
    HierarchyDesk desk;
    const QString path = desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.type(text);
    desk.run(Command::SaveChangesAndHide);
    desk.run(Command::GoToParent);
    desk.run(Command::GoToChild);
    QCOMPARE(desk.model->getBody(), text);
    QCOMPARE(Outline::readFromDisk(path).last().text, text);
}

void HierarchyTextTest::aRefusedCommandShowsWhatClearingTheTextHasDeleted()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(u"b"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_B, u"B"_s));
    desk.forget();
    desk.type(QString());
    desk.run(Command::GoToNext);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.outline(), u"- a\n"_s);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QCOMPARE(desk.changed->size(), 1);
}

QTEST_MAIN(HierarchyTextTest)
#include "HierarchyTextTest.moc"
