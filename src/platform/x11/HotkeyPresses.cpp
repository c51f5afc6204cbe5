// SPDX-License-Identifier: MIT
#include "platform/x11/HotkeyPresses.h"

namespace
{
// A release can get lost (to another program's grab). No keyboard waits that long to repeat.
constexpr quint32 longestRepeatDelayMs = 2000;
} // namespace

bool HotkeyPresses::press(quint8 code, quint32 time)
{
    bool repeated = false;
    if (m_last && m_last->code == code) {
        // Either no release comes between repeated presses, or one at the very same moment.
        const quint32 elapsed = time - m_last->time; // the clock wraps around, and so does this
        repeated = m_last->down ? elapsed < longestRepeatDelayMs : elapsed == 0;
    }
    m_last = Key{code, true, time};
    return !repeated;
}

void HotkeyPresses::release(quint8 code, quint32 time)
{
    if (m_last && m_last->code == code)
        m_last = Key{code, false, time};
}
