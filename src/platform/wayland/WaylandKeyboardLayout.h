// SPDX-License-Identifier: MIT
#pragma once

#include "platform/KeyboardLayout.h"

#include <memory>

class KeymapConnection;

/// The layout of the compositor's keyboard.
class WaylandKeyboardLayout : public KeyboardLayout
{
    Q_OBJECT

public:
    explicit WaylandKeyboardLayout(QObject *application);
    ~WaylandKeyboardLayout() override;

    PhysicalKey physicalKey(const QKeyEvent &event) override;

private:
    std::unique_ptr<KeymapConnection> m_connection;
};
