// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonEventHandler.h"

#include "fakes/mac/FakeMac.h"
#include "platform/mac/CarbonEvent.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

/// Receives what the dispatcher sends, and answers as it is told.
class ListeningHandler : public CarbonEventHandler
{
public:
    EventTargetRef eventTarget() const override { return GetEventDispatcherTarget(); }

    OSStatus handleEvent(CarbonEvent *event, EventHandlerCallRef call) override
    {
        ++calls;
        lastEvent = event->eventRef();
        lastCall = call;
        retainCountMeanwhile = event->eventRef()->retainCount;
        return result;
    }

    OSStatus result = noErr;
    int calls = 0;
    EventRef lastEvent = nullptr;
    EventHandlerCallRef lastCall = nullptr;
    int retainCountMeanwhile = 0;
};

/// Listens, and does with each event what the base does.
class PassingHandler : public CarbonEventHandler
{
public:
    EventTargetRef eventTarget() const override { return GetEventDispatcherTarget(); }
};

} // namespace

class CarbonEventHandlerTest : public QObject
{
    Q_OBJECT

private slots:
    void theBaseHasNoTarget();
    void nothingIsInstalledBeforeTheReferenceIsAskedFor();
    void theFirstRequestInstallsForNoEventTypesOnTheTarget();
    void laterRequestsInstallNothing();
    void theHandlerStaysInstalledForever();
    void allHandlersShareOneCallback();
    void theCallbackWrapsTheEventAndReturnsWhatTheHandlerReturns();
    void eventsGoToTheHandlerOfTheirUserData();
    void theBasePassesAnEventOnAndReturnsTheNextHandlersResult_data();
    void theBasePassesAnEventOnAndReturnsTheNextHandlersResult();
    void withoutACallReferenceTheBaseHandlesNothing();
    void withoutAnEventTheBaseHandlesNothing();
    void aRefusedInstallationIsALogLineAndTriedAgain();
};

void CarbonEventHandlerTest::theBaseHasNoTarget()
{
    FakeMac mac;
    CarbonEventHandler handler;
    QCOMPARE(handler.eventTarget(), nullptr);
    QCOMPARE(handler.eventHandlerRef(), nullptr);
    QVERIFY(mac.installedHandlers().empty());
}

void CarbonEventHandlerTest::nothingIsInstalledBeforeTheReferenceIsAskedFor()
{
    FakeMac mac;
    const ListeningHandler handler;
    QVERIFY(mac.calls.isEmpty());
}

void CarbonEventHandlerTest::theFirstRequestInstallsForNoEventTypesOnTheTarget()
{
    FakeMac mac;
    ListeningHandler handler;
    EventHandlerRef ref = handler.eventHandlerRef();
    QCOMPARE(mac.installedHandlers().size(), std::size_t(1));
    const OpaqueEventHandlerRef *installed = mac.installedHandlers().front();
    QCOMPARE(ref, installed);
    QCOMPARE(installed->target, &mac.dispatcherTarget);
    QCOMPARE(installed->userData, static_cast<void *>(&handler));
    QCOMPARE(installed->typesAtInstallation, ItemCount(0));
    QVERIFY(installed->types.empty());
}

void CarbonEventHandlerTest::laterRequestsInstallNothing()
{
    FakeMac mac;
    ListeningHandler handler;
    EventHandlerRef first = handler.eventHandlerRef();
    QCOMPARE(handler.eventHandlerRef(), first);
    QCOMPARE(mac.calls, QStringList{u"install"_s});
}

void CarbonEventHandlerTest::theHandlerStaysInstalledForever()
{
    FakeMac mac;
    {
        ListeningHandler handler;
        handler.eventHandlerRef();
    }
    QCOMPARE(mac.calls, QStringList{u"install"_s});
    QCOMPARE(mac.installedHandlers().size(), std::size_t(1));
}

void CarbonEventHandlerTest::allHandlersShareOneCallback()
{
    FakeMac mac;
    ListeningHandler one;
    PassingHandler other;
    one.eventHandlerRef();
    other.eventHandlerRef();
    QCOMPARE(mac.handlers.size(), std::size_t(2));
    QVERIFY(mac.handlers[0]->callback);
    QVERIFY(mac.handlers[0]->callback == mac.handlers[1]->callback);
}

void CarbonEventHandlerTest::theCallbackWrapsTheEventAndReturnsWhatTheHandlerReturns()
{
    FakeMac mac;
    ListeningHandler handler;
    handler.eventHandlerRef();
    EventRef event = mac.makeEvent(kEventClassKeyboard, kEventRawKeyDown);
    handler.result = -123;
    QCOMPARE(mac.callHandler(&mac.call, event), -123);
    QCOMPARE(handler.calls, 1);
    QCOMPARE(handler.lastEvent, event);
    QCOMPARE(handler.lastCall, &mac.call);
    QCOMPARE(handler.retainCountMeanwhile, 2);
    QCOMPARE(event->retainCount, 1);
    handler.result = noErr;
    QCOMPARE(mac.callHandler(&mac.call, event), noErr);
}

void CarbonEventHandlerTest::eventsGoToTheHandlerOfTheirUserData()
{
    FakeMac mac;
    ListeningHandler first;
    ListeningHandler latest;
    first.eventHandlerRef();
    latest.eventHandlerRef();
    mac.callHandler(&mac.call, mac.makeEvent(kEventClassKeyboard, kEventRawKeyDown));
    QCOMPARE(first.calls, 0);
    QCOMPARE(latest.calls, 1);
}

void CarbonEventHandlerTest::theBasePassesAnEventOnAndReturnsTheNextHandlersResult_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("handled") << int(noErr);
    QTest::newRow("not handled") << int(eventNotHandledErr);
    QTest::newRow("another error") << -50;
}

void CarbonEventHandlerTest::theBasePassesAnEventOnAndReturnsTheNextHandlersResult()
{
    QFETCH(int, result);
    FakeMac mac;
    mac.nextHandlerResult = result;
    EventRef event = mac.makeEvent(kEventClassKeyboard, kEventRawKeyDown);
    CarbonEvent wrapped(event);
    QCOMPARE(CarbonEventHandler().handleEvent(&wrapped, &mac.call), result);
    QCOMPARE(mac.passedOn, std::vector<EventRef>{event});
}

void CarbonEventHandlerTest::withoutACallReferenceTheBaseHandlesNothing()
{
    FakeMac mac;
    mac.nextHandlerResult = noErr;
    CarbonEvent event(mac.makeEvent(kEventClassKeyboard, kEventRawKeyDown));
    QCOMPARE(CarbonEventHandler().handleEvent(&event, nullptr), eventNotHandledErr);
    QVERIFY(mac.passedOn.empty());
}

void CarbonEventHandlerTest::withoutAnEventTheBaseHandlesNothing()
{
    FakeMac mac;
    mac.nextHandlerResult = noErr;
    CarbonEvent empty(nullptr);
    QCOMPARE(CarbonEventHandler().handleEvent(nullptr, &mac.call), eventNotHandledErr);
    QCOMPARE(CarbonEventHandler().handleEvent(&empty, &mac.call), eventNotHandledErr);
    QCOMPARE(CarbonEventHandler().handleEvent(nullptr, nullptr), eventNotHandledErr);
    QVERIFY(mac.passedOn.empty());
}

void CarbonEventHandlerTest::aRefusedInstallationIsALogLineAndTriedAgain()
{
    FakeMac mac;
    ListeningHandler handler;
    mac.installationResult = -9860;
    QTest::ignoreMessage(QtDebugMsg, "the Mac refused an event handler: -9860");
    QCOMPARE(handler.eventHandlerRef(), nullptr);
    mac.installationResult = noErr;
    QVERIFY(handler.eventHandlerRef());
}

QTEST_GUILESS_MAIN(CarbonEventHandlerTest)
#include "CarbonEventHandlerTest.moc"
