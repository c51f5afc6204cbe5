// SPDX-License-Identifier: MIT
#include "fakes/mac/FakeMac.h"
#include "platform/NativeSupport.h"
#include "platform/mac/MacSupport.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class MacDesktopTest : public QObject
{
    Q_OBJECT

private slots:
    void createGivesTheMacBeforeThereIsAnApplication();
    void thereIsAlwaysADisplay();
    void windowsKnowAndChooseTheirPlacesAndToolsStayInFront();
};

void MacDesktopTest::createGivesTheMacBeforeThereIsAnApplication()
{
    QVERIFY(!QCoreApplication::instance());
    const FakeMac mac;
    const std::unique_ptr<NativeSupport> support = NativeSupport::create();
    QVERIFY(qobject_cast<MacSupport *>(support.get()));
    QCOMPARE(support->getSpaceVirtualKey(), 49);
}

void MacDesktopTest::thereIsAlwaysADisplay()
{
    qunsetenv("DISPLAY");
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("QT_QPA_PLATFORM");
    QVERIFY(NativeSupport::hasDisplay());
    QVERIFY(!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"));
}

void MacDesktopTest::windowsKnowAndChooseTheirPlacesAndToolsStayInFront()
{
    QVERIFY(NativeSupport::tellsWindowPlaces());
    QVERIFY(NativeSupport::keepsToolWindowsInFront());
}

QTEST_APPLESS_MAIN(MacDesktopTest)
#include "MacDesktopTest.moc"
