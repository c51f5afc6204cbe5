// SPDX-License-Identifier: MIT
#include "app/activation/InstanceClient.h"

#include "InstanceCopy.h"
#include "PrivateBus.h"
#include "app/activation/RunningInstance.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace Qt::StringLiterals;
using namespace InstancePeers;
using InstanceClient::Answer;
using InstanceClient::Outcome;
using Kind = InstanceRequest::Kind;

namespace
{
/// Sets environment variables and takes them away again.
class Variable
{
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name)
    {
        qputenv(name, value);
    }
    ~Variable() { qunsetenv(m_name); }
    Q_DISABLE_COPY_MOVE(Variable)

private:
    const char *m_name;
};

/// What a new copy that asks no questions throws, or "nothing".
QString thrownBy(const Copy &copy, const InstanceRequest &request)
{
    copy.activation->askNoQuestions(request);
    try {
        copy.activation->checkForOtherInstances();
    } catch (const char *text) {
        return QString::fromLatin1(text);
    }
    return u"nothing"_s;
}
} // namespace

/// What a copy started with --activate or --toggle says to the running one. What travels over the
/// bus is shown by the end-to-end tests, where the two are programs of their own.
class InstanceClientTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void nobodyRuns();
    void whicheverVersionRunsItIsToldToComeForward_data();
    void whicheverVersionRunsItIsToldToComeForward();
    void withoutABusLessIsSaid_data();
    void withoutABusLessIsSaid();
    void aTokenWithoutABusStillBringsForward();
    void aCopyThatNeverAnswersIsAFailure();
    void aCopyThatTakesItsTimeIsWaitedFor();
    void aCopyInAnotherRuntimeFolderIsReached();
    void aMessageThatDoesNotArriveIsNoSuccess();

    void aStartThatFindsARunningCopyHandsOverWithoutAQuestion_data();
    void aStartThatFindsARunningCopyHandsOverWithoutAQuestion();
    void aStartThatCannotHandItsFilesOverFails();
    void aStartThatFindsNoServerButAHeldLockFailsWithoutABox();
};

void InstanceClientTest::initTestCase()
{
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("DESKTOP_STARTUP_ID");
}

void InstanceClientTest::nobodyRuns()
{
    const Copy copy;
    for (const Kind kind : {Kind::Activate, Kind::Toggle, Kind::Open}) {
        const Answer answer = InstanceClient::handOver({kind, {}, {}});
        QCOMPARE(answer.outcome, Outcome::NobodyRuns);
        QVERIFY(!answer.text);
    }
}

void InstanceClientTest::whicheverVersionRunsItIsToldToComeForward_data()
{
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    for (const auto &[major, minor] : {std::pair(0, 3), {0, 2}, {-1, 99}, {0, 4}, {7, 0}})
        QTest::addRow("%d.%d", major, minor) << major << minor;
}

void InstanceClientTest::whicheverVersionRunsItIsToldToComeForward()
{
    QFETCH(int, major);
    QFETCH(int, minor);
    const Copy copy;
    ScriptedServer running(copy.path, answersVersion(major, minor));
    const Answer answer = InstanceClient::handOver({});
    QCOMPARE(answer.outcome, Outcome::Done);
    QVERIFY(!answer.text);
    QCOMPARE(running.received(), numbers({1, 2}));
}

void InstanceClientTest::withoutABusLessIsSaid_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<Outcome>("outcome");
    QTest::newRow("toggle") << Kind::Toggle << Outcome::Done;
    QTest::newRow("open") << Kind::Open << Outcome::Failed;
}

void InstanceClientTest::withoutABusLessIsSaid()
{
    QFETCH(Kind, kind);
    const Copy copy;
    ScriptedServer running(copy.path, answersVersion(0, 3));
    const Answer answer = InstanceClient::handOver({kind, {u"/a"_s}, {}});
    QTEST(answer.outcome, "outcome");
    QVERIFY(QByteArray(answer.text).contains("session bus"));
    QCOMPARE(running.received(), numbers({1, 2}));
}

void InstanceClientTest::aTokenWithoutABusStillBringsForward()
{
    const Variable token("XDG_ACTIVATION_TOKEN", "token");
    const PrivateBus bus; // where nobody owns the name
    const Copy copy;
    ScriptedServer running(copy.path, answersVersion(0, 3));
    const Answer answer = InstanceClient::handOver({});
    QCOMPARE(answer.outcome, Outcome::Done);
    QVERIFY(!answer.text);
    QCOMPARE(running.received(), numbers({1, 2}));
}

void InstanceClientTest::aCopyThatNeverAnswersIsAFailure()
{
    const Copy copy;
    ScriptedServer running(copy.path, [](QLocalSocket &) {});
    QElapsedTimer time;
    time.start();
    const Answer answer = InstanceClient::handOver({});
    QCOMPARE(answer.outcome, Outcome::Failed);
    QCOMPARE(QByteArray(answer.text), QByteArray("the running copy doesn't answer"));
    QVERIFY(time.elapsed() >= InstanceClient::patienceMs - 100);
    QCOMPARE(running.received(), numbers({1}));
}

void InstanceClientTest::aCopyThatTakesItsTimeIsWaitedFor()
{
    const Copy copy;
    ScriptedServer running(copy.path, [](QLocalSocket &client) {
        QThread::msleep(2000);
        answersVersion(0, 3)(client);
    });
    QCOMPARE(InstanceClient::handOver({}).outcome, Outcome::Done);
    QCOMPARE(running.received(), numbers({1, 2}));
}

void InstanceClientTest::aCopyInAnotherRuntimeFolderIsReached()
{
    const Copy copy;
    InstanceEndpoint first;
    QVERIFY(first.claim());
    ScriptedServer running(copy.path, answersVersion(0, 3));
    const RuntimeFolder another;
    QCOMPARE(InstanceClient::handOver({}).outcome, Outcome::Done);
    QCOMPARE(running.received(), numbers({1, 2}));
}

void InstanceClientTest::aMessageThatDoesNotArriveIsNoSuccess()
{
    const Copy copy;
    QSemaphore hungUp;
    ScriptedServer running(copy.path, [&hungUp](QLocalSocket &client) {
        answersVersion(0, 3)(client);
        client.abort();
        hungUp.release();
    });
    RunningInstance instance({copy.path});
    QVERIFY(instance.connect());
    QCOMPARE(instance.askVersion().minor, 3);
    hungUp.acquire();
    QVERIFY(!instance.send(RunningInstance::Message::Activation));
}

void InstanceClientTest::aStartThatFindsARunningCopyHandsOverWithoutAQuestion_data()
{
    whicheverVersionRunsItIsToldToComeForward_data();
}

void InstanceClientTest::aStartThatFindsARunningCopyHandsOverWithoutAQuestion()
{
    QFETCH(int, major);
    QFETCH(int, minor);
    const Copy copy;
    InstanceEndpoint first;
    QVERIFY(first.claim()); // it was the quicker one, and listens a little later
    ScriptedServer running(copy.path, answersVersion(major, minor), 300);
    const BoxUser user(u"Cancel"_s);
    copy.activation->askNoQuestions({});
    QVERIFY(copy.mustQuit());
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(running.received(), numbers({1, 2}));
}

void InstanceClientTest::aStartThatCannotHandItsFilesOverFails()
{
    const Copy copy;
    ScriptedServer running(copy.path, answersVersion(0, 3));
    const BoxUser user(u"Cancel"_s);
    QVERIFY(thrownBy(copy, InstanceRequest::toOpen({u"a.bdl"_s})).contains(u"session bus"_s));
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(running.received(), numbers({1, 2}));
}

void InstanceClientTest::aStartThatFindsNoServerButAHeldLockFailsWithoutABox()
{
    const Copy copy;
    InstanceEndpoint first;
    QVERIFY(first.claim());
    const BoxUser user(u"OK"_s);
    QCOMPARE(thrownBy(copy, {}), u"there was an error while looking for running instances"_s);
    QVERIFY(user.seen.isEmpty());
}

QTEST_MAIN(InstanceClientTest)
#include "InstanceClientTest.moc"
