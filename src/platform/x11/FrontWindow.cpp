// SPDX-License-Identifier: MIT
#include "platform/x11/FrontWindow.h"

#include "platform/x11/XcbNotice.h"
#include "platform/x11/XcbReply.h"

namespace
{

/// What _NET_WM_DESKTOP holds for a window that is on every workspace.
constexpr quint32 onAllWorkspaces = 0xffffffff;

/// The root window of \a screen.
xcb_window_t rootOf(xcb_connection_t *connection, int screen)
{
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && screen > 0; --screen)
        xcb_screen_next(&screens);
    return screens.data->root;
}

} // namespace

std::unique_ptr<FrontWindow> FrontWindow::open()
{
    int screen = 0;
    Connection connection(xcb_connect(nullptr, &screen));
    if (!connection || xcb_connection_has_error(connection.get()) != 0)
        return nullptr;
    return std::unique_ptr<FrontWindow>(new FrontWindow(std::move(connection), screen));
}

FrontWindow::FrontWindow(Connection connection, int screen)
    : m_connection(std::move(connection))
    , m_screen(screen)
    , m_root(rootOf(m_connection.get(), screen))
{
    xcb_intern_atom_cookie_t *atoms = xcb_ewmh_init_atoms(m_connection.get(), &m_ewmh);
    xcb_ewmh_init_atoms_replies(&m_ewmh, atoms, nullptr);
}

FrontWindow::~FrontWindow()
{
    xcb_ewmh_connection_wipe(&m_ewmh);
}

void FrontWindow::forgetEvents()
{
    // Nothing is asked for here, but the server tells every client of keyboard map changes.
    while (XcbReply<xcb_generic_event_t>(xcb_poll_for_event(m_connection.get()))) { }
}

xcb_window_t FrontWindow::active()
{
    forgetEvents();
    xcb_window_t window = noWindow;
    const auto cookie = xcb_ewmh_get_active_window(&m_ewmh, m_screen);
    const bool known = xcb_ewmh_get_active_window_reply(&m_ewmh, cookie, &window, nullptr) != 0;
    return known ? window : noWindow;
}

quint32 FrontWindow::processOf(xcb_window_t window)
{
    quint32 process = 0;
    const auto cookie = xcb_ewmh_get_wm_pid(&m_ewmh, window);
    const bool known = xcb_ewmh_get_wm_pid_reply(&m_ewmh, cookie, &process, nullptr) != 0;
    return known ? process : 0;
}

xcb_window_t FrontWindow::ownerOf(xcb_window_t window)
{
    const auto cookie = xcb_get_property(m_connection.get(), 0, window, XCB_ATOM_WM_TRANSIENT_FOR,
                                         XCB_ATOM_WINDOW, 0, 1);
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection.get(), cookie, nullptr));
    constexpr int windowSize = sizeof(xcb_window_t);
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < windowSize)
        return noWindow;
    return *static_cast<const xcb_window_t *>(xcb_get_property_value(reply.get()));
}

void FrontWindow::bringForward(xcb_window_t window, xcb_timestamp_t time)
{
    xcb_ewmh_request_change_active_window(&m_ewmh, m_screen, window,
                                          XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER, time, noWindow);
    xcb_flush(m_connection.get());
}

void FrontWindow::repeatFocusIn(xcb_window_t window)
{
    xcb_connection_t *connection = m_connection.get();
    xcb_grab_server(connection); // the focus doesn't move between the question and the notice
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (reply && reply->focus == window) {
        xcb_focus_in_event_t notice{};
        notice.response_type = XCB_FOCUS_IN;
        notice.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
        notice.event = window;
        notice.mode = XCB_NOTIFY_MODE_NORMAL;
        sendNotice(connection, window, XCB_EVENT_MASK_NO_EVENT, notice);
    }
    xcb_ungrab_server(connection);
    xcb_flush(connection);
}

std::optional<quint32> FrontWindow::workspaceInSight()
{
    quint32 workspace = 0;
    const auto cookie = xcb_ewmh_get_current_desktop(&m_ewmh, m_screen);
    const bool known
        = xcb_ewmh_get_current_desktop_reply(&m_ewmh, cookie, &workspace, nullptr) != 0;
    return known ? std::optional(workspace) : std::nullopt;
}

bool FrontWindow::isOnAnotherWorkspace(xcb_window_t window)
{
    quint32 workspace = 0;
    const auto cookie = xcb_ewmh_get_wm_desktop(&m_ewmh, window);
    const bool known = xcb_ewmh_get_wm_desktop_reply(&m_ewmh, cookie, &workspace, nullptr) != 0;
    return known && workspace != onAllWorkspaces
        && workspaceInSight().value_or(workspace) != workspace;
}

void FrontWindow::bringToWorkspaceInSight(xcb_window_t window)
{
    const std::optional<quint32> workspace = workspaceInSight();
    if (workspace && isOnAnotherWorkspace(window)) {
        xcb_ewmh_request_change_wm_desktop(&m_ewmh, m_screen, window, *workspace,
                                           XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER);
    }
}

xcb_window_t FrontWindow::clockWindow()
{
    if (m_clockWindow == noWindow) {
        m_clockWindow = xcb_generate_id(m_connection.get());
        const quint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(m_connection.get(), XCB_COPY_FROM_PARENT, m_clockWindow, m_root, 0, 0, 1,
                          1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                          XCB_CW_EVENT_MASK, &events);
    }
    return m_clockWindow;
}

xcb_timestamp_t FrontWindow::serverTime()
{
    // The server stamps every property change; there is no request for the time itself.
    forgetEvents();
    const xcb_window_t window = clockWindow();
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(m_connection.get());
    while (const XcbReply<xcb_generic_event_t> event{xcb_wait_for_event(m_connection.get())}) {
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY)
            return reinterpret_cast<const xcb_property_notify_event_t *>(event.get())->time;
        if (event->response_type == 0)
            break; // the window could not be made
    }
    return XCB_CURRENT_TIME;
}
