// SPDX-License-Identifier: MIT
#include "model/KeyCommandMap.h"

using namespace Qt::StringLiterals;

namespace
{
constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers ctrlShift = Qt::ControlModifier | Qt::ShiftModifier;
constexpr Qt::KeyboardModifiers plain = Qt::NoModifier;

Qt::KeyboardModifiers withoutKeypad(Qt::KeyboardModifiers modifiers)
{
    return modifiers & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
}
} // namespace

KeyCommandMap::KeyCommandMap()
{
    nameCommands();
    registerWindowCommands();
    registerNavigation();
    registerEditing();
}

void KeyCommandMap::registerWindowCommands()
{
    registerCommand(ctrl, Qt::Key_R, true, Command::ShowCreateReportDialog);
    registerCommand(ctrl, Qt::Key_Comma, true, Command::ShowSettingsDialog);
    registerCommand(ctrl, Qt::Key_Q, true, Command::Exit);
    registerCommand(ctrl, Qt::Key_E, true, Command::ActivateTodoListWindow);
    registerCommand(ctrl, Qt::Key_F, true, Command::ShowFindWindow);
    registerCommand(ctrl, Qt::Key_Slash, true, Command::ShowHelp);
    registerCommand(ctrlShift, Qt::Key_Slash, false, Command::ShowHelp);
    registerCommand(ctrlShift, Qt::Key_Delete, true, Command::DiscardChanges);
    registerCommand(ctrlShift, Qt::Key_Backspace, false, Command::DiscardChanges);
}

void KeyCommandMap::registerNavigation()
{
    registerCommand(ctrl, Qt::Key_H, true, Command::GoToParent);
    registerCommand(ctrl, Qt::Key_BracketLeft, true, Command::GoToFirst);
    registerCommand(ctrl, Qt::Key_K, true, Command::GoToPrevious);
    registerCommand(ctrl, Qt::Key_J, true, Command::GoToNext);
    registerCommand(ctrl, Qt::Key_BracketRight, true, Command::GoToLast);
    registerCommand(ctrl, Qt::Key_L, true, Command::GoToChild);
}

void KeyCommandMap::registerEditing()
{
    registerCommand(ctrl, Qt::Key_N, true, Command::NewSibling);
    registerCommand(ctrl, Qt::Key_D, true, Command::MarkCurrentDone);
    registerCommand(ctrl, Qt::Key_T, true, Command::MarkCurrentTodo);
    registerCommand(ctrlShift, Qt::Key_D, true, Command::MarkCurrentWontDo);
    registerCommand(ctrl, Qt::Key_O, true, Command::MarkCurrentCategory);
    registerCommand(ctrlShift, Qt::Key_H, true, Command::MoveCurrentLeft);
    registerCommand(ctrlShift, Qt::Key_BracketLeft, true, Command::MoveCurrentToTop);
    registerCommand(ctrlShift, Qt::Key_K, true, Command::MoveCurrentUp);
    registerCommand(ctrlShift, Qt::Key_J, true, Command::MoveCurrentDown);
    registerCommand(ctrlShift, Qt::Key_BracketRight, true, Command::MoveCurrentToBottom);
    registerCommand(ctrlShift, Qt::Key_L, true, Command::MoveCurrentRight);
    registerCommand(ctrl, Qt::Key_S, true, Command::RegisterShortcut);
    registerCommand(ctrl, Qt::Key_Equal, true, Command::AddEntryToTodoListAndShow);
    registerCommand(ctrlShift, Qt::Key_Equal, false, Command::AddEntryToTodoListAndShow);
    registerCommand(plain, Qt::Key_Return, true, Command::SaveChangesAndHide);
    registerCommand(plain, Qt::Key_Enter, false, Command::SaveChangesAndHide);
    registerCommand(plain, Qt::Key_Escape, true, Command::Hide);
    registerCommand(ctrl, Qt::Key_W, false, Command::Hide);
    registerCommand(ctrl, Qt::Key_Period, false, Command::CommitEdit);
}

void KeyCommandMap::nameCommands()
{
    m_commandByName = {
        {u"NoCommand"_s, Command::NoCommand},
        {u"GoToParent"_s, Command::GoToParent},
        {u"GoToFirst"_s, Command::GoToFirst},
        {u"GoToPrevious"_s, Command::GoToPrevious},
        {u"GoToNext"_s, Command::GoToNext},
        {u"GoToLast"_s, Command::GoToLast},
        {u"GoToChild"_s, Command::GoToChild},
        {u"MoveCurrentLeft"_s, Command::MoveCurrentLeft},
        {u"MoveCurrentToTop"_s, Command::MoveCurrentToTop},
        {u"MoveCurrentUp"_s, Command::MoveCurrentUp},
        {u"MoveCurrentDown"_s, Command::MoveCurrentDown},
        {u"MoveCurrentToBottom"_s, Command::MoveCurrentToBottom},
        {u"MoveCurrentRight"_s, Command::MoveCurrentRight},
        {u"NewSibling"_s, Command::NewSibling},
        {u"Hide"_s, Command::Hide},
        {u"SaveChangesAndHide"_s, Command::SaveChangesAndHide},
        {u"DiscardChanges"_s, Command::DiscardChanges},
        {u"MarkCurrentDone"_s, Command::MarkCurrentDone},
        {u"MarkCurrentTodo"_s, Command::MarkCurrentTodo},
        {u"MarkCurrentWontDo"_s, Command::MarkCurrentWontDo},
        {u"MarkCurrentCategory"_s, Command::MarkCurrentCategory},
        {u"RegisterShortcut"_s, Command::RegisterShortcut},
        {u"AddEntryToTodoListAndShow"_s, Command::AddEntryToTodoListAndShow},
        {u"ActivateTodoListWindow"_s, Command::ActivateTodoListWindow},
        {u"ShowFindWindow"_s, Command::ShowFindWindow},
        {u"ShowCreateReportDialog"_s, Command::ShowCreateReportDialog},
        {u"ShowSettingsDialog"_s, Command::ShowSettingsDialog},
        {u"ShowHelp"_s, Command::ShowHelp},
        {u"Exit"_s, Command::Exit},
    };
}

void KeyCommandMap::registerCommand(Qt::KeyboardModifiers modifiers, int key, bool preferred,
                                    Command command)
{
    const KeyCombo combo{withoutKeypad(modifiers), key};
    m_commandByCombo[combo] = command;
    if (preferred)
        m_preferredComboByCommand[command] = std::make_unique<KeyCombo>(combo);
}

Command KeyCommandMap::getCommand(Qt::KeyboardModifiers modifiers, int key) const
{
    const auto found = m_commandByCombo.find(KeyCombo{withoutKeypad(modifiers), key});
    return found == m_commandByCombo.end() ? Command::NoCommand : found->second;
}

KeyCommandMap::KeyCombo *KeyCommandMap::getPreferredKeyCombo(Command command) const
{
    const auto found = m_preferredComboByCommand.find(command);
    return found == m_preferredComboByCommand.end() ? nullptr : found->second.get();
}

KeyCommandMap::KeyCombo *KeyCommandMap::getPreferredKeyComboByName(const QString &name) const
{
    const auto found = m_commandByName.find(name);
    return getPreferredKeyCombo(found == m_commandByName.end() ? Command::NoCommand
                                                               : found->second);
}
