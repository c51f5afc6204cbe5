// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// A session bus of the test's own, by a real daemon; the environment names it as long as this
/// lives.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    Q_DISABLE_COPY_MOVE(PrivateBus)

    QString address() const { return m_address; }
    /// Another program's connection to the bus.
    QDBusConnection &other() { return m_other; }
    /// What comes back when that program calls a method of ours, with the event loop running.
    QDBusMessage callProgram(const QString &method, const QVariantList &arguments);
    /// The bus goes away under everybody's feet.
    void end();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QByteArray m_before;
    QString m_address;
    QDBusConnection m_other{QString()};
};
