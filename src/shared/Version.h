// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The version compiled into the program, shown as "0.3".
namespace Version
{
inline constexpr int major = 0;
inline constexpr int minor = 3;

inline QString text()
{
    return QString::number(major) + QLatin1Char('.') + QString::number(minor);
}
} // namespace Version
