// SPDX-License-Identifier: MIT
#include "platform/SettlingFront.h"

#include <algorithm>

SettlingFront::SettlingFront(std::function<bool()> inFrontNow)
    : m_inFrontNow(std::move(inFrontNow))
{
    m_settling.setSingleShot(true);
    connect(&m_settling, &QTimer::timeout, this, &SettlingFront::settled);
}

bool SettlingFront::areWeInFront()
{
    if (m_inFrontNow()) {
        if (!m_areInFront)
            m_coming = QDeadlineTimer(0); // we have come
        m_areInFront = m_wereInFront = true;
        m_settling.stop();
        return true;
    }
    m_areInFront = false;
    const auto comingMs = static_cast<int>(m_coming.remainingTime());
    if (!m_wereInFront && comingMs == 0)
        return false;
    if (!m_settling.isActive()) // an answer given on trust is looked at again, too
        m_settling.start(m_wereInFront ? std::max(settlingTimeMs, comingMs) : comingMs);
    return true;
}

void SettlingFront::expectToComeForward()
{
    m_settling.stop();
    m_areInFront = m_wereInFront = m_inFrontNow();
    m_coming = QDeadlineTimer(comingTimeMs);
}

void SettlingFront::frontChanged()
{
    m_settling.stop(); // the patience begins anew: another window has its turn
    areWeInFront();
}

void SettlingFront::settleNow()
{
    // Whoever is only just coming forward has nothing to lose.
    if (m_wereInFront && m_settling.isActive())
        settled();
}

void SettlingFront::settled()
{
    const FrontLoss reason = m_wereInFront ? FrontLoss::Lost : FrontLoss::NeverCame;
    m_settling.stop();
    m_coming = QDeadlineTimer(0);
    m_areInFront = m_wereInFront = m_inFrontNow();
    if (!m_wereInFront)
        emit notInFront(reason);
}
