// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/InstanceRequest.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

/// The methods that a desktop calls; the names are those of the interface.
class ApplicationAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// Whoever calls this gets no more files opened at once: each may end in a message box.
    static constexpr int mostFiles = 100;

    /// \a connection is where errors are answered; \a parent is the object that gets the interface.
    ApplicationAdaptor(const QDBusConnection &connection, QObject *parent);

public slots:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &action, const QVariantList &parameter,
                        const QVariantMap &platformData, const QDBusMessage &call);

signals:
    void requested(const InstanceRequest &request);

private:
    QDBusConnection m_connection;
};
