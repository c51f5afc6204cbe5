// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <array>

/// What the user's keyboard layout puts on one physical key.
struct PhysicalKey {
    /// Plain, Shift, AltGr, Shift+AltGr.
    static constexpr int levelCount = 4;

    /// One of the layouts that the user switches between.
    struct Group {
        bool latin = false; ///< Its letter keys bear the letters A to Z.
        std::array<int, levelCount> keys{}; ///< Qt key codes by level; 0 for none.
    };

    quint32 code = 0; ///< The key code of X11 (that of the kernel plus 8); 0 when unknown.
    QList<Group> groups; ///< Empty when nothing is known about the layout.
    int activeGroup = 0;
    bool altGr = false; ///< AltGr was held, as far as the toolkit's own flag doesn't tell.
};
