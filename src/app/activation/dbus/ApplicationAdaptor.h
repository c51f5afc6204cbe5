// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/InstanceRequest.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>
#include <functional>

/// The methods that a desktop calls; the names are those of the interface.
class ApplicationAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// Whoever calls this gets no more files opened at once: each may end in a message box.
    static constexpr int mostFiles = 100;

    using Receiver = std::function<void(const InstanceRequest &)>;

    /// \a connection is where errors are answered; \a parent is the object that gets the interface.
    /// (A signal in the receiver's place would be one of the interface.)
    ApplicationAdaptor(const QDBusConnection &connection, Receiver receiver, QObject *parent);

public slots:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &action, const QVariantList &parameter,
                        const QVariantMap &platformData, const QDBusMessage &call);

private:
    QDBusConnection m_connection;
    Receiver m_receiver;
};
