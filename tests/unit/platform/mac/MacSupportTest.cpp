// SPDX-License-Identifier: MIT
#include "platform/mac/MacSupport.h"

#include "CapturedOutput.h"
#include "fakes/mac/FakeMac.h"
#include "model/KeyCommandMap.h"

#include <QSignalSpy>
#include <QThread>
#include <QWindow>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

constexpr UInt32 commandControl = 0x1100;

/// The desktop of a Mac, and the Mac.
struct Bench {
    FakeMac mac;
    MacSupport support;
    QSignalSpy presses{&support, &NativeSupport::hotKeyPressed};
};

QString rendered(Qt::KeyboardModifiers modifiers, int key)
{
    const FakeMac mac;
    KeyCommandMap::KeyCombo combo{modifiers, key};
    return MacSupport().renderKeyCombo(&combo);
}

/// The only trace of a refusal; the user is not bothered.
void expectRefusal(int key)
{
    const QString line = u"the Mac refused the activation hotkey with key %1"_s;
    QTest::ignoreMessage(QtDebugMsg, line.arg(key).toUtf8().constData());
}

} // namespace

class MacSupportTest : public QObject
{
    Q_OBJECT

private slots:
    void weAreInFrontWhenBothWordsOfTheProcessAreEqual_data();
    void weAreInFrontWhenBothWordsOfTheProcessAreEqual();
    void restoringBringsTheFrontWindowOfTheCapturedProcessForward();
    void twoRestoresAfterOneCaptureBringTheSameProcessForwardTwice();
    void restoringWithoutACaptureDoesNothing();
    void captureWhileWeAreInFrontLeavesNothingToRestore();
    void captureWhileWeAreInFrontForgetsAnEarlierOne();
    void aLaterCaptureReplacesAnEarlierOne();
    void aProcessThatDiffersInOneWordIsCaptured_data();
    void aProcessThatDiffersInOneWordIsCaptured();
    void withoutAnAnswerWeAreNotInFrontAndCaptureNobody_data();
    void withoutAnAnswerWeAreNotInFrontAndCaptureNobody();
    void comingForwardNeedsNoAskingAndNoToken();
    void thePressAndTheFrontAreAllThatADesktopTells();
    void theEventHandlerOutlivesTheDesktop();
    void commandShiftNIsRenderedWithBothSymbolsInFixedOrder();
    void metaOrAltWithSpaceIsJustSpace();
    void deleteWithoutModifiersIsItsSymbolAlone();
    void combinationsOfTheKeyMapAreRendered_data();
    void combinationsOfTheKeyMapAreRendered();
    void renderingNullThrowsBad();
    void theVocabularyIsThatOfTheMac();
    void constructionInstallsTheHandlerAndRegistersNoHotKey();
    void theActivationHotkeyIsTheKeyWithCommandAndControl();
    void aPressOfTheActivationHotkeyIsEmittedOnceAtOnceOnThisThread();
    void aReleaseOfTheActivationHotkeyEmitsNothing();
    void eachPressIsEmitted();
    void settingTheHotkeyTwiceLeavesOneRegistrationWithTheSecondKey();
    void settingTheSameHotkeyAgainRegistersItAnew();
    void keysOfAnUnknownIdEmitNothing();
    void aRefusedHotkeyIsNoMoreThanALogLineAndTheNextCallUnregistersNothing();
    void aRefusedHotkeyLeavesThePreviousOneUnregistered();
    void anExceptionOfAListenerEndsAtTheHotKey();
    void theHotkeyMayBeChangedFromItsOwnPress();
};

void MacSupportTest::weAreInFrontWhenBothWordsOfTheProcessAreEqual_data()
{
    QTest::addColumn<unsigned int>("frontHigh");
    QTest::addColumn<unsigned int>("frontLow");
    QTest::addColumn<bool>("inFront");
    QTest::newRow("both words equal") << 3u << 8u << true;
    QTest::newRow("another high word") << 4u << 8u << false;
    QTest::newRow("another low word") << 3u << 9u << false;
    QTest::newRow("words swapped") << 8u << 3u << false;
}

void MacSupportTest::weAreInFrontWhenBothWordsOfTheProcessAreEqual()
{
    QFETCH(unsigned int, frontHigh);
    QFETCH(unsigned int, frontLow);
    Bench bench;
    bench.mac.currentProcess = {3, 8};
    bench.mac.frontProcess = {frontHigh, frontLow};
    QTEST(bench.support.areWeFrontProcess(), "inFront");
}

void MacSupportTest::restoringBringsTheFrontWindowOfTheCapturedProcessForward()
{
    Bench bench;
    bench.mac.frontProcess = {5, 6};
    bench.support.captureFrontProcessForRestore();
    QVERIFY(bench.mac.frontings.empty());
    bench.mac.frontProcess = bench.mac.currentProcess;
    bench.support.restoreCapturedProcess();
    QCOMPARE(bench.mac.frontings.size(), std::size_t(1));
    QCOMPARE(bench.mac.frontings.front().process.highLongOfPSN, 5u);
    QCOMPARE(bench.mac.frontings.front().process.lowLongOfPSN, 6u);
    QCOMPARE(bench.mac.frontings.front().options, OptionBits(kSetFrontProcessFrontWindowOnly));
    QVERIFY(!bench.support.areWeFrontProcess());
}

void MacSupportTest::twoRestoresAfterOneCaptureBringTheSameProcessForwardTwice()
{
    Bench bench;
    bench.mac.frontProcess = {5, 6};
    bench.support.captureFrontProcessForRestore();
    bench.mac.frontProcess = bench.mac.currentProcess;
    bench.support.restoreCapturedProcess();
    bench.mac.frontProcess = {9, 9};
    bench.support.restoreCapturedProcess();
    QCOMPARE(bench.mac.frontings.size(), std::size_t(2));
    for (const FakeMac::Fronting &fronting : bench.mac.frontings) {
        QCOMPARE(fronting.process.highLongOfPSN, 5u);
        QCOMPARE(fronting.process.lowLongOfPSN, 6u);
    }
}

void MacSupportTest::restoringWithoutACaptureDoesNothing()
{
    Bench bench;
    bench.support.restoreCapturedProcess();
    QVERIFY(bench.mac.frontings.empty());
}

void MacSupportTest::captureWhileWeAreInFrontLeavesNothingToRestore()
{
    Bench bench;
    bench.mac.frontProcess = bench.mac.currentProcess;
    bench.support.captureFrontProcessForRestore();
    bench.support.restoreCapturedProcess();
    QVERIFY(bench.mac.frontings.empty());
}

void MacSupportTest::captureWhileWeAreInFrontForgetsAnEarlierOne()
{
    Bench bench;
    bench.support.captureFrontProcessForRestore();
    bench.mac.frontProcess = bench.mac.currentProcess;
    bench.support.captureFrontProcessForRestore();
    bench.support.restoreCapturedProcess();
    QVERIFY(bench.mac.frontings.empty());
}

void MacSupportTest::aLaterCaptureReplacesAnEarlierOne()
{
    Bench bench;
    bench.mac.frontProcess = {5, 6};
    bench.support.captureFrontProcessForRestore();
    bench.mac.frontProcess = {7, 8};
    bench.support.captureFrontProcessForRestore();
    bench.support.restoreCapturedProcess();
    QCOMPARE(bench.mac.frontings.size(), std::size_t(1));
    QCOMPARE(bench.mac.frontings.front().process.lowLongOfPSN, 8u);
}

void MacSupportTest::aProcessThatDiffersInOneWordIsCaptured_data()
{
    QTest::addColumn<unsigned int>("frontHigh");
    QTest::addColumn<unsigned int>("frontLow");
    QTest::newRow("another high word") << 4u << 8u;
    QTest::newRow("another low word") << 3u << 9u;
}

void MacSupportTest::aProcessThatDiffersInOneWordIsCaptured()
{
    QFETCH(unsigned int, frontHigh);
    QFETCH(unsigned int, frontLow);
    Bench bench;
    bench.mac.currentProcess = {3, 8};
    bench.mac.frontProcess = {frontHigh, frontLow};
    bench.support.captureFrontProcessForRestore();
    bench.mac.frontProcess = bench.mac.currentProcess;
    bench.support.restoreCapturedProcess();
    QCOMPARE(bench.mac.frontings.size(), std::size_t(1));
    QCOMPARE(bench.mac.frontings.front().process.highLongOfPSN, frontHigh);
    QCOMPARE(bench.mac.frontings.front().process.lowLongOfPSN, frontLow);
}

void MacSupportTest::withoutAnAnswerWeAreNotInFrontAndCaptureNobody_data()
{
    QTest::addColumn<short>("currentResult");
    QTest::addColumn<short>("frontResult");
    QTest::addColumn<bool>("currentIsFront");
    QTest::newRow("who we are, we in front") << OSErr(-600) << OSErr(noErr) << true;
    QTest::newRow("who we are, another in front") << OSErr(-600) << OSErr(noErr) << false;
    QTest::newRow("who is in front") << OSErr(noErr) << OSErr(-600) << false;
    QTest::newRow("neither") << OSErr(-600) << OSErr(-600) << false;
}

void MacSupportTest::withoutAnAnswerWeAreNotInFrontAndCaptureNobody()
{
    QFETCH(short, currentResult);
    QFETCH(short, frontResult);
    QFETCH(bool, currentIsFront);
    Bench bench;
    bench.support.captureFrontProcessForRestore(); // forgotten by the one that fails
    if (currentIsFront)
        bench.mac.frontProcess = bench.mac.currentProcess;
    bench.mac.currentProcessResult = currentResult;
    bench.mac.frontProcessResult = frontResult;
    QVERIFY(!bench.support.areWeFrontProcess());
    bench.support.captureFrontProcessForRestore();
    bench.support.restoreCapturedProcess();
    QVERIFY(bench.mac.frontings.empty());
}

void MacSupportTest::comingForwardNeedsNoAskingAndNoToken()
{
    Bench bench;
    bench.mac.calls.clear();
    QWindow window;
    bench.support.setActivationToken("proof");
    bench.support.requestFront(&window);
    QVERIFY(bench.mac.frontings.empty());
    QVERIFY(bench.mac.calls.isEmpty());
    QVERIFY(!window.isVisible());
    QVERIFY(!window.handle());
}

void MacSupportTest::thePressAndTheFrontAreAllThatADesktopTells()
{
    const QMetaObject &seam = NativeSupport::staticMetaObject;
    QCOMPARE(seam.methodCount() - seam.methodOffset(), 2);
    QCOMPARE(seam.method(seam.methodOffset()).methodSignature(), QByteArray("hotKeyPressed()"));
    // On a Mac the toolkit knows about the front at once.
    QCOMPARE(seam.method(seam.methodOffset() + 1).methodSignature(),
             QByteArray("notInFront(FrontLoss)"));
    QCOMPARE(seam.propertyCount() - seam.propertyOffset(), 0);
    QCOMPARE(seam.enumeratorCount() - seam.enumeratorOffset(), 0);
    const QMetaObject &mac = MacSupport::staticMetaObject;
    QCOMPARE(mac.superClass(), &seam);
    QCOMPARE(mac.methodCount(), seam.methodCount());
    QCOMPARE(mac.propertyCount(), seam.propertyCount());
    QCOMPARE(mac.enumeratorCount(), seam.enumeratorCount());
}

void MacSupportTest::theEventHandlerOutlivesTheDesktop()
{
    FakeMac mac;
    {
        MacSupport support;
        support.setActivationHotkey(49);
    }
    QVERIFY(!mac.calls.contains(u"remove"_s));
    QCOMPARE(mac.installedHandlers().size(), std::size_t(1));
}

void MacSupportTest::commandShiftNIsRenderedWithBothSymbolsInFixedOrder()
{
    QCOMPARE(rendered(Qt::ShiftModifier | Qt::ControlModifier, Qt::Key_N), u"\u2318\u21E7N"_s);
}

void MacSupportTest::metaOrAltWithSpaceIsJustSpace()
{
    QCOMPARE(rendered(Qt::MetaModifier, Qt::Key_Space), u"Space"_s);
    QCOMPARE(rendered(Qt::AltModifier, Qt::Key_Space), u"Space"_s);
    QCOMPARE(rendered(Qt::AltModifier | Qt::MetaModifier | Qt::ControlModifier, Qt::Key_F1),
             u"\u2318F1"_s);
}

void MacSupportTest::deleteWithoutModifiersIsItsSymbolAlone()
{
    QCOMPARE(rendered(Qt::NoModifier, Qt::Key_Delete), u"\u232B"_s);
}

void MacSupportTest::combinationsOfTheKeyMapAreRendered_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("text");
    QTest::newRow("help") << u"ShowHelp"_s << u"\u2318/"_s;
    QTest::newRow("discard") << u"DiscardChanges"_s << u"\u2318\u21E7\u232B"_s;
    QTest::newRow("first") << u"GoToFirst"_s << u"\u2318["_s;
    QTest::newRow("to top") << u"MoveCurrentToTop"_s << u"\u2318\u21E7["_s;
    QTest::newRow("save") << u"SaveChangesAndHide"_s << u"Return"_s;
    QTest::newRow("hide") << u"Hide"_s << u"Esc"_s;
    QTest::newRow("settings") << u"ShowSettingsDialog"_s << u"\u2318,"_s;
}

void MacSupportTest::combinationsOfTheKeyMapAreRendered()
{
    QFETCH(QString, command);
    const KeyCommandMap map;
    Bench bench;
    QTEST(bench.support.renderKeyCombo(map.getPreferredKeyComboByName(command)), "text");
}

void MacSupportTest::renderingNullThrowsBad()
{
    Bench bench;
    QString thrown;
    try {
        bench.support.renderKeyCombo(nullptr);
    } catch (const char *text) {
        thrown = QString::fromLatin1(text);
    }
    QCOMPARE(thrown, u"bad"_s);
}

void MacSupportTest::theVocabularyIsThatOfTheMac()
{
    Bench bench;
    QVERIFY(bench.support.getModifierSeparator().isEmpty());
    QCOMPARE(bench.support.getShortcutModifier(), Qt::KeyboardModifiers(Qt::MetaModifier));
    QCOMPARE(bench.support.getShortcutModifierKey(), 0x01000022);
    QCOMPARE(bench.support.getShortcutModifierKeySymbol(), u"\u2303"_s);
    QCOMPARE(bench.support.getActivationHotkeyPrefix(), u"\u2318\u2303"_s);
    QCOMPARE(bench.support.getSpaceVirtualKey(), 49);
    QVERIFY(bench.support.getActivationHotkeyNotice().isEmpty());
}

void MacSupportTest::constructionInstallsTheHandlerAndRegistersNoHotKey()
{
    Bench bench;
    QCOMPARE(bench.mac.calls, (QStringList{u"install"_s, u"add types"_s}));
    QVERIFY(bench.mac.frontings.empty());
}

void MacSupportTest::theActivationHotkeyIsTheKeyWithCommandAndControl()
{
    Bench bench;
    bench.support.setActivationHotkey(49);
    QCOMPARE(bench.mac.registeredHotKeys().size(), std::size_t(1));
    QCOMPARE(bench.mac.registeredHotKeys().front()->keyCode, 49u);
    QCOMPARE(bench.mac.registeredHotKeys().front()->modifiers, 0x1100u);
    QCOMPARE(bench.mac.registeredHotKeys().front()->target, &bench.mac.dispatcherTarget);
}

void MacSupportTest::aPressOfTheActivationHotkeyIsEmittedOnceAtOnceOnThisThread()
{
    Bench bench;
    bench.support.setActivationHotkey(49);
    QThread *emitter = nullptr;
    QObject::connect(&bench.support, &NativeSupport::hotKeyPressed, &bench.support,
                     [&emitter] { emitter = QThread::currentThread(); });
    QCOMPARE(bench.mac.pressKey(49, commandControl), 1);
    QCOMPARE(bench.presses.count(), 1); // no event loop ran in between
    QCOMPARE(emitter, qApp->thread());
    bench.mac.releaseKey(49, commandControl);
    QCoreApplication::processEvents();
    QCOMPARE(bench.presses.count(), 1);
    QVERIFY(bench.mac.passedOn.empty());
}

void MacSupportTest::aReleaseOfTheActivationHotkeyEmitsNothing()
{
    Bench bench;
    bench.support.setActivationHotkey(49);
    QCOMPARE(bench.mac.releaseKey(49, commandControl), 1);
    QCOMPARE(bench.presses.count(), 0);
    QVERIFY(bench.mac.passedOn.empty());
}

void MacSupportTest::eachPressIsEmitted()
{
    Bench bench;
    bench.support.setActivationHotkey(36);
    for (int i = 0; i < 3; ++i) {
        bench.mac.pressKey(36, commandControl);
        bench.mac.releaseKey(36, commandControl);
    }
    QCOMPARE(bench.presses.count(), 3);
}

void MacSupportTest::settingTheHotkeyTwiceLeavesOneRegistrationWithTheSecondKey()
{
    Bench bench;
    bench.mac.calls.clear();
    bench.support.setActivationHotkey(49);
    bench.support.setActivationHotkey(36);
    QCOMPARE(bench.mac.calls,
             (QStringList{u"register 49"_s, u"unregister 49"_s, u"register 36"_s}));
    QCOMPARE(bench.mac.registeredHotKeys().size(), std::size_t(1));
    QCOMPARE(bench.mac.registeredHotKeys().front()->keyCode, 36u);
    QCOMPARE(bench.mac.livingDictionary()->entries.size(), std::size_t(1));
    QCOMPARE(bench.mac.pressKey(49, commandControl), 0);
    bench.mac.pressKey(36, commandControl);
    QCOMPARE(bench.presses.count(), 1);
}

void MacSupportTest::settingTheSameHotkeyAgainRegistersItAnew()
{
    Bench bench;
    bench.mac.calls.clear();
    bench.support.setActivationHotkey(49);
    bench.support.setActivationHotkey(49);
    QCOMPARE(bench.mac.calls,
             (QStringList{u"register 49"_s, u"unregister 49"_s, u"register 49"_s}));
    QCOMPARE(bench.mac.pressKey(49, commandControl), 1);
    QCOMPARE(bench.presses.count(), 1);
}

void MacSupportTest::keysOfAnUnknownIdEmitNothing()
{
    Bench bench;
    bench.support.setActivationHotkey(49);
    EventHotKeyID old = bench.mac.registeredHotKeys().front()->id;
    bench.support.setActivationHotkey(36);
    QCOMPARE(bench.mac.send(bench.mac.makeHotKeyEvent(kEventHotKeyPressed, old)), noErr);
    QCOMPARE(bench.mac.send(bench.mac.makeHotKeyEvent(kEventHotKeyPressed, {1, 1000000})), noErr);
    QCOMPARE(bench.presses.count(), 0);
    QVERIFY(bench.mac.passedOn.empty());
}

void MacSupportTest::aRefusedHotkeyIsNoMoreThanALogLineAndTheNextCallUnregistersNothing()
{
    Bench bench;
    bench.mac.registrationResult = eventHotKeyExistsErr;
    bench.mac.calls.clear();
    expectRefusal(49);
    bench.support.setActivationHotkey(49);
    QVERIFY(bench.mac.registeredHotKeys().empty());
    QVERIFY(bench.mac.livingDictionary()->entries.empty());
    bench.mac.registrationResult = noErr;
    bench.support.setActivationHotkey(36);
    QCOMPARE(bench.mac.calls, (QStringList{u"register 49"_s, u"register 36"_s}));
    bench.mac.pressKey(36, commandControl);
    QCOMPARE(bench.presses.count(), 1);
}

void MacSupportTest::aRefusedHotkeyLeavesThePreviousOneUnregistered()
{
    Bench bench;
    bench.support.setActivationHotkey(49);
    bench.mac.registrationResult = eventHotKeyExistsErr;
    expectRefusal(36);
    bench.support.setActivationHotkey(36);
    QVERIFY(bench.mac.registeredHotKeys().empty());
    QVERIFY(bench.mac.livingDictionary()->entries.empty());
    bench.mac.calls.clear();
    expectRefusal(36);
    bench.support.setActivationHotkey(36);
    QCOMPARE(bench.mac.calls, QStringList{u"register 36"_s});
}

void MacSupportTest::anExceptionOfAListenerEndsAtTheHotKey()
{
    Bench bench;
    bench.support.setActivationHotkey(49);
    const QMetaObject::Connection thrower = QObject::connect(
        &bench.support, &NativeSupport::hotKeyPressed, &bench.support, [] { throw "bad"; });
    CapturedOutput output;
    bench.mac.pressKey(49, commandControl);
    QCOMPARE(output.text(), QByteArray("Exception in callback!\n"));
    QObject::disconnect(thrower);
    bench.mac.pressKey(49, commandControl);
    QCOMPARE(bench.presses.count(), 2);
}

void MacSupportTest::theHotkeyMayBeChangedFromItsOwnPress()
{
    Bench bench;
    bench.support.setActivationHotkey(49);
    QObject::connect(&bench.support, &NativeSupport::hotKeyPressed, &bench.support,
                     [&bench] { bench.support.setActivationHotkey(36); });
    bench.mac.pressKey(49, commandControl);
    QCOMPARE(bench.presses.count(), 1);
    QCOMPARE(bench.mac.registeredHotKeys().size(), std::size_t(1));
    QCOMPARE(bench.mac.pressKey(36, commandControl), 1);
    QCOMPARE(bench.presses.count(), 2);
}

QTEST_MAIN(MacSupportTest)
#include "MacSupportTest.moc"
