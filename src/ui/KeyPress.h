// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"

#include <Qt>

class QKeyEvent;

/// What all key handlers of the windows share.
namespace KeyPress
{

/// \a held without the flags that say where a key stands rather than what is held with it.
Qt::KeyboardModifiers withoutKeypadAndGroup(Qt::KeyboardModifiers held);

/// The command that \a event means with the modifiers \a held; NoCommand when it means none.
/// Typed text is told apart at once, without a look at the keyboard's layout.
Command command(const QKeyEvent &event, Qt::KeyboardModifiers held);

} // namespace KeyPress
