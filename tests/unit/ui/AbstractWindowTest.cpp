// SPDX-License-Identifier: MIT
#include "ui/AbstractWindow.h"
#include "fakes/TestSettings.h"
#include "shared/Refusal.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{
constexpr int saved = AbstractWindow::saveDelayMs + 200;

class SomeWindow : public AbstractWindow
{
public:
    SomeWindow() { setGeometry(70, 80, 300, 150); }
    QString getWindowName() const override { return u"SomeWindow"_s; }
    void activate() override { ++activations; }

    int activations = 0;
    int refusals = 0;

protected:
    void showRefusal() override { ++refusals; }
};

QPoint storedPos()
{
    return QSettings().value(u"SomeWindow/pos"_s).toPoint();
}

/// The timer that runs between a move or a resize and the storing of the place.
QTimer &saveTimer(const AbstractWindow &window)
{
    for (QTimer *timer : window.findChildren<QTimer *>()) {
        if (timer->isSingleShot() && timer->interval() == AbstractWindow::saveDelayMs)
            return *timer;
    }
    qFatal("no timer");
}

/// Waits until what has happened to the window's place so far is stored, or is not to be.
bool hasSettled(const AbstractWindow &window)
{
    return QTest::qWaitFor([&] { return !saveTimer(window).isActive(); });
}

bool isShown(QWidget &window)
{
    return QTest::qWaitForWindowExposed(&window);
}
} // namespace

/// As the base makes it.
class PlainWindow : public AbstractWindow
{
public:
    QString getWindowName() const override { return u"PlainWindow"_s; }
};

class AbstractWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void firstRunKeepsTheConstructorsPlaceAndOneMoveStoresIt();
    void storedPositionAloneIsApplied();
    void storedSizeAloneIsApplied();
    void activationOfTheApplicationNeverShowsOrChangesAWindow();
    void deactivationHidesAVisibleWindowOnceAndLeavesAHiddenOneAlone();
    void restoreOfAVisibleWindowDoesNotMoveIt();
    void restoreBringsUpAHiddenWindowAtItsStoredPlace();
    void restoreActivatesWithTheBaseVersion();
    void burstOfMovesGivesASingleSave();
    void movesAndResizesDelayTheSave();
    void minimisingIsNotHiding();
    void minimisedWindowComesBack();
    void placeOutsideEveryScreenIsShownOnTheNearestAndStaysStored();
    void correctedPlaceIsStoredOnceTheUserMovesTheWindow();
    void placeThatMeetsAScreenIsLeftAsItIs();
    void refusalReachesTheHook();
    void whoBelongsToAnotherWindowIsTiedToItOnceShown();
    void hidingStoresNoPlaceWhenNothingHasMoved();
    void aShownWindowsPlaceIsWatchedForAWhileOnly();
    void refusalFlashesTheWholeWindow();
    void refusalIsShownWhereTheUserIsAndWhereTheReasonIs();
};

void AbstractWindowTest::firstRunKeepsTheConstructorsPlaceAndOneMoveStoresIt()
{
    const TestSettings settings;
    SomeWindow window;
    const QRect before = window.geometry();
    window.restoreSizeAndPos();
    QCOMPARE(window.geometry(), before);
    QVERIFY(!QSettings().contains(u"SomeWindow/pos"_s));

    window.restoreShowAndActivate();
    QVERIFY(isShown(window));
    window.move(120, 130);
    QTRY_COMPARE_WITH_TIMEOUT(storedPos(), QPoint(120, 130), saved);
    QCOMPARE(QSettings().value(window.getWindowSizeSettingsKey()).toSize(), QSize(300, 150));
}

void AbstractWindowTest::storedPositionAloneIsApplied()
{
    const TestSettings settings;
    QSettings().setValue(u"SomeWindow/pos"_s, QPoint(33, 44));
    SomeWindow window;
    window.restoreSizeAndPos();
    QCOMPARE(window.pos(), QPoint(33, 44));
    QCOMPARE(window.size(), QSize(300, 150));
}

void AbstractWindowTest::storedSizeAloneIsApplied()
{
    const TestSettings settings;
    QSettings().setValue(u"SomeWindow/size"_s, QSize(222, 111));
    SomeWindow window;
    const QPoint before = window.pos();
    window.restoreSizeAndPos();
    QCOMPARE(window.pos(), before);
    QCOMPARE(window.size(), QSize(222, 111));
}

void AbstractWindowTest::activationOfTheApplicationNeverShowsOrChangesAWindow()
{
    const TestSettings settings;
    SomeWindow window;
    window.hideOnDeactivate(true);
    QVERIFY(!window.isVisible());

    window.show();
    QVERIFY(isShown(window));
    const QRect before = window.geometry();
    const QSignalSpy hiding(&window, &AbstractWindow::hiding);
    window.hideOnDeactivate(true);
    QVERIFY(window.isVisible());
    QCOMPARE(window.geometry(), before);
    QCOMPARE(hiding.count(), 0);
}

void AbstractWindowTest::deactivationHidesAVisibleWindowOnceAndLeavesAHiddenOneAlone()
{
    const TestSettings settings;
    SomeWindow window;
    const QSignalSpy hiding(&window, &AbstractWindow::hiding);
    window.hideOnDeactivate(false);
    QCOMPARE(hiding.count(), 0);

    window.show();
    window.hideOnDeactivate(false);
    QVERIFY(!window.isVisible());
    QCOMPARE(hiding.count(), 1);
    window.hideOnDeactivate(false);
    QCOMPARE(hiding.count(), 1);
}

void AbstractWindowTest::restoreOfAVisibleWindowDoesNotMoveIt()
{
    const TestSettings settings;
    SomeWindow window;
    window.restoreShowAndActivate();
    QVERIFY(isShown(window));
    window.move(200, 210);
    QSettings().setValue(u"SomeWindow/pos"_s, QPoint(10, 20));
    window.restoreShowAndActivate();
    QCOMPARE(window.pos(), QPoint(200, 210));
}

void AbstractWindowTest::restoreBringsUpAHiddenWindowAtItsStoredPlace()
{
    const TestSettings settings;
    QSettings().setValue(u"SomeWindow/pos"_s, QPoint(150, 160));
    QSettings().setValue(u"SomeWindow/size"_s, QSize(320, 180));
    SomeWindow window;
    for (int round = 0; round < 20; ++round) {
        window.restoreShowAndActivate();
        QVERIFY(isShown(window));
        QCOMPARE(window.pos(), QPoint(150, 160));
        QCOMPARE(window.size(), QSize(320, 180));
        window.hideOnDeactivate(false);
    }
}

void AbstractWindowTest::restoreActivatesWithTheBaseVersion()
{
    const TestSettings settings;
    SomeWindow window;
    window.restoreShowAndActivate();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QCOMPARE(window.activations, 0);
}

void AbstractWindowTest::burstOfMovesGivesASingleSave()
{
    const TestSettings settings;
    SomeWindow window;
    window.show();
    QVERIFY(isShown(window));
    QTRY_VERIFY_WITH_TIMEOUT(QSettings().contains(u"SomeWindow/pos"_s), saved);
    QSettings().remove(u"SomeWindow/pos"_s);

    for (int step = 0; step < 8; ++step) {
        window.move(100 + step, 100);
        QTest::qWait(AbstractWindow::saveDelayMs / 4);
        QVERIFY(!QSettings().contains(u"SomeWindow/pos"_s));
    }
    QTRY_COMPARE_WITH_TIMEOUT(storedPos(), QPoint(107, 100), saved);

    const QPoint mark(1, 2);
    QSettings().setValue(u"SomeWindow/pos"_s, mark);
    QVERIFY(!saveTimer(window).isActive()); // nothing is stored later on either
    QCOMPARE(storedPos(), mark);
}

void AbstractWindowTest::movesAndResizesDelayTheSave()
{
    const TestSettings settings;
    SomeWindow window;
    window.show();
    QVERIFY(isShown(window));
    QVERIFY(hasSettled(window));
    window.resize(250, 140);
    QTRY_COMPARE_WITH_TIMEOUT(QSettings().value(u"SomeWindow/size"_s).toSize(), QSize(250, 140),
                              saved);
}

void AbstractWindowTest::minimisingIsNotHiding()
{
    const TestSettings settings;
    SomeWindow window;
    window.show();
    const QSignalSpy hiding(&window, &AbstractWindow::hiding);
    QHideEvent minimised;
    QSpontaneKeyEvent::setSpontaneous(&minimised);
    QVERIFY(minimised.spontaneous());
    qApp->notify(&window, &minimised); // sending it would take the mark off again
    QCOMPARE(hiding.count(), 0);
}

void AbstractWindowTest::minimisedWindowComesBack()
{
    const TestSettings settings;
    SomeWindow window;
    window.restoreShowAndActivate();
    window.showMinimized();
    QVERIFY(window.isMinimized());
    window.restoreShowAndActivate();
    QVERIFY(!window.isMinimized());

    window.showMinimized();
    window.hide();
    window.restoreShowAndActivate();
    QVERIFY(window.isVisible());
    QVERIFY(!window.isMinimized());

    window.showMinimized();
    window.AbstractWindow::activate();
    QVERIFY(!window.isMinimized());
}

void AbstractWindowTest::placeOutsideEveryScreenIsShownOnTheNearestAndStaysStored()
{
    const TestSettings settings;
    const QPoint gone(9000, 120);
    QSettings().setValue(u"SomeWindow/pos"_s, gone);
    SomeWindow window;
    for (int round = 0; round < 3; ++round) {
        window.restoreShowAndActivate();
        QVERIFY(isShown(window));
        const QRect available = window.screen()->availableGeometry();
        QVERIFY(available.contains(window.frameGeometry().topLeft()));
        QVERIFY(available.intersects(window.frameGeometry()));
        QVERIFY(hasSettled(window));
        QCOMPARE(storedPos(), gone);
        window.hideOnDeactivate(false);
    }
    // Resizing is no reason to forget the place either.
    window.restoreShowAndActivate();
    window.resize(310, 160);
    QTRY_COMPARE_WITH_TIMEOUT(QSettings().value(u"SomeWindow/size"_s).toSize(), QSize(310, 160),
                              saved);
    QCOMPARE(storedPos(), gone);
}

void AbstractWindowTest::correctedPlaceIsStoredOnceTheUserMovesTheWindow()
{
    const TestSettings settings;
    QSettings().setValue(u"SomeWindow/pos"_s, QPoint(-5000, -5000));
    SomeWindow window;
    window.restoreShowAndActivate();
    QVERIFY(isShown(window));
    QVERIFY(hasSettled(window));
    const QPoint moved = window.pos() + QPoint(15, 0);
    window.move(moved);
    QTRY_COMPARE_WITH_TIMEOUT(storedPos(), moved, saved);
}

void AbstractWindowTest::placeThatMeetsAScreenIsLeftAsItIs()
{
    const TestSettings settings;
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    const QPoint halfOut(screen.right() - 40, screen.bottom() - 40);
    QSettings().setValue(u"SomeWindow/pos"_s, halfOut);
    SomeWindow window;
    window.restoreShowAndActivate();
    QVERIFY(isShown(window));
    QCOMPARE(window.pos(), halfOut);
}

void AbstractWindowTest::refusalReachesTheHook()
{
    const TestSettings settings;
    SomeWindow window;
    window.restoreShowAndActivate();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    Refusal::refuse();
    QCOMPARE(window.refusals, 1);
}

void AbstractWindowTest::refusalFlashesTheWholeWindow()
{
    const TestSettings settings;
    PlainWindow window;
    window.resize(300, 200);
    window.restoreShowAndActivate();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto *flash = window.findChild<QWidget *>(u"refusalFlash"_s);
    QVERIFY(!flash->isVisible());
    Refusal::refuse();
    QVERIFY(flash->isVisible());
    QCOMPARE(flash->geometry(), window.rect());
    QCOMPARE(window.grab().toImage().pixelColor(1, 1).name(), u"#bb6600"_s);
    QTRY_VERIFY(!flash->isVisible());
}

void AbstractWindowTest::refusalIsShownWhereTheUserIsAndWhereTheReasonIs()
{
    const TestSettings settings;
    SomeWindow other;
    other.show();
    SomeWindow active;
    active.restoreShowAndActivate();
    QVERIFY(QTest::qWaitForWindowActive(&active));
    Refusal::refuse();
    QCOMPARE(active.refusals, 1);
    QCOMPARE(other.refusals, 0);
    Refusal::refuse(&other);
    QCOMPARE(active.refusals, 2);
    QCOMPARE(other.refusals, 1);
    Refusal::refuse(&active);
    QCOMPARE(active.refusals, 3);
}

void AbstractWindowTest::whoBelongsToAnotherWindowIsTiedToItOnceShown()
{
    const TestSettings settings;
    SomeWindow owner;
    owner.restoreShowAndActivate();
    SomeWindow list;
    list.belongTo(owner);
    list.restoreShowAndActivate();
    QCOMPARE(list.windowHandle()->transientParent(), owner.windowHandle());
    // Whom the keyboard goes to when it hides is for the window manager to hear.
    QWindow *parentWhileHiding = owner.windowHandle();
    connect(&list, &AbstractWindow::hiding, &owner,
            [&] { parentWhileHiding = list.windowHandle()->transientParent(); });
    list.hide();
    QVERIFY(!parentWhileHiding);
}

void AbstractWindowTest::hidingStoresNoPlaceWhenNothingHasMoved()
{
    const TestSettings settings;
    SomeWindow window;
    window.show();
    QVERIFY(isShown(window));
    QTRY_VERIFY(QSettings().contains(u"SomeWindow/pos"_s));
    QTRY_VERIFY(!saveTimer(window).isActive());
    // What another program, or the user, has put there meanwhile stays.
    const QPoint mark(1, 2);
    QSettings().setValue(u"SomeWindow/pos"_s, mark);
    window.setVisible(false);
    QCOMPARE(storedPos(), mark);
}

// Window managers that shift it are played by the end-to-end tests.
void AbstractWindowTest::aShownWindowsPlaceIsWatchedForAWhileOnly()
{
    const TestSettings settings;
    SomeWindow window;
    const auto isWatched = [&window] {
        const auto timers = window.findChildren<QTimer *>(Qt::FindDirectChildrenOnly);
        return std::any_of(timers.begin(), timers.end(), [](const QTimer *timer) {
            return timer->isActive() && !timer->isSingleShot();
        });
    };
    QVERIFY(!isWatched());
    window.restoreShowAndActivate();
    QVERIFY(isWatched());
    window.hide();
    QTRY_VERIFY(!isWatched());
}

QTEST_MAIN(AbstractWindowTest)
#include "AbstractWindowTest.moc"
