// SPDX-License-Identifier: MIT
// The numbers of hot keys count from the start of the process, so this is a program of its own with
// one test function.
#include "Callbacks.h"
#include "fakes/mac/FakeMac.h"
#include "platform/mac/CarbonEventDispatcherHandler.h"

#include <QtTest>

class HotKeyIdsTest : public QObject
{
    Q_OBJECT

private slots:
    void idsCountFromOneAndAreNeverUsedAgain();
};

void HotKeyIdsTest::idsCountFromOneAndAreNeverUsedAgain()
{
    FakeMac mac;
    CountingCallback callback;
    CarbonEventDispatcherHandler handler;
    UInt32 nextKey = kVK_Space; // each its own: the Mac refuses a combination that is taken
    const auto add = [&callback, &nextKey](CarbonEventDispatcherHandler &to) {
        return to.registerHotKey(nextKey++, cmdKey, &callback, true);
    };
    EventHotKeyRef first = add(handler);
    QCOMPARE(first->id.id, 1u);
    QCOMPARE(add(handler)->id.id, 2u);

    handler.unregisterHotKey(first);
    QCOMPARE(add(handler)->id.id, 3u);

    mac.registrationResult = eventHotKeyExistsErr;
    QCOMPARE(add(handler), nullptr);
    QCOMPARE(mac.triedIds.back().id, 4u);
    mac.registrationResult = noErr;
    QCOMPARE(add(handler)->id.id, 5u);

    CarbonEventDispatcherHandler other;
    QCOMPARE(add(other)->id.id, 6u);
    QCOMPARE(add(handler)->id.id, 7u);
    for (const EventHotKeyID &id : mac.triedIds)
        QCOMPARE(id.signature, first->id.signature);
}

QTEST_GUILESS_MAIN(HotKeyIdsTest)
#include "HotKeyIdsTest.moc"
