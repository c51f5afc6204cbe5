// SPDX-License-Identifier: MIT
#include "Keyboard.h"

#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

std::uint32_t milliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1000000);
}

void Keyboard::Destroy::operator()(zwp_virtual_keyboard_v1 *keyboard) const
{
    zwp_virtual_keyboard_v1_destroy(keyboard);
}

Keyboard::Keyboard(zwp_virtual_keyboard_v1 *keyboard)
    : m_keyboard(keyboard)
{
}

void Keyboard::setLayout(const std::string &layouts, const std::string &options)
{
    const std::unique_ptr<xkb_context, Releaser<xkb_context_unref>> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const xkb_rule_names names{.rules = "evdev",
                               .model = "pc105",
                               .layout = layouts.c_str(),
                               .variant = nullptr,
                               .options = options.c_str()};
    m_keymap.reset(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!m_keymap)
        throw std::runtime_error("no such layout: " + layouts);
    m_state.reset(xkb_state_new(m_keymap.get()));
    const std::unique_ptr<char, Releaser<std::free>> text(
        xkb_keymap_get_as_string(m_keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1));
    const std::size_t size = std::char_traits<char>::length(text.get()) + 1;
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    if (file < 0 || write(file, text.get(), size) != static_cast<ssize_t>(size))
        throw std::runtime_error("the layout can't be shared");
    zwp_virtual_keyboard_v1_keymap(m_keyboard.get(), WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                   static_cast<std::uint32_t>(size));
    close(file);
    sendModifiers();
}

void Keyboard::press(std::uint32_t code, bool down)
{
    if (!m_state)
        throw std::runtime_error("the keyboard has no layout yet");
    constexpr std::uint32_t kernelOffset = 8;
    zwp_virtual_keyboard_v1_key(m_keyboard.get(), milliseconds(), code - kernelOffset,
                                down ? WL_KEYBOARD_KEY_STATE_PRESSED
                                     : WL_KEYBOARD_KEY_STATE_RELEASED);
    // The compositor leaves it to such a keyboard to say what its modifiers are.
    xkb_state_update_key(m_state.get(), code, down ? XKB_KEY_DOWN : XKB_KEY_UP);
    sendModifiers();
}

void Keyboard::sendModifiers()
{
    const auto modifiers = [this](xkb_state_component component) {
        return xkb_state_serialize_mods(m_state.get(), component);
    };
    zwp_virtual_keyboard_v1_modifiers(
        m_keyboard.get(), modifiers(XKB_STATE_MODS_DEPRESSED), modifiers(XKB_STATE_MODS_LATCHED),
        modifiers(XKB_STATE_MODS_LOCKED),
        xkb_state_serialize_layout(m_state.get(), XKB_STATE_LAYOUT_EFFECTIVE));
}
