// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

class QDBusMessage;

/// One request to the desktop portal. The portal answers a call at once with the path of a request
/// object, and later, perhaps after asking the user, with that object's Response signal.
/// Deleting this forgets the request.
class PortalRequest : public QObject
{
    Q_OBJECT

public:
    explicit PortalRequest(QDBusConnection bus, QObject *parent);

    /// The "handle_token" option that the call has to carry.
    QString token() const { return m_token; }

    /// Makes the call \a method of the portal's \a interface with these \a arguments.
    void send(const QString &interface, const QString &method, const QVariantList &arguments);

signals:
    void granted(const QVariantMap &results);
    /// The call failed, or the desktop or its user said no.
    void failed(const QString &reason);

private slots:
    void respond(uint response, const QVariantMap &results);

private:
    void listenAt(const QString &path);

    QDBusConnection m_bus;
    QString m_token;
    QString m_path;
};
