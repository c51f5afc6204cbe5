// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class QKeyEvent;

/// Tells presses of a key from those that the keyboard repeats while it is held.
class KeyRepeats
{
public:
    /// To be told of every release, in whichever window.
    void noteRelease(const QKeyEvent &event);

    /// Whether the press \a event comes from a held key. A held key comes as a release and a press
    /// at the very same moment; the toolkit only sees that when the press is already waiting, which
    /// on a busy computer it isn't.
    bool isRepeat(const QKeyEvent &event) const;

private:
    int m_releasedKey = 0;
    quint64 m_releaseTime = 0; ///< 0 as long as no release has come with a time.
};
