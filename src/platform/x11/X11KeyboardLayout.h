// SPDX-License-Identifier: MIT
#pragma once

#include "platform/KeyboardLayout.h"
#include "platform/XkbKeymapReader.h"

#include <QAbstractNativeEventFilter>
#include <optional>

/// The layout of the X server's keyboard; read again after it has changed.
class X11KeyboardLayout : public KeyboardLayout, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// Whether the application runs on X11.
    static bool isAvailable();

    explicit X11KeyboardLayout(QObject *application);
    ~X11KeyboardLayout() override;

    PhysicalKey physicalKey(const QKeyEvent &event) override;

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

    std::optional<XkbKeymapReader> m_reader;
};
