// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <vector>

#include <xcb/xcb.h>

/// One key with Ctrl+Alt, held system-wide on the toolkit's link to the X server: taken when made,
/// given back when destroyed. It holds whatever the locks (Num, Caps, Scroll) are. What another
/// program holds already is missing here; the reason goes to the debug output.
class HotkeyGrab
{
public:
    HotkeyGrab(xcb_connection_t *connection, xcb_window_t root, xcb_keysym_t symbol);
    ~HotkeyGrab();
    Q_DISABLE_COPY_MOVE(HotkeyGrab)

    xcb_keysym_t symbol() const { return m_symbol; }

    /// Whether a press of the key \a code in the state \a state is this one.
    bool matches(xcb_keycode_t code, quint16 state) const;

private:
    struct Held {
        xcb_keycode_t code;
        quint16 modifiers;
    };

    void grab(const std::vector<Held> &wanted);

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    xcb_keysym_t m_symbol;
    quint16 m_modifiers = 0;
    quint16 m_locks = 0;
    std::vector<Held> m_held;
};
