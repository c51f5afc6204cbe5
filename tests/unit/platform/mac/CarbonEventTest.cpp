// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonEvent.h"

#include "fakes/mac/FakeMac.h"

#include <QtTest>

class CarbonEventTest : public QObject
{
    Q_OBJECT

private slots:
    void theEventIsRetainedWhileWrappedAndReleasedAfterwards();
    void aNullEventIsNeitherRetainedNorRead();
    void classAndKindAreThoseOfTheEvent();
    void aParameterThatWasSetCanBeReadAgain();
    void aParameterOfAnotherNameOrTypeIsNotFound();
    void theHotKeyIdIsTheEightBytesOfTheDirectObject();
    void anEventWithoutAHotKeyIdHasNone();
    void aHotKeyIdOfAnotherSizeIsNone();
};

void CarbonEventTest::theEventIsRetainedWhileWrappedAndReleasedAfterwards()
{
    FakeMac mac;
    EventRef event = mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed);
    {
        const CarbonEvent wrapped(event);
        QCOMPARE(wrapped.eventRef(), event);
        QCOMPARE(event->retainCount, 2);
        const CarbonEvent wrappedAgain(event);
        QCOMPARE(event->retainCount, 3);
    }
    QCOMPARE(event->retainCount, 1);
}

void CarbonEventTest::aNullEventIsNeitherRetainedNorRead()
{
    CarbonEvent nothing(nullptr);
    UInt32 data = 7;
    QCOMPARE(nothing.eventRef(), nullptr);
    QCOMPARE(nothing.eventClass(), 0u);
    QCOMPARE(nothing.eventKind(), 0u);
    QVERIFY(nothing.getParameter(kEventParamDirectObject, typeEventHotKeyID, sizeof data, &data)
            != noErr);
    QVERIFY(nothing.setParameter(kEventParamDirectObject, typeEventHotKeyID, sizeof data, &data)
            != noErr);
    QVERIFY(!nothing.hotKeyID());
    QCOMPARE(data, 7u);
}

void CarbonEventTest::classAndKindAreThoseOfTheEvent()
{
    FakeMac mac;
    const CarbonEvent press(mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed));
    QCOMPARE(press.eventClass(), OSType(kEventClassKeyboard));
    QCOMPARE(press.eventKind(), UInt32(kEventHotKeyPressed));
    const CarbonEvent other(mac.makeEvent(0x6D6F7573, 3));
    QCOMPARE(other.eventClass(), 0x6D6F7573u);
    QCOMPARE(other.eventKind(), 3u);
}

void CarbonEventTest::aParameterThatWasSetCanBeReadAgain()
{
    FakeMac mac;
    CarbonEvent event(mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed));
    const EventHotKeyID id{0x41424344, 9};
    QCOMPARE(event.setParameter(kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id), noErr);
    EventHotKeyID read{};
    QCOMPARE(event.getParameter(kEventParamDirectObject, typeEventHotKeyID, sizeof read, &read),
             noErr);
    QCOMPARE(read.signature, 0x41424344u);
    QCOMPARE(read.id, 9u);
}

void CarbonEventTest::aParameterOfAnotherNameOrTypeIsNotFound()
{
    FakeMac mac;
    const CarbonEvent event(mac.makeHotKeyEvent(kEventHotKeyPressed, {0x41424344, 9}));
    EventHotKeyID read{};
    QCOMPARE(event.getParameter(0x6B636F64, typeEventHotKeyID, sizeof read, &read),
             eventParameterNotFoundErr);
    QCOMPARE(event.getParameter(kEventParamDirectObject, 0x6D61676E, sizeof read, &read),
             eventParameterNotFoundErr);
    QCOMPARE(read.id, 0u);
}

void CarbonEventTest::theHotKeyIdIsTheEightBytesOfTheDirectObject()
{
    FakeMac mac;
    EventRef event = mac.makeEvent(kEventClassKeyboard, kEventHotKeyReleased);
    const std::array<UInt32, 2> parameter{0x41424344, 123};
    event->parameters[{0x2D2D2D2D, 0x686B6964}]
        = QByteArray(reinterpret_cast<const char *>(parameter.data()), 8);
    const std::optional<EventHotKeyID> id = CarbonEvent(event).hotKeyID();
    QVERIFY(id);
    QCOMPARE(id->signature, 0x41424344u);
    QCOMPARE(id->id, 123u);
}

void CarbonEventTest::anEventWithoutAHotKeyIdHasNone()
{
    FakeMac mac;
    QVERIFY(!CarbonEvent(mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed)).hotKeyID());
}

void CarbonEventTest::aHotKeyIdOfAnotherSizeIsNone()
{
    FakeMac mac;
    CarbonEvent event(mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed));
    const UInt32 half = 1;
    event.setParameter(kEventParamDirectObject, typeEventHotKeyID, sizeof half, &half);
    QVERIFY(!event.hotKeyID());
}

QTEST_GUILESS_MAIN(CarbonEventTest)
#include "CarbonEventTest.moc"
