// SPDX-License-Identifier: MIT
#include "platform/KeyLookup.h"
#include "unit/ui/UiDesk.h"

using namespace Qt::StringLiterals;

/// The editor gives back what it was given, and leaves commands to the window.
class EntryTextEditTest : public QObject
{
    Q_OBJECT

private slots:
    void visitingAnEntryNeverRewritesIt_data();
    void visitingAnEntryNeverRewritesIt();
    void editingKeepsEveryCharacter();
    void linesAreSeparatedByLineFeeds();
    void undoneEditIsTakenBackInTheModel();
    void undoNeverCrossesEntriesOfTheSameText();
    void pastingFromAnEmptyClipboardDoesNothing();
    void textBeingComposedIsTakenOver();
    void textBeingComposedElsewhereIsLeftAlone();
    void boundCombinationsAreLeftToTheWindow_data();
    void boundCombinationsAreLeftToTheWindow();
    void ordinaryEditingStaysInTheEditor_data();
    void ordinaryEditingStaysInTheEditor();
    void inRegisterModeEveryKeyIsLeftToTheWindow();
    void jumpKeysAreNotTakenByMnemonics();
};

void EntryTextEditTest::visitingAnEntryNeverRewritesIt_data()
{
    QTest::addColumn<QString>("body");
    QTest::newRow("no-break space") << u"10\u00a0km"_s;
    QTest::newRow("carriage return") << u"one\rtwo\r\nthree"_s;
    QTest::newRow("line separator") << u"one\u2028two"_s;
    QTest::newRow("blanks around") << u"  old text \n"_s;
    QTest::newRow("only the cursor moves") << u"plain"_s;
}

void EntryTextEditTest::visitingAnEntryNeverRewritesIt()
{
    QFETCH(QString, body);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 first = desk.addEntry(root, body, 0);
    desk.addEntry(root, u"second"_s, 1);
    desk.files.commitAndRestartTransactions();
    const QSignalSpy changes(desk.files.getFile(0), &DiskStore::firstUpdateOfTransaction);
    desk.show();
    desk.goTo(first);
    desk.editor()->moveCursor(QTextCursor::Start);

    desk.press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(desk.editor()->textCursor().position(), 0);
    desk.press(Qt::Key_J, Qt::ControlModifier);
    desk.press(Qt::Key_K, Qt::ControlModifier);

    QCOMPARE(changes.count(), 0);
    QCOMPARE(desk.storedBody(first), body);
    QVERIFY(desk.files.unsavedSince().isNull());
}

void EntryTextEditTest::editingKeepsEveryCharacter()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"10\u00a0km\u2028far"_s, 0);
    desk.show();
    desk.goTo(entry);
    desk.type(u"!"_s);
    desk.press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(desk.storedBody(entry), u"10\u00a0km\u2028far!"_s);
}

void EntryTextEditTest::linesAreSeparatedByLineFeeds()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"one"_s, 0);
    desk.show();
    desk.goTo(entry);
    desk.press(Qt::Key_Return, Qt::ShiftModifier);
    desk.type(u"two"_s);
    desk.press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(desk.storedBody(entry), u"one\ntwo"_s);

    desk.editor()->setPlainText(u"three\nfour"_s);
    desk.press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(desk.storedBody(entry), u"three\nfour"_s);
}

void EntryTextEditTest::undoNeverCrossesEntriesOfTheSameText()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 first = desk.addEntry(root, u"same"_s, 0);
    const qint64 second = desk.addEntry(root, u"sam"_s, 1);
    desk.show();
    desk.goTo(second);
    desk.type(u"e"_s);
    desk.goTo(first);
    desk.press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(desk.editor()->toPlainText(), u"same"_s);
}

void EntryTextEditTest::pastingFromAnEmptyClipboardDoesNothing()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.goTo(desk.addEntry(root, u"one"_s, 0));
    desk.show();
    QGuiApplication::clipboard()->clear();
    desk.press(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(desk.editor()->toPlainText(), u"one"_s);
}

void EntryTextEditTest::undoneEditIsTakenBackInTheModel()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"one"_s, 0);
    desk.show();
    desk.goTo(entry);
    desk.type(u"x"_s);
    desk.window->updateModelBody();
    QCOMPARE(desk.model.getBody(), u"onex"_s);
    desk.press(Qt::Key_Backspace);
    desk.window->updateModelBody();
    QCOMPARE(desk.model.getBody(), u"one"_s);
}

void EntryTextEditTest::textBeingComposedIsTakenOver()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"Tea: "_s, 0);
    desk.show();
    desk.goTo(entry);
    QInputMethodEvent composing(u"\u8336"_s, {});
    QCoreApplication::sendEvent(desk.editor(), &composing);
    QCOMPARE(desk.editor()->toPlainText(), u"Tea: "_s);

    desk.press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(desk.storedBody(entry), u"Tea: \u8336"_s);
}

void EntryTextEditTest::textBeingComposedElsewhereIsLeftAlone()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.goTo(root);
    QInputMethodEvent composing(u"\u8336"_s, {});
    QCoreApplication::sendEvent(desk.editor(), &composing);
    desk.editor()->clearFocus();
    const QString before = desk.model.getBody();
    desk.window->updateModelBody();
    QCOMPARE(desk.model.getBody(), before);
}

void EntryTextEditTest::boundCombinationsAreLeftToTheWindow_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<quint32>("code");
    const int ctrl = Qt::ControlModifier;
    const int ctrlShift = Qt::ControlModifier | Qt::ShiftModifier;
    const int keypad = Qt::KeypadModifier;
    const struct {
        const char *name;
        int key;
        int modifiers;
        quint32 code = 0;
    } rows[] = {
        {"Return", Qt::Key_Return, 0},
        {"Enter", Qt::Key_Enter, 0},
        {"keypad Enter", Qt::Key_Enter, keypad},
        {"Escape", Qt::Key_Escape, 0},
        {"Ctrl+equal", Qt::Key_Equal, ctrl},
        {"Ctrl+Shift+equal", Qt::Key_Equal, ctrlShift},
        {"Ctrl+Shift+[", Qt::Key_BracketLeft, ctrlShift},
        {"Ctrl+Shift+]", Qt::Key_BracketRight, ctrlShift},
        {"Ctrl+Shift+[ as X11 reports it", Qt::Key_BraceLeft, ctrlShift, KeyCode::bracketLeft},
        {"Ctrl+Shift+] as X11 reports it", Qt::Key_BraceRight, ctrlShift, KeyCode::bracketRight},
        {"Ctrl+H", Qt::Key_H, ctrl},
        {"Ctrl+K", Qt::Key_K, ctrl},
        {"Ctrl+D", Qt::Key_D, ctrl},
        {"Ctrl+E", Qt::Key_E, ctrl},
        {"Ctrl+Shift+K", Qt::Key_K, ctrlShift},
        {"Ctrl+Shift+Delete", Qt::Key_Delete, ctrlShift},
        {"Ctrl+Shift+Backspace", Qt::Key_Backspace, ctrlShift},
        {"Alt+X", Qt::Key_X, Qt::AltModifier},
        {"Alt+Backspace", Qt::Key_Backspace, Qt::AltModifier},
    };
    for (const auto &row : rows)
        QTest::newRow(row.name) << row.key << row.modifiers << row.code;
}

void EntryTextEditTest::boundCombinationsAreLeftToTheWindow()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(quint32, code);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.goTo(root);
    const QString before = desk.editor()->toPlainText();
    QKeyEvent event(QEvent::KeyPress, key, Qt::KeyboardModifiers::fromInt(modifiers), code, 0, 0,
                    code ? u"{"_s : QString());
    // Straight to the editor, past the window that would handle it.
    static_cast<QObject *>(desk.editor())->event(&event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(desk.editor()->toPlainText(), before);
}

void EntryTextEditTest::ordinaryEditingStaysInTheEditor_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("letter") << int(Qt::Key_A) << 0 << u"a"_s << u"texta"_s;
    QTest::newRow("capital") << int(Qt::Key_A) << int(Qt::ShiftModifier) << u"A"_s << u"textA"_s;
    QTest::newRow("keypad digit") << int(Qt::Key_7) << int(Qt::KeypadModifier) << u"7"_s
                                  << u"text7"_s;
    QTest::newRow("AltGr bracket")
        << int(Qt::Key_BracketLeft) << int(Qt::GroupSwitchModifier) << u"["_s << u"text["_s;
    QTest::newRow("slash") << int(Qt::Key_Slash) << 0 << u"/"_s << u"text/"_s;
    QTest::newRow("Backspace") << int(Qt::Key_Backspace) << 0 << u"\b"_s << u"tex"_s;
    QTest::newRow("Ctrl+Backspace")
        << int(Qt::Key_Backspace) << int(Qt::ControlModifier) << u"\b"_s << u""_s;
}

void EntryTextEditTest::ordinaryEditingStaysInTheEditor()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"text"_s, 0);
    desk.show();
    desk.goTo(entry);
    QTest::sendKeyEvent(QTest::Click, desk.window->windowHandle(), static_cast<Qt::Key>(key), text,
                        Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(desk.editor()->toPlainText(), expected);
    QCOMPARE(desk.refusals->count(), 0);
}

void EntryTextEditTest::inRegisterModeEveryKeyIsLeftToTheWindow()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.goTo(root);
    desk.window->setRegisterShortcut(true);
    for (const int key : {int(Qt::Key_A), int(Qt::Key_Backspace), int(Qt::Key_Left)}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, u"a"_s);
        static_cast<QObject *>(desk.editor())->event(&event);
        QVERIFY(!event.isAccepted());
    }
}

void EntryTextEditTest::jumpKeysAreNotTakenByMnemonics()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"target"_s, 0);
    desk.files.getFile(0)->registerShortcut(entry, Qt::Key_C, u"C"_s);
    desk.show();
    desk.goTo(root);
    // Some desktops give every button a mnemonic.
    auto *button = desk.child<QPushButton>("closeButton");
    button->setShortcut(QKeySequence(Qt::ALT | Qt::Key_C));
    const QSignalSpy clicked(button, &QPushButton::clicked);
    desk.press(Qt::Key_C, Qt::AltModifier);
    QCOMPARE(clicked.count(), 0);
    QCOMPARE(desk.model.getBody(), u"target"_s);
}

QTEST_MAIN(EntryTextEditTest)
#include "EntryTextEditTest.moc"
