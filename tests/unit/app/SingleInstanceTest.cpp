// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "InstanceCopy.h"

#include <QElapsedTimer>
#include <QtTest>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace InstancePeers;

namespace
{

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

QString makeFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("%s can't be made", qPrintable(path));
    return path;
}

/// No usable runtime folder: neither the one that the environment names nor the toolkit's own way
/// out of that, in the folder for temporary files.
class NoRuntimeFolder
{
public:
    explicit NoRuntimeFolder(const QString &named)
        : m_temporary(qgetenv("TMPDIR"))
        , m_runtime(qgetenv("XDG_RUNTIME_DIR"))
    {
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(named));
        makeFile(m_folder.filePath(u"runtime-"_s
                                   + QString::fromLocal8Bit(::getpwuid(::geteuid())->pw_name)));
        qputenv("TMPDIR", QFile::encodeName(m_folder.path()));
    }
    ~NoRuntimeFolder()
    {
        qputenv("TMPDIR", m_temporary);
        qputenv("XDG_RUNTIME_DIR", m_runtime);
    }
    Q_DISABLE_COPY_MOVE(NoRuntimeFolder)

private:
    QTemporaryDir m_folder;
    QByteArray m_temporary;
    QByteArray m_runtime;
};

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

    // One owner of the settings, whatever the runtime folder.
    void aCopyWithAnotherRuntimeFolderFindsTheFirst_data();
    void aCopyWithAnotherRuntimeFolderFindsTheFirst();
    void aCopyThatCannotReachTheOwnerGivesTheErrorBoxAndServesNobody();
    void withoutAUsableRuntimeFolderNobodyServes_data();
    void withoutAUsableRuntimeFolderNobodyServes();
    void withoutALockBesideTheSettingsNobodyServes();
    void whoDoesNotBecomeTheServerLeavesTheSettingsToOthers();
    void theOwnersLockIsFreeAgainAfterItsEnd();
    void aLockFileThatMayOnlyBeReadIsLockedAllTheSame();
    void theFirstStartEverMakesTheFolderForTheLock();
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

void SingleInstanceTest::aCopyWithAnotherRuntimeFolderFindsTheFirst_data()
{
    QTest::addColumn<bool>("usable");
    QTest::newRow("another folder") << true;
    QTest::newRow("no usable folder") << false;
}

void SingleInstanceTest::aCopyWithAnotherRuntimeFolderFindsTheFirst()
{
    QFETCH(bool, usable);
    const Copy copy;
    InstanceEndpoint first;
    QVERIFY(first.claim());
    ScriptedServer running(copy.path, answersVersion(0, 3));
    const RuntimeFolder another;
    std::unique_ptr<NoRuntimeFolder> none;
    if (!usable)
        none = std::make_unique<NoRuntimeFolder>(makeFile(another.path() + u"/no folder"_s));
    RecordingNativeSupport desktop;
    AppActivationSupport second(&desktop);
    const BoxUser user(u"Activate existing instance"_s);
    QVERIFY(second.checkForOtherInstances());
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(running.received(), numbers({1, 2}));
}

void SingleInstanceTest::aCopyThatCannotReachTheOwnerGivesTheErrorBoxAndServesNobody()
{
    const Copy copy;
    InstanceEndpoint first; // in a container, its socket is out of sight
    QVERIFY(first.claim());
    const RuntimeFolder another;
    RecordingNativeSupport desktop;
    AppActivationSupport second(&desktop);
    const BoxUser user(u"OK"_s);
    QVERIFY(second.checkForOtherInstances());
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(user.seen.first().title, u"Error"_s);
    QVERIFY(askVersion(InstanceEndpoint().socketPath()).isEmpty());
}

void SingleInstanceTest::withoutAUsableRuntimeFolderNobodyServes_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("a file") << u"file"_s;
    QTest::newRow("one that can't be made") << u"file/below"_s;
}

void SingleInstanceTest::withoutAUsableRuntimeFolderNobodyServes()
{
    QFETCH(QString, folder);
    Copy copy;
    makeFile(copy.runtime.path() + u"/file"_s);
    auto none = std::make_unique<NoRuntimeFolder>(copy.runtime.path() + u'/' + folder);
    copy.activation = std::make_unique<AppActivationSupport>(&copy.desktop);
    const BoxUser user(u"OK"_s);
    QCOMPARE(thrownBy(*copy.activation), u"there is no lock against other copies to be had"_s);
    QCOMPARE(user.seen.size(), 1);
    QCOMPARE(user.seen.first().title, u"Error"_s);
    QVERIFY2(user.seen.first().text.startsWith(u"Brindle can't make sure that no other copy"_s),
             qPrintable(user.seen.first().text));
    QVERIFY(!QFile::exists(u"/example.osterlane.Brindle"_s));
    // Nor does it keep one with a good folder from serving.
    none.reset();
    QVERIFY(InstanceEndpoint().claim());
}

void SingleInstanceTest::withoutALockBesideTheSettingsNobodyServes()
{
    const Copy copy;
    const QString lock = QFileInfo(QSettings().fileName()).path() + u"/Brindle.running"_s;
    QVERIFY(QDir().mkpath(lock)); // a folder can't be locked for writing
    const BoxUser user(u"OK"_s);
    QCOMPARE(thrownBy(*copy.activation), u"there is no lock against other copies to be had"_s);
    QCOMPARE(user.seen.size(), 1);
    QVERIFY2(user.seen.first().text.contains(u"Brindle.running"_s),
             qPrintable(user.seen.first().text));
    QVERIFY(askVersion(copy.path).isEmpty());
}

void SingleInstanceTest::whoDoesNotBecomeTheServerLeavesTheSettingsToOthers()
{
    const Copy copy;
    InstanceEndpoint ofOtherSettings;
    QVERIFY(ofOtherSettings.claim());
    const TestSettings settings; // from now on; the runtime folder stays the same
    InstanceEndpoint second;
    QVERIFY(!second.claim());
    QVERIFY(second.problem().isEmpty());
    const RuntimeFolder another;
    QVERIFY(InstanceEndpoint().claim());
}

void SingleInstanceTest::theOwnersLockIsFreeAgainAfterItsEnd()
{
    const Copy copy;
    {
        InstanceEndpoint first;
        QVERIFY(first.claim());
        QVERIFY(!InstanceEndpoint().claim());
    }
    QVERIFY(InstanceEndpoint().claim());
}

// Root has started the program once, with the user's settings.
void SingleInstanceTest::aLockFileThatMayOnlyBeReadIsLockedAllTheSame()
{
    QVERIFY2(::geteuid() != 0 || ::seteuid(65534) == 0, "root may write everything");
    const auto again = qScopeGuard([] { [[maybe_unused]] const int done = ::seteuid(::getuid()); });
    // A folder for temporary files of root's own is closed to everybody else.
    QTemporaryDir folder(u"/tmp/SingleInstanceTest-XXXXXX"_s);
    QVERIFY2(folder.isValid(), qPrintable(folder.errorString()));
    const QString path = folder.filePath(u"lock"_s);
    makeFile(path);
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
    OwnerLock first(path);
    QCOMPARE(first.tryLock(), OwnerLock::Result::Held);
    OwnerLock second(path);
    QCOMPARE(second.tryLock(), OwnerLock::Result::HeldByAnother);
}

void SingleInstanceTest::theFirstStartEverMakesTheFolderForTheLock()
{
    const QTemporaryDir folder;
    OwnerLock lock(folder.filePath(u"no settings yet/Brindle.running"_s));
    QCOMPARE(lock.tryLock(), OwnerLock::Result::Held);
}

QTEST_MAIN(SingleInstanceTest)
#include "SingleInstanceTest.moc"
