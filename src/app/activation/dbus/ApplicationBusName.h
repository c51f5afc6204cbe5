// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// How the program is known on the bus.
namespace ApplicationBusName
{
inline constexpr const char *interfaceName = "org.freedesktop.Application";
inline constexpr const char *toggleAction = "toggle";

QString service();
/// The service's name written as a path.
QString objectPath();
} // namespace ApplicationBusName
