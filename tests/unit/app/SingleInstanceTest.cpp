// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "InstancePeers.h"
#include "fakes/RecordingNativeSupport.h"
#include "fakes/TestSettings.h"

#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMessageBox>
#include <QSignalSpy>
#include <QtTest>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace InstancePeers;

namespace
{

const QByteArray ownVersion = numbers({0, 3});
constexpr int manyConnections = 1000;
constexpr int oneMebibyte = 1 << 20;

/// A new copy on a desktop, with settings and a runtime folder of the test's own.
struct Copy {
    TestSettings settings;
    RuntimeFolder runtime;
    RecordingNativeSupport desktop;
    std::unique_ptr<AppActivationSupport> activation
        = std::make_unique<AppActivationSupport>(&desktop);
    QString path = InstanceEndpoint().socketPath();

    bool mustQuit() const { return activation->checkForOtherInstances(); }
};

/// What is thrown by the look for other copies, or "nothing".
QString thrownBy(AppActivationSupport &activation)
{
    try {
        activation.checkForOtherInstances();
    } catch (const char *text) {
        return QString::fromLatin1(text);
    }
    return u"nothing"_s;
}

/// A copy that has become the server, after start-up, with the event loop running.
struct Serving : Copy {
    QSignalSpy changes{activation.get(), &AppActivationSupport::activationChanged};
    QSignalSpy terminations{activation.get(), &AppActivationSupport::requestTermination};
    bool quits = mustQuit();

    Serving() { activation->acceptRequests(); }
};

/// Hostile clients would fill the test's own log.
struct QuietLog {
    QuietLog() { QLoggingCategory::setFilterRules(u"brindle.activation.instance.debug=false"_s); }
    ~QuietLog() { QLoggingCategory::setFilterRules(QString()); }
};

/// Connected to the serving copy, and taken over by it.
std::unique_ptr<QLocalSocket> clientOf(const Copy &copy)
{
    auto socket = std::make_unique<QLocalSocket>();
    socket->connectToServer(copy.path);
    if (!socket->waitForConnected(1000))
        qWarning("not connected: %s", qPrintable(socket->errorString()));
    return socket;
}

/// What a copy leaves behind that was killed: a socket that nobody listens on.
bool leaveStaleEndpoint(const QString &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    qstrncpy(address.sun_path, name.constData(), sizeof(address.sun_path));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool made = ::bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0;
    ::close(socket);
    return made && QFile::exists(path);
}

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private slots:
    // The first copy.
    void withoutAnotherCopyItBecomesTheServerWithoutAQuestion();
    void theRuntimeFolderIsMadeForThisUserAloneWhenMissing();
    void twoRuntimeFoldersDoNotSeeEachOther();
    void theEndpointGoesWithTheServer();

    // The second copy.
    void eachVersionGetsItsOwnQuestion_data();
    void eachVersionGetsItsOwnQuestion();
    void theAnswerDecidesWhatIsSent_data();
    void theAnswerDecidesWhatIsSent();
    void aReplyInTwoPiecesIsReadWhole();
    void aRunningCopyThatNeverAnswersEndsTheNewOneAfterASecondWithoutABox();
    void aRunningCopyThatAnswersHalfAReplyEndsTheNewOneAfterASecondWithoutABox();
    void aRunningCopyThatHangsUpEndsTheNewOneAtOnceWithoutABox();

    // What a crash leaves behind, and two copies at once.
    void aStaleEndpointIsRemovedAndTheNewCopyServesWithoutAQuestion();
    void anEndpointThatCannotBeRemovedEndsTheNewCopy();
    void aCopyThatHoldsTheLockButIsNotListeningYetIsWaitedFor();
    void aCopyThatHoldsTheLockAndNeverListensGivesTheErrorBox();
    void aSecondCopyNeverTakesOverTheNameOfALivingServer();

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

void SingleInstanceTest::withoutAnotherCopyItBecomesTheServerWithoutAQuestion()
{
    const Copy copy;
    const BoxUser user(u"Cancel"_s);
    QTest::ignoreMessage(QtDebugMsg, "no existing instance found");
    QTest::ignoreMessage(QtDebugMsg, "starting server for this instance");
    QVERIFY(!copy.mustQuit());
    QCOMPARE(askVersion(copy.path), ownVersion);
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(QFileInfo(copy.path).path(), copy.runtime.path());
    QCOMPARE(QFileInfo(copy.path).fileName(), u"example.osterlane.Brindle"_s);
}

void SingleInstanceTest::theRuntimeFolderIsMadeForThisUserAloneWhenMissing()
{
    const TestSettings settings;
    RuntimeFolder runtime;
    const QString missing = runtime.path() + u"/missing"_s;
    runtime.moveTo(missing);
    RecordingNativeSupport desktop;
    AppActivationSupport activation(&desktop);
    QVERIFY(!activation.checkForOtherInstances());
    const QFileInfo folder(missing);
    QVERIFY(folder.isDir());
    QCOMPARE(folder.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup),
             QFile::Permissions());
    QCOMPARE(folder.permissions() & (QFile::ReadOther | QFile::WriteOther | QFile::ExeOther),
             QFile::Permissions());
    QCOMPARE(askVersion(missing + u"/example.osterlane.Brindle"_s), ownVersion);
}

void SingleInstanceTest::twoRuntimeFoldersDoNotSeeEachOther()
{
    const Copy first;
    QVERIFY(!first.mustQuit());
    const Copy second;
    const BoxUser user(u"Cancel"_s);
    QVERIFY(first.path != second.path);
    QVERIFY(!second.mustQuit());
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(askVersion(first.path), ownVersion);
    QCOMPARE(askVersion(second.path), ownVersion);
}

void SingleInstanceTest::theEndpointGoesWithTheServer()
{
    Copy copy;
    QVERIFY(!copy.mustQuit());
    QVERIFY(QFile::exists(copy.path));
    copy.activation.reset();
    QVERIFY(!QFile::exists(copy.path));
    const BoxUser user(u"Cancel"_s);
    copy.activation = std::make_unique<AppActivationSupport>(&copy.desktop);
    QVERIFY(!copy.mustQuit());
    QVERIFY(user.seen.isEmpty());
}

void SingleInstanceTest::eachVersionGetsItsOwnQuestion_data()
{
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<QString>("defaultButton");

    const QStringList ofOlder{u"Activate older instance"_s, u"Cancel"_s,
                              u"Terminate older instance"_s};
    const QStringList ofNewer{u"Activate newer instance"_s, u"Cancel"_s};
    const QString older = u"This is Brindle 0.3. An older version (%1) is already running. What "
                          u"would you like to do?"_s;
    const QString newer = u"This is Brindle 0.3. A newer version (%1) is already running. What "
                          u"would you like to do?"_s;
    QTest::newRow("same") << 0 << 3 << u"Brindle is already running. What would you like to do?"_s
                          << QStringList{u"Activate existing instance"_s, u"Cancel"_s}
                          << u"Activate existing instance"_s;
    for (const auto &[major, minor] : {std::pair(0, 2), {0, 0}, {0, -1}, {-1, 99}, {-2, 3}}) {
        const QString version = u"%1.%2"_s.arg(major).arg(minor);
        QTest::newRow(qPrintable(u"older, "_s + version))
            << major << minor << older.arg(version) << ofOlder << u"Terminate older instance"_s;
    }
    for (const auto &[major, minor] : {std::pair(0, 4), {1, 0}, {1, 3}, {2, -5}, {0x7fffffff, 0}}) {
        const QString version = u"%1.%2"_s.arg(major).arg(minor);
        QTest::newRow(qPrintable(u"newer, "_s + version))
            << major << minor << newer.arg(version) << ofNewer << u"Activate newer instance"_s;
    }
}

void SingleInstanceTest::eachVersionGetsItsOwnQuestion()
{
    QFETCH(int, major);
    QFETCH(int, minor);
    const Copy copy;
    ScriptedServer running(copy.path, answersVersion(major, minor));
    const BoxUser user(u"Cancel"_s);
    QVERIFY(copy.mustQuit());
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(user.seen.first().title, u"Brindle is already running"_s);
    QTEST(user.seen.first().text, "text");
    QTEST(user.seen.first().buttons, "buttons");
    QTEST(user.seen.first().defaultButton, "defaultButton");
    QVERIFY(!user.seen.first().hasParent);
    QVERIFY(user.seen.first().isModal);
    QCOMPARE(running.received(), numbers({1}));
}

void SingleInstanceTest::theAnswerDecidesWhatIsSent_data()
{
    QTest::addColumn<int>("minor");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QList<qint32>>("sent");
    const QList<qint32> nothing{1};
    const QList<qint32> activation{1, 2};
    const QList<qint32> termination{1, 3};
    QTest::newRow("same, activate") << 3 << u"Activate existing instance"_s << activation;
    QTest::newRow("same, Return") << 3 << u"Return"_s << activation;
    QTest::newRow("older, activate") << 2 << u"Activate older instance"_s << activation;
    QTest::newRow("older, terminate") << 2 << u"Terminate older instance"_s << termination;
    QTest::newRow("older, Return") << 2 << u"Return"_s << termination;
    QTest::newRow("newer, activate") << 4 << u"Activate newer instance"_s << activation;
    QTest::newRow("newer, Return") << 4 << u"Return"_s << activation;
    for (const int minor : {2, 3, 4}) {
        for (const char *answer : {"Cancel", "Escape", "Close"}) {
            QTest::addRow("0.%d, %s", minor, answer)
                << minor << QString::fromLatin1(answer) << nothing;
        }
    }
}

void SingleInstanceTest::theAnswerDecidesWhatIsSent()
{
    QFETCH(int, minor);
    QFETCH(QString, answer);
    QFETCH(QList<qint32>, sent);
    const Copy copy;
    ScriptedServer running(copy.path, answersVersion(0, minor));
    const BoxUser user(answer);
    QVERIFY(copy.mustQuit());
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(running.received(), numbers(sent));
}

void SingleInstanceTest::aReplyInTwoPiecesIsReadWhole()
{
    const Copy copy;
    ScriptedServer running(copy.path, [](QLocalSocket &client) {
        client.waitForReadyRead(1000);
        for (const QByteArray &piece : {numbers({0}), numbers({3}).left(1), numbers({3}).mid(1)}) {
            client.write(piece);
            client.waitForBytesWritten(1000);
            QThread::msleep(150);
        }
    });
    const BoxUser user(u"Cancel"_s);
    QVERIFY(copy.mustQuit());
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(user.seen.first().text, u"Brindle is already running. What would you like to do?"_s);
    QCOMPARE(running.received(), numbers({1}));
}

void SingleInstanceTest::aRunningCopyThatNeverAnswersEndsTheNewOneAfterASecondWithoutABox()
{
    const Copy copy;
    ScriptedServer running(copy.path, [](QLocalSocket &) {});
    const BoxUser user(u"Cancel"_s);
    QElapsedTimer time;
    time.start();
    QCOMPARE(thrownBy(*copy.activation), u"failed waiting for server response"_s);
    QVERIFY2(time.elapsed() >= 900 && time.elapsed() < 2500,
             qPrintable(QString::number(time.elapsed())));
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(running.received(), numbers({1}));
}

void SingleInstanceTest::aRunningCopyThatAnswersHalfAReplyEndsTheNewOneAfterASecondWithoutABox()
{
    const Copy copy;
    ScriptedServer running(copy.path, [](QLocalSocket &client) {
        client.waitForReadyRead(1000);
        client.write(numbers({0}));
        client.waitForBytesWritten(1000);
    });
    const BoxUser user(u"Cancel"_s);
    QElapsedTimer time;
    time.start();
    QCOMPARE(thrownBy(*copy.activation), u"failed waiting for server response"_s);
    QVERIFY2(time.elapsed() >= 900 && time.elapsed() < 2500,
             qPrintable(QString::number(time.elapsed())));
    QVERIFY(user.seen.isEmpty());
}

void SingleInstanceTest::aRunningCopyThatHangsUpEndsTheNewOneAtOnceWithoutABox()
{
    const Copy copy;
    ScriptedServer running(copy.path, [](QLocalSocket &client) { client.abort(); });
    const BoxUser user(u"Cancel"_s);
    QCOMPARE(thrownBy(*copy.activation), u"failed waiting for server response"_s);
    QVERIFY(user.seen.isEmpty());
}

void SingleInstanceTest::aStaleEndpointIsRemovedAndTheNewCopyServesWithoutAQuestion()
{
    const Copy copy;
    QVERIFY(leaveStaleEndpoint(copy.path));
    const BoxUser user(u"Cancel"_s);
    QTest::ignoreMessage(
        QtDebugMsg,
        QRegularExpression(u"^couldn't connect to existing instance \\(.+\\); removing it$"_s));
    QVERIFY(!copy.mustQuit());
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(askVersion(copy.path), ownVersion);
}

void SingleInstanceTest::anEndpointThatCannotBeRemovedEndsTheNewCopy()
{
    const Copy copy;
    QVERIFY(QDir().mkpath(copy.path + u"/in the way"_s));
    const BoxUser user(u"Cancel"_s);
    QTest::ignoreMessage(QtDebugMsg, "couldn't remove bad server. giving up");
    QCOMPARE(thrownBy(*copy.activation), u"couldn't remove bad server. giving up"_s);
    QVERIFY(user.seen.isEmpty());
    QVERIFY(QFile::exists(copy.path + u"/in the way"_s));
}

void SingleInstanceTest::aCopyThatHoldsTheLockButIsNotListeningYetIsWaitedFor()
{
    const Copy copy;
    InstanceEndpoint first;
    QVERIFY(first.claim());
    // Both have found nobody; the one without the lock must not listen.
    ScriptedServer running(copy.path, answersVersion(0, 3), 1500);
    const BoxUser user(u"Activate existing instance"_s);
    QVERIFY(copy.mustQuit());
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(running.received(), numbers({1, 2}));
}

void SingleInstanceTest::aCopyThatHoldsTheLockAndNeverListensGivesTheErrorBox()
{
    const Copy copy;
    InstanceEndpoint first;
    QVERIFY(first.claim());
    QVERIFY(leaveStaleEndpoint(copy.path));
    const BoxUser user(u"OK"_s);
    QVERIFY(copy.mustQuit());
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(user.seen.first().title, u"Error"_s);
    QCOMPARE(user.seen.first().text,
             u"There was an error while looking for running instances of Brindle. Please quit any "
             u"copies of Brindle and try again."_s);
    QCOMPARE(user.seen.first().buttons, QStringList{u"OK"_s});
    QVERIFY(!user.seen.first().hasParent);
    // Only the holder of the lock may remove it.
    QVERIFY(QFile::exists(copy.path));
}

void SingleInstanceTest::aSecondCopyNeverTakesOverTheNameOfALivingServer()
{
    const Serving first;
    RecordingNativeSupport desktop;
    AppActivationSupport second(&desktop);
    // The first one can't answer, as this thread is busy with the second.
    const BoxUser user(u"Cancel"_s);
    QCOMPARE(thrownBy(second), u"failed waiting for server response"_s);
    QVERIFY(user.seen.isEmpty());
    QCOMPARE(askVersion(first.path), ownVersion);
    auto client = clientOf(first);
    QVERIFY(send(*client, numbers({2})));
    QTRY_COMPARE(first.changes.count(), 1);
    QVERIFY(!second.isAppActive());
}

void SingleInstanceTest::theServerAnswersTheVersionRequestWithItsVersion()
{
    const Serving copy;
    QVERIFY(!copy.quits);
    QTest::ignoreMessage(QtDebugMsg, "sending version information to another instance");
    QCOMPARE(askVersion(copy.path), QByteArray::fromHex("0000000000000003"));
}

void SingleInstanceTest::cancelSendsNothingAfterTheVersionRequest()
{
    const Serving copy;
    QCOMPARE(askVersion(copy.path), ownVersion);
    QTest::qWait(100);
    QVERIFY(!copy.activation->isAppActive());
    QVERIFY(copy.changes.isEmpty());
    QVERIFY(copy.terminations.isEmpty());
    QVERIFY(copy.desktop.calls.isEmpty());
}

void SingleInstanceTest::anActivationCommandCapturesTheFrontAndActivates()
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

void SingleInstanceTest::aTerminationCommandActivatesFirstAndThenAsksToQuit()
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

void SingleInstanceTest::commandsThatComeTogetherAreAllCarriedOut()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QVERIFY(send(*client, numbers({1, 2, 1, 3})));
    QTRY_COMPARE(copy.terminations.count(), 1);
    QCOMPARE(receive(*client, 16), numbers({0, 3, 0, 3}));
    QCOMPARE(copy.changes.count(), 1);
}

void SingleInstanceTest::aNumberInTwoHalvesIsOneNumber()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QVERIFY(send(*client, numbers({2}).left(3)));
    QTest::qWait(100);
    QVERIFY(!copy.activation->isAppActive());
    QVERIFY(send(*client, numbers({2}).mid(3)));
    QTRY_VERIFY(copy.activation->isAppActive());
}

void SingleInstanceTest::unknownNumbersAreIgnored()
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

void SingleInstanceTest::requestsBeforeStartUpIsDoneAreKeptAndCarriedOutInOrder()
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

void SingleInstanceTest::aClientIsServedWhileItsOwnRequestIsStillBeingCarriedOut()
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

void SingleInstanceTest::aClientThatLeavesWhileItsRequestIsCarriedOutDoesNoHarm()
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

void SingleInstanceTest::halfANumberNeitherBlocksNorEndsTheServer()
{
    const Serving copy;
    const auto client = clientOf(copy);
    QVERIFY(send(*client, QByteArray(1, '\0')));
    QCOMPARE(askVersion(copy.path), ownVersion);
    client->disconnectFromServer();
    QCOMPARE(askVersion(copy.path), ownVersion);
    QVERIFY(copy.changes.isEmpty());
}

void SingleInstanceTest::clientsThatSendNothingNeitherBlockNorEndTheServer()
{
    const Serving copy;
    std::vector<std::unique_ptr<QLocalSocket>> silent;
    for (int i = 0; i < 10; ++i) {
        silent.push_back(clientOf(copy));
        QCOMPARE(askVersion(copy.path), ownVersion);
    }
}

void SingleInstanceTest::aMebibyteOfGarbageLeavesTheServerResponsive()
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

void SingleInstanceTest::aMebibyteOfVersionRequestsLeavesTheServerResponsive()
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

void SingleInstanceTest::aThousandConnectionsOpenAndCloseAndTheServerAnswers()
{
    const Serving copy;
    for (int i = 0; i < manyConnections; ++i) {
        QLocalSocket client;
        client.connectToServer(copy.path);
        QCoreApplication::processEvents();
    }
    QCOMPARE(askVersion(copy.path), ownVersion);
}

void SingleInstanceTest::aThousandConnectionsHeldOpenAndTheServerAnswers()
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

QTEST_MAIN(SingleInstanceTest)
#include "SingleInstanceTest.moc"
