// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonEventDispatcherHandler.h"

#include "Callbacks.h"
#include "CapturedOutput.h"
#include "fakes/mac/FakeMac.h"
#include "platform/mac/CarbonEvent.h"
#include "platform/mac/CarbonHotKey.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

constexpr UInt32 commandControl = 0x1100;

/// A dispatcher handler on a Mac of the test's own.
struct Bench {
    FakeMac mac;
    CarbonEventDispatcherHandler handler;
    CountingCallback callback;
    UInt32 nextKey = kVK_Space;

    /// The space bar first, then a key of its own for each: the Mac refuses one taken already.
    EventHotKeyRef addHotKey(bool onKeyDown = true)
    {
        return handler.registerHotKey(nextKey++, commandControl, &callback, onKeyDown);
    }
    EventRef eventOf(UInt32 kind, EventHotKeyRef hotKey)
    {
        return mac.makeHotKeyEvent(kind, hotKey->id);
    }
};

} // namespace

class CarbonEventDispatcherHandlerTest : public QObject
{
    Q_OBJECT

private slots:
    void theTargetIsTheEventDispatcher();
    void constructionInstallsOneHandlerForExactlyTheTwoHotKeyEvents();
    void constructionMakesAnEmptyDictionaryThatRetainsNothing();
    void theDictionaryAndTheHotKeysGoWithTheHandler();
    void registeringTellsThePlatformKeyModifiersAndTarget();
    void aRegisteredHotKeyIsFoundUnderItsReference();
    void allHotKeysHaveTheSameSignature();
    void aRefusedRegistrationGivesNullAndLeavesTheDictionaryEmpty();
    void unregisteringRemovesTheEntryAndThenTellsThePlatform();
    void unregisteringOneLeavesTheOthers();
    void aPressFiresAHotKeyForThePress();
    void aReleaseFiresAHotKeyForTheRelease();
    void theOtherHalfOfAKeyStrokeIsHandledWithoutFiring();
    void onlyTheHotKeyOfTheEventFires();
    void anEventOfAnUnknownIdIsSwallowedAndFiresNothing();
    void anEventOfAnotherSignatureIsSwallowedAndFiresNothing();
    void withoutAnyHotKeyAnEventIsSwallowed();
    void anEventOfAnUnregisteredHotKeyIsSwallowed();
    void aHotKeyEventWithoutAnIdIsPassedOn();
    void eventsOfAnotherClassOrKindArePassedOn_data();
    void eventsOfAnotherClassOrKindArePassedOn();
    void withoutAnEventOrACallReferenceNothingIsHandled();
    void aHotKeyFiresEvenWithoutACallReference();
    void anEventWhoseCallbackThrowsIsPassedOn();
    void eventsAreReleasedAsOftenAsRetained();
    void aCallbackMayUnregisterItsOwnHotKey();
    void aCombinationThatIsTakenIsRefusedAndTheFirstStays();
    void thePlatformsHandlerOutlivesThisOne();
    void aRefusedHandlerIsALogLineAndNoEventTypesAreAdded();
    void refusedEventTypesAreALogLine();
};

void CarbonEventDispatcherHandlerTest::theTargetIsTheEventDispatcher()
{
    Bench bench;
    QCOMPARE(bench.handler.eventTarget(), &bench.mac.dispatcherTarget);
}

void CarbonEventDispatcherHandlerTest::constructionInstallsOneHandlerForExactlyTheTwoHotKeyEvents()
{
    Bench bench;
    QCOMPARE(bench.mac.calls, (QStringList{u"install"_s, u"add types"_s}));
    const OpaqueEventHandlerRef *installed = bench.mac.installedHandlers().front();
    QCOMPARE(installed->target, &bench.mac.dispatcherTarget);
    QCOMPARE(installed->userData, static_cast<void *>(&bench.handler));
    QCOMPARE(installed->typesAtInstallation, ItemCount(0));
    QCOMPARE(installed->types.size(), std::size_t(2));
    QCOMPARE(installed->types[0].eventClass, OSType(kEventClassKeyboard));
    QCOMPARE(installed->types[0].eventKind, UInt32(kEventHotKeyPressed));
    QCOMPARE(installed->types[1].eventClass, OSType(kEventClassKeyboard));
    QCOMPARE(installed->types[1].eventKind, UInt32(kEventHotKeyReleased));
    QCOMPARE(bench.handler.eventHandlerRef(), installed);
    QCOMPARE(bench.mac.handlers.size(), std::size_t(1));
}

void CarbonEventDispatcherHandlerTest::constructionMakesAnEmptyDictionaryThatRetainsNothing()
{
    Bench bench;
    const __CFDictionary *dictionary = bench.mac.livingDictionary();
    QVERIFY(dictionary);
    QVERIFY(dictionary->entries.empty());
    QVERIFY(!dictionary->hasCallBacks);
    QCOMPARE(dictionary->capacity, 0); // any other number would be its upper bound
}

void CarbonEventDispatcherHandlerTest::theDictionaryAndTheHotKeysGoWithTheHandler()
{
    FakeMac mac;
    CountingCallback callback;
    {
        // What is forgotten here is found by the leak check of the sanitizer build.
        CarbonEventDispatcherHandler handler;
        handler.registerHotKey(kVK_Space, commandControl, &callback, true);
        handler.registerHotKey(kVK_Return, commandControl, &callback, true);
        QVERIFY(mac.livingDictionary());
    }
    QVERIFY(!mac.livingDictionary());
    QCOMPARE(mac.dictionaries.size(), std::size_t(1));
}

void CarbonEventDispatcherHandlerTest::registeringTellsThePlatformKeyModifiersAndTarget()
{
    Bench bench;
    EventHotKeyRef ref = bench.handler.registerHotKey(36, 0x0A00, &bench.callback, true);
    QCOMPARE(bench.mac.registeredHotKeys().size(), std::size_t(1));
    const OpaqueEventHotKeyRef *hotKey = bench.mac.registeredHotKeys().front();
    QCOMPARE(ref, hotKey);
    QCOMPARE(hotKey->keyCode, 36u);
    QCOMPARE(hotKey->modifiers, 0x0A00u);
    QCOMPARE(hotKey->target, &bench.mac.dispatcherTarget);
    QCOMPARE(hotKey->options, 0u);
    QCOMPARE(bench.callback.calls, 0);
}

void CarbonEventDispatcherHandlerTest::aRegisteredHotKeyIsFoundUnderItsReference()
{
    Bench bench;
    EventHotKeyRef ref = bench.addHotKey(false);
    const auto &entries = bench.mac.livingDictionary()->entries;
    QCOMPARE(entries.size(), std::size_t(1));
    QCOMPARE(entries.front().first, static_cast<const void *>(ref));
    const auto *hotKey = static_cast<const CarbonHotKey *>(entries.front().second);
    QVERIFY(hotKey->matchesHotKeyID(ref->id));
    QVERIFY(!hotKey->isOnKeyDown());
}

void CarbonEventDispatcherHandlerTest::allHotKeysHaveTheSameSignature()
{
    Bench bench;
    const EventHotKeyID first = bench.addHotKey()->id;
    const EventHotKeyID second = bench.addHotKey()->id;
    QCOMPARE(second.signature, first.signature);
    // Four characters that can be read, as the platform asks for.
    for (int shift = 0; shift < 32; shift += 8)
        QVERIFY(QChar::isPrint((first.signature >> shift) & 0xFF));
}

void CarbonEventDispatcherHandlerTest::aRefusedRegistrationGivesNullAndLeavesTheDictionaryEmpty()
{
    Bench bench;
    bench.mac.registrationResult = eventHotKeyExistsErr;
    CapturedOutput output;
    QCOMPARE(bench.addHotKey(), nullptr);
    QCOMPARE(output.text(), QByteArray());
    QVERIFY(bench.mac.livingDictionary()->entries.empty());
    bench.mac.registrationResult = noErr;
    QVERIFY(bench.addHotKey());
}

void CarbonEventDispatcherHandlerTest::unregisteringRemovesTheEntryAndThenTellsThePlatform()
{
    Bench bench;
    EventHotKeyRef ref = bench.addHotKey();
    bench.mac.calls.clear();
    bench.handler.unregisterHotKey(ref);
    QVERIFY(bench.mac.livingDictionary()->entries.empty());
    QCOMPARE(bench.mac.calls, QStringList{u"unregister 49"_s});
    QVERIFY(bench.mac.registeredHotKeys().empty());
}

void CarbonEventDispatcherHandlerTest::unregisteringOneLeavesTheOthers()
{
    Bench bench;
    EventHotKeyRef first = bench.addHotKey();
    EventHotKeyRef second = bench.addHotKey();
    bench.handler.unregisterHotKey(first);
    QCOMPARE(bench.mac.registeredHotKeys(), std::vector<const OpaqueEventHotKeyRef *>{second});
    QCOMPARE(bench.mac.livingDictionary()->entries.size(), std::size_t(1));
    QCOMPARE(bench.mac.send(bench.eventOf(kEventHotKeyPressed, second)), noErr);
    QCOMPARE(bench.callback.calls, 1);
}

void CarbonEventDispatcherHandlerTest::aPressFiresAHotKeyForThePress()
{
    Bench bench;
    EventHotKeyRef ref = bench.addHotKey(true);
    QCOMPARE(bench.mac.send(bench.eventOf(kEventHotKeyPressed, ref)), noErr);
    QCOMPARE(bench.callback.calls, 1);
    QCOMPARE(bench.callback.lastHandler, static_cast<void *>(&bench.handler));
    QVERIFY(bench.mac.passedOn.empty());
}

void CarbonEventDispatcherHandlerTest::aReleaseFiresAHotKeyForTheRelease()
{
    Bench bench;
    EventHotKeyRef ref = bench.addHotKey(false);
    QCOMPARE(bench.mac.send(bench.eventOf(kEventHotKeyReleased, ref)), noErr);
    QCOMPARE(bench.callback.calls, 1);
    QVERIFY(bench.mac.passedOn.empty());
}

void CarbonEventDispatcherHandlerTest::theOtherHalfOfAKeyStrokeIsHandledWithoutFiring()
{
    Bench bench;
    EventHotKeyRef onPress = bench.addHotKey(true);
    EventHotKeyRef onRelease = bench.addHotKey(false);
    QCOMPARE(bench.mac.send(bench.eventOf(kEventHotKeyReleased, onPress)), noErr);
    QCOMPARE(bench.mac.send(bench.eventOf(kEventHotKeyPressed, onRelease)), noErr);
    QCOMPARE(bench.callback.calls, 0);
    QVERIFY(bench.mac.passedOn.empty());
}

void CarbonEventDispatcherHandlerTest::onlyTheHotKeyOfTheEventFires()
{
    Bench bench;
    CountingCallback others;
    bench.handler.registerHotKey(1, commandControl, &others, true);
    EventHotKeyRef ref = bench.addHotKey();
    bench.handler.registerHotKey(2, commandControl, &others, true);
    bench.mac.send(bench.eventOf(kEventHotKeyPressed, ref));
    QCOMPARE(bench.callback.calls, 1);
    QCOMPARE(others.calls, 0);
}

void CarbonEventDispatcherHandlerTest::anEventOfAnUnknownIdIsSwallowedAndFiresNothing()
{
    Bench bench;
    EventHotKeyID id = bench.addHotKey()->id;
    ++id.id;
    QCOMPARE(bench.mac.send(bench.mac.makeHotKeyEvent(kEventHotKeyPressed, id)), noErr);
    QCOMPARE(bench.callback.calls, 0);
    QVERIFY(bench.mac.passedOn.empty());
}

void CarbonEventDispatcherHandlerTest::anEventOfAnotherSignatureIsSwallowedAndFiresNothing()
{
    Bench bench;
    EventHotKeyID id = bench.addHotKey()->id;
    ++id.signature;
    QCOMPARE(bench.mac.send(bench.mac.makeHotKeyEvent(kEventHotKeyPressed, id)), noErr);
    QCOMPARE(bench.callback.calls, 0);
    QVERIFY(bench.mac.passedOn.empty());
}

void CarbonEventDispatcherHandlerTest::withoutAnyHotKeyAnEventIsSwallowed()
{
    Bench bench;
    QCOMPARE(bench.mac.send(bench.mac.makeHotKeyEvent(kEventHotKeyPressed, {1, 1})), noErr);
    QVERIFY(bench.mac.passedOn.empty());
}

void CarbonEventDispatcherHandlerTest::anEventOfAnUnregisteredHotKeyIsSwallowed()
{
    Bench bench;
    EventHotKeyRef ref = bench.addHotKey();
    bench.handler.unregisterHotKey(ref);
    QCOMPARE(bench.mac.send(bench.eventOf(kEventHotKeyPressed, ref)), noErr);
    QCOMPARE(bench.callback.calls, 0);
}

void CarbonEventDispatcherHandlerTest::aHotKeyEventWithoutAnIdIsPassedOn()
{
    Bench bench;
    bench.addHotKey();
    EventRef event = bench.mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed);
    bench.mac.nextHandlerResult = -77;
    QCOMPARE(bench.mac.callHandler(&bench.mac.call, event), -77);
    QCOMPARE(bench.mac.passedOn, std::vector<EventRef>{event});
    QCOMPARE(bench.callback.calls, 0);
}

void CarbonEventDispatcherHandlerTest::eventsOfAnotherClassOrKindArePassedOn_data()
{
    QTest::addColumn<unsigned int>("eventClass");
    QTest::addColumn<unsigned int>("eventKind");
    QTest::newRow("a key") << OSType(kEventClassKeyboard) << UInt32(kEventRawKeyDown);
    QTest::newRow("the kind after") << OSType(kEventClassKeyboard) << 7u;
    QTest::newRow("the mouse's fifth") << 0x6D6F7573u << UInt32(kEventHotKeyPressed);
    QTest::newRow("the mouse's sixth") << 0x6D6F7573u << UInt32(kEventHotKeyReleased);
}

void CarbonEventDispatcherHandlerTest::eventsOfAnotherClassOrKindArePassedOn()
{
    QFETCH(unsigned int, eventClass);
    QFETCH(unsigned int, eventKind);
    Bench bench;
    EventHotKeyID id = bench.addHotKey()->id;
    bench.addHotKey(false);
    EventRef event = bench.mac.makeEvent(eventClass, eventKind);
    CarbonEvent(event).setParameter(kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id);
    bench.mac.nextHandlerResult = noErr;
    QCOMPARE(bench.mac.callHandler(&bench.mac.call, event), noErr);
    QCOMPARE(bench.mac.passedOn, std::vector<EventRef>{event});
    QCOMPARE(bench.callback.calls, 0);
}

void CarbonEventDispatcherHandlerTest::withoutAnEventOrACallReferenceNothingIsHandled()
{
    Bench bench;
    bench.mac.nextHandlerResult = noErr;
    EventRef foreign = bench.mac.makeEvent(kEventClassKeyboard, kEventRawKeyDown);
    EventRef nameless = bench.mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed);
    QCOMPARE(bench.mac.callHandler(&bench.mac.call, nullptr), eventNotHandledErr);
    QCOMPARE(bench.mac.callHandler(nullptr, nullptr), eventNotHandledErr);
    QCOMPARE(bench.mac.callHandler(nullptr, foreign), eventNotHandledErr);
    QCOMPARE(bench.mac.callHandler(nullptr, nameless), eventNotHandledErr);
    QCOMPARE(bench.handler.handleEvent(nullptr, &bench.mac.call), eventNotHandledErr);
    QVERIFY(bench.mac.passedOn.empty());
}

void CarbonEventDispatcherHandlerTest::aHotKeyFiresEvenWithoutACallReference()
{
    Bench bench;
    EventRef event = bench.eventOf(kEventHotKeyPressed, bench.addHotKey());
    QCOMPARE(bench.mac.callHandler(nullptr, event), noErr);
    QCOMPARE(bench.callback.calls, 1);
}

void CarbonEventDispatcherHandlerTest::anEventWhoseCallbackThrowsIsPassedOn()
{
    Bench bench;
    ScriptedCallback thrower([] { throw "bad"; });
    EventHotKeyRef ref = bench.handler.registerHotKey(kVK_Space, commandControl, &thrower, true);
    EventRef event = bench.eventOf(kEventHotKeyPressed, ref);
    CapturedOutput output;
    const OSStatus result = bench.mac.callHandler(&bench.mac.call, event);
    QCOMPARE(output.text(), QByteArray("Exception in callback!\n"));
    QCOMPARE(result, eventNotHandledErr);
    QCOMPARE(bench.mac.passedOn, std::vector<EventRef>{event});
    QCOMPARE(event->retainCount, 1);
}

void CarbonEventDispatcherHandlerTest::eventsAreReleasedAsOftenAsRetained()
{
    Bench bench;
    EventHotKeyRef ref = bench.addHotKey();
    bench.mac.send(bench.eventOf(kEventHotKeyPressed, ref));
    bench.mac.send(bench.eventOf(kEventHotKeyReleased, ref));
    bench.mac.send(bench.mac.makeHotKeyEvent(kEventHotKeyPressed, {0, 0}));
    bench.mac.send(bench.mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed));
    bench.mac.callHandler(&bench.mac.call, bench.mac.makeEvent(0x6D6F7573, 1));
    QCOMPARE(bench.mac.events.size(), std::size_t(5));
    for (const auto &event : bench.mac.events)
        QCOMPARE(event->retainCount, 1);
}

void CarbonEventDispatcherHandlerTest::aCallbackMayUnregisterItsOwnHotKey()
{
    Bench bench;
    EventHotKeyRef ref = nullptr;
    int calls = 0;
    ScriptedCallback leaver([&] {
        ++calls;
        bench.handler.unregisterHotKey(ref);
    });
    ref = bench.handler.registerHotKey(kVK_Space, commandControl, &leaver, true);
    EventRef event = bench.eventOf(kEventHotKeyPressed, ref);
    QCOMPARE(bench.mac.send(event), noErr);
    QCOMPARE(bench.mac.send(event), noErr);
    QCOMPARE(calls, 1);
    QVERIFY(bench.mac.livingDictionary()->entries.empty());
}

void CarbonEventDispatcherHandlerTest::aCombinationThatIsTakenIsRefusedAndTheFirstStays()
{
    Bench bench;
    CountingCallback late;
    EventHotKeyRef first = bench.addHotKey();
    QCOMPARE(bench.handler.registerHotKey(kVK_Space, commandControl, &late, true), nullptr);
    QCOMPARE(bench.mac.pressKey(kVK_Space, commandControl), 1);
    QCOMPARE(bench.callback.calls, 1);
    QCOMPARE(late.calls, 0);
    bench.handler.unregisterHotKey(first);
    QVERIFY(bench.handler.registerHotKey(kVK_Space, commandControl, &late, true));
}

void CarbonEventDispatcherHandlerTest::thePlatformsHandlerOutlivesThisOne()
{
    FakeMac mac;
    {
        const CarbonEventDispatcherHandler handler;
    }
    QCOMPARE(mac.calls, (QStringList{u"install"_s, u"add types"_s}));
    QCOMPARE(mac.installedHandlers().size(), std::size_t(1));
}

void CarbonEventDispatcherHandlerTest::aRefusedHandlerIsALogLineAndNoEventTypesAreAdded()
{
    FakeMac mac;
    mac.installationResult = -9860;
    QTest::ignoreMessage(QtDebugMsg, "the Mac refused an event handler: -9860");
    const CarbonEventDispatcherHandler handler;
    QCOMPARE(mac.calls, QStringList{u"install"_s});
}

void CarbonEventDispatcherHandlerTest::refusedEventTypesAreALogLine()
{
    FakeMac mac;
    mac.addingTypesResult = -50;
    QTest::ignoreMessage(QtDebugMsg, "the Mac refused to send the events of hot keys: -50");
    const CarbonEventDispatcherHandler handler;
    QCOMPARE(mac.calls, (QStringList{u"install"_s, u"add types"_s}));
}

QTEST_GUILESS_MAIN(CarbonEventDispatcherHandlerTest)
#include "CarbonEventDispatcherHandlerTest.moc"
