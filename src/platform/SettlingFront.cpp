// SPDX-License-Identifier: MIT
#include "platform/SettlingFront.h"

#include <QCoreApplication>
#include <QEvent>

SettlingFront::SettlingFront(std::function<bool()> inFrontNow, int comingTimeMs)
    : m_inFrontNow(std::move(inFrontNow))
    , m_comingTimeMs(comingTimeMs)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(settlingTimeMs);
    connect(&m_settling, &QTimer::timeout, this, &SettlingFront::settled);
}

bool SettlingFront::areWeInFront()
{
    if (m_inFrontNow()) {
        m_wereInFront = true;
        m_coming = QDeadlineTimer(0);
        m_settling.stop();
        return true;
    }
    if (!m_coming.hasExpired())
        return true;
    if (m_wereInFront && !m_settling.isActive())
        m_settling.start();
    return m_wereInFront;
}

void SettlingFront::expectToComeForward()
{
    m_settling.stop();
    m_wereInFront = m_inFrontNow();
    m_coming = QDeadlineTimer(m_wereInFront ? 0 : m_comingTimeMs);
}

void SettlingFront::frontChanged()
{
    if (!areWeInFront() || m_inFrontNow() || !m_settling.isActive())
        return;
    m_settling.start(); // anew: another window has its turn
}

void SettlingFront::settleNow()
{
    if (m_settling.isActive() && isLost()) {
        QEvent event(QEvent::ApplicationDeactivate);
        QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
    }
}

bool SettlingFront::isLost()
{
    m_settling.stop();
    m_wereInFront = m_inFrontNow();
    return !m_wereInFront;
}

void SettlingFront::settled()
{
    if (isLost()) {
        QCoreApplication::postEvent(QCoreApplication::instance(),
                                    new QEvent(QEvent::ApplicationDeactivate));
    }
}
