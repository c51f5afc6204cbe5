// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>
#include <utility>

/// Runs \a action where a user's action or a signal comes in; a message string thrown by it (a
/// state that must never arise) ends here: it is logged under \a where and the program goes on.
/// \return false when a message was caught. Other exceptions pass through.
template <typename Action>
bool guardAgainstTexts(const QLoggingCategory &category, const char *where, Action &&action)
{
    try {
        std::forward<Action>(action)();
        return true;
    } catch (const char *text) {
        qCDebug(category).nospace() << "exception in " << where << ": " << text;
        return false;
    }
}
