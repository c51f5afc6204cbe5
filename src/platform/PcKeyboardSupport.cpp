// SPDX-License-Identifier: MIT
#include "platform/PcKeyboardSupport.h"

#include <QKeySequence>

using namespace Qt::StringLiterals;

QString PcKeyboardSupport::renderKeyCombo(KeyCommandMap::KeyCombo *combo)
{
    if (!combo)
        throw "bad";
    // Only the modifiers that the key map itself uses are drawn.
    QString text;
    if (combo->modifiers.testFlag(Qt::ControlModifier))
        text += u"Ctrl"_s + getModifierSeparator();
    if (combo->modifiers.testFlag(Qt::ShiftModifier))
        text += u"Shift"_s + getModifierSeparator();
    return text + QKeySequence(combo->key).toString(QKeySequence::PortableText);
}

QString PcKeyboardSupport::getModifierSeparator()
{
    return u"+"_s;
}

Qt::KeyboardModifiers PcKeyboardSupport::getShortcutModifier()
{
    return Qt::AltModifier; // Super, which would be free otherwise, belongs to the desktop
}

int PcKeyboardSupport::getShortcutModifierKey()
{
    return Qt::Key_Alt;
}

QString PcKeyboardSupport::getShortcutModifierKeySymbol()
{
    return u"Alt"_s;
}

QString PcKeyboardSupport::getActivationHotkeyPrefix()
{
    return u"Ctrl"_s + getModifierSeparator() + u"Alt"_s + getModifierSeparator();
}

int PcKeyboardSupport::getSpaceVirtualKey()
{
    return 0x20;
}
