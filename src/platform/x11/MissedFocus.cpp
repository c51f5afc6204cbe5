// SPDX-License-Identifier: MIT
#include "platform/x11/MissedFocus.h"

#include "platform/x11/FrontWindow.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

MissedFocus::MissedFocus(FrontWindow &front)
    : m_front(front)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool MissedFocus::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowUnblocked) {
        const auto *window = qobject_cast<const QWindow *>(watched);
        if (window && window->handle() && window != QGuiApplication::focusWindow())
            m_front.repeatFocusIn(static_cast<xcb_window_t>(window->winId()));
    }
    return QObject::eventFilter(watched, event);
}
