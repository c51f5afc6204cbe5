// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <memory>
#include <optional>

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

/// Asks the window manager which window is in front, and to bring one there, and the X server which
/// has the input focus. Has its own link to it, so that it works before the application object
/// exists. A window that has gone, a missing window manager or a lost server is "none", never an
/// error.
class FrontWindow
{
public:
    static constexpr xcb_window_t noWindow = XCB_WINDOW_NONE;

    /// Null when there is no X server to talk to.
    static std::unique_ptr<FrontWindow> open();

    ~FrontWindow();
    Q_DISABLE_COPY_MOVE(FrontWindow)

    xcb_window_t root() const { return m_root; }
    xcb_atom_t activeWindowAtom() const { return m_ewmh._NET_ACTIVE_WINDOW; }

    /// The window in front; noWindow when there is none.
    xcb_window_t active();
    /// The process that owns \a window; 0 when it doesn't tell.
    quint32 processOf(xcb_window_t window);
    /// The window that \a window belongs to as a dialog; noWindow when to none.
    xcb_window_t ownerOf(xcb_window_t window);

    /// Asks for \a window to be brought to the front with the keyboard, un-minimised, as a pager
    /// would: window managers don't refuse that as stealing the focus.
    void bringForward(xcb_window_t window, xcb_timestamp_t time);

    /// Tells the program of \a window once more, and nobody else, that it has the input focus; does
    /// nothing when it hasn't.
    void repeatFocusIn(xcb_window_t window);

    /// Whether \a window is on a workspace that the user doesn't look at.
    bool isOnAnotherWorkspace(xcb_window_t window);

    /// Moves \a window to the workspace that the user looks at: going to a window's own workspace
    /// instead would take the user away from where the program was called.
    void bringToWorkspaceInSight(xcb_window_t window);

    /// The X server's present time stamp.
    xcb_timestamp_t serverTime();

private:
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

    FrontWindow(Connection connection, int screen);

    void forgetEvents();
    std::optional<quint32> workspaceInSight();
    xcb_window_t clockWindow();

    Connection m_connection;
    int m_screen;
    xcb_window_t m_root = noWindow;
    xcb_window_t m_clockWindow = noWindow;
    xcb_ewmh_connection_t m_ewmh{};
};
