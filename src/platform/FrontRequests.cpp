// SPDX-License-Identifier: MIT
#include "platform/FrontRequests.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <algorithm>

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

FrontRequests::FrontRequests(std::function<void(QWindow *)> bringForward)
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
    const auto isForIt = [window](const Wait &wait) { return wait.window == window; };
    if (std::any_of(m_waits.begin(), m_waits.end(), isForIt))
        return;
    const Wait wait{window, ++m_turns};
    m_waits.append(wait);
    window->installEventFilter(this);
    QTimer::singleShot(longestWaitMs, this, [this, wait] {
        if (wait.window && m_waits.contains(wait))
            send(wait.window);
    });
}

bool FrontRequests::eventFilter(QObject *watched, QEvent *event)
{
    auto *window = qobject_cast<QWindow *>(watched);
    if (event->type() == QEvent::Expose && window && window->isExposed())
        send(window);
    return QObject::eventFilter(watched, event);
}

void FrontRequests::send(QWindow *window)
{
    window->removeEventFilter(this);
    m_waits.removeIf([window](const Wait &wait) { return !wait.window || wait.window == window; });
    if (!window->isVisible())
        return; // the user has dismissed it meanwhile
    m_bringForward(window);
    QWindow *box = modalBox();
    if (box && box != window) {
        comeForwardAfter(box, window);
        request(box);
    }
}

// A window manager needn't know that the box belongs to the window: once the box has been answered,
// it would give the front to the program that had it before.
void FrontRequests::comeForwardAfter(QWindow *box, QWindow *window)
{
    m_boxes.removeAll(nullptr);
    if (m_boxes.contains(box))
        return;
    m_boxes.append(box);
    connect(box, &QWindow::visibleChanged, this,
            [this, box = QPointer(box), window = QPointer(window)](bool visible) {
                if (visible)
                    return;
                // One that is shown again at once has not been answered.
                QTimer::singleShot(0, this, [this, box, window] { boxHidden(box, window); });
            });
}

void FrontRequests::boxHidden(QWindow *box, QWindow *window)
{
    if (box && box->isVisible())
        return;
    if (box) {
        disconnect(box, &QWindow::visibleChanged, this, nullptr);
        m_boxes.removeAll(box);
    }
    if (window)
        send(window); // another box may have followed
}
