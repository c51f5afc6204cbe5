// SPDX-License-Identifier: MIT
#include "ui/KeyPress.h"

#include "platform/KeyLookup.h"

#include <QKeyEvent>

namespace
{
bool isTypedText(const QKeyEvent &event, Qt::KeyboardModifiers held)
{
    constexpr Qt::KeyboardModifiers commandModifiers
        = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const QString text = event.text();
    return !(held & commandModifiers) && !text.isEmpty() && text.front().isPrint();
}
} // namespace

Qt::KeyboardModifiers KeyPress::withoutKeypadAndGroup(Qt::KeyboardModifiers held)
{
    return held & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
}

Command KeyPress::command(const QKeyEvent &event, Qt::KeyboardModifiers held)
{
    return isTypedText(event, held) ? Command::NoCommand : KeyLookup::command(event, held);
}
