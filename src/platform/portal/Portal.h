// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Names of the desktop portal on the session bus,
/// https://flatpak.github.io/xdg-desktop-portal/docs/.
namespace Portal
{
using namespace Qt::StringLiterals;

inline const QString service = u"org.freedesktop.portal.Desktop"_s;
inline const QString path = u"/org/freedesktop/portal/desktop"_s;
inline const QString requestInterface = u"org.freedesktop.portal.Request"_s;
inline const QString sessionInterface = u"org.freedesktop.portal.Session"_s;
inline const QString shortcutsInterface = u"org.freedesktop.portal.GlobalShortcuts"_s;

/// A name that no other request or session of this process has.
QString newToken();

} // namespace Portal
