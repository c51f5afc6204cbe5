// SPDX-License-Identifier: MIT
#include "platform/x11/ModifierBits.h"

#include "platform/x11/XcbReply.h"

#include <algorithm>

namespace
{

constexpr xcb_keysym_t numLockSymbol = 0xff7f;
constexpr xcb_keysym_t scrollLockSymbol = 0xff14;
constexpr xcb_keysym_t leftAltSymbol = 0xffe9;
constexpr int modifierCount = 8;

bool bears(xcb_key_symbols_t *symbols, xcb_keycode_t code, xcb_keysym_t symbol)
{
    constexpr int columns = 4;
    for (int column = 0; column < columns; ++column) {
        if (xcb_key_symbols_get_keysym(symbols, code, column) == symbol)
            return true;
    }
    return false;
}

} // namespace

ModifierBits ModifierBits::read(xcb_connection_t *connection, xcb_key_symbols_t *symbols)
{
    ModifierBits bits;
    const XcbReply<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
    if (!map)
        return bits;
    const xcb_keycode_t *codes = xcb_get_modifier_mapping_keycodes(map.get());
    const int perModifier = map->keycodes_per_modifier;
    for (int i = 0; i < modifierCount * perModifier; ++i) {
        const auto bit = static_cast<quint16>(1 << (i / perModifier));
        if (codes[i] == 0)
            continue;
        if (bears(symbols, codes[i], numLockSymbol))
            bits.numLock = bit;
        if (bears(symbols, codes[i], scrollLockSymbol))
            bits.scrollLock = bit;
        if (bears(symbols, codes[i], leftAltSymbol))
            bits.alt = bit;
    }
    return bits;
}

quint16 ModifierBits::locks() const
{
    return static_cast<quint16>(XCB_MOD_MASK_LOCK | numLock | scrollLock);
}

std::vector<quint16> ModifierBits::lockCombinations() const
{
    std::vector<quint16> combinations{0};
    for (const quint16 bit : {quint16(XCB_MOD_MASK_LOCK), numLock, scrollLock}) {
        if (bit == 0)
            continue;
        const std::vector<quint16> without = combinations;
        for (const quint16 combination : without)
            combinations.push_back(static_cast<quint16>(combination | bit));
    }
    return combinations;
}
