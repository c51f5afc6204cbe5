// SPDX-License-Identifier: MIT
#pragma once

#include "platform/XkbKeymapReader.h"

#include <QObject>
#include <QSocketNotifier>
#include <memory>
#include <optional>

struct wl_display;
struct wl_keyboard;
struct wl_registry;
struct wl_seat;

/// A connection of its own to the compositor, which tells every client the map of its seat's
/// keyboard. The toolkit has the same map but no public way to it.
class KeymapConnection : public QObject
{
    Q_OBJECT

public:
    /// Null when no second connection can be made.
    static std::unique_ptr<KeymapConnection> open();

    ~KeymapConnection() override;

    /// The keyboard's map as the compositor has told it up to now; nothing when it has told none.
    const std::optional<XkbKeymapReader> &keymap();

private:
    struct Release {
        void operator()(wl_display *display) const;
        void operator()(wl_registry *registry) const;
        void operator()(wl_seat *seat) const;
        void operator()(wl_keyboard *keyboard) const;
    };
    struct Listeners;

    explicit KeymapConnection(wl_display *display);

    void askForSeat();
    void read();
    void dispatch();
    void bindSeat(quint32 name);
    void forgetSeat(quint32 name);
    void setCapabilities(quint32 capabilities);
    void setKeymap(quint32 format, int file, quint32 size);

    std::unique_ptr<wl_display, Release> m_display;
    std::unique_ptr<wl_registry, Release> m_registry;
    quint32 m_seatName = 0;
    std::unique_ptr<wl_seat, Release> m_seat;
    std::unique_ptr<wl_keyboard, Release> m_keyboard;
    std::optional<XkbKeymapReader> m_keymap;
    QSocketNotifier m_notifier;
};
