// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

class QDBusConnection;

/// The D-Bus session bus of the user's desktop.
namespace SessionBus
{

/// The connection of this process, made at first use; nothing where no bus runs. None is ever
/// started: it would be a bus that nobody else is on.
std::optional<QDBusConnection> connection();

} // namespace SessionBus
