// SPDX-License-Identifier: MIT
#include "platform/XkbKeymapReader.h"

#include <QChar>
#include <bitset>
#include <xkbcommon/xkbcommon.h>

namespace
{
// The block of symbol keys: from 1 to the key right of the right-hand letters.
constexpr quint32 firstSymbolKey = 10;
constexpr quint32 lastSymbolKey = 61;
} // namespace

void XkbKeymapReader::Unref::operator()(xkb_keymap *keymap) const
{
    xkb_keymap_unref(keymap);
}

XkbKeymapReader::XkbKeymapReader(xkb_keymap *keymap)
    : m_keymap(keymap)
{
    for (int group = 0; group < groupCount(); ++group)
        m_latinGroups.append(isLatin(group));
}

int XkbKeymapReader::groupCount() const
{
    return m_keymap ? static_cast<int>(xkb_keymap_num_layouts(m_keymap.get())) : 0;
}

bool XkbKeymapReader::isLatin(int group) const
{
    // Other scripts may have a stray Latin letter, and Latin ones other letters beside A to Z; half
    // of the alphabet tells them apart.
    std::bitset<26> letters;
    for (quint32 code = firstSymbolKey; code <= lastSymbolKey; ++code) {
        const int key = keyAt(code, group, 0);
        if (key >= Qt::Key_A && key <= Qt::Key_Z)
            letters.set(static_cast<std::size_t>(key - Qt::Key_A));
    }
    return letters.count() >= letters.size() / 2;
}

int XkbKeymapReader::keyAt(quint32 code, int group, int level) const
{
    const auto layout = static_cast<xkb_layout_index_t>(group);
    const auto wantedLevel = static_cast<xkb_level_index_t>(level);
    if (wantedLevel >= xkb_keymap_num_levels_for_key(m_keymap.get(), code, layout))
        return 0;
    const xkb_keysym_t *symbols = nullptr;
    const int count
        = xkb_keymap_key_get_syms_by_level(m_keymap.get(), code, layout, wantedLevel, &symbols);
    return count == 1 ? qtKey(symbols[0]) : 0;
}

PhysicalKey XkbKeymapReader::physicalKey(quint32 code, int activeGroup) const
{
    PhysicalKey key{code, {}, activeGroup};
    if (code == 0)
        return key; // a press that no key made, such as one of an input method
    for (int group = 0; group < groupCount(); ++group) {
        PhysicalKey::Group symbols{m_latinGroups[group], {}};
        for (int level = 0; level < PhysicalKey::levelCount; ++level)
            symbols.keys[static_cast<std::size_t>(level)] = keyAt(code, group, level);
        key.groups.append(symbols);
    }
    return key;
}

int XkbKeymapReader::groupOf(quint32 code, int toolkitKey) const
{
    for (int group = 0; group < groupCount(); ++group) {
        for (int level = 0; level < PhysicalKey::levelCount; ++level) {
            if (keyAt(code, group, level) == toolkitKey)
                return group;
        }
    }
    return 0;
}

bool XkbKeymapReader::holdsAltGr(quint32 modifiers) const
{
    // The modifier that the system's keyboard data give to the third level.
    const xkb_mod_index_t index = xkb_keymap_mod_get_index(m_keymap.get(), "Mod5");
    return index != XKB_MOD_INVALID && (modifiers >> index & 1U) != 0;
}

int XkbKeymapReader::qtKey(quint32 symbol)
{
    const char32_t character = xkb_keysym_to_utf32(symbol);
    if (character < U' ' || !QChar::isPrint(character))
        return 0;
    return static_cast<int>(QChar::toUpper(character));
}
