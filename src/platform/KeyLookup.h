// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyCommandMap.h"

#include <QList>

class QKeyEvent;

/// Turns a key press into the key combinations it can mean, whatever keyboard layout the user has.
///
/// X11 reports Ctrl+Shift+[ as "{" and a Russian K as a Cyrillic letter. The order is: the
/// toolkit's own key; the symbols that stand on the same physical key in each Latin group of the
/// user's layout, unshifted level first; a fixed US keyboard by key code. When the active group
/// isn't Latin, its own symbol comes last. Group-switch and keypad flags never count.
namespace KeyLookup
{

/// The combinations that \a event can mean with the modifiers \a held, best first; never empty.
QList<KeyCommandMap::KeyCombo> candidates(const QKeyEvent &event, Qt::KeyboardModifiers held);

/// The command of the first candidate that is bound; NoCommand when none is.
Command command(const QKeyEvent &event, Qt::KeyboardModifiers held);

/// Whether the press is that of a modifier or lock key alone.
bool isModifierOrLockKey(int key);

} // namespace KeyLookup
