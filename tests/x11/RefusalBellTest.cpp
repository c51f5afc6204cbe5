// SPDX-License-Identifier: MIT
#include "shared/Refusal.h"

#include <QtTest>
#include <memory>

#include <xcb/xcb.h>
#define explicit explicit_ // a field of a structure
#include <xcb/xkb.h>
#undef explicit

namespace
{

/// Hears the bells that ring at the X server.
class BellWatch
{
public:
    BellWatch()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        const auto *extension = xcb_get_extension_data(m_connection, &xcb_xkb_id);
        m_firstEvent = extension->first_event;
        std::free(xcb_xkb_use_extension_reply(
            m_connection,
            xcb_xkb_use_extension(m_connection, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION),
            nullptr));
        xcb_xkb_select_events(m_connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_BELL_NOTIFY,
                              0, XCB_XKB_EVENT_TYPE_BELL_NOTIFY, 0, 0, nullptr);
        std::free(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }
    ~BellWatch() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY_MOVE(BellWatch)

    int count()
    {
        while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
            if ((event->response_type & 0x7f) == m_firstEvent && event->pad0 == XCB_XKB_BELL_NOTIFY)
                ++m_count;
            std::free(event);
        }
        return m_count;
    }

private:
    xcb_connection_t *m_connection;
    int m_firstEvent = 0;
    int m_count = 0;
};

} // namespace

class RefusalBellTest : public QObject
{
    Q_OBJECT

private slots:
    void eachRefusalRingsTheBellOnce();
};

void RefusalBellTest::eachRefusalRingsTheBellOnce()
{
    BellWatch bells;
    Refusal::refuse();
    QTRY_COMPARE(bells.count(), 1);
    QWidget window;
    Refusal::refuse(&window);
    QTRY_COMPARE(bells.count(), 2);
}

QTEST_MAIN(RefusalBellTest)
#include "RefusalBellTest.moc"
