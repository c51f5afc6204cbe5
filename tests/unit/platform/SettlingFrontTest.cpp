// SPDX-License-Identifier: MIT
#include "platform/SettlingFront.h"

#include <QtTest>

namespace
{

constexpr int comingTimeMs = SettlingFront::comingTimeMs;

/// Counts what the application object is told about losing the front.
class Losses : public QObject
{
public:
    Losses() { QCoreApplication::instance()->installEventFilter(this); }

    int count = 0;

private:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == QCoreApplication::instance()
            && event->type() == QEvent::ApplicationDeactivate)
            ++count;
        return false;
    }
};

} // namespace

class SettlingFrontTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void whoNeverWasInFrontIsNot();
    void aMomentWithoutAnybodyInFrontIsNoLoss();
    void aLossThatLastsIsToldOnce();
    void aLossIsToldAtOnceWhenTheUserActsOnIt();
    void anotherWindowsTurnBeginsThePatienceAnew();
    void comingForwardSurvivesTheWindowsThatClose();
    void comingForwardOutOfAWindowThatClosesIsNoLoss();
    void aLossSoonAfterComingForwardIsTold();
    void comingForwardInVainEndsInTime();
    void comingForwardInVainIsToldToWhoWasPutOff();
    void whatTheUserDoesMeanwhileIsNoReasonToGiveUpComingForward();
    void whoCameForwardLosesTheFrontAsUsual();

private:
    bool m_inFront = false;
};

void SettlingFrontTest::init()
{
    m_inFront = false;
}

void SettlingFrontTest::whoNeverWasInFrontIsNot()
{
    SettlingFront front([this] { return m_inFront; });
    QVERIFY(!front.areWeInFront());
}

void SettlingFrontTest::aMomentWithoutAnybodyInFrontIsNoLoss()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    m_inFront = true;
    QVERIFY(front.areWeInFront());
    m_inFront = false;
    QVERIFY(front.areWeInFront());
    m_inFront = true;
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    QVERIFY(front.areWeInFront());
    QCOMPARE(losses.count, 0);
}

void SettlingFrontTest::aLossThatLastsIsToldOnce()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    m_inFront = true;
    QVERIFY(front.areWeInFront());
    m_inFront = false;
    QVERIFY(front.areWeInFront());
    QTRY_COMPARE(losses.count, 1);
    QVERIFY(!front.areWeInFront());
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    QCOMPARE(losses.count, 1);
}

void SettlingFrontTest::aLossIsToldAtOnceWhenTheUserActsOnIt()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    m_inFront = true;
    QVERIFY(front.areWeInFront());
    front.settleNow();
    QCOMPARE(losses.count, 0);
    m_inFront = false;
    QVERIFY(front.areWeInFront());
    front.settleNow();
    QCOMPARE(losses.count, 1);
    QVERIFY(!front.areWeInFront());
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    QCOMPARE(losses.count, 1);
}

void SettlingFrontTest::anotherWindowsTurnBeginsThePatienceAnew()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    m_inFront = true;
    front.frontChanged();
    m_inFront = false;
    for (int turn = 0; turn < 9; ++turn) {
        front.frontChanged();
        QTest::qWait(SettlingFront::settlingTimeMs / 6);
    }
    QCOMPARE(losses.count, 0);
    QTRY_COMPARE(losses.count, 1);
}

void SettlingFrontTest::comingForwardSurvivesTheWindowsThatClose()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    front.expectToComeForward();
    QVERIFY(front.areWeInFront()); // a splash screen has just closed, and nobody is in front
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    m_inFront = true;
    QVERIFY(front.areWeInFront());
    QCOMPARE(losses.count, 0);
}

void SettlingFrontTest::comingForwardOutOfAWindowThatClosesIsNoLoss()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    m_inFront = true; // a splash screen has the keyboard
    front.expectToComeForward();
    QVERIFY(front.areWeInFront());
    m_inFront = false;
    front.frontChanged();
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    QVERIFY(front.areWeInFront());
    m_inFront = true;
    front.frontChanged();
    QCOMPARE(losses.count, 0);
}

void SettlingFrontTest::aLossSoonAfterComingForwardIsTold()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    m_inFront = true;
    front.expectToComeForward();
    m_inFront = false;
    front.frontChanged();
    QTRY_COMPARE_WITH_TIMEOUT(losses.count, 1, 2 * comingTimeMs);
    QVERIFY(!front.areWeInFront());
}

void SettlingFrontTest::comingForwardInVainEndsInTime()
{
    SettlingFront front([this] { return m_inFront; });
    front.expectToComeForward();
    QTRY_VERIFY_WITH_TIMEOUT(!front.areWeInFront(), 2 * comingTimeMs);
}

void SettlingFrontTest::comingForwardInVainIsToldToWhoWasPutOff()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    front.expectToComeForward();
    QVERIFY(front.areWeInFront()); // on trust
    QTRY_COMPARE_WITH_TIMEOUT(losses.count, 1, 2 * comingTimeMs);
    QVERIFY(!front.areWeInFront());
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    QCOMPARE(losses.count, 1);
}

void SettlingFrontTest::whatTheUserDoesMeanwhileIsNoReasonToGiveUpComingForward()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    front.expectToComeForward();
    QVERIFY(front.areWeInFront());
    front.settleNow();
    QCOMPARE(losses.count, 0);
    QVERIFY(front.areWeInFront());
}

void SettlingFrontTest::whoCameForwardLosesTheFrontAsUsual()
{
    const Losses losses;
    SettlingFront front([this] { return m_inFront; });
    front.expectToComeForward();
    m_inFront = true;
    QVERIFY(front.areWeInFront());
    m_inFront = false;
    QVERIFY(front.areWeInFront());
    QTRY_COMPARE_WITH_TIMEOUT(losses.count, 1, comingTimeMs / 2);
}

QTEST_GUILESS_MAIN(SettlingFrontTest)
#include "SettlingFrontTest.moc"
