// SPDX-License-Identifier: MIT
#pragma once

#include "store/DiskStore.h"

#include <QLoggingCategory>
#include <utility>

/// Runs \a action, one of several receivers of a signal; a file error ends here, so that the other
/// receivers still hear the signal. The store has reported it already.
/// \return false when an error was caught.
template <typename Action>
bool guardAgainstFileErrors(const QLoggingCategory &category, const char *where, Action &&action)
{
    try {
        std::forward<Action>(action)();
        return true;
    } catch (const DiskStore::FileException &e) {
        qCDebug(category).noquote() << "file error in" << where << ":" << e.message;
        return false;
    }
}
