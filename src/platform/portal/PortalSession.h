// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariantMap>

/// A session of the portal's global shortcuts with one shortcut bound in it: from the first request
/// to the end of the session. Deleting this closes the session.
class PortalSession : public QObject
{
    Q_OBJECT

public:
    /// Asks at once for \a trigger, as the XDG shortcuts specification writes it ("CTRL+ALT+space",
    /// keys by their keysym names). The desktop may let the user choose another one.
    PortalSession(QDBusConnection bus, QString trigger);
    ~PortalSession() override;

    /// Whether the portal has yet to answer the first request.
    bool isOpening() const { return m_opening; }

signals:
    void bound();
    /// There will be no shortcut: the portal can't or won't, or has ended the session.
    void failed(const QString &reason);
    /// \a activationToken is empty when the desktop sent none.
    void pressed(const QByteArray &activationToken);

private slots:
    void activate(const QDBusObjectPath &session, const QString &id, qulonglong timestamp,
                  const QVariantMap &options);
    void close();

private:
    void open();
    void opened(const QVariantMap &results);
    void bind();
    void boundTo(const QVariantMap &results);

    QDBusConnection m_bus;
    QString m_trigger;
    bool m_opening = true;
    QString m_handle; ///< Object path of the session; empty when there is none.
};
