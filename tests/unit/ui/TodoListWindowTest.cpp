// SPDX-License-Identifier: MIT
#include "unit/ui/UiDesk.h"

#include "shared/TextHelpers.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;

/// The to-do window with "a", "b", "c" of one file listed in this order.
class TodoWindowDesk : public UiDesk
{
public:
    explicit TodoWindowDesk(const QStringList &listed = {u"a"_s, u"b"_s, u"c"_s})
    {
        const qint64 root = addFile(u"one.bdl"_s);
        for (const QString &text : {u"a"_s, u"b"_s, u"c"_s})
            ids.append(addEntry(root, text, static_cast<int>(ids.size())));
        for (auto text = listed.rbegin(); text != listed.rend(); ++text)
            todos.addTodo(EntryAddress{0, idOf(*text)});
        show();
        goTo(root);
    }

    qint64 idOf(const QString &text) const { return ids.at(text.at(0).unicode() - u'a'); }
    QListView *view() const { return todoWindow->findChild<QListView *>(u"todoListView"_s); }
    void open()
    {
        todoWindow->showWindow();
        waitForList();
    }
    void waitForList()
    {
        if (!waitUntilActive(*todoWindow))
            qFatal("the to-do list does not become active");
    }
    bool mainWindowHasTheKeyboard() { return waitUntilActive(*window) && editor()->hasFocus(); }
    QString rows() const
    {
        QString texts;
        for (int row = 0; row < todos.rowCount(); ++row)
            texts += todos.index(row).data().toString();
        return texts;
    }
    QString selected() const
    {
        const QModelIndexList indexes = view()->selectionModel()->selectedIndexes();
        return indexes.size() == 1 ? indexes.first().data().toString()
                                   : QString::number(indexes.size()) + u" rows"_s;
    }
    void pressInList(int key, Qt::KeyboardModifiers modifiers = {})
    {
        pressIn(*todoWindow, key, modifiers);
    }
    void doubleClick(int row)
    {
        const QPoint where = view()->visualRect(todos.index(row)).center();
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, where);
        QTest::mouseDClick(view()->viewport(), Qt::LeftButton, {}, where);
    }

    QList<qint64> ids;
};
} // namespace

class TodoListWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void isASmallToolWindowOfItsOwn();
    void anEmptyListSelectsNothingAndRaisesNoError();
    void aTextOfSeveralLinesTakesOneRowsHeight();
    void showingSelectsTheFirstRow();
    void showingAgainKeepsTheSelection();
    void showingForAnEntrySelectsItsRowAndScrollsToIt();
    void theRowOfAnEntryIsScrolledToTheMiddle();
    void showingForAnEntryThatIsNotListedSelectsTheFirst();
    void deletingAMiddleRowSelectsTheOneThatMovedUp_data();
    void deletingAMiddleRowSelectsTheOneThatMovedUp();
    void deletingTheLastRowLeavesNoSelection();
    void enterJumpsHidesAndGivesTheKeyboardBack_data();
    void enterJumpsHidesAndGivesTheKeyboardBack();
    void doubleClickJumpsAndHides();
    void enterWithNoSelectedRowDoesNothing();
    void escapeHidesAndGivesTheKeyboardBack();
    void keysWithAModifierGoToTheList_data();
    void keysWithAModifierGoToTheList();
    void arrowsMoveTheSelection();
    void markingTheTopEntryDoneOpensTheListWithTheNewTopSelected();
    void addingShowsTheListWithTheEntrySelected();
    void hidesWithTheApplication();
    void aJumpToAMissingEntryHidesAllTheSame();
    void aRefusedJumpFlashesTheMainWindow();
    void rowsVanishWithTheirFile();
    void theSelectedRowOutlivesARebuiltList_data();
    void theSelectedRowOutlivesARebuiltList();
    void aDiscardThatTakesTheSelectedRowSelectsTheOneInItsPlace();
    void ofRowsWithTheSameTextTheSelectedOneStaysSelected();
    void rowsThatComeBackIntoAnEmptyListAreSelectedAgain();
};

void TodoListWindowTest::isASmallToolWindowOfItsOwn()
{
    TodoWindowDesk desk;
    QCOMPARE(desk.todoWindow->windowTitle(), u"To-do List"_s);
    QCOMPARE(desk.todoWindow->getWindowName(), u"TodoListWindow"_s);
    QCOMPARE(desk.todoWindow->windowType(), Qt::Tool);
    QVERIFY(!desk.todoWindow->parentWidget());
    QVERIFY(!desk.todoWindow->isModal());
    QVERIFY(!desk.todoWindow->isSizeGripEnabled());
    QCOMPARE(desk.todoWindow->minimumHeight(), 35);
    QCOMPARE(desk.todoWindow->layout()->contentsMargins(), QMargins(2, 2, 2, 2));
    QCOMPARE(desk.view()->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(desk.view()->dragDropMode(), QAbstractItemView::InternalMove);
    QVERIFY(desk.view()->dragEnabled());
    QVERIFY(desk.view()->acceptDrops());
    QVERIFY(desk.view()->showDropIndicator());
}

void TodoListWindowTest::anEmptyListSelectsNothingAndRaisesNoError()
{
    TodoWindowDesk desk{QStringList()};
    const LogLines log;
    desk.open();
    QCOMPARE(desk.selected(), u"0 rows"_s);
    for (const int key : {Qt::Key_Return, Qt::Key_Delete, Qt::Key_Down})
        desk.pressInList(key);
    QVERIFY(desk.todoWindow->isVisible());
    QCOMPARE(log.count(u"exception in "_s), 0);
}

void TodoListWindowTest::aTextOfSeveralLinesTakesOneRowsHeight()
{
    TodoWindowDesk desk;
    const qint64 root = desk.files.getFile(0)->getEntryId(-1, 0);
    const qint64 lines = desk.addEntry(root, u"one\u2028two\u2029three\nfour"_s, 3);
    desk.todos.addTodo(EntryAddress{0, lines});
    desk.open();
    QCOMPARE(desk.todos.index(0).data().toString(), u"one two three four"_s);
    QCOMPARE(desk.view()->sizeHintForRow(0), desk.view()->sizeHintForRow(1));
}

void TodoListWindowTest::showingSelectsTheFirstRow()
{
    TodoWindowDesk desk;
    desk.open();
    QCOMPARE(desk.selected(), u"a"_s);
    QVERIFY(desk.view()->hasFocus());
}

void TodoListWindowTest::showingAgainKeepsTheSelection()
{
    TodoWindowDesk desk;
    desk.open();
    desk.pressInList(Qt::Key_Down);
    desk.pressInList(Qt::Key_Escape);
    desk.open();
    QCOMPARE(desk.selected(), u"b"_s);
}

void TodoListWindowTest::showingForAnEntrySelectsItsRowAndScrollsToIt()
{
    TodoWindowDesk desk;
    const qint64 root = desk.files.getFile(0)->getEntryId(-1, 0);
    qint64 lowest = -1;
    for (int i = 0; i < 60; ++i) {
        const qint64 id = desk.addEntry(root, u"e%1"_s.arg(i), 10 + i);
        lowest = lowest == -1 ? id : lowest;
        desk.todos.addTodo(EntryAddress{0, id});
    }
    desk.todoWindow->resize(200, 120);
    desk.todoWindow->showWindow(EntryAddress{0, lowest});
    desk.waitForList();
    QCOMPARE(desk.selected(), u"e0"_s);
    QTRY_VERIFY(desk.view()->viewport()->rect().contains(
        desk.view()->visualRect(desk.view()->currentIndex()).center()));
}

void TodoListWindowTest::theRowOfAnEntryIsScrolledToTheMiddle()
{
    TodoWindowDesk desk;
    const qint64 root = desk.files.getFile(0)->getEntryId(-1, 0);
    QList<qint64> added;
    for (int i = 0; i < 60; ++i) {
        added << desk.addEntry(root, u"e%1"_s.arg(i), 10 + i);
        desk.todos.addTodo(EntryAddress{0, added.last()});
    }
    desk.todoWindow->resize(200, 220);
    desk.open();
    desk.todoWindow->showWindow(EntryAddress{0, added.at(30)});
    const QRect row = desk.view()->visualRect(desk.view()->currentIndex());
    const int middle = desk.view()->viewport()->rect().center().y();
    QVERIFY2(qAbs(row.center().y() - middle) <= row.height(),
             qPrintable(u"%1 of %2"_s.arg(row.center().y()).arg(middle)));
}

void TodoListWindowTest::showingForAnEntryThatIsNotListedSelectsTheFirst()
{
    TodoWindowDesk desk(QStringList{u"a"_s, u"b"_s});
    desk.todoWindow->showWindow(EntryAddress{0, desk.idOf(u"c"_s)});
    QCOMPARE(desk.selected(), u"a"_s);
    desk.todoWindow->showWindow(EntryAddress{7, 4711});
    QCOMPARE(desk.selected(), u"a"_s);
}

void TodoListWindowTest::deletingAMiddleRowSelectsTheOneThatMovedUp_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Delete") << int(Qt::Key_Delete);
    QTest::newRow("Backspace") << int(Qt::Key_Backspace);
}

void TodoListWindowTest::deletingAMiddleRowSelectsTheOneThatMovedUp()
{
    QFETCH(int, key);
    TodoWindowDesk desk;
    desk.open();
    desk.pressInList(Qt::Key_Down);
    desk.pressInList(key);
    QCOMPARE(desk.rows(), u"ac"_s);
    QCOMPARE(desk.selected(), u"c"_s);
    QCOMPARE(desk.storedBody(desk.idOf(u"b"_s)), u"b"_s);
}

void TodoListWindowTest::deletingTheLastRowLeavesNoSelection()
{
    TodoWindowDesk desk;
    desk.open();
    desk.pressInList(Qt::Key_Down);
    desk.pressInList(Qt::Key_Down);
    desk.pressInList(Qt::Key_Delete);
    QCOMPARE(desk.rows(), u"ab"_s);
    QCOMPARE(desk.selected(), u"0 rows"_s);
    desk.pressInList(Qt::Key_Delete);
    QCOMPARE(desk.rows(), u"ab"_s);
    desk.todoWindow->showWindow();
    QCOMPARE(desk.selected(), u"a"_s);
    desk.pressInList(Qt::Key_Delete);
    desk.pressInList(Qt::Key_Delete);
    QCOMPARE(desk.rows(), QString());
    QCOMPARE(desk.selected(), u"0 rows"_s);
}

void TodoListWindowTest::enterJumpsHidesAndGivesTheKeyboardBack_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Return") << int(Qt::Key_Return) << 0;
    QTest::newRow("Enter") << int(Qt::Key_Enter) << 0;
    QTest::newRow("Enter of the keypad") << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
}

void TodoListWindowTest::enterJumpsHidesAndGivesTheKeyboardBack()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    TodoWindowDesk desk;
    QSignalSpy jumps(desk.todoWindow.get(), &TodoListWindow::jumpToEntryInHierarchy);
    desk.open();
    desk.pressInList(Qt::Key_Down);
    desk.pressInList(key, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(jumps.count(), 1);
    QCOMPARE(jumps.first().first().value<EntryAddress>(), (EntryAddress{0, desk.idOf(u"b"_s)}));
    QVERIFY(!desk.todoWindow->isVisible());
    QCOMPARE(desk.editor()->toPlainText(), u"b"_s);
    QVERIFY(desk.mainWindowHasTheKeyboard());
    QCOMPARE(desk.rows(), u"abc"_s);
}

void TodoListWindowTest::doubleClickJumpsAndHides()
{
    TodoWindowDesk desk;
    desk.open();
    desk.doubleClick(2);
    QVERIFY(!desk.todoWindow->isVisible());
    QCOMPARE(desk.editor()->toPlainText(), u"c"_s);
}

void TodoListWindowTest::enterWithNoSelectedRowDoesNothing()
{
    TodoWindowDesk desk;
    const QSignalSpy jumps(desk.todoWindow.get(), &TodoListWindow::jumpToEntryInHierarchy);
    desk.open();
    desk.view()->clearSelection();
    desk.pressInList(Qt::Key_Return);
    desk.pressInList(Qt::Key_Delete);
    QCOMPARE(jumps.count(), 0);
    QVERIFY(desk.todoWindow->isVisible());
    QCOMPARE(desk.rows(), u"abc"_s);
}

void TodoListWindowTest::escapeHidesAndGivesTheKeyboardBack()
{
    TodoWindowDesk desk;
    desk.open();
    const QSignalSpy hidings(desk.todoWindow.get(), &AbstractWindow::hiding);
    desk.pressInList(Qt::Key_Escape);
    QVERIFY(!desk.todoWindow->isVisible());
    QCOMPARE(hidings.count(), 1);
    QVERIFY(desk.mainWindowHasTheKeyboard());
    QVERIFY(desk.activation.isAppActive());
}

void TodoListWindowTest::keysWithAModifierGoToTheList_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Shift+Delete") << int(Qt::Key_Delete) << int(Qt::ShiftModifier);
    QTest::newRow("Ctrl+Backspace") << int(Qt::Key_Backspace) << int(Qt::ControlModifier);
    QTest::newRow("Alt+Return") << int(Qt::Key_Return) << int(Qt::AltModifier);
    QTest::newRow("Ctrl+Enter") << int(Qt::Key_Enter) << int(Qt::ControlModifier);
    QTest::newRow("Shift+Enter of the keypad")
        << int(Qt::Key_Enter) << int(Qt::ShiftModifier | Qt::KeypadModifier);
}

void TodoListWindowTest::keysWithAModifierGoToTheList()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    TodoWindowDesk desk;
    desk.open();
    desk.pressInList(key, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(desk.rows(), u"abc"_s);
    QVERIFY(desk.todoWindow->isVisible());
}

void TodoListWindowTest::arrowsMoveTheSelection()
{
    TodoWindowDesk desk;
    desk.open();
    desk.pressInList(Qt::Key_Down);
    QCOMPARE(desk.selected(), u"b"_s);
    desk.pressInList(Qt::Key_End);
    QCOMPARE(desk.selected(), u"c"_s);
    desk.pressInList(Qt::Key_Up);
    QCOMPARE(desk.selected(), u"b"_s);
}

void TodoListWindowTest::markingTheTopEntryDoneOpensTheListWithTheNewTopSelected()
{
    TodoWindowDesk desk;
    // Another row was selected when the list was last seen.
    desk.open();
    desk.pressInList(Qt::Key_End);
    QCOMPARE(desk.selected(), u"c"_s);
    desk.pressInList(Qt::Key_Escape);
    QVERIFY(desk.mainWindowHasTheKeyboard());
    desk.goTo(desk.idOf(u"a"_s));
    desk.press(Qt::Key_D, ctrl);
    QCOMPARE(desk.rows(), u"bc"_s);
    QVERIFY(desk.todoWindow->isVisible());
    QCOMPARE(desk.selected(), u"b"_s);
    desk.waitForList();
    QVERIFY(desk.view()->hasFocus());
}

void TodoListWindowTest::addingShowsTheListWithTheEntrySelected()
{
    TodoWindowDesk desk(QStringList{u"a"_s});
    desk.open();
    desk.pressInList(Qt::Key_Escape);
    QVERIFY(desk.mainWindowHasTheKeyboard());
    desk.goTo(desk.idOf(u"c"_s));
    desk.press(Qt::Key_Equal, ctrl);
    QCOMPARE(desk.rows(), u"ca"_s);
    QVERIFY(desk.todoWindow->isVisible());
    QCOMPARE(desk.selected(), u"c"_s);
}

void TodoListWindowTest::hidesWithTheApplication()
{
    TodoWindowDesk desk;
    desk.open();
    desk.activation.deactivateApp();
    QVERIFY(!desk.todoWindow->isVisible());
    QVERIFY(!desk.window->isVisible());
    desk.show();
    QVERIFY(!desk.todoWindow->isVisible());
}

void TodoListWindowTest::aJumpToAMissingEntryHidesAllTheSame()
{
    TodoWindowDesk desk;
    desk.open();
    QObject context;
    QObject::connect(desk.todoWindow.get(), &TodoListWindow::jumpToEntryInHierarchy, &context,
                     []() -> void { throw "bad"; });
    const LogLines log;
    desk.pressInList(Qt::Key_Return);
    QCOMPARE(log.count(u"exception in jumpToEntryInHierarchy: bad"_s), 1);
    QVERIFY(!desk.todoWindow->isVisible());
}

// The list hides at once, so it can't show it.
void TodoListWindowTest::aRefusedJumpFlashesTheMainWindow()
{
    TodoWindowDesk desk;
    desk.editor()->selectAll();
    desk.press(Qt::Key_Delete); // a file's entry can't be empty
    desk.open();
    desk.pressInList(Qt::Key_Return);
    QVERIFY(!desk.todoWindow->isVisible());
    QVERIFY(desk.flashing());
}

void TodoListWindowTest::rowsVanishWithTheirFile()
{
    TodoWindowDesk desk;
    const qint64 root = desk.addFile(u"two.bdl"_s);
    const qint64 other = desk.addEntry(root, u"x"_s, 0, EntryState::Todo, 1);
    desk.todos.addTodo(EntryAddress{1, other});
    desk.open();
    QCOMPARE(desk.selected(), u"x"_s);
    desk.files.unloadFile(0, true);
    QCOMPARE(desk.rows(), u"x"_s);
    desk.todoWindow->showWindow();
    desk.pressInList(Qt::Key_Return);
    QCOMPARE(desk.editor()->toPlainText(), u"x"_s);
}

void TodoListWindowTest::theSelectedRowOutlivesARebuiltList_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"discard", "open", "close", "move"})
        QTest::newRow(how) << QString::fromLatin1(how);
}

void TodoListWindowTest::theSelectedRowOutlivesARebuiltList()
{
    QFETCH(QString, how);
    TodoWindowDesk desk;
    const qint64 otherRoot = desk.addFile(u"other.bdl"_s);
    desk.todos.addTodo({1, desk.addEntry(otherRoot, u"other"_s, 0, EntryState::Todo, 1)});
    desk.files.commitAndRestartTransactions();
    desk.open();
    desk.todoWindow->showWindow({0, desk.idOf(u"b"_s)});
    QCOMPARE(desk.selected(), u"b"_s);
    if (how == u"discard")
        desk.files.rollbackAndRestartTransactions();
    else if (how == u"open")
        desk.files.openFile(desk.settings.filePath(u"new.bdl"_s), 0);
    else if (how == u"close")
        desk.files.unloadFile(1, true);
    else
        desk.files.reorderFile(0, 1);
    QCOMPARE(desk.selected(), u"b"_s);
    QVERIFY(desk.todoWindow->isVisible());
    desk.todoWindow->activateWindow();
    desk.waitForList();
    desk.pressInList(Qt::Key_Return);
    QCOMPARE(desk.model.getBody(), u"b"_s);
    QVERIFY(!desk.todoWindow->isVisible());
}

void TodoListWindowTest::aDiscardThatTakesTheSelectedRowSelectsTheOneInItsPlace()
{
    TodoWindowDesk desk;
    desk.files.commitAndRestartTransactions();
    const qint64 added = desk.addEntry(desk.files.getFile(0)->getEntryId(-1, 0), u"new"_s, 3);
    desk.todos.addTodo({0, added});
    desk.open();
    desk.todoWindow->showWindow({0, added});
    QCOMPARE(desk.selected(), u"new"_s);
    desk.files.rollbackAndRestartTransactions();
    QCOMPARE(desk.selected(), u"a"_s);
}

void TodoListWindowTest::ofRowsWithTheSameTextTheSelectedOneStaysSelected()
{
    TodoWindowDesk desk{QStringList()};
    const qint64 otherRoot = desk.addFile(u"other.bdl"_s);
    const qint64 twin = desk.addEntry(otherRoot, u"b"_s, 0, EntryState::Todo, 1);
    for (const EntryAddress &address : {EntryAddress{0, desk.idOf(u"b"_s)},
                                        {0, desk.idOf(u"a"_s)},
                                        {1, twin},
                                        {0, desk.idOf(u"c"_s)}})
        desk.todos.addTodo(address);
    QCOMPARE(desk.rows(), u"cbab"_s);
    desk.open();
    desk.todoWindow->showWindow({0, desk.idOf(u"b"_s)});
    desk.files.unloadFile(1, true);
    QCOMPARE(desk.rows(), u"cab"_s);
    QCOMPARE(desk.view()->currentIndex().row(), 2);
    desk.files.openFile(desk.settings.filePath(u"new.bdl"_s), 0);
    QCOMPARE(desk.view()->currentIndex().row(), 2);
}

void TodoListWindowTest::rowsThatComeBackIntoAnEmptyListAreSelectedAgain()
{
    TodoWindowDesk desk;
    QTest::failOnWarning(QRegularExpression(u"QModelIndex"_s));
    desk.files.commitAndRestartTransactions();
    desk.open();
    for (int row = 0; row < 3; ++row) {
        desk.view()->setCurrentIndex(desk.todos.index(desk.todos.rowCount() - 1));
        desk.pressInList(Qt::Key_Delete);
    }
    QCOMPARE(desk.rows(), QString());
    desk.files.rollbackAndRestartTransactions();
    QCOMPARE(desk.rows(), u"abc"_s);
    QCOMPARE(desk.selected(), u"a"_s);
}

QTEST_MAIN(TodoListWindowTest)
#include "TodoListWindowTest.moc"
