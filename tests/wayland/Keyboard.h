// SPDX-License-Identifier: MIT
#pragma once

#include "virtual-keyboard-client-protocol.h"

#include <cstdint>
#include <memory>
#include <string>
#include <xkbcommon/xkbcommon.h>

template <auto release> struct Releaser {
    template <typename T> void operator()(T *object) const { release(object); }
};

/// The present time as events carry it, in milliseconds.
std::uint32_t milliseconds();

/// A keyboard with a real layout, whose keys are pressed by their place.
class Keyboard
{
public:
    /// Takes over \a keyboard.
    explicit Keyboard(zwp_virtual_keyboard_v1 *keyboard);

    /// Gives it the layouts and options of the system's keyboard data, such as "us,ru".
    /// \throws std::runtime_error when the system has none of that name.
    void setLayout(const std::string &layouts, const std::string &options);

    /// \a code is that of X11: the kernel's plus 8.
    void press(std::uint32_t code, bool down);

private:
    struct Destroy {
        void operator()(zwp_virtual_keyboard_v1 *keyboard) const;
    };

    void sendModifiers();

    std::unique_ptr<zwp_virtual_keyboard_v1, Destroy> m_keyboard;
    std::unique_ptr<xkb_keymap, Releaser<xkb_keymap_unref>> m_keymap;
    std::unique_ptr<xkb_state, Releaser<xkb_state_unref>> m_state;
};
