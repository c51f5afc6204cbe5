// SPDX-License-Identifier: MIT
#include "platform/wayland/KeymapConnection.h"

#include "platform/PlatformLog.h"

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

namespace
{

/// A new compiled map from the text that the compositor shares in \a file; null when it is none.
xkb_keymap *compile(int file, quint32 size)
{
    void *text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    if (text == MAP_FAILED)
        return nullptr;
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref);
    const char *characters = static_cast<const char *>(text);
    xkb_keymap *keymap
        = xkb_keymap_new_from_buffer(context.get(), characters, strnlen(characters, size),
                                     XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    munmap(text, size);
    return keymap;
}

} // namespace

/// The C functions that the compositor's events end in; each gets the connection as its data.
struct KeymapConnection::Listeners {
    static KeymapConnection &of(void *data) { return *static_cast<KeymapConnection *>(data); }

    static void global(void *data, wl_registry *, quint32 name, const char *interface, quint32)
    {
        if (qstrcmp(interface, wl_seat_interface.name) == 0)
            of(data).bindSeat(name);
    }
    static void capabilities(void *data, wl_seat *, quint32 all) { of(data).setCapabilities(all); }
    static void keymap(void *data, wl_keyboard *, quint32 format, int file, quint32 size)
    {
        of(data).setKeymap(format, file, size);
    }

    static void globalRemoved(void *data, wl_registry *, quint32 name)
    {
        of(data).forgetSeat(name);
    }

    static constexpr wl_registry_listener registryListener{global, globalRemoved};
    static constexpr wl_seat_listener seatListener{capabilities,
                                                   [](void *, wl_seat *, const char *) {}};
    // A client without a window gets none of the others.
    static constexpr wl_keyboard_listener keyboardListener{
        keymap,
        [](void *, wl_keyboard *, quint32, wl_surface *, wl_array *) {},
        [](void *, wl_keyboard *, quint32, wl_surface *) {},
        [](void *, wl_keyboard *, quint32, quint32, quint32, quint32) {},
        [](void *, wl_keyboard *, quint32, quint32, quint32, quint32, quint32) {},
        [](void *, wl_keyboard *, qint32, qint32) {}};
};

void KeymapConnection::Release::operator()(wl_display *display) const
{
    wl_display_disconnect(display);
}

void KeymapConnection::Release::operator()(wl_registry *registry) const
{
    wl_registry_destroy(registry);
}

void KeymapConnection::Release::operator()(wl_seat *seat) const
{
    wl_seat_destroy(seat);
}

void KeymapConnection::Release::operator()(wl_keyboard *keyboard) const
{
    wl_keyboard_destroy(keyboard);
}

std::unique_ptr<KeymapConnection> KeymapConnection::open()
{
    wl_display *display = wl_display_connect(nullptr);
    if (!display)
        return nullptr;
    std::unique_ptr<KeymapConnection> connection(new KeymapConnection(display));
    connection->askForSeat();
    return connection;
}

KeymapConnection::KeymapConnection(wl_display *display)
    : m_display(display)
    , m_notifier(wl_display_get_fd(display), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &KeymapConnection::read);
}

KeymapConnection::~KeymapConnection() = default;

void KeymapConnection::askForSeat()
{
    m_registry.reset(wl_display_get_registry(m_display.get()));
    wl_registry_add_listener(m_registry.get(), &Listeners::registryListener, this);
    // The seat, its keyboard, the keyboard's map: each is told in answer to a request.
    constexpr int answers = 3;
    for (int i = 0; i < answers; ++i)
        wl_display_roundtrip(m_display.get());
}

const std::optional<XkbKeymapReader> &KeymapConnection::keymap()
{
    // With a key of another keyboard its map comes, too: the key is perhaps known already to who
    // asks here, while the map still waits to be read.
    read();
    return m_keymap;
}

void KeymapConnection::read()
{
    wl_display *display = m_display.get();
    while (m_notifier.isEnabled() && wl_display_prepare_read(display) != 0)
        dispatch();
    if (!m_notifier.isEnabled())
        return; // the connection is lost; what is known of the keyboard stays
    wl_display_flush(display);
    pollfd waiting{wl_display_get_fd(display), POLLIN, 0};
    if (poll(&waiting, 1, 0) > 0)
        wl_display_read_events(display);
    else
        wl_display_cancel_read(display);
    dispatch();
    wl_display_flush(display);
}

void KeymapConnection::dispatch()
{
    if (wl_display_dispatch_pending(m_display.get()) < 0)
        m_notifier.setEnabled(false);
}

void KeymapConnection::bindSeat(quint32 name)
{
    if (m_seat)
        return;
    m_seatName = name;
    m_seat.reset(
        static_cast<wl_seat *>(wl_registry_bind(m_registry.get(), name, &wl_seat_interface, 1)));
    wl_seat_add_listener(m_seat.get(), &Listeners::seatListener, this);
}

void KeymapConnection::forgetSeat(quint32 name)
{
    if (!m_seat || name != m_seatName)
        return;
    m_keyboard.reset();
    m_seat.reset();
    m_keymap.reset();
}

void KeymapConnection::setCapabilities(quint32 capabilities)
{
    const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
    if (!hasKeyboard) {
        m_keyboard.reset();
    } else if (!m_keyboard) {
        m_keyboard.reset(wl_seat_get_keyboard(m_seat.get()));
        wl_keyboard_add_listener(m_keyboard.get(), &Listeners::keyboardListener, this);
    }
}

void KeymapConnection::setKeymap(quint32 format, int file, quint32 size)
{
    xkb_keymap *keymap = format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 ? compile(file, size) : nullptr;
    close(file);
    m_keymap.reset();
    if (keymap)
        m_keymap.emplace(keymap);
    else
        qCDebug(platformLog) << "the compositor does not tell its keyboard layout";
}
