// SPDX-License-Identifier: MIT
#include "platform/KeyLookup.h"

#include "model/GlobalKeyMap.h"
#include "platform/KeyOrder.h"
#include "platform/KeyboardLayout.h"

#include <QKeyEvent>
#include <algorithm>

QList<KeyCommandMap::KeyCombo> KeyLookup::candidates(const QKeyEvent &event,
                                                     Qt::KeyboardModifiers held)
{
    const Qt::KeyboardModifiers all = held | event.modifiers();
    const Qt::KeyboardModifiers counted = held & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    // The key pad has no letters to look for, and its digits are not those of the top row's place.
    KeyboardLayout *layout
        = all.testFlag(Qt::KeypadModifier) ? nullptr : KeyboardLayout::ofApplication();
    const PhysicalKey physicalKey = layout ? layout->physicalKey(event) : PhysicalKey{};
    const bool altGr = all.testFlag(Qt::GroupSwitchModifier) || physicalKey.altGr;

    QList<KeyCommandMap::KeyCombo> combos;
    for (int key : KeyOrder::keys(event.key(), altGr, physicalKey))
        combos.append({counted, key});
    return combos;
}

Command KeyLookup::command(const QKeyEvent &event, Qt::KeyboardModifiers held)
{
    for (const KeyCommandMap::KeyCombo &combo : candidates(event, held)) {
        const Command command = Global::getCommand(combo.modifiers, combo.key);
        if (command != Command::NoCommand)
            return command;
    }
    return Command::NoCommand;
}

bool KeyLookup::isModifierOrLockKey(int key)
{
    static constexpr std::array single{0,
                                       int(Qt::Key_unknown),
                                       int(Qt::Key_Shift),
                                       int(Qt::Key_Control),
                                       int(Qt::Key_Meta),
                                       int(Qt::Key_Alt),
                                       int(Qt::Key_AltGr),
                                       int(Qt::Key_CapsLock),
                                       int(Qt::Key_NumLock),
                                       int(Qt::Key_ScrollLock),
                                       int(Qt::Key_Super_L),
                                       int(Qt::Key_Super_R),
                                       int(Qt::Key_Hyper_L),
                                       int(Qt::Key_Hyper_R),
                                       int(Qt::Key_Direction_L),
                                       int(Qt::Key_Direction_R),
                                       int(Qt::Key_Mode_switch)};
    // Compose, Kanji, Hangul and the like: keys that switch how the following ones are read.
    const bool switchesInput = key >= Qt::Key_Multi_key && key <= Qt::Key_Hangul_Special;
    return switchesInput || std::find(single.begin(), single.end(), key) != single.end();
}
