// SPDX-License-Identifier: MIT
#include "unit/ui/UiDesk.h"

#include "shared/TextHelpers.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;

/// The find window on a file with "word one", "word two", "word three" and a long text.
class FindDesk : public UiDesk
{
public:
    FindDesk() = default;
    explicit FindDesk(const QString &name) { addWords(name); }

    qint64 addWords(const QString &name, const QString &word = u"word"_s)
    {
        const int file = files.getFileCount();
        const qint64 root = addFile(name);
        int sequence = 0;
        for (const QString &text : {u"one"_s, u"two"_s, u"three"_s})
            addEntry(root, word + u' ' + text, sequence++, EntryState::Todo, file);
        return root;
    }

    QLineEdit *query() const { return findWindow->findChild<QLineEdit *>(u"queryLine"_s); }
    QListWidget *list() const { return findWindow->findChild<QListWidget *>(u"resultsList"_s); }
    QComboBox *menu() const { return findWindow->findChild<QComboBox *>(u"fileMenu"_s); }
    bool fileRowShown() const { return !menu()->parentWidget()->isHidden(); }

    void open()
    {
        if (!activation.isAppActive())
            show();
        findWindow->activateAndSelectQuery();
        if (!waitUntilActive(*findWindow))
            qFatal("the find window does not become active");
        if (!m_beeps)
            m_beeps = new RefusalCounter(findWindow.get());
    }
    /// Opens the window and types \a text over what was there.
    void find(const QString &text)
    {
        open();
        for (const QChar character : text)
            QTest::sendKeyEvent(QTest::Click, findWindow->windowHandle(), Qt::Key_unknown,
                                character, Qt::NoModifier);
    }
    void pressInFind(int key, Qt::KeyboardModifiers modifiers = {})
    {
        pressIn(*findWindow, key, modifiers);
    }
    void chooseFile(int index)
    {
        menu()->setCurrentIndex(index);
        emit menu()->activated(index);
    }
    QStringList results() const
    {
        QStringList texts;
        for (int row = 0; row < list()->count(); ++row)
            texts += list()->item(row)->text();
        return texts;
    }
    QStringList selected() const
    {
        QStringList texts;
        for (const QListWidgetItem *item : list()->selectedItems())
            texts += item->text();
        return texts;
    }
    /// Lets the store fail; the file is closed by the event loop.
    bool breakFile(int index)
    {
        try {
            files.getFile(index)->throwFileExceptionAndEmit(u"testing"_s);
        } catch (const DiskStore::FileException &) {
            return true;
        }
        return false;
    }
    int takeBeeps() { return m_beeps->take(); }

private:
    QPointer<RefusalCounter> m_beeps; ///< Owned by the window.
};

QStringList queryError()
{
    return {u"there is an error in your query"_s};
}
} // namespace

class FindWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void isASmallToolWindowWithTheKeyboardInTheQuery();
    void withNoFileTheRowIsHiddenTheMenuEmptyAndNothingFound();
    void resultsComeWhileTyping();
    void theLastWordIsFoundByItsBeginning();
    void aLongResultIsShortenedWithAnEllipsis();
    void whatTheGuideSaysAboutLettersHolds();
    void aResultOfSeveralLinesIsShownOnOne();
    void whileItIsHiddenAChangeOfARootSearchesNothing();
    void theSecondFileShowsTheFileRow();
    void theChoiceStaysWithTheFile_data();
    void theChoiceStaysWithTheFile();
    void whenTheLastFileOfTheMenuWasChosenAndClosesTheNewLastIsChosen();
    void searchesTheChosenFileOnly();
    void theMenuShowsARenamedRoot();
    void aMalformedQueryShowsOneGreyRow_data();
    void aMalformedQueryShowsOneGreyRow();
    void afterAMalformedQueryResultsCanBeSelectedAgain();
    void upAndDownAtTheEndsBeepAndKeepTheSelection();
    void upAndDownWithoutResultsDoNothing();
    void enterJumpsHidesAndGivesTheKeyboardBack_data();
    void enterJumpsHidesAndGivesTheKeyboardBack();
    void enterWithoutResultsBeeps();
    void keysWithAModifierEditTheQuery();
    void doubleClickJumpsButNotOnTheErrorRow();
    void comingBackSelectsTheQueryAndSearchesAgain();
    void escapeHidesAndGivesTheKeyboardBack();
    void hidesWithTheApplication();
    void resultsVanishWithTheirEntry();
    void resultsVanishWithDiscardedChanges();
    void aFailingFileDoesNotKeepOthersFromTheDiscard();
    void aFailingFileLeavesTheOthersInTheMenu();
    void aFileThatFailedIsClosedAndItsResultsVanish();
};

void FindWindowTest::isASmallToolWindowWithTheKeyboardInTheQuery()
{
    FindDesk desk(u"one.bdl"_s);
    desk.open();
    QCOMPARE(desk.findWindow->windowTitle(), u"Find"_s);
    QCOMPARE(desk.findWindow->getWindowName(), u"FindWindow"_s);
    QCOMPARE(desk.findWindow->windowType(), Qt::Tool);
    QVERIFY(!desk.findWindow->isModal());
    QCOMPARE(desk.findWindow->minimumHeight(), 35);
    QCOMPARE(desk.findWindow->layout()->contentsMargins(), QMargins(10, 10, 10, 10));
    const QLayout *fileRow = desk.findWindow->layout()->itemAt(0)->widget()->layout();
    QCOMPARE(fileRow->contentsMargins(), QMargins());
    QCOMPARE(fileRow->spacing(), 5);
    QCOMPARE(fileRow->itemAt(2)->expandingDirections(), Qt::Horizontal);
    QCOMPARE(desk.menu()->focusPolicy(), Qt::NoFocus);
    QCOMPARE(desk.list()->focusPolicy(), Qt::NoFocus);
    QVERIFY(desk.query()->hasFocus());
    desk.pressInFind(Qt::Key_Tab);
    QVERIFY(desk.query()->hasFocus());
}

void FindWindowTest::withNoFileTheRowIsHiddenTheMenuEmptyAndNothingFound()
{
    FindDesk desk;
    desk.find(u"word"_s);
    QVERIFY(!desk.fileRowShown());
    QCOMPARE(desk.menu()->count(), 0);
    QCOMPARE(desk.results(), QStringList());
    desk.find(u"\""_s);
    QCOMPARE(desk.results(), QStringList());
    desk.pressInFind(Qt::Key_Return);
    QCOMPARE(desk.takeBeeps(), 1);
}

void FindWindowTest::resultsComeWhileTyping()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"w"_s);
    QCOMPARE(desk.results(), (QStringList{u"{word} one"_s, u"{word} two"_s, u"{word} three"_s}));
    QCOMPARE(desk.selected(), QStringList{u"{word} one"_s});
    desk.find(u"word t"_s);
    QCOMPARE(desk.results(), (QStringList{u"{word} {two}"_s, u"{word} {three}"_s}));
    desk.find(u"word th"_s);
    QCOMPARE(desk.results(), QStringList{u"{word} {three}"_s});
    desk.query()->clear();
    QCOMPARE(desk.results(), QStringList());
    QVERIFY(!desk.fileRowShown());
}

void FindWindowTest::theLastWordIsFoundByItsBeginning()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"tw"_s);
    QCOMPARE(desk.results(), QStringList{u"word {two}"_s});
    desk.find(u"TW"_s);
    QCOMPARE(desk.results(), QStringList());
    desk.find(u"tw word"_s);
    QCOMPARE(desk.results(), QStringList());
}

// Each search goes through the whole text of a file, and roots change while one types.
void FindWindowTest::whileItIsHiddenAChangeOfARootSearchesNothing()
{
    FindDesk desk;
    const qint64 root = desk.addFile(u"one.bdl"_s);
    desk.addEntry(root, u"word one"_s, 0);
    desk.find(u"word"_s);
    const QStringList before = desk.results();
    QCOMPARE(before.size(), 1);
    desk.findWindow->hide();
    desk.addEntry(root, u"word two"_s, 1);
    emit desk.files.fileRootBodyChanged();
    QCOMPARE(desk.results(), before);
    desk.findWindow->activateAndSelectQuery();
    QCOMPARE(desk.results().size(), 2);
}

void FindWindowTest::whatTheGuideSaysAboutLettersHolds()
{
    QFile guide(u":/help/main.html"_s);
    QVERIFY(guide.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(guide.readAll()).simplified();
    QVERIFY(text.contains(u"“pot” and “Pot” find “Potatoes”"_s));
    QVERIFY(text.contains(u"“POT” finds “pot”, but not “Potatoes”"_s));
    FindDesk desk;
    const qint64 root = desk.addFile(u"one.bdl"_s);
    desk.addEntry(root, u"Potatoes"_s, 0);
    for (const QString &query : {u"pot"_s, u"Pot"_s}) {
        desk.find(query);
        QCOMPARE(desk.results(), QStringList{u"{Potatoes}"_s});
    }
    desk.addEntry(root, u"pot"_s, 1);
    desk.find(u"POT"_s);
    QCOMPARE(desk.results(), QStringList{u"{pot}"_s});
}

void FindWindowTest::aResultOfSeveralLinesIsShownOnOne()
{
    FindDesk desk;
    const qint64 root = desk.addFile(u"one.bdl"_s);
    desk.addEntry(root, u"word one\u2028two\u2029three\nfour"_s, 0);
    desk.find(u"word"_s);
    QCOMPARE(desk.results(), QStringList{u"{word} one two three four"_s});
}

void FindWindowTest::aLongResultIsShortenedWithAnEllipsis()
{
    FindDesk desk;
    const qint64 root = desk.addFile(u"one.bdl"_s);
    desk.addEntry(root, QString(100, u'x'), 0);
    desk.find(u"xx"_s);
    const QString whole = u'{' + QString(100, u'x') + u'}';
    QCOMPARE(desk.results(), QStringList{Global::truncateWithEllipsis(whole, 80)});
    QVERIFY(desk.results().first().size() < whole.size());
    QVERIFY(desk.results().first().startsWith(u"{xxx"_s));
}

void FindWindowTest::theSecondFileShowsTheFileRow()
{
    FindDesk desk(u"one.bdl"_s);
    desk.open();
    QVERIFY(!desk.fileRowShown());
    desk.addWords(u"two.bdl"_s);
    QVERIFY(desk.fileRowShown());
    QCOMPARE(desk.menu()->currentIndex(), 0);
    QCOMPARE(desk.menu()->itemText(1), desk.files.getFile(1)->getRootExcerpt());
    desk.files.unloadFile(1, true);
    QVERIFY(!desk.fileRowShown());
    QCOMPARE(desk.menu()->count(), 1);
    // It says what the menu is for.
    const QLabel *label = desk.menu()->parentWidget()->findChild<QLabel *>();
    QVERIFY(label);
    QCOMPARE(label->text(), u"File:"_s);
    QVERIFY(label->geometry().right() < desk.menu()->geometry().left());
}

void FindWindowTest::theChoiceStaysWithTheFile_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<int>("chosen");
    QTest::newRow("another before it") << u"load 0"_s << 2;
    QTest::newRow("another after it") << u"load 3"_s << 1;
    QTest::newRow("the one before it closed") << u"unload 0"_s << 0;
    QTest::newRow("the one after it closed") << u"unload 2"_s << 1;
    QTest::newRow("moved to the front") << u"move 1 0"_s << 0;
    QTest::newRow("moved to the end") << u"move 1 2"_s << 2;
    QTest::newRow("others moved around it") << u"move 0 2"_s << 0;
}

void FindWindowTest::theChoiceStaysWithTheFile()
{
    QFETCH(QString, change);
    QFETCH(int, chosen);
    FindDesk desk(u"one.bdl"_s);
    desk.addWords(u"two.bdl"_s, u"other"_s);
    desk.addWords(u"three.bdl"_s);
    desk.find(u"other"_s);
    desk.chooseFile(1);
    QCOMPARE(desk.results().size(), 3);
    DiskStore *file = desk.files.getFile(1);
    const QStringList words = change.split(u' ');
    if (words[0] == u"load")
        desk.files.openFile(desk.settings.filePath(u"new.bdl"_s), words[1].toInt());
    else if (words[0] == u"unload")
        desk.files.unloadFile(words[1].toInt(), true);
    else
        desk.files.reorderFile(words[1].toInt(), words[2].toInt());
    QCOMPARE(desk.menu()->currentIndex(), chosen);
    QCOMPARE(desk.files.getFile(chosen), file);
    QCOMPARE(desk.menu()->currentText(), file->getRootExcerpt());
    QCOMPARE(desk.results().size(), 3);
    const QSignalSpy jumps(desk.findWindow.get(), &FindWindow::jumpToEntryInHierarchy);
    desk.pressInFind(Qt::Key_Return);
    QCOMPARE(jumps.count(), 1);
    QCOMPARE(desk.editor()->toPlainText(), u"other one"_s);
}

void FindWindowTest::whenTheLastFileOfTheMenuWasChosenAndClosesTheNewLastIsChosen()
{
    FindDesk desk(u"one.bdl"_s);
    desk.addWords(u"two.bdl"_s);
    desk.addWords(u"three.bdl"_s);
    desk.open();
    desk.chooseFile(2);
    desk.files.unloadFile(2, true);
    QCOMPARE(desk.menu()->currentIndex(), 1);
    desk.files.unloadFile(1, true);
    desk.files.unloadFile(0, true);
    QCOMPARE(desk.menu()->currentIndex(), -1);
    QCOMPARE(desk.menu()->count(), 0);
}

void FindWindowTest::searchesTheChosenFileOnly()
{
    FindDesk desk(u"one.bdl"_s);
    desk.addWords(u"two.bdl"_s, u"other"_s);
    desk.find(u"other"_s);
    QCOMPARE(desk.results(), QStringList());
    desk.chooseFile(1);
    QCOMPARE(desk.results().size(), 3);
    desk.chooseFile(0);
    QCOMPARE(desk.results(), QStringList());
}

void FindWindowTest::theMenuShowsARenamedRoot()
{
    FindDesk desk(u"one.bdl"_s);
    const qint64 root = desk.addWords(u"two.bdl"_s);
    desk.open();
    desk.chooseFile(1);
    desk.files.getFile(1)->updateEntryBody(root, u"renamed"_s, true);
    QCOMPARE(desk.menu()->itemText(1), desk.files.getFile(1)->getRootExcerpt());
    QVERIFY(desk.menu()->itemText(1).startsWith(u"renamed"_s));
    QCOMPARE(desk.menu()->currentIndex(), 1);
}

void FindWindowTest::aMalformedQueryShowsOneGreyRow_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("unbalanced quote") << u"\"word"_s;
    QTest::newRow("lone quote") << u"\""_s;
    QTest::newRow("lone operator") << u"AND"_s;
    QTest::newRow("open bracket") << u"(word"_s;
    QTest::newRow("operator at the end") << u"word OR"_s;
    QTest::newRow("lone NEAR") << u"NEAR/3"_s;
}

void FindWindowTest::aMalformedQueryShowsOneGreyRow()
{
    QFETCH(QString, text);
    FindDesk desk(u"one.bdl"_s);
    const QSignalSpy jumps(desk.findWindow.get(), &FindWindow::jumpToEntryInHierarchy);
    desk.find(text);
    QCOMPARE(desk.results(), queryError());
    QListWidgetItem *row = desk.list()->item(0);
    QCOMPARE(row->foreground().color(), QColor(u"darkgray"_s));
    QCOMPARE(desk.list()->selectionMode(), QAbstractItemView::NoSelection);
    QTest::mouseClick(desk.list()->viewport(), Qt::LeftButton, {},
                      desk.list()->visualItemRect(row).center());
    QCOMPARE(desk.selected(), QStringList());
    desk.pressInFind(Qt::Key_Down);
    desk.pressInFind(Qt::Key_Up);
    QCOMPARE(desk.takeBeeps(), 0);
    desk.pressInFind(Qt::Key_Return);
    QCOMPARE(desk.takeBeeps(), 1);
    desk.findWindow->jumpToEntryInHierarchyAndHide(row);
    QCOMPARE(jumps.count(), 0);
    QVERIFY(desk.findWindow->isVisible());
    QCOMPARE(desk.files.getFileCount(), 1);
}

void FindWindowTest::afterAMalformedQueryResultsCanBeSelectedAgain()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"\"word"_s);
    QCOMPARE(desk.results(), queryError());
    desk.find(u"word"_s);
    QCOMPARE(desk.selected(), QStringList{u"{word} one"_s});
    desk.pressInFind(Qt::Key_Down);
    QCOMPARE(desk.selected(), QStringList{u"{word} two"_s});
}

void FindWindowTest::upAndDownAtTheEndsBeepAndKeepTheSelection()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"word"_s);
    desk.pressInFind(Qt::Key_Up);
    QCOMPARE(desk.takeBeeps(), 1);
    QCOMPARE(desk.selected(), QStringList{u"{word} one"_s});
    desk.pressInFind(Qt::Key_Down, Qt::KeypadModifier);
    desk.pressInFind(Qt::Key_Down);
    QCOMPARE(desk.takeBeeps(), 0);
    QCOMPARE(desk.selected(), QStringList{u"{word} three"_s});
    desk.pressInFind(Qt::Key_Down);
    QCOMPARE(desk.takeBeeps(), 1);
    QCOMPARE(desk.selected(), QStringList{u"{word} three"_s});
    desk.pressInFind(Qt::Key_Up);
    QCOMPARE(desk.selected(), QStringList{u"{word} two"_s});
    QCOMPARE(desk.query()->text(), u"word"_s);
}

void FindWindowTest::upAndDownWithoutResultsDoNothing()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"nowhere"_s);
    desk.pressInFind(Qt::Key_Up);
    desk.pressInFind(Qt::Key_Down);
    QCOMPARE(desk.takeBeeps(), 0);
}

void FindWindowTest::enterJumpsHidesAndGivesTheKeyboardBack_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Return") << int(Qt::Key_Return) << 0;
    QTest::newRow("Enter") << int(Qt::Key_Enter) << 0;
    QTest::newRow("Enter of the keypad") << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
}

void FindWindowTest::enterJumpsHidesAndGivesTheKeyboardBack()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"word"_s);
    desk.pressInFind(Qt::Key_Down);
    desk.pressInFind(key, Qt::KeyboardModifiers::fromInt(modifiers));
    QVERIFY(!desk.findWindow->isVisible());
    QCOMPARE(desk.editor()->toPlainText(), u"word two"_s);
    QVERIFY(waitUntilActive(*desk.window));
    QVERIFY(desk.editor()->hasFocus());
    QCOMPARE(desk.takeBeeps(), 0);
}

void FindWindowTest::enterWithoutResultsBeeps()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"nowhere"_s);
    desk.pressInFind(Qt::Key_Return);
    QCOMPARE(desk.takeBeeps(), 1);
    QVERIFY(desk.findWindow->isVisible());
}

void FindWindowTest::keysWithAModifierEditTheQuery()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"word"_s);
    desk.pressInFind(Qt::Key_Down, Qt::ShiftModifier);
    desk.pressInFind(Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(desk.selected(), QStringList{u"{word} one"_s});
    QVERIFY(desk.findWindow->isVisible());
    desk.pressInFind(Qt::Key_A, ctrl);
    desk.pressInFind(Qt::Key_Backspace);
    QCOMPARE(desk.query()->text(), QString());
    desk.find(u"word"_s);
    // The main window's bindings, which the line would take for its own.
    desk.pressInFind(Qt::Key_Home);
    desk.pressInFind(Qt::Key_K, ctrl);
    desk.pressInFind(Qt::Key_D, ctrl);
    QCOMPARE(desk.query()->text(), u"word"_s);
}

void FindWindowTest::doubleClickJumpsButNotOnTheErrorRow()
{
    FindDesk desk(u"one.bdl"_s);
    const auto doubleClick = [&desk](int row) {
        const QPoint where = desk.list()->visualItemRect(desk.list()->item(row)).center();
        QTest::mouseClick(desk.list()->viewport(), Qt::LeftButton, {}, where);
        QTest::mouseDClick(desk.list()->viewport(), Qt::LeftButton, {}, where);
    };
    desk.find(u"(word"_s);
    doubleClick(0);
    QVERIFY(desk.findWindow->isVisible());
    desk.find(u"word"_s);
    doubleClick(2);
    QVERIFY(!desk.findWindow->isVisible());
    QCOMPARE(desk.editor()->toPlainText(), u"word three"_s);
}

void FindWindowTest::comingBackSelectsTheQueryAndSearchesAgain()
{
    FindDesk desk;
    const qint64 root = desk.addWords(u"one.bdl"_s);
    desk.find(u"word"_s);
    desk.pressInFind(Qt::Key_Escape);
    desk.addEntry(root, u"word four"_s, 3);
    desk.open();
    QCOMPARE(desk.results().size(), 4);
    QCOMPARE(desk.query()->selectedText(), u"word"_s);
    QVERIFY(desk.query()->hasFocus());
}

void FindWindowTest::escapeHidesAndGivesTheKeyboardBack()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"word"_s);
    const QSignalSpy hidings(desk.findWindow.get(), &AbstractWindow::hiding);
    desk.pressInFind(Qt::Key_Escape);
    QVERIFY(!desk.findWindow->isVisible());
    QCOMPARE(hidings.count(), 1);
    QVERIFY(waitUntilActive(*desk.window));
    QVERIFY(desk.editor()->hasFocus());
}

void FindWindowTest::hidesWithTheApplication()
{
    FindDesk desk(u"one.bdl"_s);
    desk.open();
    desk.activation.deactivateApp();
    QVERIFY(!desk.findWindow->isVisible());
    desk.show();
    QVERIFY(!desk.findWindow->isVisible());
}

void FindWindowTest::resultsVanishWithTheirEntry()
{
    FindDesk desk(u"one.bdl"_s);
    desk.find(u"two"_s);
    desk.pressInFind(Qt::Key_Return);
    desk.find(u"word"_s);
    QCOMPARE(desk.results().size(), 3);
    desk.window->activateWindow();
    QVERIFY(waitUntilActive(*desk.window));
    desk.editor()->clear();
    desk.press(Qt::Key_J, ctrl);
    QCOMPARE(desk.results(), (QStringList{u"{word} one"_s, u"{word} three"_s}));
}

void FindWindowTest::resultsVanishWithDiscardedChanges()
{
    FindDesk desk;
    const qint64 root = desk.addWords(u"one.bdl"_s);
    desk.files.commitAndRestartTransactions();
    desk.addEntry(root, u"word four"_s, 3);
    desk.find(u"word"_s);
    QCOMPARE(desk.results().size(), 4);
    desk.pressInFind(Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(desk.results().size(), 3);
}

void FindWindowTest::aFailingFileDoesNotKeepOthersFromTheDiscard()
{
    FindDesk desk(u"one.bdl"_s);
    const qint64 root = desk.addWords(u"two.bdl"_s);
    desk.files.commitAndRestartTransactions();
    const qint64 added = desk.addEntry(root, u"new"_s, 3, EntryState::Todo, 1);
    desk.todos.addTodo(EntryAddress{1, added});
    desk.find(u"word"_s);
    QVERIFY(desk.breakFile(0));
    try {
        desk.files.rollbackAndRestartTransactions();
    } catch (const DiskStore::FileException &) {
        QFAIL("the discard was cut short");
    }
    QCOMPARE(desk.todos.rowCount(), 0);
}

void FindWindowTest::aFailingFileLeavesTheOthersInTheMenu()
{
    FindDesk desk(u"one.bdl"_s);
    desk.addWords(u"two.bdl"_s);
    desk.addWords(u"three.bdl"_s);
    desk.find(u"word"_s);
    desk.chooseFile(2);
    QVERIFY(desk.breakFile(0));
    try {
        desk.findWindow->updateFileMenu();
    } catch (const DiskStore::FileException &) {
        QFAIL("one failing file stopped the menu");
    }
    QCOMPARE(desk.menu()->count(), 3);
    QCOMPARE(desk.menu()->currentIndex(), 2);
    QCOMPARE(desk.results().size(), 3);
}

void FindWindowTest::aFileThatFailedIsClosedAndItsResultsVanish()
{
    FindDesk desk(u"one.bdl"_s);
    desk.addWords(u"two.bdl"_s, u"other"_s);
    desk.find(u"word"_s);
    QCOMPARE(desk.results().size(), 3);
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &answer, [&answer] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        answer.stop();
        box->button(QMessageBox::Ok)->click();
    });
    answer.start(10);
    QVERIFY(desk.breakFile(0));
    QTRY_VERIFY(!answer.isActive());
    QCOMPARE(desk.files.getFileCount(), 1);
    QCOMPARE(desk.menu()->count(), 1);
    QCOMPARE(desk.results(), QStringList());
    desk.find(u"other"_s);
    QCOMPARE(desk.results().size(), 3);
}

QTEST_MAIN(FindWindowTest)
#include "FindWindowTest.moc"
