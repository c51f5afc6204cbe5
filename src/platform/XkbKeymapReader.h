// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PhysicalKey.h"

#include <memory>

struct xkb_keymap;

/// Reads the symbols of the keys out of a compiled keyboard map.
class XkbKeymapReader
{
public:
    /// Takes over the caller's reference to \a keymap; null is a map without keys.
    explicit XkbKeymapReader(xkb_keymap *keymap);

    PhysicalKey physicalKey(quint32 code, int activeGroup) const;

    /// The first group that has \a toolkitKey on this key; 0 when none has. It is the active one as
    /// far as that can be told from a press without the keyboard's state.
    int groupOf(quint32 code, int toolkitKey) const;

    /// Whether the modifiers that an event holds, as bits of this map, include AltGr.
    bool holdsAltGr(quint32 modifiers) const;

    /// The Qt key of the keysym \a symbol as Qt names printable keys; 0 when it isn't printable.
    static int qtKey(quint32 symbol);

private:
    struct Unref {
        void operator()(xkb_keymap *keymap) const;
    };

    int groupCount() const;
    bool isLatin(int group) const;
    int keyAt(quint32 code, int group, int level) const;

    std::unique_ptr<xkb_keymap, Unref> m_keymap;
    QList<bool> m_latinGroups;
};
