// SPDX-License-Identifier: MIT
// The program's own activation over the Mac's desktop, as start-up puts them together.
#include "app/activation/AppActivationSupport.h"
#include "fakes/TestSettings.h"
#include "fakes/mac/FakeMac.h"
#include "platform/mac/MacSupport.h"

#include <QFileOpenEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

constexpr UInt32 commandControl = 0x1100;

struct Bench {
    FakeMac mac;
    TestSettings settings;
    MacSupport desktop;
    AppActivationSupport activation{&desktop};
    QSignalSpy changes{&activation, &AppActivationSupport::activationChanged};

    Bench()
    {
        QObject::connect(&desktop, &NativeSupport::hotKeyPressed, &activation,
                         &AppActivationSupport::toggleActivationWithProcessHandling);
    }

    void comeForward() { mac.frontProcess = mac.currentProcess; }
    bool lastChange() const { return changes.last().first().toBool(); }
};

/// A folder of the test's own for the endpoint of the running copy.
struct EndpointFolder {
    QTemporaryDir folder;

    EndpointFolder() { qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8()); }
    ~EndpointFolder() { qunsetenv("XDG_RUNTIME_DIR"); }
};

/// The only copy that runs, and takes requests.
struct ServingBench : private EndpointFolder, public Bench {
    ServingBench()
    {
        QVERIFY(!activation.checkForOtherInstances());
        activation.acceptRequests();
    }
};

} // namespace

class MacActivationTest : public QObject
{
    Q_OBJECT

private slots:
    void anEmptySettingsStoreRegistersTheSpaceBar();
    void aPressBringsForwardAndTheNextGivesTheFrontBack();
    void eachPressCapturesAnew();
    void theSettingsDialogsKeyReplacesTheRegisteredOne();
    void losingTheFrontStepsBackWithoutHandingItAnywhere();
    void thePrefixIsThatOfTheMac();
    void aFileChosenInTheFinderIsOpened();
    void anAddressThatIsNoFileIsLeftToOthers();
    void quittingAsksForTheEndAndNotTheWindows();
    void onlyTheApplicationItselfCanBeQuit();
};

void MacActivationTest::anEmptySettingsStoreRegistersTheSpaceBar()
{
    Bench bench;
    bench.activation.installHotkey();
    QCOMPARE(bench.mac.registeredHotKeys().size(), std::size_t(1));
    QCOMPARE(bench.mac.registeredHotKeys().front()->keyCode, 49u);
}

void MacActivationTest::aPressBringsForwardAndTheNextGivesTheFrontBack()
{
    Bench bench;
    bench.activation.installHotkey();
    bench.mac.frontProcess = {5, 6};
    bench.mac.pressKey(49, commandControl);
    QCOMPARE(bench.changes.count(), 1);
    QVERIFY(bench.lastChange());
    QVERIFY(bench.mac.frontings.empty());
    bench.comeForward();
    bench.mac.pressKey(49, commandControl);
    QCOMPARE(bench.changes.count(), 2);
    QVERIFY(!bench.lastChange());
    QCOMPARE(bench.mac.frontings.size(), std::size_t(1));
    QCOMPARE(bench.mac.frontings.front().process.lowLongOfPSN, 6u);
}

void MacActivationTest::eachPressCapturesAnew()
{
    Bench bench;
    bench.activation.installHotkey();
    for (UInt32 program : {6u, 7u}) {
        bench.mac.frontProcess = {5, program};
        bench.mac.pressKey(49, commandControl);
        bench.comeForward();
        bench.mac.pressKey(49, commandControl);
        QCOMPARE(bench.mac.frontings.back().process.lowLongOfPSN, program);
    }
}

void MacActivationTest::theSettingsDialogsKeyReplacesTheRegisteredOne()
{
    Bench bench;
    bench.activation.installHotkey();
    bench.activation.setHotkeyKey(Qt::Key_Return, 36);
    QCOMPARE(bench.mac.pressKey(49, commandControl), 0);
    QCOMPARE(bench.mac.pressKey(36, commandControl), 1);
    QVERIFY(bench.activation.isAppActive());
}

void MacActivationTest::losingTheFrontStepsBackWithoutHandingItAnywhere()
{
    Bench bench;
    bench.activation.installHotkey();
    bench.mac.pressKey(49, commandControl);
    bench.comeForward();
    QEvent event(QEvent::ApplicationDeactivate);
    QCoreApplication::sendEvent(qApp, &event);
    QVERIFY(bench.activation.isAppActive()); // one of our own windows was in the way
    bench.mac.frontProcess = {5, 6};
    QCoreApplication::sendEvent(qApp, &event);
    QVERIFY(!bench.activation.isAppActive());
    QVERIFY(bench.mac.frontings.empty());
}

void MacActivationTest::thePrefixIsThatOfTheMac()
{
    Bench bench;
    QCOMPARE(bench.activation.getActivationHotkeyPrefix(), u"\u2318\u2303"_s);
}

void MacActivationTest::aFileChosenInTheFinderIsOpened()
{
    ServingBench bench;
    QSignalSpy openings(&bench.activation, &AppActivationSupport::requestOpenFiles);
    QFileOpenEvent event(u"/home/me/garden.bdl"_s);
    QVERIFY(QCoreApplication::sendEvent(qApp, &event));
    QTRY_COMPARE(openings.count(), 1);
    QCOMPARE(openings.first().first().toStringList(), QStringList{u"/home/me/garden.bdl"_s});
    QVERIFY(bench.activation.isAppActive());
}

void MacActivationTest::anAddressThatIsNoFileIsLeftToOthers()
{
    ServingBench bench;
    QSignalSpy openings(&bench.activation, &AppActivationSupport::requestOpenFiles);
    QFileOpenEvent event(QUrl(u"https://maker.example/garden.bdl"_s));
    QCoreApplication::sendEvent(qApp, &event);
    QCoreApplication::processEvents();
    QCOMPARE(openings.count(), 0);
    QVERIFY(!bench.activation.isAppActive());
}

void MacActivationTest::quittingAsksForTheEndAndNotTheWindows()
{
    ServingBench bench;
    QWidget window;
    window.show();
    QSignalSpy terminations(&bench.activation, &AppActivationSupport::requestTermination);
    QEvent event(QEvent::Quit);
    QVERIFY(QCoreApplication::sendEvent(qApp, &event));
    QVERIFY(!event.isAccepted()); // the Mac goes on only when the program ends by itself
    QVERIFY(window.isVisible());
    QTRY_COMPARE(terminations.count(), 1);
}

void MacActivationTest::onlyTheApplicationItselfCanBeQuit()
{
    ServingBench bench;
    QSignalSpy terminations(&bench.activation, &AppActivationSupport::requestTermination);
    QObject other;
    QEvent event(QEvent::Quit);
    QVERIFY(!QCoreApplication::sendEvent(&other, &event));
    QCoreApplication::processEvents();
    QCOMPARE(terminations.count(), 0);
}

QTEST_MAIN(MacActivationTest)
#include "MacActivationTest.moc"
