// SPDX-License-Identifier: MIT
#include "fakes/HierarchyDesk.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace
{

const EntryState allStates[]
    = {EntryState::Todo, EntryState::WontDo, EntryState::Done, EntryState::Category};

/// Which states may stand below which, written down once more.
bool isAllowed(EntryState parent, EntryState child)
{
    switch (parent) {
    case EntryState::None:
    case EntryState::Category:
        return true;
    case EntryState::Todo:
    case EntryState::WontDo:
        return child != EntryState::Category;
    case EntryState::Done:
        return child == EntryState::Done || child == EntryState::WontDo;
    }
    return false;
}

Command markCommand(EntryState state)
{
    switch (state) {
    case EntryState::Todo:
        return Command::MarkCurrentTodo;
    case EntryState::WontDo:
        return Command::MarkCurrentWontDo;
    case EntryState::Done:
        return Command::MarkCurrentDone;
    case EntryState::Category:
    case EntryState::None:
        break;
    }
    return Command::MarkCurrentCategory;
}

/// A clock two hours ahead of UTC, so that a date kept as local time shows.
const QDateTime clockTime(QDate(2026, 5, 6), QTime(1, 2, 3), Qt::OffsetFromUTC, 2 * 3600);
const QDateTime clockTimeInUtc(QDate(2026, 5, 5), QTime(23, 2, 3), Qt::UTC);

} // namespace

/// The four states of entries: who may be what, done dates, and where the cursor goes.
class HierarchyStatesTest : public QObject
{
    Q_OBJECT

private:
    static void tryAllStates(HierarchyDesk &desk, const QString &entry, EntryState parent,
                             EntryState current, EntryState child);

private slots:
    void everyChangeOfStateFollowsTheTable_data();
    void everyChangeOfStateFollowsTheTable();
    void everyChangeOfARootsStateFollowsTheTable();
    void everyChangeOfANewEntrysStateFollowsTheTable_data();
    void everyChangeOfANewEntrysStateFollowsTheTable();
    void markingDoneAnEntryAlreadyDoneBeeps();
    void markingDoneWritesStateAndDate();
    void markingDoneAgainAfterReopeningTakesTheNewDate();
    void anyOtherStateClearsTheDate_data();
    void anyOtherStateClearsTheDate();
    void aChangeIsAnnouncedWithBothStates();
    void markingAnEmptyNewEntryChangesOnlyTheModel_data();
    void markingAnEmptyNewEntryChangesOnlyTheModel();
    void aNewEntrysStateGoesToTheFileWithItsText();
    void textTypedIntoANewEntryIsStoredBeforeItIsMarked();
    void whereTheCursorGoesAfterMarkingDone_data();
    void whereTheCursorGoesAfterMarkingDone();
    void markingDoneShowsEverythingOfTheNextToDo();
    void markingANewEntryDoneKeepsTheCursor();
    void markingARootDoneKeepsTheCursor();
    void walkingDownAListOfToDosAndUpToTheParent();
    void stateOfANewEntry_data();
    void stateOfANewEntry();
    void stateOfANewEntryWithOddRules_data();
    void stateOfANewEntryWithOddRules();
    void whereNoChildStateIsAllowedNothingIsMade();
    void goToChildOfAnEntryThatAllowsNoChildStateBeeps();
    void newSiblingsStartWithTheFirstAllowedState_data();
    void newSiblingsStartWithTheFirstAllowedState();
};

void HierarchyStatesTest::tryAllStates(HierarchyDesk &desk, const QString &entry, EntryState parent,
                                       EntryState current, EntryState child)
{
    for (const EntryState wanted : allStates) {
        const bool accepted = wanted != current && isAllowed(parent, wanted)
            && (child == EntryState::None || isAllowed(wanted, child));
        const qint64 id = desk.idOf(entry);
        desk.goTo(entry);
        desk.run(markCommand(wanted));
        const QByteArray what = qPrintable(u"%1 to %2"_s.arg(entry, Outline::markOf(wanted)));
        const auto stored = Outline::rowWithText(desk.rows(), entry);
        QVERIFY2(desk.refusals() == (accepted ? 0 : 1), what);
        QVERIFY2(desk.changed->size() == (accepted ? 1 : 0), what);
        QVERIFY2(desk.stateChanges->size() == (accepted ? 1 : 0), what);
        QVERIFY2(stored.state == (accepted ? wanted : current), what);
        if (accepted)
            QVERIFY2(stored.doneDate.isEmpty() == (wanted != EntryState::Done), what);
        desk.store().updateEntryState(
            id, current, current == EntryState::Done ? Outline::builtDoneDate() : QDateTime());
    }
}

void HierarchyStatesTest::everyChangeOfStateFollowsTheTable_data()
{
    QTest::addColumn<int>("parent");
    for (const EntryState parent : allStates)
        QTest::addRow("below %c", Outline::markOf(parent).toLatin1()) << static_cast<int>(parent);
}

void HierarchyStatesTest::everyChangeOfStateFollowsTheTable()
{
    QFETCH(const int, parent);
    const auto parentState = static_cast<EntryState>(parent);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    const qint64 root = Outline::rootOf(desk.rows());
    const QChar parentMark = Outline::markOf(parentState);
    int place = 0;
    for (const EntryState current : allStates) {
        if (!isAllowed(parentState, current))
            continue;
        const QChar mark = Outline::markOf(current);
        const QString childless = u"entry %1"_s.arg(mark);
        Outline::build(
            desk.store(), root,
            u"%1 parent @%2\n  %3 %4\n"_s.arg(parentMark).arg(place++).arg(mark).arg(childless));
        tryAllStates(desk, childless, parentState, current, EntryState::None);
        for (const EntryState child : allStates) {
            if (!isAllowed(current, child))
                continue;
            const QString entry = u"entry %1 with child %2"_s.arg(mark).arg(Outline::markOf(child));
            Outline::build(desk.store(), root,
                           u"%1 parent @%2\n  %3 %4\n    %5 child\n"_s.arg(parentMark)
                               .arg(place++)
                               .arg(mark)
                               .arg(entry)
                               .arg(Outline::markOf(child)));
            tryAllStates(desk, entry, parentState, current, child);
        }
    }
}

void HierarchyStatesTest::everyChangeOfARootsStateFollowsTheTable()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    const auto setRoot = [&](EntryState state) {
        desk.store().updateEntryState(Outline::rootOf(desk.rows()), state, QDateTime());
    };
    for (const EntryState current : allStates) {
        setRoot(current);
        tryAllStates(desk, u"one.bdl"_s, EntryState::None, current, EntryState::None);
    }
    Outline::build(desk.store(), Outline::rootOf(desk.rows()), u"- child\n"_s);
    setRoot(EntryState::Category);
    tryAllStates(desk, u"one.bdl"_s, EntryState::None, EntryState::Category, EntryState::Todo);
}

void HierarchyStatesTest::everyChangeOfANewEntrysStateFollowsTheTable_data()
{
    everyChangeOfStateFollowsTheTable_data();
}

void HierarchyStatesTest::everyChangeOfANewEntrysStateFollowsTheTable()
{
    QFETCH(const int, parent);
    const auto parentState = static_cast<EntryState>(parent);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"%1 parent\n  / child\n"_s.arg(Outline::markOf(parentState)));
    desk.start();
    for (const EntryState wanted : allStates) {
        desk.goToNewAfter(u"child"_s);
        const EntryState current = desk.model->getState();
        const bool accepted = wanted != current && isAllowed(parentState, wanted);
        desk.run(markCommand(wanted));
        QCOMPARE(desk.refusals(), accepted ? 0 : 1);
        QCOMPARE(desk.model->getState(), accepted ? wanted : current);
        QCOMPARE(desk.announcements(), 0);
        QVERIFY(!desk.somethingWritten());
    }
}

void HierarchyStatesTest::markingDoneAnEntryAlreadyDoneBeeps()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"x a\n- b\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.where(), u"one.bdl: - <a> b"_s);
    QCOMPARE(desk.model->getDoneDate(), Outline::builtDoneDate());
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.announcements(), 0);
}

void HierarchyStatesTest::markingDoneWritesStateAndDate()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"/ a\n"_s);
    desk.start();
    desk.model->setClock([] { return clockTime; });
    desk.goTo(u"a"_s);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.model->getDoneDate(), clockTimeInUtc);
    QCOMPARE(desk.model->getDoneDate().timeSpec(), Qt::UTC);
    const auto row = Outline::rowWithText(desk.rows(), u"a"_s);
    QCOMPARE(row.state, EntryState::Done);
    QCOMPARE(row.doneDate, u"2026-05-05T23:02:03"_s);
    // Read back, it is the same.
    desk.goTo(u"a"_s);
    QCOMPARE(desk.model->getDoneDate(), clockTimeInUtc);
}

void HierarchyStatesTest::markingDoneAgainAfterReopeningTakesTheNewDate()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"x a\n"_s);
    desk.start();
    desk.model->setClock([] { return clockTime; });
    desk.goTo(u"a"_s);
    desk.run(Command::MarkCurrentTodo);
    desk.run(Command::MarkCurrentDone);
    desk.goTo(u"a"_s);
    QCOMPARE(desk.model->getDoneDate(), clockTimeInUtc);
}

void HierarchyStatesTest::anyOtherStateClearsTheDate_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("to-do") << static_cast<int>(EntryState::Todo);
    QTest::newRow("won't do") << static_cast<int>(EntryState::WontDo);
    QTest::newRow("category") << static_cast<int>(EntryState::Category);
}

void HierarchyStatesTest::anyOtherStateClearsTheDate()
{
    QFETCH(const int, state);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"x a\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    desk.run(markCommand(static_cast<EntryState>(state)));
    QVERIFY(desk.model->getDoneDate().isNull());
    QCOMPARE(Outline::rowWithText(desk.rows(), u"a"_s).doneDate, QString());
    QCOMPARE(desk.where(), u"one.bdl: - <a> -"_s);
}

void HierarchyStatesTest::aChangeIsAnnouncedWithBothStates()
{
    HierarchyDesk desk;
    desk.addFile(u"zero.bdl"_s);
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.goTo(u"a"_s, 1);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.announcements(), 1);
    QCOMPARE(desk.stateChanges->size(), 1);
    const QVariantList arguments = desk.stateChanges->at(0);
    QCOMPARE(arguments.at(0).toInt(), 1);
    QCOMPARE(arguments.at(1).toLongLong(), desk.idOf(u"a"_s, 1));
    QCOMPARE(arguments.at(2).value<EntryState>(), EntryState::Todo);
    QCOMPARE(arguments.at(3).value<EntryState>(), EntryState::Done);
}

void HierarchyStatesTest::markingAnEmptyNewEntryChangesOnlyTheModel_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("done") << static_cast<int>(EntryState::Done);
    QTest::newRow("won't do") << static_cast<int>(EntryState::WontDo);
    QTest::newRow("category") << static_cast<int>(EntryState::Category);
    QTest::newRow("to-do") << static_cast<int>(EntryState::Todo);
}

void HierarchyStatesTest::markingAnEmptyNewEntryChangesOnlyTheModel()
{
    QFETCH(const int, state);
    const auto wanted = static_cast<EntryState>(state);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    desk.start();
    desk.model->setClock([] { return clockTime; });
    desk.goToNewAfter(u"a"_s);
    if (wanted == EntryState::Todo) {
        desk.run(Command::MarkCurrentCategory);
        desk.forget();
    }
    desk.run(markCommand(wanted));
    QCOMPARE(desk.model->getState(), wanted);
    QCOMPARE(desk.model->getDoneDate(), wanted == EntryState::Done ? clockTimeInUtc : QDateTime());
    QCOMPARE(desk.announcements(), 0);
    QCOMPARE(desk.changed->size(), 1);
    QVERIFY(!desk.somethingWritten());
    QCOMPARE(desk.outline(), u"- a\n- b\n"_s);
    QCOMPARE(desk.where(), u"one.bdl: a <> b"_s);
}

void HierarchyStatesTest::aNewEntrysStateGoesToTheFileWithItsText()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n"_s);
    desk.start();
    desk.model->setClock([] { return clockTime; });
    desk.goToNewAfter(u"a"_s);
    desk.run(Command::MarkCurrentDone);
    desk.type(u"b"_s);
    desk.run(Command::CommitEdit);
    const auto row = Outline::rowWithText(desk.rows(), u"b"_s);
    QCOMPARE(row.state, EntryState::Done);
    QCOMPARE(row.doneDate, u"2026-05-05T23:02:03"_s);
    QCOMPARE(desk.announcements(), 0);
}

void HierarchyStatesTest::textTypedIntoANewEntryIsStoredBeforeItIsMarked()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- a\n- c\n"_s);
    desk.start();
    desk.goToNewAfter(u"a"_s);
    desk.type(u"b"_s);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.outline(), u"- a\nx b\n- c\n"_s);
    QCOMPARE(desk.stateChanges->size(), 1);
    // By then it is a stored to-do like any other.
    QCOMPARE(desk.where(), u"one.bdl: b <c> -"_s);
}

void HierarchyStatesTest::whereTheCursorGoesAfterMarkingDone_data()
{
    QTest::addColumn<QString>("outline");
    QTest::addColumn<QString>("where");
    QTest::newRow("the next to-do below") << u"- p\n  - m\n  - n\n"_s << u"p: m <n> -"_s;
    QTest::newRow("skipping what is no to-do")
        << u"* p\n  - m\n  x 1\n  / 2\n  * 3\n  - n @50\n  - o\n"_s << u"p: 3 <n> o"_s;
    QTest::newRow("not back to one before") << u"- p\n  - l\n  - m\n  x n\n"_s << u"p: l <m> n"_s;
    QTest::newRow("the last of a to-do parent: the parent")
        << u"- p\n  x l\n  - m\n  / n\n- q\n"_s << u"one.bdl: - <p> q"_s;
    QTest::newRow("the only one of a to-do parent: the parent")
        << u"- p\n  - m\n"_s << u"one.bdl: - <p> -"_s;
    QTest::newRow("the last of a category: stays") << u"* p\n  - m\n"_s << u"p: - <m> -"_s;
    QTest::newRow("the last of a won't do: stays") << u"/ p\n  x l\n  - m\n"_s << u"p: l <m> -"_s;
    QTest::newRow("a category among the siblings does not hold it")
        << u"- p\n  / l\n  - m\n  x n\n"_s << u"one.bdl: - <p> -"_s;
    QTest::newRow("was won't do: stays") << u"- p\n  / m\n  - n\n"_s << u"p: - <m> n"_s;
    QTest::newRow("was the last, won't do, of a to-do parent: stays")
        << u"- p\n  / m\n"_s << u"p: - <m> -"_s;
    QTest::newRow("was category: stays") << u"* p\n  * m\n  - n\n"_s << u"p: - <m> n"_s;
    QTest::newRow("the parent is the file's root, a category: stays")
        << u"- m\n"_s << u"one.bdl: - <m> -"_s;
}

void HierarchyStatesTest::whereTheCursorGoesAfterMarkingDone()
{
    QFETCH(const QString, outline);
    QFETCH(const QString, where);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, outline);
    desk.start();
    desk.goTo(u"m"_s);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(Outline::rowWithText(desk.rows(), u"m"_s).state, EntryState::Done);
    QCOMPARE(desk.where(), where);
    QCOMPARE(desk.changed->size(), 1);
    QCOMPARE(desk.stateChanges->size(), 1);
    QCOMPARE(desk.stateChanges->at(0).at(1).toLongLong(), desk.idOf(u"m"_s));
}

void HierarchyStatesTest::markingDoneShowsEverythingOfTheNextToDo()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - m\n  - n\n    - n1\n"_s);
    desk.start();
    desk.store().registerShortcut(desk.idOf(u"n"_s), Qt::Key_N, u"N"_s);
    desk.goTo(u"m"_s);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.where(), u"p: m <n> -"_s);
    QCOMPARE(desk.model->getState(), EntryState::Todo);
    QVERIFY(desk.model->getDoneDate().isNull());
    QVERIFY(desk.model->getHasChildren());
    QCOMPARE(desk.model->getShortcutKeyText(), u"N"_s);
    QCOMPARE(desk.model->getPrecedingSiblingEntryState(), EntryState::Done);
}

void HierarchyStatesTest::markingANewEntryDoneKeepsTheCursor()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  x a\n  - b\n"_s);
    desk.start();
    desk.goToNewAfter(u"a"_s);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.where(), u"p: a <> b"_s);
}

void HierarchyStatesTest::markingARootDoneKeepsTheCursor()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.addFile(u"two.bdl"_s);
    desk.start();
    desk.goToRoot(1);
    desk.run(Command::MarkCurrentTodo);
    desk.goToRoot(0);
    desk.run(Command::MarkCurrentTodo);
    desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.where(), u"top: - <one.bdl> two.bdl"_s);
    QCOMPARE(desk.model->getState(), EntryState::Done);
    QCOMPARE(desk.refusals(), 0);
}

void HierarchyStatesTest::walkingDownAListOfToDosAndUpToTheParent()
{
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, u"- p\n  - a\n  - b\n- q\n"_s);
    desk.start();
    desk.goTo(u"a"_s);
    for (int i = 0; i < 4; ++i)
        desk.run(Command::MarkCurrentDone);
    QCOMPARE(desk.outline(), u"x p\n  x a\n  x b\nx q\n"_s);
    QCOMPARE(desk.where(), u"one.bdl: p <q> -"_s);
    QCOMPARE(desk.refusals(), 0);
    QCOMPARE(desk.stateChanges->size(), 4);
}

void HierarchyStatesTest::stateOfANewEntry_data()
{
    QTest::addColumn<int>("parent");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("chosen");
    QTest::newRow("root's level") << -1 << 0 << 2 << 0;
    QTest::newRow("to-do") << 0 << 0 << 2 << 0;
    QTest::newRow("won't do") << 1 << 0 << 2 << 0;
    QTest::newRow("done takes the second") << 2 << 0 << 2 << 2;
    QTest::newRow("category") << 3 << 0 << 2 << 0;
    QTest::newRow("done without a second takes the first allowed number") << 2 << 0 << -1 << 1;
    QTest::newRow("category allowed") << 3 << 3 << 2 << 3;
    QTest::newRow("category below to-do takes the second") << 0 << 3 << 1 << 1;
    QTest::newRow("neither below done") << 2 << 3 << 0 << 1;
}

void HierarchyStatesTest::stateOfANewEntry()
{
    QFETCH(const int, parent);
    QFETCH(const int, first);
    QFETCH(const int, second);
    QFETCH(const int, chosen);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s);
    desk.start();
    const EntryState state = desk.model->selectStateForNewEntry(static_cast<EntryState>(parent),
                                                                static_cast<EntryState>(first),
                                                                static_cast<EntryState>(second));
    QCOMPARE(static_cast<int>(state), chosen);
}

void HierarchyStatesTest::stateOfANewEntryWithOddRules_data()
{
    QTest::addColumn<QString>("allowed");
    QTest::addColumn<int>("chosen");
    QTest::newRow("won't do and category") << u"1, 3"_s << 1;
    QTest::newRow("category alone") << u"3"_s << 3;
    QTest::newRow("done and category") << u"2, 3"_s << 2;
    QTest::newRow("nothing") << u"9"_s << -1;
}

void HierarchyStatesTest::stateOfANewEntryWithOddRules()
{
    QFETCH(const QString, allowed);
    QFETCH(const int, chosen);
    HierarchyDesk desk;
    const QString path = desk.addFile(u"one.bdl"_s);
    // The rules are data of the file.
    Outline::runOnDisk(
        path,
        {u"DELETE FROM statecombo WHERE parentstate=3 AND childstate NOT IN (%1)"_s.arg(allowed)});
    desk.start();
    const EntryState state = desk.model->selectStateForNewEntry(EntryState::Category,
                                                                EntryState::Todo, EntryState::Done);
    QCOMPARE(static_cast<int>(state), chosen);
}

void HierarchyStatesTest::whereNoChildStateIsAllowedNothingIsMade()
{
    HierarchyDesk desk;
    const QString path = desk.addFile(u"one.bdl"_s, u"- a\n- b\n"_s);
    Outline::runOnDisk(path, {u"DELETE FROM statecombo WHERE parentstate=3"_s});
    desk.start();
    const auto beepsAt = [&](const QString &entry, Command command) {
        desk.goTo(entry);
        const QStringList before = desk.everythingShown();
        desk.run(command);
        QCOMPARE(desk.refusals(), 1);
        QCOMPARE(desk.changed->size(), 0);
        QCOMPARE(desk.everythingShown(), before);
    };
    beepsAt(u"a"_s, Command::NewSibling);
    beepsAt(u"b"_s, Command::GoToNext);
    beepsAt(u"a"_s, Command::GoToPrevious);
    beepsAt(u"a"_s, Command::MarkCurrentDone);
    desk.goTo(u"a"_s);
    QVERIFY(!desk.model->newSibling(true));
    QVERIFY(!desk.model->updateStateAndSave(EntryState::Done));
    QVERIFY(!desk.somethingWritten());
}

void HierarchyStatesTest::goToChildOfAnEntryThatAllowsNoChildStateBeeps()
{
    HierarchyDesk desk;
    const QString path = desk.addFile(u"one.bdl"_s, u"x a\n"_s);
    Outline::runOnDisk(path, {u"DELETE FROM statecombo WHERE parentstate=2"_s});
    desk.start();
    desk.goTo(u"a"_s);
    const QStringList before = desk.everythingShown();
    desk.run(Command::GoToChild);
    QCOMPARE(desk.refusals(), 1);
    QCOMPARE(desk.changed->size(), 0);
    QCOMPARE(desk.everythingShown(), before);
}

void HierarchyStatesTest::newSiblingsStartWithTheFirstAllowedState_data()
{
    QTest::addColumn<QString>("outline");
    QTest::addColumn<int>("state");
    QTest::newRow("below a category") << u"* p\n  * a\n"_s << static_cast<int>(EntryState::Todo);
    QTest::newRow("below a to-do") << u"- p\n  x a\n"_s << static_cast<int>(EntryState::Todo);
    QTest::newRow("below a won't do") << u"/ p\n  / a\n"_s << static_cast<int>(EntryState::Todo);
    QTest::newRow("below a done") << u"x p\n  / a\n"_s << static_cast<int>(EntryState::Done);
}

void HierarchyStatesTest::newSiblingsStartWithTheFirstAllowedState()
{
    QFETCH(const QString, outline);
    QFETCH(const int, state);
    HierarchyDesk desk;
    desk.addFile(u"one.bdl"_s, outline);
    desk.start();
    desk.model->setClock([] { return clockTime; });
    for (const Command command : {Command::NewSibling, Command::GoToNext, Command::GoToPrevious}) {
        desk.goTo(u"a"_s);
        desk.run(command);
        QCOMPARE(desk.refusals(), 0);
        QCOMPARE(static_cast<int>(desk.model->getState()), state);
        QCOMPARE(desk.model->getDoneDate(),
                 desk.model->getState() == EntryState::Done ? clockTimeInUtc : QDateTime());
    }
}

QTEST_MAIN(HierarchyStatesTest)
#include "HierarchyStatesTest.moc"
