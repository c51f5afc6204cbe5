// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>
#include <limits>

using namespace Qt::StringLiterals;

namespace
{
constexpr int highest = std::numeric_limits<int>::max();
constexpr qint64 bigId = qint64(highest) + 10;

int number(Command command)
{
    return static_cast<int>(command);
}
} // namespace

/// Numbers at the end of their range: nothing may be written that reads back as something else.
class HierarchyLimitsTest : public QObject
{
    Q_OBJECT

private:
    static void setUpBigParents(HierarchyDesk &desk);

private slots:
    void theHighestNumberRefusesToGrow_data();
    void theHighestNumberRefusesToGrow();
    void atTheHighestNumberEverythingElseStillWorks();
    void noCommandEverLeavesTheRangeOfNumbers_data();
    void noCommandEverLeavesTheRangeOfNumbers();
    void theLastFreeNumberIsStillGiven();
    void aParentBeyondThirtyTwoBitsIsRefusedOnTheLeft();
    void aParentBeyondThirtyTwoBitsIsRefusedOnTheRight();
    void aNewEntryNeverEndsUpBelowAStranger();
    void anEntryBeyondThirtyTwoBitsCanBeEditedAndMoved();
    void aShortcutOfAnEntryBeyondThirtyTwoBitsLeadsToIt();
};

void HierarchyLimitsTest::theHighestNumberRefusesToGrow_data()
{
    QTest::addColumn<QString>("outline");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<int>("command");
    const auto row
        = [](const char *name, const QString &outline, const QString &entry, Command command) {
              QTest::newRow(name) << outline << entry << number(command);
          };
    const QString siblings = u"- a @0\n- b @5\n- last @2147483647\n"_s;
    row("a sibling after the last", siblings, u"last"_s, Command::NewSibling);
    row("next of the last", siblings, u"last"_s, Command::GoToNext);
    row("down behind the last", siblings, u"b"_s, Command::MoveCurrentDown);
    row("to the bottom", siblings, u"a"_s, Command::MoveCurrentToBottom);
    row("right, behind the last child", u"- p\n  - last @2147483647\n- e\n"_s, u"e"_s,
        Command::MoveCurrentRight);
    row("left, after a parent at the highest number", u"- g\n  - p @2147483647\n    - e\n"_s,
        u"e"_s, Command::MoveCurrentLeft);
    row("left, shifting the highest number",
        u"- g\n  - p @4\n    - e\n  - q @5\n  - last @2147483647\n"_s, u"e"_s,
        Command::MoveCurrentLeft);
    row("a sibling in an occupied place", u"- a @0\n- b @1\n- last @2147483647\n"_s, u"a"_s,
        Command::NewSibling);
    row("previous of the first, in an occupied place", u"- a @0\n- last @2147483647\n"_s, u"a"_s,
        Command::GoToPrevious);
}

void HierarchyLimitsTest::theHighestNumberRefusesToGrow()
{
    QFETCH(const QString, outline);
    QFETCH(const QString, entry);
    QFETCH(const int, command);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    // Opening a file closes such gaps, so the numbers come afterwards.
    Outline::build(desk.store(), Outline::rootOf(desk.rows()), outline);
    desk.goTo(entry);
    const QString before = desk.numberedOutline();
    const QStringList shown = desk.everythingShown();

    desk.run(static_cast<Command>(command));

    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.numberedOutline(), before);
    QCOMPARE(desk.everythingShown(), shown);
}

void HierarchyLimitsTest::atTheHighestNumberEverythingElseStillWorks()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    Outline::build(desk.store(), Outline::rootOf(desk.rows()),
                   u"- a @0\n- b @5\n- last @2147483647\n"_s);
    desk.goTo(u"last"_s);
    QCOMPARE(desk.where(), u"one.bdl: b <last> -"_s);
    desk.run(Command::GoToPrevious);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.where(), u"one.bdl: b <last> -"_s);
    QCOMPARE(desk.model->getFollowingSiblingEntrySequence(), -1);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.model->getState(), EntryState::Done);
    QCOMPARE(desk.refusals(), 0);
    desk.type(u"still the last"_s);
    desk.run(Command::MoveCurrentUp);
    QCOMPARE(desk.where(), u"one.bdl: a <still the last> b"_s);
    QCOMPARE(desk.numberedOutline(), u"- a @0\nx still the last @5\n- b @6\n"_s);
}

void HierarchyLimitsTest::noCommandEverLeavesTheRangeOfNumbers_data()
{
    QTest::addColumn<int>("command");
    for (int command = number(Command::GoToFirst); command <= number(Command::NewSibling);
         ++command)
        QTest::addRow("command %d", command) << command;
}

void HierarchyLimitsTest::noCommandEverLeavesTheRangeOfNumbers()
{
    QFETCH(const int, command);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    // Every place full up to the highest number, on each level that a command can reach.
    const QString texts[] = {u"a"_s, u"b"_s, u"m"_s, u"y"_s, u"z"_s};
    Outline::build(desk.store(), Outline::rootOf(desk.rows()),
                   u"- g @0\n  - a @0\n  - b @1\n    - c @2147483646\n    - d @2147483647\n"
                   "  - m @2\n    - n @2147483647\n  - y @2147483646\n  - z @2147483647\n"_s);
    desk.store().commitAndRestartTransaction();
    for (const QString &text : texts) {
        desk.goTo(text);
        desk.run(static_cast<Command>(command));
        desk.type(desk.editor->text() + u" typed"_s);
        desk.run(Command::CommitEdit);
        const Outline::Rows rows = desk.rows();
        QVERIFY2(!Outline::hasBadNumbers(rows), qPrintable(text + u'\n' + desk.numberedOutline()));
        QVERIFY2(desk.where().contains(u"typed"_s), qPrintable(desk.where()));
        desk.files->rollbackAndRestartTransactions();
    }
}

void HierarchyLimitsTest::theLastFreeNumberIsStillGiven()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a @2147483646\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(Command::GoToNext);
    desk.type(u"b"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.numberedOutline(), u"- a @2147483646\n- b @2147483647\n"_s);
    desk.run(Command::GoToNext);
    QCOMPARE(desk.refusals(), 1);
}

void HierarchyLimitsTest::setUpBigParents(HierarchyDesk &desk)
{
    const QString path = desk.addFile(u"one.bdl"_s, u"- g\n  - p\n    - a\n    - e\n"_s);
    // Cut to 32 bits, the id of "g" is negative and that of "a" is the root's.
    Outline::runOnDisk(path,
                       {u"UPDATE entry SET parentid=%1 WHERE parentid=2"_s.arg(bigId),
                        u"UPDATE entry SET id=%1 WHERE id=2"_s.arg(bigId),
                        u"UPDATE entry SET id=4294967297 WHERE id=4"_s,
                        u"INSERT INTO entrybody (docid, content) VALUES (%1, 'g')"_s.arg(bigId),
                        u"DELETE FROM entrybody WHERE docid=2"_s,
                        u"INSERT INTO entrybody (docid, content) VALUES (4294967297, 'a')"_s,
                        u"DELETE FROM entrybody WHERE docid=4"_s});
    desk.start();
    QCOMPARE(desk.idOf(u"g"_s), bigId);
    QCOMPARE(desk.idOf(u"a"_s), 4294967297);
    QCOMPARE(desk.outline(), u"- g\n  - p\n    - a\n    - e\n"_s);
}

void HierarchyLimitsTest::aParentBeyondThirtyTwoBitsIsRefusedOnTheLeft()
{
    HierarchyDesk desk;
    setUpBigParents(desk);
    desk.goTo(u"e"_s);
    const QStringList shown = desk.everythingShown();
    QCOMPARE(thrownBy([&] { desk.run(Command::MoveCurrentLeft); }), "nothing");
    QCOMPARE(desk.refusals(), 1);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.everythingShown(), shown);
    QCOMPARE(desk.outline(), u"- g\n  - p\n    - a\n    - e\n"_s);
}

void HierarchyLimitsTest::aParentBeyondThirtyTwoBitsIsRefusedOnTheRight()
{
    HierarchyDesk desk;
    setUpBigParents(desk);
    desk.goTo(u"e"_s);
    const QStringList shown = desk.everythingShown();
    QCOMPARE(thrownBy([&] { desk.run(Command::MoveCurrentRight); }), "nothing");
    QCOMPARE(desk.refusals(), 1);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.everythingShown(), shown);
    QCOMPARE(desk.outline(), u"- g\n  - p\n    - a\n    - e\n"_s);
}

void HierarchyLimitsTest::aNewEntryNeverEndsUpBelowAStranger()
{
    HierarchyDesk desk;
    setUpBigParents(desk);
    const auto parentOf = [&](const QString &text) {
        const Outline::Rows rows = desk.rows();
        const qint64 parent = Outline::rowWithText(rows, text).parentId;
        for (const Outline::Row &row : rows) {
            if (row.id == parent)
                return row.text;
        }
        return QString();
    };
    desk.goToNewAfter(u"a"_s);
    desk.run(Command::MoveCurrentRight);
    desk.type(u"new"_s);
    const QString shown = desk.model->getParentBody();
    desk.run(Command::CommitEdit);
    QCOMPARE(parentOf(u"new"_s), shown);
    desk.goToNewAfter(u"e"_s);
    desk.run(Command::MoveCurrentLeft);
    desk.type(u"newer"_s);
    const QString shownOnTheLeft = desk.model->getParentBody();
    desk.run(Command::CommitEdit);
    QCOMPARE(parentOf(u"newer"_s), shownOnTheLeft);
}

void HierarchyLimitsTest::anEntryBeyondThirtyTwoBitsCanBeEditedAndMoved()
{
    HierarchyDesk desk;
    setUpBigParents(desk);
    desk.goTo(u"a"_s);
    QCOMPARE(desk.where(), u"p: - <a> e"_s);
    desk.type(u"aa"_s);
    desk.run(Command::MoveCurrentDown);
    QCOMPARE(desk.outline(), u"- g\n  - p\n    - e\n    - aa\n"_s);
    QCOMPARE(desk.bodyChanges->at(0).at(1).toLongLong(), 4294967297);
    desk.run(Command::MarkCurrentWontDo);
    QCOMPARE(desk.stateChanges->at(0).at(1).toLongLong(), 4294967297);
    QCOMPARE(desk.outline(), u"- g\n  - p\n    - e\n    / aa\n"_s);
    // As a parent of new entries it serves, too.
    desk.run(Command::GoToChild);
    desk.type(u"child"_s);
    desk.run(Command::CommitEdit);
    QCOMPARE(desk.outline(), u"- g\n  - p\n    - e\n    / aa\n      - child\n"_s);
}

void HierarchyLimitsTest::aShortcutOfAnEntryBeyondThirtyTwoBitsLeadsToIt()
{
    HierarchyDesk desk;
    setUpBigParents(desk);
    desk.goTo(u"a"_s);
    QVERIFY(desk.model->registerShortcut(Qt::Key_A, u"A"_s));
    QVERIFY(desk.model->isShortcutRegistered(Qt::Key_A, false));
    QVERIFY(!desk.model->isShortcutRegistered(Qt::Key_A, true));
    desk.goToRoot(0);
    desk.model->goToEntryByShortcutKey(Qt::Key_A);
    QCOMPARE(desk.where(), u"p: - <a> e"_s);
}

QTEST_MAIN(HierarchyLimitsTest)
#include "HierarchyLimitsTest.moc"
