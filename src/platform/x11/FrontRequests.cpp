// SPDX-License-Identifier: MIT
#include "platform/x11/FrontRequests.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace
{

// A window on another workspace is not exposed before it has been asked for.
constexpr int longestWaitMs = 500;

QWindow *modalBox()
{
    const QWidget *box = QApplication::activeModalWidget();
    return box ? box->window()->windowHandle() : nullptr;
}

} // namespace

FrontRequests::FrontRequests(std::function<void(quint32)> bringForward)
    : m_bringForward(std::move(bringForward))
{
}

void FrontRequests::request(QWindow *window)
{
    if (!window)
        return;
    if (window->windowStates().testFlag(Qt::WindowMinimized))
        window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    if (window->isExposed())
        send(window);
    else
        waitFor(window);
}

void FrontRequests::waitFor(QWindow *window)
{
    if (m_waitingFor)
        m_waitingFor->removeEventFilter(this);
    m_waitingFor = window;
    window->installEventFilter(this);
    QTimer::singleShot(longestWaitMs, window, [this, window, self = QPointer(this)] {
        if (self && m_waitingFor == window)
            send(window);
    });
}

bool FrontRequests::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Expose && watched == m_waitingFor && m_waitingFor->isExposed())
        send(m_waitingFor);
    return QObject::eventFilter(watched, event);
}

void FrontRequests::send(QWindow *window)
{
    if (m_waitingFor) {
        m_waitingFor->removeEventFilter(this);
        m_waitingFor.clear();
    }
    if (!window->isVisible())
        return; // the user has dismissed it meanwhile
    m_bringForward(static_cast<quint32>(window->winId()));
    QWindow *box = modalBox();
    if (box && box != window)
        request(box);
}
