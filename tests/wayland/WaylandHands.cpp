// SPDX-License-Identifier: MIT
// A mouse and a keyboard on a Wayland desktop, and the source of the tokens that let a program come
// forward. Lives as long as its standard input: a seat that loses its last pointer takes it from
// every program.
//
// Commands, one a line, each answered by one line as soon as the compositor has seen it:
//   move X Y WIDTH HEIGHT   puts the pointer there, on a desktop of that size
//   press CODE, release CODE  a mouse button by its code in the kernel (272 is the left one)
//   layout LAYOUTS [OPTIONS]  gives the keyboard, there from the first time on, such a layout
//   ("us,ru") key CODE, unkey CODE    a key by its place, as the code that X11 has for it token
//   APP_ID            the answer is a token for bringing forward the program of that name
#include "Keyboard.h"
#include "virtual-pointer-client-protocol.h"
#include "xdg-activation-v1-client-protocol.h"

#include <cstdint>
#include <cstring>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <wayland-client.h>

namespace
{

using Display = std::unique_ptr<wl_display, Releaser<wl_display_disconnect>>;
using Registry = std::unique_ptr<wl_registry, Releaser<wl_registry_destroy>>;
using Activation = std::unique_ptr<xdg_activation_v1, Releaser<xdg_activation_v1_destroy>>;
using Token = std::unique_ptr<xdg_activation_token_v1, Releaser<xdg_activation_token_v1_destroy>>;
using Seat = std::unique_ptr<wl_seat, Releaser<wl_seat_destroy>>;
using KeyboardManager = std::unique_ptr<zwp_virtual_keyboard_manager_v1,
                                        Releaser<zwp_virtual_keyboard_manager_v1_destroy>>;
using PointerManager = std::unique_ptr<zwlr_virtual_pointer_manager_v1,
                                       Releaser<zwlr_virtual_pointer_manager_v1_destroy>>;
using Pointer = std::unique_ptr<zwlr_virtual_pointer_v1, Releaser<zwlr_virtual_pointer_v1_destroy>>;

class Hands
{
public:
    Hands()
        : m_display(wl_display_connect(nullptr))
    {
        if (!m_display)
            throw std::runtime_error("there is no Wayland desktop");
        m_registry.reset(wl_display_get_registry(m_display.get()));
        static const wl_registry_listener listener{.global = found, .global_remove = lost};
        wl_registry_add_listener(m_registry.get(), &listener, this);
        synchronise();
        if (!m_activation || !m_pointers)
            throw std::runtime_error(
                "the desktop has no activation tokens, or no virtual pointers");
        m_pointer.reset(
            zwlr_virtual_pointer_manager_v1_create_virtual_pointer(m_pointers.get(), nullptr));
        synchronise();
    }

    /// Carries out one command; gives the answer.
    std::string obey(const std::string &command)
    {
        std::istringstream words(command);
        std::string verb;
        words >> verb;
        if (verb == "token")
            return token(words);
        if (verb == "move")
            move(words);
        else if (verb == "press" || verb == "release")
            button(words, verb == "press");
        else if (verb == "layout")
            layout(words);
        else if (verb == "key" || verb == "unkey")
            key(words, verb == "key");
        else
            throw std::runtime_error("unknown command: " + command);
        zwlr_virtual_pointer_v1_frame(m_pointer.get());
        synchronise();
        return "ok";
    }

private:
    static void found(void *hands, wl_registry *registry, std::uint32_t name, const char *interface,
                      std::uint32_t)
    {
        auto *self = static_cast<Hands *>(hands);
        if (std::strcmp(interface, xdg_activation_v1_interface.name) == 0)
            self->m_activation.reset(static_cast<xdg_activation_v1 *>(
                wl_registry_bind(registry, name, &xdg_activation_v1_interface, 1)));
        else if (std::strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0)
            self->m_pointers.reset(static_cast<zwlr_virtual_pointer_manager_v1 *>(
                wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1)));
        else if (std::strcmp(interface, zwp_virtual_keyboard_manager_v1_interface.name) == 0)
            self->m_keyboards.reset(static_cast<zwp_virtual_keyboard_manager_v1 *>(
                wl_registry_bind(registry, name, &zwp_virtual_keyboard_manager_v1_interface, 1)));
        else if (std::strcmp(interface, wl_seat_interface.name) == 0)
            self->m_seat.reset(
                static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, 1)));
    }

    static void lost(void *, wl_registry *, std::uint32_t) { }

    static void granted(void *answer, xdg_activation_token_v1 *, const char *token)
    {
        *static_cast<std::string *>(answer) = token;
    }

    /// Waits until the compositor has seen everything that was asked so far.
    void synchronise()
    {
        if (wl_display_roundtrip(m_display.get()) < 0)
            throw std::runtime_error("the connection to the desktop is lost");
    }

    std::string token(std::istream &words)
    {
        std::string appId;
        words >> appId;
        std::string answer;
        const Token request(xdg_activation_v1_get_activation_token(m_activation.get()));
        static const xdg_activation_token_v1_listener listener{.done = granted};
        xdg_activation_token_v1_add_listener(request.get(), &listener, &answer);
        xdg_activation_token_v1_set_app_id(request.get(), appId.c_str());
        xdg_activation_token_v1_commit(request.get());
        synchronise();
        return answer;
    }

    void move(std::istream &words)
    {
        std::uint32_t x = 0, y = 0, width = 0, height = 0;
        words >> x >> y >> width >> height;
        zwlr_virtual_pointer_v1_motion_absolute(m_pointer.get(), milliseconds(), x, y, width,
                                                height);
    }

    void button(std::istream &words, bool pressed)
    {
        std::uint32_t code = 0;
        words >> code;
        zwlr_virtual_pointer_v1_button(m_pointer.get(), milliseconds(), code, pressed ? 1 : 0);
    }

    void layout(std::istream &words)
    {
        if (!m_seat || !m_keyboards)
            throw std::runtime_error("the desktop has no virtual keyboards");
        if (!m_keyboard) {
            m_keyboard = std::make_unique<Keyboard>(
                zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(m_keyboards.get(),
                                                                        m_seat.get()));
        }
        std::string layouts, options;
        words >> layouts >> options;
        m_keyboard->setLayout(layouts, options);
    }

    void key(std::istream &words, bool down)
    {
        std::uint32_t code = 0;
        words >> code;
        if (!m_keyboard)
            throw std::runtime_error("the keyboard has no layout yet");
        m_keyboard->press(code, down);
    }

    Display m_display;
    Registry m_registry;
    Activation m_activation;
    PointerManager m_pointers;
    Pointer m_pointer;
    Seat m_seat;
    KeyboardManager m_keyboards;
    std::unique_ptr<Keyboard> m_keyboard;
};

} // namespace

int main()
{
    try {
        Hands hands;
        for (std::string command; std::getline(std::cin, command);)
            std::cout << hands.obey(command) << std::endl;
        return 0;
    } catch (const std::exception &error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
