// SPDX-License-Identifier: MIT
#include "app/activation/AppActivationSupport.h"

#include "InstanceCopy.h"
#include "PrivateBus.h"
#include "app/activation/DesktopApplication.h"

#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QtTest>

using namespace Qt::StringLiterals;
using namespace InstancePeers;

namespace
{

const auto service = "example.osterlane.Brindle"_L1;

QDBusMessage::MessageType activate(PrivateBus &bus, const QVariantMap &data)
{
    return bus.callProgram(u"Activate"_s, {data}).type();
}

QDBusMessage::MessageType open(PrivateBus &bus, const QStringList &uris)
{
    return bus.callProgram(u"Open"_s, {uris, QVariantMap()}).type();
}

QDBusMessage::MessageType action(PrivateBus &bus, const QString &name)
{
    return bus.callProgram(u"ActivateAction"_s, {name, QVariantList(), QVariantMap()}).type();
}

constexpr auto isReply = QDBusMessage::ReplyMessage;

} // namespace

class DesktopApplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void theServingCopyOwnsTheName();
    void aNameThatIsTakenIsNeitherWaitedForNorTakenOver();
    void withoutABusTheCopyServesAtOnceAllTheSame_data();
    void withoutABusTheCopyServesAtOnceAllTheSame();
    void theNameGoesWithTheCopy();
    void aBusThatGoesAwayLeavesTheSocket();

    void activateBringsForwardWithTheToken_data();
    void activateBringsForwardWithTheToken();
    void activateAsksForTheFrontAgainWhenItWasLost();
    void toggleGoesThereAndBack();
    void toggleBackTakesNoToken();
    void anUnknownActionIsAnsweredWithAnError();
    void openHandsOnTheFilesAfterComingForward();
    void whatIsNoFileOfThisMachineIsIgnored_data();
    void whatIsNoFileOfThisMachineIsIgnored();
    void veryManyFilesAreCutShort();
    void requestsDuringStartUpWaitInOrder();
};

void DesktopApplicationTest::theServingCopyOwnsTheName()
{
    PrivateBus bus;
    QTest::failOnWarning(QRegularExpression(u"can't be had"_s));
    const Serving copy;
    QVERIFY(!copy.quits);
    QVERIFY(bus.other().interface()->isServiceRegistered(service));
    QCOMPARE(activate(bus, {}), isReply);
    QTRY_VERIFY(copy.activation->isAppActive());
}

void DesktopApplicationTest::aNameThatIsTakenIsNeitherWaitedForNorTakenOver()
{
    PrivateBus bus;
    using Interface = QDBusConnectionInterface;
    QCOMPARE(bus.other()
                 .interface()
                 ->registerService(service, Interface::QueueService, Interface::AllowReplacement)
                 .value(),
             Interface::ServiceRegistered);
    const Serving copy;
    QVERIFY(!copy.quits);
    QCOMPARE(askVersion(copy.path), ownVersion);
    QCOMPARE(bus.other().interface()->serviceOwner(service).value(), bus.other().baseService());
    QVERIFY(bus.other().unregisterService(service));
    QTest::qWait(100);
    QVERIFY(!bus.other().interface()->isServiceRegistered(service));
}

void DesktopApplicationTest::withoutABusTheCopyServesAtOnceAllTheSame_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("none named") << QByteArray();
    QTest::newRow("one that is gone") << QByteArray("unix:path=/nonexistent/bus");
    QTest::newRow("one switched off") << QByteArray("disabled:");
    QTest::newRow("nonsense") << QByteArray("no address at all");
}

void DesktopApplicationTest::withoutABusTheCopyServesAtOnceAllTheSame()
{
    QFETCH(QByteArray, address);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    QElapsedTimer time;
    time.start();
    QTest::ignoreMessage(QtDebugMsg, "no session bus: the desktop can't ask for anything");
    const Serving copy;
    QVERIFY(!copy.quits);
    QVERIFY2(time.elapsed() < 1000, qPrintable(QString::number(time.elapsed())));
    QCOMPARE(askVersion(copy.path), ownVersion);
}

void DesktopApplicationTest::theNameGoesWithTheCopy()
{
    PrivateBus bus;
    Serving copy;
    copy.activation.reset();
    QTRY_VERIFY(!bus.other().interface()->isServiceRegistered(service));
}

void DesktopApplicationTest::aBusThatGoesAwayLeavesTheSocket()
{
    PrivateBus bus;
    const Serving copy;
    bus.end();
    QTest::qWait(100);
    QCOMPARE(askVersion(copy.path), ownVersion);
}

void DesktopApplicationTest::activateBringsForwardWithTheToken_data()
{
    QTest::addColumn<QVariantMap>("data");
    QTest::addColumn<QByteArray>("token");
    const QString token = u"activation-token"_s;
    const QString startupId = u"desktop-startup-id"_s;
    QTest::newRow("none") << QVariantMap() << QByteArray();
    QTest::newRow("token") << QVariantMap{{token, u"a"_s}} << QByteArray("a");
    QTest::newRow("startup id") << QVariantMap{{startupId, u"b_TIME1"_s}} << QByteArray("b_TIME1");
    QTest::newRow("both") << QVariantMap{{token, u"a"_s}, {startupId, u"b"_s}} << QByteArray("a");
    QTest::newRow("empty token") << QVariantMap{{token, QString()}, {startupId, u"b"_s}}
                                 << QByteArray("b");
    QTest::newRow("other things") << QVariantMap{{u"x"_s, u"y"_s}} << QByteArray();
    QTest::newRow("no text") << QVariantMap{{token, QStringList{u"a"_s, u"b"_s}}} << QByteArray();
    QTest::newRow("endless") << QVariantMap{{token, QString(1'000'000, u'x')}} << QByteArray();
}

void DesktopApplicationTest::activateBringsForwardWithTheToken()
{
    QFETCH(QVariantMap, data);
    PrivateBus bus;
    const Serving copy;
    QCOMPARE(activate(bus, data), isReply);
    QTRY_VERIFY(copy.activation->isAppActive());
    QCOMPARE(copy.desktop.captures, 1);
    QTEST(copy.desktop.tokens.constLast(), "token");
    QCOMPARE(copy.desktop.calls.first(), u"token"_s); // before anything asks for the front
}

void DesktopApplicationTest::activateAsksForTheFrontAgainWhenItWasLost()
{
    PrivateBus bus;
    Serving copy;
    const QSignalSpy again(copy.activation.get(), &AppActivationSupport::activeAgain);
    QCOMPARE(activate(bus, {}), isReply);
    QTRY_COMPARE(copy.changes.count(), 1);
    QCOMPARE(again.count(), 0);
    QCOMPARE(activate(bus, {}), isReply);
    QTRY_COMPARE(again.count(), 1);
    QCOMPARE(copy.desktop.captures, 1);
    copy.desktop.areWeFront = false;
    QCOMPARE(activate(bus, {}), isReply);
    QTRY_COMPARE(again.count(), 2);
    QCOMPARE(copy.desktop.captures, 2); // somebody else is in front meanwhile
    QCOMPARE(copy.changes.count(), 1);
}

void DesktopApplicationTest::toggleGoesThereAndBack()
{
    PrivateBus bus;
    const Serving copy;
    QCOMPARE(action(bus, u"toggle"_s), isReply);
    QTRY_VERIFY(copy.activation->isAppActive());
    QCOMPARE(copy.desktop.captures, 1);
    QCOMPARE(action(bus, u"toggle"_s), isReply);
    QTRY_VERIFY(!copy.activation->isAppActive());
    QCOMPARE(copy.desktop.restores, 1);
}

void DesktopApplicationTest::toggleBackTakesNoToken()
{
    PrivateBus bus;
    const Serving copy;
    const QVariantMap data{{u"activation-token"_s, u"a"_s}};
    for (int i = 0; i < 2; ++i)
        QCOMPARE(bus.callProgram(u"ActivateAction"_s, {u"toggle"_s, QVariantList(), data}).type(),
                 isReply);
    QTRY_COMPARE(copy.desktop.restores, 1);
    QCOMPARE(copy.desktop.tokens, QByteArrayList{"a"}); // it would be spent on a later request
}

void DesktopApplicationTest::anUnknownActionIsAnsweredWithAnError()
{
    PrivateBus bus;
    const Serving copy;
    for (const QString &name : {u"quit"_s, QString(), u"Toggle"_s, QString(100'000, u'x')}) {
        const QDBusMessage reply
            = bus.callProgram(u"ActivateAction"_s, {name, QVariantList(), QVariantMap()});
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(reply.errorName(), u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    }
    QTest::qWait(50);
    QVERIFY(copy.changes.isEmpty());
}

void DesktopApplicationTest::openHandsOnTheFilesAfterComingForward()
{
    PrivateBus bus;
    const Serving copy;
    QSignalSpy files(copy.activation.get(), &AppActivationSupport::requestOpenFiles);
    bool wasActive = false;
    connect(copy.activation.get(), &AppActivationSupport::requestOpenFiles, this,
            [&] { wasActive = copy.activation->isAppActive(); });
    QCOMPARE(open(bus, {u"file:///tmp/a%20b%25%23.bdl"_s, u"file://localhost/%C3%BC"_s}), isReply);
    QTRY_COMPARE(files.count(), 1);
    QCOMPARE(files.first().first().toStringList(), (QStringList{u"/tmp/a b%#.bdl"_s, u"/ü"_s}));
    QVERIFY(wasActive);
}

void DesktopApplicationTest::whatIsNoFileOfThisMachineIsIgnored_data()
{
    QTest::addColumn<QString>("uri");
    for (const char *uri :
         {"", "a.bdl", "/a.bdl", "file:", "file:a.bdl", "http://x.example/a.bdl",
          "file://x.example/a.bdl", "file:///a%00b", "file:///%zz", "\x01", "file"})
        QTest::newRow(uri) << QString::fromLatin1(uri);
    QTest::newRow("endless") << QString(1'000'000, u'x');
}

void DesktopApplicationTest::whatIsNoFileOfThisMachineIsIgnored()
{
    QFETCH(QString, uri);
    PrivateBus bus;
    const Serving copy;
    QSignalSpy files(copy.activation.get(), &AppActivationSupport::requestOpenFiles);
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"^asked to open what is no file:"_s));
    QCOMPARE(open(bus, {uri, u"file:///good"_s}), isReply);
    QTRY_COMPARE(files.count(), 1);
    QCOMPARE(files.first().first().toStringList(), QStringList{u"/good"_s});
}

void DesktopApplicationTest::veryManyFilesAreCutShort()
{
    PrivateBus bus;
    const Serving copy;
    QSignalSpy files(copy.activation.get(), &AppActivationSupport::requestOpenFiles);
    QCOMPARE(open(bus, QStringList(50'000, u"file:///a"_s)), isReply);
    QTRY_COMPARE(files.count(), 1);
    QCOMPARE(files.first().first().toStringList().size(), 100);
}

void DesktopApplicationTest::requestsDuringStartUpWaitInOrder()
{
    PrivateBus bus;
    const Copy copy;
    QVERIFY(!copy.mustQuit());
    QStringList happened;
    connect(copy.activation.get(), &AppActivationSupport::activationChanged, this,
            [&](bool active) { happened << (active ? u"forward"_s : u"back"_s); });
    connect(copy.activation.get(), &AppActivationSupport::requestOpenFiles, this,
            [&](const QStringList &files) { happened += files; });
    QCOMPARE(open(bus, {u"file:///a"_s}), isReply);
    QCOMPARE(action(bus, u"toggle"_s), isReply);
    QCOMPARE(open(bus, {u"file:///b"_s}), isReply);
    QTest::qWait(50);
    QCOMPARE(happened, QStringList());
    copy.activation->acceptRequests();
    QCOMPARE(happened, (QStringList{u"forward"_s, u"/a"_s, u"back"_s, u"forward"_s, u"/b"_s}));
}

QTEST_MAIN(DesktopApplicationTest)
#include "DesktopApplicationTest.moc"
