// SPDX-License-Identifier: MIT
#pragma once

struct xcb_connection_t;

/// The toolkit's own link to the X server.
namespace QtX11
{

/// Null while there is no application object, or when it isn't on X11.
xcb_connection_t *connection();

} // namespace QtX11
