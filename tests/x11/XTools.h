// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QProcess>
#include <QStringList>
#include <functional>

#include <sys/types.h>
#include <xcb/xcb.h>

/// The user's hands and eyes on a real X server, for tests.
namespace XTools
{

/// Runs a program while the event loop goes on; its standard output, or a null text if it failed.
QString run(const QString &program, const QStringList &arguments);

/// Makes \a layouts the keyboard's layouts and waits until everybody has noticed.
bool setLayout(const QString &layouts);
/// Locks the \a group-th of the layouts, as a layout switch does.
void lockGroup(quint8 group);

/// Presses \a key (a name or a key code) with \a held; all are released afterwards.
bool press(const QString &key, const QStringList &held = {});

/// The state of the modifiers and locks at the X server.
quint16 modifierState();

/// What the window manager says is in front; 0 for none.
xcb_window_t activeWindow();
/// Whether the window is on the screen, be it covered or not.
bool isMapped(xcb_window_t window);
/// Writes the window manager's word about it, behind its back.
void claimActiveWindow(xcb_window_t window);

/// Gives the window the keyboard, past the window manager.
void giveKeyboard(xcb_window_t window);

/// The window manager does nothing while this exists.
class SleepingWindowManager
{
public:
    SleepingWindowManager();
    ~SleepingWindowManager();
    Q_DISABLE_COPY_MOVE(SleepingWindowManager)

private:
    pid_t m_process;
};

/// Sees with which time stamps windows ask to come to the front.
class FrontRequestSpy
{
public:
    FrontRequestSpy();
    ~FrontRequestSpy();
    Q_DISABLE_COPY_MOVE(FrontRequestSpy)

    /// Those that \a window asked with since the last call.
    QList<quint32> timesOf(xcb_window_t window);

private:
    xcb_connection_t *m_connection;
};

} // namespace XTools

/// Another program with a window of its own.
class OtherProgram
{
public:
    /// Starts it and waits until its window is in front.
    OtherProgram();
    ~OtherProgram();
    Q_DISABLE_COPY_MOVE(OtherProgram)

    xcb_window_t window() const { return m_window; }
    void end();

private:
    QProcess m_process;
    xcb_window_t m_window = 0;
};

/// A second client of the X server that holds a key.
class OtherGrab
{
public:
    OtherGrab(quint8 code, quint16 modifiers);
    ~OtherGrab();
    Q_DISABLE_COPY_MOVE(OtherGrab)

    /// Whether the server granted it.
    bool held() const { return m_held; }

private:
    xcb_connection_t *m_connection;
    bool m_held = false;
};

/// Counts the events of a kind that reach this process.
class EventCounter : public QAbstractNativeEventFilter
{
public:
    /// Presses of a key, repeated ones too.
    static EventCounter ofPresses(quint8 code);
    /// Word that the window has got the keyboard.
    static EventCounter ofFocusIn(xcb_window_t window);

    int count = 0;

private:
    using Kind = std::function<bool(const xcb_generic_event_t *)>;

    explicit EventCounter(Kind isOfKind);

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

    Kind m_isOfKind;
};
