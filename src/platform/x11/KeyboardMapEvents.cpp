// SPDX-License-Identifier: MIT
#include "platform/x11/KeyboardMapEvents.h"

#include <xcb/xcb.h>
// The header of the keyboard extension has a field called like a keyword of C++.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit

bool KeyboardMapEvents::isChange(xcb_connection_t *connection, const void *event)
{
    const auto *generic = static_cast<const xcb_generic_event_t *>(event);
    const int type = generic->response_type & 0x7f;
    if (type == XCB_MAPPING_NOTIFY)
        return true;
    const xcb_query_extension_reply_t *xkb = xcb_get_extension_data(connection, &xcb_xkb_id);
    if (!xkb || !xkb->present || type != xkb->first_event)
        return false;
    // All events of the extension share one type; the second byte tells them apart.
    return generic->pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || generic->pad0 == XCB_XKB_MAP_NOTIFY;
}
