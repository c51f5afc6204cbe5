// SPDX-License-Identifier: MIT
#pragma once

#include "platform/KeyboardLayout.h"

/// Knows a Mac's keys by their place alone: what the user's layout puts on them it doesn't tell, so
/// that the US keyboard's symbols are what Command+Shift+[ can be found by.
class MacKeyboardLayout : public KeyboardLayout
{
    Q_OBJECT

public:
    using KeyboardLayout::KeyboardLayout;

    PhysicalKey physicalKey(const QKeyEvent &event) override;
};
