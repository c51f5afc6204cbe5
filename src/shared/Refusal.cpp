// SPDX-License-Identifier: MIT
#include "shared/Refusal.h"

#include <QApplication>
#include <QWidget>

QEvent::Type Refusal::eventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void Refusal::refuse()
{
    QApplication::beep();
    if (QWidget *window = QApplication::activeWindow()) {
        QEvent event(eventType());
        QCoreApplication::sendEvent(window, &event);
    }
}
