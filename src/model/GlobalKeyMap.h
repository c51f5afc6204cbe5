// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyCommandMap.h"

/// The one process-wide key map, built during static initialisation.
namespace Global
{

Command getCommand(Qt::KeyboardModifiers modifiers, int key);

/// Owned by the map; null for an unknown name or a command without a combination to show.
KeyCommandMap::KeyCombo *getPreferredKeyComboByName(const QString &name);

} // namespace Global
