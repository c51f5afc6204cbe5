// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <optional>

/// Tells the first press of a key from those that the keyboard repeats while it is held.
class HotkeyPresses
{
public:
    /// \return whether the press of the key \a code at \a time (milliseconds) is a new one.
    bool press(quint8 code, quint32 time);
    void release(quint8 code, quint32 time);

private:
    struct Key {
        quint8 code;
        bool down;
        quint32 time; ///< Of the last press or release.
    };

    std::optional<Key> m_last;
};
