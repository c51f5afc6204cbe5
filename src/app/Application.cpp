// SPDX-License-Identifier: MIT
#include "app/Application.h"

#include "store/DiskStore.h"

bool Application::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const DiskStore::FileException &) {
        return false;
    }
}
