// SPDX-License-Identifier: MIT
#include "app/activation/LongTimer.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

class LongTimerTest : public QObject
{
    Q_OBJECT

private slots:
    void aPeriodOfSeveralSlicesEndsOnceAtItsEnd();
    void aPeriodOfExactlyOneSliceEndsOnce();
    void aStopBetweenSlicesEndsIt();
    void aRestartForgetsTheSlicesLeft();
    void zeroAndNegativePeriodsEndAtOnce();
    void aMillionMinutesRunAsSlices();
};

void LongTimerTest::aPeriodOfSeveralSlicesEndsOnceAtItsEnd()
{
    LongTimer timer(nullptr, 40);
    QSignalSpy ends(&timer, &LongTimer::timeout);
    QElapsedTimer clock;
    clock.start();
    timer.start(210);
    QCOMPARE(timer.interval(), 210);
    QTest::qWait(100);
    QVERIFY(timer.isActive());
    QCOMPARE(ends.count(), 0);
    QVERIFY(ends.wait(2000));
    QVERIFY2(clock.elapsed() >= 195, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(!timer.isActive());
    QTest::qWait(100);
    QCOMPARE(ends.count(), 1);
}

void LongTimerTest::aPeriodOfExactlyOneSliceEndsOnce()
{
    LongTimer timer(nullptr, 50);
    QSignalSpy ends(&timer, &LongTimer::timeout);
    timer.start(50);
    QVERIFY(ends.wait(2000));
    QTest::qWait(80);
    QCOMPARE(ends.count(), 1);
}

void LongTimerTest::aStopBetweenSlicesEndsIt()
{
    LongTimer timer(nullptr, 20);
    const QSignalSpy ends(&timer, &LongTimer::timeout);
    timer.start(120);
    QTest::qWait(50);
    timer.stop();
    QVERIFY(!timer.isActive());
    QTest::qWait(150);
    QCOMPARE(ends.count(), 0);
}

void LongTimerTest::aRestartForgetsTheSlicesLeft()
{
    LongTimer timer(nullptr, 30);
    QSignalSpy ends(&timer, &LongTimer::timeout);
    timer.start(60000);
    timer.start(60);
    QVERIFY(ends.wait(2000));
    QCOMPARE(timer.interval(), 60);
}

void LongTimerTest::zeroAndNegativePeriodsEndAtOnce()
{
    LongTimer timer(nullptr);
    QSignalSpy ends(&timer, &LongTimer::timeout);
    timer.start(0);
    QVERIFY(ends.wait(500));
    timer.start(-120000);
    QVERIFY(ends.wait(500));
    QCOMPARE(ends.count(), 2);
}

void LongTimerTest::aMillionMinutesRunAsSlices()
{
    LongTimer timer(nullptr);
    const QSignalSpy ends(&timer, &LongTimer::timeout);
    constexpr qint64 period = 1'000'000LL * 60'000;
    timer.start(period);
    QVERIFY(timer.isActive());
    QCOMPARE(timer.interval(), period);
    QTest::qWait(50);
    QCOMPARE(ends.count(), 0);
}

QTEST_GUILESS_MAIN(LongTimerTest)
#include "LongTimerTest.moc"
