// SPDX-License-Identifier: MIT
#include "unit/model/TodoDesk.h"

#include "shared/TextHelpers.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace
{
constexpr int unlisted = TodoDesk::unlisted;
constexpr int largest = std::numeric_limits<int>::max();
using Numbers = std::vector<int>;

} // namespace

class TodoListModelTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstItemOfAnEmptyListStartsAtTwoThirds();
    void addingToTheTopTakesTheOldTopsNumberMinusAGap();
    void addingToTheTopTakesHalfWhenAGapDoesNotFit();
    void addingAnEntryThatIsListedChangesNothing();
    void addingAnUnreadableEntryThrowsAndChangesNothing();
    void aDropBetweenConsecutiveNumbersShiftsTheShorterRunInTheFiles();
    void aRowDroppedOntoItselfJustBelowItselfOrOntoNothingWritesNothing_data();
    void aRowDroppedOntoItselfJustBelowItselfOrOntoNothingWritesNothing();
    void rowsAreDroppedAnywhere_data();
    void rowsAreDroppedAnywhere();
    void droppingLeavesThePersistentIndexOnItsRow();
    void dragDataNamesTheRowInDigits();
    void draggingOtherThanOneRowThrows();
    void foreignOrDamagedDragDataChangesNothing_data();
    void foreignOrDamagedDragDataChangesNothing();
    void dragDataEndsAtTheFirstZeroByte();
    void rolesAndFlagsAreThoseOfAListToDropBetween();
    void theTopEntryDoneIsRemovedAndTheNewTopAnnounced();
    void theTopEntryWontDoIsRemovedWithoutAnnouncement();
    void otherStateChanges_data();
    void otherStateChanges();
    void theAnnouncedAddressMixesTheDoneEntrysFileWithTheNewTop();
    void aChangedTextIsShownShortened();
    void aDeletedEntryLeavesTheList();
    void deletingARowGivesTheRowThatTookItsPlace();
};

void TodoListModelTest::theFirstItemOfAnEmptyListStartsAtTwoThirds()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, unlisted}});
    desk.start();
    desk.todos->addTodo(desk.addressOf(u"a"_s));
    QCOMPARE(desk.rows(), QStringList{u"0:a"_s});
    const int number = desk.numbers().front();
    QVERIFY(number >= 1431655764 && number <= 1431656063);
    QCOMPARE(desk.stored(), QStringList{u"a=%1"_s.arg(number)});
    QVERIFY(desk.somethingWritten());
}

void TodoListModelTest::addingToTheTopTakesTheOldTopsNumberMinusAGap()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 5000}, {u"b"_s, unlisted}});
    desk.start();
    desk.todos->addTodo(desk.addressOf(u"b"_s));
    QCOMPARE(desk.rows(), (QStringList{u"0:b"_s, u"0:a"_s}));
    const int number = desk.numbers().front();
    QVERIFY(number >= 5000 - 124 && number <= 5000 - 75);
    QCOMPARE(desk.stored(), (QStringList{u"b=%1"_s.arg(number), u"a=5000"_s}));
}

void TodoListModelTest::addingToTheTopTakesHalfWhenAGapDoesNotFit()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 174}, {u"b"_s, unlisted}});
    desk.start();
    desk.todos->addTodo(desk.addressOf(u"b"_s));
    QCOMPARE(desk.stored(), (QStringList{u"b=87"_s, u"a=174"_s}));
}

void TodoListModelTest::addingAnEntryThatIsListedChangesNothing()
{
    TodoDesk desk;
    startThreeFiles(desk);
    const QStringList before = desk.rows();
    desk.todos->addTodo(desk.addressOf(u"a2"_s));
    QCOMPARE(desk.rows(), before);
    QVERIFY(!desk.somethingWritten());
}

void TodoListModelTest::addingAnUnreadableEntryThrowsAndChangesNothing()
{
    TodoDesk desk;
    startThreeFiles(desk);
    const QStringList before = desk.rows();
    QCOMPARE(thrownBy([&] { desk.todos->addTodo(EntryAddress{0, 4711}); }), QByteArray("bad"));
    QCOMPARE(thrownBy([&] { desk.todos->addTodo(EntryAddress{3, 1}); }), QByteArray("bad"));
    QCOMPARE(desk.rows(), before);
    QVERIFY(!desk.somethingWritten());
    desk.todos->addTodo(desk.addressOf(u"a3"_s));
    QCOMPARE(desk.rows(), QStringList{u"0:a3"_s} + before);
}

void TodoListModelTest::aDropBetweenConsecutiveNumbersShiftsTheShorterRunInTheFiles()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 3}, {u"b"_s, 5}, {u"e"_s, 90}});
    desk.addFile(u"two.bdl"_s, {{u"c"_s, 6}, {u"d"_s, 7}});
    desk.start();
    desk.drop(4, 2);
    QCOMPARE(desk.rows(), (QStringList{u"0:a"_s, u"0:b"_s, u"0:e"_s, u"1:c"_s, u"1:d"_s}));
    QCOMPARE(desk.stored(0), (QStringList{u"a=3"_s, u"b=4"_s, u"e=5"_s}));
    QCOMPARE(desk.stored(1), (QStringList{u"c=6"_s, u"d=7"_s}));
    desk.drop(0, 4);
    QCOMPARE(desk.rows(), (QStringList{u"0:b"_s, u"0:e"_s, u"1:c"_s, u"0:a"_s, u"1:d"_s}));
    QCOMPARE(desk.stored(0), (QStringList{u"b=4"_s, u"e=5"_s, u"a=7"_s}));
    QCOMPARE(desk.stored(1), (QStringList{u"c=6"_s, u"d=8"_s}));
}

void TodoListModelTest::aRowDroppedOntoItselfJustBelowItselfOrOntoNothingWritesNothing_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("target");
    QTest::newRow("onto itself") << 2 << 2;
    QTest::newRow("just below itself") << 2 << 3;
    QTest::newRow("first onto itself") << 0 << 0;
    QTest::newRow("last just below itself") << 5 << 6;
    QTest::newRow("onto nothing") << 2 << -1;
}

void TodoListModelTest::aRowDroppedOntoItselfJustBelowItselfOrOntoNothingWritesNothing()
{
    QFETCH(int, source);
    QFETCH(int, target);
    TodoDesk desk;
    startThreeFiles(desk);
    const Numbers numbers = desk.numbers();
    const QSignalSpy moves(desk.todos.get(), &QAbstractItemModel::rowsMoved);
    desk.drop(source, target);
    QCOMPARE(desk.rows(), threeFilesInOrder());
    QVERIFY(desk.numbers() == numbers);
    QCOMPARE(moves.count(), 0);
    QVERIFY(!desk.somethingWritten());
}

void TodoListModelTest::rowsAreDroppedAnywhere_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("target");
    QTest::addColumn<QString>("order");
    QTest::newRow("first to the end") << 0 << 4 << u"bcda"_s;
    QTest::newRow("last to the top") << 3 << 0 << u"dabc"_s;
    QTest::newRow("one down") << 1 << 3 << u"acbd"_s;
    QTest::newRow("one up") << 2 << 1 << u"acbd"_s;
    QTest::newRow("first between") << 0 << 2 << u"bacd"_s;
    QTest::newRow("last between") << 3 << 1 << u"adbc"_s;
}

void TodoListModelTest::rowsAreDroppedAnywhere()
{
    QFETCH(int, source);
    QFETCH(int, target);
    QFETCH(QString, order);
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s,
                 {{u"a"_s, 0}, {u"b"_s, 1}, {u"c"_s, largest - 1}, {u"d"_s, largest}});
    desk.start();
    const auto shown = [&desk] { return desk.rows().join(QString()).remove(u"0:"_s); };
    const QSignalSpy moves(desk.todos.get(), &QAbstractItemModel::rowsMoved);
    desk.drop(source, target);
    QCOMPARE(shown(), order);
    QCOMPARE(moves.count(), 1);
    desk.files().commitAndRestartTransactions();
    desk.restart();
    QCOMPARE(shown(), order);
    QCOMPARE(desk.fileErrors(), 0);
}

void TodoListModelTest::droppingLeavesThePersistentIndexOnItsRow()
{
    TodoDesk desk;
    startThreeFiles(desk);
    const QPersistentModelIndex moved = desk.todos->index(1);
    const QPersistentModelIndex other = desk.todos->index(3);
    desk.drop(1, 5);
    QCOMPARE(moved.row(), 4);
    QCOMPARE(moved.data().toString(), u"a1"_s);
    QCOMPARE(other.row(), 2);
    QCOMPARE(other.data().toString(), u"b2"_s);
}

void TodoListModelTest::dragDataNamesTheRowInDigits()
{
    TodoDesk desk;
    TodoDesk::Entries entries;
    for (int i = 0; i < 13; ++i)
        entries.emplace_back(u"e%1"_s.arg(i), i);
    desk.addFile(u"one.bdl"_s, entries);
    desk.start();
    const std::unique_ptr<QMimeData> data(desk.todos->mimeData({desk.todos->index(12)}));
    QCOMPARE(data->data(u"application/x-bnrownumid"_s), QByteArray("12"));
    QVERIFY(data->hasFormat(u"application/x-qabstractitemmodeldatalist"_s));
    QCOMPARE(desk.todos->supportedDropActions(), Qt::MoveAction);
}

void TodoListModelTest::draggingOtherThanOneRowThrows()
{
    TodoDesk desk;
    startThreeFiles(desk);
    const QByteArray expected = "unsupported number of indexes";
    const auto drag = [&](const QModelIndexList &indexes) {
        return thrownBy(
            [&] { const std::unique_ptr<QMimeData> data(desk.todos->mimeData(indexes)); });
    };
    QCOMPARE(drag({}), expected);
    QCOMPARE(drag({desk.todos->index(0), desk.todos->index(1)}), expected);
    QCOMPARE(drag({desk.todos->index(0)}), QByteArray("nothing"));
}

void TodoListModelTest::foreignOrDamagedDragDataChangesNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("letters") << QByteArray("row");
    QTest::newRow("a row that isn't there") << QByteArray("6");
    QTest::newRow("negative") << QByteArray("-1");
    QTest::newRow("beyond what a number holds") << QByteArray("99999999999");
}

void TodoListModelTest::foreignOrDamagedDragDataChangesNothing()
{
    QFETCH(QByteArray, bytes);
    TodoDesk desk;
    startThreeFiles(desk);
    QMimeData data;
    if (!bytes.isEmpty())
        data.setData(u"application/x-bnrownumid"_s, bytes);
    QVERIFY(desk.todos->dropMimeData(&data, Qt::MoveAction, 2, 0, QModelIndex()));
    QCOMPARE(desk.rows(), threeFilesInOrder());
    QVERIFY(!desk.somethingWritten());
}

void TodoListModelTest::dragDataEndsAtTheFirstZeroByte()
{
    TodoDesk desk;
    startThreeFiles(desk);
    QMimeData data;
    data.setData(u"application/x-bnrownumid"_s, QByteArray("5\0009", 3));
    desk.todos->dropMimeData(&data, Qt::MoveAction, 0, 0, QModelIndex());
    QCOMPARE(desk.rows().front(), u"0:a2"_s);
}

void TodoListModelTest::rolesAndFlagsAreThoseOfAListToDropBetween()
{
    TodoDesk desk;
    startThreeFiles(desk);
    const QModelIndex first = desk.todos->getFirstEntryIndex();
    QCOMPARE(first.row(), 0);
    QCOMPARE(desk.todos->data(first), QVariant(u"b1"_s));
    QVERIFY(!desk.todos->data(first, Qt::ToolTipRole).isValid());
    QVERIFY(!desk.todos->data(QModelIndex()).isValid());
    QCOMPARE(desk.todos->headerData(0, Qt::Horizontal),
             QVariant(u"todo entries (don't show this in the ui)"_s));
    QVERIFY(!desk.todos->headerData(0, Qt::Horizontal, Qt::ToolTipRole).isValid());
    const Qt::ItemFlags onRow = desk.todos->flags(first);
    QVERIFY(onRow.testFlag(Qt::ItemIsDragEnabled) && !onRow.testFlag(Qt::ItemIsDropEnabled));
    const Qt::ItemFlags between = desk.todos->flags(QModelIndex());
    QVERIFY(!between.testFlag(Qt::ItemIsDragEnabled) && between.testFlag(Qt::ItemIsDropEnabled));
    QCOMPARE(desk.todos->rowCount(first), 0);
    QCOMPARE(desk.todos->getIndexForEntry(2, desk.idOf(u"c1"_s, 2)).row(), 2);
    QVERIFY(!desk.todos->getIndexForEntry(2, 4711).isValid());
    QCOMPARE(desk.todos->getEntryAddressForIndex(first), desk.addressOf(u"b1"_s, 1));
    QCOMPARE(desk.todos->getEntryAddressForIndex(QModelIndex()), EntryAddress());
}

void TodoListModelTest::theTopEntryDoneIsRemovedAndTheNewTopAnnounced()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 10}, {u"b"_s, 20}});
    desk.start();
    QSignalSpy jumps(desk.todos.get(), &TodoListModel::jumpToEntryInTodoList);
    desk.hierarchy.goTo(u"a"_s);
    desk.hierarchy.run(Command::MarkCurrentDone);
    QCOMPARE(desk.rows(), QStringList{u"0:b"_s});
    QCOMPARE(desk.stored(), QStringList{u"b=20"_s});
    QCOMPARE(jumps.count(), 1);
    QCOMPARE(jumps.first().first().value<EntryAddress>(), desk.addressOf(u"b"_s));
    desk.hierarchy.goTo(u"b"_s);
    desk.hierarchy.run(Command::MarkCurrentDone);
    QCOMPARE(desk.todos->rowCount(), 0);
    QCOMPARE(jumps.count(), 1);
}

void TodoListModelTest::theTopEntryWontDoIsRemovedWithoutAnnouncement()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 10}, {u"b"_s, 20}});
    desk.start();
    const QSignalSpy jumps(desk.todos.get(), &TodoListModel::jumpToEntryInTodoList);
    desk.hierarchy.goTo(u"a"_s);
    desk.hierarchy.run(Command::MarkCurrentWontDo);
    QCOMPARE(desk.rows(), QStringList{u"0:b"_s});
    QCOMPARE(jumps.count(), 0);
}

void TodoListModelTest::otherStateChanges_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<EntryState>("from");
    QTest::addColumn<EntryState>("to");
    QTest::addColumn<bool>("removed");
    QTest::newRow("another row done") << u"b"_s << EntryState::Todo << EntryState::Done << true;
    QTest::newRow("category") << u"a"_s << EntryState::Todo << EntryState::Category << true;
    QTest::newRow("to-do again") << u"a"_s << EntryState::Done << EntryState::Todo << false;
    QTest::newRow("to-do stays") << u"a"_s << EntryState::Todo << EntryState::Todo << false;
    QTest::newRow("category done") << u"a"_s << EntryState::Category << EntryState::Done << false;
    QTest::newRow("not listed") << u"c"_s << EntryState::Todo << EntryState::Done << false;
}

void TodoListModelTest::otherStateChanges()
{
    QFETCH(QString, text);
    QFETCH(EntryState, from);
    QFETCH(EntryState, to);
    QFETCH(bool, removed);
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 10}, {u"b"_s, 20}, {u"c"_s, unlisted}});
    desk.start();
    const QSignalSpy jumps(desk.todos.get(), &TodoListModel::jumpToEntryInTodoList);
    desk.todos->entryStateChanged(0, desk.idOf(text), from, to);
    QCOMPARE(desk.todos->rowCount(), removed ? 1 : 2);
    QCOMPARE(desk.rows().contains(u"0:"_s + text), !removed && text != u"c");
    QCOMPARE(jumps.count(), 0);
}

void TodoListModelTest::theAnnouncedAddressMixesTheDoneEntrysFileWithTheNewTop()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 10}});
    desk.addFile(u"two.bdl"_s, {{u"x"_s, unlisted}, {u"b"_s, 20}});
    desk.start();
    QSignalSpy jumps(desk.todos.get(), &TodoListModel::jumpToEntryInTodoList);
    desk.todos->entryStateChanged(0, desk.idOf(u"a"_s), EntryState::Todo, EntryState::Done);
    QCOMPARE(jumps.count(), 1);
    QCOMPARE(jumps.first().first().value<EntryAddress>(), (EntryAddress{0, desk.idOf(u"b"_s, 1)}));
}

void TodoListModelTest::aChangedTextIsShownShortened()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 10}, {u"b"_s, unlisted}});
    desk.start();
    QSignalSpy changes(desk.todos.get(), &QAbstractItemModel::dataChanged);
    desk.hierarchy.goTo(u"a"_s);
    desk.hierarchy.type(QString(61, u'w'));
    desk.hierarchy.run(Command::CommitEdit);
    QCOMPARE(changes.count(), 1);
    QCOMPARE(changes.first().first().toModelIndex().row(), 0);
    QCOMPARE(desk.todos->index(0).data().toString(),
             Global::truncateWithEllipsis(QString(61, u'w'), 60));
    QVERIFY(desk.todos->index(0).data().toString() != QString(61, u'w'));
    desk.todos->entryBodyChanged(0, desk.idOf(u"b"_s));
    QCOMPARE(changes.count(), 1);
}

void TodoListModelTest::aDeletedEntryLeavesTheList()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 10}, {u"b"_s, 20}, {u"c"_s, unlisted}});
    desk.start();
    desk.hierarchy.goTo(u"a"_s);
    desk.hierarchy.type(QString());
    desk.hierarchy.run(Command::GoToNext);
    QCOMPARE(desk.rows(), QStringList{u"0:b"_s});
    QCOMPARE(desk.stored(), QStringList{u"b=20"_s});
    desk.todos->entryDeleted(0, desk.idOf(u"c"_s));
    QCOMPARE(desk.rows(), QStringList{u"0:b"_s});
    QCOMPARE(desk.fileErrors(), 0);
}

void TodoListModelTest::deletingARowGivesTheRowThatTookItsPlace()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 10}, {u"b"_s, 20}, {u"c"_s, 30}});
    desk.start();
    const QModelIndex next = desk.todos->deleteItem(desk.todos->index(1));
    QCOMPARE(next.row(), 1);
    QCOMPARE(next.data().toString(), u"c"_s);
    QVERIFY(!desk.todos->deleteItem(next).isValid());
    QCOMPARE(desk.rows(), QStringList{u"0:a"_s});
    QCOMPARE(desk.stored(), QStringList{u"a=10"_s});
    QCOMPARE(desk.hierarchy.outline(), u"- a\n- b\n- c\n"_s);
    QVERIFY(!desk.todos->deleteItem(QModelIndex()).isValid());
    QCOMPARE(desk.todos->rowCount(), 1);
}

QTEST_MAIN(TodoListModelTest)
#include "TodoListModelTest.moc"
