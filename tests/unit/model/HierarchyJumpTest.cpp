// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>

using namespace Qt::StringLiterals;

/// Jumps to an address, also to one that leads nowhere any more, and what a discard does to the
/// position.
class HierarchyJumpTest : public QObject
{
    Q_OBJECT

private:
    static void setUp(HierarchyDesk &desk);

private slots:
    void aJumpGoesToTheEntryInItsFile();
    void aJumpToARootShowsTheTopLevel();
    void aJumpToTheChildLandsOnThePreferredChild();
    void aJumpToTheChildOfAChildlessEntryLandsOnItself();
    void aJumpFromThePanel();
    void aJumpWritesTheText();
    void aJumpToTheCurrentEntryWritesAndStays();
    void aJumpIsRefusedWhenTheTextIs();
    void aJumpToMinusOneIsThrown();
    void aJumpToAMissingTargetChangesNothing_data();
    void aJumpToAMissingTargetChangesNothing();
    void aJumpIntoADamagedPlaceChangesNothing_data();
    void aJumpIntoADamagedPlaceChangesNothing();
    void movingBelowAParentThatIsGoneIsThrown();
    void aNeighbouringRootThatIsGoneIsThrown();
    void aRefusedJumpKeepsTheTypedTextAndLaterWritesInPlace();
    void clearingTheCurrentEntryAndJumpingToItIsRefused();
    void clearingTheCurrentEntryAndJumpingElsewhereDeletesIt();
    void discardAtAStoredEntryReadsItAgain();
    void discardAtAnEntryMadeSinceTheLastSaveGoesToItsParent();
    void discardAtATreeMadeSinceTheLastSaveGoesToTheRoot();
    void discardAtANewEntryGoesToItsParent();
    void discardAtANewEntryBelowAnUnsavedParentGoesToTheRoot();
    void discardAfterClearingTheEntryGoesToItsParent();
    void discardAfterMovingTheEntryShowsItsOldPlace();
    void discardAtARootBringsItsTextBack();
    void discardAtThePanelStaysThere();
    void discardDropsTheTypedText();
    void discardWithoutFilesAnnouncesAChange();
};

void HierarchyJumpTest::setUp(HierarchyDesk &desk)
{
    desk.addFile(u"one.bdl"_s, u"- a\n  x a1\n  - a2\n- b\n"_s);
    desk.addFile(u"two.bdl"_s, u"* z\n  / z1\n  x z2\n"_s);
    desk.start();
}

void HierarchyJumpTest::aJumpGoesToTheEntryInItsFile()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.model->goToEntry(desk.addressOf(u"z1"_s, 1));
    QCOMPARE(desk.where(), u"z: - <z1> z2"_s);
    QCOMPARE(desk.model->getRootExcerpt(), u"two.bdl"_s);
    QCOMPARE(desk.model->getFileName(), u"two.bdl"_s);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.announcements(), 0);
    // And from there the commands work in that file.
    desk.type(u"zz"_s);
    desk.run(Command::MoveCurrentDown);
    QCOMPARE(desk.outline(1), u"* z\n  x z2\n  / zz\n"_s);
    QCOMPARE(desk.bodyChanges->at(0).at(0).toInt(), 1);
}

void HierarchyJumpTest::aJumpToARootShowsTheTopLevel()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"a1"_s);
    desk.model->goToEntry(desk.addressOf(u"two.bdl"_s, 1));
    QCOMPARE(desk.where(), u"top: one.bdl <two.bdl> -"_s);
}

void HierarchyJumpTest::aJumpToTheChildLandsOnThePreferredChild()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.model->goToEntry(desk.addressOf(u"a"_s), true);
    QCOMPARE(desk.where(), u"a: a1 <a2> -"_s);
    desk.model->goToEntry(desk.addressOf(u"z"_s, 1), true);
    QCOMPARE(desk.where(), u"z: z1 <z2> -"_s);
    QCOMPARE(desk.changed->size(), 2);
}

void HierarchyJumpTest::aJumpToTheChildOfAChildlessEntryLandsOnItself()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.model->goToEntry(desk.addressOf(u"b"_s), true);
    QCOMPARE(desk.where(), u"one.bdl: a <b> -"_s);
}

void HierarchyJumpTest::aJumpFromThePanel()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToPanel(2);
    desk.model->goToEntry(desk.addressOf(u"a2"_s));
    QCOMPARE(desk.where(), u"a: a1 <a2> -"_s);
    QCOMPARE(desk.bodyRequests->size(), 0);
}

void HierarchyJumpTest::aJumpWritesTheText()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToNewAfter(u"b"_s);
    desk.type(u"c"_s);
    desk.model->goToEntry(desk.addressOf(u"z1"_s, 1));
    QCOMPARE(desk.outline(), u"- a\n  x a1\n  - a2\n- b\n- c\n"_s);
    QCOMPARE(desk.outline(1), u"* z\n  / z1\n  x z2\n"_s);
    QCOMPARE(desk.where(), u"z: - <z1> z2"_s);
}

void HierarchyJumpTest::aJumpToTheCurrentEntryWritesAndStays()
{
    HierarchyDesk desk;
    setUp(desk);
    const EntryAddress address = desk.addressOf(u"b"_s);
    desk.goTo(u"b"_s);
    desk.type(u"bb"_s);
    desk.model->goToEntry(address);
    QCOMPARE(desk.where(), u"one.bdl: a <bb> -"_s);
    QCOMPARE(desk.outline(), u"- a\n  x a1\n  - a2\n- bb\n"_s);
}

void HierarchyJumpTest::aJumpIsRefusedWhenTheTextIs()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"a"_s);
    desk.type(QString());
    desk.model->goToEntry(desk.addressOf(u"z1"_s, 1));
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.model->getFileName(), u"one.bdl"_s);
    QVERIFY(desk.model->getHasChildren());
    QVERIFY(!desk.somethingWritten());
}

void HierarchyJumpTest::aJumpToMinusOneIsThrown()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.type(u"bb"_s);
    QCOMPARE(thrownBy([&] { desk.model->goToEntry(EntryAddress{0, -1}); }), "-1 not allowed");
    // That is looked at before anything is written.
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.refusals(), 0);
}

void HierarchyJumpTest::aJumpToAMissingTargetChangesNothing_data()
{
    QTest::addColumn<int>("fileIndex");
    QTest::addColumn<qint64>("entryId");
    QTest::addColumn<bool>("jumpToChild");
    for (const bool child : {false, true}) {
        const char *kind = child ? "to its child" : "to itself";
        QTest::addRow("deleted entry of this file, %s", kind) << 0 << qint64(4711) << child;
        QTest::addRow("deleted entry of another file, %s", kind) << 1 << qint64(4711) << child;
        QTest::addRow("entry without text, %s", kind) << 1 << qint64(3) << child;
        QTest::addRow("closed file, %s", kind) << 2 << qint64(1) << child;
        QTest::addRow("no file, %s", kind) << -1 << qint64(1) << child;
    }
}

void HierarchyJumpTest::aJumpToAMissingTargetChangesNothing()
{
    QFETCH(const int, fileIndex);
    QFETCH(const qint64, entryId);
    QFETCH(const bool, jumpToChild);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n- c\n"_s);
    // Its root is entry 1, "y" 2, "z" 3.
    const QString other = desk.addFile(u"two.bdl"_s, u"- y\n- z\n"_s);
    Outline::runOnDisk(other, {u"DELETE FROM entrybody WHERE docid=3"_s});
    desk.start();
    const auto tryFrom = [&](const QString &place) {
        const QStringList before = desk.everythingShown();
        QCOMPARE(thrownBy([&] {
                     desk.model->goToEntry({fileIndex, entryId}, jumpToChild);
                 }),
                 "nothing");
        QCOMPARE(desk.refusals(), 1);
        QCOMPARE(desk.changed->size(), 0);
        QCOMPARE(desk.announcements(), 0);
        QCOMPARE(desk.everythingShown(), before);
        QVERIFY2(!desk.somethingWritten(), qPrintable(place));
    };
    desk.goTo(u"b"_s);
    tryFrom(u"a stored entry"_s);
    desk.goToNewAfter(u"b"_s);
    tryFrom(u"a new entry"_s);
    desk.goToRoot(0);
    tryFrom(u"a root"_s);
    desk.goToPanel(1);
    tryFrom(u"the panel"_s);
}

void HierarchyJumpTest::aJumpIntoADamagedPlaceChangesNothing_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("jumpToChild");
    QTest::newRow("the child to land on has no text")
        << u"DELETE FROM entrybody WHERE content='z1'"_s << u"z"_s << true;
    QTest::newRow("the target's parent has no text")
        << u"DELETE FROM entrybody WHERE content='z'"_s << u"z1"_s << false;
    QTest::newRow("the target's parent is missing")
        << u"UPDATE entry SET parentid=4711 WHERE parentid=2"_s << u"z1"_s << false;
    QTest::newRow("the target's neighbour has no text")
        << u"DELETE FROM entrybody WHERE content='z2'"_s << u"z1"_s << false;
}

void HierarchyJumpTest::aJumpIntoADamagedPlaceChangesNothing()
{
    QFETCH(const QString, damage);
    QFETCH(const QString, target);
    QFETCH(const bool, jumpToChild);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    // Its root is entry 1, "z" 2.
    const QString other = desk.addFile(u"two.bdl"_s, u"- z\n  - z1\n  - z2\n"_s);
    Outline::runOnDisk(other, {damage});
    desk.start();
    desk.goTo(u"b"_s);
    const EntryAddress address = desk.addressOf(target, 1);
    QVERIFY(address.entryId != -1);
    const QStringList before = desk.everythingShown();
    thrownBy([&] { desk.model->goToEntry(address, jumpToChild); });
    // Beeping, throwing and going there are all good, as long as the editor shows the entry that
    // the next text is written to.
    if (desk.changed->isEmpty())
        QCOMPARE(desk.everythingShown(), before);
    else
        QCOMPARE(desk.editor->text(), desk.model->getBody());
    const QString edited = desk.editor->text();
    desk.type(u"typed"_s);
    QVERIFY(desk.model->getAndWriteModifiedBodyToDb());
    QCOMPARE(Outline::rowWithText(desk.rows(0), u"typed"_s).id != -1, edited == u"b"_s);
    QCOMPARE(Outline::rowWithText(desk.rows(1), u"typed"_s).id != -1, edited != u"b"_s);
}

void HierarchyJumpTest::movingBelowAParentThatIsGoneIsThrown()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"a2"_s);
    const qint64 parent = desk.idOf(u"a"_s);
    for (const QString &child : {u"a1"_s, u"a2"_s})
        desk.store().relocateEntry(desk.idOf(child), 0, static_cast<int>(desk.idOf(u"b"_s)));
    QVERIFY(desk.store().deleteEntry(parent));
    QCOMPARE(thrownBy([&] { desk.run(Command::MoveCurrentLeft); }), "bad");
    QCOMPARE(desk.outline(), u"- b\n  - a2\n  x a1\n"_s);
}

void HierarchyJumpTest::aNeighbouringRootThatIsGoneIsThrown()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    QVERIFY(desk.store(1).deleteEntry(desk.idOf(u"two.bdl"_s, 1)));
    QCOMPARE(thrownBy([&] { desk.model->updateSiblingFields(); }), "entry not found");
}

void HierarchyJumpTest::aRefusedJumpKeepsTheTypedTextAndLaterWritesInPlace()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToNewAfter(u"a1"_s);
    desk.type(u"new"_s);
    desk.model->goToEntry({1, 4711});
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.editor->text(), u"new"_s);
    desk.type(u"newer"_s);
    desk.run(Command::NewSibling);
    desk.type(u"newest"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.outline(), u"- a\n  x a1\n  - newer\n  - newest\n  - a2\n- b\n"_s);
    QCOMPARE(desk.outline(1), u"* z\n  / z1\n  x z2\n"_s);
}

void HierarchyJumpTest::clearingTheCurrentEntryAndJumpingToItIsRefused()
{
    for (const bool toChild : {false, true}) {
        HierarchyDesk desk;
        setUp(desk);
        const EntryAddress address = desk.addressOf(u"a1"_s);
        desk.goTo(u"a1"_s);
        desk.type(QString());
        QCOMPARE(thrownBy([&] { desk.model->goToEntry(address, toChild); }), "nothing");
        QCOMPARE(desk.refusals(), 1);
        QCOMPARE(desk.deletions->size(), 1);
        QCOMPARE(desk.where(), u"a: - <> a2"_s);
        QCOMPARE(desk.outline(), u"- a\n  - a2\n- b\n"_s);
        // What is typed now goes where the entry was.
        desk.type(u"again"_s);
        desk.run(Command::CommitEdit);
        QCOMPARE(desk.outline(), u"- a\n  x again\n  - a2\n- b\n"_s);
    }
}

void HierarchyJumpTest::clearingTheCurrentEntryAndJumpingElsewhereDeletesIt()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.type(QString());
    desk.model->goToEntry(desk.addressOf(u"z1"_s, 1));
    QCOMPARE(desk.deletions->size(), 1);
    QCOMPARE(desk.deletions->at(0).at(0).toInt(), 0);
    QCOMPARE(desk.where(), u"z: - <z1> z2"_s);
}

void HierarchyJumpTest::discardAtAStoredEntryReadsItAgain()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.type(u"bb"_s);
    desk.run(Command::MarkCurrentDone);
    desk.run(Command::GoToLast);
    QCOMPARE(desk.model->getState(), EntryState::Done);
    desk.forget();
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"one.bdl: a <b> -"_s);
    QCOMPARE(desk.model->getState(), EntryState::Todo);
    QVERIFY(desk.model->getDoneDate().isNull());
    QVERIFY(desk.changed->size() >= 1);
    QCOMPARE(desk.announcements(), 0);
}

void HierarchyJumpTest::discardAtAnEntryMadeSinceTheLastSaveGoesToItsParent()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToNewAfter(u"a2"_s);
    desk.type(u"a3"_s);
    desk.run(Command::CommitEdit);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"one.bdl: - <a> b"_s);
    QVERIFY(desk.model->getHasChildren());
    QCOMPARE(desk.outline(), u"- a\n  x a1\n  - a2\n- b\n"_s);
}

void HierarchyJumpTest::discardAtATreeMadeSinceTheLastSaveGoesToTheRoot()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToNewAfter(u"b"_s);
    desk.type(u"c"_s);
    desk.run(Command::GoToChild);
    desk.type(u"c1"_s);
    desk.run(Command::CommitEdit);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"top: - <one.bdl> two.bdl"_s);
    QVERIFY(desk.model->atRootOfFile());
}

void HierarchyJumpTest::discardAtANewEntryGoesToItsParent()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToNewAfter(u"a1"_s);
    desk.type(u"never written"_s);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"one.bdl: - <a> b"_s);
    QCOMPARE(desk.editor->text(), u"a"_s);
    desk.run(Command::CommitEdit);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyJumpTest::discardAtANewEntryBelowAnUnsavedParentGoesToTheRoot()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToNewAfter(u"b"_s);
    desk.type(u"c"_s);
    desk.run(Command::GoToChild);
    QCOMPARE(desk.where(), u"c: - <> -"_s);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"top: - <one.bdl> two.bdl"_s);
}

void HierarchyJumpTest::discardAfterClearingTheEntryGoesToItsParent()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"a1"_s);
    desk.type(QString());
    desk.run(Command::CommitEdit);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"one.bdl: - <a> b"_s);
    QCOMPARE(desk.outline(), u"- a\n  x a1\n  - a2\n- b\n"_s);
}

void HierarchyJumpTest::discardAfterMovingTheEntryShowsItsOldPlace()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"b"_s);
    desk.run(Command::MoveCurrentRight);
    QCOMPARE(desk.where(), u"a: a2 <b> -"_s);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"one.bdl: a <b> -"_s);
    QCOMPARE(desk.model->getParentState(), EntryState::Category);
}

void HierarchyJumpTest::discardAtARootBringsItsTextBack()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.type(u"renamed"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.model->getRootExcerpt(), u"renamed"_s);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"top: - <one.bdl> two.bdl"_s);
    QCOMPARE(desk.model->getRootExcerpt(), u"one.bdl"_s);
    QCOMPARE(desk.editor->text(), u"one.bdl"_s);
}

void HierarchyJumpTest::discardAtThePanelStaysThere()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goToPanel(1);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.where(), u"panel: one.bdl <> two.bdl"_s);
    QVERIFY(desk.model->atOpenCreatePanel());
    QVERIFY(desk.changed->size() >= 1);
}

void HierarchyJumpTest::discardDropsTheTypedText()
{
    HierarchyDesk desk;
    setUp(desk);
    desk.goTo(u"a1"_s);
    desk.type(u"typed"_s);
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.editor->text(), u"a1"_s);
    QCOMPARE(desk.model->getBody(), u"a1"_s);
    desk.run(Command::CommitEdit);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyJumpTest::discardWithoutFilesAnnouncesAChange()
{
    HierarchyDesk desk;
    desk.start();
    desk.files->rollbackAndRestartTransactions();
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.where(), u"panel: - <> -"_s);
}

QTEST_MAIN(HierarchyJumpTest)
#include "HierarchyJumpTest.moc"
