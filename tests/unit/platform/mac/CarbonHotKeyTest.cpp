// SPDX-License-Identifier: MIT
#include "platform/mac/CarbonHotKey.h"

#include "Callbacks.h"
#include "CapturedOutput.h"
#include "platform/mac/CarbonEventHandler.h"

#include <QtTest>
#include <stdexcept>

namespace
{

constexpr EventHotKeyID someId{0x41424344, 5};

} // namespace

class CarbonHotKeyTest : public QObject
{
    Q_OBJECT

private slots:
    void anIdMatchesOnlyWithEqualSignatureAndEqualNumber();
    void itRemembersWhetherItFiresOnThePress();
    void theActionCallsTheCallbackOnceWithTheHandler();
    void anActionThatSucceedsPrintsNothing();
    void whateverTheCallbackThrowsIsOneLineOnStandardOutput_data();
    void whateverTheCallbackThrowsIsOneLineOnStandardOutput();
    void eachExceptionIsALineOfItsOwn();
};

void CarbonHotKeyTest::anIdMatchesOnlyWithEqualSignatureAndEqualNumber()
{
    const CarbonHotKey hotKey(someId, nullptr, true);
    QVERIFY(hotKey.matchesHotKeyID({0x41424344, 5}));
    QVERIFY(!hotKey.matchesHotKeyID({0x41424344, 6}));
    QVERIFY(!hotKey.matchesHotKeyID({0x41424345, 5}));
    QVERIFY(!hotKey.matchesHotKeyID({5, 0x41424344}));
}

void CarbonHotKeyTest::itRemembersWhetherItFiresOnThePress()
{
    QVERIFY(CarbonHotKey(someId, nullptr, true).isOnKeyDown());
    QVERIFY(!CarbonHotKey(someId, nullptr, false).isOnKeyDown());
}

void CarbonHotKeyTest::theActionCallsTheCallbackOnceWithTheHandler()
{
    CountingCallback callback;
    CarbonEventHandler handler;
    QVERIFY(CarbonHotKey(someId, &callback, true).sendAction(&handler));
    QCOMPARE(callback.calls, 1);
    QCOMPARE(callback.lastHandler, static_cast<void *>(&handler));
}

void CarbonHotKeyTest::anActionThatSucceedsPrintsNothing()
{
    CountingCallback callback;
    CapturedOutput output;
    CarbonHotKey(someId, &callback, true).sendAction(nullptr);
    QCOMPARE(output.text(), QByteArray());
}

void CarbonHotKeyTest::whateverTheCallbackThrowsIsOneLineOnStandardOutput_data()
{
    QTest::addColumn<std::function<void()>>("thrower");
    QTest::newRow("text") << std::function<void()>([] { throw "bad"; });
    QTest::newRow("number") << std::function<void()>([] { throw 42; });
    QTest::newRow("exception") << std::function<void()>(
        [] { throw std::runtime_error("no such thing"); });
}

void CarbonHotKeyTest::whateverTheCallbackThrowsIsOneLineOnStandardOutput()
{
    QFETCH(std::function<void()>, thrower);
    ScriptedCallback callback(thrower);
    CarbonHotKey hotKey(someId, &callback, true);
    CapturedOutput output;
    const bool result = hotKey.sendAction(nullptr);
    QCOMPARE(output.text(), QByteArray("Exception in callback!\n"));
    QVERIFY(!result);
}

void CarbonHotKeyTest::eachExceptionIsALineOfItsOwn()
{
    ScriptedCallback callback([] { throw "bad"; });
    CarbonHotKey hotKey(someId, &callback, true);
    CapturedOutput output;
    hotKey.sendAction(nullptr);
    hotKey.sendAction(nullptr);
    QCOMPARE(output.text(), QByteArray("Exception in callback!\nException in callback!\n"));
}

QTEST_GUILESS_MAIN(CarbonHotKeyTest)
#include "CarbonHotKeyTest.moc"
