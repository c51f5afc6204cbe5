// SPDX-License-Identifier: MIT
#include "app/AppLifecycle.h"

#include "InstancePeers.h"
#include "RunningProgram.h"
#include "app/activation/InstanceEndpoint.h"
#include "model/TodoListModel.h"
#include "shared/TextHelpers.h"
#include "ui/FindWindow.h"
#include "ui/TodoListWindow.h"

#include <QFileOpenEvent>
#include <QListView>
#include <QLocalSocket>
#include <QSplashScreen>
#include <QtTest>

using namespace Qt::StringLiterals;
using InstancePeers::BoxUser;

namespace
{
/// Notes when a window is raised, among what else the test notes.
class RaiseNote : public QObject
{
public:
    RaiseNote(QWidget *window, QStringList *notes)
        : QObject(window)
        , m_notes(notes)
    {
        window->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ZOrderChange)
            m_notes->append(u"raised"_s);
        return false;
    }

private:
    QStringList *m_notes;
};
} // namespace

/// Start-up, wiring and end of the real components.
class AppLifecycleTest : public QObject
{
    Q_OBJECT

private slots:
    void settingsHoldingAppstartedLoseThatKey();
    void clickingTheSplashRightAwayHandsOverToTheMainWindow();
    void aModifierKeyLeavesTheSplash();
    void theEditorHoldsTheRootsTextFromTheStart();
    void aJumpActivatesTheMainWindowBeforeTheModelMoves_data();
    void aJumpActivatesTheMainWindowBeforeTheModelMoves();
    void anEntryIsOnTheListBeforeTheListShowsIt();
    void theHotkeyTogglesTheApplication();
    void theDesktopKnowsItsMenuEntry();
    void theEndClosesTheFilesAndLeavesTheSettings();
    void aFileNamedByAnEventBeforeStartUpIsOpened();
    void anAddressBeforeStartUpIsNoFile();
    void startUpTakesNoFilesLater();
    void theSplashTextsFollowEachOther();
    void aSplashEndedBeforeStartUpIsDoneShowsTheMainWindowAtItsEnd();
    void anotherCopysWishToTerminateReachesTheQuestion();
    void wishesToTerminateDuringABoxGiveOneQuestion();
    // Once the event loop has been ended the toolkit lets no box run, so these come last.
    void theDesktopsQuitDuringStartUpDoesNoHarm();
    void theDesktopsQuitSavesTheTypedText();
};

void AppLifecycleTest::settingsHoldingAppstartedLoseThatKey()
{
    RunningProgram program;
    QVERIFY(QSettings().contains(u"appstarted"_s));
    program.start();
    QVERIFY(!QSettings().contains(u"appstarted"_s));
}

void AppLifecycleTest::clickingTheSplashRightAwayHandsOverToTheMainWindow()
{
    RunningProgram program;
    program.start();
    auto *splash = RunningProgram::window<QSplashScreen>();
    QVERIFY(splash && splash->isVisible());
    QVERIFY(!RunningProgram::window<HierarchyWindow>()->isVisible());
    QTest::mouseClick(splash, Qt::LeftButton);
    QTRY_VERIFY(RunningProgram::window<HierarchyWindow>()->isVisible());
    QTRY_VERIFY(!splash->isVisible());
}

void AppLifecycleTest::aModifierKeyLeavesTheSplash()
{
    RunningProgram program;
    program.start();
    auto *splash = RunningProgram::window<QSplashScreen>();
    QTest::keyPress(splash, Qt::Key_Control);
    QTest::keyRelease(splash, Qt::Key_Control);
    QVERIFY(splash->isVisible());
    QTest::keyClick(splash, Qt::Key_Space);
    QTRY_VERIFY(RunningProgram::window<HierarchyWindow>()->isVisible());
}

void AppLifecycleTest::theEditorHoldsTheRootsTextFromTheStart()
{
    RunningProgram program;
    program.start();
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"a.bdl"_s);
    program.lifecycle->stopSplashScreen();
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"a.bdl"_s);
}

void AppLifecycleTest::aJumpActivatesTheMainWindowBeforeTheModelMoves_data()
{
    QTest::addColumn<bool>("fromTheList");
    QTest::addRow("to-do list") << true;
    QTest::addRow("find window") << false;
}

void AppLifecycleTest::aJumpActivatesTheMainWindowBeforeTheModelMoves()
{
    QFETCH(const bool, fromTheList);
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    auto *mainWindow = RunningProgram::window<HierarchyWindow>();
    QTRY_VERIFY(mainWindow->isVisible());
    QStringList notes;
    const RaiseNote raiseNote(mainWindow, &notes);
    connect(RunningProgram::editor(), &QPlainTextEdit::textChanged, this,
            [&notes] { notes.append(u"moved"_s); });
    const EntryAddress address{0, program.second};
    if (fromTheList)
        emit RunningProgram::window<TodoListWindow>()->jumpToEntryInHierarchy(address);
    else
        emit RunningProgram::window<FindWindow>()->jumpToEntryInHierarchy(address);
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"two"_s);
    QCOMPARE(notes.value(0), u"raised"_s);
    QVERIFY(notes.contains(u"moved"_s));
}

void AppLifecycleTest::anEntryIsOnTheListBeforeTheListShowsIt()
{
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    auto *mainWindow = RunningProgram::window<HierarchyWindow>();
    auto *todoWindow = RunningProgram::window<TodoListWindow>();
    QTRY_VERIFY(mainWindow->isVisible());
    // The list selects the first row when it doesn't know the wanted one; a row on it that isn't
    // the new one tells the two orders apart.
    auto *view = todoWindow->findChild<QListView *>();
    auto *model = qobject_cast<TodoListModel *>(view->model());
    model->addTodo(EntryAddress{0, program.second});
    todoWindow->showWindow();
    todoWindow->hide();
    for (const int key : {Qt::Key_L, Qt::Key_Equal})
        QTest::keyClick(mainWindow->windowHandle(), Qt::Key(key), Qt::ControlModifier);
    QCOMPARE(model->rowCount(), 2);
    QVERIFY(todoWindow->isVisible());
    QCOMPARE(view->selectionModel()->selectedIndexes().size(), 1);
    QCOMPARE(view->selectionModel()->selectedIndexes().first().data().toString(), u"one"_s);
}

void AppLifecycleTest::theHotkeyTogglesTheApplication()
{
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    auto *mainWindow = RunningProgram::window<HierarchyWindow>();
    QTRY_VERIFY(mainWindow->isVisible());
    QCOMPARE(program.native.hotkeys.size(), 1);
    program.native.pressHotkey();
    QVERIFY(!mainWindow->isVisible());
    QCOMPARE(program.native.restores, 1);
    program.native.pressHotkey();
    QVERIFY(mainWindow->isVisible());
    QCOMPARE(program.native.captures, 1);
}

void AppLifecycleTest::theDesktopKnowsItsMenuEntry()
{
    RunningProgram program;
    program.start();
    QCOMPARE(QGuiApplication::desktopFileName(), u"example.osterlane.Brindle"_s);
}

void AppLifecycleTest::theEndClosesTheFilesAndLeavesTheSettings()
{
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    program.lifecycle->shutdown();
    QCOMPARE(QSettings().value(u"loadfiles/0"_s).toString(), program.settings.filePath(u"a.bdl"_s));
    const DiskStore store(program.settings.filePath(u"a.bdl"_s));
    QCOMPARE(store.dbFileName(), u"a.bdl"_s);
}

void AppLifecycleTest::aFileNamedByAnEventBeforeStartUpIsOpened()
{
    RunningProgram program;
    const QString path = program.settings.filePath(u"b.bdl"_s);
    DiskStore(path).commitAndRestartTransaction();
    program.lifecycle = std::make_unique<AppLifecycle>(qApp, &program.native, QStringList());
    QFileOpenEvent event(path);
    QVERIFY(QCoreApplication::sendEvent(qApp, &event));
    program.lifecycle->startup();
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"b.bdl"_s);
}

void AppLifecycleTest::anAddressBeforeStartUpIsNoFile()
{
    RunningProgram program;
    program.lifecycle = std::make_unique<AppLifecycle>(qApp, &program.native, QStringList());
    QFileOpenEvent event(QUrl(u"https://maker.example/b.bdl"_s));
    QVERIFY(!QCoreApplication::sendEvent(qApp, &event));
    program.lifecycle->startup();
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"a.bdl"_s);
}

void AppLifecycleTest::startUpTakesNoFilesLater()
{
    RunningProgram program;
    program.start();
    QFileOpenEvent event(program.settings.filePath(u"b.bdl"_s));
    QVERIFY(!QCoreApplication::sendEvent(qApp, &event)); // left to whoever serves the desktop
}

void AppLifecycleTest::theDesktopsQuitSavesTheTypedText()
{
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    RunningProgram::editor()->setPlainText(u"typed"_s);
    // The loop ends by it, although the main window never closes.
    QTimer::singleShot(0, qApp, [] {
        QEvent quit(QEvent::Quit);
        QCoreApplication::sendEvent(qApp, &quit);
    });
    const BoxUser nobody(u"Cancel"_s);
    QCOMPARE(QCoreApplication::exec(), 0);
    QVERIFY(nobody.seen.isEmpty());
    program.lifecycle->shutdown();
    DiskStore store(program.settings.filePath(u"a.bdl"_s));
    QCOMPARE(store.getRootExcerpt(), u"typed"_s);
}

void AppLifecycleTest::theDesktopsQuitDuringStartUpDoesNoHarm()
{
    RunningProgram program;
    program.lifecycle = std::make_unique<AppLifecycle>(qApp, &program.native, QStringList());
    QEvent quit(QEvent::Quit);
    QVERIFY(QCoreApplication::sendEvent(qApp, &quit));
    program.lifecycle->startup();
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"a.bdl"_s);
}

void AppLifecycleTest::theSplashTextsFollowEachOther()
{
    RunningProgram program;
    program.start();
    auto *splash = RunningProgram::window<QSplashScreen>();
    QStringList texts;
    connect(splash, &QSplashScreen::messageChanged, this,
            [&texts](const QString &text) { texts.append(text); });
    for (int step = 0; step < 3; ++step)
        program.lifecycle->nextSplashScreenState();
    QCOMPARE(texts,
             (QStringList{u"Brindle, v0.3"_s, Global::getCopyrightString(false),
                          u"press Ctrl+/ for help"_s}));
    QVERIFY(splash->isVisible());
    program.lifecycle->nextSplashScreenState();
    QTRY_VERIFY(!splash->isVisible());
    QVERIFY(RunningProgram::window<HierarchyWindow>()->isVisible());
}

void AppLifecycleTest::aSplashEndedBeforeStartUpIsDoneShowsTheMainWindowAtItsEnd()
{
    RunningProgram program;
    program.lifecycle = std::make_unique<AppLifecycle>(qApp, &program.native, QStringList());
    program.lifecycle->stopSplashScreen(); // clicked away while start-up asks something
    program.lifecycle->startup();
    QVERIFY(RunningProgram::window<HierarchyWindow>()->isVisible());
    QVERIFY(!RunningProgram::window<QSplashScreen>()->isVisible());
}

void AppLifecycleTest::anotherCopysWishToTerminateReachesTheQuestion()
{
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    RunningProgram::editor()->setPlainText(u"typed"_s);
    const BoxUser user(u"Cancel"_s);
    QLocalSocket other;
    other.connectToServer(InstanceEndpoint().socketPath());
    QVERIFY(InstancePeers::send(other, InstancePeers::numbers({3})));
    QTRY_COMPARE(user.seen.size(), 1);
    QCOMPARE(user.seen.first().title, u"Save changes?"_s);
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"typed"_s);
}

void AppLifecycleTest::wishesToTerminateDuringABoxGiveOneQuestion()
{
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    RunningProgram::editor()->setPlainText(u"typed"_s);
    QDialog box; // of a kind that the user in this test doesn't answer
    box.setModal(true);
    box.show();
    QLocalSocket other;
    other.connectToServer(InstanceEndpoint().socketPath());
    const BoxUser user(u"Cancel"_s);
    for (int wish = 0; wish < 3; ++wish)
        QVERIFY(InstancePeers::send(other, InstancePeers::numbers({3})));
    // The answer to this comes after them.
    QCOMPARE(InstancePeers::askVersion(InstanceEndpoint().socketPath()),
             InstancePeers::numbers({0, 3}));
    QVERIFY(user.seen.isEmpty());
    box.hide();
    QTRY_COMPARE(user.seen.size(), 1);
    QTest::qWait(400); // time for another look
    QCOMPARE(user.seen.size(), 1);
    // The next one is a wish of its own.
    QVERIFY(InstancePeers::send(other, InstancePeers::numbers({3})));
    QTRY_COMPARE(user.seen.size(), 2);
}

QTEST_MAIN(AppLifecycleTest)
#include "AppLifecycleTest.moc"
