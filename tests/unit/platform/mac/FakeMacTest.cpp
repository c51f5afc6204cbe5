// SPDX-License-Identifier: MIT
// Where the stand-in is as strict as a Mac, the other tests find what a Mac would find.
#include "fakes/mac/FakeMac.h"

#include <QtTest>
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// A handler that answers \a userData, and counts nothing: which one answered shows in the answer.
OSStatus answerUserData(EventHandlerCallRef call, EventRef event, void *userData)
{
    Q_UNUSED(call)
    Q_UNUSED(event)
    return *static_cast<OSStatus *>(userData);
}

void install(OSStatus *answer)
{
    const EventTypeSpec type{kEventClassKeyboard, kEventHotKeyPressed};
    InstallEventHandler(GetEventDispatcherTarget(), &answerUserData, 1, &type, answer, nullptr);
}

/// Whether \a step ends the process, tried in another one.
template <typename Step> bool isFatal(Step step)
{
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        std::signal(SIGABRT, SIG_DFL);
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        step();
        _exit(0);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFSIGNALED(status)
        && WTERMSIG(status) == SIGABRT;
}

} // namespace

class FakeMacTest : public QObject
{
    Q_OBJECT

private slots:
    void anEventGoesOnToTheNextHandlerOnlyWhenItIsNotHandled_data();
    void anEventGoesOnToTheNextHandlerOnlyWhenItIsNotHandled();
    void aCombinationCanBeRegisteredOnce();
    void onlyAHotKeyThatIsRegisteredCanBeUnregistered();
    void anEventCanBeReleasedAsOftenAsItWasRetained();
};

void FakeMacTest::anEventGoesOnToTheNextHandlerOnlyWhenItIsNotHandled_data()
{
    QTest::addColumn<int>("latest");
    QTest::addColumn<int>("result");
    QTest::newRow("handled") << int(noErr) << int(noErr);
    QTest::newRow("an error") << -50 << -50;
    QTest::newRow("not handled") << int(eventNotHandledErr) << -77;
}

void FakeMacTest::anEventGoesOnToTheNextHandlerOnlyWhenItIsNotHandled()
{
    QFETCH(int, latest);
    FakeMac mac;
    OSStatus earlier = -77;
    install(&earlier);
    install(&latest);
    QTEST(int(mac.send(mac.makeEvent(kEventClassKeyboard, kEventHotKeyPressed))), "result");
}

void FakeMacTest::aCombinationCanBeRegisteredOnce()
{
    FakeMac mac;
    EventTargetRef target = GetEventDispatcherTarget();
    EventHotKeyRef first = nullptr;
    EventHotKeyRef other = nullptr;
    QCOMPARE(RegisterEventHotKey(49, cmdKey, {1, 1}, target, 0, &first), noErr);
    QCOMPARE(RegisterEventHotKey(49, cmdKey, {1, 2}, target, 0, &other), eventHotKeyExistsErr);
    QVERIFY(!other);
    QCOMPARE(RegisterEventHotKey(36, cmdKey, {1, 3}, target, 0, &other), noErr);
    QCOMPARE(RegisterEventHotKey(49, controlKey, {1, 4}, target, 0, &other), noErr);
    QCOMPARE(UnregisterEventHotKey(first), noErr);
    QCOMPARE(RegisterEventHotKey(49, cmdKey, {1, 5}, target, 0, &other), noErr);
}

void FakeMacTest::onlyAHotKeyThatIsRegisteredCanBeUnregistered()
{
    FakeMac mac;
    EventHotKeyRef ref = nullptr;
    RegisterEventHotKey(49, cmdKey, {1, 1}, GetEventDispatcherTarget(), 0, &ref);
    OpaqueEventHotKeyRef unknown;
    QCOMPARE(UnregisterEventHotKey(nullptr), eventHotKeyInvalidErr);
    QCOMPARE(UnregisterEventHotKey(&unknown), eventHotKeyInvalidErr);
    QCOMPARE(UnregisterEventHotKey(ref), noErr);
    QCOMPARE(UnregisterEventHotKey(ref), eventHotKeyInvalidErr);
}

void FakeMacTest::anEventCanBeReleasedAsOftenAsItWasRetained()
{
    FakeMac mac;
    EventRef event = mac.makeEvent(kEventClassKeyboard, kEventRawKeyDown);
    RetainEvent(event);
    QVERIFY(!isFatal([event] { ReleaseEvent(event); }));
    QVERIFY(isFatal([event] {
        ReleaseEvent(event);
        ReleaseEvent(event);
    }));
}

QTEST_GUILESS_MAIN(FakeMacTest)
#include "FakeMacTest.moc"
