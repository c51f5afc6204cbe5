// SPDX-License-Identifier: MIT
#include "ui/KeyRepeats.h"

#include <QKeyEvent>

void KeyRepeats::noteRelease(const QKeyEvent &event)
{
    m_releasedKey = event.key();
    m_releaseTime = event.timestamp();
}

bool KeyRepeats::isRepeat(const QKeyEvent &event) const
{
    return event.isAutoRepeat()
        || (m_releaseTime != 0 && event.key() == m_releasedKey
            && event.timestamp() == m_releaseTime);
}
