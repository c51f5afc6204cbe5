// SPDX-License-Identifier: MIT
#pragma once

#include "platform/BusConnection.h"

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <memory>

class PortalSession;

/// The activation hotkey by way of the desktop portal, for desktops where no program may watch the
/// keyboard itself. At most one shortcut is bound; it is bound anew when the portal comes back.
class PortalHotkey : public QObject
{
    Q_OBJECT

public:
    PortalHotkey();
    ~PortalHotkey() override;

    /// Makes \a trigger the hotkey; see PortalSession. What comes of it is known only later.
    void setTrigger(const QString &trigger);

    /// Whether it is certain that there is no hotkey.
    bool isUnavailable() const { return m_unavailable; }

signals:
    void pressed(const QByteArray &activationToken);

private:
    void bind();
    void followOwner(const QString &owner);
    void giveUp(const QString &reason);

    QString m_trigger;
    bool m_unavailable = false;
    BusConnection m_bus;
    std::unique_ptr<PortalSession> m_session;
    QDBusServiceWatcher m_watcher;
};
