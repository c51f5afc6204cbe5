// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "fakes/RecordingNativeSupport.h"
#include "fakes/TestSettings.h"

#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 minute = 60'000;

/// An activation over a desktop and settings of the test's own.
struct Bench {
    TestSettings settings;
    RecordingNativeSupport desktop;
    AppActivationSupport activation{&desktop};
    QSignalSpy changes{&activation, &AppActivationSupport::activationChanged};

    Bench()
    {
        QObject::connect(&desktop, &NativeSupport::hotKeyPressed, &activation,
                         &AppActivationSupport::toggleActivationWithProcessHandling);
    }

    /// The confirmation's timer, which is the only one whose interval is its delay.
    QTimer *confirmation() const
    {
        const auto timers = activation.findChildren<QTimer *>(Qt::FindDirectChildrenOnly);
        return timers.size() == 1 ? timers.first() : nullptr;
    }

    static void tellDeactivated()
    {
        QEvent event(QEvent::ApplicationDeactivate);
        QCoreApplication::sendEvent(qApp, &event);
    }
};

} // namespace

class AppActivationSupportTest : public QObject
{
    Q_OBJECT

private slots:
    void itStartsInactiveWithoutAnActivationTimer();
    void anEmptySettingsStoreGivesTheDefaults();
    void settersWriteThroughAtOnce();
    void settingTheHotkeyStoresBothKeysAndRegistersIt();
    void installingTheHotkeyRegistersTheStoredNativeKey();
    void thePrefixIsThatOfThePlatform();
    void activationCapturesThenSignalsOnce();
    void activationWithoutCaptureLeavesTheFrontProcessAlone();
    void activatingTwiceDoesNothingTheSecondTime();
    void activationStopsTheActivationTimer();
    void hotkeyWhileActiveHandsTheFrontBackAndASecondPressCapturesAnew();
    void deactivationSignalsBeforeItRestores();
    void aDeactivateEventInAnotherProcesssFavourDeactivatesWithTheNormalPeriod();
    void aDeactivateEventWhileWeAreInFrontIsIgnored();
    void aLossToldByThePlatformDeactivatesWithTheNormalPeriod();
    void anActivationThatNeverTookIsLeftToTheConfirmation();
    void comingForwardInVainAfterTheConfirmationDeactivatesAccelerated();
    void otherEventsAreIgnoredAndNoneIsConsumed();
    void withoutAnEventTheConfirmationDeactivatesAcceleratedAfterSevenSeconds();
    void theConfirmationKeepsAnActivationThatTook();
    void theConfirmationDoesNothingWhenInactive();
    void withADelayOfOneMinuteAnAcceleratedReactivationTakesOneMinuteNotTwo();
    void acceleratedReactivationTakesTwoMinutesAtMost();
    void periodsOfZeroOrLessAreUsedAsTheyAre();
    void withAutomaticActivationOffNoDeactivationStartsTheTimer();
    void longPeriodsDoNotOverflow_data();
    void longPeriodsDoNotOverflow();
    void theActivationTimerActivatesWithCapture();
    void deactivatingWhileInactiveDoesNothing();
    void changedSettingsLeaveARunningTimerAlone();
    void eventsAfterItsEndReachNobody();
    void frontRequestsGoToThePlatform();
};

void AppActivationSupportTest::itStartsInactiveWithoutAnActivationTimer()
{
    const Bench bench;
    QVERIFY(!bench.activation.isAppActive());
    QVERIFY(!bench.activation.isActivationTimerActive());
    QVERIFY(bench.confirmation());
    QVERIFY(!bench.confirmation()->isActive());
}

void AppActivationSupportTest::anEmptySettingsStoreGivesTheDefaults()
{
    const Bench bench;
    QCOMPARE(bench.activation.getHotkeyKey(), int(Qt::Key_Space));
    QCOMPARE(bench.activation.getHotkeyNativeVirtualKey(), 0x20U);
    QVERIFY(bench.activation.isAutomaticActivationEnabled());
    QCOMPARE(bench.activation.getAutomaticActivationPeriod(), 30);
    QVERIFY(QSettings().allKeys().isEmpty());
}

void AppActivationSupportTest::settersWriteThroughAtOnce()
{
    Bench bench;
    bench.activation.setAutomaticActivationEnabled(false);
    bench.activation.setAutomaticActivationPeriod(45);
    // Read past every cache, as another process would.
    QFile file(QSettings().fileName());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QVERIFY2(text.contains("automaticactivation=false"), text.constData());
    QVERIFY2(text.contains("automaticactivationdelay=45"), text.constData());
    QVERIFY(!bench.activation.isAutomaticActivationEnabled());
    QCOMPARE(bench.activation.getAutomaticActivationPeriod(), 45);
}

void AppActivationSupportTest::settingTheHotkeyStoresBothKeysAndRegistersIt()
{
    Bench bench;
    bench.activation.setHotkeyKey(Qt::Key_F5, 0xffc2);
    QCOMPARE(QSettings().value(u"activationhotkey"_s).toInt(), int(Qt::Key_F5));
    QCOMPARE(QSettings().value(u"activationhotkeynative"_s).toUInt(), 0xffc2U);
    QCOMPARE(bench.activation.getHotkeyKey(), int(Qt::Key_F5));
    QCOMPARE(bench.activation.getHotkeyNativeVirtualKey(), 0xffc2U);
    QCOMPARE(bench.desktop.hotkeys, QList<unsigned int>{0xffc2U});
}

void AppActivationSupportTest::installingTheHotkeyRegistersTheStoredNativeKey()
{
    Bench bench;
    bench.activation.installHotkey();
    QSettings().setValue(u"activationhotkeynative"_s, 0x61);
    bench.activation.installHotkey();
    QCOMPARE(bench.desktop.hotkeys, (QList<unsigned int>{0x20U, 0x61U}));
}

void AppActivationSupportTest::thePrefixIsThatOfThePlatform()
{
    const Bench bench;
    QCOMPARE(bench.activation.getActivationHotkeyPrefix(), u"Ctrl+Alt+"_s);
}

void AppActivationSupportTest::activationCapturesThenSignalsOnce()
{
    Bench bench;
    int capturesAtSignal = -1;
    bool activeAtSignal = false;
    connect(&bench.activation, &AppActivationSupport::activationChanged, this, [&](bool active) {
        capturesAtSignal = bench.desktop.captures;
        activeAtSignal = active && bench.activation.isAppActive();
    });
    bench.activation.activateApp();
    QCOMPARE(capturesAtSignal, 1);
    QVERIFY(activeAtSignal);
    QCOMPARE(bench.changes.count(), 1);
    QVERIFY(bench.confirmation()->isActive());
    QCOMPARE(bench.confirmation()->interval(), 7000);
    QVERIFY(bench.confirmation()->isSingleShot());
}

void AppActivationSupportTest::activationWithoutCaptureLeavesTheFrontProcessAlone()
{
    Bench bench;
    bench.activation.activateApp(false);
    QVERIFY(bench.activation.isAppActive());
    QCOMPARE(bench.desktop.captures, 0);
}

void AppActivationSupportTest::activatingTwiceDoesNothingTheSecondTime()
{
    Bench bench;
    bench.activation.activateApp(true);
    bench.confirmation()->stop();
    bench.activation.activateApp(true);
    QCOMPARE(bench.desktop.captures, 1);
    QCOMPARE(bench.changes.count(), 1);
    QVERIFY(!bench.confirmation()->isActive());
}

void AppActivationSupportTest::activationStopsTheActivationTimer()
{
    Bench bench;
    bench.activation.activateApp();
    bench.activation.deactivateApp();
    QVERIFY(bench.activation.isActivationTimerActive());
    bench.activation.activateApp();
    QVERIFY(!bench.activation.isActivationTimerActive());
}

void AppActivationSupportTest::hotkeyWhileActiveHandsTheFrontBackAndASecondPressCapturesAnew()
{
    Bench bench;
    bench.desktop.pressHotkey();
    QVERIFY(bench.activation.isAppActive());
    bench.desktop.pressHotkey();
    QVERIFY(!bench.activation.isAppActive());
    QCOMPARE(bench.activation.activationTimerInterval(), 30 * minute);
    bench.desktop.pressHotkey();
    QVERIFY(bench.activation.isAppActive());
    QCOMPARE(bench.desktop.calls, (QStringList{u"capture"_s, u"restore"_s, u"capture"_s}));
}

void AppActivationSupportTest::deactivationSignalsBeforeItRestores()
{
    Bench bench;
    bench.activation.activateApp();
    int restoresAtSignal = -1;
    connect(&bench.activation, &AppActivationSupport::activationChanged, this,
            [&] { restoresAtSignal = bench.desktop.restores; });
    bench.activation.deactivateApp();
    QCOMPARE(restoresAtSignal, 0);
    QCOMPARE(bench.desktop.restores, 1);
    QVERIFY(!bench.confirmation()->isActive());
}

void AppActivationSupportTest::
    aDeactivateEventInAnotherProcesssFavourDeactivatesWithTheNormalPeriod()
{
    Bench bench;
    bench.activation.activateApp();
    bench.desktop.areWeFront = false;
    Bench::tellDeactivated();
    QVERIFY(!bench.activation.isAppActive());
    QCOMPARE(bench.desktop.restores, 0);
    QVERIFY(bench.activation.isActivationTimerActive());
    QCOMPARE(bench.activation.activationTimerInterval(), 30 * minute);
    QVERIFY(!bench.confirmation()->isActive());
}

void AppActivationSupportTest::aDeactivateEventWhileWeAreInFrontIsIgnored()
{
    Bench bench;
    bench.activation.activateApp();
    Bench::tellDeactivated();
    QVERIFY(bench.activation.isAppActive());
    QCOMPARE(bench.desktop.frontQuestions, 1);
}

void AppActivationSupportTest::aLossToldByThePlatformDeactivatesWithTheNormalPeriod()
{
    Bench bench;
    bench.activation.activateApp();
    bench.desktop.sayNotInFront(FrontLoss::Lost);
    QVERIFY(!bench.activation.isAppActive());
    QCOMPARE(bench.desktop.restores, 0);
    QCOMPARE(bench.activation.activationTimerInterval(), 30 * minute);
}

void AppActivationSupportTest::anActivationThatNeverTookIsLeftToTheConfirmation()
{
    Bench bench;
    bench.activation.activateApp();
    bench.desktop.sayNotInFront(FrontLoss::NeverCame);
    QVERIFY(bench.activation.isAppActive());
    QVERIFY(bench.confirmation()->isActive());
    bench.activation.confirmAppActivation();
    QVERIFY(!bench.activation.isAppActive());
    QCOMPARE(bench.activation.activationTimerInterval(), 2 * minute);
}

void AppActivationSupportTest::comingForwardInVainAfterTheConfirmationDeactivatesAccelerated()
{
    Bench bench;
    bench.activation.activateApp();
    bench.confirmation()->stop();
    bench.desktop.sayNotInFront(FrontLoss::NeverCame);
    QVERIFY(!bench.activation.isAppActive());
    QCOMPARE(bench.desktop.restores, 0);
    QCOMPARE(bench.activation.activationTimerInterval(), 2 * minute);
}

void AppActivationSupportTest::otherEventsAreIgnoredAndNoneIsConsumed()
{
    Bench bench;
    class Witness : public QObject
    {
    public:
        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (watched == qApp && event->type() == QEvent::ApplicationDeactivate)
                ++seen;
            return false;
        }
        int seen = 0;
    };
    // Filters installed later run first, so one that saw the event first is put in before it.
    Witness witness;
    qApp->installEventFilter(&witness);
    const AppActivationSupport later(&bench.desktop);
    bench.activation.activateApp();
    bench.desktop.areWeFront = false;
    QEvent activate(QEvent::ApplicationActivate);
    QCoreApplication::sendEvent(qApp, &activate);
    QEvent stateChange(QEvent::ApplicationStateChange);
    QCoreApplication::sendEvent(qApp, &stateChange);
    QVERIFY(bench.activation.isAppActive());
    Bench::tellDeactivated();
    QVERIFY(!bench.activation.isAppActive());
    QCOMPARE(witness.seen, 1);
}

void AppActivationSupportTest::
    withoutAnEventTheConfirmationDeactivatesAcceleratedAfterSevenSeconds()
{
    Bench bench;
    bench.activation.activateApp();
    bench.desktop.areWeFront = false;
    QTest::qWait(6500);
    QVERIFY(bench.activation.isAppActive());
    QTRY_VERIFY_WITH_TIMEOUT(!bench.activation.isAppActive(), 1500);
    QCOMPARE(bench.desktop.restores, 0);
    QCOMPARE(bench.activation.activationTimerInterval(), 2 * minute);
}

void AppActivationSupportTest::theConfirmationKeepsAnActivationThatTook()
{
    Bench bench;
    bench.activation.activateApp();
    bench.activation.confirmAppActivation();
    QVERIFY(bench.activation.isAppActive());
    QCOMPARE(bench.desktop.frontQuestions, 1);
}

void AppActivationSupportTest::theConfirmationDoesNothingWhenInactive()
{
    Bench bench;
    bench.desktop.areWeFront = false;
    bench.activation.confirmAppActivation();
    QCOMPARE(bench.changes.count(), 0);
    QVERIFY(!bench.activation.isActivationTimerActive());
}

void AppActivationSupportTest::withADelayOfOneMinuteAnAcceleratedReactivationTakesOneMinuteNotTwo()
{
    Bench bench;
    bench.activation.setAutomaticActivationPeriod(1);
    bench.activation.activateApp();
    bench.activation.deactivateApp(false, true);
    QVERIFY(bench.activation.isActivationTimerActive());
    QCOMPARE(bench.activation.activationTimerInterval(), minute);
}

void AppActivationSupportTest::acceleratedReactivationTakesTwoMinutesAtMost()
{
    Bench bench;
    bench.activation.activateApp();
    bench.activation.deactivateApp(false, true);
    QCOMPARE(bench.activation.activationTimerInterval(), 2 * minute);
}

void AppActivationSupportTest::periodsOfZeroOrLessAreUsedAsTheyAre()
{
    Bench bench;
    bench.activation.setAutomaticActivationPeriod(-5);
    bench.activation.activateApp();
    bench.activation.deactivateApp(false, true);
    QCOMPARE(bench.activation.activationTimerInterval(), -5 * minute);
    QTRY_VERIFY_WITH_TIMEOUT(bench.activation.isAppActive(), 1000);
}

void AppActivationSupportTest::withAutomaticActivationOffNoDeactivationStartsTheTimer()
{
    Bench bench;
    bench.activation.setAutomaticActivationEnabled(false);
    for (const bool restore : {true, false}) {
        for (const bool accelerate : {true, false}) {
            bench.activation.activateApp();
            bench.activation.deactivateApp(restore, accelerate);
            QVERIFY(!bench.activation.isActivationTimerActive());
        }
    }
}

void AppActivationSupportTest::longPeriodsDoNotOverflow_data()
{
    QTest::addColumn<int>("minutes");
    for (const int minutes : {35'791, 35'792, 40'000, 71'583, 1'000'000})
        QTest::addRow("%d", minutes) << minutes;
}

void AppActivationSupportTest::longPeriodsDoNotOverflow()
{
    QFETCH(int, minutes);
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    Bench bench;
    bench.activation.setAutomaticActivationPeriod(minutes);
    bench.activation.activateApp();
    bench.activation.deactivateApp();
    QVERIFY(bench.activation.isActivationTimerActive());
    QCOMPARE(bench.activation.activationTimerInterval(), minutes * minute);
    QTest::qWait(30);
    QVERIFY(!bench.activation.isAppActive());
}

void AppActivationSupportTest::theActivationTimerActivatesWithCapture()
{
    Bench bench;
    bench.activation.setAutomaticActivationPeriod(0);
    bench.activation.activateApp(false);
    bench.activation.deactivateApp(false);
    QTRY_VERIFY_WITH_TIMEOUT(bench.activation.isAppActive(), 1000);
    QCOMPARE(bench.desktop.captures, 1);
    QVERIFY(!bench.activation.isActivationTimerActive());
}

void AppActivationSupportTest::deactivatingWhileInactiveDoesNothing()
{
    Bench bench;
    bench.activation.deactivateApp(true, false);
    QCOMPARE(bench.changes.count(), 0);
    QCOMPARE(bench.desktop.restores, 0);
    QVERIFY(!bench.activation.isActivationTimerActive());
}

void AppActivationSupportTest::changedSettingsLeaveARunningTimerAlone()
{
    Bench bench;
    bench.activation.activateApp();
    bench.activation.deactivateApp();
    bench.activation.setAutomaticActivationPeriod(5);
    bench.activation.setAutomaticActivationEnabled(false);
    QVERIFY(bench.activation.isActivationTimerActive());
    QCOMPARE(bench.activation.activationTimerInterval(), 30 * minute);
}

void AppActivationSupportTest::eventsAfterItsEndReachNobody()
{
    const TestSettings settings;
    RecordingNativeSupport desktop;
    {
        AppActivationSupport activation(&desktop);
        activation.activateApp();
        Bench::tellDeactivated();
        QCOMPARE(desktop.frontQuestions, 1);
    }
    Bench::tellDeactivated();
    QCOMPARE(desktop.frontQuestions, 1);
}

void AppActivationSupportTest::frontRequestsGoToThePlatform()
{
    Bench bench;
    QWindow window;
    bench.activation.requestFront(&window);
    QCOMPARE(bench.desktop.frontRequests.size(), 1);
    QCOMPARE(bench.desktop.frontRequests.first().data(), &window);
}

QTEST_MAIN(AppActivationSupportTest)
#include "AppActivationSupportTest.moc"
