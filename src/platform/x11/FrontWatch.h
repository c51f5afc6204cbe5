// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SettlingFront.h"

#include <QAbstractNativeEventFilter>

class FrontWindow;

/// Knows whether this application is in front, and tells when another one has taken its place. The
/// toolkit's own ApplicationDeactivate event doesn't come when a window manager passes the front on
/// without telling our windows.
class FrontWatch : public SettlingFront, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// \a front is borrowed and must outlive this object.
    explicit FrontWatch(FrontWindow &front);

    /// Whether \a window is one of this process, or a dialog that belongs to one. \a front asks.
    static bool isOurs(FrontWindow &front, quint32 window);

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void listen();

    FrontWindow &m_front;
};
