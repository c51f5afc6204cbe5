// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>

using namespace Qt::StringLiterals;

/// Where the user is, what is shown around it, and how going elsewhere changes it.
class HierarchyNavigationTest : public QObject
{
    Q_OBJECT

private slots:
    void withNoFileOpenItStartsAtThePanelWithBothNeighboursEmpty();
    void withFilesOpenItStartsAtTheFirstRoot();
    void rootOfTheLastFileHasNoFollowingNeighbour();
    void panelAfterTheLastFileHasTheLastRootBeforeItAndNothingAfter();
    void panelBetweenFilesShowsTheRootsAroundIt();
    void rootsShowTheirNeighboursStates();
    void aStoredEntryShowsEverythingThatIsStored();
    void textsAroundAreCutToSeventyCharacters();
    void anEntryWithChildrenSaysSo();
    void neighboursAreFoundAcrossGaps();
    void goToParentReadsTheParentAndItsParent();
    void goToParentOfAFirstLevelEntryIsTheRoot();
    void goToParentFromANewEntryLeavesNothingBehind();
    void goToChildPrefersOpenChildren_data();
    void goToChildPrefersOpenChildren();
    void childToJumpToOfChildrenAllDoneOrWontDoIsTheLast();
    void childToJumpToOfAChildlessEntryIsMinusOne();
    void childToJumpToOfMinusOneIsThrown();
    void goToChildShowsTheEntryAsParent();
    void goToChildOfAChildlessEntryMakesANewOne();
    void goToChildOfAChildlessDoneEntryMakesADoneOne();
    void goToFirstAndLastWorkFromANewEntry();
    void goToPreviousOnTheFirstSiblingMakesANewOneAbove();
    void theNewEntryAboveTakesTheNumberOfTheFirst();
    void goToNextOnTheLastSiblingMakesANewOneAndThenBeeps();
    void goToPreviousOnTheNewEntryAboveBeeps();
    void walkingTheTopLevelFromPanelToPanel();
    void goToFirstAndLastAtTheTopLevelWithoutFilesStay();
    void levelAboveAndFollowingSequenceAreThrownAtARoot();
    void aSiblingThatDoesNotExistIsThrown();
    void settingUpANewEntryIsThrown();
    void anEntryThatIsGoneIsThrown();
    void aParentThatIsGoneIsThrown();
    void aNeighbourWithoutTextRowIsThrown();
    void navigationFunctionsDoNotAnnounceAChange();
};

void HierarchyNavigationTest::withNoFileOpenItStartsAtThePanelWithBothNeighboursEmpty()
{
    HierarchyDesk desk;
    desk.start();
    QVERIFY(desk.model->atOpenCreatePanel());
    QCOMPARE(desk.where(), u"panel: - <> -"_s);
    QVERIFY(!desk.model->atRootOfFile());
    QCOMPARE(desk.model->getState(), EntryState::None);
    QCOMPARE(desk.model->getParentState(), EntryState::None);
    QCOMPARE(desk.model->getPrecedingSiblingEntryState(), EntryState::None);
    QCOMPARE(desk.model->getFollowingSiblingEntryState(), EntryState::None);
    QVERIFY(desk.model->getDoneDate().isNull());
    QVERIFY(!desk.model->getHasChildren());
    QCOMPARE(desk.model->getRootExcerpt(), QString());
    QCOMPARE(desk.model->getFilePath(), QString());
    QCOMPARE(desk.model->getFileName(), QString());
    // Slot 0 of no files: there is nowhere to go.
    desk.run(Command::GoToNext);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.refusals(), 2);
}

void HierarchyNavigationTest::withFilesOpenItStartsAtTheFirstRoot()
{
    HierarchyDesk desk;
    const QString path = desk.addFile(u"A long name of a file.bdl"_s, u"- a\n"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    QCOMPARE(desk.where(), u"top: - <Alongnameofafile.bdl> two.bdl"_s);
    QVERIFY(desk.model->atRootOfFile());
    QVERIFY(!desk.model->atOpenCreatePanel());
    QVERIFY(desk.model->getHasChildren());
    QCOMPARE(desk.model->getState(), EntryState::Category);
    QCOMPARE(desk.model->getParentState(), EntryState::None);
    QCOMPARE(desk.model->getFilePath(), path);
    QCOMPARE(desk.model->getFileName(), u"A long name of a file.bdl"_s);
    QCOMPARE(desk.model->getRootExcerpt(), u"Alongnameofafile.bdl"_s);
}

void HierarchyNavigationTest::rootOfTheLastFileHasNoFollowingNeighbour()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    desk.goToRoot(1);
    QCOMPARE(desk.where(), u"top: one.bdl <two.bdl> -"_s);
    QCOMPARE(desk.model->getFollowingSiblingEntryState(), EntryState::None);
}

void HierarchyNavigationTest::panelAfterTheLastFileHasTheLastRootBeforeItAndNothingAfter()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    desk.goToPanel(2);
    QCOMPARE(desk.where(), u"panel: two.bdl <> -"_s);
    QCOMPARE(desk.model->getPrecedingSiblingEntryState(), EntryState::Category);
    QCOMPARE(desk.model->getFollowingSiblingEntryState(), EntryState::None);
}

void HierarchyNavigationTest::panelBetweenFilesShowsTheRootsAroundIt()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"x a\n"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    // Coming from an entry with everything set, nothing of it may stay.
    desk.goTo(u"a"_s);
    desk.run(Command::GoToParent);
    desk.run(Command::NewSibling);
    QCOMPARE(desk.where(), u"panel: one.bdl <> two.bdl"_s);
    QCOMPARE(desk.model->getState(), EntryState::None);
    QVERIFY(!desk.model->getHasChildren());
    QCOMPARE(desk.model->getRootExcerpt(), QString());
    QVERIFY(desk.model->getDoneDate().isNull());
    QCOMPARE(desk.model->getFileName(), QString());
}

void HierarchyNavigationTest::rootsShowTheirNeighboursStates()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.addFile(u"two.bdl"_s);
    desk.addFile(u"three.bdl"_s);
    desk.start();
    desk.run(Command::MarkCurrentTodo);
    desk.goToRoot(2);
    desk.run(Command::MarkCurrentDone);
    desk.goToRoot(1);
    QCOMPARE(desk.where(), u"top: one.bdl <two.bdl> three.bdl"_s);
    QCOMPARE(desk.model->getPrecedingSiblingEntryState(), EntryState::Todo);
    QCOMPARE(desk.model->getFollowingSiblingEntryState(), EntryState::Done);
}

void HierarchyNavigationTest::aStoredEntryShowsEverythingThatIsStored()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"* p\n  - a\n  x b\n  / c\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"b"_s), Qt::Key_B, u"B"_s);
    desk.store().registerShortcut(desk.idOf(u"p"_s), Qt::Key_P, u"P"_s);
    desk.goTo(u"b"_s);
    QCOMPARE(desk.where(), u"p: a <b> c"_s);
    QCOMPARE(desk.model->getState(), EntryState::Done);
    QCOMPARE(desk.model->getParentState(), EntryState::Category);
    QCOMPARE(desk.model->getPrecedingSiblingEntryState(), EntryState::Todo);
    QCOMPARE(desk.model->getFollowingSiblingEntryState(), EntryState::WontDo);
    QCOMPARE(desk.model->getDoneDate(), Outline::builtDoneDate());
    QCOMPARE(desk.model->getDoneDate().timeSpec(), Qt::UTC);
    QCOMPARE(desk.model->getShortcutKeyText(), u"B"_s);
    QCOMPARE(desk.model->getParentShortcutKeyText(), u"P"_s);
    QCOMPARE(desk.model->getRootExcerpt(), u"one.bdl"_s);
    QVERIFY(!desk.model->getHasChildren());
    QVERIFY(!desk.model->atRootOfFile());

    // The neighbour has none of that: every field must follow.
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.where(), u"p: - <a> b"_s);
    QVERIFY(desk.model->getDoneDate().isNull());
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QCOMPARE(desk.model->getParentShortcutKeyText(), u"P"_s);
    desk.run(Command::GoToParent);
    QCOMPARE(desk.model->getShortcutKeyText(), u"P"_s);
    QCOMPARE(desk.model->getParentShortcutKeyText(), QString());
}

void HierarchyNavigationTest::textsAroundAreCutToSeventyCharacters()
{
    const QString seventy(70, u'a');
    const QString longer = QString(70, u'b') + u"c"_s;
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s,
                 u"- %1\n  - %1\n  - middle\n  - %2\n- %2\n  - child\n"_s.arg(seventy, longer));
    desk.start();
    desk.goTo(u"middle"_s);
    QCOMPARE(desk.model->getParentBody(), seventy);
    QCOMPARE(desk.model->getPrecedingSiblingEntryBody(), seventy);
    QCOMPARE(desk.model->getFollowingSiblingEntryBody(), QString(70, u'b') + u" ..."_s);
    desk.goTo(u"child"_s);
    QCOMPARE(desk.model->getParentBody(), QString(70, u'b') + u" ..."_s);
    desk.run(Command::GoToParent);
    // The text being edited is whole.
    QCOMPARE(desk.model->getBody(), longer);
    desk.type(u"two\n\nlines"_s);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.model->getFollowingSiblingEntryBody(), u"two lines"_s);
}

void HierarchyNavigationTest::anEntryWithChildrenSaysSo()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n  - a1\n- b\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->getHasChildren());
    desk.run(Command::GoToNext);
    QVERIFY(!desk.model->getHasChildren());
    desk.run(Command::GoToPrevious);
    QVERIFY(desk.model->getHasChildren());
    desk.run(Command::NewSibling);
    QVERIFY(!desk.model->getHasChildren());
}

void HierarchyNavigationTest::neighboursAreFoundAcrossGaps()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a @3\n- b @10\n- c @500\n"_s);
    desk.start();
    desk.goTo(u"b"_s);
    QCOMPARE(desk.where(), u"one.bdl: a <b> c"_s);
    QCOMPARE(desk.model->getFollowingSiblingEntrySequence(), 500);
    desk.run(Command::GoToFirst);
    QCOMPARE(desk.where(), u"one.bdl: - <a> b"_s);
    desk.run(Command::GoToLast);
    QCOMPARE(desk.where(), u"one.bdl: b <c> -"_s);
    QCOMPARE(desk.model->getFollowingSiblingEntrySequence(), -1);
    // For a new entry the sibling that holds its number comes after it.
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->newSibling(true));
    QCOMPARE(desk.model->getFollowingSiblingEntrySequence(), 3);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyNavigationTest::goToParentReadsTheParentAndItsParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"* g\n  / o\n  - p\n    x c\n"_s);
    desk.start();
    desk.goTo(u"c"_s);
    desk.run(Command::GoToParent);
    QCOMPARE(desk.where(), u"g: o <p> -"_s);
    QCOMPARE(desk.model->getState(), EntryState::Todo);
    QCOMPARE(desk.model->getParentState(), EntryState::Category);
    QVERIFY(desk.model->getHasChildren());
    QVERIFY(desk.model->getDoneDate().isNull());
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyNavigationTest::goToParentOfAFirstLevelEntryIsTheRoot()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(Command::GoToParent);
    QCOMPARE(desk.where(), u"top: - <one.bdl> two.bdl"_s);
    QCOMPARE(desk.model->getParentState(), EntryState::None);
    QCOMPARE(desk.model->getParentBody(), QString());
    QVERIFY(desk.model->atRootOfFile());
    desk.forget();
    desk.run(Command::GoToParent);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
}

void HierarchyNavigationTest::goToParentFromANewEntryLeavesNothingBehind()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - c\n"_s);
    desk.start();
    desk.goToNewAfter(u"c"_s);
    desk.run(Command::GoToParent);
    QCOMPARE(desk.where(), u"one.bdl: - <p> -"_s);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.deletions->size(), 0);
}

void HierarchyNavigationTest::goToChildPrefersOpenChildren_data()
{
    QTest::addColumn<QString>("children");
    QTest::addColumn<QString>("reached");
    QTest::newRow("to-do before category") << u"x 1\n- 2\n* 3\n"_s << u"2"_s;
    QTest::newRow("category before to-do") << u"x 1\n* 2\n- 3\n"_s << u"2"_s;
    QTest::newRow("category alone") << u"x 1\n/ 2\n* 3\n/ 4\n"_s << u"3"_s;
    QTest::newRow("to-do alone, first of two") << u"x 1\n/ 2\n- 3\n- 4\nx 5\n"_s << u"3"_s;
    QTest::newRow("all done: the last") << u"x 1\nx 2\n"_s << u"2"_s;
    QTest::newRow("all done or won't do: the last") << u"x 1\nx 2\n/ 3\n"_s << u"3"_s;
    QTest::newRow("to-do at the end") << u"/ 1\n- 2 @90\n"_s << u"2"_s;
    QTest::newRow("one won't do") << u"/ 1\n"_s << u"1"_s;
    QTest::newRow("numbers with gaps") << u"x 1 @5\n* 2 @70\n- 3 @71\n"_s << u"2"_s;
}

void HierarchyNavigationTest::goToChildPrefersOpenChildren()
{
    QFETCH(const QString, children);
    QFETCH(const QString, reached);
    HierarchyDesk desk;
    QString below = children;
    below.replace(u'\n', u"\n  "_s);
    desk.addFile(u"one.bdl"_s, u"* p\n  "_s + below.trimmed() + u'\n');
    desk.start();
    desk.goTo(u"p"_s);
    desk.run(Command::GoToChild);
    QCOMPARE(desk.model->getBody(), reached);
    QCOMPARE(desk.model->getParentBody(), u"p"_s);
    // The same child is where a jump to the parent's children ends.
    desk.model->goToEntry(desk.addressOf(u"p"_s), true);
    QCOMPARE(desk.model->getBody(), reached);
}

void HierarchyNavigationTest::childToJumpToOfChildrenAllDoneOrWontDoIsTheLast()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  x 1 @4\n  / 2 @6\n  x 3 @77\n"_s);
    desk.start();
    QCOMPARE(desk.model->getChildSequenceToJumpTo(desk.idOf(u"p"_s)), 77);
}

void HierarchyNavigationTest::childToJumpToOfAChildlessEntryIsMinusOne()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n"_s);
    desk.start();
    QCOMPARE(desk.model->getChildSequenceToJumpTo(desk.idOf(u"p"_s)), -1);
}

void HierarchyNavigationTest::childToJumpToOfMinusOneIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    QCOMPARE(thrownBy([&] { desk.model->getChildSequenceToJumpTo(-1); }), "entryId cannot be -1");
}

void HierarchyNavigationTest::goToChildShowsTheEntryAsParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"* p\n  x c1\n  - c2\n    - d\n  / c3\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"p"_s), Qt::Key_P, u"P"_s);
    desk.store().registerShortcut(desk.idOf(u"c2"_s), Qt::Key_C, u"C"_s);
    desk.goTo(u"p"_s);
    desk.run(Command::GoToChild);
    QCOMPARE(desk.where(), u"p: c1 <c2> c3"_s);
    QCOMPARE(desk.model->getState(), EntryState::Todo);
    QCOMPARE(desk.model->getParentState(), EntryState::Category);
    QCOMPARE(desk.model->getShortcutKeyText(), u"C"_s);
    QCOMPARE(desk.model->getParentShortcutKeyText(), u"P"_s);
    QVERIFY(desk.model->getHasChildren());
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyNavigationTest::goToChildOfAChildlessEntryMakesANewOne()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"* p\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"p"_s), Qt::Key_P, u"P"_s);
    desk.goTo(u"p"_s);
    const QString before = desk.outline();
    desk.run(Command::GoToChild);
    QCOMPARE(desk.where(), u"p: - <> -"_s);
    QCOMPARE(desk.model->getState(), EntryState::Todo);
    QCOMPARE(desk.model->getParentState(), EntryState::Category);
    QCOMPARE(desk.model->getParentShortcutKeyText(), u"P"_s);
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QCOMPARE(desk.outline(), before);
    desk.type(u"c"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.numberedOutline(), u"* p @0\n  - c @0\n"_s);
    desk.run(Command::GoToParent);
    QVERIFY(desk.model->getHasChildren());
}

void HierarchyNavigationTest::goToChildOfAChildlessDoneEntryMakesADoneOne()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"x p\n"_s);
    desk.start();
    const QDateTime now(QDate(2026, 7, 8), QTime(9, 10, 11), Qt::OffsetFromUTC, 7200);
    desk.model->setClock([now] { return now; });
    desk.goTo(u"p"_s);
    desk.run(Command::GoToChild);
    // Nothing open may stand below what is done.
    QCOMPARE(desk.model->getState(), EntryState::Done);
    QCOMPARE(desk.model->getDoneDate(), now);
    desk.type(u"c"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(Outline::rowWithText(desk.rows(), u"c"_s).doneDate, u"2026-07-08T07:10:11"_s);
}

void HierarchyNavigationTest::goToFirstAndLastWorkFromANewEntry()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n"_s);
    desk.start();
    desk.goTo(u"p"_s);
    desk.run(Command::GoToChild);
    desk.forget();
    // No sibling at all: it stays, without a beep.
    desk.run(Command::GoToFirst);
    desk.run(Command::GoToLast);
    QCOMPARE(desk.where(), u"p: - <> -"_s);
    QCOMPARE(desk.refusals(), 0);
    QCOMPARE(desk.changed->size(), 2);
}

void HierarchyNavigationTest::goToPreviousOnTheFirstSiblingMakesANewOneAbove()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"x a\n- b\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"a"_s), Qt::Key_A, u"A"_s);
    desk.goTo(u"a"_s);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.where(), u"one.bdl: - <> a"_s);
    QCOMPARE(desk.model->getState(), EntryState::Todo);
    QVERIFY(desk.model->getDoneDate().isNull());
    QCOMPARE(desk.model->getShortcutKeyText(), QString());
    QCOMPARE(desk.changed->size(), 1);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"one.bdl: - <a> b"_s);
}

void HierarchyNavigationTest::theNewEntryAboveTakesTheNumberOfTheFirst()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a @4\n- b @9\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(Command::GoToPrevious);
    desk.type(u"new"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.numberedOutline(), u"- new @4\n- a @5\n- b @10\n"_s);
}

void HierarchyNavigationTest::goToNextOnTheLastSiblingMakesANewOneAndThenBeeps()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b @7\n"_s);
    desk.start();
    desk.goTo(u"b"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"one.bdl: b <> -"_s);
    QCOMPARE(desk.refusals(), 0);
    QCOMPARE(desk.changed->size(), 1);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"one.bdl: b <> -"_s);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 1);
    // With text it is the last sibling, and the next one follows.
    desk.type(u"c"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"one.bdl: c <> -"_s);
    QCOMPARE(desk.numberedOutline(), u"- a @0\n- b @7\n- c @8\n"_s);
}

void HierarchyNavigationTest::goToPreviousOnTheNewEntryAboveBeeps()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(Command::GoToPrevious);
    desk.forget();
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.where(), u"one.bdl: - <> a"_s);
}

void HierarchyNavigationTest::walkingTheTopLevelFromPanelToPanel()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    desk.goToPanel(0);
    QCOMPARE(desk.where(), u"panel: - <> one.bdl"_s);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.refusals(), 1);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"top: - <one.bdl> two.bdl"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"top: one.bdl <two.bdl> -"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"panel: two.bdl <> -"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.refusals(), 2);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.where(), u"top: one.bdl <two.bdl> -"_s);
    desk.run(Command::GoToPrevious);
    desk.run(Command::GoToPrevious);
    QCOMPARE(desk.where(), u"panel: - <> one.bdl"_s);
    QCOMPARE(desk.refusals(), 2);
}

void HierarchyNavigationTest::goToFirstAndLastAtTheTopLevelWithoutFilesStay()
{
    HierarchyDesk desk;
    desk.start();
    desk.run(Command::GoToFirst);
    desk.run(Command::GoToLast);
    QCOMPARE(desk.where(), u"panel: - <> -"_s);
    QCOMPARE(desk.refusals(), 0);
    QCOMPARE(desk.changed->size(), 2);
}

void HierarchyNavigationTest::levelAboveAndFollowingSequenceAreThrownAtARoot()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    for (const bool panel : {false, true}) {
        desk.model->goToFileRoot(0, panel);
        QCOMPARE(thrownBy([&] { desk.model->goToParent(); }),
                 "this method should only be used when there is a parent");
        QCOMPARE(thrownBy([&] { desk.model->getFollowingSiblingEntrySequence(); }),
                 "this method can only be used for non-root entries");
    }
}

void HierarchyNavigationTest::aSiblingThatDoesNotExistIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b @5\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QCOMPARE(thrownBy([&] { desk.model->goToSiblingBySequence(5); }), "nothing");
    QCOMPARE(desk.model->getBody().isEmpty(), false);
    QCOMPARE(thrownBy([&] { desk.model->goToSiblingBySequence(4); }), "bad");
}

void HierarchyNavigationTest::settingUpANewEntryIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goToNewAfter(u"a"_s);
    QCOMPARE(thrownBy([&] { desk.model->setUpEverythingUsingCurrentEntryId(); }),
             "this method is not intended for when the current entry is new (where currentEntryId "
             "is -1 and diskStore is non-null)");
}

void HierarchyNavigationTest::anEntryThatIsGoneIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    QVERIFY(desk.store().deleteEntry(desk.idOf(u"a"_s)));
    QCOMPARE(thrownBy([&] { desk.model->setUpEverythingUsingCurrentEntryId(); }), "bad");
}

void HierarchyNavigationTest::aParentThatIsGoneIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - c\n- b\n"_s);
    desk.start();
    desk.goTo(u"c"_s);
    const qint64 parent = desk.idOf(u"p"_s);
    desk.store().relocateEntry(desk.idOf(u"c"_s), 9, static_cast<int>(desk.idOf(u"b"_s)));
    QVERIFY(desk.store().deleteEntry(parent));
    QCOMPARE(thrownBy([&] { desk.model->goToParent(); }), "bad");
}

void HierarchyNavigationTest::aNeighbourWithoutTextRowIsThrown()
{
    HierarchyDesk desk;
    const QString path = desk.addFile(u"one.bdl"_s, u"- a\n- b\n- c\n"_s);
    Outline::runOnDisk(path, {u"DELETE FROM entrybody WHERE content='c'"_s});
    desk.start();
    desk.goTo(u"a"_s);
    QCOMPARE(thrownBy([&] { desk.run(Command::GoToNext); }), "entry not found");
}

void HierarchyNavigationTest::navigationFunctionsDoNotAnnounceAChange()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - c\n  - d\n"_s);
    desk.start();
    desk.goTo(u"c"_s);
    desk.model->goToSiblingBySequence(1);
    QCOMPARE(desk.model->getParentBody(), u"p"_s);
    desk.model->goToParent();
    desk.model->setUpEverythingUsingCurrentEntryId();
    desk.model->updateSiblingFields();
    desk.model->goToFileRoot(0, true);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.bodyRequests->size(), 0);
}

QTEST_MAIN(HierarchyNavigationTest)
#include "HierarchyNavigationTest.moc"
