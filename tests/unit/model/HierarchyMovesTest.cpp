// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>

using namespace Qt::StringLiterals;

/// Moving entries among their siblings and across levels, and files at the top level.
class HierarchyMovesTest : public QObject
{
    Q_OBJECT

private:
    static void setUpThreeFiles(HierarchyDesk &desk);
    static QStringList filesInOrder(const HierarchyDesk &desk);

private slots:
    void movesAmongSiblingsGiveTheseNumbers_data();
    void movesAmongSiblingsGiveTheseNumbers();
    void movesAnnounceNothingButTheChange_data();
    void movesAnnounceNothingButTheChange();
    void movesAtTheEndsAreRefused_data();
    void movesAtTheEndsAreRefused();
    void moveLeftGoesRightAfterTheOldParent_data();
    void moveLeftGoesRightAfterTheOldParent();
    void moveLeftOfAChildOfARootBeeps();
    void moveLeftIsRefusedWhereTheStateIsNotAllowed();
    void moveLeftReadsTheNewParent();
    void moveRightBecomesTheLastChildOfThePreceding_data();
    void moveRightBecomesTheLastChildOfThePreceding();
    void moveRightOnTheFirstSiblingBeeps();
    void moveRightIsRefusedWhereTheStateIsNotAllowed_data();
    void moveRightIsRefusedWhereTheStateIsNotAllowed();
    void moveRightReadsTheNewParent();
    void childrenTravelWithTheirParent();
    void aNewEntryIsMovedInTheModelAlone_data();
    void aNewEntryIsMovedInTheModelAlone();
    void textTypedIntoANewEntryIsStoredBeforeTheMove();
    void upAndDownAgainIsTheSameOrder();
    void updateSequenceAndSaveKeepsTheParent();
    void filesAreReorderedAtTheTopLevel_data();
    void filesAreReorderedAtTheTopLevel();
    void moveUpAtTheFirstFileAndDownAtTheLastBeep();
    void reorderedFilesAreRememberedInTheSettings();
    void aMovedFileIsAddressedByItsNewIndex();
    void thePanelMovesWithoutMovingFiles_data();
    void thePanelMovesWithoutMovingFiles();
    void thePanelAtTheEndsDoesNotMove();
};

namespace
{
int number(Command command)
{
    return static_cast<int>(command);
}
} // namespace

void HierarchyMovesTest::setUpThreeFiles(HierarchyDesk &desk)
{
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.addFile(u"two.bdl"_s, u"- b\n"_s);
    desk.addFile(u"three.bdl"_s, u"- c\n"_s);
    desk.start();
}

QStringList HierarchyMovesTest::filesInOrder(const HierarchyDesk &desk)
{
    QStringList names;
    for (int i = 0; i < desk.files->getFileCount(); ++i)
        names += desk.files->getFile(i)->dbFileName();
    return names;
}

void HierarchyMovesTest::movesAmongSiblingsGiveTheseNumbers_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("moved");
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("after");
    const auto row = [](const char *name, const QString &before, const QString &moved,
                        Command command, const QString &after) {
        QTest::newRow(name) << before << moved << number(command) << after;
    };
    const auto up = Command::MoveCurrentUp;
    const auto down = Command::MoveCurrentDown;
    const auto top = Command::MoveCurrentToTop;
    const auto bottom = Command::MoveCurrentToBottom;
    const QString dense = u"- p @0\n- q @1\n- r @2\n- s @3\n"_s;
    const QString gaps = u"- p @2\n- q @3\n- r @7\n- s @9\n"_s;
    row("up one step swaps", dense, u"r"_s, up, u"- p @0\n- r @1\n- q @2\n- s @3\n"_s);
    row("up across a gap swaps, too", gaps, u"r"_s, up, u"- p @2\n- r @3\n- q @4\n- s @9\n"_s);
    row("up to the first place", gaps, u"q"_s, up, u"- q @2\n- p @3\n- r @7\n- s @9\n"_s);
    row("down shifts the tail", dense, u"p"_s, down, u"- q @1\n- p @2\n- r @3\n- s @4\n"_s);
    row("down into a gap moves nobody", gaps, u"p"_s, down, u"- q @3\n- p @4\n- r @7\n- s @9\n"_s);
    row("down behind the last", dense, u"r"_s, down, u"- p @0\n- q @1\n- s @3\n- r @4\n"_s);
    row("to the top from the second place swaps", dense, u"q"_s, top,
        u"- q @0\n- p @1\n- r @2\n- s @3\n"_s);
    // The whole tail moves up by one, the moved entry's own number with it.
    row("to the top from further down shifts", dense, u"r"_s, top,
        u"- r @0\n- p @1\n- q @2\n- s @4\n"_s);
    row("to the top takes the first's number", gaps, u"s"_s, top,
        u"- s @2\n- p @3\n- q @4\n- r @8\n"_s);
    row("to the bottom", dense, u"q"_s, bottom, u"- p @0\n- r @2\n- s @3\n- q @4\n"_s);
    row("to the bottom across gaps", gaps, u"p"_s, bottom, u"- q @3\n- r @7\n- s @9\n- p @10\n"_s);
}

void HierarchyMovesTest::movesAmongSiblingsGiveTheseNumbers()
{
    QFETCH(const QString, before);
    QFETCH(const QString, moved);
    QFETCH(const int, command);
    QFETCH(const QString, after);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, before);
    desk.start();
    desk.goTo(moved);
    desk.run(static_cast<Command>(command));
    QCOMPARE(desk.numberedOutline(), after);
    QCOMPARE(desk.model->getBody(), moved);
    QCOMPARE(desk.refusals(), 0);
    // The model's own number is the stored one: the next sibling found from it is the right one.
    const Outline::Rows rows = desk.rows();
    const int stored = Outline::rowWithText(rows, moved).sequence;
    QCOMPARE(desk.model->getFollowingSiblingEntrySequence(),
             desk.store().getMinEntrySequence(Outline::rootOf(rows), stored + 1));
}

void HierarchyMovesTest::movesAnnounceNothingButTheChange_data()
{
    QTest::addColumn<int>("command");
    QTest::newRow("up") << number(Command::MoveCurrentUp);
    QTest::newRow("down") << number(Command::MoveCurrentDown);
    QTest::newRow("top") << number(Command::MoveCurrentToTop);
    QTest::newRow("bottom") << number(Command::MoveCurrentToBottom);
    QTest::newRow("left") << number(Command::MoveCurrentLeft);
    QTest::newRow("right") << number(Command::MoveCurrentRight);
}

void HierarchyMovesTest::movesAnnounceNothingButTheChange()
{
    QFETCH(const int, command);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - a\n  x b\n  - c\n"_s);
    desk.start();
    desk.goTo(u"b"_s);
    desk.run(static_cast<Command>(command));
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.announcements(), 0);
    QVERIFY(desk.somethingWritten());
    // State and date travel along.
    QCOMPARE(desk.model->getState(), EntryState::Done);
    const Outline::Row row = Outline::rowWithText(desk.rows(), u"b"_s);
    QCOMPARE(row.state, EntryState::Done);
    QCOMPARE(row.doneDate, u"2020-01-02T03:04:05"_s);
}

void HierarchyMovesTest::movesAtTheEndsAreRefused_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<int>("command");
    QTest::newRow("first up") << u"a"_s << number(Command::MoveCurrentUp);
    QTest::newRow("first to the top") << u"a"_s << number(Command::MoveCurrentToTop);
    QTest::newRow("last down") << u"b"_s << number(Command::MoveCurrentDown);
    QTest::newRow("last to the bottom") << u"b"_s << number(Command::MoveCurrentToBottom);
}

void HierarchyMovesTest::movesAtTheEndsAreRefused()
{
    QFETCH(const QString, entry);
    QFETCH(const int, command);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(entry);
    desk.run(static_cast<Command>(command));
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyMovesTest::moveLeftGoesRightAfterTheOldParent_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("shifting the siblings behind")
        << u"* g @0\n  - p @3\n    - a @0\n    - e @1\n    - b @2\n  - q @4\n  - r @9\n"_s
        << u"* g @0\n  - p @3\n    - a @0\n    - b @2\n  - e @4\n  - q @5\n  - r @10\n"_s;
    QTest::newRow("into a gap") << u"* g @0\n  - p @3\n    - e @7\n  - q @5\n"_s
                                << u"* g @0\n  - p @3\n  - e @4\n  - q @5\n"_s;
    QTest::newRow("behind the last")
        << u"* g @0\n  - p @3\n    - e @0\n"_s << u"* g @0\n  - p @3\n  - e @4\n"_s;
}

void HierarchyMovesTest::moveLeftGoesRightAfterTheOldParent()
{
    QFETCH(const QString, before);
    QFETCH(const QString, after);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, before);
    desk.start();
    desk.goTo(u"e"_s);
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.numberedOutline(), after);
    QVERIFY(desk.where().startsWith(u"g: p <e>"_s));
    // A first-level entry goes no further up.
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.refusals(), 0);
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.refusals(), 1);
    QVERIFY(desk.where().startsWith(u"one.bdl: g <e>"_s));
}

void HierarchyMovesTest::moveLeftOfAChildOfARootBeeps()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyMovesTest::moveLeftIsRefusedWhereTheStateIsNotAllowed()
{
    HierarchyDesk desk;
    // Nothing open may stand below what is done.
    desk.addFile(u"one.bdl"_s, u"x g\n  / p\n    - e\n    x f\n"_s);
    desk.start();
    desk.goTo(u"e"_s);
    const QStringList before = desk.everythingShown();
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.everythingShown(), before);
    QVERIFY(!desk.somethingWritten());
    desk.goTo(u"f"_s);
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.outline(), u"x g\n  / p\n    - e\n  x f\n"_s);
}

void HierarchyMovesTest::moveLeftReadsTheNewParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"* g\n  - p\n    - e\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"g"_s), Qt::Key_G, u"G"_s);
    desk.goTo(u"e"_s);
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.where(), u"g: p <e> -"_s);
    QCOMPARE(desk.model->getParentState(), EntryState::Category);
    QCOMPARE(desk.model->getParentShortcutKeyText(), u"G"_s);
    desk.run(Command::MoveCurrentLeft);
    QCOMPARE(desk.where(), u"one.bdl: g <e> -"_s);
    QCOMPARE(desk.model->getParentShortcutKeyText(), QString());
}

void HierarchyMovesTest::moveRightBecomesTheLastChildOfThePreceding_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("behind its children") << u"- p @2\n  - a @0\n  - b @8\n- e @4\n- q @5\n"_s
                                         << u"- p @2\n  - a @0\n  - b @8\n  - e @9\n- q @5\n"_s;
    QTest::newRow("as its only child")
        << u"- p @2\n- e @4\n- q @5\n"_s << u"- p @2\n  - e @0\n- q @5\n"_s;
}

void HierarchyMovesTest::moveRightBecomesTheLastChildOfThePreceding()
{
    QFETCH(const QString, before);
    QFETCH(const QString, after);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, before);
    desk.start();
    desk.goTo(u"e"_s);
    desk.run(Command::MoveCurrentRight);
    QCOMPARE(desk.numberedOutline(), after);
    QCOMPARE(desk.model->getFollowingSiblingEntryBody(), QString());
}

void HierarchyMovesTest::moveRightOnTheFirstSiblingBeeps()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(Command::MoveCurrentRight);
    QCOMPARE(desk.refusals(), 1);
    QVERIFY(!desk.somethingWritten());
}

void HierarchyMovesTest::moveRightIsRefusedWhereTheStateIsNotAllowed_data()
{
    QTest::addColumn<QString>("outline");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("to-do below done") << u"x p\n- e\n"_s << false;
    QTest::newRow("category below done") << u"x p\n* e\n"_s << false;
    QTest::newRow("category below to-do") << u"- p\n* e\n"_s << false;
    QTest::newRow("category below won't do") << u"/ p\n* e\n"_s << false;
    QTest::newRow("category below category") << u"* p\n* e\n"_s << true;
    QTest::newRow("done below done") << u"x p\nx e\n"_s << true;
    QTest::newRow("won't do below done") << u"x p\n/ e\n"_s << true;
    QTest::newRow("to-do below won't do") << u"/ p\n- e\n"_s << true;
}

void HierarchyMovesTest::moveRightIsRefusedWhereTheStateIsNotAllowed()
{
    QFETCH(const QString, outline);
    QFETCH(const bool, allowed);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, outline);
    desk.start();
    desk.goTo(u"e"_s);
    desk.run(Command::MoveCurrentRight);
    QCOMPARE(desk.refusals(), allowed ? 0 : 1);
    QCOMPARE(desk.somethingWritten(), allowed);
    QCOMPARE(desk.model->getParentBody(), allowed ? u"p"_s : u"one.bdl"_s);
}

void HierarchyMovesTest::moveRightReadsTheNewParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"/ p\n  x a\n- e\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"p"_s), Qt::Key_P, u"P"_s);
    desk.goTo(u"e"_s);
    desk.run(Command::MoveCurrentRight);
    QCOMPARE(desk.where(), u"p: a <e> -"_s);
    QCOMPARE(desk.model->getParentState(), EntryState::WontDo);
    QCOMPARE(desk.model->getPrecedingSiblingEntryState(), EntryState::Done);
    QCOMPARE(desk.model->getParentShortcutKeyText(), u"P"_s);
}

void HierarchyMovesTest::childrenTravelWithTheirParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n- e\n  - e1\n    - e11\n  x e2\n- q\n"_s);
    desk.start();
    desk.goTo(u"e"_s);
    desk.run(Command::MoveCurrentRight);
    QCOMPARE(desk.outline(), u"- p\n  - e\n    - e1\n      - e11\n    x e2\n- q\n"_s);
    QVERIFY(desk.model->getHasChildren());
    desk.run(Command::MoveCurrentLeft);
    desk.run(Command::MoveCurrentToBottom);
    QCOMPARE(desk.outline(), u"- p\n- q\n- e\n  - e1\n    - e11\n  x e2\n"_s);
}

void HierarchyMovesTest::aNewEntryIsMovedInTheModelAlone_data()
{
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("after");
    const auto row
        = [](const char *name, Command command, const QString &where, const QString &after) {
              QTest::newRow(name) << number(command) << where << after;
          };
    row("up", Command::MoveCurrentUp, u"p: a <> b"_s,
        u"* g\n  - p\n    - a\n    - new\n    - b\n    - c\n  - q\n"_s);
    row("to the top", Command::MoveCurrentToTop, u"p: - <> a"_s,
        u"* g\n  - p\n    - new\n    - a\n    - b\n    - c\n  - q\n"_s);
    row("down", Command::MoveCurrentDown, u"p: c <> -"_s,
        u"* g\n  - p\n    - a\n    - b\n    - c\n    - new\n  - q\n"_s);
    row("to the bottom", Command::MoveCurrentToBottom, u"p: c <> -"_s,
        u"* g\n  - p\n    - a\n    - b\n    - c\n    - new\n  - q\n"_s);
    row("left", Command::MoveCurrentLeft, u"g: p <> q"_s,
        u"* g\n  - p\n    - a\n    - b\n    - c\n  - new\n  - q\n"_s);
    row("right", Command::MoveCurrentRight, u"b: - <> -"_s,
        u"* g\n  - p\n    - a\n    - b\n      - new\n    - c\n  - q\n"_s);
}

void HierarchyMovesTest::aNewEntryIsMovedInTheModelAlone()
{
    QFETCH(const int, command);
    QFETCH(const QString, where);
    QFETCH(const QString, after);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"* g\n  - p\n    - a\n    - b\n    - c\n  - q\n"_s);
    desk.start();
    desk.goToNewAfter(u"b"_s);
    desk.run(static_cast<Command>(command));
    QCOMPARE(desk.where(), where);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.changed->size(), 1);
    desk.type(u"new"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.outline(), after);
    QVERIFY(!Outline::hasBadNumbers(desk.rows()));
}

void HierarchyMovesTest::textTypedIntoANewEntryIsStoredBeforeTheMove()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n- c\n"_s);
    desk.start();
    desk.goToNewAfter(u"b"_s);
    desk.type(u"new"_s);
    desk.run(Command::MoveCurrentUp);
    QCOMPARE(desk.numberedOutline(), u"- a @0\n- new @1\n- b @2\n- c @3\n"_s);
    QCOMPARE(desk.where(), u"one.bdl: a <new> b"_s);
    // Refused at the top, and still stored.
    desk.goTo(u"a"_s);
    desk.run(Command::GoToPrevious);
    desk.forget();
    desk.type(u"newer"_s);
    desk.run(Command::MoveCurrentUp);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.outline(), u"- newer\n- a\n- new\n- b\n- c\n"_s);
}

void HierarchyMovesTest::upAndDownAgainIsTheSameOrder()
{
    HierarchyDesk desk;
    const QString before = u"- a\n- b\n- c\n- d\n- e\n"_s;
    desk.addFile(u"one.bdl"_s, before);
    desk.start();
    desk.goTo(u"c"_s);
    for (int round = 0; round < 50; ++round) {
        desk.run(Command::MoveCurrentDown);
        QCOMPARE(desk.outline(), u"- a\n- b\n- d\n- c\n- e\n"_s);
        desk.run(Command::MoveCurrentUp);
        QCOMPARE(desk.outline(), before);
        QVERIFY(!Outline::hasBadNumbers(desk.rows()));
    }
    QCOMPARE(desk.refusals(), 0);
}

void HierarchyMovesTest::updateSequenceAndSaveKeepsTheParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p @0\n  - a @0\n  - b @1\n- q @7\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.model->updateSequenceAndSave(7);
    QCOMPARE(desk.numberedOutline(), u"- p @0\n  - b @1\n  - a @7\n- q @7\n"_s);
    QCOMPARE(desk.changed->size(), 0);
    desk.model->postStateChange();
    QCOMPARE(desk.where(), u"p: b <a> -"_s);
    QCOMPARE(desk.changed->size(), 1);
}

void HierarchyMovesTest::filesAreReorderedAtTheTopLevel_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("command");
    QTest::addColumn<int>("to");
    QTest::addColumn<QStringList>("order");
    const auto row
        = [](const char *name, int from, Command command, int to, const QStringList &order) {
              QTest::newRow(name) << from << number(command) << to << order;
          };
    const QString one = u"one.bdl"_s;
    const QString two = u"two.bdl"_s;
    const QString three = u"three.bdl"_s;
    row("first down", 0, Command::MoveCurrentDown, 1, {two, one, three});
    row("first to the bottom", 0, Command::MoveCurrentToBottom, 2, {two, three, one});
    row("middle up", 1, Command::MoveCurrentUp, 0, {two, one, three});
    row("middle down", 1, Command::MoveCurrentDown, 2, {one, three, two});
    row("last up", 2, Command::MoveCurrentUp, 1, {one, three, two});
    row("last to the top", 2, Command::MoveCurrentToTop, 0, {three, one, two});
}

void HierarchyMovesTest::filesAreReorderedAtTheTopLevel()
{
    QFETCH(const int, from);
    QFETCH(const int, command);
    QFETCH(const int, to);
    QFETCH(const QStringList, order);
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    QSignalSpy moved(desk.files.get(), &FileManager::fileMoved);
    desk.goToRoot(from);
    const QString name = desk.model->getFileName();
    desk.run(static_cast<Command>(command));
    QCOMPARE(filesInOrder(desk), order);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.at(0), (QVariantList{from, to}));
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.model->getFileName(), name);
    const QString before = to > 0 ? order.at(to - 1) : u"-"_s;
    const QString after = to < 2 ? order.at(to + 1) : u"-"_s;
    QCOMPARE(desk.where(), u"top: %1 <%2> %3"_s.arg(before, name, after));
    QVERIFY(!desk.somethingWritten());
}

void HierarchyMovesTest::moveUpAtTheFirstFileAndDownAtTheLastBeep()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    QSignalSpy moved(desk.files.get(), &FileManager::fileMoved);
    desk.run(Command::MoveCurrentUp);
    desk.run(Command::MoveCurrentToTop);
    QCOMPARE(desk.refusals(), 2);
    desk.goToRoot(2);
    desk.run(Command::MoveCurrentDown);
    desk.run(Command::MoveCurrentToBottom);
    QCOMPARE(desk.refusals(), 2);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(moved.size(), 0);
}

void HierarchyMovesTest::reorderedFilesAreRememberedInTheSettings()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.run(Command::MoveCurrentToBottom);
    QCOMPARE(QSettings().value(u"loadfiles/0"_s).toString(), desk.filePath(u"two.bdl"_s));
    QCOMPARE(QSettings().value(u"loadfiles/1"_s).toString(), desk.filePath(u"three.bdl"_s));
    QCOMPARE(QSettings().value(u"loadfiles/2"_s).toString(), desk.filePath(u"one.bdl"_s));
}

void HierarchyMovesTest::aMovedFileIsAddressedByItsNewIndex()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.run(Command::MoveCurrentToBottom);
    desk.run(Command::GoToChild);
    QCOMPARE(desk.where(), u"one.bdl: - <a> -"_s);
    desk.run(Command::AddEntryToTodoListAndShow);
    const auto address = desk.todoRequests->at(0).at(0).value<EntryAddress>();
    QCOMPARE(address.fileIndex, 2);
    QCOMPARE(address.entryId, desk.idOf(u"a"_s, 2));
}

void HierarchyMovesTest::thePanelMovesWithoutMovingFiles_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("command");
    QTest::addColumn<QString>("where");
    QTest::newRow("up") << 2 << number(Command::MoveCurrentUp) << u"panel: one.bdl <> two.bdl"_s;
    QTest::newRow("to the top") << 3 << number(Command::MoveCurrentToTop)
                                << u"panel: - <> one.bdl"_s;
    QTest::newRow("down") << 1 << number(Command::MoveCurrentDown)
                          << u"panel: two.bdl <> three.bdl"_s;
    QTest::newRow("to the bottom")
        << 0 << number(Command::MoveCurrentToBottom) << u"panel: three.bdl <> -"_s;
}

void HierarchyMovesTest::thePanelMovesWithoutMovingFiles()
{
    QFETCH(const int, slot);
    QFETCH(const int, command);
    QFETCH(const QString, where);
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    QSignalSpy moved(desk.files.get(), &FileManager::fileMoved);
    desk.goToPanel(slot);
    desk.run(static_cast<Command>(command));
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(moved.size(), 0);
    QCOMPARE(filesInOrder(desk), (QStringList{u"one.bdl"_s, u"two.bdl"_s, u"three.bdl"_s}));
}

void HierarchyMovesTest::thePanelAtTheEndsDoesNotMove()
{
    HierarchyDesk desk;
    setUpThreeFiles(desk);
    desk.goToPanel(0);
    desk.run(Command::MoveCurrentUp);
    desk.run(Command::MoveCurrentToTop);
    QCOMPARE(desk.refusals(), 2);
    desk.goToPanel(3);
    desk.run(Command::MoveCurrentDown);
    desk.run(Command::MoveCurrentToBottom);
    QCOMPARE(desk.refusals(), 2);
    QCOMPARE(desk.changed->size(), 0);
}

QTEST_MAIN(HierarchyMovesTest)
#include "HierarchyMovesTest.moc"
