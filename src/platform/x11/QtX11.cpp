// SPDX-License-Identifier: MIT
#include "platform/x11/QtX11.h"

#include <QGuiApplication>

xcb_connection_t *QtX11::connection()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return nullptr;
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}
