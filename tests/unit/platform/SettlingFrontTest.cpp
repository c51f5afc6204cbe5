// SPDX-License-Identifier: MIT
#include "platform/SettlingFront.h"

#include <QtTest>

namespace
{

constexpr int comingTimeMs = SettlingFront::comingTimeMs;

/// Counts what is told about not being in front.
class Losses : public QObject
{
public:
    explicit Losses(const SettlingFront &front)
    {
        connect(&front, &SettlingFront::notInFront, this,
                [this](FrontLoss reason) { ++(reason == FrontLoss::Lost ? count : inVain); });
    }

    int count = 0;
    int inVain = 0; ///< Coming forward that nothing became of.
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
    void otherProgramsTurnsWhileComingForwardAreNoLoss();
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
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
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
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
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
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
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
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
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
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
    front.expectToComeForward();
    QVERIFY(front.areWeInFront()); // a splash screen has just closed, and nobody is in front
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    m_inFront = true;
    QVERIFY(front.areWeInFront());
    QCOMPARE(losses.count, 0);
}

void SettlingFrontTest::comingForwardOutOfAWindowThatClosesIsNoLoss()
{
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
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
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
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
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
    front.expectToComeForward();
    QVERIFY(front.areWeInFront()); // on trust
    QTRY_COMPARE_WITH_TIMEOUT(losses.inVain, 1, 2 * comingTimeMs);
    QVERIFY(!front.areWeInFront());
    QTest::qWait(2 * SettlingFront::settlingTimeMs);
    QCOMPARE(losses.inVain, 1);
    QCOMPARE(losses.count, 0);
}

void SettlingFrontTest::otherProgramsTurnsWhileComingForwardAreNoLoss()
{
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
    front.expectToComeForward();
    for (int turn = 0; turn < 3; ++turn)
        front.frontChanged();
    QVERIFY(front.areWeInFront()); // on trust
    QTRY_COMPARE_WITH_TIMEOUT(losses.inVain, 1, 2 * comingTimeMs);
    QCOMPARE(losses.count, 0);
}

void SettlingFrontTest::whatTheUserDoesMeanwhileIsNoReasonToGiveUpComingForward()
{
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
    front.expectToComeForward();
    QVERIFY(front.areWeInFront());
    front.settleNow();
    QCOMPARE(losses.count, 0);
    QVERIFY(front.areWeInFront());
}

void SettlingFrontTest::whoCameForwardLosesTheFrontAsUsual()
{
    SettlingFront front([this] { return m_inFront; });
    const Losses losses(front);
    front.expectToComeForward();
    m_inFront = true;
    QVERIFY(front.areWeInFront());
    m_inFront = false;
    QVERIFY(front.areWeInFront());
    QTRY_COMPARE_WITH_TIMEOUT(losses.count, 1, comingTimeMs / 2);
}

QTEST_GUILESS_MAIN(SettlingFrontTest)
#include "SettlingFrontTest.moc"
