// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "InstanceCopy.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QtTest>

using namespace Qt::StringLiterals;
using namespace InstancePeers;

namespace
{

constexpr int manyConnections = 1000;
constexpr int oneMebibyte = 1 << 20;

/// Hostile clients would fill the test's own log.
struct QuietLog {
    QuietLog() { QLoggingCategory::setFilterRules(u"brindle.activation.instance.debug=false"_s); }
    ~QuietLog() { QLoggingCategory::setFilterRules(QString()); }
};

} // namespace

class SingleInstanceServerTest : public QObject
{
    Q_OBJECT

private slots:
    // The server.
    void theServerAnswersTheVersionRequestWithItsVersion();
    void cancelSendsNothingAfterTheVersionRequest();
    void anActivationCommandCapturesTheFrontAndActivates();
    void aTerminationCommandActivatesFirstAndThenAsksToQuit();
    void commandsThatComeTogetherAreAllCarriedOut();
    void aNumberInTwoHalvesIsOneNumber();
    void unknownNumbersAreIgnored();
    void requestsBeforeStartUpIsDoneAreKeptAndCarriedOutInOrder();

    void aClientIsServedWhileItsOwnRequestIsStillBeingCarriedOut();
    void aClientThatLeavesWhileItsRequestIsCarriedOutDoesNoHarm();

    // Clients that are no copies of the program.
    void halfANumberNeitherBlocksNorEndsTheServer();
    void clientsThatSendNothingNeitherBlockNorEndTheServer();
    void aMebibyteOfGarbageLeavesTheServerResponsive();
    void aMebibyteOfVersionRequestsLeavesTheServerResponsive();
    void aThousandConnectionsOpenAndCloseAndTheServerAnswers();
    void aThousandConnectionsHeldOpenAndTheServerAnswers();
};

void SingleInstanceServerTest::theServerAnswersTheVersionRequestWithItsVersion()
{
    const Serving copy;
    QVERIFY(!copy.quits);
    QTest::ignoreMessage(QtDebugMsg, "sending version information to another instance");
    QCOMPARE(askVersion(copy.path), QByteArray::fromHex("0000000000000003"));
}

void SingleInstanceServerTest::cancelSendsNothingAfterTheVersionRequest()
{
    const Serving copy;
    QCOMPARE(askVersion(copy.path), ownVersion);
    QTest::qWait(100);
    QVERIFY(!copy.activation->isAppActive());
    QVERIFY(copy.changes.isEmpty());
    QVERIFY(copy.terminations.isEmpty());
    QVERIFY(copy.desktop.calls.isEmpty());
}

void SingleInstanceServerTest::anActivationCommandCapturesTheFrontAndActivates()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QTest::ignoreMessage(QtDebugMsg, "received activation command from another instance");
    QVERIFY(send(*client, numbers({1, 2})));
    QTRY_VERIFY(copy.activation->isAppActive());
    QCOMPARE(copy.desktop.captures, 1);
    QCOMPARE(copy.changes, QList<QList<QVariant>>{{true}});
    QVERIFY(copy.terminations.isEmpty());
}

void SingleInstanceServerTest::aTerminationCommandActivatesFirstAndThenAsksToQuit()
{
    const Serving copy;
    bool activeWhenAsked = false;
    connect(copy.activation.get(), &AppActivationSupport::requestTermination, this,
            [&] { activeWhenAsked = copy.activation->isAppActive(); });
    const auto client = clientOf(copy);
    QTest::ignoreMessage(QtDebugMsg, "received termination command from another instance");
    QVERIFY(send(*client, numbers({1, 3})));
    QTRY_COMPARE(copy.terminations.count(), 1);
    QVERIFY(activeWhenAsked);
    QCOMPARE(copy.desktop.captures, 1);
}

void SingleInstanceServerTest::commandsThatComeTogetherAreAllCarriedOut()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QVERIFY(send(*client, numbers({1, 2, 1, 3})));
    QTRY_COMPARE(copy.terminations.count(), 1);
    QCOMPARE(receive(*client, 16), numbers({0, 3, 0, 3}));
    QCOMPARE(copy.changes.count(), 1);
}

void SingleInstanceServerTest::aNumberInTwoHalvesIsOneNumber()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QVERIFY(send(*client, numbers({2}).left(3)));
    QTest::qWait(100);
    QVERIFY(!copy.activation->isAppActive());
    QVERIFY(send(*client, numbers({2}).mid(3)));
    QTRY_VERIFY(copy.activation->isAppActive());
}

void SingleInstanceServerTest::unknownNumbersAreIgnored()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QVERIFY(send(*client, numbers({0, 4, -1, 0x01000000, 0x7fffffff})));
    QTest::qWait(100);
    QCOMPARE(client->bytesAvailable(), 0);
    QCOMPARE(client->state(), QLocalSocket::ConnectedState);
    QVERIFY(copy.changes.isEmpty());
    QVERIFY(copy.terminations.isEmpty());
    QVERIFY(send(*client, numbers({1})));
    QCOMPARE(receive(*client, 8), ownVersion);
}

void SingleInstanceServerTest::requestsBeforeStartUpIsDoneAreKeptAndCarriedOutInOrder()
{
    const Copy copy;
    QVERIFY(!copy.mustQuit());
    QStringList happened;
    connect(copy.activation.get(), &AppActivationSupport::activationChanged, this,
            [&] { happened << u"activation"_s; });
    connect(copy.activation.get(), &AppActivationSupport::requestTermination, this,
            [&] { happened << u"termination"_s; });
    const auto client = clientOf(copy);
    QVERIFY(send(*client, numbers({1, 2, 3})));
    QCOMPARE(receive(*client, 8), ownVersion);
    QTest::qWait(100);
    QCOMPARE(happened, QStringList());
    QVERIFY(!copy.activation->isAppActive());
    copy.activation->acceptRequests();
    QCOMPARE(happened, (QStringList{u"activation"_s, u"termination"_s}));
    QCOMPARE(copy.desktop.captures, 1);
    copy.activation->acceptRequests();
    QCOMPARE(happened.size(), 2);
}

void SingleInstanceServerTest::aClientIsServedWhileItsOwnRequestIsStillBeingCarriedOut()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QByteArray answer;
    // A termination can end in a prompt, which stands for as long as the user wants.
    connect(copy.activation.get(), &AppActivationSupport::requestTermination, this, [&] {
        client->write(numbers({1}));
        runUntil([&] { return client->bytesAvailable() >= 8; }, 1000);
        answer = client->readAll();
    });
    QVERIFY(send(*client, numbers({3})));
    QTRY_COMPARE(copy.terminations.count(), 1);
    QCOMPARE(answer, ownVersion);
}

void SingleInstanceServerTest::aClientThatLeavesWhileItsRequestIsCarriedOutDoesNoHarm()
{
    const Serving copy;
    const auto client = clientOf(copy);
    connect(copy.activation.get(), &AppActivationSupport::requestTermination, this, [&] {
        client->disconnectFromServer();
        QTest::qWait(200); // the server's side of the connection goes meanwhile
    });
    QVERIFY(send(*client, numbers({1, 3})));
    QTRY_COMPARE(copy.terminations.count(), 1);
    QCOMPARE(askVersion(copy.path), ownVersion);
}

void SingleInstanceServerTest::halfANumberNeitherBlocksNorEndsTheServer()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QVERIFY(send(*client, QByteArray(1, '\0')));
    QCOMPARE(askVersion(copy.path), ownVersion);
    client->disconnectFromServer();
    QCOMPARE(askVersion(copy.path), ownVersion);
    QVERIFY(copy.changes.isEmpty());
}

void SingleInstanceServerTest::clientsThatSendNothingNeitherBlockNorEndTheServer()
{
    const Serving copy;
    std::vector<std::unique_ptr<QLocalSocket>> silent;
    for (int i = 0; i < 10; ++i) {
        silent.push_back(clientOf(copy));
        QCOMPARE(askVersion(copy.path), ownVersion);
    }
}

void SingleInstanceServerTest::aMebibyteOfGarbageLeavesTheServerResponsive()
{
    const QuietLog quiet;
    const Serving copy;
    const auto client = clientOf(copy);
    client->write(QByteArray(oneMebibyte, 'x'));
    QElapsedTimer time;
    time.start();
    while (client->bytesToWrite() > 0 && time.elapsed() < 30'000)
        QCOMPARE(askVersion(copy.path), ownVersion); // answered within a second in between, too
    QCOMPARE(client->bytesToWrite(), 0);
    QCOMPARE(askVersion(copy.path), ownVersion);
    QVERIFY(copy.changes.isEmpty());
    QVERIFY(copy.terminations.isEmpty());
}

void SingleInstanceServerTest::aMebibyteOfVersionRequestsLeavesTheServerResponsive()
{
    const QuietLog quiet;
    const Serving copy;
    const auto client = clientOf(copy);
    client->write(QByteArray(numbers({1})).repeated(oneMebibyte / 4));
    client->setReadBufferSize(4); // and hardly ever reads what it asked for
    QElapsedTimer time;
    time.start();
    while (client->bytesToWrite() > 0 && time.elapsed() < 2'000)
        QCOMPARE(askVersion(copy.path), ownVersion);
    QCOMPARE(askVersion(copy.path), ownVersion);
}

void SingleInstanceServerTest::aThousandConnectionsOpenAndCloseAndTheServerAnswers()
{
    const Serving copy;
    for (int i = 0; i < manyConnections; ++i) {
        QLocalSocket client;
        client.connectToServer(copy.path);
        QCoreApplication::processEvents();
    }
    QCOMPARE(askVersion(copy.path), ownVersion);
}

void SingleInstanceServerTest::aThousandConnectionsHeldOpenAndTheServerAnswers()
{
    const Serving copy;
    std::vector<std::unique_ptr<QLocalSocket>> held;
    for (int i = 0; i < manyConnections; ++i) {
        held.push_back(std::make_unique<QLocalSocket>());
        held.back()->connectToServer(copy.path);
        QCoreApplication::processEvents();
    }
    QCOMPARE(askVersion(copy.path), ownVersion);
    const auto client = clientOf(copy);
    QVERIFY(send(*client, numbers({1, 2})));
    QTRY_VERIFY(copy.activation->isAppActive());
}

QTEST_MAIN(SingleInstanceServerTest)
#include "SingleInstanceServerTest.moc"
