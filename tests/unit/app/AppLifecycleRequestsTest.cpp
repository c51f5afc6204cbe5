// SPDX-License-Identifier: MIT
#include "app/AppLifecycle.h"

#include "PrivateBus.h"
#include "RunningProgram.h"
#include "ui/TodoListWindow.h"

#include <QMessageBox>
#include <QSplashScreen>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{
QDBusMessage::MessageType open(PrivateBus &bus, const QString &path)
{
    const QStringList uris{QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())};
    return bus.callProgram(u"Open"_s, {uris, QVariantMap()}).type();
}

/// Makes an empty data file.
QString makeFile(const QString &path)
{
    const DiskStore store(path);
    return path;
}

constexpr auto isReply = QDBusMessage::ReplyMessage;
} // namespace

/// What the whole program does when the desktop or another copy asks for something.
class AppLifecycleRequestsTest : public QObject
{
    Q_OBJECT

private slots:
    void filesAskedForLaterOpenAndAreGoneTo();
    void filesAskedForWhileABoxIsOpenWaitForItsEnd();
    void askedToComeForwardAgainTheWindowInUseDoes();
    void askedToComeForwardDuringTheSplashTheSplashEnds();
};

void AppLifecycleRequestsTest::filesAskedForLaterOpenAndAreGoneTo()
{
    PrivateBus bus;
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    const QString second = makeFile(program.settings.filePath(u"b.bdl"_s));
    QCOMPARE(open(bus, second), isReply);
    QTRY_COMPARE(RunningProgram::editor()->toPlainText(), u"b.bdl"_s);
    QCOMPARE(QSettings().value(u"loadfiles/1"_s).toString(), second);
    QCOMPARE(open(bus, program.settings.filePath(u"a.bdl"_s)), isReply);
    QTRY_COMPARE(RunningProgram::editor()->toPlainText(), u"a.bdl"_s);
    QVERIFY(!QSettings().contains(u"loadfiles/2"_s));
}

void AppLifecycleRequestsTest::filesAskedForWhileABoxIsOpenWaitForItsEnd()
{
    PrivateBus bus;
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    QMessageBox box;
    box.setModal(true);
    box.show();
    QCOMPARE(open(bus, makeFile(program.settings.filePath(u"b.bdl"_s))), isReply);
    QTest::qWait(400);
    QCOMPARE(RunningProgram::editor()->toPlainText(), u"a.bdl"_s);
    box.close();
    QTRY_COMPARE(RunningProgram::editor()->toPlainText(), u"b.bdl"_s);
}

void AppLifecycleRequestsTest::askedToComeForwardAgainTheWindowInUseDoes()
{
    PrivateBus bus;
    RunningProgram program;
    program.start();
    program.lifecycle->stopSplashScreen();
    auto *mainWindow = RunningProgram::window<HierarchyWindow>();
    QVERIFY(QTest::qWaitForWindowActive(mainWindow));
    program.native.frontRequests.clear();
    QCOMPARE(bus.callProgram(u"Activate"_s, {QVariantMap()}).type(), isReply);
    QTRY_COMPARE(program.native.frontRequests.size(), 1);
    QCOMPARE(program.native.frontRequests.first(), mainWindow->windowHandle());
    auto *todoWindow = RunningProgram::window<TodoListWindow>();
    todoWindow->showWindow();
    QTRY_COMPARE(QApplication::activeWindow(), todoWindow);
    QCOMPARE(bus.callProgram(u"Activate"_s, {QVariantMap()}).type(), isReply);
    QTRY_COMPARE(program.native.frontRequests.size(), 2);
    QCOMPARE(program.native.frontRequests.last(), todoWindow->windowHandle());
}

void AppLifecycleRequestsTest::askedToComeForwardDuringTheSplashTheSplashEnds()
{
    PrivateBus bus;
    RunningProgram program;
    program.start();
    auto *splash = RunningProgram::window<QSplashScreen>();
    QVERIFY(splash && splash->isVisible());
    QCOMPARE(bus.callProgram(u"Activate"_s, {QVariantMap()}).type(), isReply);
    QTRY_VERIFY(RunningProgram::window<HierarchyWindow>()->isVisible());
    QTRY_VERIFY(!splash->isVisible());
    QVERIFY(RunningProgram::window<HierarchyWindow>()->isVisible());
}

QTEST_MAIN(AppLifecycleRequestsTest)
#include "AppLifecycleRequestsTest.moc"
