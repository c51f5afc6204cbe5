// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PhysicalKey.h"

#include <QObject>

class QKeyEvent;

/// What the user's keyboard layout puts on the keys. This one knows nothing; desktops that can tell
/// derive from it. It lives as a child of the application object.
class KeyboardLayout : public QObject
{
    Q_OBJECT

public:
    /// The application's layout, made at first use; null without an application object.
    static KeyboardLayout *ofApplication();

    using QObject::QObject;

    /// The key that was pressed.
    virtual PhysicalKey physicalKey(const QKeyEvent &event);

private:
    /// The one for the desktop at hand, as a child of \a parent.
    static KeyboardLayout *createForDesktop(QObject *parent);
};
