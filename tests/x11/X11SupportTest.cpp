// SPDX-License-Identifier: MIT
// The hotkey and the front on a real X server with a window manager.
#include "platform/x11/X11Support.h"
#include "platform/x11/QtX11.h"
#include "x11/XTools.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

constexpr quint8 spaceCode = 65;
constexpr quint8 gCode = 42;
constexpr quint8 jCode = 44;
constexpr unsigned int space = 0x20;
// Not function keys: with Ctrl+Alt the server keeps those for itself.
constexpr unsigned int letterG = 'g';
constexpr unsigned int letterJ = 'j';
constexpr unsigned int letterZ = 'z';
constexpr quint16 ctrlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
const QStringList ctrlAltKeys{u"Control_L"_s, u"Alt_L"_s};

/// Long enough for a press or a wrong activation to arrive.
constexpr int settledMs = 400;

/// Counts what was told about losing the front, and how often it was true.
class DeactivationCounter : public QObject
{
public:
    explicit DeactivationCounter(NativeSupport &support)
        : m_support(support)
    {
        qApp->installEventFilter(this);
        connect(&support, &NativeSupport::notInFront, this, [this](FrontLoss reason) {
            ++events;
            ++(reason == FrontLoss::Lost ? losses : inVain);
        });
    }

    int events = 0;
    int losses = 0;
    int inVain = 0; ///< Coming forward that nothing became of.

private:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == qApp && event->type() == QEvent::ApplicationDeactivate) {
            ++events;
            losses += m_support.areWeFrontProcess() ? 0 : 1;
        }
        return false;
    }

    NativeSupport &m_support;
};

} // namespace

class X11SupportTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void createdWithADisplayItIsTheX11One();
    void hotkeyFiresWhateverTheLocksAre_data();
    void hotkeyFiresWhateverTheLocksAre();
    void hotkeyFiresOncePerPressWhileItIsHeld();
    void hotkeyFiresInEveryLayoutGroup();
    void settingTheHotkeyTwiceLeavesOnlyTheSecond();
    void aKeyThatIsNotTheHotkeyEmitsNothing();
    void aHotkeyThatAnotherProgramHoldsIsNoError();
    void hotkeyFollowsTheKeyboardMap();
    void hotkeyInOurOwnWindowIsNotTyped();
    void windowThatComesForwardByTheHotkeyGetsWhatIsTypedNext();
    void restoringTwiceBringsTheOtherProgramForwardTwice();
    void capturingWhileWeAreInFrontLeavesNothingToRestore();
    void restoringAVanishedWindowIsNoError();
    void captureWorksBeforeItKnowsTheToolkit();
    void requestFrontBringsAWindowForwardThatHadNoUserAction();
    void aStartupIdLendsItsTimeToTheNextRequestAlone();
    void aStartupIdOfAnotherTimeChangesNothing();
    void aStartupIdWithoutATimeChangesNothing_data();
    void aStartupIdWithoutATimeChangesNothing();
    void requestFrontUnminimises();
    void requestFrontBringsTheModalBoxForwardToo();
    void aBoxAnsweredWhileItsOwnerHadTheKeyboardLeavesItThere();
    void losingTheFrontIsToldEvenWhenTheToolkitNoticesNothing();
    void aMomentWithoutAnyActiveWindowIsNoLoss();
    void anotherWindowInFrontForAMomentIsNoLoss();
    void theToolkitsOwnWordOfALossWaitsUntilItHasSettled();
    void theHotkeyEndsTheWaitForALossToSettle();
    void theToolkitsLateWordOfALossFindsUsComingForward();
    void aDialogOfAnotherProcessForOurWindowIsOurs();
    void ourOwnDialogsNeverLoseTheFront();
    void aHiddenWindowThatComesUpLateIsTakenAway();

private:
    quint32 timeOfARequest(XTools::FrontRequestSpy &spy);
    void showInFront();

    std::unique_ptr<NativeSupport> m_support;
    std::unique_ptr<QSignalSpy> m_presses;
    std::unique_ptr<QLineEdit> m_window;
};

void X11SupportTest::init()
{
    m_support = NativeSupport::create();
    m_presses = std::make_unique<QSignalSpy>(m_support.get(), &NativeSupport::hotKeyPressed);
    m_window = std::make_unique<QLineEdit>();
    m_window->setGeometry(500, 300, 300, 60);
}

void X11SupportTest::cleanup()
{
    m_window.reset();
    m_presses.reset();
    m_support.reset();
}

void X11SupportTest::showInFront()
{
    m_window->show();
    m_window->activateWindow();
    m_window->raise();
    m_support->requestFront(m_window->windowHandle());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_COMPARE(XTools::activeWindow(), m_window->winId());
    QVERIFY(m_support->areWeFrontProcess()); // it has noticed, too, before the test goes on
}

void X11SupportTest::createdWithADisplayItIsTheX11One()
{
    QVERIFY(qobject_cast<X11Support *>(m_support.get()));
}

void X11SupportTest::hotkeyFiresWhateverTheLocksAre_data()
{
    QTest::addColumn<QStringList>("locks");
    QTest::addColumn<int>("state");
    QTest::newRow("none") << QStringList{} << 0;
    QTest::newRow("Num Lock") << QStringList{u"Num_Lock"_s} << int(XCB_MOD_MASK_2);
    QTest::newRow("Caps Lock") << QStringList{u"Caps_Lock"_s} << int(XCB_MOD_MASK_LOCK);
    QTest::newRow("Num Lock and Caps Lock")
        << QStringList{u"Num_Lock"_s, u"Caps_Lock"_s} << int(XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK);
}

void X11SupportTest::hotkeyFiresWhateverTheLocksAre()
{
    QFETCH(QStringList, locks);
    QFETCH(int, state);
    m_support->setActivationHotkey(space);
    for (const QString &lock : locks)
        QVERIFY(XTools::press(lock));
    const int stateDuringPress = XTools::modifierState() & 0xff;
    QVERIFY(XTools::press(u"space"_s, ctrlAltKeys));
    QTest::qWait(settledMs);
    for (const QString &lock : locks)
        QVERIFY(XTools::press(lock));
    QCOMPARE(stateDuringPress, state);
    QCOMPARE(m_presses->count(), 1);
}

void X11SupportTest::hotkeyFiresOncePerPressWhileItIsHeld()
{
    m_support->setActivationHotkey(space);
    const EventCounter counter = EventCounter::ofPresses(spaceCode);
    QVERIFY(!XTools::run(
                 u"xdotool"_s,
                 {u"keydown"_s, u"Control_L"_s, u"keydown"_s, u"Alt_L"_s, u"keydown"_s, u"space"_s})
                 .isNull());
    QTest::qWait(1500);
    QVERIFY(
        !XTools::run(u"xdotool"_s,
                     {u"keyup"_s, u"space"_s, u"keyup"_s, u"Alt_L"_s, u"keyup"_s, u"Control_L"_s})
             .isNull());
    QVERIFY2(counter.count > 5, "the keyboard did not repeat the key");
    QCOMPARE(m_presses->count(), 1);
    QVERIFY(XTools::press(u"space"_s, ctrlAltKeys));
    QTRY_COMPARE(m_presses->count(), 2);
}

void X11SupportTest::hotkeyFiresInEveryLayoutGroup()
{
    m_support->setActivationHotkey(space);
    QVERIFY(XTools::setLayout(u"us,ru"_s));
    XTools::lockGroup(1);
    const bool pressed = XTools::press(QString::number(spaceCode), ctrlAltKeys);
    QTest::qWait(settledMs);
    XTools::lockGroup(0);
    QVERIFY(XTools::setLayout(u"us"_s));
    QVERIFY(pressed);
    QCOMPARE(m_presses->count(), 1);
}

void X11SupportTest::settingTheHotkeyTwiceLeavesOnlyTheSecond()
{
    m_support->setActivationHotkey(space);
    m_support->setActivationHotkey(letterG);
    QVERIFY(XTools::press(u"space"_s, ctrlAltKeys));
    QTest::qWait(settledMs);
    QCOMPARE(m_presses->count(), 0);
    QVERIFY(XTools::press(u"g"_s, ctrlAltKeys));
    QTRY_COMPARE(m_presses->count(), 1);
    QVERIFY(OtherGrab(spaceCode, ctrlAlt).held());
    QVERIFY(!OtherGrab(gCode, ctrlAlt).held());
    m_support.reset();
    QVERIFY(OtherGrab(gCode, ctrlAlt).held());
}

void X11SupportTest::aKeyThatIsNotTheHotkeyEmitsNothing()
{
    m_support->setActivationHotkey(space);
    showInFront();
    QVERIFY(XTools::press(u"g"_s, ctrlAltKeys));
    QVERIFY(XTools::press(u"space"_s, {u"Control_L"_s}));
    QVERIFY(XTools::press(u"space"_s, {u"Control_L"_s, u"Alt_L"_s, u"Shift_L"_s}));
    QTest::qWait(settledMs);
    QCOMPARE(m_presses->count(), 0);
}

void X11SupportTest::aHotkeyThatAnotherProgramHoldsIsNoError()
{
    {
        const OtherGrab other(jCode, ctrlAlt);
        QVERIFY(other.held());
        m_support->setActivationHotkey(letterJ);
        QVERIFY(XTools::press(u"j"_s, ctrlAltKeys));
        QTest::qWait(settledMs);
        QCOMPARE(m_presses->count(), 0);
    }
    m_support->setActivationHotkey(letterJ);
    QVERIFY(XTools::press(u"j"_s, ctrlAltKeys));
    QTRY_COMPARE(m_presses->count(), 1);
}

void X11SupportTest::hotkeyFollowsTheKeyboardMap()
{
    constexpr quint8 zOnUs = 52;
    constexpr quint8 zOnGerman = 29;
    m_support->setActivationHotkey(letterZ);
    QVERIFY(XTools::press(QString::number(zOnUs), ctrlAltKeys));
    QTRY_COMPARE(m_presses->count(), 1);
    QVERIFY(XTools::setLayout(u"de"_s));
    const bool pressedOld = XTools::press(QString::number(zOnUs), ctrlAltKeys);
    QTest::qWait(settledMs);
    const qsizetype afterOld = m_presses->count();
    const bool pressedNew = XTools::press(QString::number(zOnGerman), ctrlAltKeys);
    QTest::qWait(settledMs);
    QVERIFY(XTools::setLayout(u"us"_s));
    QVERIFY(pressedOld && pressedNew);
    QCOMPARE(afterOld, 1);
    QCOMPARE(m_presses->count(), 2);
}

void X11SupportTest::hotkeyInOurOwnWindowIsNotTyped()
{
    m_support->setActivationHotkey(space);
    showInFront();
    QVERIFY(XTools::press(u"space"_s, ctrlAltKeys));
    QTRY_COMPARE(m_presses->count(), 1);
    QVERIFY(XTools::press(u"a"_s));
    QTRY_COMPARE(m_window->text(), u"a"_s);
}

void X11SupportTest::windowThatComesForwardByTheHotkeyGetsWhatIsTypedNext()
{
    const OtherProgram other;
    m_support->setActivationHotkey(space);
    connect(m_support.get(), &NativeSupport::hotKeyPressed, m_window.get(), [this] {
        m_support->captureFrontProcessForRestore();
        m_window->show();
        m_window->activateWindow();
        m_window->raise();
        m_support->requestFront(m_window->windowHandle());
    });
    for (int round = 1; round <= 3; ++round) {
        QCOMPARE(XTools::activeWindow(), other.window());
        m_window->clear();
        QVERIFY(!XTools::run(u"xdotool"_s,
                             {u"key"_s, u"ctrl+alt+space"_s, u"sleep"_s, u"0.2"_s, u"type"_s,
                              u"--delay"_s, u"10"_s, u"typed at once"_s})
                     .isNull());
        QTRY_COMPARE(m_window->text(), u"typed at once"_s);
        m_window->hide();
        m_support->restoreCapturedProcess();
        QTRY_COMPARE(XTools::activeWindow(), other.window());
    }
}

void X11SupportTest::restoringTwiceBringsTheOtherProgramForwardTwice()
{
    const OtherProgram other;
    m_support->captureFrontProcessForRestore();
    QVERIFY(!m_support->areWeFrontProcess());
    for (int round = 1; round <= 2; ++round) {
        showInFront();
        QVERIFY(m_support->areWeFrontProcess());
        m_support->restoreCapturedProcess();
        QTRY_COMPARE(XTools::activeWindow(), other.window());
        QTRY_VERIFY(!m_support->areWeFrontProcess());
    }
}

void X11SupportTest::capturingWhileWeAreInFrontLeavesNothingToRestore()
{
    const OtherProgram other;
    m_support->captureFrontProcessForRestore();
    showInFront();
    m_support->captureFrontProcessForRestore();
    m_support->restoreCapturedProcess();
    QTest::qWait(settledMs);
    QCOMPARE(XTools::activeWindow(), m_window->winId());
}

void X11SupportTest::restoringAVanishedWindowIsNoError()
{
    const OtherProgram bystander;
    {
        const OtherProgram other;
        m_support->captureFrontProcessForRestore();
    }
    showInFront();
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    m_support->restoreCapturedProcess();
    QTest::qWait(settledMs);
    QCOMPARE(XTools::activeWindow(), m_window->winId());
    QVERIFY(m_support->areWeFrontProcess());
}

void X11SupportTest::captureWorksBeforeItKnowsTheToolkit()
{
    const OtherProgram other;
    const std::unique_ptr<NativeSupport> fresh = NativeSupport::create();
    fresh->captureFrontProcessForRestore();
    showInFront();
    fresh->restoreCapturedProcess();
    QTRY_COMPARE(XTools::activeWindow(), other.window());
}

void X11SupportTest::requestFrontBringsAWindowForwardThatHadNoUserAction()
{
    const OtherProgram other;
    m_window->setAttribute(Qt::WA_ShowWithoutActivating);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTest::qWait(settledMs);
    QCOMPARE(XTools::activeWindow(), other.window());
    m_support->requestFront(m_window->windowHandle());
    QTRY_COMPARE(XTools::activeWindow(), m_window->winId());
    QVERIFY(XTools::press(u"a"_s));
    QTRY_COMPARE(m_window->text(), u"a"_s);
}

void X11SupportTest::aStartupIdLendsItsTimeToTheNextRequestAlone()
{
    showInFront();
    const auto window = static_cast<xcb_window_t>(m_window->winId());
    XTools::FrontRequestSpy spy;
    const quint32 time = timeOfARequest(spy) - 1;
    m_support->setActivationToken("launcher/brindle/1-2-host_TIME" + QByteArray::number(time));
    m_support->requestFront(m_window->windowHandle());
    QList<quint32> times;
    QTRY_VERIFY((times += spy.timesOf(window)).contains(time));
    m_support->requestFront(m_window->windowHandle());
    times.clear();
    QTRY_VERIFY(!(times += spy.timesOf(window)).isEmpty());
    QVERIFY(!times.contains(time));
}

void X11SupportTest::aStartupIdOfAnotherTimeChangesNothing()
{
    showInFront();
    const auto window = static_cast<xcb_window_t>(m_window->winId());
    XTools::FrontRequestSpy spy;
    const quint32 anHourAgo = timeOfARequest(spy) - 3'600'000;
    m_support->setActivationToken("shell_TIME" + QByteArray::number(anHourAgo));
    m_support->requestFront(m_window->windowHandle());
    QList<quint32> times;
    QTRY_VERIFY(!(times += spy.timesOf(window)).isEmpty());
    QVERIFY(!times.contains(anHourAgo));
    QVERIFY(!times.contains(0));
}

/// The server's time, as our window's request to come forward carries it.
quint32 X11SupportTest::timeOfARequest(XTools::FrontRequestSpy &spy)
{
    const auto window = static_cast<xcb_window_t>(m_window->winId());
    m_support->requestFront(m_window->windowHandle());
    QList<quint32> times;
    [&] { QTRY_VERIFY(!(times += spy.timesOf(window)).isEmpty()); }();
    return times.isEmpty() ? 0 : times.last();
}

void X11SupportTest::aStartupIdWithoutATimeChangesNothing_data()
{
    QTest::addColumn<QByteArray>("token");
    for (const char *token :
         {"", "token", "_TIME", "a_TIME0", "a_TIMEx", "a_TIME42x", "a_TIME99999999999999999999"})
        QTest::newRow(token) << QByteArray(token);
}

void X11SupportTest::aStartupIdWithoutATimeChangesNothing()
{
    QFETCH(QByteArray, token);
    showInFront();
    const auto window = static_cast<xcb_window_t>(m_window->winId());
    XTools::FrontRequestSpy spy;
    m_support->setActivationToken("a_TIME42");
    m_support->setActivationToken(token); // and what came before is forgotten
    m_support->requestFront(m_window->windowHandle());
    QList<quint32> times;
    QTRY_VERIFY(!(times += spy.timesOf(window)).isEmpty());
    QVERIFY(!times.contains(42));
    QVERIFY(!times.contains(0));
}

void X11SupportTest::requestFrontUnminimises()
{
    const OtherProgram other;
    showInFront();
    QVERIFY(!XTools::run(u"xdotool"_s, {u"windowminimize"_s, QString::number(m_window->winId())})
                 .isNull());
    QTRY_VERIFY(m_window->isMinimized());
    QTRY_COMPARE(XTools::activeWindow(), other.window());
    m_support->requestFront(m_window->windowHandle());
    QTRY_COMPARE(XTools::activeWindow(), m_window->winId());
    QTRY_VERIFY(!m_window->isMinimized());
}

void X11SupportTest::requestFrontBringsTheModalBoxForwardToo()
{
    const OtherProgram other;
    showInFront();
    QMessageBox box(QMessageBox::Information, u"box"_s, u"text"_s, QMessageBox::Ok, m_window.get());
    box.open();
    QVERIFY(QTest::qWaitForWindowActive(&box));
    for (const WId window : {box.winId(), m_window->winId()})
        QVERIFY(
            !XTools::run(u"xdotool"_s, {u"windowminimize"_s, QString::number(window)}).isNull());
    QTRY_COMPARE(XTools::activeWindow(), other.window());
    m_support->requestFront(m_window->windowHandle());
    QTRY_COMPARE(XTools::activeWindow(), box.winId());
    QVERIFY(XTools::press(u"Return"_s));
    QTRY_VERIFY(!box.isVisible());
}

void X11SupportTest::aBoxAnsweredWhileItsOwnerHadTheKeyboardLeavesItThere()
{
    showInFront();
    QMessageBox box(QMessageBox::Information, u"box"_s, u"text"_s, QMessageBox::Ok, m_window.get());
    box.setModal(true);
    box.show();
    QVERIFY(QTest::qWaitForWindowActive(&box));
    QTRY_COMPARE(XTools::activeWindow(), box.winId());
    const XTools::SleepingWindowManager asleep; // it would give the box its keyboard back
    const auto owner = static_cast<xcb_window_t>(m_window->winId());
    const EventCounter focusIn = EventCounter::ofFocusIn(owner);
    XTools::giveKeyboard(owner);
    QTRY_COMPARE(focusIn.count, 1);
    QCOMPARE(QGuiApplication::focusWindow(), box.windowHandle());
    box.hide();
    QTRY_COMPARE(QGuiApplication::focusWindow(), m_window->windowHandle());
    QVERIFY(XTools::press(u"x"_s));
    QTRY_COMPARE(m_window->text(), u"x"_s);
}

void X11SupportTest::losingTheFrontIsToldEvenWhenTheToolkitNoticesNothing()
{
    const OtherProgram other;
    showInFront();
    QVERIFY(m_support->areWeFrontProcess());
    const DeactivationCounter counter(*m_support);
    XTools::claimActiveWindow(other.window());
    QTRY_COMPARE(counter.losses, 1);
    QTest::qWait(settledMs);
    QCOMPARE(counter.events, 1);
}

void X11SupportTest::aMomentWithoutAnyActiveWindowIsNoLoss()
{
    const OtherProgram other;
    showInFront();
    const DeactivationCounter counter(*m_support);
    XTools::claimActiveWindow(other.window());
    XTools::claimActiveWindow(0);
    QVERIFY(m_support->areWeFrontProcess());
    XTools::claimActiveWindow(static_cast<xcb_window_t>(m_window->winId()));
    QTest::qWait(2 * settledMs);
    QCOMPARE(counter.events, 0);
    QVERIFY(m_support->areWeFrontProcess());
}

void X11SupportTest::anotherWindowInFrontForAMomentIsNoLoss()
{
    const OtherProgram other;
    showInFront();
    const DeactivationCounter counter(*m_support);
    XTools::claimActiveWindow(other.window());
    QVERIFY(m_support->areWeFrontProcess());
    XTools::claimActiveWindow(static_cast<xcb_window_t>(m_window->winId()));
    QTest::qWait(2 * settledMs);
    QCOMPARE(counter.events, 0);
    QVERIFY(m_support->areWeFrontProcess());
}

void X11SupportTest::theToolkitsOwnWordOfALossWaitsUntilItHasSettled()
{
    const OtherProgram other;
    showInFront();
    const DeactivationCounter counter(*m_support);
    QVERIFY(!XTools::run(u"xdotool"_s, {u"windowactivate"_s, QString::number(other.window())})
                 .isNull());
    QTRY_COMPARE(counter.losses, 1);
    QTest::qWait(settledMs);
    QCOMPARE(counter.events, 2); // the toolkit's, at once, and ours
}

void X11SupportTest::theHotkeyEndsTheWaitForALossToSettle()
{
    m_support->setActivationHotkey(space);
    const OtherProgram other;
    showInFront();
    const DeactivationCounter counter(*m_support);
    qsizetype lossesAtThePress = -1;
    connect(m_support.get(), &NativeSupport::hotKeyPressed, m_window.get(),
            [&] { lossesAtThePress = counter.losses; });
    // Both at once: the press must not have to wait for the time that a loss takes to settle.
    XTools::claimActiveWindow(other.window());
    QVERIFY(m_support->areWeFrontProcess());
    QVERIFY(XTools::press(u"space"_s, ctrlAltKeys));
    QTRY_COMPARE(m_presses->count(), 1);
    QCOMPARE(lossesAtThePress, 1);
    QTest::qWait(settledMs);
    QCOMPARE(counter.events, 1);
}

void X11SupportTest::theToolkitsLateWordOfALossFindsUsComingForward()
{
    m_support->setActivationHotkey(space);
    const OtherProgram other;
    showInFront();
    const DeactivationCounter counter(*m_support);
    QList<int> lossesAroundTheEvent;
    connect(m_support.get(), &NativeSupport::hotKeyPressed, m_window.get(), [&] {
        lossesAroundTheEvent.append(counter.losses);
        // What the toolkit sends once it has noticed, too, that the keyboard is elsewhere.
        QEvent late(QEvent::ApplicationDeactivate);
        QCoreApplication::sendEvent(QCoreApplication::instance(), &late);
        lossesAroundTheEvent.append(counter.losses);
    });
    XTools::claimActiveWindow(other.window());
    QVERIFY(m_support->areWeFrontProcess());
    QVERIFY(XTools::press(u"space"_s, ctrlAltKeys));
    QTRY_COMPARE(m_presses->count(), 1);
    QCOMPARE(lossesAroundTheEvent, (QList<int>{1, 1}));
    // Nobody brought a window forward: it never came, but it didn't lose anything either.
    QTRY_COMPARE(counter.inVain, 1);
    QCOMPARE(counter.losses, 1);
}

void X11SupportTest::aDialogOfAnotherProcessForOurWindowIsOurs()
{
    const OtherProgram other;
    showInFront();
    XTools::claimActiveWindow(other.window());
    QTRY_VERIFY(!m_support->areWeFrontProcess());
    const auto ours = static_cast<xcb_window_t>(m_window->winId());
    xcb_change_property(QtX11::connection(), XCB_PROP_MODE_REPLACE, other.window(),
                        XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 32, 1, &ours);
    xcb_flush(QtX11::connection());
    QTRY_VERIFY(m_support->areWeFrontProcess());
}

void X11SupportTest::ourOwnDialogsNeverLoseTheFront()
{
    const OtherProgram other;
    showInFront();
    const DeactivationCounter counter(*m_support);
    for (int round = 1; round <= 3; ++round) {
        QMessageBox box(QMessageBox::Question, u"box"_s, u"text"_s, QMessageBox::Ok,
                        m_window.get());
        box.open();
        QVERIFY(QTest::qWaitForWindowActive(&box));
        box.close();
        QFileDialog dialog(m_window.get());
        dialog.open();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        dialog.close();
        QTRY_COMPARE(XTools::activeWindow(), m_window->winId());
    }
    QTest::qWait(2 * settledMs);
    QCOMPARE(counter.losses, 0);
}

void X11SupportTest::aHiddenWindowThatComesUpLateIsTakenAway()
{
    const OtherProgram other;
    showInFront();
    const auto window = static_cast<xcb_window_t>(m_window->winId());
    m_window->hide();
    QTRY_COMPARE(XTools::activeWindow(), other.window());
    QVERIFY(!XTools::run(u"xdotool"_s, {u"windowmap"_s, QString::number(window)}).isNull());
    QTest::qWait(settledMs);
    QVERIFY(!XTools::isMapped(window));
    QCOMPARE(XTools::activeWindow(), other.window());
    m_window->show();
    QTRY_VERIFY(XTools::isMapped(window));
    QTest::qWait(settledMs);
    QVERIFY(XTools::isMapped(window));
}

QTEST_MAIN(X11SupportTest)
#include "X11SupportTest.moc"
