// SPDX-License-Identifier: MIT
#include "platform/x11/HotkeyGrab.h"

#include "platform/PlatformLog.h"
#include "platform/x11/ModifierBits.h"
#include "platform/x11/QtX11.h"
#include "platform/x11/XcbReply.h"

#include <algorithm>

namespace
{

using KeySymbols = std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)>;

/// A letter is stored in either case, but stands unshifted on its key.
xcb_keysym_t unshifted(xcb_keysym_t symbol)
{
    return symbol >= 'A' && symbol <= 'Z' ? symbol - 'A' + 'a' : symbol;
}

/// The keys that bear \a symbol in one of \a columns of the keyboard map.
std::vector<xcb_keycode_t> keysIn(xcb_connection_t *connection, xcb_key_symbols_t *symbols,
                                  xcb_keysym_t symbol, const std::vector<int> &columns)
{
    std::vector<xcb_keycode_t> codes;
    const xcb_setup_t *setup = xcb_get_setup(connection);
    for (unsigned code = setup->min_keycode; code <= setup->max_keycode; ++code) {
        const auto key = static_cast<xcb_keycode_t>(code);
        if (std::any_of(columns.begin(), columns.end(), [&](int column) {
                return xcb_key_symbols_get_keysym(symbols, key, column) == symbol;
            }))
            codes.push_back(key);
    }
    return codes;
}

std::vector<xcb_keycode_t> keysBearing(xcb_connection_t *connection, xcb_key_symbols_t *symbols,
                                       xcb_keysym_t symbol)
{
    // First where it stands unshifted in one of the two first layouts: a key that bears it only
    // with Shift or AltGr is a different hotkey to the user.
    std::vector<xcb_keycode_t> codes = keysIn(connection, symbols, unshifted(symbol), {0, 2});
    return codes.empty() ? keysIn(connection, symbols, symbol, {1, 3, 4, 5, 6, 7}) : codes;
}

constexpr quint16 allModifiers = 0xff;

} // namespace

HotkeyGrab::HotkeyGrab(xcb_connection_t *connection, xcb_window_t root, xcb_keysym_t symbol)
    : m_connection(connection)
    , m_root(root)
    , m_symbol(symbol)
{
    const KeySymbols symbols(xcb_key_symbols_alloc(connection), xcb_key_symbols_free);
    if (!symbols)
        return;
    const ModifierBits bits = ModifierBits::read(connection, symbols.get());
    m_modifiers = static_cast<quint16>(XCB_MOD_MASK_CONTROL | bits.alt);
    m_locks = bits.locks();

    const std::vector<xcb_keycode_t> codes = keysBearing(connection, symbols.get(), symbol);
    if (codes.empty())
        qCDebug(platformLog) << "no key bears the hotkey's symbol" << symbol;
    std::vector<Held> wanted;
    for (const xcb_keycode_t code : codes) {
        for (const quint16 locks : bits.lockCombinations())
            wanted.push_back({code, static_cast<quint16>(m_modifiers | locks)});
    }
    grab(wanted);
}

void HotkeyGrab::grab(const std::vector<Held> &wanted)
{
    std::vector<xcb_void_cookie_t> cookies;
    for (const Held &key : wanted) {
        // The window that comes forward gets what is typed while the hotkey is still down.
        constexpr quint8 ownerEvents = 1;
        cookies.push_back(xcb_grab_key_checked(m_connection, ownerEvents, m_root, key.modifiers,
                                               key.code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_connection, cookies[i]));
        if (!error) {
            m_held.push_back(wanted[i]);
            continue;
        }
        qCDebug(platformLog) << "hotkey: key" << wanted[i].code << "with modifiers"
                             << wanted[i].modifiers << "is refused, X error" << error->error_code
                             << "(10: another program holds it)";
    }
}

HotkeyGrab::~HotkeyGrab()
{
    // A closed link has given everything back already.
    if (QtX11::connection() != m_connection)
        return;
    for (const Held &key : m_held)
        xcb_ungrab_key(m_connection, key.code, m_root, key.modifiers);
    xcb_flush(m_connection);
}

bool HotkeyGrab::matches(xcb_keycode_t code, quint16 state) const
{
    const auto modifiers = static_cast<quint16>(state & allModifiers & ~m_locks);
    return modifiers == m_modifiers
        && std::any_of(m_held.begin(), m_held.end(),
                       [code](const Held &key) { return key.code == code; });
}
