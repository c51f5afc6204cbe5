// SPDX-License-Identifier: MIT
#include "ui/CreateReportDialog.h"
#include "ui/Help.h"
#include "ui/Settings.h"
#include "unit/ui/UiDesk.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers ctrlShift = Qt::ControlModifier | Qt::ShiftModifier;

/// Runs the program's event loop, presses Ctrl+Q in it, and tells whether that ended it.
bool exitEndsTheLoop(UiDesk &desk)
{
    constexpr int stillRunning = 42;
    bool quitting = false;
    QObject context;
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &context, [&] { quitting = true; });
    QTimer::singleShot(0, &context, [&] { desk.press(Qt::Key_Q, ctrl); });
    QTimer::singleShot(1500, &context, [] { QCoreApplication::exit(stillRunning); });
    return QCoreApplication::exec() != stillRunning && quitting;
}

/// The shown windows beside the main window.
QList<AbstractWindow *> openWindows(const UiDesk &desk)
{
    QList<AbstractWindow *> windows;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *window = qobject_cast<AbstractWindow *>(widget);
        if (window && window->isVisible() && window != desk.window.get())
            windows.append(window);
    }
    return windows;
}

/// How many of the dialogs that come up on demand exist, shown or not.
int dialogCount()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    return static_cast<int>(std::count_if(widgets.begin(), widgets.end(), [](QWidget *widget) {
        return qobject_cast<Help *>(widget) || qobject_cast<Settings *>(widget)
            || qobject_cast<CreateReportDialog *>(widget);
    }));
}

/// Presses \a button in the next message box, if one comes; also when other boxes follow.
class BoxAnswer : public QObject
{
public:
    explicit BoxAnswer(QMessageBox::StandardButton button)
    {
        connect(&m_timer, &QTimer::timeout, this, [this, button] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            ++m_count;
            box->button(button)->click();
        });
        m_timer.start(20);
    }
    int count() const { return m_count; }

private:
    QTimer m_timer;
    int m_count = 0;
};
} // namespace

class AppCommandFilterTest : public QObject
{
    Q_OBJECT

private slots:
    void hierarchyCommandPassesUntouchedAndReachesTheMainWindow();
    void typedTextAndOtherEventsPass();
    void theModifiersHeldAtTheMomentCountNotTheEvents();
    void discardChangesRollsBackAllFiles();
    void discardWorksInAnyWindow();
    void exitWithNothingUnsavedEndsTheProgram();
    void exitIsNotStoppedByTheVisibleMainWindow();
    void exitWritesTheEditedTextFirst();
    void exitWithTextThatCannotBeWrittenIsRefusedAndQuitsNothing();
    void exitRefusedInAnotherWindowFlashesThereAndInTheMainWindow_data();
    void exitRefusedInAnotherWindowFlashesThereAndInTheMainWindow();
    void aRefusalOfAListsOwnFlashesThereOnly();
    void exitCancelledLeavesEverythingAsItWas();
    void autoRepeatNeverRepeatsExitAndDiscard();
    void aRepeatIsKnownByItsTimeAlone();
    void heldEnterInAListJumpsAndGoesNoFurther_data();
    void heldEnterInAListJumpsAndGoesNoFurther();
    void heldEscapeInADialogHidesItAndGoesNoFurther_data();
    void heldEscapeInADialogHidesItAndGoesNoFurther();
    void theAwaitedShortcutKeyHeldTypesNothing_data();
    void theAwaitedShortcutKeyHeldTypesNothing();
    void aCommandEndsTheWaitForAShortcutKey_data();
    void aCommandEndsTheWaitForAShortcutKey();
    void exitCancelledShowsWhatWritingTheTextHasChanged();
    void underAModalBoxCommandsAreSwallowedWithoutEffect_data();
    void underAModalBoxCommandsAreSwallowedWithoutEffect();
    void eachWindowCommandOpensItsWindow_data();
    void eachWindowCommandOpensItsWindow();
    void aDialogIsCreatedOnceAndShownAgain_data();
    void aDialogIsCreatedOnceAndShownAgain();
    void theThreeDialogsAreKeptSideBySide();
    void theToDoListOpensFromTheFindWindowWithoutTouchingTheQuery();
    void commandsWhileInactiveBringTheApplicationForward_data();
    void commandsWhileInactiveBringTheApplicationForward();
    void aDialogHiddenWhileInactiveBringsNothingBack();
    void textExceptionEndsInTheFilter();
    void deactivationIsNeverRequested();
};

void AppCommandFilterTest::hierarchyCommandPassesUntouchedAndReachesTheMainWindow()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 first = desk.addEntry(root, u"first"_s, 0);
    desk.addEntry(root, u"second"_s, 1);
    desk.show();
    desk.goTo(first);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_J, ctrl);
    QVERIFY(!desk.filter->eventFilter(desk.window.get(), &event));
    desk.press(Qt::Key_J, ctrl);
    QCOMPARE(desk.model.getBody(), u"second"_s);
}

void AppCommandFilterTest::typedTextAndOtherEventsPass()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    QKeyEvent typed(QEvent::KeyPress, Qt::Key_Q, Qt::NoModifier, u"q"_s);
    QVERIFY(!desk.filter->eventFilter(desk.window.get(), &typed));
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Q, ctrl);
    QVERIFY(!desk.filter->eventFilter(desk.window.get(), &release));
    QEvent other(QEvent::FocusIn);
    QVERIFY(!desk.filter->eventFilter(desk.window.get(), &other));
}

void AppCommandFilterTest::theModifiersHeldAtTheMomentCountNotTheEvents()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    QKeyEvent withControl(QEvent::KeyPress, Qt::Key_F, ctrl);
    QVERIFY(!desk.filter->eventFilter(desk.window.get(), &withControl));
    QVERIFY(!desk.findWindow->isVisible());
    QTest::simulateEvent(desk.window->windowHandle(), true, Qt::Key_Control, ctrl, QString(),
                         false);
    QKeyEvent without(QEvent::KeyPress, Qt::Key_F, Qt::NoModifier);
    QVERIFY(desk.filter->eventFilter(desk.window.get(), &without));
    QVERIFY(desk.findWindow->isVisible());
    QTest::simulateEvent(desk.window->windowHandle(), false, Qt::Key_Control, Qt::NoModifier,
                         QString(), false);
}

void AppCommandFilterTest::discardChangesRollsBackAllFiles()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    const qint64 otherRoot = desk.addFile(u"b.bdl"_s);
    const qint64 entry = desk.addEntry(otherRoot, u"stored"_s, 0, EntryState::Todo, 1);
    desk.files.commitAndRestartTransactions();
    desk.show();
    desk.goTo(entry, 1);
    desk.type(u" written"_s);
    desk.press(Qt::Key_Period, ctrl);
    desk.type(u" typed"_s);
    LogLines log;
    desk.press(Qt::Key_Delete, ctrlShift);
    QVERIFY(log.all().contains(u"command 16"_s));
    QCOMPARE(desk.editor()->toPlainText(), u"stored"_s);
    QCOMPARE(desk.storedBody(entry, 1), u"stored"_s);
    QVERIFY(desk.files.unsavedSince().isNull());
    QVERIFY(desk.editor()->hasFocus());
}

void AppCommandFilterTest::discardWorksInAnyWindow()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"unsaved"_s, 0);
    QLineEdit other;
    other.setText(u"query"_s);
    other.show();
    other.activateWindow();
    QVERIFY(waitUntilActive(other));
    pressIn(other, Qt::Key_Backspace, ctrlShift);
    QCOMPARE(desk.storedBody(entry), QString());
    QCOMPARE(other.text(), u"query"_s);
}

void AppCommandFilterTest::exitWithNothingUnsavedEndsTheProgram()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.files.commitAndRestartTransactions();
    desk.show();
    QVERIFY(exitEndsTheLoop(desk));
}

void AppCommandFilterTest::exitIsNotStoppedByTheVisibleMainWindow()
{
    UiDesk desk;
    desk.show();
    const QSignalSpy activations(&desk.activation, &AppActivationSupport::activationChanged);
    QVERIFY(exitEndsTheLoop(desk));
    QVERIFY(desk.window->isVisible());
    QCOMPARE(activations.count(), 0);
}

void AppCommandFilterTest::exitWritesTheEditedTextFirst()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"text"_s, 0);
    desk.files.commitAndRestartTransactions();
    desk.show();
    desk.goTo(entry);
    desk.type(u"!"_s);
    const BoxAnswer save(QMessageBox::Save);
    QVERIFY(exitEndsTheLoop(desk));
    QCOMPARE(save.count(), 1);
    QCOMPARE(desk.storedBody(entry), u"text!"_s);
    QVERIFY(desk.files.unsavedSince().isNull());
}

void AppCommandFilterTest::exitWithTextThatCannotBeWrittenIsRefusedAndQuitsNothing()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.goTo(root);
    desk.editor()->clear(); // a root can't be deleted
    const BoxAnswer answer(QMessageBox::Discard);
    QVERIFY(!exitEndsTheLoop(desk));
    QCOMPARE(desk.refusals->count(), 1);
    QCOMPARE(answer.count(), 0);
    QVERIFY(desk.window->isVisible());
}

void AppCommandFilterTest::exitRefusedInAnotherWindowFlashesThereAndInTheMainWindow_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("find window") << int(Qt::Key_F);
    QTest::newRow("to-do list") << int(Qt::Key_E);
    QTest::newRow("report range") << int(Qt::Key_R);
    QTest::newRow("settings") << int(Qt::Key_Comma);
    QTest::newRow("help") << int(Qt::Key_Slash);
}

void AppCommandFilterTest::exitRefusedInAnotherWindowFlashesThereAndInTheMainWindow()
{
    QFETCH(int, key);
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.editor()->selectAll();
    desk.press(Qt::Key_Delete); // a file's entry can't be empty
    desk.press(key, ctrl);
    const QList<AbstractWindow *> windows = openWindows(desk);
    QCOMPARE(windows.size(), 1);
    QVERIFY(waitUntilActive(*windows.first()));
    QVERIFY(!UiDesk::isFlashing(*windows.first()));
    pressIn(*windows.first(), Qt::Key_Q, ctrl);
    QVERIFY(UiDesk::isFlashing(*windows.first()));
    QVERIFY(desk.flashing());
}

void AppCommandFilterTest::aRefusalOfAListsOwnFlashesThereOnly()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.press(Qt::Key_F, ctrl);
    QVERIFY(waitUntilActive(*desk.findWindow));
    pressIn(*desk.findWindow, Qt::Key_Return); // nothing is found yet
    QVERIFY(UiDesk::isFlashing(*desk.findWindow));
    QVERIFY(!desk.flashing());
}

void AppCommandFilterTest::exitCancelledLeavesEverythingAsItWas()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"text"_s, 0);
    desk.show();
    desk.goTo(entry);
    const QDateTime unsaved = desk.files.unsavedSince();
    const BoxAnswer cancel(QMessageBox::Cancel);
    QVERIFY(!exitEndsTheLoop(desk));
    QCOMPARE(cancel.count(), 1);
    QCOMPARE(desk.files.unsavedSince(), unsaved);
    QVERIFY(desk.window->isVisible());
}

void AppCommandFilterTest::autoRepeatNeverRepeatsExitAndDiscard()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"unsaved"_s, 0);
    desk.show();
    desk.goTo(entry);
    const BoxAnswer answer(QMessageBox::Cancel);
    LogLines log;
    desk.pressRepeated(Qt::Key_Q, ctrl);
    desk.pressRepeated(Qt::Key_Delete, ctrlShift);
    QTest::qWait(100);
    QCOMPARE(answer.count(), 0);
    QCOMPARE(desk.storedBody(entry), u"unsaved"_s);
    QCOMPARE(desk.editor()->toPlainText(), u"unsaved"_s);
    QCOMPARE(log.count(u"command "_s), 0);
}

// On a busy computer the toolkit doesn't see that a press is a repeated one.
void AppCommandFilterTest::aRepeatIsKnownByItsTimeAlone()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"unsaved"_s, 0);
    desk.show();
    desk.goTo(entry);
    const auto send = [&desk](QEvent::Type type, quint64 time) {
        QKeyEvent event(type, Qt::Key_Return, Qt::NoModifier);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(desk.window->windowHandle(), &event);
    };
    send(QEvent::KeyRelease, 7000);
    send(QEvent::KeyPress, 7000);
    QVERIFY(!desk.files.unsavedSince().isNull());
    QVERIFY(desk.activation.isAppActive());
    send(QEvent::KeyRelease, 7100);
    send(QEvent::KeyPress, 7150);
    QVERIFY(desk.files.unsavedSince().isNull());
    QVERIFY(!desk.activation.isAppActive());
}

void AppCommandFilterTest::heldEnterInAListJumpsAndGoesNoFurther_data()
{
    QTest::addColumn<bool>("inFindWindow");
    QTest::addColumn<int>("key");
    QTest::newRow("find window, Return") << true << int(Qt::Key_Return);
    QTest::newRow("find window, Enter") << true << int(Qt::Key_Enter);
    QTest::newRow("to-do list, Return") << false << int(Qt::Key_Return);
    QTest::newRow("to-do list, Enter") << false << int(Qt::Key_Enter);
}

void AppCommandFilterTest::heldEnterInAListJumpsAndGoesNoFurther()
{
    QFETCH(bool, inFindWindow);
    QFETCH(int, key);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"wanted"_s, 0);
    desk.todos.addTodo({0, entry});
    desk.show();
    AbstractWindow *list = desk.todoWindow.get();
    if (inFindWindow) {
        list = desk.findWindow.get();
        list->findChild<QLineEdit *>(u"queryLine"_s)->setText(u"wanted"_s);
    }
    desk.press(inFindWindow ? Qt::Key_F : Qt::Key_E, ctrl);
    QVERIFY(QTest::qWaitForWindowActive(list));
    pressIn(*list, key);
    QVERIFY(QTest::qWaitForWindowActive(desk.window.get()));
    for (int repeats = 0; repeats < 3; ++repeats)
        desk.pressRepeated(key, Qt::NoModifier);
    QCOMPARE(desk.model.getBody(), u"wanted"_s);
    QVERIFY(desk.window->isVisible());
    QVERIFY(desk.activation.isAppActive());
    QVERIFY(!desk.files.unsavedSince().isNull());
}

void AppCommandFilterTest::heldEscapeInADialogHidesItAndGoesNoFurther_data()
{
    QTest::addColumn<int>("opensIt");
    QTest::newRow("help") << int(Qt::Key_Slash);
    QTest::newRow("settings") << int(Qt::Key_Comma);
    QTest::newRow("report") << int(Qt::Key_R);
    QTest::newRow("find window") << int(Qt::Key_F);
    QTest::newRow("to-do list") << int(Qt::Key_E);
}

void AppCommandFilterTest::heldEscapeInADialogHidesItAndGoesNoFurther()
{
    QFETCH(int, opensIt);
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.press(opensIt, ctrl);
    AbstractWindow *dialog = openWindows(desk).value(0);
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    pressIn(*dialog, Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(desk.window.get()));
    for (int repeats = 0; repeats < 3; ++repeats)
        desk.pressRepeated(Qt::Key_Escape, Qt::NoModifier);
    QVERIFY(desk.window->isVisible());
    QVERIFY(desk.activation.isAppActive());
    desk.press(Qt::Key_Escape);
    QVERIFY(!desk.activation.isAppActive());
}

void AppCommandFilterTest::theAwaitedShortcutKeyHeldTypesNothing_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("a letter") << int(Qt::Key_K);
    QTest::newRow("Backspace") << int(Qt::Key_Backspace);
}

void AppCommandFilterTest::theAwaitedShortcutKeyHeldTypesNothing()
{
    QFETCH(int, key);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.goTo(desk.addEntry(root, u"text"_s, 0));
    desk.show();
    desk.press(Qt::Key_S, ctrl);
    desk.press(key);
    QVERIFY(!desk.window->isRegisteringShortcut());
    for (int repeats = 0; repeats < 3; ++repeats) {
        QKeyEvent repeat(QEvent::KeyPress, key, Qt::NoModifier, u"k"_s, true);
        QCoreApplication::sendEvent(desk.window->windowHandle(), &repeat);
    }
    QCOMPARE(desk.editor()->toPlainText(), u"text"_s);
    desk.type(u"k"_s);
    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_K, Qt::NoModifier, u"k"_s, true);
    QCoreApplication::sendEvent(desk.window->windowHandle(), &repeat);
    QCOMPARE(desk.editor()->toPlainText(), u"textkk"_s);
}

void AppCommandFilterTest::aCommandEndsTheWaitForAShortcutKey_data()
{
    commandsWhileInactiveBringTheApplicationForward_data();
    QTest::newRow("quit") << int(Qt::Key_Q);
}

void AppCommandFilterTest::aCommandEndsTheWaitForAShortcutKey()
{
    QFETCH(int, key);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.goTo(desk.addEntry(root, u"unsaved"_s, 0));
    desk.show();
    desk.press(Qt::Key_S, ctrl);
    QVERIFY(desk.window->isRegisteringShortcut());
    const BoxAnswer cancel(QMessageBox::Cancel);
    desk.press(key, ctrl);
    QVERIFY(!desk.window->isRegisteringShortcut());
}

void AppCommandFilterTest::exitCancelledShowsWhatWritingTheTextHasChanged()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"text"_s, 0);
    desk.files.getFile(0)->registerShortcut(entry, Qt::Key_K, u"K"_s);
    desk.show();
    desk.goTo(entry);
    desk.editor()->clear(); // which deletes it
    const BoxAnswer cancel(QMessageBox::Cancel);
    QVERIFY(!exitEndsTheLoop(desk));
    QCOMPARE(cancel.count(), 1);
    QVERIFY(!desk.files.getFile(0)->contains(entry));
    QCOMPARE(desk.label("shortcutKeyLabel"), QString());
}

void AppCommandFilterTest::underAModalBoxCommandsAreSwallowedWithoutEffect_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Exit") << int(Qt::Key_Q) << int(ctrl);
    QTest::newRow("DiscardChanges") << int(Qt::Key_Backspace) << int(ctrlShift);
    QTest::newRow("ActivateTodoListWindow") << int(Qt::Key_E) << int(ctrl);
    QTest::newRow("ShowFindWindow") << int(Qt::Key_F) << int(ctrl);
    QTest::newRow("ShowCreateReportDialog") << int(Qt::Key_R) << int(ctrl);
    QTest::newRow("ShowSettingsDialog") << int(Qt::Key_Comma) << int(ctrl);
    QTest::newRow("ShowHelp") << int(Qt::Key_Slash) << int(ctrl);
}

void AppCommandFilterTest::underAModalBoxCommandsAreSwallowedWithoutEffect()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"unsaved"_s, 0);
    desk.show();
    QMessageBox box;
    auto *line = new QLineEdit(u"some words"_s, &box);
    box.setModal(true);
    box.show();
    line->setFocus();
    QVERIFY(waitUntilActive(box));
    const LogLines log;
    pressIn(box, key, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(log.count(u"command"_s), 0);
    QCOMPARE(openWindows(desk).size(), 0);
    QCOMPARE(dialogCount(), 0);
    QCOMPARE(QApplication::activeModalWidget(), &box);
    QCOMPARE(line->text(), u"some words"_s);
    QCOMPARE(desk.storedBody(entry), u"unsaved"_s);
    QCOMPARE(desk.refusals->count(), 0);
}

void AppCommandFilterTest::eachWindowCommandOpensItsWindow_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("name");
    QTest::addColumn<quint32>("code");
    QTest::newRow("Ctrl+E") << int(Qt::Key_E) << int(ctrl) << u"TodoListWindow"_s << quint32(0);
    QTest::newRow("Ctrl+F") << int(Qt::Key_F) << int(ctrl) << u"FindWindow"_s << quint32(0);
    QTest::newRow("Ctrl+R") << int(Qt::Key_R) << int(ctrl) << u"CreateReportDialog"_s << quint32(0);
    QTest::newRow("Ctrl+comma") << int(Qt::Key_Comma) << int(ctrl) << u"Settings"_s << quint32(0);
    QTest::newRow("Ctrl+slash") << int(Qt::Key_Slash) << int(ctrl) << u"Help"_s << quint32(0);
    QTest::newRow("Ctrl+Shift+slash")
        << int(Qt::Key_Slash) << int(ctrlShift) << u"Help"_s << quint32(0);
    QTest::newRow("Ctrl+Shift+slash as X11 reports it")
        << int(Qt::Key_Question) << int(ctrlShift) << u"Help"_s << KeyCode::slash;
}

void AppCommandFilterTest::eachWindowCommandOpensItsWindow()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, name);
    QFETCH(quint32, code);
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    const qint64 entry = desk.addEntry(root, u"text"_s, 0);
    desk.show();
    desk.goTo(entry);
    desk.pressNative(key, code, Qt::KeyboardModifiers::fromInt(modifiers));
    const QList<AbstractWindow *> opened = openWindows(desk);
    QCOMPARE(opened.size(), 1);
    QCOMPARE(opened.first()->metaObject()->className(), name.toLatin1());
    QVERIFY(waitUntilActive(*opened.first()));
    QCOMPARE(desk.editor()->toPlainText(), u"text"_s);
    QCOMPARE(desk.refusals->count(), 0);
}

void AppCommandFilterTest::aDialogIsCreatedOnceAndShownAgain_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("help") << int(Qt::Key_Slash);
    QTest::newRow("settings") << int(Qt::Key_Comma);
    QTest::newRow("report") << int(Qt::Key_R);
}

void AppCommandFilterTest::aDialogIsCreatedOnceAndShownAgain()
{
    QFETCH(int, key);
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    QCOMPARE(dialogCount(), 0);
    desk.press(key, ctrl);
    const QPointer<AbstractWindow> dialog = openWindows(desk).value(0);
    QVERIFY(dialog);
    QVERIFY(!dialog->parentWidget());
    QCOMPARE(dialogCount(), 1);
    for (int round = 0; round < 2; ++round) {
        QVERIFY(waitUntilActive(*dialog));
        dialog->hide();
        QVERIFY(waitUntilActive(*desk.window));
        QVERIFY(desk.editor()->hasFocus());
        desk.press(key, ctrl);
        QVERIFY(dialog && dialog->isVisible());
        QCOMPARE(dialogCount(), 1);
    }
    // Given again while it is shown, the command only brings it to the front.
    desk.window->activateWindow();
    QVERIFY(waitUntilActive(*desk.window));
    desk.press(key, ctrl);
    QVERIFY(waitUntilActive(*dialog));
    QCOMPARE(dialogCount(), 1);
}

void AppCommandFilterTest::theThreeDialogsAreKeptSideBySide()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.press(Qt::Key_Slash, ctrl);
    pressIn(*openWindows(desk).value(0), Qt::Key_Comma, ctrl);
    QCOMPARE(dialogCount(), 2);
    for (AbstractWindow *dialog : openWindows(desk)) {
        if (qobject_cast<Settings *>(dialog))
            pressIn(*dialog, Qt::Key_R, ctrl);
    }
    QCOMPARE(dialogCount(), 3);
    QCOMPARE(openWindows(desk).size(), 3);
}

void AppCommandFilterTest::theToDoListOpensFromTheFindWindowWithoutTouchingTheQuery()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.press(Qt::Key_F, ctrl);
    QVERIFY(waitUntilActive(*desk.findWindow));
    auto *query = desk.findWindow->findChild<QLineEdit *>(u"queryLine"_s);
    query->setText(u"some words"_s);
    query->setCursorPosition(4);
    pressIn(*desk.findWindow, Qt::Key_E, ctrl);
    QVERIFY(waitUntilActive(*desk.todoWindow));
    QCOMPARE(query->text(), u"some words"_s);
    QCOMPARE(query->cursorPosition(), 4);
    pressIn(*desk.todoWindow, Qt::Key_F, ctrl);
    QVERIFY(waitUntilActive(*desk.findWindow));
    QCOMPARE(query->selectedText(), u"some words"_s);
}

void AppCommandFilterTest::commandsWhileInactiveBringTheApplicationForward_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("to-do list") << int(Qt::Key_E);
    QTest::newRow("find") << int(Qt::Key_F);
    QTest::newRow("report") << int(Qt::Key_R);
    QTest::newRow("settings") << int(Qt::Key_Comma);
    QTest::newRow("help") << int(Qt::Key_Slash);
}

void AppCommandFilterTest::commandsWhileInactiveBringTheApplicationForward()
{
    QFETCH(int, key);
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    // A report outlives the application's stepping back.
    QDialog report;
    report.show();
    desk.activation.deactivateApp();
    report.activateWindow();
    QVERIFY(waitUntilActive(report));
    QVERIFY(!desk.window->isVisible());
    pressIn(report, key, ctrl);
    QVERIFY(desk.activation.isAppActive());
    QVERIFY(desk.window->isVisible());
    QCOMPARE(desk.native.captures, 1);
    QCOMPARE(openWindows(desk).size(), 1);
    QVERIFY(QTest::qWaitForWindowActive(openWindows(desk).first()));
}

void AppCommandFilterTest::aDialogHiddenWhileInactiveBringsNothingBack()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    desk.press(Qt::Key_Slash, ctrl);
    AbstractWindow *help = openWindows(desk).value(0);
    QVERIFY(help);
    desk.activation.deactivateApp();
    QVERIFY(help->isVisible());
    help->hide();
    QVERIFY(!desk.window->isVisible());
    QVERIFY(!desk.activation.isAppActive());
}

void AppCommandFilterTest::textExceptionEndsInTheFilter()
{
    UiDesk desk;
    desk.addFile(u"a.bdl"_s);
    desk.show();
    QObject context;
    QObject::connect(&desk.files, &FileManager::transactionRollback, &context,
                     []() -> void { throw "bad"; });
    const LogLines log;
    desk.press(Qt::Key_Delete, ctrlShift);
    QVERIFY(log.count(u"exception in "_s) == 1);
    QVERIFY(desk.window->isVisible());
}

void AppCommandFilterTest::deactivationIsNeverRequested()
{
    UiDesk desk;
    const qint64 root = desk.addFile(u"a.bdl"_s);
    desk.files.commitAndRestartTransactions();
    desk.show();
    desk.goTo(root);
    const QSignalSpy requests(desk.filter.get(), &AppCommandFilter::requestAppDeactivation);
    for (const int key :
         {int(Qt::Key_E), int(Qt::Key_F), int(Qt::Key_R), int(Qt::Key_Comma), int(Qt::Key_Slash)})
        desk.press(key, ctrl);
    desk.press(Qt::Key_Delete, ctrlShift);
    QVERIFY(exitEndsTheLoop(desk));
    QCOMPARE(requests.count(), 0);
}

QTEST_MAIN(AppCommandFilterTest)
#include "AppCommandFilterTest.moc"
