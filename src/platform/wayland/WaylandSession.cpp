// SPDX-License-Identifier: MIT
#include "platform/wayland/WaylandSession.h"

#include <QDir>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <memory>
#include <wayland-client-core.h>

using namespace Qt::StringLiterals;

bool WaylandSession::isThere()
{
    // The connection handed over by a socket number can be made only once, and that is the
    // toolkit's to do.
    if (!qEnvironmentVariableIsEmpty("WAYLAND_SOCKET"))
        return true;
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && qgetenv("XDG_SESSION_TYPE") != "wayland")
        return false;
    const std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> display(
        wl_display_connect(nullptr), wl_display_disconnect);
    return display != nullptr;
}

bool WaylandSession::toolkitKnowsIt()
{
    QStringList folders{QLibraryInfo::path(QLibraryInfo::PluginsPath)};
    folders += qEnvironmentVariable("QT_PLUGIN_PATH").split(QDir::listSeparator());
    return std::any_of(folders.begin(), folders.end(), [](const QString &folder) {
        const QDir platforms(folder + u"/platforms"_s);
        return !folder.isEmpty() && !platforms.entryList({u"libqwayland*"_s}).isEmpty();
    });
}

bool WaylandSession::isTheToolkitOnIt()
{
    return QGuiApplication::platformName().startsWith(u"wayland"_s);
}
