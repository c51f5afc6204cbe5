// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <array>
#include <cstring>

#include <xcb/xcb.h>

/// Sends \a event to \a window as xcb wants it: it reads 32 bytes, the size of every event on the
/// wire, although most of its structures are shorter.
template <typename Event>
void sendNotice(xcb_connection_t *connection, xcb_window_t window, quint32 mask, const Event &event)
{
    std::array<char, 32> bytes{};
    static_assert(sizeof(Event) <= bytes.size());
    std::memcpy(bytes.data(), &event, sizeof(Event));
    xcb_send_event(connection, 0, window, mask, bytes.data());
    xcb_flush(connection);
}
