// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <vector>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

/// Which modifier bits of a key event's state mean what on this X server.
struct ModifierBits {
    quint16 alt = XCB_MOD_MASK_1;
    quint16 numLock = 0; ///< 0 when no key is bound to it.
    quint16 scrollLock = 0; ///< 0 when no key is bound to it.

    static ModifierBits read(xcb_connection_t *connection, xcb_key_symbols_t *symbols);

    /// The bits of all locks.
    quint16 locks() const;
    /// Every state that the locks can be in.
    std::vector<quint16> lockCombinations() const;
};
