// SPDX-License-Identifier: MIT
#include "app/EnvironmentVariable.h"

#include <QtTest>

namespace
{
constexpr const char *name = "BRINDLE_TEST_VARIABLE";
}

class EnvironmentVariableTest : public QObject
{
    Q_OBJECT

private slots:
    void oneThatWasNotThereIsTakenAway();
    void oneThatWasThereGetsItsValueBack();
    void oneThatWasEmptyIsEmptyAgain();
};

void EnvironmentVariableTest::oneThatWasNotThereIsTakenAway()
{
    qunsetenv(name);
    const EnvironmentVariable variable(name);
    qputenv(name, "ours");
    variable.restore();
    QVERIFY(!qEnvironmentVariableIsSet(name));
}

void EnvironmentVariableTest::oneThatWasThereGetsItsValueBack()
{
    qputenv(name, "theirs");
    const EnvironmentVariable variable(name);
    qputenv(name, "ours");
    variable.restore();
    QCOMPARE(qgetenv(name), QByteArray("theirs"));
}

void EnvironmentVariableTest::oneThatWasEmptyIsEmptyAgain()
{
    qputenv(name, "");
    const EnvironmentVariable variable(name);
    qputenv(name, "ours");
    variable.restore();
    QVERIFY(qEnvironmentVariableIsSet(name));
    QVERIFY(qEnvironmentVariableIsEmpty(name));
}

QTEST_APPLESS_MAIN(EnvironmentVariableTest)
#include "EnvironmentVariableTest.moc"
