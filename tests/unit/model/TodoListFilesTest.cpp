// SPDX-License-Identifier: MIT
#include "unit/model/TodoDesk.h"

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace
{
constexpr int unlisted = TodoDesk::unlisted;
constexpr int largest = std::numeric_limits<int>::max();
using Numbers = std::vector<int>;
} // namespace

/// The to-do list while files come, go, move and fail.
class TodoListFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void loadingFilesWithClashingNumbersWritesNothing();
    void theFirstChangeWritesAllNumbersThatDiffer();
    void negativeAndLargestStoredNumbersAreTaken();
    void unloadingFile1Of3RemovesItsRowsAndFile2Becomes1();
    void loadingAFileInTheMiddleShiftsTheFilesBehind();
    void openingAFileInFrontShowsTheOrderOfTheNextStart();
    void movingFilesKeepsTheOrder_data();
    void movingFilesKeepsTheOrder();
    void closingAFileKeepsTheOrderOfTheOthersAfterRestart();
    void aRollbackRebuildsTheList();
    void aFailingFileKeepsTheOthersFromNothing();
    void aFileThatFailsInTheMiddleLosesNoNumberOfTheOthers();
    void aRollbackWithAFailingFileRebuildsTheOthers();
};

void TodoListFilesTest::loadingFilesWithClashingNumbersWritesNothing()
{
    TodoDesk desk;
    startThreeFiles(desk);
    QCOMPARE(desk.rows(), threeFilesInOrder());
    const Numbers numbers = desk.numbers();
    QVERIFY(std::adjacent_find(numbers.begin(), numbers.end(), std::greater_equal<>())
            == numbers.end());
    QCOMPARE(desk.stored(0), (QStringList{u"a1=100"_s, u"a2=200"_s}));
    QCOMPARE(desk.stored(1), (QStringList{u"b1=100"_s, u"b2=150"_s}));
    QCOMPARE(desk.stored(2), (QStringList{u"c1=120"_s, u"c2=200"_s}));
    desk.files().openFile(desk.makeFile(u"four.bdl"_s, {{u"d1"_s, 100}, {u"d2"_s, 120}}), 3);
    QCOMPARE(desk.todos->rowCount(), 8);
    QVERIFY(!desk.somethingWritten());
}

void TodoListFilesTest::theFirstChangeWritesAllNumbersThatDiffer()
{
    TodoDesk desk;
    startThreeFiles(desk);
    desk.todos->deleteItem(desk.todos->getIndexForEntry(2, desk.idOf(u"c1"_s, 2)));
    QCOMPARE(desk.rows(), (QStringList{u"1:b1"_s, u"0:a1"_s, u"1:b2"_s, u"2:c2"_s, u"0:a2"_s}));
    const Numbers numbers = desk.numbers();
    const auto expected = [&numbers](const QString &text, std::size_t row) {
        return u"%1=%2"_s.arg(text).arg(numbers[row]);
    };
    QCOMPARE(desk.stored(0), (QStringList{expected(u"a1"_s, 1), expected(u"a2"_s, 4)}));
    QCOMPARE(desk.stored(1), (QStringList{expected(u"b1"_s, 0), expected(u"b2"_s, 2)}));
    QCOMPARE(desk.stored(2), (QStringList{expected(u"c2"_s, 3)}));
}

void TodoListFilesTest::negativeAndLargestStoredNumbersAreTaken()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 0}, {u"b"_s, largest}});
    desk.addFile(u"two.bdl"_s, {{u"c"_s, 0}, {u"d"_s, largest}, {u"x"_s, unlisted}});
    const QString path = desk.makeFile(u"three.bdl"_s, {{u"n"_s, unlisted}, {u"m"_s, unlisted}});
    Outline::runOnDisk(path, {u"UPDATE entry SET todolistseq=-id WHERE parentid<>-1"_s});
    desk.start();
    desk.files().openFile(path, 2);
    QCOMPARE(desk.todos->rowCount(), 6);
    desk.todos->addTodo(desk.addressOf(u"x"_s, 1));
    const QStringList rows = desk.rows();
    const Numbers numbers = desk.numbers();
    QCOMPARE(rows.front(), u"1:x"_s);
    QVERIFY(numbers.front() >= 0);
    QVERIFY(std::adjacent_find(numbers.begin(), numbers.end(), std::greater_equal<>())
            == numbers.end());
    desk.files().commitAndRestartTransactions();
    desk.restart();
    QCOMPARE(desk.rows(), rows);
    QCOMPARE(desk.fileErrors(), 0);
}

void TodoListFilesTest::unloadingFile1Of3RemovesItsRowsAndFile2Becomes1()
{
    TodoDesk desk;
    startThreeFiles(desk);
    desk.files().unloadFile(1, true);
    QCOMPARE(desk.rows(), (QStringList{u"0:a1"_s, u"1:c1"_s, u"1:c2"_s, u"0:a2"_s}));
    desk.files().openFile(desk.hierarchy.filePath(u"two.bdl"_s), 2);
    QCOMPARE(desk.stored(2), (QStringList{u"b1=100"_s, u"b2=150"_s}));
    QCOMPARE(desk.todos->rowCount(), 6);
}

void TodoListFilesTest::loadingAFileInTheMiddleShiftsTheFilesBehind()
{
    TodoDesk desk;
    startThreeFiles(desk);
    desk.files().openFile(desk.makeFile(u"new.bdl"_s, {{u"n"_s, 130}}), 1);
    QCOMPARE(
        desk.rows(),
        (QStringList{u"2:b1"_s, u"0:a1"_s, u"3:c1"_s, u"1:n"_s, u"2:b2"_s, u"3:c2"_s, u"0:a2"_s}));
    QVERIFY(!desk.somethingWritten());
}

void TodoListFilesTest::openingAFileInFrontShowsTheOrderOfTheNextStart()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 5}});
    const QString path = desk.makeFile(u"two.bdl"_s, {{u"b"_s, 5}});
    desk.start();
    desk.files().openFile(path, 0);
    QVERIFY(!desk.somethingWritten());
    const QStringList rows = desk.rows();
    QCOMPARE(rows.size(), 2);
    desk.files().commitAndRestartTransactions();
    desk.restart();
    QCOMPARE(desk.rows(), rows);
}

void TodoListFilesTest::movingFilesKeepsTheOrder_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    for (int from = 0; from < 3; ++from) {
        for (int to = 0; to < 3; ++to)
            QTest::addRow("%d to %d", from, to) << from << to;
    }
}

void TodoListFilesTest::movingFilesKeepsTheOrder()
{
    QFETCH(int, from);
    QFETCH(int, to);
    TodoDesk desk;
    startThreeFiles(desk);
    QList<int> files{0, 1, 2};
    files.move(from, to);
    QStringList expected;
    for (const QString &row : threeFilesInOrder())
        expected += QString::number(files.indexOf(row.left(1).toInt())) + row.mid(1);
    desk.files().reorderFile(from, to);
    QCOMPARE(desk.rows(), expected);
    desk.files().commitAndRestartTransactions();
    desk.restart();
    QCOMPARE(desk.rows(), expected);
    QCOMPARE(desk.fileErrors(), 0);
}

void TodoListFilesTest::closingAFileKeepsTheOrderOfTheOthersAfterRestart()
{
    TodoDesk desk;
    desk.addFile(u"one.bdl"_s, {{u"a"_s, 5}});
    desk.addFile(u"two.bdl"_s, {{u"b"_s, 5}});
    desk.addFile(u"three.bdl"_s, {{u"c"_s, 4}});
    desk.start();
    // The second file's row made way for the first's, and so stands before the third's.
    QCOMPARE(desk.rows(), (QStringList{u"1:b"_s, u"2:c"_s, u"0:a"_s}));
    desk.files().unloadFile(0, true);
    QCOMPARE(desk.rows(), (QStringList{u"0:b"_s, u"1:c"_s}));
    desk.files().commitAndRestartTransactions();
    desk.restart();
    QCOMPARE(desk.rows(), (QStringList{u"0:b"_s, u"1:c"_s}));
}

void TodoListFilesTest::aRollbackRebuildsTheList()
{
    TodoDesk desk;
    startThreeFiles(desk);
    desk.todos->addTodo(desk.addressOf(u"c3"_s, 2));
    desk.todos->deleteItem(desk.todos->index(2));
    desk.drop(0, 4);
    desk.files().rollbackAndRestartTransactions();
    QCOMPARE(desk.rows(), threeFilesInOrder());
    QVERIFY(!desk.somethingWritten());
    desk.drop(0, 6);
    QCOMPARE(desk.rows(), threeFilesInOrder().mid(1) << threeFilesInOrder().first());
    QCOMPARE(desk.fileErrors(), 0);
}

void TodoListFilesTest::aFailingFileKeepsTheOthersFromNothing()
{
    TodoDesk desk;
    startThreeFiles(desk);
    BoxReader boxes;
    desk.breakWriting(1);
    // The second file's numbers differ from the list's, so this change writes there, too.
    QCOMPARE(thrownBy([&] { desk.todos->addTodo(desk.addressOf(u"a3"_s)); }),
             QByteArray("nothing"));
    QCOMPARE(desk.fileErrors(), 1);
    QTRY_COMPARE(desk.files().getFileCount(), 2);
    QCOMPARE(desk.rows(), (QStringList{u"0:a3"_s, u"0:a1"_s, u"1:c1"_s, u"1:c2"_s, u"0:a2"_s}));
    QTRY_COMPARE(boxes.texts().size(), 1);
    const QStringList rows = desk.rows();
    desk.files().commitAndRestartTransactions();
    desk.restart();
    QCOMPARE(desk.rows(), rows);
}

void TodoListFilesTest::aFileThatFailsInTheMiddleLosesNoNumberOfTheOthers()
{
    TodoDesk desk;
    startThreeFiles(desk);
    BoxReader boxes;
    desk.breakWriting(2);
    // A drop tells nobody of the error, and the user saves without another change.
    desk.drop(1, 0);
    QCOMPARE(desk.stored(0).size(), 2);
    QCOMPARE(desk.stored(1).size(), 2);
    QTRY_COMPARE(desk.files().getFileCount(), 2);
    QTRY_COMPARE(boxes.texts().size(), 1);
    const QStringList rows = desk.rows();
    QCOMPARE(rows, (QStringList{u"0:a1"_s, u"1:b1"_s, u"1:b2"_s, u"0:a2"_s}));
    desk.files().commitAndRestartTransactions();
    desk.restart();
    QCOMPARE(desk.rows(), rows);
}

void TodoListFilesTest::aRollbackWithAFailingFileRebuildsTheOthers()
{
    TodoDesk desk;
    startThreeFiles(desk);
    BoxReader boxes;
    desk.todos->addTodo(desk.addressOf(u"a3"_s));
    QVERIFY(thrownBy([&] {
                desk.hierarchy.store(1).throwFileExceptionAndEmit(u"testing"_s);
            }).startsWith("a file error"));
    desk.files().rollbackAndRestartTransactions();
    QVERIFY(!desk.rows().contains(u"0:a3"_s));
    QTRY_COMPARE(desk.files().getFileCount(), 2);
    QTRY_COMPARE(boxes.texts().size(), 1);
    QCOMPARE(desk.rows(), (QStringList{u"0:a1"_s, u"1:c1"_s, u"1:c2"_s, u"0:a2"_s}));
}

QTEST_MAIN(TodoListFilesTest)
#include "TodoListFilesTest.moc"
