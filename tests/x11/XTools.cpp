// SPDX-License-Identifier: MIT
#include "x11/XTools.h"

#include "platform/x11/QtX11.h"
#include "platform/x11/XcbReply.h"

#include <QCoreApplication>
#include <QtTest>
#include <csignal>
#include <string_view>

// The header of the keyboard extension has a field called like a keyword of C++.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit

using namespace Qt::StringLiterals;

namespace
{

constexpr int patienceMs = 10'000;

xcb_window_t rootOf(xcb_connection_t *connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t activeWindowAtom(xcb_connection_t *connection)
{
    constexpr std::string_view name = "_NET_ACTIVE_WINDOW";
    const XcbReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, name.size(), name.data()), nullptr));
    return atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

QString XTools::run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    const bool ended
        = QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, patienceMs);
    if (!ended || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    return output.isNull() ? u""_s : output;
}

bool XTools::setLayout(const QString &layouts)
{
    const bool set = !run(u"setxkbmap"_s, {u"-layout"_s, layouts}).isNull();
    QTest::qWait(300);
    return set;
}

void XTools::lockGroup(quint8 group)
{
    xcb_connection_t *connection = QtX11::connection();
    xcb_xkb_latch_lock_state(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
    xcb_flush(connection);
    QTest::qWait(100);
}

bool XTools::press(const QString &key, const QStringList &held)
{
    QStringList arguments;
    for (const QString &modifier : held)
        arguments << u"keydown"_s << modifier;
    arguments << u"key"_s << key;
    for (const QString &modifier : held)
        arguments << u"keyup"_s << modifier;
    return !run(u"xdotool"_s, arguments).isNull();
}

quint16 XTools::modifierState()
{
    xcb_connection_t *connection = QtX11::connection();
    const XcbReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection, xcb_query_pointer(connection, rootOf(connection)), nullptr));
    return reply ? reply->mask : 0;
}

xcb_window_t XTools::activeWindow()
{
    xcb_connection_t *connection = QtX11::connection();
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, rootOf(connection), activeWindowAtom(connection),
                         XCB_ATOM_WINDOW, 0, 1),
        nullptr));
    if (!reply || reply->value_len != 1)
        return 0;
    return *static_cast<const xcb_window_t *>(xcb_get_property_value(reply.get()));
}

bool XTools::isMapped(xcb_window_t window)
{
    xcb_connection_t *connection = QtX11::connection();
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection, xcb_get_window_attributes(connection, window), nullptr));
    return attributes && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
}

void XTools::claimActiveWindow(xcb_window_t window)
{
    xcb_connection_t *connection = QtX11::connection();
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, rootOf(connection),
                        activeWindowAtom(connection), XCB_ATOM_WINDOW, 32, 1, &window);
    const XcbReply<xcb_get_input_focus_reply_t> done(xcb_get_input_focus_reply(
        connection, xcb_get_input_focus(connection), nullptr)); // until the server has done it
}

void XTools::giveKeyboard(xcb_window_t window)
{
    run(u"xdotool"_s, {u"windowfocus"_s, QString::number(window)});
}

XTools::SleepingWindowManager::SleepingWindowManager()
    : m_process(qEnvironmentVariableIntValue("BRINDLE_TEST_WINDOW_MANAGER"))
{
    QVERIFY2(m_process > 0, "the script that starts the window manager tells its process");
    kill(m_process, SIGSTOP);
}

XTools::SleepingWindowManager::~SleepingWindowManager()
{
    if (m_process > 0)
        kill(m_process, SIGCONT);
}

OtherProgram::OtherProgram()
{
    const QString title = u"another program %1"_s.arg(quintptr(this));
    m_process.start(u"xterm"_s, {u"-T"_s, title, u"-e"_s, u"sleep"_s, u"600"_s});
    const QString found = XTools::run(u"xdotool"_s, {u"search"_s, u"--sync"_s, u"--name"_s, title});
    m_window = found.section(u'\n', 0, 0).toUInt();
    (void)QTest::qWaitFor([this] { return XTools::activeWindow() == m_window; }, patienceMs);
}

OtherProgram::~OtherProgram()
{
    end();
}

void OtherProgram::end()
{
    m_process.kill();
    m_process.waitForFinished(patienceMs);
}

OtherGrab::OtherGrab(quint8 code, quint16 modifiers)
    : m_connection(xcb_connect(nullptr, nullptr))
{
    const XcbReply<xcb_generic_error_t> error(
        xcb_request_check(m_connection,
                          xcb_grab_key_checked(m_connection, 0, rootOf(m_connection), modifiers,
                                               code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    m_held = !error;
}

OtherGrab::~OtherGrab()
{
    xcb_disconnect(m_connection);
}

EventCounter::EventCounter(Kind isOfKind)
    : m_isOfKind(std::move(isOfKind))
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

EventCounter EventCounter::ofPresses(quint8 code)
{
    const auto isOfKind = [code](const xcb_generic_event_t *event) {
        return (event->response_type & 0x7f) == XCB_KEY_PRESS
            && reinterpret_cast<const xcb_key_press_event_t *>(event)->detail == code;
    };
    return EventCounter(isOfKind);
}

EventCounter EventCounter::ofFocusIn(xcb_window_t window)
{
    const auto isOfKind = [window](const xcb_generic_event_t *event) {
        return (event->response_type & 0x7f) == XCB_FOCUS_IN
            && reinterpret_cast<const xcb_focus_in_event_t *>(event)->event == window;
    };
    return EventCounter(isOfKind);
}

bool EventCounter::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result)
{
    Q_UNUSED(eventType)
    Q_UNUSED(result)
    if (m_isOfKind(static_cast<const xcb_generic_event_t *>(message)))
        ++count;
    return false;
}

XTools::FrontRequestSpy::FrontRequestSpy()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    const quint32 events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, rootOf(m_connection), XCB_CW_EVENT_MASK, &events);
    xcb_flush(m_connection);
}

XTools::FrontRequestSpy::~FrontRequestSpy()
{
    xcb_disconnect(m_connection);
}

QList<quint32> XTools::FrontRequestSpy::timesOf(xcb_window_t window)
{
    QList<quint32> times;
    const xcb_atom_t type = activeWindowAtom(m_connection);
    while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
        const XcbReply<xcb_generic_event_t> owner(event);
        if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE)
            continue;
        const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event);
        if (message->type == type && message->window == window)
            times.append(message->data.data32[1]);
    }
    return times;
}
