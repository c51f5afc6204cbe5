// SPDX-License-Identifier: MIT
// In which order windows are brought forward, without any desktop.
#include "platform/FrontRequests.h"

#include <QMessageBox>
#include <QWidget>
#include <QWindow>
#include <QtTest>

using namespace Qt::StringLiterals;

using Windows = QList<QWindow *>;

class FrontRequestsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aWindowOnTheScreenComesForwardAtOnce();
    void aWindowThatIsOnlyJustShownComesForwardOnceItIsThere();
    void aWindowThatWasHiddenMeanwhileStaysWhereItIs();
    void eachWaitForAWindowHasItsOwnPatience();
    void theOpenBoxComesForwardAfterTheWindow();
    void theWindowComesForwardAgainOnceTheBoxIsAnswered();
    void aBoxThatFollowsTheAnsweredOneComesForwardAfterTheWindow();
    void aBoxThatIsShownAnewHasNotBeenAnswered();
    void aWindowThatIsHiddenWhenTheBoxIsAnsweredStaysHidden();

private:
    void showBox();

    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<QMessageBox> m_box;
    Windows m_forward;
    std::unique_ptr<FrontRequests> m_requests;
};

void FrontRequestsTest::init()
{
    m_window = std::make_unique<QWidget>();
    m_forward.clear();
    m_requests
        = std::make_unique<FrontRequests>([this](QWindow *window) { m_forward.append(window); });
}

void FrontRequestsTest::cleanup()
{
    m_requests.reset();
    m_box.reset();
    m_window.reset();
}

void FrontRequestsTest::showBox()
{
    m_box = std::make_unique<QMessageBox>(QMessageBox::Question, u"box"_s, u"text"_s,
                                          QMessageBox::Ok);
    m_box->setModal(true);
    m_box->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_box.get()));
}

void FrontRequestsTest::aWindowOnTheScreenComesForwardAtOnce()
{
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_requests->request(m_window->windowHandle());
    QCOMPARE(m_forward, Windows({m_window->windowHandle()}));
}

void FrontRequestsTest::aWindowThatIsOnlyJustShownComesForwardOnceItIsThere()
{
    m_window->winId(); // makes the window, without showing it
    m_requests->request(m_window->windowHandle());
    QVERIFY(m_forward.isEmpty());
    m_window->show();
    QTRY_COMPARE(m_forward, Windows({m_window->windowHandle()}));
}

void FrontRequestsTest::aWindowThatWasHiddenMeanwhileStaysWhereItIs()
{
    m_window->winId(); // makes the window, without showing it
    m_requests->request(m_window->windowHandle());
    m_window->show();
    m_window->hide();
    QTest::qWait(800); // longer than it waits for a window to appear
    QVERIFY(m_forward.isEmpty());
}

void FrontRequestsTest::eachWaitForAWindowHasItsOwnPatience()
{
    aWindowThatIsOnlyJustShownComesForwardOnceItIsThere();
    m_forward.clear();
    m_window->hide();
    QTest::qWait(400);
    m_requests->request(m_window->windowHandle());
    QTest::qWait(200); // the first wait would have been over
    m_window->show();
    QTRY_COMPARE(m_forward, Windows({m_window->windowHandle()}));
}

void FrontRequestsTest::theOpenBoxComesForwardAfterTheWindow()
{
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    showBox();
    m_requests->request(m_window->windowHandle());
    QTRY_COMPARE(m_forward, Windows({m_window->windowHandle(), m_box->windowHandle()}));
}

void FrontRequestsTest::theWindowComesForwardAgainOnceTheBoxIsAnswered()
{
    theOpenBoxComesForwardAfterTheWindow();
    m_forward.clear();
    m_box->hide();
    QTRY_COMPARE(m_forward, Windows({m_window->windowHandle()}));
}

void FrontRequestsTest::aBoxThatFollowsTheAnsweredOneComesForwardAfterTheWindow()
{
    theOpenBoxComesForwardAfterTheWindow();
    m_forward.clear();
    m_box->hide();
    QMessageBox next(QMessageBox::Question, u"next"_s, u"text"_s, QMessageBox::Ok);
    next.setModal(true);
    next.show();
    const Windows windowThenBox{m_window->windowHandle(), next.windowHandle()};
    QTRY_COMPARE(m_forward, windowThenBox);
    next.hide();
    QTRY_COMPARE(m_forward, windowThenBox + Windows{m_window->windowHandle()});
}

void FrontRequestsTest::aBoxThatIsShownAnewHasNotBeenAnswered()
{
    theOpenBoxComesForwardAfterTheWindow();
    m_requests->request(m_window->windowHandle());
    m_forward.clear();
    m_box->hide();
    m_box->show();
    QCoreApplication::processEvents();
    QVERIFY(m_forward.isEmpty());
    m_box->hide();
    QTRY_COMPARE(m_forward, Windows({m_window->windowHandle()}));
}

void FrontRequestsTest::aWindowThatIsHiddenWhenTheBoxIsAnsweredStaysHidden()
{
    theOpenBoxComesForwardAfterTheWindow();
    m_forward.clear();
    m_window->hide();
    m_box->hide();
    QCoreApplication::processEvents();
    QVERIFY(m_forward.isEmpty());
}

QTEST_MAIN(FrontRequestsTest)
#include "FrontRequestsTest.moc"
