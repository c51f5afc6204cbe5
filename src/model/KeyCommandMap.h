// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"

#include <QString>
#include <Qt>
#include <map>
#include <memory>

/// The table of key combinations: which command a combination means, what each command is called in
/// help texts, and which of its combinations is shown there. Fixed once built.
class KeyCommandMap
{
public:
    /// One key combination. Ordered by modifiers, then key, as signed numbers.
    struct KeyCombo {
        Qt::KeyboardModifiers modifiers; ///< Never holds the keypad flag.
        int key = 0; ///< Qt key code.

        friend bool operator<(const KeyCombo &a, const KeyCombo &b)
        {
            const int aModifiers = static_cast<int>(a.modifiers.toInt());
            const int bModifiers = static_cast<int>(b.modifiers.toInt());
            return aModifiers != bModifiers ? aModifiers < bModifiers : a.key < b.key;
        }
        friend bool operator==(const KeyCombo &, const KeyCombo &) = default;
    };

    /// Registers all bindings and names of the program.
    KeyCommandMap();

    /// Binds (\a modifiers without the keypad flag, \a key) to \a command, replacing an earlier
    /// binding of the same combination. With \a preferred it becomes the combination shown for the
    /// command.
    void registerCommand(Qt::KeyboardModifiers modifiers, int key, bool preferred, Command command);

    /// The command bound to the combination, the keypad flag not counting; NoCommand when unbound.
    Command getCommand(Qt::KeyboardModifiers modifiers, int key) const;

    /// The combination to show for \a command; owned by the map, null when there is none.
    KeyCombo *getPreferredKeyCombo(Command command) const;

    /// The combination to show for the command called \a name; null for an unknown name.
    KeyCombo *getPreferredKeyComboByName(const QString &name) const;

private:
    void registerWindowCommands();
    void registerNavigation();
    void registerEditing();
    void nameCommands();

    std::map<QString, Command> m_commandByName;
    std::map<KeyCombo, Command> m_commandByCombo;
    std::map<Command, std::unique_ptr<KeyCombo>> m_preferredComboByCommand;
};
