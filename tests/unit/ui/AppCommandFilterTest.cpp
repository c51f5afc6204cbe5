// SPDX-License-Identifier: MIT
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
    void discardChangesRollsBackAllFiles();
    void discardWorksInAnyWindow();
    void exitWithNothingUnsavedEndsTheProgram();
    void exitIsNotStoppedByTheVisibleMainWindow();
    void exitWritesTheEditedTextFirst();
    void exitWithTextThatCannotBeWrittenIsRefusedAndQuitsNothing();
    void exitCancelledLeavesEverythingAsItWas();
    void autoRepeatNeverRepeatsExitAndDiscard();
    void underAModalBoxCommandsAreSwallowedWithoutEffect_data();
    void underAModalBoxCommandsAreSwallowedWithoutEffect();
    void commandsOfLaterWindowsAreConsumedAndRefused_data();
    void commandsOfLaterWindowsAreConsumedAndRefused();
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
    QVERIFY(QTest::qWaitForWindowActive(&other));
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

void AppCommandFilterTest::underAModalBoxCommandsAreSwallowedWithoutEffect_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Exit") << int(Qt::Key_Q) << int(ctrl);
    QTest::newRow("DiscardChanges") << int(Qt::Key_Backspace) << int(ctrlShift);
    QTest::newRow("ActivateTodoListWindow") << int(Qt::Key_E) << int(ctrl);
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
    QVERIFY(QTest::qWaitForWindowActive(&box));
    const LogLines log;
    pressIn(box, key, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(log.count(u"command"_s), 0);
    QCOMPARE(QApplication::activeModalWidget(), &box);
    QCOMPARE(line->text(), u"some words"_s);
    QCOMPARE(desk.storedBody(entry), u"unsaved"_s);
    QCOMPARE(desk.refusals->count(), 0);
}

void AppCommandFilterTest::commandsOfLaterWindowsAreConsumedAndRefused_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("name");
    QTest::addColumn<quint32>("code");
    QTest::newRow("Ctrl+E") << int(Qt::Key_E) << int(ctrl) << u"ActivateTodoListWindow"_s
                            << quint32(0);
    QTest::newRow("Ctrl+F") << int(Qt::Key_F) << int(ctrl) << u"ShowFindWindow"_s << quint32(0);
    QTest::newRow("Ctrl+R") << int(Qt::Key_R) << int(ctrl) << u"ShowCreateReportDialog"_s
                            << quint32(0);
    QTest::newRow("Ctrl+comma") << int(Qt::Key_Comma) << int(ctrl) << u"ShowSettingsDialog"_s
                                << quint32(0);
    QTest::newRow("Ctrl+slash") << int(Qt::Key_Slash) << int(ctrl) << u"ShowHelp"_s << quint32(0);
    QTest::newRow("Ctrl+Shift+slash")
        << int(Qt::Key_Slash) << int(ctrlShift) << u"ShowHelp"_s << quint32(0);
    QTest::newRow("Ctrl+Shift+slash as X11 reports it")
        << int(Qt::Key_Question) << int(ctrlShift) << u"ShowHelp"_s << KeyCode::slash;
}

void AppCommandFilterTest::commandsOfLaterWindowsAreConsumedAndRefused()
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
    const LogLines log;
    desk.pressNative(key, code, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(log.count(u"command not available yet: "_s + name), 1);
    QCOMPARE(desk.refusals->count(), 1);
    QCOMPARE(desk.editor()->toPlainText(), u"text"_s);
    QVERIFY(desk.editor()->hasFocus());
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
