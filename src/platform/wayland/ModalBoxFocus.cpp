// SPDX-License-Identifier: MIT
#include "platform/wayland/ModalBoxFocus.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

namespace
{

/// The box that keeps \a window from being worked with; null when none does.
QWidget *boxInFrontOf(const QWindow *window)
{
    QWidget *box = QApplication::activeModalWidget();
    const bool blocks = box && window && box->window()->windowHandle() != window;
    return blocks ? box->window() : nullptr;
}

} // namespace

ModalBoxFocus::ModalBoxFocus()
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceMs);
    connect(&m_patience, &QTimer::timeout, this, &ModalBoxFocus::insist);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &ModalBoxFocus::focusChanged);
}

void ModalBoxFocus::focusChanged(const QWindow *window)
{
    if (const QWidget *box = boxInFrontOf(window)) {
        box->windowHandle()->requestActivate();
        m_patience.start();
    } else {
        m_patience.stop();
    }
}

void ModalBoxFocus::insist()
{
    QWidget *box = boxInFrontOf(QGuiApplication::focusWindow());
    if (!box)
        return;
    // Some compositors only mark a window that asks as urgent, but all look at one that is new. The
    // dialog's own way of hiding would answer it.
    box->QWidget::setVisible(false);
    box->QWidget::setVisible(true);
}
