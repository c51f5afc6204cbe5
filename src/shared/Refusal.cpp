// SPDX-License-Identifier: MIT
#include "shared/Refusal.h"

#include <QApplication>
#include <QWidget>

QEvent::Type Refusal::eventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void Refusal::refuse(QWidget *concerned)
{
    QApplication::beep();
    QWidget *active = QApplication::activeWindow();
    for (QWidget *window : {active, concerned == active ? nullptr : concerned}) {
        if (!window)
            continue;
        QEvent event(eventType());
        QCoreApplication::sendEvent(window, &event);
    }
}
