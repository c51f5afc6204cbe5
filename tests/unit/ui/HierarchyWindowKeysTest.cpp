// SPDX-License-Identifier: MIT
#include "unit/ui/UiDesk.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers ctrlShift = Qt::ControlModifier | Qt::ShiftModifier;

/// A file whose root has the children "first", "second" and "third"; "first" is current.
struct Outline : UiDesk {
    Outline()
    {
        root = addFile(u"outline.bdl"_s);
        first = addEntry(root, u"first"_s, 0);
        second = addEntry(root, u"second"_s, 1);
        third = addEntry(root, u"third"_s, 2);
        files.commitAndRestartTransactions();
        show();
        goTo(first);
        refusals->take();
    }

    bool isBound(int key) const { return model.isShortcutRegistered(key, false); }
    bool registering() const { return window->isRegisteringShortcut(); }
    QString border() const
    {
        return child<QLabel>("shortcutKeyLabel")->property("regshortcutkey").toString();
    }

    qint64 root = -1;
    qint64 first = -1;
    qint64 second = -1;
    qint64 third = -1;
};
} // namespace

class HierarchyWindowKeysTest : public QObject
{
    Q_OBJECT

private slots:
    void commandsReachTheModelAndTheEditorKeepsTheKeyboard();
    void everyWindowCommandIsReachedByItsCombination_data();
    void everyWindowCommandIsReachedByItsCombination();
    void shiftedSymbolsOfX11MeanTheirKey_data();
    void shiftedSymbolsOfX11MeanTheirKey();
    void modifiersAreThoseHeldAtTheMoment();
    void unboundCombinationsAreLeftToTheDialog();
    void returnSavesAndHides();
    void escapeHidesWithoutWritingTheText();
    void returnPressesNoButtonAtThePanel();
    void textExceptionIsLoggedAndTheWindowStaysUsable();

    void registerModeBindsTheNextKey();
    void registerModeEscapeCancelsWithoutChange();
    void registerModeBackspaceAndDeleteRemoveTheBinding();
    void registerModeKeyBoundElsewhereIsRefusedAndKeepsWaiting();
    void registerModeOwnKeyIsNoConflict();
    void registerModeShiftAndKeyCancelsSilently();
    void registerModeModifierAndLockKeysAreNoKey();
    void registerModeIgnoresAutoRepeat();
    void registerModeMasksTheKeypadFlag();
    void registerModeIsNotEnteredAtANewEntry();
    void registerModeIsNotEnteredByAutoRepeat();
    void registerModeEndsWhenAnotherEntryTakesThePlace_data();
    void registerModeEndsWhenAnotherEntryTakesThePlace();
    void registerModeShowsTheBorder();

    void shortcutModifierAloneIsNoLookup();
    void shortcutModifierWithAnotherModifierKeyIsNoLookup();
    void shortcutKeyJumpsToItsEntry();
    void unboundShortcutKeyIsRefused();
    void shortcutKeyIsFoundThroughItsOtherMeanings();
};

void HierarchyWindowKeysTest::commandsReachTheModelAndTheEditorKeepsTheKeyboard()
{
    Outline desk;
    LogLines log;
    desk.press(Qt::Key_J, ctrl);
    QCOMPARE(desk.model.getBody(), u"second"_s);
    QCOMPARE(desk.editor()->toPlainText(), u"second"_s);
    QVERIFY(log.all().contains(u"command 4"_s));
    QVERIFY(desk.editor()->hasFocus());

    desk.press(Qt::Key_H, ctrlShift); // refused: a child of the root stays below it
    QCOMPARE(desk.refusals->take(), 1);
    QVERIFY(desk.editor()->hasFocus());
}

void HierarchyWindowKeysTest::everyWindowCommandIsReachedByItsCombination_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("command");
    const auto row
        = [](const char *name, int key, Qt::KeyboardModifiers modifiers, Command command) {
              QTest::newRow(name) << key << int(modifiers.toInt()) << static_cast<int>(command);
          };
    row("Ctrl+H", Qt::Key_H, ctrl, Command::GoToParent);
    row("Ctrl+[", Qt::Key_BracketLeft, ctrl, Command::GoToFirst);
    row("Ctrl+K", Qt::Key_K, ctrl, Command::GoToPrevious);
    row("Ctrl+J", Qt::Key_J, ctrl, Command::GoToNext);
    row("Ctrl+]", Qt::Key_BracketRight, ctrl, Command::GoToLast);
    row("Ctrl+L", Qt::Key_L, ctrl, Command::GoToChild);
    row("Ctrl+N", Qt::Key_N, ctrl, Command::NewSibling);
    row("Ctrl+D", Qt::Key_D, ctrl, Command::MarkCurrentDone);
    row("Ctrl+T", Qt::Key_T, ctrl, Command::MarkCurrentTodo);
    row("Ctrl+Shift+D", Qt::Key_D, ctrlShift, Command::MarkCurrentWontDo);
    row("Ctrl+O", Qt::Key_O, ctrl, Command::MarkCurrentCategory);
    row("Ctrl+Shift+H", Qt::Key_H, ctrlShift, Command::MoveCurrentLeft);
    row("Ctrl+Shift+[", Qt::Key_BracketLeft, ctrlShift, Command::MoveCurrentToTop);
    row("Ctrl+Shift+K", Qt::Key_K, ctrlShift, Command::MoveCurrentUp);
    row("Ctrl+Shift+J", Qt::Key_J, ctrlShift, Command::MoveCurrentDown);
    row("Ctrl+Shift+]", Qt::Key_BracketRight, ctrlShift, Command::MoveCurrentToBottom);
    row("Ctrl+Shift+L", Qt::Key_L, ctrlShift, Command::MoveCurrentRight);
    row("Ctrl+S", Qt::Key_S, ctrl, Command::RegisterShortcut);
    row("Ctrl+equal", Qt::Key_Equal, ctrl, Command::AddEntryToTodoListAndShow);
    row("Ctrl+Shift+equal", Qt::Key_Equal, ctrlShift, Command::AddEntryToTodoListAndShow);
    row("Return", Qt::Key_Return, {}, Command::SaveChangesAndHide);
    row("Enter", Qt::Key_Enter, Qt::KeypadModifier, Command::SaveChangesAndHide);
    row("Escape", Qt::Key_Escape, {}, Command::Hide);
    row("Ctrl+W", Qt::Key_W, ctrl, Command::Hide);
    row("Ctrl+period", Qt::Key_Period, ctrl, Command::CommitEdit);
}

void HierarchyWindowKeysTest::everyWindowCommandIsReachedByItsCombination()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(int, command);
    Outline desk;
    const LogLines log;
    desk.press(key, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(log.count(u"command "_s), 1);
    QVERIFY(log.all().contains(u"command %1"_s.arg(command)));
    QVERIFY(!log.all().contains(u"exception in handleCommand"_s));
    // The list that an entry was put on has the keyboard then.
    const bool opensTheList = Command(command) == Command::AddEntryToTodoListAndShow;
    QCOMPARE(desk.todoWindow->isVisible(), opensTheList);
    if (desk.window->isVisible() && !opensTheList)
        QVERIFY(desk.editor()->hasFocus());
}

void HierarchyWindowKeysTest::shiftedSymbolsOfX11MeanTheirKey_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<quint32>("code");
    QTest::addColumn<int>("command");
    QTest::newRow("Ctrl+Shift+[") << int(Qt::Key_BraceLeft) << KeyCode::bracketLeft
                                  << int(Command::MoveCurrentToTop);
    QTest::newRow("Ctrl+Shift+]") << int(Qt::Key_BraceRight) << KeyCode::bracketRight
                                  << int(Command::MoveCurrentToBottom);
    QTest::newRow("Ctrl+Shift+=") << int(Qt::Key_Plus) << KeyCode::equal
                                  << int(Command::AddEntryToTodoListAndShow);
}

void HierarchyWindowKeysTest::shiftedSymbolsOfX11MeanTheirKey()
{
    QFETCH(int, key);
    QFETCH(quint32, code);
    QFETCH(int, command);
    Outline desk;
    desk.goTo(desk.second);
    const LogLines log;
    desk.pressNative(key, code, ctrlShift, QString(QChar(key)));
    QCOMPARE(log.count(u"command "_s), 1);
    QVERIFY(log.all().contains(u"command %1"_s.arg(command)));
    QCOMPARE(desk.editor()->toPlainText(), u"second"_s);
}

void HierarchyWindowKeysTest::modifiersAreThoseHeldAtTheMoment()
{
    Outline desk;
    // Past the application object, which would note the event's modifiers as those held.
    QKeyEvent event(QEvent::KeyPress, Qt::Key_J, Qt::ControlModifier);
    static_cast<QObject *>(desk.window.get())->event(&event);
    QCOMPARE(desk.model.getBody(), u"first"_s);
}

void HierarchyWindowKeysTest::unboundCombinationsAreLeftToTheDialog()
{
    Outline desk;
    LogLines log;
    desk.press(Qt::Key_F7, ctrl);
    desk.press(Qt::Key_Escape, Qt::ShiftModifier);
    QVERIFY(desk.window->isVisible());
    QCOMPARE(log.count(u"command "_s), 0);
    QCOMPARE(desk.refusals->count(), 0);
}

void HierarchyWindowKeysTest::returnSavesAndHides()
{
    Outline desk;
    desk.type(u"!"_s);
    desk.press(Qt::Key_Return);
    QVERIFY(!desk.window->isVisible());
    QVERIFY(!desk.activation.isAppActive());
    QVERIFY(desk.files.unsavedSince().isNull());
    QCOMPARE(desk.storedBody(desk.first), u"first!"_s);
}

void HierarchyWindowKeysTest::escapeHidesWithoutWritingTheText()
{
    Outline desk;
    desk.type(u"!"_s);
    desk.press(Qt::Key_Escape);
    QVERIFY(!desk.window->isVisible());
    QCOMPARE(desk.storedBody(desk.first), u"first"_s);
    desk.show();
    QCOMPARE(desk.editor()->toPlainText(), u"first!"_s);
}

void HierarchyWindowKeysTest::returnPressesNoButtonAtThePanel()
{
    UiDesk desk;
    desk.show();
    const QSignalSpy opened(desk.child<QPushButton>("openButton"), &QPushButton::clicked);
    const QSignalSpy created(desk.child<QPushButton>("createButton"), &QPushButton::clicked);
    desk.press(Qt::Key_Space);
    desk.press(Qt::Key_Return);
    QCOMPARE(opened.count() + created.count(), 0);
    QVERIFY(!desk.window->isVisible());
}

void HierarchyWindowKeysTest::textExceptionIsLoggedAndTheWindowStaysUsable()
{
    Outline desk;
    const qint64 child = desk.addEntry(desk.second, u"child"_s, 0);
    desk.goTo(child);
    // Gone behind the model's back: the parent that Ctrl+H goes to.
    QVERIFY(desk.files.getFile(0)->deleteEntry(child));
    QVERIFY(desk.files.getFile(0)->deleteEntry(desk.second));
    LogLines log;
    desk.press(Qt::Key_H, ctrl);
    QCOMPARE(log.count(u"exception in handleCommand"_s), 1);
    QVERIFY(desk.window->isVisible());
    QVERIFY(desk.editor()->hasFocus());

    desk.goTo(desk.third);
    desk.press(Qt::Key_K, ctrl);
    QCOMPARE(desk.editor()->toPlainText(), u"first"_s);
}

void HierarchyWindowKeysTest::registerModeBindsTheNextKey()
{
    Outline desk;
    desk.press(Qt::Key_S, ctrl);
    QVERIFY(desk.registering());
    desk.press(Qt::Key_F5);
    QVERIFY(!desk.registering());
    QVERIFY(desk.isBound(Qt::Key_F5));
    QCOMPARE(desk.label("shortcutKeyLabel"), u"F5"_s);
    QCOMPARE(desk.editor()->toPlainText(), u"first"_s);
    QCOMPARE(desk.refusals->count(), 0);
    QVERIFY(desk.editor()->hasFocus());
}

void HierarchyWindowKeysTest::registerModeEscapeCancelsWithoutChange()
{
    Outline desk;
    desk.files.getFile(0)->registerShortcut(desk.first, Qt::Key_A, u"A"_s);
    desk.goTo(desk.first);
    desk.press(Qt::Key_S, ctrl);
    desk.press(Qt::Key_Escape);
    QVERIFY(!desk.registering());
    QVERIFY(desk.window->isVisible());
    QVERIFY(desk.isBound(Qt::Key_A));
    QVERIFY(!desk.isBound(Qt::Key_Escape));
    QCOMPARE(desk.refusals->count(), 0);
}

void HierarchyWindowKeysTest::registerModeBackspaceAndDeleteRemoveTheBinding()
{
    for (const int key : {int(Qt::Key_Backspace), int(Qt::Key_Delete)}) {
        Outline desk;
        desk.files.getFile(0)->registerShortcut(desk.first, Qt::Key_A, u"A"_s);
        desk.goTo(desk.first);
        QCOMPARE(desk.label("shortcutKeyLabel"), u"A"_s);
        desk.press(Qt::Key_S, ctrl);
        desk.press(key);
        QVERIFY(!desk.registering());
        QVERIFY(!desk.isBound(Qt::Key_A));
        QCOMPARE(desk.label("shortcutKeyLabel"), QString());
        QCOMPARE(desk.editor()->toPlainText(), u"first"_s);
    }
}

void HierarchyWindowKeysTest::registerModeKeyBoundElsewhereIsRefusedAndKeepsWaiting()
{
    Outline desk;
    desk.files.getFile(0)->registerShortcut(desk.second, Qt::Key_A, u"A"_s);
    desk.press(Qt::Key_S, ctrl);
    desk.press(Qt::Key_A);
    QCOMPARE(desk.refusals->take(), 1);
    QVERIFY(desk.registering());
    QCOMPARE(desk.border(), u"true"_s);
    QCOMPARE(desk.label("shortcutKeyLabel"), QString());
    desk.press(Qt::Key_B);
    QVERIFY(!desk.registering());
    QCOMPARE(desk.label("shortcutKeyLabel"), u"B"_s);
}

void HierarchyWindowKeysTest::registerModeOwnKeyIsNoConflict()
{
    Outline desk;
    desk.files.getFile(0)->registerShortcut(desk.first, Qt::Key_A, u"A"_s);
    desk.goTo(desk.first);
    desk.press(Qt::Key_S, ctrl);
    desk.press(Qt::Key_A);
    QVERIFY(!desk.registering());
    QCOMPARE(desk.refusals->count(), 0);
    QVERIFY(desk.isBound(Qt::Key_A));
}

void HierarchyWindowKeysTest::registerModeShiftAndKeyCancelsSilently()
{
    Outline desk;
    desk.press(Qt::Key_S, ctrl);
    desk.press(Qt::Key_X, Qt::ShiftModifier);
    QVERIFY(!desk.registering());
    QVERIFY(!desk.isBound(Qt::Key_X));
    QVERIFY(!desk.isBound(Qt::Key_Shift));
    QCOMPARE(desk.refusals->count(), 0);
    QCOMPARE(desk.editor()->toPlainText(), u"first"_s);
}

void HierarchyWindowKeysTest::registerModeModifierAndLockKeysAreNoKey()
{
    Outline desk;
    desk.press(Qt::Key_S, ctrl);
    for (const int key : {int(Qt::Key_Shift), int(Qt::Key_Control), int(Qt::Key_Alt),
                          int(Qt::Key_AltGr), int(Qt::Key_Meta), int(Qt::Key_CapsLock)}) {
        // The press of a modifier comes before the modifier counts as held.
        QTest::sendKeyEvent(QTest::Click, desk.window->windowHandle(), static_cast<Qt::Key>(key),
                            QString(), Qt::NoModifier);
        QVERIFY(desk.registering());
        QVERIFY(!desk.isBound(key));
    }
    QCOMPARE(desk.refusals->count(), 0);
}

void HierarchyWindowKeysTest::registerModeIgnoresAutoRepeat()
{
    Outline desk;
    desk.press(Qt::Key_S, ctrl);
    for (int repeat = 0; repeat < 5; ++repeat)
        desk.pressRepeated(Qt::Key_S, ctrl);
    desk.pressRepeated(Qt::Key_B, Qt::NoModifier);
    QVERIFY(desk.registering());
    QVERIFY(!desk.isBound(Qt::Key_B));
}

void HierarchyWindowKeysTest::registerModeMasksTheKeypadFlag()
{
    Outline desk;
    desk.press(Qt::Key_S, ctrl);
    desk.press(Qt::Key_Enter, Qt::KeypadModifier);
    QVERIFY(!desk.registering());
    QVERIFY(desk.isBound(Qt::Key_Enter));

    desk.press(Qt::Key_S, ctrl);
    desk.press(Qt::Key_9, Qt::GroupSwitchModifier);
    QVERIFY(desk.isBound(Qt::Key_9));
}

void HierarchyWindowKeysTest::registerModeIsNotEnteredAtANewEntry()
{
    Outline desk;
    desk.press(Qt::Key_N, ctrl);
    desk.press(Qt::Key_S, ctrl);
    QVERIFY(!desk.registering());
    QCOMPARE(desk.refusals->take(), 1);
}

void HierarchyWindowKeysTest::registerModeIsNotEnteredByAutoRepeat()
{
    Outline desk;
    desk.pressRepeated(Qt::Key_S, ctrl);
    QVERIFY(!desk.registering());
    QCOMPARE(desk.refusals->count(), 0);
}

void HierarchyWindowKeysTest::registerModeEndsWhenAnotherEntryTakesThePlace_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("a jump from the to-do list") << u"jump"_s;
    QTest::newRow("its file is closed") << u"close"_s;
    QTest::newRow("a discard") << u"discard"_s;
}

void HierarchyWindowKeysTest::registerModeEndsWhenAnotherEntryTakesThePlace()
{
    QFETCH(QString, how);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.addFile(u"b.bdl"_s); // its root has the same id
    const qint64 alpha = desk.addEntry(root, u"alpha"_s, 0);
    const qint64 beta = desk.addEntry(root, u"beta"_s, 1);
    desk.todos.addTodo({0, beta});
    desk.show();
    desk.goTo(how == u"close" ? root : alpha);
    desk.files.commitAndRestartTransactions();
    desk.press(Qt::Key_S, ctrl);
    QVERIFY(desk.window->isRegisteringShortcut());
    if (how == u"jump")
        desk.todoWindow->jumpToEntryInHierarchyAndHideTodoList(desk.todos.index(0));
    else if (how == u"close")
        desk.child<QPushButton>("closeButton")->click();
    else
        desk.files.rollbackAndRestartTransactions();
    QVERIFY(!desk.window->isRegisteringShortcut());
    QCOMPARE(desk.child<QLabel>("shortcutKeyLabel")->property("regshortcutkey").toString(),
             u"false"_s);
    const QString before = desk.editor()->toPlainText();
    desk.type(u"k"_s);
    QCOMPARE(desk.editor()->toPlainText(), before + u'k');
    QCOMPARE(desk.files.getEntriesByShortcutKey(Qt::Key_K).size(), 0);
}

void HierarchyWindowKeysTest::registerModeShowsTheBorder()
{
    Outline desk;
    auto *label = desk.child<QLabel>("shortcutKeyLabel");
    const auto borderColour = [label] { return label->grab().toImage().pixelColor(0, 0); };
    QCOMPARE(desk.border(), u"false"_s);
    desk.press(Qt::Key_S, ctrl);
    QCOMPARE(desk.border(), u"true"_s);
    QCOMPARE(borderColour(), QColor(u"#BB6600"_s));
    desk.press(Qt::Key_Escape);
    QCOMPARE(desk.border(), u"false"_s);
    QVERIFY(borderColour() != QColor(u"#BB6600"_s));
}

void HierarchyWindowKeysTest::shortcutModifierAloneIsNoLookup()
{
    Outline desk;
    desk.files.getFile(0)->registerShortcut(desk.second, Qt::Key_Alt, u"Alt"_s);
    desk.press(Qt::Key_Alt, Qt::AltModifier);
    QCOMPARE(desk.model.getBody(), u"first"_s);
    QCOMPARE(desk.refusals->count(), 0);
}

void HierarchyWindowKeysTest::shortcutModifierWithAnotherModifierKeyIsNoLookup()
{
    Outline desk;
    QTest::sendKeyEvent(QTest::Click, desk.window->windowHandle(), Qt::Key_Shift, QString(),
                        Qt::AltModifier);
    QCOMPARE(desk.refusals->count(), 0);
    QCOMPARE(desk.model.getBody(), u"first"_s);
}

void HierarchyWindowKeysTest::shortcutKeyJumpsToItsEntry()
{
    Outline desk;
    desk.files.getFile(0)->registerShortcut(desk.third, Qt::Key_G, u"G"_s);
    desk.press(Qt::Key_G, Qt::AltModifier);
    QCOMPARE(desk.editor()->toPlainText(), u"third"_s);
    QCOMPARE(desk.refusals->count(), 0);
    QVERIFY(desk.editor()->hasFocus());
}

void HierarchyWindowKeysTest::unboundShortcutKeyIsRefused()
{
    Outline desk;
    desk.press(Qt::Key_G, Qt::AltModifier);
    QCOMPARE(desk.model.getBody(), u"first"_s);
    QCOMPARE(desk.refusals->take(), 1);
    QVERIFY(desk.flashing());
}

// A Russian A comes as a Cyrillic letter; the key was bound as Latin F.
void HierarchyWindowKeysTest::shortcutKeyIsFoundThroughItsOtherMeanings()
{
    Outline desk;
    desk.files.getFile(0)->registerShortcut(desk.third, Qt::Key_F, u"F"_s);
    desk.pressNative(0x410, KeyCode::f, Qt::AltModifier, u"\u0430"_s);
    QCOMPARE(desk.editor()->toPlainText(), u"third"_s);
    QCOMPARE(desk.refusals->count(), 0);
}

QTEST_MAIN(HierarchyWindowKeysTest)
#include "HierarchyWindowKeysTest.moc"
