// SPDX-License-Identifier: MIT
#pragma once

#include "platform/x11/HotkeyPresses.h"

#include <QAbstractNativeEventFilter>
#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>

class HotkeyGrab;

/// The system-wide activation hotkey: at most one, renewed when the keyboard map changes.
class X11Hotkey : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// \a root is the root window at which the key is watched.
    explicit X11Hotkey(quint32 root);
    ~X11Hotkey() override;

    /// Makes Ctrl+Alt with the key that bears the keysym \a symbol the hotkey.
    void setKey(quint32 symbol);

    /// The time stamp of the last press if it was a moment ago.
    std::optional<quint32> freshPressTime() const;

signals:
    /// Once per press. The toolkit knows the press's time stamp by then, so that windows that come
    /// forward in answer carry it.
    void pressed();

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    bool keyPressed(const void *message);
    void keyReleased(const void *message);
    void renew();

    quint32 m_root;
    std::unique_ptr<HotkeyGrab> m_grab;
    HotkeyPresses m_presses;
    quint32 m_pressTime = 0;
    QDeadlineTimer m_pressIsFresh{0};
    QTimer m_renewal;
};
