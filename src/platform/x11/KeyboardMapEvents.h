// SPDX-License-Identifier: MIT
#pragma once

struct xcb_connection_t;

/// How the X server says that the keyboard map has changed.
namespace KeyboardMapEvents
{

/// Whether \a event, received on \a connection, says so.
bool isChange(xcb_connection_t *connection, const void *event);

} // namespace KeyboardMapEvents
