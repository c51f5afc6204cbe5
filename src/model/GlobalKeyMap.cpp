// SPDX-License-Identifier: MIT
#include "model/GlobalKeyMap.h"

namespace
{
const KeyCommandMap keyCommandMap;
}

Command Global::getCommand(Qt::KeyboardModifiers modifiers, int key)
{
    return keyCommandMap.getCommand(modifiers, key);
}

KeyCommandMap::KeyCombo *Global::getPreferredKeyComboByName(const QString &name)
{
    return keyCommandMap.getPreferredKeyComboByName(name);
}
